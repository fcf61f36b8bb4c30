// Windows on a real server: what a person would see, asked of the server.
#include <sys/resource.h>
#include <sys/uio.h>
#include <unistd.h>
#include <xcb/randr.h>
#include <xcb/xcbext.h>
#include <xcb/xfixes.h>

#include <cstring>

#include "platform/display/cursor.h"
#include "platform/display/screens.h"
#include "platform/display/x11/x.h"
#include "platform/events/raw_event.h"
#include "platform/windows/internal.h"
#include "tests/x11/fixture.h"
#include "tests/x11/peer.h"

namespace x11_test {
namespace {

using namespace platform;

// The hints of the window manager, as words.
constexpr size_t kMinWidth = 5, kMaxHeight = 8, kStepX = 9, kBaseWidth = 15, kBaseHeight = 16;

// With memory in common with the server, refused by the environment or by the server, and as on
// another machine.
TEST_F(X11Test, AWindowShowsItsPicture) {
  const std::vector<std::string> kNoSharing = {"-extension", "MIT-SHM"},
                                 kNetwork = {"-listen", "tcp"};
  const struct {
    const char* shm;
    std::vector<std::string> arguments;
  } rows[] = {{"1", {}}, {"0", {}}, {"1", kNoSharing}, {"1", kNetwork}};
  for (const auto& row : rows) {
    setenv("XW_SHM", row.shm, 1);
    StartServer("", row.arguments);
    if (row.arguments == kNetwork) setenv("DISPLAY", ("127.0.0.1" + server().display()).c_str(), 1);
    StartSession();
    unsetenv("XW_SHM");
    ASSERT_NE(Show("Picture", {0, 30, 900, 700}), nullptr);
    EXPECT_EQ(x11::x.shm, *row.shm == '1' && row.arguments.empty());
    const support::Screenshot shot = user().Look();
    EXPECT_EQ(shot.at(0, 30), 0x3366CCu);
    EXPECT_EQ(shot.at(899, 699), 0x3366CCu);
    EXPECT_NE(shot.at(900, 699), 0x3366CCu);
    EXPECT_NE(shot.at(899, 700), 0x3366CCu);
    TearDown();
  }
}

// The server has the extension and yet cannot take the memory: what was lost is sent again.
TEST_F(X11Test, MemoryThatIsRefusedLateIsSentInstead) {
  Start();
  WindowRef w = Show("Picture", {0, 30, 300, 200});
  const std::string folder = "/proc/" + std::to_string(server().pid()) + "/fd/";
  int used = 0;
  while (access((folder + std::to_string(used)).c_str(), F_OK) == 0) ++used;
  EXPECT_TRUE(x11::x.shm);
  const rlimit full{rlim_t(used), rlim_t(used)};
  ASSERT_EQ(prlimit(server().pid(), RLIMIT_NOFILE, &full, nullptr), 0);
  // It was on the screen before: no expose brings the picture again.
  SetWindowBounds(w, {0, 30, 900, 700});
  FlushWindow(w);
  EXPECT_FALSE(x11::x.shm);
  EXPECT_EQ(user().Look().at(899, 699), 0x3366CCu);
}

// What covers a window and goes away costs the program no redraw.
TEST_F(X11Test, UncoveredPixelsComeFromTheBuffer) {
  Start();
  ASSERT_NE(Show("Below", {100, 100, 300, 250}), nullptr);
  const size_t drawn = Count(kEventClassWindow, kEventWindowDrawContent);
  WindowRef above = Show("Above", {150, 120, 250, 220});
  SetWindowBackgroundColor(above, 0xFF0000);
  EraseRect(above, {0, 0, 100, 100});
  FlushWindow(above);
  EXPECT_EQ(user().Look().at(200, 200), 0xFF0000u);
  const size_t before = Count(kEventClassWindow, kEventWindowDrawContent);
  EXPECT_EQ(before, drawn + 1);
  DisposeWindow(above);
  EXPECT_TRUE(RunUntil([&] { return user().Look().at(200, 200) == 0x3366CCu; }));
  EXPECT_EQ(Count(kEventClassWindow, kEventWindowDrawContent), before);
}

// Until the program has drawn what the desktop has given it, its background shows there.
TEST_F(X11Test, WhatHasGrownShowsTheBackground) {
  Start();
  WindowRef w = Show("Growing", {100, 124, 300, 300});
  SetWindowBackgroundColor(w, 0x884422);
  FlushWindow(w);
  const uint32_t size[] = {400, 350};
  xcb_configure_window(user().connection(), x11::NativeOf(w)->id,
                       XCB_CONFIG_WINDOW_WIDTH | XCB_CONFIG_WINDOW_HEIGHT, size);
  user().Sync();
  const auto look = user().Look();
  EXPECT_EQ(look.at(499, 449), 0x884422u);
  EXPECT_EQ(look.at(150, 200), 0x3366CCu) << "what was there stays";
}

TEST_F(X11Test, TheDesktopIsToldWhatAWindowIs) {
  Start();
  WindowRef first = Show("First", {50, 80, 250, 180});
  const xcb_window_t id = user().Find("First");
  const std::string names = user().Text(id, "WM_CLASS");
  EXPECT_NE(names.find(std::string("Session\0", 8)), std::string::npos);
  ASSERT_EQ(user().Words(id, "_NET_WM_PID").size(), 1u);
  EXPECT_EQ(user().Words(id, "_NET_WM_PID")[0], uint32_t(getpid()));
  SetWindowTitle(first, "Žluť");
  SetWindowModified(first, true);
  FlushWindow(first);
  EXPECT_EQ(user().Text(id, "_NET_WM_NAME"), "\u2022 Žluť");
  SetWindowModified(first, false);
  FlushWindow(first);
  EXPECT_EQ(user().Text(id, "_NET_WM_NAME"), "Žluť");
}

TEST_F(X11Test, ClassesBecomeTypesAndFrames) {
  Start();
  Show("First", {50, 80, 250, 180});
  const xcb_window_t first = user().Find("First");
  struct Row {
    int window_class;
    const char* type;
    bool decorated;
  };
  constexpr Row kRows[] = {
      {kAlertWindowClass, "_NET_WM_WINDOW_TYPE_DIALOG", true},
      {kFloatingWindowClass, "_NET_WM_WINDOW_TYPE_UTILITY", true},
      {kDocumentWindowClass, "_NET_WM_WINDOW_TYPE_NORMAL", true},
      {kToolbarWindowClass, "_NET_WM_WINDOW_TYPE_UTILITY", false},
      {kSimpleWindowClass, "_NET_WM_WINDOW_TYPE_NORMAL", false},
  };
  for (const Row& row : kRows) {
    const std::string title = "Class " + std::to_string(row.window_class);
    SCOPED_TRACE(title);
    WindowRef w = Show(title.c_str(), {300, 100, 400, 200}, row.window_class);
    const xcb_window_t id = user().Find(title);
    EXPECT_EQ(user().Words(id, "_NET_WM_WINDOW_TYPE"),
              std::vector<uint32_t>{user().Atom(row.type)});
    const auto motif = user().Words(id, "_MOTIF_WM_HINTS");
    ASSERT_EQ(motif.size(), 5u);
    EXPECT_EQ(motif[2] != 0, row.decorated);
    EXPECT_EQ(motif[1], 2u | 4 | 8 | 16 | 32);
    ChangeWindowAttributes(w, 0, kWindowCollapseBoxAttribute | kWindowResizableAttribute);
    FlushWindow(w);
    EXPECT_EQ(user().Words(id, "_MOTIF_WM_HINTS")[1], 4u | 16 | 32);
    if (row.window_class == kAlertWindowClass) {
      EXPECT_EQ(user().Words(id, "WM_TRANSIENT_FOR"), std::vector<uint32_t>{first});
    }
    DisposeWindow(w);
  }
}

TEST_F(X11Test, SizeHintsHoldTheStripAndTheSteps) {
  Start();
  WindowRef w = Show("Hints", {50, 80, 253, 181});
  const xcb_window_t id = user().Find("Hints");
  auto hints = user().Words(id, "WM_NORMAL_HINTS");
  ASSERT_EQ(hints.size(), 18u);
  // No limits yet: the size is what it is, the menu bar (24) above it.
  EXPECT_EQ(hints[kMinWidth], 203u);
  EXPECT_EQ(hints[kMaxHeight], 101u + 24);
  SetWindowSizeLimits(w, {100, 50, 500, 400, 10, 20});
  FlushWindow(w);
  hints = user().Words(id, "WM_NORMAL_HINTS");
  EXPECT_EQ(hints[kMinWidth], 100u);
  EXPECT_EQ(hints[kMaxHeight], 400u + 24);
  EXPECT_EQ(hints[kStepX], 10u);
  EXPECT_EQ(hints[kBaseWidth], 3u);
  EXPECT_EQ(hints[kBaseHeight], 1u + 24);
}

TEST_F(X11Test, ScaleEnlargesWindowsAndKeepsFigures) {
  setenv("XW_SCALE", "1.5", 1);
  Start();
  unsetenv("XW_SCALE");
  WindowRef w = Show("Scaled", {100, 100, 301, 250});
  const xcb_window_t id = user().Find("Scaled");
  const auto where = user().Where(id);
  EXPECT_EQ(where.width, 302);  // 301.5 rounds up
  EXPECT_EQ(where.height, 261);
  EXPECT_EQ(ScreenWidth(), 683);
  EXPECT_EQ(GetWindowBounds(w, kWindowContentRgn), (Rect{100, 100, 301, 250}));
  SetWindowSizeLimits(w, {100, 50, 500, 400, 5, 4});
  FlushWindow(w);
  // A step of 5 would be 7.5 pixels, which no hint can say; 4 is 6.
  const auto hints = user().Words(id, "WM_NORMAL_HINTS");
  EXPECT_EQ(hints[kStepX], 1u);
  EXPECT_EQ(hints[kStepX + 1], 6u);
}

// A program that publishes the desktop's settings, as a settings daemon does.
class SettingsDaemon : public Peer {
 public:
  void Publish(int dpi) {
    std::string bytes("\0\0\0\0\0\0\0\0\1\0\0\0\0\0\7\0Xft/DPI\0\0\0\0\0", 28);
    const xcb_atom_t settings = Atom("_XSETTINGS_SETTINGS");
    Put(window(), settings, {"_XSETTINGS_SETTINGS", 8, bytes + Word(uint32_t(dpi) * 1024)});
    Sync();
  }
  void Start(int dpi) {
    Publish(dpi);
    Own("_XSETTINGS_S0");
    support::SendMessage(connection(), root(), XCB_EVENT_MASK_STRUCTURE_NOTIFY, root(),
                         Atom("MANAGER"), {0, Atom("_XSETTINGS_S0"), window()});
    Sync();
  }
};

// Windows that are open take a new scale: the same logical size, in the same place, drawn again.
TEST_F(X11Test, OpenWindowsTakeANewScale) {
  StartServer("openbox", {});
  SettingsDaemon daemon;
  daemon.Start(96);
  StartSession();
  WindowRef w = Show("Scaled", {100, 124, 300, 224});
  SetWindowSizeLimits(w, {100, 50, 400, 300, 10, 10});
  Settle();
  const xcb_window_t id = user().Find("Scaled");
  const size_t drawn = Count(kEventClassWindow, kEventWindowDrawContent);
  for (int dpi : {192, 144, 120, 96}) {
    SCOPED_TRACE(dpi);
    daemon.Publish(dpi);
    EXPECT_TRUE(RunUntil([&] { return w->surface.scale == dpi / 96.0; }));
    Settle();
    EXPECT_EQ(w->content.width(), 200);
    EXPECT_EQ(w->content.height(), 100);
    const auto at = user().Where(id);
    EXPECT_EQ(at.width, 200 * dpi / 96);
    EXPECT_EQ(at.height, 124 * dpi / 96);
    EXPECT_NEAR(at.x, 100, 1);
    EXPECT_NEAR(at.y, 100, 1);
    EXPECT_EQ(user().Look().at(at.x + at.width - 1, at.y + at.height - 1), 0x3366CCu);
    EXPECT_EQ(user().Words(id, "WM_NORMAL_HINTS")[kMinWidth], 100u * unsigned(dpi) / 96);
    // The pointer is where it is seen: at 125 % pixel 49 begins at 61.25 and is drawn from 61.
    const int x = DeviceEdge(49, dpi / 96.0), y = DeviceEdge(24 + 50, dpi / 96.0);
    user().Move(at.x + x, at.y + y);
    EXPECT_TRUE(RunUntil([&] {
      const Event* e = Last(kEventClassMouse, kEventMouseMoved);
      return e != nullptr && e->mouse.where.x == w->content.left + 49 &&
             e->mouse.where.y == w->content.top + 50;
    }));
  }
  EXPECT_GE(Count(kEventClassWindow, kEventWindowDrawContent), drawn + 3);
}

TEST_F(X11Test, SettingsAreFollowedWhoeverPublishesThem) {
  StartServer("", {});
  SettingsDaemon first, second;
  first.Start(192);
  StartSession();
  Show("First", {50, 80, 250, 180});
  EXPECT_EQ(ScreenWidth(), 512);
  first.Publish(144);
  EXPECT_TRUE(RunUntil([] { return ScreenWidth() == 683; }));
  second.Start(384);
  EXPECT_TRUE(RunUntil([] { return ScreenWidth() == 256; }));
  first.Publish(96);  // it is asked no more
  Settle();
  EXPECT_EQ(ScreenWidth(), 256);
  // One that goes away, to be started again perhaps, changes nothing.
  second.Die();
  Settle();
  EXPECT_EQ(ScreenWidth(), 256);
}

TEST_F(X11Test, MonitorsAreScreensWithTheMainOneFirst) {
  StartServer("", {});
  xcb_connection_t* c = user().connection();
  // The library's own call cannot send this request, so it is spelled out.
  auto define = [&](const char* name, int16_t left, uint16_t width, bool primary) {
    struct {
      uint8_t major, minor;
      uint16_t length;
      xcb_window_t window;
      xcb_randr_monitor_info_t info;
    } request{};
    request.minor = XCB_RANDR_SET_MONITOR;
    request.window = user().root();
    request.info.name = user().Atom(name);
    request.info.primary = primary;
    request.info.x = left;
    request.info.width = width;
    request.info.height = 768;
    const xcb_protocol_request_t how = {1, &xcb_randr_id, XCB_RANDR_SET_MONITOR, 1};
    iovec parts[3] = {};
    parts[2] = {&request, sizeof request};
    xcb_send_request(c, 0, parts + 2, &how);
    user().Sync();
  };
  define("left", 0, 400, false);
  define("right", 400, 624, true);
  StartSession();
  Screen screens[4];
  // The server's own monitor stays beside the two.
  ASSERT_EQ(kX11Display.screens(screens, 4), 3);
  EXPECT_EQ(screens[0].bounds, (Rect{400, 0, 1024, 768}));
  const Rect left{0, 0, 400, 768};
  EXPECT_TRUE(screens[1].bounds == left || screens[2].bounds == left);
  EXPECT_EQ(kX11Display.screens(screens, 1), 3);
  EXPECT_EQ(ScreenWidth(), 624);
}

// What the pointer looks like, asked of the server.
TEST_F(X11Test, CursorsAreTheThemesOrThePrograms) {
  setenv("XW_SCALE", "2", 1);
  Start();
  unsetenv("XW_SCALE");
  WindowRef w = Show("Cursor", {50, 80, 250, 180});
  Cursor picture;
  picture.width = picture.height = 16;
  picture.hot_x = 3;
  picture.hot_y = 4;
  picture.pixels.assign(256, 0);
  picture.pixels[1] = 0xFFFF0000;
  picture.pixels[2] = 0x80FF8000;
  user().Move(200, 260);
  xcb_connection_t* c = user().connection();
  auto look = [&] {
    free(xcb_xfixes_query_version_reply(c, xcb_xfixes_query_version(c, 4, 0), nullptr));
    auto* r = xcb_xfixes_get_cursor_image_reply(c, xcb_xfixes_get_cursor_image(c), nullptr);
    std::vector<uint32_t> out = {r->width, r->height, r->xhot, r->yhot};
    const uint32_t* pixels = xcb_xfixes_get_cursor_image_cursor_image(r);
    out.insert(out.end(), pixels, pixels + r->width * r->height);
    free(r);
    return out;
  };
  auto shown = [&](CursorRef cursor) {
    w->cursor = cursor;
    kX11Display.update(w, kUpdateCursor);
    kX11Display.flush(true);
    return look();
  };
  const auto ours = shown(&picture);
  ASSERT_EQ(ours.size(), 4u + 32 * 32);
  EXPECT_EQ(ours[0], 32u);
  EXPECT_EQ(ours[2], 6u);
  EXPECT_EQ(ours[3], 8u);
  // Twice the size, each pixel a square; colours multiplied by their alpha.
  for (size_t at : {2u, 3u, 32u + 2, 32u + 3}) EXPECT_EQ(ours[4 + at], 0xFFFF0000u);
  for (size_t at : {4u, 5u, 32u + 4, 32u + 5}) EXPECT_EQ(ours[4 + at], 0x80804000u);
  EXPECT_EQ(ours[4 + 64 + 2], 0u);
  const auto arrow = shown(nullptr);
  Cursor shape;
  shape.shape = Cursor::kCrosshair;
  const auto cross = shown(&shape);
  EXPECT_NE(arrow, ours);
  EXPECT_NE(arrow, cross);
  // During a grab its cursor shows, whatever the window's is.
  kX11Display.grab(w, GrabMode::kProgram, &picture);
  EXPECT_EQ(look(), ours);
  kX11Display.grab(nullptr, GrabMode::kNone, nullptr);
  kX11Display.flush(true);
  EXPECT_EQ(look(), cross);
  // It follows the scale.
  x11::x.scale = 1;
  EXPECT_EQ(shown(&picture)[0], 16u);
  w->cursor = nullptr;
  kX11Display.destroy_cursor(&picture);
}

TEST_F(X11Test, TheEndOfTheServerIsReportedOnce) {
  Start();
  Show("Doomed", {50, 80, 250, 180});
  server().Kill();
  int lost = 0;
  for (int i = 0; i < 10; ++i) {
    RawEvent raw;
    while (kX11Display.next_event(&raw)) lost += raw.type == RawEvent::kDisplayLost;
  }
  EXPECT_EQ(lost, 1);
  // Everything else stays harmless.
  WindowRef w = WindowList().front();
  SetWindowTitle(w, "Gone");
  FlushWindow(w);
  EXPECT_EQ(CreateNewWindow(kDocumentWindowClass, kAllBoxes, {0, 0, 9, 9}), nullptr);
}

}  // namespace
}  // namespace x11_test

// Opening and closing the session.
#include <gtest/gtest.h>
#include <unistd.h>

#include <climits>
#include <csignal>
#include <cstdlib>
#include <cstring>

#include "platform/events/targets.h"
#include "platform/loop/receive.h"
#include "platform/menus/menus.h"
#include "tests/toolkit/stage.h"
#include "toolkit/core/alive.h"
#include "toolkit/core/post.h"
#include "toolkit/core/state.h"
#include "toolkit/events/session.h"

namespace {

TEST(Session, SetsItsGlobals) {
  setenv("XW_SCREEN", "1600x900", 1);
  stage::Open();
  EXPECT_STREQ(SessionName, "stage");
  EXPECT_STREQ(SessionTitle, "Stage");
  EXPECT_EQ(OSversion, 0x0300);
  EXPECT_EQ(XW_SCREENX, 1600);
  EXPECT_EQ(XW_SCREENY, 900);
  EXPECT_DOUBLE_EQ(XW_SCREENRES, 72 / 25.4);
  EXPECT_EQ(CL_HILIGHT, 0xD77538);
  EXPECT_EQ(CL_HILIGHTTEXT, 0xFFFFFF);
  for (void* opaque : {MainQueue, MainTarget, XW_ColorSpace, TextMeasContext, Pserial,
                       XW_DockedWindowsGroup, static_cast<void*>(W_Root)})
    EXPECT_NE(opaque, nullptr);
  const float identity[6] = {1, 0, 0, 1, 0, 0};
  EXPECT_EQ(memcmp(TextCTM, identity, sizeof identity), 0);
  EXPECT_EQ(W_Start, nullptr);
  EXPECT_EQ(W_Root->kind, 0);
  char folder[PATH_MAX];
  EXPECT_STREQ(getcwd(folder, sizeof folder), "/");
}

// Every call that draws, and the line that it traces.
const struct {
  void (*call)();
  const char* line;
} kDrawing[] = {
    {[] { XwClip(1, 2, 30, 40); }, "XwClip 1 2 30 40"},
    {[] { XwSetDashes(nullptr, 1, 2, 3); }, "XwSetDashes 1 2 3"},
    {[] { XwClear(1, 2, 3, 4); }, "XwClear 1 2 3 4"},
    {[] { XwBox(1, 2, 3, 4, 5); }, "XwBox 1 2 3 4 5\ndraw: XwSetColor 5\ndraw: XwFillRect 1 2 3 4"},
    {[] { XwDrawRect(1, 2, 3, 4); }, "XwDrawRect 1 2 3 4"},
    {[] { XwDrawLine(1, 2, 3, 4); }, "XwDrawLine 1 2 3 4"},
    {[] { XwDrawLines(nullptr, 3); }, "XwDrawLines 3"},
    {[] { XwFillPolygon(nullptr, 3); }, "XwFillPolygon 3"},
    {[] { XwDrawEllipse(1, 2, 3, 4); }, "XwDrawEllipse 1 2 3 4"},
    {[] { XwFillEllipse(1, 2, 3, 4); }, "XwFillEllipse 1 2 3 4"},
    {[] { XwDrawBevel(1, 2, 3, 4, 1); }, "XwDrawBevel 1 2 3 4 1"},
    {[] { XwDrawHole(1, 2, 3, 4, -1); }, "XwDrawHole 1 2 3 4 -1"},
    {[] { XwDrawBorder(); }, "XwDrawBorder"},
    {[] { XwDrawSeparator(1, 2, 3, 0); }, "XwDrawSeparator 1 2 3 0"},
    {[] { XwDrawTable(1, 2, 3, 4, nullptr); }, "XwDrawTable 1 2 3 4"},
    {[] { XwDrawProgress(1, 2, 9, 4, 5); }, "XwDrawProgress 1 2 9 4 5"},
    {[] { XwDrawText(nullptr, 0, 3, 4, 50, 20, "text", 0, -1); }, "XwDrawText 0 3 4 50 20 0 -1"},
    {[] { XwDrawTextUtf8(nullptr, 0, 3, 4, 50, 20, "text", 0, -1); },
     "XwDrawTextUtf8 0 3 4 50 20 0 -1"},
    {[] { XwRoundBox(1, 2, 3, 4, 5, 6, 7); }, "XwRoundBox 1 2 3 4 5 6 7"},
    {[] { XwFillPath(nullptr, 1, 2); }, "XwFillPath 1 2"},
    {[] { XwStrokePath(nullptr, 1, 2, 3); }, "XwStrokePath 1 3"},
    {[] { XwDrawIcon(nullptr, 1, 2, 3, 4, 5, -1); }, "XwDrawIcon 1 2 3 4 5 -1"},
    {[] { XwPutImage(1, 2, 3, 4, 5, 6, nullptr); }, "XwPutImage 1 2 3 4 5 6"},
    {[] { XwPutImageData(1, 2, 3, 4, nullptr); }, "XwPutImageData 1 2 3 4"},
    {[] { XwPutImageScaled(1, 2, 3, 4, nullptr, 5, 6); }, "XwPutImageScaled 1 2 3 4 5 6"},
    {[] { XwSync(); }, "XwSync"},
};

// XW_TRACE is read at the start of the process.
TEST(Session, TracesWhatItNames) {
  const char* const name = "/proc/self/exe";
  char path[PATH_MAX] = {};
  ASSERT_GT(readlink(name, path, sizeof path - 1), 0);
  if (getenv("XW_TRACE")) {
    XwWindow* w = stage::OpenMain();
    XwSet(w);
    for (const auto& drawing : kDrawing) drawing.call();
    exit(0);
  }
  const struct {
    const char* subjects;
    const char* has;
    const char* lacks;
  } rows[] = {{"draw", "draw: XwSet ", "events:"},
              {"events,windows", "windows: create top-level 100 100 300 200\n", "draw:"},
              {"windows,events", "events: 769\n", "draw:"}};
  for (const auto& row : rows) {
    const std::string command = std::string("XW_TRACE=") + row.subjects + " '" + path +
                                "' --gtest_filter=Session.TracesWhatItNames 2>&1";
    FILE* out = popen(command.c_str(), "r");
    std::string text;
    char piece[512];
    while (fgets(piece, sizeof piece, out)) text += piece;
    pclose(out);
    EXPECT_NE(text.find(row.has), std::string::npos) << row.subjects << ": " << text;
    EXPECT_EQ(text.find(row.lacks), std::string::npos) << row.subjects << ": " << text;
    for (const auto& drawing : kDrawing) {
      const bool traced =
          text.find(std::string("draw: ") + drawing.line + "\n") != std::string::npos;
      EXPECT_EQ(traced, row.subjects == std::string("draw")) << drawing.line;
    }
  }
}

TEST(Session, FollowsTheScreen) {
  XwWindow* main = stage::OpenMain();
  XwSetSizes(main, 50, 50, 0, 0, 0, 0);
  const struct {
    int width, height;
    double scale;
    int screen_x, screen_y;
  } rows[] = {{1280, 1024, 2, 640, 512},
              {1000, 500, 2, 500, 250},
              {1000, 500, 1.5, 667, 333},
              {1280, 1024, 1, 1280, 1024}};
  for (const auto& row : rows) {
    stage::input::ChangeScreen(row.width, row.height, row.scale);
    stage::Settle();
    EXPECT_EQ(XW_SCREENX, row.screen_x);
    EXPECT_EQ(XW_SCREENY, row.screen_y);
    EXPECT_EQ(main->width, 300);
    // A window without a maximum of its own is limited by the screen as it is now.
    stage::input::Configure(stage::Native(main), {100, 100, 1800, 1500});
    stage::Settle();
    EXPECT_EQ(main->width, row.screen_x);
    EXPECT_EQ(main->height, row.screen_y);
    XwMove(main, 100, 100, 300, 200);
    XwWindow* whole = XwCreate(0, 0, 0, 0, 0, stage::Record);
    EXPECT_EQ(whole->width, row.screen_x);
    XwDestroy(whole);
    stage::Settle();
  }
}

TEST(Session, LoadsTheStandardFonts) {
  stage::Open();
  const struct {
    XwFont* font;
    int size, style;
  } rows[] = {{XWF_NORMAL, 13, 0}, {XWF_BOLD, 13, 1},  {XWF_NARROW, 13, 32}, {XWF_VIEW, 12, 0},
              {FT_SMALL, 11, 0},   {FT_BUTTON, 13, 0}, {FT_ALERT, 17, 0}};
  for (const auto& row : rows) {
    ASSERT_NE(row.font, nullptr);
    EXPECT_EQ(row.font->size, row.size);
    EXPECT_EQ(row.font->style, row.style);
  }
}

TEST(Session, PreferencesAreOfferedUnlessTheProgramHasNone) {
  stage::Open(3);
  EXPECT_TRUE(platform::PreferencesCommandOffered());
  platform::SetPreferencesCommand(false);
}

TEST(Session, APreferencesRequestArrivesEvenWhereNoneIsOffered) {
  stage::Open(4);
  EXPECT_FALSE(platform::PreferencesCommandOffered());
  stage::Main();
  stage::input::Preferences();
  stage::RunLoop();
  EXPECT_EQ(stage::Trace(), "main 797");
}

TEST(Session, EndDropsWhatIsQueuedAndStopsTimers) {
  XwWindow* w = stage::OpenMain();
  XwTimer(w, 5, 10);
  for (int i = 0; i < 100; ++i) XwSendEvent(w, 1000, i, 0, 0);
  stage::input::OpenFile("/a");
  XwEndSession();
  EXPECT_EQ(XW_ColorSpace, nullptr);
  EXPECT_EQ(Timers[0].value, 5);
  platform::Event e;
  stage::input::Step(1);
  EXPECT_FALSE(platform::ReceiveNextEvent(0, &e) && e.cls == kToolkitEventClass);
  if (e.cls) SendEventToEventTarget(&e, platform::GetEventDispatcherTarget());
  // What a program still does on its way out harms nobody.
  XwTimer(w, 5, 10);
  XwDestroy(w);
}

TEST(Session, ASecondOneInTheProcessWorksWhole) {
  for (int round = 0; round < 2; ++round) {
    XwWindow* w = stage::OpenMain();
    EXPECT_EQ(W_Start, w);
    EXPECT_EQ(w->y - GetWindowBounds(stage::Native(w), platform::kWindowStructureRgn).top,
              platform::GetMBarHeight());
    stage::input::Click(150, 150, 1);
    stage::input::OpenFile("/a");
    stage::RunLoop();
    EXPECT_EQ(stage::Trace(), "main 770 main 771 main 776 main 798");
    // All this is left behind.
    stage::Sub(w, "sub", 10, 10, 20, 20);
    XwTimer(w, 1, 10);
    XwSendEvent(w, 1000, 0, 0, 0);
    XwGrabPointer(w, 16);
    XwPush(w);
    DropSession();
    for (const XwWindow* none : {W_Root, W_Start, W_End, XW, GrabWindow, Inp.window, Inp.focus})
      EXPECT_EQ(none, nullptr);
    EXPECT_EQ(XStackCount, 0);
    EXPECT_EQ(Timers[0].timer, nullptr);
    EXPECT_TRUE(platform::GetMainEventQueue()->empty());
    EXPECT_FALSE(IsLive(w));
  }
}

TEST(SessionDeath, ADisplayThatCannotBeOpenedIsSaidInOneLine) {
  setenv("XW_DISPLAY", "nowhere", 1);
  EXPECT_EXIT(XwSession("stage", "Stage", 7), testing::ExitedWithCode(1),
              "^stage: cannot open the display nowhere\n$");
}

void EndByRequest(bool with_window) {
  stage::Open();
  if (with_window) XwDestroy(stage::Main());
  kill(getpid(), SIGTERM);
  stage::RunLoop();
  _exit(0);
}

TEST(SessionDeath, TheRequestToQuitEndsAProgramWithoutAMainWindow) {
  const std::string socket = testing::TempDir() + "session-" + std::to_string(getpid());
  setenv("XW_INSPECT", socket.c_str(), 1);
  EXPECT_EXIT(EndByRequest(false), testing::KilledBySignal(SIGTERM), "");
  EXPECT_EXIT(EndByRequest(true), testing::KilledBySignal(SIGTERM), "");
  EXPECT_EQ(access(socket.c_str(), F_OK), -1);
  EXPECT_EXIT((stage::Open(), exit(0)), testing::ExitedWithCode(0), "");
  EXPECT_EQ(access(socket.c_str(), F_OK), -1) << "the inspector's socket goes too";
}

TEST(Session, TheRequestToQuitGoesToTheMainWindow) {
  stage::OpenMain();
  stage::Top("other", 500, 100, 50, 50);
  stage::Settle();
  kill(getpid(), SIGTERM);
  stage::RunLoop();
  stage::input::Quit();
  stage::RunLoop();
  EXPECT_EQ(stage::Trace(), "main 796 main 796");
}

TEST(Session, StringsWithALengthByte) {
  unsigned char longest[256];
  memset(longest, 'a', sizeof longest);
  longest[0] = 255;
  EXPECT_EQ(strlen(P2CSTR(longest)), 254u);
  EXPECT_STREQ(P2CSTR(reinterpret_cast<const unsigned char*>("\3abcd")), "abc");
  EXPECT_STREQ(P2CSTR(reinterpret_cast<const unsigned char*>("")), "");
  EXPECT_STREQ(P2CSTR(nullptr), "");
  EXPECT_EQ(P2CSTR(nullptr), P2CSTR(longest));
  std::string text(300, 'b');
  EXPECT_EQ(C2PSTR(text.c_str())[0], 255);
  EXPECT_EQ(C2PSTR(text.c_str())[255], 'b');
  EXPECT_EQ(C2PSTR(nullptr)[0], 0);
  EXPECT_EQ(memcmp(C2PSTR("xy"), "\2xy", 3), 0);
}

}  // namespace

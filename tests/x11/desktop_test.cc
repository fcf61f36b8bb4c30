// Requests from other programs of the session: the message bus, addresses of files.
#include <signal.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

#include "platform/desktop/application.h"
#include "platform/desktop/uris.h"
#include "platform/display/x11/x.h"
#include "platform/loop/start.h"
#include "tests/x11/bus.h"

namespace x11_test {
namespace {

using namespace platform;

TEST(Uris, OnlyLocalFilesHavePaths) {
  struct Row {
    const char *uri, *path;
  };
  constexpr Row kRows[] = {
      {"file:///tmp/a.txt", "/tmp/a.txt"},
      {"file://localhost/tmp/a", "/tmp/a"},
      {"file:///a%20b%25%c3%A9", "/a b%\xc3\xa9"},
      {"file:///", "/"},
      {"file://elsewhere.example/tmp/a", ""},
      {"file:/tmp/a", ""},
      {"file://", ""},
      {"http://localhost/tmp/a", ""},
      {"/tmp/a", ""},
      {"file:///a%", ""},
      {"file:///a%2", ""},
      {"file:///a%zz", ""},
      {"file:///a%00b", ""},
      {"", ""},
  };
  for (const Row& row : kRows) EXPECT_EQ(LocalPathOfUri(row.uri), row.path) << row.uri;
  using Paths = std::vector<std::string>;
  EXPECT_EQ(PathsAndAddresses("#c\r\n\r\nfile:///b\r\nhttp://a/b\nfile:///c\nno address"),
            (Paths{"/b", "http://a/b", "/c"}));
  EXPECT_EQ(PathsAndAddresses("#only"), Paths());
}

TEST(BusName, ComesFromTheSession) {
  struct Row {
    const char *session, *name, *path;
  };
  constexpr Row kRows[] = {
      {"Console", "org.quorvik.Console", "/org/quorvik/Console"},
      {"org.example.Thing", "org.example.Thing", "/org/example/Thing"},
      {"My 2nd App!", "org.quorvik.My2ndApp", "/org/quorvik/My2ndApp"},
      {"2.5", "org.quorvik.Program", "/org/quorvik/Program"},
      {"..a..", "org.quorvik.a", "/org/quorvik/a"},
      {"", "org.quorvik.Program", "/org/quorvik/Program"},
  };
  for (const Row& row : kRows) {
    EXPECT_EQ(ApplicationBusName(row.session), row.name);
    EXPECT_EQ(ApplicationObjectPath(ApplicationBusName(row.session)), row.path);
  }
}

TEST_F(Bus, RequestsOfOtherProgramsArrive) {
  Start("openbox");
  WindowRef w = Show("First", {200, 150, 500, 350});
  KeepRunning();
  EXPECT_EQ(Joined(), false);  // the first frame did not wait for it
  ASSERT_TRUE(WaitUntil([&] { return Joined(); }));
  WindowRef other = Show("Other", {300, 150, 500, 350});
  ASSERT_TRUE(WaitUntil([&] { return other->focused; }));
  auto call = [this](const char* method, const char* types, auto... arguments) {
    ASSERT_GE(sd_bus_call_method_async(peer(), nullptr, kName, kPath, kInterface, method, nullptr,
                                       nullptr, types, arguments...),
              0);
  };
  call("Activate", "a{sv}", 0);
  EXPECT_TRUE(WaitUntil([&] { return w->focused; }));
  call("Open", "asa{sv}", 2, "file:///tmp/a%20b", "file:///tmp/c", 0);
  EXPECT_TRUE(WaitUntil([&] { return files.size() == 1; }));
  EXPECT_EQ(files, std::vector<std::string>{"/tmp/a b\n/tmp/c"});
  // What lies elsewhere is told by its address.
  call("Open", "asa{sv}", 1, "http://localhost/x", 0);
  EXPECT_TRUE(WaitUntil([&] { return files.size() == 2; }));
  EXPECT_EQ(files.back(), "http://localhost/x");
  // No address, no list at all, other types, an action that there is none of.
  call("Open", "asa{sv}", 1, "x", 0);
  call("Open", "asa{sv}", 0, 0);
  call("Open", "s", "file:///tmp/c");
  call("ActivateAction", "u", 5);
  call("ActivateAction", "sava{sv}", "explode", 0, 0);
  call("ActivateAction", "sava{sv}", "preferences", 0, 0);
  EXPECT_TRUE(WaitUntil([&] {
    const Event* e = Last(kEventClassCommand, kEventCommandProcess);
    return e != nullptr && e->request.id == kHICommandPreferences;
  }));
  EXPECT_EQ(Count(kEventClassAppleEvent, kEventAppleEvent), 2u);  // the files
  call("ActivateAction", "sava{sv}", "quit", 0, 0);
  EXPECT_TRUE(WaitUntil([&] { return QuitRequests() == 1; }));
  EXPECT_EQ(files.size(), 2u);
}

// The user's action behind a call is what the window comes forward for.
TEST_F(Bus, ACallersTokenGoesWithTheActivation) {
  StartServer("openbox", {});
  const uint32_t mask = XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_PROPERTY_CHANGE;
  StartSession();
  WindowRef w = Show("First", {200, 150, 500, 350});
  ASSERT_TRUE(WaitUntil([&] { return Joined(); }));
  WindowRef other = Show("Other", {300, 150, 500, 350});
  ASSERT_TRUE(WaitUntil([&] { return other->focused; }));
  xcb_change_window_attributes(user().connection(), user().root(), XCB_CW_EVENT_MASK, &mask);
  user().Sync();
  // What else such a table may hold is passed over; so is a token of another type.
  const char* token = "of the caller_TIME123456789";  // a message of two whole pieces
  ASSERT_GE(sd_bus_call_method_async(peer(), nullptr, kName, kPath, kInterface, "Activate", nullptr,
                                     nullptr, "a{sv}", 4, "x", "au", 2, 1, 2, "activation-token",
                                     "u", 7, "desktop-startup-id", "s", token, "y", "s", "z"),
            0);
  uint32_t time = 0;
  std::string said;
  EXPECT_TRUE(WaitUntil([&] {
    while (auto* e = xcb_poll_for_event(user().connection())) {
      auto* m = reinterpret_cast<xcb_client_message_event_t*>(e);
      if ((e->response_type & 0x7F) == XCB_CLIENT_MESSAGE) {
        if (m->type == user().Atom("_NET_ACTIVE_WINDOW")) time = m->data.data32[1];
        if (m->format == 8) said.append(reinterpret_cast<char*>(m->data.data8), 20);
      }
      free(e);
    }
    return time != 0 && w->focused;
  }));
  EXPECT_EQ(time, 123456789u);
  EXPECT_EQ(said, "remove: ID=of\\ the\\ caller_TIME123456789" + std::string(20, '\0'));
}

// What a second start of the program does with the screen.
class SecondStart : public Bus {
 protected:
  void TearDown() override {
    if (first_ > 0) {
      kill(first_, SIGKILL);
      waitpid(first_, nullptr, 0);
    }
    Bus::TearDown();
  }
  // A start in a process of its own, on the bus and on the screen.
  void RunFirst() {
    first_ = fork();
    if (first_ == 0) {
      TakeOwnUser();
      StartSession();
      Show("First", {200, 150, 500, 350});
      WaitUntil([] { return false; }, 3000);
      _exit(0);
    }
    ASSERT_TRUE(support::Eventually([&] { return Joined(); }));
    ASSERT_NE(user().Find("First"), 0u);
    const uint32_t mask = XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY;
    xcb_change_window_attributes(user().connection(), user().root(), XCB_CW_EVENT_MASK, &mask);
    user().Sync();
  }
  // Windows that came onto the screen since.
  int Mapped() {
    user().Sync();
    while (auto* e = xcb_poll_for_event(user().connection())) {
      mapped_ += (e->response_type & 0x7F) == XCB_MAP_NOTIFY;
      free(e);
    }
    return mapped_;
  }
  // Windows as a program makes them, one docked to the other.
  WindowRef ShowWithDocked() {
    WindowRef w = CreateNewWindow(kDocumentWindowClass, kAllBoxes, {200, 150, 500, 350});
    WindowRef docked = CreateNewWindow(kSimpleWindowClass, 0, {510, 150, 560, 350});
    const WindowGroupRef group = CreateWindowGroup(kWindowGroupAttrMoveTogether);
    for (WindowRef each : {w, docked}) {
      SetWindowGroup(each, group);
      ShowWindow(each);
    }
    SelectWindow(w);
    return w;
  }
  pid_t first() const { return first_; }

 private:
  pid_t first_ = 0;
  int mapped_ = 0;
};

TEST_F(SecondStart, ShowsNothingAndIsAskedToQuit) {
  StartServer("", {});
  RunFirst();
  StartSession();
  KeepRunning();
  WindowRef w = ShowWithDocked();
  EXPECT_TRUE(WaitUntil([&] { return QuitRequests() == 1; }));
  EXPECT_TRUE(IsWindowVisible(w));
  EXPECT_EQ(Mapped(), 0);
  // This one goes on: whatever it is about may be seen after all.
  EXPECT_TRUE(WaitUntil([&] { return Mapped() == 2; }));
  EXPECT_EQ(QuitRequests(), 1u);
}

TEST_F(SecondStart, IsLikeAnyOtherWhereTheFirstDoesNotAnswer) {
  StartServer("", {});
  RunFirst();
  kill(first(), SIGSTOP);
  StartSession();
  KeepRunning();
  ShowWithDocked();
  EXPECT_TRUE(WaitUntil([&] { return Mapped() == 2; }));
  // That it answers much later makes no difference any more.
  kill(first(), SIGCONT);
  PassBusMarker();
  EXPECT_EQ(QuitRequests(), 0u);
}

TEST_F(SecondStart, IsLikeAnyOtherWithoutABusOrWithAnother) {
  StartServer("", {});
  RunFirst();
  KeepRunning();
  for (const char* address : {"", "unix:path=/nonexistent/bus"}) {
    setenv("DBUS_SESSION_BUS_ADDRESS", address, 1);
    const int before = Mapped();
    StartSession();
    ShowWithDocked();
    EXPECT_TRUE(WaitUntil([&] { return Mapped() == before + 2; }));
    FinishPlatform();
  }
  EXPECT_EQ(QuitRequests(), 0u);
}

TEST_F(SecondStart, IsTheFirstWhenThatOneHasEnded) {
  StartServer("", {});
  RunFirst();
  kill(first(), SIGKILL);
  xcb_connection_t* c = user().connection();
  const xcb_atom_t name = user().Atom("_XW_PROGRAM_org.quorvik.Session");
  ASSERT_TRUE(support::Eventually([&] {
    x11::Reply<xcb_get_selection_owner_reply_t> owner(
        xcb_get_selection_owner_reply(c, xcb_get_selection_owner(c, name), nullptr));
    return owner && owner->owner == XCB_NONE && !Joined();
  }));
  StartSession();
  EXPECT_FALSE(x11::OthersRun());
  ShowWithDocked();
  EXPECT_TRUE(WaitUntil([&] { return Mapped() == 2; }));
  // Who asks what is behind the name is told that there is nothing.
  const xcb_window_t asks = xcb_generate_id(c);
  xcb_create_window(c, 0, asks, user().root(), 0, 0, 1, 1, 0, XCB_WINDOW_CLASS_INPUT_ONLY, 0, 0,
                    nullptr);
  xcb_convert_selection(c, asks, name, XCB_ATOM_STRING, XCB_ATOM_STRING, XCB_CURRENT_TIME);
  user().Sync();
  bool refused = false;
  EXPECT_TRUE(WaitUntil([&] {
    while (auto* e = xcb_poll_for_event(c)) {
      auto* n = reinterpret_cast<xcb_selection_notify_event_t*>(e);
      refused |= (e->response_type & 0x7F) == XCB_SELECTION_NOTIFY && n->selection == name &&
                 n->property == XCB_NONE;
      free(e);
    }
    return refused;
  }));
}

TEST_F(Bus, ASecondStartHandsOverToTheFirst) {
  StartServer("", {});
  // The first start, in a process of its own, says with its exit that it was brought forward.
  const pid_t first = fork();
  if (first == 0) {
    TakeOwnUser();
    StartSession();
    WindowRef w = Show("First", {200, 150, 500, 350});
    _exit(w != nullptr && WaitUntil([&] { return w->focused; }, 1000) ? 7 : 1);
  }
  ASSERT_TRUE(support::Eventually([&] { return Joined(); }));
  StartSession();
  KeepRunning();
  Show("Second", {200, 150, 500, 350});
  EXPECT_TRUE(WaitUntil([&] { return QuitRequests() == 1; }));
  int status = 0;
  ASSERT_EQ(waitpid(first, &status, 0), first);
  EXPECT_EQ(WEXITSTATUS(status), 7);
}

TEST_F(Bus, ABusThatGoesAwayIsNotMissed) {
  setenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent/bus", 1);
  Start();
  ASSERT_NE(Show("First", {200, 150, 500, 350}), nullptr);
  WaitUntil([] { return false; }, 5);
  EXPECT_EQ(user().Look().at(210, 160), 0x3366CCu);
}

// It takes the connection and never says a word.
TEST_F(Bus, ABusThatIsSilentHoldsUpNothing) {
  const std::string path = "/tmp/silent-bus." + std::to_string(getpid());
  const int fd = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  strncpy(address.sun_path, path.c_str(), sizeof address.sun_path - 1);
  ASSERT_EQ(bind(fd, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
  ASSERT_EQ(listen(fd, 4), 0);
  setenv("DBUS_SESSION_BUS_ADDRESS", ("unix:path=" + path).c_str(), 1);
  setenv("DBUS_SYSTEM_BUS_ADDRESS", ("unix:path=" + path).c_str(), 1);
  Start();
  ASSERT_NE(Show("First", {200, 150, 500, 350}), nullptr);
  WaitUntil([] { return false; }, 5);
  EXPECT_EQ(user().Look().at(210, 160), 0x3366CCu);
  // Both connections were made, and end with the program.
  for (int i = 0; i < 2; ++i) {
    const int peer = accept4(fd, nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK);
    EXPECT_GE(peer, 0) << i;
    close(peer);
  }
  unlink(path.c_str());
  close(fd);
}

}  // namespace
}  // namespace x11_test

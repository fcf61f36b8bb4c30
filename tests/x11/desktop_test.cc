// Requests from other programs of the session: the message bus, addresses of files.
#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>

#include "platform/desktop/application.h"
#include "platform/desktop/uris.h"
#include "tests/x11/session.h"

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
  EXPECT_EQ(FirstLocalPath("#c\r\n\r\nfile:///b\r\nfile:///c"), "/b");
  EXPECT_EQ(FirstLocalPath("http://a/b\r\nfile:///c"), "");
  EXPECT_EQ(FirstLocalPath("#only"), "");
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

// A bus of the test's own.
class Bus : public X11Test {
 protected:
  void SetUp() override {
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    bus_ = fork();
    if (bus_ == 0) {
      close(ends[0]);
      prctl(PR_SET_PDEATHSIG, SIGKILL);
      const std::string print = "--print-address=" + std::to_string(ends[1]);
      execlp("dbus-daemon", "dbus-daemon", "--session", "--nofork", print.c_str(), nullptr);
      _exit(127);
    }
    close(ends[1]);
    char address[512] = {};
    const ssize_t n = read(ends[0], address, sizeof address - 1);
    close(ends[0]);
    ASSERT_GT(n, 0);
    address[strcspn(address, "\n")] = 0;
    setenv("DBUS_SESSION_BUS_ADDRESS", address, 1);
  }
  void TearDown() override {
    X11Test::TearDown();
    if (bus_ > 0) {
      kill(bus_, SIGTERM);
      waitpid(bus_, nullptr, 0);
    }
  }
  // Without a handler a request to quit ends the process.
  void KeepRunning() {
    static constexpr EventKind kQuit = {kEventClassAppleEvent, kEventAppleEvent};
    InstallEventHandler(
        GetApplicationEventTarget(), [](HandlerCall*, Event*, void*) -> OSStatus { return noErr; },
        &kQuit, 1, nullptr);
  }
  // The loop as it runs in a program, with a wait: the bus is joined there.
  bool WaitUntil(const std::function<bool()>& done, int turns = 500) {
    for (int i = 0; i < turns; ++i) {
      Event e;
      if (ReceiveNextEvent(0.02, &e)) {
        events.push_back(e);
        if (e.payload != nullptr) files.push_back(static_cast<const char*>(e.payload));
        SendEventToEventTarget(&e, GetEventDispatcherTarget());
      }
      if (done()) return true;
    }
    return done();
  }
  // Another program's call; it runs on while the loop does.
  void Call(const std::string& method, const std::string& arguments) {
    const std::string command =
        "dbus-send --session --type=method_call --dest=org.quorvik.Session "
        "/org/quorvik/Session org.freedesktop.Application." +
        method + " " + arguments;
    ASSERT_EQ(system(command.c_str()), 0);
  }
  bool Joined() {
    return system(
               "dbus-send --session --print-reply --dest=org.freedesktop.DBus / "
               "org.freedesktop.DBus.GetNameOwner string:org.quorvik.Session >/dev/null 2>&1") == 0;
  }
  std::vector<std::string> files;

 private:
  pid_t bus_ = 0;
};

TEST_F(Bus, RequestsOfOtherProgramsArrive) {
  Start("openbox");
  WindowRef w = Show("First", {200, 150, 500, 350});
  KeepRunning();
  EXPECT_EQ(Joined(), false);  // the first frame did not wait for it
  ASSERT_TRUE(WaitUntil([&] { return Joined(); }));
  WindowRef other = Show("Other", {300, 150, 500, 350});
  ASSERT_TRUE(WaitUntil([&] { return other->focused; }));
  Call("Activate", "dict:string:string:");
  EXPECT_TRUE(WaitUntil([&] { return w->focused; }));
  Call("Open", "array:string:file:///tmp/a%20b,file:///tmp/c dict:string:string:");
  EXPECT_TRUE(WaitUntil([&] { return files.size() == 1; }));
  EXPECT_EQ(files, std::vector<std::string>{"/tmp/a b"});
  Call("Open", "array:string:http://localhost/x dict:string:string:");
  Call("ActivateAction", "string:quit array:string: dict:string:string:");
  EXPECT_TRUE(WaitUntil([&] {
    const Event* e = Last(kEventClassAppleEvent, kEventAppleEvent);
    return e != nullptr && e->request.id == kAEQuitApplication;
  }));
  EXPECT_EQ(files.size(), 1u);
}

TEST_F(Bus, ASecondStartHandsOverToTheFirst) {
  StartServer("", {});
  // The first start, in a process of its own, says with its exit that it was brought forward.
  const pid_t first = fork();
  if (first == 0) {
    StartSession();
    WindowRef w = Show("First", {200, 150, 500, 350});
    _exit(w != nullptr && WaitUntil([&] { return w->focused; }, 1000) ? 7 : 1);
  }
  ASSERT_TRUE(support::Eventually([&] { return Joined(); }));
  StartSession();
  KeepRunning();
  Show("Second", {200, 150, 500, 350});
  EXPECT_TRUE(WaitUntil([&] {
    const Event* e = Last(kEventClassAppleEvent, kEventAppleEvent);
    return e != nullptr && e->request.id == kAEQuitApplication;
  }));
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

}  // namespace
}  // namespace x11_test

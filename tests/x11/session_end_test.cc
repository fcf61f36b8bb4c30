// How a session begins and ends for a program: the launcher's token, the managers of sessions and
// of the machine, signals, and a server that goes away.
#include <fcntl.h>

#include "tests/x11/bus.h"
#include "tests/x11/reports.h"
#include "toolkit/xw.h"

namespace x11_test {
namespace {

// --- The beginning

class Startup : public X11Test {
 protected:
  void SetUp() override {
    StartServer("", {});
    const uint32_t mask = XCB_EVENT_MASK_PROPERTY_CHANGE;
    xcb_change_window_attributes(user().connection(), user().root(), XCB_CW_EVENT_MASK, &mask);
    user().Sync();
  }
  // What launchers hear: the messages, each from its beginning to its zero.
  std::vector<std::string> Heard() {
    user().Sync();
    while (auto* e = xcb_poll_for_event(user().connection())) {
      auto* m = reinterpret_cast<xcb_client_message_event_t*>(e);
      if ((e->response_type & 0x7F) == XCB_CLIENT_MESSAGE && m->format == 8) {
        if (m->type == user().Atom("_NET_STARTUP_INFO_BEGIN")) heard_.push_back("");
        const auto* text = reinterpret_cast<char*>(m->data.data8);
        if (!heard_.empty()) heard_.back().append(text, strnlen(text, 20));
      }
      free(e);
    }
    return heard_;
  }

 private:
  std::vector<std::string> heard_;
};

TEST_F(Startup, TheLauncherHearsOfTheFirstFrame) {
  setenv("DESKTOP_STARTUP_ID", "a \"launcher\"/1_TIME4294967290", 1);
  setenv("XDG_ACTIVATION_TOKEN", "other", 1);
  StartSession();
  EXPECT_EQ(getenv("DESKTOP_STARTUP_ID"), nullptr);
  EXPECT_EQ(getenv("XDG_ACTIVATION_TOKEN"), nullptr);
  WindowRef first = CreateNewWindow(kDocumentWindowClass, 0, {200, 150, 500, 350});
  WindowRef second = CreateNewWindow(kDocumentWindowClass, 0, {200, 150, 500, 350});
  kX11Display.flush(true);
  EXPECT_EQ(user().Text(x11::NativeOf(first)->id, "_NET_STARTUP_ID"),
            "a \"launcher\"/1_TIME4294967290");
  EXPECT_EQ(user().Text(x11::NativeOf(second)->id, "_NET_STARTUP_ID"), "");
  EXPECT_TRUE(Heard().empty());
  ShowWindow(first);
  ASSERT_TRUE(RunUntil([&] { return !Heard().empty(); }));
  EXPECT_EQ(user().Words(x11::NativeOf(first)->id, "_NET_WM_USER_TIME"),
            std::vector<uint32_t>{4294967290u});
  ShowWindow(second);
  Settle();
  EXPECT_EQ(Heard(), std::vector<std::string>{"remove: ID=a\\ \\\"launcher\\\"/1_TIME4294967290"});
}

TEST_F(Startup, WithoutALauncherNothingIsSaid) {
  for (const std::string& token : {std::string(), std::string(5000, 'x')}) {
    setenv("DESKTOP_STARTUP_ID", token.c_str(), 1);
    StartSession();
    WindowRef w = Show("First", {200, 150, 500, 350});
    Settle();
    EXPECT_TRUE(Heard().empty());
    EXPECT_EQ(user().Text(x11::NativeOf(w)->id, "_NET_STARTUP_ID"), "");
    EXPECT_TRUE(user().Words(x11::NativeOf(w)->id, "_NET_WM_USER_TIME").empty());
    FinishPlatform();
  }
}

// --- The end

// A manager of sessions as the two desktops' are: a program registers and becomes an object.
struct Manager {
  const char *name, *path, *interface, *client_interface;
};
constexpr Manager kManagers[] = {
    {"org.gnome.SessionManager", "/org/gnome/SessionManager", "org.gnome.SessionManager",
     "org.gnome.SessionManager.ClientPrivate"},
    {"org.xfce.SessionManager", "/org/xfce/SessionManager", "org.xfce.Session.Manager",
     "org.xfce.Session.Client"},
};
constexpr const char* kClient = "/session/client7";

class SessionEnd : public Bus, public testing::WithParamInterface<int> {
 protected:
  void StartManager() {
    ASSERT_GE(sd_bus_add_object(
                  peer(), nullptr, kManagers[GetParam()].path,
                  [](sd_bus_message* m, void* self, sd_bus_error*) {
                    if (sd_bus_message_is_method_call(m, nullptr, "RegisterClient") <= 0) return 0;
                    const char *program = nullptr, *startup = nullptr;
                    sd_bus_message_read(m, "ss", &program, &startup);
                    static_cast<SessionEnd*>(self)->registered = std::string(program) + startup;
                    return sd_bus_reply_method_return(m, "o", kClient);
                  },
                  this),
              0);
    ASSERT_GE(sd_bus_add_object(
                  peer(), nullptr, kClient,
                  [](sd_bus_message* m, void* self, sd_bus_error*) {
                    if (sd_bus_message_is_method_call(m, nullptr, "EndSessionResponse") <= 0) {
                      return 0;
                    }
                    int good = 0;
                    const char* reason = nullptr;
                    sd_bus_message_read(m, "bs", &good, &reason);
                    static_cast<SessionEnd*>(self)->answers.push_back(good != 0);
                    return 1;
                  },
                  this),
              0);
    ASSERT_GE(sd_bus_request_name(peer(), kManagers[GetParam()].name, 0), 0);
  }
  void Signal(const char* member) {
    ASSERT_GE(
        sd_bus_emit_signal(peer(), kClient, kManagers[GetParam()].client_interface, member,
                           strstr(member, "EndSession") == nullptr || *member == 'C' ? "" : "u", 0),
        0);
  }
  std::string registered;
  std::vector<bool> answers;
};

TEST_P(SessionEnd, IsARequestToQuit) {
  StartManager();
  setenv("DESKTOP_AUTOSTART_ID", "/7", 1);
  Start();
  KeepRunning();
  Show("First", {200, 150, 500, 350});
  ASSERT_TRUE(WaitUntil([&] { return !registered.empty(); }));
  EXPECT_EQ(registered, "Session/7");
  EXPECT_EQ(getenv("DESKTOP_AUTOSTART_ID"), nullptr);
  PassBusMarker();
  // Whether it is ready is answered at once and is no end yet.
  Signal("QueryEndSession");
  EXPECT_TRUE(WaitUntil([&] { return answers.size() == 1; }));
  EXPECT_EQ(QuitRequests(), 0u);
  // The end is answered when the program has dealt with it.
  Signal("EndSession");
  EXPECT_TRUE(WaitUntil([&] { return QuitRequests() == 1; }));
  EXPECT_TRUE(WaitUntil([&] { return answers.size() == 2; }));
  Signal("Stop");
  PassBusMarker();
  EXPECT_EQ(QuitRequests(), 1u);  // the same end
  Signal("CancelEndSession");
  Signal("Stop");
  EXPECT_TRUE(WaitUntil([&] { return QuitRequests() == 2; }));
  EXPECT_EQ(answers, (std::vector<bool>{true, true}));
}

// A manager that answers nonsense, or stops answering, is as good as none.
TEST_P(SessionEnd, AManagerThatFailsIsNotMissed) {
  ASSERT_GE(sd_bus_add_object(
                peer(), nullptr, kManagers[GetParam()].path,
                [](sd_bus_message* m, void*, sd_bus_error*) {
                  return sd_bus_reply_method_return(m, "u", 7);
                },
                nullptr),
            0);
  ASSERT_GE(sd_bus_request_name(peer(), kManagers[GetParam()].name, 0), 0);
  Start();
  KeepRunning();
  Show("First", {200, 150, 500, 350});
  ASSERT_TRUE(WaitUntil([&] { return Joined(); }));
  Signal("EndSession");
  PassBusMarker();
  EXPECT_EQ(QuitRequests(), 0u);
  kill(session_bus.pid(), SIGKILL);
  Settle();
  EXPECT_EQ(user().Look().at(210, 160), 0x3366CCu);
}

INSTANTIATE_TEST_SUITE_P(Managers, SessionEnd, testing::Values(0, 1));

// The machine's log-in manager: it waits for those who hold a lock.
class Shutdown : public Bus {
 protected:
  void SetUp() override {
    Bus::SetUp();
    ASSERT_TRUE(system_bus.Start("DBUS_SYSTEM_BUS_ADDRESS"));
    ASSERT_EQ(pipe2(lock, O_CLOEXEC), 0);
    login = AddPeer(sd_bus_open_system);
    ASSERT_GE(sd_bus_add_object(
                  login, nullptr, "/org/freedesktop/login1",
                  [](sd_bus_message* m, void* self, sd_bus_error*) {
                    auto* t = static_cast<Shutdown*>(self);
                    const char *what = nullptr, *who = nullptr, *why = nullptr, *mode = nullptr;
                    sd_bus_message_read(m, "ssss", &what, &who, &why, &mode);
                    t->asked = std::string(what) + " " + who + " " + mode;
                    const int sent = sd_bus_reply_method_return(m, "h", t->lock[1]);
                    close(t->lock[1]);
                    return sent;
                  },
                  this),
              0);
    ASSERT_GE(sd_bus_request_name(login, "org.freedesktop.login1", 0), 0);
  }
  void Prepare(bool starts) {
    ASSERT_GE(sd_bus_emit_signal(login, "/org/freedesktop/login1", "org.freedesktop.login1.Manager",
                                 "PrepareForShutdown", "b", int(starts)),
              0);
  }
  // The lock is held until its last copy is closed.
  bool Held() {
    char byte;
    fcntl(lock[0], F_SETFL, O_NONBLOCK);
    return read(lock[0], &byte, 1) < 0;
  }
  BusDaemon system_bus;
  sd_bus* login = nullptr;
  int lock[2] = {-1, -1};
  std::string asked;
};

TEST_F(Shutdown, WaitsAndIsARequestToQuit) {
  Start();
  KeepRunning();
  Show("First", {200, 150, 500, 350});
  ASSERT_TRUE(WaitUntil([&] { return !asked.empty(); }));
  EXPECT_EQ(asked, "shutdown Session delay");
  WaitUntil([] { return false; }, 5);
  EXPECT_TRUE(Held());
  Prepare(false);
  Prepare(true);
  EXPECT_TRUE(WaitUntil([&] { return QuitRequests() == 1; }));
  EXPECT_TRUE(Held());
  FinishPlatform();
  EXPECT_TRUE(support::Eventually([&] {
    sd_bus_process(login, nullptr);
    return !Held();
  }));
}

// --- A whole program

XwWindow* top;
std::string* said;
int Handle(int type) {
  if (type != XWE_QUIT) return 0;
  *said += "quit";
  return type;
}

// Runs `act` beside a program of the toolkit; its exit status, and what it wrote on standard error.
int RunProgram(const std::function<void(pid_t)>& act, std::string* error) {
  int ends[2];
  if (pipe(ends) != 0) return -1;
  const pid_t pid = fork();
  if (pid == 0) {
    dup2(ends[1], 2);
    said = new std::string;
    XwSession("Program", "Program", 0);
    top = XwCreate(0, 200, 150, 300, 200, Handle);
    XwShow(top, 1);
    const int type = XwWaitEvent(nullptr);
    const bool good = type == XWE_QUIT && *said == "quit" && Inp.window == top;
    XwEndSession();
    FinishPlatform();
    delete said;
    _exit(good ? 7 : 8);
  }
  close(ends[1]);
  act(pid);
  int status = 0;
  waitpid(pid, &status, 0);
  char text[4096] = {};
  const ssize_t n = read(ends[0], text, sizeof text - 1);
  if (n > 0) error->assign(text, size_t(n));
  close(ends[0]);
  return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
}

TEST_F(X11Test, TheEndOfTheServerEndsTheProgramWithALine) {
  StartServer("", {});
  std::string error;
  EXPECT_EQ(RunProgram(
                [this](pid_t) {
                  user().Find("Program");
                  server().Kill();
                },
                &error),
            1);
  EXPECT_EQ(error, "Program: the connection to the display is gone\n");
}

}  // namespace
}  // namespace x11_test

// Message buses of the test's own, with a connection that plays other programs on each.
#pragma once
#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <systemd/sd-bus.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>

#include "platform/events/targets.h"
#include "platform/loop/receive.h"
#include "tests/x11/fixture.h"

namespace x11_test {

using namespace platform;

class BusDaemon {
 public:
  // Its address becomes the value of `variable`.
  bool Start(const char* variable) {
    int ends[2];
    if (pipe(ends) != 0) return false;
    pid_ = fork();
    if (pid_ == 0) {
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
    if (n <= 0) return false;
    address[strcspn(address, "\n")] = 0;
    setenv(variable, address, 1);
    return true;
  }
  ~BusDaemon() {
    if (pid_ <= 0) return;
    kill(pid_, SIGKILL);
    waitpid(pid_, nullptr, 0);
  }
  pid_t pid() const { return pid_; }

 private:
  pid_t pid_ = 0;
};

class Bus : public X11Test {
 protected:
  static constexpr const char* kName = "org.quorvik.Session";
  static constexpr const char* kPath = "/org/quorvik/Session";
  static constexpr const char* kInterface = "org.freedesktop.Application";

  void SetUp() override {
    setenv("DBUS_SYSTEM_BUS_ADDRESS", "unix:path=/nonexistent/bus", 1);
    ASSERT_TRUE(session_bus.Start("DBUS_SESSION_BUS_ADDRESS"));
  }
  void TearDown() override {
    X11Test::TearDown();
    for (sd_bus* peer : peers_) sd_bus_close_unref(peer);
  }
  // Another program on a bus, made when it is first wanted.
  sd_bus* peer() {
    if (peers_.empty()) AddPeer(sd_bus_open_user);
    return peers_.front();
  }
  sd_bus* AddPeer(int (*open)(sd_bus**)) {
    sd_bus* peer = nullptr;
    EXPECT_GE(open(&peer), 0);
    peers_.push_back(peer);
    return peer;
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
      for (sd_bus* peer : peers_) {
        while (sd_bus_process(peer, nullptr) > 0) {
        }
      }
      if (done()) return true;
    }
    return done();
  }
  // Until the program that has the name has dealt with all that was sent to it: a question goes the
  // same way behind that.
  void PassBusMarker() {
    bool answered = false;
    ASSERT_GE(sd_bus_call_method_async(
                  peer(), nullptr, kName, "/", "org.freedesktop.DBus.Peer", "Ping",
                  [](sd_bus_message*, void* answer, sd_bus_error*) {
                    *static_cast<bool*>(answer) = true;
                    return 0;
                  },
                  &answered, ""),
              0);
    EXPECT_TRUE(WaitUntil([&] { return answered; }));
  }
  size_t QuitRequests() const {
    size_t n = 0;
    for (const Event& e : events) {
      n += e.cls == kEventClassAppleEvent && e.request.id == kAEQuitApplication;
    }
    return n;
  }
  bool Joined() {
    return system(
               "dbus-send --session --print-reply --dest=org.freedesktop.DBus / "
               "org.freedesktop.DBus.GetNameOwner string:org.quorvik.Session >/dev/null 2>&1") == 0;
  }
  BusDaemon session_bus;
  std::vector<std::string> files;

 private:
  std::vector<sd_bus*> peers_;
};

}  // namespace x11_test

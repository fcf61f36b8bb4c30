#include "platform/desktop/session_end.h"

#include <fcntl.h>
#include <unistd.h>

#include <cstdlib>
#include <string>

#include "platform/desktop/bus.h"
#include "platform/events/raw_event.h"
#include "platform/events/sources.h"

namespace platform {
namespace {

// Managers of a session. Their clients are objects of theirs, with the same methods and signals.
struct Manager {
  const char *name, *path, *interface, *client_interface;
};
constexpr Manager kManagers[] = {
    {"org.gnome.SessionManager", "/org/gnome/SessionManager", "org.gnome.SessionManager",
     "org.gnome.SessionManager.ClientPrivate"},
    {"org.xfce.SessionManager", "/org/xfce/SessionManager", "org.xfce.Session.Manager",
     "org.xfce.Session.Client"},
};

constexpr const char* kLogin = "org.freedesktop.login1";
constexpr const char* kLoginPath = "/org/freedesktop/login1";
constexpr const char* kLoginInterface = "org.freedesktop.login1.Manager";
constexpr const char* kSystemSocket = "/run/dbus/system_bus_socket";

struct SessionEnd {
  std::string program;
  sd_bus* session = nullptr;
  BusConnection system;
  const Manager* manager = nullptr;  // the one at which this program is registered
  std::string client;                // the object's path there
  bool ending = false;               // reported; not again until the end is called off
  bool answer_due = false;           // when the program has dealt with the request
  int lock = -1;                     // delays a shutdown while it is open
};
SessionEnd end;

const BusLibrary& Lib() {
  return *LoadBusLibrary();
}

void Ends() {
  if (end.ending) return;
  end.ending = true;
  RawEvent raw;
  raw.type = RawEvent::kQuit;
  PostRawEvent(raw);
}

void Answer() {
  end.answer_due = false;
  if (end.session == nullptr || end.manager == nullptr) return;
  Lib().call_method(end.session, nullptr, end.manager->name, end.client.c_str(),
                    end.manager->client_interface, "EndSessionResponse", nullptr, nullptr, "bs", 1,
                    "");
}

int OnClientSignal(sd_bus_message* m, void*, sd_bus_error*) {
  auto is = [m](const char* member) {
    return Lib().is_signal(m, end.manager->client_interface, member) > 0;
  };
  if (is("QueryEndSession")) {
    Answer();  // ready; the program asks and saves at EndSession
  } else if (is("EndSession")) {
    end.answer_due = true;
    Ends();
  } else if (is("Stop")) {
    Ends();
  } else if (is("CancelEndSession")) {
    end.ending = false;
  }
  return 0;
}

// The first manager that answers is the session's.
int OnRegistered(sd_bus_message* m, void* which, sd_bus_error*) {
  const char* path = nullptr;
  if (end.manager != nullptr || Lib().is_error(m, nullptr) > 0) return 1;
  if (Lib().read(m, "o", &path) <= 0 || path == nullptr) return 1;
  end.manager = static_cast<const Manager*>(which);
  end.client = path;
  Lib().match_signal(end.session, nullptr, end.manager->name, path, end.manager->client_interface,
                     nullptr, OnClientSignal, nullptr, nullptr);
  return 1;
}

void Register(const Manager& manager, const char* startup_id) {
  sd_bus_message* m = nullptr;
  if (Lib().new_call(end.session, &m, manager.name, manager.path, manager.interface,
                     "RegisterClient") < 0) {
    return;
  }
  // The call must not start a manager that does not run.
  if (Lib().set_auto_start(m, 0) >= 0 &&
      Lib().append(m, "ss", end.program.c_str(), startup_id) >= 0) {
    Lib().call(end.session, nullptr, m, OnRegistered, const_cast<Manager*>(&manager), 0);
  }
  Lib().unref(m);
}

int OnPrepareForShutdown(sd_bus_message* m, void*, sd_bus_error*) {
  int starts = 0;
  if (Lib().read(m, "b", &starts) <= 0) return 0;
  if (starts != 0) {
    Ends();
  } else {
    end.ending = false;
  }
  return 0;
}

int OnLock(sd_bus_message* m, void*, sd_bus_error*) {
  int fd = -1;
  if (Lib().is_error(m, nullptr) > 0 || Lib().read(m, "h", &fd) <= 0) return 1;
  if (end.lock < 0) end.lock = fcntl(fd, F_DUPFD_CLOEXEC, 3);
  return 1;
}

void JoinSystem() {
  const char* address = getenv("DBUS_SYSTEM_BUS_ADDRESS");
  if (address != nullptr ? *address == 0 : access(kSystemSocket, F_OK) != 0) return;
  if (!end.system.Open(true)) return;
  sd_bus* bus = end.system.get();
  Lib().match_signal(bus, nullptr, kLogin, kLoginPath, kLoginInterface, "PrepareForShutdown",
                     OnPrepareForShutdown, nullptr, nullptr);
  // The lock stays open until this process ends; a shutdown waits for that, at most some seconds.
  Lib().call_method(bus, nullptr, kLogin, kLoginPath, kLoginInterface, "Inhibit", OnLock, nullptr,
                    "ssss", "shutdown", end.program.c_str(), "It ends its work", "delay");
  end.system.Process();
}

// Asked for when the loop is about to wait: the program has dealt with what was reported.
void Descriptors(PollList* list) {
  if (end.answer_due) Answer();
  end.system.AddTo(list);
}

void Take() {
  end.system.Process();
}

constexpr WaitSource kSource{Descriptors, Take};

}  // namespace

void InitSessionEnd(const char* session_name) {
  end = SessionEnd{};
  end.program = session_name;
  AddWaitSource(kSource);
}

void FinishSessionEnd() {
  ForgetSessionEnd();
  RemoveWaitSource(kSource);
  end = SessionEnd{};
}

void WatchSessionEnd(sd_bus* session) {
  end.session = session;
  const char* startup_id = getenv("DESKTOP_AUTOSTART_ID");
  for (const Manager& m : kManagers) Register(m, startup_id != nullptr ? startup_id : "");
  unsetenv("DESKTOP_AUTOSTART_ID");  // children register by themselves
  JoinSystem();
}

void ForgetSessionEnd() {
  end.session = nullptr;
  end.manager = nullptr;
  end.system.Close();
  if (end.lock >= 0) close(end.lock);
  end.lock = -1;
}

}  // namespace platform

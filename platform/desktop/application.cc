#include "platform/desktop/application.h"

#include <poll.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>

#include "platform/desktop/bus.h"
#include "platform/desktop/documents.h"
#include "platform/desktop/session_end.h"
#include "platform/desktop/startup.h"
#include "platform/desktop/uris.h"
#include "platform/events/clock.h"
#include "platform/events/raw_event.h"
#include "platform/events/sources.h"
#include "platform/events/timers.h"

namespace platform {
namespace {

constexpr const char* kInterface = "org.freedesktop.Application";
constexpr double kHandOverPatience = 1;  // seconds that the first start has to come forward
constexpr double kHold = 1;              // seconds that the program has to follow a request to quit
constexpr uint32_t kNameExists = 3;      // the answer to a request for a name that another has

struct Application {
  std::string name, path;
  bool tried = false;
  BusConnection bus;
  // Of another start of the program.
  enum { kUnasked, kAsked, kAlone, kCameForward, kTooLate } first = kUnasked;
  EventLoopTimerRef hold = nullptr;  // runs while windows are held
};
Application app;

const BusLibrary& Lib() {
  return *LoadBusLibrary();
}

// Without a bus the library is not loaded.
bool HasBus() {
  const char* address = getenv("DBUS_SESSION_BUS_ADDRESS");
  if (address != nullptr) return *address != 0;
  const char* folder = getenv("XDG_RUNTIME_DIR");
  return folder != nullptr && access((std::string(folder) + "/bus").c_str(), F_OK) == 0;
}

void Report(RawEvent::Type type, const char* text = nullptr) {
  RawEvent raw;
  raw.type = type;
  raw.text = text;
  PostRawEvent(raw);
}

// The caller's activation token. It is in the last argument of each call, a table of names and
// values.
const char* ReadToken(sd_bus_message* m) {
  const char *name = nullptr, *token = nullptr;
  if (Lib().enter(m, 'a', "{sv}") <= 0) return nullptr;
  while (Lib().enter(m, 'e', "sv") > 0) {
    if (Lib().read(m, "s", &name) <= 0) return nullptr;
    const bool known =
        strcmp(name, "desktop-startup-id") == 0 || strcmp(name, "activation-token") == 0;
    if (known && Lib().enter(m, 'v', "s") > 0) {
      if (Lib().read(m, "s", &token) <= 0 || Lib().exit(m) < 0) return nullptr;
    } else if (Lib().skip(m, "v") < 0) {
      return nullptr;
    }
    if (Lib().exit(m) < 0) return nullptr;
  }
  return token;
}

void Activate(sd_bus_message* m) {
  Report(RawEvent::kActivate, ReadToken(m));
}

void OnOpen(sd_bus_message* m) {
  const char* uri = nullptr;
  if (Lib().enter(m, 'a', "s") < 0) return;
  std::vector<std::string> paths;
  size_t bytes = 0;
  while (Lib().read(m, "s", &uri) > 0) {
    bytes += strlen(uri);
    std::string path = bytes <= kMostAddresses ? PathOrAddress(uri) : std::string();
    if (!path.empty()) paths.push_back(std::move(path));
  }
  if (!paths.empty()) {
    const std::string text = JoinPaths(paths);
    RawEvent raw;
    raw.type = RawEvent::kOpenFile;
    raw.text = text.c_str();
    raw.request = 1;
    PostRawEvent(raw);
  }
  if (Lib().exit(m) >= 0) Activate(m);
}

void OnAction(sd_bus_message* m) {
  const char* action = nullptr;
  if (Lib().read(m, "s", &action) <= 0) return;
  if (strcmp(action, "quit") == 0) Report(RawEvent::kQuit);
  if (strcmp(action, "preferences") == 0) Report(RawEvent::kPreferences);
}

int OnCall(sd_bus_message* m, void*, sd_bus_error*) {
  if (Lib().is_method_call(m, kInterface, "Activate") > 0) {
    Activate(m);
  } else if (Lib().is_method_call(m, kInterface, "Open") > 0) {
    OnOpen(m);
  } else if (Lib().is_method_call(m, kInterface, "ActivateAction") > 0) {
    OnAction(m);
  } else {
    return 0;
  }
  return Lib().reply(m, "") < 0 ? -1 : 1;
}

// The first start has come forward, so this one is not needed. An answer after the deadline is
// ignored.
int OnHandedOver(sd_bus_message* m, void*, sd_bus_error*) {
  if (app.first == Application::kTooLate) return 1;
  const bool came = Lib().is_error(m, nullptr) <= 0;
  app.first = came ? Application::kCameForward : Application::kAlone;
  if (came) Report(RawEvent::kQuit);
  return 1;
}

// The first start comes forward in place of this one, for the same action.
void HandOver() {
  const char* token = StartToken().c_str();
  auto call = [](auto... arguments) {
    Lib().call_method(app.bus.get(), nullptr, app.name.c_str(), app.path.c_str(), kInterface,
                      "Activate", OnHandedOver, nullptr, "a{sv}", arguments...);
  };
  if (*token == 0) {
    call(0);
  } else {
    call(2, "desktop-startup-id", "s", token, "activation-token", "s", token);
  }
}

int OnNamed(sd_bus_message* m, void*, sd_bus_error*) {
  uint32_t answer = 0;
  if (app.first == Application::kTooLate) return 1;
  const bool known = Lib().is_error(m, nullptr) <= 0 && Lib().read(m, "u", &answer) > 0;
  const bool first_runs = known && answer == kNameExists;
  if (first_runs)
    HandOver();
  else
    app.first = Application::kAlone;
  return 1;
}

void Leave() {
  ForgetSessionEnd();
  app.bus.Close();
}

void Join() {
  app.tried = true;
  if (!HasBus() || !app.bus.Open(false)) return;
  const bool ready =
      Lib().add_object(app.bus.get(), nullptr, app.path.c_str(), OnCall, nullptr) >= 0 &&
      Lib().request_name(app.bus.get(), nullptr, app.name.c_str(), 0, OnNamed, nullptr) >= 0;
  if (!ready) return Leave();
  WatchSessionEnd(app.bus.get());
  app.bus.Process();
}

// The program has not quit when asked to: it may want to ask something, so its windows are shown.
void ShowAfterAll(EventLoopTimerRef timer, void*) {
  RemoveEventLoopTimer(timer);
  app.hold = nullptr;
  Report(RawEvent::kLetGo);
}

// Asked for when the loop is about to wait.
void Descriptors(PollList* list) {
  if (!app.tried) Join();
  app.bus.AddTo(list);
}

void Take() {
  if (app.bus.get() == nullptr) return;
  app.bus.Process();
  if (app.bus.get() == nullptr) Leave();
}

constexpr WaitSource kSource{Descriptors, Take};

}  // namespace

std::string ApplicationBusName(const std::string& session_name) {
  std::string name;
  for (char c : session_name) {
    const bool plain = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' ||
                       (c >= '0' && c <= '9' && !name.empty() && name.back() != '.');
    if (plain) name.push_back(c);
    if (c == '.' && !name.empty() && name.back() != '.') name.push_back(c);
  }
  while (!name.empty() && name.back() == '.') name.pop_back();
  if (name.empty()) name = "Program";
  if (name.find('.') == std::string::npos) name = "org.quorvik." + name;
  return name.substr(0, 255);
}

std::string ApplicationObjectPath(const std::string& bus_name) {
  std::string path = "/" + bus_name;
  for (char& c : path) {
    if (c == '.') c = '/';
  }
  return path;
}

void InitApplication(const char* session_name) {
  app = Application{};
  app.name = ApplicationBusName(session_name != nullptr ? session_name : "");
  app.path = ApplicationObjectPath(app.name);
  AddWaitSource(kSource);
}

bool HandOverStart() {
  if (app.tried) return false;
  app.first = Application::kAsked;
  Join();
  const double end = GetCurrentEventTime() + kHandOverPatience;
  for (;;) {
    app.bus.Process();
    if (app.bus.get() == nullptr) app.first = Application::kAlone;
    const double left = end - GetCurrentEventTime();
    if (app.first != Application::kAsked || left <= 0) break;
    pollfd p{app.bus.Descriptor(), app.bus.Events(), 0};
    poll(&p, 1, int(left * 1000) + 1);
  }
  if (app.first == Application::kAsked) app.first = Application::kTooLate;
  if (app.first != Application::kCameForward) return false;
  app.hold = InstallEventLoopTimer(kHold, 0, ShowAfterAll, nullptr);
  return true;
}

void FinishApplication() {
  RemoveEventLoopTimer(app.hold);
  Leave();
  RemoveWaitSource(kSource);
  app = Application{};
}

}  // namespace platform

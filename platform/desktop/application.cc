#include "platform/desktop/application.h"
#include "platform/late_library.h"

#include <dlfcn.h>
#include <systemd/sd-bus.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <deque>

#include "platform/desktop/requests.h"
#include "platform/desktop/uris.h"
#include "platform/windows/window.h"
#include "platform/windows/windows.h"

namespace platform {
namespace {

constexpr const char* kInterface = "org.freedesktop.Application";
constexpr uint32_t kNameExists = 3;  // the answer to a request for a name that another has

// What is used of the library; looked up when the bus is joined.
struct Library {
  void* handle = nullptr;
  decltype(&sd_bus_open_user) open_user = nullptr;
  decltype(&sd_bus_close_unref) close_unref = nullptr;
  decltype(&sd_bus_flush) flush = nullptr;
  decltype(&sd_bus_get_fd) get_fd = nullptr;
  decltype(&sd_bus_process) process = nullptr;
  decltype(&sd_bus_add_object) add_object = nullptr;
  decltype(&sd_bus_request_name_async) request_name = nullptr;
  decltype(&sd_bus_call_method_async) call_method = nullptr;
  decltype(&sd_bus_message_is_method_call) is_method_call = nullptr;
  decltype(&sd_bus_message_is_method_error) is_error = nullptr;
  decltype(&sd_bus_message_read) read = nullptr;
  decltype(&sd_bus_message_enter_container) enter = nullptr;
  decltype(&sd_bus_reply_method_return) reply = nullptr;
};
Library lib;

struct Application {
  std::string name, path;
  bool tried = false;
  sd_bus* bus = nullptr;
  std::deque<RawEvent> out;
  std::string file;  // handed out with the last report
  std::deque<std::string> files;
};
Application app;

template <class F>
bool Find(const char* name, F* out) {
  return FindFunction(lib.handle, name, out);
}

bool LoadLibrary() {
  lib.handle = dlopen("libsystemd.so.0", RTLD_NOW | RTLD_LOCAL);
  return lib.handle != nullptr && Find("sd_bus_open_user", &lib.open_user) &&
         Find("sd_bus_close_unref", &lib.close_unref) && Find("sd_bus_flush", &lib.flush) &&
         Find("sd_bus_get_fd", &lib.get_fd) && Find("sd_bus_process", &lib.process) &&
         Find("sd_bus_add_object", &lib.add_object) &&
         Find("sd_bus_request_name_async", &lib.request_name) &&
         Find("sd_bus_call_method_async", &lib.call_method) &&
         Find("sd_bus_message_is_method_call", &lib.is_method_call) &&
         Find("sd_bus_message_is_method_error", &lib.is_error) &&
         Find("sd_bus_message_read", &lib.read) &&
         Find("sd_bus_message_enter_container", &lib.enter) &&
         Find("sd_bus_reply_method_return", &lib.reply);
}

// The library is not asked where there is no bus to be found.
bool HasBus() {
  const char* address = getenv("DBUS_SESSION_BUS_ADDRESS");
  if (address != nullptr) return *address != 0;
  const char* folder = getenv("XDG_RUNTIME_DIR");
  return folder != nullptr && access((std::string(folder) + "/bus").c_str(), F_OK) == 0;
}

void Report(RawEvent::Type type) {
  RawEvent& e = app.out.emplace_back();
  e.type = type;
}

void OnOpen(sd_bus_message* m) {
  const char* uri = nullptr;
  if (lib.enter(m, 'a', "s") < 0 || lib.read(m, "s", &uri) <= 0 || uri == nullptr) return;
  std::string path = LocalPathOfUri(uri);
  if (path.empty()) return;
  app.files.push_back(std::move(path));
  Report(RawEvent::kOpenFile);
}

void OnAction(sd_bus_message* m) {
  const char* action = nullptr;
  if (lib.read(m, "s", &action) <= 0 || action == nullptr) return;
  if (strcmp(action, "quit") == 0) Report(RawEvent::kQuit);
  if (strcmp(action, "preferences") == 0) Report(RawEvent::kPreferences);
}

void Activate() {
  SelectWindow(MenuBarWindow());
}

int OnCall(sd_bus_message* m, void*, sd_bus_error*) {
  if (lib.is_method_call(m, kInterface, "Activate") > 0) {
    Activate();
  } else if (lib.is_method_call(m, kInterface, "Open") > 0) {
    OnOpen(m);
    Activate();
  } else if (lib.is_method_call(m, kInterface, "ActivateAction") > 0) {
    OnAction(m);
  } else {
    return 0;
  }
  return lib.reply(m, "") < 0 ? -1 : 1;
}

// The first start has come forward: this one is not needed.
int OnHandedOver(sd_bus_message* m, void*, sd_bus_error*) {
  if (lib.is_error(m, nullptr) <= 0) Report(RawEvent::kQuit);
  return 1;
}

int OnNamed(sd_bus_message* m, void*, sd_bus_error*) {
  uint32_t answer = 0;
  if (lib.is_error(m, nullptr) > 0 || lib.read(m, "u", &answer) <= 0) return 1;
  if (answer == kNameExists) {
    lib.call_method(app.bus, nullptr, app.name.c_str(), app.path.c_str(), kInterface, "Activate",
                    OnHandedOver, nullptr, "a{sv}", 0);
  }
  return 1;
}

void Leave() {
  if (app.bus != nullptr) lib.close_unref(app.bus);
  app.bus = nullptr;
  // The library stays loaded: it may have left thread-local clean-up behind.
}

void Join() {
  app.tried = true;
  if (!HasBus() || !LoadLibrary()) return;
  if (lib.open_user(&app.bus) < 0) {
    app.bus = nullptr;
    return;
  }
  const bool ready =
      lib.add_object(app.bus, nullptr, app.path.c_str(), OnCall, nullptr) >= 0 &&
      lib.request_name(app.bus, nullptr, app.name.c_str(), 0, OnNamed, nullptr) >= 0 &&
      lib.flush(app.bus) >= 0;
  if (!ready) Leave();
}

// Asked for when the loop is about to wait.
int Descriptor() {
  if (!app.tried) Join();
  return app.bus != nullptr ? lib.get_fd(app.bus) : -1;
}

bool Next(RawEvent* out) {
  while (app.bus != nullptr && app.out.empty()) {
    const int done = lib.process(app.bus, nullptr);
    if (done < 0) Leave();
    if (done <= 0) break;
  }
  if (app.out.empty()) return false;
  *out = app.out.front();
  app.out.pop_front();
  if (out->type == RawEvent::kOpenFile) {
    app.file = std::move(app.files.front());
    app.files.pop_front();
    out->path = app.file.c_str();
  }
  return true;
}

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

void InstallApplicationSource(const char* session_name) {
  static bool installed = false;
  app = Application{};
  app.name = ApplicationBusName(session_name != nullptr ? session_name : "");
  app.path = ApplicationObjectPath(app.name);
  if (!installed) AddRequestSource({Descriptor, Next});
  installed = true;
}

void RemoveApplicationSource() {
  Leave();
  app.tried = true;
}

}  // namespace platform

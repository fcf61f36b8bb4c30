#include "app/work/running_console.h"

#include <dlfcn.h>
#include <systemd/sd-bus.h>

#include <cstdlib>
#include <memory>

#include "app/work/background_task.h"

namespace console {
namespace {

// As the session's name, Quorvik, makes them.
constexpr const char* kName = "org.quorvik.Quorvik";
constexpr const char* kPath = "/org/quorvik/Quorvik";
constexpr const char* kInterface = "org.freedesktop.Application";
constexpr uint64_t kCallMicroseconds = 10'000'000;  // the call ends at last

// What is used of the library that speaks to buses. The program runs without it.
struct Library {
  decltype(&::sd_bus_open_user) open_user = nullptr;
  decltype(&::sd_bus_close_unref) close_unref = nullptr;
  decltype(&::sd_bus_message_new_method_call) new_call = nullptr;
  decltype(&::sd_bus_message_set_auto_start) set_auto_start = nullptr;
  decltype(&::sd_bus_message_append) append = nullptr;
  decltype(&::sd_bus_message_append_strv) append_strings = nullptr;
  decltype(&::sd_bus_message_unref) unref = nullptr;
  decltype(&::sd_bus_call) call = nullptr;

  // It stays loaded: it may have left thread-local clean-up behind.
  bool Load() {
    void* handle = dlopen("libsystemd.so.0", RTLD_NOW | RTLD_LOCAL);
    if (!handle) return false;
    const auto find = [handle](const char* name, auto* function) {
      *function =
          reinterpret_cast<std::remove_reference_t<decltype(*function)>>(dlsym(handle, name));
      return *function != nullptr;
    };
    return find("sd_bus_open_user", &open_user) && find("sd_bus_close_unref", &close_unref) &&
           find("sd_bus_message_new_method_call", &new_call) &&
           find("sd_bus_message_set_auto_start", &set_auto_start) &&
           find("sd_bus_message_append", &append) &&
           find("sd_bus_message_append_strv", &append_strings) &&
           find("sd_bus_message_unref", &unref) && find("sd_bus_call", &call);
  }
};

// The address of a file: all but plain characters by percent signs.
std::string UriOf(const std::string& path) {
  static constexpr char kDigits[] = "0123456789ABCDEF";
  std::string uri = "file://";
  for (const char c : path) {
    const bool plain = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
                       c == '/' || c == '-' || c == '_' || c == '.' || c == '~';
    if (plain) {
      uri += c;
    } else {
      const auto byte = static_cast<unsigned char>(c);
      uri += {'%', kDigits[byte >> 4], kDigits[byte & 15]};
    }
  }
  return uri;
}

// What the call says: the files, and the launcher's word for the user's action, by which the window
// may come to the front.
struct Order {
  std::vector<std::string> uris;
  std::string token;
};

bool Fill(const Library& lib, sd_bus_message* m, const Order& order) {
  std::vector<char*> uris;
  for (const std::string& uri : order.uris) uris.push_back(const_cast<char*>(uri.c_str()));
  uris.push_back(nullptr);
  if (lib.set_auto_start(m, 0) < 0 || lib.append_strings(m, uris.data()) < 0) return false;
  const char* token = order.token.c_str();
  return (*token ? lib.append(m, "a{sv}", 2, "desktop-startup-id", "s", token, "activation-token",
                              "s", token)
                 : lib.append(m, "a{sv}", 0)) >= 0;
}

bool Ask(const Order& order) {
  Library lib;
  sd_bus* bus = nullptr;
  if (!lib.Load() || lib.open_user(&bus) < 0) return false;
  sd_bus_message* m = nullptr;
  const bool taken = lib.new_call(bus, &m, kName, kPath, kInterface, "Open") >= 0 &&
                     Fill(lib, m, order) &&
                     lib.call(bus, m, kCallMicroseconds, nullptr, nullptr) >= 0;
  lib.unref(m);
  lib.close_unref(bus);
  return taken;
}

std::string Token() {
  for (const char* name : {"DESKTOP_STARTUP_ID", "XDG_ACTIVATION_TOKEN"}) {
    const char* token = getenv(name);
    if (token && *token) return token;
  }
  return "";
}

}  // namespace

bool HandOverFiles(const std::vector<std::string>& paths, int ms) {
  Order order;
  order.token = Token();
  for (const std::string& path : paths) order.uris.push_back(UriOf(path));
  // A bus that accepts the connection and then is silent holds nothing up.
  const auto taken = std::make_shared<bool>(false);
  const BackgroundTask task([taken, order] { *taken = Ask(order); });
  return task.WaitFor(ms) && !task.failed() && *taken;
}

}  // namespace console

#include "platform/desktop/bus.h"

#include <dlfcn.h>
#include <poll.h>

#include "platform/late_library.h"

namespace platform {
namespace {

BusLibrary lib;

bool FindAll() {
  auto find = [](const char* name, auto* out) { return FindFunction(lib.handle, name, out); };
  return find("sd_bus_open_user", &lib.open_user) && find("sd_bus_open_system", &lib.open_system) &&
         find("sd_bus_close_unref", &lib.close_unref) && find("sd_bus_get_fd", &lib.get_fd) &&
         find("sd_bus_get_events", &lib.get_events) && find("sd_bus_process", &lib.process) &&
         find("sd_bus_add_object", &lib.add_object) &&
         find("sd_bus_request_name_async", &lib.request_name) &&
         find("sd_bus_match_signal_async", &lib.match_signal) &&
         find("sd_bus_call_method_async", &lib.call_method) &&
         find("sd_bus_call_async", &lib.call) &&
         find("sd_bus_message_new_method_call", &lib.new_call) &&
         find("sd_bus_message_set_auto_start", &lib.set_auto_start) &&
         find("sd_bus_message_unref", &lib.unref) && find("sd_bus_message_append", &lib.append) &&
         find("sd_bus_message_is_method_call", &lib.is_method_call) &&
         find("sd_bus_message_is_method_error", &lib.is_error) &&
         find("sd_bus_message_is_signal", &lib.is_signal) &&
         find("sd_bus_message_read", &lib.read) && find("sd_bus_message_skip", &lib.skip) &&
         find("sd_bus_message_enter_container", &lib.enter) &&
         find("sd_bus_message_exit_container", &lib.exit) &&
         find("sd_bus_reply_method_return", &lib.reply);
}

}  // namespace

const BusLibrary* LoadBusLibrary() {
  static const bool whole = [] {
    lib.handle = dlopen("libsystemd.so.0", RTLD_NOW | RTLD_LOCAL);
    return lib.handle != nullptr && FindAll();
  }();
  return whole ? &lib : nullptr;
}

bool BusConnection::Open(bool system) {
  if (LoadBusLibrary() == nullptr) return false;
  if ((system ? lib.open_system : lib.open_user)(&bus_) < 0) bus_ = nullptr;
  return bus_ != nullptr;
}

void BusConnection::Close() {
  if (bus_ != nullptr) lib.close_unref(bus_);
  bus_ = nullptr;
}

int BusConnection::Descriptor() const {
  return bus_ != nullptr ? lib.get_fd(bus_) : -1;
}

short BusConnection::Events() const {
  const int events = bus_ != nullptr ? lib.get_events(bus_) : 0;
  return short(events > 0 ? events : POLLIN);
}

void BusConnection::AddTo(PollList* list) const {
  if (bus_ != nullptr) list->push_back({Descriptor(), Events(), 0});
}

void BusConnection::Process() {
  while (bus_ != nullptr) {
    const int done = lib.process(bus_, nullptr);
    if (done < 0) Close();
    if (done <= 0) break;
  }
}

}  // namespace platform

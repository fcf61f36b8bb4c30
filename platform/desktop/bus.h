// The library that speaks to message buses, loaded when it is first needed.
#pragma once
#include <systemd/sd-bus.h>

#include "platform/events/sources.h"

namespace platform {

// What is used of it, under the library's own names.
struct BusLibrary {
  void* handle = nullptr;
  decltype(&::sd_bus_open_user) open_user = nullptr;
  decltype(&::sd_bus_open_system) open_system = nullptr;
  decltype(&::sd_bus_close_unref) close_unref = nullptr;
  decltype(&::sd_bus_get_fd) get_fd = nullptr;
  decltype(&::sd_bus_get_events) get_events = nullptr;
  decltype(&::sd_bus_process) process = nullptr;
  decltype(&::sd_bus_add_object) add_object = nullptr;
  decltype(&::sd_bus_request_name_async) request_name = nullptr;
  decltype(&::sd_bus_match_signal_async) match_signal = nullptr;
  decltype(&::sd_bus_call_method_async) call_method = nullptr;
  decltype(&::sd_bus_call_async) call = nullptr;
  decltype(&::sd_bus_message_new_method_call) new_call = nullptr;
  decltype(&::sd_bus_message_set_auto_start) set_auto_start = nullptr;
  decltype(&::sd_bus_message_unref) unref = nullptr;
  decltype(&::sd_bus_message_append) append = nullptr;
  decltype(&::sd_bus_message_is_method_call) is_method_call = nullptr;
  decltype(&::sd_bus_message_is_method_error) is_error = nullptr;
  decltype(&::sd_bus_message_is_signal) is_signal = nullptr;
  decltype(&::sd_bus_message_read) read = nullptr;
  decltype(&::sd_bus_message_skip) skip = nullptr;
  decltype(&::sd_bus_message_enter_container) enter = nullptr;
  decltype(&::sd_bus_message_exit_container) exit = nullptr;
  decltype(&::sd_bus_reply_method_return) reply = nullptr;
};

// Null when the library is not there or lacks something. It stays loaded: it may have left
// thread-local clean-up behind.
const BusLibrary* LoadBusLibrary();

// A connection and how far it has come. Nothing here waits for the other side.
class BusConnection {
 public:
  // True when there is a bus to speak to.
  bool Open(bool system);
  void Close();
  sd_bus* get() const { return bus_; }
  int Descriptor() const;
  short Events() const;  // what to poll it for
  // Appends what to poll; nothing when it is closed.
  void AddTo(PollList* list) const;
  // Deals with everything that has come and sends what waits. Closed when the bus is gone.
  void Process();

 private:
  sd_bus* bus_ = nullptr;
};

}  // namespace platform

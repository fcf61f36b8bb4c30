// What windows, menus and controls have in common: a kind, a serial number, handlers of events, a
// description, and a memory that outlives the dispatch in which they end.
#pragma once
#include <cstdint>
#include <vector>

#include "platform/base.h"
#include "platform/objects/description.h"

namespace platform {

struct InstalledHandler {
  uint32_t cls, kind;  // cls 0: every event
  EventHandler handler;
  void* user_data;
};

// Where events are sent to.
struct EventTarget {
  std::vector<InstalledHandler> handlers;  // oldest first; run from the end
  bool ended = false;                      // what it belongs to has ended
};

enum class ObjectKind : uint8_t { kWindow, kMenu, kControl };

// What all objects of a kind share.
struct ObjectType {
  ObjectKind kind;
  // Frees the record.
  void (*release)(void* record);
  void (*describe)(const void* record, Description* out);
};

// The part of a record that this room keeps. `record` is the whole record.
struct Object {
  const ObjectType* type = nullptr;
  void* record = nullptr;
  uint64_t serial = 0;  // never given twice in a process; 0: not entered yet
  EventTarget target;
};

// The next serial.
uint64_t TakeSerial();
// Makes the object live and gives it a serial. `type` and `record` are set.
void EnterObject(Object* object);
// The object of the last successful check, which is checked first.
extern const Object* last_live_object;
bool FindLiveObject(const Object* object);
// True for an object that was entered and has not ended. Any pointer may be asked about.
inline bool IsLiveObject(const Object* object) {
  return object && (object == last_live_object || FindLiveObject(object));
}
// The object is live no longer; its record is freed when no dispatch is under way. One that is not
// live is ignored.
void EndObject(Object* object);

// A dispatch is under way: the records of objects that end stay in memory until it is over.
struct DispatchScope {
  DispatchScope();
  ~DispatchScope();
  DispatchScope(const DispatchScope&) = delete;
  DispatchScope& operator=(const DispatchScope&) = delete;
};
bool InDispatch();

// Frees the records of all objects that have ended, and forgets those that are still live. Serials
// go on.
void FinishObjects();

}  // namespace platform

#include "platform/objects/object.h"

#include "platform/objects/pointer_set.h"

namespace platform {
namespace {

struct Objects {
  PointerSet live;
  const Object* last_found = nullptr;  // the live object that was asked about last
  std::vector<Object*> ended;          // their records are still in memory
  int depth = 0;                       // dispatches under way
};

Objects& State() {
  static Objects* state = new Objects;
  return *state;
}

uint64_t last_serial = 0;

void ReleaseEnded() {
  std::vector<Object*> ended;
  ended.swap(State().ended);
  for (Object* o : ended) o->type->release(o->record);
}

}  // namespace

void EnterObject(Object* object) {
  object->serial = ++last_serial;
  State().live.Add(object);
}

bool IsLiveObject(const Object* object) {
  Objects& s = State();
  if (!object) return false;
  if (object == s.last_found) return true;
  if (!s.live.Contains(object)) return false;
  s.last_found = object;
  return true;
}

void EndObject(Object* object) {
  Objects& s = State();
  if (!IsLiveObject(object)) return;
  s.live.Remove(object);
  s.last_found = nullptr;
  object->target.ended = true;
  s.ended.push_back(object);
  if (s.depth == 0) ReleaseEnded();
}

DispatchScope::DispatchScope() {
  ++State().depth;
}
DispatchScope::~DispatchScope() {
  if (--State().depth == 0 && !State().ended.empty()) ReleaseEnded();
}
bool InDispatch() {
  return State().depth > 0;
}

void FinishObjects() {
  Objects& s = State();
  ReleaseEnded();
  s.live = PointerSet();
  s.last_found = nullptr;
}

}  // namespace platform

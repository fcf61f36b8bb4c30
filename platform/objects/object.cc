#include "platform/objects/object.h"

#include "platform/objects/pointer_set.h"

namespace platform {
namespace {

struct Objects {
  PointerSet* live = nullptr;  // made with the first object
  std::vector<Object*> ended;  // their records are still in memory
  int depth = 0;               // dispatches under way
};
constinit Objects state;

uint64_t last_serial = 0;

void ReleaseEnded() {
  std::vector<Object*> ended;
  ended.swap(state.ended);
  for (Object* o : ended) o->type->release(o->record);
}

}  // namespace

uint64_t TakeSerial() {
  return ++last_serial;
}

void EnterObject(Object* object) {
  if (!state.live) state.live = new PointerSet;
  object->serial = TakeSerial();
  state.live->Add(object);
}

const Object* last_live_object = nullptr;

bool FindLiveObject(const Object* object) {
  if (!state.live || !state.live->Contains(object)) return false;
  last_live_object = object;
  return true;
}

void EndObject(Object* object) {
  if (!IsLiveObject(object)) return;
  state.live->Remove(object);
  last_live_object = nullptr;
  object->target.ended = true;
  state.ended.push_back(object);
  if (state.depth == 0) ReleaseEnded();
}

DispatchScope::DispatchScope() {
  ++state.depth;
}
DispatchScope::~DispatchScope() {
  if (--state.depth == 0 && !state.ended.empty()) ReleaseEnded();
}
bool InDispatch() {
  return state.depth > 0;
}

void FinishObjects() {
  ReleaseEnded();
  delete state.live;
  state.live = nullptr;
  last_live_object = nullptr;
}

}  // namespace platform

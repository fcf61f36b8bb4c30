// Posting toolkit events: heap copies of a record that travel through the platform's queue.
#include "toolkit/core/post.h"

#include <cstdlib>

#include "platform/events/queue.h"
#include "toolkit/core/alive.h"
#include "toolkit/core/memory.h"
#include "toolkit/core/record.h"

using namespace platform;

namespace {

XwEvent* NewRecord() {
  auto* record = static_cast<XwEvent*>(malloc(sizeof(XwEvent)));
  if (!record) OutOfMemory();
  return record;
}

// The block of the next event. It is allocated when the one before has been posted, so that nothing
// of a call need be kept across an allocation.
XwEvent* next_record = NewRecord();

inline void PostNextRecord() {
  PostUserEvent(static_cast<EventQueueRef>(MainQueue), kToolkitEventClass, next_record);
  next_record = NewRecord();
}

}  // namespace

void SetEventRect(int x, int y, int width, int height) {
  Inp.x = x;
  Inp.y = y;
  Inp.width = width;
  Inp.height = height;
}

void PostEvent(const XwEvent& event) {
  *next_record = event;
  PostNextRecord();
}

void XwSendEvent(XwWindow* window, int type, int item, XwValue value, int param) {
  if (!CheckWindow(window)) return;
  XwEvent& record = *next_record;
  record = Inp;
  record.window = window;
  record.type = type;
  record.item = item;
  record.value = value;
  record.param = param;
  PostNextRecord();
}

void PostExpose(XwWindow* w) {
  SetEventRect(0, 0, w->width, w->height);
  XwSendEvent(w, XWE_EXPOSE, 0, 0, 0);
}

int DirectSendEvent(XwWindow* window, int type, int item, XwValue value) {
  if (!CheckWindow(window)) return 0;
  Inp.window = window;
  Inp.type = type;
  Inp.item = item;
  Inp.value = value;
  Inp.param = 0;
  if (!window->handler) {
    PostEvent(Inp);
    return 0;
  }
  int result = window->handler(type);
  Inp.type = result;
  return result;
}

bool EVclose_find_func(const Event& event, const XwWindow* window) {
  if (event.cls != kToolkitEventClass) return false;
  const XwWindow* named = static_cast<XwEvent*>(event.payload)->window;
  return named && (named == window || !IsLive(named));
}

void RemoveRecords(const std::function<bool(const Event&)>& drop) {
  RemoveEventsFromQueue(static_cast<EventQueueRef>(MainQueue), [&drop](const Event& e) {
    if (!drop(e)) return false;
    free(e.payload);
    return true;
  });
}

void PurgeEvents(const XwWindow* window) {
  RemoveRecords([window](const Event& e) {
    if (e.cls != kToolkitEventClass) return false;
    auto* record = static_cast<XwEvent*>(e.payload);
    if (record->focus && !IsLive(record->focus)) record->focus = nullptr;
    return EVclose_find_func(e, window);
  });
}

void MoveWaitingFocus(XwWindow* w) {
  ForEachUserEvent(GetMainEventQueue(), kToolkitEventClass, [w](void* payload) {
    auto* record = static_cast<XwEvent*>(payload);
    if (TopLevel(record->focus) != w) record->focus = w;
  });
}

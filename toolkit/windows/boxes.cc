// Hit-box lists: which drawn thing lies under the pointer.
#include "toolkit/windows/boxes.h"

#include <cstdlib>

#include "toolkit/core/alive.h"
#include "toolkit/core/saturate.h"
#include "toolkit/core/state.h"
#include "toolkit/windows/described.h"
#include "toolkit/windows/tips.h"

namespace {

struct Box {
  int16_t x, y, width, height, id;
};
constexpr uint16_t kClosed = 0xFFFF;
constexpr int kBoxStep = 10;

// As XwCheckPointer, for 16-bit boxes.
bool Inside(const Box& b, int64_t px, int64_t py) {
  return b.x < px && px < b.x + b.width && b.y < py && py < b.y + b.height;
}

}  // namespace

struct XwBoxes {
  Box* boxes;
  XwWindow* window;
  uint16_t count;
  uint16_t capacity;
};

XwBoxes* XAllocbl() {
  auto* list = static_cast<XwBoxes*>(calloc(1, sizeof(XwBoxes)));
  list->boxes = static_cast<Box*>(malloc(kBoxStep * sizeof(Box)));
  list->window = XW;
  list->capacity = kBoxStep;
  return list;
}

void XAddbl(XwBoxes* list, int id) {
  // A capacity that would read as closed is never reached.
  if (!list || list->capacity == kClosed || list->count >= kClosed - kBoxStep) return;
  if (list->count == list->capacity) {
    list->capacity = uint16_t(list->capacity + kBoxStep);
    list->boxes = static_cast<Box*>(realloc(list->boxes, list->capacity * sizeof(Box)));
  }
  list->boxes[list->count++] = {blpx, blpy, bllx, blly, int16_t(id)};
}

void XEndbl(XwBoxes* list) {
  if (list) list->capacity = kClosed;
}

void XFreebl(XwBoxes* list) {
  if (!list) return;
  free(list->boxes);
  free(list);
}

int XCheckbl(XwBoxes* list) {
  if (!list || Inp.window != list->window) return 0;
  const int position = BoxUnder(list->window, Inp.px, Inp.py);
  if (position == 0) return 0;
  const Box& b = list->boxes[position - 1];
  Inp.x = b.x;
  Inp.y = b.y;
  Inp.width = b.width;
  Inp.height = b.height;
  return position;
}

int BoxUnder(const XwWindow* w, int px, int py) {
  for (int i = BoxCount(w); i-- > 0;) {
    const Box& b = w->boxes->boxes[i];
    if (Inside(b, px, py)) return b.id == 0 ? 0 : i + 1;
  }
  return 0;
}

int BoxCount(const XwWindow* w) {
  return w->boxes ? w->boxes->count : 0;
}

bool BoxAt(const XwWindow* w, int position, platform::Rect* out) {
  if (position < 1 || position > BoxCount(w)) return false;
  const Box& b = w->boxes->boxes[position - 1];
  *out = {b.x, b.y, b.x + b.width, b.y + b.height};
  return true;
}

int XwBoxId(XwWindow* w, int position) {
  if (!CheckWindow(w) || position < 1 || position > BoxCount(w)) return 0;
  return w->boxes->boxes[position - 1].id;
}

void XwBoxList(int op, int x, int y, int width, int height) {
  XwWindow* w = XW;
  if (!CheckWindow(w)) return;
  if (op == 3) {
    XFreebl(w->boxes);
    w->boxes = XAllocbl();
    BeginDescribed(w);
    BeginTips(w);
    return;
  }
  if (!w->boxes) {
    Refuse(Refusal::kNoBoxList);
    return;
  }
  if (op == 4) {
    XEndbl(w->boxes);
    EndDescribed(w);
    EndTips(w);
    return;
  }
  blpx = Sat16(x);
  blpy = Sat16(y);
  bllx = Sat16(width);
  blly = Sat16(height);
  XAddbl(w->boxes, op);
}

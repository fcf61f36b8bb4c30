// What every room of the platform shares: plain geometry, status codes, the handles' names.
#pragma once
#include <stddef.h>

#include <cstdint>

namespace platform {

using OSStatus = int;
constexpr OSStatus noErr = 0;
// Returned by a handler that lets the next one (and last the platform's standard handler) run.
constexpr OSStatus eventNotHandledErr = -9874;

// Four-character codes name event classes and commands.
constexpr uint32_t FourCC(const char (&s)[5]) {
  return uint32_t(uint8_t(s[0])) << 24 | uint32_t(uint8_t(s[1])) << 16 |
         uint32_t(uint8_t(s[2])) << 8 | uint32_t(uint8_t(s[3]));
}

// Logical pixels; origin top-left, y down.
struct Point {
  int x = 0, y = 0;
  bool operator==(const Point&) const = default;
};

// Half-open: left and top inside, right and bottom outside.
struct Rect {
  int left = 0, top = 0, right = 0, bottom = 0;
  int width() const { return right - left; }
  int height() const { return bottom - top; }
  bool empty() const { return right <= left || bottom <= top; }
  bool contains(Point p) const { return p.x >= left && p.x < right && p.y >= top && p.y < bottom; }
  bool operator==(const Rect&) const = default;
};

inline Rect Intersect(const Rect& a, const Rect& b) {
  return {a.left > b.left ? a.left : b.left, a.top > b.top ? a.top : b.top,
          a.right < b.right ? a.right : b.right, a.bottom < b.bottom ? a.bottom : b.bottom};
}
inline Rect Offset(const Rect& r, int dx, int dy) {
  return {r.left + dx, r.top + dy, r.right + dx, r.bottom + dy};
}

// A rectangle in device pixels; the same convention.
using DeviceRect = Rect;

// Device pixels per logical pixel. A logical edge maps to the nearest device edge, so neighbours
// never gap or overlap. Saturates instead of overflowing, since coordinates come from callers.
inline int DeviceEdge(int logical, double scale) {
  if (scale == 1.0) return logical;
  double d = logical * scale;
  d = d < 0 ? -double(int64_t(-d + 0.5)) : double(int64_t(d + 0.5));
  constexpr double kLimit = 1 << 30;
  return int(d < -kLimit ? -kLimit : d > kLimit ? kLimit : d);
}
// The logical size that covers a granted device size.
inline int LogicalSize(int device, double scale) {
  if (scale == 1.0) return device;
  int logical = int(device / scale);
  while (DeviceEdge(logical, scale) < device) ++logical;
  return logical;
}

struct Window;
using WindowRef = Window*;
struct Context;
using ContextRef = Context*;
struct Cursor;
using CursorRef = Cursor*;
struct Control;
using ControlRef = Control*;
struct Menu;
using MenuRef = Menu*;
struct WindowControls;  // what the controls' room keeps of a window
struct Event;
struct HandlerCall;  // reserved for calling the next handler; may be passed on unread
using EventHandler = OSStatus (*)(HandlerCall* call, Event* event, void* user_data);

}  // namespace platform

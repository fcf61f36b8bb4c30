#include "platform/display/cursor.h"

#include <algorithm>

#include "platform/display/screens.h"
#include "platform/windows/state.h"

namespace platform {

static constexpr int kCursorSide = 32;

CursorRef CreateDesktopCursor(DesktopCursor which) {
  static constexpr Cursor::Shape kShapes[] = {Cursor::kPicture, Cursor::kArrow, Cursor::kCrosshair,
                                              Cursor::kOpenHand, Cursor::kText};
  if (which == DesktopCursor::kNone) return nullptr;
  auto* c = new Cursor;
  c->shape = kShapes[int(which)];
  return c;
}

static Cursor* NewPicture(int width, int height, int hot_x, int hot_y) {
  if (width < 1 || height < 1 || width > kCursorSide || height > kCursorSide) return nullptr;
  auto* c = new Cursor;
  c->width = width;
  c->height = height;
  c->hot_x = std::clamp(hot_x, 0, width - 1);
  c->hot_y = std::clamp(hot_y, 0, height - 1);
  return c;
}

CursorRef CreatePictureCursor(int width, int height, int hot_x, int hot_y, const uint32_t* argb) {
  Cursor* c = argb ? NewPicture(width, height, hot_x, hot_y) : nullptr;
  if (c) c->pixels.assign(argb, argb + width * height);
  return c;
}

CursorRef CreateDrawnCursor(int width, int height, int hot_x, int hot_y,
                            void (*draw)(const void* source, uint32_t* argb), const void* source) {
  Cursor* c = draw ? NewPicture(width, height, hot_x, hot_y) : nullptr;
  if (c) {
    c->draw = draw;
    c->source = source;
  }
  return c;
}

void ReleaseCursor(CursorRef cursor) {
  if (!cursor) return;
  const Display* d = CurrentDisplay();
  for (WindowRef w : WindowList())
    if (w->cursor == cursor) w->cursor = nullptr;
  if (d && d->destroy_cursor) d->destroy_cursor(cursor);
  delete cursor;
}

void ShowCursor(WindowRef w, CursorRef cursor) {
  if (!cursor || !IsValidWindow(w) || w->cursor == cursor) return;
  w->cursor = cursor;
  CurrentDisplay()->update(w, kUpdateCursor);
}

OSStatus ChooseCursor(HandlerCall*, Event* event, void*) {
  Event e(kEventClassWindow, kEventWindowCursorChange, event->window);
  e.time = event->time;
  e.mouse.where = event->mouse.where;
  SendEventToEventTarget(&e, GetWindowEventTarget(event->window));
  return eventNotHandledErr;
}

void CapturePointer(WindowRef w, CursorRef cursor, Capture who) {
  constexpr GrabMode kModes[] = {GrabMode::kWindow, GrabMode::kProgram, GrabMode::kMenu};
  const Display* d = CurrentDisplay();
  if (!d || !d->grab || (w && !IsValidWindow(w))) return;
  d->grab(w, w ? kModes[int(who)] : GrabMode::kNone, cursor);
}

}  // namespace platform

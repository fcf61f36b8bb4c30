#include "toolkit/events/cursors.h"

#include "platform/controls/controls.h"
#include "platform/windows/windows.h"
#include "toolkit/core/alive.h"
#include "toolkit/core/record.h"
#include "toolkit/core/saturate.h"
#include "toolkit/core/state.h"
#include "toolkit/events/cursor_art.h"
#include "toolkit/events/mouse.h"

using namespace platform;

namespace {

XwCursor* Desktop(DesktopCursor which) {
  return reinterpret_cast<XwCursor*>(CreateDesktopCursor(which));
}

bool BitSet(const uint8_t* plane, int width, int x, int y) {
  return plane[y * (width / 8) + x / 8] >> (x % 8) & 1;
}

uint32_t Opaque(const uint8_t* rgb) {
  return 0xFF000000u | uint32_t(rgb[0]) << 16 | uint32_t(rgb[1]) << 8 | rgb[2];
}

void PutColor(uint8_t* out, uint32_t rgb) {
  out[0] = uint8_t(rgb >> 16);
  out[1] = uint8_t(rgb >> 8);
  out[2] = uint8_t(rgb);
}

}  // namespace

CursorRecord MakeCursorRecord(const CursorArt& art) {
  CursorRecord record{};
  uint8_t* b = record.bytes;
  PutColor(b, art.color);
  PutColor(b + 3, art.outline);
  b[6] = b[7] = uint8_t(art.side);
  b[8] = uint8_t(art.hot_x);
  b[9] = uint8_t(art.hot_y);
  int row_bytes = art.side / 8;
  uint8_t* plane_a = b + kCursorHeader;
  uint8_t* plane_b = plane_a + art.side * row_bytes;
  for (int y = 0; y < art.side; ++y) {
    const char* row = art.rows[y];
    for (int x = 0; x < art.side && row[x]; ++x) {
      uint8_t bit = uint8_t(1u << (x % 8));
      if (row[x] == '#') plane_a[y * row_bytes + x / 8] |= bit;
      if (row[x] == 'o') plane_b[y * row_bytes + x / 8] |= bit;
    }
  }
  return record;
}

// Fills a picture from a valid record.
static void DrawRecord(const uint8_t* record, uint32_t* argb) {
  int width = record[6], height = record[7];
  const uint8_t* plane_a = record + kCursorHeader;
  const uint8_t* plane_b = plane_a + width * height / 8;
  for (int y = 0; y < height; ++y)
    for (int x = 0; x < width; ++x)
      argb[y * width + x] = BitSet(plane_a, width, x, y)   ? Opaque(record)
                            : BitSet(plane_b, width, x, y) ? Opaque(record + 3)
                                                           : 0;
}

XwCursor* XwCocoaCreateCursor(const uint8_t* record) {
  if (!record) return nullptr;
  int width = record[6], height = record[7];
  if (width < 8 || width > 32 || width % 8 || height < 1 || height > 32) return nullptr;
  uint32_t argb[32 * 32];
  DrawRecord(record, argb);
  return reinterpret_cast<XwCursor*>(
      CreatePictureCursor(width, height, record[8], record[9], argb));
}

static void DrawArt(const void* art, uint32_t* argb) {
  DrawRecord(MakeCursorRecord(*static_cast<const CursorArt*>(art)).bytes, argb);
}

void FillCursorTable() {
  for (int i = 0; i < XW_CURSORS; ++i) {
    if (XWcursors[i]) continue;  // of a session before
    switch (i) {
      case 0:
        XWcursors[i] = Desktop(DesktopCursor::kArrow);
        break;
      case 2:
        XWcursors[i] = Desktop(DesktopCursor::kCrosshair);
        break;
      case 16:
        XWcursors[i] = Desktop(DesktopCursor::kOpenHand);
        break;
      default:
        if (const CursorArt* art = FindCursorArt(i))
          XWcursors[i] = reinterpret_cast<XwCursor*>(
              CreateDrawnCursor(art->side, art->side, art->hot_x, art->hot_y, DrawArt, art));
    }
  }
}

void ReleaseCursorTable() {
  for (XwCursor*& cursor : XWcursors) {
    ReleaseCursor(reinterpret_cast<CursorRef>(cursor));
    cursor = nullptr;
  }
}

void XwCocoaSetCursor(XwWindow* w, XwCursor* cursor) {
  if (cursor && IsLive(w)) ShowCursor(NativeWindow(w), reinterpret_cast<CursorRef>(cursor));
}

void ChooseCursor(XwWindow* w, Point where) {
  if (GrabCursor) {
    XwCocoaSetCursor(w, GrabCursor);
    return;
  }
  const Point at{Saturate(int64_t{where.x} - w->x), Saturate(int64_t{where.y} - w->y)};
  if (CursorRef of_control = FindControlCursor(at, NativeWindow(w)))
    return ShowCursor(NativeWindow(w), of_control);
  XwWindow* sub = FindVirtualWindow(w, at.x, at.y);
  XwCocoaSetCursor(w, sub ? sub->cursor : w->cursor);
}

void RestoreCursors() {
  for (XwWindow* w = W_Start; w; w = w->next)
    if (IsTopLevel(w)) ChooseCursor(w, {Inp.root_x, Inp.root_y});
}

void XwSetCursor(XwWindow* w, int32_t index) {
  if (!CheckWindow(w)) return;
  w->cursor = XWcursors[index >= 1 && index <= 20 ? index : 0];
  if (w == Inp.window && !GrabCursor) XwCocoaSetCursor(w, w->cursor);
}

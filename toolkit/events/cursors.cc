// The set of pointer shapes.
#include "toolkit/events/cursor_art.h"
#include "toolkit/events/events.h"
#include "toolkit/windows/windows.h"

using namespace platform;

XwCursor* XWcursors[XW_CURSORS];

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

}  // namespace

XwCursor* XwCocoaCreateCursor(const uint8_t* record) {
  if (!record) return nullptr;
  int width = record[6], height = record[7];
  if (width < 8 || width > 32 || width % 8 || height < 1 || height > 32) return nullptr;
  const uint8_t* plane_a = record + kCursorHeader;
  const uint8_t* plane_b = plane_a + width * height / 8;
  uint32_t argb[32 * 32];
  for (int y = 0; y < height; ++y)
    for (int x = 0; x < width; ++x)
      argb[y * width + x] = BitSet(plane_a, width, x, y)   ? Opaque(record)
                            : BitSet(plane_b, width, x, y) ? Opaque(record + 3)
                                                           : 0;
  return reinterpret_cast<XwCursor*>(
      CreatePictureCursor(width, height, record[8], record[9], argb));
}

void FillCursorTable() {
  if (XWcursors[0]) return;
  for (int i = 0; i < XW_CURSORS; ++i) {
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
        if (const CursorArt* art = FindCursorArt(i)) {
          CursorRecord record = MakeCursorRecord(*art);
          XWcursors[i] = XwCocoaCreateCursor(record.bytes);
        }
    }
  }
}

void XwCocoaSetCursor(XwWindow* w, XwCursor* cursor) {
  if (cursor && IsLive(w)) ShowCursor(NativeWindow(w), reinterpret_cast<CursorRef>(cursor));
}

void XwSetCursor(XwWindow* w, int32_t index) {
  if (!CheckWindow(w)) return;
  w->cursor = XWcursors[index >= 1 && index <= 20 ? index : 0];
  if (w == Inp.window && !GrabCursor) XwCocoaSetCursor(w, w->cursor);
}

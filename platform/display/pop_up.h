// Where a pop-up goes: beside a rectangle of its parent, and on the screen.
#pragma once
#include <vector>

#include "platform/base.h"

namespace platform {

struct Screen;

// Sides and corners are made of these; none of an axis is its middle.
enum PopUpEdge : uint8_t { kEdgeLeft = 1, kEdgeRight = 2, kEdgeTop = 4, kEdgeBottom = 8 };
// What may be done, in this order, to a pop-up that would leave the screen.
enum PopUpAdjust : uint8_t {
  kFlipX = 1,  // to the other side of the anchor, if it fits there
  kFlipY = 2,
  kSlideX = 4,  // along the axis, the start of the pop-up before its end
  kSlideY = 8,
  kResizeX = 16,  // cut down to what the screen shows
  kResizeY = 32,
  kAdjustAll = 63,
};

struct PopUpPlace {
  Rect anchor;                                 // logical, in the parent's content
  uint8_t edge = kEdgeLeft | kEdgeBottom;      // the point of the anchor that the pop-up touches
  uint8_t gravity = kEdgeRight | kEdgeBottom;  // where it extends from that point
  uint8_t adjust = kAdjustAll;
  int width = 0, height = 0;  // logical, as the program wants it
  int corner = 0;             // logical, the radius of its corners: what lies below shows there
};

// The rectangle of a pop-up of width x height, all in device pixels. Never empty.
DeviceRect PlacePopUp(const DeviceRect& anchor, int width, int height, const PopUpPlace& place,
                      const DeviceRect& screen);
// Where the display has to show `w`: its place on the screen that shows the middle of its anchor.
// Of a window that is no pop-up, or has lost its parent, DeviceBounds.
DeviceRect WantedBounds(const Window& w, const Screen* screens, int count);
// What a pop-up of this size in device pixels covers, from the top: its corners are left out. None
// where all of the rectangle is covered.
std::vector<DeviceRect> PopUpOutline(const Window& w, int width, int height);
// The screen that shows a point, or else the nearest. `count` is at least 1.
const Screen& ScreenAt(const Screen* screens, int count, Point at);

}  // namespace platform

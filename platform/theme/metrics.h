// The one table of sizes, in logical pixels, beside the colour roles.
#pragma once

namespace platform {

constexpr int kMenuBarHeight = 24;
constexpr int kCorner = 4;      // of faces, fields and wells
constexpr int kCheckCell = 16;  // a check box or radio button stands in the middle of it
constexpr int kCheckMark = 14;  // and has this size
constexpr int kCheckCorner = 3;
constexpr int kListRow = 18;    // height of a row
constexpr int kScrollBar = 15;  // width of one in a list
constexpr int kFocusRing = 2;   // its width, outside the border
constexpr int kOpaqueAlpha = 255;
constexpr int kThemeDisabledAlpha = 102;  // 40 percent
constexpr int kFocusAlpha = 115;          // 45 percent

}  // namespace platform

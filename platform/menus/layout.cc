// A menu as a list of rows, and what a row looks like.
#include <algorithm>

#include "platform/graphics/context.h"
#include "platform/menus/menu.h"
#include "platform/theme/metrics.h"
#include "platform/theme/roles.h"
#include "platform/theme/text.h"
#include "platform/theme/theme.h"

namespace platform {
namespace {

constexpr int kRow = 22, kSeparator = 9;
constexpr int kMarkMiddle = 14, kTextLeft = 27, kTextRight = 14, kKeyGap = 28, kArrow = 18;
constexpr int kPictureGap = 8;
constexpr int kNarrowest = 80, kWidest = 640;

int LeftOfText(const MenuItem& i) {
  const bool words = !i.text.empty() && i.text != " ";
  return i.picture_width ? kTextLeft + i.picture_width + (words ? kPictureGap : 0) : kTextLeft;
}

}  // namespace

MenuLayout LayOutMenu(const Menu& m) {
  MenuLayout out;
  int text = 0, right = 0, top = 0;
  for (size_t n = 0; n < m.items.size(); ++n) {
    const MenuItem& i = m.items[n];
    if (i.hidden()) continue;
    const int height = i.separator() ? kSeparator : std::max(kRow, i.picture_height + 4);
    out.rows.push_back({int(n + 1), top, height});
    top += height;
    if (i.separator()) continue;
    text = std::max(text, LeftOfText(i) + ThemeTextWidth(i.text, false));
    if (!i.key.empty()) right = std::max(right, kKeyGap + ThemeTextWidth(i.key, false));
    if (i.sub) right = std::max(right, kArrow);
  }
  out.width = std::clamp(text + right + kTextRight, kNarrowest, kWidest) + 2 * kMenuBorder;
  out.height = top + 2 * (kMenuPadding + kMenuBorder);
  return out;
}

void DrawMenuRow(ContextRef c, const Menu& m, const MenuLayout::Row& row, const Rect& at,
                 bool selected, bool erased) {
  const MenuItem& i = m.items[size_t(row.item - 1)];
  if (selected || !erased)
    FillRoundRect(c, at, 0, RoleColor(selected ? Role::kAccent : Role::kFace), kOpaqueAlpha);
  if (i.separator()) {
    const int middle = at.top + row.height / 2;
    DrawThemeSeparator(c, {at.left, middle, at.right, middle + 1}, kThemeStateActive);
    return;
  }
  const int alpha = i.enabled() && !m.disabled ? kOpaqueAlpha : kThemeDisabledAlpha;
  const uint32_t ink = RoleColor(selected ? Role::kDocument : Role::kInk);
  if (i.checked)
    DrawThemeMark(c, ThemeMark::kTick, {at.left, at.top, at.left + 2 * kMarkMiddle, at.bottom}, ink,
                  alpha);
  if (i.picture_width) {
    const int y = at.top + (at.height() - i.picture_height) / 2;
    const int x = at.left + kTextLeft;
    DrawPixels(c, x, y, i.picture_width, i.picture_height, i.picture.data(), i.picture_width);
    // All its sides are equally thick, which a frame in the pixels is not at every scale.
    FrameRoundRect(c, {x, y, x + i.picture_width, y + i.picture_height}, 0, 0x000000, kOpaqueAlpha);
  }
  int right = at.right - kTextRight;
  ThemeTextStyle style;
  style.alpha = alpha;
  if (i.sub) {
    DrawThemeMark(c, ThemeMark::kSubMenuArrow, {right - 4, at.top, right + 6, at.bottom}, ink,
                  alpha);
    right -= kArrow - kTextRight + 10;
  } else if (!i.key.empty()) {
    style.justification = TextJustification::kRight;
    style.rgb = selected ? ink : RoleColor(Role::kSecondInk);
    DrawThemeText(c, {at.left, at.top, right, at.bottom}, i.key, style);
    right -= ThemeTextWidth(i.key, false) + 8;
  }
  style.justification = TextJustification::kLeft;
  style.rgb = ink;
  DrawThemeText(c, {at.left + LeftOfText(i), at.top, right + 4, at.bottom}, i.text, style);
}

}  // namespace platform

// Faces of buttons, check boxes and column heads, and the ring of the keyboard.
#include <algorithm>

#include "platform/graphics/context.h"
#include "platform/theme/metrics.h"
#include "platform/theme/roles.h"
#include "platform/theme/theme.h"

namespace platform {
namespace {

// What a face is filled and framed with.
struct Face {
  Role face, line;
};
// By draw state.
constexpr Face kPlain[] = {
    {Role::kFace, Role::kLine}, {Role::kFace, Role::kLine}, {Role::kPressed, Role::kPressedLine}};
constexpr Face kAccented[] = {{Role::kAccent, Role::kDarkAccent},
                              {Role::kAccent, Role::kDarkAccent},
                              {Role::kDarkAccent, Role::kDarkAccent}};

int StateOf(const ThemeButtonDrawInfo& info) {
  return std::clamp(info.state, int{kThemeStateInactive}, int{kThemeStatePressed});
}
int AlphaOf(const ThemeButtonDrawInfo& info) {
  return info.state == kThemeStateInactive ? kThemeDisabledAlpha : kOpaqueAlpha;
}

void DrawFace(ContextRef c, const Rect& r, int corner, const Face& face, int alpha) {
  FillRoundRect(c, r, corner, RoleColor(face.face), alpha);
  FrameRoundRect(c, r, corner, RoleColor(face.line), alpha);
}

// The box of a check box or radio button.
Rect MarkBox(const Rect& r) {
  const int left = r.left + (kCheckCell - kCheckMark) / 2;
  const int top = r.top + (r.height() - kCheckMark) / 2;
  return {left, top, left + kCheckMark, top + kCheckMark};
}

void DrawCheckBox(ContextRef c, const Rect& r, const ThemeButtonDrawInfo& info) {
  const bool on = info.value != kThemeButtonOff;
  const Rect box = MarkBox(r);
  DrawFace(c, box, kCheckCorner, (on ? kAccented : kPlain)[StateOf(info)], AlphaOf(info));
  if (!on) return;
  const auto mark = info.value == kThemeButtonMixed ? ThemeMark::kDash : ThemeMark::kTick;
  DrawThemeMark(c, mark, box, RoleColor(Role::kDocument), kOpaqueAlpha);
}

void DrawRadioButton(ContextRef c, const Rect& r, const ThemeButtonDrawInfo& info) {
  constexpr int kDot = 4;  // from the border
  const bool on = info.value != kThemeButtonOff;
  const Rect box = MarkBox(r);
  DrawFace(c, box, kCheckMark / 2, (on ? kAccented : kPlain)[StateOf(info)], AlphaOf(info));
  if (info.value == kThemeButtonMixed)
    DrawThemeMark(c, ThemeMark::kDash, box, RoleColor(Role::kDocument), kOpaqueAlpha);
  else if (on)
    FillRoundRect(c, {box.left + kDot, box.top + kDot, box.right - kDot, box.bottom - kDot},
                  kCheckMark / 2 - kDot, RoleColor(Role::kDocument), kOpaqueAlpha);
}

// Flat, with a hairline below and, unless it is to have none, at the right end.
void DrawColumnHead(ContextRef c, const Rect& r, const ThemeButtonDrawInfo& info) {
  constexpr int kMarkRight = 6, kMarkWidth = 9, kLineInset = 4;
  const int alpha = AlphaOf(info);
  const bool up = info.adornment & kThemeAdornmentHeaderButtonSortUp;
  const bool sorts = up || info.adornment & kThemeAdornmentHeaderButtonSortDown;
  // The column that sorts stays pressed as long as it does, so it is only a shade darker.
  const Role pressed = sorts ? Role::kUtility : Role::kPressed;
  FillRoundRect(c, r, 0, RoleColor(StateOf(info) == kThemeStatePressed ? pressed : Role::kToolBar),
                alpha);
  // The lower side of an outline lies at the far edge of its pixel, so that the head's ground does
  // not show below it.
  ClipContextToRect(c, {r.left, r.bottom - 1, r.right, r.bottom});
  FrameRoundRect(c, {r.left - 2, r.top - 2, r.right + 2, r.bottom}, 0, RoleColor(Role::kHairline),
                 kOpaqueAlpha);
  RestoreContextClip(c);
  if (!(info.adornment & kThemeAdornmentHeaderButtonNoLine))
    DrawThemeSeparator(c, {r.right - 1, r.top + kLineInset, r.right, r.bottom - kLineInset},
                       info.state);
  if (!sorts) return;
  DrawThemeMark(c, up ? ThemeMark::kSortUp : ThemeMark::kSortDown,
                {r.right - kMarkRight - kMarkWidth, r.top, r.right - kMarkRight, r.bottom},
                RoleColor(Role::kSecondInk), alpha);
}

bool IsAccented(ThemeButtonKind kind, const ThemeButtonDrawInfo& info) {
  return kind == kThemePushButton && info.adornment & kThemeAdornmentDefault &&
         info.state != kThemeStateInactive;
}

}  // namespace

void DrawThemeButton(ContextRef c, const Rect& r, ThemeButtonKind kind,
                     const ThemeButtonDrawInfo& info) {
  switch (kind) {
    case kThemeCheckBox:
      return DrawCheckBox(c, r, info);
    case kThemeRadioButton:
      return DrawRadioButton(c, r, info);
    case kThemeListHeaderButton:
      return DrawColumnHead(c, r, info);
    default:
      return DrawFace(c, r, kCorner, (IsAccented(kind, info) ? kAccented : kPlain)[StateOf(info)],
                      AlphaOf(info));
  }
}

uint32_t ThemeButtonTextColor(ThemeButtonKind kind, const ThemeButtonDrawInfo& info) {
  return RoleColor(IsAccented(kind, info) ? Role::kDocument : Role::kInk);
}

void DrawThemeFocusRing(ContextRef c, const Rect& border, int corner) {
  FrameRoundRectWide(c,
                     {border.left - kFocusRing, border.top - kFocusRing, border.right + kFocusRing,
                      border.bottom + kFocusRing},
                     corner + kFocusRing, kFocusRing, RoleColor(Role::kAccent), kFocusAlpha);
}

}  // namespace platform

// The buttons and wells that the toolkit draws: a face, a colour, an icon, a line of text.
#include <algorithm>
#include <cstring>
#include <string>

#include "platform/fonts/fonts.h"
#include "platform/graphics/context.h"
#include "platform/text/mac_roman.h"
#include "platform/theme/roles.h"
#include "platform/theme/theme.h"
#include "toolkit/controls/buttons.h"
#include "toolkit/controls/framework.h"
#include "toolkit/drawing/icons.h"
#include "toolkit/drawing/text.h"
#include "toolkit/target/colors.h"

using namespace platform;

namespace {

constexpr int kOpaque = 255, kPressedAlpha = 204, kGreyAlpha = 102;
constexpr int kTextMargin = 6, kTextLeft = 5, kIconLeft = 3, kIconGap = 6, kArrowRight = 11,
              kSortMark = 14, kWellInset = 3;
constexpr int kDarkest = 128;  // of the luminances that take black text

constexpr uint32_t kSorted =
    kThemeAdornmentHeaderButtonSortUp | kThemeAdornmentHeaderButtonSortDown;

struct Look {
  ThemeButtonDrawInfo info;
  int alpha = kOpaque;       // of text and icon
  uint32_t rgb = 0;          // of text and icon
  uint32_t face = 0xFFFFFF;  // behind them
};

Look LookOf(const XwWindow* w, ControlRef control) {
  Look look;
  look.face = RoleColor(Role::kFace);
  // While it is held or its menu is open it looks as with the value 1, without the sorting mark.
  const bool held = IsControlHilited(control);
  const int value = w->kind == XWK_COLOR ? 0 : held ? 1 : w->value;
  if (!IsControlActive(control) || value == -1) {
    look.info.state = kThemeStateInactive;
    look.alpha = kGreyAlpha;
  } else if (value == 1 || value == 2) {
    look.info.state = kThemeStatePressed;
    look.info.value = kThemeButtonOn;
    look.alpha = kPressedAlpha;
    look.face = RoleColor(Role::kPressed);
  }
  const bool marked = w->style & XWC_HEADER && w->value == 1 && !held;
  if (w->kind == XWK_BUTTON && marked)
    look.info.adornment = w->style & XWC_SORT_DOWN ? kThemeAdornmentHeaderButtonSortDown
                                                   : kThemeAdornmentHeaderButtonSortUp;
  if (w->kind == XWK_BUTTON && w->style & XWC_HEADER && w->style & XWC_VARIANT)
    look.info.adornment |= kThemeAdornmentHeaderButtonNoLine;
  return look;
}

Rect Inset(const Rect& r, int by) {
  return {r.left + by, r.top + by, r.right - by, r.bottom - by};
}

void DrawWell(ContextRef c, const XwWindow* w, const Rect& r, Look* look) {
  const uint32_t rgb = ColorToRgb(w->value);
  const int alpha = look->info.state == kThemeStateInactive ? kGreyAlpha : kOpaque;
  Rect inside = r;
  if (w->style & XWC_VARIANT) {
    DrawThemeGenericWell(c, r, look->info.state, false);
    inside = Inset(r, kWellInset);
  } else if (w->style & XWC_ICON) {
    DrawThemeButton(c, r, kThemeBevelButton, look->info);
    inside = Inset(r, kWellInset);
  }
  FillRoundRect(c, inside, 0, rgb, alpha);
  if (inside == r) FrameRoundRect(c, r, 0, 0x000000, alpha);
  const double luminance =
      0.3 * (rgb >> 16 & 0xFF) + 0.59 * (rgb >> 8 & 0xFF) + 0.11 * (rgb & 0xFF);
  look->rgb = int(luminance) <= kDarkest ? 0xFFFFFF : 0x000000;
  look->alpha = alpha;
  look->face = rgb;
}

// The distance from the lower edge at which a part of height `inner` is centred; an odd pixel is
// left above it.
int Below(const Rect& r, int inner) {
  return (r.height() - inner) / 2;
}

// What shows of a column head's title in that room: a whole title, or one cut with dots; nothing
// where not even its first letter has room.
std::string FittingTitle(XwFont* font, const std::string& title, int room) {
  constexpr char kDots[] = "…";
  if (XwTextWidthUtf8(font, title.c_str()) <= room) return title;
  char cut[256];
  // Trimmed is what is narrower than the width.
  const int rest = room - XwTextWidthUtf8(font, kDots) + 1;
  if (rest <= 0 || !XwTextTrimUtf8(font, title.c_str(), rest, cut, sizeof cut)) return "";
  return std::string(cut) + kDots;
}

void DrawLabel(ContextRef c, const XwWindow* w, const Rect& r, bool arrow, const Look& look) {
  XwFont* font = arrow ? FT_BUTTON : FT_SMALL;
  SizedFont* sized = toolkit::Sized(font);
  if (!sized) return;
  int x = r.left + kTextLeft;
  int up = font->descent + Below(r, font->ascent + font->descent);
  const bool header = w->kind == XWK_BUTTON && w->style & XWC_HEADER;
  const int mark = look.info.adornment & kSorted ? kSortMark + kTextLeft : 0;
  std::string text = MacRomanToUtf8(w->text);
  if (header) text = FittingTitle(font, text, r.width() - kTextLeft - mark);
  if (!arrow) {
    ++up;
    if (!(w->style & XWC_LEFT)) {
      const std::string trimmed = XwTextTrim(font, w->text, r.width() - kTextMargin);
      const int width =
          header ? XwTextWidthUtf8(font, text.c_str()) : XwTextWidth(font, trimmed.c_str());
      const int spare = r.width() - width;
      const bool right = header && w->style & XWC_RIGHT;
      x = r.left + (right ? spare - std::max(mark, kTextLeft) : std::min(spare / 2, spare - mark));
    }
  }
  DrawUtf8(c, sized, x, r.bottom - up, text, look.rgb, look.alpha);
  if (!IsControlLetterShown(NativeControl(w))) return;
  const char first[2] = {w->text[0], 0};
  SetContextColor(c, look.rgb);
  const int under = XwTextWidth(font, first);
  StrokeLineSolid(c, x, r.bottom - up + 1, x + (under > 1 ? under - 1 : 0), r.bottom - up + 1);
}

// Null where it has none, or one of a size that no button shows.
XwIcon* IconOf(const XwWindow* w) {
  if (!(w->style & XWC_ICON) || w->kind == XWK_COLOR) return nullptr;
  auto* icon = static_cast<XwIcon*>(w->user_data);
  auto shown = [](int size) { return size > 0 && size <= INT16_MAX; };
  return icon && shown(icon->width) && shown(icon->height) ? icon : nullptr;
}

void DrawIconAt(ContextRef c, XwIcon* icon, int x, int bottom, const Look& look) {
  PaintIcon(c, icon, x, bottom - icon->height, look.rgb, look.alpha, look.face);
}

// An icon with its text beside it, in the middle of the button.
void DrawIconWithText(ContextRef c, XwIcon* icon, const char* utf8, const Rect& r,
                      const Look& look) {
  SizedFont* sized = toolkit::Sized(FT_BUTTON);
  if (!sized) return;
  const int width = icon->width + kIconGap + XwTextWidthUtf8(FT_BUTTON, utf8);
  const int x = r.left + std::max(kIconLeft, (r.width() - width) / 2);
  const int up = FT_BUTTON->descent + Below(r, FT_BUTTON->ascent + FT_BUTTON->descent);
  DrawIconAt(c, icon, x, r.bottom - Below(r, icon->height), look);
  DrawUtf8(c, sized, x + icon->width + kIconGap, r.bottom - up, utf8, look.rgb, look.alpha);
}

}  // namespace

void ButtonDraw_Func(ControlRef control) {
  auto* w = static_cast<XwWindow*>(GetControlReference(control));
  ContextRef c = GetControlContext(control);
  if (!w || !c) return;
  const Rect r = GetControlBounds(control);
  XwIcon* icon = IconOf(w);
  Look look = LookOf(w, control);
  bool arrow = false;
  if (w->kind == XWK_COLOR) {
    DrawWell(c, w, r, &look);
  } else if (w->kind == XWK_BUTTON) {
    const bool header = w->style & XWC_HEADER;
    arrow = !header && w->style & XWC_MENU && w->button_menu;
    DrawThemeButton(c, r, header ? kThemeListHeaderButton : kThemeBevelButton, look.info);
  }
  const bool labelled = w->text && *w->text;
  const bool beside = labelled && icon && w->style & XWC_BESIDE;
  if (labelled && !beside) DrawLabel(c, w, r, arrow, look);
  if (beside) {
    DrawIconWithText(c, icon, MacRomanToUtf8(w->text).c_str(), r, look);
  } else if (icon) {
    const int x = arrow ? r.left + kIconLeft : r.left + (r.width() - icon->width) / 2;
    DrawIconAt(c, icon, x, r.bottom - Below(r, icon->height), look);
  }
  if (arrow) DrawIconAt(c, IC_OPT_MENU, r.right - kArrowRight, r.bottom, look);
}

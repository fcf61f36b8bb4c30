// The menu strip at the top of the first window: for now it carries the session's name.
#include <algorithm>
#include <cstring>

#include "platform/display/screens.h"
#include "platform/display/window.h"
#include "platform/fonts/fonts.h"
#include "platform/graphics/context.h"
#include "platform/theme/roles.h"

namespace platform {
namespace {

constexpr int kBigSystemFont = -1;
constexpr int kNameLeft = 10;

struct StripFont {
  SizedFont* font;
  int baseline;  // centres ascent and descent in the strip
};

const StripFont& GetStripFont(int strip) {
  static const StripFont made = [strip] {
    ThemeFont theme = GetThemeFont(kBigSystemFont);
    const FontFace* face = FindFont((theme.family + " Bold").c_str());
    if (!face) face = FindFont(theme.family.c_str());
    if (!face) face = FallbackFont();
    if (!face) return StripFont{nullptr, 0};
    FontMetrics m = GetFontMetrics(face);
    int ascent = int(m.ascent * float(theme.size) + 0.5f);
    int descent = int(0.5f - m.descent * float(theme.size));
    return StripFont{OpenFont(face, theme.size), (strip - ascent - descent) / 2 + ascent};
  }();
  return made;
}

}  // namespace

void DrawMenuStrip(WindowRef w) {
  Surface& s = w->surface;
  if (!w->strip || !s.pixels) return;
  int bottom = DeviceEdge(w->strip, s.scale);
  int line = std::max(1, int(s.scale));
  FillSurface(&s, {0, 0, s.width, bottom - line}, RoleColor(Role::kToolBar));
  FillSurface(&s, {0, bottom - line, s.width, bottom}, RoleColor(Role::kHairline));
  const StripFont& strip = GetStripFont(w->strip);
  if (!strip.font) return;
  const char* name = PlatformSessionName();
  ContextRef c = CreateSurfaceContext(&s);
  ClipContextToRegion(c, Region(Rect{0, 0, w->content.width(), w->strip - 1}));
  DrawGlyphs(c, strip.font, kNameLeft, strip.baseline, name, strlen(name), RoleColor(Role::kInk));
  ReleaseContext(c);
}

}  // namespace platform

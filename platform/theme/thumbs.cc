#include "platform/theme/thumbs.h"

#include <algorithm>

#include "platform/graphics/context.h"
#include "platform/theme/metrics.h"
#include "platform/theme/roles.h"
#include "platform/theme/theme.h"

namespace platform {
namespace {

constexpr int kKnob = 15, kTrack = 4;  // of a slider
constexpr int kMargin = 3;             // between a bar's border and its thumb
constexpr int kShortest = 20;          // thumb of a bar that has room for it
constexpr int kThumbCorner = 4, kBarCorner = 3;

// The way of the thumb along the longer axis, and its length.
struct Way {
  int start = 0, length = 0, thumb = 0;
  int travel() const { return length - thumb; }
};

int Thickness(const ThemeThumbInfo& i) {
  return i.horizontal ? i.bounds.height() : i.bounds.width();
}

Way WayOf(const ThemeThumbInfo& i) {
  Way w;
  w.start = i.horizontal ? i.bounds.left : i.bounds.top;
  w.length = i.horizontal ? i.bounds.width() : i.bounds.height();
  if (i.slider) {
    w.thumb = std::min({kKnob, Thickness(i), w.length});
    return w;
  }
  w.start += kMargin;
  w.length -= 2 * kMargin;
  const int64_t range = int64_t{i.maximum} - i.minimum, view = std::max(i.view, 0);
  if (range > 0) w.thumb = int(w.length * view / (range + view));
  w.thumb = std::max(w.thumb, std::min(kShortest, w.length / 2));
  return w;
}

// A slider that stands has its maximum at the top.
bool Turned(const ThemeThumbInfo& i) {
  return i.slider && !i.horizontal;
}

int PlaceOf(const ThemeThumbInfo& i, const Way& w) {
  const int64_t range = int64_t{i.maximum} - i.minimum;
  if (range <= 0) return Turned(i) ? w.start + w.travel() : w.start;
  const int64_t value = int64_t{std::clamp(i.value, i.minimum, i.maximum)} - i.minimum;
  const int place = int((value * w.travel() + range / 2) / range);
  return w.start + (Turned(i) ? w.travel() - place : place);
}

Rect Along(const ThemeThumbInfo& i, int from, int to, int inset) {
  const Rect& b = i.bounds;
  return i.horizontal ? Rect{from, b.top + inset, to, b.bottom - inset}
                      : Rect{b.left + inset, from, b.right - inset, to};
}

int AlphaOf(const ThemeThumbInfo& i) {
  return i.active ? kOpaqueAlpha : kThemeDisabledAlpha;
}

// The part of a slider's track from one end of the bounds to the knob, or from there to the other.
void DrawTrack(ContextRef c, const ThemeThumbInfo& i, const Rect& part, Role role) {
  const Way way = WayOf(i);
  // In the middle of the knob.
  const int inset = (Thickness(i) - way.thumb) / 2 + (way.thumb - kTrack) / 2;
  Rect track = Along(i, way.start, way.start + way.length, 0);
  (i.horizontal ? track.top : track.left) += inset;
  (i.horizontal ? track.bottom : track.right) = (i.horizontal ? track.top : track.left) + kTrack;
  ClipContextToRect(c, part);
  FillRoundRect(c, track, kTrack / 2, RoleColor(role), AlphaOf(i));
  RestoreContextClip(c);
}

}  // namespace

Rect ThemeThumb(const ThemeThumbInfo& i) {
  const Way way = WayOf(i);
  if (way.thumb <= 0 || (!i.slider && !ThumbMoves(i))) return {};
  const int from = PlaceOf(i, way);
  if (!i.slider) return Along(i, from, from + way.thumb, std::min(kMargin, (Thickness(i) - 1) / 2));
  Rect knob = Along(i, from, from + way.thumb, (Thickness(i) - way.thumb) / 2);
  (i.horizontal ? knob.bottom : knob.right) = (i.horizontal ? knob.top : knob.left) + way.thumb;
  return knob;
}

int32_t ThemeThumbValue(const ThemeThumbInfo& i, int place) {
  const Way way = WayOf(i);
  const int64_t range = int64_t{i.maximum} - i.minimum;
  if (range <= 0 || way.travel() <= 0) return i.minimum;
  int64_t at = std::clamp(int64_t{place} - way.start, int64_t{0}, int64_t{way.travel()});
  if (Turned(i)) at = way.travel() - at;
  return int32_t(i.minimum + (at * range + way.travel() / 2) / way.travel());
}

void DrawThemeScrollBar(ContextRef c, const ThemeThumbInfo& i) {
  const int alpha = AlphaOf(i), corner = i.framed ? kBarCorner : 0;
  FillRoundRect(c, i.bounds, corner, RoleColor(Role::kScrollBackground), alpha);
  if (i.framed)
    FrameRoundRect(c, i.bounds, corner, RoleColor(Role::kHairline), alpha);
  else  // what it belongs to lies left of it or above
    DrawThemeSeparator(c,
                       i.horizontal
                           ? Rect{i.bounds.left, i.bounds.top, i.bounds.right, i.bounds.top + 1}
                           : Rect{i.bounds.left, i.bounds.top, i.bounds.left + 1, i.bounds.bottom},
                       i.active ? kThemeStateActive : kThemeStateInactive);
  const Role role = i.held ? Role::kHeldThumb : i.front ? Role::kThumb : Role::kInactiveSelection;
  FillRoundRect(c, ThemeThumb(i), kThumbCorner, RoleColor(role), alpha);
}

void DrawThemeSlider(ContextRef c, const ThemeThumbInfo& i) {
  const Rect knob = ThemeThumb(i), b = i.bounds;
  if (!c || knob.empty()) return;
  // The track ends under the knob's border, so that a pale knob does not show it.
  const Rect before = i.horizontal ? Rect{b.left, b.top, knob.left + 1, b.bottom}
                                   : Rect{b.left, b.top, b.right, knob.top + 1};
  const Rect behind = i.horizontal ? Rect{knob.right - 1, b.top, b.right, b.bottom}
                                   : Rect{b.left, knob.bottom - 1, b.right, b.bottom};
  const Role filled = !i.active ? Role::kTrack : i.front ? Role::kAccent : Role::kThumb;
  DrawTrack(c, i, before, i.horizontal ? filled : Role::kTrack);
  DrawTrack(c, i, behind, i.horizontal ? Role::kTrack : filled);
  const int radius = (knob.width() + 1) / 2;
  FillRoundRect(c, knob, radius, RoleColor(i.held ? Role::kPressed : Role::kFace), AlphaOf(i));
  FrameRoundRect(c, knob, radius, RoleColor(i.held ? Role::kPressedLine : Role::kLine), AlphaOf(i));
}

}  // namespace platform

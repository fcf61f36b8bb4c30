#include "toolkit/controls/alert_art.h"

#include <vector>

#include "platform/display/program_icon.h"
#include "platform/graphics/context.h"
#include "platform/graphics/outline.h"
#include "platform/theme/roles.h"

using namespace platform;

namespace {

using enum PathVerb;

// One part of a picture, in a box of 64: an outline, filled, or stroked where it has a width.
struct Layer {
  Role role;
  int percent;  // of the role's brightness
  float stroke;
  int count;
  PathPart parts[9];
};

constexpr PathPart kOctagon[] = {
    {kMove, 21.5f, 5.5f},  {kLine, 44.5f, 5.5f},  {kLine, 60.5f, 21.5f},
    {kLine, 60.5f, 44.5f}, {kLine, 44.5f, 60.5f}, {kLine, 21.5f, 60.5f},
    {kLine, 5.5f, 44.5f},  {kLine, 5.5f, 21.5f},  {kClose}};
constexpr Layer kStop[] = {
    {Role::kBad,
     100,
     0,
     9,
     {kOctagon[0], kOctagon[1], kOctagon[2], kOctagon[3], kOctagon[4], kOctagon[5], kOctagon[6],
      kOctagon[7], kOctagon[8]}},
    {Role::kBad,
     82,
     1,
     9,
     {kOctagon[0], kOctagon[1], kOctagon[2], kOctagon[3], kOctagon[4], kOctagon[5], kOctagon[6],
      kOctagon[7], kOctagon[8]}},
    {Role::kFace, 100, 6, 2, {{kMove, 33, 19}, {kLine, 33, 36}}},
    {Role::kFace, 100, 7.5f, 2, {{kMove, 33, 47}, {kLine, 33, 47.1f}}},
};

// The control points of a circle's quarter.
constexpr float kRadius = 27.5f, kBow = kRadius * 0.5523f, kMiddle = 33;
constexpr float kNear = kMiddle - kRadius, kFar = kMiddle + kRadius;
constexpr PathPart kCircle[] = {
    {kMove, kMiddle, kNear},
    {kCubic, kFar, kMiddle, kMiddle + kBow, kNear, kFar, kMiddle - kBow},
    {kCubic, kMiddle, kFar, kFar, kMiddle + kBow, kMiddle + kBow, kFar},
    {kCubic, kNear, kMiddle, kMiddle - kBow, kFar, kNear, kMiddle + kBow},
    {kCubic, kMiddle, kNear, kNear, kMiddle - kBow, kMiddle - kBow, kNear},
    {kClose},
};
constexpr Layer kNote[] = {
    {Role::kAccent,
     100,
     0,
     6,
     {kCircle[0], kCircle[1], kCircle[2], kCircle[3], kCircle[4], kCircle[5]}},
    {Role::kDarkAccent,
     100,
     1,
     6,
     {kCircle[0], kCircle[1], kCircle[2], kCircle[3], kCircle[4], kCircle[5]}},
    {Role::kFace,
     100,
     5.5f,
     5,
     {{kMove, 24, 26},
      {kCubic, 33, 17.5f, 24, 20.5f, 28, 17.5f},
      {kCubic, 42, 25.5f, 38.5f, 17.5f, 42, 21},
      {kCubic, 33, 36.5f, 42, 31, 33, 31},
      {kLine, 33, 38}}},
    {Role::kFace, 100, 7.5f, 2, {{kMove, 33, 47.5f}, {kLine, 33, 47.6f}}},
};

uint32_t Dimmed(uint32_t rgb, int percent) {
  uint32_t out = 0;
  for (const int shift : {16, 8, 0})
    out |= (rgb >> shift & 0xFF) * uint32_t(percent) / 100 << shift;
  return out;
}

template <int N>
void DrawLayers(ContextRef c, const Layer (&layers)[N], const Rect& box) {
  for (const Layer& layer : layers) {
    Outline* o = CreateOutline(layer.parts, layer.count, layer.stroke);
    DrawOutline(c, o, box.left, box.top, Dimmed(RoleColor(layer.role), layer.percent), 255);
    ReleaseOutline(o);
  }
}

void Fill(ContextRef c, const Rect& r, Role role) {
  SetContextColor(c, RoleColor(role));
  FillRect(c, r.left, r.top, r.width(), r.height());
}

// A window with a title, two lines of text and a button.
void DrawWindow(ContextRef c, const Rect& box) {
  const int unit = box.width() / 32;
  auto at = [&](int left, int top, int right, int bottom) {
    return Rect{box.left + left * unit, box.top + top * unit, box.left + right * unit,
                box.top + bottom * unit};
  };
  constexpr int kCorner = 2;
  const Rect whole = at(3, 5, 29, 27);
  FillRoundRect(c, whole, kCorner * unit, RoleColor(Role::kFace), 255);
  Fill(c, {whole.left + 1, whole.top + kCorner * unit, whole.right - 1, whole.top + 5 * unit},
       Role::kAccent);
  FillRoundRect(c, at(3, 5, 29, 9), kCorner * unit, RoleColor(Role::kAccent), 255);
  Fill(c, at(7, 13, 25, 14), Role::kSecondInk);
  Fill(c, at(7, 16, 19, 17), Role::kSecondInk);
  FillRoundRect(c, at(17, 20, 26, 24), unit, RoleColor(Role::kAccent), 255);
  FrameRoundRect(c, whole, kCorner * unit, RoleColor(Role::kDarkAccent), 255);
}

// At twice the box's size or the next larger one: sharp at each scale. False: the program has none.
bool DrawProgramIcon(ContextRef c, const Rect& box) {
  const std::vector<ProgramIcon>& icons = ProgramIcons();
  if (icons.empty()) return false;
  const ProgramIcon* best = &icons.back();
  for (size_t i = icons.size(); i-- > 0;)
    if (icons[i].size >= 2 * box.width()) best = &icons[i];
  DrawIconPicture(c, box.left, box.top, box.width(), box.height(), best->argb.data(), best->size);
  return true;
}

}  // namespace

void DrawAlertPicture(ContextRef c, AlertPicture picture, const Rect& box) {
  if (picture == AlertPicture::kStop) DrawLayers(c, kStop, box);
  if (picture == AlertPicture::kNote) DrawLayers(c, kNote, box);
  if (picture == AlertPicture::kApplication && !DrawProgramIcon(c, box)) DrawWindow(c, box);
}

#include "platform/windows/tip.h"

#include "platform/events/targets.h"
#include "platform/graphics/context.h"
#include "platform/theme/metrics.h"
#include "platform/theme/roles.h"
#include "platform/theme/text.h"
#include "platform/windows/windows.h"

namespace platform {
namespace {

constexpr int kBeside = 8, kAbove = 3, kGap = 4;

struct Tip {
  WindowRef window = nullptr;
  std::string text;
};
Tip& Shown() {
  static auto* tip = new Tip;
  return *tip;
}

void Draw() {
  const Tip& tip = Shown();
  const Rect b = GetWindowBounds(tip.window, kWindowContentRgn);
  const Rect all{0, 0, b.width(), b.height()};
  ContextRef c = CreateContext(tip.window);
  ClipContextToRegion(c, Region(all));
  FillRoundRect(c, all, 0, RoleColor(Role::kFace), kOpaqueAlpha);
  FrameRoundRect(c, all, 0, RoleColor(Role::kLine), kOpaqueAlpha);
  ThemeTextStyle style;
  style.view = true;
  style.justification = TextJustification::kLeft;
  style.rgb = RoleColor(Role::kInk);
  DrawThemeText(c, {kBeside, 0, all.right - kBeside + 1, all.bottom}, tip.text, style);
  ReleaseContext(c);
}

OSStatus DrawContent(HandlerCall*, Event* event, void*) {
  if (event->window != Shown().window) return eventNotHandledErr;
  Draw();
  return noErr;
}

// The window ends, with its parent or by itself.
OSStatus Ending(HandlerCall*, Event* event, void*) {
  if (event->window == Shown().window) Shown() = Tip();
  return eventNotHandledErr;
}

int TextWidth(const ThemeTextFont& font, const std::string& text) {
  TextLine line;
  LayOutText(font.font, text, &line);
  const TextScale scale = GetTextScale(font.font);
  return int((line.width() * scale.size + scale.units_per_em - 1) / scale.units_per_em);
}

}  // namespace

void ShowTip(WindowRef parent, const Rect& anchor, const std::string& text) {
  HideTip();
  const ThemeTextFont font = GetViewTextFont();
  if (text.empty() || !font.font || !IsValidWindow(parent)) return;
  PopUpPlace place;
  place.anchor = {anchor.left, anchor.top - kGap, anchor.right, anchor.bottom + kGap};
  place.width = TextWidth(font, text) + 2 * kBeside;
  place.height = font.ascent + font.descent + 2 * kAbove;
  Tip& tip = Shown();
  tip.window = CreatePopUpWindow(parent, place);
  if (!tip.window) return;
  tip.text = text;
  constexpr EventKind kDraw[] = {{kEventClassWindow, kEventWindowDrawContent},
                                 {kEventClassWindow, kEventWindowBoundsChanged}};
  constexpr EventKind kEnding[] = {{kEventClassWindow, kEventWindowEnding}};
  InstallEventHandler(GetWindowEventTarget(tip.window), DrawContent, kDraw, 2, nullptr);
  InstallEventHandler(GetWindowEventTarget(tip.window), Ending, kEnding, 1, nullptr);
  SetWindowBackgroundColor(tip.window, RoleColor(Role::kFace));
  ShowWindow(tip.window);
  Draw();
  ValidateWindow(tip.window);
}

void HideTip() {
  if (Shown().window) DisposeWindow(Shown().window);
}

}  // namespace platform

// The question that stands in the window's middle when it is to be closed before every document has
// been sent. It answers itself once they have been.
#include <algorithm>

#include "app/format/texts.h"
#include "app/window/console.h"

namespace console {
namespace {

enum Answer { kClose, kKeepOpen };
constexpr const char* kLabels[] = {"Close without Sending", "Keep Open"};
constexpr int kWidth = 400, kHeight = 122, kBorder = 16;
constexpr int kButtonWidths[] = {172, 100}, kButtonHeight = 28, kGap = 10;

// Those that are given up when the window closes.
int Unsent(const Console* c) {
  const auto& all = c->state.transfers;
  return c->just_sent + int(std::count_if(all.begin(), all.end(), [](const Transfer& t) {
           return t.state != Sending::kCancelling;
         }));
}

bool AllFailed(const Console* c) {
  const auto& all = c->state.transfers;
  return c->just_sent == 0 && std::all_of(all.begin(), all.end(), [](const Transfer& t) {
           return t.state == Sending::kFailed || t.state == Sending::kCancelling;
         });
}

Area SheetArea(const Console* c) {
  const int w = c->window->width, h = c->window->height;
  return {(w - kWidth) / 2, (h - kHeight) * 2 / 5, kWidth, kHeight};
}

Area ButtonArea(const Console* c, int answer) {
  Area buttons = SheetArea(c).Inset(kBorder, kBorder);
  buttons = buttons.TakeBottom(kButtonHeight);
  Area button{};
  for (int i = kKeepOpen; i >= answer; --i) {
    button = buttons.TakeRight(kButtonWidths[i]);
    buttons.TakeRight(kGap);
  }
  return button;
}

void KeepOpen(Console* c) {
  c->asking = false;
  c->damage |= kAllPanes;
}

}  // namespace

bool AskBeforeQuit(Console* c) {
  if (Unsent(c) == 0) return true;
  c->asking = true;
  c->answer = kKeepOpen;
  c->list_open = false;
  c->pressed = {};
  c->files.Release();
  c->queue.Release();
  c->damage |= kAllPanes;
  return false;
}

bool MayLeaveNow(const Console* c) {
  return c->asking && Unsent(c) == 0;
}

bool GiveAnswer(Console* c, int answer) {
  if (answer == kClose) return true;
  KeepOpen(c);
  return false;
}

bool QuestionKey(Console* c, int type) {
  switch (type) {
    case XWE_TAB:
    case XWE_LEFT:
    case XWE_RIGHT:
      c->answer = type == XWE_LEFT    ? kClose
                  : type == XWE_RIGHT ? kKeepOpen
                                      : kClose + kKeepOpen - c->answer;
      c->damage |= kAllPanes;
      return false;
    case XWE_RETURN:
    case ' ':
      return GiveAnswer(c, c->answer);
    case XWE_ESCAPE:
      KeepOpen(c);
      return false;
    default:
      return false;
  }
}

void DrawQuestion(const Console* c) {
  const Style& l = TheStyle();
  const Area a = SheetArea(c);
  DrawShadow(a, 8);
  XwRoundBox(a.x, a.y, a.w, a.h, 8, l.tool_bar, l.line);
  Area text = a.Inset(kBorder, kBorder);
  const int n = Unsent(c);
  DrawLabel(l.bold, Align::kLeft, text.TakeTop(18),
            CountText(n, "document has", "documents have") + " not been sent", l.ink);
  text.TakeTop(6);
  DrawLabel(l.view, Align::kLeft, text.TakeTop(16),
            AllFailed(c) ? "The queue says why. What is not sent is not printed."
                         : "The window closes by itself as soon as everything is sent.",
            l.second);
  for (const int answer : {kClose, kKeepOpen}) {
    const Hit hit{kQuestion, 1, answer};
    ButtonState s = ButtonAt(c, hit, true);
    s.focused = c->active && c->answer == answer;
    const Area button = ButtonArea(c, answer);
    DrawLabel(l.normal, Align::kCenter, button, kLabels[answer], DrawFace(button, s, l.tool_bar));
  }
}

void AddQuestionHits(Console* c) {
  c->hits.Cover({0, 0, c->window->width, c->window->height});
  for (const int answer : {kClose, kKeepOpen})
    c->hits.Add({kQuestion, 1, answer}, ButtonArea(c, answer));
}

}  // namespace console

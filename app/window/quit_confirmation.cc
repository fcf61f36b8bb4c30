// The question that stands in the window's middle when it is to be closed before everything has
// reached the server. It answers itself once that is so.
#include "app/look/controls.h"
#include "app/model/queue_words.h"
#include "app/panes/ids.h"
#include "app/window/console.h"

namespace console {
namespace {

constexpr int kWidth = 400, kHeight = 142, kBorder = 16;
constexpr int kCloseWidth = 172, kKeepWidth = 100, kButtonHeight = 28, kGap = 10;
constexpr int kLine = 18;
constexpr uint32_t kShown = XWC_ENABLED | XWC_VISIBLE;

XwWindow *close_button, *keep_button;
Console* asker;

// What comes of closing.
const char* ClosingWords(const Unsent& unsent) {
  const int documents = unsent.waiting + unsent.failed;
  if (documents == 0)
    return unsent.changes == 1 ? "If you close now, it may never be made."
                               : "If you close now, they may never be made.";
  if (unsent.changes > 0) return "If you close now, they are lost.";
  return documents == 1 ? "If you close now, it is not printed."
                        : "If you close now, they are not printed.";
}

// What comes of leaving the question alone.
const char* WaitingWords(const Unsent& unsent) {
  if (unsent.failed == 0)
    return unsent.changes > 0 ? "If you wait, the window closes when all is done."
                              : "If you wait, the window closes when all is sent.";
  return unsent.waiting + unsent.changes == 0
             ? "The queue says why. “Release” there sends again."
             : "The queue says why. The others are still under way.";
}

Area SheetArea(const Console* c) {
  const int w = c->window->width, h = c->window->height;
  return {(w - kWidth) / 2, (h - kHeight) * 2 / 5, kWidth, kHeight};
}

void KeepOpen(Console* c) {
  c->asking = false;
  XwSetDragHandler(c->window, 1, c->window->drag_handler);
  XwShow(c->question, 0);
  XwSetFocus(c->window);
  c->damage |= kAllPanes;
}

void Describe(const Area& a, const std::string& text) {
  XwBoxList(1, a.x, a.y, a.w, a.h);
  XwDescribe(-1, XWA_LABEL, 0, text.c_str(), "");
}

void DrawSheet(const Console* c) {
  const Style& l = TheStyle();
  const Area a{0, 0, kWidth, kHeight};
  XwPush(c->question);
  Fill(a, l.tool_bar);
  XwSetColor(l.line);
  XwDrawRect(a.x, a.y, a.w, a.h);
  Area text = a.Inset(kBorder, kBorder);
  const Unsent unsent = NotAtServer(c);
  const Area title = text.TakeTop(kLine);
  text.TakeTop(6);
  const Area closing = text.TakeTop(kLine), waiting = text.TakeTop(kLine);
  DrawLabel(l.bold, Align::kLeft, title, UnsentText(unsent), l.ink);
  DrawLabel(l.view, Align::kLeft, closing, ClosingWords(unsent), l.ink);
  DrawLabel(l.view, Align::kLeft, waiting, WaitingWords(unsent), l.second);
  XwBoxList(3, 0, 0, 0, 0);
  Describe(title, UnsentText(unsent));
  Describe(closing, ClosingWords(unsent));
  Describe(waiting, WaitingWords(unsent));
  XwBoxList(4, 0, 0, 0, 0);
  XwPop();
}

// Keys and reports are the window's.
int Handle(int type) {
  if (type == XWE_EXPOSE) {
    DrawSheet(asker);
    return 0;
  }
  const bool pointer = type >= XWE_CONFIGURE && type <= XWE_RELEASE;
  return pointer ? 0 : asker->window->handler(type);
}

void MakeQuestion(Console* c) {
  asker = c;
  c->question = XwCreate(c->window, 0, 0, kWidth, kHeight, Handle);
  XwSetGround(c->question, &TheStyle().tool_bar, 0);
  const int top = kHeight - kBorder - kButtonHeight, right = kWidth - kBorder;
  // The harmless one comes first, with Tab, too.
  keep_button = XwButton(c->question, "Keep Open", kKeepOpenAnswer, 0, 0, 9, 9, kShown, 0);
  close_button =
      XwButton(c->question, "Close without Sending", kCloseAnswer, 0, 0, 9, 9, kShown, 0);
  PlaceControl(close_button, {right - kCloseWidth, top, kCloseWidth, kButtonHeight});
  PlaceControl(keep_button,
               {right - kCloseWidth - kGap - kKeepWidth, top, kKeepWidth, kButtonHeight});
}

}  // namespace

Unsent NotAtServer(const Console* c) {
  Unsent unsent{c->just_sent, 0, c->state.pending.Unanswered()};
  for (const Transfer& t : c->state.transfers) {
    if (t.state == Sending::kFailed)
      ++unsent.failed;
    else if (t.state != Sending::kCancelling)
      ++unsent.waiting;
  }
  return unsent;
}

void PlaceQuestion(Console* c) {
  if (!c->asking) return;
  const Area a = SheetArea(c);
  XwMove(c->question, a.x, a.y, a.w, a.h);
}

bool AskBeforeQuit(Console* c) {
  const Unsent unsent = NotAtServer(c);
  if (!unsent.any()) return true;
  if (c->asking) return false;
  c->asking = true;
  c->failed_while_asking = false;
  if (!c->question) MakeQuestion(c);
  XwSetText(close_button, unsent.changes > 0 ? "Close Now" : "Close without Sending");
  PlaceQuestion(c);
  XwSetDragHandler(c->window, 0, c->window->drag_handler);
  c->pressed = {};
  EndCarry(c);
  c->files.table.Release();
  c->queue.table.Release();
  c->damage |= kAllPanes;
  XwShow(c->question, 1);
  XwFocusControl(keep_button);
  return false;
}

bool MayLeaveNow(Console* c) {
  if (!c->asking || NotAtServer(c).any()) return false;
  // What was not done is read before the window closes.
  if (c->failed_while_asking) KeepOpen(c);
  return c->asking;
}

bool GiveAnswer(Console* c, int id) {
  if (c->asking && id == kKeepOpenAnswer) KeepOpen(c);
  return c->asking && id == kCloseAnswer;
}

void QuestionKey(Console* c, int type) {
  const bool keeps = XwGetFocus(c->window) == keep_button;
  if (type == XWE_ESCAPE) KeepOpen(c);
  if (type == XWE_TAB) XwFocusControl(keeps ? close_button : keep_button);
  if (type == XWE_LEFT) XwFocusControl(keep_button);
  if (type == XWE_RIGHT) XwFocusControl(close_button);
}

void DrawAroundQuestion(const Console* c) {
  DrawShadow(SheetArea(c), 2);
  DrawSheet(c);
}

}  // namespace console

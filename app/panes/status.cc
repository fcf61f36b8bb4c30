#include "app/panes/status.h"

#include <algorithm>

#include "app/format/texts.h"
#include "app/format/words.h"
#include "app/look/controls.h"
#include "app/look/style.h"
#include "app/panes/ids.h"

namespace console {
namespace {

constexpr int kServer = 1;  // a part of its hits

const Transfer* Running(const StatusPane* p) {
  for (const Transfer& t : p->state.transfers)
    if (t.state == Sending::kSending || t.state == Sending::kCancelling) return &t;
  return nullptr;
}

constexpr int kBar = 90, kCancelEnds = 20, kGap = 6, kMessageRoom = 400, kLeastSendingText = 84;

constexpr int kDotRoom = 22, kServerEnd = 8;

std::string ServerName(const StatusPane* p) {
  return Shown(p->host) + ": ";
}

// As wide as its words, up to a part of the line.
Area ServerArea(const StatusPane* p) {
  const Style& l = TheStyle();
  const Area a = p->layout.status;
  const int words = XwTextWidthUtf8(l.view, ServerName(p).c_str()) +
                    XwTextWidthUtf8(l.view, p->ServerText().c_str()) + 2;
  return {a.x + 6, a.y + 3, std::min(kDotRoom + words + kServerEnd, a.w * 55 / 100), a.h - 5};
}

// Where both have no room, the server's name is cut and not what it does.
void DrawServer(const StatusPane* p, Area a) {
  const Style& l = TheStyle();
  a.TakeLeft(kDotRoom);
  a.TakeRight(kServerEnd);
  const std::string name = ServerName(p), state = p->ServerText();
  const int tail = XwTextWidthUtf8(l.view, state.c_str()) + 1;
  const int head = XwTextWidthUtf8(l.view, name.c_str()) + 1;
  DrawLabel(l.view, Align::kLeft, a.TakeLeft(std::min(head, std::max(0, a.w - tail))), name, l.ink);
  DrawLabel(l.view, Align::kLeft, a, state, l.ink);
}

int32_t LinkColor(const StatusPane* p) {
  const Style& l = TheStyle();
  if (IsAway(p->state.link) || p->state.link == Link::kRefused) return l.bad;
  return p->state.link == Link::kReady && p->state.quiet_s < 1 ? l.good : l.warning;
}

// The text, the bar and the button that stops it.
Area SendingArea(const StatusPane* p) {
  const Area& a = p->layout.status;
  const int right = p->layout.stop_sending.right();
  const int others = 10 + kBar + 6 + p->layout.stop_sending.w;
  int text = std::min(300, a.w * 40 / 100);
  // An error that is to be read, and the button beside it, go before the name of what is sent.
  if (p->HasError() || p->queued > 0)
    text =
        std::clamp(right - others - ServerArea(p).right() - kMessageRoom, kLeastSendingText, text);
  const int w = text + others;
  return {right - w, a.y, w, a.h};
}

void DrawSending(const StatusPane* p, const Transfer& t) {
  const Style& l = TheStyle();
  Area a = SendingArea(p);
  a.TakeRight(p->layout.stop_sending.w + 6);
  const Area bar = a.TakeRight(kBar);
  DrawProgress({bar.x, bar.y + (bar.h - 9) / 2, bar.w, 10}, t.sent, t.total, BarGround::kPlain);
  a.TakeRight(10);
  const int64_t percent = t.total > 0 ? t.sent * 100 / t.total : 0;
  const std::string tail = ", " + std::to_string(percent) + " %";
  const Area end = a.TakeRight(XwTextWidthUtf8(l.view, tail.c_str()) + 1);
  const char* verb = t.state == Sending::kSending ? "Sending " : "Cancelling ";
  DrawLabel(l.view, Align::kLeft, end, tail, l.second);
  DrawLabel(l.view, Align::kRight, a, verb + Shown(t.order.document), l.second);
}

int TextWidth(const Message& m) {
  return m.text.empty() ? 0 : XwTextWidthUtf8(TheStyle().view, m.text.c_str()) + 2;
}

void DrawMessage(const Area& a, Align align, const Message& m) {
  const Style& l = TheStyle();
  DrawLabel(l.view, align, a, m.text,
            m.tone == Tone::kBad       ? l.bad
            : m.tone == Tone::kWarning ? l.warning
                                       : l.second);
}

}  // namespace

bool StatusPane::SendingRuns() const {
  return Running(this);
}

std::string StatusPane::ServerText() const {
  const ServerState& s = state;
  switch (s.link) {
    case Link::kConnecting:
      return "connecting…";
    case Link::kReady:
      if (s.quiet_s < 1) return "ready";
      return "no answer for " + NumberText(s.quiet_s) + " s";
    case Link::kAway:
      return "away";
    case Link::kRefused:
      return "refused";
  }
  return "";
}

void StatusPane::MakeControls(XwWindow* window) {
  constexpr uint32_t kShape = XWC_ENABLED | XWC_ICON;
  stop_sending =
      XwButton(window, ButtonIcon(ToolIcon::kCross), kStopSendingCommand, 0, 0, 9, 9, kShape, 0);
  XwDescribeControl(stop_sending, "Stop Sending");
  dismiss = XwButton(window, ButtonIcon(ToolIcon::kCross), kDismissCommand, 0, 0, 9, 9, kShape, 0);
  XwDescribeControl(dismiss, "Dismiss Message");
  cancel_queued =
      XwButton(window, "Cancel", kCancelQueuedCommand, 0, 0, 9, 9, XWC_ENABLED | XWC_VARIANT, 0);
  XwDescribeControl(cancel_queued, "Cancel Queued Documents");
}

Area StatusPane::Middle() const {
  const Area& a = layout.status;
  const int begin = ServerArea(this).right() + 12;
  const int end = SendingRuns() ? SendingArea(this).x - 10 : a.right() - 12;
  return {begin, a.y + 1, std::max(0, end - begin), a.h - 1};
}

StatusPane::Parts StatusPane::Split() const {
  const Style& l = TheStyle();
  Parts parts;
  Area rest = Middle();
  const int cancel = queued > 0 ? XwTextWidthUtf8(l.bold, cancel_text_.c_str()) + kCancelEnds : 0;
  if (HasError()) {
    const Area& cross = layout.stop_sending;
    parts.dismiss = {rest.TakeRight(cross.w).x, cross.y, cross.w, cross.h};
    rest.TakeRight(kGap);
    const int passing = TextWidth(Passing());
    const int room = rest.w - cancel - (cancel ? kGap : 0) - (passing ? 2 * kGap : 0);
    const int most = std::max(room / 2, room - passing);
    parts.error = rest.TakeRight(std::min(TextWidth(message()), std::max(0, most)));
    if (passing || cancel) rest.TakeRight(2 * kGap);
  }
  if (cancel) {
    // The ring of the keyboard leaves the hairline whole.
    parts.cancel = {rest.TakeRight(cancel).x, layout.status.y + 4, cancel, 19};
    rest.TakeRight(kGap);
  }
  parts.passing = rest;
  return parts;
}

void StatusPane::Update() {
  // An error may stand beside it, so that it says by itself what it cancels.
  const std::string text = "Cancel " + NumberText(queued) + " Queued";
  if (queued > 0 && text != cancel_text_) XwSetTextUtf8(cancel_queued, text.c_str());
  if (queued > 0) cancel_text_ = text;
  const Parts parts = Split();
  PlaceControl(cancel_queued, parts.cancel);
  PlaceControl(stop_sending, SendingRuns() ? layout.stop_sending : Area{});
  PlaceControl(dismiss, parts.dismiss);
}

void StatusPane::ReadMessage() {
  if (notices_.HasError()) return notices_.Read();
  notices_.Forget();
}

bool StatusPane::Tick() {
  const std::string told = Passing().text;
  now_ms_ += 1000;
  return Passing().text != told;
}

void StatusPane::Draw(const Hit& hover, const std::string& selection) const {
  const Style& l = TheStyle();
  Fill(layout.status, l.status);
  LineAtTop(layout.status);
  const Area server = ServerArea(this);
  if (hover == Hit{kStatus, kServer, 0})
    XwRoundBox(server.x, server.y, server.w, server.h, 4, Mix(l.pressed, l.status, 45), -1);
  DrawDot(server.x + 6, server.y + 6, LinkColor(this));
  DrawServer(this, server);
  const Transfer* t = Running(this);
  if (t) DrawSending(this, *t);
  const Parts parts = Split();
  const Message passing = Passing();
  if (HasError()) DrawMessage(parts.error, Align::kRight, message());
  if (!passing.text.empty())
    DrawMessage(parts.passing, t || HasError() ? Align::kLeft : Align::kRight, passing);
  else if (!HasError())
    DrawLabel(l.view, Align::kLeft, parts.passing, selection, l.second);
}

void StatusPane::AddHits(const std::string& selection, Hits* hits) const {
  hits->Add({kStatus, kServer, 0}, ServerArea(this), {XWA_STATUS, 0, Shown(host), ServerText()});
  const Message passing = Passing(), told = message();
  const Parts parts = Split();
  if (HasError() && !passing.text.empty())
    hits->Cover(parts.passing, {XWA_STATUS, 0, "Latest Message", passing.text});
  hits->Cover(HasError() ? parts.error : Middle(),
              {XWA_STATUS, 0, "Message", told.text.empty() ? selection : told.text});
}

}  // namespace console

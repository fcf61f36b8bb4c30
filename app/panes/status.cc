#include "app/panes/status.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include "app/format/cut.h"
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
// Between the line's parts, and at its ends.
constexpr int kLeft = 6, kBehindServer = 12, kBeforeSending = 10, kRight = 12, kBarGap = 6,
              kTextGap = 10;
// A message with less room than this says nothing.
constexpr int kLeastPassing = 120;

constexpr int kDotRoom = 22, kServerEnd = 8;

std::string ServerName(const StatusPane* p) {
  return Shown(p->host) + ": ";
}

int StateWidth(const StatusPane* p) {
  return XwTextWidthUtf8(TheStyle().view, p->ServerText().c_str()) + 1;
}

// As wide as its words, up to a part of the line.
int ServerWidth(const StatusPane* p) {
  const int name = XwTextWidthUtf8(TheStyle().view, ServerName(p).c_str()) + 1;
  return std::min(kDotRoom + name + StateWidth(p) + kServerEnd, p->layout.status.w * 55 / 100);
}

// Where both have no room, the server's name is cut and not what it does.
void DrawServer(const StatusPane* p, Area a) {
  const Style& l = TheStyle();
  a.TakeLeft(kDotRoom);
  a.TakeRight(kServerEnd);
  const std::string name = ServerName(p), state = p->ServerText();
  const int head = XwTextWidthUtf8(l.view, name.c_str()) + 1;
  Area behind = a;
  const Area at = behind.TakeLeft(std::min(head, std::max(0, a.w - StateWidth(p))));
  // A stump of either says nothing.
  const bool named = at.w == head || at.w > kLeastPassing;
  if (named) DrawLabel(l.view, Align::kLeft, at, name, l.ink);
  if (a.w >= StateWidth(p) - 1) DrawLabel(l.view, Align::kLeft, named ? behind : a, state, l.ink);
}

int32_t LinkColor(const StatusPane* p) {
  const Style& l = TheStyle();
  if (IsAway(p->state.link) || p->state.link == Link::kRefused) return l.bad;
  return p->state.link == Link::kReady && p->state.quiet_s < 1 ? l.good : l.warning;
}

std::string SendingVerb(const Transfer& t) {
  return t.state == Sending::kSending ? "Sending " : "Cancelling ";
}

std::string PercentOf(const Transfer& t) {
  return std::to_string(t.total > 0 ? t.sent * 100 / t.total : 0) + " %";
}

void DrawSending(Area a, const Transfer& t) {
  const Style& l = TheStyle();
  const Area bar = a.TakeRight(kBar);
  DrawProgress({bar.x, bar.y + (bar.h - 9) / 2, bar.w, 10}, t.sent, t.total, BarGround::kPlain);
  a.TakeRight(kTextGap);
  const std::string tail = ", " + PercentOf(t);
  const Area end = a.TakeRight(XwTextWidthUtf8(l.view, tail.c_str()) + 1);
  DrawLabel(l.view, Align::kLeft, end, a.Empty() ? "" : tail, l.second);
  DrawLabel(l.view, Align::kRight, a, SendingVerb(t) + Shown(t.order.document), l.second);
}

int TextWidth(const std::string& text) {
  return text.empty() ? 0 : XwTextWidthUtf8(TheStyle().view, text.c_str()) + 2;
}

// Where a message has no room, the first name in it is cut, so that its reason stays.
std::string WithShortName(const std::string& text, int width) {
  constexpr std::string_view kOpen = "“", kClose = "”";
  const size_t open = text.find(kOpen), close = text.rfind(kClose);
  if (TextWidth(text) <= width || open == std::string::npos || close == std::string::npos ||
      close < open)
    return text;
  const size_t begin = open + kOpen.size(), end = text.find(kClose, begin);
  return text.substr(0, begin) +
         CutMiddleTo(text.substr(begin, end - begin),
                     [&](const std::string& name) {
                       return TextWidth(text.substr(0, begin) + name + text.substr(end)) <= width;
                     }) +
         text.substr(end);
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

// Without an error the parts share by fixed bounds. An error that is to be read comes before all
// else: the others shrink and then drop, the least important one first.
StatusPane::Widths StatusPane::Share() const {
  Widths w;
  const bool runs = SendingRuns();
  w.server = ServerWidth(this);
  w.cancel = queued > 0 ? XwTextWidthUtf8(TheStyle().bold, cancel_text_.c_str()) + kCancelEnds : 0;
  if (runs) w.bar = kBar + kBarGap;
  if (runs) w.text = std::min(300, layout.status.w * 40 / 100) + kTextGap;
  const int ends = kLeft + kBehindServer +
                   (runs ? kBeforeSending + layout.status.right() - layout.stop_sending.x : kRight);
  int room = layout.status.w - ends;
  if (!HasError()) {
    const int spare = room - w.server - w.bar - kMessageRoom;
    if (runs && queued > 0) w.text = std::clamp(spare, kLeastSendingText + kTextGap, w.text);
    return w;
  }
  const std::string error = message().text;
  w.error = TextWidth(error);
  w.passing = TextWidth(Passing().text);
  room -= layout.stop_sending.w + kGap + (w.cancel > 0 ? w.cancel + 3 * kGap : 0);
  if (w.passing > 0) room -= 2 * kGap;
  int over = w.server + w.text + w.bar + w.passing + w.error - room;
  const auto shrink = [&over](int* part, int least) {
    const int less = std::clamp(*part - least, 0, std::max(0, over));
    *part -= less;
    over -= less;
  };
  const auto drop = [&over](int* part) {
    if (over > 0) over -= std::exchange(*part, 0);
  };
  if (runs) shrink(&w.text, kLeastSendingText + kTextGap);
  shrink(&w.passing, kLeastPassing);
  shrink(&w.server, kDotRoom + StateWidth(this) + kServerEnd);
  drop(&w.passing);
  drop(&w.text);
  shrink(&w.error, TextWidth(WithShortName(error, 0)));
  shrink(&w.server, kDotRoom + kServerEnd);
  drop(&w.bar);
  shrink(&w.error, 0);
  return w;
}

StatusPane::Parts StatusPane::Split() const {
  const Widths w = Share();
  const Area& a = layout.status;
  Parts parts;
  parts.server = {a.x + kLeft, a.y + 3, w.server, a.h - 5};
  Area rest{parts.server.right() + kBehindServer, a.y + 1, 0, a.h - 1};
  rest.w = std::max(0, a.right() - kRight - rest.x);
  if (SendingRuns()) {
    rest.w = std::max(0, layout.stop_sending.x - rest.x);
    parts.sending = rest.TakeRight(w.text + w.bar);
    parts.sending.y = a.y, parts.sending.h = a.h;
    parts.sending.w -= std::min(kBarGap, parts.sending.w);
    rest.TakeRight(kBeforeSending);
  }
  if (HasError()) {
    const Area& cross = layout.stop_sending;
    parts.dismiss = {rest.TakeRight(cross.w).x, cross.y, cross.w, cross.h};
    rest.TakeRight(kGap);
    parts.error = rest.TakeRight(w.error);
    if (w.passing > 0 || w.cancel > 0) rest.TakeRight(2 * kGap);
  }
  if (w.cancel > 0) {
    // The ring of the keyboard leaves the hairline whole.
    parts.cancel = {rest.TakeRight(w.cancel).x, a.y + 4, w.cancel, 19};
    rest.TakeRight(kGap);
  }
  if (!HasError() || w.passing > 0) parts.passing = rest;
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
  const Parts parts = Split();
  const Area& server = parts.server;
  if (hover == Hit{kStatus, kServer, 0})
    XwRoundBox(server.x, server.y, server.w, server.h, 4, Mix(l.pressed, l.status, 45), -1);
  DrawDot(server.x + 6, server.y + 6, LinkColor(this));
  DrawServer(this, server);
  const Transfer* t = Running(this);
  if (t && !parts.sending.Empty()) DrawSending(parts.sending, *t);
  const Message passing = Passing();
  if (HasError()) {
    Message error = message();
    error.text = WithShortName(error.text, parts.error.w);
    DrawMessage(parts.error, Align::kRight, error);
  }
  if (!passing.text.empty())
    DrawMessage(parts.passing, t || HasError() ? Align::kLeft : Align::kRight, passing);
  else if (!HasError())
    DrawLabel(l.view, Align::kLeft, parts.passing, selection, l.second);
}

// Each is whole in its tip, where it is cut or has no room.
void StatusPane::AddHits(const std::string& selection, Hits* hits) const {
  const Parts parts = Split();
  const auto tip = [](const std::string& text, const Area& a) {
    return TextWidth(text) > a.w + 1 ? text : "";
  };
  const std::string server = ServerName(this) + ServerText();
  hits->Add(
      {kStatus, kServer, 0}, parts.server,
      {XWA_STATUS, 0, Shown(host), ServerText(), parts.server.w < ServerWidth(this) ? server : ""});
  const Message passing = Passing(), told = message();
  if (HasError() && !passing.text.empty())
    hits->Cover(parts.passing,
                {XWA_STATUS, 0, "Latest Message", passing.text, tip(passing.text, parts.passing)});
  const std::string shown = told.text.empty() ? selection : told.text;
  const Area& at = HasError() ? parts.error : parts.passing;
  hits->Cover(at, {XWA_STATUS, 0, "Message", shown, tip(shown, at)});
  const Transfer* t = Running(this);
  if (t)
    hits->Cover(parts.sending,
                {0, 0, "", "", SendingVerb(*t) + Shown(t->order.document) + ", " + PercentOf(*t)});
}

}  // namespace console

#include "app/panes/status.h"

#include <algorithm>

#include "app/format/texts.h"
#include "app/look/controls.h"
#include "app/look/style.h"
#include "app/panes/ids.h"

namespace console {
namespace {

constexpr int kMessageSeconds = 6;
constexpr int kServer = 1;  // a part of its hits

const Transfer* Running(const StatusPane* p) {
  for (const Transfer& t : p->state.transfers)
    if (t.state == Sending::kSending || t.state == Sending::kCancelling) return &t;
  return nullptr;
}

constexpr int kBar = 90;

constexpr int kStartWidth = 108;

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
  if (p->state.link == Link::kAway) return l.bad;
  return p->state.link == Link::kReady && p->state.quiet_s < 1 ? l.good : l.warning;
}

// From the right: the button that stops it, the bar, the text. The result is how much of the right
// side it took.
int DrawSending(const StatusPane* p, const Transfer& t) {
  const Style& l = TheStyle();
  Area a = p->layout.status;
  a.w = p->layout.stop_sending.x - 6 - a.x;
  const Area bar = a.TakeRight(kBar);
  DrawProgress({bar.x, bar.y + (bar.h - 9) / 2, bar.w, 10}, t.sent, t.total, false);
  a.TakeRight(10);
  const int64_t percent = t.total > 0 ? t.sent * 100 / t.total : 0;
  const std::string tail = ", " + std::to_string(percent) + " %";
  const int tail_width = XwTextWidthUtf8(l.view, tail.c_str()) + 1;
  Area room = a.TakeRight(std::min(300, a.w * 40 / 100));
  const Area end = room.TakeRight(tail_width);
  const char* verb = t.state == Sending::kSending ? "Sending " : "Cancelling ";
  DrawLabel(l.view, Align::kLeft, end, tail, l.second);
  DrawLabel(l.view, Align::kRight, room, verb + Shown(t.order.document), l.second);
  return p->layout.status.right() - room.x + 10;
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
      return "no answer for " + std::to_string(s.quiet_s) + " s";
    case Link::kAway:
      break;
  }
  const int left = std::max(0, s.retry_ms / 1000 - away_s);
  return s.trouble + ", next try in " + std::to_string(left) + " s";
}

void StatusPane::MakeControls(XwWindow* window) {
  stop_sending = XwButton(window, ButtonIcon(ToolIcon::kCross), kStopSendingCommand, 0, 0, 9, 9,
                          XWC_ENABLED | XWC_ICON, 0);
  XwDescribeControl(stop_sending, "Stop Sending");
  start_server =
      XwButton(window, "Start a Server", kStartServerCommand, 0, 0, 9, 9, XWC_ENABLED, 0);
}

Area StatusPane::StartArea() const {
  const Area server = ServerArea(this);
  return offers_server_ ? Area{server.right() + 6, server.y + 1, kStartWidth, server.h - 2}
                        : Area{};
}

void StatusPane::Update(bool offers_server) {
  offers_server_ = offers_server;
  PlaceControl(start_server, StartArea());
  PlaceControl(stop_sending, SendingRuns() ? layout.stop_sending : Area{});
}

void StatusPane::Tell(bool good, const std::string& utf8) {
  message_ = {good, utf8};
  message_s_ = kMessageSeconds;
}

bool StatusPane::Tick() {
  ++away_s;
  const bool over = message_s_ > 0 && --message_s_ == 0;
  return over || state.link == Link::kAway;
}

void StatusPane::Draw(const Hit& hover, const std::string& selection) const {
  const Style& l = TheStyle();
  Area a = layout.status;
  Fill(a, l.status);
  LineAtTop(a);
  const Area server = ServerArea(this);
  if (hover == Hit{kStatus, kServer, 0})
    XwRoundBox(server.x, server.y, server.w, server.h, 4, Mix(l.pressed, l.status, 45), -1);
  DrawDot(server.x + 6, server.y + 6, LinkColor(this));
  DrawServer(this, server);
  const Transfer* t = Running(this);
  const int taken = t ? DrawSending(this, *t) : 12;
  const int end = std::max(server.right(), StartArea().right());
  Area middle{end + 12, a.y + 1, 0, a.h - 1};
  middle.w = a.right() - taken - middle.x;
  if (message_s_ > 0)
    DrawLabel(l.view, t ? Align::kLeft : Align::kRight, middle, Shown(message_.text),
              message_.good ? l.second : l.bad);
  else
    DrawLabel(l.view, Align::kLeft, middle, selection, l.second);
}

void StatusPane::AddHits(const std::string& selection, Hits* hits) const {
  const Area server = ServerArea(this), line = layout.status;
  hits->Add({kStatus, kServer, 0}, server, {XWA_STATUS, 0, Shown(host), ServerText()});
  const int end = std::max(server.right(), StartArea().right());
  hits->Cover({end, line.y + 1, line.right() - end, line.h - 1},
              {XWA_STATUS, 0, "Message", message_s_ > 0 ? Shown(message_.text) : selection});
}

}  // namespace console

// The status line: the server, what was told last, what is being sent.
#include <algorithm>

#include "app/format/texts.h"
#include "app/window/console.h"

namespace console {
namespace {

const Transfer* Running(const Console* c) {
  for (const Transfer& t : c->state.transfers)
    if (t.state == Sending::kSending || t.state == Sending::kCancelling) return &t;
  return nullptr;
}

constexpr int kBar = 90;

constexpr int kDotRoom = 22, kServerEnd = 8;

std::string ServerName(const Console* c) {
  return Shown(c->server.host()) + ": ";
}

// As wide as its words, up to a part of the line.
Area ServerArea(const Console* c) {
  const Style& l = TheStyle();
  const Area a = c->layout.status;
  const int words = XwTextWidthUtf8(l.view, ServerName(c).c_str()) +
                    XwTextWidthUtf8(l.view, ServerText(c).c_str()) + 2;
  return {a.x + 6, a.y + 3, std::min(kDotRoom + words + kServerEnd, a.w * 55 / 100), a.h - 5};
}

// Where both have no room, the server's name is cut and not what it does.
void DrawServer(const Console* c, Area a) {
  const Style& l = TheStyle();
  a.TakeLeft(kDotRoom);
  a.TakeRight(kServerEnd);
  const std::string name = ServerName(c), state = ServerText(c);
  const int tail = XwTextWidthUtf8(l.view, state.c_str()) + 1;
  const int head = XwTextWidthUtf8(l.view, name.c_str()) + 1;
  DrawLabel(l.view, Align::kLeft, a.TakeLeft(std::min(head, std::max(0, a.w - tail))), name, l.ink);
  DrawLabel(l.view, Align::kLeft, a, state, l.ink);
}

int32_t LinkColor(const Console* c) {
  const Style& l = TheStyle();
  if (c->state.link == Link::kAway) return l.bad;
  return c->state.link == Link::kReady && c->state.quiet_s < 1 ? l.good : l.warning;
}

// From the right: the button that stops it, the bar, the text. The result is how much of the right
// side it took.
int DrawSending(const Console* c, const Transfer& t) {
  const Style& l = TheStyle();
  Area a = c->layout.status;
  a.w = c->layout.stop_sending.x - 6 - a.x;
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
  return c->layout.status.right() - room.x + 10;
}

std::string SelectionText(const Console* c) {
  const int row = c->files.selected();
  if (row < 0) return "";
  const FolderEntry e = c->folder.At(row);
  return e.folder ? "1 folder selected" : "1 file selected, " + SizeText(e.size);
}

}  // namespace

bool SendingRuns(const Console* c) {
  return Running(c);
}

std::string ServerText(const Console* c) {
  const ServerState& s = c->state;
  switch (s.link) {
    case Link::kConnecting:
      return "connecting…";
    case Link::kReady:
      if (s.quiet_s < 1) return "ready";
      return "no answer for " + std::to_string(s.quiet_s) + " s";
    case Link::kAway:
      break;
  }
  const int left = std::max(0, s.retry_ms / 1000 - c->away_s);
  return s.trouble + ", next try in " + std::to_string(left) + " s";
}

void DrawStatusPane(Console* c) {
  const Style& l = TheStyle();
  Area a = c->layout.status;
  Fill(a, l.status);
  LineAtTop(a);
  const Area server = ServerArea(c);
  if (c->hover == Hit{kStatus, kServer, 0})
    XwRoundBox(server.x, server.y, server.w, server.h, 4, Mix(l.pressed, l.status, 45), -1);
  DrawDot(server.x + 6, server.y + 6, LinkColor(c));
  DrawServer(c, server);
  const Transfer* t = Running(c);
  const int taken = t ? DrawSending(c, *t) : 12;
  Area middle{server.right() + 12, a.y + 1, 0, a.h - 1};
  middle.w = a.right() - taken - middle.x;
  if (c->message_s > 0)
    DrawLabel(l.view, t ? Align::kLeft : Align::kRight, middle, Shown(c->message.text),
              c->message.good ? l.second : l.bad);
  else
    DrawLabel(l.view, Align::kLeft, middle, SelectionText(c), l.second);
}

void AddStatusHits(Console* c) {
  const Area server = ServerArea(c), line = c->layout.status;
  c->hits.Add({kStatus, kServer, 0}, server,
              {XWA_STATUS, 0, Shown(c->server.host()), ServerText(c)});
  const std::string said = c->message_s > 0 ? Shown(c->message.text) : SelectionText(c);
  c->hits.Cover({server.right(), line.y + 1, line.right() - server.right(), line.h - 1},
                {XWA_STATUS, 0, "Message", said});
}

}  // namespace console

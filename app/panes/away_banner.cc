#include "app/panes/away_banner.h"

#include <algorithm>
#include <ctime>

#include "app/look/controls.h"
#include "app/look/strip.h"
#include "app/look/style.h"
#include "app/model/server_words.h"
#include "app/panes/ids.h"

namespace console {
namespace {

constexpr int kRetryWidth = 96, kStartWidth = 118;

}  // namespace

void AwayBanner::MakeControls(XwWindow* window) {
  constexpr uint32_t kShape = XWC_ENABLED | XWC_VARIANT;
  retry = XwButton(window, "Retry Now", kRetryCommand, 0, 0, 9, 9, kShape, 0);
  start_server = XwButton(window, "Start a Server", kStartServerCommand, 0, 0, 9, 9, kShape, 0);
}

bool AwayBanner::Follow() {
  const bool was = shown;
  if (IsAway(state.link)) shown = true;
  if (state.link == Link::kReady || state.trouble.empty()) shown = false;
  return shown != was;
}

void AwayBanner::Place(bool offers_server) {
  Area a = layout.banner;
  const bool empty = a.Empty();
  a.TakeRight(kStripEnd);
  const Area first = TakeStripButton(&a, kRetryWidth), second = TakeStripButton(&a, kStartWidth);
  PlaceControl(retry, empty ? Area{} : first);
  PlaceControl(start_server, offers_server && !empty ? second : Area{});
}

std::string AwayBanner::Text() const {
  const int left = IsAway(state.link) ? std::max(0, state.retry_ms / 1000 - away_s) : -1;
  return AwayText(host, state.trouble, left);
}

void AwayBanner::Draw() const {
  const Area a = layout.banner;
  if (a.Empty()) return;
  const Style& l = TheStyle();
  Area room = DrawStrip(a, l.bad);
  const bool offers = start_server && start_server->flags & XW_SHOWN;
  room.TakeRight(kStripEnd + kRetryWidth + (offers ? kStripGap + kStartWidth : 0) + kStripGap);
  const std::string text = Text();
  const Area sentence = room.TakeLeft(std::min(room.w, XwTextWidthUtf8(l.view, text.c_str()) + 1));
  DrawLabel(l.view, Align::kLeft, sentence, text, l.ink);
  room.TakeLeft(10);
  const std::string list = OldListText(state.seen, time(nullptr));
  // Half a sentence helps nobody.
  if (XwTextWidthUtf8(l.small_text, list.c_str()) <= room.w)
    DrawLabel(l.small_text, Align::kLeft, room, list, l.second);
}

void AwayBanner::AddHits(Hits* hits) const {
  hits->Cover(layout.banner, {XWA_STATUS, 0, "Server Away", Text()});
}

}  // namespace console

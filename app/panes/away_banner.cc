#include "app/panes/away_banner.h"

#include <algorithm>
#include <ctime>

#include "app/look/controls.h"
#include "app/look/style.h"
#include "app/model/server_words.h"
#include "app/panes/ids.h"

namespace console {
namespace {

constexpr int kRetryWidth = 96, kStartWidth = 118, kButtonHeight = 24, kGap = 8, kEdge = 8;

Area ButtonArea(const Area& banner, int right, int width) {
  return {right - width, banner.y + (AwayBanner::kHeight - kButtonHeight) / 2, width,
          kButtonHeight};
}

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
  const Area& a = layout.banner;
  if (a.Empty()) offers_server = false;
  const Area first = a.Empty() ? a : ButtonArea(a, a.right() - kEdge, kRetryWidth);
  PlaceControl(retry, first);
  PlaceControl(start_server, offers_server ? ButtonArea(a, first.x - kGap, kStartWidth) : Area{});
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
  room.TakeRight(kEdge + kRetryWidth + (offers ? kGap + kStartWidth : 0) + kGap);
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

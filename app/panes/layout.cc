#include "app/panes/layout.h"

#include <algorithm>

namespace console {
namespace {

constexpr int kTools = 40, kStatus = 26, kHead = 30;
constexpr int kButton = 26, kStop = 18, kFilter = 170;
constexpr int kProfile = 192;  // with its label and a gap
constexpr int kPlacesFrom = 900, kPlaces = 216;
constexpr int kDetailsFrom = 1080, kDetails = 280;
// Header and rows of the queue: four rows at least, a third of the height at most.
constexpr int kQueueLeast = 22 + 4 * 22;

// A control of that width in the middle of the bar's height, and a gap after it.
Area Next(Area* bar, int width, int gap, int height = kButton) {
  Area piece = bar->TakeLeft(width);
  bar->TakeLeft(gap);
  return {piece.x, piece.y + (piece.h - height) / 2, piece.w, height};
}

void LayOutTools(Layout* l) {
  Area bar = l->tools.Inset(7, 0);
  bar.h -= 1;  // the hairline below
  // What is spare goes to the profile first, then to the printer's name and to the slider.
  int spare = std::max(0, l->tools.w - kLeastWidth);
  const bool profile = spare >= kProfile;
  if (profile) spare -= kProfile;
  const int name = std::min(60, spare), slide = std::clamp(spare - name, 0, 50);
  const int gap = 14 + std::clamp(spare - name - slide, 0, 24) / 4;
  l->print = Next(&bar, 72, 10);
  l->up = Next(&bar, 27, 0);
  l->refresh = Next(&bar, 27, gap);
  l->printer_label = Next(&bar, 46, 6);
  l->printer = Next(&bar, 124 + name, gap);
  if (profile) {
    l->profile_label = Next(&bar, 42, 6);
    l->profile = Next(&bar, kProfile - 48 - 14, gap);
  }
  l->copies_label = Next(&bar, 46, 6);
  l->less = Next(&bar, 24, 0);
  l->copies = Next(&bar, 36, 0);
  l->more = Next(&bar, 24, gap);
  l->priority_label = Next(&bar, 49, 6);
  l->slider = Next(&bar, 64 + slide, 6);
  l->priority = Next(&bar, 24, gap);
  l->hold = Next(&bar, 56, 0);
}

}  // namespace

Layout LayOut(int width, int height) {
  Layout l;
  Area all{0, 0, std::max(0, width), std::max(0, height)};
  l.tools = all.TakeTop(kTools);
  l.status = all.TakeBottom(kStatus);
  l.stop_sending = {l.status.right() - 8 - kStop, l.status.y + (kStatus - kStop + 1) / 2, kStop,
                    kStop};
  const int queue = std::max(kQueueLeast, (all.h - 2 * kHead) * 32 / 100);
  Area lower = all.TakeBottom(queue + kHead);
  l.queue_head = lower.TakeTop(kHead);
  l.queue = lower;
  if (width >= kPlacesFrom) l.places = all.TakeLeft(kPlaces);
  if (width >= kDetailsFrom) l.details = all.TakeRight(kDetails);
  l.folder_head = all.TakeTop(kHead);
  l.folder = all;
  l.filter = {l.folder_head.right() - 12 - kFilter, l.folder_head.y + 3, kFilter, 24};
  l.filter_label = {l.filter.x - 46, l.folder_head.y, 40, kHead - 1};
  LayOutTools(&l);
  return l;
}

}  // namespace console

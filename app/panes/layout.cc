#include "app/panes/layout.h"

#include <algorithm>

namespace console {
namespace {

constexpr int kTools = 40, kStatus = 26, kHead = 30;
constexpr int kStop = 18, kFilter = 170;
constexpr int kPlacesFrom = 900, kPlaces = 216;
constexpr int kDetailsFrom = 1080, kDetails = 280;
// Header and rows of the queue: four rows at least, a third of the height at most.
constexpr int kQueueLeast = 22 + 4 * 22;

void LayOutQueueHead(Layout* l) {
  Area bar = l->queue_head;
  bar.TakeRight(12);
  auto last = [&bar](int width) {
    Area piece = bar.TakeRight(width);
    bar.TakeRight(6);
    // A push button's record reaches 6 pixels below it, and the hairline is not to be covered.
    return Area{piece.x, piece.y + 3, piece.w, 20};
  };
  l->remove_job = last(78);
  l->release_job = last(78);
  l->hold_job = last(64);
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
  LayOutQueueHead(&l);
  return l;
}

}  // namespace console

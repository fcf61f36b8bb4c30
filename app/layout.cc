#include "app/layout.h"

#include <algorithm>

namespace console {
namespace {

constexpr int kTools = 40, kStatus = 26, kHead = 30;
constexpr int kButton = 26;
constexpr int kPlacesFrom = 900, kPlaces = 216;
constexpr int kDetailsFrom = 1080, kDetails = 280;
// Header and rows of the queue: four rows at least, a third of the height at most.
constexpr int kQueueLeast = 22 + 4 * 22;

// A control of that width in the middle of the strip's height, and a gap after it.
Area Next(Area* strip, int width, int gap, int height = kButton) {
  Area piece = strip->TakeLeft(width);
  strip->TakeLeft(gap);
  return {piece.x, piece.y + (piece.h - height) / 2, piece.w, height};
}

void LayOutTools(Layout* l) {
  Area strip = l->tools.Inset(7, 0);
  strip.h -= 1;  // the hairline below
  // What is spare goes to the printer's name first, then to the slider.
  const int spare = std::max(0, l->tools.w - kLeastWidth);
  const int name = std::min(60, spare), slide = std::clamp(spare - name, 0, 50);
  const int gap = 14 + std::clamp(spare - name - slide, 0, 24) / 4;
  l->print = Next(&strip, 72, 10);
  l->up = Next(&strip, 27, 0);
  l->refresh = Next(&strip, 27, gap);
  l->printer_label = Next(&strip, 46, 6);
  l->printer = Next(&strip, 124 + name, gap);
  l->copies_label = Next(&strip, 46, 6);
  l->less = Next(&strip, 24, 0);
  l->copies = Next(&strip, 36, 0);
  l->more = Next(&strip, 24, gap);
  l->priority_label = Next(&strip, 49, 6);
  l->slider = Next(&strip, 64 + slide, 6);
  l->priority = Next(&strip, 24, gap);
  l->hold = Next(&strip, 56, 0);
}

void LayOutQueueHead(Layout* l) {
  Area strip = l->queue_head;
  strip.TakeRight(12);
  auto last = [&strip](int width) {
    Area piece = strip.TakeRight(width);
    strip.TakeRight(6);
    return Area{piece.x, piece.y + 4, piece.w, 22};
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
  const int queue = std::max(kQueueLeast, (all.h - 2 * kHead) * 32 / 100);
  Area lower = all.TakeBottom(queue + kHead);
  l.queue_head = lower.TakeTop(kHead);
  l.queue = lower;
  if (width >= kPlacesFrom) l.places = all.TakeLeft(kPlaces);
  if (width >= kDetailsFrom) l.details = all.TakeRight(kDetails);
  l.folder_head = all.TakeTop(kHead);
  l.folder = all;
  LayOutTools(&l);
  LayOutQueueHead(&l);
  return l;
}

}  // namespace console

#include "app/panes/layout.h"

#include <algorithm>

namespace console {
namespace {

constexpr int kTools = 40, kStatus = 26, kHead = 30, kQueueHead = 35;
constexpr int kStop = 18;
// The filter of the files: in a narrow pane it is narrower, and has an icon as its label.
constexpr int kFilter = 170, kLeastFilter = 96, kFilterLabelFrom = 520;
// The width from which a side shows by itself, and what it takes of it.
struct Side {
  int from, percent, usual, most, least;
};
constexpr Side kLeftSide = {900, 18, 216, 300, 150}, kRightSide = {1080, 22, 280, 440, 190};
constexpr int kFilesLeast = 330;
// Two printers, and two places, with their captions.
constexpr int kPrintersLeast = 32 + 2 * 38, kPlacesLeast = 32 + 2 * 20 + 26;
// Headers and rows: the usual queue takes a third of the height.
constexpr int kQueueLeast = 22 + 4 * 22, kFolderLeast = 22 + 3 * 22;

int WidthOf(const Side& side, int asked, int window) {
  const int usual = std::clamp(window * side.percent / 100, side.usual, side.most);
  return std::max(side.least, asked > 0 ? asked : usual);
}

// Where both sides leave the files too little, the right one gives way first.
void LayOutSides(Layout* l, Area* all, int window, const PaneSizes& sizes) {
  const auto shows = [&](bool wanted, PaneSizes::Opened pane) {
    return wanted && (ShowsByItself(pane, window) || sizes.opened == pane);
  };
  const bool places = shows(sizes.places, PaneSizes::kPlaces);
  const bool printers = shows(sizes.printers, PaneSizes::kPrinters);
  const bool right = shows(sizes.details, PaneSizes::kDetails);
  int left_width = places || printers ? WidthOf(kLeftSide, sizes.left_width, window) : 0;
  int right_width = right ? WidthOf(kRightSide, sizes.details_width, window) : 0;
  int excess = std::max(0, left_width + right_width + kFilesLeast - all->w);
  const auto shrink = [&excess](int* width, int least) {
    const int less = std::clamp(*width - least, 0, excess);
    *width -= less;
    excess -= less;
  };
  shrink(&right_width, kRightSide.least);
  shrink(&left_width, kLeftSide.least);
  Area column = all->TakeLeft(left_width);
  l->details = all->TakeRight(right_width);
  if (!printers) {
    l->places = column;
    return;
  }
  if (places) {
    const int usual = column.h * 45 / 100;
    const int asked = sizes.printers_height > 0 ? sizes.printers_height : usual;
    const int most = std::max(kPrintersLeast, column.h - kPlacesLeast);
    l->places = column.TakeTop(column.h - std::clamp(asked, kPrintersLeast, most));
  }
  l->printers = column;
}

}  // namespace

bool ShowsByItself(PaneSizes::Opened pane, int width) {
  return width >= (pane == PaneSizes::kDetails ? kRightSide.from : kLeftSide.from);
}

Layout LayOut(int width, int height, const PaneSizes& sizes) {
  Layout l;
  Area all{0, 0, std::max(0, width), std::max(0, height)};
  l.tools = all.TakeTop(kTools);
  l.status = all.TakeBottom(kStatus);
  l.stop_sending = {l.status.right() - 12 - kStop, l.status.y + (kStatus - kStop + 1) / 2, kStop,
                    kStop};
  const int usual = (all.h - kHead - kQueueHead) * 32 / 100;
  const int most = std::max(kQueueLeast, all.h - kHead - kQueueHead - kFolderLeast);
  const int queue =
      std::clamp(sizes.queue_height > 0 ? sizes.queue_height : usual, kQueueLeast, most);
  Area lower = all.TakeBottom(queue + kQueueHead);
  l.queue_head = lower.TakeTop(kQueueHead);
  l.queue = lower;
  LayOutSides(&l, &all, width, sizes);
  l.folder_head = all.TakeTop(kHead);
  l.folder = all;
  const int filter = std::clamp(l.folder_head.w * 30 / 100, kLeastFilter, kFilter);
  // Its ring, 3 pixels around it, ends above the hairline of the head.
  l.filter = {l.folder_head.right() - 12 - filter, l.folder_head.y + 3, filter, 23};
  const int label = l.folder_head.w < kFilterLabelFrom ? kFilterIcon : 40;
  l.filter_label = {l.filter.x - label - 6, l.folder_head.y, label, kHead - 1};
  LayOutTools(&l);
  return l;
}

}  // namespace console

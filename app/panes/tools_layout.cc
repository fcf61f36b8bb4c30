// What stands on the tool bar, for three widths of the window.
#include <algorithm>
#include <span>

#include "app/panes/layout.h"

namespace console {
namespace {

constexpr int kMargin = 7, kControl = 26;
constexpr int kWideGap = 14;    // between two settings
constexpr int kMostGrowth = 4;  // times the share of a piece

struct Piece {
  Area Layout::*area;
  int width, gap;  // and the gap behind it
  int grows = 0;   // the share of what is spare
};
constexpr Piece kPrint{&Layout::print, 92, 6}, kRefresh{&Layout::refresh, 26, kWideGap};
constexpr Piece kPrinterLabel{&Layout::printer_label, 46, 6};
constexpr Piece kPrinter{&Layout::printer, 132, kWideGap, 60};
constexpr Piece kProfileLabel{&Layout::profile_label, 42, 6};
constexpr Piece kProfile{&Layout::profile, 126, kWideGap, 60};
constexpr Piece kMediaLabel{&Layout::media_label, 40, 6};
constexpr Piece kMedia{&Layout::media, 100, kWideGap, 50};
constexpr Piece kCopiesLabel{&Layout::copies_label, 46, 6};
constexpr Piece kCopies{&Layout::copies, 44, kWideGap};
constexpr Piece kPriorityLabel{&Layout::priority_label, 49, 6};
constexpr Piece kSlider{&Layout::slider, 66, 6, 50}, kPriority{&Layout::priority, 24, kWideGap};
constexpr Piece kHold{&Layout::hold, 86, kWideGap}, kColour{&Layout::colour, 46, 6};
constexpr Piece kOptions{&Layout::options, 26, 0};

constexpr Piece kWide[] = {kPrint,      kRefresh, kPrinterLabel, kPrinter, kProfileLabel,  kProfile,
                           kMediaLabel, kMedia,   kCopiesLabel,  kCopies,  kPriorityLabel, kSlider,
                           kPriority,   kHold,    kColour,       kOptions};
constexpr Piece kMiddle[] = {kPrint,    kRefresh,     kPrinterLabel, kPrinter,       kProfileLabel,
                             kProfile,  kCopiesLabel, kCopies,       kPriorityLabel, kSlider,
                             kPriority, kHold,        kColour,       kOptions};
constexpr Piece kNarrow[] = {kPrint,       kRefresh, kPrinterLabel,  kPrinter,
                             kCopiesLabel, kCopies,  kPriorityLabel, kSlider,
                             kPriority,    kHold,    kOptions};

int WidthOf(std::span<const Piece> pieces) {
  int width = 0;
  for (const Piece& p : pieces) width += p.width + p.gap;
  return width;
}

std::span<const Piece> Fitting(int width) {
  if (WidthOf(kWide) <= width) return kWide;
  if (WidthOf(kMiddle) <= width) return kMiddle;
  return kNarrow;
}

}  // namespace

// What is spare goes to the lists and the slider first, then to the gaps: the bar is as wide as the
// window.
void LayOutTools(Layout* l) {
  Area bar = l->tools.Inset(kMargin, 0);
  bar.h -= 1;  // the hairline below
  const std::span<const Piece> pieces = Fitting(bar.w);
  const int spare = std::max(0, bar.w - WidthOf(pieces));
  int shares = 0, gaps = 0;
  for (const Piece& p : pieces) {
    shares += p.grows;
    gaps += p.gap == kWideGap;
  }
  const int growth = std::min(spare, kMostGrowth * shares);
  const int more = (spare - growth) / gaps;
  for (const Piece& p : pieces) {
    const Area piece = bar.TakeLeft(p.width + p.grows * growth / shares);
    l->*p.area = {piece.x, piece.y + (piece.h - kControl) / 2, piece.w, kControl};
    bar.TakeLeft(p.gap + (p.gap == kWideGap ? more : 0));
  }
}

}  // namespace console

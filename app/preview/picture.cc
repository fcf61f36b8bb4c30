#include "app/preview/picture.h"

#include <unistd.h>

#include <algorithm>
#include <cmath>

#include "app/preview/confine.h"
#include "os/final_path.h"

namespace preview {
namespace {

constexpr uint8_t kMissing = 0xE4;

bool Mirrors(int orientation) {
  return orientation == 2 || orientation == 4 || orientation == 5 || orientation == 7;
}
// Quarters clockwise, after it was mirrored left to right.
int Quarters(int orientation) {
  constexpr int kQuarters[] = {0, 0, 0, 2, 2, 3, 1, 1, 3};
  return orientation >= 1 && orientation <= 8 ? kQuarters[orientation] : 0;
}

}  // namespace

void Scaler::Begin(int width, int height, int new_width, int new_height) {
  width_ = width;
  height_ = height;
  new_width_ = new_width;
  new_height_ = new_height;
  line_.assign(size_t(new_width) * 3, 0);
  sums_.assign(size_t(new_width) * 3, 0);
  pixels_.assign(size_t(new_width) * size_t(new_height) * 4, kMissing);
}

// A pixel is `new_width_` wide where a new one is `width_` wide: the new one takes a part of the
// first pixel that it meets, whole ones, and a part of the last.
void Scaler::Narrow(const uint8_t* rgb) {
  const auto unit = uint32_t(new_width_);
  uint32_t left = unit;  // of the pixel at `rgb`
  for (uint32_t* to = line_.data(); to < line_.data() + line_.size(); to += 3) {
    auto room = uint32_t(width_);
    uint32_t sums[3] = {rgb[0] * left, rgb[1] * left, rgb[2] * left};
    room -= left;
    rgb += 3;
    uint32_t whole[3] = {};
    for (uint32_t n = room / unit; n > 0; --n, rgb += 3)
      for (int i = 0; i < 3; ++i) whole[i] += rgb[i];
    const uint32_t part = room % unit;
    for (int i = 0; i < 3; ++i) to[i] = sums[i] + whole[i] * unit + (part ? rgb[i] * part : 0);
    // A pixel that ends with the new one is done.
    left = part ? unit - part : unit;
  }
}

void Scaler::FinishRow() {
  uint8_t* to = pixels_.data() + size_t(new_row_) * size_t(new_width_) * 4;
  const uint64_t weight = uint64_t(width_) * uint64_t(height_);
  for (int x = 0; x < new_width_; ++x, to += 4) {
    to[0] = 0;
    for (size_t i = 0; i < 3; ++i)
      to[1 + i] = uint8_t((sums_[size_t(x) * 3 + i] + weight / 2) / weight);
  }
  ++new_row_;
}

void Scaler::AddRow(const uint8_t* rgb) {
  if (row_ >= height_) return;
  Narrow(rgb);
  const int64_t begin = int64_t(row_) * new_height_;
  const int64_t border = int64_t(new_row_ + 1) * height_;
  const auto here = uint64_t(std::min<int64_t>(border - begin, new_height_));
  const uint64_t rest = uint64_t(new_height_) - here;
  for (size_t i = 0; i < sums_.size(); ++i) sums_[i] += line_[i] * here;
  ++row_;
  if (begin + new_height_ < border) return;
  FinishRow();
  for (size_t i = 0; i < sums_.size(); ++i) sums_[i] = line_[i] * rest;
}

bool SwapsSides(int orientation) {
  return orientation >= 5 && orientation <= 8;
}

void Report::SetMm(double width, double height) {
  constexpr double kLeast = 0.05, kMost = 1e6;
  for (const double mm : {width, height})
    if (!(mm >= kLeast && mm <= kMost)) return;
  facts.width_mm = width;
  facts.height_mm = height;
}

void Report::SetRoom(int width, int height) {
  room_width_ = width;
  room_height_ = height;
}

void Report::Fit(int width, int height, int orientation, int* new_width, int* new_height) const {
  const bool swaps = SwapsSides(orientation);
  const double most_w = std::min(width, swaps ? room_height_ : room_width_);
  const double most_h = std::min(height, swaps ? room_width_ : room_height_);
  double proportion = double(width) / height;
  if (facts.width_mm > 0 && facts.height_mm > 0) {
    const double turned = facts.width_mm / facts.height_mm;
    const double in_mm = swaps ? 1 / turned : turned;
    // A small difference is one of rounding, and pixels are best left as they are.
    if (std::abs(in_mm / proportion - 1) > 0.02) proportion = in_mm;
  }
  const double w = std::min(most_w, most_h * proportion);
  *new_width = std::clamp(int(std::lround(w)), 1, int(most_w));
  *new_height = std::clamp(int(std::lround(w / proportion)), 1, int(most_h));
}

void Report::BeginPicture(int width, int height, int orientation) {
  orientation_ = orientation;
  int w = 0, h = 0;
  Fit(width, height, orientation, &w, &h);
  scaler_.Begin(width, height, w, h);
  row_.resize(size_t(width) * 3);
}

void Report::AddRow(const uint8_t* rgb) {
  scaler_.AddRow(rgb);
  if (OutOfTime()) Finish(PreviewTrouble::kTooSlow);
}

void Report::AddRowOverWhite(const uint8_t* rgba, int width) {
  for (int x = 0; x < width; ++x) {
    const uint8_t* from = rgba + size_t(x) * 4;
    const unsigned opacity = from[3];
    for (size_t i = 0; i < 3; ++i)
      row_[size_t(x) * 3 + i] = uint8_t((from[i] * opacity + 255 * (255 - opacity) + 127) / 255);
  }
  AddRow(row_.data());
}

std::vector<uint8_t> Report::Turned() {
  const int w = scaler_.width(), h = scaler_.height(), quarters = Quarters(orientation_);
  const bool mirrors = Mirrors(orientation_), swaps = SwapsSides(orientation_);
  facts.width = swaps ? h : w;
  facts.height = swaps ? w : h;
  const std::vector<uint8_t>& from = scaler_.pixels();
  if (!mirrors && quarters == 0) return from;
  std::vector<uint8_t> to(from.size());
  for (int y = 0; y < h; ++y) {
    for (int x = 0; x < w; ++x) {
      const int mx = mirrors ? w - 1 - x : x;
      const int places[4][2] = {{mx, y}, {h - 1 - y, mx}, {w - 1 - mx, h - 1 - y}, {y, w - 1 - mx}};
      const int* place = places[quarters];
      const size_t at = size_t(place[1]) * size_t(facts.width) + size_t(place[0]);
      std::copy_n(&from[(size_t(y) * size_t(w) + size_t(x)) * 4], 4, &to[at * 4]);
    }
  }
  return to;
}

void Report::Finish(PreviewTrouble trouble) {
  facts.trouble = trouble == PreviewTrouble::kNone && damaged ? PreviewTrouble::kDamaged : trouble;
  text.resize(std::min<size_t>(text.size(), console::kMostPreviewText));
  facts.text_size = int32_t(text.size());
  // Where memory was the trouble there is none for the picture.
  std::vector<uint8_t> pixels;
  if (trouble != PreviewTrouble::kTooLarge) pixels = Turned();
  const bool written = os::WriteAll(STDOUT_FILENO, &facts, sizeof facts) &&
                       os::WriteAll(STDOUT_FILENO, text.data(), text.size()) &&
                       os::WriteAll(STDOUT_FILENO, pixels.data(), pixels.size());
  _exit(written ? 0 : 1);
}

Report& TheReport() {
  static auto* report = new Report;
  return *report;
}

void CheckSize(int64_t width, int64_t height) {
  if (width < 1 || height < 1) TheReport().Finish(PreviewTrouble::kDamaged);
  if (width > kMostSide || height > kMostSide) TheReport().Finish(PreviewTrouble::kTooLarge);
}

}  // namespace preview

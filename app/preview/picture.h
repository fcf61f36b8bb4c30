// What the program finds out about a document, and the picture of it that it makes.
#pragma once
#include <cstdint>
#include <string>
#include <vector>

#include "app/work/preview_result.h"

namespace preview {

using console::Colours;
using console::DocumentKind;
using console::PreviewHeader;
using console::PreviewTrouble;

// Rows of one size are averaged into rows of another that is no larger, each pixel by the area that
// it covers.
class Scaler {
 public:
  // Sizes from 1 up; the new one is at most the old one.
  void Begin(int width, int height, int new_width, int new_height);
  // One row, three bytes a pixel. Rows past the last are ignored.
  void AddRow(const uint8_t* rgb);
  int width() const { return new_width_; }
  int height() const { return new_height_; }
  // Four bytes a pixel: 0, red, green, blue. Rows that did not come are grey.
  const std::vector<uint8_t>& pixels() const { return pixels_; }

 private:
  void Narrow(const uint8_t* rgb);
  void FinishRow();

  int width_ = 0, height_ = 0, new_width_ = 0, new_height_ = 0;
  int row_ = 0, new_row_ = 0;
  std::vector<uint32_t> line_;  // one row of the new width, each sum of weight `width_`
  std::vector<uint64_t> sums_;  // of the rows that have come, each of weight `width_` x `height_`
  std::vector<uint8_t> pixels_;
};

// How a picture is to be turned, by the numbers that cameras and scanners write: 1 as it is, 2 to 8
// mirrored and turned by quarters. Others count as 1.
bool SwapsSides(int orientation);

// Everything that is told of a document. What the decoders do not know stays as it is here.
class Report {
 public:
  PreviewHeader facts;
  std::string text;
  bool damaged = false;

  // How large it is on paper. What no document can be is not taken: densities are often wrong.
  void SetMm(double width, double height);
  // The picture has to fit into so many pixels.
  void SetRoom(int width, int height);
  // The page that is to be shown, from 1 on.
  void SetPage(int page) { page_ = page; }
  int page() const { return page_; }
  int room_width() const { return room_width_; }
  int room_height() const { return room_height_; }

  // A picture of so many pixels that is to be turned afterwards. Its size in mm, when it is known,
  // tells its sides' proportion.
  void BeginPicture(int width, int height, int orientation);
  // The size that it will have before it is turned, of a picture of so many pixels.
  void Fit(int width, int height, int orientation, int* new_width, int* new_height) const;
  // One row, three bytes a pixel. When time is up this ends the program with what there is.
  void AddRow(const uint8_t* rgb);
  // The same from four bytes a pixel (red, green, blue, opacity), over white.
  void AddRowOverWhite(const uint8_t* rgba, int width);

  // Writes what there is, and ends the program at once: decoders are left in the middle of their
  // work.
  [[noreturn]] void Finish(PreviewTrouble trouble);

 private:
  std::vector<uint8_t> Turned();

  int room_width_ = 0, room_height_ = 0, page_ = 1;
  int orientation_ = 1;
  Scaler scaler_;
  std::vector<uint8_t> row_;
};

// The only one.
Report& TheReport();

// Sizes past this are no pictures.
constexpr int kMostSide = 1000000;
// Ends with "too large" or "damaged" unless the size is one of a picture.
void CheckSize(int64_t width, int64_t height);

}  // namespace preview

#include <png.h>

#include <cstdio>

#include "app/preview/decoders.h"
#include "app/preview/picture.h"

namespace preview {
namespace {

constexpr int64_t kMostInterlaced = 300 << 20;  // bytes: such a picture is held whole

[[noreturn]] void Fail(png_structp, png_const_charp) {
  TheReport().Finish(PreviewTrouble::kDamaged);
}
void Ignore(png_structp, png_const_charp) {}

void ReadFacts(png_structp png, png_infop info) {
  PreviewHeader& facts = TheReport().facts;
  const int type = png_get_color_type(png, info);
  facts.pages = 1;
  facts.original_width = int32_t(png_get_image_width(png, info));
  facts.original_height = int32_t(png_get_image_height(png, info));
  facts.colours = type == PNG_COLOR_TYPE_PALETTE       ? Colours::kIndexed
                  : (type & PNG_COLOR_MASK_COLOR) != 0 ? Colours::kRgb
                  : png_get_bit_depth(png, info) == 1  ? Colours::kBlackAndWhite
                                                       : Colours::kGrey;
  facts.transparent =
      (type & PNG_COLOR_MASK_ALPHA) != 0 || png_get_valid(png, info, PNG_INFO_tRNS) != 0;
  png_uint_32 x = 0, y = 0;
  int unit = 0;
  if (!png_get_pHYs(png, info, &x, &y, &unit) || unit != PNG_RESOLUTION_METER || !x || !y) return;
  TheReport().SetMm(1000.0 * facts.original_width / x, 1000.0 * facts.original_height / y);
}

void AddRow(const uint8_t* row, int width) {
  if (TheReport().facts.transparent)
    TheReport().AddRowOverWhite(row, width);
  else
    TheReport().AddRow(row);
}

void ReadRows(png_structp png, int width, size_t row_size) {
  std::vector<uint8_t> row(row_size);
  for (int y = 0; y < TheReport().facts.original_height; ++y) {
    png_read_row(png, row.data(), nullptr);
    AddRow(row.data(), width);
  }
}

void ReadInterlaced(png_structp png, int width, size_t row_size) {
  const size_t height = size_t(TheReport().facts.original_height);
  if (int64_t(row_size * height) > kMostInterlaced) TheReport().Finish(PreviewTrouble::kTooLarge);
  std::vector<uint8_t> all(row_size * height, 0xFF);
  std::vector<png_bytep> rows;
  for (size_t y = 0; y < height; ++y) rows.push_back(&all[y * row_size]);
  png_read_image(png, rows.data());
  for (const png_bytep row : rows) AddRow(row, width);
}

}  // namespace

void ShowPng() {
  Report& report = TheReport();
  report.facts.kind = DocumentKind::kPng;
  png_structp png = png_create_read_struct(PNG_LIBPNG_VER_STRING, nullptr, Fail, Ignore);
  png_infop info = png ? png_create_info_struct(png) : nullptr;
  if (!info) report.Finish(PreviewTrouble::kFailed);
  png_init_io(png, stdin);
  png_set_user_limits(png, INT32_MAX, INT32_MAX);  // they are looked at below
  png_read_info(png, info);
  ReadFacts(png, info);
  const int width = report.facts.original_width, height = report.facts.original_height;
  CheckSize(width, height);
  const bool interlaced = png_get_interlace_type(png, info) != PNG_INTERLACE_NONE;
  png_set_expand(png);
  png_set_scale_16(png);
  png_set_gray_to_rgb(png);
  if (report.facts.transparent) png_set_add_alpha(png, 0xFF, PNG_FILLER_AFTER);
  if (interlaced) png_set_interlace_handling(png);
  png_read_update_info(png, info);
  const size_t row_size = size_t(width) * (report.facts.transparent ? 4 : 3);
  if (png_get_rowbytes(png, info) != row_size) report.Finish(PreviewTrouble::kFailed);
  report.BeginPicture(width, height, 1);
  if (interlaced)
    ReadInterlaced(png, width, row_size);
  else
    ReadRows(png, width, row_size);
  report.Finish(PreviewTrouble::kNone);
}

}  // namespace preview

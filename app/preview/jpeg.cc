#include <cstdio>
// It needs what the line above declares.
#include <jerror.h>
#include <jpeglib.h>

#include <algorithm>

#include "app/preview/decoders.h"
#include "app/preview/exif.h"
#include "app/preview/picture.h"

namespace preview {
namespace {

constexpr int kExifMarker = JPEG_APP0 + 1;
constexpr int kMostMarker = 0xFFFF;

void Fail(j_common_ptr jpeg) {
  TheReport().Finish(jpeg->err->msg_code == JERR_OUT_OF_MEMORY ? PreviewTrouble::kTooLarge
                                                               : PreviewTrouble::kDamaged);
}
// What ends early is damaged; other oddities do not show.
void Note(j_common_ptr jpeg, int level) {
  const int code = jpeg->err->msg_code;
  if (level < 0 && (code == JWRN_JPEG_EOF || code == JWRN_HIT_MARKER)) TheReport().damaged = true;
}

Colours ColoursOf(J_COLOR_SPACE space) {
  switch (space) {
    case JCS_GRAYSCALE:
      return Colours::kGrey;
    case JCS_CMYK:
    case JCS_YCCK:
      return Colours::kCmyk;
    case JCS_UNKNOWN:
      return Colours::kUnknown;
    default:
      return Colours::kRgb;
  }
}

int OrientationOf(const jpeg_decompress_struct& jpeg) {
  for (const jpeg_marker_struct* m = jpeg.marker_list; m; m = m->next)
    if (m->marker == kExifMarker)
      if (const int found = ExifOrientation({m->data, m->data_length})) return found;
  return 1;
}

void ReadFacts(const jpeg_decompress_struct& jpeg, int orientation) {
  PreviewHeader& facts = TheReport().facts;
  const bool swaps = SwapsSides(orientation);
  facts.pages = 1;
  facts.original_width = int32_t(swaps ? jpeg.image_height : jpeg.image_width);
  facts.original_height = int32_t(swaps ? jpeg.image_width : jpeg.image_height);
  facts.colours = ColoursOf(jpeg.jpeg_color_space);
  const double unit = jpeg.density_unit == 1 ? 25.4 : jpeg.density_unit == 2 ? 10 : 0;
  const int x = swaps ? jpeg.Y_density : jpeg.X_density;
  const int y = swaps ? jpeg.X_density : jpeg.Y_density;
  if (!jpeg.saw_JFIF_marker || x == 0 || y == 0) return;
  TheReport().SetMm(unit * facts.original_width / x, unit * facts.original_height / y);
}

// Lets the decoder itself make the picture smaller, down to twice what is wanted.
void ChooseScale(jpeg_decompress_struct* jpeg, int orientation) {
  const int w = int(jpeg->image_width), h = int(jpeg->image_height);
  int new_w = 0, new_h = 0;
  TheReport().Fit(w, h, orientation, &new_w, &new_h);
  jpeg->scale_num = 1;
  jpeg->scale_denom = 1;
  while (jpeg->scale_denom < 8 && w / int(jpeg->scale_denom * 2) >= 2 * new_w &&
         h / int(jpeg->scale_denom * 2) >= 2 * new_h)
    jpeg->scale_denom *= 2;
}

// Inks to light; many programs write them turned over.
void ToRgb(const uint8_t* inks, int width, bool turned_over, uint8_t* rgb) {
  for (int x = 0; x < width; ++x, inks += 4, rgb += 3) {
    const unsigned black = turned_over ? inks[3] : 255u - inks[3];
    for (int i = 0; i < 3; ++i)
      rgb[i] = uint8_t((turned_over ? inks[i] : 255u - inks[i]) * black / 255);
  }
}

}  // namespace

void ShowJpeg() {
  Report& report = TheReport();
  report.facts.kind = DocumentKind::kJpeg;
  jpeg_decompress_struct jpeg{};
  jpeg_error_mgr errors{};
  jpeg.err = jpeg_std_error(&errors);
  errors.error_exit = Fail;
  errors.emit_message = Note;
  jpeg_create_decompress(&jpeg);
  jpeg_stdio_src(&jpeg, stdin);
  jpeg_save_markers(&jpeg, kExifMarker, kMostMarker);
  jpeg_read_header(&jpeg, TRUE);
  const int orientation = OrientationOf(jpeg);
  ReadFacts(jpeg, orientation);
  const bool inks = report.facts.colours == Colours::kCmyk;
  jpeg.out_color_space = inks ? JCS_CMYK : JCS_RGB;
  ChooseScale(&jpeg, orientation);
  jpeg_start_decompress(&jpeg);
  const int width = int(jpeg.output_width), height = int(jpeg.output_height);
  report.BeginPicture(width, height, orientation);
  std::vector<uint8_t> row(size_t(width) * 4), rgb(size_t(width) * 3);
  JSAMPROW rows[] = {row.data()};
  while (jpeg.output_scanline < jpeg.output_height) {
    jpeg_read_scanlines(&jpeg, rows, 1);
    if (inks) ToRgb(row.data(), width, jpeg.saw_Adobe_marker, rgb.data());
    report.AddRow(inks ? rgb.data() : row.data());
  }
  report.Finish(PreviewTrouble::kNone);
}

}  // namespace preview

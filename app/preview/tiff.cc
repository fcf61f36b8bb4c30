#include <tiffio.h>
#include <unistd.h>

#include <algorithm>

#include "app/preview/decoders.h"
#include "app/preview/picture.h"

namespace preview {
namespace {

constexpr int64_t kBand = 48 << 20;  // bytes of rows that are decoded at a time
constexpr int kMostPages = 10000;

bool decoding;
void NoteError(const char*, const char*, va_list) {
  if (decoding) TheReport().damaged = true;
}

int Number(TIFF* tiff, uint32_t tag, int usual) {
  uint16_t value = 0;
  return TIFFGetFieldDefaulted(tiff, tag, &value) ? value : usual;
}

Colours ColoursOf(TIFF* tiff) {
  switch (Number(tiff, TIFFTAG_PHOTOMETRIC, -1)) {
    case PHOTOMETRIC_MINISWHITE:
    case PHOTOMETRIC_MINISBLACK:
      return Number(tiff, TIFFTAG_BITSPERSAMPLE, 1) == 1 ? Colours::kBlackAndWhite : Colours::kGrey;
    case PHOTOMETRIC_PALETTE:
      return Colours::kIndexed;
    case PHOTOMETRIC_RGB:
    case PHOTOMETRIC_YCBCR:
      return Colours::kRgb;
    case PHOTOMETRIC_SEPARATED:
      return Number(tiff, TIFFTAG_INKSET, INKSET_CMYK) == INKSET_CMYK ? Colours::kCmyk
                                                                      : Colours::kUnknown;
    case PHOTOMETRIC_CIELAB:
    case PHOTOMETRIC_ICCLAB:
    case PHOTOMETRIC_ITULAB:
      return Colours::kLab;
    default:
      return Colours::kUnknown;
  }
}

// The number of pages without the last ones of a file that has too many. Goes to the one that is to
// be shown.
int CountPages(TIFF* tiff) {
  int count = 1;
  while (count < kMostPages && TIFFReadDirectory(tiff)) ++count;
  TIFFSetDirectory(tiff, uint16_t(std::min(TheReport().page(), count) - 1));
  return count;
}

void ReadFacts(TIFF* tiff, uint32_t width, uint32_t height, int orientation) {
  PreviewHeader& facts = TheReport().facts;
  const bool swaps = SwapsSides(orientation);
  facts.original_width = int32_t(swaps ? height : width);
  facts.original_height = int32_t(swaps ? width : height);
  facts.colours = ColoursOf(tiff);
  float x = 0, y = 0;
  const int unit = Number(tiff, TIFFTAG_RESOLUTIONUNIT, RESUNIT_INCH);
  if (unit != RESUNIT_INCH && unit != RESUNIT_CENTIMETER) return;
  if (!TIFFGetField(tiff, TIFFTAG_XRESOLUTION, &x) || !TIFFGetField(tiff, TIFFTAG_YRESOLUTION, &y))
    return;
  if (!(x > 0.001F && x < 1e6F && y > 0.001F && y < 1e6F)) return;
  const double mm = unit == RESUNIT_INCH ? 25.4 : 10;
  TheReport().SetMm(mm * facts.original_width / (swaps ? y : x),
                    mm * facts.original_height / (swaps ? x : y));
}

// How many rows at a time: whole strips or rows of tiles, as many as fit.
uint32_t RowsAtATime(TIFF* tiff, uint32_t width, uint32_t height) {
  uint32_t unit = 1;
  if (TIFFIsTiled(tiff))
    TIFFGetField(tiff, TIFFTAG_TILELENGTH, &unit);
  else
    TIFFGetFieldDefaulted(tiff, TIFFTAG_ROWSPERSTRIP, &unit);
  const auto most = uint32_t(std::max<int64_t>(1, kBand / (int64_t(width) * 4)));
  if (unit < 1 || unit > most) return std::min(most, height);
  return std::min(most / unit * unit, height);
}

// The library gives colours that are multiplied by their opacity already.
void AddRows(const std::vector<uint32_t>& raster, uint32_t width, uint32_t rows) {
  std::vector<uint8_t> rgb(size_t(width) * 3);
  for (uint32_t y = 0; y < rows; ++y) {
    const uint32_t* from = &raster[size_t(y) * width];
    for (uint32_t x = 0; x < width; ++x) {
      const unsigned white = 255 - TIFFGetA(from[x]);
      const unsigned parts[] = {TIFFGetR(from[x]), TIFFGetG(from[x]), TIFFGetB(from[x])};
      for (size_t i = 0; i < 3; ++i)
        rgb[size_t(x) * 3 + i] = uint8_t(std::min(255u, parts[i] + white));
    }
    TheReport().AddRow(rgb.data());
  }
}

void ReadRows(TIFFRGBAImage* image, uint32_t band) {
  std::vector<uint32_t> raster(size_t(image->width) * band);
  const uint32_t height = image->height;
  for (uint32_t y = 0; y < height; y += band) {
    const uint32_t rows = std::min(band, height - y);
    // White where nothing can be decoded.
    std::fill(raster.begin(), raster.end(), UINT32_MAX);
    image->row_offset = int(y);
    image->height = rows;
    if (!TIFFRGBAImageGet(image, raster.data(), image->width, rows)) TheReport().damaged = true;
    AddRows(raster, image->width, rows);
  }
}

// Inks of 16 bits, which the library does not turn into colours.
[[noreturn]] void ShowDeepInks(TIFF* tiff, int width, int height, int orientation) {
  Report& report = TheReport();
  const size_t samples = size_t(Number(tiff, TIFFTAG_SAMPLESPERPIXEL, 1));
  const auto size = size_t(TIFFScanlineSize(tiff));
  if (TIFFIsTiled(tiff) || samples < 4 || size < size_t(width) * samples * 2 ||
      Number(tiff, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG) != PLANARCONFIG_CONTIG)
    report.Finish(PreviewTrouble::kNoPreview);
  report.BeginPicture(width, height, orientation);
  std::vector<uint16_t> row(size / 2 + 1);
  std::vector<uint8_t> rgb(size_t(width) * 3);
  for (int y = 0; y < height; ++y) {
    if (TIFFReadScanline(tiff, row.data(), uint32_t(y), 0) < 0) report.damaged = true;
    for (size_t x = 0; x < size_t(width); ++x) {
      const uint16_t* inks = &row[x * samples];
      const unsigned light = 255u - (inks[3] >> 8);
      for (size_t i = 0; i < 3; ++i)
        rgb[x * 3 + i] = uint8_t((255u - (inks[i] >> 8)) * light / 255);
    }
    report.AddRow(rgb.data());
  }
  report.Finish(PreviewTrouble::kNone);
}

}  // namespace

void ShowTiff() {
  Report& report = TheReport();
  report.facts.kind = DocumentKind::kTiff;
  TIFFSetErrorHandler(NoteError);
  TIFFSetWarningHandler(nullptr);
  TIFF* tiff = TIFFFdOpen(STDIN_FILENO, "document", "rm");
  if (!tiff) report.Finish(PreviewTrouble::kDamaged);
  report.facts.pages = CountPages(tiff);
  uint32_t width = 0, height = 0;
  TIFFGetField(tiff, TIFFTAG_IMAGEWIDTH, &width);
  TIFFGetField(tiff, TIFFTAG_IMAGELENGTH, &height);
  CheckSize(width, height);
  const int orientation = Number(tiff, TIFFTAG_ORIENTATION, 1);
  ReadFacts(tiff, width, height, orientation);
  decoding = true;
  if (report.facts.colours == Colours::kCmyk && Number(tiff, TIFFTAG_BITSPERSAMPLE, 1) == 16)
    ShowDeepInks(tiff, int(width), int(height), orientation);
  char message[1024];
  TIFFRGBAImage image;
  if (!TIFFRGBAImageOK(tiff, message) || !TIFFRGBAImageBegin(&image, tiff, 0, message))
    report.Finish(PreviewTrouble::kNoPreview);
  report.facts.transparent = image.alpha != 0;
  image.req_orientation = image.orientation;  // it is turned when it is small
  report.BeginPicture(int(width), int(height), orientation);
  ReadRows(&image, RowsAtATime(tiff, width, height));
  report.Finish(PreviewTrouble::kNone);
}

}  // namespace preview

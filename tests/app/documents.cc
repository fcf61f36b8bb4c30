#include "tests/app/documents.h"

#include <png.h>
#include <tiffio.h>

#include <cstdio>
// It needs what the line above declares.
#include <jpeglib.h>

#include <vector>

namespace console {
namespace {

bool IsDark(const Sample& s, int x, int y) {
  return x < s.width / 2 && y < s.height / 2;
}

// Rows of light (0 is black), or of inks.
std::vector<uint8_t> Pixels(const Sample& s, int parts) {
  std::vector<uint8_t> pixels;
  for (int y = 0; y < s.height; ++y)
    for (int x = 0; x < s.width; ++x)
      for (int i = 0; i < parts; ++i) {
        const bool dark = IsDark(s, x, y);
        const bool full = parts < 4 || s.opacity ? !dark || i == 3 : dark && i == 3;
        pixels.push_back(full ? 255 : 0);
      }
  return pixels;
}

void WriteTiffPage(TIFF* tiff, const Sample& s) {
  const int parts = s.bits == 1 ? 1 : s.inks ? 4 : 3;
  TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, s.width);
  TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, s.height);
  TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, s.bits);
  TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, parts);
  TIFFSetField(tiff, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
  TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC,
               s.bits == 1 ? PHOTOMETRIC_MINISBLACK
               : s.inks    ? PHOTOMETRIC_SEPARATED
                           : PHOTOMETRIC_RGB);
  TIFFSetField(tiff, TIFFTAG_COMPRESSION, COMPRESSION_LZW);
  TIFFSetField(tiff, TIFFTAG_ROWSPERSTRIP, 7);
  TIFFSetField(tiff, TIFFTAG_ORIENTATION, s.orientation);
  if (s.metric) TIFFSetField(tiff, TIFFTAG_RESOLUTIONUNIT, RESUNIT_CENTIMETER);
  TIFFSetField(tiff, TIFFTAG_XRESOLUTION, 300.0);
  TIFFSetField(tiff, TIFFTAG_YRESOLUTION, 300.0);
  const std::vector<uint8_t> pixels = Pixels(s, parts);
  std::vector<uint8_t> row;
  for (int y = 0; y < s.height; ++y) {
    row.assign(size_t(s.width * parts * 2), 0);
    for (int i = 0; i < s.width * parts; ++i) {
      const uint8_t value = pixels[size_t(y * s.width * parts + i)];
      if (s.bits == 1)
        row[size_t(i / 8)] |= uint8_t(value & (0x80 >> i % 8));
      else
        for (int b = 0; b < s.bits / 8; ++b) row[size_t(i * (s.bits / 8) + b)] = value;
    }
    TIFFWriteScanline(tiff, row.data(), uint32_t(y), 0);
  }
  TIFFWriteDirectory(tiff);
}

}  // namespace

void WritePng(const std::string& path, const Sample& sample) {
  png_image image{};
  image.version = PNG_IMAGE_VERSION;
  image.width = png_uint_32(sample.width);
  image.height = png_uint_32(sample.height);
  image.format = sample.opacity ? PNG_FORMAT_RGBA : PNG_FORMAT_RGB;
  std::vector<uint8_t> pixels = Pixels(sample, sample.indexed ? 1 : sample.opacity ? 4 : 3);
  if (sample.indexed) {
    image.format = PNG_FORMAT_RGBA_COLORMAP;
    image.colormap_entries = 256;
    std::vector<uint8_t> colours(1024);
    colours[3] = 255;
    png_image_write_to_file(&image, path.c_str(), 0, pixels.data(), 0, colours.data());
    return;
  }
  // What is white can be seen through.
  for (size_t i = 3; sample.opacity && i < pixels.size(); i += 4) pixels[i] = 255 - pixels[i - 1];
  png_image_write_to_file(&image, path.c_str(), 0, pixels.data(), 0, nullptr);
}

void WriteJpeg(const std::string& path, const Sample& sample) {
  jpeg_compress_struct jpeg;
  jpeg_error_mgr errors;
  jpeg.err = jpeg_std_error(&errors);
  jpeg_create_compress(&jpeg);
  FILE* file = fopen(path.c_str(), "w");
  jpeg_stdio_dest(&jpeg, file);
  jpeg.image_width = JDIMENSION(sample.width);
  jpeg.image_height = JDIMENSION(sample.height);
  jpeg.input_components = sample.inks ? 4 : 3;
  jpeg.in_color_space = sample.inks ? JCS_CMYK : JCS_RGB;
  jpeg_set_defaults(&jpeg);
  jpeg_set_quality(&jpeg, 95, TRUE);
  if (sample.progressive) jpeg_simple_progression(&jpeg);
  jpeg.write_JFIF_header = TRUE;
  jpeg.density_unit = 1;
  jpeg.X_density = jpeg.Y_density = UINT16(sample.dots);
  jpeg_start_compress(&jpeg, TRUE);
  const uint8_t exif[] = {
      'E', 'x', 'i', 'f', 0,    0, 'M', 'M', 0, 42, 0, 0, 0,
      8,   0,   1,   1,   0x12, 0, 3,   0,   0, 0,  1, 0, uint8_t(sample.orientation),
      0,   0,   0,   0,   0,    0};
  if (sample.orientation != 1) jpeg_write_marker(&jpeg, JPEG_APP0 + 1, exif, sizeof exif);
  std::vector<uint8_t> pixels = Pixels(sample, jpeg.input_components);
  // Inks are written turned over, as the marker that comes with them tells.
  for (uint8_t& ink : pixels) ink = sample.inks ? 255 - ink : ink;
  while (jpeg.next_scanline < jpeg.image_height) {
    JSAMPROW row =
        &pixels[size_t(jpeg.next_scanline) * jpeg.image_width * size_t(jpeg.input_components)];
    jpeg_write_scanlines(&jpeg, &row, 1);
  }
  jpeg_finish_compress(&jpeg);
  jpeg_destroy_compress(&jpeg);
  fclose(file);
}

void WriteTiff(const std::string& path, const Sample& sample) {
  TIFF* tiff = TIFFOpen(path.c_str(), "w");
  for (int i = 0; i < sample.pages; ++i) WriteTiffPage(tiff, sample);
  TIFFClose(tiff);
}

std::string PdfOf(int pages, int turn, int last_height) {
  std::vector<std::string> objects = {"<</Type/Catalog/Pages 2 0 R>>", ""};
  std::string kids;
  for (int i = 0; i < pages; ++i) {
    const std::string page = std::to_string(objects.size() + 1);
    const std::string content = std::to_string(objects.size() + 2);
    kids += page + " 0 R ";
    const std::string height = std::to_string(i == pages - 1 ? last_height : 842);
    objects.push_back("<</Type/Page/Parent 2 0 R/MediaBox[0 0 595 " + height + "]/Rotate " +
                      std::to_string(turn) + "/Contents " + content + " 0 R/Resources<<>>>>");
    const std::string drawing = "0 g 0 742 595 100 re f";
    objects.push_back("<</Length " + std::to_string(drawing.size()) + ">>\nstream\n" + drawing +
                      "\nendstream");
  }
  objects[1] = "<</Type/Pages/Count " + std::to_string(pages) + "/Kids[" + kids + "]>>";
  std::string pdf = "%PDF-1.4\n", table;
  for (size_t i = 0; i < objects.size(); ++i) {
    char entry[32];
    snprintf(entry, sizeof entry, "%010zu 00000 n \n", pdf.size());
    table += entry;
    pdf += std::to_string(i + 1) + " 0 obj\n" + objects[i] + "\nendobj\n";
  }
  const std::string size = std::to_string(objects.size() + 1), at = std::to_string(pdf.size());
  return pdf + "xref\n0 " + size + "\n0000000000 65535 f \n" + table + "trailer\n<</Size " + size +
         "/Root 1 0 R>>\nstartxref\n" + at + "\n%%EOF\n";
}

}  // namespace console

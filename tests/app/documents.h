// Documents for tests: white pictures whose upper left quarter is black, and pages.
#pragma once
#include <string>

namespace console {

struct Sample {
  int width = 60, height = 40;
  int bits = 8;              // of a part of a pixel; 1 for black and white (TIFF)
  bool inks = false;         // CMYK instead of RGB (JPEG, TIFF)
  bool opacity = false;      // a fourth part (PNG)
  bool indexed = false;      // of two colours, one of which is seen through (PNG)
  int orientation = 1;       // how it is to be turned (JPEG, TIFF)
  int pages = 1;             // TIFF
  bool progressive = false;  // JPEG
  bool metric = false;       // 300 dots a centimetre (TIFF)
  int dots = 150;            // an inch (JPEG)
};
void WritePng(const std::string& path, const Sample& sample);
void WriteJpeg(const std::string& path, const Sample& sample);
// 300 dots an inch.
void WriteTiff(const std::string& path, const Sample& sample);

// Pages of 595 x 842 points, turned by so many degrees, with a black bar at the top; the last one
// of another height.
std::string PdfOf(int pages, int turn, int last_height = 842);

}  // namespace console

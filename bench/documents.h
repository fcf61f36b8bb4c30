// Large documents of which previews are made.
#pragma once
#include <fcntl.h>
#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <fstream>
#include <string>
#include <vector>

#include "bench/daemon.h"

// 8,000 by 6,000 pixels of 24 bits without compression, 144 MB; all of it black, which costs no
// room on the disk.
inline void WriteLargeTiff(const std::string& path) {
  constexpr uint32_t kWidth = 8000, kHeight = 6000, kPixels = 8 + 2 + 12 * 9 + 4 + 6;
  std::string head("II*\0\10\0\0\0", 8);
  const auto add = [&head](uint32_t number, int bytes) {
    for (int i = 0; i < bytes; ++i) head += char(number >> 8 * i & 255);
  };
  // Tag, type (3: 16 bits, 4: 32 bits), count, value.
  const uint32_t entries[][4] = {
      {256, 4, 1, kWidth}, {257, 4, 1, kHeight}, {258, 3, 3, kPixels - 6},
      {259, 3, 1, 1},      {262, 3, 1, 2},       {273, 4, 1, kPixels},
      {277, 3, 1, 3},      {278, 4, 1, kHeight}, {279, 4, 1, kWidth * kHeight * 3}};
  add(9, 2);
  for (const auto& e : entries) add(e[0], 2), add(e[1], 2), add(e[2], 4), add(e[3], 4);
  add(0, 4);
  for (int i = 0; i < 3; ++i) add(8, 2);
  std::ofstream(path, std::ios::binary) << head;
  if (truncate(path.c_str(), off_t{kPixels} + off_t{kWidth} * kHeight * 3) != 0) Die(path.c_str());
}

// One page of 100,000 lines.
inline void WriteLargePdf(const std::string& path) {
  std::string lines;
  for (int i = 0; i < 100000; ++i) {
    char line[64];
    snprintf(line, sizeof line, "%d %d m %d %d l S\n", i * 7 % 595, i * 11 % 842, i * 13 % 595,
             i * 17 % 842);
    lines += line;
  }
  const std::string objects[] = {
      "<</Type/Catalog/Pages 2 0 R>>", "<</Type/Pages/Kids[3 0 R]/Count 1>>",
      "<</Type/Page/Parent 2 0 R/MediaBox[0 0 595 842]/Contents 4 0 R/Resources<<>>>>",
      "<</Length " + std::to_string(lines.size()) + ">>\nstream\n" + lines + "endstream"};
  std::string file = "%PDF-1.4\n", table = "0000000000 65535 f \n";
  int number = 0;
  for (const std::string& object : objects) {
    char place[32];
    snprintf(place, sizeof place, "%010zu 00000 n \n", file.size());
    table += place;
    file += std::to_string(++number) + " 0 obj\n" + object + "\nendobj\n";
  }
  const size_t start = file.size();
  file += "xref\n0 5\n" + table + "trailer\n<</Size 5/Root 1 0 R>>\nstartxref\n" +
          std::to_string(start) + "\n%%EOF\n";
  std::ofstream(path, std::ios::binary) << file;
}

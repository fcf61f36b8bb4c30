// quorvik-preview WIDTH HEIGHT [PAGE]: finds out what the document on standard input is, and writes
// facts and a small picture of that page (1) to standard output (app/work/preview_result.h).
//
// A separate program, started by the console for one document: what a broken file does to a
// decoder, it does to this process alone, which owns nothing but that file and a pipe. The console
// does not load the decoders' libraries.
#include <unistd.h>

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <cstring>
#include <new>
#include <string_view>

#include "app/preview/confine.h"
#include "app/preview/decoders.h"
#include "app/preview/picture.h"

namespace preview {
namespace {

struct Sign {
  std::string_view bytes;
  void (*show)();
};
using namespace std::literals;
constexpr Sign kSigns[] = {
    {"\x89PNG\r\n\x1A\n"sv, ShowPng},
    {"\xFF\xD8\xFF"sv, ShowJpeg},
    {"II*\0"sv, ShowTiff},
    {"MM\0*"sv, ShowTiff},
    {"II+\0\x08\0"sv, ShowTiff},
    {"MM\0+\0\x08"sv, ShowTiff},
};

[[noreturn]] void Show() {
  char head[1024];
  const ssize_t got = pread(STDIN_FILENO, head, sizeof head, 0);
  if (got < 0) TheReport().Finish(PreviewTrouble::kNotReadable);
  const std::string_view beginning(head, size_t(got));
  const auto begins = [&](const Sign& sign) {
    return beginning.substr(0, sign.bytes.size()) == sign.bytes;
  };
  const Sign* sign = std::find_if(std::begin(kSigns), std::end(kSigns), begins);
  // Readers of PDF allow for other bytes before it.
  if (sign == std::end(kSigns) && beginning.find("%PDF-") != std::string_view::npos) ShowPdf();
  CloseDoors();
  if (sign != std::end(kSigns)) sign->show();
  ShowText();
}

// A number from 1 to `most`.
bool Parse(const char* text, int most, int* number) {
  const char* end = text + strlen(text);
  return std::from_chars(text, end, *number).ptr == end && *number >= 1 && *number <= most;
}

}  // namespace
}  // namespace preview

int main(int argc, char** argv) {
  using namespace preview;
  constexpr int kMostSide = console::kMostPreviewSide;
  int width = 0, height = 0, page = 1;
  if (argc < 3 || argc > 4 || !Parse(argv[1], kMostSide, &width) ||
      !Parse(argv[2], kMostSide, &height) ||
      (argc == 4 && !Parse(argv[3], console::kMostPreviewPages, &page))) {
    fprintf(stderr,
            "usage: quorvik-preview WIDTH HEIGHT [PAGE] < DOCUMENT   (a helper of quorvik)\n");
    return 2;
  }
  TheReport().SetRoom(width, height);
  TheReport().SetPage(page);
  std::set_new_handler([] { TheReport().Finish(PreviewTrouble::kTooLarge); });
  if (!Confine()) TheReport().Finish(PreviewTrouble::kFailed);
  Show();
}

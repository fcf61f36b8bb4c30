#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstring>

#include "app/preview/confine.h"
#include "app/preview/decoders.h"
#include "app/preview/picture.h"
#include "app/work/spawn.h"

namespace preview {
namespace {

// The programs open the file themselves, so that they can go to and fro in it.
constexpr const char* kInput = "/dev/stdin";
constexpr double kMmOfPoint = 25.4 / 72;
constexpr double kMostPoints = 14400 * 100;

// A program of the PDF library, and the stream of what it writes.
struct Output {
  FILE* stream;
  console::Child child;
};
Output Begin(std::vector<std::string> words) {
  int ends[2];
  if (pipe2(ends, O_CLOEXEC) != 0) TheReport().Finish(PreviewTrouble::kFailed);
  console::Program program;
  program.words = std::move(words);
  program.input = STDIN_FILENO;
  program.output = ends[1];
  program.place = console::Program::kSameGroup;
  const console::Child child = console::Start(program);
  EndInTime(child.pid());
  if (!child.running())
    TheReport().Finish(errno == ENOENT ? PreviewTrouble::kNoPdfProgram : PreviewTrouble::kFailed);
  close(ends[1]);
  FILE* stream = fdopen(ends[0], "r");
  if (!stream) TheReport().Finish(PreviewTrouble::kFailed);
  return {stream, child};
}

[[noreturn]] void GiveUp() {
  TheReport().Finish(OutOfTime() ? PreviewTrouble::kTooSlow : PreviewTrouble::kPdfNotReadable);
}

struct Page {
  double width = 0, height = 0;  // points
  int turn = 0;                  // degrees
};

// Lines such as "Pages: 3" and "Page    1 size:  595 x 842 pts (A4)".
Page ReadFacts(const std::string& number) {
  Output info = Begin({"pdfinfo", "-f", number, "-l", number, kInput});
  Page page;
  int pages = 0;
  char line[1024];
  while (fgets(line, sizeof line, info.stream)) {
    sscanf(line, "Pages: %9d", &pages);
    sscanf(line, "Page %*9d size: %20lf x %20lf pts", &page.width, &page.height);
    sscanf(line, "Page %*9d rot: %9d", &page.turn);
  }
  EndInTime(0);
  info.child.Wait();
  // Of a page that cannot be read, too: there are others.
  TheReport().facts.pages = std::clamp(pages, 0, console::kMostPreviewPages);
  const bool good = pages > 0 && page.width > 0 && page.width < kMostPoints && page.height > 0 &&
                    page.height < kMostPoints;
  if (!good) GiveUp();
  if (page.turn % 180 != 0) std::swap(page.width, page.height);
  TheReport().SetMm(page.width * kMmOfPoint, page.height * kMmOfPoint);
  return page;
}

void ReadPixels(FILE* stream) {
  Report& report = TheReport();
  int width = 0, height = 0, most = 0;
  if (fscanf(stream, "P6 %9d %9d %9d", &width, &height, &most) != 3 || most != 255 ||
      fgetc(stream) == EOF)
    GiveUp();
  CheckSize(width, height);
  report.BeginPicture(width, height, 1);
  std::vector<uint8_t> row(size_t(width) * 3);
  for (int y = 0; y < height; ++y) {
    if (fread(row.data(), row.size(), 1, stream) != 1) GiveUp();
    report.AddRow(row.data());
  }
}

}  // namespace

void ShowPdf() {
  Report& report = TheReport();
  report.facts.kind = DocumentKind::kPdf;
  const std::string number = std::to_string(report.page());
  const Page page = ReadFacts(number);
  // The drawn size is rounded up.
  const double scale = std::min((report.room_width() - 0.5) / page.width,
                                (report.room_height() - 0.5) / page.height);
  char dots_an_inch[32];
  snprintf(dots_an_inch, sizeof dots_an_inch, "%.6f", scale * 72);
  Output drawn =
      Begin({"pdftoppm", "-q", "-f", number, "-l", number, "-cropbox", "-r", dots_an_inch, kInput});
  ReadPixels(drawn.stream);
  EndInTime(0);
  drawn.child.Wait();
  report.Finish(PreviewTrouble::kNone);
}

}  // namespace preview

// quorvik-preview WIDTH HEIGHT: finds out what the document on standard input is, and writes facts
// and a small picture to standard output (app/work/preview_result.h).
//
// A program of its own, started by the console for one document: what a broken file does to a
// decoder, it does to this process alone, which owns nothing but that file and a pipe. The console
// does not load the decoders' libraries.
#include <signal.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <cstring>
#include <new>
#include <string_view>

#include "app/preview/decoders.h"
#include "app/preview/picture.h"

namespace preview {
namespace {

constexpr rlim_t kSeconds = 10;
// Sanitizers lay out far more memory than they use.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr rlim_t kMemory = RLIM_INFINITY;
#else
constexpr rlim_t kMemory = 512 << 20;
#endif

bool Limit(int what, rlim_t amount) {
  const rlimit limit = {amount, amount};
  return setrlimit(what, &limit) == 0;
}

// With what it has started.
void EndGroup(int) {
  kill(0, SIGKILL);
}

// From here on it has no more than it needs, and programs that it starts have no more either.
bool Restrict() {
  signal(SIGALRM, EndGroup);
  alarm(unsigned(kSeconds));
  signal(SIGXFSZ, SIG_IGN);  // nothing is written but to pipes
  return prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0 && Limit(RLIMIT_CPU, kSeconds) &&
         Limit(RLIMIT_AS, kMemory) && Limit(RLIMIT_FSIZE, 0) && Limit(RLIMIT_CORE, 0);
}

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
  for (const Sign& sign : kSigns)
    if (beginning.substr(0, sign.bytes.size()) == sign.bytes) sign.show();
  // Readers allow for other bytes before it.
  if (beginning.find("%PDF-") != std::string_view::npos) ShowPdf();
  ShowText();
}

bool ParseSide(const char* text, int* side) {
  const char* end = text + strlen(text);
  return std::from_chars(text, end, *side).ptr == end && *side >= 1 &&
         *side <= console::kMostPreviewSide;
}

}  // namespace
}  // namespace preview

int main(int argc, char** argv) {
  using namespace preview;
  int width = 0, height = 0;
  if (argc != 3 || !ParseSide(argv[1], &width) || !ParseSide(argv[2], &height)) {
    fprintf(stderr, "usage: quorvik-preview WIDTH HEIGHT < DOCUMENT   (a helper of quorvik)\n");
    return 2;
  }
  TheReport().SetRoom(width, height);
  std::set_new_handler([] { TheReport().Finish(PreviewTrouble::kTooLarge); });
  if (!Restrict()) TheReport().Finish(PreviewTrouble::kFailed);
  Show();
}

#include "app/work/preview.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <cmath>
#include <cstring>

#include "app/format/words.h"
#include "app/work/file_time.h"
#include "app/work/spawn.h"
#include "printserver/visible.h"

namespace console {
namespace {

// Who walks through a list by the keys starts no process for each name.
constexpr int kSettleMs = 60;
constexpr size_t kMostLine = 400;
constexpr size_t kTab = 8;
constexpr double kMostMm = 1e7;

using Clock = std::chrono::steady_clock;

// `trouble` says why there is none.
os::Handle OpenDocument(const PreviewRequest& request, PreviewTrouble* trouble) {
  *trouble = PreviewTrouble::kNotReadable;
  // Not waiting: a pipe would wait for its writer.
  os::Handle file(open(request.path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
  struct stat s {};
  if (!file || fstat(file.get(), &s) != 0 || !S_ISREG(s.st_mode)) return {};
  const bool same = request.size == s.st_size && request.modified_ns == ModifiedNs(s);
  if (request.modified_ns != 0 && !same) {
    *trouble = PreviewTrouble::kChanged;
    return {};
  }
  return file;
}

bool Stopped(int stop, int ms) {
  pollfd one = {stop, POLLIN, 0};
  return poll(&one, 1, ms) > 0;
}

size_t MostBytes(const PreviewRequest& request) {
  return sizeof(PreviewHeader) + size_t(kMostPreviewText) +
         size_t(request.width) * size_t(request.height) * 4;
}

enum class Ending { kEnded, kStopped, kTooLong, kTooMuch };

// Until the writer has closed its end.
Ending ReadToEnd(int from, int stop, size_t most, std::string* bytes) {
  const auto end = Clock::now() + std::chrono::milliseconds(PreviewMaker::patience_ms);
  std::vector<char> piece(1 << 16);
  for (;;) {
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(end - Clock::now());
    if (left.count() <= 0) return Ending::kTooLong;
    pollfd both[] = {{from, POLLIN, 0}, {stop, POLLIN, 0}};
    if (poll(both, 2, int(left.count())) <= 0) continue;
    if (both[1].revents) return Ending::kStopped;
    const ssize_t got = read(from, piece.data(), piece.size());
    if (got < 0 && errno == EINTR) continue;
    if (got <= 0) return Ending::kEnded;
    if (bytes->size() + size_t(got) > most) return Ending::kTooMuch;
    bytes->append(piece.data(), size_t(got));
  }
}

// What a process that gave no result has come to.
PreviewTrouble TroubleOf(Ending ending, int status) {
  const bool killed = WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL;
  return ending == Ending::kTooLong || (ending == Ending::kEnded && killed)
             ? PreviewTrouble::kTooSlow
             : PreviewTrouble::kDamaged;
}

bool Within(int64_t number, int64_t most) {
  return number >= 0 && number <= most;
}

bool IsSound(const PreviewHeader& h, size_t size, const PreviewRequest& request) {
  constexpr auto kSide = INT32_MAX;
  if (h.magic != kPreviewMagic || h.kind >= DocumentKind::kCount || h.colours >= Colours::kCount ||
      h.trouble >= PreviewTrouble::kCount || !Within(h.pages, kMostPreviewPages) ||
      !Within(h.original_width, kSide) || !Within(h.original_height, kSide) ||
      !Within(h.width, request.width) || !Within(h.height, request.height) ||
      !Within(h.text_size, kMostPreviewText))
    return false;
  for (const double mm : {h.width_mm, h.height_mm})
    if (!std::isfinite(mm) || mm < 0) return false;
  return size == sizeof h + size_t(h.text_size) + size_t(h.width) * size_t(h.height) * 4;
}

// Tabs become blanks, and what cannot be seen does too.
std::vector<std::string> LinesOf(std::string_view text) {
  std::vector<std::string> lines(1);
  size_t column = 0;
  bool after_return = false;
  while (!text.empty()) {
    const std::string_view before = text;
    const uint32_t code = nc::TakeCharacter(&text);
    const bool pair = code == '\n' && after_return;
    after_return = code == '\r';
    if (pair) continue;
    if (code == '\n' || code == '\r' || code == '\f') {
      lines.emplace_back();
      column = 0;
      continue;
    }
    if (column >= kMostLine) continue;
    const size_t width = code == '\t' ? kTab - column % kTab : 1;
    if (code == nc::kNotUtf8 || nc::IsUnseen(code))
      lines.back().append(width, ' ');
    else
      lines.back() += before.substr(0, before.size() - text.size());
    column += width;
  }
  if (lines.back().empty()) lines.pop_back();
  return lines;
}

std::string Rounded(double mm) {
  if (mm >= 100 || std::abs(mm - std::round(mm)) < 0.05) return NumberText(std::lround(mm));
  char text[32];
  snprintf(text, sizeof text, "%.1f", mm);
  return text;
}

}  // namespace

std::string PreviewMaker::program;
int PreviewMaker::patience_ms = 11000;

// What the thread and the asker share.
struct PreviewMaker::Job {
  std::function<void()> told;
  os::Handle stop{eventfd(0, EFD_CLOEXEC)};  // readable when nobody wants it any more
  std::shared_ptr<Preview> preview = std::make_shared<Preview>();
  std::atomic<bool> ready{false};  // the preview can be looked at

  void Finish() {
    ready = true;
    if (told) told();
  }
  bool Run();
};

// False when it was stopped.
bool PreviewMaker::Job::Run() {
  if (!stop) return true;
  if (Stopped(stop.get(), kSettleMs)) return false;
  const PreviewRequest& request = preview->request;
  const os::Handle file = OpenDocument(request, &preview->trouble);
  if (!file) return true;
  preview->trouble = PreviewTrouble::kNoProgram;
  const std::string path = program.empty() ? FindProgram("quorvik-preview") : program;
  if (path.empty()) return true;
  preview->trouble = PreviewTrouble::kFailed;
  int ends[2];
  if (pipe2(ends, O_CLOEXEC) != 0) return true;
  const os::Handle from(ends[0]);
  os::Handle to(ends[1]);
  Program start;
  start.words = {path, std::to_string(request.width), std::to_string(request.height),
                 std::to_string(request.page)};
  start.input = file.get();
  start.output = to.get();
  Child child = Start(start);
  to.Reset();
  if (!child.running()) return true;
  std::string bytes;
  const Ending ending = ReadToEnd(from.get(), stop.get(), MostBytes(request), &bytes);
  const int status = child.Kill();
  if (ending != Ending::kEnded || !ReadPreview(bytes, preview.get()))
    preview->trouble = TroubleOf(ending, status);
  return ending != Ending::kStopped;
}

void PreviewMaker::Ask(PreviewRequest request, std::function<void()> told) {
  Drop();
  request.width = std::clamp(request.width, 1, kMostPreviewSide);
  request.height = std::clamp(request.height, 1, kMostPreviewSide);
  request.page = std::clamp(request.page, 1, kMostPreviewPages);
  job_ = std::make_shared<Job>();
  job_->told = std::move(told);
  job_->preview->request = std::move(request);
  job_->preview->trouble = PreviewTrouble::kFailed;  // where no thread can be had
  task_ = BackgroundTask([job = job_] {
    if (job->Run()) job->Finish();
  });
  if (task_.failed()) job_->Finish();
}

void PreviewMaker::Drop() {
  if (job_ && job_->stop) eventfd_write(job_->stop.get(), 1);
  task_.Drop();
  job_.reset();
}

const PreviewRequest* PreviewMaker::request() const {
  return job_ ? &job_->preview->request : nullptr;
}

bool PreviewMaker::WaitFor(int ms) const {
  return job_ && (job_->ready || (task_.WaitFor(ms) && job_->ready));
}

std::shared_ptr<const Preview> PreviewMaker::Take() {
  if (!job_ || !job_->ready) return nullptr;
  auto preview = job_->preview;
  Drop();
  return preview;
}

bool ReadPreview(const std::string& bytes, Preview* preview) {
  PreviewHeader h;
  if (bytes.size() < sizeof h) return false;
  memcpy(&h, bytes.data(), sizeof h);
  if (!IsSound(h, bytes.size(), preview->request)) return false;
  preview->kind = h.kind;
  preview->colours = h.colours;
  preview->trouble = h.trouble;
  preview->transparent = h.transparent != 0;
  preview->pages = h.pages;
  preview->original_width = h.original_width;
  preview->original_height = h.original_height;
  if (h.width_mm < kMostMm && h.height_mm < kMostMm) {
    preview->width_mm = h.width_mm;
    preview->height_mm = h.height_mm;
  }
  preview->width = h.width;
  preview->height = h.height;
  const size_t pixels = sizeof h + size_t(h.text_size);
  preview->pixels.assign(bytes.begin() + ptrdiff_t(pixels), bytes.end());
  preview->lines = LinesOf({bytes.data() + sizeof h, size_t(h.text_size)});
  return true;
}

std::string KindWords(const Preview& preview) {
  constexpr const char* kWords[] = {
      "", "PNG picture", "JPEG picture", "TIFF picture", "PDF document", "Text", "Empty file"};
  static_assert(std::size(kWords) == size_t(DocumentKind::kCount));
  return kWords[size_t(preview.kind)];
}

std::string ColourWords(const Preview& preview) {
  constexpr const char* kWords[] = {
      "", "black and white", "grey", "indexed colours", "RGB", "CMYK", "Lab"};
  static_assert(std::size(kWords) == size_t(Colours::kCount));
  const std::string words = kWords[size_t(preview.colours)];
  return preview.transparent && !words.empty() ? words + ", transparent" : words;
}

std::string SizeWords(const Preview& preview) {
  if (preview.width_mm > 0 && preview.height_mm > 0)
    return Rounded(preview.width_mm) + " × " + Rounded(preview.height_mm) + " mm";
  if (preview.original_width == 0) return "";
  return NumberText(preview.original_width) + " × " + NumberText(preview.original_height) +
         " pixels";
}

std::string TroubleWords(const Preview& preview, int pages) {
  if (preview.kind == DocumentKind::kEmpty) return "This file is empty";
  const bool unreadable = preview.trouble == PreviewTrouble::kPdfNotReadable;
  if (unreadable || preview.trouble == PreviewTrouble::kDamaged) {
    // Other pages can be good.
    if (std::max(preview.pages, pages) > 1)
      return "Page " + NumberText(preview.request.page) +
             (preview.pixels.empty() ? " cannot be shown" : " is damaged");
    // Its pages could be counted, so that it is not locked.
    if (unreadable && preview.pages > 0) return "This PDF is damaged";
  }
  constexpr const char* kWords[] = {
      "",
      "This document is damaged",
      "This picture is too large for a preview",
      "No preview: pdftoppm is not installed",
      "This PDF is damaged, or locked by a password",
      "No preview of this kind of document",
      "No preview could be made",
      "A preview would take too long",
      "This document cannot be read",
      "No preview: quorvik-preview is not installed",
      "No preview: the file has changed",
  };
  static_assert(std::size(kWords) == size_t(PreviewTrouble::kCount));
  return kWords[size_t(preview.trouble)];
}

}  // namespace console

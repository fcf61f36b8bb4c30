// Previews of documents. Each is made by a separate process, quorvik-preview, which gets the file
// as a descriptor and nothing else, and is ended when another document is chosen. Nothing here
// waits for a file on the caller's thread.
#pragma once
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "app/work/background_task.h"
#include "app/work/preview_result.h"
#include "os/final_path.h"

namespace console {

struct PreviewRequest {
  std::string path;
  int width = 0, height = 0;  // device pixels that the picture has to fit into
  // What the file has to be still; 0: it may be any.
  int64_t size = 0, modified_ns = 0;
  int page = 1;  // that is to be shown
  bool operator==(const PreviewRequest&) const = default;
};

// What came of it. Numbers that are not known are 0.
struct Preview {
  PreviewRequest request;
  DocumentKind kind = DocumentKind::kUnknown;
  Colours colours = Colours::kUnknown;
  PreviewTrouble trouble = PreviewTrouble::kNone;
  bool transparent = false;
  int pages = 0;
  int original_width = 0, original_height = 0;  // pixels
  double width_mm = 0, height_mm = 0;
  // The picture: four bytes a pixel (0, red, green, blue), rows without gaps. With a trouble it may
  // be a part of one.
  int width = 0, height = 0;
  std::vector<uint8_t> pixels;
  // The beginning of a text, in UTF-8 without control characters.
  std::vector<std::string> lines;
};

// Words for a person; "" for what is not known.
std::string KindWords(const Preview& preview);    // "PDF document"
std::string ColourWords(const Preview& preview);  // "CMYK", "RGB, transparent"
std::string SizeWords(const Preview& preview);    // "210 × 297 mm", else "640 × 480 pixels"
// A line that stands where the picture would. `pages`: how many the document has, where that is
// known from another one of them.
std::string TroubleWords(const Preview& preview, int pages = 0);

class PreviewMaker {
 public:
  PreviewMaker() = default;
  ~PreviewMaker() { Drop(); }
  PreviewMaker(const PreviewMaker&) = delete;
  PreviewMaker& operator=(const PreviewMaker&) = delete;

  // What was asked for before is ended. `told` (may be empty) is called when the preview can be
  // taken: usually on another thread, and perhaps late, when something else has been asked for.
  void Ask(PreviewRequest request, std::function<void()> told = {});
  void Drop();
  // What is being waited for; null when nothing is.
  const PreviewRequest* request() const;
  // Whether it is there, after at most that many milliseconds.
  bool WaitFor(int ms) const;
  // Of one that is there: hands it over. Null when there is none.
  std::shared_ptr<const Preview> Take();

  // The path of quorvik-preview; "": it is looked for. Tests name another one.
  static std::string program;
  // How long a process may take; a little more than it gives itself.
  static int patience_ms;

 private:
  struct Job;
  BackgroundTask task_;
  std::shared_ptr<Job> job_;
};

// The preview that lies in `bytes`, which quorvik-preview wrote for this request; nothing in them
// is believed. False when they are not whole or contradict themselves.
bool ReadPreview(const std::string& bytes, Preview* preview);

}  // namespace console

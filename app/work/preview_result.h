// What the program quorvik-preview writes to its standard output, once: this record, `text_size`
// bytes of text, and width x height pixels. Reader and writer come from the same build, so that
// numbers stand as they lie in memory; the reader believes none of them.
#pragma once
#include <cstdint>

namespace console {

enum class DocumentKind : uint32_t { kUnknown, kPng, kJpeg, kTiff, kPdf, kText, kEmpty, kCount };
enum class Colours : uint32_t {
  kUnknown,
  kBlackAndWhite,
  kGrey,
  kIndexed,
  kRgb,
  kCmyk,
  kLab,
  kCount
};
// Why there is no picture, or only a part of one.
enum class PreviewTrouble : uint32_t {
  kNone,
  kDamaged,
  kTooLarge,
  kNoPdfProgram,    // what shows pages is not installed
  kPdfNotReadable,  // damaged, or locked by a password
  kNoPreview,       // a kind that is not shown
  kFailed,          // the system refused something
  kTooSlow,
  // What only the reader finds:
  kNotReadable,  // the document cannot be opened
  kNoProgram,    // quorvik-preview is not there
  kChanged,      // the file is no longer the one that was sent
  kCount
};

constexpr uint32_t kPreviewMagic = 0x31565051;
constexpr int kMostPreviewSide = 4096;  // pixels
constexpr int kMostPreviewPages = 1000000;
constexpr int kMostPreviewText = 64 * 1024;  // bytes

struct PreviewHeader {
  uint32_t magic = kPreviewMagic;
  DocumentKind kind = DocumentKind::kUnknown;
  PreviewTrouble trouble = PreviewTrouble::kNone;
  Colours colours = Colours::kUnknown;
  int32_t transparent = 0;
  int32_t pages = 0;                                // 0: not known
  int32_t original_width = 0, original_height = 0;  // pixels; 0: it has none
  int32_t width = 0, height = 0;                    // of the picture that follows
  int32_t text_size = 0;
  int32_t unused = 0;
  double width_mm = 0, height_mm = 0;  // 0: not known
};

}  // namespace console

#include <unistd.h>

#include <algorithm>
#include <string_view>

#include "app/preview/decoders.h"
#include "app/preview/picture.h"
#include "printserver/visible.h"

namespace preview {
namespace {

constexpr size_t kMostRead = console::kMostPreviewText;

std::string ReadBeginning() {
  std::string bytes(kMostRead, 0);
  size_t got = 0;
  while (got < bytes.size()) {
    const ssize_t n = pread(STDIN_FILENO, &bytes[got], bytes.size() - got, off_t(got));
    if (n <= 0) break;
    got += size_t(n);
  }
  bytes.resize(got);
  return bytes;
}

void Append(uint32_t code, std::string* out) {
  if (code < 0x80) {
    *out += char(code);
  } else if (code < 0x800) {
    *out += {char(0xC0 | code >> 6), char(0x80 | (code & 0x3F))};
  } else if (code < 0x10000) {
    *out += {char(0xE0 | code >> 12), char(0x80 | (code >> 6 & 0x3F)), char(0x80 | (code & 0x3F))};
  } else {
    *out += {char(0xF0 | code >> 18), char(0x80 | (code >> 12 & 0x3F)),
             char(0x80 | (code >> 6 & 0x3F)), char(0x80 | (code & 0x3F))};
  }
}

// Two bytes a character, or four for the rare ones. A half that stands alone becomes U+FFFD.
std::string FromUtf16(std::string_view bytes, bool little) {
  const auto unit = [&](size_t i) {
    const auto first = uint8_t(bytes[i]), second = uint8_t(bytes[i + 1]);
    return uint32_t(little ? second << 8 | first : first << 8 | second);
  };
  std::string out;
  for (size_t i = 0; i + 1 < bytes.size(); i += 2) {
    uint32_t code = unit(i);
    if (code >= 0xD800 && code < 0xDC00 && i + 3 < bytes.size() && unit(i + 2) >> 10 == 0x37) {
      code = 0x10000 + ((code - 0xD800) << 10) + (unit(i + 2) - 0xDC00);
      i += 2;
    } else if (code >= 0xD800 && code < 0xE000) {
      code = 0xFFFD;
    }
    Append(code, &out);
  }
  return out;
}

// A character may be cut at the end of what was read.
bool IsUtf8(std::string_view text, bool cut) {
  while (!text.empty()) {
    const size_t left = text.size();
    if (nc::TakeCharacter(&text) == nc::kNotUtf8 && !(cut && left < 4)) return false;
  }
  return true;
}

std::string FromLatin(std::string_view bytes) {
  std::string out;
  for (const char byte : bytes) Append(uint8_t(byte), &out);
  return out;
}

// Whether it is no text: zeros and control characters, but those that move the print position, are
// more than one in twenty. Fewer lie in many a text, and are not shown.
bool IsData(std::string_view bytes) {
  constexpr int kOneIn = 20;
  const auto controls = std::count_if(bytes.begin(), bytes.end(), [](char c) {
    const auto code = uint8_t(c);
    return code < 0x20 && !(code >= 0x08 && code <= 0x0D) && code != 0x1B;
  });
  return size_t(controls) * kOneIn > bytes.size();
}

// In UTF-8; false when it is no text.
bool Decode(std::string_view bytes, std::string* out) {
  const bool cut = bytes.size() == kMostRead;
  const std::string_view mark = bytes.substr(0, 2);
  if (mark == "\xFF\xFE" || mark == "\xFE\xFF") {
    *out = FromUtf16(bytes.substr(2), mark[0] == '\xFF');
    return !IsData(*out);
  }
  if (IsData(bytes)) return false;
  if (bytes.substr(0, 3) == "\xEF\xBB\xBF") bytes.remove_prefix(3);
  *out = IsUtf8(bytes, cut) ? std::string(bytes) : FromLatin(bytes);
  return true;
}

// Without a part of a character at its end.
void CutTo(size_t size, std::string* text) {
  if (text->size() <= size) return;
  while (size > 0 && (uint8_t((*text)[size]) & 0xC0) == 0x80) --size;
  text->resize(size);
}

}  // namespace

void ShowText() {
  Report& report = TheReport();
  const std::string bytes = ReadBeginning();
  if (bytes.empty()) {
    report.facts.kind = DocumentKind::kEmpty;
    report.Finish(PreviewTrouble::kNoPreview);
  }
  if (!Decode(bytes, &report.text)) {
    report.text.clear();
    report.Finish(PreviewTrouble::kNoPreview);
  }
  report.facts.kind = DocumentKind::kText;
  CutTo(console::kMostPreviewText, &report.text);
  report.Finish(PreviewTrouble::kNone);
}

}  // namespace preview

#include "printserverd/log.h"

#include <poll.h>
#include <unistd.h>

#include <chrono>
#include <mutex>

#include "printserverd/folder.h"

namespace printserverd {

namespace {

// The code point at the beginning of `text` and how many bytes it takes; -1 and 1 for a byte that
// is not UTF-8.
int32_t TakePoint(std::string_view text, size_t* size) {
  const auto first = static_cast<uint8_t>(text[0]);
  *size = 1;
  if (first < 0x80) return first;
  const size_t wanted = first >= 0xf0 ? 4 : first >= 0xe0 ? 3 : 2;
  if (first < 0xc2 || first > 0xf4 || text.size() < wanted) return -1;
  int32_t point = first & (0xff >> (wanted + 1));
  for (size_t i = 1; i < wanted; ++i) {
    const auto byte = static_cast<uint8_t>(text[i]);
    if ((byte & 0xc0) != 0x80) return -1;
    point = point << 6 | (byte & 0x3f);
  }
  constexpr int32_t kLeast[] = {0, 0, 0x80, 0x800, 0x10000};
  if (point < kLeast[wanted] || point > 0x10ffff || (point >= 0xd800 && point < 0xe000)) return -1;
  *size = wanted;
  return point;
}

bool IsControl(int32_t point) {
  constexpr int32_t kRanges[][2] = {{-1, 0x1f},       {0x7f, 0x9f},     {0x61c, 0x61c},
                                    {0x200e, 0x200f}, {0x2028, 0x202e}, {0x2066, 0x2069}};
  for (const auto& range : kRanges) {
    if (point >= range[0] && point <= range[1]) return true;
  }
  return false;
}

}  // namespace

std::string PlainText(std::string_view text) {
  std::string out;
  for (size_t size; !text.empty(); text.remove_prefix(size)) {
    if (IsControl(TakePoint(text, &size))) {
      out.push_back('?');
    } else {
      out.append(text.substr(0, size));
    }
  }
  return out;
}

bool WriteLine(int fd, const std::string& line) {
  pollfd one = {fd, POLLOUT, 0};
  return poll(&one, 1, 0) == 1 && (one.revents & POLLOUT) && WriteAll(fd, line.data(), line.size());
}

void Log(const std::string& text) {
  WriteLine(STDERR_FILENO, "printserverd: " + PlainText(text) + "\n");
}

void LogRarely(const std::string& text) {
  {
    static std::mutex mutex;
    static std::chrono::steady_clock::time_point next;
    const std::lock_guard<std::mutex> lock(mutex);
    const auto now = std::chrono::steady_clock::now();
    if (now < next) return;
    next = now + std::chrono::seconds(1);
  }
  Log(text);
}

}  // namespace printserverd

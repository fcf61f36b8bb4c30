#include "os/lines.h"

#include <errno.h>
#include <fcntl.h>
#include <string.h>

namespace os {

namespace {

constexpr char kBlanks[] = " \t\n\v\f\r";

}  // namespace

Lines::Lines(const std::string& path, size_t limit)
    : file_(open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC)), limit_(limit) {}

bool Lines::Fill() {
  ssize_t n = -1;
  do {
    n = file_ ? read(file_.get(), buffer_, sizeof buffer_) : 0;
  } while (n < 0 && errno == EINTR);
  at_ = 0;
  end_ = n > 0 ? static_cast<size_t>(n) : 0;
  if (n <= 0) file_.Reset();
  return n > 0;
}

bool Lines::Next(std::string* line) {
  line->clear();
  bool any = false;
  while (at_ < end_ || Fill()) {
    any = true;
    const char* from = buffer_ + at_;
    const auto* end = static_cast<const char*>(memchr(from, '\n', end_ - at_));
    const size_t length = end ? end - from : end_ - at_;
    line->append(from, std::min(length, limit_ - line->size()));
    at_ += length + (end ? 1 : 0);
    if (end) break;
  }
  line->resize(strlen(line->c_str()));
  return any;
}

std::vector<std::string> Words(const std::string& line, size_t most) {
  std::vector<std::string> words;
  size_t start = line.find_first_not_of(kBlanks);
  while (start != std::string::npos && words.size() < most) {
    const size_t end = line.find_first_of(kBlanks, start);
    words.push_back(line.substr(start, end - start));
    start = line.find_first_not_of(kBlanks, end);
  }
  return words;
}

}  // namespace os

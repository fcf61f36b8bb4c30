#include "platform/lists/rows.h"

namespace platform {

ListRows::Row ListRows::Append(std::string_view text) {
  const Row row{text_.size(), text.size()};
  text_ += text;
  return row;
}

void ListRows::Add(std::string_view text) {
  rows_.push_back(Append(text));
}

void ListRows::Set(int row, std::string_view text) {
  Row& r = rows_[size_t(row)];
  if (text.size() <= r.length) {
    text_.replace(r.start, text.size(), text);
    unused_ += r.length - text.size();
    r.length = text.size();
  } else {
    unused_ += r.length;
    r = Append(text);
  }
  Compact();
}

void ListRows::Cut(int count) {
  for (size_t i = size_t(count); i < rows_.size(); ++i) unused_ += rows_[i].length;
  rows_.resize(size_t(count));
  Compact();
}

// Once most of the block belongs to nobody.
void ListRows::Compact() {
  constexpr size_t kLittle = 4096;
  if (unused_ < kLittle || unused_ <= text_.size() / 2) return;
  std::string text;
  text.reserve(text_.size() - unused_);
  for (Row& r : rows_) {
    const size_t start = text.size();
    text.append(text_, r.start, r.length);
    r.start = start;
  }
  text_ = std::move(text);
  unused_ = 0;
}

}  // namespace platform

// The texts of a list, one behind the other in one block: a hundred thousand of them cost little
// more than their bytes.
#pragma once
#include <string>
#include <string_view>
#include <vector>

namespace platform {

class ListRows {
 public:
  int count() const { return int(rows_.size()); }
  // Valid until the next change.
  std::string_view operator[](int row) const {
    const Row& r = rows_[size_t(row)];
    return {text_.data() + r.start, r.length};
  }
  void Add(std::string_view text);
  void Set(int row, std::string_view text);
  // Keeps the first `count`.
  void Cut(int count);

 private:
  struct Row {
    size_t start, length;
  };
  Row Append(std::string_view text);
  void Compact();

  std::vector<Row> rows_;
  std::string text_;
  size_t unused_ = 0;  // bytes of the block that belong to no row
};

}  // namespace platform

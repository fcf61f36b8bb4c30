// What is typed over a table to get to a row: letters and spaces add up until a pause.
#pragma once
#include <cstdint>
#include <string>
#include <string_view>

namespace console {

class TypeAhead {
 public:
  // Adds a character. False when it is not for it: a space that begins nothing, or what no name
  // has.
  bool Type(uint32_t character, int64_t now_ms);
  // Whether a space would be added, and not press something.
  bool Running(int64_t now_ms) const;
  void Stop() { typed_.clear(); }

  const std::string& typed() const { return typed_; }
  // Finds the row through `find(text, from)`, which looks from that row on and then from the top.
  // One letter again and again goes through the names that begin with it, unless one begins with
  // all of it. -1: none.
  template <class Find>
  int Row(int focus_row, Find&& find) const {
    const int row = find(typed_, typed_.size() == first_ ? focus_row + 1 : focus_row);
    if (row >= 0 || !repeated_) return row;
    return find(std::string_view(typed_).substr(0, first_), focus_row + 1);
  }

 private:
  std::string typed_;
  size_t first_ = 0;  // bytes of the first character
  bool repeated_ = false;
  int64_t last_ms_ = 0;
};

}  // namespace console

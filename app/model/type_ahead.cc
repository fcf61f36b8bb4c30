#include "app/model/type_ahead.h"

#include "app/format/folding.h"
#include "printserver/visible.h"

namespace console {
namespace {

constexpr int kPauseMs = 1000;

}  // namespace

bool TypeAhead::Running(int64_t now_ms) const {
  return !typed_.empty() && now_ms - last_ms_ < kPauseMs;
}

bool TypeAhead::Type(uint32_t character, int64_t now_ms) {
  if (character > 0x10ffff || (character != ' ' && nc::IsUnseen(character))) return false;
  if (!Running(now_ms)) typed_.clear();
  if (typed_.empty() && character == ' ') return false;
  std::string added;
  AppendCharacter(character, &added);
  if (typed_.empty()) first_ = added.size();
  repeated_ = typed_.empty() || (repeated_ && typed_.compare(0, first_, added) == 0);
  typed_ += added;
  last_ms_ = now_ms;
  return true;
}

}  // namespace console

#include "platform/display/program_icon.h"

#include <algorithm>

namespace platform {
namespace {

std::vector<ProgramIcon>* icons = nullptr;

}  // namespace

const std::vector<ProgramIcon>& ProgramIcons() {
  if (icons == nullptr) icons = new std::vector<ProgramIcon>;
  return *icons;
}

bool KeepProgramIcon(const uint32_t* argb, int size) {
  if (size < 1 || size > kLargestIcon) return false;
  ProgramIcons();
  const auto at = std::find_if(icons->begin(), icons->end(),
                               [size](const ProgramIcon& icon) { return icon.size >= size; });
  const bool there = at != icons->end() && at->size == size;
  if (argb == nullptr) {
    if (there) icons->erase(at);
    return there;
  }
  std::vector<uint32_t> pixels(argb, argb + size * size);
  if (there)
    at->argb = std::move(pixels);
  else
    icons->insert(at, {size, std::move(pixels)});
  return true;
}

void FinishProgramIcons() {
  delete icons;
  icons = nullptr;
}

}  // namespace platform

// The program's icon, which the desktop shows beside its windows: one picture for each size.
#pragma once
#include <cstdint>
#include <vector>

namespace platform {

constexpr int kLargestIcon = 256;  // pixels

struct ProgramIcon {
  int size = 0;                // width and height
  std::vector<uint32_t> argb;  // rows from the top, 0xAARRGGBB, colours not multiplied by alpha
};

// The smallest first.
const std::vector<ProgramIcon>& ProgramIcons();
// Copied, in place of one of the same size; null takes that size away. False when nothing changed:
// a size outside 1 to kLargestIcon, or none to take away.
bool KeepProgramIcon(const uint32_t* argb, int size);
void FinishProgramIcons();

}  // namespace platform

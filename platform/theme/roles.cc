#include "platform/theme/roles.h"

namespace platform {
namespace {

struct RoleRow {
  Role role;
  uint32_t rgb;
};

constexpr RoleRow kLight[] = {
    {Role::kDocument, 0xFFFFFF},
    {Role::kRow, 0xFBFAF9},
    {Role::kDialog, 0xF3F1EE},
    {Role::kAlert, 0xF3F1EE},
    {Role::kUtility, 0xECEAE6},
    {Role::kToolBar, 0xF8F7F5},
    {Role::kSide, 0xF7F5F2},
    {Role::kStatus, 0xF0EDE9},
    {Role::kInk, 0x22201D},
    {Role::kSecondInk, 0x6E6A64},
    {Role::kHairline, 0xDAD7D2},
    {Role::kLine, 0xB9B5AE},
    {Role::kFace, 0xFEFEFD},
    {Role::kPressed, 0xE3E0DB},
    {Role::kPressedLine, 0xA19D95},
    {Role::kAccent, 0x3875D7},
    {Role::kDarkAccent, 0x2A5DB0},
    {Role::kInactiveSelection, 0xD8D5CF},
    {Role::kTrack, 0xE6E3DE},
    {Role::kProgressLine, 0xCFCBC5},
    {Role::kThumb, 0xC2BEB7},
    {Role::kHeldThumb, 0x9E9A92},
    {Role::kScrollBackground, 0xF6F5F3},
    {Role::kGood, 0x2E8B57},
    {Role::kWarning, 0xB9770E},
    {Role::kBad, 0xC0392B},
};
static_assert(sizeof(kLight) / sizeof(kLight[0]) == size_t(Role::kCount));

constexpr bool InOrder() {
  for (size_t i = 0; i < size_t(Role::kCount); ++i)
    if (kLight[i].role != Role(i)) return false;
  return true;
}
static_assert(InOrder(), "a role is its index in the table");

// Half way to white: the background of a window that is not active.
constexpr uint32_t Lighter(uint32_t rgb) {
  auto half = [](uint32_t c) { return (c + 0xFF + 1) / 2; };
  return half(rgb >> 16 & 0xFF) << 16 | half(rgb >> 8 & 0xFF) << 8 | half(rgb & 0xFF);
}

}  // namespace

uint32_t RoleColor(Role role) {
  return role < Role::kCount ? kLight[size_t(role)].rgb : 0;
}

uint32_t ThemeBrushColor(int brush, bool active) {
  uint32_t rgb;
  switch (brush) {
    case -1:
      return 0x000000;
    case -2:
      return 0xFFFFFF;
    case 3:
      rgb = RoleColor(Role::kAlert);
      break;
    case 7:
      rgb = RoleColor(Role::kUtility);
      break;
    case 15:
      return RoleColor(Role::kDocument);
    case 52:
      rgb = RoleColor(Role::kToolBar);
      break;
    default:
      rgb = RoleColor(Role::kDialog);
      break;
  }
  return active ? rgb : Lighter(rgb);
}

}  // namespace platform

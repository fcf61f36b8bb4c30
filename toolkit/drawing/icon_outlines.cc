// The outlines of the toolkit's own icons, in the pixels of each icon.
#include "toolkit/drawing/icons.h"

using namespace platform;

namespace {

using enum PathVerb;

constexpr PathPart kPopupUp[] = {{kMove, 12.5f, 1}, {kLine, 24.5f, 13.5f}, {kLine, 24.5f, 15},
                                 {kLine, 0.5f, 15}, {kLine, 0.5f, 13.5f},  {kClose}};
constexpr PathPart kPopupDown[] = {{kMove, 12.5f, 15}, {kLine, 0.5f, 2.5f},  {kLine, 0.5f, 1},
                                   {kLine, 24.5f, 1},  {kLine, 24.5f, 2.5f}, {kClose}};
// Two arrows that go around, one the other turned by half.
constexpr PathPart kExchange[] = {{kMove, 2, 7},
                                  {kCubic, 5.7f, 1.46f, 2, 4.57f, 3.46f, 2.39f},
                                  {kCubic, 12.24f, 2.76f, 7.95f, 0.53f, 10.53f, 1.04f},
                                  {kLine, 14, 1},
                                  {kLine, 14, 6},
                                  {kLine, 9, 6},
                                  {kLine, 10.97f, 4.03f},
                                  {kCubic, 6.39f, 3.12f, 9.77f, 2.83f, 7.96f, 2.47f},
                                  {kCubic, 3.8f, 7, 4.82f, 3.77f, 3.8f, 5.3f},
                                  {kClose},
                                  {kMove, 14, 7},
                                  {kCubic, 10.3f, 12.54f, 14, 9.43f, 12.54f, 11.61f},
                                  {kCubic, 3.76f, 11.24f, 8.05f, 13.47f, 5.47f, 12.96f},
                                  {kLine, 2, 13},
                                  {kLine, 2, 8},
                                  {kLine, 7, 8},
                                  {kLine, 5.03f, 9.97f},
                                  {kCubic, 9.61f, 10.88f, 6.23f, 11.17f, 8.04f, 11.53f},
                                  {kCubic, 12.2f, 7, 11.18f, 10.23f, 12.2f, 8.7f},
                                  {kClose}};
constexpr PathPart kSmallDown[] = {{kMove, 0, 0}, {kLine, 7, 0}, {kLine, 3.5f, 4.5f}, {kClose}};
constexpr PathPart kSmallUp[] = {{kMove, 0, 5}, {kLine, 3.5f, 0.5f}, {kLine, 7, 5}, {kClose}};
constexpr PathPart kDialog[] = {{kMove, 0.5f, 2.5f}, {kLine, 6, 8}, {kLine, 0.5f, 13.5f}, {kClose}};
constexpr PathPart kMenu[] = {{kMove, 0, 6}, {kLine, 7, 6}, {kLine, 3.5f, 10.5f}, {kClose}};
constexpr PathPart kCheck[] = {{kMove, 2, 8},     {kLine, 5.2f, 11},    {kLine, 14, 4.2f},
                               {kLine, 15, 5.6f}, {kLine, 5.2f, 13.5f}, {kLine, 0.8f, 9.4f},
                               {kClose}};
constexpr PathPart kArrow[] = {{kMove, 0, 0.5f}, {kLine, 10, 0.5f}, {kLine, 5, 9.8f}, {kClose}};

struct Row {
  const XwIcon* icon;
  const PathPart* parts;
  int count;
};
template <int N>
constexpr Row Make(const XwIcon* icon, const PathPart (&parts)[N]) {
  return {icon, parts, N};
}
const Row kRows[] = {Make(IC_POPUP_MORE_DATA_UP, kPopupUp),
                     Make(IC_POPUP_MORE_DATA_DOWN, kPopupDown),
                     Make(IC_EXCHANGE, kExchange),
                     Make(IC_SMALL_ARROW_DOWN, kSmallDown),
                     Make(IC_SMALL_ARROW_UP, kSmallUp),
                     Make(IC_OPT_DIALOG, kDialog),
                     Make(IC_OPT_MENU, kMenu),
                     Make(IC_CHECKBOX, kCheck),
                     Make(IC_ARROWS, kArrow)};

}  // namespace

const PathPart* OwnOutline(const XwIcon* icon, int* count) {
  for (const Row& row : kRows) {
    if (row.icon != icon) continue;
    *count = row.count;
    return row.parts;
  }
  *count = 0;
  return nullptr;
}

// The outlines of the toolkit's own icons, in the pixels of each icon.
#include "toolkit/drawing/icons.h"

using namespace platform;

namespace {

using enum PathVerb;

constexpr PathPart kPopupUp[] = {{kMove, 12.5f, 1}, {kLine, 24.5f, 13.5f}, {kLine, 24.5f, 15},
                                 {kLine, 0.5f, 15}, {kLine, 0.5f, 13.5f},  {kClose}};
constexpr PathPart kPopupDown[] = {{kMove, 12.5f, 15}, {kLine, 0.5f, 2.5f},  {kLine, 0.5f, 1},
                                   {kLine, 24.5f, 1},  {kLine, 24.5f, 2.5f}, {kClose}};
// Two arrows that go around.
constexpr PathPart kExchange[] = {{kMove, 1.82f, 6.46f},
                                  {kCubic, 5.14f, 1.5f, 2.01f, 4.35f, 3.26f, 2.48f},
                                  {kCubic, 11.1f, 1.63f, 7.02f, 0.52f, 9.27f, 0.57f},
                                  {kLine, 12.2f, -0.27f},
                                  {kLine, 12.86f, 4.42f},
                                  {kLine, 9.2f, 4.92f},
                                  {kLine, 10.3f, 3.02f},
                                  {kCubic, 5.88f, 2.92f, 8.94f, 2.23f, 7.27f, 2.19f},
                                  {kCubic, 3.42f, 6.6f, 4.48f, 3.65f, 3.55f, 5.03f},
                                  {kClose},
                                  {kMove, 14.18f, 7.54f},
                                  {kCubic, 10.86f, 12.5f, 13.99f, 9.65f, 12.74f, 11.52f},
                                  {kCubic, 4.9f, 12.37f, 8.98f, 13.48f, 6.73f, 13.43f},
                                  {kLine, 3.8f, 14.27f},
                                  {kLine, 3.14f, 9.58f},
                                  {kLine, 6.8f, 9.08f},
                                  {kLine, 5.7f, 10.98f},
                                  {kCubic, 10.12f, 11.08f, 7.06f, 11.77f, 8.73f, 11.81f},
                                  {kCubic, 12.58f, 7.4f, 11.52f, 10.35f, 12.45f, 8.97f},
                                  {kClose}};
constexpr PathPart kSmallDown[] = {
    {kMove, 0, 0.5f}, {kLine, 7, 0.5f}, {kLine, 3.5f, 4.5f}, {kClose}};
constexpr PathPart kSmallUp[] = {{kMove, 0, 4.5f}, {kLine, 3.5f, 0.5f}, {kLine, 7, 4.5f}, {kClose}};
constexpr PathPart kDialog[] = {{kMove, 0.5f, 2.5f}, {kLine, 6, 8}, {kLine, 0.5f, 13.5f}, {kClose}};
constexpr PathPart kMenu[] = {{kMove, 0, 6.5f}, {kLine, 7, 6.5f}, {kLine, 3.5f, 10.5f}, {kClose}};
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

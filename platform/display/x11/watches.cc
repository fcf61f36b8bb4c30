// Windows of other programs that are watched, for more than one reason at a time: a connection has
// one mask for each window.
#include <map>

#include "platform/display/x11/x.h"

namespace platform::x11 {

namespace {

struct Reasons {
  int count[2] = {};  // by WatchWhat
};
std::map<xcb_window_t, Reasons> watches;

bool IsForeign(xcb_window_t window) {
  return window != XCB_NONE && window != x.screen->root && FindNative(window) == nullptr &&
         window != SelectionWindow() && !IsTextRequestWindow(window);
}

void Select(xcb_window_t window, const Reasons& reasons) {
  const uint32_t mask =
      (reasons.count[kWatchEnd] > 0 ? uint32_t{XCB_EVENT_MASK_STRUCTURE_NOTIFY} : 0) |
      (reasons.count[kWatchProperties] > 0 ? uint32_t{XCB_EVENT_MASK_PROPERTY_CHANGE} : 0);
  xcb_change_window_attributes(x.c, window, XCB_CW_EVENT_MASK, &mask);
}

}  // namespace

void Watch(xcb_window_t window, WatchWhat what) {
  if (!IsForeign(window)) return;
  Reasons& reasons = watches[window];
  if (reasons.count[what]++ == 0) Select(window, reasons);
}

void Unwatch(xcb_window_t window, WatchWhat what) {
  const auto at = watches.find(window);
  if (at == watches.end() || at->second.count[what] == 0) return;
  if (--at->second.count[what] > 0) return;
  Select(window, at->second);
  if (at->second.count[kWatchEnd] == 0 && at->second.count[kWatchProperties] == 0)
    watches.erase(at);
}

void ForgetWatch(xcb_window_t window) {
  watches.erase(window);
}

void CloseWatches() {
  watches.clear();
}

}  // namespace platform::x11

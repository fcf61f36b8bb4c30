// The nested waits of the platform: all of them stand here. What they wait for are state machines,
// which are asked about events as trackers.
#pragma once
#include "platform/clipboard/clipboard.h"
#include "platform/events/trackers.h"

namespace platform {

enum class WaitEnd : uint8_t { kDone, kTimeout, kOwnerEnded };
// Receives and dispatches events until `done` is true, with `tracker` as the newest. A program's
// own events and those that the tracker wants later are deferred, in order: purging, removing and
// merging see them, and they come first afterwards. `timeout` in seconds, as for ReceiveNextEvent.
WaitEnd WaitTracking(Tracker* tracker, bool (*done)(void* data), double timeout);

// As AskText, and waits for the answer: the callback has run when this returns, unless the time is
// over. A text that the program offers itself is passed at once.
void WaitForText(Selection which, int timeout_ms, TextArrived arrived, void* data);

// Shows a menu at a global point until an item is chosen, which comes as the menu's id (high 16
// bits) and the item's number (low), or it is dismissed: 0. `item` (0: none) is selected at first.
int PopUpMenuSelect(MenuRef menu, int top, int left, int item);
// The same below a rectangle of a window's content, at least as wide: the item's number.
int PopUpMenuSelectBelow(MenuRef menu, WindowRef w, const Rect& anchor, int item);
// The same with the bar, from the title under a global point, or (by the keyboard) from a menu of
// it. What was chosen is sent to its menu.
int MenuSelect(Point where);
int MenuSelectByKey(MenuRef menu);

}  // namespace platform

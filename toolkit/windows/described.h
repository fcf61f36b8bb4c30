// What programs say of the things that they draw (XwDescribe), while somebody reads the described
// tree.
#pragma once
#include <vector>

#include "platform/access/access.h"
#include "toolkit/xw.h"

// Appends what `w` has described to the node of the window: its items as children, and its words
// about itself. The node has its bounds and states.
void AddDescribed(const XwWindow* w, platform::DescribedNode* node);
// A new list of boxes begins in the window: its items may be described again, which keeps those
// that stay what they are. The list is closed: the others have gone.
void BeginDescribed(const XwWindow* w);
void EndDescribed(const XwWindow* w);
// The window ends.
void ForgetDescribed(const XwWindow* w);
// Nobody listens any more: nothing is kept.
void DropDescribed();

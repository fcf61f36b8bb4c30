// Entering records in the tree.
#pragma once
#include "toolkit/xw.h"

// Appends to the creation list.
void EnterCreationList(XwWindow* w);
// Whether the parent's list can take another child; where not, that is refused.
bool HasRoom(const XwWindow* parent);

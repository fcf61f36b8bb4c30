// Which platform events reach which handler of the toolkit.
#pragma once
#include "toolkit/xw.h"

// Null: the application's handlers.
void InstallEventHandlers(XwWindow* w);

// The keyboard extension's header, which names a field with a word of C++.
#pragma once
#define explicit explicit_
#include <xcb/xkb.h>
#undef explicit

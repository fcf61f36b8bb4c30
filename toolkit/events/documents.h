// The documents of open requests (798).
#pragma once
#include <climits>
#include <cstddef>

constexpr size_t kPathSize = PATH_MAX;  // bytes, with the zero

// Keeps them for XwDroppedFiles, and `first`, which is shorter than kPathSize, as the value of the
// event in which they come: until as many later requests as may wait have come. `drop`: the number
// of the drop they are of; 0: another program asks for them.
char* KeepDocuments(const char* first, const char* const* files, int count, int drop);

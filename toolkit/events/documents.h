// The documents of open requests (798).
#pragma once

// Keeps them for XwDroppedFiles while the event that has this path as its value is handled.
void KeepDocuments(const char* value, const char* const* files, int count);

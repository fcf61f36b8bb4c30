// Entries that a listing lacks because the system does not let anyone look at them: in a folder
// that may be read but not entered, every one.
#pragma once
#include "app/model/folder_rows.h"

namespace console {

// Counts them. The listing has to be a whole one: folders, files, others and hidden names. Reads
// the folder once more, so it belongs on a thread of its own; a folder that cannot be read has
// none.
UnreadEntries CountUnreadEntries(const char* path, const OS_ListEntryN* entries, int count);

}  // namespace console

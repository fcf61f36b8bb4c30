// Entries that a listing lacks because the system does not let anyone look at them (in a folder
// that may be read but not entered, every one), or because they are devices and pipes.
#pragma once
#include "app/model/folder_rows.h"

namespace console {

// Counts them. The listing has to be a whole one: folders, files, others and hidden names. Reads
// the folder again, so call it from a background task. A folder that cannot be read has none.
UnreadEntries CountUnreadEntries(const char* path, const OS_ListEntryN* entries, int count);

}  // namespace console

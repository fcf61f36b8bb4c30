// Takes from this process what it does not need.
#pragma once
#include <sys/types.h>

namespace preview {

// No new privileges, ten seconds, 512 MiB, nothing written to files: from here on, for this process
// and what it starts. False when the system refuses that.
bool Confine();

// Whether nearly all of the time is used up: what there is should be told now. At the end of the
// time the process is ended with all that it has started.
bool OutOfTime();
// A process that is to be ended when nearly all of the time is used up.
void EndInTime(pid_t pid);

// Leaves it no system call but those for reading what is open, for memory, and for its end; others
// fail. What decodes by itself is under that; the programs of the PDF library cannot be. Nothing
// happens where the system has no such filters.
void CloseDoors();

}  // namespace preview

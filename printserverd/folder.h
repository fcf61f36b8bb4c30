// Files opened beneath folder descriptors: no path from outside is ever resolved by the system as a
// whole, and no symbolic link is followed.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "os/final_path.h"

namespace printserverd {

using Fd = os::Handle;
using os::WriteAll;

// A name that stands for one entry of a folder: not empty, not `.` or `..`, no `/`, no zero byte.
bool IsPlainName(std::string_view name);

// Opens the folder `path`; it and its missing parents are created (mode 0700). The last part is not
// a link and belongs to this user. Empty on failure, errno set.
Fd OpenOwnFolder(const std::string& path);

// Opens the folder `name` beneath `parent`, created with mode 0700 when it is missing. No links.
// Empty on failure, errno set.
Fd OpenSubfolder(int parent, const std::string& name, bool create);

// Opens a regular file beneath `parent` for reading. No links. Empty on failure, errno set.
Fd OpenFileIn(int parent, const std::string& name);

// Creates a new file beneath `parent`, mode 0600. An entry of that name is a failure (EEXIST).
Fd CreateFileIn(int parent, const std::string& name);

// fdatasync of a file, fsync of a folder. False with errno.
bool SyncFile(int fd);
bool SyncFolder(int fd);
// For tests: each of the two takes so many milliseconds longer, and the `fail`th one fails (0:
// none). Set before there are threads.
void SimulateSyncs(int ms, int64_t fail);

// Replaces the file `name` as a whole: written under another name, then renamed. With `sync` the
// bytes are on the disk before the rename; the folder itself is not synced.
bool ReplaceFileIn(int parent, const std::string& name, std::string_view content, bool sync);

// Moves an entry to another folder under its name, or, where that is taken, with a number behind
// it. The name that it has got; empty on failure, errno set.
std::string MoveAside(int from, const std::string& name, int to);

// Reads to the end of a file or a pipe. False when that fails, errno set, or when it has more than
// `max` bytes (EFBIG); `content` is then in any state.
bool ReadAll(int fd, size_t max, std::string* content);

// The whole of a small file; false when it cannot be read or is larger than `max`.
bool ReadFileIn(int parent, const std::string& name, size_t max, std::string* content);

// Whether ReadFileIn failed because the entry is none of ours: too large, a link, not a file. Any
// other error may pass.
bool IsForeign(int error);

// Names in a folder but `.` and `..`, in no order. errno is 0 when these are all.
std::vector<std::string> NamesIn(int folder);

enum class RemoveResult { kRemoved, kBadPath, kNotThere, kNotAFile, kFailed };

// Removes the regular file at `path`, relative to `folder`; see docs/protocol.md, "Removing files".
RemoveResult RemoveBeneath(int folder, std::string_view path);

// `name` made fit for one entry of a folder: control characters and `/` become `_`, as does a
// leading dot; cut at `max` bytes, not inside a UTF-8 sequence; never empty.
std::string PlainNameOf(std::string_view name, size_t max);

}  // namespace printserverd

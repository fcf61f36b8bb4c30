// The files in which the room of fonts remembers things, in a private folder. They are
// short cuts: anything odd about one means that it is not there.
#pragma once
#include <cstddef>
#include <string>
#include <string_view>

namespace platform {

// The bytes of a regular file that belongs to the user, at most `limit` bytes; else "".
std::string ReadCacheFile(const char* name, size_t limit);
// Puts another in its place, so that a reader sees all of it or the one before; silently not where
// that cannot be.
void ReplaceCacheFile(const char* name, std::string_view bytes);

}  // namespace platform

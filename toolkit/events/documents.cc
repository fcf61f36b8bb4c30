#include "toolkit/events/documents.h"

#include <cstring>
#include <string>
#include <vector>

#include "toolkit/xw.h"

namespace {

struct Documents {
  char value[kPathSize] = "";  // of the event
  std::vector<std::string> paths;
  std::vector<const char*> pointers;
};
constexpr unsigned kRequests = 16;  // that may wait at once
Documents& Kept(unsigned n) {
  static auto* kept = new Documents[kRequests];
  return kept[n % kRequests];
}
unsigned next_kept;

}  // namespace

char* KeepDocuments(const char* first, const char* const* files, int count) {
  Documents& d = Kept(next_kept++);
  memcpy(d.value, first, strlen(first) + 1);
  d.paths.assign(files, files + count);
  d.pointers.clear();
  for (const std::string& path : d.paths) d.pointers.push_back(path.c_str());
  return d.value;
}

extern "C" const char* const* XwDroppedFiles(int* count) {
  if (count) *count = 0;
  if (Inp.type != XWE_OPEN || !Inp.value) return nullptr;
  for (unsigned n = 0; n < kRequests; ++n) {
    Documents& d = Kept(n);
    if (d.value != reinterpret_cast<const char*>(Inp.value)) continue;
    if (count) *count = int(d.pointers.size());
    return d.pointers.data();
  }
  return nullptr;
}

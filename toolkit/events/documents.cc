#include "toolkit/events/documents.h"

#include <cstring>
#include <string>
#include <vector>

#include "toolkit/core/state.h"
#include "toolkit/xw.h"

namespace {

struct Documents {
  char value[kPathSize] = "";  // of the event
  std::vector<std::string> paths;
  std::vector<const char*> pointers;
  int drop = 0;
};
constexpr unsigned kRequests = 16;  // that may wait at once
Documents& Kept(unsigned n) {
  static auto* kept = new Documents[kRequests];
  return kept[n % kRequests];
}
unsigned next_kept;

// Of the event that is handled; null when it is no 798.
const Documents* Handled() {
  if (Inp.type != XWE_OPEN || !Inp.value) return nullptr;
  for (unsigned n = 0; n < kRequests; ++n)
    if (Kept(n).value == reinterpret_cast<const char*>(Inp.value)) return &Kept(n);
  return nullptr;
}

}  // namespace

char* KeepDocuments(const char* first, const char* const* files, int count, int drop) {
  Documents& d = Kept(next_kept++);
  memcpy(d.value, first, strlen(first) + 1);
  d.paths.assign(files, files + count);
  d.drop = drop;
  d.pointers.clear();
  for (const std::string& path : d.paths) d.pointers.push_back(path.c_str());
  return d.value;
}

extern "C" const char* const* XwDroppedFiles(int* count) {
  const Documents* d = Handled();
  if (count) *count = d ? int(d->pointers.size()) : 0;
  return d ? d->pointers.data() : nullptr;
}

extern "C" int XwDropNumber(void) {
  if (Inp.type != XWE_OPEN) return toolkit::state.last_drop;
  const Documents* d = Handled();
  return d ? d->drop : 0;
}

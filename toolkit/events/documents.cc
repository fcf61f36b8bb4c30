#include "toolkit/events/documents.h"

#include <string>
#include <vector>

#include "toolkit/core/state.h"
#include "toolkit/xw.h"

namespace {

struct Documents {
  const char* value = nullptr;  // of the event
  std::vector<std::string> paths;
  std::vector<const char*> pointers;
};
// As many requests as may wait.
Documents& Kept(unsigned n) {
  static auto* kept = new Documents[toolkit::kPaths];
  return kept[n % toolkit::kPaths];
}
unsigned next_kept;

}  // namespace

void KeepDocuments(const char* value, const char* const* files, int count) {
  Documents& d = Kept(next_kept++);
  d.value = value;
  d.paths.assign(files, files + count);
  d.pointers.clear();
  for (const std::string& path : d.paths) d.pointers.push_back(path.c_str());
}

extern "C" const char* const* XwDroppedFiles(int* count) {
  if (count) *count = 0;
  if (Inp.type != XWE_OPEN || !Inp.value) return nullptr;
  // Of two with the same buffer the newer one counts.
  for (unsigned n = 0; n < unsigned(toolkit::kPaths); ++n) {
    Documents& d = Kept(next_kept + toolkit::kPaths - 1 - n);
    if (d.value != reinterpret_cast<const char*>(Inp.value)) continue;
    if (count) *count = int(d.pointers.size());
    return d.pointers.data();
  }
  return nullptr;
}

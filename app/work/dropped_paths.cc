#include "app/work/dropped_paths.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "app/format/words.h"

namespace console {

DroppedPaths LookAtDropped(const std::vector<std::string>& paths) {
  DroppedPaths out;
  for (const std::string& path : paths) {
    struct stat s {};
    const bool known = stat(path.c_str(), &s) == 0;
    if (known && S_ISDIR(s.st_mode)) {
      out.folders.push_back(path);
    } else if (known && S_ISREG(s.st_mode) && access(path.c_str(), R_OK) == 0) {
      out.files.push_back({path, s.st_size});
    } else {
      const bool device = known && !S_ISREG(s.st_mode);
      if (out.others++ == 0) out.trouble = device ? "it is no file" : TroubleText(errno);
    }
  }
  return out;
}

}  // namespace console

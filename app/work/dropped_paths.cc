#include "app/work/dropped_paths.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "app/format/words.h"
#include "app/model/folder.h"

namespace console {

DroppedPaths LookAtDropped(const std::vector<std::string>& paths) {
  DroppedPaths out;
  for (const std::string& path : paths) {
    struct stat s {};
    const bool elsewhere = path[0] != '/';
    const bool known = !elsewhere && stat(path.c_str(), &s) == 0;
    if (known && S_ISDIR(s.st_mode)) {
      out.folders.push_back(path);
    } else if (known && S_ISREG(s.st_mode) && access(path.c_str(), R_OK) == 0) {
      out.files.push_back({path, s.st_size});
    } else {
      const bool device = known && !S_ISREG(s.st_mode);
      if (out.others++ > 0) continue;
      out.trouble = device      ? "it is no file"
                    : elsewhere ? "it is not on this computer"
                                : TroubleText(errno);
      out.other = elsewhere ? path : LastName(path);
    }
  }
  return out;
}

}  // namespace console

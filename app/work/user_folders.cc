#include "app/work/user_folders.h"

#include <sys/stat.h>

#include <cerrno>
#include <cstdlib>

namespace console {

std::string UserFolder(const char* variable, const char* below_home) {
  const char* own = getenv(variable);
  const char* home = getenv("HOME");
  if (own && own[0] == '/') return own;
  return home && home[0] == '/' ? std::string(home) + below_home : "";
}

bool MakeUserFolder(const std::string& path) {
  if (mkdir(path.c_str(), 0700) == 0 || errno == EEXIST) return true;
  const size_t slash = path.rfind('/');
  if (errno != ENOENT || slash == 0 || slash == std::string::npos) return false;
  return MakeUserFolder(path.substr(0, slash)) &&
         (mkdir(path.c_str(), 0700) == 0 || errno == EEXIST);
}

}  // namespace console

#include "app/work/arguments.h"

#include <sys/stat.h>

#include <cerrno>
#include <climits>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string_view>

#include "app/work/background_task.h"

namespace console {
namespace {

namespace fs = std::filesystem;

// Without "." and doubled slashes. Only the file system knows where ".." leads.
std::string Tidied(const fs::path& path) {
  fs::path tidy;
  for (const fs::path& part : path)
    if (!part.empty() && part != ".") tidy /= part;
  return tidy.string();
}

bool GoesUp(const fs::path& path) {
  for (const fs::path& part : path)
    if (part == "..") return true;
  return false;
}

std::string RealPath(const std::string& path) {
  const std::unique_ptr<char, void (*)(void*)> real(realpath(path.c_str(), nullptr), free);
  return real ? real.get() : "";
}

// The folder's real path with the name below it: a link keeps its own name.
std::string Resolved(const std::string& path) {
  const fs::path whole = path;
  if (!GoesUp(whole)) return path;
  if (whole.filename() == "..") {
    const std::string real = RealPath(path);
    return real.empty() ? path : real;
  }
  const std::string folder = RealPath(whole.parent_path().string());
  return folder.empty() ? path : (fs::path(folder) / whole.filename()).string();
}

void LookAt(const std::string& path, FilesToOpen* out) {
  struct stat s {};
  const bool known = stat(path.c_str(), &s) == 0;
  const bool missing = !known && (errno == ENOENT || errno == ENOTDIR || errno == ELOOP);
  (missing ? out->missing : out->found).push_back(path);
  if (known && !S_ISREG(s.st_mode) && !S_ISDIR(s.st_mode)) out->devices.push_back(path);
}

}  // namespace

Arguments ReadArguments(int count, const char* const* words) {
  Arguments a;
  bool options = true;
  for (int i = 1; i < count; ++i) {
    const std::string_view word = words[i];
    if (options && word == "--") {
      options = false;
    } else if (options && (word == "--help" || word == "-h")) {
      a.what = Arguments::kHelp;
      return a;
    } else if (options && word == "--version") {
      a.what = Arguments::kVersion;
      return a;
    } else if (options && word.size() > 1 && word[0] == '-') {
      a.what = Arguments::kWrong;
      a.error = "unknown option \"" + std::string(word) + "\"";
      return a;
    } else if (word.empty()) {
      a.what = Arguments::kWrong;
      a.error = "a file's name is empty";
      return a;
    } else {
      a.files.emplace_back(word);
    }
  }
  return a;
}

FilesToOpen LookForFiles(const std::vector<std::string>& files, int ms) {
  FilesToOpen usual;
  std::error_code failed;
  const fs::path here = fs::current_path(failed);
  for (const std::string& file : files) usual.found.push_back(Tidied(here / file));
  if (files.empty()) return usual;
  const auto looked = std::make_shared<FilesToOpen>();
  const BackgroundTask task([looked, paths = usual.found] {
    for (const std::string& path : paths) LookAt(Resolved(path), looked.get());
  });
  return task.WaitFor(ms) && !task.failed() ? *looked : usual;
}

}  // namespace console

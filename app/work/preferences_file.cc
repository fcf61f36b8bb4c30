#include "app/work/preferences_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <mutex>
#include <optional>

#include "app/work/user_folders.h"
#include "os/final_path.h"

namespace console {
namespace {

constexpr size_t kMostBytes = 256 * 1024;

bool ReadWhole(const std::string& path, std::string* text) {
  // Not waiting: a pipe would wait for its writer.
  const os::Handle file(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
  struct stat s {};
  if (!file || fstat(file.get(), &s) != 0 || !S_ISREG(s.st_mode)) return false;
  text->resize(kMostBytes + 1);
  size_t size = 0;
  while (size < text->size()) {
    const ssize_t got = read(file.get(), text->data() + size, text->size() - size);
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) return false;
    if (got == 0) break;
    size += size_t(got);
  }
  text->resize(size);
  return size <= kMostBytes;
}

}  // namespace

std::string PreferencesPath() {
  const std::string folder = UserFolder("XDG_CONFIG_HOME", "/.config");
  return folder.empty() ? "" : folder + "/quorvik/console.conf";
}

Preferences LoadPreferences(const std::string& path) {
  std::string text;
  if (path.empty() || !ReadWhole(path, &text)) return {};
  return ParsePreferences(text);
}

bool StorePreferences(const std::string& path, const Preferences& preferences) {
  const size_t slash = path.rfind('/');
  if (slash == std::string::npos) {
    errno = EINVAL;
    return false;
  }
  if (!MakeUserFolder(path.substr(0, slash))) return false;
  // Made exclusively, with mode 0600, beside the file whose place it takes.
  std::string other = path + ".XXXXXX";
  os::Handle file(mkostemp(other.data(), O_CLOEXEC));
  if (!file) return false;
  const std::string text = FormatPreferences(preferences);
  const bool written = os::WriteAll(file.get(), text.data(), text.size()) &&
                       fsync(file.get()) == 0 && rename(other.c_str(), path.c_str()) == 0;
  if (written) return true;
  const int error = errno;
  unlink(other.c_str());
  errno = error;
  return false;
}

struct PreferencesWriter::Shared {
  std::string path;
  std::mutex lock;
  std::optional<Preferences> next;  // not yet begun
  bool writing = false;

  void Run() {
    for (;;) {
      std::optional<Preferences> now;
      {
        const std::lock_guard<std::mutex> guard(lock);
        now.swap(next);
        writing = now.has_value();
      }
      if (!now) return;
      StorePreferences(path, *now);
    }
  }
};

PreferencesWriter::PreferencesWriter(std::string path) : shared_(std::make_shared<Shared>()) {
  shared_->path = std::move(path);
}

void PreferencesWriter::Store(const Preferences& preferences) {
  if (shared_->path.empty()) return;
  {
    const std::lock_guard<std::mutex> guard(shared_->lock);
    shared_->next = preferences;
    if (shared_->writing) return;
    shared_->writing = true;
  }
  task_ = BackgroundTask([shared = shared_] { shared->Run(); });
  if (!task_.failed()) return;
  const std::lock_guard<std::mutex> guard(shared_->lock);
  shared_->writing = false;
}

bool PreferencesWriter::Finish(int ms) {
  if (task_.started() && !task_.failed()) return task_.WaitFor(ms);
  return !shared_->next;
}

}  // namespace console

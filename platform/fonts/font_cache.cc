// The file of the font cache: lines of fields between tabs. It is only ever a short cut, so
// anything odd about it means that it is not there.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <charconv>
#include <cstdlib>
#include <string_view>

#include "platform/fonts/finder.h"

namespace platform {
namespace {

constexpr std::string_view kTitle = "xw fonts 1";
constexpr size_t kMaxFile = 1 << 20;

std::string CacheFolder() {
  const char* cache = getenv("XDG_CACHE_HOME");
  if (cache && cache[0] == '/') return std::string(cache) + "/xw";
  const char* home = getenv("HOME");
  return home && home[0] == '/' ? std::string(home) + "/.cache/xw" : "";
}

// What the font finder itself reads from the environment.
std::string Environment() {
  std::string s;
  for (const char* name :
       {"FONTCONFIG_FILE", "FONTCONFIG_PATH", "FONTCONFIG_SYSROOT", "HOME", "XDG_CONFIG_HOME",
        "XDG_DATA_HOME", "XDG_CONFIG_DIRS", "LANG", "LC_ALL", "LC_CTYPE"}) {
    const char* value = getenv(name);
    s += value ? value : "";
    s += ':';
  }
  return s;
}

bool IsPlain(const std::string& s) {
  return s.find_first_of("\t\n") == std::string::npos;
}

std::string ReadAll(const std::string& path) {
  std::string s;
  // Without O_NONBLOCK a pipe in its place would block the start.
  int fd = open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK);
  if (fd < 0) return s;
  struct stat info;
  if (!fstat(fd, &info) && S_ISREG(info.st_mode) && info.st_uid == geteuid() &&
      size_t(info.st_size) <= kMaxFile) {
    s.resize(size_t(info.st_size));
    size_t n = 0;
    while (n < s.size()) {
      ssize_t got = read(fd, s.data() + n, s.size() - n);
      if (got < 0 && errno == EINTR) continue;
      if (got <= 0) break;
      n += size_t(got);
    }
    s.resize(n);
  }
  close(fd);
  return s;
}

std::string_view TakeUntil(std::string_view* text, char end) {
  size_t n = text->find(end);
  std::string_view part = text->substr(0, n);
  text->remove_prefix(n == std::string_view::npos ? text->size() : n + 1);
  return part;
}

bool TakeNumber(std::string_view* line, int* out) {
  std::string_view part = TakeUntil(line, '\t');
  auto [end, error] = std::from_chars(part.data(), part.data() + part.size(), *out);
  return error == std::errc() && end == part.data() + part.size();
}

bool ParseCachedFont(std::string_view line, CachedFont* a) {
  a->key = TakeUntil(&line, '\t');
  a->file = TakeUntil(&line, '\t');
  bool good = !a->key.empty() && TakeNumber(&line, &a->index) &&
              TakeNumber(&line, &a->units.per_em) && TakeNumber(&line, &a->units.ascender) &&
              TakeNumber(&line, &a->units.descender) && TakeNumber(&line, &a->units.max_advance) &&
              line.empty();
  bool is_font = good && !a->file.empty() && a->key[0] != 'd';
  if (is_font && (a->file[0] != '/' || a->index < 0)) return false;
  if (is_font && (a->units.per_em < 16 || a->units.per_em > 1 << 16)) return false;
  return good && std::abs(a->units.ascender) <= 1 << 20 &&
         std::abs(a->units.descender) <= 1 << 20 && std::abs(a->units.max_advance) <= 1 << 20;
}

// Writes and renames, so that a reader sees all of it or the one before.
void Replace(const std::string& path, const std::string& text) {
  std::string temporary = path + ".XXXXXX";
  int fd = mkostemp(temporary.data(), O_CLOEXEC);
  if (fd < 0) return;
  size_t n = 0;
  while (n < text.size()) {
    ssize_t put = write(fd, text.data() + n, text.size() - n);
    if (put < 0 && errno == EINTR) continue;
    if (put <= 0) break;
    n += size_t(put);
  }
  bool good = close(fd) == 0 && n == text.size();
  if (!good || rename(temporary.c_str(), path.c_str())) unlink(temporary.c_str());
}

void AppendCachedFont(std::string* text, const CachedFont& a) {
  *text += a.key + '\t' + a.file;
  for (int n : {a.index, a.units.per_em, a.units.ascender, a.units.descender, a.units.max_advance})
    *text += '\t' + std::to_string(n);
  *text += "\n";
}

bool MakeFolder(const std::string& folder) {
  if (mkdir(folder.c_str(), 0700) == 0 || errno == EEXIST) return true;
  if (errno != ENOENT) return false;
  std::string parent = folder.substr(0, folder.rfind('/'));
  return !parent.empty() && mkdir(parent.c_str(), 0700) == 0 && mkdir(folder.c_str(), 0700) == 0;
}

}  // namespace

std::optional<std::vector<CachedFont>> LoadFontCache() {
  std::string folder = CacheFolder();
  if (folder.empty()) return std::nullopt;
  std::string text = ReadAll(folder + "/fonts");
  std::string_view rest = text;
  if (!text.ends_with('\n') || TakeUntil(&rest, '\n') != kTitle) return std::nullopt;
  if (TakeUntil(&rest, '\n') != Environment()) return std::nullopt;
  std::vector<CachedFont> cache;
  while (!rest.empty()) {
    std::string_view line = TakeUntil(&rest, '\n');
    if (line.starts_with("s\t")) {
      line.remove_prefix(2);
      std::string_view time = TakeUntil(&line, '\t');
      if (StampOf(std::string(line)) != time) return std::nullopt;
      continue;
    }
    CachedFont a;
    if (!ParseCachedFont(line, &a)) return std::nullopt;
    cache.push_back(std::move(a));
  }
  return cache;
}

void SaveFontCache(const std::vector<FontStamp>& stamps, const std::vector<CachedFont>& cache) {
  std::string folder = CacheFolder();
  std::string environment = Environment();
  if (folder.empty() || !IsPlain(environment) || stamps.empty()) return;
  std::string text = std::string(kTitle) + "\n" + environment + "\n";
  for (const FontStamp& s : stamps) {
    if (!IsPlain(s.path)) return;
    text += "s\t" + s.time + '\t' + s.path + "\n";
  }
  for (const CachedFont& a : cache)
    if (IsPlain(a.key) && IsPlain(a.file)) AppendCachedFont(&text, a);
  if (text.size() > kMaxFile || !MakeFolder(folder)) return;
  Replace(folder + "/fonts", text);
}

}  // namespace platform

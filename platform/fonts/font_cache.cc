// The file of the font cache: lines of fields between tabs.
#include <charconv>
#include <cstdlib>
#include <string_view>

#include "platform/fonts/cache_file.h"
#include "platform/fonts/finder.h"

namespace platform {
namespace {

constexpr std::string_view kTitle = "xw fonts 1";
constexpr const char* kFile = "fonts";
constexpr size_t kMaxFile = 1 << 20;

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

void AppendCachedFont(std::string* text, const CachedFont& a) {
  *text += a.key + '\t' + a.file;
  for (int n : {a.index, a.units.per_em, a.units.ascender, a.units.descender, a.units.max_advance})
    *text += '\t' + std::to_string(n);
  *text += "\n";
}

}  // namespace

std::optional<std::vector<CachedFont>> LoadFontCache() {
  std::string text = ReadCacheFile(kFile, kMaxFile);
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
  std::string environment = Environment();
  if (!IsPlain(environment) || stamps.empty()) return;
  std::string text = std::string(kTitle) + "\n" + environment + "\n";
  for (const FontStamp& s : stamps) {
    if (!IsPlain(s.path)) return;
    text += "s\t" + s.time + '\t' + s.path + "\n";
  }
  for (const CachedFont& a : cache)
    if (IsPlain(a.key) && IsPlain(a.file)) AppendCachedFont(&text, a);
  if (text.size() <= kMaxFile) ReplaceCacheFile(kFile, text);
}

}  // namespace platform

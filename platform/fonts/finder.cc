#include "platform/fonts/finder.h"

#include <cstdio>
#include <cstdlib>

#include "platform/fonts/state.h"

namespace platform {
namespace {

bool HasCharacter(const FontEntry& e, char32_t c) {
  FontHandle font;
  return font.Open(e.file, e.index) && FT_Get_Char_Index(font.face(), c) != 0;
}

CachedFont CacheEntryOf(const FontFace* face) {
  CachedFont a;
  if (!face) return a;
  a.file = face->file;
  a.index = face->index;
  a.units = face->units;
  return a;
}

FontFinder& TheFinder() {
  auto& finder = Fonts().finder;
  if (!finder) finder = std::make_unique<FontFinder>();
  return *finder;
}

struct ThemeFontRow {
  int id, size, style;
};
constexpr ThemeFontRow kThemeFonts[] = {
    {5, 13, 0}, {2, 11, 1}, {105, 13, 0}, {3, 12, 0}, {6, 10, 0}, {-1, 13, 0}, {-4, 12, 0},
};

}  // namespace

FontFinder::FontFinder() {
  const char* folder = getenv("XW_FONTS");
  if (folder && *folder) {
    folder_ = folder;
    return;
  }
  if (auto cache = LoadFontCache()) cache_ = std::move(*cache);
}

const CachedFont& FontFinder::Ask(const std::string& key) {
  for (const CachedFont& a : cache_)
    if (a.key == key) return a;
  const FontCatalogue& catalogue = Catalogue();
  CachedFont a;
  if (key == "d") {
    a.file = catalogue.sans_serif;
  } else {
    a = CacheEntryOf(key[0] == 'n' ? ByName(key.substr(1)) : ByCharacter(key.substr(1)));
  }
  a.key = key;
  cache_.push_back(std::move(a));
  if (folder_.empty()) SaveFontCache(catalogue.stamps, cache_);
  return cache_.back();
}

const FontFace* FontFinder::AskFace(const std::string& key) {
  const CachedFont& a = Ask(key);
  return a.file.empty() ? nullptr : FaceOfFile(a.file, a.index, &a.units);
}

const FontFace* FontFinder::Any() {
  for (const FontEntry& e : Catalogue().entries)
    if (const FontFace* face = FaceOfFile(e.file, e.index); face && OpenFace(face)) return face;
  return nullptr;
}

bool FontFinder::Remembered(const std::string& key, std::vector<const FontFace*>* faces) const {
  bool known = false;
  for (const CachedFont& a : cache_) {
    if (a.key != key) continue;
    known = true;
    if (!a.file.empty()) faces->push_back(FaceOfFile(a.file, a.index, &a.units));
  }
  return known;
}

const std::vector<const FontFace*>& FontFinder::Page(uint32_t page, int style) {
  auto [at, added] = pages_.try_emplace(page << 2 | uint32_t(style));
  std::vector<const FontFace*>& faces = at->second;
  if (!added) return faces;
  if (!folder_.empty()) {
    Catalogue();
    for (const FontEntry& e : FolderFallback(&catalogue_, page))
      if (const FontFace* face = FaceOfFile(e.file, e.index)) faces.push_back(face);
    return faces;
  }
  char key[16];
  snprintf(key, sizeof key, "p%d%X", style, page);
  if (Remembered(key, &faces)) return faces;
  const FontCatalogue& catalogue = Catalogue();
  if (!order_) order_ = std::make_unique<FallbackOrder>();
  for (const FontEntry& e : order_->OfPage(page, style))
    if (const FontFace* face = FaceOfFile(e.file, e.index)) faces.push_back(face);
  for (const FontFace* face : faces) {
    CachedFont a = CacheEntryOf(face);
    a.key = key;
    cache_.push_back(std::move(a));
  }
  if (faces.empty()) cache_.push_back({key, "", 0, {0, 0, 0, 0}});
  SaveFontCache(catalogue.stamps, cache_);
  return faces;
}

// It matches the answers that came from the file: the file is refused as a whole when anything that
// it depends on has changed.
const FontCatalogue& FontFinder::Catalogue() {
  if (!read_) catalogue_ = folder_.empty() ? ReadInstalledFonts() : ReadFontFolder(folder_);
  read_ = true;
  return catalogue_;
}

const FontFace* FontFinder::ByName(const std::string& name) {
  const FontEntry* e = MatchFont(Catalogue(), name);
  return e ? FaceOfFile(e->file, e->index) : nullptr;
}

const FontFace* FontFinder::ByCharacter(const std::string& hex) {
  char32_t c = char32_t(strtoul(hex.c_str(), nullptr, 16));
  const FontEntry* sans = MatchFont(Catalogue(), Catalogue().sans_serif);
  if (sans && HasCharacter(*sans, c)) return FaceOfFile(sans->file, sans->index);
  for (const FontEntry& e : Catalogue().entries)
    if (HasCharacter(e, c)) return FaceOfFile(e.file, e.index);
  return nullptr;
}

const FontFace* FindFont(const char* name) {
  return name && *name ? TheFinder().AskFace(std::string("n") + name) : nullptr;
}

const FontFace* FindFontWithCharacter(char32_t c) {
  char key[16];
  snprintf(key, sizeof key, "u%X", unsigned(c));
  return TheFinder().AskFace(key);
}

const std::vector<const FontFace*>& FallbackFaces(uint32_t page, int style) {
  return TheFinder().Page(page, style);
}

const FontFace* FallbackFont() {
  FontState& fonts = Fonts();
  if (fonts.fallback_sought) return fonts.fallback;
  fonts.fallback_sought = true;
  const FontFace* f = FindFont(TheFinder().Ask("d").file.c_str());
  if (!f || !OpenFace(f)) f = TheFinder().Any();
  if (!f) fputs("xw: there is no font to draw text with\n", stderr);
  return fonts.fallback = f;
}

ThemeFont GetThemeFont(int id) {
  const ThemeFontRow* row = &kThemeFonts[0];
  for (const ThemeFontRow& r : kThemeFonts)
    if (r.id == id) row = &r;
  return {TheFinder().Ask("d").file, row->size, row->style};
}

}  // namespace platform

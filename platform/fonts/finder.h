// Which file a font name means. Names are looked up in one catalogue of the installed fonts; the
// answers are kept in a cache, in the process and in a small file, so that a warm start never asks.
#pragma once
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/fonts/face.h"

namespace platform {

// One installed face.
struct FontEntry {
  std::string file;
  int index = 0;
  std::string postscript;
  std::vector<std::string> full_names, families;
  bool type1 = false;
  int weight = 80, slant = 0, width = 100;  // 80 regular, 180 and more bold; below 100 narrow
  std::vector<uint16_t> pages;              // code points / 256 that it has some of; of a folder
  bool bold() const { return weight >= 180; }
  bool italic() const { return slant > 0; }
  bool narrow() const { return width < 100; }
};

// A file or folder and its time of change, as text; "-" where there is none.
struct FontStamp {
  std::string path, time;
};
std::string StampOf(const std::string& path);

struct FontCatalogue {
  std::vector<FontEntry> entries;  // in order of preference where names are equal
  std::string sans_serif;          // the family
  std::vector<FontStamp> stamps;   // what the entries depend on; empty: not to be remembered
  bool pages_read = false;
};
// The fonts of one folder alone.
FontCatalogue ReadFontFolder(const std::string& folder);
// All that the desktop's configuration names; empty when there is no font finder here.
FontCatalogue ReadInstalledFonts();

// The fonts of a folder that have characters of a page (code points / 256), in the order of their
// names, each with at least one that none before it has. The pages of all are read the first time.
std::vector<FontEntry> FolderFallback(FontCatalogue* catalogue, uint32_t page);

// The desktop's own order of fonts for what a chosen font lacks. It keeps the font finder open.
class FallbackOrder {
 public:
  FallbackOrder();
  ~FallbackOrder();
  // As FolderFallback; style: 1 italic, 2 bold, added.
  std::vector<FontEntry> OfPage(uint32_t page, int style);

 private:
  struct Impl;
  std::unique_ptr<Impl> impl_;
};

// The exact match; null when there is none.
const FontEntry* MatchFont(const FontCatalogue& catalogue, const std::string& name);

// A face that has the character, the sans-serif first; null when none has. For the toolkit's set.
const FontFace* FindFontWithCharacter(char32_t c);
// Where to look, in this order, for characters of a page that a font of this style lacks.
const std::vector<const FontFace*>& FallbackFaces(uint32_t page, int style);

// --- Answers that survive the process. Keys: "n" and a name, "u" and a character, "d", "p", a
// --- digit for the style and a page; a page has one answer a font.
struct CachedFont {
  std::string key;
  std::string file;  // empty: no such font. Of "d": the family
  int index = 0;
  FontUnits units{0, 0, 0, 0};
};
// Nothing when there is no file, or it is damaged, or anything that it depends on has changed.
std::optional<std::vector<CachedFont>> LoadFontCache();
// Writes the whole file again; silently not when it cannot.
void SaveFontCache(const std::vector<FontStamp>& stamps, const std::vector<CachedFont>& cache);

// Looks answers up in the cache first, then in the catalogue, which is read at most once in a
// process; new answers are added to the cache.
class FontFinder {
 public:
  FontFinder();
  const CachedFont& Ask(const std::string& key);
  const FontFace* AskFace(const std::string& key);
  // The catalogue's first face that can be read, for programs that ask for nothing that exists.
  const FontFace* Any();
  const std::vector<const FontFace*>& Page(uint32_t page, int style);

 private:
  const FontCatalogue& Catalogue();
  const FontFace* ByName(const std::string& name);
  const FontFace* ByCharacter(const std::string& hex);
  bool Remembered(const std::string& key, std::vector<const FontFace*>* faces) const;

  std::string folder_;  // of XW_FONTS; "": the desktop's configuration
  std::vector<CachedFont> cache_;
  FontCatalogue catalogue_;
  bool read_ = false;
  std::map<uint32_t, std::vector<const FontFace*>> pages_;  // by page and style
  std::unique_ptr<FallbackOrder> order_;
};

}  // namespace platform

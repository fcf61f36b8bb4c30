// The fonts of one folder, read with FreeType.
#include <dirent.h>

#include <algorithm>
#include <bitset>

#include "platform/fonts/face.h"
#include "platform/fonts/finder.h"
#include "platform/text/mac_roman.h"

#include FT_SFNT_NAMES_H
#include FT_TRUETYPE_IDS_H
#include FT_TRUETYPE_TABLES_H

namespace platform {
namespace {

std::string NameText(const FT_SfntName& n) {
  std::string s;
  char bytes[4];
  if (n.platform_id == TT_PLATFORM_MACINTOSH) {
    for (FT_UInt i = 0; i < n.string_len; ++i)
      s.append(bytes, size_t(PutUtf8(MacRomanToUnicode(n.string[i]), bytes)));
    return s;
  }
  for (FT_UInt i = 0; i + 1 < n.string_len; i += 2) {
    char32_t c = char32_t(n.string[i] << 8 | n.string[i + 1]);
    s.append(bytes, size_t(PutUtf8(c, bytes)));
  }
  return s;
}

void AddOnce(std::vector<std::string>* list, std::string s) {
  if (!s.empty() && std::find(list->begin(), list->end(), s) == list->end())
    list->push_back(std::move(s));
}

void ReadNames(FT_Face face, FontEntry* e) {
  if (face->family_name) AddOnce(&e->families, face->family_name);
  for (FT_UInt i = 0, n = FT_Get_Sfnt_Name_Count(face); i < n; ++i) {
    FT_SfntName name;
    if (FT_Get_Sfnt_Name(face, i, &name)) continue;
    if (name.name_id == TT_NAME_ID_FULL_NAME) AddOnce(&e->full_names, NameText(name));
    if (name.name_id == TT_NAME_ID_FONT_FAMILY || name.name_id == TT_NAME_ID_TYPOGRAPHIC_FAMILY)
      AddOnce(&e->families, NameText(name));
  }
}

bool ReadEntry(const std::string& file, int index, FontEntry* e, int* count) {
  FontHandle font;
  if (!font.Open(file, index)) return false;
  FT_Face face = font.face();
  *count = int(face->num_faces);
  e->file = file;
  e->index = index;
  if (const char* name = FT_Get_Postscript_Name(face)) e->postscript = name;
  e->weight = face->style_flags & FT_STYLE_FLAG_BOLD ? 200 : 80;
  e->slant = face->style_flags & FT_STYLE_FLAG_ITALIC ? 100 : 0;
  e->type1 = !FT_IS_SFNT(face);
  auto* os2 = static_cast<TT_OS2*>(FT_Get_Sfnt_Table(face, FT_SFNT_OS2));
  if (os2 && os2->usWidthClass && os2->usWidthClass < 5) e->width = 75;
  if (os2 && e->weight == 80 && os2->usWeightClass && os2->usWeightClass < 350) e->weight = 50;
  ReadNames(face, e);
  return true;
}

// One look-up a page, since the next character that it has may lie many pages on.
std::vector<uint16_t> ReadPages(const FontEntry& e) {
  std::vector<uint16_t> pages;
  FontHandle font;
  if (!font.Open(e.file, e.index)) return pages;
  FT_UInt glyph = 0;
  for (FT_ULong c = FT_Get_First_Char(font.face(), &glyph); glyph && c < 0x110000;
       c = FT_Get_Next_Char(font.face(), c | 0xFF, &glyph))
    pages.push_back(uint16_t(c >> 8));
  return pages;
}

// Adds what the font has of the page to `have`; false when that is nothing new.
bool AddCharacters(const FontEntry& e, uint32_t page, std::bitset<256>* have) {
  FontHandle font;
  if (!font.Open(e.file, e.index)) return false;
  const std::bitset<256> before = *have;
  for (uint32_t i = 0; i < 256; ++i)
    if (!have->test(i) && FT_Get_Char_Index(font.face(), page << 8 | i)) have->set(i);
  return *have != before;
}

std::vector<std::string> FilesOf(const std::string& folder) {
  std::vector<std::string> files;
  DIR* dir = opendir(folder.c_str());
  if (!dir) return files;
  while (dirent* d = readdir(dir))
    if (d->d_name[0] != '.') files.push_back(folder + "/" + d->d_name);
  closedir(dir);
  std::sort(files.begin(), files.end());
  return files;
}

}  // namespace

FontCatalogue ReadFontFolder(const std::string& folder) {
  FontCatalogue catalogue;
  for (const std::string& file : FilesOf(folder)) {
    int count = 1;
    for (int i = 0; i < count && i < 256; ++i) {
      FontEntry e;
      if (ReadEntry(file, i, &e, &count)) catalogue.entries.push_back(std::move(e));
    }
  }
  std::stable_sort(catalogue.entries.begin(), catalogue.entries.end(),
                   [](const FontEntry& a, const FontEntry& b) { return a.type1 < b.type1; });
  for (const FontEntry& e : catalogue.entries) {
    if (e.families.empty()) continue;
    if (catalogue.sans_serif.empty()) catalogue.sans_serif = e.families[0];
    for (const std::string& family : e.families)
      if (family == "DejaVu Sans") catalogue.sans_serif = family;
  }
  return catalogue;
}

std::vector<FontEntry> FolderFallback(FontCatalogue* catalogue, uint32_t page) {
  std::vector<FontEntry>& all = catalogue->entries;
  if (!catalogue->pages_read)
    for (FontEntry& e : all) e.pages = ReadPages(e);
  catalogue->pages_read = true;
  std::vector<const FontEntry*> having;
  for (const FontEntry& e : all)
    if (std::binary_search(e.pages.begin(), e.pages.end(), page)) having.push_back(&e);
  std::sort(having.begin(), having.end(), [](const FontEntry* a, const FontEntry* b) {
    return a->file != b->file ? a->file < b->file : a->index < b->index;
  });
  std::vector<FontEntry> fonts;
  std::bitset<256> have;
  for (const FontEntry* e : having)
    if (AddCharacters(*e, page, &have)) fonts.push_back(*e);
  return fonts;
}

}  // namespace platform

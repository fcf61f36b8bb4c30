#include "platform/fonts/finder.h"

#include <cstdio>
#include <cstdlib>

#include "platform/fonts/face.h"

namespace platform {
namespace {

// Answers are looked up here first; what is not there asks the catalogue, which is read at most
// once a process, and is then remembered.
class Book {
 public:
  Book() {
    const char* folder = getenv("XW_FONTS");
    if (folder && *folder) {
      folder_ = folder;
      return;
    }
    if (auto answers = LoadFontAnswers()) answers_ = std::move(*answers);
  }

  const FontAnswer& Ask(const std::string& key) {
    for (const FontAnswer& a : answers_)
      if (a.key == key) return a;
    const FontCatalogue& catalogue = Catalogue();
    FontAnswer a;
    a.key = key;
    if (key == "d") {
      a.file = catalogue.sans_serif;
    } else {
      const FontFace* face = key[0] == 'n' ? ByName(key.substr(1)) : ByCharacter(key.substr(1));
      if (face) {
        a.file = face->file;
        a.index = face->index;
        a.units_per_em = face->units_per_em;
        a.ascender = face->ascender;
        a.descender = face->descender;
        a.max_advance = face->max_advance;
      }
    }
    answers_.push_back(std::move(a));
    if (folder_.empty()) SaveFontAnswers(catalogue.stamps, answers_);
    return answers_.back();
  }

  const FontFace* AskFace(const std::string& key) {
    const FontAnswer& a = Ask(key);
    if (a.file.empty()) return nullptr;
    FontFace known;
    known.units_per_em = a.units_per_em;
    known.ascender = a.ascender;
    known.descender = a.descender;
    known.max_advance = a.max_advance;
    return FaceOfFile(a.file, a.index, &known);
  }

  // The catalogue's first face that can be read, for programs that ask for nothing that exists.
  const FontFace* Any() {
    for (const FontEntry& e : Catalogue().entries)
      if (const FontFace* face = FaceOfFile(e.file, e.index); face && OpenFace(face)) return face;
    return nullptr;
  }

 private:
  const FontCatalogue& Catalogue() {
    if (read_) return catalogue_;
    read_ = true;
    catalogue_ = folder_.empty() ? ReadInstalledFonts() : ReadFontFolder(folder_);
    // Answers from the file that were given for an older set of fonts are not here: the file is
    // refused as a whole when anything that it depends on has changed.
    return catalogue_;
  }

  const FontFace* ByName(const std::string& name) {
    const FontEntry* e = MatchFont(Catalogue(), name);
    return e ? FaceOfFile(e->file, e->index) : nullptr;
  }

  static bool HasCharacter(const FontEntry& e, char32_t c) {
    FT_Face face;
    if (!FontLibrary() || FT_New_Face(FontLibrary(), e.file.c_str(), e.index, &face)) return false;
    bool has = FT_Get_Char_Index(face, c) != 0;
    FT_Done_Face(face);
    return has;
  }

  const FontFace* ByCharacter(const std::string& hex) {
    char32_t c = char32_t(strtoul(hex.c_str(), nullptr, 16));
    const FontEntry* sans = MatchFont(Catalogue(), Catalogue().sans_serif);
    if (sans && HasCharacter(*sans, c)) return FaceOfFile(sans->file, sans->index);
    for (const FontEntry& e : Catalogue().entries)
      if (HasCharacter(e, c)) return FaceOfFile(e.file, e.index);
    return nullptr;
  }

  std::string folder_;
  std::vector<FontAnswer> answers_;
  FontCatalogue catalogue_;
  bool read_ = false;
};

Book& TheBook() {
  static Book* book = new Book;
  return *book;
}

struct ThemeFontRow {
  int id, size, style;
};
constexpr ThemeFontRow kThemeFonts[] = {
    {5, 13, 0}, {2, 11, 1}, {105, 13, 0}, {3, 12, 0}, {6, 10, 0}, {-1, 13, 0}, {-4, 12, 0},
};

}  // namespace

const FontFace* FindFont(const char* name) {
  return name && *name ? TheBook().AskFace(std::string("n") + name) : nullptr;
}

const FontFace* FindFontWithCharacter(char32_t c) {
  char key[16];
  snprintf(key, sizeof key, "u%X", unsigned(c));
  return TheBook().AskFace(key);
}

const FontFace* FallbackFont() {
  static const FontFace* font = [] {
    const FontFace* f = FindFont(TheBook().Ask("d").file.c_str());
    if (!f || !OpenFace(f)) f = TheBook().Any();
    if (!f) fputs("xw: there is no font to draw text with\n", stderr);
    return f;
  }();
  return font;
}

ThemeFont GetThemeFont(int id) {
  const ThemeFontRow* row = &kThemeFonts[0];
  for (const ThemeFontRow& r : kThemeFonts)
    if (r.id == id) row = &r;
  return {TheBook().Ask("d").file, row->size, row->style};
}

}  // namespace platform

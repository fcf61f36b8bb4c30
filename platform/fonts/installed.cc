// The installed fonts, from the desktop's font finder. It is loaded only here, asked once and
// closed again: a warm start does without it, and a machine without it still runs.
#include <dlfcn.h>
#include <fontconfig/fontconfig.h>
#include <sys/stat.h>

#include <algorithm>
#include <bitset>
#include <cstdio>
#include <cstdlib>

#include "platform/fonts/finder.h"
#include "platform/late_library.h"

namespace platform {
namespace {

struct Finder {
  decltype(&FcInitLoadConfigAndFonts) init;
  decltype(&FcConfigGetFonts) fonts;
  decltype(&FcConfigGetConfigFiles) config_files;
  decltype(&FcConfigGetFontDirs) font_dirs;
  decltype(&FcStrListNext) next;
  decltype(&FcStrListDone) done;
  decltype(&FcPatternGetString) get_string;
  decltype(&FcPatternGetInteger) get_integer;
  decltype(&FcPatternGetDouble) get_double;
  decltype(&FcPatternGetBool) get_bool;
  decltype(&FcNameParse) parse;
  decltype(&FcConfigSubstitute) substitute;
  decltype(&FcDefaultSubstitute) default_substitute;
  decltype(&FcFontMatch) match;
  decltype(&FcPatternAddInteger) add_integer;
  decltype(&FcFontSort) sort;
  decltype(&FcPatternGetCharSet) get_charset;
  decltype(&FcCharSetHasChar) has_char;
  decltype(&FcFontSetDestroy) destroy_set;
  decltype(&FcPatternDestroy) destroy_pattern;
  decltype(&FcConfigDestroy) destroy_config;
  decltype(&FcFini) finish;
};

bool LoadFinder(void* lib, Finder* f) {
  return FindFunction(lib, "FcInitLoadConfigAndFonts", &f->init) &&
         FindFunction(lib, "FcConfigGetFonts", &f->fonts) &&
         FindFunction(lib, "FcConfigGetConfigFiles", &f->config_files) &&
         FindFunction(lib, "FcConfigGetFontDirs", &f->font_dirs) &&
         FindFunction(lib, "FcStrListNext", &f->next) &&
         FindFunction(lib, "FcStrListDone", &f->done) &&
         FindFunction(lib, "FcPatternGetString", &f->get_string) &&
         FindFunction(lib, "FcPatternGetInteger", &f->get_integer) &&
         FindFunction(lib, "FcPatternGetDouble", &f->get_double) &&
         FindFunction(lib, "FcPatternGetBool", &f->get_bool) &&
         FindFunction(lib, "FcNameParse", &f->parse) &&
         FindFunction(lib, "FcConfigSubstitute", &f->substitute) &&
         FindFunction(lib, "FcDefaultSubstitute", &f->default_substitute) &&
         FindFunction(lib, "FcFontMatch", &f->match) &&
         FindFunction(lib, "FcPatternAddInteger", &f->add_integer) &&
         FindFunction(lib, "FcFontSort", &f->sort) &&
         FindFunction(lib, "FcPatternGetCharSet", &f->get_charset) &&
         FindFunction(lib, "FcCharSetHasChar", &f->has_char) &&
         FindFunction(lib, "FcFontSetDestroy", &f->destroy_set) &&
         FindFunction(lib, "FcPatternDestroy", &f->destroy_pattern) &&
         FindFunction(lib, "FcConfigDestroy", &f->destroy_config) &&
         FindFunction(lib, "FcFini", &f->finish);
}

// Null when there is none here.
FcConfig* OpenFinder(Finder* f) {
  void* library = dlopen("libfontconfig.so.1", RTLD_NOW | RTLD_LOCAL);
  return library && LoadFinder(library, f) ? f->init() : nullptr;
}

std::vector<std::string> Strings(const Finder& f, FcPattern* p, const char* object) {
  std::vector<std::string> list;
  FcChar8* s;
  for (int i = 0; f.get_string(p, object, i, &s) == FcResultMatch; ++i)
    list.emplace_back(reinterpret_cast<char*>(s));
  return list;
}

int Number(const Finder& f, FcPattern* p, const char* object, int otherwise) {
  double d;
  return f.get_double(p, object, 0, &d) == FcResultMatch ? int(d) : otherwise;
}

bool ReadPattern(const Finder& f, FcPattern* p, FontEntry* e) {
  FcBool scalable = FcFalse;
  f.get_bool(p, FC_SCALABLE, 0, &scalable);
  std::vector<std::string> file = Strings(f, p, FC_FILE);
  if (!scalable || file.empty()) return false;
  e->file = file[0];
  f.get_integer(p, FC_INDEX, 0, &e->index);
  std::vector<std::string> names = Strings(f, p, FC_POSTSCRIPT_NAME);
  if (!names.empty()) e->postscript = names[0];
  e->full_names = Strings(f, p, FC_FULLNAME);
  e->families = Strings(f, p, FC_FAMILY);
  e->weight = Number(f, p, FC_WEIGHT, 80);
  e->slant = Number(f, p, FC_SLANT, 0);
  e->width = Number(f, p, FC_WIDTH, 100);
  std::vector<std::string> format = Strings(f, p, FC_FONTFORMAT);
  e->type1 = !format.empty() && format[0] == "Type 1";
  return true;
}

std::string SansSerif(const Finder& f, FcConfig* config) {
  FcPattern* p = f.parse(reinterpret_cast<const FcChar8*>("sans-serif"));
  f.substitute(config, p, FcMatchPattern);
  f.default_substitute(p);
  FcResult result;
  FcPattern* found = f.match(config, p, &result);
  f.destroy_pattern(p);
  std::vector<std::string> families;
  if (found) {
    families = Strings(f, found, FC_FAMILY);
    f.destroy_pattern(found);
  }
  return families.empty() ? "" : families[0];
}

void AddStamp(FontCatalogue* catalogue, const std::string& path) {
  if (path.empty()) return;
  for (const FontStamp& s : catalogue->stamps)
    if (s.path == path) return;
  catalogue->stamps.push_back({path, StampOf(path)});
}

std::string FolderOf(const std::string& path) {
  return path.substr(0, path.rfind('/'));
}

// The configuration's files and their folders, where a user's own would appear, every font folder.
void AddStamps(const Finder& f, FcConfig* config, FontCatalogue* catalogue) {
  FcStrList* list = f.config_files(config);
  while (FcChar8* s = f.next(list)) {
    std::string path = reinterpret_cast<char*>(s);
    AddStamp(catalogue, path);
    AddStamp(catalogue, FolderOf(path));
  }
  f.done(list);
  list = f.font_dirs(config);
  while (FcChar8* s = f.next(list)) AddStamp(catalogue, reinterpret_cast<char*>(s));
  f.done(list);
  const char* home = getenv("HOME");
  const char* own = getenv("XDG_CONFIG_HOME");
  std::string base = own && *own ? own : home ? std::string(home) + "/.config" : "";
  if (base.empty()) return;
  for (const char* part : {"/fontconfig", "/fontconfig/conf.d", "/fontconfig/fonts.conf"})
    AddStamp(catalogue, base + part);
  if (home) AddStamp(catalogue, std::string(home) + "/.fonts.conf");
}

}  // namespace

std::string StampOf(const std::string& path) {
  struct stat s;
  if (stat(path.c_str(), &s)) return "-";
  char text[64];
  snprintf(text, sizeof text, "%lld.%09ld", static_cast<long long>(s.st_mtim.tv_sec),
           s.st_mtim.tv_nsec);
  return text;
}

FontCatalogue ReadInstalledFonts() {
  FontCatalogue catalogue;
  Finder f;
  FcConfig* config = OpenFinder(&f);
  if (!config) return catalogue;
  AddStamps(f, config, &catalogue);
  FcFontSet* set = f.fonts(config, FcSetSystem);
  for (int i = 0; set && i < set->nfont; ++i) {
    FontEntry e;
    if (ReadPattern(f, set->fonts[i], &e)) catalogue.entries.push_back(std::move(e));
  }
  std::sort(catalogue.entries.begin(), catalogue.entries.end(),
            [](const FontEntry& a, const FontEntry& b) {
              if (a.type1 != b.type1) return a.type1 < b.type1;
              return a.file != b.file ? a.file < b.file : a.index < b.index;
            });
  catalogue.sans_serif = SansSerif(f, config);
  f.destroy_config(config);
  f.finish();
  return catalogue;
}

// --- The order of fonts for what a chosen font lacks

struct FallbackOrder::Impl {
  Finder f;
  FcConfig* config = nullptr;
  FcFontSet* sorted[4] = {};  // by style, asked for once each
};

FallbackOrder::FallbackOrder() : impl_(new Impl) {
  impl_->config = OpenFinder(&impl_->f);
}

FallbackOrder::~FallbackOrder() {
  if (!impl_->config) return;
  for (FcFontSet* set : impl_->sorted)
    if (set) impl_->f.destroy_set(set);
  impl_->f.destroy_config(impl_->config);
  impl_->f.finish();
}

namespace {

FcFontSet* Sort(const Finder& f, FcConfig* config, int style) {
  FcPattern* p = f.parse(reinterpret_cast<const FcChar8*>("sans-serif"));
  f.add_integer(p, FC_SLANT, style & 1 ? FC_SLANT_ITALIC : FC_SLANT_ROMAN);
  f.add_integer(p, FC_WEIGHT, style & 2 ? FC_WEIGHT_BOLD : FC_WEIGHT_REGULAR);
  f.substitute(config, p, FcMatchPattern);
  f.default_substitute(p);
  FcResult result;
  FcFontSet* set = f.sort(config, p, FcTrue, nullptr, &result);
  f.destroy_pattern(p);
  return set;
}

// Adds what the font has of the page to `have`; false when that is nothing new.
bool AddCharacters(const Finder& f, FcPattern* p, uint32_t page, std::bitset<256>* have) {
  FcCharSet* set;
  if (f.get_charset(p, FC_CHARSET, 0, &set) != FcResultMatch) return false;
  const std::bitset<256> before = *have;
  for (uint32_t i = 0; i < 256; ++i)
    if (!have->test(i) && f.has_char(set, page << 8 | i)) have->set(i);
  return *have != before;
}

// Pictures of glyphs, which coloured fonts have, cannot be drawn in an ink.
bool HasOutlines(const Finder& f, FcPattern* p) {
  FcBool outline = FcFalse;
  return f.get_bool(p, FC_OUTLINE, 0, &outline) == FcResultMatch && outline;
}

}  // namespace

std::vector<FontEntry> FallbackOrder::OfPage(uint32_t page, int style) {
  std::vector<FontEntry> fonts;
  if (!impl_->config) return fonts;
  FcFontSet*& set = impl_->sorted[style & 3];
  if (!set) set = Sort(impl_->f, impl_->config, style);
  std::bitset<256> have;
  for (int i = 0; set && i < set->nfont; ++i) {
    FcPattern* p = set->fonts[i];
    FontEntry e;
    if (!HasOutlines(impl_->f, p) || !ReadPattern(impl_->f, p, &e)) continue;
    // A variable font stands for all its instances; its default one is drawn.
    if (e.index < 0 || e.index >> 16 == 0x8000) e.index &= 0xFFFF;
    if (AddCharacters(impl_->f, p, page, &have)) fonts.push_back(std::move(e));
  }
  return fonts;
}

}  // namespace platform

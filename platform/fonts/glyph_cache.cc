#include "platform/fonts/glyph_cache.h"

#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <deque>
#include <map>
#include <utility>

#include "platform/fonts/cache_file.h"
#include "platform/fonts/state.h"

namespace platform {
namespace {

constexpr const char* kFile = "glyphs";
constexpr size_t kMaxFile = kGlyphCacheRoom + 64, kMaxSet = size_t{48} << 10;
constexpr size_t kMaxCharacters = 1024, kMaxMask = 4096;

// --- The file: a header; then for each face its record, name, characters and sets; for each set
// --- its record, glyphs and masks. Each part begins at a multiple of eight bytes.

struct Header {
  char title[8];
  uint64_t making;    // how masks are made
  uint64_t checksum;  // of all that follows
};
static_assert(sizeof(Header) <= kMaxFile - kGlyphCacheRoom);
// Counted up when the format changes, or the way in which MakeGlyph makes masks (its load flags,
// its hinting): nothing else tells the masks of an earlier version of this code from its own.
constexpr char kTitle[9] = "xwglyph1";

struct FaceRecord {
  FileIdentity identity;
  uint32_t name, index, per_em, characters, sets, unused;
};
struct SetRecord {
  uint32_t device_size, glyphs, masks, unused;
};

uint64_t Mix(uint64_t sum, uint64_t word) {
  sum = (sum ^ word) * 0x9E3779B97F4A7C15u;
  return sum ^ sum >> 29;
}

uint64_t Checksum(std::span<const uint64_t> words) {
  uint64_t sum = words.size();
  for (const uint64_t word : words) sum = Mix(sum, word);
  return sum;
}

std::vector<uint64_t> WordsOf(std::string_view bytes) {
  std::vector<uint64_t> words(bytes.size() / 8);
  if (!words.empty()) std::memcpy(words.data(), bytes.data(), words.size() * 8);
  return words;
}

// All that changes a mask besides the font and the code here: FreeType's version and settings.
uint64_t Making() {
  uint64_t sum = FREETYPE_MAJOR << 20 | FREETYPE_MINOR << 10 | FREETYPE_PATCH;
  const char* properties = getenv("FREETYPE_PROPERTIES");
  for (const char* c = properties; c && *c; ++c) sum = Mix(sum, uint8_t(*c));
  return sum;
}

// FreeType is another one than this was compiled with only where it is a shared library.
bool MadeByThisVersion() {
  int major, minor, patch;
  FT_Library_Version(FontLibrary(), &major, &minor, &patch);
  return major == FREETYPE_MAJOR && minor == FREETYPE_MINOR && patch == FREETYPE_PATCH;
}

constexpr size_t Padded(size_t bytes) {
  return (bytes + 7) & ~size_t{7};
}

class Reader {
 public:
  explicit Reader(std::span<const uint64_t> words)
      : at_(reinterpret_cast<const uint8_t*>(words.data())), left_(words.size_bytes()) {}
  // `count` of T, and what fills them up; false when there are not so many.
  template <class T>
  bool Take(size_t count, std::span<const T>* out) {
    if (count > left_ / sizeof(T) || Padded(count * sizeof(T)) > left_) return false;
    *out = {reinterpret_cast<const T*>(at_), count};
    at_ += Padded(count * sizeof(T));
    left_ -= Padded(count * sizeof(T));
    return true;
  }
  bool at_end() const { return left_ == 0; }

 private:
  const uint8_t* at_;
  size_t left_;
};

template <class T>
bool InOrder(std::span<const T> list) {
  return std::adjacent_find(list.begin(), list.end(),
                            [](const T& a, const T& b) { return a.slot >= b.slot; }) == list.end();
}

bool ReadSet(Reader* in, StoredSet* set) {
  std::span<const SetRecord> record;
  if (!in->Take(1, &record) || record[0].device_size > 1u << 20 ||
      !in->Take(record[0].glyphs, &set->glyphs) || !in->Take(record[0].masks, &set->masks))
    return false;
  set->device_size = int(record[0].device_size);
  for (const StoredGlyph& g : set->glyphs)
    if (g.offset > set->masks.size() || g.bytes() > set->masks.size() - g.offset) return false;
  return InOrder(set->glyphs);
}

bool ReadFace(Reader* in, StoredFace* face) {
  std::span<const FaceRecord> record;
  std::span<const char> name;
  if (!in->Take(1, &record) || !in->Take(record[0].name, &name) ||
      !in->Take(record[0].characters, &face->characters))
    return false;
  face->file = {name.data(), name.size()};
  face->index = int(record[0].index);
  face->per_em = int(record[0].per_em);
  face->identity = record[0].identity;
  if (face->per_em < 16 || face->per_em > 1 << 16 || !InOrder(face->characters)) return false;
  for (const StoredCharacter& c : face->characters)
    if (c.advance < 0 || c.advance > 1 << 20) return false;
  for (uint32_t i = 0; i < record[0].sets; ++i) {
    StoredSet set;
    if (!ReadSet(in, &set)) return false;
    face->sets.push_back(set);
  }
  return true;
}

GlyphCache Read() {
  return ParseGlyphCache(ReadCacheFile(kFile, kMaxFile));
}

bool Remembers() {
  const char* folder = getenv("XW_FONTS");
  return !folder || !*folder;
}

template <class T>
const T* FindSlot(std::span<const T> list, uint32_t slot) {
  const auto at = std::lower_bound(list.begin(), list.end(), slot,
                                   [](const T& a, uint32_t s) { return a.slot < s; });
  return at != list.end() && at->slot == slot ? &*at : nullptr;
}

}  // namespace

GlyphCache ParseGlyphCache(std::string_view file) {
  GlyphCache cache;
  Header header;
  if (file.size() < sizeof header || file.size() % 8) return {};
  std::memcpy(&header, file.data(), sizeof header);
  if (std::memcmp(header.title, kTitle, sizeof header.title) || header.making != Making())
    return {};
  cache.words = WordsOf(file.substr(sizeof header));
  if (header.checksum != Checksum(cache.words)) return {};
  Reader in(cache.words);
  while (!in.at_end()) {
    StoredFace face;
    if (!ReadFace(&in, &face)) return {};
    cache.faces.push_back(std::move(face));
  }
  return cache;
}

std::string SealGlyphCache(std::string_view contents) {
  const std::vector<uint64_t> words = WordsOf(contents);
  Header header{{}, Making(), Checksum(words)};
  std::memcpy(header.title, kTitle, sizeof header.title);
  std::string file(sizeof header, 0);
  std::memcpy(file.data(), &header, sizeof header);
  return file.append(contents.substr(0, words.size() * 8));
}

const StoredFace* FindStoredFace(const std::string& file, int index, const FileIdentity& identity) {
  auto& cache = Fonts().glyph_cache;
  if (!cache) cache = std::make_unique<GlyphCache>(Remembers() ? Read() : GlyphCache());
  for (const StoredFace& face : cache->faces)
    if (face.index == index && face.file == file)
      return identity == face.identity ? &face : nullptr;
  return nullptr;
}

const StoredSet* FindStoredSet(const StoredFace* face, int device_size) {
  if (face)
    for (const StoredSet& set : face->sets)
      if (set.device_size == device_size) return &set;
  return nullptr;
}

const StoredCharacter* FindStoredCharacter(const StoredFace* face, uint32_t slot) {
  return face ? FindSlot(face->characters, slot) : nullptr;
}

const StoredGlyph* FindStoredGlyph(const StoredSet* set, uint32_t slot) {
  return set ? FindSlot(set->glyphs, slot) : nullptr;
}

// --- Room in the file

namespace {

size_t FaceCost(size_t name) {
  return sizeof(FaceRecord) + Padded(name) + 8;
}
constexpr size_t kSetCost = sizeof(SetRecord) + 8;

bool Take(size_t* room, size_t bytes) {
  if (bytes > *room) return false;
  *room -= bytes;
  return true;
}

// For a mask of a set that has `set_bytes` so far.
bool TakeForMask(size_t* room, size_t* set_bytes, size_t mask) {
  const size_t bytes = sizeof(StoredGlyph) + mask;
  if (mask > kMaxMask || *set_bytes + bytes > kMaxSet) return false;
  if (!Take(room, bytes + (*set_bytes ? 0 : kSetCost))) return false;
  *set_bytes += bytes;
  return true;
}

}  // namespace

bool KeepFace(FontFace* face) {
  return face->kept = Take(&Fonts().glyph_room, FaceCost(face->file.size()));
}

bool KeepCharacter(FontFace* face, CharacterPage* page, int at) {
  if (!face->kept || face->kept_characters >= kMaxCharacters ||
      !Take(&Fonts().glyph_room, sizeof(StoredCharacter)))
    return false;
  ++face->kept_characters;
  return page->kept[at] = true;
}

bool KeepGlyph(GlyphSet* set, Glyph* g) {
  return g->kept = g->drawable &&
                   TakeForMask(&Fonts().glyph_room, &set->kept_bytes, size_t{g->stride} * g->rows);
}

// --- Saving

namespace {

struct MaskToSave {
  StoredGlyph glyph;
  const uint8_t* mask;
};
struct SetToSave {
  int device_size;
  size_t bytes = 0;
  std::map<uint32_t, MaskToSave> masks;
};
struct FaceToSave {
  std::string file;
  int index, per_em;
  FileIdentity identity;
  std::map<uint32_t, StoredCharacter> characters;
  std::vector<SetToSave> sets;  // this process's own first, then as in the file
};

SetToSave* SetOf(FaceToSave* face, int device_size) {
  for (SetToSave& set : face->sets)
    if (set.device_size == device_size) return &set;
  face->sets.push_back({device_size, 0, {}});
  return &face->sets.back();
}

void AddCharacters(const CharacterPage* page, uint32_t first, FaceToSave* out) {
  for (uint32_t i = 0; page && i < 256; ++i)
    if (page->kept[i])
      out->characters[first + i] = {first + i, page->advances[i], page->overhang[i]};
}

void AddMasks(const GlyphSet& from, FaceToSave* out) {
  SetToSave* set = SetOf(out, from.device_size);
  set->bytes += from.kept_bytes;
  for (size_t number = 0; number < from.pages.size(); ++number)
    for (uint32_t i = 0; from.pages[number] && i < 256; ++i) {
      const Glyph& g = from.pages[number]->glyphs[i];
      const uint32_t slot = uint32_t(number << 8 | i);
      if (!g.kept || !out->characters.contains(slot)) continue;
      set->masks[slot] = {{slot, g.left, g.top, g.width, g.rows, 0}, from.masks.data() + g.offset};
    }
}

// Not what was made with a file that is another one by now.
bool ToSave(const FontFace& f, FaceToSave* out) {
  if (!f.kept || IdentityOf(f.file) != f.handle.identity()) return false;
  *out = {f.file, f.index, f.units.per_em, f.handle.identity(), {}, {}};
  AddCharacters(f.toolkit.get(), 0, out);
  for (size_t number = 0; number < f.pages.size(); ++number)
    AddCharacters(f.pages[number].get(), uint32_t(number << 8) + 256, out);
  for (const auto& font : Fonts().sized)
    if (font->face == &f)
      for (const auto& set : font->sets) AddMasks(*set, out);
  return true;
}

// The one among those to save that is in the same state of its file, made when there is none; null
// when the file is another one by now or there is no room.
FaceToSave* FaceFor(const StoredFace& stored, std::deque<FaceToSave>* faces, size_t* room) {
  for (FaceToSave& f : *faces)
    if (f.file == stored.file && f.index == stored.index)
      return f.identity == stored.identity ? &f : nullptr;
  const std::string file(stored.file);
  if (IdentityOf(file) != stored.identity || !Take(room, FaceCost(file.size()))) return nullptr;
  faces->push_back({file, stored.index, stored.per_em, stored.identity, {}, {}});
  return &faces->back();
}

void MergeCharacters(const StoredFace& stored, FaceToSave* face, size_t* room) {
  for (const StoredCharacter& c : stored.characters)
    if (!face->characters.contains(c.slot) && face->characters.size() < kMaxCharacters &&
        Take(room, sizeof c))
      face->characters.emplace(c.slot, c);
}

void MergeSet(const StoredSet& stored, FaceToSave* face, size_t* room) {
  SetToSave* set = SetOf(face, stored.device_size);
  for (const StoredGlyph& g : stored.glyphs)
    if (!set->masks.contains(g.slot) && face->characters.contains(g.slot) &&
        TakeForMask(room, &set->bytes, g.bytes()))
      set->masks.emplace(g.slot, MaskToSave{g, stored.masks.data() + g.offset});
}

// What the file has besides, as far as there is room: of all faces in turn, so that what is left
// out is what was saved longest ago.
void Merge(const GlyphCache& now, std::deque<FaceToSave>* faces, size_t room) {
  std::vector<std::pair<const StoredFace*, FaceToSave*>> pairs;
  size_t sets = 0;
  for (const StoredFace& stored : now.faces)
    if (FaceToSave* face = FaceFor(stored, faces, &room)) {
      MergeCharacters(stored, face, &room);
      pairs.push_back({&stored, face});
      sets = std::max(sets, stored.sets.size());
    }
  for (size_t i = 0; i < sets; ++i)
    for (const auto& [stored, face] : pairs)
      if (i < stored->sets.size()) MergeSet(stored->sets[i], face, &room);
}

void Append(std::string* out, const void* bytes, size_t size) {
  out->append(static_cast<const char*>(bytes), size);
  out->resize(Padded(out->size()));
}

std::string BytesOf(const SetToSave& set) {
  std::vector<StoredGlyph> glyphs;
  std::string masks;
  for (const auto& [slot, m] : set.masks) {
    glyphs.push_back(m.glyph);
    glyphs.back().offset = uint32_t(masks.size());
    masks.append(reinterpret_cast<const char*>(m.mask), m.glyph.bytes());
  }
  std::string bytes;
  const SetRecord record{uint32_t(set.device_size), uint32_t(glyphs.size()), uint32_t(masks.size()),
                         0};
  Append(&bytes, &record, sizeof record);
  Append(&bytes, glyphs.data(), glyphs.size() * sizeof glyphs[0]);
  Append(&bytes, masks.data(), masks.size());
  return bytes;
}

std::string BytesOf(const FaceToSave& face) {
  std::vector<StoredCharacter> characters;
  for (const auto& [slot, c] : face.characters) characters.push_back(c);
  std::string sets;
  uint32_t set_count = 0;
  for (const SetToSave& set : face.sets) {
    if (set.masks.empty()) continue;
    sets += BytesOf(set);
    ++set_count;
  }
  const FaceRecord record{face.identity,
                          uint32_t(face.file.size()),
                          uint32_t(face.index),
                          uint32_t(face.per_em),
                          uint32_t(characters.size()),
                          set_count,
                          0};
  std::string bytes;
  Append(&bytes, &record, sizeof record);
  Append(&bytes, face.file.data(), face.file.size());
  Append(&bytes, characters.data(), characters.size() * sizeof characters[0]);
  return bytes + sets;
}

}  // namespace

void SaveGlyphCache() {
  if (!std::exchange(Fonts().keep_glyphs, false)) return;
  std::deque<FaceToSave> faces;
  for (const auto& face : Fonts().faces)
    if (FaceToSave f; ToSave(*face, &f)) faces.push_back(std::move(f));
  const std::string before = ReadCacheFile(kFile, kMaxFile);
  const GlyphCache now = ParseGlyphCache(before);
  Merge(now, &faces, Fonts().glyph_room);
  std::string contents;
  for (const FaceToSave& face : faces) contents += BytesOf(face);
  const std::string after = SealGlyphCache(contents);
  if (after != before && MadeByThisVersion()) ReplaceCacheFile(kFile, after);
}

// Most programs end by exit. In a forked child and in another thread the handler does nothing.
void KeepGlyphs() {
  FontState& fonts = Fonts();
  if (fonts.keep_glyphs || !Remembers()) return;
  fonts.keep_glyphs = true;
  static pid_t process = 0;
  if (process == getpid()) return;
  process = getpid();
  atexit([] {
    if (getpid() == process && gettid() == process) SaveFonts();
  });
}

}  // namespace platform

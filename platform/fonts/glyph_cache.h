// Glyphs that programs of this user have drawn, remembered in a file beside that of the font
// finder's answers: a start opens the files of its fonts, but reads a font only for what the file
// does not have. It has what the last programs drew, up to its largest size. What is drawn is the
// same with and without it.
#pragma once
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/fonts/font_file.h"

namespace platform {

struct CharacterPage;
struct FontFace;
struct Glyph;
struct GlyphSet;

// Bytes of the file behind its header. It goes first to what the process that saves has drawn, in
// the order in which that was drawn, then to what others have left in the file.
constexpr size_t kGlyphCacheRoom = (size_t{256} << 10) - 64;

// As in a face's pages: a character that the font has itself.
struct StoredCharacter {
  uint32_t slot;
  int32_t advance;
  uint32_t overhang;
};
// As a Glyph, whose mask begins at `offset` of its set's masks.
struct StoredGlyph {
  uint32_t slot;
  int16_t left, top;
  uint16_t width, rows;
  uint32_t offset;
  size_t stride() const { return (width + 3u) & ~3u; }
  size_t bytes() const { return stride() * rows; }
};
// Both in the order of their slots. They refer to the bytes of the cache.
struct StoredSet {
  int device_size;
  std::span<const StoredGlyph> glyphs;
  std::span<const uint8_t> masks;
};
struct StoredFace {
  std::string_view file;
  int index, per_em;
  FileIdentity identity;
  std::span<const StoredCharacter> characters;
  std::vector<StoredSet> sets;
};

struct GlyphCache {
  std::vector<uint64_t> words;
  std::vector<StoredFace> faces;
};
// Of the bytes of a file: empty when anything about them is odd, or glyphs are made in another way
// now.
GlyphCache ParseGlyphCache(std::string_view file);
// The bytes of a file with this behind its header, as much as a multiple of eight.
std::string SealGlyphCache(std::string_view contents);

// What the cache has of a font file in this state; null when that is nothing. Where XW_FONTS is set
// nothing is remembered.
const StoredFace* FindStoredFace(const std::string& file, int index, const FileIdentity& identity);
// Null where there is no such thing, or no face or set.
const StoredSet* FindStoredSet(const StoredFace* face, int device_size);
const StoredCharacter* FindStoredCharacter(const StoredFace* face, uint32_t slot);
const StoredGlyph* FindStoredGlyph(const StoredSet* set, uint32_t slot);

// Take room in the file for something that is used, whether it is remembered or new; false where
// there is none. A face comes before its characters, a character before its glyphs.
bool KeepFace(FontFace* face);
bool KeepCharacter(FontFace* face, CharacterPage* page, int at);
bool KeepGlyph(GlyphSet* set, Glyph* glyph);
// Something was kept that the cache does not have: it is saved when the program ends.
void KeepGlyphs();
// Adds what this process has made, if there is anything, to what the file has now.
void SaveGlyphCache();

}  // namespace platform

// A font file as the room of fonts sees it: metrics, and pages of 256 characters each.
#pragma once
#include <memory>
#include <string>
#include <vector>

#include "platform/fonts/font_file.h"
#include "platform/fonts/fonts.h"
#include "platform/text/characters.h"

namespace platform {

// In place of a glyph's number: nothing is drawn; a box with the character's number.
constexpr uint32_t kNoGlyph = 0xFFFFFFFFu, kBoxGlyph = 0xFFFFFFFEu;
// The font has it, but has not been opened to ask for its number.
constexpr uint32_t kUnreadGlyph = 0xFFFFFFFDu;

// Metrics in the font's own units.
struct FontUnits {
  int per_em = 1000, ascender = 0, descender = 0, max_advance = 0;
};

// Advances are in the units of the font that was chosen, whichever font has the glyph.
struct CharacterPage {
  int32_t advances[256] = {};
  uint32_t glyphs[256];
  const FontFace* sources[256] = {};  // the font that has the glyph; null: not looked up
  CharacterKind kinds[256] = {};      // kUnknown: not looked up
  bool overhang[256] = {};            // a mark that is drawn to the left of its pen
  bool kept[256] = {};                // the font's own, and goes to the file of glyphs
};

struct StoredFace;

struct FontFace {
  std::string file;
  int index = 0;
  FontUnits units;
  // --- Filled by OpenFace.
  const StoredFace* stored = nullptr;  // what earlier programs knew of the file; null: nothing
  FontHandle handle;                   // its font is opened for the first thing that is not stored
  bool tried = false;                  // to open the font
  int ft_size = 0;                     // 26.6 size that the handle is set to
  bool kept = false;                   // has a place in the file of glyphs
  size_t kept_characters = 0;
  // The 256 characters of the toolkit's set; the upper half is looked up on first use, since other
  // fonts may have to be opened for it.
  std::unique_ptr<CharacterPage> toolkit;
  bool upper_half = false;
  // By code point / 256, made when one of its characters is asked for.
  std::vector<std::unique_ptr<CharacterPage>> pages;
};

// Opens the file and fills the lower half of the toolkit's page, once. From stored characters where
// there are some: the font in the file is not opened then. False when the file cannot be read.
bool OpenFace(const FontFace* face);
// Reads the upper half of an open face's toolkit page, once.
void ReadUpperHalf(const FontFace* face);
// The face for a file, made on first use. Metrics are taken from `known` or read from the file;
// null when it cannot be read.
const FontFace* FaceOfFile(const std::string& file, int index, const FontUnits* known = nullptr);

// A character's place in the pages of an open face: below 256 the toolkit's page, which ASCII is
// taken from, else the code point + 256.
inline uint32_t SlotOf(char32_t c) {
  return c < 0x80 ? c : c + 256;
}
// The character of a slot as it is looked for in fonts.
char32_t CharacterOf(uint32_t slot);
// The number of its glyph in the font that has it, or one of those above. That font is open then,
// unless there is nothing to draw.
uint32_t GlyphNumberOf(const FontFace* face, uint32_t slot);
// The page of a slot, with that slot's character looked up.
const CharacterPage& PageOfSlot(const FontFace* face, uint32_t slot);
// Advance of a box with a number, in units of 1/13 em: the number has four digits or six.
constexpr int BoxColumns(char32_t c) {
  return c > 0xFFFF ? 17 : 13;
}

}  // namespace platform

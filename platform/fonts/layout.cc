// Laying out a line: from UTF-8 to glyphs with pens, and clusters that carets stand between.
#include "platform/fonts/state.h"
#include "platform/text/utf8.h"

namespace platform {
namespace {

class Layout {
 public:
  Layout(const FontFace* face, TextLine* line) : face_(face), line_(line) {}

  void Add(char32_t c, size_t start) {
    if (c >= 0x20 && c < 0x7F) {
      Begin(start);
      return Put(c, c, face_->toolkit->advances[c]);
    }
    const uint32_t slot = SlotOf(c);
    const CharacterPage& page = PageOfSlot(face_, slot);
    const CharacterKind kind = page.kinds[slot & 0xFF];
    if (kind != CharacterKind::kLetter) return AddOther(kind, c, start);
    Begin(start);
    Put(c, slot, page.advances[slot & 0xFF]);
  }
  void End(size_t length) { Begin(length); }

 private:
  void Begin(size_t start) { line_->clusters.push_back({start, line_->glyphs.size(), pen_}); }
  // A mark at the beginning of the text has no letter.
  void Join(size_t start) {
    if (line_->clusters.empty()) Begin(start);
  }

  // A glyph at the pen, which marks behind it may compose with.
  void Put(char32_t c, uint32_t slot, int32_t advance) {
    letter_ = c;
    letter_at_ = line_->glyphs.size();
    joined_ = flag_ = false;
    line_->glyphs.push_back({slot, advance, pen_});
    pen_ += advance;
  }

  void AddOther(CharacterKind kind, char32_t c, size_t start) {
    const bool joined = joined_, flag = flag_;
    const uint32_t slot = SlotOf(c);
    switch (kind) {
      case CharacterKind::kMark:
        Join(start);
        return Compose(c) ? void() : PutMark(slot);
      case CharacterKind::kFollower:
        Join(start);
        if (!Compose(c)) Put(c, slot, AdvanceOf(slot));
        return;
      case CharacterKind::kPicture:
        if (!joined) Begin(start);
        return Put(c, slot, AdvanceOf(slot));
      case CharacterKind::kFlag:
        if (!flag) Begin(start);
        Put(c, slot, AdvanceOf(slot));
        flag_ = !flag;
        return;
      case CharacterKind::kControl:
        Begin(start);
        break;
      default:
        Join(start);
    }
    letter_ = 0;
    flag_ = false;
    joined_ = kind == CharacterKind::kJoiner;
  }

  int32_t AdvanceOf(uint32_t slot) const { return PageOfSlot(face_, slot).advances[slot & 0xFF]; }
  const FontFace* SourceOf(uint32_t slot) const {
    const CharacterPage& page = PageOfSlot(face_, slot);
    return page.glyphs[slot & 0xFF] == kBoxGlyph ? nullptr : page.sources[slot & 0xFF];
  }

  // Replaces the letter by the one character for letter and mark, where a font has that. If the
  // letter is from the chosen font, the character must be too.
  bool Compose(char32_t mark) {
    const char32_t whole = letter_ ? ComposeCharacters(letter_, mark) : 0;
    if (!whole) return false;
    LineGlyph& g = line_->glyphs[letter_at_];
    const FontFace* source = SourceOf(g.slot);
    const uint32_t slot = SlotOf(whole);
    if (!SourceOf(slot) || (source == face_ && SourceOf(slot) != face_)) return false;
    const int32_t advance = AdvanceOf(slot);
    pen_ += advance - g.advance;
    g.slot = slot;
    g.advance = advance;
    letter_ = whole;
    return true;
  }

  void PutMark(uint32_t slot) {
    const bool at_letter = letter_ && !PageOfSlot(face_, slot).overhang[slot & 0xFF];
    line_->glyphs.push_back({slot, 0, at_letter ? line_->glyphs[letter_at_].pen : pen_});
  }

  const FontFace* face_;
  TextLine* line_;
  int64_t pen_ = 0;
  char32_t letter_ = 0;   // what a mark may compose with; 0: nothing
  size_t letter_at_ = 0;  // its glyph
  bool joined_ = false;   // by a joiner to what stands before it
  bool flag_ = false;     // the first half of a flag stands before it
};

// A font that cannot be opened measures 0 and draws nothing, character by character.
void LayOutNothing(std::string_view utf8, TextLine* line) {
  for (std::string_view rest = utf8; !rest.empty(); TakeUtf8(&rest))
    line->clusters.push_back({utf8.size() - rest.size(), 0, 0});
  line->clusters.push_back({utf8.size(), 0, 0});
}

// More than any line on a screen has.
constexpr size_t kKeptGlyphs = 1 << 16;

}  // namespace

void LayOutText(const SizedFont* font, std::string_view utf8, TextLine* line, int64_t enough) {
  line->glyphs.clear();
  line->clusters.clear();
  if (line->glyphs.capacity() > kKeptGlyphs) *line = {};
  if (!OpenSized(font)) return LayOutNothing(utf8, line);
  Layout layout(font->face, line);
  std::string_view rest = utf8;
  while (!rest.empty()) {
    const size_t start = utf8.size() - rest.size();
    layout.Add(TakeUtf8(&rest), start);
    // A cluster is complete only when the next one has begun.
    if (line->clusters.back().pen >= enough) {
      line->glyphs.resize(line->clusters.back().glyph);
      return;
    }
  }
  layout.End(utf8.size() - rest.size());
}

void CutLine(TextLine* line, size_t n) {
  if (n >= line->count()) return;
  line->glyphs.resize(line->clusters[n].glyph);
  line->clusters.resize(n + 1);
}

void DrawUtf8(ContextRef c, SizedFont* font, int x, int y, std::string_view utf8, uint32_t rgb,
              int alpha) {
  TextLine line;
  LayOutText(font, utf8, &line);
  DrawLine(c, font, x, y, line, rgb, alpha);
}

}  // namespace platform

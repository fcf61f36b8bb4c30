// What keys do in open menus.
#include "platform/events/key_characters.h"
#include "platform/menus/open_menus.h"
#include "platform/text/letters.h"
#include "platform/text/utf8.h"

namespace platform {
namespace {

constexpr uint32_t kF10 = 0xFFC7;
constexpr int kPage = 10;          // rows
constexpr double kTypingTime = 1;  // between two keys of one beginning

// The title beside the one that is open.
void NextTitle(int step) {
  const auto& titles = BarTitles();
  const int n = int(titles.size());
  int at = 0;
  for (int i = 0; i < n; ++i)
    if (titles[size_t(i)].menu == open_menus.levels.front().menu) at = i;
  for (int k = 0; k < n; ++k) {
    at = (at + step + n) % n;
    MenuRef m = titles[size_t(at)].menu;
    if (!m->disabled) return SwitchTitle(m, true);
  }
}

// Goes on with what was typed a moment ago, to the item that begins with all of it. False when
// there is none.
bool GoOnTyping(MenuLevel* l, const Event& e) {
  if (l->typed.empty() || e.time - l->typed_at > kTypingTime || !e.key.text[0]) return false;
  std::u32string typed = l->typed;
  for (std::string_view text = e.key.text; !text.empty();) typed += FoldTyped(TakeUtf8(&text));
  int at = l->selected;
  for (size_t k = 0; k <= l->layout.rows.size(); ++k, at = NextItem(*l, at, 1)) {
    if (!at || !BeginsWithTyped(l->menu->items[size_t(at - 1)].text, typed)) continue;
    l->typed = std::move(typed);
    l->typed_at = e.time;
    SelectItem(l, at);
    return true;
  }
  return false;
}

void SelectByLetter(MenuLevel* l, char32_t letter, double time) {
  l->typed = letter;
  l->typed_at = time;
  int at = l->selected;
  for (size_t k = 0; k < l->layout.rows.size(); ++k) {
    at = NextItem(*l, at, 1);
    if (at && FirstLetter(l->menu->items[size_t(at - 1)].text) == letter) return SelectItem(l, at);
  }
}

void Leave() {
  OpenMenus& s = open_menus;
  if (s.levels.size() > 1)
    PopLevels(s.levels.size() - 1);
  else
    EndMenuTracking(false);
}

}  // namespace

void MenuKey(const Event& e) {
  OpenMenus& s = open_menus;
  const size_t level = s.levels.size() - 1;
  MenuLevel* l = &s.levels[level];
  s.pressed = true;
  if (e.key.keysym == kF10) return EndMenuTracking(false);
  switch (e.key.character) {
    case kUpKey:
      return SelectItem(l, NextItem(*l, l->selected, -1));
    case kDownKey:
      return SelectItem(l, NextItem(*l, l->selected, 1));
    case kHomeKey:
      return SelectItem(l, NextItem(*l, 0, 1));
    case kEndKey:
      return SelectItem(l, NextItem(*l, 0, -1));
    case kPageUpKey:
    case kPageDownKey: {
      const int step = e.key.character == kPageUpKey ? -1 : 1;
      const int end = NextItem(*l, 0, -step);
      int at = l->selected;
      for (int i = 0; i < kPage && at != end; ++i) at = NextItem(*l, at, step);
      return SelectItem(l, at);
    }
    case kLeftKey:
      if (level > 0) return PopLevels(level);
      if (s.of_bar) NextTitle(-1);
      return;
    case kRightKey:
      if (!OpenSubMenu(level, true) && s.of_bar && !s.done) NextTitle(1);
      return;
    case kReturnKey:
    case kEnterKey:
    case kSpaceKey:
      if (e.key.character == kSpaceKey && GoOnTyping(l, e)) return;
      if (l->selected) ChooseItem(level, l->selected, true);
      return;
    case kEscapeKey:
      return Leave();
    default:
      if (GoOnTyping(l, e)) return;
      if (const char32_t letter = LetterOfKey(e.key.base_keysym, e.key.keysym, e.key.text))
        SelectByLetter(l, letter, e.time);
  }
}

}  // namespace platform

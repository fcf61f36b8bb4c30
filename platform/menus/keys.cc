// What keys do in open menus.
#include "platform/menus/session.h"
#include "platform/text/letters.h"

namespace platform {
namespace {

// Characters of the toolkit's keys.
enum : uint8_t {
  kHome = 1,
  kEnter = 3,
  kEnd = 4,
  kPageUp = 11,
  kPageDown = 12,
  kReturn = 13,
  kEscape = 27,
  kLeft = 28,
  kRight = 29,
  kUp = 30,
  kDown = 31,
  kSpace = ' ',
};
constexpr uint32_t kF10 = 0xFFC7;
constexpr int kPage = 10;  // rows

// The title beside the one that is open.
void NextTitle(int step) {
  const auto& titles = BarTitles();
  const int n = int(titles.size());
  int at = 0;
  for (int i = 0; i < n; ++i)
    if (titles[size_t(i)].menu == menu_session.levels.front().menu) at = i;
  for (int k = 0; k < n; ++k) {
    at = (at + step + n) % n;
    MenuRef m = titles[size_t(at)].menu;
    if (!m->disabled) return SwitchTitle(m, true);
  }
}

void SelectByLetter(MenuLevel* l, char32_t letter) {
  int at = l->selected;
  for (size_t k = 0; k < l->layout.rows.size(); ++k) {
    at = NextItem(*l, at, 1);
    if (at && FirstLetter(l->menu->items[size_t(at - 1)].text) == letter) return SelectItem(l, at);
  }
}

void Leave() {
  MenuSession& s = menu_session;
  if (s.levels.size() > 1)
    PopLevels(s.levels.size() - 1);
  else
    FinishSession(false);
}

}  // namespace

void MenuKey(const Event& e) {
  MenuSession& s = menu_session;
  const size_t level = s.levels.size() - 1;
  MenuLevel* l = &s.levels[level];
  s.pressed = true;
  if (e.key.keysym == kF10) return FinishSession(false);
  switch (e.key.character) {
    case kUp:
      return SelectItem(l, NextItem(*l, l->selected, -1));
    case kDown:
      return SelectItem(l, NextItem(*l, l->selected, 1));
    case kHome:
      return SelectItem(l, NextItem(*l, 0, 1));
    case kEnd:
      return SelectItem(l, NextItem(*l, 0, -1));
    case kPageUp:
    case kPageDown: {
      const int step = e.key.character == kPageUp ? -1 : 1;
      const int end = NextItem(*l, 0, -step);
      int at = l->selected;
      for (int i = 0; i < kPage && at != end; ++i) at = NextItem(*l, at, step);
      return SelectItem(l, at);
    }
    case kLeft:
      if (level > 0) return PopLevels(level);
      if (s.of_bar) NextTitle(-1);
      return;
    case kRight:
      if (!OpenSubMenu(level, true) && s.of_bar && !s.done) NextTitle(1);
      return;
    case kReturn:
    case kEnter:
    case kSpace:
      if (l->selected) ChooseItem(level, l->selected, true);
      return;
    case kEscape:
      return Leave();
    default:
      if (const char32_t letter = LetterOfKey(e.key.base_keysym, e.key.keysym, e.key.text))
        SelectByLetter(l, letter);
  }
}

}  // namespace platform

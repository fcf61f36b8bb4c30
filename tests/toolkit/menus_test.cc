// Menus: the bar, pop-ups, their items and keys, by the pointer and by the keyboard alone.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <functional>

#include "platform/access/access.h"
#include "platform/controls/control.h"
#include "platform/events/event.h"
#include "platform/input/translate.h"
#include "platform/loop/dispatch.h"
#include "platform/loop/tracking.h"
#include "platform/menus/menu.h"
#include "platform/windows/internal.h"
#include "tests/toolkit/control_stage.h"
#include "toolkit/core/state.h"
#include "toolkit/events/session.h"
#include "toolkit/windows/menus.h"

namespace {

using namespace stage;
using namespace platform;

constexpr uint32_t kF10 = 0xFFC7, kUp = 0xFF52, kDown = 0xFF54, kLeft = 0xFF51, kRight = 0xFF53,
                   kReturn = 0xFF0D, kEscape = 0xFF1B, kEnd = 0xFF57;

void User(std::vector<std::function<void()>> what) {
  RunSteps(0.15, std::move(what));
}

struct Menus {
  XwMenuItem deep[4] = {{"One", 0, 301, nullptr}, {"Two", 0, 302, nullptr}, {}, {}};
  XwMenuItem sort[4] = {{"By name", XWM_CHECKED, 201, nullptr},
                        {"By size", 0, 202, nullptr},
                        {"Deeper", 0, 0, nullptr},
                        {}};
  XwMenuItem file[8] = {{"Open", XWM_DOTS, 101, nullptr},
                        {"Print", 0, 102, nullptr},
                        {"", 0, 0, nullptr},
                        {"Sort", 0, 0, nullptr},
                        {"Again", XWM_DISABLED, 104, nullptr},
                        {"Secret", XWM_HIDDEN, 105, nullptr},
                        {" ", XWM_COLOUR, 0x0000FF, nullptr},
                        {}};
  XwMenuItem edit[3] = {{"Cut", 0, 401, nullptr}, {"Copy", 0, 402, nullptr}, {}};
  XwMenuItem none[1] = {};
  XwMenuItem bar[4] = {
      {"File", 0, 0, nullptr}, {"Edit", 0, 0, nullptr}, {"Hidden", XWM_HIDDEN, 0, nullptr}, {}};
  XwWindow* main;
  Menus() {
    Open(3);
    sort[2].id = reinterpret_cast<XwValue>(deep);
    file[3].id = reinterpret_cast<XwValue>(sort);
    bar[0].id = reinterpret_cast<XwValue>(file);
    bar[1].id = reinterpret_cast<XwValue>(edit);
    bar[2].id = reinterpret_cast<XwValue>(none);
    main = Main();
    input::Focus(Native(main));
    RunLoop();
    XwSetFocus(main);
    XwSetMenu(main, bar);
    Settle();
  }
  ~Menus() { DropSession(); }
};

void Collect(const std::vector<DescribedNode>& nodes, const std::string& name,
             std::vector<Description>* out) {
  for (const DescribedNode& n : nodes) {
    if (n.what.name == name) out->push_back(n.what);
    Collect(n.children, name, out);
  }
}
// One that is open before others.
Description Item(const std::string& name) {
  std::vector<Description> found;
  Collect(DescribeTree(), name, &found);
  for (const Description& d : found)
    if (!d.bounds.empty()) return d;
  return found.empty() ? Description() : found.front();
}
bool Shown(const std::string& name) {
  return Item(name).state & kIsShown && !Item(name).bounds.empty();
}
std::function<void()> Move(const char* name) {
  return [name] {
    const Rect r = Item(name).bounds;
    input::MovePointer((r.left + r.right) / 2, (r.top + r.bottom) / 2);
  };
}
void Down() {
  input::Press(1);
}
void Up() {
  input::Release(1);
}
std::function<void()> Key(uint32_t keysym, uint32_t unicode = 0, uint32_t modifiers = 0) {
  return [=] {
    if (modifiers) input::Modifiers(modifiers);
    input::KeyDown(keysym, unicode);
    input::KeyUp(keysym, unicode);
    if (modifiers) input::Modifiers(0);
  };
}
// What came but motion and redraws, "type" or "type:item".
std::string Came() {
  std::string out;
  for (const Seen& s : seen) {
    if (s.type == XWE_MOTION || s.type == XWE_EXPOSE) continue;
    out += (out.empty() ? "" : " ") + std::to_string(s.type);
    if (s.type == XWE_MENU) out += ":" + std::to_string(s.event.item);
  }
  seen.clear();
  return out;
}

TEST(Menus, ByThePointer) {
  Menus m;
  // A press opens, a drag goes through, the release chooses.
  User({Move("File"), Down, Move("Print"), Up});
  EXPECT_EQ(Came(), "793 794:102");
  EXPECT_FALSE(Shown("Print"));
  EXPECT_EQ(Inp.state & XWS_BUTTONS, 0u);
  // One that is let go of outside chooses nothing.
  User({Move("File"), Down, Move("Print"), [] { input::MovePointer(390, 290); }, Up,
        [] { EXPECT_FALSE(MenusAreOpen()); }});
  EXPECT_EQ(Came(), "793");
  // A click opens, another title follows the pointer, a second click chooses.
  User({Move("File"), [] { Down(), Up(); }, [] { EXPECT_TRUE(Shown("Print")); }, Move("Edit"),
        [] {
          EXPECT_TRUE(Shown("Copy"));
          EXPECT_FALSE(Shown("Print"));
          EXPECT_NEAR(Item("Copy").bounds.left, Item("Edit").bounds.left, 4) << "below its title";
        },
        Move("Copy"), [] { Down(), Up(); }});
  EXPECT_EQ(Came(), "793 793 794:402");
  // A press that goes to another title opens it, and the next one closes it.
  User({Move("File"), [] { Down(), Up(); }, [] { Move("Edit")(), Down(), Up(); },
        [] { EXPECT_TRUE(Shown("Copy")); }, [] { Down(), Up(); },
        [] { EXPECT_FALSE(Shown("Copy")); }});
  EXPECT_EQ(Came(), "793 793");
  // Sub-menus to any depth; what is disabled or a line stays open.
  User({Move("File"), [] { Down(), Up(); }, Move("Again"), [] { Down(), Up(); },
        [] { EXPECT_TRUE(Shown("Again")); }, Move("Sort"),
        [] { EXPECT_TRUE(Item("By name").state & kIsChecked); }, Move("Deeper"),
        [] { EXPECT_TRUE(Shown("Two")); }, Move("Two"), [] { Down(), Up(); }});
  EXPECT_EQ(Came(), "793 793 793 794:302");
  // A colour item of the bar gives its colour.
  User({Move("File"), Down, Move(" "), Up});
  EXPECT_EQ(Came(), "793 794:255");
  // The press that dismisses is swallowed, with its release.
  User({Move("File"), [] { Down(), Up(); }, [] { input::Click(350, 280); }});
  EXPECT_EQ(Came(), "793");
  EXPECT_FALSE(Shown("Print"));
  input::Click(350, 280);
  RunLoop();
  EXPECT_EQ(Came(), "771 776");
}

TEST(Menus, TheWayToASubMenuIsNotCut) {
  Menus m;
  User({Move("File"), [] { Down(), Up(); }, Move("Sort"),
        [] {
          // Over the row below, towards the sub-menu.
          const Rect row = Item("Again").bounds, sub = Item("By size").bounds;
          input::MovePointer(row.right - 20, row.top + 3);
          EXPECT_GT(sub.left, row.left);
        },
        [] { EXPECT_TRUE(Shown("By size")); }, [] {}, [] {}, [] {},
        [] { EXPECT_FALSE(Shown("By size")) << "one that rests there closes it"; },
        Key(kEscape, 27)});
}

TEST(Menus, ByTheKeyboardAlone) {
  Menus m;
  const auto check = [](const char* name) {
    return [name] { EXPECT_TRUE(Item(name).state & kIsFocused) << name; };
  };
  // F10 opens the application's menu; Right goes on; what opened it is delivered after 793.
  User({Key(kF10), Key(kRight), check("Open..."), Key(kUp), check(" "), Key(kDown), Key(kEnd),
        Key(kUp), check("Sort"), Key(kRight), check("By name"), Key(kLeft), check("Sort"),
        Key(kRight), Key(kDown), check("By size"), Key(kReturn, 13)});
  EXPECT_EQ(Came(), "793 793 793 265 800 794:202");
  User({Key(kF10), Key(kLeft), check("Cut"), Key(kDown), Key(' ', ' ')});
  EXPECT_EQ(Came(), "793 265 800 794:402");
  SetPreferencesCommand(false);
  User({Key(kF10), check("Open..."), Key(kLeft), check("Quit"), Key(kEscape, 27)});
  SetPreferencesCommand(true);
  // First letters; Escape closes one level after the other.
  User({Key('f', 'f', optionKey), Key('p', 'p'), check("Print"), Key('s', 's'), Key(kReturn, 13),
        check("By name"), Key(kEscape, 27), check("Sort"), Key(kEscape, 27),
        [] { EXPECT_FALSE(Shown("Sort")); }});
  // The letters of titles and buttons show until a menu has been chosen by one.
  XwWindow* button = XwButton(m.main, "Hold", 1, 40, 200, 80, 20, XWC_ENABLED | XWC_VISIBLE, 0);
  const auto underlined = [button] {
    return ShowsLetter(BarTitles()[1].menu) + static_cast<Control*>(button->platform)->underlined;
  };
  User({[] { input::Modifiers(optionKey); }, [&] { EXPECT_EQ(underlined(), 2); },
        [] { input::KeyDown('f', 'f'), input::KeyUp('f', 'f'); }, check("Open..."),
        [] { input::Modifiers(0); }, Key(kEscape, 27)});
  EXPECT_EQ(underlined(), 0);
  // A menu of the program's own comes before the one of its name with the same letter.
  XwMenuItem shared[2] = {{"Sheets", 0, reinterpret_cast<XwValue>(m.edit), nullptr}, {}};
  XwSetMenu(m.main, shared);
  User({Key('s', 's', optionKey), check("Cut"), Key(kEscape, 27)});
  XwSetMenu(m.main, m.bar), XwDestroy(button);
  EXPECT_TRUE(KeyState['p'] == 0 && Came().find("794") == std::string::npos);
  // A lone Alt, and Alts that are not alone.
  const auto alt = [](std::function<void()> between) {
    input::Modifiers(optionKey);
    if (between) between();
    input::Modifiers(0);
  };
  User({[&] { alt(nullptr); }, [] { EXPECT_TRUE(Shown("Quit")); }, Key(kEscape, 27)});
  for (std::function<void()> between : {std::function<void()>([] { Key('x', 'x')(); }),
                                        {[] { input::Click(350, 280); }},
                                        {[] { input::Scroll(0, 3); }},
                                        {[] { input::Modifiers(optionKey | shiftKey); }}})
    User({[&] { alt(between); }, [] { EXPECT_FALSE(Shown("Quit")); }});
  // That of Alt+Tab was held before the window got the keyboard.
  RawEvent raw;
  raw.type = RawEvent::kModifiers, raw.modifiers = optionKey, raw.held = 1;
  raw.window = static_cast<WindowRef>(W_Start->platform);
  User({[&] { TranslateRawEvent(raw), input::Modifiers(0); }, [] { EXPECT_FALSE(Shown("Quit")); }});
  // What is held while a menu is open is held after it.
  User({[&] { alt(nullptr); }, [] { input::Modifiers(shiftKey); }, Key(kEscape, 27)});
  EXPECT_EQ(HeldModifiers(), uint32_t{shiftKey});
  input::Modifiers(0);
}

TEST(Menus, KeysOfItems) {
  Menus m;
  XwSetMenuItemKey(m.file, 101, 'O', XWS_CONTROL);
  XwSetMenuItemKey(m.file, 301, XWE_F1 + 4, XWS_CAPS);
  XwSetMenuItemKey(m.file, 104, 'r', XWS_CONTROL);
  XwSetMenuItemKey(m.file, 105, 's', XWS_CONTROL);
  EXPECT_EQ(Item("Open...").value, "Ctrl+O");
  EXPECT_EQ(Item("One").value, "F5");
  EXPECT_EQ(Item("Quit").value, "Ctrl+Q");
  const struct {
    uint32_t keysym, unicode, modifiers;
    const char* came;
  } rows[] = {{'o', 'o', controlKey, "777 793 111 800 777 794:101"},
              {'o', 'o', controlKey | alphaLock, "777 793 111 800 777 794:101"},
              {'o', 'o', controlKey | shiftKey, "777 111 800 777"},
              {0xFFC2, 0, 0, "793 260 800 794:301"},
              {'r', 'r', controlKey, "777 793 114 800 777"},
              {'s', 's', controlKey, "777 793 115 800 777"},
              {'q', 'q', controlKey, "777 113 800 777 796"}};
  for (const auto& row : rows) {
    Key(row.keysym, row.unicode, row.modifiers)();
    RunLoop();
    EXPECT_EQ(Came(), row.came) << row.keysym;
  }
  // Keys stand in a lighter ink than texts.
  User({Move("File"), [] { Down(), Up(); },
        [] {
          const Rect row = Item("Open...").bounds;
          const auto* w =
              *std::find_if(WindowList().begin(), WindowList().end(),
                            [](WindowRef each) { return each->parent && each->visible; });
          const input::Picture p = input::TakePicture(const_cast<WindowRef>(w));
          uint32_t darkest[2] = {255, 255};  // of the text and of the key, the red parts
          for (int y = row.top + 2; y < row.bottom - 2; ++y)
            for (int x = row.left + 8; x < row.right - 8; ++x) {
              uint32_t& d = darkest[x > row.right - 50];
              const int at = (y - w->content.top) * p.width + x - w->content.left;
              d = std::min(d, p.pixels[size_t(at)] >> 16 & 0xFF);
            }
          EXPECT_GT(darkest[1], darkest[0] + 30);
          EXPECT_LT(darkest[1], 200u);
        },
        Key(kEscape, 27)});
  EXPECT_EQ(Came(), "793 800");
  // The program may take Control+Q, and give keys up.
  XwSetMenuItemKey(m.edit, 402, 'q', XWS_CONTROL);
  XwSetMenuItemKey(m.file, 101, 0, 0);
  EXPECT_EQ(Item("Quit").value, "");
  EXPECT_EQ(Item("Open...").value, "");
  Key('q', 'q', controlKey)();
  RunLoop();
  EXPECT_EQ(Came(), "777 793 113 800 777 794:402");
  // 793 may change the menu before the key is looked up.
  static int enable;
  on_event = [](int type) {
    if (type == XWE_MENU_OPENING)
      XwEnableMenuItem(reinterpret_cast<XwMenuItem*>(Inp.value), 402, enable);
  };
  for (enable = 0; enable < 2; ++enable) {
    Key('q', 'q', controlKey)();
    RunLoop();
    EXPECT_EQ(Came(), enable ? "777 793 113 800 777 794:402" : "777 793 113 800 777");
  }
  XwChangeMenuItemFlags(m.bar, 402, 0);
  m.bar[1].flags = XWM_DISABLED;
  Key('q', 'q', controlKey)();
  RunLoop();
  EXPECT_EQ(Came(), "777 113 800 777") << "a greyed menu hears nothing";
}

TEST(Menus, PopUps) {
  Menus m;
  static Menus* menus;
  menus = &m;
  static int result;
  on_event = [](int type) {
    if (type == XWE_PRESS) result = XwPopupMenu(menus->file);
  };
  const auto open = [] {
    input::MovePointer(150, 130);
    Down();
  };
  User({open, Move("Print"), Up});
  EXPECT_EQ(result, 102);
  User({open, [] { Up(); }, [] { EXPECT_TRUE(Shown("Print")) << "a quick release keeps it open"; },
        Move(" "), [] { Down(), Up(); }});
  EXPECT_EQ(result, -7);
  User({open,
        [] {
          Move("Print")();
          Up();
        },
        [] { EXPECT_TRUE(Shown("Print")) << "also over an item"; }, Key(kEscape, 27)});
  EXPECT_EQ(result, 0);
  User({open,
        [] {
          input::MovePointer(390, 290);
          Up();
        },
        [] { EXPECT_TRUE(Shown("Print")) << "and beside it"; }, Key(kEscape, 27)});
  User({open, Up, Move("Sort"), Move("Deeper"), Move("Two"), [] { Down(), Up(); }});
  EXPECT_EQ(result, 302);
  EXPECT_EQ(m.file[0].flags & XWM_BUILT, XWM_BUILT) << "that of the bar";
  EXPECT_EQ(MenuListCount + MenuColorCount, 0);
  // One that is opened as another is about to open takes its place.
  const auto press = on_event;
  on_event = [](int type) {
    if (type != XWE_MENU_OPENING) return;
    on_event = nullptr;
    XwPopupMenu(menus->sort);
  };
  User({Move("File"), [] { Down(), Up(); }, [] { EXPECT_TRUE(Shown("By size")); }, Key(kEscape, 27),
        [] { EXPECT_FALSE(Shown("Print")); }});
  on_event = press;
  // A letter goes on to the next item that it begins.
  on_event = [](int type) {
    if (type == XWE_PRESS) result = XwPopupMenu(menus->sort);
  };
  User({open, Up, Key('b', 'b'), Key('b', 'b'), Key(kReturn, 13)});
  EXPECT_EQ(result, 202);
  // One that a key opens begins at the checked item.
  XwCheckMenuRadioItem(m.sort, 201, 202, 202);
  on_event = [](int type) {
    if (type == XWE_PRESS) result = XwPopupMenuByKey(menus->sort);
  };
  User({open, Up, Key(kReturn, 13)});
  EXPECT_EQ(result, 202);
  // Letters that follow at once go on with it, and so does a space.
  on_event = [](int type) {
    static const char* const names[] = {"Desk 1", "Desk 10", "Desk 12", "Tray", nullptr};
    if (type == XWE_PRESS) result = XwPopupList(names, 0);
  };
  User({open, Up, Key('d', 'd'), Key('e', 'e'), Key('s', 's'), Key('k', 'k'), Key(' ', ' '),
        Key('1', '1'), Key('2', '2'), Key(kReturn, 13)});
  EXPECT_EQ(result, 2);
  on_event = press;
  // It is closed by what takes the pointer or the window away, and by requests, which follow.
  const std::function<void()> ends[] = {Key(kEscape, 27), [] { input::Quit(); },
                                        [] { input::Close(Native(W_Start)); },
                                        [] { input::Focus(nullptr); },
                                        [] {
                                          RawEvent lost;
                                          lost.type = RawEvent::kGrabLost;
                                          input::Inject(lost);
                                        }};
  for (const auto& end : ends) {
    result = 77;
    input::Focus(Native(m.main));
    User({open, Up, end});
    EXPECT_EQ(result, 0);
    EXPECT_EQ(input::PointerGrab(), nullptr);
    EXPECT_EQ(Inp.state & XWS_BUTTONS, 0u);
    EXPECT_EQ(XwPointerIsGrabbed(), nullptr);
    input::Focus(Native(m.main));
  }
  EXPECT_NE(Came().find("796"), std::string::npos);
  EXPECT_EQ(XwPopupMenu(nullptr), 0);
  EXPECT_EQ(XwPopupMenu(m.none), 0);

  on_event = [](int type) {
    static const char* const names[] = {"first", "", "third", nullptr};
    if (type == XWE_PRESS) result = XwPopupList(names, 2);
  };
  User({open, Up, [] { EXPECT_TRUE(Item("third").state & kIsChecked); }, Move("first"),
        [] { Down(), Up(); }});
  EXPECT_EQ(result, 0);
  User({open, Up, Key(kEscape, 27)});
  EXPECT_EQ(result, -1);
  EXPECT_EQ(XwPopupLocation(m.main, 5, 6)->root_x, 105);
}

TEST(Menus, ItemsByTheirIds) {
  Menus m;
  std::vector<Description> nameless;
  Collect(DescribeTree(), "", &nameless);
  const auto lines = std::count_if(nameless.begin(), nameless.end(), [](const Description& d) {
    return d.role == ObjectRole::kSeparator;
  });
  EXPECT_EQ(lines, 2) << "of the application's menu and of the first";

  XwEnableMenuItem(m.file, 302, 0);
  EXPECT_EQ(m.deep[1].flags, XWM_DISABLED);
  EXPECT_FALSE(Item("Two").state & kIsEnabled);
  XwEnableMenuItem(m.file, reinterpret_cast<XwValue>(m.sort), 0);
  EXPECT_FALSE(Item("By size").state & kIsEnabled) << "the whole sub-menu";
  EXPECT_FALSE(Item("Sort").state & kIsEnabled);
  User({Key('f', 'f', optionKey), Key('s', 's'), Key(kRight), Move("Sort"),
        [] { EXPECT_FALSE(Shown("By size")); }, Key(kEscape, 27)});
  XwEnableMenuItem(m.file, reinterpret_cast<XwValue>(m.sort), 1);
  XwChangeMenuItemText(m.file, 101, "Load");
  EXPECT_TRUE(Item("Load").state & kIsEnabled) << "without dots";
  XwChangeMenuItemFlags(m.file, 101, XWM_CHECKED | XWM_DISABLED);
  EXPECT_EQ(m.file[0].flags, XWM_CHECKED | XWM_DISABLED | XWM_BUILT);
  EXPECT_TRUE(Item("Load").state & kIsChecked);
  XwChangeMenuItemFlags(m.file, 105, 0);
  EXPECT_TRUE(Item("Secret").state & kIsEnabled);
  XwCheckMenuItem(m.file, 101, 0);
  EXPECT_EQ(XwGetMenuItemState(m.file, 101), 0);
  EXPECT_EQ(XwGetMenuRadioItem(m.sort, 0, 0), 201);
  XwCheckMenuRadioItem(m.file, 201, 202, 202);
  EXPECT_EQ(XwGetMenuRadioItem(m.file, 201, 202), 202);
  EXPECT_TRUE(Item("By size").state & kIsChecked);
  EXPECT_FALSE(Item("By name").state & kIsChecked);
  char text[40];
  EXPECT_STREQ(XwGetMenuItemText(m.file, 202, text), "By size");
  EXPECT_EQ(XwGetMenuItemText(m.file, 999, text), nullptr);
  EXPECT_STREQ(text, "");
  m.deep[1].id = 65535;
  EXPECT_EQ(XwGetMenuItemText(m.file, 65535, text), nullptr) << "not below the array";
  EXPECT_STREQ(XwGetMenuItemText(m.deep, 65535, text), "Two");
  // An array inside itself, and one whose menu has ended.
  XwMenuItem loop[3] = {{"again", 0, 0, nullptr}, {"x", XWM_UTF8, 5, nullptr}, {}};
  loop[0].id = reinterpret_cast<XwValue>(loop);
  loop[1].text = "\xC3\x89tage";
  XwMenuItem other[2] = {{"Loop", 0, reinterpret_cast<XwValue>(loop), nullptr}, {}};
  XwSetMenu(m.main, other);
  EXPECT_TRUE(Item("\xC3\x89tage").state & kIsEnabled);
  EXPECT_EQ(XwGetMenuItemState(loop, 6), 0);
  EXPECT_FALSE(Item("again").state & kIsEnabled) << "an address is never chosen";
  // Each array twice in the one before it: looked through once, to a depth, and described up to a
  // number of items.
  std::vector<XwMenuItem> twice(3 * kDeepestMenu + 6);
  for (size_t i = 0; 3 * i + 3 < twice.size(); ++i)
    twice[3 * i] =
        twice[3 * i + 1] = {"sub", 0, reinterpret_cast<XwValue>(&twice[3 * i + 3]), nullptr};
  XwMenuItem *deepest = &twice[3 * kDeepestMenu - 3], *deeper = deepest + 3;
  deepest[1] = {"deepest", 0, 7, nullptr};
  deeper[0] = {"deeper", 0, 8, nullptr};
  other[0].id = reinterpret_cast<XwValue>(twice.data());
  XwSetMenu(m.main, other);
  EXPECT_EQ(deepest->flags, XWM_BUILT);
  EXPECT_EQ(deeper->flags, 0);
  XwCheckMenuItem(twice.data(), 7, 1);
  EXPECT_EQ(deepest[1].flags, XWM_CHECKED);
  XwCheckMenuItem(twice.data(), 8, 1);
  EXPECT_EQ(deeper->flags, 0);
  std::vector<Description> subs;
  Collect(DescribeTree(), "sub", &subs);
  EXPECT_GT(subs.size(), size_t{kMostDescribedItems / 2});
  XwSetMenu(m.main, m.bar);
  EXPECT_FALSE(Item("Load").name.empty()) << "what was built stays";
  // An open menu looks as if it had just been opened.
  static Menus* menus;
  menus = &m;
  std::vector<uint32_t> pictures[2];
  auto look = [&](int which) {
    for (WindowRef w : WindowList())
      if (w->parent && w->visible) pictures[which] = input::TakePicture(w).pixels;
  };
  User({Move("File"), [] { Down(), Up(); },
        [] {
          XwChangeMenuItemFlags(menus->file, 104, XWM_HIDDEN);
          XwChangeMenuItemText(menus->file, 102, "Print on paper of every size");
        },
        [&] { look(0); }, Key(kEscape, 27), [] { Down(), Up(); }, [&] { look(1); },
        Key(kEscape, 27)});
  EXPECT_GT(pictures[0].size(), 0u);
  EXPECT_EQ(pictures[0], pictures[1]);
  // One that is made again closes the one that is open.
  User({Move("File"), [] { Down(), Up(); },
        [] {
          EXPECT_TRUE(Shown("Load"));
          menus->file[0].flags = 0;
          XwSetMenu(menus->main, menus->bar);
        },
        [] { EXPECT_FALSE(MenusAreOpen()); }});
}

TEST(Menus, TooMany) {
  Menus m;
  std::vector<XwMenuItem> many;
  std::vector<std::string> names;
  for (int i = 0; i < 200; ++i) names.push_back("Item " + std::to_string(i));
  for (int i = 0; i < 200; ++i) many.push_back({names[size_t(i)].c_str(), 0, 1000 + i, nullptr});
  many.push_back({});
  static std::vector<XwMenuItem>* items;
  items = &many;
  static int result;
  on_event = [](int type) {
    if (type == XWE_PRESS) result = XwPopupMenu(items->data());
  };
  User({[] { input::MovePointer(150, 130), Down(); }, Up,
        [] { EXPECT_FALSE(Shown("Item 150")) << "longer than the screen"; }, Key(kUp),
        [] {
          EXPECT_TRUE(Shown("Item 199"));
          input::MovePointer(170, 500);
          input::Scroll(0, -100000);
        },
        [] {
          EXPECT_TRUE(Shown("Item 0"));
          input::Scroll(0, 100000);
        },
        [] {
          EXPECT_TRUE(Shown("Item 199"));
          EXPECT_EQ(Item("Item 199").bounds.height(), Item("Item 198").bounds.height());
          for (int id = 1000; id < 1190; ++id) XwChangeMenuItemFlags(items->data(), id, XWM_HIDDEN);
        },
        [] { EXPECT_TRUE(Shown("Item 190")) << "what is left needs no scrolling"; }, Key(kEnd),
        Key(kReturn, 13)});
  EXPECT_EQ(result, 1199);
  // A bar too narrow for its titles.
  std::vector<XwMenuItem> titles;
  for (int i = 0; i < 12; ++i)
    titles.push_back({names[size_t(i)].c_str(), 0, reinterpret_cast<XwValue>(m.edit), nullptr});
  std::vector<XwMenuItem> own(24);
  for (int i = 0; i < 12; ++i) {
    own[size_t(2 * i)] = {"entry", 0, 600 + i, nullptr};
    titles[size_t(i)].id = reinterpret_cast<XwValue>(&own[size_t(2 * i)]);
  }
  titles.push_back({});
  on_event = nullptr;
  XwSetMenu(m.main, titles.data());
  Settle();
  User({Move("\xC2\xBB"), [] { Down(), Up(); }, [] { EXPECT_TRUE(Shown("Item 11")); }, Key(kUp),
        Key(kRight), Key(kReturn, 13)});
  EXPECT_NE(Came().find("794:611"), std::string::npos);
}

// The tree's own way to choose: what a click could.
TEST(Menus, ThroughTheTree) {
  Menus m;
  for (const char* name : {"Two", "Quit", "Sort", "Again", "File"}) {
    const bool leaf = *name == 'T' || *name == 'Q';
    EXPECT_EQ(Item(name).actions, leaf ? kActionPress : 0u) << name;
    EXPECT_EQ(ActOn(Node(name).serial, kActionPress), leaf) << name;
  }
  const uint64_t print = Node("Print").serial;
  XwEnableMenuItem(m.file, reinterpret_cast<XwValue>(m.sort), 0);
  EXPECT_FALSE(ActOn(Node("Two").serial, kActionPress)) << "nobody gets there";
  RunLoop();
  EXPECT_EQ(Came(), "794:302 796");
  User({Move("Edit"), [] { Down(), Up(); },
        [&] {
          EXPECT_FALSE(ActOn(print, kActionPress)) << "another menu is open";
          EXPECT_TRUE(ActOn(Node("Copy").serial, kActionPress));
        },
        [] { EXPECT_FALSE(MenusAreOpen()); }});
  EXPECT_EQ(Came(), "793 794:402");
}

TEST(Menus, AWaitForAnotherWindow) {
  Menus m;
  XwWindow* other = Top("other", 500, 100, 100, 100);
  input::Focus(Native(m.main));
  RunLoop();
  const int beeps = input::Counts().beeps;
  Move("File")(), Down(), Up();
  while (RunLoop(other)) {
  }
  EXPECT_EQ(input::Counts().beeps, beeps + 1);
  EXPECT_FALSE(Shown("Print"));
  XwSetMenuItemKey(m.file, 102, 'p', XWS_CONTROL);
  seen.clear();
  for (auto key : {Key(kF10), Key('p', 'p', controlKey), Key('f', 'f', optionKey)}) {
    key();
    while (RunLoop(other)) {
    }
  }
  EXPECT_EQ(Came(), "");
  // XwGetEvent opens none either.
  Key(kF10)();
  do input::Step(1);
  while (XwGetEvent(nullptr, 0));
  EXPECT_FALSE(Shown("Quit"));
}

}  // namespace

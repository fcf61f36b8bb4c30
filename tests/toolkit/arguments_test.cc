// Every function of the public header with null, negative, huge, stale and wrong-kind arguments.
// The list is compared with the header, so that none is missing.
#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>
#include <random>
#include <set>
#include <sstream>
#include <tuple>

#include "platform/access/access.h"
#include "tests/toolkit/stage.h"
#include "toolkit/core/alive.h"
#include "toolkit/core/state.h"
#include "toolkit/windows/menus.h"

namespace {

using namespace stage;

std::mt19937 rng(5);
template <typename T, size_t N>
T Pick(const T (&values)[N]) {
  return values[rng() % N];
}

// Descriptions are kept.
platform::TreeListener listener = {[](void*, uint64_t, platform::Change) {}, nullptr};

struct Props {
  XwWindow *main, *other, *sub, *docked, *stale;
} props;

// What calls have destroyed is made again; what they have made goes.
void Repair() {
  while (XStackCount > 0) XwPop();
  XwSet(nullptr);
  XwUngrabPointer();
  if (!IsLive(props.other)) props.other = XwCreate(0, 400, 100, 120, 90, Record);
  if (!IsLive(props.sub)) props.sub = XwCreate(props.other, 5, 5, 50, 50, Record);
  if (!IsLive(props.docked)) props.docked = XwCreateDocked(props.other, 5, 5, 50, 50, nullptr);
  for (XwWindow* w = W_End; w && w != W_Start;) {
    XwWindow* before = w->previous;
    if (w != props.main && w != props.other && w != props.sub && w != props.docked &&
        !IsSubWindow(w, props.sub)) {
      XwDestroy(w);
      before = W_End;
      if (before == props.main || before == props.other || before == props.sub ||
          before == props.docked)
        before = nullptr;
    }
    w = before;
  }
  stage::input::Step(0.03);
}

template <typename T>
T Hostile();
template <>
XwWindow* Hostile() {
  XwWindow* const values[] = {
      nullptr,      props.main,  props.other, props.sub,
      props.docked, props.stale, W_Root,      reinterpret_cast<XwWindow*>(-1)};
  return Pick(values);
}
template <>
int32_t Hostile() {
  return Pick<int>({0, 1, -1, 2, 7, 100, 255, 256, 32767, 32768, -32769, 65536, INT_MAX, INT_MIN});
}
template <>
uint32_t Hostile() {
  return uint32_t(rng());
}
template <>
XwValue Hostile() {
  if (rng() % 2) return Hostile<int32_t>();
  return rng() % 3 ? reinterpret_cast<XwValue>(Hostile<XwWindow*>())
                   : Pick<XwValue>({INTPTR_MIN, INTPTR_MAX, -256, -1, -257});
}
template <>
uint16_t Hostile() {
  return uint16_t(Hostile<int32_t>());
}
template <>
int* Hostile() {
  static int number;
  return rng() % 2 ? &number : nullptr;
}
template <>
const char* Hostile() {
  static const std::string longest(70000, 'x'), high = [] {
    std::string s;
    for (int c = 1; c < 256; ++c) s.push_back(char(c));
    return s;
  }();
  const char* const values[] = {nullptr, "", "a", longest.c_str(), high.c_str(), "-*-*-*", "%s%n"};
  return Pick(values);
}
template <>
const uint8_t* Hostile() {  // zero-terminated, and long enough for any length byte
  static uint8_t full[300], empty[300], some[300] = {3, 1, 200};
  memset(full, 255, 299);
  const uint8_t* const values[] = {nullptr, full, empty, some};
  return Pick(values);
}
template <>
char* Hostile() {
  static char room[1 << 18];  // for the longest text, whatever size is given
  return rng() % 4 ? room : nullptr;
}
template <>
uint32_t* Hostile() {
  static uint32_t room;
  return rng() % 2 ? &room : nullptr;
}
template <>
const int32_t* Hostile() {  // a colour; widths that end with 0
  static const int32_t values[][4] = {{-2, 5, -7, 0}, {INT_MAX, INT_MAX, 1, 0}, {0}, {20, 30, 0}};
  return rng() % 5 ? values[rng() % 4] : nullptr;
}
template <>
XwFont* Hostile() {
  return rng() % 3 ? XWF_NORMAL : nullptr;
}
template <>
XwHandler Hostile() {
  return rng() % 2 ? Record : nullptr;
}
template <>
XwScrollHandler Hostile() {
  return nullptr;
}
template <>
XwActivationHandler Hostile() {
  return nullptr;
}
template <>
XwContextMenuHandler Hostile() {
  return nullptr;
}
template <>
const uint32_t* Hostile() {  // the largest icon
  static const std::vector<uint32_t> pixels(256 * 256, 0x80FFFFFF);
  return rng() % 3 ? pixels.data() : nullptr;
}
template <>
XwIcon* Hostile() {
  static const uint8_t bits[8] = {};
  static XwIcon odd[] = {{0, 5, nullptr, bits},
                         {-1, INT_MIN, nullptr, bits},
                         {40000, 1, nullptr, bits},
                         {8, 8, nullptr, nullptr}};
  XwIcon* const values[] = {nullptr, IC_ARROWS, IC_CHECKBOX, &odd[0], &odd[1], &odd[2], &odd[3]};
  return Pick(values);
}

template <typename R, typename... A>
void Once(R (*function)(A...)) {
  std::tuple<A...> arguments{Hostile<A>()...};
  std::apply(function, arguments);
}
void Conversions() {
  static char room[1024];
  for (int i = 0; i < 120; ++i) {
    const int size = Pick<int>({0, 1, -1, 2, 7, int(sizeof room), INT_MIN});
    XwFromUtf8(Hostile<const char*>(), rng() % 5 ? room : nullptr, size);
    XwToUtf8(Hostile<const char*>(), rng() % 5 ? room : nullptr, size);
    XwTextTrimUtf8(nullptr, Hostile<const char*>(), Hostile<int>(), room, std::max(size, 0));
    XwTextFitUtf8(nullptr, Hostile<const char*>(), Hostile<int>(), rng() % 5 ? room : nullptr,
                  size);
  }
}
template <auto function>
void Often() {
  for (int i = 0; i < 120; ++i) {
    if (rng() % 2) XwSet(Hostile<XwWindow*>());
    Once(function);
    Repair();
  }
}

// Waits return: an event that nobody handles waits for them.
template <auto function>
void Waiting() {
  for (int i = 0; i < 40; ++i) {
    XwWindow* silent = XwCreate(props.other, 0, 0, 5, 5, nullptr);
    XwSendEvent(silent, 1000, 0, 0, 0);
    Once(function);
    Repair();
  }
}

void Images() {
  for (int i = 0; i < 200; ++i) {
    uint8_t* image = XwAllocImage(Hostile<int32_t>(), Hostile<int32_t>());
    XwSet(props.other);
    XwPutImage(Hostile<int32_t>(), Hostile<int32_t>(), Hostile<int32_t>(), Hostile<int32_t>(),
               Hostile<int32_t>(), Hostile<int32_t>(), image);
    image = XwReallocImage(image, Hostile<int32_t>(), Hostile<int32_t>());
    XwFreeImage(image);
    Repair();
  }
}

void GetClipboard() {
  for (int i = 0; i < 60; ++i) {
    if (rng() % 3 == 0) stage::input::OfferText(platform::Selection::kClipboard, "another's");
    free(XwGetClipboard(Hostile<int32_t>()));
    XwSetClipboard(Hostile<const char*>());
    Repair();
  }
}

void ImageData() {
  static uint8_t pixels[4 * 64 * 64];
  for (int i = 0; i < 100; ++i) {
    XwSet(Hostile<XwWindow*>());
    XwPutImageData(Hostile<int32_t>(), Hostile<int32_t>(), Hostile<int32_t>(), Hostile<int32_t>(),
                   nullptr);
    XwPutImageData(Hostile<int32_t>(), Hostile<int32_t>(), int(rng() % 70) - 5, int(rng() % 64),
                   pixels);
    XwPutImageScaled(Hostile<int32_t>(), Hostile<int32_t>(), Hostile<int32_t>(), Hostile<int32_t>(),
                     pixels, int(rng() % 70) - 5, int(rng() % 64));
    Repair();
  }
}

template <auto function>
void Points() {
  static int16_t points[2 * 50];
  for (int i = 0; i < 100; ++i) {
    for (int16_t& p : points) p = int16_t(Hostile<int32_t>());
    XwSet(Hostile<XwWindow*>());
    function(points, Pick<int>({50, 3, 2, 1, 0, -1, INT_MIN}));
    function(nullptr, Hostile<int32_t>());
    Repair();
  }
}

// Each kind with each style, and what the user does to it.
void Controls() {
  for (int i = 0; i < 400; ++i) {
    XwWindow* parent = Hostile<XwWindow*>();
    const uint32_t style = uint32_t(Hostile<int32_t>()) ^ uint32_t(rng());
    const int x = Hostile<int32_t>(), y = Hostile<int32_t>(), w = Hostile<int32_t>(),
              h = Hostile<int32_t>();
    const char* text = Hostile<const char*>();
    const bool icon = style & XWC_ICON;
    if (icon) text = reinterpret_cast<const char*>(Hostile<XwIcon*>());
    XwWindow* made[] = {
        XwButton(parent, text, Hostile<int32_t>(), x, y, w, h, style & ~uint32_t{XWC_MENU},
                 Hostile<XwValue>()),
        XwLabel(parent, text, Hostile<int32_t>(), x, y, w, h, style),
        XwCheckBox(parent, Hostile<const char*>(), 1, x, y, style, Hostile<int32_t>()),
        XwColor(parent, Hostile<const char*>(), 1, x, y, w, h, style, Hostile<int32_t>()),
        XwSlider(parent, 1, x, y, w, h, style, Hostile<int32_t>(), Hostile<int32_t>(), x),
        XwScrollBar(parent, 1, x, y, w, h, style, Hostile<int32_t>(), Hostile<int32_t>(),
                    Hostile<int32_t>(), Hostile<int32_t>(), x)};
    for (XwWindow* c : made) {
      XwMove(c, Hostile<int32_t>(), Hostile<int32_t>(), Hostile<int32_t>(), Hostile<int32_t>());
      XwShow(c, int(rng() % 2));
      XwSetValue(c, Hostile<XwValue>());
      XwFocusControl(c);
      XwSetDefaultButtons(parent, c, Hostile<XwWindow*>());
      if (c && rng() % 2) XwSetText(c, Hostile<const char*>());
      if (c) XwDescribeControl(c, Hostile<const char*>());
    }
    if (rng() % 8 == 0) stage::input::Click(int(rng() % 600), int(rng() % 400), 1 + int(rng() % 5));
    if (rng() % 8 == 0)
      stage::input::KeyDown(
          Pick<uint32_t>({' ', 0xFF09, 0xFF0D, 0xFF1B, 0xFF50, 0xFF52, 0xFF53, 0xFF55, 0xFF57}),
          ' ');
    if (rng() % 8 == 0) stage::input::Scroll(float(x), float(y));
    const XwDialogItem items[] = {
        {Pick<uint8_t>({1, 2, 3, 5, 6, 7, 8, 200}), nullptr, 5, int16_t(x), int16_t(y), int16_t(w),
         int16_t(h), style & ~uint32_t{XWC_MENU | XWC_ICON}, Hostile<XwValue>(), Hostile<int32_t>(),
         Hostile<int32_t>(), Hostile<int32_t>(), Hostile<int32_t>()},
        {}};
    XwCreateDialogItems(parent, rng() % 5 ? items : nullptr, x, y);
    Repair();
  }
}

// Any bits but those that say what the id points at; sub-menus, also into themselves.
void Menus() {
  static XwMenuItem arrays[4][6];
  static char text[70001];
  static const char* const lists[] = {"", "a", "%s", nullptr};
  for (int i = 0; i < 60; ++i) {
    for (auto& array : arrays) {
      const int n = int(rng() % 6);
      for (int k = 0; k < 6; ++k) {
        const char* name = Hostile<const char*>();
        const int32_t flags = Hostile<int32_t>() & ~XWM_BUILT;
        const bool sub = rng() % 3 == 0 && !(flags & XWM_COLOUR);
        array[k] = {k < n ? (name ? name : "x") : nullptr, flags,
                    sub ? reinterpret_cast<XwValue>(arrays[rng() % 4])
                        : XwValue(Hostile<int32_t>() & 0xFFFF),
                    Pick<void*>({nullptr, &arrays, props.main})};
      }
    }
    XwMenuItem bar[5] = {};
    const int titles = int(rng() % 5);
    for (int k = 0; k < titles; ++k)
      bar[k] = {Hostile<const char*>(), Hostile<int32_t>() & ~XWM_BUILT,
                rng() % 5 ? reinterpret_cast<XwValue>(arrays[k]) : 0, nullptr};
    XwSetMenu(Hostile<XwWindow*>(), rng() % 5 ? bar : nullptr);
    XwSetMenu(props.main, bar);
    XwMenuItem* items = rng() % 6 ? arrays[rng() % 4] : nullptr;
    const XwValue id = rng() % 2 ? arrays[0][0].id : Hostile<XwValue>();
    XwEnableMenuItem(items, id, int(rng() % 2));
    XwCheckMenuItem(items, id, int(rng() % 2));
    XwChangeMenuItemText(items, id, Hostile<const char*>());
    XwChangeMenuItemFlags(items, id, Hostile<int32_t>() & ~(XWM_COLOUR | XWM_BUILT));
    XwCheckMenuRadioItem(items, Hostile<int32_t>(), id, id);
    XwGetMenuRadioItem(items, Hostile<int32_t>(), id);
    XwGetMenuItemState(items, id);
    XwGetMenuItemText(items, id, rng() % 4 ? text : nullptr);
    XwSetMenuItemKey(items, int32_t(id), Hostile<int32_t>(), uint32_t(Hostile<int32_t>()));
    XwPopupLocation(Hostile<XwWindow*>(), Hostile<int32_t>(), Hostile<int32_t>());
    XwPopupMenu(items);
    XwPopupList(rng() % 5 ? lists : nullptr, Hostile<int32_t>());
    stage::input::Click(int(rng() % 600), int(rng() % 120));
    stage::input::KeyDown(0xFFC7);
    stage::input::KeyUp(0xFFC7);
    stage::RunLoop();
    XwSetMenu(props.main, nullptr);
    Repair();
  }
  DropMenus();
}

void Outlines() {
  static const uint8_t bits[32] = {};
  for (int i = 0; i < 100; ++i) {
    XwIcon icon = {16, 16, nullptr, bits};
    XwPathPart parts[5];
    for (XwPathPart& p : parts) {
      auto number = [] { return Pick<float>({0, 3.5f, -7, 16, 1e9f, NAN, INFINITY, 16384}); };
      p = {uint8_t(rng() % 6), number(), number(), number(), number(), number(), number()};
    }
    XwSet(Hostile<XwWindow*>());
    const XwPathPart* path = rng() % 9 ? parts : nullptr;
    XwFillPath(path, Pick<int>({5, 3, 0, INT_MIN}), Hostile<int32_t>());
    XwStrokePath(path, Pick<int>({5, 1, 0, INT_MIN}), Pick<float>({2.5f, 1e-9f, 16384, NAN, -1}),
                 Hostile<int32_t>());
    XwSetIconOutline(rng() % 9 ? &icon : nullptr, rng() % 9 ? parts : nullptr, int(rng() % 6) - 1);
    if (XwWindow* b = XwButton(props.other, &icon, 1, 0, 0, 20, 20, XWC_ICON | XWC_VISIBLE, 0))
      XwDestroy(b);
    Repair();
  }
}

void Toolbars() {  // any words; texts where the type wants some
  static const char* const texts[] = {"a", "", "9,1,99999999999999999999", nullptr};
  for (int i = 0; i < 60; ++i) {
    static XwToolbarItem items[9];
    for (XwToolbarItem& item : items) {
      const auto type = uint32_t(rng() % 16);
      const void* data = texts[rng() % 4];
      if (type == 2 || type == 3) data = texts;
      if (type == 6) data = rng() % 2 ? IC_ARROWS : nullptr;
      item = {type << 24 | uint32_t(rng() & 0xC00007FF), reinterpret_cast<XwValue>(data),
              int32_t(rng() % 5), 0};
    }
    items[rng() % 9].word = 0;
    XwWindow* w = Hostile<XwWindow*>();
    XwSetToolbar(w, rng() % 5 ? items : nullptr);
    XwShowToolbar(XwGetToolbarItem(w, 1) ? w : nullptr, int(rng() % 2));
    RunLoop();
    Repair();
  }
}

void Alerts() {  // Escape answers each
  input::SetIdleHandler([] { return input::KeyDown(0xFF1B), input::KeyUp(0xFF1B), true; });
  for (int i = 0; i < 40; ++i) {
    Inp.root_x = Inp.root_y = Hostile<int32_t>();
    auto ask = rng() % 2 ? XwConfirm : XwConfirmUtf8;
    const char *a = Hostile<const char*>(), *b = Hostile<const char*>();
    EXPECT_EQ(ask(a, b, b, a ? a : "", b, nullptr), 1);
    Repair();
  }
  Quiet();
}

void Posts() {
  const char* const texts[] = {nullptr, "", "state", "two words\n", "\xFF\x01", " "};
  static int ended;
  ended = 0;
  for (int i = 0; i < 300; ++i)
    XwPost(
        texts[rng() % 6], texts[rng() % 6], [](void*, int) { ++ended; }, nullptr);
  XwPost("state", nullptr, nullptr, nullptr);
  RunLoop();
  EXPECT_EQ(ended, 300);
}

// Calls with their arguments, by the names that stand for them; several of one call with a blank
// between them.
struct Row {
  std::string names;
  void (*call)();
};
std::vector<Row> Split(std::string names, std::initializer_list<void (*)()> calls) {
  std::vector<Row> rows;
  std::istringstream words(std::move(names));
  std::string name;
  for (void (*call)() : calls)
    if (words >> name) rows.push_back({name.substr(0, name.find(',')), call});
  return rows;
}
template <auto... functions>
std::vector<Row> Plain(const char* names) {
  return Split(names, {Often<functions>...});
}
#define PLAIN(...) Plain<__VA_ARGS__>(#__VA_ARGS__)

std::vector<Row> Calls() {
  std::vector<Row> rows = PLAIN(
      P2CSTR, C2PSTR, XwGetEvent, XwSetClipboard, XwPeekEvents, XwDoubleClick, XwCheckPointer,
      XwGetKeyState, XwBeep, XwReplaying, XwTimer, XwGrabPointer, XwUngrabPointer,
      XwPointerIsGrabbed, XwSetCursor, XwCreateDocked, XwDestroy, XwFind, IsSubWindow, AddSubWindow,
      XwMove, XwCenter, XwSetFullScreen, XwSetSizes, XwShow, XwEnable, XwSetFocus, XwDrawTextUtf8,
      XwTextWidthUtf8, XwGetText, XwGetValue, XwSetSliderRange, XwSetScrollRange, XwGetTextUtf8,
      XwGetFocus, XwFocusControl, XwSetToolbarItem, XwGetToolbarItem, XwSetTip, XwGetScale,
      XwSetDefaultButtons, XwSetTab, XwDescribeControl, XwSetGround, XwSetScrollHandler,
      XwSetActivationHandler, XwSetContextMenuHandler, XwSetDragHandler, XwCanEdit, XwEdit,
      XwSetProgramIcon, XwDroppedFiles, XwDropNumber, XwBoxList, XwBoxId, XwDescribe, XwSet, XwPush,
      XwPop, XwClip, ResetClipMask, XwSetColor, XwSetDashes, XwFlush, XwSync, XwClear, XwBox,
      XwFillRect, XwDrawRect, XwDrawLine, XwDrawEllipse, XwFillEllipse, XwDrawBevel, XwDrawHole,
      XwDrawBorder, XwDrawSeparator, XwDrawTable, XwDrawProgress, LoadFont, XwLoadFont, GetFontParm,
      XwTextWidth, XwTextTrim, XwTextFit, XwDrawText, XwThemeColor, XwRoundBox, XwLoadIcon,
      XwDrawIcon);
  const Row special[] = {
      // These open and end the test's session, never return, or have nothing to vary.
      {"XwSession XwEndSession XwRunEventLoop GetApplicationBundleFSSpec", nullptr},
      {"XwWaitEvent", Waiting<XwWaitEvent>},
      {"XwGrabEvent", Waiting<XwGrabEvent>},
      {"XwGetClipboard", GetClipboard},
      {"XwPost", Posts},
      {"XwTextTrimUtf8 XwTextFitUtf8 XwFromUtf8 XwToUtf8", Conversions},
      {"XwButton XwCheckBox XwColor XwSlider XwScrollBar XwEditBox XwEditField XwListBox "
       "XwUpdateListBox XwComboBox XwLabel XwCreateDialogItems",
       Controls},
      {"XwSetIconOutline XwFillPath XwStrokePath", Outlines},
      {"XwConfirm XwConfirmUtf8", Alerts},
      {"XwSetToolbar XwShowToolbar", Toolbars},
      {"XwSetMenu XwPopupMenu XwPopupMenuByKey XwPopupList XwPopupLocation XwEnableMenuItem "
       "XwChangeMenuItemText "
       "XwChangeMenuItemFlags XwCheckMenuItem XwCheckMenuRadioItem XwGetMenuItemState "
       "XwGetMenuRadioItem XwGetMenuItemText XwSetMenuItemKey",
       Menus},
      {"XwDrawLines", Points<XwDrawLines>},
      {"XwFillPolygon", Points<XwFillPolygon>},
      {"XwAllocImage XwReallocImage XwFreeImage XwPutImage", Images},
      {"XwPutImageData XwPutImageScaled", ImageData},
      {"XwSendEvent", Often<static_cast<void (*)(XwWindow*, int, int, XwValue, int)>(XwSendEvent)>},
      {"DirectSendEvent",
       Often<static_cast<int (*)(XwWindow*, int, int, XwValue)>(DirectSendEvent)>},
      {"XwCreate",
       Often<static_cast<XwWindow* (*)(XwValue, int, int, int, int, XwHandler)>(XwCreate)>},
      {"XwSetText", Often<static_cast<void (*)(XwWindow*, const char*)>(XwSetText)>},
      {"XwSetTextUtf8", Often<static_cast<void (*)(XwWindow*, const char*)>(XwSetTextUtf8)>},
      {"XwSetValue", Often<static_cast<void (*)(XwWindow*, XwValue)>(XwSetValue)>},
  };
  rows.insert(rows.end(), std::begin(special), std::end(special));
  return rows;
}

// The functions that the header declares: a type at the line's beginning, then a name and "(".
std::set<std::string> Declared() {
  std::ifstream file(HEADER);
  std::set<std::string> names;
  for (std::string line; std::getline(file, line);) {
    if (line.rfind("} /* extern", 0) == 0) break;
    if (line.empty() || !isalpha(static_cast<unsigned char>(line[0]))) continue;
    if (line.rfind("typedef", 0) == 0 || line.rfind("extern", 0) == 0) continue;
    size_t open = line.find('(');
    if (open == std::string::npos) continue;
    size_t start = line.find_last_of(" *", open);
    names.insert(line.substr(start + 1, open - start - 1));
  }
  return names;
}

TEST(Arguments, NoneIsMissing) {
  std::set<std::string> called;
  for (const Row& row : Calls()) {
    std::istringstream names(row.names);
    for (std::string name; names >> name;) called.insert(name);
  }
  EXPECT_EQ(called, Declared());
}

void CallAll() {
  for (const Row& row : Calls()) {
    SCOPED_TRACE(row.names);
    if (row.call) row.call();
    Repair();
    // The loop takes whatever the calls have left behind.
    for (XwTimerSlot& slot : Timers)
      if (slot.value) XwTimer(slot.window, 0, 0);
    XwWindow* focus = props.other;
    while (RunLoop()) {
    }
    XwSetFocus(focus);
  }
}

TEST(Arguments, OfAnyKindDoNoHarm) {
  Open();
  platform::AddTreeListener(&listener);
  props.main = Main();
  props.stale = XwCreate(0, 0, 50, 10, 10, Record);
  XwDestroy(props.stale);
  Repair();
  CallAll();
  // Again without a main window.
  XwDestroy(props.main);
  CallAll();
  platform::RemoveTreeListener(&listener);
}

}  // namespace

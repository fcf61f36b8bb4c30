#include "app/window/help.h"

#include <algorithm>
#include <cstdlib>
#include <string>
#include <vector>

#include "app/look/style.h"
#include "app/window/command_table.h"
#include "app/window/commands.h"
#include "app/window/form.h"

namespace console {
namespace {

constexpr int kColumn = 324, kMargin = 20, kKeys = 120;
constexpr int kRow = 20, kLeastRow = 12, kFrame = 60;  // of the window, with its title
constexpr int kColumns = 2;

XwWindow* keys_window;
int row_height = kRow;  // lower on a low screen

// A line of the window; a heading has no keys.
struct Line {
  std::string name, keys;
};

std::string KeysOf(const Command& command) {
  const CommandMore& more = command.more;
  std::string keys = KeyText(more.key, more.modifiers);
  const std::string plain = more.where ? KeyText(more.plain_key, 0) : "";
  if (!keys.empty() && !plain.empty()) keys += ", ";
  return keys + plain;
}

const std::vector<Line>& Lines() {
  static const auto* lines = [] {
    constexpr const char* kTitles[kMenus] = {"File", "Edit", "Queue", "View", "Help"};
    auto* all = new std::vector<Line>;
    const Line kLists[] = {{"Lists", ""},
                           {"Selects more rows", "Shift+arrows"},
                           {"Goes on without selecting", "Ctrl+arrows"},
                           {"Selects this row, or not", "Ctrl+Space"},
                           {"Outside the queue: finds a name", "its first letters"},
                           {"In the queue: holds, releases", "Space"},
                           {"In printers, places: chooses", "Space, Return"},
                           {"In places: opens, closes", "Right, Left"}};
    const Line kWindow[] = {{"Window", ""},
                            {"Next part, and back", "Tab, Shift+Tab"},
                            {"Next pane, and back", "F6, Shift+F6"},
                            {"Menu bar", "F10, Alt"},
                            {"One of its menus", "Alt+first letter"},
                            {"Menu of what is selected", "Menu, Shift+F10"},
                            {"In copies, priority: more, less", "Up, Down"},
                            {"In the details: another page", "Page Up, Page Down"},
                            {"In the details: first, last page", "Home, End"},
                            {"Back to files; stops a drag", "Esc"},
                            {"In the files: ends the filter", "Esc"},
                            {"Quit", "Ctrl+Q"}};
    for (int m = 0; m < kMenus; ++m) {
      all->push_back({kTitles[m], ""});
      for (const Command& command : Commands())
        if (const std::string keys = KeysOf(command); command.menu == m && !keys.empty())
          all->push_back({command.name, keys});
      if (m == kQueueMenu) all->insert(all->end(), std::begin(kLists), std::end(kLists));
    }
    all->insert(all->end(), std::begin(kWindow), std::end(kWindow));
    return all;
  }();
  return *lines;
}

// The room above a heading; at the top of a column there is none.
int AboveHeading() {
  return row_height * 2 / 5;
}

int HeightOf(const Line& line) {
  return line.keys.empty() ? row_height * 3 / 2 : row_height;
}

// Where the second column begins: at the heading that is nearest to the middle.
size_t SecondColumn() {
  int whole = 0, above = 0, off = 0;
  for (const Line& line : Lines()) whole += HeightOf(line);
  size_t second = 0;
  for (size_t i = 0; i < Lines().size(); ++i) {
    const int distance = std::abs(2 * above - whole);
    if (Lines()[i].keys.empty() && (i == 0 || distance < off)) second = i, off = distance;
    above += HeightOf(Lines()[i]);
  }
  return second;
}

int WindowHeight() {
  int heights[kColumns] = {};
  const size_t second = SecondColumn();
  for (size_t i = 0; i < Lines().size(); ++i) heights[i >= second] += HeightOf(Lines()[i]);
  return std::max(heights[0], heights[1]) + 2 * kMargin - AboveHeading();
}

void FitRows() {
  row_height = kRow;
  while (row_height > kLeastRow && WindowHeight() > XW_SCREENY - kFrame) --row_height;
}

void DrawKeys() {
  const Style& l = TheStyle();
  XwPush(keys_window);
  Fill({0, 0, keys_window->width, keys_window->height}, l.document);
  const int top = kMargin - AboveHeading();
  Area column{kMargin, top, kColumn, keys_window->height};
  const size_t second = SecondColumn();
  XwBoxList(3, 0, 0, 0, 0);
  for (size_t i = 0; i < Lines().size(); ++i) {
    const Line& line = Lines()[i];
    if (i == second) column = {2 * kMargin + kColumn, top, kColumn, keys_window->height};
    Area a = column.TakeTop(HeightOf(line));
    XwBoxList(1, a.x, a.y, a.w, a.h);
    XwDescribe(-1, XWA_LABEL, 0, line.name.c_str(), line.keys.c_str());
    if (line.keys.empty()) {
      a.TakeTop(AboveHeading());
      DrawLabel(l.bold, Align::kLeft, a, line.name, l.ink);
      continue;
    }
    DrawLabel(l.view, Align::kLeft, a.TakeLeft(a.w - kKeys), line.name, l.ink);
    DrawLabel(l.view, Align::kLeft, a, line.keys, l.second);
  }
  XwBoxList(4, 0, 0, 0, 0);
  XwPop();
}

int HandleKeys(int type) {
  if (type == XWE_EXPOSE) DrawKeys();
  if (type == XWE_CLOSE || type == XWE_ESCAPE) CloseKeys();
  return 0;
}

}  // namespace

void ShowKeys(Console* c) {
  if (!keys_window) {
    FitRows();
    const int width = kColumns * kColumn + (kColumns + 1) * kMargin;
    keys_window = XwCreate(kListStyle, 0, 0, width, WindowHeight(), HandleKeys);
    if (!keys_window) return;
    XwSetSizes(keys_window, width, WindowHeight(), width, WindowHeight(), 0, 0);
    XwSetTextUtf8(keys_window, "Keys");
    XwSetDragHandler(keys_window, 0, nullptr);
    XwSetActivationHandler(keys_window, [](int on) { NoteActivity(keys_window, on != 0); });
    XwCenter(keys_window, c->window);
  }
  XwShow(keys_window, 1);
  XwSetFocus(keys_window);
  NoteActivity(keys_window, true);
}

void CloseKeys() {
  CloseSecond(keys_window);
  keys_window = nullptr;
}

void ShowAbout(Console* c) {
  XwPopupLocation(c->window, c->window->width / 2, c->window->height / 3);
  XwConfirmUtf8("i", "", "Quorvik " QUORVIK_VERSION ", a print console for the Linux desktop", "OK",
                nullptr);
}

}  // namespace console

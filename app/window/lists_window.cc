// The window of scanners and profiles: what each is for, and what can be asked of it.
#include <algorithm>
#include <array>

#include "app/format/cut.h"
#include "app/format/folding.h"
#include "app/format/texts.h"
#include "app/format/words.h"
#include "app/look/controls.h"
#include "app/model/crumbs.h"
#include "app/panes/side_list.h"
#include "app/table/table.h"
#include "app/window/console.h"
#include "app/window/form.h"

namespace console {
namespace {

enum Id { kBar = 1, kSave, kStart, kClose };
enum : int { kList = 1 };  // owner of hits

constexpr int kWidth = 600, kHeight = 340, kEdge = 16, kHeader = 22, kRowHeight = 22;
constexpr int kLeastWidth = 500, kLeastHeight = 220;
constexpr int kButtonHeight = 26, kLine = 26, kFoot = kLine + kButtonHeight + kEdge;
constexpr int kStartWidth = 120, kCloseWidth = 88, kGap = 10, kButtonEnds = 28;
constexpr int kPadding = 8;

struct Row {
  std::string name, printer, details;  // bytes
  bool scanner = false, away = false;
};

// Scanners first, each kind by name.
std::vector<Row> RowsOf(const ServerLists& lists) {
  std::vector<Row> rows;
  for (size_t i = 0; i < lists.profiles.size(); ++i) {
    const NC_Profile& p = lists.profiles[i];
    std::string details = NumberText(p.dpi_across) +
                          (p.dpi_across == p.dpi_along ? "" : " × " + NumberText(p.dpi_along)) +
                          " dpi";
    if (p.media[0]) details += std::string(", ") + p.media;
    rows.push_back({p.name, lists.printers[i], details});
  }
  for (const NC_Scanner& s : lists.scanners)
    rows.push_back({s.name, "", s.text, true, s.away != 0});
  std::stable_sort(rows.begin(), rows.end(), [](const Row& a, const Row& b) {
    return a.scanner != b.scanner ? a.scanner : NaturalLess(a.name, b.name);
  });
  return rows;
}

constexpr const char* kSaveText = "Save Gamut File";

std::string KindText(const Row& row) {
  return !row.scanner ? "profile" : row.away ? "scanner, away" : "scanner";
}
std::string ForText(const Row& row) {
  return row.scanner ? "" : row.printer.empty() ? "every printer" : Shown(row.printer);
}

}  // namespace

struct ListsWindow {
  Console* console = nullptr;
  XwWindow* window = nullptr;
  XwWindow *save = nullptr, *start = nullptr, *close = nullptr;
  SideList list{kList, kRowHeight};
  std::shared_ptr<const ServerLists> shown;
  bool asked = false;  // the server that is there now
  std::vector<Row> rows;
  Message told;  // what the server answered last
  std::string save_text = kSaveText;
  Hits hits;
};

namespace {

ListsWindow* g_window;

const Row* At(const ListsWindow* w) {
  const int at = w->list.at();
  return at >= 0 && size_t(at) < w->rows.size() ? &w->rows[size_t(at)] : nullptr;
}
bool CanSave(const ListsWindow* w) {
  const Row* row = At(w);
  return row && !row->scanner && w->console->state.link == Link::kReady &&
         w->console->files.folder.known();
}
bool CanStart(const ListsWindow* w) {
  const Row* row = At(w);
  return row && row->scanner && !row->away && w->console->state.link == Link::kReady;
}

// --- Drawing

Area Frame(const ListsWindow* w) {
  return {kEdge, kEdge, w->window->width - 2 * kEdge, w->window->height - kEdge - kFoot};
}

enum Column { kName, kFor, kKind, kDetails, kColumns };
constexpr const char* kTitles[kColumns] = {"Name", "For", "Kind", "Details"};
using Cells = std::array<Area, kColumns>;

// Of a line of the list. The bar's room is never theirs, so that they stay below their heads when
// it comes.
Cells CellsOf(const ListsWindow* w, const Area& line) {
  const int room = std::max(0, Frame(w).w - 2 - Table::kScrollBar);
  Area a{line.x, line.y, room, line.h};
  Cells cells;
  // The words for the kinds are known, and the others share what they leave.
  constexpr int kKindWidth = 98;
  const int shared = std::max(0, room - kKindWidth);
  const int widths[kColumns] = {shared * 44 / 100, shared * 26 / 100, kKindWidth, room};
  for (size_t i = 0; i < kColumns; ++i) cells[i] = a.TakeLeft(widths[i]).Inset(kPadding, 0);
  return cells;
}

std::array<std::string, kColumns> TextsOf(const Row& row) {
  return {Shown(row.name), ForText(row), KindText(row), Shown(row.details)};
}

void DrawRow(const ListsWindow* w, int index, const Area& a) {
  const Style& l = TheStyle();
  const bool selected = index == w->list.at();
  const bool muted = w->console->state.link != Link::kReady;
  int32_t ground = index % 2 ? l.row : l.document;
  if (selected) ground = muted ? l.inactive_selection : l.accent;
  int32_t ink = l.ink, second = l.second;
  if (muted)
    ink = Dimmed(ink, ground), second = Dimmed(second, ground);
  else if (selected)
    ink = second = l.on_accent;
  Fill(a, ground);
  const Cells cells = CellsOf(w, a);
  const auto texts = TextsOf(w->rows[size_t(index)]);
  for (size_t i = 0; i < kColumns; ++i)
    DrawLabel(l.view, Align::kLeft, cells[i], CutToWidth(l.view, texts[i], cells[i].w),
              i < kKind ? ink : second);
}

void DrawHeader(const ListsWindow* w, Area a) {
  const Style& l = TheStyle();
  Fill(a, l.tool_bar);
  LineAtBottom(a);
  const Cells cells = CellsOf(w, a);
  for (size_t i = 0; i < kColumns; ++i)
    DrawLabel(l.view, Align::kLeft, cells[i], kTitles[i], l.second);
}

// What is cut in a cell has a tip.
void AddTips(ListsWindow* w, int index) {
  const Cells cells = CellsOf(w, w->list.RowArea(index));
  const auto texts = TextsOf(w->rows[size_t(index)]);
  for (size_t i = 0; i < kColumns; ++i)
    if (XwTextWidthUtf8(TheStyle().view, texts[i].c_str()) > cells[i].w)
      w->hits.Add({kList, SideList::kRow, index}, w->list.Visible(cells[i]),
                  {0, 0, "", "", texts[i]});
}

// Between the list and the buttons.
Area LineArea(const ListsWindow* w) {
  return {kEdge, Frame(w).bottom(), w->window->width - 2 * kEdge, kLine};
}

// What it answered; while it is not there, why nothing can be asked of it.
void DrawLine(ListsWindow* w) {
  const Style& l = TheStyle();
  const Area a = LineArea(w);
  XwClear(a.x, a.y, a.w, a.h);
  const bool away = w->console->state.link != Link::kReady && !w->rows.empty();
  const Message line = away ? Message{Tone::kPlain, "The server is away"} : w->told;
  DrawLabel(l.view, Align::kLeft, a, line.text, line.tone == Tone::kBad ? l.bad : l.second);
  const bool cut = XwTextWidthUtf8(l.view, line.text.c_str()) > a.w;
  w->hits.Cover(a, {XWA_STATUS, 0, "Answer", line.text, cut ? line.text : ""});
}

const char* EmptyText(const ListsWindow* w) {
  if (w->console->state.link != Link::kReady) return "The server is not there";
  return w->shown ? "The server has no scanners and no profiles" : "Asking the server…";
}

void Draw(ListsWindow* w) {
  const Style& l = TheStyle();
  XwPush(w->window);
  Area a = Frame(w);
  XwSetColor(l.line);
  XwDrawRect(a.x, a.y, a.w, a.h);
  a = a.Inset(1, 1);
  DrawHeader(w, a.TakeTop(kHeader));
  Fill(a, l.document);
  w->list.DrawRows([w](int row, const Area& at) { DrawRow(w, row, at); });
  if (w->rows.empty()) DrawLabel(l.view, Align::kCenter, a, EmptyText(w), l.second);
  w->hits.Begin();
  const auto words = [w](int index) {
    const Row& row = w->rows[size_t(index)];
    const uint32_t state = index == w->list.at() ? XWT_SELECTED : 0;
    return Words{XWA_ROW, state, Shown(row.name), KindText(row)};
  };
  w->list.AddHits(&w->hits, true, words, [w](int index) { AddTips(w, index); });
  DrawLine(w);
  w->hits.End();
  XwPop();
}

// It names the folder before somebody chooses it.
std::string SaveText(const ListsWindow* w) {
  const FilesPane& files = w->console->files;
  if (!files.folder.known()) return kSaveText;
  const std::string folder = CrumbsOf(files.folder.path()).back().text;
  const int room = w->window->width - 2 * kEdge - kStartWidth - kCloseWidth - 2 * kGap;
  const auto whole = [](const std::string& name) {
    return kSaveText + std::string(" in “") + name + "”";
  };
  return whole(CutMiddleTo(folder, [&](const std::string& name) {
    return XwTextWidthUtf8(TheStyle().normal, whole(name).c_str()) + kButtonEnds <= room;
  }));
}

void PlaceButtons(ListsWindow* w) {
  if (const std::string text = SaveText(w); text != w->save_text) {
    w->save_text = text;
    XwSetTextUtf8(w->save, text.c_str());
  }
  const int y = w->window->height - kEdge - kButtonHeight;
  const int width = XwTextWidthUtf8(TheStyle().normal, w->save_text.c_str()) + kButtonEnds;
  PlaceControl(w->save, {kEdge, y, width, kButtonHeight});
  PlaceControl(w->start, {kEdge + width + kGap, y, kStartWidth, kButtonHeight});
  PlaceControl(w->close, {w->window->width - kEdge - kCloseWidth, y, kCloseWidth, kButtonHeight});
}

void Update(ListsWindow* w) {
  EnableControl(w->save, CanSave(w));
  EnableControl(w->start, CanStart(w));
  PlaceButtons(w);
  Draw(w);
}

void PlaceAll(ListsWindow* w) {
  Area a = Frame(w).Inset(1, 1);
  a.TakeTop(kHeader);
  w->list.Place(a);
  PlaceButtons(w);
}

// New lists; the keyboard stays at its row.
void TakeLists(ListsWindow* w) {
  const auto& lists = w->console->state.lists;
  if (lists == w->shown) return;
  const Row* row = At(w);
  const Row kept = row ? *row : Row();
  w->shown = lists;
  w->rows = lists ? RowsOf(*lists) : std::vector<Row>();
  const auto same = std::find_if(w->rows.begin(), w->rows.end(), [&](const Row& r) {
    return r.name == kept.name && r.scanner == kept.scanner;
  });
  const bool found = same != w->rows.end();
  w->list.SetRows(int(w->rows.size()), found             ? int(same - w->rows.begin())
                                       : w->rows.empty() ? -1
                                                         : 0);
}

// --- What can be asked

void Save(ListsWindow* w) {
  if (!CanSave(w)) return;
  Console* c = w->console;
  const Row& row = *At(w);
  w->told = {};
  const std::string printer = row.printer.empty() ? c->choice.printer : row.printer;
  c->server.SaveGamut(row.name, printer, c->files.folder.path());
  Update(w);
}

void Start(ListsWindow* w) {
  if (!CanStart(w)) return;
  w->told = {};
  w->console->server.StartScan(At(w)->name);
  Update(w);
}

void OpenMenu(ListsWindow* w) {
  static XwMenuItem profile[] = {{kSaveText, XWM_UTF8, kSave, nullptr}, {}};
  static XwMenuItem scanner[] = {{"Start Scanner", 0, kStart, nullptr}, {}};
  const Row* row = At(w);
  if (!row) return;
  XwMenuItem* menu = row->scanner ? scanner : profile;
  const std::string text = w->save_text;  // as long as the menu shows
  XwChangeMenuItemText(profile, kSave, text.c_str());
  XwEnableMenuItem(menu, menu->id, row->scanner ? CanStart(w) : CanSave(w));
  const int chosen = XwPopupMenu(menu);
  XwChangeMenuItemText(profile, kSave, kSaveText);
  if (g_window != w) return;
  if (chosen == kSave) Save(w);
  if (chosen == kStart) Start(w);
}

// The Menu key, for the row that the keyboard is at.
void OpenMenuByKey() {
  constexpr int kFromLeft = 30;
  ListsWindow* w = g_window;
  if (!w || !At(w)) return;
  const Area row = w->list.RowArea(w->list.at());
  XwPopupLocation(w->window, row.x + kFromLeft, row.bottom());
  OpenMenu(w);
}

// --- Events

void Press(ListsWindow* w, bool secondary) {
  const Hit hit = w->hits.At(Inp.item);
  if (hit.owner != kList || hit.part != SideList::kRow) return;
  w->list.GoTo(hit.index);
  Update(w);
  if (secondary) OpenMenu(w);
}

void Report(ListsWindow* w, int id, int value) {
  if (w->list.Scrolled(id, value)) return Draw(w);
  if (id == kSave) Save(w);
  if (id == kStart) Start(w);
  if (id == kClose) CloseLists();
}

void Key(ListsWindow* w, int type) {
  if (Inp.state & XWS_CONTROL) return;
  if (type == XWE_RETURN) return At(w) && At(w)->scanner ? Start(w) : Save(w);
  if (type == XWE_F1 + 4) return w->console->server.AskLists();
  const auto name = [w](int row) { return w->rows[size_t(row)].name; };
  if (w->list.Key(type) || w->list.Type(type, Inp.time, name)) Update(w);
}

int Handle(int type) {
  ListsWindow* w = g_window;
  if (!w) return 0;
  switch (type) {
    case XWE_CONFIGURE:
      PlaceAll(w);
      break;
    case XWE_EXPOSE:
      Draw(w);
      break;
    case XWE_PRESS:
    case XWE_PRESS + 1:
      Press(w, type != XWE_PRESS);
      break;
    case XWE_CONTROL:
    case XWE_SCROLLED:
    case XWE_SCROLLING:
      Report(w, Inp.item, int(Inp.value));
      break;
    case XWE_CLOSE:
      CloseLists();
      break;
    default:
      if (type < XWE_CONFIGURE) Key(w, type);
      break;
  }
  return 0;
}

void Scrolled(float, float dy) {
  if (g_window && g_window->list.Wheel(dy)) Draw(g_window);
}

void Make(ListsWindow* w) {
  constexpr uint32_t kShown = XWC_ENABLED | XWC_VISIBLE;
  XwSetText(w->window, "Scanners and Profiles");
  XwSetGround(w->window, nullptr, 2);
  XwSetSizes(w->window, kLeastWidth, kLeastHeight, 0, 0, 0, 0);
  XwSetScrollHandler(w->window, Scrolled);
  XwSetContextMenuHandler(w->window, OpenMenuByKey);
  w->list.MakeControls(w->window, kBar, "Scanners and Profiles");
  w->save = XwButton(w->window, kSaveText, kSave, 0, 0, 9, 9, kShown, 0);
  w->start = XwButton(w->window, "Start Scanner", kStart, 0, 0, 9, 9, kShown, 0);
  w->close = XwButton(w->window, "Close", kClose, 0, 0, 9, 9, kShown, 0);
  XwSetTip(w->save, 0, "The folder that the console shows; no file there is replaced");
  XwSetDefaultButtons(w->window, nullptr, w->close);
  PlaceAll(w);
}

}  // namespace

void ShowLists(Console* c) {
  if (c->asking) return;
  if (!g_window) {
    XwWindow* window = XwCreate(kListStyle, 0, 0, kWidth, kHeight, Handle);
    if (!window) return;
    g_window = new ListsWindow;
    g_window->console = c;
    g_window->window = window;
    Make(g_window);
    XwSetDragHandler(window, 0, nullptr);
    XwSetActivationHandler(window, [](int on) {
      if (g_window) NoteActivity(g_window->window, on != 0);
    });
    XwCenter(window, c->window);
  }
  g_window->asked = false;
  UpdateLists();
  XwShow(g_window->window, 1);
  XwSetFocus(g_window->window);
  NoteActivity(g_window->window, true);
}

void CloseLists() {
  ListsWindow* w = g_window;
  if (!w) return;
  g_window = nullptr;
  CloseSecond(w->window);
  delete w;
}

void UpdateLists() {
  ListsWindow* w = g_window;
  if (!w) return;
  const ServerState& state = w->console->state;
  // Once each time that a server is there.
  if (state.link == Link::kReady && !w->asked) w->console->server.AskLists();
  w->asked = state.link == Link::kReady;
  if (!w->asked) w->told = {};  // by a server that may be another one afterwards
  TakeLists(w);
  Update(w);
}

void TellInLists(const Message& message) {
  if (g_window) g_window->told = message;  // UpdateLists draws it
}

}  // namespace console

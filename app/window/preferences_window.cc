// The window of preferences. What is chosen there counts once it is saved.
#include <algorithm>
#include <cstring>

#include "app/format/cut.h"
#include "app/format/words.h"
#include "app/look/controls.h"
#include "app/look/hits.h"
#include "app/panes/name_choice.h"
#include "app/window/console.h"
#include "app/window/form.h"
#include "app/window/queue_commands.h"

namespace console {

struct PreferencesWindow {
  Console* console = nullptr;
  XwWindow* window = nullptr;
  XwWindow *server = nullptr, *recent = nullptr, *seconds = nullptr, *start = nullptr;
  XwWindow *hidden = nullptr, *ended = nullptr, *mine = nullptr;
  XwWindow* save = nullptr;
  NameChoice printers;
  std::string printer;  // as chosen here
  Hits hits;
};

namespace {

enum Id {
  kServerBox = 1,
  kRecentButton,
  kSecondsBox,
  kPrinterList,
  kStartBox,
  kHiddenBox,
  kEndedBox,
  kMineBox,
  kCancel,
  kSave
};

constexpr int kWidth = 460, kHeight = 362, kEdge = 20;
constexpr int kLabelEnd = 150, kField = 160, kFieldWidth = 214, kArrow = 26, kRow = 26;
constexpr Area kServerArea{kField, 20, kFieldWidth, kRow};
constexpr Area kServerLine{kField, 49, kWidth - kField - kEdge, 16};
constexpr Area kSecondsArea{kField, 78, 54, kRow};
constexpr Area kSecondsWord{kField + 64, 78, 200, kRow};
constexpr Area kPrinterArea{kField, 114, kFieldWidth + 4 + kArrow, kRow};
constexpr Area kStartArea{kField, 150, 280, 20};
constexpr Area kHiddenArea{kField, 186, 280, 20}, kEndedArea{kField, 214, 280, 20};
constexpr Area kMineArea{kField, 238, 280, 20};
constexpr int kSeparator = 276;
constexpr Area kNote{kEdge, 288, kWidth - 2 * kEdge, 16};
constexpr int kButtonTop = 316;
constexpr int kMostSeconds = 3600;
constexpr int kMostHost = 40;  // characters, in a question

PreferencesWindow* g_window;

std::string TextOf(XwWindow* box) {
  char text[1024] = "";
  XwGetTextUtf8(box, text, sizeof text);
  std::string_view s = text;
  while (!s.empty() && s.front() == ' ') s.remove_prefix(1);
  while (!s.empty() && s.back() == ' ') s.remove_suffix(1);
  return std::string(s);
}

std::string Host(const std::string& server) {
  return server.empty() ? "localhost" : server;
}

bool ServerIsGood(const PreferencesWindow* w) {
  const std::string text = TextOf(w->server);
  return text.empty() || IsServerName(text);
}

// 0 when it is none.
int SecondsOf(const PreferencesWindow* w) {
  return NumberIn(w->seconds, kMostSeconds);
}

struct Line {
  std::string text;
  int32_t ink;
};

// What is told below the server.
Line ServerLine(const PreferencesWindow* w) {
  const Style& l = TheStyle();
  const Console* c = w->console;
  if (c->remembered.server_fixed) return {"QUORVIK_SERVER names the server", l.second};
  if (!ServerIsGood(w)) return {"A server is HOST or HOST:PORT", l.bad};
  if (Host(TextOf(w->server)) != c->server.host())
    return {"The console changes to it when you save", l.second};
  switch (c->state.link) {
    case Link::kConnecting:
      return {"connecting…", l.warning};
    case Link::kReady:
      return {"ready, " + NumberOf(int64_t(c->state.printers->size()), "printer", "printers"),
              l.good};
    default:
      return {c->state.trouble, l.bad};
  }
}

// --- Drawing

void Say(PreferencesWindow* w, const Area& a, const Line& line, XwFont* font, const char* name) {
  XwClear(a.x, a.y, a.w, a.h);
  DrawLabel(font, Align::kLeft, a, line.text, line.ink);
  w->hits.Cover(a, {XWA_STATUS, 0, name, line.text});
}

void Draw(PreferencesWindow* w) {
  const Style& l = TheStyle();
  XwPush(w->window);
  w->hits.Begin();
  Say(w, kServerLine, ServerLine(w), l.small_text, "Server State");
  const bool good = SecondsOf(w) > 0;
  Say(w, kSecondsWord, {good ? "seconds" : "seconds, 1 to 3,600", good ? l.ink : l.bad}, l.normal,
      "Period");
  LineAcross(kEdge, kSeparator, kWidth - 2 * kEdge);
  const bool kept = w->console->remembered.writer != nullptr;
  Say(w, kNote,
      {kept ? "Kept in your own settings, for you alone."
            : "Your settings could not be read: these count until the console closes.",
       l.second},
      l.small_text, "Note");
  w->hits.End();
  XwPop();
}

// What follows the texts and the server.
void Update(PreferencesWindow* w) {
  const Console* c = w->console;
  // Those of another server are not known.
  w->printers.Show(c->printers.Names(), w->printer, Host(TextOf(w->server)) == c->server.host());
  EnableControl(w->save, ServerIsGood(w) && SecondsOf(w) > 0);
  Draw(w);
}

// --- Saving

bool MayLeaveServer(const Console* c) {
  const Unsent unsent = NotAtServer(c);
  if (!unsent.any()) return true;
  const std::string message = CutMiddle(c->server.host(), kMostHost) + ": " + UnsentText(unsent) +
                              ". What is not done is given up when the console leaves the server.";
  return XwConfirmUtf8("!", "", message.c_str(), "Stay", "Leave", nullptr) == 2;
}

void ChangeServer(Console* c, const std::string& server) {
  // Printers and profiles were the other server's.
  c->printers.ForgetServer();
  c->choice.profile.clear();
  c->just_sent = 0;
  c->start_tried = false;
  c->server.Use(server);
}

// What the View menu has, too.
void ShowAsChosen(const PreferencesWindow* w) {
  Console* c = w->console;
  const bool hidden = XwGetValue(w->hidden) == 1, ended = XwGetValue(w->ended) == 1;
  if (hidden != c->files.folder.rows().shows_hidden()) ShowHiddenNames(c, hidden);
  QueueFilter filter = c->queue.rows.filter();
  filter.mine = XwGetValue(w->mine) == 1;
  if (ended != (filter.part != QueueFilter::kActive))
    filter.part = ended ? QueueFilter::kAll : QueueFilter::kActive;
  FilterQueue(c, filter);
}

void Save(PreferencesWindow* w) {
  Console* c = w->console;
  Preferences p = c->remembered.preferences;
  const std::string server = TextOf(w->server);
  const bool changes = !c->remembered.server_fixed && Host(server) != c->server.host();
  if (!w->save->enabled) return GoToBox(ServerIsGood(w) ? w->seconds : w->server);
  const bool leaves = !changes || MayLeaveServer(c);
  // The question let events pass.
  if (g_window != w) return;
  if (!leaves) return GoToBox(w->server);
  ShowAsChosen(w);
  const bool other_default = p.default_printer != w->printer;
  p.refresh_seconds = SecondsOf(w);
  p.start_local_server = XwGetValue(w->start) == 1;
  p.default_printer = changes ? "" : w->printer;
  if (!c->remembered.server_fixed) p.server = server;
  ClosePreferences();
  if (changes) ChangeServer(c, server);
  c->server.SetPeriod(p.refresh_seconds * 1000);
  KeepPreferences(c, p);
  if (other_default && !p.default_printer.empty()) ChoosePrinter(c, p.default_printer);
  PrintersCame(c);
  StartServerByItself(c);
  c->damage = kAllPanes;
  // The desktop may have meant this dialog to follow the question, and it has gone.
  XwSetFocus(c->window);
  DrawConsole(c);
}

// --- Reports

void ChooseRecent(PreferencesWindow* w) {
  std::vector<std::string> hosts = w->console->remembered.preferences.recent_servers;
  if (std::find(hosts.begin(), hosts.end(), "localhost") == hosts.end())
    hosts.push_back("localhost");
  std::vector<const char*> texts;
  int current = -1;
  for (const std::string& host : hosts) {
    if (host == Host(TextOf(w->server))) current = int(texts.size());
    texts.push_back(host.c_str());
  }
  texts.push_back(nullptr);
  XwPopupLocation(w->window, kServerArea.x, kServerArea.bottom());
  const int chosen = XwPopupList(texts.data(), current);
  if (g_window != w || chosen < 0) return;
  XwSetTextUtf8(w->server, texts[size_t(chosen)]);
  Update(w);
}

void Report(PreferencesWindow* w, int id, int value) {
  if (id == kRecentButton) ChooseRecent(w);
  if (id != kPrinterList) return;
  w->printer = w->printers.Choose(value);
  Update(w);
}

int Handle(int type) {
  PreferencesWindow* w = g_window;
  if (!w) return 0;
  switch (FormEventOf(type, kSave, kCancel)) {
    case FormEvent::kDraw:
      Draw(w);
      break;
    case FormEvent::kEdited:
      Update(w);
      break;
    case FormEvent::kAccept:
      Save(w);
      break;
    case FormEvent::kCancel:
      ClosePreferences();
      break;
    case FormEvent::kOther:
      if (type == XWE_CONTROL) Report(w, Inp.item, int(Inp.value));
      break;
  }
  return 0;
}

// --- Making it

void MakeLabel(XwWindow* window, const char* text, const Area& field) {
  XwLabel(window, text, 0, kEdge, field.y, kLabelEnd - kEdge, field.h,
          XWC_ENABLED | XWC_VISIBLE | XWC_RIGHT);
}

XwWindow* MakeBox(XwWindow* window, const char* label, int id, const Area& a, bool enabled) {
  MakeLabel(window, label, a);
  XwWindow* box = XwEditBox(window, "", id, 0, 0, 9, 9,
                            XWC_VISIBLE | XWC_DROPS_FOCUS | (enabled ? XWC_ENABLED : 0));
  PlaceControl(box, a);
  return box;
}

XwWindow* MakeCheck(XwWindow* window, const char* utf8, int id, const Area& a) {
  char text[100];
  XwFromUtf8(utf8, text, sizeof text);
  XwWindow* check = XwCheckBox(window, text, id, 0, 0, XWC_ENABLED | XWC_VISIBLE, 0);
  PlaceControl(check, a);
  return check;
}

void MakeControls(PreferencesWindow* w) {
  const Remembered& r = w->console->remembered;
  w->server = MakeBox(w->window, "Server", kServerBox, kServerArea, !r.server_fixed);
  w->recent = XwButton(w->window, IC_SMALL_ARROW_DOWN, kRecentButton, 0, 0, 9, 9,
                       XWC_VISIBLE | XWC_ICON | (r.server_fixed ? 0 : XWC_ENABLED), 0);
  XwDescribeControl(w->recent, "Recent Servers");
  PlaceControl(w->recent, {kServerArea.right() + 4, kServerArea.y, kArrow, kRow});
  w->seconds = MakeBox(w->window, "Ask every", kSecondsBox, kSecondsArea, true);
  MakeLabel(w->window, "Print on", kPrinterArea);
  w->printers.Make(w->window, kPrinterList, "Default Printer", "The one used last");
  PlaceControl(w->printers.control(), kPrinterArea);
  MakeLabel(w->window, "This computer", kStartArea);
  w->start = MakeCheck(w->window, "Start a print server when none answers", kStartBox, kStartArea);
  MakeLabel(w->window, "Files", kHiddenArea);
  w->hidden = MakeCheck(w->window, "Show hidden names", kHiddenBox, kHiddenArea);
  MakeLabel(w->window, "Queue", kEndedArea);
  w->ended = MakeCheck(w->window, "Show jobs that have ended", kEndedBox, kEndedArea);
  w->mine = MakeCheck(w->window, "Show my jobs only", kMineBox, kMineArea);
  w->save = MakeFormButtons(w->window, "Save", kSave, kCancel, kWidth - kEdge, kButtonTop).accept;
}

void Fill(PreferencesWindow* w) {
  const Remembered& r = w->console->remembered;
  const std::string server =
      r.server_fixed ? w->console->server.host() : Host(r.preferences.server);
  XwSetTextUtf8(w->server, server.c_str());
  XwSetTextUtf8(w->seconds, std::to_string(r.preferences.refresh_seconds).c_str());
  XwSetValue(w->start, r.preferences.start_local_server ? 1 : 0);
  w->printer = r.preferences.default_printer;
  const QueueFilter& filter = w->console->queue.rows.filter();
  XwSetValue(w->hidden, w->console->files.folder.rows().shows_hidden());
  XwSetValue(w->ended, filter.part != QueueFilter::kActive);
  XwSetValue(w->mine, filter.mine);
}

}  // namespace

void ShowPreferences(Console* c) {
  if (c->asking) return;
  if (!g_window) {
    XwWindow* window = XwCreate(kFormStyle, 0, 0, kWidth, kHeight, Handle);
    if (!window) return;
    g_window = new PreferencesWindow;
    g_window->console = c;
    g_window->window = window;
    XwSetText(window, "Preferences");
    XwSetGround(window, nullptr, 2);
    MakeControls(g_window);
    Fill(g_window);
    Update(g_window);
    XwSetDragHandler(window, 0, nullptr);
    XwSetActivationHandler(window, [](int on) {
      if (g_window) NoteActivity(g_window->window, on != 0);
    });
    XwCenter(window, c->window);
  }
  XwShow(g_window->window, 1);
  XwSetFocus(g_window->window);
  NoteActivity(g_window->window, true);
  XwFocusControl(c->remembered.server_fixed ? g_window->seconds : g_window->server);
}

void ClosePreferences() {
  PreferencesWindow* w = g_window;
  if (!w) return;
  g_window = nullptr;
  CloseSecond(w->window);
  delete w;
}

void UpdatePreferences() {
  if (g_window) Update(g_window);
}

}  // namespace console

// The alert: a small modal window with a picture, a message and a row of buttons.
#include <unistd.h>

#include <algorithm>
#include <climits>
#include <cstdarg>
#include <string>
#include <utility>
#include <vector>

#include "platform/events/targets.h"
#include "platform/text/mac_roman.h"
#include "platform/text/utf8.h"
#include "platform/windows/windows.h"
#include "toolkit/controls/alert_art.h"
#include "toolkit/controls/dropped.h"
#include "toolkit/core/alive.h"
#include "toolkit/core/post.h"
#include "toolkit/core/record.h"
#include "toolkit/core/saturate.h"
#include "toolkit/events/loop.h"
#include "toolkit/target/selection.h"

using namespace platform;

namespace {

constexpr int kAlertStyle = -250;
constexpr int kLeastWidth = 410, kHeight = 100, kAbovePointer = 50;
constexpr int kMessageLeft = 100, kMessageTop = 25, kBesideMessage = 110;
constexpr int kWrapWidth = 420, kMostLines = 8;
constexpr int kButtonWidth = 100, kButtonStep = 105, kButtonHeight = 24, kButtonsUp = 30;
constexpr int kFirstButton = 10001;
constexpr Rect kLarge{10, 5, 74, 69}, kBadge{58, 53, 90, 85};

// In UTF-8.
struct Alert {
  AlertPicture large = AlertPicture::kStop, badge = AlertPicture::kApplication;
  std::string message;
  std::vector<std::string> lines;  // of the message
  std::vector<std::string> labels;
  int wrap_width = INT_MAX;  // a message that is wider takes more lines
  XwWindow* window = nullptr;
  XwWindow* first = nullptr;
  int pressed = 0;  // from 1
};

void ChoosePictures(const char* kind, Alert* a) {
  const char c = kind ? *kind : 0;
  if (c == '?') a->large = AlertPicture::kNote;
  if (c != 'i') return;
  a->large = AlertPicture::kApplication;
  a->badge = AlertPicture::kNone;
}

// Takes the words that fit from the front of the text; a word without room is broken.
std::string TakeLine(std::string* text, int width) {
  size_t fits = size_t(XwTextTrimUtf8(FT_ALERT, text->c_str(), width + 1, nullptr, 0));
  if (fits >= text->size()) return std::exchange(*text, "");
  if (fits == 0) fits = 1;
  while (fits < text->size() && ((*text)[fits] & 0xC0) == 0x80) ++fits;
  const size_t blank = text->rfind(' ', fits);
  const size_t end = blank == std::string::npos || blank == 0 ? fits : blank;
  std::string line = text->substr(0, end);
  text->erase(0, std::min(text->find_first_not_of(' ', end), text->size()));
  return line;
}

// What is too long for all lines is shortened in the last one.
void Wrap(Alert* a, int width) {
  std::string rest = a->message;
  while (int(a->lines.size()) + 1 < kMostLines && !rest.empty())
    a->lines.push_back(TakeLine(&rest, width));
  if (rest.empty()) return;
  std::vector<char> fitted(rest.size() + 4);
  XwTextFitUtf8(FT_ALERT, rest.c_str(), width, fitted.data(), int(fitted.size()));
  a->lines.push_back(XwTextWidthUtf8(FT_ALERT, rest.c_str()) <= width ? rest : fitted.data());
}

// No wider than the screen, where the buttons leave a choice. Breaks the message into lines.
int WidthOf(Alert* a) {
  const int buttons = std::max(kLeastWidth, kButtonStep * (int(a->labels.size()) + 1));
  const int wrap = std::max(buttons - kBesideMessage, a->wrap_width);
  Wrap(a, std::min(wrap, std::max(buttons, XW_SCREENX) - kBesideMessage));
  int width = buttons;
  for (const std::string& line : a->lines)
    width = std::max(width, XwTextWidthUtf8(FT_ALERT, line.c_str()) + kBesideMessage);
  return width;
}

int LineHeight() {
  return FT_ALERT->ascent + FT_ALERT->descent;
}

int HeightOf(const Alert& a) {
  return kHeight + std::max(0, int(a.lines.size()) - 1) * LineHeight();
}

// The program has ended it: the wait looks whether it is still there.
OSStatus Ended(HandlerCall*, Event*, void* data) {
  XwEvent wake{};
  if (!static_cast<const Alert*>(data)->pressed) PostEvent(wake);
  return eventNotHandledErr;
}

bool Open(Alert* a) {
  const int width = WidthOf(a);
  XwWindow* w = a->window =
      XwCreate(kAlertStyle, Saturate(int64_t{Inp.root_x} - width / 2),
               Saturate(int64_t{Inp.root_y} - kAbovePointer), width, HeightOf(*a), nullptr);
  if (!w) return false;
  constexpr EventKind kEnding[] = {{kEventClassWindow, kEventWindowEnding}};
  InstallEventHandler(GetWindowEventTarget(NativeWindow(w)), Ended, kEnding, 1, a);
  XwSetText(w, SessionTitle);
  XwSetDragHandler(w, 0, nullptr);
  const int n = int(a->labels.size());
  for (int i = 0; i < n; ++i) {
    XwWindow* button =
        XwButton(w, "", kFirstButton + i, w->width - kButtonStep * (n - i), w->height - kButtonsUp,
                 kButtonWidth, kButtonHeight, XWC_ENABLED | XWC_VISIBLE, 1);
    XwSetTextUtf8(button, a->labels[size_t(i)].c_str());
    if (i == 0) a->first = button;
  }
  XwShow(w, 1);
  XwFocusControl(a->first);
  XwSetDefaultButtons(w, nullptr, a->first);
  return true;
}

void Draw(const Alert& a) {
  XwPush(a.window);
  XwClear(0, 0, 0, 0);
  DrawAlertPicture(TargetContext(), a.large, kLarge);
  DrawAlertPicture(TargetContext(), a.badge, kBadge);
  int y = kMessageTop;
  for (const std::string& line : a.lines) {
    XwDrawTextUtf8(FT_ALERT, XWC_LEFT, kMessageLeft, y, 0, 0, line.c_str(), 0, -1);
    y += LineHeight();
  }
  // Those who cannot see it read the message as a label.
  XwBoxList(3, 0, 0, 0, 0);
  XwBoxList(1, kMessageLeft, kMessageTop, a.window->width - kBesideMessage,
            std::max(1, int(a.lines.size())) * LineHeight());
  XwDescribe(-1, XWA_LABEL, 0, a.message.c_str(), nullptr);
  XwBoxList(4, 0, 0, 0, 0);
  XwPop();
}

// Among the buttons, which are all that the window has.
void MoveFocus(const Alert& a, int by) {
  const XwWindow* now = XwGetFocus(a.window);
  const int to = (now ? now->slot : 0) + by;
  if (to >= 0 && to < a.window->child_count) XwFocusControl(a.window->children[to]);
}

int Run(Alert* a) {
  if (!Open(a)) return 0;
  Dropped dropped;
  while (const int type = WaitWhileOpen(a->window)) {
    if (Inp.window != a->window) {
      dropped.Add(Inp);
    } else if (type == XWE_EXPOSE) {
      Draw(*a);
    } else if (type == XWE_LEFT || type == XWE_RIGHT) {
      MoveFocus(*a, type == XWE_LEFT ? -1 : 1);
    } else if (type == XWE_CONTROL) {
      a->pressed = Inp.item - (kFirstButton - 1);
      XwDestroy(a->window);
      break;
    }
  }
  // The caller's loop must not handle the press a second time.
  Inp.type = XWE_NONE;
  dropped.PostAgain();
  return a->pressed;
}

int Confirm(Alert* a, const char* kind) {
  ChoosePictures(kind, a);
  XwWindow* focus = Inp.focus;
  const uint64_t serial = IsLive(focus) ? focus->serial : 0;
  XwPush(nullptr);
  const int pressed = Run(a);
  XwPop();
  // Keys go where they went before.
  if (!Inp.focus && serial && IsLive(focus) && focus->serial == serial) Inp.focus = focus;
  return pressed;
}

std::vector<std::string> Labels(va_list labels) {
  std::vector<std::string> texts;
  while (const char* label = va_arg(labels, const char*)) texts.push_back(label);
  return texts;
}

}  // namespace

int XwConfirm(const char* kind, const char*, const char* message, ...) {
  Alert a;
  a.message = MacRomanToUtf8(message ? message : "");
  va_list labels;
  va_start(labels, message);
  for (const std::string& label : Labels(labels)) a.labels.push_back(MacRomanToUtf8(label.c_str()));
  va_end(labels);
  return Confirm(&a, kind);
}

int XwConfirmUtf8(const char* kind, const char*, const char* message, ...) {
  Alert a;
  a.message = ValidUtf8(message ? message : "");
  a.wrap_width = kWrapWidth;
  va_list labels;
  va_start(labels, message);
  a.labels = Labels(labels);
  va_end(labels);
  return Confirm(&a, kind);
}

int GetApplicationBundleFSSpec(FSSpec* spec) {
  constexpr int kFileNotFound = -43;
  if (!spec) return kFileNotFound;
  const ssize_t length = readlink("/proc/self/exe", spec->path, sizeof spec->path);
  const bool whole = length > 0 && size_t(length) < sizeof spec->path;
  spec->path[whole ? length : 0] = 0;
  return whole ? 0 : kFileNotFound;
}

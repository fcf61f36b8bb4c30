#include "platform/clipboard/clipboard.h"

#include <unistd.h>

#include <cstdlib>
#include <list>
#include <map>
#include <utility>

#include "platform/display/screens.h"
#include "platform/events/queue.h"
#include "platform/events/targets.h"
#include "platform/events/timers.h"
#include "platform/text/utf8.h"

namespace platform {
namespace {

struct Request {
  int number = 0;
  Selection which = Selection::kClipboard;
  TextArrived arrived = nullptr;
  void* data = nullptr;
  EventLoopTimerRef deadline = nullptr;  // null: answered
  SharedText text;                       // of the answer
};

struct Clipboard {
  SharedText offered[kSelectionCount];  // null: not this program's
  std::list<Request> requests;
  int last_number = 0;
  // In a replay an answer may arrive before the program has asked for it.
  std::map<int, SharedText> early;
};

Clipboard& State() {
  static Clipboard* state = new Clipboard;
  return *state;
}

SharedText& Offered(Selection which) {
  return State().offered[int(which)];
}

Request* Find(int number) {
  for (Request& r : State().requests)
    if (r.number == number) return &r;
  return nullptr;
}

// Removes ASCII characters other than zero from the front of the text; returns their number.
size_t TakePlain(std::string_view* text) {
  size_t n = 0;
  while (n < text->size() && (*text)[n] != 0 && uint8_t((*text)[n]) < 0x80) ++n;
  text->remove_prefix(n);
  return n;
}

// Removes one character; a zero or a byte that is not UTF-8 gives U+FFFD.
char32_t TakeValid(std::string_view* text) {
  const char32_t c = TakeUtf8(text);
  return c != 0 ? c : 0xFFFD;
}

// The size of the text after MakeValid; counting stops once it exceeds kMostText.
size_t ValidSize(std::string_view text) {
  size_t size = 0;
  while (!text.empty() && size <= kMostText) {
    size += TakePlain(&text);
    char bytes[4];
    if (!text.empty()) size += size_t(PutUtf8(TakeValid(&text), bytes));
  }
  return size;
}

// Some programs include the terminating zero: zeros at the end are removed. Other zeros and bytes
// that are not UTF-8 become U+FFFD. False: the text is too long.
bool MakeValid(std::string* text) {
  while (!text->empty() && text->back() == 0) text->pop_back();
  if (text->size() > kMostText) return false;
  if (text->find('\0') == std::string::npos && IsUtf8(*text)) return true;
  const size_t size = ValidSize(*text);
  if (size > kMostText) return false;
  std::string valid;
  valid.reserve(size);
  for (std::string_view rest = *text; !rest.empty();) {
    const std::string_view at = rest;
    valid.append(at.substr(0, TakePlain(&rest)));
    char bytes[4];
    if (!rest.empty()) valid.append(bytes, size_t(PutUtf8(TakeValid(&rest), bytes)));
  }
  *text = std::move(valid);
  return true;
}

// The answer goes through the queue, so that the callback runs in the dispatch.
void Answer(Request* r) {
  RemoveEventLoopTimer(r->deadline);
  r->deadline = nullptr;
  Event e(kEventClassClipboard, kEventTextArrived);
  e.request = {uint32_t(r->number), nullptr, 0};
  PostEventToQueue(GetMainEventQueue(), e);
}

void DropAtDisplay(const Request& r) {
  const Display* d = CurrentDisplay();
  if (r.deadline && d && d->ask_text) d->ask_text(r.which, r.number, false);
}

void DeadlineHasCome(EventLoopTimerRef timer, void*) {
  for (Request& r : State().requests) {
    if (r.deadline != timer) continue;
    DropAtDisplay(r);
    return Answer(&r);
  }
}

OSStatus CallBack(HandlerCall*, Event* event, void*) {
  Request* found = Find(int(event->request.id));
  if (!found) return noErr;
  const Request r = std::move(*found);
  ForgetAsk(r.number);
  r.arrived(r.data, r.text.get());
  return noErr;
}

// Most programs end by exit. In a forked child the handler does nothing.
void KeepAtExit() {
  static pid_t process = 0;
  if (process == getpid()) return;
  process = getpid();
  atexit([] {
    if (getpid() == process) KeepText();
  });
}

}  // namespace

bool OfferText(Selection which, std::string utf8) {
  const Display* d = CurrentDisplay();
  if (!d || !MakeValid(&utf8)) return false;
  KeepAtExit();
  auto text = std::make_shared<const std::string>(std::move(utf8));
  if (d->offer_text && !d->offer_text(which, text)) return false;
  Offered(which) = std::move(text);
  return true;
}

void GiveUp(Selection which) {
  if (!Offered(which)) return;
  Offered(which) = nullptr;
  const Display* d = CurrentDisplay();
  if (d && d->offer_text) d->offer_text(which, nullptr);
}

SharedText OfferedText(Selection which) {
  return Offered(which);
}

int AskText(Selection which, int timeout_ms, TextArrived arrived, void* data) {
  Clipboard& s = State();
  const Display* d = CurrentDisplay();
  do {
    s.last_number = s.last_number < INT32_MAX ? s.last_number + 1 : 1;
  } while (Find(s.last_number));
  Request& r = s.requests.emplace_back();
  r.number = s.last_number;
  r.which = which;
  r.arrived = arrived;
  r.data = data;
  r.text = Offered(which);
  const auto early = s.early.extract(r.number);
  if (early && !r.text) r.text = early.mapped();
  if (r.text || early || !d || !d->ask_text || timeout_ms < 1) {
    Answer(&r);
  } else {
    r.deadline = InstallEventLoopTimer(timeout_ms / 1000.0, 0, DeadlineHasCome, nullptr);
    d->ask_text(which, r.number, true);
  }
  return s.last_number;
}

void ForgetAsk(int request) {
  Request* r = Find(request);
  if (!r) return;
  DropAtDisplay(*r);
  RemoveEventLoopTimer(r->deadline);
  State().requests.remove_if([request](const Request& one) { return one.number == request; });
}

void InitClipboard() {
  constexpr EventKind kArrived[] = {{kEventClassClipboard, kEventTextArrived}};
  InstallEventHandler(GetApplicationEventTarget(), CallBack, kArrived, 1, nullptr);
}

void TextReported(int request, std::string* text) {
  Request* r = Find(request);
  const bool early = !r && request > State().last_number;
  if (!early && (!r || !r->deadline)) return;
  SharedText valid;
  if (text && MakeValid(text)) valid = std::make_shared<const std::string>(std::move(*text));
  if (early) {
    State().early[request] = std::move(valid);
    return;
  }
  r->text = std::move(valid);
  Answer(r);
}

void SelectionLost(Selection which) {
  Offered(which) = nullptr;
}

void KeepText() {
  const Display* d = CurrentDisplay();
  if (d && d->keep_text && Offered(Selection::kClipboard)) d->keep_text();
  Offered(Selection::kClipboard) = nullptr;
}

void FinishClipboard() {
  Clipboard& s = State();
  while (!s.requests.empty()) ForgetAsk(s.requests.front().number);
  for (SharedText& text : s.offered) text = nullptr;
  s.early.clear();
  s.last_number = 0;
}

}  // namespace platform

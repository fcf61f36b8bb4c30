#include "platform/clipboard/clipboard.h"

#include <unistd.h>

#include <cstdlib>
#include <list>
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
  TextArrived arrived = nullptr;
  void* data = nullptr;
  EventLoopTimerRef deadline = nullptr;  // null: answered
  SharedText text;                       // of the answer
};

struct Clipboard {
  SharedText offered[kSelectionCount];  // null: not this program's
  std::list<Request> requests;
  int last_number = 0;
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

bool IsPlain(char c) {
  return c != 0 && uint8_t(c) < 0x80;
}

// Texts end as C strings do elsewhere: zeros at the end are no part of them. What is left of zeros
// and of bytes that are not UTF-8 becomes U+FFFD. False: too long.
bool MakeValid(std::string* text) {
  while (!text->empty() && text->back() == 0) text->pop_back();
  if (text->size() > kMostText) return false;
  // Where everything is well it stays where it is.
  std::string_view rest = *text;
  while (!rest.empty() && IsPlain(rest.front())) rest.remove_prefix(1);
  bool same = true;
  for (std::string_view at = rest; same && !at.empty();) {
    const size_t before = at.size();
    const char32_t c = TakeUtf8(&at);
    same = c != 0 && (c != 0xFFFD || before - at.size() == 3);
  }
  if (same) return true;
  std::string valid(*text, 0, text->size() - rest.size());
  while (!rest.empty()) {
    char bytes[4];
    const char32_t c = TakeUtf8(&rest);
    valid.append(bytes, size_t(PutUtf8(c != 0 ? c : 0xFFFD, bytes)));
    if (valid.size() > kMostText) return false;
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
  if (r.deadline && d && d->ask_text) d->ask_text(Selection::kClipboard, r.number, 0);
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
  if (!found || found->deadline) return noErr;
  const Request r = std::move(*found);
  ForgetAsk(r.number);
  r.arrived(r.data, r.text.get());
  return noErr;
}

// Most programs end by exit. A child that this process has forked is not the program.
void KeepAtExit() {
  static pid_t process = 0;
  if (process) return;
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
  r.arrived = arrived;
  r.data = data;
  r.text = Offered(which);
  if (r.text || !d || !d->ask_text || timeout_ms < 1) {
    Answer(&r);
  } else {
    const double seconds = timeout_ms / 1000.0;
    r.deadline = InstallEventLoopTimer(seconds, 0, DeadlineHasCome, nullptr);
    d->ask_text(which, r.number, seconds);
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
  if (!r || !r->deadline) return;
  if (text && MakeValid(text)) r->text = std::make_shared<const std::string>(std::move(*text));
  Answer(r);
}

void SelectionLost(Selection which) {
  Offered(which) = nullptr;
}

void KeepText() {
  const Display* d = CurrentDisplay();
  if (d && d->keep_text && Offered(Selection::kClipboard)) d->keep_text();
}

void FinishClipboard() {
  Clipboard& s = State();
  while (!s.requests.empty()) ForgetAsk(s.requests.front().number);
  for (SharedText& text : s.offered) text = nullptr;
  s.last_number = 0;
}

}  // namespace platform

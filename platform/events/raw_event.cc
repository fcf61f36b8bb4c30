#include "platform/events/raw_event.h"

#include <deque>
#include <string>

#include "platform/events/queue.h"

namespace platform {
namespace {

struct Posted {
  RawEvent raw;
  std::string text;
  bool has_text = false;
};

struct RawEvents {
  std::deque<Posted> waiting;
  Posted taken;  // the one handed out last
};

RawEvents& State() {
  static RawEvents* state = new RawEvents;
  return *state;
}

}  // namespace

void PostRawEvent(const RawEvent& raw) {
  Posted& p = State().waiting.emplace_back();
  p.raw = raw;
  p.has_text = raw.text != nullptr;
  if (raw.text) p.text = raw.text;
  intake_hints.ReportWaits();
}

bool TakePostedRawEvent(RawEvent* out) {
  RawEvents& s = State();
  if (s.waiting.empty()) return false;
  s.taken = std::move(s.waiting.front());
  s.waiting.pop_front();
  *out = s.taken.raw;
  out->text = s.taken.has_text ? s.taken.text.c_str() : nullptr;
  return true;
}

void FinishRawEvents() {
  State() = RawEvents();
}

}  // namespace platform

// The clipboard and the primary selection, with another program that tests play.
#include <algorithm>

#include "platform/display/headless/state.h"
#include "platform/events/queue.h"

namespace platform::headless {
namespace {

State::Offer& OfferOf(Selection which) {
  return Headless().offers[int(which)];
}

void PushReport(RawEvent::Type type, Selection which, int request) {
  RawEvent raw;
  raw.type = type;
  raw.time = kHeadlessDisplay.now();
  raw.selection = uint8_t(which);
  raw.request = request;
  Headless().raw.push_back(raw);
  intake_hints.ReportWaits();
}

void Answer(Selection which, int request, const std::string* text) {
  if (text) Headless().arrived[request] = *text;
  PushReport(RawEvent::kTextArrived, which, request);
}

void TakeSelection(Selection which, SharedText text, bool later) {
  if (!Headless().open) return;
  State::Offer& offer = OfferOf(which);
  if (offer.own) PushReport(RawEvent::kSelectionLost, which, 0);
  offer = {nullptr, std::move(text), later};
}

// Reports that have not been handed out and for which `gone` is true.
template <typename F>
void DropReports(F gone) {
  State& s = Headless();
  s.raw.erase(std::remove_if(s.raw.begin() + long(s.next), s.raw.end(), gone), s.raw.end());
}

}  // namespace

bool OfferOwnText(Selection which, const SharedText& text) {
  State& s = Headless();
  if (s.selections_kept) return false;
  DropReports([which](const RawEvent& e) {
    return e.type == RawEvent::kSelectionLost && e.selection == uint8_t(which);
  });
  OfferOf(which) = {text, nullptr, false};
  return true;
}

void AskOtherForText(Selection which, int request, bool wanted) {
  State& s = Headless();
  std::erase(s.asks, request);
  if (!wanted) {
    s.arrived.erase(request);
    DropReports([request](const RawEvent& e) {
      return e.type == RawEvent::kTextArrived && e.request == request;
    });
  } else if (OfferOf(which).later) {
    s.asks.push_back(request);
  } else {
    Answer(which, request, OfferOf(which).foreign.get());
  }
}

void KeepOwnText() {
  State& s = Headless();
  s.kept = OfferOf(Selection::kClipboard).own;
}

std::string* TakeArrived(int request) {
  State& s = Headless();
  const auto text = s.arrived.extract(request);
  if (!text) return nullptr;
  s.taken_text = std::move(text.mapped());
  return &s.taken_text;
}

void OfferText(Selection which, const std::string& text) {
  TakeSelection(which, std::make_shared<const std::string>(text), false);
}

void OfferTextLater(Selection which) {
  TakeSelection(which, nullptr, true);
}

void AnswerTextRequests(const std::string* text) {
  for (int request : std::exchange(Headless().asks, {}))
    Answer(Selection::kClipboard, request, text);
}

int WaitingTextRequests() {
  return int(Headless().asks.size());
}

void KeepSelections(bool kept) {
  Headless().selections_kept = kept;
}

SharedText AskForText(Selection which) {
  return OfferOf(which).own;
}

SharedText KeptText() {
  return Headless().kept;
}

}  // namespace platform::headless

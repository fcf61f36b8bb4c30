// What the status line is told, and when that ends.
#include <map>
#include <string>
#include <vector>

#include "app/model/server_words.h"
#include "app/window/console.h"

namespace console {

void Tell(Console* c, bool good, const std::string& utf8) {
  c->status.Tell(good ? Tone::kPlain : Tone::kBad, utf8);
  c->damage |= kStatusPane;
}

void TellWhy(Console* c, const std::string& utf8, Reason still) {
  // The strip above the line says it already.
  if (!c->layout.needs.Empty() && c->needs.Text().starts_with(utf8)) return;
  // That state ends its line itself.
  const bool state = utf8 == kServerAway;
  if (state)
    c->status.TellState(utf8);
  else
    c->status.TellReason(utf8);
  c->told_still = !state && still && still(c) == utf8 ? still : nullptr;
  c->told_why = utf8;
  c->damage |= kStatusPane;
}

void EndPastReason(Console* c) {
  if (!c->told_still || c->told_still(c) == c->told_why) return;
  c->told_still = nullptr;
  c->status.PassReason();
  c->damage |= kStatusPane;
}

std::map<int, int> FailuresIn(const ServerState& state) {
  std::map<int, int> failures;
  for (const Transfer& t : state.transfers)
    if (t.state == Sending::kFailed) failures[t.number] = t.failures;
  return failures;
}

void TellNotSent(Console* c, const std::map<int, int>& before) {
  std::vector<int> still;
  for (const Transfer& t : c->state.transfers) {
    if (t.state != Sending::kFailed) continue;
    still.push_back(t.number);
    const auto told = before.find(t.number);
    if (told != before.end() && told->second == t.failures) continue;
    c->status.TellNotSent(t.number, t.order.document, t.text);
    c->failed_while_asking = true;
  }
  c->status.KeepNotSent(still);
}

}  // namespace console

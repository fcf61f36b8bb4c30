// A program with selections, and other programs at work beside it.
#pragma once
#include <list>

#include "platform/clipboard/clipboard.h"
#include "platform/display/x11/x.h"
#include "tests/x11/fixture.h"
#include "tests/x11/peer.h"

namespace x11_test {

using namespace platform;

constexpr Selection kClip = Selection::kClipboard;

// Text of about so many bytes, without a period that a lost piece could hide in.
inline std::string LongText(size_t size) {
  std::string text;
  text.reserve(size + 32);
  for (size_t line = 0; text.size() < size; ++line)
    text += "line " + std::to_string(line) + " \xC3\xA4\xE4\xB8\xAD\xF0\x9F\x98\x80\n";
  return text;
}

class Selections : public X11Test {
 protected:
  void SetUp() override { Start(); }
  // The loop and the other programs until `done`.
  bool Run(const std::function<bool()>& done) {
    const double end = x11::Now() + 20;
    while (!done()) {
      if (x11::Now() > end) return false;
      Event e;
      if (ReceiveNextEvent(0.002, &e)) SendEventToEventTarget(&e, GetEventDispatcherTarget());
      for (Peer* p : peers) p->Work();
    }
    return true;
  }
  void Idle(int turns = 40) {
    Run([&] { return turns-- <= 0; });
  }
  int Ask(Selection which = kClip, int ms = 5000) {
    return AskText(
        which, ms,
        [](void* data, const std::string* text) {
          static_cast<Selections*>(data)->answers.push_back(text ? *text : "(none)");
        },
        this);
  }
  // What is there, with the other programs at work.
  std::string Paste(Selection which = kClip, int ms = 5000) {
    answers.clear();
    Ask(which, ms);
    return Run([&] { return !answers.empty(); }) ? answers.back() : "(nothing)";
  }
  // One after the other; those before live on, since the server gives their numbers again.
  Peer& NewPeer() {
    peers = {&kept.emplace_back()};
    return kept.back();
  }
  void TearDown() override {
    kept.clear();
    X11Test::TearDown();
  }
  std::list<Peer> kept;
  std::vector<Peer*> peers;
  std::vector<std::string> answers;
};

}  // namespace x11_test

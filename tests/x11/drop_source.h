// Another program that drops files on a window.
#pragma once
#include <algorithm>

#include "tests/support/x_server.h"
#include "tests/x11/peer.h"

namespace x11_test {

// It answers only while Work() runs.
class DropSource : public Peer {
 public:
  static constexpr const char* kList = "text/uri-list";
  explicit DropSource(xcb_window_t target) : target_(target) {
    Own("XdndSelection");
    on_message = [this](const xcb_client_message_event_t& m) {
      heard.push_back((m.type == Atom("XdndStatus") ? "status " : "finished ") +
                      std::to_string(m.data.data32[1]));
    };
  }
  void Enter(const char* type) {
    Send("XdndEnter", {window(), 5u << 24, Atom(type), 0, 0});
    Position();
  }
  void Position() {
    Send("XdndPosition", {window(), 0, 150 << 16 | 200, 0, Atom("XdndActionCopy")});
  }
  void Drop() {
    Enter(kList);
    Send("XdndDrop", {window(), 0, 0, 0, 0});
  }
  void Leave() { Send("XdndLeave", {window(), 0, 0, 0, 0}); }
  // What it says when it is asked for the list: all of it, in pieces of `size` bytes of which it
  // has only so many, or nothing at all.
  void Give(const Value& value) { answers[kList] = {value, {}}; }
  void Give(const std::string& list) { Give({kList, 8, list}); }
  void GiveInPieces(const std::string& list, size_t size, size_t most = SIZE_MAX) {
    Answer answer = InPieces(kList, list, size);
    late.assign(answer.pieces.begin() + ptrdiff_t(std::min(most, answer.pieces.size())),
                answer.pieces.end());
    answer.pieces.resize(answer.pieces.size() - late.size());
    answers[kList] = answer;
  }
  void BeSilent() { answers[kList].how = Answer::kSaysNothing; }
  void Send(const char* type, std::vector<uint32_t> data) {
    support::SendMessage(connection(), target_, 0, target_, Atom(type), data);
    Sync();
  }
  std::vector<Value> late;
  std::vector<std::string> heard;

 private:
  xcb_window_t target_;
};

}  // namespace x11_test

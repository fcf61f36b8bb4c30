// What the status line tells: messages that pass, errors that stay until they are read, and what
// takes a while.
#pragma once
#include <cstdint>
#include <deque>
#include <string>
#include <utility>
#include <vector>

namespace console {

// How something is shown. Only what somebody has to do something about is kBad; what a person
// asked for, such as a cancelled job, never is.
enum class Tone : uint8_t { kPlain, kMuted, kBusy, kGood, kWarning, kBad };

// Something that a person should be told once.
struct Message {
  Tone tone = Tone::kPlain;
  std::string text;  // UTF-8; empty: nothing
};

class Notices {
 public:
  // An error or a warning is kept until Read; one that is there already is counted. Anything else
  // stands for some seconds, until the next one: beside an error that came later, a success would
  // read as if it belonged to that.
  void Tell(Message message, int64_t now_ms);
  // Why what somebody has just asked for cannot be done, "": nothing. It is kept until Read, too,
  // but shown at once, before the errors, in place of an earlier such reason.
  void TellReason(std::string text);
  // The same of a state that shows in the window, and with which it ends: what was not done stands
  // before it.
  void TellState(std::string text);
  void EndState();
  // The next thing is done: a reason that is shown counts as read.
  void PassReason();
  // A document, by its number, was not sent: those of one trouble share an error.
  void TellNotSent(int document, const std::string& name, const std::string& trouble);
  // Of these documents, in the order of their numbers, that is still so; what was told of others
  // ends.
  void KeepNotSent(const std::vector<int>& documents);
  // The error or warning that is shown has been read: the next one comes.
  void Read();
  // The message that stands for some seconds goes at once.
  void Forget() { message_ = {}; }
  // That one, if it still stands.
  void Forget(const std::string& text) {
    if (message_.text == text) Forget();
  }
  // Makes or changes the line of what takes a while; `key` names it, and "" ends it. The
  // longest-standing one is shown, with the number of the others.
  void Progress(const std::string& key, std::string text);
  void EndProgress(const std::string& key);
  // What something that is being dragged would do: shown before all else that passes, "": nothing
  // is dragged.
  void Hint(std::string text) { hint_ = std::move(text); }

  // What the line shows at this time: the reason, else the oldest error or warning, else what
  // passes.
  Message Shown(int64_t now_ms) const;
  // What the line shows beside an error or warning, and alone where there is none: the hint, else
  // the message, else what takes a while, else nothing.
  Message Passing(int64_t now_ms) const;
  bool HasError() const { return !errors_.empty(); }
  int errors() const { return int(errors_.size()) + left_out_; }
  std::string ProgressText() const;
  // When the line changes by itself, -1: never.
  int64_t NextChange(int64_t now_ms) const;

 private:
  struct Error {
    Tone tone;
    std::string text;
    int times;
    enum Kind : uint8_t { kPlain, kReason, kState } kind = kPlain;
    // Of documents that were not sent: the text is their trouble.
    std::vector<std::pair<int, std::string>> documents = {};
  };
  static std::string TextOf(const Error& error);
  void Add(Error error);
  struct Line {
    std::string key, text;
  };
  std::deque<Error> errors_;
  int left_out_ = 0;
  Message message_;
  int64_t until_ms_ = 0;
  std::vector<Line> lines_;
  std::string hint_;
};

}  // namespace console

#include "app/model/notices.h"

#include <algorithm>

#include "app/format/words.h"

namespace console {
namespace {

constexpr int kMessageMs = 6000;
constexpr size_t kMostErrors = 100;

}  // namespace

void Notices::Tell(Message message, int64_t now_ms) {
  if (message.text.empty()) return;
  if (message.tone != Tone::kBad && message.tone != Tone::kWarning) {
    message_ = std::move(message);
    until_ms_ = now_ms + kMessageMs;
    return;
  }
  Forget();
  const auto same = std::find_if(errors_.begin(), errors_.end(), [&](const Error& e) {
    return !e.reason && e.text == message.text;
  });
  if (same != errors_.end())
    ++same->times;
  else if (errors_.size() < kMostErrors)
    errors_.push_back({message.tone, std::move(message.text), 1, false});
  else
    ++left_out_;
}

void Notices::PassReason() {
  if (!errors_.empty() && errors_.front().reason) Read();
}

void Notices::TellReason(std::string text) {
  if (text.empty()) return;
  Forget();
  PassReason();
  errors_.push_front({Tone::kWarning, std::move(text), 1, true});
}

void Notices::Read() {
  if (errors_.empty()) return;
  errors_.pop_front();
  if (errors_.empty()) left_out_ = 0;
}

void Notices::Progress(const std::string& key, std::string text) {
  if (text.empty()) return EndProgress(key);
  for (Line& line : lines_) {
    if (line.key != key) continue;
    line.text = std::move(text);
    return;
  }
  lines_.push_back({key, std::move(text)});
}

void Notices::EndProgress(const std::string& key) {
  std::erase_if(lines_, [&](const Line& line) { return line.key == key; });
}

Message Notices::Shown(int64_t now_ms) const {
  if (errors_.empty()) return Passing(now_ms);
  const Error& first = errors_.front();
  std::string more = first.times > 1 ? NumberText(first.times) + " times" : "";
  if (errors() > 1)
    more += (more.empty() ? "" : "; ") + NumberOf(errors() - 1, "more message", "more messages");
  return {first.tone, first.text + (more.empty() ? "" : " (" + more + ")")};
}

Message Notices::Passing(int64_t now_ms) const {
  if (!hint_.empty()) return {Tone::kBusy, hint_};
  if (now_ms < until_ms_ && !message_.text.empty()) return message_;
  return {Tone::kBusy, ProgressText()};
}

std::string Notices::ProgressText() const {
  if (lines_.empty()) return "";
  std::string text = lines_.front().text;
  if (lines_.size() > 1) text += " (and " + NumberText(int64_t(lines_.size()) - 1) + " more)";
  return text;
}

int64_t Notices::NextChange(int64_t now_ms) const {
  return now_ms < until_ms_ ? until_ms_ : -1;
}

}  // namespace console

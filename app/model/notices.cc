#include "app/model/notices.h"

#include <algorithm>

#include "app/format/words.h"
#include "app/model/queue_words.h"

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
    return e.kind == Error::kPlain && e.documents.empty() && e.text == message.text;
  });
  if (same != errors_.end())
    ++same->times;
  else if (errors_.size() < kMostErrors)
    Add({message.tone, std::move(message.text), 1});
  else
    ++left_out_;
}

// A state stays the last.
void Notices::Add(Error error) {
  const bool before = !errors_.empty() && errors_.back().kind == Error::kState;
  errors_.insert(errors_.end() - before, std::move(error));
}

void Notices::PassReason() {
  std::erase_if(errors_, [](const Error& e) { return e.kind != Error::kPlain; });
  if (errors_.empty()) left_out_ = 0;
}

void Notices::TellReason(std::string text) {
  if (text.empty()) return;
  Forget();
  PassReason();
  errors_.push_front({Tone::kWarning, std::move(text), 1, Error::kReason});
}

void Notices::TellState(std::string text) {
  PassReason();
  errors_.push_back({Tone::kWarning, std::move(text), 1, Error::kState});
}

void Notices::EndState() {
  std::erase_if(errors_, [](const Error& e) { return e.kind == Error::kState; });
}

void Notices::TellNotSent(int document, const std::string& name, const std::string& trouble) {
  const auto same = std::find_if(errors_.begin(), errors_.end(), [&](const Error& e) {
    return !e.documents.empty() && e.text == trouble;
  });
  if (same == errors_.end())
    return Add({Tone::kBad, trouble, 1, Error::kPlain, {{document, name}}});
  std::erase_if(same->documents, [document](const auto& d) { return d.first == document; });
  same->documents.emplace_back(document, name);
}

void Notices::KeepNotSent(const std::vector<int>& documents) {
  const auto ended = [&](const auto& document) {
    return !std::binary_search(documents.begin(), documents.end(), document.first);
  };
  for (size_t i = errors_.size(); i-- > 0;)
    if (std::erase_if(errors_[i].documents, ended) > 0 && errors_[i].documents.empty())
      errors_.erase(errors_.begin() + std::ptrdiff_t(i));
  if (errors_.empty()) left_out_ = 0;
}

std::string Notices::TextOf(const Error& error) {
  if (error.documents.empty()) return error.text;
  return NotSentText(error.documents.size(), error.documents.front().second, error.text);
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
  return {first.tone, TextOf(first) + (more.empty() ? "" : " (" + more + ")")};
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

#include "printserverd/spool_records.h"

#include <sys/random.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <memory>
#include <tuple>

#include "printserverd/log.h"

namespace printserverd {

namespace {

constexpr const char* kCountersName = "counters";
constexpr const char* kPrintersName = "printers";
constexpr size_t kMaxFile = 4 << 20;

constexpr int64_t kMaxOutput = 9999999999;  // ten digits

// Outputs of a crashed run that the counter has left out at most.
constexpr int64_t kOutputsAhead = 100;

bool StoreIn(int root, const char* name, const std::string& text) {
  if (ReplaceFileIn(root, name, text, true) && SyncFolder(root)) return true;
  LogRarely(std::string("cannot store the file ") + name + ": " + strerror(errno));
  return false;
}

// The text of a file; true and nothing when there is none. errno is 0 unless it could not be read.
bool ReadRecords(int root, const char* name, std::string* text) {
  const bool read = ReadFileIn(root, name, kMaxFile, text);
  const bool none = !read && errno == ENOENT;
  if (!read) text->clear();
  if (read || none || IsForeign(errno)) errno = 0;
  return read || none;
}

std::string TextOf(const std::vector<PrinterEntry>& entries) {
  std::string text;
  for (const PrinterEntry& entry : entries) {
    AppendField(&text, "name", entry.name, kMaxName);
    AppendField(&text, "id", HexOfId(entry.id), 32);
    AppendField(&text, "paused", entry.paused ? 1 : 0);
    AppendField(&text, "accepting", entry.accepting ? 1 : 0);
    text += entry.unknown;
    text.push_back('\n');
  }
  return text;
}

bool ApplyLine(std::string_view line, PrinterEntry* entry) {
  std::string_view key, value;
  if (!SplitField(line, &key, &value)) return false;
  if (key == "name") {
    entry->name = Unescape(value);
    return entry->name.size() <= kMaxName;
  }
  if (key == "id") return IdOfHex(value, &entry->id);
  if (key == "paused" || key == "accepting") {
    (key == "paused" ? entry->paused : entry->accepting) = value == "1";
    return value == "0" || value == "1";
  }
  entry->unknown.append(line).push_back('\n');
  return true;
}

void Apply(const PrinterTicket& ticket, PrinterEntry* entry) {
  if (ticket.paused >= 0) entry->paused = ticket.paused != 0;
  if (ticket.accepting >= 0) entry->accepting = ticket.accepting != 0;
}

}  // namespace

bool NewId(RequestId* id) {
  id->assign(16, '\0');
  return getrandom(id->data(), id->size(), 0) == static_cast<ssize_t>(id->size());
}

bool Counters::Load() {
  std::string text;
  if (!ReadRecords(root_, kCountersName, &text)) return false;
  bool good = true;
  std::string_view rest = text, line, key, value;
  while (TakeLine(&rest, &line) && !line.empty()) {
    if (!SplitField(line, &key, &value)) return false;
    if (key != "number" && key != "output") unknown_.append(line).push_back('\n');
    // No more than the records of jobs and the names of outputs have room for.
    for (const auto& [name, counter, most] :
         {std::tuple{"number", &number_, kMaxNumber}, {"output", &output_, kMaxOutput}}) {
      if (key != name) continue;
      const auto number = ParseNumber(value, 0, most);
      good = good && number;
      if (number) *counter = *number;
    }
  }
  stored_number_ = number_;
  stored_output_ = output_;
  return good;
}

void Counters::KeepNumber(int64_t number) {
  if (number > stored_number_) StoreAs(number_, stored_output_);
}

int64_t Counters::NextOutput() {
  if (++output_ > stored_output_) StoreAs(stored_number_, output_ + kOutputsAhead);
  return output_;
}

void Counters::Store() {
  if (number_ != stored_number_ || output_ != stored_output_) StoreAs(number_, output_);
}

void Counters::StoreAs(int64_t number, int64_t output) {
  const int64_t number_before = stored_number_, output_before = stored_output_;
  stored_number_ = number;
  stored_output_ = output;
  std::string text;
  AppendField(&text, "number", number);
  AppendField(&text, "output", std::min(output, kMaxOutput));
  text += unknown_;
  text.push_back('\n');
  const auto stored = std::make_shared<bool>(false);
  disk_->Do([stored, root = root_, text] { *stored = StoreIn(root, kCountersName, text); },
            [this, stored, number_before, output_before] {
              if (*stored) return;
              // The next time that one of them counts it is tried again.
              stored_number_ = std::min(stored_number_, number_before);
              stored_output_ = std::min(stored_output_, output_before);
            });
}

bool PrinterEntries::Load() {
  std::string text;
  if (!ReadRecords(root_, kPrintersName, &text)) return false;
  std::vector<PrinterEntry> entries;
  std::string_view rest = text, line;
  PrinterEntry entry;
  while (TakeLine(&rest, &line)) {
    if (!line.empty()) {
      if (!ApplyLine(line, &entry)) return false;
      continue;
    }
    if (entry.name.empty() || entry.id.empty()) return false;
    entries.push_back(std::move(entry));
    entry = PrinterEntry();
  }
  entries_ = std::move(entries);
  return entry.name.empty();
}

const PrinterEntry& PrinterEntries::Of(std::string_view name) const {
  return *std::find_if(entries_.begin(), entries_.end(),
                       [&](const PrinterEntry& entry) { return entry.name == name; });
}

void PrinterEntries::Add(std::string_view name) {
  for (const PrinterEntry& entry : entries_) {
    if (entry.name == name) return;
  }
  PrinterEntry entry;
  entry.name = name;
  NewId(&entry.id);
  entries_.push_back(std::move(entry));
  added_ = true;
}

const PrinterEntry* PrinterEntries::Find(const RequestId& id) const {
  for (const PrinterEntry& entry : entries_) {
    if (entry.id == id) return &entry;
  }
  return nullptr;
}

void PrinterEntries::StoreAdded() {
  if (!added_) return;
  added_ = false;
  disk_->Do([root = root_, text = TextOf(entries_)] { StoreIn(root, kPrintersName, text); });
}

void PrinterEntries::Change(const RequestId& id, const PrinterTicket& ticket,
                            std::function<void(bool)> done) {
  pending_.push_back({id, ticket, std::move(done)});
  if (pending_.size() == 1) NextChange();
}

void PrinterEntries::NextChange() {
  const PendingChange& next = pending_.front();
  std::vector<PrinterEntry> changed = entries_;
  for (PrinterEntry& entry : changed) {
    if (entry.id == next.id) Apply(next.ticket, &entry);
  }
  const auto stored = std::make_shared<bool>(false);
  disk_->Do([stored, root = root_,
             text = TextOf(changed)] { *stored = StoreIn(root, kPrintersName, text); },
            [this, stored] {
              const PendingChange change = std::move(pending_.front());
              pending_.pop_front();
              for (PrinterEntry& entry : entries_) {
                if (*stored && entry.id == change.id) Apply(change.ticket, &entry);
              }
              change.done(*stored);
              if (!pending_.empty()) NextChange();
            });
}

}  // namespace printserverd

// Tickets and job records: the fields of a job as text, and back.
#include <algorithm>
#include <cctype>

#include "printserverd/job.h"

namespace printserverd {

namespace {

struct TextKey {
  std::string_view key;
  TicketKeys bit;
  std::string Ticket::*field;
  size_t max;
};

constexpr TextKey kTextKeys[] = {
    {"document", kDocumentKey, &Ticket::document, kMaxDocumentName},
    {"owner", kOwnerKey, &Ticket::owner, kMaxName},
    {"printer", kPrinterKey, &Ticket::printer, kMaxName},
    {"profile", kProfileKey, &Ticket::profile, kMaxProfile},
    {"media", kMediaKey, &Ticket::media, kMaxMedia},
};

struct NumberKey {
  std::string_view key;
  TicketKeys bit;
  int64_t Ticket::*field;
  int64_t low, high;
};

constexpr NumberKey kNumberKeys[] = {
    {"copies", kCopiesKey, &Ticket::copies, 1, kMaxCopies},
    {"priority", kPriorityKey, &Ticket::priority, 1, kMaxPriority},
    {"hold", kHoldKey, &Ticket::hold, 0, 1},
};

constexpr std::string_view kStateWords[] = {"waiting",   "held", "printing",
                                            "paper-out", "done", "failed"};

bool IsColour(std::string_view value) {
  const auto hex = [](char c) { return isxdigit(static_cast<unsigned char>(c)) != 0; };
  return value.empty() || (value.size() == 6 && std::all_of(value.begin(), value.end(), hex));
}

// Applies one field to a ticket: the bit of its key, 0 for a key that no ticket has; false when
// the value is not allowed.
bool ApplyField(std::string_view key, std::string_view value, Ticket* ticket, TicketKeys* bit) {
  for (const TextKey& row : kTextKeys) {
    if (row.key != key) continue;
    *bit = row.bit;
    std::string text = Unescape(value);
    if (text.size() > row.max || text.find('\0') != std::string::npos) return false;
    ticket->*row.field = std::move(text);
    return true;
  }
  for (const NumberKey& row : kNumberKeys) {
    if (row.key != key) continue;
    *bit = row.bit;
    const auto number = ParseNumber(value, row.low, row.high);
    if (number) ticket->*row.field = *number;
    return number.has_value();
  }
  *bit = 0;
  if (key != "colour") return true;
  *bit = kColourKey;
  ticket->colour = value;
  return IsColour(value);
}

struct JobNumber {
  std::string_view key;
  int64_t Job::*field;
  int64_t max;
};

constexpr int64_t kMost = INT64_MAX / (2 * kMaxCopies);
constexpr JobNumber kStoredNumbers[] = {
    {"submitted", &Job::submitted, kMost}, {"size", &Job::size, kMost},
    {"number", &Job::number, kMaxNumber},  {"finished", &Job::finished, kMost},
    {"place", &Job::place, INT64_MAX},     {"outputs", &Job::outputs, kMost},
    {"started", &Job::started, kMost},     {"since", &Job::since, kMost},
};

// Applies one field of a job file. False when its value is not allowed.
bool ApplyStored(std::string_view line, std::string_view key, std::string_view value, Job* job) {
  TicketKeys bit;
  if (!ApplyField(key, value, &job->ticket, &bit)) return false;
  if (bit != 0 || key == "id") return true;
  for (const JobNumber& row : kStoredNumbers) {
    if (row.key != key) continue;
    const auto number = ParseNumber(value, 0, row.max);
    if (number) job->*row.field = *number;
    return number.has_value();
  }
  if (key == "text") {
    job->text = Unescape(value).substr(0, kMaxText);
  } else if (key == "reasons") {
    job->reasons = Unescape(value).substr(0, kMaxText);
  } else if (key == "state") {
    const auto* word = std::find(std::begin(kStateWords), std::end(kStateWords), value);
    // What a later version calls otherwise must not print by accident.
    job->state =
        word == std::end(kStateWords) ? JobState::kHeld : static_cast<JobState>(word - kStateWords);
  } else {
    job->unknown.append(line).push_back('\n');
  }
  return true;
}

void AppendCommon(std::string* out, const Job& job) {
  AppendField(out, "id", HexOfId(job.id), 32);
  AppendField(out, "state", kStateWords[static_cast<int>(job.state)], kMaxText);
  for (const TextKey& row : kTextKeys) AppendField(out, row.key, job.ticket.*row.field, row.max);
  for (const NumberKey& row : kNumberKeys) AppendField(out, row.key, job.ticket.*row.field);
  if (!job.ticket.colour.empty()) AppendField(out, "colour", job.ticket.colour, 6);
  AppendField(out, "submitted", job.submitted);
  if (job.started > 0) AppendField(out, "started", job.started);
  if (job.since > 0) AppendField(out, "since", job.since);
  AppendField(out, "size", job.size);
  AppendField(out, "number", job.number);
  AppendField(out, "text", job.text, kMaxText);
}

// Sheets of the bytes from the beginning of a copy, the last one perhaps in part.
int64_t SheetsOf(int64_t bytes, int64_t sheet_bytes) {
  return bytes / sheet_bytes + (bytes % sheet_bytes != 0);
}

void AppendPages(std::string* out, const Job& job, int64_t sheet_bytes) {
  const int64_t each = std::max<int64_t>(SheetsOf(job.size, sheet_bytes), 1);
  const int64_t pages = job.size == 0 ? 1 : each * job.ticket.copies;
  int64_t printed = 0;
  if (job.state == JobState::kDone) {
    printed = pages;
  } else if (job.size > 0) {
    printed = job.printed / job.size * each + job.printed % job.size / sheet_bytes;
  }
  AppendField(out, "pages", pages);
  AppendField(out, "pages-printed", printed);
}

}  // namespace

Status ParseTicket(std::string_view text, Ticket* ticket, Given* given) {
  *given = Given();
  if (text.find('\0') != std::string_view::npos) return Status::kBadTicket;
  std::string_view line, key, value;
  while (TakeLine(&text, &line) && !line.empty()) {
    if (!SplitField(line, &key, &value)) return Status::kBadTicket;
    TicketKeys bit;
    if (!ApplyField(key, value, ticket, &bit)) return Status::kBadTicket;
    if (key == "before") {
      if (!IdOfHex(value, &given->before)) return Status::kBadTicket;
      bit = kBeforeKey;
    }
    given->keys |= bit;
  }
  return Status::kDone;
}

Status ParsePrinterTicket(std::string_view text, PrinterTicket* ticket) {
  constexpr struct {
    std::string_view key;
    int64_t PrinterTicket::*field;
    int64_t low;
  } kKeys[] = {{"paused", &PrinterTicket::paused, 0},
               {"accepting", &PrinterTicket::accepting, 0},
               {"paper-loaded", &PrinterTicket::paper_loaded, 1}};
  if (text.find('\0') != std::string_view::npos) return Status::kBadTicket;
  std::string_view line, key, value;
  while (TakeLine(&text, &line) && !line.empty()) {
    if (!SplitField(line, &key, &value)) return Status::kBadTicket;
    for (const auto& row : kKeys) {
      if (row.key != key) continue;
      const auto number = ParseNumber(value, row.low, 1);
      if (!number) return Status::kBadTicket;
      ticket->*row.field = *number;
    }
  }
  return Status::kDone;
}

std::string StoredRecord(const Job& job) {
  std::string out;
  AppendCommon(&out, job);
  AppendField(&out, "finished", job.finished);
  AppendField(&out, "place", job.place);
  if (job.outputs >= 0) AppendField(&out, "outputs", job.outputs);
  AppendField(&out, "reasons", job.reasons, kMaxText);
  out += job.unknown;
  out.push_back('\n');
  return out;
}

void AppendListed(std::string* out, const Job& job, const Shown& shown) {
  AppendCommon(out, job);
  AppendField(out, "total", job.Total());
  AppendField(out, "printed", job.printed);
  AppendField(out, "kept", job.kept ? 1 : 0);
  AppendField(out, "reasons", shown.reasons, kMaxText);
  if (shown.sheet_bytes > 0) AppendPages(out, job, shown.sheet_bytes);
  out->push_back('\n');
}

bool ParseStoredRecord(std::string_view text, Job* job) {
  // Every version writes these, and the empty line at the end.
  bool state = false, size = false, whole = false;
  bool good = text.find('\0') == std::string_view::npos;
  job->place = job->outputs = -1;
  std::string_view line, key, value;
  while (TakeLine(&text, &line)) {
    if (line.empty()) {
      whole = true;
      break;
    }
    if (!SplitField(line, &key, &value) || !ApplyStored(line, key, value, job)) {
      good = false;
      continue;
    }
    state = state || key == "state";
    size = size || key == "size";
  }
  // One that is past all numbers is nobody's.
  if (job->place < 0 || job->place >= PlaceOf(kMaxNumber + 1)) job->place = PlaceOf(job->number);
  return good && state && size && whole;
}

}  // namespace printserverd

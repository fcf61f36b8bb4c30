// Tickets and job records: the fields of a job as text, and back.
#include <algorithm>

#include "printserverd/queue.h"

namespace printserverd {

namespace {

struct TextKey {
  std::string_view key;
  std::string Ticket::*field;
  size_t max;
};

// In the order of the bits of TicketKeys.
constexpr TextKey kTextKeys[] = {
    {"document", &Ticket::document, kMaxDocumentName},
    {"owner", &Ticket::owner, kMaxName},
    {"printer", &Ticket::printer, kMaxName},
    {"profile", &Ticket::profile, kMaxProfile},
    {"media", &Ticket::media, kMaxMedia},
};

struct NumberKey {
  std::string_view key;
  int64_t Ticket::*field;
  int64_t low, high;
};

constexpr NumberKey kNumberKeys[] = {
    {"copies", &Ticket::copies, 1, kMaxCopies},
    {"priority", &Ticket::priority, 1, kMaxPriority},
    {"hold", &Ticket::hold, 0, 1},
};

constexpr std::string_view kStateWords[] = {"waiting",   "held", "printing",
                                            "paper-out", "done", "failed"};

// Applies one field to a ticket: the bit of its key, 0 for a key that no ticket has; false when
// the value is not allowed.
bool ApplyField(std::string_view key, std::string_view value, Ticket* ticket, TicketKeys* bit) {
  *bit = 1;
  for (const TextKey& row : kTextKeys) {
    if (row.key == key) {
      std::string text = Unescape(value);
      if (text.size() > row.max || text.find('\0') != std::string::npos) return false;
      ticket->*row.field = std::move(text);
      return true;
    }
    *bit <<= 1;
  }
  for (const NumberKey& row : kNumberKeys) {
    if (row.key == key) {
      const auto number = ParseNumber(value, row.low, row.high);
      if (number) ticket->*row.field = *number;
      return number.has_value();
    }
    *bit <<= 1;
  }
  *bit = 0;
  return true;
}

struct JobNumber {
  std::string_view key;
  int64_t Job::*field;
};

constexpr JobNumber kStoredNumbers[] = {
    {"submitted", &Job::submitted},
    {"size", &Job::size},
    {"number", &Job::number},
    {"finished", &Job::finished},
};

}  // namespace

Status ParseTicket(std::string_view text, Ticket* ticket, TicketKeys* keys) {
  *keys = 0;
  if (text.find('\0') != std::string_view::npos) return Status::kBadTicket;
  std::string_view line, key, value;
  while (TakeLine(&text, &line) && !line.empty()) {
    if (!SplitField(line, &key, &value)) return Status::kBadTicket;
    TicketKeys bit;
    if (!ApplyField(key, value, ticket, &bit)) return Status::kBadTicket;
    *keys |= bit;
  }
  return Status::kDone;
}

std::string JobRecord(const Job& job, bool stored) {
  std::string out;
  AppendField(&out, "id", HexOfId(job.id), 32);
  AppendField(&out, "state", kStateWords[static_cast<int>(job.state)], kMaxText);
  for (const TextKey& row : kTextKeys) AppendField(&out, row.key, job.ticket.*row.field, row.max);
  for (const NumberKey& row : kNumberKeys) AppendField(&out, row.key, job.ticket.*row.field);
  AppendField(&out, "submitted", job.submitted);
  AppendField(&out, "size", job.size);
  if (stored) {
    AppendField(&out, "number", job.number);
    AppendField(&out, "finished", job.finished);
  } else {
    AppendField(&out, "total", job.Total());
    AppendField(&out, "printed", job.printed);
  }
  AppendField(&out, "text", job.text, kMaxText);
  out.push_back('\n');
  return out;
}

bool ParseJobRecord(std::string_view text, Job* job) {
  std::string_view line, key, value;
  while (TakeLine(&text, &line) && !line.empty()) {
    TicketKeys bit;
    if (!SplitField(line, &key, &value)) return false;
    if (!ApplyField(key, value, &job->ticket, &bit)) return false;
    for (const JobNumber& row : kStoredNumbers) {
      if (row.key != key) continue;
      const auto number = ParseNumber(value, 0, INT64_MAX / (2 * kMaxCopies));
      if (!number) return false;
      job->*row.field = *number;
    }
    if (key == "text") job->text = Unescape(value).substr(0, kMaxText);
    if (key == "state") {
      const auto* word = std::find(std::begin(kStateWords), std::end(kStateWords), value);
      if (word == std::end(kStateWords)) return false;
      job->state = static_cast<JobState>(word - std::begin(kStateWords));
    }
  }
  return true;
}

}  // namespace printserverd

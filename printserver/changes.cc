#include "printserver/changes.h"

#include <stdio.h>

#include "printserver/nc.h"

namespace nc {

namespace {

constexpr int32_t kTicketSize = 4096;

// A ticket in the making: once a line does not fit, it is none.
class Ticket {
 public:
  void Add(const char* key, const std::string& value) {
    good_ = good_ && NC_AddTicketText(text_, sizeof text_, key, value.c_str());
  }
  void Add(const char* key, int64_t value) { Add(key, std::to_string(value)); }
  void AddColour(int32_t colour) {
    char digits[16];
    snprintf(digits, sizeof digits, "%06x", static_cast<unsigned>(colour) & 0xffffff);
    Add("colour", colour < 0 ? "" : digits);
  }
  std::string Text() const { return good_ ? text_ : ""; }

 private:
  char text_[kTicketSize] = "";
  bool good_ = true;
};

std::string Cut(std::string name) {
  if (name.size() < NC_DOCUMENT_TEXT) return name;
  size_t length = NC_DOCUMENT_TEXT - 1;
  // Not within a character, which has at most three bytes after its first.
  for (int i = 0; i < 3 && (name[length] & 0xc0) == 0x80; ++i) --length;
  name.resize(length);
  return name;
}

int32_t Write(int fd, const void* id, const std::string& ticket) {
  if (ticket.empty()) return NC_STATUS_BAD_TICKET;
  const int32_t status = NC_WritePrintRequestN(fd, id, ticket.c_str(), -1, 0, nullptr, nullptr);
  return status < 0 ? -1 : status;
}

int32_t Hold(int fd, const NC_Job& job, bool hold) {
  return Write(fd, job.id, hold ? "hold=1" : "hold=0");
}

}  // namespace

std::string TicketOf(const Order& order) {
  Ticket ticket;
  const std::pair<const char*, const std::string&> texts[] = {{"owner", order.owner},
                                                              {"printer", order.printer},
                                                              {"profile", order.profile},
                                                              {"media", order.media}};
  if (!order.document.empty()) ticket.Add("document", Cut(order.document));
  for (const auto& [key, value] : texts) {
    if (!value.empty()) ticket.Add(key, value);
  }
  ticket.Add("copies", order.copies);
  ticket.Add("priority", order.priority);
  ticket.Add("hold", order.hold ? 1 : 0);
  if (order.colour >= 0) ticket.AddColour(order.colour);
  return ticket.Text();
}

std::string TicketOf(const Change& change) {
  Ticket ticket;
  const std::pair<const char*, const std::optional<std::string>&> texts[] = {
      {"owner", change.owner},
      {"printer", change.printer},
      {"profile", change.profile},
      {"media", change.media},
      {"before", change.before}};
  if (change.document) ticket.Add("document", Cut(*change.document));
  for (const auto& [key, value] : texts) {
    if (value) ticket.Add(key, *value);
  }
  if (change.copies) ticket.Add("copies", *change.copies);
  if (change.priority) ticket.Add("priority", *change.priority);
  if (change.hold) ticket.Add("hold", *change.hold ? 1 : 0);
  if (change.colour) ticket.AddColour(*change.colour);
  return ticket.Text();
}

int32_t ChangeJob(int fd, const uint8_t* id, const Change& change) {
  return Write(fd, id, TicketOf(change));
}

Moved MoveJob(int fd, const NC_Job& job, const Change& change) {
  const bool was_held = job.hold || job.state == NC_JOB_HELD;
  const bool release = !was_held && !change.hold.value_or(false);
  if (!was_held) {
    const int32_t status = Hold(fd, job, true);
    if (status != NC_STATUS_DONE) return {status, status < 0};
  }
  Change rest = change;
  if (!was_held) rest.hold.reset();
  const int32_t changed = ChangeJob(fd, job.id, rest);
  if (changed < 0 || was_held) return {changed, changed < 0 && !was_held};
  // What was refused changed nothing: the job goes back to what it was doing.
  if (!release && changed == NC_STATUS_DONE) return {changed, false};
  const int32_t released = Hold(fd, job, false);
  if (released == NC_STATUS_DONE) return {changed, false};
  return {changed == NC_STATUS_DONE ? released : changed, true};
}

bool CanPrintAgain(const NC_Job& job) {
  return job.kept && (job.state == NC_JOB_DONE || job.state == NC_JOB_FAILED);
}

int32_t PrintAgain(int fd, const NC_Job& job, const Change& change) {
  if (!CanPrintAgain(job)) return NC_STATUS_WRONG_STATE;
  Change whole = change;
  whole.hold = false;
  return ChangeJob(fd, job.id, whole);
}

int32_t ChangePrinter(int fd, const NC_Printer& printer, const char* key, int value) {
  if (!printer.has_id) return NC_STATUS_UNKNOWN_ID;
  Ticket ticket;
  ticket.Add(key, value);
  return Write(fd, printer.id, ticket.Text());
}

}  // namespace nc

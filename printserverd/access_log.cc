#include "printserverd/access_log.h"

#include <fcntl.h>
#include <unistd.h>

#include <ctime>

#include "printserverd/log.h"

namespace printserverd {

namespace {

std::string Head(std::string_view event, std::string_view peer) {
  const time_t now = time(nullptr);
  tm parts{};
  gmtime_r(&now, &parts);
  char stamp[32];
  strftime(stamp, sizeof stamp, "%Y-%m-%dT%H:%M:%SZ", &parts);
  std::string line = std::string("time=") + stamp + " event=" + std::string(event);
  if (!peer.empty()) line += " peer=" + std::string(peer);
  return line;
}

// A value with the escapes of records, and a space as `\ `, so that the fields can be told apart.
void AppendValue(std::string* line, std::string_view key, std::string_view value) {
  std::string field;
  AppendField(&field, key, value, value.size());
  field.pop_back();
  line->push_back(' ');
  for (const char c : PlainText(field)) {
    if (c == ' ') line->push_back('\\');
    line->push_back(c);
  }
}

}  // namespace

bool AccessLog::Open(const std::string& path) {
  auto sink = std::make_shared<Sink>();
  if (!path.empty()) {
    constexpr int kFlags = O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC | O_NOCTTY | O_NONBLOCK;
    sink->file = Fd(open(path.c_str(), kFlags, 0600));
    if (!sink->file) return false;
  }
  sink_ = std::move(sink);
  return true;
}

void AccessLog::Write(std::string line) {
  line.push_back('\n');
  disk_->Do([sink = sink_, line = std::move(line)] {
    const int fd = sink->file ? sink->file.get() : STDERR_FILENO;
    if (!WriteLine(fd, sink->torn ? "\n" + line : line)) {
      ++sink->lost;
      sink->torn = sink->torn || sink->file;
      return;
    }
    sink->torn = false;
    if (sink->lost == 0) return;
    if (WriteLine(fd, "lost=" + std::to_string(sink->lost) + "\n")) sink->lost = 0;
  });
}

void AccessLog::Tell(std::string_view event, std::string_view peer, const Job& job) {
  std::string line = Head(event, peer);
  AppendValue(&line, "owner", job.ticket.owner);
  AppendValue(&line, "number", std::to_string(job.number));
  AppendValue(&line, "printer", job.ticket.printer);
  AppendValue(&line, "id", HexOfId(job.id));
  if (job.state == JobState::kFailed) AppendValue(&line, "reasons", job.reasons);
  AppendValue(&line, "document", job.ticket.document);
  Write(std::move(line));
}

void AccessLog::TellPrinter(std::string_view peer, std::string_view name, const RequestId& id) {
  std::string line = Head("changed", peer);
  AppendValue(&line, "printer", name);
  AppendValue(&line, "id", HexOfId(id));
  Write(std::move(line));
}

}  // namespace printserverd

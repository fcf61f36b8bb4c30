// Sending a file to the spool, in pieces, with progress; the lists are served between them.
#include <cerrno>

#include "app/format/words.h"
#include "app/server/document.h"
#include "app/server/worker.h"
#include "printserver/changes.h"
#include "printserver/nc.h"
#include "printserver/words.h"

namespace console {
namespace {

constexpr int kConnectMs = 3000, kServeMs = 1000, kStallMs = 10000, kSliceMs = 100;
constexpr int kMostTries = 5, kRetryMs = 1000;
// One that was sent to its last byte may be in the queue a little later: it is looked for first.
constexpr int kLookMs = 3000;
constexpr size_t kArrivals = 32;
// Within so long a second order of the same reads as the first one.
constexpr int kSameOrderMs = 6000;
// A result of sending beside a server's status and the codes below 0.
constexpr int kUnread = 1000;
constexpr char kNoAnswer[] = "the file does not answer";

std::string TicketOf(const PrintOrder& order) {
  nc::Order whole;
  whole.document = order.document;
  whole.owner = order.owner;
  whole.printer = order.printer;
  whole.profile = order.profile;
  whole.media = order.media;
  whole.colour = order.colour;
  whole.copies = order.copies;
  whole.priority = order.priority;
  whole.hold = order.hold;
  return nc::TicketOf(whole);
}

}  // namespace

bool Worker::NextTransfer(Transfer* out) {
  Locked lock(shared_);
  if (next_send_ > MonotonicMs()) return false;
  for (Transfer& t : shared_->state.transfers) {
    if (t.state != Sending::kWaiting) continue;
    t.state = Sending::kSending;
    t.sent = t.total = t.silent_s = 0;
    sending_ = t.number;
    *out = t;
    shared_->Published();
    return true;
  }
  return false;
}

// Whether the queue has it: then a broken connection cost nothing but the answer.
bool Worker::Arrived(const JobId& id) {
  NC_Job job;
  return FindJob(id, &job);
}

void Worker::SendNext() {
  Transfer t;
  while (!Stopping() && Ready() && NextTransfer(&t)) {
    if (broken_.number != t.number) {
      ForgetBroken();
      broken_ = {t.number, {}, false, 0};
    }
    std::string why;
    int result = NC_STATUS_DONE;
    if (!broken_.has_id || !Arrived(broken_.id)) result = SendFile(t, &why);
    Finish(t.number, result, why);
    sending_ = 0;
  }
}

int Worker::SendFile(const Transfer& t, std::string* why) {
  Document document(t.order.path);
  document_ = &document;
  progress_ = {0, MonotonicMs()};
  all_sent_ = false;
  const int result = SendOnceOpened(t, document, why);
  document_ = nullptr;
  return result;
}

int Worker::SendOnceOpened(const Transfer& t, const Document& document, std::string* why) {
  while (!document.Opened(kSliceMs)) {
    if (Progress(this, 0, 0) != 0) return NC_CANCELLED;
    if (MonotonicMs() - progress_.at <= kStallMs) continue;
    *why = kNoAnswer;
    return kUnread;
  }
  *why = document.Trouble();
  return why->empty() ? SendDocument(t, document, why) : kUnread;
}

int Worker::SendDocument(const Transfer& t, const Document& document, std::string* why) {
  const std::string ticket = TicketOf(t.order);
  if (ticket.empty()) {
    *why = "the name is too long";
    return NC_BAD_REQUEST;
  }
  Began();
  const int fd = Connect(kFile, kConnectMs);
  if (fd < 0) {
    Ended();
    return NC_ERROR;
  }
  {
    Locked lock(shared_);
    for (Transfer& one : shared_->state.transfers)
      if (one.number == t.number)
        one.size = document.size(), one.modified_ns = document.modified_ns();
    shared_->Published();
  }
  int result = NC_CreateRequestID(fd, broken_.id.data()) == 1 ? 0 : NC_ERROR;
  Ended();
  if (result == 0) {
    broken_.has_id = true;
    NC_SetDeadline(fd, kStallMs);
    result = NC_WritePrintRequestN(fd, broken_.id.data(), ticket.c_str(), document.descriptor(),
                                   document.size(), Progress, this);
  }
  if (result == NC_ERROR && errno == ETIMEDOUT && document.Silent()) {
    result = kUnread;
    *why = kNoAnswer;
  }
  Close(kFile);
  if (result == NC_BAD_REQUEST) *why = "it is too large";
  if (result == NC_UNREADABLE) *why = document.Trouble();
  if (result >= 0 && result != NC_STATUS_DONE) *why = nc::RefusalText(result, nc::Asked::kPrint);
  return result;
}

// For how long nothing has come from the document.
int Worker::SilentSeconds(int64_t sent) {
  const int64_t now = MonotonicMs();
  if (sent != progress_.sent) progress_ = {sent, now};
  return document_->Silent() ? int((now - progress_.at) / 1000) : 0;
}

int Worker::Progress(void* context, int64_t sent, int64_t total) {
  auto* worker = static_cast<Worker*>(context);
  Server::Shared* shared = worker->shared_;
  {
    Locked lock(shared);
    if (shared->stop || shared->cancelled == worker->sending_) return 1;
    const int silent_s = worker->SilentSeconds(sent);
    worker->all_sent_ = total > 0 && sent == total;
    for (Transfer& t : shared->state.transfers) {
      if (t.number != worker->sending_ || (t.sent == sent && t.silent_s == silent_s)) continue;
      t.sent = sent;
      t.total = total;
      t.silent_s = silent_s;
    }
  }
  worker->Serve(kServeMs);
  return 0;
}

void Worker::Finish(int number, int result, const std::string& why) {
  next_poll_ = 0;
  // The queue shows it in the same moment in which the transfer goes.
  hold_back_ = true;
  if (result == NC_STATUS_DONE) Serve(kServeMs);
  hold_back_ = false;
  Locked lock(shared_);
  NoteResult(number, result, why);
  shared_->cancelled = 0;
  shared_->Published();
}

// What has come of all that were ordered together, with the last of them that ends; "" before, and
// where nothing has arrived. Under the mutex.
std::string Worker::SentText(const Transfer& ended, bool arrived) {
  bool more = false;
  for (Transfer& t : shared_->state.transfers) {
    if (t.first != ended.first || t.number == ended.number) continue;
    t.arrived += arrived;
    more = more || t.state != Sending::kFailed;
  }
  const int all = ended.arrived + arrived;
  if (more || all == 0) return "";
  const PrintOrder& order = ended.order;
  return CountRepeats(OrderedText(
      "sent", "to", {all, arrived ? order.document : "", order.printer, order.copies, order.hold}));
}

// Who prints the same twice sees that the second one has arrived, too.
std::string Worker::CountRepeats(std::string sent) {
  const int64_t now = MonotonicMs();
  const bool again = sent == told_sent_.text && now - told_sent_.at < kSameOrderMs;
  told_sent_ = {sent, again ? told_sent_.times + 1 : 1, now};
  return again ? sent + " (" + NumberText(told_sent_.times) + " times)" : sent;
}

// What becomes of a transfer that has ended. Under the mutex.
void Worker::NoteResult(int number, int result, const std::string& why) {
  ServerState& state = shared_->state;
  const bool done = result == NC_STATUS_DONE;
  const bool cancelled = shared_->cancelled == number || result == NC_CANCELLED;
  auto it = std::find_if(state.transfers.begin(), state.transfers.end(),
                         [number](const Transfer& t) { return t.number == number; });
  if (it == state.transfers.end()) return;
  const std::string name = Quoted(it->order.document);
  if (done) {
    state.arrivals.push_back({number, broken_.id, it->order.document, FileOf(*it)});
    if (state.arrivals.size() > kArrivals) state.arrivals.erase(state.arrivals.begin());
    // Too late to be cancelled on its way.
    if (cancelled) {
      RemoveLater(broken_.id);
      state.pending.Begin(broken_.id, Verb::kRemove, MonotonicMs());
    }
    broken_ = {};
  }
  if (done || cancelled) {
    const Transfer ended = std::move(*it);
    state.transfers.erase(it);
    const std::string sent = SentText(ended, !cancelled);
    // What somebody asked for is no error.
    if (cancelled)
      shared_->AddNotice({Tone::kPlain, "Cancelled: " + name + (sent.empty() ? "" : ". " + sent)});
    else
      shared_->AddNotice({Tone::kGood, sent});
  } else if (result == NC_ERROR && ++broken_.times < kMostTries) {
    it->state = Sending::kWaiting;
    next_send_ = MonotonicMs() + (all_sent_ ? kLookMs : kRetryMs);
  } else {
    broken_.times = 0;
    it->state = Sending::kFailed;
    ++it->failures;
    it->text = why.empty() ? "the connection broke" : why;
    shared_->AddNotice({Tone::kGood, SentText(*it, false)});
  }
}

}  // namespace console

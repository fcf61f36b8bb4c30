#include "printserverd/server.h"

#include <signal.h>
#include <sys/epoll.h>
#include <sys/sendfile.h>
#include <sys/signalfd.h>
#include <sys/socket.h>
#include <sys/uio.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <ctime>

#include "printserverd/log.h"

namespace printserverd {

namespace {

// Deadlines, milliseconds.
constexpr int64_t kGreetingMs = 5000;
constexpr int64_t kFieldsMs = 10000;
constexpr int64_t kQuietMs = 600000;
constexpr int64_t kReplyMs = 10000;
constexpr int64_t kLingerMs = 2000;
constexpr int64_t kSweepMs = 500;
constexpr int64_t kEndMs = 4000;     // for answers, when it is asked to end
constexpr int64_t kEndRestMs = 500;  // and then for the disk

// Bytes that must move within one of the windows above for it to begin again.
constexpr int64_t kDocumentWindow = 4096;
constexpr int64_t kReplyWindow = 65536;

constexpr size_t kBytesATurn = 1 << 20;  // of one peer, then the others are looked at

int64_t SteadyMs() {
  return std::chrono::duration_cast<std::chrono::milliseconds>(
             std::chrono::steady_clock::now().time_since_epoch())
      .count();
}

bool WouldBlock() {
  return errno == EAGAIN || errno == EWOULDBLOCK;
}

}  // namespace

bool Server::Run() {
  while (!ending_) Turn(Timeout());
  return End();
}

void Server::Turn(int timeout) {
  epoll_event events[256];
  const int count = epoll_wait(epoll_.get(), events, std::size(events), timeout);
  now_ = SteadyMs();
  for (int i = 0; i < count; ++i) {
    void* source = events[i].data.ptr;
    if (source == &signals_) {
      TakeSignals();
    } else if (source == &listener_) {
      AcceptPeers();
    } else if (source == disk_.get()) {
      disk_->RunDone();
    } else {
      Serve(static_cast<Peer*>(source), events[i].events);
    }
  }
  if (!ending_) TickPrinters();
  if (now_ >= next_sweep_) Sweep();
  ForgetClosed();
}

// Nothing new begins, and peers that have not sent all are let go.
void Server::BeginEnd() {
  epoll_ctl(epoll_.get(), EPOLL_CTL_DEL, listener_.get(), nullptr);
  listener_.Reset();
  for (const auto& printer : printers_) printer->Stop();
  layout_.End();
  scan_.End();
  for (const auto& peer : peers_) {
    const bool stays = peer->state == PeerState::kStoring || peer->state == PeerState::kReply;
    if (!stays && peer->state != PeerState::kClosed) Drop(peer.get());
  }
  ForgetClosed();
}

// Answers what is being stored, as long as there is time.
bool Server::End() {
  const int64_t end_by = SteadyMs() + kEndMs;
  BeginEnd();
  const auto waits = [](const std::shared_ptr<Peer>& peer) {
    return peer->state == PeerState::kStoring || peer->state == PeerState::kReply;
  };
  while (SteadyMs() < end_by) {
    const bool answers = std::any_of(peers_.begin(), peers_.end(), waits);
    if (!answers && disk_->Pending() == 0) break;
    Turn(static_cast<int>(std::min<int64_t>(end_by - SteadyMs(), 50)));
  }
  for (const auto& peer : peers_) {
    if (peer->state != PeerState::kClosed) Drop(peer.get());
  }
  counters_->Store();
  const size_t left = disk_->Pending();
  if (disk_->Finish(std::max<int64_t>(end_by + kEndRestMs - SteadyMs(), 1))) return true;
  Log("ended while the disk was still at work; undone: " + std::to_string(left));
  return false;
}

// How long nothing needs to be done without an event, milliseconds.
int Server::Timeout() {
  const int64_t now = SteadyMs();
  int64_t until = INT64_MAX;
  if (open_peers_ > 0) until = next_sweep_;
  if (queue_->size() > 0) until = std::min(until, next_sweep_ + 1000);
  until = std::min(until, next_tick_);
  if (until == INT64_MAX) return -1;
  return static_cast<int>(std::clamp<int64_t>(until - now, 0, 60000));
}

void Server::TickPrinters() {
  if (now_ < next_tick_ && ticked_generation_ == queue_->generation()) return;
  next_tick_ = INT64_MAX;
  for (const auto& printer : printers_) {
    const int wait = printer->Tick(now_);
    if (wait >= 0) next_tick_ = std::min(next_tick_, now_ + wait);
  }
  ticked_generation_ = queue_->generation();
}

void Server::TakeSignals() {
  signalfd_siginfo info;
  while (read(signals_.get(), &info, sizeof info) == sizeof info) {
    switch (info.ssi_signo) {
      case SIGCHLD:
        layout_.Reap();
        scan_.Reap();
        break;
      case SIGHUP:
        Reload();
        break;
      default:
        ending_ = true;
    }
  }
}

void Server::AcceptPeers() {
  for (int i = 0; i < 64; ++i) {
    if (open_peers_ >= max_peers_ && !EvictPeer()) return;
    sockaddr_in from{};
    socklen_t size = sizeof from;
    Fd fd(accept4(listener_.get(), reinterpret_cast<sockaddr*>(&from), &size,
                  SOCK_NONBLOCK | SOCK_CLOEXEC));
    if (!fd) {
      if (WouldBlock()) return;
      const bool full = errno == EMFILE || errno == ENFILE;
      if (full && !EvictPeer()) return;
      continue;
    }
    auto peer = std::make_shared<Peer>();
    epoll_event event{};
    event.events = peer->interest = EPOLLIN;
    event.data.ptr = peer.get();
    if (epoll_ctl(epoll_.get(), EPOLL_CTL_ADD, fd.get(), &event) != 0) continue;
    peer->fd = std::move(fd);
    peer->address = TextOf(from);
    peer->deadline = now_ + kGreetingMs;
    peer->useful = now_;
    peers_.push_back(std::move(peer));
    ++open_peers_;
  }
}

// Closes the peer that was useful longest ago.
bool Server::EvictPeer() {
  Peer* victim = nullptr;
  for (const auto& peer : peers_) {
    if (peer->state == PeerState::kClosed) continue;
    if (!victim || peer->useful < victim->useful) victim = peer.get();
  }
  if (victim) Drop(victim);
  return victim != nullptr;
}

void Server::Drop(Peer* peer) {
  DropUpload(&peer->upload);
  peer->upload = Upload();
  peer->reply = Reply();
  peer->issued.clear();
  // Closing alone would leave it in the set as long as a process that was forked off has it too.
  epoll_ctl(epoll_.get(), EPOLL_CTL_DEL, peer->fd.get(), nullptr);
  peer->fd.Reset();
  peer->state = PeerState::kClosed;
  --open_peers_;
}

void Server::ForgetClosed() {
  if (peers_.size() == open_peers_) return;
  peers_.remove_if([](const auto& peer) { return peer->state == PeerState::kClosed; });
}

void Server::Serve(Peer* peer, uint32_t events) {
  if (peer->state == PeerState::kClosed) return;
  if (events & (EPOLLERR | EPOLLHUP)) {
    Drop(peer);
    return;
  }
  size_t budget = kBytesATurn;
  bool moving = true;
  while (moving && peer->state != PeerState::kClosed && peer->state != PeerState::kStoring &&
         budget > 0) {
    moving = peer->state == PeerState::kReply ? Send(peer) : Receive(peer, &budget);
  }
  if (peer->state != PeerState::kClosed) Watch(peer);
}

void Server::Watch(Peer* peer) {
  uint32_t wanted = EPOLLIN;
  if (peer->state == PeerState::kReply) wanted = peer->reply.stalled ? 0U : uint32_t{EPOLLOUT};
  if (peer->state == PeerState::kStoring || peer->paused) wanted = 0;
  if (wanted == peer->interest) return;
  epoll_event event{};
  event.events = peer->interest = wanted;
  event.data.ptr = peer;
  if (epoll_ctl(epoll_.get(), EPOLL_CTL_MOD, peer->fd.get(), &event) != 0) Drop(peer);
}

void Server::Progress(Peer* peer, int64_t bytes, int64_t enough, int64_t window_ms) {
  peer->window += bytes;
  if (peer->window < enough) return;
  peer->window = 0;
  peer->deadline = now_ + window_ms;
  peer->useful = now_;
}

// Takes bytes in, never more than the present step wants, so that nothing is left over. False when
// there are none now.
bool Server::Receive(Peer* peer, size_t* budget) {
  if (MustPause(*peer)) {
    peer->paused = true;
    paused_.push_back(peer->weak_from_this());
    return false;
  }
  const bool streams = peer->state == PeerState::kDocument || peer->state == PeerState::kLinger;
  void* to = streams ? static_cast<void*>(buffer_->data()) : peer->input + peer->have;
  size_t want = streams ? buffer_->size() : peer->need - peer->have;
  if (peer->state == PeerState::kDocument) want = std::min<size_t>(want, peer->upload.left);
  const ssize_t n = recv(peer->fd.get(), to, want, 0);
  if (n < 0 && errno == EINTR) return true;
  if (n < 0 && WouldBlock()) return false;
  if (n <= 0) {
    Drop(peer);
    return false;
  }
  const auto count = static_cast<size_t>(n);
  *budget -= std::min(*budget, count);
  if (peer->state == PeerState::kDocument) {
    Progress(peer, n, kDocumentWindow, kDocumentMs);
    TakeUpload(peer, buffer_->data(), count);
  } else if (peer->state != PeerState::kLinger) {
    if (peer->state == PeerState::kHeader && peer->have == 0) peer->deadline = now_ + kFieldsMs;
    peer->have += count;
    if (peer->have == peer->need) TakeInput(peer);
  }
  return true;
}

// The bytes that the present step wanted are there.
void Server::TakeInput(Peer* peer) {
  if (peer->state == PeerState::kHeader) return TakeHeader(peer);
  if (peer->state == PeerState::kFields) return RunCommand(peer);
  const bool good = memcmp(peer->input, kGreetingBytes, sizeof kGreetingBytes) == 0;
  const bool accepted = good && !options_.faults.refuse;
  BeginReply(peer, std::string(1, accepted ? '\1' : '\0'));
  peer->reply.is_reply = false;
  peer->close_after_reply = !accepted;
}

void Server::BeginReply(Peer* peer, std::string head, std::shared_ptr<const std::string> body) {
  peer->reply = Reply();
  peer->reply.head = std::move(head);
  peer->reply.body = std::move(body);
  peer->state = PeerState::kReply;
  peer->window = 0;
  peer->deadline = now_ + kReplyMs;
}

// Sends on, at most `allowed` bytes; the result of the system call, 0 also when the file has
// shrunk.
ssize_t Server::SendPart(Peer* peer, uint64_t allowed) {
  Reply& reply = peer->reply;
  const size_t body_size = reply.body ? reply.body->size() : 0;
  if (reply.sent >= reply.head.size() + body_size) {
    const uint64_t part = std::min({allowed, reply.file_left, uint64_t{kBytesATurn}});
    const ssize_t n = sendfile(peer->fd.get(), reply.file.get(), nullptr, part);
    if (n > 0) reply.file_left -= static_cast<uint64_t>(n);
    return n;
  }
  iovec parts[2];
  size_t count = 0;
  size_t skip = reply.sent;
  for (const std::string* text : {&std::as_const(reply.head), reply.body.get()}) {
    if (!text) continue;
    const size_t from = std::min(skip, text->size());
    skip -= from;
    const size_t size = std::min<uint64_t>(text->size() - from, allowed);
    allowed -= size;
    if (size > 0) parts[count++] = {const_cast<char*>(text->data()) + from, size};
  }
  msghdr message{};
  message.msg_iov = parts;
  message.msg_iovlen = count;
  return sendmsg(peer->fd.get(), &message, MSG_NOSIGNAL | (reply.file_left ? MSG_MORE : 0));
}

// False when nothing more can be sent now.
bool Server::Send(Peer* peer) {
  Reply& reply = peer->reply;
  const size_t body_size = reply.body ? reply.body->size() : 0;
  if (reply.sent >= reply.head.size() + body_size && reply.file_left == 0) {
    AfterReply(peer);
    return true;
  }
  const Faults& faults = options_.faults;
  uint64_t allowed = UINT64_MAX;
  if (reply.is_reply && faults.cut)
    allowed = *faults.cut - std::min<uint64_t>(reply.sent, *faults.cut);
  if (reply.is_reply && faults.stall) {
    const uint64_t until_stall = *faults.stall - std::min<uint64_t>(reply.sent, *faults.stall);
    if (until_stall == 0 && allowed > 0) {
      reply.stalled = true;
      peer->deadline = now_ + kQuietMs;
      return false;
    }
    allowed = std::min(allowed, until_stall);
  }
  if (allowed == 0) {
    Drop(peer);
    return false;
  }
  const ssize_t n = SendPart(peer, allowed);
  if (n < 0 && errno == EINTR) return true;
  if (n < 0 && WouldBlock()) return false;
  if (n <= 0) {
    Drop(peer);
    return false;
  }
  reply.sent += static_cast<uint64_t>(n);
  Progress(peer, n, kReplyWindow, kReplyMs);
  return true;
}

void Server::AfterReply(Peer* peer) {
  peer->reply = Reply();
  if (ending_) return Drop(peer);
  if (peer->close_after_reply) return Linger(peer);
  AwaitHeader(peer);
}

void Server::AwaitHeader(Peer* peer) {
  peer->state = PeerState::kHeader;
  peer->have = 0;
  peer->need = 4;
  peer->window = 0;
  peer->deadline = now_ + kQuietMs;
  peer->useful = now_;
}

// Closes after the peer could read the last reply: closing at once, with bytes of it unread, would
// take the reply away from it.
void Server::Linger(Peer* peer) {
  shutdown(peer->fd.get(), SHUT_WR);
  peer->state = PeerState::kLinger;
  peer->deadline = now_ + kLingerMs;
}

void Server::Sweep() {
  next_sweep_ = now_ + kSweepMs;
  for (const auto& peer : peers_) {
    const bool waits = peer->state != PeerState::kClosed && !peer->paused;
    if (waits && now_ >= peer->deadline) Drop(peer.get());
  }
  queue_->Prune(time(nullptr));
}

}  // namespace printserverd

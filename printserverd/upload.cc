// Print requests as they arrive: the ticket is kept and checked, the document goes to the disk.
#include <algorithm>

#include "printserverd/server.h"

namespace printserverd {

namespace {
// What waits for the disk of one document, and of all.
constexpr size_t kMaxPending = 1 << 20;
constexpr size_t kMaxUnwritten = 32 << 20;
constexpr size_t kBuffer = 256 << 10;
constexpr size_t kMaxSpare = 8;  // as many as one document fills, and some
}  // namespace

void Server::TakeUpload(Peer* peer, const char* bytes, size_t count) {
  Upload& upload = peer->upload;
  std::string_view data(bytes, count);
  upload.left -= static_cast<uint32_t>(count);
  if (upload.status == Status::kDone && !upload.ticket_whole) TakeTicket(&upload, &data);
  if (upload.status == Status::kDone && upload.ticket_whole) StoreDocument(&upload, data);
  if (upload.left == 0) EndUpload(peer);
}

// Takes bytes of the ticket up to the empty line that ends it.
void Server::TakeTicket(Upload* upload, std::string_view* bytes) {
  const size_t before = upload->ticket.size();
  upload->ticket.append(bytes->substr(0, kMaxTicket - before));
  size_t end = std::string::npos;
  if (upload->ticket[0] == '\n') {
    end = 1;
  } else {
    const size_t found = upload->ticket.find("\n\n", before > 0 ? before - 1 : 0);
    if (found != std::string::npos) end = found + 2;
  }
  if (end == std::string::npos) {
    if (upload->ticket.size() == kMaxTicket) upload->status = Status::kBadTicket;
    return;
  }
  upload->ticket.resize(end);
  bytes->remove_prefix(end - before);
  TicketComplete(upload);
}

void Server::TicketComplete(Upload* upload) {
  upload->ticket_whole = true;
  if (upload->changes) return;
  Given given;
  upload->status = ParseTicket(upload->ticket, &upload->parsed, &given);
  if (upload->status == Status::kDone) upload->status = queue_->CheckNew(&upload->parsed);
  if (upload->status != Status::kDone) return;
  upload->document = queue_->CreateDocument(upload->id);
}

void Server::StoreDocument(Upload* upload, std::string_view bytes) {
  if (bytes.empty()) return;
  const auto count = static_cast<int64_t>(bytes.size());
  if (upload->changes) {
    upload->status = Status::kWrongState;
  } else if (!queue_->MakeBytes(count)) {
    upload->status = Status::kTooLarge;
  } else if (upload->document->error != 0) {
    upload->status = Status::kStorage;
  } else {
    upload->size += count;
    queue_->AddBytes(count);
    unwritten_ += bytes.size();
    // Much goes to the disk in the buffer that it came in. Little is copied, so that what waits
    // holds no more than twice its bytes.
    const bool whole = bytes.size() >= buffer_->size() / 2;
    auto buffer = whole ? std::move(buffer_) : std::make_shared<Buffer>(bytes.begin(), bytes.end());
    if (whole) {
      TakeBuffer();
    } else {
      bytes = {buffer->data(), buffer->size()};
    }
    queue_->Write(upload->document, buffer, bytes,
                  [this, size = bytes.size(), back = whole ? buffer : nullptr] {
                    if (back && spare_.size() < kMaxSpare) spare_.push_back(back);
                    Written(size);
                  });
  }
}

// A buffer for what comes next: one that the disk has done with, or a new one.
void Server::TakeBuffer() {
  if (spare_.empty()) {
    buffer_ = std::make_shared<Buffer>(kBuffer);
  } else {
    buffer_ = std::move(spare_.back());
    spare_.pop_back();
  }
}

// Whether the peer sends faster than the disk writes.
bool Server::MustPause(const Peer& peer) const {
  if (peer.state != PeerState::kDocument) return false;
  const DocumentRef& document = peer.upload.document;
  return unwritten_ >= kMaxUnwritten || (document && document->pending >= kMaxPending);
}

void Server::Written(size_t bytes) {
  unwritten_ -= bytes;
  std::vector<std::weak_ptr<Peer>> paused = std::move(paused_);
  paused_.clear();
  for (const std::weak_ptr<Peer>& weak : paused) {
    const std::shared_ptr<Peer> peer = weak.lock();
    if (!peer || peer->state != PeerState::kDocument) continue;
    if (MustPause(*peer)) {
      paused_.push_back(weak);
      continue;
    }
    peer->paused = false;
    peer->window = 0;
    peer->deadline = now_ + kDocumentMs;
    Watch(peer.get());
  }
}

void Server::EndUpload(Peer* peer) {
  Upload upload = std::move(peer->upload);
  peer->upload = Upload();
  if (upload.status == Status::kDone && !upload.ticket_whole && !upload.changes) {
    upload.status = Status::kBadTicket;
  }
  if (upload.status != Status::kDone) {
    DropUpload(&upload);
    return ReplyStatus(peer, upload.status);
  }
  if (upload.printer) return ChangePrinter(peer, upload.id, upload.ticket);
  const Answer answer = AnswerLater(peer);
  // A job that is to be changed may have gone while the ticket came.
  if (upload.changes) {
    return queue_->Change(upload.id, std::move(upload.ticket), peer->address, answer);
  }
  queue_->Accept(upload.document, upload.parsed, upload.size, peer->address,
                 [weak = peer->weak_from_this(), id = upload.id, answer](Status status) {
                   const std::shared_ptr<Peer> there = weak.lock();
                   if (there && status == Status::kDone) {
                     auto& issued = there->issued;
                     issued.erase(std::remove(issued.begin(), issued.end(), id), issued.end());
                   }
                   answer(status);
                 });
}

// What has arrived of a request that was not accepted goes.
void Server::DropUpload(Upload* upload) {
  if (!upload->document) return;
  queue_->Drop(upload->document);
  queue_->AddBytes(-upload->size);
  upload->document.reset();
}

}  // namespace printserverd

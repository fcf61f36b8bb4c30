// Print requests as they arrive: the ticket is kept and checked, the document goes to the disk.
#include <fcntl.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "printserverd/log.h"
#include "printserverd/server.h"

namespace printserverd {

namespace {
// The disk is set to work while the rest arrives, so that the sync at the end is short.
constexpr int64_t kFlushEach = 8 << 20;
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
  TicketKeys keys;
  upload->status = ParseTicket(upload->ticket, &upload->parsed, &keys);
  if (upload->status == Status::kDone) upload->status = queue_->CheckNew(&upload->parsed);
  if (upload->status != Status::kDone) return;
  upload->document = queue_->CreateDocument(upload->id);
  if (upload->document) return;
  LogRarely(std::string("cannot store a document: ") + strerror(errno));
  upload->status = Status::kStorage;
}

void Server::StoreDocument(Upload* upload, std::string_view bytes) {
  if (bytes.empty()) return;
  const auto count = static_cast<int64_t>(bytes.size());
  if (upload->changes) {
    upload->status = Status::kWrongState;
  } else if (queue_->bytes() + count > settings_.spool_limit) {
    upload->status = Status::kTooLarge;
  } else if (!WriteAll(upload->document.get(), bytes.data(), bytes.size())) {
    LogRarely(std::string("cannot store a document: ") + strerror(errno));
    upload->status = Status::kStorage;
  } else {
    upload->size += count;
    queue_->AddBytes(count);
    if (upload->size - upload->flushed >= kFlushEach) {
      sync_file_range(upload->document.get(), upload->flushed, upload->size - upload->flushed,
                      SYNC_FILE_RANGE_WRITE);
      upload->flushed = upload->size;
    }
  }
}

void Server::EndUpload(Peer* peer) {
  Upload& upload = peer->upload;
  Status status = upload.status;
  if (status == Status::kDone && upload.changes) {
    // The job may have gone while the ticket came.
    Job* job = queue_->Find(upload.id);
    status = job ? queue_->Change(job, upload.ticket) : Status::kUnknownId;
  } else if (status == Status::kDone) {
    status = upload.ticket_whole
                 ? queue_->Accept(upload.id, upload.parsed, upload.size, upload.document.get())
                 : Status::kBadTicket;
  }
  if (status == Status::kDone && !upload.changes) {
    auto& issued = peer->issued;
    issued.erase(std::remove(issued.begin(), issued.end(), upload.id), issued.end());
    upload = Upload();
  }
  DropUpload(peer);
  ReplyStatus(peer, status);
}

// What has arrived of a request that was not accepted goes.
void Server::DropUpload(Peer* peer) {
  Upload& upload = peer->upload;
  if (upload.document) {
    queue_->DropDocument(upload.id);
    queue_->AddBytes(-upload.size);
  }
  upload = Upload();
}

}  // namespace printserverd

// One connection: where it stands in the protocol, what it has sent, what it is being sent.
// Nothing here grows with what a peer announces.
#pragma once

#include <cstdint>
#include <deque>
#include <memory>
#include <string>

#include "printserverd/folder.h"
#include "printserverd/queue.h"
#include "printserverd/wire.h"

namespace printserverd {

// A print request that arrives (command 3).
struct Upload {
  RequestId id;
  uint32_t left = 0;              // announced bytes that have not come
  Status status = Status::kDone;  // once it is something else the rest is read and dropped
  bool changes = false;           // a ticket for a job that is in the queue, or for a printer
  bool printer = false;           // the latter
  bool ticket_whole = false;
  std::string ticket;  // at most kMaxTicket bytes
  Ticket parsed;
  DocumentRef document;
  int64_t size = 0;
};

// What is being sent: head, then body, then file.
struct Reply {
  std::string head;
  std::shared_ptr<const std::string> body;  // shared by all peers that get the same list
  Fd file;
  uint64_t file_left = 0;
  uint64_t sent = 0;  // bytes of all three together
  bool stalled = false;
  bool is_reply = true;  // false for the byte that answers the greeting
};

enum class PeerState {
  kGreeting,
  kHeader,
  kFields,
  kDocument,
  kStoring,  // its answer waits for the disk
  kReply,
  kLinger,
  kClosed,
};

struct Peer : std::enable_shared_from_this<Peer> {
  Fd fd;
  std::string address;  // and port
  PeerState state = PeerState::kGreeting;
  uint8_t input[kMaxField];  // greeting, header or fields
  size_t have = 0;
  size_t need = 4;
  uint8_t command = 0;
  Upload upload;
  Reply reply;
  bool close_after_reply = false;
  bool paused = false;           // the disk has to catch up with its document first
  std::deque<RequestId> issued;  // ids given to this peer and not yet used
  uint32_t interest = 0;         // the epoll events that it is registered for
  int64_t deadline = 0;
  int64_t window = 0;  // bytes moved since the deadline was set
  int64_t useful = 0;  // when it last finished something
};

}  // namespace printserverd

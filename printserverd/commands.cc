// The eleven commands.
#include <sys/stat.h>

#include <algorithm>
#include <cstring>

#include "printserverd/log.h"
#include "printserverd/server.h"

namespace printserverd {

namespace {

constexpr size_t kIdSize = 16;
constexpr size_t kIssuedKept = 64;
constexpr size_t kGamutName = 100, kGamutFolder = 40;
constexpr size_t kPath = 512;
constexpr size_t kScanText = 80;
constexpr size_t kPrinterField = 80;

// Lists that slow peers still take; above this the ones with the oldest are closed.
constexpr size_t kMaxListBytes = 64 << 20;

std::string U32(uint32_t value) {
  uint8_t bytes[4];
  StoreU32(bytes, value);
  return std::string(reinterpret_cast<const char*>(bytes), sizeof bytes);
}

// The last bytes of the fixed fields stay zero, so that each ends within itself.
void PutText(char* field, size_t size, const std::string& text) {
  memcpy(field, text.data(), std::min(text.size(), size - 1));
}

std::string ProfileRecord(const ProfileSettings& profile) {
  char record[kProfileRecord] = {};
  PutText(record, 32, profile.name);
  PutText(record + 32, 12, profile.media);
  record[44] = static_cast<char>(profile.dpi_across & 0xff);
  record[45] = static_cast<char>(profile.dpi_across >> 8);
  record[46] = static_cast<char>(profile.dpi_along & 0xff);
  record[47] = static_cast<char>(profile.dpi_along >> 8);
  return std::string(record, sizeof record);
}

Status StatusOf(RemoveResult result) {
  switch (result) {
    case RemoveResult::kRemoved:
      return Status::kDone;
    case RemoveResult::kBadPath:
      return Status::kBadPath;
    case RemoveResult::kNotThere:
      return Status::kNoFile;
    case RemoveResult::kNotAFile:
      return Status::kWrongState;
    case RemoveResult::kFailed:
      break;
  }
  return Status::kStorage;
}

}  // namespace

struct Server::Command {
  size_t fields;  // bytes after the header, before any document
  void (Server::*run)(Peer* peer);
};

const Server::Command Server::kCommands[] = {
    {0, nullptr},
    {0, &Server::PrintQueue},
    {0, &Server::PrinterList},
    {kIdSize + 4, &Server::WriteRequest},
    {kGamutName + kGamutFolder, &Server::CopyGamut},
    {0, &Server::CreateId},
    {kIdSize, &Server::RemoveRequest},
    {kPath, &Server::RemoveFile},
    {0, &Server::StartLayout},
    {2 * kScanText, &Server::StartScan},
    {0, &Server::ScannerList},
    {kPrinterField, &Server::ProfileList},
};

void Server::TakeHeader(Peer* peer) {
  const uint8_t code = peer->input[3];
  if (memcmp(peer->input, "KRV", 3) != 0 || code == 0 || code >= std::size(kCommands)) {
    return Linger(peer);
  }
  peer->command = code;
  peer->state = PeerState::kFields;
  peer->have = 0;
  peer->need = kCommands[code].fields;
  if (peer->need == 0) RunCommand(peer);
}

void Server::RunCommand(Peer* peer) {
  void (Server::*const run)(Peer*) = kCommands[peer->command].run;
  (this->*run)(peer);
}

void Server::ReplyStatus(Peer* peer, Status status) {
  const char byte = static_cast<char>(status);
  BeginReply(peer, std::string(&byte, 1));
}

// What answers the peer, if it is still there, once the disk is done. Until then nothing of it is
// read, and no deadline runs.
Answer Server::AnswerLater(Peer* peer) {
  peer->state = PeerState::kStoring;
  peer->deadline = INT64_MAX;
  return [this, weak = peer->weak_from_this()](Status status) {
    const std::shared_ptr<Peer> there = weak.lock();
    if (!there || there->state != PeerState::kStoring) return;
    ReplyStatus(there.get(), status);
    Watch(there.get());
  };
}

// `head`, then the count, then the body.
void Server::ReplyBlock(Peer* peer, std::string head, uint32_t count,
                        std::shared_ptr<const std::string> body) {
  head += U32(options_.faults.length ? *options_.faults.length : count);
  BeginReply(peer, std::move(head), std::move(body));
}

// The list is made once for all peers that ask for it before it changes.
std::shared_ptr<const std::string> Server::QueueText() {
  if (list_ && list_generation_ == queue_->generation()) return list_;
  list_ = std::make_shared<const std::string>(queue_->List());
  list_generation_ = queue_->generation();
  size_t total = 0;
  lists_alive_.erase(std::remove_if(lists_alive_.begin(), lists_alive_.end(),
                                    [](const auto& list) { return list.expired(); }),
                     lists_alive_.end());
  lists_alive_.push_back(list_);
  for (auto list = lists_alive_.rbegin(); list != lists_alive_.rend(); ++list) {
    const auto held = list->lock();
    total += held->size();
    if (total <= kMaxListBytes || held == list_) continue;
    for (const auto& peer : peers_) {
      if (peer->state == PeerState::kReply && peer->reply.body == held) Drop(peer.get());
    }
  }
  return list_;
}

void Server::PrintQueue(Peer* peer) {
  auto list = QueueText();
  const auto size = static_cast<uint32_t>(list->size());
  ReplyBlock(peer, "", size, std::move(list));
}

void Server::PrinterList(Peer* peer) {
  auto list = std::make_shared<std::string>();
  for (const auto& printer : printers_) {
    *list += printer->Record(printer == printers_.front());
  }
  ReplyBlock(peer, "\1", static_cast<uint32_t>(list->size()), list);
}

void Server::ScannerList(Peer* peer) {
  if (settings_.scanners.empty()) return ReplyStatus(peer, Status::kRefused);
  auto list = std::make_shared<std::string>();
  for (const ScannerSettings& scanner : settings_.scanners) {
    AppendField(list.get(), "name", scanner.name, kMaxName);
    AppendField(list.get(), "state", "ready", kMaxName);
    AppendField(list.get(), "text", scanner.text, kMaxText);
    list->push_back('\n');
  }
  ReplyBlock(peer, "\1", static_cast<uint32_t>(list->size()), list);
}

void Server::ProfileList(Peer* peer) {
  const std::string_view printer = TextField(peer->input, kPrinterField);
  auto list = std::make_shared<std::string>();
  const bool known = printer.empty() || settings_.FindPrinter(printer);
  for (const ProfileSettings& profile : settings_.profiles) {
    const bool fits = printer.empty() || profile.printer.empty() || profile.printer == printer;
    if (known && fits) *list += ProfileRecord(profile);
  }
  ReplyBlock(peer, "", static_cast<uint32_t>(list->size() / kProfileRecord), list);
}

void Server::WriteRequest(Peer* peer) {
  Upload& upload = peer->upload;
  upload = Upload();
  upload.id.assign(reinterpret_cast<const char*>(peer->input), kIdSize);
  upload.left = LoadU32(peer->input + kIdSize);
  if (upload.left > kMaxRequest) {
    peer->close_after_reply = true;
    return ReplyStatus(peer, Status::kTooLarge);
  }
  upload.printer = FindPrinter(upload.id) != nullptr;
  upload.changes = upload.printer || queue_->Find(upload.id);
  const auto issued = std::find(peer->issued.begin(), peer->issued.end(), upload.id);
  if (!upload.changes && issued == peer->issued.end()) upload.status = Status::kUnknownId;
  peer->state = PeerState::kDocument;
  peer->window = 0;
  peer->deadline = now_ + kDocumentMs;
  if (upload.left == 0) EndUpload(peer);
}

void Server::CopyGamut(Peer* peer) {
  const std::string name(TextField(peer->input, kGamutName));
  const std::string folder(TextField(peer->input + kGamutName, kGamutFolder));
  const auto hidden = [](const std::string& text) { return text[0] == '.'; };
  Fd file;
  struct stat info {};
  if (!hidden(name) && !hidden(folder)) {
    const Fd sub = folder.empty() ? Fd() : OpenSubfolder(spool_.gamut.get(), folder, false);
    if (folder.empty() || sub) file = OpenFileIn(sub ? sub.get() : spool_.gamut.get(), name);
    if (file && (fstat(file.get(), &info) != 0 || info.st_size > int64_t{kMaxRequest})) {
      file.Reset();
    }
  }
  const auto size = file ? static_cast<uint32_t>(info.st_size) : 0;
  const auto when = size ? static_cast<uint32_t>(info.st_mtime) : 0;
  ReplyBlock(peer, U32(when), size, nullptr);
  peer->reply.file = std::move(file);
  peer->reply.file_left = size;
}

void Server::CreateId(Peer* peer) {
  RequestId id;
  // The random source fails only on a system that is broken; the peer sees a closed connection.
  if (!NewId(&id)) return Drop(peer);
  peer->issued.push_back(id);
  if (peer->issued.size() > kIssuedKept) peer->issued.pop_front();
  BeginReply(peer, id);
}

void Server::RemoveRequest(Peer* peer) {
  const RequestId id(reinterpret_cast<const char*>(peer->input), kIdSize);
  if (FindPrinter(id)) return ReplyStatus(peer, Status::kWrongState);
  queue_->Remove(id, peer->address, AnswerLater(peer));
}

// The printer of the list that has this id; null when none has.
Printer* Server::FindPrinter(const RequestId& id) {
  for (const auto& printer : printers_) {
    if (printer->entry().id == id) return printer.get();
  }
  return nullptr;
}

void Server::ChangePrinter(Peer* peer, const RequestId& id, const std::string& text) {
  PrinterTicket ticket;
  const Status parsed = ParsePrinterTicket(text, &ticket);
  if (parsed != Status::kDone) return ReplyStatus(peer, parsed);
  entries_->Change(
      id, ticket,
      [this, id, ticket, from = peer->address, answer = AnswerLater(peer)](bool stored) {
        if (!stored) return answer(Status::kStorage);
        const PrinterEntry* entry = entries_->Find(id);
        if (Printer* printer = FindPrinter(id)) {
          printer->SetEntry(*entry, ticket.paused == 0);
          if (ticket.paper_loaded == 1) printer->LoadPaper();
        }
        log_->TellPrinter(from, entry->name, id);
        answer(Status::kDone);
      });
}

void Server::RemoveFile(Peer* peer) {
  const auto result = std::make_shared<RemoveResult>();
  disk_->Do(
      [result, files = spool_.files.get(), path = std::string(TextField(peer->input, kPath))] {
        *result = RemoveBeneath(files, path);
      },
      [result, answer = AnswerLater(peer)] { answer(StatusOf(*result)); });
}

void Server::StartLayout(Peer* peer) {
  layout_.Start(settings_.layout_command, "", "");
  AwaitHeader(peer);
}

void Server::StartScan(Peer* peer) {
  scan_.Start(settings_.scan_command, TextField(peer->input, kScanText),
              TextField(peer->input + kScanText, kScanText));
  AwaitHeader(peer);
}

}  // namespace printserverd

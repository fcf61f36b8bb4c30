// The server: one thread and one epoll set for the peers, each with deadlines and caps; beside it
// the disk's thread.
#pragma once

#include <sys/types.h>

#include <list>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "printserverd/children.h"
#include "printserverd/disk.h"
#include "printserverd/folder.h"
#include "printserverd/peer.h"
#include "printserverd/printer.h"
#include "printserverd/queue.h"
#include "printserverd/settings.h"

namespace printserverd {

// Address and port.
std::string TextOf(const sockaddr_in& address);

class Server {
 public:
  Server(const Options& options, Settings settings);
  ~Server();

  // Opens the spool, listens. False with `error`.
  bool Start(std::string* error);

  // Serves until SIGTERM or SIGINT, answers what is being stored, and ends. False when the disk
  // did not come to an end in time: then only the process can be ended.
  bool Run();

 private:
  using Buffer = std::vector<char>;
  struct Spool {
    Fd root, lock, jobs, printed, files, gamut, aside;
  };

  // start.cc
  bool OpenSpool(std::string* error);
  bool Listen(std::string* error);
  bool WatchSignals();
  bool CountPeers(size_t printers, std::string* error);
  bool LoadSpool(std::string* error);
  void MakePrinters();
  void Reload();

  // server.cc
  void Turn(int timeout);
  void BeginEnd();
  bool End();
  void TakeSignals();
  void AcceptPeers();
  bool EvictPeer();
  void Serve(Peer* peer, uint32_t events);
  bool Receive(Peer* peer, size_t* budget);
  void TakeInput(Peer* peer);
  bool Send(Peer* peer);
  ssize_t SendPart(Peer* peer, uint64_t allowed);
  void AfterReply(Peer* peer);
  void AwaitHeader(Peer* peer);
  void Linger(Peer* peer);
  void Drop(Peer* peer);
  void Watch(Peer* peer);
  void Progress(Peer* peer, int64_t bytes, int64_t enough, int64_t window_ms);
  void Sweep();
  void ForgetClosed();
  int Timeout();
  void TickPrinters();

  // commands.cc
  struct Command;
  static const Command kCommands[];
  void TakeHeader(Peer* peer);
  void RunCommand(Peer* peer);
  void PrintQueue(Peer* peer);
  void PrinterList(Peer* peer);
  void WriteRequest(Peer* peer);
  void CopyGamut(Peer* peer);
  void CreateId(Peer* peer);
  void RemoveRequest(Peer* peer);
  Printer* FindPrinter(const RequestId& id);
  void ChangePrinter(Peer* peer, const RequestId& id, const std::string& text);
  void RemoveFile(Peer* peer);
  void StartLayout(Peer* peer);
  void StartScan(Peer* peer);
  void ScannerList(Peer* peer);
  void ProfileList(Peer* peer);
  void BeginReply(Peer* peer, std::string head, std::shared_ptr<const std::string> body = nullptr);
  void ReplyStatus(Peer* peer, Status status);
  Answer AnswerLater(Peer* peer);
  void ReplyBlock(Peer* peer, std::string head, uint32_t count,
                  std::shared_ptr<const std::string> body);
  std::shared_ptr<const std::string> QueueText();

  // upload.cc
  void TakeUpload(Peer* peer, const char* bytes, size_t count);
  void TakeTicket(Upload* upload, std::string_view* bytes);
  void TicketComplete(Upload* upload);
  void StoreDocument(Upload* upload, std::string_view bytes);
  void TakeBuffer();
  void EndUpload(Peer* peer);
  bool MustPause(const Peer& peer) const;
  void Written(size_t bytes);
  void DropUpload(Upload* upload);

  Options options_;
  Settings settings_;
  Spool spool_;
  std::unique_ptr<Disk> disk_;
  std::unique_ptr<Counters> counters_;
  std::unique_ptr<PrinterEntries> entries_;
  std::unique_ptr<AccessLog> log_;
  std::unique_ptr<Queue> queue_;
  std::vector<std::unique_ptr<Printer>> printers_;
  Child layout_{"layout server"};
  Child scan_{"scan server"};
  Fd listener_;
  Fd signals_;
  Fd epoll_;
  std::list<std::shared_ptr<Peer>> peers_;  // closed ones go at the end of the turn
  size_t open_peers_ = 0;
  size_t unwritten_ = 0;  // bytes of documents that wait for the disk
  std::vector<std::weak_ptr<Peer>> paused_;
  size_t max_peers_ = 0;
  int64_t now_ = 0;  // milliseconds of a steady clock, once a turn of the loop
  int64_t next_sweep_ = 0;
  int64_t next_tick_ = 0;
  uint64_t ticked_generation_ = 0;
  bool ending_ = false;
  std::shared_ptr<Buffer> buffer_;              // for what arrives
  std::vector<std::shared_ptr<Buffer>> spare_;  // those that the disk gave back
  std::shared_ptr<const std::string> list_;     // the queue list of `list_generation_`
  uint64_t list_generation_ = 0;
  std::vector<std::weak_ptr<const std::string>> lists_alive_;
};

}  // namespace printserverd

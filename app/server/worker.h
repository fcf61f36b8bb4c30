// The worker thread's own things.
#pragma once
#include <sys/socket.h>

#include <memory>
#include <string>
#include <vector>

#include "app/server/shared.h"

namespace console {

class Document;

class Worker {
 public:
  explicit Worker(Server::Shared* shared);
  ~Worker();
  void Run();

 private:
  enum Which { kLists, kFile, kGamut };
  int Connect(Which which, int ms);
  void Close(Which which);
  bool Stopping();
  bool Ready();
  void GoAway(Link link, const std::string& trouble, bool nothing_listens = false);
  bool TryToConnect(int ms);
  // Around a call that waits for the server.
  void Began();
  void Ended();
  bool Poll();

  // Changes of jobs (changes.cc).
  bool LooksFirst();
  bool MakeChanges();
  bool NextStep(JobStep* out);
  int Make(const JobStep& step, NC_Job* job, bool* left_held);
  void Answered(const JobStep& step, int status, const NC_Job& before, bool left_held);
  void NoteMove(const JobStep& step, const NC_Job& before);
  bool EndsBatch(int status);
  void NoteNewPriorities();
  void TellOutcome();
  void GiveUpChanges();
  void RemoveLater(const JobId& job);
  void ForgetBroken();
  bool RemoveUnwanted();
  bool FindJob(const JobId& id, NC_Job* out);

  // Scanners, profiles, gamut files (scanners.cc).
  bool AnswerRequests();
  bool NextRequest(ServerRequest* request);
  bool ReadServerLists();
  bool StartScan(const std::string& scanner);
  void SaveGamut(const ServerRequest& request);

  // Changes of printers (printers.cc).
  bool ChangePrinters();
  bool NextPrinterChange(PrinterChange* change, NC_Printer* printer);
  int SetPrinter(const PrinterChange& change, const NC_Printer& printer);

  void Serve(int connect_ms);
  void Wait();

  // Sending (sending.cc).
  void SendNext();
  bool NextTransfer(Transfer* out);
  int SendFile(const Transfer& t, std::string* why);
  int SendOnceOpened(const Transfer& t, const Document& document, std::string* why);
  int SendDocument(const Transfer& t, const Document& document, std::string* why);
  void Finish(int number, int result, const std::string& why);
  std::string SentText(const Transfer& ended, bool arrived);
  void NoteResult(int number, int result, const std::string& why);
  bool Arrived(const JobId& id);
  int SilentSeconds(int64_t sent);
  static int Progress(void* worker, int64_t sent, int64_t total);

  Server::Shared* shared_;
  std::unique_ptr<uint8_t[]> list_;
  std::unique_ptr<NC_Job[]> jobs_;
  std::string last_jobs_, last_printers_;
  bool ask_profiles_ = true;  // they change with the server's settings only
  int batch_ = 0;             // whose outcome is being counted, 0: none
  ChangeOutcome outcome_;
  // A job that was put before another one, with the priority that it had.
  struct Placed {
    JobId job;
    int priority;
    std::string passed;
  };
  std::vector<Placed> placed_;             // of the batch
  int64_t next_poll_ = 0, next_send_ = 0;  // MonotonicMs
  int retry_ms_ = 0;
  int sending_ = 0;  // number of the transfer
  const Document* document_ = nullptr;
  struct {
    int64_t sent, at;  // bytes, and when there were so many of them
  } progress_{};
  bool all_sent_ = false;   // of the transfer
  bool hold_back_ = false;  // lists are stored, and published by what follows
  // A transfer that broke off, under which id, and how often.
  struct Broken {
    int number = 0;
    JobId id{};
    bool has_id = false;
    int times = 0;
  } broken_;
  // Of transfers that were cancelled after they had broken off: they may have arrived all the same.
  std::vector<JobId> unwanted_;
};

}  // namespace console

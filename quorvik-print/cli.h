// quorvik-print: the print console on the command line.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace cli {

// Exit codes, as --help tells them.
constexpr int kGood = 0;
constexpr int kRefused = 1;
constexpr int kUsage = 2;
constexpr int kNoServer = 3;
constexpr int kNoFile = 4;
constexpr int kUnknownEnd = 5;

// Options that were given, as bits; each command takes some of them (options.cc).
enum Option : uint32_t {
  kServerOption = 1 << 0,
  kPrinterOption = 1 << 1,
  kProfileOption = 1 << 2,
  kMediaOption = 1 << 3,
  kOwnerOption = 1 << 4,
  kTitleOption = 1 << 5,
  kColourOption = 1 << 6,
  kCopiesOption = 1 << 7,
  kPriorityOption = 1 << 8,
  kHoldOption = 1 << 9,
  kWaitOption = 1 << 10,
  kBeforeOption = 1 << 11,
  kStateOption = 1 << 12,
  kMineOption = 1 << 13,
  kAllOption = 1 << 14,
  kYesOption = 1 << 15,
  kFolderOption = 1 << 16,
  kOutputOption = 1 << 17,
  kJsonOption = 1 << 18,
  kTsvOption = 1 << 19,
  kHelpOption = 1 << 20,
  kVersionOption = 1 << 21,
};

struct Options {
  std::string command;
  std::vector<std::string> words;  // what follows the command
  uint32_t given = 0;
  std::string server;  // empty: localhost
  std::string printer, profile, media, owner, title, before, state, folder, output;
  int32_t colour = -1;  // 0xRRGGBB
  int64_t copies = 1;
  int64_t priority = 50;

  bool Has(Option option) const { return (given & option) != 0; }
  // The owner that is meant: the option's, else the user's name.
  std::string Owner() const;
};

// A greeted connection to the server, closed at the end.
class Session {
 public:
  explicit Session(std::string server) : server_(std::move(server)) {}
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;
  ~Session();

  // Connects, once more if need be; kGood, or kNoServer, which has been told unless `quiet`.
  int Connect(bool quiet = false);
  int fd() const { return fd_; }
  const std::string& server() const { return server_; }

 private:
  std::string server_;
  int fd_ = -1;
};

// Tells a failure on standard error; returns `code`.
int Fail(int code, const std::string& text);
// The same for a call that failed on the connection (errno); `after` is added.
int Lost(const std::string& after = "");
// Keeps the first failure.
void Note(int code, int* first);

// Writes to standard output. What cannot be written is found by FinishOutput.
void Print(const std::string& text);
// Writes a line, and does not keep it back.
void PrintLine(const std::string& line);
// kGood, or kNoFile, which has been told, when something could not be written. A reader that has
// closed its end wanted no more: that is no failure.
int FinishOutput();

// Each runs one command on a connection and returns an exit code.
int List(Session& session, const Options& options);
int ShowQueue(Session& session, const Options& options);
int Profiles(Session& session, const Options& options);
int Scanners(Session& session, const Options& options);
int PrintFiles(Session& session, const Options& options);
int HoldOrRelease(Session& session, const Options& options);
int Remove(Session& session, const Options& options);
int Change(Session& session, const Options& options);
int Again(Session& session, const Options& options);
int Move(Session& session, const Options& options);
int ChangePrinters(Session& session, const Options& options);
int Gamut(Session& session, const Options& options);

}  // namespace cli

// A printserverd of the test's own: its address, its spool, its life.
#pragma once

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/types.h>

#include <array>
#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "printserver/nc.h"
#include "printserver/records.h"

namespace testing_daemon {

// What a program wrote and how it ended.
struct Outcome {
  int code = -1;  // exit code, or 128 + signal
  std::string out, error;
};

// Runs a program to its end, with `environment` ("NAME=value") added.
Outcome RunProgram(const std::vector<std::string>& arguments,
                   const std::vector<std::string>& environment = {});

class Daemon {
 public:
  // `number` (0 or 1) tells the daemons of one test apart.
  explicit Daemon(int number = 0);
  // Ends the daemon, expecting exit code 0, and removes the spool.
  ~Daemon();

  // Starts it with more arguments, and waits until it listens.
  void Start(const std::vector<std::string>& arguments = {});
  // The same with another program. -1, or its exit code when it ends instead.
  int Launch(const char* program, const std::vector<std::string>& arguments);
  // Ends it with a signal; the exit code, or 128 + signal.
  int Stop(int signal);
  void Signal(int signal);

  pid_t pid() const { return pid_; }
  const char* host() const { return host_.c_str(); }
  // A path beneath the spool.
  std::string Path(const std::string& name) const { return folder_ + "/spool/" + name; }
  // Writes a file beside the spool; its path.
  std::string WriteFile(const std::string& name, const std::string& content) const;
  const std::string& folder() const { return folder_; }

  // What it has said on standard error since the test began.
  std::string Said() const;
  // Waits until it has said that.
  bool Says(const std::string& text) const;

  // A greeted connection with a deadline.
  int Connect() const;
  // A connection without any greeting.
  int ConnectRaw() const;

 private:
  std::string host_;
  std::string folder_;
  pid_t pid_ = 0;
};

std::string ReadWhole(const std::string& path);
std::vector<std::string> FilesIn(const std::string& folder);

// Sends a request; the status byte. `id` becomes the new request's id.
int Send(int fd, const std::string& ticket, const std::string& document, uint8_t* id);
// Writes a ticket alone.
int Change(int fd, const uint8_t* id, const std::string& ticket);

// Sends command 3 with `data`, or 6, but does not wait for its answer, and takes that answer.
void Ask(int fd, char code, const void* id, const std::string& data);
int AnswerOf(int fd);

std::vector<NC_Job> Jobs(int fd);
// The job of that id; state -1 when it is not in the queue.
NC_Job JobOf(int fd, const uint8_t* id);
// The documents of the queue in its order, with a space behind each.
std::string Order(int fd);
std::vector<NC_Printer> Printers(int fd);
NC_Printer PrinterOf(int fd, const std::string& name);
// An id as 32 digits.
std::string IdText(const uint8_t* id);

// Waits until it holds; false after 30 seconds.
bool Eventually(const std::function<bool()>& holds);

// A daemon with one client. Jobs go by names that the test gives them, printers by their own.
class Served : public testing::Test {
 protected:
  ~Served() override { EXPECT_EQ(Stop(SIGTERM), 0); }
  // Starts the daemon and connects.
  void Start(const std::vector<std::string>& arguments = {});
  // The same with a configuration.
  void StartWith(const std::string& configuration, std::vector<std::string> arguments = {});
  // Ends the daemon, then the connection; the exit code, or 128 + signal.
  int Stop(int signal);
  // Kills it and starts it as before.
  void Restart();

  // Sends a request; its status.
  int New(const std::string& name, const std::string& ticket, const std::string& document = "x");
  // Changes or removes a job or a printer; the status.
  int Tell(const std::string& name, const std::string& ticket);
  int Remove(const std::string& name);
  // What its record has for these keys, with a space between.
  std::string See(const std::string& name, const std::string& keys);
  // Waits until that is so.
  bool Becomes(const std::string& name, const std::string& keys, const std::string& values);
  bool IsDone(const std::string& name) { return Becomes(name, "state", "done"); }
  std::string DocumentOf(const std::string& name);

  Daemon daemon;
  int fd = -1;
  std::map<std::string, std::array<uint8_t, NC_ID_SIZE>> ids;

 private:
  std::vector<std::string> arguments_;
};

}  // namespace testing_daemon

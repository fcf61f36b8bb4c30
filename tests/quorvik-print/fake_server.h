// quorvik-print against a server that says what the test tells it to.
#pragma once

#include <gtest/gtest.h>

#include <deque>
#include <mutex>
#include <string>
#include <vector>

#include "tests/printserver/peer.h"
#include "tests/printserverd/daemon.h"

using testing_daemon::Outcome;
using testing_daemon::RunProgram;

inline bool Has(const std::string& text, const std::string& part) {
  return text.find(part) != std::string::npos;
}

inline std::string Digits(const std::string& id) {
  char text[33];
  NC_FormatId(reinterpret_cast<const uint8_t*>(id.data()), text);
  return text;
}

// One connection at a time; ids are counted: 01000..., 02000...
class FakeServer {
 public:
  // What a list has in turn; the last one stays.
  std::deque<std::string> queues = {""};
  std::string printers, profiles, scanners;
  // The answers to commands 3 and 6 in turn, 1 when there are no more. -1: the connection ends
  // instead, after the request; -2: in the middle of it.
  std::deque<int> statuses;
  // "ID ticket and document" for each command 3, "ID removed" for each command 6.
  std::vector<std::string> requests;
  size_t longest = 0;  // announced for the queue, when it is not 0

  FakeServer() {
    listener_.Serve(1 << 20, [this](int end) {
      ReceiveText(end, 4);
      SendText(end, "\x01");
      for (std::string head; (head = ReceiveText(end, 4)).size() == 4;) {
        if (!Answer(end, head[3])) break;
      }
    });
  }
  const std::string& host() const { return listener_.host; }
  // What one side has written the other one sees: before and after a program has run.
  void Sync() { const std::lock_guard<std::mutex> lock(mutex_); }

 private:
  bool Answer(int end, char code) {
    const std::lock_guard<std::mutex> lock(mutex_);
    switch (code) {
      case 1: {
        const std::string list = queues.front();
        if (queues.size() > 1) queues.pop_front();
        return SendText(end,
                        Integer(static_cast<uint32_t>(longest ? longest : list.size())) + list);
      }
      case 2:
        return SendText(end, "\x01" + Integer(static_cast<uint32_t>(printers.size())) + printers);
      case 3:
      case 6:
        return Change(end, code);
      case 5:
        return SendText(end, static_cast<char>(++ids_) + std::string(15, 0));
      case 10:
        return SendText(end, "\x01" + Integer(static_cast<uint32_t>(scanners.size())) + scanners);
      case 11:
        ReceiveText(end, 80);
        return SendText(end, Integer(static_cast<uint32_t>(profiles.size() / 48)) + profiles);
      default:
        return false;
    }
  }

  bool Change(int end, char code) {
    const int status = statuses.empty() ? 1 : statuses.front();
    if (!statuses.empty()) statuses.pop_front();
    if (status == -2) return ReceiveText(end, 30), false;
    std::string id;
    const std::string text = code == 6 ? "removed" : ReceiveRequest(end, &id);
    if (code == 6) id = ReceiveText(end, 16);
    requests.push_back(Digits(id) + " " + text);
    return status >= 0 && SendText(end, std::string(1, static_cast<char>(status)));
  }

  std::mutex mutex_;
  int ids_ = 0;
  Listener listener_;  // the last: its thread uses the others
};

class Cli : public ::testing::Test {
 protected:
  Outcome Run(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), QUORVIK_PRINT);
    return RunSynced(arguments);
  }
  // By a shell, which finds the program in $Q.
  Outcome Shell(const std::string& line) { return RunSynced({"/bin/sh", "-c", line}); }
  // What it asked for, and forgets it.
  std::vector<std::string> Requests() {
    server.Sync();
    return std::exchange(server.requests, {});
  }
  Outcome RunSynced(const std::vector<std::string>& arguments) {
    server.Sync();
    const Outcome outcome =
        RunProgram(arguments, {"QUORVIK_SERVER=" + server.host(), "USER=ann", "Q=" QUORVIK_PRINT});
    server.Sync();
    return outcome;
  }

  FakeServer server;
};

// A record of a job: its id is 32 digits that begin so.
inline std::string Job(const std::string& beginning, int number, const std::string& rest = "") {
  return "id=" + beginning + std::string(32 - beginning.size(), '0') +
         "\nnumber=" + std::to_string(number) + "\ndocument=d" + std::to_string(number) +
         "\nowner=ann\nprinter=P\n" + rest + "\n";
}
inline std::string Id(const std::string& beginning) {
  return beginning + std::string(32 - beginning.size(), '0');
}

// Every call of the client with each of its system calls failing in each way. The result is the
// right one or the documented failure, nothing is left open, and a connection that is said to be
// good is in step: a removal that follows gets its own answer.
#include "tests/support/faults.h"

#include <errno.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <vector>

#include "os/final_path.h"
#include "printserver/nc.h"
#include "printserver/resolve.h"
#include "tests/os/scratch.h"
#include "tests/printserver/peer.h"

namespace {

using support::Fault;

constexpr int kRemoved = 77;
const std::string kQueue(300, 'q');
const std::string kGamut(20000, 'g');
const std::string kKey(NC_GAMUT_A, 'k');
const std::string kDocument(70000, 'd');

// What the server says to the command `code`; it takes in what belongs to it.
std::string Answer(int end, int code) {
  constexpr size_t kBodies[12] = {0, 0, 0, 20, 140, 0, 16, 512, 0, 160, 0, 80};
  const std::string body = ReceiveText(end, kBodies[code]);
  if (code == 3 && body.size() == 20) {
    uint32_t size = 0;
    for (int i = 3; i >= 0; --i) size = size << 8 | static_cast<uint8_t>(body[16 + i]);
    return ReceiveText(end, size).size() == size ? "\x05" : "";
  }
  if (code == 2 || code == 10) return "\x01" + Integer(kQueue.size()) + kQueue;
  if (code == 1) return Integer(kQueue.size()) + kQueue;
  if (code == 11) return Integer(2) + std::string(96, 'p');
  if (code == 4) return Integer(1000) + Integer(kGamut.size()) + kGamut;
  if (code == 5) return std::string(16, 'i');
  return code == 6 ? std::string(1, kRemoved) : code == 7 ? "\x03" : "";
}

void ServeAll(int end) {
  const support::ExemptFromFaults exempt;
  for (;;) {
    const std::string head = ReceiveText(end, 4);
    if (head.size() < 4 || head[3] < 1 || head[3] > 11) return;
    SendText(end, Answer(end, head[3]));
  }
}

struct Command {
  const char* name;
  int good;
  std::function<int(int fd)> run;  // -100 when it gave a good result with wrong bytes
};

class NcFaults : public testing::Test {
 protected:
  NcFaults() {
    document_ = open(scratch_.File("document", kDocument).c_str(), O_RDONLY | O_CLOEXEC);
    if (pipe2(pipe_, O_CLOEXEC) != 0) abort();
  }
  ~NcFaults() override {
    for (int fd : {document_, pipe_[0], pipe_[1]}) close(fd);
  }

  int List(int32_t size) const {
    return size > 0 && kQueue.compare(0, std::string::npos, buffer_, size) != 0 ? -100 : size;
  }

  void Rewind() const {
    const support::ExemptFromFaults exempt;
    lseek(document_, 0, SEEK_SET);
  }
  // Puts a document into the pipe; takes out what was not read.
  void Fill() const {
    const support::ExemptFromFaults exempt;
    EXPECT_EQ(write(pipe_[1], kDocument.data(), 5000), 5000);
  }
  void Drain() const {
    const support::ExemptFromFaults exempt;
    char rest[8192];
    pollfd one = {pipe_[0], POLLIN, 0};
    while (poll(&one, 1, 0) > 0 && read(pipe_[0], rest, sizeof rest) > 0) {
    }
  }

  Scratch scratch_;
  char buffer_[4096] = "";
  uint8_t status_ = 0;
  int document_ = -1;
  int pipe_[2] = {-1, -1};
};

// Whether the fault is one that a call with a deadline goes on after.
bool IsPassing(const Fault& fault) {
  const bool transfer = fault.In({"send", "recv", "sendfile", "read", "poll"});
  return !fault.happened() || (transfer && (fault.error() == 0 || fault.error() == EINTR ||
                                            (fault.error() == EAGAIN && !fault.In({"poll"}))));
}

TEST_F(NcFaults, Commands) {
  const std::string path = scratch_.At("gamut");
  const Command commands[] = {
      {"NC_GetPrintQueueN", 300,
       [this](int fd) { return List(NC_GetPrintQueueN(fd, buffer_, sizeof buffer_)); }},
      {"NC_GetPrinterListN", 300,
       [this](int fd) { return List(NC_GetPrinterListN(fd, &status_, buffer_, sizeof buffer_)); }},
      {"NC_GetProfileListN", 2,
       [this](int fd) { return NC_GetProfileListN(fd, kKey.data(), buffer_, sizeof buffer_); }},
      {"NC_CreateRequestID", 1, [this](int fd) { return NC_CreateRequestID(fd, buffer_); }},
      {"NC_RemoveFile", 3, [](int fd) { return NC_RemoveFile(fd, "/file"); }},
      {"NC_WritePrintRequest", 5,
       [](int fd) { return NC_WritePrintRequest(fd, kKey.data(), kDocument.data(), 5000); }},
      {"NC_WritePrintRequestN", 5,
       [this](int fd) {
         Rewind();
         return NC_WritePrintRequestN(fd, kKey.data(), "a=b", document_, 70000, nullptr, nullptr);
       }},
      {"NC_WritePrintRequestN of a pipe", 5,
       [this](int fd) {
         Fill();
         const int result =
             NC_WritePrintRequestN(fd, kKey.data(), "a=b", pipe_[0], 5000, nullptr, nullptr);
         Drain();
         return result;
       }},
      {"NC_CopyGamutFileN", 0,
       [&path](int fd) {
         unlink(path.c_str());
         const int result = NC_CopyGamutFileN(fd, kKey.data(), kKey.data(), path.c_str(), 1000000);
         const support::ExemptFromFaults exempt;
         return result == 0 && ReadFile(path) != kGamut ? -100 : result;
       }},
      {"NC_StartScanServer", 1, [](int fd) { return NC_StartScanServer(fd, "a", "b"); }},
      {"NC_Write and NC_Read", 16,
       [this](int fd) { return NC_SendCommand(fd, 5) == 4 ? NC_Read(fd, buffer_, 16) : -1; }},
  };
  for (const bool deadline : {true, false}) {
    for (const Command& command : commands) {
      const std::string name = std::string(command.name) + (deadline ? "" : ", no deadline");
      support::SweepFaults(name.c_str(), 1, [&](Fault& fault) {
        Pair pair(ServeAll);
        if (deadline) NC_SetDeadline(pair.fd, 20000);
        fault.Begin();
        const int result = command.run(pair.fd);
        fault.End();
        // A gamut file that could not be written is a result of its own.
        const bool failed = result < 0 && result >= NC_UNREADABLE;
        EXPECT_TRUE(result == command.good || failed || (result == 1 && command.good == 0))
            << result;
        EXPECT_TRUE(result == command.good || fault.happened());
        EXPECT_TRUE(result == command.good || !deadline || !IsPassing(fault)) << result;
        // Without a deadline NC_Write does not go on after a signal; documents do.
        const bool ends = name.find("RequestN") == std::string::npos && !deadline &&
                          fault.In({"send"}) && fault.error() == EINTR;
        EXPECT_FALSE(ends && result == command.good);
        const uint8_t id[16] = {};
        if (result >= 0 && !fault.In({"fcntl"})) {
          EXPECT_EQ(NC_RemovePrintRequest(pair.fd, id), kRemoved) << "not in step";
        }
      });
    }
  }
}

TEST_F(NcFaults, Connecting) {
  Listener server("127.0.0.1", 0);
  ASSERT_GE(server.fd, 0);
  server.Serve(1 << 20, [](int end) {
    const support::ExemptFromFaults exempt;
    Greet(end);
  });
  const std::string numeric = server.host + ":" + std::to_string(server.port);
  const std::string named = "localhost:" + std::to_string(server.port);
  const struct {
    const char* name;
    std::function<int()> connect;
  } rows[] = {
      {"NC_ConnectN", [&] { return NC_ConnectN(numeric.c_str(), 20000); }},
      {"NC_ConnectN by name", [&] { return NC_ConnectN(named.c_str(), 20000); }},
      {"NC_ReadyN",
       [&] {
         int fd = -1;
         int result = 0;
         for (int i = 0; i < 500 && result == 0; ++i) {
           result = NC_ReadyN(numeric.c_str(), &fd, 20000);
           if (result == 0 && fd >= 0) usleep(1000);
         }
         return result == 1 ? fd : NC_NO_SERVER;
       }},
  };
  for (const auto& row : rows) {
    support::SweepFaults(row.name, 1, [&](Fault& fault) {
      fault.Begin();
      const int fd = row.connect();
      fault.End();
      EXPECT_TRUE(fd >= 0 || (fd >= NC_REFUSED && fault.happened())) << fd;
      EXPECT_TRUE(fd >= 0 || fd == NC_NO_SOCKET || !fault.In({"socket"})) << fd;
      if (fd < 0) return;
      EXPECT_EQ(fcntl(fd, F_GETFL) & (O_NONBLOCK | O_APPEND | O_ASYNC), 0);
      EXPECT_GT(NC_GetDeadline(fd), 0);
      NC_Disconnect(fd);
    });
  }
}

}  // namespace

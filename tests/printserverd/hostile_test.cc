// Clients that do harm, and faults on purpose.
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <unistd.h>

#include <chrono>
#include <thread>

#include "tests/printserver/peer.h"
#include "tests/printserverd/daemon.h"

using namespace testing_daemon;

namespace {

using Hostile = Served;
using Faults = Served;

const std::string kGreeting("\4\3\2\1", 4);

std::string Header(char code) {
  return std::string("KRV") + code;
}

void SetSoftLimit(rlim_t descriptors) {
  rlimit limit;
  getrlimit(RLIMIT_NOFILE, &limit);
  limit.rlim_cur = std::min<rlim_t>(descriptors, limit.rlim_max);
  ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &limit), 0);
  ASSERT_EQ(limit.rlim_cur, descriptors);
}

// Whether the other side has closed the connection.
bool Ended(int fd) {
  char byte;
  return recv(fd, &byte, 1, MSG_DONTWAIT) == 0;
}

// KiB. A sanitizer takes memory of its own.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr int64_t kMostMemory = 1 << 20;
#else
constexpr int64_t kMostMemory = 32 << 10;
#endif

// The most memory that a process has had, KiB.
int64_t MemoryOf(pid_t pid) {
  const std::string status = ReadWhole("/proc/" + std::to_string(pid) + "/status");
  return atoll(status.c_str() + status.find("VmHWM:") + 6);
}

// An honest client gets everything.
void ExpectHonestWorks(const Daemon& daemon) {
  const int fd = daemon.Connect();
  uint8_t id[16];
  EXPECT_EQ(Send(fd, "owner=honest\n", std::string(300000, 'h'), id), NC_STATUS_DONE);
  EXPECT_EQ(JobOf(fd, id).size, 300000);
  EXPECT_EQ(NC_RemovePrintRequest(fd, id), NC_STATUS_DONE);
  NC_Disconnect(fd);
}

TEST_F(Hostile, GreetingsAndHeadersThatAreNone) {
  Start();
  const struct {
    std::string bytes, reply;
  } cases[] = {
      {"HTTP", std::string(1, '\0')},
      {std::string("\1\2\3\4", 4), std::string(1, '\0')},
      {kGreeting + "KRX\1", "\1"},
      {kGreeting + Header('\0'), "\1"},
      {kGreeting + Header('\14'), "\1"},
      {kGreeting + Header('\377'), "\1"},
      // More than can be accepted is refused at once, and the connection ends.
      {kGreeting + Header(3) + std::string(16, 'i') + Integer(0x80000000) + std::string(5000, 'x'),
       "\1\4"},
      {kGreeting + Header(3) + std::string(16, 'i') + Integer(0xffffffff), "\1\4"},
  };
  for (const auto& row : cases) {
    const int one = daemon.ConnectRaw();
    EXPECT_TRUE(SendText(one, row.bytes));
    EXPECT_EQ(ReceiveText(one, 100), row.reply);  // and then the end
    close(one);
  }
  ExpectHonestWorks(daemon);
}

TEST_F(Hostile, HalfRequestsLeaveNothing) {
  Start();
  for (const size_t sent : {0, 3, 8, 9, 500000}) {
    const int one = daemon.Connect();
    uint8_t id[16];
    ASSERT_EQ(NC_CreateRequestID(one, id), 1);
    const std::string data = "owner=x\n\n" + std::string(1000000, 'x');
    SendText(one, Header(3) + std::string(id, id + 16) +
                      Integer(static_cast<uint32_t>(data.size())) + data.substr(0, sent));
    if (sent > 8) {
      EXPECT_TRUE(Eventually([&] { return FilesIn(daemon.Path("jobs")).size() == 1; }));
    }
    NC_Disconnect(one);
    EXPECT_TRUE(Eventually([&] { return FilesIn(daemon.Path("jobs")).empty(); }));
  }
  ExpectHonestWorks(daemon);
}

TEST_F(Hostile, ThousandSlowClientsAndAnHonestOne) {
  SetSoftLimit(2300);
  Start();
  // These stop for good, each in another place.
  std::vector<int> stopped;
  for (const std::string& bytes :
       {std::string(), kGreeting.substr(0, 3), kGreeting + "K", kGreeting + Header(6) + "half",
        kGreeting + Header(7) + std::string(511, 'x')}) {
    stopped.push_back(daemon.ConnectRaw());
    SendText(stopped.back(), bytes);
  }
  const std::string script = kGreeting + Header(1) + Header(5) + Header(2) + Header(11);
  std::vector<int> slow;
  for (int i = 0; i < 1000; ++i) slow.push_back(daemon.ConnectRaw());
  for (size_t second = 0; second < 10; ++second) {
    const auto next = std::chrono::steady_clock::now() + std::chrono::seconds(1);
    for (const int one : slow) send(one, &script[second], 1, MSG_NOSIGNAL | MSG_DONTWAIT);
    ExpectHonestWorks(daemon);
    std::this_thread::sleep_until(next);
  }
  EXPECT_LT(MemoryOf(daemon.pid()), kMostMemory);
  for (const int one : stopped) {
    EXPECT_LE(ReceiveText(one, 100).size(), 1U);  // up to the end
    EXPECT_TRUE(Ended(one));
    close(one);
  }
  for (const int one : slow) close(one);
  ExpectHonestWorks(daemon);
}

// Requests that are sent together, the last one with the end behind it.
TEST_F(Hostile, WhatWasSentWholeIsAnsweredInOrder) {
  Start();
  const int one = daemon.Connect();
  uint8_t id[16];
  ASSERT_EQ(NC_CreateRequestID(one, id), 1);
  const std::string none(16, 'i');
  SendText(one, Header(10) + Header(1) + Header(6) + none + Header(3) + none + Integer(7) +
                    "a=\n\nxyz" + Header(3) + std::string(id, id + 16) + Integer(9) +
                    "hold=1\n\nx" + Header(10));
  shutdown(one, SHUT_WR);
  EXPECT_EQ(ReceiveText(one, 99), std::string("\0\0\0\0\0\2\2\1\0", 9));
  EXPECT_TRUE(Ended(one));
  close(one);
  EXPECT_EQ(JobOf(fd, id).size, 1);
}

TEST_F(Hostile, TheDiskIsFull) {
  // The daemon's alone: other tests of this process start theirs without it.
  rlimit before;
  getrlimit(RLIMIT_FSIZE, &before);
  const rlimit limit = {200000, before.rlim_max};
  signal(SIGXFSZ, SIG_IGN);
  ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &limit), 0);
  Start({"--rate", "0"});
  setrlimit(RLIMIT_FSIZE, &before);
  signal(SIGXFSZ, SIG_DFL);
  EXPECT_EQ(New("large", "", std::string(500000, 'x')), NC_STATUS_STORAGE);
  EXPECT_TRUE(Eventually([&] { return FilesIn(daemon.Path("jobs")).empty(); }));
  EXPECT_TRUE(New("a", "", std::string(150000, 'x')) == 1 && IsDone("a"));
}

TEST_F(Hostile, MoreConnectionsThanItTakes) {
  SetSoftLimit(256);  // the daemon's too, which raises it
  Start();
  SetSoftLimit(2300);
  std::vector<int> all;
  for (int i = 0; i < 2200; ++i) {
    all.push_back(daemon.ConnectRaw());
    if (i % 2) SendText(all.back(), kGreeting);
    if (i % 100 != 99) continue;
    EXPECT_EQ(ReceiveText(all.back(), 1), "\1");
  }
  ExpectHonestWorks(daemon);
  // Of those that do nothing the first ones had to go.
  EXPECT_TRUE(Eventually([&] { return Ended(all[0]); }));
  for (const size_t one : {size_t{599}, size_t{2199}}) {
    EXPECT_TRUE(SendText(all[one], Header(10)));
    EXPECT_EQ(ReceiveText(all[one], 1), std::string(1, '\0')) << one;
  }
  for (const int one : all) close(one);
}

TEST_F(Hostile, ClientsThatDoNotRead) {
  Start();
  const std::string ticket = "hold=1\ndocument=" + std::string(250, 'n');
  for (int i = 0; i < 300; ++i) ASSERT_EQ(New("a", ticket, ""), 1);
  std::vector<int> deaf;
  for (int i = 0; i < 50; ++i) {
    const int one = daemon.ConnectRaw();
    int small = 2048;
    setsockopt(one, SOL_SOCKET, SO_RCVBUF, &small, sizeof small);
    std::string requests = kGreeting;
    for (int k = 0; k < 100; ++k) requests += Header(1);
    SendText(one, requests);
    deaf.push_back(one);
  }
  ExpectHonestWorks(daemon);
  EXPECT_EQ(Jobs(fd).size(), 300U);
  for (const int one : deaf) close(one);
}

TEST_F(Faults, EachIsSeen) {
  daemon.Start({"--simulate", "refuse"});
  EXPECT_EQ(NC_ConnectN(daemon.host(), 5000), NC_REFUSED);
  EXPECT_EQ(Stop(SIGTERM), 0);

  char list[4096];
  uint8_t status, id[16];
  Start({"--simulate", "cut=10"});
  EXPECT_EQ(NC_CreateRequestID(fd, id), -1);
  EXPECT_EQ(Stop(SIGTERM), 0);

  const struct {
    const char* fault;
    int error;
  } rows[] = {{"stall=3", ETIMEDOUT}, {"length=4294967295", EMSGSIZE}};
  for (const auto& row : rows) {
    Start({std::string("--simulate=") + row.fault});
    NC_SetDeadline(fd, 300);
    EXPECT_EQ(NC_GetPrinterListN(fd, &status, list, sizeof list), -1);
    EXPECT_EQ(errno, row.error);
    EXPECT_EQ(Stop(SIGTERM), 0);
  }

  Start({"--simulate", "paper-out", "--rate", "0"});
  EXPECT_EQ(New("a", ""), 1);
  EXPECT_TRUE(Becomes("a", "state", "paper-out"));
  EXPECT_EQ(Tell("a", "hold=0"), 1);
  EXPECT_TRUE(IsDone("a"));
}

}  // namespace

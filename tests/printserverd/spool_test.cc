// What the spool keeps: sizes, restarts, requests by the thousand, and how the daemon starts.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <signal.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstring>
#include <filesystem>
#include <fstream>

#include "tests/printserver/peer.h"
#include "tests/printserverd/daemon.h"

using namespace testing_daemon;

namespace {

using Spool = Served;

std::string IdText(const uint8_t* id) {
  char text[33];
  NC_FormatId(id, text);
  return text;
}

// Without holding either.
bool SameBytes(const std::string& a, const std::string& b) {
  return RunProgram({"/usr/bin/cmp", "-s", a, b}).code == 0;
}

TEST_F(Spool, DocumentsOfEverySize) {
  Start({"--rate", "0"});
  for (const int64_t size : {int64_t{0}, int64_t{1}, int64_t{262144}, int64_t{200000000}}) {
    const std::string path = daemon.WriteFile("document", "");
    {
      std::ofstream file(path, std::ios::binary);
      std::string block(1000000, '\0');
      for (int64_t at = 0; at < size; at += 1000000) {
        for (size_t i = 0; i < block.size(); i += 997) block[i] = static_cast<char>(at + i * 31);
        file.write(block.data(), std::min<int64_t>(1000000, size - at));
      }
    }
    const int file = open(path.c_str(), O_RDONLY);
    uint8_t id[16];
    ASSERT_EQ(NC_CreateRequestID(fd, id), 1);
    ASSERT_EQ(NC_WritePrintRequestN(fd, id, "hold=1", file, size, nullptr, nullptr), 1);
    close(file);
    EXPECT_EQ(JobOf(fd, id).size, size);
    const std::string stored = daemon.Path("jobs/" + IdText(id) + ".doc");
    EXPECT_TRUE(SameBytes(path, stored)) << size;
    struct stat info;
    ASSERT_EQ(stat(stored.c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 0777, 0600U);
    EXPECT_EQ(Change(fd, id, "hold=0\n"), 1);
    EXPECT_TRUE(Becomes(fd, id, NC_JOB_DONE));
    const auto outputs = FilesIn(daemon.Path("printed/proof"));
    ASSERT_EQ(outputs.size(), 1U);
    EXPECT_TRUE(SameBytes(path, daemon.Path("printed/proof/" + outputs[0]))) << size;
    unlink(daemon.Path("printed/proof/" + outputs[0]).c_str());
  }
}

TEST_F(Spool, ThousandRequestsAndARestart) {
  Start();
  std::vector<std::string> ids;
  for (int i = 0; i < 1000; ++i) {
    uint8_t id[16];
    const std::string ticket =
        "hold=1\ndocument=number " + std::to_string(i) + "\npriority=" + std::to_string(1 + i % 7);
    ASSERT_EQ(Send(fd, ticket + "\n", std::to_string(i), id), 1);
    ids.push_back(IdText(id));
  }
  const auto before = Jobs(fd);
  ASSERT_EQ(before.size(), 1000U);
  EXPECT_EQ(Stop(SIGKILL), 128 + SIGKILL);
  Start();
  const auto after = Jobs(fd);
  ASSERT_EQ(after.size(), 1000U);
  EXPECT_EQ(memcmp(before.data(), after.data(), 1000 * sizeof(NC_Job)), 0);
  for (int i = 0; i < 1000; i += 99) {
    EXPECT_EQ(ReadWhole(daemon.Path("jobs/" + ids[static_cast<size_t>(i)] + ".doc")),
              std::to_string(i));
  }
}

TEST_F(Spool, RestartInTheMiddle) {
  const char config[] = "[printer]\nname=P\nrate=64K\n";
  StartWith(config);
  uint8_t printing[16], done[16], half[16];
  ASSERT_EQ(Send(fd, "", "quick", done), 1);
  EXPECT_TRUE(Becomes(fd, done, NC_JOB_DONE));
  ASSERT_EQ(Send(fd, "", std::string(1 << 20, 'p'), printing), 1);
  EXPECT_TRUE(Eventually([&] { return JobOf(fd, printing).printed > 0; }));
  EXPECT_EQ(Change(fd, printing, "priority=70\n"), 1);
  ASSERT_EQ(NC_CreateRequestID(fd, half), 1);
  SendText(fd, "KRV\3" + std::string(half, half + 16) + std::string("\0\0\1\0\n", 5) + "begun");
  const std::string document = daemon.Path("jobs/" + IdText(half) + ".doc");
  EXPECT_TRUE(Eventually([&] { return std::filesystem::exists(document); }));
  EXPECT_EQ(Stop(SIGKILL), 128 + SIGKILL);
  EXPECT_TRUE(std::filesystem::exists(document));
  daemon.WriteFile("spool/jobs/0123456789abcdef0123456789abcdef.job", "state=rubbish\n\n");
  daemon.WriteFile("spool/jobs/not a job.job", "\n");

  StartWith(config, {"--rate", "0"});
  EXPECT_FALSE(std::filesystem::exists(document));
  EXPECT_EQ(Jobs(fd).size(), 2U);
  EXPECT_EQ(JobOf(fd, done).state, NC_JOB_DONE);
  EXPECT_EQ(JobOf(fd, printing).priority, 70);
  EXPECT_TRUE(Becomes(fd, printing, NC_JOB_DONE));
  const auto outputs = FilesIn(daemon.Path("printed/p"));
  ASSERT_EQ(outputs.size(), 2U);  // and nothing of the first attempt
  int whole = 0;
  for (const std::string& name : outputs) {
    whole += ReadWhole(daemon.Path("printed/p/" + name)) == std::string(1 << 20, 'p');
  }
  EXPECT_EQ(whole, 1);
}

bool Answered(int fd) {
  pollfd one = {fd, POLLIN, 0};
  return poll(&one, 1, 0) != 0;
}

// Sends a request but does not wait for its answer.
void Ask(int fd, char code, const void* id, const std::string& data) {
  ASSERT_EQ(NC_SendCommand(fd, static_cast<uint8_t>(code)), 4);
  ASSERT_EQ(NC_Write(fd, id, NC_ID_SIZE), NC_ID_SIZE);
  if (code == 3) {
    const auto size = static_cast<int32_t>(data.size());
    ASSERT_EQ(NC_Write(fd, &size, 4), 4);
    ASSERT_EQ(NC_Write(fd, data.data(), size), size);
  }
}

int AnswerOf(int fd) {
  uint8_t status = 0;
  return NC_Read(fd, &status, 1) == 1 ? status : -1;
}

TEST_F(Spool, ASlowDiskHoldsUpOnlyThoseWhoStore) {
  Start({"--simulate", "slow-disk=700"});
  uint8_t id[NC_ID_SIZE];
  const int storing = daemon.Connect();
  ASSERT_EQ(NC_CreateRequestID(storing, id), 1);
  Ask(storing, 3, id, "hold=1\n\n" + std::string(3 << 20, 'd'));
  // Another one is greeted and served meanwhile, and does not see what is not stored yet.
  const int other = daemon.Connect();
  EXPECT_TRUE(Jobs(other).empty());
  EXPECT_EQ(Printers(other).size(), 1U);
  EXPECT_FALSE(Answered(storing));
  EXPECT_EQ(AnswerOf(storing), NC_STATUS_DONE);
  EXPECT_EQ(JobOf(other, id).size, 3 << 20);
  // Changes of one job come one after another, and none is lost.
  Ask(storing, 3, id, "owner=one\n");
  Ask(other, 3, id, "copies=2\n");
  EXPECT_EQ(AnswerOf(storing), NC_STATUS_DONE);
  EXPECT_EQ(AnswerOf(other), NC_STATUS_DONE);
  NC_Job job = JobOf(fd, id);
  EXPECT_STREQ(job.owner, "one");
  EXPECT_EQ(job.copies, 2);
  // A job that goes takes what was still wanted of it along.
  Ask(storing, 3, id, "owner=two\n");
  EXPECT_STREQ(JobOf(fd, id).owner, "one");
  Ask(other, 6, id, "");
  EXPECT_EQ(AnswerOf(storing), NC_STATUS_UNKNOWN_ID);
  EXPECT_EQ(AnswerOf(other), NC_STATUS_DONE);
  EXPECT_TRUE(FilesIn(daemon.Path("jobs")).empty());
  NC_Disconnect(storing);
  NC_Disconnect(other);
}

TEST_F(Spool, WhatWasNotAnsweredMayBeLostButIsNeverHalf) {
  Start({"--simulate", "slow-disk=400"});
  uint8_t ids[3][NC_ID_SIZE];
  int peers[3];
  for (int i = 0; i < 3; ++i) {
    peers[i] = daemon.Connect();
    ASSERT_EQ(NC_CreateRequestID(peers[i], ids[i]), 1);
    Ask(peers[i], 3, ids[i], "hold=1\n\n" + std::string(100000, 'd'));
  }
  EXPECT_EQ(AnswerOf(peers[0]), NC_STATUS_DONE);
  // An end that is asked for stores what has arrived whole.
  NC_Disconnect(peers[1]);
  EXPECT_EQ(Stop(SIGTERM), 0);
  Start({"--simulate", "slow-disk=400"});
  EXPECT_EQ(Jobs(fd).size(), 3U);
  const int late = daemon.Connect();
  uint8_t id[NC_ID_SIZE];
  ASSERT_EQ(NC_CreateRequestID(late, id), 1);
  Ask(late, 3, id, "hold=1\n\n" + std::string(100000, 'd'));
  ASSERT_TRUE(Eventually([&] { return FilesIn(daemon.Path("jobs")).size() == 7; }));
  EXPECT_EQ(Stop(SIGKILL), 128 + SIGKILL);
  Start();
  EXPECT_EQ(Jobs(fd).size(), 3U);
  EXPECT_TRUE(Eventually([&] { return FilesIn(daemon.Path("jobs")).size() == 6; }));
  for (const int peer : {peers[0], peers[2], late}) NC_Disconnect(peer);
}

TEST(Start, RefusesWithOneLine) {
  Daemon daemon;
  daemon.Start();
  const std::string busy = daemon.folder() + "/spool";
  const std::string free = daemon.folder() + "/free";
  const std::string config = daemon.WriteFile("config", "[printer]\nname=P\nrate=fast\n");
  const std::string file = daemon.WriteFile("file", "x");
  std::filesystem::create_symlink(daemon.folder(), daemon.folder() + "/link");
  chmod(daemon.folder().c_str(), 0755);
  const struct {
    std::vector<std::string> arguments;
    int code;
    std::string error;
  } cases[] = {
      {{"--spool", busy, "--listen", "127.0.0.1:0"}, 1, "another printserverd uses it"},
      {{"--spool", free, "--listen", daemon.host()}, 1, "cannot listen on"},
      {{"--spool", file, "--listen", "127.0.0.1:0"}, 1, "Not a directory"},
      {{"--spool", daemon.folder() + "/link", "--listen", "127.0.0.1:0"}, 1, "spool"},
      {{"--spool", daemon.folder(), "--listen", "127.0.0.1:0"}, 1, "it holds other files"},
      {{"--spool", free, "--listen", "example"}, 2, "IPv4 address"},
      {{"--spool", free, "--listen", "127.0.0.1:99999"}, 2, "IPv4 address"},
      {{"--spool", free, "--config", config}, 2, "line 3: rate wants bytes a second"},
      {{"--spool", free, "--config", daemon.folder() + "/none"}, 2, "No such file"},
      {{"--spool", free, "--config", "/dev/zero"}, 2, "larger than 1 MiB"},
      {{"--spool", free, "--config", daemon.folder()}, 2, "Is a directory"},
      {{"--spool", free, "--simulate", "refuse,explode"}, 2, "not \"explode\""},
      {{"--spool"}, 2, "wants a value"},
      {{"print"}, 2, "unknown argument"},
  };
  for (const auto& row : cases) {
    std::vector<std::string> all = {PRINTSERVERD};
    all.insert(all.end(), row.arguments.begin(), row.arguments.end());
    const Outcome outcome = RunProgram(all);
    EXPECT_EQ(outcome.code, row.code) << outcome.error;
    EXPECT_NE(outcome.error.find(row.error), std::string::npos) << outcome.error;
    EXPECT_EQ(std::count(outcome.error.begin(), outcome.error.end(), '\n'), 1);
  }
  struct stat other;
  ASSERT_EQ(stat(daemon.folder().c_str(), &other), 0);
  EXPECT_EQ(other.st_mode & 0777, 0755U);  // a folder of something else stays as it is
  const Outcome help = RunProgram({PRINTSERVERD, "--help"});
  EXPECT_EQ(help.code, 0);
  EXPECT_NE(help.out.find("--simulate"), std::string::npos);
}

}  // namespace

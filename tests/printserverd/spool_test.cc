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

#include "os/final_path.h"
#include "tests/printserver/peer.h"
#include "tests/printserverd/daemon.h"

using namespace testing_daemon;

namespace {

using Spool = Served;

TEST_F(Spool, DocumentsOfEverySize) {
  Start({"--rate", "0"});
  for (const int64_t size : {0, 1, 262144, 20000000}) {
    std::string document(static_cast<size_t>(size), '\0');
    for (size_t i = 0; i < document.size(); ++i) document[i] = static_cast<char>(i * 31 + i / 997);
    const std::string path = daemon.WriteFile("document", document);
    const os::Handle file(open(path.c_str(), O_RDONLY | O_CLOEXEC));
    uint8_t* id = ids["a"].data();
    ASSERT_EQ(NC_CreateRequestID(fd, id), 1);
    ASSERT_EQ(NC_WritePrintRequestN(fd, id, "hold=1", file.get(), size, nullptr, nullptr), 1);
    EXPECT_EQ(See("a", "size"), std::to_string(size));
    EXPECT_TRUE(ReadWhole(DocumentOf("a")) == document) << size;
    struct stat info;
    ASSERT_EQ(stat(DocumentOf("a").c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 0777, 0600U);
    EXPECT_EQ(Tell("a", "hold=0"), 1);
    EXPECT_TRUE(IsDone("a"));
    const auto outputs = FilesIn(daemon.Path("printed/proof"));
    ASSERT_EQ(outputs.size(), 1U);
    EXPECT_TRUE(ReadWhole(daemon.Path("printed/proof/" + outputs[0])) == document) << size;
    unlink(daemon.Path("printed/proof/" + outputs[0]).c_str());
  }
}

bool Answered(int fd) {
  pollfd one = {fd, POLLIN, 0};
  return poll(&one, 1, 0) != 0;
}

TEST_F(Spool, ASlowDiskHoldsUpOnlyThoseWhoStore) {
  Start({"--simulate", "slow-disk=300"});
  uint8_t* id = ids["a"].data();
  const int storing = daemon.Connect();
  ASSERT_EQ(NC_CreateRequestID(storing, id), 1);
  Ask(storing, 3, id, "hold=1\n\n" + std::string(3 << 20, 'd'));
  // Another one is greeted and served in between, and does not see what is not stored yet.
  const int other = daemon.Connect();
  EXPECT_TRUE(Jobs(other).empty());
  EXPECT_EQ(Printers(other).size(), 1U);
  EXPECT_FALSE(Answered(storing));
  EXPECT_EQ(AnswerOf(storing), NC_STATUS_DONE);
  EXPECT_EQ(See("a", "size"), "3145728");
  // Both ask at once; the answers are those of the second and the third word.
  const auto both = [&](char code, const std::string& one, char other_code, const char* two) {
    Ask(storing, code, id, one);
    const std::string owner = See("a", "owner");  // not stored yet
    Ask(other, other_code, id, two);
    const int first = AnswerOf(storing);
    return owner + " " + std::to_string(first) + " " + std::to_string(AnswerOf(other));
  };
  // Changes of one job come one after another, and none is lost.
  EXPECT_EQ(both(3, "owner=one\n", 3, "copies=2\n"), " 1 1");
  EXPECT_EQ(See("a", "owner copies"), "one 2");
  // A job that goes takes what was still wanted of it along.
  EXPECT_EQ(both(3, "owner=two\n", 6, ""), "one 2 1");
  EXPECT_TRUE(FilesIn(daemon.Path("jobs")).empty());
  // One that asks for the same after another has got it is told that it is gone.
  EXPECT_EQ(New("a", "hold=1"), 1);
  EXPECT_EQ(both(6, "", 6, ""), " 1 2");
  NC_Disconnect(storing);
  NC_Disconnect(other);
}

TEST_F(Spool, AnEndAnswersWhatIsBeingStored) {
  Start({"--simulate", "slow-disk=100"});
  int peers[4];
  for (int& peer : peers) {
    peer = daemon.Connect();
    uint8_t id[NC_ID_SIZE];
    ASSERT_EQ(NC_CreateRequestID(peer, id), 1);
    Ask(peer, 3, id, "hold=1\n\n" + std::string(100000, 'd'));
  }
  // Two turns of the server later all have been taken in. The last one does not wait any more.
  for (int turn = 0; turn < 2; ++turn) EXPECT_EQ(Printers(fd).size(), 1U);
  NC_Disconnect(peers[3]);
  daemon.Signal(SIGTERM);
  for (const int peer : {peers[0], peers[1], peers[2]}) {
    EXPECT_EQ(AnswerOf(peer), NC_STATUS_DONE);
    uint8_t more[NC_ID_SIZE];
    EXPECT_EQ(NC_CreateRequestID(peer, more), -1);  // while the others are being stored
    NC_Disconnect(peer);
  }
  EXPECT_EQ(Stop(SIGTERM), 0);
  Start();
  EXPECT_EQ(Jobs(fd).size(), 4U);
}

TEST_F(Spool, AnEndWaitsForNoDisk) {
  Start({"--simulate", "slow-disk=60000"});
  int peers[3];
  uint8_t id[NC_ID_SIZE];
  for (int& peer : peers) {
    peer = daemon.Connect();
    ASSERT_EQ(NC_CreateRequestID(peer, id), 1);
    Ask(peer, 3, id, "hold=1\n\ndocument");
  }
  EXPECT_EQ(Stop(SIGTERM), 0);
  Start();
  EXPECT_TRUE(Jobs(fd).empty());
  for (const int peer : peers) {
    EXPECT_EQ(AnswerOf(peer), -1);
    NC_Disconnect(peer);
  }
}

// Each sync in turn fails: what needs it is not said to be done.
TEST_F(Spool, NothingIsSaidToBeDoneThatIsNotOnTheDisk) {
  Start();  // what is stored once for every spool
  EXPECT_EQ(Stop(SIGTERM), 0);
  const auto run = [&](int sync, const std::function<int()>& act, int end = SIGKILL) {
    Start({"--simulate", "sync-error=" + std::to_string(sync)});
    const int status = act();
    EXPECT_EQ(Stop(end), end == SIGKILL ? 128 + SIGKILL : 0);
    return status;
  };
  // A new job: document, record, folder.
  for (int sync = 1; sync <= 4; ++sync) {
    EXPECT_EQ(run(sync, [&] { return New("a", "hold=1"); }), sync < 4 ? 6 : 1) << sync;
    EXPECT_EQ(FilesIn(daemon.Path("jobs")).size(), sync < 4 ? 0U : 2U);
  }
  // A change: record, folder. What could not be stored is taken back on the disk as well.
  for (int sync = 1; sync <= 3; ++sync) {
    const auto act = [&] {
      EXPECT_EQ(See("a", "copies"), "1");
      const int status = Tell("a", "copies=2");
      EXPECT_EQ(See("a", "copies"), sync < 3 ? "1" : "2");
      return status;
    };
    EXPECT_EQ(run(sync, act, SIGTERM), sync < 3 ? 6 : 1) << sync;
  }
  // A printer: file, folder.
  for (int sync = 1; sync <= 3; ++sync) {
    const auto act = [&] {
      const int status = Tell("Proof printer", "paused=1");
      EXPECT_TRUE(sync == 3 || Tell("Proof printer", "accepting=1") == 1);
      EXPECT_EQ(See("Proof printer", "paused"), sync < 3 ? "0" : "1");
      return status;
    };
    EXPECT_EQ(run(sync, act), sync < 3 ? 6 : 1) << sync;
  }
  // A removal: the folder. The job is there again where that fails.
  EXPECT_EQ(run(1, [&] { return Remove("a"); }), 6);
  Start();
  EXPECT_EQ(See("a", "state"), "held");
  EXPECT_EQ(Remove("a"), 1);
}

TEST_F(Spool, WhatCannotBeRemovedStaysListed) {
  StartWith("[printer]\nname=P\nrate=1K\n");
  EXPECT_EQ(New("a", "", std::string(100000, 'x')), 1);
  EXPECT_EQ(New("next", "", std::string(100000, 'x')), 1);
  EXPECT_TRUE(Becomes("a", "state", "printing"));
  const std::string record = daemon.Path("jobs/" + See("a", "id") + ".job");
  std::filesystem::remove(record);
  std::filesystem::create_directory(record);
  EXPECT_EQ(Remove("a"), NC_STATUS_STORAGE);
  EXPECT_EQ(See("a", "state hold reasons"), "held 1 not-removed");
  EXPECT_TRUE(Becomes("next", "state", "printing"));
  std::filesystem::remove(record);
  EXPECT_EQ(Remove("a"), 1);
  EXPECT_EQ(Jobs(fd).size(), 1U);
}

TEST_F(Spool, NumbersOrderAndReasonsOutliveARestart) {
  StartWith("[printer]\nname=P\nrate=0\n");
  EXPECT_EQ(New("failed", "document=failed\nhold=1"), 1);
  std::filesystem::resize_file(DocumentOf("failed"), 0);
  EXPECT_EQ(Tell("failed", "hold=0"), 1);
  EXPECT_TRUE(Becomes("failed", "state", "failed"));
  for (const std::string name : {"2", "3", "4", "5"}) {
    const std::string more =
        name == "4" ? "\nowner=o\nmedia=A3\ncopies=7\npriority=9\ncolour=00aaff" : "";
    EXPECT_EQ(New(name, "hold=1\ndocument=" + name + more), 1);
    EXPECT_EQ(See(name, "number"), name);
  }
  EXPECT_EQ(Remove("5"), 1);
  const auto before = Jobs(fd);
  Restart();
  ASSERT_EQ(Jobs(fd).size(), 4U);
  EXPECT_EQ(memcmp(before.data(), Jobs(fd).data(), 3 * sizeof(NC_Job)), 0);
  EXPECT_EQ(New("6", "hold=1\ndocument=6"), 1);
  EXPECT_EQ(See("6", "number"), "6");
  EXPECT_EQ(Order(fd), "2 3 6 4 failed ");
  EXPECT_EQ(See("failed", "text reasons"),
            "the document is shorter than it was document-unreadable");
  EXPECT_EQ(Tell("failed", "hold=1"), 1);
  EXPECT_EQ(See("failed", "text reasons"), " ");
  // A job with the last number there is loads again; after it nothing is accepted.
  daemon.WriteFile("spool/counters", "number=999999998\n\n");
  for (const int status : {NC_STATUS_DONE, NC_STATUS_TOO_LARGE}) {
    Restart();
    EXPECT_EQ(New("next", "priority=99\nhold=1"), status);
    EXPECT_EQ(Jobs(fd)[0].number, 999999999);
  }
}

// Copies a spool that another version wrote, as far as a repository can hold one.
void TakeSample(const Daemon& daemon, const std::string& name) {
  std::filesystem::copy(SAMPLES "/" + name, daemon.folder() + "/spool",
                        std::filesystem::copy_options::recursive);
}

TEST_F(Spool, OfAnEarlierVersion) {
  TakeSample(daemon, "earlier");
  StartWith("[server]\ndone-seconds=1G\n[printer]\nname=Proof printer\nfolder=proof\nrate=0\n",
            {"--simulate", "disk-full=1"});
  EXPECT_TRUE(Eventually([&] { return Printers(fd)[0].reasons[0] != 0; }));
  EXPECT_EQ(Order(fd), "held \\ one\ntwo.pdf second.pdf first.pdf third.pdf failed.pdf done.pdf ");
  const auto jobs = Jobs(fd);
  for (size_t i = 0; i < jobs.size(); ++i)
    std::copy_n(jobs[i].id, 16, ids[std::to_string(i)].data());
  EXPECT_EQ(See("0", "state number kept profile"), "held 3 1 Fine");
  EXPECT_EQ(See("4", "kept text"), "1 the printer is not configured any more");
  EXPECT_EQ(See("5", "state kept printed"), "done 0 28");
  EXPECT_EQ(Tell("4", "printer=Proof printer\nhold=0"), 1);
  EXPECT_EQ(Tell("Proof printer", "paused=0"), 1);
  EXPECT_TRUE(IsDone("4") && IsDone("3"));
  EXPECT_EQ(FilesIn(daemon.Path("printed/proof")).size(), 5U);
  EXPECT_TRUE(FilesIn(daemon.Path("aside")).empty());
}

TEST_F(Spool, OfALaterVersion) {
  TakeSample(daemon, "later");
  const std::string id = "0123456789abcdef0123456789abcdef";
  Start();
  EXPECT_EQ(Order(fd), "later.pdf strange.pdf ");
  ASSERT_EQ(NC_ParseId(id.c_str(), ids["later"].data()), 1);
  EXPECT_EQ(See("later", "colour reasons"), "00ff7F printer-paused");
  EXPECT_EQ(Jobs(fd)[1].state, NC_JOB_HELD);
  EXPECT_EQ(See("Proof printer", "id"), "00112233445566778899aabbccddeeff");
  EXPECT_EQ(Tell("later", "copies=2"), 1);
  EXPECT_EQ(Tell("Proof printer", "accepting=0\naccepting=1\npaused=0"), 1);
  EXPECT_TRUE(IsDone("later"));
  EXPECT_EQ(New("fresh", ""), 1);
  EXPECT_EQ(See("fresh", "number"), "46");
  EXPECT_EQ(Stop(SIGTERM), 0);
  // What it did not know is there still.
  const std::string record = ReadWhole(daemon.Path("jobs/" + id + ".job"));
  EXPECT_NE(record.find("\nsides=two\n"), std::string::npos);
  EXPECT_NE(record.find("\nproof-of=a \\\\ b\n"), std::string::npos);
  EXPECT_NE(record.find("\nstate=done\n"), std::string::npos);
  EXPECT_NE(ReadWhole(daemon.Path("printers")).find("\nlocation=by the door\n"), std::string::npos);
  EXPECT_NE(ReadWhole(daemon.Path("counters")).find("\npages=1000\n"), std::string::npos);
}

TEST_F(Spool, WhatIsNoJobIsSetAside) {
  Start();
  uint8_t good[16];
  ASSERT_EQ(Send(fd, "hold=1\n", "good", good), 1);
  EXPECT_EQ(Stop(SIGTERM), 0);
  const std::string whole = ReadWhole(daemon.Path("jobs/" + IdText(good) + ".job"));
  const auto with = [&](const std::string& key, const std::string& line) {
    const size_t at = whole.find("\n" + key) + 1;
    return whole.substr(0, at) + line + whole.substr(whole.find('\n', at));
  };
  const std::string records[] = {"",
                                 "rubbish\n\n",
                                 whole.substr(0, whole.size() - 1),
                                 with("copies", "copies=0"),
                                 with("size", "colour=1"),
                                 with("size", ""),
                                 with("submitted", "submitted=yesterday"),
                                 whole + std::string(9000, 'x')};
  std::string bad[10];
  for (size_t i = 0; i < 10; ++i) {
    bad[i] = std::string(31, 'a') + static_cast<char>('0' + i);
    daemon.WriteFile("spool/jobs/" + bad[i] + ".doc", "document " + std::to_string(i));
    const std::string record = "spool/jobs/" + bad[i] + ".job";
    if (i < 8) daemon.WriteFile(record, records[i]);
  }
  std::filesystem::create_symlink(IdText(good) + ".job", daemon.Path("jobs/" + bad[8] + ".job"));
  std::filesystem::create_directory(daemon.Path("jobs/" + bad[9] + ".job"));
  daemon.WriteFile("spool/aside/" + bad[0] + ".doc", "of another time");
  daemon.WriteFile("spool/jobs/" + std::string(32, 'b') + ".doc", "never accepted");
  daemon.WriteFile("spool/jobs/" + std::string(32, 'b') + ".job.new", "half");
  Start();
  EXPECT_EQ(Jobs(fd).size(), 1U);
  EXPECT_EQ(FilesIn(daemon.Path("jobs")).size(), 2U);
  EXPECT_EQ(FilesIn(daemon.Path("aside")).size(), 21U);
  for (size_t i = 0; i < 10; ++i) {
    const std::string as = "aside/" + bad[i] + (i == 0 ? ".doc.1" : ".doc");
    EXPECT_EQ(ReadWhole(daemon.Path(as)), "document " + std::to_string(i)) << i;
    EXPECT_TRUE(daemon.Says("jobs/" + bad[i] + ".job is not a job: set aside as aside/"));
  }
  EXPECT_EQ(ReadWhole(daemon.Path("aside/" + bad[0] + ".doc")), "of another time");
}

TEST_F(Spool, WhatCannotBeSetAsideIsNotTouched) {
  const std::string id(32, 'c');
  for (const char* folder : {"jobs", "aside", "printed", "files", "gamut"}) {
    std::filesystem::create_directories(daemon.Path(folder));
  }
  daemon.WriteFile("spool/jobs/" + id + ".doc", "document");
  daemon.WriteFile("spool/jobs/" + id + ".job", "rubbish");
  for (int i = 0; i < 1000; ++i) {  // every name that it may get
    const std::string number = i == 0 ? "" : "." + std::to_string(i);
    daemon.WriteFile("spool/aside/" + id + ".job" + number, "");
  }
  Start();
  EXPECT_TRUE(daemon.Says("jobs/" + id + ".job is not a job and cannot be set aside"));
  EXPECT_EQ(ReadWhole(daemon.Path("jobs/" + id + ".doc")), "document");
  EXPECT_EQ(ReadWhole(daemon.Path("jobs/" + id + ".job")), "rubbish");
  EXPECT_EQ(FilesIn(daemon.Path("aside")).size(), 1000U);
}

// Nor is the spool left open to others, or an output that was not finished left in it.
TEST_F(Spool, ADocumentThatIsNotWholeIsKept) {
  Start();
  EXPECT_EQ(New("lost", "hold=1"), 1);
  EXPECT_EQ(New("cut", "hold=1", "was longer"), 1);
  std::filesystem::remove(DocumentOf("lost"));
  std::filesystem::resize_file(DocumentOf("cut"), 3);
  chmod(daemon.Path("").c_str(), 0755);
  const std::string part = "printed/proof/." + std::string(32, 'a') + ".part";
  daemon.WriteFile("spool/" + part, "half an output");
  Restart();
  EXPECT_TRUE(Eventually([&] { return !std::filesystem::exists(daemon.Path(part)); }));
  struct stat info;
  ASSERT_EQ(stat(daemon.Path("").c_str(), &info), 0);
  EXPECT_EQ(info.st_mode & 0777, 0700U);
  for (const char* name : {"lost", "cut"}) {
    EXPECT_EQ(See(name, "state kept reasons"), "failed 0 document-lost");
  }
  EXPECT_EQ(ReadWhole(DocumentOf("cut")), "was");
}

TEST_F(Spool, TheAccessLogTellsWhoDidWhat) {
  const std::string path = daemon.folder() + "/log";
  const std::string config =
      "[server]\naccess-log=" + path + "\n[printer]\nname=A printer\nrate=0\n";
  StartWith(config);
  EXPECT_EQ(New("a", "hold=1\nowner=a b\ndocument=one\\ntwo\x1b \xe2\x80\xae\xff"), 1);
  EXPECT_EQ(Tell("a", "hold=0"), 1);
  EXPECT_TRUE(IsDone("a"));
  const std::string id = See("a", "id"), printer = See("A printer", "id");
  EXPECT_EQ(Remove("a"), 1);
  EXPECT_EQ(Remove("a"), NC_STATUS_UNKNOWN_ID);
  EXPECT_EQ(Tell("A printer", "paused=1"), 1);
  EXPECT_TRUE(Eventually([&] {
    return ReadWhole(path).find(" printer=A\\ printer id=" + printer + "\n") != std::string::npos;
  }));
  const std::string text = ReadWhole(path);
  const std::string job =
      " owner=a\\ b number=1 printer=A\\ printer id=" + id + " document=one\\ntwo?\\ ??\n";
  size_t at = 0;
  for (const char* event : {"accepted", "changed", "printed", "removed"}) {
    const size_t found = text.find(std::string(" event=") + event, at);
    ASSERT_NE(found, std::string::npos) << event << text;
    const std::string line = text.substr(found, text.find('\n', found) + 1 - found);
    EXPECT_TRUE(line.ends_with(job)) << line;
    EXPECT_EQ(line.find(" peer=127.0.0.1:") != std::string::npos, event != std::string("printed"))
        << line;
    at = found + 1;
  }
  EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 5);
  struct stat info;
  ASSERT_EQ(stat(path.c_str(), &info), 0);
  EXPECT_EQ(info.st_mode & 0777, 0600U);
  std::filesystem::rename(path, path + ".old");
  daemon.Signal(SIGHUP);
  EXPECT_TRUE(Eventually([&] { return std::filesystem::exists(path); }));
  // A log that takes nothing costs nothing.
  daemon.WriteFile("config", "[server]\naccess-log=/dev/full\n[printer]\nname=A printer\n");
  daemon.Signal(SIGHUP);
  EXPECT_TRUE(Eventually([&] { return New("a", "hold=1") == 1; }));
  EXPECT_EQ(Remove("a"), 1);
}

TEST(Start, RefusesWithOneLine) {
  Daemon daemon;
  daemon.Start();
  const std::string busy = daemon.folder() + "/spool";
  const std::string free = daemon.folder() + "/free";
  const std::string file = daemon.WriteFile("file", "x");
  std::filesystem::create_symlink(daemon.folder(), daemon.folder() + "/link");
  chmod(daemon.folder().c_str(), 0755);
  const auto many = [](const std::string& section, int count) {
    std::string text;
    for (int i = 0; i < count; ++i) text += section + std::to_string(i) + "\n";
    return text;
  };
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
      {{"--spool", free, "--config", daemon.folder() + "/none"}, 2, "No such file"},
      {{"--spool", free, "--config", "/dev/zero"}, 2, "larger than 1 MiB"},
      {{"--spool", free, "--config", daemon.folder()}, 2, "Is a directory"},
      {{"--spool", free, "--simulate", "refuse,explode"}, 2, "not \"explode\""},
      {{"--spool"}, 2, "wants a value"},
      {{"print"}, 2, "unknown argument"},
  };
  const auto refuses = [](std::vector<std::string> arguments, int code, const std::string& error) {
    arguments.insert(arguments.begin(), PRINTSERVERD);
    const Outcome outcome = RunProgram(arguments);
    EXPECT_EQ(outcome.code, code) << outcome.error;
    EXPECT_NE(outcome.error.find(error), std::string::npos) << outcome.error;
    EXPECT_EQ(std::count(outcome.error.begin(), outcome.error.end(), '\n'), 1);
  };
  for (const auto& row : cases) refuses(row.arguments, row.code, row.error);
  const struct {
    std::string configuration, error;
  } faulty[] = {
      {"[printer]\nname=P\nrate=fast\n", "line 3: rate wants bytes a second"},
      {"rate=1\n", "a key before the first section"},
      {"[printer]\nname=P\ncolour=1\n", "line 3: unknown key colour in [printer]"},
      {"[printer]\nname=P\n[printer]\nname=P\n", "two printers named P"},
      {"[printer]\nname=P\nfolder=x\n[printer]\nname=Q\nfolder=x\n", "with the folder x"},
      {"[printer]\nfolder=x\n", "has no name"},
      {"[profile]\nname=Q\nprinter=P\n", "of an unknown printer, P"},
      {"[printer]\nname=P\nsupplies=ink\n", "supplies wants"},
      {"[server]\naccess-log=log\n", "access-log wants an absolute path"},
      {many("[printer]\nname=P", 1025), "more than 1024"},
      {many("[printer]\nmedia=" + std::string(510, '\\') + "\ntext=" + std::string(254, '\\') +
                "\nname=P",
            1024),
       "the printer list could pass 1 MiB"},
  };
  for (const auto& row : faulty) {
    refuses({"--spool", free, "--config", daemon.WriteFile("config", row.configuration)}, 2,
            row.error);
  }
  refuses({"--spool", free, "--listen", "127.0.0.1:0", "--config",
           daemon.WriteFile("config", "[server]\naccess-log=/none/log\n")},
          1, "access log /none/log: No such file");
  // Fewer open files than it needs, whatever the soft limit says.
  const Outcome few =
      RunProgram({"/bin/sh", "-c",
                  "ulimit -n 90; exec " PRINTSERVERD " --listen 127.0.0.1:0 --spool " + free});
  EXPECT_EQ(few.code, 1);
  EXPECT_NE(few.error.find("too few open files allowed: 90, and 1 printers need 99"),
            std::string::npos)
      << few.error;
  struct stat other;
  ASSERT_EQ(stat(daemon.folder().c_str(), &other), 0);
  EXPECT_EQ(other.st_mode & 0777, 0755U);  // a folder of something else stays as it is
  const Outcome help = RunProgram({PRINTSERVERD, "--help"});
  EXPECT_EQ(help.code, 0);
  EXPECT_NE(help.out.find("--simulate"), std::string::npos);
}

}  // namespace

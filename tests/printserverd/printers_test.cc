// Printers: what clients tell them, what stops them, where their outputs go; moves and order.
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/stat.h>

#include <cstring>
#include <filesystem>
#include <fstream>

#include "tests/printserverd/daemon.h"

using namespace testing_daemon;

namespace {

using Printing = Served;

const char kTwo[] =
    "[printer]\nname=A\nrate=0\nsupplies=black:80,red:-1\n"
    "[printer]\nname=B\nrate=0\n[profile]\nname=Of A\nprinter=A\n[profile]\nname=Any\n";

int Tell(int fd, const std::string& printer, const std::string& ticket) {
  return Change(fd, PrinterOf(fd, printer).id, ticket);
}

TEST_F(Printing, PausedAndRefusing) {
  StartWith(kTwo);
  const NC_Printer before = PrinterOf(fd, "A");
  EXPECT_STREQ(before.supplies, "black:80,red:-1");
  EXPECT_EQ(before.accepting, 1);
  EXPECT_EQ(before.paused, 0);
  const uint8_t* printer = before.id;
  for (const char* ticket : {"paused=2\n", "accepting=x\n", "paper-loaded=0\n", "no ticket\n"}) {
    EXPECT_EQ(Change(fd, printer, ticket), NC_STATUS_BAD_TICKET) << ticket;
  }
  EXPECT_EQ(Change(fd, printer, "paused=1\n\ndocument"), NC_STATUS_WRONG_STATE);
  EXPECT_EQ(NC_RemovePrintRequest(fd, printer), NC_STATUS_WRONG_STATE);
  EXPECT_EQ(PrinterOf(fd, "A").paused, 0);

  EXPECT_EQ(Change(fd, printer, "paused=1\nlater=x\n\n"), 1);
  uint8_t id[16], other[16], refused[16];
  ASSERT_EQ(Send(fd, "printer=A\n", "x", id), 1);
  EXPECT_STREQ(JobOf(fd, id).reasons, "printer-paused");
  EXPECT_EQ(Change(fd, printer, "accepting=0\n"), 1);
  EXPECT_STREQ(JobOf(fd, id).reasons, "printer-paused,printer-refuses");
  EXPECT_EQ(Send(fd, "printer=A\n", "x", refused), NC_STATUS_WRONG_STATE);
  ASSERT_EQ(Send(fd, "printer=B\nhold=1\n", "x", other), 1);
  EXPECT_EQ(Change(fd, other, "printer=A\n"), NC_STATUS_WRONG_STATE);
  EXPECT_EQ(Change(fd, id, "printer=A\nmedia=A5\n"), 1);  // it is there

  EXPECT_EQ(Stop(SIGKILL), 128 + SIGKILL);
  StartWith(kTwo);
  const NC_Printer after = PrinterOf(fd, "A");
  EXPECT_EQ(memcmp(after.id, printer, 16), 0);
  EXPECT_NE(memcmp(PrinterOf(fd, "B").id, printer, 16), 0);
  EXPECT_EQ(after.paused, 1);
  EXPECT_EQ(after.accepting, 0);
  EXPECT_EQ(after.jobs, 1);
  EXPECT_EQ(JobOf(fd, id).state, NC_JOB_WAITING);
  EXPECT_EQ(Tell(fd, "A", "paused=0\n"), 1);
  EXPECT_TRUE(Becomes(fd, id, NC_JOB_DONE));
  EXPECT_EQ(Tell(fd, "A", "accepting=1\n"), 1);
  EXPECT_EQ(Change(fd, other, "printer=A\nhold=0\n"), 1);
  EXPECT_TRUE(Becomes(fd, other, NC_JOB_DONE));
}

TEST_F(Printing, PausedWhileItPrints) {
  StartWith("[printer]\nname=P\nrate=20K\npaper=2\nsheet-bytes=10000\n");
  uint8_t id[16], next[16];
  ASSERT_EQ(Send(fd, "", std::string(25000, 'x'), id), 1);
  ASSERT_EQ(Send(fd, "", "y", next), 1);
  EXPECT_TRUE(Becomes(fd, id, NC_JOB_PRINTING));
  EXPECT_EQ(Tell(fd, "P", "paused=1\n"), 1);
  EXPECT_TRUE(Becomes(fd, id, NC_JOB_PAPER_OUT));
  EXPECT_EQ(JobOf(fd, id).pages, 3);
  EXPECT_EQ(JobOf(fd, id).pages_printed, 2);
  EXPECT_EQ(Tell(fd, "P", "paper-loaded=1\n"), 1);
  EXPECT_TRUE(Becomes(fd, id, NC_JOB_DONE));
  EXPECT_EQ(PrinterOf(fd, "P").paper, 1);
  EXPECT_EQ(Tell(fd, "P", "paper-loaded=1\n"), 1);
  EXPECT_EQ(PrinterOf(fd, "P").paper, 2);
  EXPECT_EQ(JobOf(fd, next).state, NC_JOB_WAITING);
}

TEST_F(Printing, ItsOwnFaultFailsNoJob) {
  const struct {
    const char *fault, *reason;
  } rows[] = {{"disk-full=1", "disk-full"}, {"output-error=1", "output-error"}};
  for (const auto& row : rows) {
    Start({"--rate", "0", "--simulate", row.fault});
    uint8_t id[16];
    ASSERT_EQ(Send(fd, "", "x", id), 1);
    EXPECT_TRUE(Eventually([&] { return strcmp(JobOf(fd, id).reasons, row.reason) == 0; }));
    EXPECT_EQ(JobOf(fd, id).state, NC_JOB_WAITING);
    EXPECT_EQ(JobOf(fd, id).printed, 0);
    EXPECT_NE(JobOf(fd, id).text[0], 0);
    EXPECT_STREQ(Printers(fd)[0].reasons, row.reason);
    EXPECT_EQ(Printers(fd)[0].state, NC_PRINTER_IDLE);
    EXPECT_EQ(Change(fd, Printers(fd)[0].id, "paused=0\n"), 1);
    EXPECT_TRUE(Becomes(fd, id, NC_JOB_DONE));
    EXPECT_STREQ(Printers(fd)[0].reasons, "");
    EXPECT_EQ(Stop(SIGTERM), 0);
  }
}

TEST_F(Printing, ItsFolderGoes) {
  Start({"--rate", "0", "--config", daemon.WriteFile("config", "")});
  const std::string folder = daemon.Path("printed/proof");
  const auto prints = [&] {
    uint8_t id[16];
    return Send(fd, "", "x", id) == 1 && Becomes(fd, id, NC_JOB_DONE);
  };
  EXPECT_TRUE(prints());
  std::filesystem::remove_all(folder);
  EXPECT_TRUE(prints());
  std::filesystem::remove_all(daemon.Path("printed"));
  EXPECT_TRUE(prints());
  std::filesystem::remove_all(folder);
  daemon.WriteFile("spool/printed/proof", "in its place");
  uint8_t id[16];
  ASSERT_EQ(Send(fd, "", "x", id), 1);
  EXPECT_TRUE(Eventually([&] { return strcmp(JobOf(fd, id).reasons, "output-error") == 0; }));
  EXPECT_EQ(Change(fd, id, "hold=1\n"), 1);
  std::filesystem::remove(folder);
  daemon.Signal(SIGHUP);
  EXPECT_TRUE(Eventually([&] { return std::filesystem::is_directory(folder); }));
  EXPECT_EQ(Change(fd, id, "hold=0\n"), 1);
  EXPECT_TRUE(Becomes(fd, id, NC_JOB_DONE));
}

TEST_F(Printing, TheNewestOutputsStayWhateverTheClockSays) {
  const char config[] = "[printer]\nname=P\nrate=0\nkeep=3\n";
  const std::string folder = daemon.Path("printed/p");
  std::filesystem::create_directories(folder);
  // A clock that was ahead, an older version, and somebody else.
  const auto now = std::filesystem::file_time_type::clock::now();
  for (const auto& [name, hours] : {std::pair{"20990101T000000-00000000-later name", 2},
                                    {"20250101T000000-00000000-new", 1},
                                    {"00-notes.txt", 90},
                                    {"20250101T000000-0000000-short", 90},
                                    {"0000000000-20250101T000000-00000000-zero", 90}}) {
    std::ofstream(folder + "/" + name) << name;
    std::filesystem::last_write_time(folder + "/" + name, now - std::chrono::hours(hours));
  }
  std::filesystem::create_directory(folder + "/20250101T000000-00000000-folder");
  const auto outputs = [&](const std::string& begin) {
    std::string names;
    for (const std::string& name : FilesIn(folder)) {
      if (name.starts_with(begin)) names += name.substr(name.rfind('-')) + " ";
    }
    return names;
  };
  const auto print = [&](const std::string& name) {
    uint8_t id[16];
    EXPECT_EQ(Send(fd, "document=" + name + "\n", name, id), 1);
    EXPECT_TRUE(Becomes(fd, id, NC_JOB_DONE));
  };
  StartWith(config);
  print("one");
  print("two");
  EXPECT_EQ(outputs("2"), "-short -folder -new ");
  EXPECT_EQ(Stop(SIGKILL), 128 + SIGKILL);
  // After a crash the names go on above those that are there, should the counter be lost as well.
  daemon.WriteFile("spool/counters", "rubbish");
  StartWith(config);
  EXPECT_TRUE(daemon.Says("set aside as aside/counters"));
  for (const char* name : {"three", "four", "five"}) print(name);
  EXPECT_EQ(outputs("00000"), "-zero -three -four -five ");
  EXPECT_EQ(outputs("2"), "-short -folder ");
  EXPECT_EQ(FilesIn(folder).size(), 7U);
  EXPECT_TRUE(FilesIn(folder)[2].starts_with("0000000003-")) << FilesIn(folder)[2];
  // Nor do they come back after somebody has taken all outputs.
  std::filesystem::remove_all(folder);
  EXPECT_EQ(Stop(SIGKILL), 128 + SIGKILL);
  StartWith(config);
  print("six");
  EXPECT_GT(FilesIn(folder)[0], "0000000006");
}

TEST_F(Printing, AgainFromItsBeginning) {
  StartWith(kTwo);
  uint8_t id[16], waits[16];
  ASSERT_EQ(Send(fd, "printer=A\nprofile=Of A\ndocument=again\n", "document", id), 1);
  EXPECT_TRUE(Becomes(fd, id, NC_JOB_DONE));
  EXPECT_EQ(JobOf(fd, id).kept, 1);
  EXPECT_EQ(Tell(fd, "B", "paused=1\n"), 1);
  ASSERT_EQ(Send(fd, "printer=B\ndocument=waits\nhold=1\n", "x", waits), 1);
  EXPECT_EQ(Change(fd, id, "hold=1\n"), NC_STATUS_WRONG_STATE);
  EXPECT_EQ(Change(fd, id, "printer=B\nhold=0\n"), NC_STATUS_UNKNOWN_NAME);  // the profile is of A
  EXPECT_EQ(Change(fd, id, "copies=2\n"), 1);
  EXPECT_EQ(JobOf(fd, id).state, NC_JOB_DONE);
  EXPECT_EQ(Change(fd, id, "printer=B\nprofile=Any\nhold=0\n"), 1);
  EXPECT_EQ(Order(fd), "waits again ");
  const NC_Job job = JobOf(fd, id);
  EXPECT_EQ(job.state, NC_JOB_WAITING);
  EXPECT_EQ(job.total, 16);
  EXPECT_EQ(job.printed, 0);
  EXPECT_EQ(job.number, 1);
  EXPECT_EQ(Stop(SIGKILL), 128 + SIGKILL);
  StartWith(kTwo);
  EXPECT_EQ(Order(fd), "waits again ");
  EXPECT_EQ(Tell(fd, "B", "paused=0\n"), 1);
  EXPECT_TRUE(Becomes(fd, id, NC_JOB_DONE));
  for (const char* folder : {"printed/a", "printed/b"}) {
    ASSERT_EQ(FilesIn(daemon.Path(folder)).size(), 1U);
    EXPECT_EQ(ReadWhole(daemon.Path(folder + ("/" + FilesIn(daemon.Path(folder))[0]))), "document");
  }
  // A crash does not take its earlier output for the one that is wanted.
  EXPECT_EQ(Tell(fd, "B", "paused=1\n"), 1);
  EXPECT_EQ(Change(fd, id, "hold=0\n"), 1);
  EXPECT_EQ(Stop(SIGKILL), 128 + SIGKILL);
  StartWith(kTwo);
  EXPECT_EQ(JobOf(fd, id).state, NC_JOB_WAITING);
  EXPECT_EQ(Tell(fd, "B", "paused=0\n"), 1);
  EXPECT_TRUE(Becomes(fd, id, NC_JOB_DONE));
  EXPECT_EQ(FilesIn(daemon.Path("printed/b")).size(), 2U);
  // Without its document it cannot.
  std::filesystem::remove(daemon.Path("jobs/" + IdText(id) + ".doc"));
  EXPECT_EQ(Stop(SIGTERM), 0);
  StartWith(kTwo);
  EXPECT_EQ(JobOf(fd, id).kept, 0);
  EXPECT_EQ(Change(fd, id, "hold=0\n"), NC_STATUS_WRONG_STATE);
  EXPECT_EQ(Change(fd, id, "owner=x\n"), NC_STATUS_WRONG_STATE);
}

TEST_F(Printing, OrderBeforeAnother) {
  StartWith(kTwo);
  for (const char* printer : {"A", "B"}) EXPECT_EQ(Tell(fd, printer, "paused=1\n"), 1);
  uint8_t ids[8][16];
  const char* const names[] = {"a", "b", "c", "d", "e", "f"};
  for (int i = 0; i < 6; ++i) {
    const std::string more = i == 4 ? "priority=70\n" : i == 5 ? "printer=B\n" : "hold=1\n";
    ASSERT_EQ(Send(fd, std::string("document=") + names[i] + "\n" + more, "x", ids[i]), 1);
  }
  EXPECT_EQ(Order(fd), "e a b c d f ");
  const auto before = [&](int job, int other) {
    return Change(fd, ids[job], "before=" + IdText(ids[other]) + "\n");
  };
  EXPECT_EQ(before(3, 1), 1);
  EXPECT_EQ(before(2, 1), 1);
  EXPECT_EQ(Order(fd), "e a d c b f ");
  EXPECT_EQ(before(2, 4), 1);  // it takes the priority as well
  EXPECT_EQ(Order(fd), "c e a d b f ");
  EXPECT_EQ(JobOf(fd, ids[2]).priority, 70);
  EXPECT_EQ(Change(fd, ids[3], "priority=70\n"), 1);  // by its number it stands before both
  EXPECT_EQ(Order(fd), "d c e a b f ");
  EXPECT_EQ(before(3, 1), 1);
  EXPECT_EQ(Order(fd), "c e a d b f ");
  EXPECT_EQ(before(0, 5), NC_STATUS_WRONG_STATE);  // of another printer
  EXPECT_EQ(before(0, 0), NC_STATUS_WRONG_STATE);
  EXPECT_EQ(Change(fd, ids[0], "before=" + std::string(32, '0') + "\n"), NC_STATUS_UNKNOWN_ID);
  EXPECT_EQ(Change(fd, ids[0], "printer=B\nbefore=" + IdText(ids[5]) + "\n"), 1);
  EXPECT_EQ(before(4, 3), 1);
  EXPECT_EQ(Order(fd), "c e d b a f ");
  EXPECT_EQ(Change(fd, ids[3], "priority=50\n"), 1);
  EXPECT_EQ(Order(fd), "c e b d a f ");
  uint8_t fresh[16];
  ASSERT_EQ(Send(fd, "document=g\nhold=1\n", "x", fresh), 1);
  EXPECT_EQ(Order(fd), "c e b d a f g ");
  EXPECT_EQ(Tell(fd, "A", "paused=0\n"), 1);
  EXPECT_TRUE(Becomes(fd, ids[4], NC_JOB_DONE));
  EXPECT_EQ(before(3, 4), NC_STATUS_WRONG_STATE);
}

// Four jobs stand so close together that none fits between two of them: they get new places, also
// one that is being stored at that moment, and keep them after a crash.
TEST_F(Printing, PlacesThatRunOut) {
  StartWith(kTwo);
  EXPECT_EQ(Tell(fd, "A", "paused=1\n"), 1);
  uint8_t ids[10][16];
  for (int i = 0; i < 10; ++i) {
    ASSERT_EQ(Send(fd, std::string("document=") + "abcdefghij"[i] + "\n", "x", ids[i]), 1);
  }
  EXPECT_EQ(Stop(SIGTERM), 0);
  const auto edit = [&](int job, const std::string& key, const std::string& value) {
    const std::string file = "jobs/" + IdText(ids[job]) + ".job";
    std::string record = ReadWhole(daemon.Path(file));
    const size_t at = record.find("\n" + key + "=") + key.size() + 2;
    record.replace(at, record.find('\n', at) - at, value);
    daemon.WriteFile("spool/" + file, record);
  };
  for (const auto& [job, step] : {std::pair{2, 1}, {3, 9}, {4, 10}, {7, 11}}) {
    edit(job, "place", std::to_string((int64_t{1} << 32) + step));
  }
  edit(9, "place", "9223372036854775807");
  edit(8, "state", "done");
  edit(8, "finished", "4000000000");
  StartWith(kTwo, {"--simulate", "slow-disk=100"});
  EXPECT_EQ(Order(fd), "a c d e h b f g j i ");
  const int other = daemon.Connect();
  Ask(fd, 3, ids[5], "before=" + IdText(ids[3]) + "\n");
  EXPECT_EQ(Printers(other).size(), 2U);  // the first is taken in
  Ask(other, 3, ids[6], "before=" + IdText(ids[4]) + "\n");
  EXPECT_EQ(AnswerOf(fd), NC_STATUS_DONE);
  EXPECT_EQ(AnswerOf(other), NC_STATUS_DONE);
  NC_Disconnect(other);
  EXPECT_EQ(Change(fd, ids[8], "hold=0\n"), 1);  // behind all that wait
  for (int starts = 0; starts < 2; ++starts) {
    EXPECT_EQ(Order(fd), "a c f d g e h b j i ");
    EXPECT_EQ(Stop(SIGKILL), 128 + SIGKILL);
    StartWith(kTwo);
  }
}

TEST(Folders, AreOfEachPrinterItsOwn) {
  Daemon daemon;
  daemon.Start({"--config", daemon.WriteFile("config",
                                             "[printer]\nname=\xd0\x96\xd0\xb0\n"
                                             "[printer]\nname=\xce\xa9\n"
                                             "[printer]\nname=A b\n[printer]\nname=A-B\n"
                                             "[printer]\nname=Wide One\n")});
  EXPECT_TRUE(Eventually([&] { return FilesIn(daemon.Path("printed")).size() == 5; }));
  int plain = 0;
  for (const std::string& name : FilesIn(daemon.Path("printed"))) {
    plain += name == "wide-one" || name.starts_with("a-b-") ||
             (name.starts_with("---") && name.find_first_not_of('-') != std::string::npos);
  }
  EXPECT_EQ(plain, 5);
}

}  // namespace

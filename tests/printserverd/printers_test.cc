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

TEST_F(Printing, PausedAndRefusing) {
  StartWith(kTwo);
  EXPECT_EQ(See("A", "supplies accepting paused"), "black:80,red:-1 1 0");
  const std::string id = See("A", "id");
  for (const char* ticket : {"paused=2", "accepting=x", "paper-loaded=0", "no ticket"}) {
    EXPECT_EQ(Tell("A", ticket), NC_STATUS_BAD_TICKET) << ticket;
  }
  EXPECT_EQ(Tell("A", "paused=1\n\ndocument"), NC_STATUS_WRONG_STATE);
  EXPECT_EQ(NC_RemovePrintRequest(fd, PrinterOf(fd, "A").id), NC_STATUS_WRONG_STATE);
  EXPECT_EQ(See("A", "paused"), "0");

  EXPECT_EQ(Tell("A", "paused=1\nlater=x\n"), 1);
  EXPECT_EQ(New("a", "printer=A"), 1);
  EXPECT_EQ(See("a", "reasons"), "printer-paused");
  EXPECT_EQ(Tell("A", "accepting=0"), 1);
  EXPECT_EQ(See("a", "reasons"), "printer-paused,printer-refuses");
  EXPECT_EQ(New("refused", "printer=A"), NC_STATUS_WRONG_STATE);
  EXPECT_EQ(New("b", "printer=B\nhold=1"), 1);
  EXPECT_EQ(Tell("b", "printer=A"), NC_STATUS_WRONG_STATE);
  EXPECT_EQ(Tell("a", "printer=A\nmedia=A5"), 1);  // it is there

  Restart();
  EXPECT_EQ(See("A", "id paused accepting jobs"), id + " 1 0 1");
  EXPECT_NE(See("B", "id"), id);
  EXPECT_EQ(See("a", "state"), "waiting");
  EXPECT_EQ(Tell("A", "paused=0"), 1);
  EXPECT_TRUE(IsDone("a"));
  EXPECT_EQ(Tell("A", "accepting=1"), 1);
  EXPECT_EQ(Tell("b", "printer=A\nhold=0"), 1);
  EXPECT_TRUE(IsDone("b"));
}

TEST_F(Printing, PausedWhileItPrints) {
  StartWith("[printer]\nname=P\nrate=20K\npaper=2\nsheet-bytes=10000\n");
  EXPECT_EQ(New("a", "", std::string(25000, 'x')), 1);
  EXPECT_EQ(New("next", ""), 1);
  EXPECT_TRUE(Becomes("a", "state", "printing"));
  EXPECT_EQ(Tell("P", "paused=1"), 1);
  EXPECT_TRUE(Becomes("a", "state pages pages-printed", "paper-out 3 2"));
  EXPECT_EQ(Tell("P", "paper-loaded=1"), 1);
  EXPECT_TRUE(IsDone("a"));
  EXPECT_EQ(See("P", "paper"), "1");
  EXPECT_EQ(Tell("P", "paper-loaded=1"), 1);
  EXPECT_EQ(See("P", "paper"), "2");
  EXPECT_EQ(See("next", "state"), "waiting");
}

TEST_F(Printing, ItsOwnFaultFailsNoJob) {
  for (const std::string reason : {"disk-full", "output-error"}) {
    Start({"--rate", "0", "--simulate", reason + "=1"});
    EXPECT_EQ(New("a", ""), 1);
    EXPECT_TRUE(Becomes("a", "reasons state printed", reason + " waiting 0"));
    EXPECT_NE(See("a", "text"), "");
    EXPECT_EQ(See("Proof printer", "reasons state"), reason + " idle");
    EXPECT_EQ(Tell("Proof printer", "paused=0"), 1);
    EXPECT_TRUE(IsDone("a"));
    EXPECT_EQ(See("Proof printer", "reasons"), "");
    EXPECT_EQ(Stop(SIGTERM), 0);
  }
}

TEST_F(Printing, ItsFolderGoes) {
  Start({"--rate", "0", "--config", daemon.WriteFile("config", "")});
  const std::string folder = daemon.Path("printed/proof");
  for (const std::string& goes : {folder, daemon.Path("printed"), folder}) {
    EXPECT_TRUE(New("a", "") == 1 && IsDone("a"));
    std::filesystem::remove_all(goes);
  }
  daemon.WriteFile("spool/printed/proof", "in its place");
  EXPECT_EQ(New("a", ""), 1);
  EXPECT_TRUE(Becomes("a", "reasons", "output-error"));
  EXPECT_EQ(Tell("a", "hold=1"), 1);
  std::filesystem::remove(folder);
  daemon.Signal(SIGHUP);
  EXPECT_TRUE(Eventually([&] { return std::filesystem::is_directory(folder); }));
  EXPECT_EQ(Tell("a", "hold=0"), 1);
  EXPECT_TRUE(IsDone("a"));
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
    EXPECT_TRUE(New(name, "document=" + name, name) == 1 && IsDone(name));
  };
  StartWith(config);
  print("one");
  print("two");
  EXPECT_EQ(outputs("2"), "-short -folder -new ");
  // After a crash the names go on above those that are there, should the counter be lost as well.
  daemon.WriteFile("spool/counters", "rubbish");
  Restart();
  EXPECT_TRUE(daemon.Says("set aside as aside/counters"));
  for (const char* name : {"three", "four", "five"}) print(name);
  EXPECT_EQ(outputs("00000"), "-zero -three -four -five ");
  EXPECT_EQ(outputs("2"), "-short -folder ");
  EXPECT_EQ(FilesIn(folder).size(), 7U);
  EXPECT_TRUE(FilesIn(folder)[2].starts_with("0000000003-")) << FilesIn(folder)[2];
  // Nor do they come back after somebody has taken all outputs.
  std::filesystem::remove_all(folder);
  Restart();
  print("six");
  EXPECT_GT(FilesIn(folder)[0], "0000000006");
}

TEST_F(Printing, AgainFromItsBeginning) {
  StartWith(kTwo);
  EXPECT_EQ(New("a", "printer=A\nprofile=Of A\ndocument=again", "document"), 1);
  EXPECT_TRUE(Becomes("a", "state kept", "done 1"));
  EXPECT_EQ(Tell("B", "paused=1"), 1);
  EXPECT_EQ(New("waits", "printer=B\ndocument=waits\nhold=1"), 1);
  EXPECT_EQ(Tell("a", "hold=1"), NC_STATUS_WRONG_STATE);
  EXPECT_EQ(Tell("a", "printer=B\nhold=0"), NC_STATUS_UNKNOWN_NAME);  // the profile is of A
  EXPECT_EQ(Tell("a", "copies=2"), 1);
  EXPECT_EQ(See("a", "state"), "done");
  EXPECT_EQ(Tell("a", "printer=B\nprofile=Any\nhold=0"), 1);
  EXPECT_EQ(See("a", "state total printed number"), "waiting 16 0 1");
  EXPECT_EQ(Order(fd), "waits again ");
  Restart();
  EXPECT_EQ(Order(fd), "waits again ");
  EXPECT_EQ(Tell("B", "paused=0"), 1);
  EXPECT_TRUE(IsDone("a"));
  for (const char* folder : {"printed/a", "printed/b"}) {
    ASSERT_EQ(FilesIn(daemon.Path(folder)).size(), 1U);
    EXPECT_EQ(ReadWhole(daemon.Path(folder + ("/" + FilesIn(daemon.Path(folder))[0]))), "document");
  }
  // A crash does not take its earlier output for the one that is wanted.
  EXPECT_EQ(Tell("B", "paused=1") + Tell("a", "hold=0"), 2);
  Restart();
  EXPECT_EQ(See("a", "state"), "waiting");
  EXPECT_EQ(Tell("B", "paused=0"), 1);
  EXPECT_TRUE(IsDone("a"));
  EXPECT_EQ(FilesIn(daemon.Path("printed/b")).size(), 2U);
  // Without its document it cannot. The record of its end is on the disk once a later change is.
  EXPECT_EQ(Tell("B", "paused=1"), 1);
  std::filesystem::remove(DocumentOf("a"));
  Restart();
  EXPECT_EQ(See("a", "kept"), "0");
  EXPECT_EQ(Tell("a", "hold=0"), NC_STATUS_WRONG_STATE);
  EXPECT_EQ(Tell("a", "owner=x"), NC_STATUS_WRONG_STATE);
}

TEST_F(Printing, OrderBeforeAnother) {
  StartWith(kTwo);
  EXPECT_EQ(Tell("A", "paused=1") + Tell("B", "paused=1"), 2);
  for (const std::string name : {"a", "b", "c", "d", "e", "f"}) {
    const std::string more = name == "e" ? "priority=70" : name == "f" ? "printer=B" : "hold=1";
    ASSERT_EQ(New(name, "document=" + name + "\n" + more), 1);
  }
  EXPECT_EQ(Order(fd), "e a b c d f ");
  const auto before = [&](const char* job, const char* other, const std::string& more = "") {
    return Tell(job, more + "before=" + IdText(ids[other].data()));
  };
  EXPECT_EQ(before("d", "b"), 1);
  EXPECT_EQ(before("c", "b"), 1);
  EXPECT_EQ(Order(fd), "e a d c b f ");
  EXPECT_EQ(before("c", "e"), 1);
  EXPECT_EQ(Order(fd), "c e a d b f ");
  EXPECT_EQ(See("c", "priority"), "70");   // it takes the priority as well
  EXPECT_EQ(Tell("d", "priority=70"), 1);  // by its number it stands before both
  EXPECT_EQ(Order(fd), "d c e a b f ");
  EXPECT_EQ(before("d", "b"), 1);
  EXPECT_EQ(Order(fd), "c e a d b f ");
  EXPECT_EQ(before("a", "f"), NC_STATUS_WRONG_STATE);  // of another printer
  EXPECT_EQ(before("a", "a"), NC_STATUS_WRONG_STATE);
  EXPECT_EQ(Tell("a", "before=" + std::string(32, '0')), NC_STATUS_UNKNOWN_ID);
  EXPECT_EQ(before("a", "f", "printer=B\n"), 1);
  EXPECT_EQ(before("e", "d"), 1);
  EXPECT_EQ(Order(fd), "c e d b a f ");
  EXPECT_EQ(Tell("d", "priority=50"), 1);
  EXPECT_EQ(Order(fd), "c e b d a f ");
  EXPECT_EQ(New("g", "document=g\nhold=1"), 1);
  EXPECT_EQ(Order(fd), "c e b d a f g ");
  EXPECT_EQ(Tell("A", "paused=0"), 1);
  EXPECT_TRUE(IsDone("e"));
  EXPECT_EQ(before("d", "e"), NC_STATUS_WRONG_STATE);
}

// Four jobs stand so close together that none fits between two of them: they get new places, also
// one that is being stored at that moment, and keep them after a crash.
TEST_F(Printing, PlacesThatRunOut) {
  StartWith(kTwo);
  EXPECT_EQ(Tell("A", "paused=1"), 1);
  for (const std::string name : {"a", "b", "c", "d", "e", "f", "g", "h", "i", "j"}) {
    ASSERT_EQ(New(name, "document=" + name), 1);
  }
  EXPECT_EQ(Stop(SIGTERM), 0);
  const auto edit = [&](const char* job, const std::string& key, const std::string& value) {
    const std::string file = "jobs/" + IdText(ids[job].data()) + ".job";
    std::string record = ReadWhole(daemon.Path(file));
    const size_t at = record.find("\n" + key + "=") + key.size() + 2;
    record.replace(at, record.find('\n', at) - at, value);
    daemon.WriteFile("spool/" + file, record);
  };
  for (const auto& [job, step] : {std::pair{"c", 1}, {"d", 9}, {"e", 10}, {"h", 11}}) {
    edit(job, "place", std::to_string((int64_t{1} << 32) + step));
  }
  edit("j", "place", "9223372036854775807");
  edit("i", "state", "done");
  edit("i", "finished", "4000000000");
  StartWith(kTwo, {"--simulate", "slow-disk=100"});
  EXPECT_EQ(Order(fd), "a c d e h b f g j i ");
  const int other = daemon.Connect();
  Ask(fd, 3, ids["f"].data(), "before=" + IdText(ids["d"].data()) + "\n");
  EXPECT_EQ(Printers(other).size(), 2U);  // the first is taken in
  Ask(other, 3, ids["g"].data(), "before=" + IdText(ids["e"].data()) + "\n");
  EXPECT_EQ(AnswerOf(fd), NC_STATUS_DONE);
  EXPECT_EQ(AnswerOf(other), NC_STATUS_DONE);
  NC_Disconnect(other);
  EXPECT_EQ(Tell("i", "hold=0"), 1);  // behind all that wait
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

// Every command of the daemon, as a well-behaved client sees it.
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstring>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <set>
#include <thread>

#include "tests/printserver/peer.h"
#include "tests/printserverd/daemon.h"

using namespace testing_daemon;

namespace {

using Commands = Served;

const char kConfig[] =
    "# two printers, one profile of the second alone\n"
    "[printer]\nname=First\nrate=0\n"
    "[printer]\nname=Wide one\nfolder=wide\nmedia=A2,A1\ntext=by the door\nrate=0\npaper=0\n"
    "[profile]\nname=Plain\nmedia=A4\n"
    "[profile]\nname=Poster\nmedia=A1\ndpi=1200x600\nprinter=Wide one\n"
    "[scanner]\nname=Flatbed\ntext=by the window\n";

TEST_F(Commands, PrintAndSee) {
  Start({"--rate", "0"});
  const std::string document("a\0b\n\nc", 6);
  const std::string name = "One\\nTwo \\\\ \xc3\xa4.pdf";
  const auto before = time(nullptr);
  EXPECT_EQ(New("a", "document=" + name + "\nowner=me\ncopies=3\nunknown=x", document), 1);
  EXPECT_TRUE(IsDone("a"));
  EXPECT_EQ(See("a", "document owner printer"), name + " me Proof printer");
  EXPECT_EQ(See("Proof printer", "default media paper"), "1 A4,A3 497");
  EXPECT_EQ(See("a", "copies priority size total printed number pages pages-printed colour"),
            "3 50 6 18 18 1 3 3 -");
  // A state that the job stays in begins once.
  const auto at = [this](const char* key) { return std::stoll(See("a", key)); };
  EXPECT_GE(at("submitted"), before);
  EXPECT_GE(at("started"), at("submitted"));
  EXPECT_GE(at("since"), at("started"));
  EXPECT_EQ(New("b", "document=b\nhold=1", document), 1);
  const std::string held = See("b", "since");
  EXPECT_GE(std::stoll(held), at("since"));
  EXPECT_EQ(Tell("b", "copies=2"), NC_STATUS_DONE);
  EXPECT_EQ(See("b", "since started"), held + " -");
  EXPECT_EQ(Remove("b"), NC_STATUS_DONE);
  const std::string output = FilesIn(daemon.Path("printed/proof")).at(0);
  EXPECT_EQ(ReadWhole(daemon.Path("printed/proof/" + output)), document);
  EXPECT_TRUE(output.starts_with("0000000001-20")) << output;
  EXPECT_TRUE(output.ends_with("-" + See("a", "id").substr(0, 8) + "-One_Two \\ \xc3\xa4.pdf"));
  struct stat info;
  ASSERT_EQ(stat(daemon.Path("").c_str(), &info), 0);
  EXPECT_EQ(info.st_mode & 0777, 0700U);
  EXPECT_EQ(Tell("a", "hold=1"), NC_STATUS_WRONG_STATE);
  EXPECT_EQ(Remove("a"), NC_STATUS_DONE);
  EXPECT_EQ(Remove("a"), NC_STATUS_UNKNOWN_ID);
  EXPECT_TRUE(FilesIn(daemon.Path("jobs")).empty());
}

TEST_F(Commands, Lists) {
  StartWith(kConfig);
  EXPECT_EQ(Printers(fd).size(), 2U);
  EXPECT_EQ(See("First", "default paper"), "1 500");
  EXPECT_EQ(See("Wide one", "default paper media text"), "0 -1 A2,A1 by the door");

  char list[1024];
  uint8_t status = 0;
  NC_Scanner scanners[4];
  const int32_t size = NC_GetScannerListN(fd, &status, list, sizeof list);
  ASSERT_EQ(NC_ParseScanners(list, size, scanners, 4), 1);
  EXPECT_STREQ(scanners[0].name, "Flatbed");

  const struct {
    const char* printer;
    int count;
  } cases[] = {{"", 2}, {"First", 1}, {"Wide one", 2}, {"No such", 0}};
  for (const auto& row : cases) {
    char key[NC_PROFILE_KEY] = {};
    strcpy(key, row.printer);
    EXPECT_EQ(NC_GetProfileListN(fd, key, list, sizeof list), row.count) << row.printer;
  }
  char key[NC_PROFILE_KEY] = "Wide one";
  NC_Profile profiles[4];
  ASSERT_EQ(NC_ParseProfiles(list, NC_GetProfileListN(fd, key, list, sizeof list), profiles, 4), 2);
  EXPECT_STREQ(profiles[1].name, "Poster");
  EXPECT_STREQ(profiles[1].media, "A1");
  EXPECT_EQ(profiles[1].dpi_across, 1200);
  EXPECT_EQ(profiles[1].dpi_along, 600);
}

TEST_F(Commands, TicketsThatAreRefused) {
  StartWith(kConfig);
  const auto send = [&](const std::string& ticket) {
    uint8_t id[16];
    return Send(fd, ticket + "\n", std::string(100000, 'd'), id);
  };
  for (const std::string& ticket : std::initializer_list<std::string>{
           "copies=0", "copies=1000", "copies=1x", "copies=0\ncopies=1", "colour=12345",
           "colour=12345g", "colour=1234567", "priority=0", "priority=101", "hold=2",
           "no equals sign", "Key=1", "before=1", "document=" + std::string(256, 'x'),
           "owner=" + std::string(64, 'x'), "x=" + std::string(9000, 'x'),
           std::string("owner=a\0b", 9)}) {
    EXPECT_EQ(send(ticket), NC_STATUS_BAD_TICKET) << ticket;
  }
  for (const char* ticket : {"printer=Nobody", "profile=Nothing", "profile=Poster"}) {
    EXPECT_EQ(send(ticket), NC_STATUS_UNKNOWN_NAME) << ticket;
  }
  for (const std::string& ticket : std::initializer_list<std::string>{
           "profile=Poster\nprinter=Wide one", "document=" + std::string(510, '\\'),
           "copies=999\npriority=100\ncolour=00aaFF\nbefore=" + std::string(32, '0')}) {
    EXPECT_EQ(send(ticket + "\nhold=1"), NC_STATUS_DONE) << ticket;
  }
  EXPECT_EQ(Jobs(fd).size(), 3U);
  // Nothing of what was refused stays.
  EXPECT_TRUE(Eventually([&] { return FilesIn(daemon.Path("jobs")).size() == 6; }));
  EXPECT_EQ(Jobs(fd)[0].colour, 0x00aaff);
  EXPECT_EQ(Jobs(fd)[0].copies, 999);
}

TEST_F(Commands, TicketsInPieces) {
  Start();
  const int other = daemon.Connect();
  const std::string data = "hold=1\n\n\ndocument";
  for (size_t cut = 1; cut < data.size(); ++cut) {
    uint8_t id[16];
    ASSERT_EQ(NC_CreateRequestID(fd, id), 1);
    SendText(fd, "KRV\3" + std::string(id, id + 16) + Integer(data.size()) + data.substr(0, cut));
    // Another answer of the server says that the first piece has been taken in.
    EXPECT_EQ(Printers(other).size(), 1U);
    SendText(fd, data.substr(cut));
    EXPECT_EQ(AnswerOf(fd), NC_STATUS_DONE) << cut;
    EXPECT_EQ(ReadWhole(daemon.Path("jobs/" + IdText(id) + ".doc")), "\ndocument") << cut;
  }
  NC_Disconnect(other);
}

TEST_F(Commands, RequestIds) {
  Start();
  std::vector<std::string> created(1000);
  for (std::string& one : created) {
    one.resize(NC_ID_SIZE);
    ASSERT_EQ(NC_CreateRequestID(fd, one.data()), 1);
  }
  EXPECT_EQ(std::set<std::string>(created.begin(), created.end()).size(), 1000U);
  // The last 64 are kept.
  EXPECT_EQ(NC_WritePrintRequest(fd, created[935].data(), "", 0), NC_STATUS_UNKNOWN_ID);
  EXPECT_EQ(NC_WritePrintRequest(fd, created[936].data(), "", 0), NC_STATUS_BAD_TICKET);
  const char* const id = created[999].data();
  const int other = daemon.Connect();
  EXPECT_EQ(NC_WritePrintRequest(other, id, "\nx", 2), NC_STATUS_UNKNOWN_ID);
  EXPECT_EQ(NC_WritePrintRequest(fd, id, "copies=x\n\nx", 11), NC_STATUS_BAD_TICKET);
  EXPECT_EQ(NC_WritePrintRequest(fd, id, "", 0), NC_STATUS_BAD_TICKET);
  EXPECT_EQ(NC_WritePrintRequest(fd, id, "hold=1\n", 7), NC_STATUS_BAD_TICKET);
  EXPECT_EQ(NC_WritePrintRequest(fd, id, "hold=1\n\nx", 9), NC_STATUS_DONE);
  EXPECT_EQ(NC_WritePrintRequest(fd, id, "\nx", 2), NC_STATUS_WRONG_STATE);
  EXPECT_EQ(Jobs(fd).size(), 1U);
  NC_Disconnect(other);
}

TEST_F(Commands, HoldReleaseAndPriority) {
  StartWith("[printer]\nname=P\nrate=1K\n");
  EXPECT_EQ(New("long", "document=long", std::string(1 << 20, 'x')), 1);
  EXPECT_EQ(New("low", "document=low\npriority=10", "low"), 1);
  EXPECT_EQ(New("high", "document=high\npriority=20"), 1);
  EXPECT_EQ(New("held", "document=held\nhold=1\npriority=100"), 1);
  EXPECT_TRUE(Eventually([&] { return See("long", "printed") != "0"; }));
  EXPECT_EQ(Order(fd), "long held high low ");
  EXPECT_EQ(Tell("low", "priority=30"), 1);
  EXPECT_EQ(Order(fd), "long held low high ");
  EXPECT_EQ(See("long", "state") + See("held", "state"), "printingheld");
  EXPECT_EQ(Tell("long", "copies=2"), NC_STATUS_WRONG_STATE);
  EXPECT_EQ(Tell("low", "printer=Nobody"), NC_STATUS_UNKNOWN_NAME);
  EXPECT_EQ(Tell("low", "copies=2\ndocument=new name\n"), 1);
  EXPECT_EQ(See("low", "total document"), "6 new name");
  EXPECT_EQ(Tell("low", "hold=1\n\nbytes"), NC_STATUS_WRONG_STATE);

  // Held at the printer: the next by priority takes its place, and it starts again when released.
  EXPECT_EQ(Tell("held", "hold=0"), 1);
  EXPECT_EQ(See("held", "state"), "waiting");
  EXPECT_EQ(Tell("long", "hold=1"), 1);
  EXPECT_EQ(See("long", "state printed"), "held 0");
  EXPECT_TRUE(IsDone("high"));
  EXPECT_EQ(FilesIn(daemon.Path("printed/p")).size(), 3U);
  EXPECT_EQ(See("held", "state") + See("low", "state"), "donedone");
  EXPECT_EQ(Tell("long", "hold=0"), 1);
  EXPECT_TRUE(Becomes("long", "state", "printing"));
  EXPECT_EQ(Remove("long"), 1);
  EXPECT_TRUE(Eventually([&] { return FilesIn(daemon.Path("printed/p")).size() == 3; }));
  EXPECT_TRUE(Becomes("P", "state", "idle"));
}

TEST_F(Commands, PaperRunsOut) {
  StartWith("[printer]\nname=P\nrate=0\npaper=2\nsheet-bytes=10\n");
  EXPECT_EQ(New("a", "copies=2", "123456789012345"), 1);  // two sheets a copy
  EXPECT_EQ(New("next", "", ""), 1);                      // an empty one takes one too
  EXPECT_TRUE(Becomes("a", "state printed pages pages-printed", "paper-out 15 4 2"));
  EXPECT_EQ(See("P", "state paper") + See("next", "state"), "paper-out 0waiting");
  EXPECT_EQ(Tell("a", "hold=0"), 1);
  EXPECT_TRUE(IsDone("a"));
  EXPECT_TRUE(Becomes("next", "state", "paper-out"));
  EXPECT_EQ(Remove("next"), 1);
  EXPECT_TRUE(Becomes("P", "state", "idle"));
}

TEST_F(Commands, GamutFiles) {
  Start();
  const std::string big(300000, 'g');
  std::ofstream(daemon.Path("gamut/common.icc")) << big;
  std::ofstream(daemon.Path("gamut/.hidden")) << "x";
  std::filesystem::create_directory(daemon.Path("gamut/Wide"));
  std::ofstream(daemon.Path("gamut/Wide/own.icc")) << "own";
  std::filesystem::create_symlink("../../lock", daemon.Path("gamut/Wide/link"));
  std::filesystem::create_symlink("..", daemon.Path("gamut/up"));
  ASSERT_EQ(mkfifo(daemon.Path("gamut/pipe").c_str(), 0600), 0);
  std::ofstream(daemon.Path("outside")) << "x";
  const struct {
    const char *name, *folder;
    std::string content;
  } cases[] = {{"common.icc", "", big},  {"own.icc", "Wide", "own"},
               {"own.icc", "", ""},      {".hidden", "", ""},
               {"link", "Wide", ""},     {"outside", "up", ""},
               {"../outside", "", ""},   {"outside", "..", ""},
               {"Wide/own.icc", "", ""}, {"", "", ""},
               {"Wide", "", ""},         {"common.icc", "Wide", ""},
               {"pipe", "", ""}};
  for (const auto& row : cases) {
    char a[NC_GAMUT_A] = {}, b[NC_GAMUT_B] = {};
    strcpy(a, row.name);
    strcpy(b, row.folder);
    const std::string path = daemon.folder() + "/copy";
    unlink(path.c_str());
    EXPECT_EQ(NC_CopyGamutFileN(fd, a, b, path.c_str(), 1 << 20), 0) << row.name;
    EXPECT_EQ(ReadWhole(path), row.content) << row.name << " in " << row.folder;
    EXPECT_EQ(std::filesystem::exists(path), !row.content.empty());
  }
}

TEST_F(Commands, RemoveFilesOnlyBelowItsOwn) {
  Start();
  const std::string files = daemon.Path("files");
  std::filesystem::create_directories(files + "/a/b");
  std::ofstream(files + "/a/b/inner") << "x";
  std::ofstream(files + "/top") << "x";
  std::ofstream(daemon.Path("outside")) << "x";
  std::filesystem::create_symlink("..", files + "/up");
  std::filesystem::create_symlink("top", files + "/link");
  const struct {
    int status;
    std::vector<std::string> paths;
  } cases[] = {
      {NC_STATUS_BAD_PATH,
       {"../outside", "a/../../outside", daemon.Path("outside"), "up/outside", "link", "",
        "a//b/inner", "a/b/", "./top", "..", "up"}},
      {NC_STATUS_WRONG_STATE, {"a/b"}},
      {NC_STATUS_NO_FILE,
       {"a/none", "none/../top", "top/x", std::string(511, 'n'), std::string(300, 'n') + "/x"}},
      {NC_STATUS_DONE, {"a/b/inner", "top"}},
      {NC_STATUS_NO_FILE, {"top"}}};
  for (const auto& row : cases) {
    for (const std::string& path : row.paths) {
      EXPECT_EQ(NC_RemoveFile(fd, path.c_str()), row.status) << path;
    }
  }
  EXPECT_TRUE(std::filesystem::exists(daemon.Path("outside")));
  EXPECT_TRUE(std::filesystem::is_symlink(files + "/link"));
  EXPECT_FALSE(std::filesystem::exists(files + "/a/b/inner"));
}

TEST_F(Commands, LayoutAndScanServers) {
  const std::string out = daemon.folder() + "/out";
  const std::string script =
      daemon.WriteFile("script", "#!/bin/sh\nprintf '[%s]' \"$@\" >> " + out + "\n");
  chmod(script.c_str(), 0700);
  StartWith("[server]\nlayout-command=" + script + " layout  %1\nscan-command=" + script +
            " scan %1 %2\n");
  EXPECT_EQ(NC_StartScanServer(fd, "-rf", "x"), 1);
  EXPECT_EQ(NC_StartScanServer(fd, "Flat bed; true $(id)", "two"), 1);
  EXPECT_TRUE(Eventually([&] { return ReadWhole(out) == "[scan][Flat bed; true $(id)][two]"; }));
  EXPECT_EQ(NC_StartLayoutServer(fd), 1);
  EXPECT_TRUE(Eventually([&] { return ReadWhole(out).ends_with("[two][layout][]"); }));
  // Once one has ended another is started.
  EXPECT_TRUE(Eventually([&] {
    return NC_StartScanServer(fd, "again", "") == 1 && ReadWhole(out).ends_with("[again][]");
  }));
  EXPECT_TRUE(Jobs(fd).empty());  // the connection is in step
}

TEST_F(Commands, StartedProgramsInheritNothing) {
  const std::string out = daemon.folder() + "/out";
  const std::string script = daemon.WriteFile(
      "script",
      "#!/bin/sh\n{ tr '\\0' '\\n' < /proc/$$/environ; grep ^Sig[BI] /proc/self/status\n"
      "ls /proc/self/fd; readlink /proc/$$/cwd; } > " +
          out + ".new 2>&1\nmv " + out + ".new " + out + "\n");
  chmod(script.c_str(), 0700);
  // What the daemon itself has got from its parent.
  constexpr int kOpen = 77;
  ASSERT_EQ(dup2(STDERR_FILENO, kOpen), kOpen);
  setenv("SECRET_OF_THE_OPERATOR", "1", 1);
  setenv("LANG", "de_DE.UTF-8", 1);
  signal(SIGUSR1, SIG_IGN);
  StartWith("[server]\nlayout-command=" + script + "\n");
  signal(SIGUSR1, SIG_DFL);
  unsetenv("SECRET_OF_THE_OPERATOR");
  close(kOpen);
  EXPECT_EQ(NC_StartLayoutServer(fd), 1);
  ASSERT_TRUE(Eventually([&] { return !ReadWhole(out).empty(); }));
  std::string text = ReadWhole(out);
  // The C library keeps two numbers above the signals' to itself.
  const size_t ignored = text.find("SigIgn:\t");
  ASSERT_NE(ignored, std::string::npos) << text;
  EXPECT_EQ(std::stoull(text.substr(ignored + 8), nullptr, 16) & 0x7fffffff, 0U);
  text.erase(ignored, text.find('\n', ignored) + 1 - ignored);
  const char* home = getenv("HOME");
  EXPECT_EQ(text,
            "PATH=/usr/local/bin:/usr/bin:/bin\nHOME=" + std::string(home && *home ? home : "/") +
                "\nLANG=de_DE.UTF-8\nSigBlk:\t0000000000000000\n"
                "0\n1\n2\n3\n/\n");  // 3: the folder that ls reads
}

TEST_F(Commands, DoneJobsGoAndFailedOnesStay) {
  const std::string config =
      "[server]\ndone-keep=3\nspool-limit=100K\ndone-bytes=30K\n"
      "[printer]\nname=P\nrate=0\nkeep=2\n";
  StartWith(config);
  EXPECT_EQ(New("failed", "hold=1"), 1);
  std::filesystem::resize_file(DocumentOf("failed"), 0);
  EXPECT_EQ(Tell("failed", "hold=0"), 1);
  EXPECT_TRUE(Becomes("failed", "state", "failed"));
  for (int i = 0; i < 8; ++i) {
    EXPECT_TRUE(New("a", "", std::string(20000, 'x')) == 1 && IsDone("a"));
  }
  EXPECT_TRUE(Eventually([&] { return Jobs(fd).size() == 4; }));
  EXPECT_TRUE(Eventually([&] { return FilesIn(daemon.Path("printed/p")).size() == 2; }));
  EXPECT_EQ(Jobs(fd)[0].kept, 1);
  EXPECT_EQ(Jobs(fd)[1].kept, 0);
  EXPECT_TRUE(Eventually([&] { return FilesIn(daemon.Path("jobs")).size() == 6; }));
  // The room of a done job's document is for what comes; what waits keeps it.
  EXPECT_EQ(New("waits", "hold=1", std::string(90000, 'x')), 1);
  EXPECT_EQ(See("a", "kept"), "0");
  EXPECT_EQ(New("large", "hold=1", std::string(20000, 'x')), NC_STATUS_TOO_LARGE);
  // A request that broke off, and one that is removed, leave their room.
  const int other = daemon.Connect();
  uint8_t id[16];
  ASSERT_EQ(NC_CreateRequestID(other, id), 1);
  SendText(other,
           "KRV\3" + std::string(id, id + 16) + Integer(65536) + "\n" + std::string(11000, 'x'));
  EXPECT_TRUE(Eventually([&] { return FilesIn(daemon.Path("jobs")).size() == 8; }));
  NC_Disconnect(other);
  EXPECT_TRUE(Eventually([&] { return FilesIn(daemon.Path("jobs")).size() == 7; }));
  EXPECT_EQ(New("large", "hold=1", std::string(12000, 'x')), 1);
  EXPECT_EQ(Remove("large") + Remove("waits"), 2);
  EXPECT_EQ(New("large", "hold=1", std::string(100000, 'x')), 1);
  daemon.WriteFile("config", "[server]\ndone-seconds=0\n" + config.substr(9));
  daemon.Signal(SIGHUP);
  EXPECT_TRUE(Eventually([&] { return Jobs(fd).size() == 2; }));
  EXPECT_EQ(See("failed", "state"), "failed");
}

TEST_F(Commands, ConfigurationReadAgain) {
  StartWith(kConfig);
  EXPECT_EQ(New("a", "printer=Wide one\nhold=1"), 1);
  daemon.WriteFile("config", "[printer]\nname=First\nrate=0\n[printer]\nname=Third\n");
  daemon.Signal(SIGHUP);
  EXPECT_TRUE(Becomes("Third", "state", "idle"));
  EXPECT_EQ(Tell("a", "hold=0"), 1);
  EXPECT_EQ(See("a", "state reasons pages"), "waiting printer-unknown -");
  EXPECT_EQ(Tell("a", "printer=First"), 1);
  EXPECT_TRUE(IsDone("a"));
  daemon.WriteFile("config", "[nonsense]\n");
  daemon.Signal(SIGHUP);
  EXPECT_TRUE(daemon.Says("unknown section [nonsense]; the configuration stays as it was"));
  EXPECT_EQ(Printers(fd).size(), 2U);
}

TEST_F(Commands, ConfigurationFromAPipe) {
  const std::string path = daemon.folder() + "/pipe";
  ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
  std::string text;
  for (int i = 0; i < 60; ++i) {
    text += "[printer]\nname=P" + std::to_string(i) + "\n#" + std::string(3000, 'c') + "\n";
  }
  // More than a pipe holds, and in pieces.
  std::thread writer([&] {
    std::ofstream pipe(path, std::ios::binary);
    for (size_t at = 0; at < text.size(); at += 1000) {
      pipe.write(text.data() + at, std::min<ssize_t>(1000, text.size() - at)).flush();
    }
  });
  Start({"--config", path});
  writer.join();
  EXPECT_EQ(Printers(fd).size(), 60U);
  // What can be read but once stays as it was read.
  daemon.Signal(SIGHUP);
  EXPECT_TRUE(daemon.Says("no regular file cannot be read again"));
  EXPECT_EQ(Printers(fd).size(), 60U);
}

}  // namespace

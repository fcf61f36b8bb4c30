// What quorvik-print asks for jobs and printers, and what it says of the answers.
#include <pty.h>
#include <stdlib.h>
#include <sys/wait.h>

#include <algorithm>

#include "tests/quorvik-print/fake_server.h"

namespace {

using Strings = std::vector<std::string>;

const std::string kLow = "12345678ab", kHigh = "abcdef12a", kTwin = "abcdef12b",
                  kDigits = "9876543210";

TEST_F(Cli, AWordNamesOneJobOrNone) {
  server.queues = {Job(kLow, 7) + Job(kHigh, 12345678) + Job(kTwin, 999999999) + Job(kDigits, 0)};
  const struct {
    std::string word;
    int code;
    std::string id, error;
  } rows[] = {
      {"7", 0, kLow, ""},
      {"007", 0, kLow, ""},
      {"12345678", 0, kHigh, ""},  // a number, though an id begins so
      {"999999999", 0, kTwin, ""},
      {"1", 1, "", "1: no such job"},
      {"0", 1, "", "no such job"},  // one without a number has none
      {"12345678a", 0, kLow, ""},
      {"123456789", 1, "", "no such job"},
      {"9876543210", 0, kDigits, ""},
      {"ABCDEF12A", 0, kHigh, ""},
      {Id(kHigh), 0, kHigh, ""},
      {"abcdef12", 1, "", "more than one job begins so"},
      {"abcdef1", 2, "", "names no job"},
      {"1234567g", 2, "", "names no job"},
      {"", 2, "", "names no job"},
      {Id(kHigh) + "0", 2, "", "names no job"},
      {"ffffffff", 1, "", "ffffffff: no such job"},
  };
  for (const auto& row : rows) {
    const Outcome outcome = Run({"remove", row.word});
    EXPECT_EQ(outcome.code, row.code) << row.word << outcome.error;
    EXPECT_TRUE(Has(outcome.error, row.error)) << row.word << outcome.error;
    EXPECT_EQ(Requests(), row.id.empty() ? Strings{} : Strings{Id(row.id) + " removed"})
        << row.word;
  }
  EXPECT_EQ(Run({"remove", "7", "7"}).out, "removed 7 d7, ann\nremoved 7 d7, ann\n");
  EXPECT_EQ(Run({"hold", Id(kDigits)}).out, "held " + Id(kDigits) + " d0, ann\n");
  // A faulty word keeps the good ones from being done.
  Requests();
  EXPECT_EQ(Run({"remove", "7", "x"}).code, 2);
  EXPECT_EQ(Requests(), Strings{});
}

// The command line by its words.
Strings Words(const std::string& line) {
  Strings words(1);
  for (const char c : line) {
    if (c == ' ') words.emplace_back();
    if (c != ' ') words.back() += c == '_' ? ' ' : c;
  }
  return words;
}

// What was asked for in one line: the first digit of each id, then the ticket's lines with blanks
// between.
std::string Shortly(const Strings& requests) {
  std::string text;
  for (const std::string& request : requests) {
    text += (text.empty() ? "" : ", ") + request.substr(0, 1) + request.substr(32);
    while (text.back() == '\n') text.pop_back();
    std::replace(text.begin(), text.end(), '\n', ' ');
  }
  return text;
}

TEST_F(Cli, WhatIsAskedForJobsAndPrinters) {
  server.printers = "name=Px\nid=" + Id("6") + "\n\nname=P\nid=" + Id("7") +
                    "\n\nname=Old one\n\nname=Q\nid=" + Id("8") + "\n\n";
  server.queues = {Job("a", 1) + Job("b", 2, "state=held\nhold=1\n") +
                   Job("c", 3, "state=printing\n") + Job("d", 4, "state=done\nkept=1\n") +
                   Job("e", 5, "state=failed\n") + Job("f", 6, "state=done\n") + "id=" + Id("9") +
                   "\nprinter=Q\n\n"};
  const struct {
    const char* line;
    const char* statuses;  // a digit each, - for a connection that ends
    int code;
    const char *requests, *out, *error;
  } rows[] = {
      {"hold 1 2", "", 0, "a hold=1, b hold=1", "held 1 d1, ann\nheld 2 d2, ann\n", ""},
      {"hold 1 2", "21", 1, "a hold=1, b hold=1", "held 2 d2, ann\n", "1 d1, ann: no such job"},
      {"hold 1 2", "-", 3, "a hold=1", "", "whether 1 d1, ann was changed"},
      {"hold 1", "0", 1, "a hold=1", "", "1 d1, ann: refused"},
      {"release 5", "", 0, "e hold=0", "released 5 d5, ann\n", ""},
      {"release 4 1", "", 1, "a hold=0", "released 1 d1, ann\n", "4 d4, ann: not"},
      {"change 1 --copies 999 --priority 100 --hold --title T --media A3 --profile Fine "
       "--colour 00ff7a --owner bob",
       "", 0,
       "a document=T owner=bob profile=Fine media=A3 copies=999 priority=100 hold=1 colour=00ff7a",
       "changed 1 d1, ann\n", ""},
      {"change 1 --colour none --profile=", "", 0, "a profile= colour=", "changed 1 d1, ann\n", ""},
      {"change 1 --before 77", "", 1, "", "", "77: no such job"},
      // To another printer: held as long as it takes, released unless it was held before.
      {"change 3 --printer Q --copies 2", "", 0, "c hold=1, c printer=Q copies=2, c hold=0",
       "changed 3 d3, ann\n", ""},
      {"change 1 --printer Q --hold", "", 0, "a hold=1, a printer=Q", "changed 1 d1, ann\n", ""},
      {"change 5 --printer Q", "", 0, "e printer=Q", "changed 5 d5, ann\n", ""},
      {"move P Q", "", 0,
       "a hold=1, a printer=Q, a hold=0, b printer=Q, c hold=1, c printer=Q, c hold=0",
       "moved 1 d1, ann\nmoved 2 d2, ann\nmoved 3 d3, ann\n", ""},
      {"move P Q", "17175", 1, "a hold=1, a printer=Q, a hold=0, b printer=Q, c hold=1", "",
       "1 d1, ann: no such printer or profile\n"},
      {"move P Q", "1151155", 1,
       "a hold=1, a printer=Q, a hold=0, b printer=Q, c hold=1, c printer=Q, c hold=0",
       "moved 2 d2, ann\n", "it is held now: release it"},
      {"move P Q", "1-", 3, "a hold=1, a printer=Q", "", "it may be held now"},
      {"move P R", "", 1, "", "", "R: no such printer"},
      {"move R Q", "", 1, "", "", "R: no such printer"},
      {"again 4 --copies 3 --printer=Q", "", 0, "d printer=Q copies=3 hold=0",
       "printing again 4 d4, ann\n", ""},
      {"again 6 1 5", "", 1, "e hold=0", "printing again 5 d5, ann\n",
       "6 d6, ann: the server no longer has its document"},
      {"remove --mine --yes", "215111", 1,
       "a removed, b removed, c removed, d removed, e removed, f removed",
       "removed 2 d2, ann\nremoved 4 d4, ann\nremoved 5 d5, ann\nremoved 6 d6, ann\n",
       "3 d3, ann: not possible"},
      {"remove --all --yes", "-", 3, "a removed", "", "whether 1 d1, ann was changed"},
      {"pause P Q", "", 0, "7 paused=1, 8 paused=1", "paused P\npaused Q\n", ""},
      {"resume P", "", 0, "7 paused=0", "resumed P\n", ""},
      {"refuse P", "", 0, "7 accepting=0", "refusing P\n", ""},
      {"accept P", "", 0, "7 accepting=1", "accepting P\n", ""},
      {"load P", "2", 1, "7 paper-loaded=1", "", "P: no such printer"},
      {"pause p Old_one Q", "", 1, "8 paused=1", "paused Q\n",
       "p: no such printer\nquorvik-print: Old one: this server's printers cannot be changed"},
      {"pause P Q", "-", 3, "7 paused=1", "", "whether P was changed"},
  };
  for (const auto& row : rows) {
    server.statuses.clear();
    for (const char* c = row.statuses; *c; ++c) {
      server.statuses.push_back(*c == '-' ? -1 : *c - '0');
    }
    const Outcome outcome = Run(Words(row.line));
    EXPECT_EQ(outcome.code, row.code) << row.line << outcome.error;
    EXPECT_EQ(Shortly(Requests()), row.requests) << row.line;
    EXPECT_EQ(outcome.out, row.out) << row.line;
    EXPECT_TRUE(Has(outcome.error, row.error)) << row.line << outcome.error;
  }
  EXPECT_EQ(Run(Words("change 1 --before 2")).code, 0);
  EXPECT_EQ(Requests(), Strings{Id("a") + " before=" + Id("b") + "\n\n"});
  server.statuses = {2};  // one that went by itself is no failure
  EXPECT_EQ(Run(Words("remove --all --yes")).code, 0);
  EXPECT_EQ(Requests().size(), 7U);
  server.queues = {""};
  EXPECT_EQ(Run(Words("remove --all --yes")).out, "no jobs\n");
  EXPECT_EQ(Run(Words("move P Q")).out, "no jobs\n");
}

TEST_F(Cli, RemovingManyAsksOnATerminal) {
  server.queues = {Job("a", 1) + Job("b", 2, "owner=bob\n")};
  EXPECT_EQ(Shell("$Q remove --all </dev/null").code, 2);
  for (const std::string answer : {"y\n", "n\n", "\n", "\x04"}) {
    server.Sync();
    int terminal;
    const pid_t pid = forkpty(&terminal, nullptr, nullptr, nullptr);
    ASSERT_GE(pid, 0);
    if (pid == 0) {
      setenv("QUORVIK_SERVER", server.host().c_str(), 1);
      setenv("USER", "ann", 1);
      execl(QUORVIK_PRINT, QUORVIK_PRINT, "remove", "--mine", nullptr);
      _exit(127);
    }
    EXPECT_EQ(write(terminal, answer.data(), answer.size()), static_cast<ssize_t>(answer.size()));
    std::string shown;
    char buffer[256];
    for (ssize_t n; (n = read(terminal, buffer, sizeof buffer)) > 0;) shown.append(buffer, n);
    int status = 0;
    waitpid(pid, &status, 0);
    close(terminal);
    const bool yes = answer == "y\n";
    EXPECT_EQ(WEXITSTATUS(status), yes ? 0 : 1) << shown;
    EXPECT_TRUE(Has(shown, "remove 1 job? [y/N]")) << shown;
    EXPECT_EQ(Requests(), yes ? Strings{Id("a") + " removed"} : Strings{});
  }
}

}  // namespace

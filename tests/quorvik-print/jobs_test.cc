// What quorvik-print asks for jobs and printers, and what it says of the answers.
#include <pty.h>
#include <stdlib.h>
#include <sys/wait.h>

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

TEST_F(Cli, WhatIsAskedForJobs) {
  const std::string a(Id("aaaaaaaa")), b(Id("bbbbbbbb")), c(Id("cccccccc")), d(Id("dddddddd")),
      e(Id("eeeeeeee"));
  server.printers = "name=P\n\nname=Q\n\n";
  server.queues = {Job(a, 1) + Job(b, 2, "state=held\nhold=1\n") + Job(c, 3, "state=printing\n") +
                   Job(d, 4, "state=done\nkept=1\n") + Job(e, 5, "state=failed\n") +
                   Job("ffffffff", 6, "state=done\n") + "id=" + Id("99") + "\nprinter=Q\n\n"};
  const struct {
    Strings arguments;
    std::deque<int> statuses;
    int code;
    Strings requests;
    std::string out, error;
  } rows[] = {
      {{"hold", "1", "2"},
       {},
       0,
       {a + " hold=1\n\n", b + " hold=1\n\n"},
       "held 1 d1, ann\nheld 2 d2, ann\n",
       ""},
      {{"release", "5"}, {}, 0, {e + " hold=0\n\n"}, "released 5 d5, ann\n", ""},
      {{"release", "4", "1"}, {}, 1, {a + " hold=0\n\n"}, "released 1 d1, ann\n", "4 d4, ann: not"},
      {{"hold", "1", "2"},
       {2, 1},
       1,
       {a + " hold=1\n\n", b + " hold=1\n\n"},
       "held 2 d2, ann\n",
       "1 d1, ann: no such job"},
      {{"hold", "1", "2"}, {-1}, 3, {a + " hold=1\n\n"}, "", "whether 1 d1, ann was changed"},
      {{"change", "1", "--copies", "999", "--priority", "100", "--hold", "--title", "T", "--media",
        "A3", "--profile", "Fine", "--colour", "00ff7a", "--owner", "bob"},
       {},
       0,
       {a + " document=T\nowner=bob\nprofile=Fine\nmedia=A3\ncopies=999\npriority=100\nhold=1\n"
            "colour=00ff7a\n\n"},
       "changed 1 d1, ann\n",
       ""},
      {{"change", "1", "--colour", "none", "--profile="},
       {},
       0,
       {a + " profile=\ncolour=\n\n"},
       "changed 1 d1, ann\n",
       ""},
      {{"change", "1", "--before", "2"},
       {},
       0,
       {a + " before=" + b + "\n\n"},
       "changed 1 d1, ann\n",
       ""},
      {{"change", "1", "--before", "77"}, {}, 1, {}, "", "77: no such job"},
      // To another printer: held as long as it takes, released unless it was held before.
      {{"change", "3", "--printer", "Q", "--copies", "2"},
       {},
       0,
       {c + " hold=1\n\n", c + " printer=Q\ncopies=2\n\n", c + " hold=0\n\n"},
       "changed 3 d3, ann\n",
       ""},
      {{"change", "1", "--printer", "Q", "--hold"},
       {},
       0,
       {a + " hold=1\n\n", a + " printer=Q\n\n"},
       "changed 1 d1, ann\n",
       ""},
      {{"change", "5", "--printer", "Q"}, {}, 0, {e + " printer=Q\n\n"}, "changed 5 d5, ann\n", ""},
      {{"move", "P", "Q"},
       {},
       0,
       {a + " hold=1\n\n", a + " printer=Q\n\n", a + " hold=0\n\n", b + " printer=Q\n\n",
        c + " hold=1\n\n", c + " printer=Q\n\n", c + " hold=0\n\n"},
       "moved 1 d1, ann\nmoved 2 d2, ann\nmoved 3 d3, ann\n",
       ""},
      {{"move", "P", "Q"},
       {1, 7, 1, 7, 5},
       1,
       {a + " hold=1\n\n", a + " printer=Q\n\n", a + " hold=0\n\n", b + " printer=Q\n\n",
        c + " hold=1\n\n"},
       "",
       "1 d1, ann: no such printer or profile\n"},
      {{"move", "P", "Q"},
       {1, 1, 5, 1, 1, 5, 5},
       1,
       {a + " hold=1\n\n", a + " printer=Q\n\n", a + " hold=0\n\n", b + " printer=Q\n\n",
        c + " hold=1\n\n", c + " printer=Q\n\n", c + " hold=0\n\n"},
       "moved 2 d2, ann\n",
       "it is held now: release it"},
      {{"move", "P", "Q"},
       {1, -1},
       3,
       {a + " hold=1\n\n", a + " printer=Q\n\n"},
       "",
       "it may be held now"},
      {{"move", "P", "R"}, {}, 1, {}, "", "R: no such printer"},
      {{"move", "R", "Q"}, {}, 1, {}, "", "R: no such printer"},
      {{"again", "4", "--copies", "3", "--printer=Q"},
       {},
       0,
       {d + " printer=Q\ncopies=3\nhold=0\n\n"},
       "printing again 4 d4, ann\n",
       ""},
      {{"again", "6", "1", "5"},
       {},
       1,
       {e + " hold=0\n\n"},
       "printing again 5 d5, ann\n",
       "6 d6, ann: the server no longer has its document"},
      {{"remove", "--mine", "--yes"},
       {2, 1, 5, 1, 1, 1},
       1,
       {a + " removed", b + " removed", c + " removed", d + " removed", e + " removed",
        Id("ffffffff") + " removed"},
       "removed 2 d2, ann\nremoved 4 d4, ann\nremoved 5 d5, ann\nremoved 6 d6, ann\n",
       "3 d3, ann: not possible"},
  };
  for (const auto& row : rows) {
    server.statuses = row.statuses;
    const Outcome outcome = Run(row.arguments);
    const std::string name = row.arguments[0] + " " + row.arguments[1] + " " + outcome.error;
    EXPECT_EQ(outcome.code, row.code) << name;
    EXPECT_EQ(Requests(), row.requests) << name;
    EXPECT_EQ(outcome.out, row.out) << name;
    EXPECT_TRUE(Has(outcome.error, row.error)) << name;
  }
  EXPECT_EQ(Run({"remove", "--all", "--yes"}).code, 0);
  EXPECT_EQ(Requests().size(), 7U);
  server.queues = {""};
  EXPECT_EQ(Run({"remove", "--all", "--yes"}).out, "no jobs\n");
  EXPECT_EQ(Run({"move", "P", "Q"}).out, "no jobs\n");
}

TEST_F(Cli, WhatIsAskedForPrinters) {
  server.printers =
      "name=P\nid=" + Id("a1") + "\n\nname=Old one\n\nname=Q\nid=" + Id("a2") + "\n\n";
  const struct {
    Strings arguments;
    std::deque<int> statuses;
    int code;
    Strings requests;
    std::string out, error;
  } rows[] = {
      {{"pause", "P", "Q"},
       {},
       0,
       {Id("a1") + " paused=1\n\n", Id("a2") + " paused=1\n\n"},
       "paused P\npaused Q\n",
       ""},
      {{"resume", "P"}, {}, 0, {Id("a1") + " paused=0\n\n"}, "resumed P\n", ""},
      {{"refuse", "P"}, {}, 0, {Id("a1") + " accepting=0\n\n"}, "refusing P\n", ""},
      {{"accept", "P"}, {}, 0, {Id("a1") + " accepting=1\n\n"}, "accepting P\n", ""},
      {{"load", "P"}, {2}, 1, {Id("a1") + " paper-loaded=1\n\n"}, "", "P: no such printer"},
      {{"pause", "p", "Old one", "Q"},
       {},
       1,
       {Id("a2") + " paused=1\n\n"},
       "paused Q\n",
       "p: no such printer\nquorvik-print: Old one: this server's printers cannot be changed"},
      {{"pause", "P", "Q"}, {-1}, 3, {Id("a1") + " paused=1\n\n"}, "", "whether P was changed"},
  };
  for (const auto& row : rows) {
    server.statuses = row.statuses;
    const Outcome outcome = Run(row.arguments);
    EXPECT_EQ(outcome.code, row.code) << row.arguments[0];
    EXPECT_EQ(Requests(), row.requests) << row.arguments[0];
    EXPECT_EQ(outcome.out, row.out);
    EXPECT_TRUE(Has(outcome.error, row.error)) << outcome.error;
  }
}

TEST_F(Cli, RemovingManyAsksOnATerminal) {
  server.queues = {Job("a", 1) + Job("b", 2, "owner=bob\n")};
  EXPECT_EQ(Shell("$Q remove --all </dev/null").code, 2);
  for (const std::string answer : {"y\n", "n\n", "\n", "\x04"}) {
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

// What quorvik-print shows, and how it refuses command lines.
#include <algorithm>

#include "tests/quorvik-print/fake_server.h"

namespace {

using Strings = std::vector<std::string>;

// An escape, a control character from above, a direction, a half and an overlong character.
// As a record has it: a backslash is two.
const std::string kHostile =
    "\x1b[1m\xc2\x9b\xe2\x80\xae\\\\\"\tz\xc3\xa4\xe2\x82\xac\xf0\x9f\x98\x80\xc3\xe0\x80\x80";

TEST_F(Cli, TheQueueInThreeForms) {
  const std::string first =
      Job("a1", 7,
          "state=printing\npriority=60\ncopies=2\nsize=100\ntotal=200\nprinted=50\nprofile=Fine\n"
          "media=A3\npages=8\npages-printed=3\ncolour=0000ff\nreasons=x-y\nstarted=172800\n");
  const std::string second = Job("a2", 0,
                                 "state=failed\nhold=1\nreasons=document-lost,disk-full\n"
                                 "text=gone\nsubmitted=86400\nsince=345600\ndocument=" +
                                     kHostile + "\n");
  server.queues = {first + second};
  Outcome outcome = Run({"queue"});
  EXPECT_EQ(outcome.code, 0);
  const size_t line = outcome.out.find('\n') + 1;
  EXPECT_EQ(
      outcome.out.rfind("NUMBER  STATE     DONE  PRIORITY  COPIES  SIZE  SUBMITTED            "
                        "STARTED              SINCE                OWNER",
                        0),
      0U);
  EXPECT_EQ(
      outcome.out.substr(line).rfind(
          "7       printing  3/8   60        2       100                        1970-01-0", 0),
      0U)
      << outcome.out;
  const size_t second_line = outcome.out.find('\n', line) + 1;
  EXPECT_EQ(outcome.out.compare(second_line + outcome.out.find("SINCE"), 9, "1970-01-0"), 0);
  EXPECT_TRUE(Has(outcome.out,
                  "  \\u{001B}[1m\\u{009B}\\u{202E}\\\"\\u{0009}zä€😀\\xC3\\xE0\\x80\\x80  "
                  "its document is lost, the disk is full: gone  " +
                      Id("a2") + "\n"))
      << outcome.out;
  outcome = Run({"queue", "--tsv"});
  EXPECT_EQ(outcome.out,
            "number\tstate\tpriority\tcopies\tsize\towner\tprinter\tdocument\tid\tprofile\tmedia\t"
            "hold\tsubmitted\ttotal\tprinted\tpages\tpages-printed\tcolour\tkept\treasons\ttext\t"
            "started\tsince\n"
            "7\tprinting\t60\t2\t100\tann\tP\td7\t" +
                Id("a1") +
                "\tFine\tA3\t0\t0\t200\t50\t8\t3\t0000ff\t1\tx-y\t\t172800\t\n"
                "\tfailed\t50\t1\t0\tann\tP\t\\u{001B}[1m\\u{009B}\\u{202E}\\\"\\u{0009}"
                "zä€😀\\xC3\\xE0\\x80\\x80\t" +
                Id("a2") +
                "\t\t\t1\t86400\t0\t0\t\t\t\t1\tdocument-lost,disk-full\tgone\t\t345600\n");
  outcome = Run({"queue", "--json"});
  EXPECT_EQ(
      outcome.out,
      "[\n  {\"number\": 7, \"state\": \"printing\", \"priority\": 60, \"copies\": 2, "
      "\"size\": 100, \"owner\": \"ann\", \"printer\": \"P\", \"document\": \"d7\", \"id\": \"" +
          Id("a1") +
          "\", \"profile\": \"Fine\", \"media\": \"A3\", \"hold\": false, \"submitted\": 0, "
          "\"total\": 200, \"printed\": 50, \"pages\": 8, \"pages-printed\": 3, "
          "\"colour\": \"0000ff\", \"kept\": true, \"reasons\": [\"x-y\"], \"text\": \"\", "
          "\"started\": 172800, \"since\": null},\n"
          "  {\"number\": null, \"state\": \"failed\", \"priority\": 50, \"copies\": 1, "
          "\"size\": 0, \"owner\": \"ann\", \"printer\": \"P\", \"document\": "
          "\"\\u001b[1m\\u009b\\u202e\\\\\\\"\\u0009z\xc3\xa4\xe2\x82\xac\xf0\x9f\x98\x80"
          "\xef\xbf\xbd\xef\xbf\xbd\xef\xbf\xbd\xef\xbf\xbd\", \"id\": \"" +
          Id("a2") +
          "\", \"profile\": \"\", \"media\": \"\", \"hold\": true, \"submitted\": 86400, "
          "\"total\": 0, \"printed\": 0, \"pages\": null, \"pages-printed\": null, "
          "\"colour\": \"\", \"kept\": true, \"reasons\": [\"document-lost\", \"disk-full\"], "
          "\"text\": \"gone\", \"started\": null, \"since\": 345600}\n]\n");
}

TEST_F(Cli, FiltersAndEmptyLists) {
  server.queues = {Job("a", 1) + Job("b", 2, "owner=bob\nstate=held\n") +
                   Job("c", 3, "printer=Q\ntotal=3\nprinted=2\nstate=paper-out\n")};
  const struct {
    Strings arguments;
    std::string numbers;
    int code = 0;
  } rows[] = {{{}, "123"},        {{"--printer", "P"}, "12"},  {{"--owner=bob"}, "2"},
              {{"--mine"}, "13"}, {{"--state=held"}, "2"},     {{"--mine", "--printer=Q"}, "3"},
              {{"3", "1"}, "31"}, {{"1", "--state=held"}, ""}, {{"1", "9"}, "1", 1}};
  for (const auto& row : rows) {
    Strings arguments = row.arguments;
    arguments.insert(arguments.begin(), {"queue", "--tsv"});
    const Outcome outcome = Run(arguments);
    std::string numbers;
    for (size_t at = 0; (at = outcome.out.find('\n', at)) + 1 < outcome.out.size(); ++at) {
      numbers += outcome.out[at + 1];
    }
    EXPECT_EQ(numbers, row.numbers) << outcome.out;
    EXPECT_EQ(outcome.code, row.code);
  }
  EXPECT_TRUE(Has(Run({"queue"}).out, "paper-out  66%")) << Run({"queue"}).out;
  server.queues = {""};
  EXPECT_EQ(Run({"queue"}).out, "no jobs\n");
  EXPECT_EQ(Run({"queue", "--json"}).out, "[]\n");
  EXPECT_EQ(Run({"list"}).out, "no printers\n");
  EXPECT_EQ(Run({"scanners"}).out, "no scanners\n");
  EXPECT_EQ(Run({"scanners", "--tsv"}).out, "name\tstate\ttext\n");
  EXPECT_EQ(Run({"profiles"}).out, "no profiles\n");
  server.longest = NC_QUEUE_MAX + 1;
  const Outcome outcome = Run({"queue"});
  EXPECT_EQ(outcome.code, 3);
  EXPECT_TRUE(Has(outcome.error, "it announces more than can be taken")) << outcome.error;
}

TEST_F(Cli, PrintersProfilesScanners) {
  server.printers =
      "name=P\nid=" + Id("c0") +
      "\nstate=paper-out\npaused=1\naccepting=0\njobs=3\npaper=0\nmedia=A4,A3\nsupplies=black:40,"
      "red:-1\nreasons=output-error\ntext=two\ndefault=1\n\nname=Q\n\n";
  Outcome outcome = Run({"list"});
  EXPECT_EQ(
      outcome.out,
      "NAME  STATE      PAUSED  REFUSING  JOBS  PAPER  SUPPLIES         MEDIA  DEFAULT  REMARK\n"
      "P     paper-out  yes     yes       3     0      black:40,red:-1  A4,A3  yes      "
      "the output cannot be written: two\n"
      "Q     idle                         0\n");
  outcome = Run({"list", "--tsv"});
  EXPECT_TRUE(Has(outcome.out,
                  "P\tpaper-out\t1\t0\t3\t0\tblack:40,red:-1\tA4,A3\t1\toutput-error\t"
                  "two\t" +
                      Id("c0") + "\nQ\tidle\t0\t1\t0\t\t\t\t0\t\t\t\n"))
      << outcome.out;
  // The longest list there is.
  server.printers.clear();
  for (int i = 0; i < 1024; ++i) {
    server.printers += "name=P" + std::to_string(i) + "\ntext=" + std::string(1000, 'x') + "\n\n";
  }
  outcome = Run({"list", "--tsv"});
  EXPECT_EQ(std::count(outcome.out.begin(), outcome.out.end(), '\n'), 1025) << outcome.error;
  server.scanners = "name=S\nstate=away\ntext=there\n\nname=T\n\n";
  EXPECT_EQ(Run({"scanners"}).out, "NAME  STATE  REMARK\nS     away   there\nT     ready\n");
  server.profiles = "Fine" + std::string(28, 0) + "A4" + std::string(10, 0) + "\xb0\x04\x58\x02";
  EXPECT_EQ(Run({"profiles"}).out, "NAME  MEDIA  DPI\nFine  A4     1200x600\n");
  EXPECT_TRUE(
      Has(Run({"profiles", "P", "--json"}).out, "\"dpi-across\": 1200, \"dpi-along\": 600"));
}

TEST_F(Cli, StandardOutput) {
  server.queues = {Job("a", 1)};
  EXPECT_EQ(Shell("$Q queue >/dev/full").code, 4);
  EXPECT_EQ(Shell("$Q remove 1 >/dev/full").code, 4);
  EXPECT_EQ(Shell("$Q queue >&-").code, 4);
  EXPECT_EQ(Shell("(sleep 0.1; $Q queue; echo $? >&2) | true").error, "0\n");
  EXPECT_EQ(Shell("(sleep 0.1; $Q remove 9 2>/dev/null; echo $? >&2) | true").error, "1\n");
}

TEST_F(Cli, FaultyCommandLines) {
  const struct {
    Strings arguments;
    int code;
    std::string error;
  } rows[] = {
      {{}, 2, "which command?"},
      {{"fly"}, 2, "unknown command \"fly\""},
      {{"move", "P"}, 2, "of what?"},
      {{"move", "P", "Q", "R"}, 2, "too many words"},
      {{"move", "P", "P"}, 2, "the printers are the same"},
      {{"list", "much"}, 2, "too many words"},
      {{"print", "--copies", "1000", "f"}, 2, "--copies wants a number from 1 to 999"},
      {{"print", "--priority", "101", "f"}, 2, "--priority wants a number from 1 to 100"},
      {{"print", "--priority=1x", "f"}, 2, "from 1 to 100"},
      {{"print", "--colour=12345g", "f"}, 2, "--colour wants six"},
      {{"print", "f", "--copies"}, 2, "--copies wants a value"},
      {{"print", "--hold=1", "f"}, 2, "--hold takes no value"},
      {{"queue", "--loud"}, 2, "unknown option \"--loud\""},
      {{"queue", "--copies", "3"}, 2, "queue: --copies is no option of \"queue\""},
      {{"list", "--json", "--tsv"}, 2, "--json or --tsv, not both"},
      {{"queue", "--state", "out"}, 2, "--state wants"},
      {{"change", "1"}, 2, "to what?"},
      {{"change", "1", "--before", "x"}, 2, "--before wants a job"},
      {{"change", "1", "--before", "2", "--priority", "3"}, 2, "not both"},
      {{"remove"}, 2, "of what?"},
      {{"remove", "--yes", "1"}, 2, "--yes goes with"},
      {{"remove", "--all", "--yes", "1"}, 2, "too many words"},
      {{"remove", "--all", "--mine", "--yes"}, 2, "--mine or --all"},
      {{"profiles", std::string(80, 'p')}, 2, "too long"},
      {{"gamut", std::string(100, 'p')}, 2, "too long"},
      {{"--server", "no-such-host.invalid", "list"}, 3, "no-such-host.invalid: this host is not"},
      {{"--server", "127.0.0.1:0", "list"}, 3, "its port is not a number from 1 to 65535"},
      {{"--server=", "--server", "127.0.0.1:1", "list"}, 3, "127.0.0.1:1: no server there"},
      {{"list", "--server", server.host() + ":51470"}, 0, ""},
      {{"print", "--help"}, 0, ""},
  };
  for (const auto& row : rows) {
    const Outcome outcome = Run(row.arguments);
    EXPECT_EQ(outcome.code, row.code) << outcome.error;
    EXPECT_TRUE(Has(outcome.error, row.error)) << row.error << ": " << outcome.error;
  }
  EXPECT_TRUE(Has(Run({"-h"}).out, "Exit codes"));
  EXPECT_EQ(Run({"--version"}).out, "quorvik-print " QUORVIK_VERSION "\n");
}

// What the shell offers for the last of these words.
TEST_F(Cli, Completion) {
  server.printers = "name=Proof \"p\"\n\nname=Office\n\n";
  server.queues = {Job("a", 12) + Job("b", 13)};
  const struct {
    std::string words, offered;
  } rows[] = {
      {"r", "release remove resume refuse"},
      {"--server h print --t", "--title"},
      {"queue --", "--server --printer --owner --state --mine --json --tsv --help --version"},
      {"queue --state p", "printing paper-out"},
      {"hold 1", "12 13"},
      {"hold --copies 3 13", "13"},
      {"pause O", "Office"},
      {"print --printer P", "Proof\\ \\\"p\\\""},
      {"print --copies 1", ""},
      {"--copies hold 1", ""},
  };
  for (const auto& row : rows) {
    const Outcome outcome = RunSynced(
        {"/bin/bash", "-c",
         "source <(\"$Q\" completion); COMP_WORDS=(\"$Q\" " + row.words +
             "); COMP_CWORD=$((${#COMP_WORDS[@]} - 1)); _quorvik_print; echo \"${COMPREPLY[@]}\""});
    EXPECT_EQ(outcome.out, row.offered + "\n") << row.words << outcome.error;
  }
}

}  // namespace

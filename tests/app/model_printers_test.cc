// Printers and the status line.
#include <gtest/gtest.h>

#include <cstring>

#include "app/model/printers.h"

namespace console {
namespace {

NC_Printer Printer(const char* name) {
  NC_Printer p{};
  strcpy(p.name, name);
  p.accepting = p.has_id = 1;
  p.paper = -1;
  return p;
}

std::shared_ptr<const std::vector<NC_Printer>> List(std::vector<NC_Printer> list) {
  return std::make_shared<std::vector<NC_Printer>>(std::move(list));
}

TEST(Printers, SayHowTheyAre) {
  std::vector<NC_Printer> list(5, Printer("HP 10 with a very long name"));
  strcpy(list[1].name, "hp 2");
  list[1].paused = 1, list[1].state = NC_PRINTER_PRINTING, list[1].jobs = 1200;
  list[1].paper = 0;  // the last sheet is in it
  strcpy(list[2].name, "a");
  list[2].state = NC_PRINTER_PAPER_OUT, list[2].paper = 0, list[2].has_id = 0;
  strcpy(list[2].supplies, "ink: 50%,black:7,a:b:101,bad,:5,cyan:-1");
  strcpy(list[3].name, "b");
  list[3].accepting = 0, list[3].paper = 1234;
  strcpy(list[3].reasons, "disk-full");
  strcpy(list[4].name, "c");
  list[4].paper = 0;
  strcpy(list[0].supplies, "black:10");
  strcpy(list[4].supplies, "black:9");
  Printers printers;
  printers.Show(List(list));
  const std::vector<PrinterRow>& rows = printers.rows();
  ASSERT_EQ(rows.size(), 5u);
  const struct {
    const char *name, *state, *jobs, *paper;
    Tone dot;
  } wanted[] = {
      {"a", "out of paper", "", "0 sheets", Tone::kBad},
      {"b", "stopped, takes no new jobs: the disk is full", "", "1,234 sheets", Tone::kBad},
      {"c", "out of paper, idle", "", "0 sheets", Tone::kBad},
      {"hp 2", "printing, then paused", "1,200 jobs", "0 sheets", Tone::kWarning},
      {"HP 10 with a v…ng name", "idle", "", "", Tone::kGood},
  };
  for (size_t i = 0; i < rows.size(); ++i) {
    EXPECT_EQ(rows[i].short_name, wanted[i].name);
    EXPECT_EQ(rows[i].state, wanted[i].state);
    EXPECT_EQ(rows[i].jobs, wanted[i].jobs);
    EXPECT_EQ(rows[i].paper, wanted[i].paper);
    EXPECT_EQ(rows[i].dot, wanted[i].dot) << i;
  }
  std::string supplies;
  for (const Supply& s : rows[0].supplies)
    supplies += s.name + "=" + std::to_string(s.percent) + " ";
  EXPECT_EQ(supplies, "ink=-1 black=7 a:b=-1 cyan=-1 ");
  ASSERT_EQ(printers.WithoutPaper().size(), 2u);
  EXPECT_EQ(printers.WithoutPaper()[0], &rows[0]);
  printers.Choose("c");
  EXPECT_EQ(printers.WithoutPaper()[0], &rows[2]);
  EXPECT_FALSE(printers.WhyNot(PrinterVerb::kPaperLoaded, rows[0]).empty());
  EXPECT_TRUE(printers.WhyNot(PrinterVerb::kPaperLoaded, rows[1]).empty());
  EXPECT_TRUE(printers.Offers(PrinterVerb::kResume, rows[1], ""));  // it has stopped
  EXPECT_EQ(printers.MoveTargets(rows[3]).size(), 3u);
  EXPECT_EQ(printers.Names()[3], "hp 2");
  NC_Printer stopped = list[3];
  EXPECT_TRUE(IsStopped(stopped));
  stopped.paused = 1;
  EXPECT_FALSE(IsStopped(stopped)) << "somebody has paused it";
  list[1].paused = 0;
  printers.Show(List({list[1]}));
  EXPECT_EQ(printers.rows()[0].dot, Tone::kWarning) << "it prints on its last sheet";
  strcpy(stopped.media, ",A4,,A1");
  EXPECT_EQ(MediaOf(&stopped), (std::vector<std::string>{"A4", "A1"}));
  EXPECT_TRUE(HasMedia(stopped, "A1") && !HasMedia(stopped, "A0"));
  EXPECT_TRUE(HasMedia(stopped, "")) << "its usual ones";
  EXPECT_TRUE(HasMedia(list[0], "A0")) << "its media are not known";
}

TEST(Printers, ChangeTheChosenOneByAChoiceAlone) {
  Printers printers;
  EXPECT_FALSE(printers.WhyNotPrint().empty());
  NC_Printer a = Printer("a"), b = Printer("b");
  printers.Show(List({a, b}));
  EXPECT_EQ(printers.WhyNotPrint(), "No printer is chosen");
  b.is_default = 1;
  printers.Show(List({a, b}));
  EXPECT_EQ(printers.chosen(), "b");
  a.is_default = 1, b.is_default = 0;
  printers.Show(List({a, b}));
  EXPECT_EQ(printers.chosen(), "b");
  printers.Show(List({a}));
  EXPECT_EQ(printers.WhyNotPrint(), "The printer “b” is gone: choose another one");
  printers.Show(List({a, b}));
  EXPECT_EQ(printers.WhyNotPrint(), "");
  printers.Choose("a");
  a.accepting = 0;
  printers.Show(List({a, b}));
  EXPECT_EQ(printers.WhyNotPrint(), "“a” takes no new jobs");
  printers.ForgetServer();
  EXPECT_EQ(printers.chosen(), "a");
  Printers by_default;
  by_default.Show(List({b}));
  b.is_default = 1;
  by_default.Show(List({b}));
  EXPECT_EQ(by_default.chosen(), "b");
  by_default.ForgetServer();
  EXPECT_EQ(by_default.chosen(), "") << "another server has another default";
}

TEST(Notices, KeepErrorsUntilTheyAreRead) {
  Notices notices;
  notices.Tell({Tone::kGood, "sent"}, 1000);
  EXPECT_EQ(notices.Shown(1000).text, "sent");
  EXPECT_EQ(notices.NextChange(1000), 7000);
  EXPECT_EQ(notices.Shown(7000).text, "");
  for (const char* text : {"lost", "lost", "gone"}) notices.Tell({Tone::kBad, text}, 8000);
  notices.Tell({Tone::kWarning, "not moved"}, 8000);
  notices.Tell({Tone::kGood, "cancelled"}, 8000);
  EXPECT_EQ(notices.Passing(9000).text, "cancelled");
  EXPECT_EQ(notices.NextChange(9000), 14000) << "it passes beside errors, too";
  for (const char* text : {"no file is selected", "no job is selected"}) notices.TellReason(text);
  EXPECT_EQ(notices.Shown(1000000).text, "no job is selected (3 more messages)");
  for (int times = 0; times < 2; ++times) notices.PassReason();
  EXPECT_EQ(notices.Shown(1000000).text, "lost (2 times; 2 more messages)");
  notices.Read();
  EXPECT_EQ(notices.Shown(1000000).text, "gone (1 more message)");
  notices.Read();
  EXPECT_EQ(notices.Shown(1000000).tone, Tone::kWarning);
  notices.Read();
  EXPECT_EQ(notices.Shown(9000).text, "") << "a refusal ends what was told before it";
  notices.TellReason("the server is away");
  notices.Tell({Tone::kBad, "the server is away"}, 9000);
  notices.PassReason();
  EXPECT_EQ(notices.Shown(9000).text, "the server is away") << "an error does not pass with it";
  notices.Read();
  // Documents that were not sent for the same reason are read at once, and what is told of one ends
  // with it.
  for (const int n : {1, 2, 3}) notices.TellNotSent(n, "a", "it is not there any more");
  notices.TellNotSent(4, "b", "it is too large");
  notices.TellState("away");
  notices.TellNotSent(5, "c", "the disk is full");
  notices.KeepNotSent({1, 2, 4});
  EXPECT_EQ(notices.Shown(9000).text,
            "2 documents were not sent: they are not there any more (2 more messages)");
  notices.Read();
  EXPECT_EQ(notices.Shown(9000).text, "“b” was not sent: it is too large (1 more message)");
  notices.EndState();
  EXPECT_EQ(notices.errors(), 1);
  notices.KeepNotSent({});
  EXPECT_FALSE(notices.HasError());
  notices.Progress("a", "sending a");
  notices.Progress("b", "sending b");
  notices.Progress("a", "sending a, 10 %");
  EXPECT_EQ(notices.ProgressText(), "sending a, 10 % (and 1 more)");
  notices.Progress("a", "");
  EXPECT_EQ(notices.ProgressText(), "sending b");
}

}  // namespace
}  // namespace console

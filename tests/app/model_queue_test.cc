// The queue's rows, what can be done to them, and what is told of it.
#include <gtest/gtest.h>

#include <cstring>

#include "app/format/texts.h"
#include "app/model/queue_verbs.h"
#include "app/model/queue_words.h"
#include "app/model/server_words.h"

namespace console {
namespace {

// One job for each word "name:state[:printer]"; numbers and ids count from 1 on.
std::shared_ptr<const std::vector<NC_Job>> Jobs(const std::vector<std::string>& words) {
  auto jobs = std::make_shared<std::vector<NC_Job>>();
  for (const std::string& word : words) {
    NC_Job job{};
    const size_t colon = word.find(':');
    strcpy(job.document, word.substr(0, colon).c_str());
    job.state = NC_JobState(std::string("whpond").find(word[colon + 1]));
    strcpy(job.printer, word.size() > colon + 3 ? word.c_str() + colon + 3 : "A");
    strcpy(job.owner, job.document[0] == 'x' ? "ada" : "me");
    job.number = int(jobs->size()) + 1;
    job.id[0] = uint8_t(job.number);
    job.kept = 1;
    job.pages = job.pages_printed = -1;
    job.size = 100 - job.number;
    jobs->push_back(job);
  }
  return jobs;
}

std::string Names(const QueueRows& rows) {
  std::string all;
  for (int row = 0; row < rows.count(); ++row) {
    EXPECT_EQ(rows.RowOf(rows.IdAt(row)), row);
    const NC_Job* job = rows.JobAt(row);
    all += (row ? " " : "") + (job ? std::string(job->document) : rows.OutgoingAt(row)->document);
  }
  return all;
}

QueueId Id(int number) {
  return {0, {uint8_t(number)}};
}

Outgoing Sending(int number, const char* document, OutgoingState state) {
  Outgoing out;
  out.number = number;
  out.document = document;
  out.state = state;
  return out;
}

TEST(QueueRows, AreSortedAndFiltered) {
  QueueRows rows("me");
  EXPECT_EQ(rows.NoteText(), "The queue is not known yet");
  rows.Show(Jobs({"b10:p", "xa:w", "b2:h", "é:n", "c:d"}),
            {Sending(7, "d", OutgoingState::kWaiting)});
  EXPECT_EQ(Names(rows), "d b10 xa b2 é c");
  EXPECT_EQ(rows.Summary(), "1 waiting, 1 printing, 1 held, 1 failed, 1 to be sent");
  // What somebody has to do something about stays.
  const auto within = [&rows](size_t most) {
    return rows.Summary([most](const std::string& text) { return text.size() <= most; });
  };
  EXPECT_EQ(within(47), "1 printing, 1 held, 1 failed, 1 to be sent, …");
  EXPECT_EQ(within(30), "1 held, 1 failed, …");
  EXPECT_EQ(within(3), "1 failed, …");
  const struct {
    QueueOrder order;
    bool descending;
    const char* names;
  } orders[] = {
      {QueueOrder::kPrint, true, "c é b2 xa b10 d"},
      {QueueOrder::kName, false, "b2 b10 c d é xa"},
      {QueueOrder::kState, false, "d b10 xa b2 c é"},
      {QueueOrder::kSize, false, "d c é b2 xa b10"},
      {QueueOrder::kOwner, true, "b10 b2 é c xa d"},
      {QueueOrder::kNumber, false, "b10 xa b2 é c d"},
  };
  for (const auto& o : orders) {
    rows.Sort(o.order, o.descending);
    EXPECT_EQ(Names(rows), o.names);
    EXPECT_FALSE(rows.InPrintOrder());
  }
  rows.Sort(QueueOrder::kPrint, false);
  const struct {
    QueueFilter filter;
    const char* names;
  } filters[] = {
      {{true, QueueFilter::kAll, ""}, "d b10 b2 é c"},
      {{false, QueueFilter::kActive, ""}, "d b10 xa b2"},
      {{true, QueueFilter::kEnded, "E*"}, "é"},
      {{false, QueueFilter::kAll, "ADA,5"}, "xa c"},  // an owner, a number
  };
  for (const auto& f : filters) {
    rows.Filter(f.filter);
    EXPECT_EQ(Names(rows), f.names);
  }
  EXPECT_NE(rows.Summary().find("2 of 6 shown"), std::string::npos);
  rows.Filter({false, QueueFilter::kAll, "nothing"});
  EXPECT_EQ(rows.NoteText(), "The filter hides all 6 jobs");
  EXPECT_TRUE(rows.Has(Id(1)) && rows.JobOf(Id(1)) && rows.RowOf(Id(1)) == -1);
  rows.Expect(Id(6).job);  // it has been sent, the list is on its way
  EXPECT_TRUE(rows.Has(Id(6)));
  rows.Show(Jobs({"a:w", "a:w", "a:w", "a:w", "a:w", "sent:w"}), {});
  rows.Show(Jobs({"a:w"}), {});
  EXPECT_FALSE(rows.Has(Id(6)));
  rows.Filter({});
  rows.Show(Jobs({"a:n"}), {});
  EXPECT_EQ(rows.Summary(), "nothing waits");
  rows.Show(Jobs({}), {});
  EXPECT_EQ(rows.Summary(), "empty");
}

TEST(QueueVerbs, AreTheServersRules) {
  // By state: waiting, held, printing, out of paper, printed, failed.
  const struct {
    Verb verb;
    const char* possible;
  } cases[] = {
      {Verb::kHold, "wpo"},        {Verb::kRelease, "hod"}, {Verb::kPrintAgain, "nd"},
      {Verb::kRemove, "whpond"},   {Verb::kCopies, "whnd"}, {Verb::kMove, "whpond"},
      {Verb::kPriority, "whpond"}, {Verb::kReorder, "wh"},  {Verb::kMedia, "whnd"},
  };
  PendingChanges pending;
  for (const auto& c : cases) {
    for (const char state : std::string("whpond")) {
      QueueRows rows;
      rows.Show(Jobs({std::string("a:") + state}), {});
      const VerbCheck check = CheckVerb(c.verb, rows, {Id(1)}, pending, true);
      EXPECT_EQ(check.possible(), strchr(c.possible, state) != nullptr)
          << VerbText(c.verb) << " " << state;
      EXPECT_NE(check.possible(), !check.why_not.empty());
    }
  }
}

TEST(QueueVerbs, SayWhyNot) {
  auto jobs = *Jobs({"a:n", "b:w", "c:p"});
  jobs[0].kept = 0;
  QueueRows rows;
  rows.Show(std::make_shared<std::vector<NC_Job>>(jobs),
            {Sending(1, "d", OutgoingState::kFailed), Sending(2, "e", OutgoingState::kSending)});
  PendingChanges pending;
  auto why = [&](Verb verb, const QueueId& id, bool connected = true) {
    return CheckVerb(verb, rows, {id}, pending, connected).why_not;
  };
  EXPECT_EQ(why(Verb::kPrintAgain, Id(1)), "The server no longer has the job's document");
  EXPECT_EQ(why(Verb::kCopies, Id(3)), "The job is at the printer");
  EXPECT_EQ(why(Verb::kHold, Id(2), false), "The server is away");
  EXPECT_EQ(why(Verb::kHold, Id(9)), "The job is not in the queue any more");
  EXPECT_EQ(why(Verb::kRelease, {1, {}}, false), "");  // sends it again
  for (const Verb verb : {Verb::kHold, Verb::kRelease})
    EXPECT_EQ(why(verb, {2, {}}), "The document has not been sent yet");
  // Of several, a reason that all of them share.
  const std::vector<QueueId> printed_and_gone = {Id(1), Id(9)}, gone = {Id(8), Id(9)};
  EXPECT_EQ(CheckVerb(Verb::kHold, rows, gone, pending, true).why_not,
            "The jobs are not in the queue any more");
  EXPECT_EQ(CheckVerb(Verb::kHold, rows, printed_and_gone, pending, true).why_not,
            "None of the jobs can be held");
  const VerbCheck hold = CheckVerb(Verb::kHold, rows, {Id(1), {1, {}}, Id(3)}, pending, true);
  EXPECT_EQ(hold.left_out, 2);
  EXPECT_EQ(hold.why_left_out, "The job is printed");
  const VerbCheck release = CheckVerb(Verb::kRelease, rows, {Id(2), Id(3), {1, {}}}, pending, true);
  EXPECT_TRUE(release.possible());
  EXPECT_EQ(release.left_out, 0) << "the others are so already";
  // Those for which it is possible are taken; none is left out only because it is being changed.
  auto hold_all = [&] {
    return CheckVerb(Verb::kHold, rows, {Id(1), Id(2), Id(3)}, pending, true);
  };
  EXPECT_EQ(hold_all().on, (std::vector<QueueId>{Id(2), Id(3)}));
  pending.Begin(Id(2).job, Verb::kRemove, 0);
  EXPECT_EQ(why(Verb::kHold, Id(2)), "The job is still being changed");
  EXPECT_EQ(why(Verb::kHold, Id(2), false), "The server is away");
  EXPECT_EQ(hold_all().why_not, "1 job is still being changed");
  EXPECT_FALSE(hold_all().possible());
  // One that somebody else has removed is told by its name.
  jobs.erase(jobs.begin() + 1);
  rows.Show(std::make_shared<std::vector<NC_Job>>(jobs), {});
  EXPECT_EQ(why(Verb::kHold, Id(2)), "“b” is not in the queue any more");
}

TEST(Reordering, AsksForOneStepForEachJob) {
  QueueRows rows;
  const char* const kBehind =
      "A job is put before another one, never behind the last: move the others up instead";
  rows.Show(Jobs({"a:p", "b:w", "c:w:B", "d:h", "e:w", "f:n"}), {});
  const struct {
    std::vector<int> dragged;
    int gap;
    std::string steps;
    const char* why;
  } cases[] = {
      {{5}, 0, "5<2", ""},  // the one at the printer stays in front
      {{5}, 2, "5<4", ""},  // the other printer's job is not in the way
      {{4}, 4, "", ""},     // it stands there
      {{2, 4}, 4, "", ""},  // so do these
      {{2}, 4, "2<5", ""},    {{2, 5}, 3, "5<4", ""}, {{4, 5}, 1, "4<2 5<2", ""},
      {{2}, 6, "", kBehind},  {{4}, 6, "5<4", ""},  // the last one goes up instead
      {{5}, 6, "", ""},       {{3}, 0, "", ""},       {{1}, 6, "", "The job is at the printer"},
      {{6, 5}, 1, "5<2", ""},
  };
  for (const auto& c : cases) {
    std::vector<QueueId> dragged;
    for (const int number : c.dragged) dragged.push_back(Id(number));
    std::string why, steps;
    for (const Reordering& r : PlanReordering(rows, dragged, c.gap, &why))
      steps +=
          (steps.empty() ? "" : " ") + std::to_string(r.job[0]) + "<" + std::to_string(r.before[0]);
    EXPECT_EQ(steps, c.steps) << c.dragged[0] << " to " << c.gap;
    EXPECT_EQ(why, c.why) << c.dragged[0] << " to " << c.gap;
  }
  rows.Sort(QueueOrder::kName, false);
  std::string why;
  EXPECT_TRUE(PlanReordering(rows, {Id(5)}, 0, &why).empty());
  EXPECT_FALSE(why.empty());
}

TEST(PendingChanges, EndWithTheServersTruth) {
  PendingChanges pending;
  const JobId a = Id(1).job, b = Id(2).job, c = Id(3).job;
  for (const JobId& id : {a, b, c}) pending.Begin(id, Verb::kRemove, 1000);
  pending.Answered(a, NC_STATUS_DONE, 1100);
  pending.Answered(b, NC_STATUS_STORAGE, 1100);
  EXPECT_TRUE(pending.Of(a) && !pending.Of(b));
  EXPECT_FALSE(pending.ListCame(1099));  // it was asked for before the answer
  EXPECT_TRUE(pending.ListCame(1100));
  EXPECT_TRUE(!pending.Of(a) && pending.Of(c) == Verb::kRemove);
  EXPECT_EQ(pending.Expire(30999), 0);
  EXPECT_EQ(pending.Expire(31000), 1);
  for (const JobId& id : {a, b}) pending.Begin(id, Verb::kHold, 0);
  pending.Answered(b, NC_STATUS_DONE, 10);
  pending.Begin(a, Verb::kRelease, 0);
  EXPECT_EQ(pending.Unanswered(), 2);
  pending.Answered(a, NC_STATUS_DONE, 10);
  EXPECT_EQ(pending.Unanswered(), 1)
      << "the second change of that job is not answered by the first";
  EXPECT_EQ(pending.Lose(), 1) << "what was answered only waits for the list";
  EXPECT_TRUE(!pending.Of(a) && pending.Of(b));
}

TEST(QueueWords, TellStateProgressAndAnswers) {
  EXPECT_EQ(UnsentText({1, 0}), "1 document has not been sent");
  EXPECT_EQ(UnsentText({0, 1200}), "1,200 documents could not be sent");
  EXPECT_EQ(UnsentText({2, 1}), "2 documents have not been sent, 1 could not be sent");
  EXPECT_EQ(UnsentText({0, 0, 37}), "37 changes of jobs have not been made");
  EXPECT_EQ(UnsentText({1, 1, 1}), "2 documents and 1 change have not reached the server");
  EXPECT_EQ(TakenBackText({3, 2, 0, 0}), "3 of 5 documents were taken back; 2 had been sent");
  EXPECT_EQ(TakenBackText({1, 0, 1, 1}),
            "1 of 3 documents was taken back; 1 is being sent, 1 could not be sent");
  auto jobs = *Jobs({"a:p", "a:w", "a:d", "a:w"});
  jobs[0].total = 4200000, jobs[0].printed = 2100000;
  strcpy(jobs[1].reasons, "printer-paused,new-keyword");
  strcpy(jobs[2].text, "paper jam");
  EXPECT_EQ(WordsOfJob(jobs[0], {}).progress.text, "2.1 of 4.2 MB");
  jobs[0].pages = 1200, jobs[0].pages_printed = 3;
  EXPECT_EQ(WordsOfJob(jobs[0], {}).progress.text, "3 of 1,200 pages");
  EXPECT_EQ(WordsOfJob(jobs[0], Verb::kRemove).text, "removing…");
  jobs[0].state = NC_JOB_PAPER_OUT;
  EXPECT_EQ(WordsOfJob(jobs[0], {}).progress.text, "3 of 1,200, out of paper");
  EXPECT_EQ(WordsOfJob(jobs[1], {}).text, "waiting: the printer is paused, new keyword");
  EXPECT_EQ(WordsOfJob(jobs[1], {}).tone, Tone::kWarning);
  EXPECT_EQ(WordsOfJob(jobs[2], {}).text, "failed: paper jam");
  EXPECT_EQ(WordsOfJob(jobs[3], {}).tone, Tone::kPlain);
  // What has become of a job.
  jobs[2].submitted = 1000, jobs[2].started = 2000, jobs[2].since = 3000;
  std::string history;
  for (const Fact& fact : FactsOfJob(jobs[2], 5000, false))
    if (fact.value == DayText(1000, 5000) || fact.value == DayText(2000, 5000) ||
        fact.value == DayText(3000, 5000))
      history += fact.name + " ";
  EXPECT_EQ(history, "Submitted Begun Failed ");
  strcpy(jobs[1].media, "A1");
  for (const bool usual : {false, true})
    for (const Fact& fact : FactsOfJob(jobs[1], 5000, usual))
      EXPECT_TRUE(fact.name != "Media" || fact.value == (usual ? "Usual, not A1" : "A1"));
  EXPECT_EQ(OldListText(100000, 100060).find("The list is as it was at "), 0u);
  EXPECT_EQ(OldListText(100000, 1000000).find("The list is as it was on "), 0u);
  ChangeOutcome moved{Verb::kMove, 2, 0, "", "Proof", "A1", {}, ""};
  EXPECT_EQ(OutcomeMessage(moved).text,
            "Moved to “Proof”: 2 jobs. “Proof” has no A1: its usual media are used");
  moved.lacks = "", moved.was_on = "Wide";
  EXPECT_EQ(OutcomeMessage(moved).text,
            "Moved to “Proof”, though somebody else had moved it to “Wide”: 2 jobs");
  EXPECT_EQ(OutcomeMessage(moved).tone, Tone::kWarning);
  ChangeOutcome placed{Verb::kReorder, 3, 0, "a", "", "", {}, ""};
  placed.with_new_priority = 2, placed.new_priority = 75;
  EXPECT_EQ(OutcomeMessage(placed).text,
            "Moved in the queue: 3 jobs, 2 of them with priority 75 now");
  placed = {Verb::kReorder, 1, 0, "a", "", "", {}, "", 1, 75, "b"};
  EXPECT_EQ(OutcomeMessage(placed).text, "Moved in the queue: “a”; “b” has priority 75 now");
  placed.done = placed.with_new_priority = 2;
  EXPECT_EQ(OutcomeMessage(placed).text, "Moved in the queue: 2 jobs; 2 jobs have priority 75 now");
  EXPECT_EQ(OrderedText("sent", "to", {3, "", "Wide", 2, true}),
            "3 documents sent to “Wide”, 2 copies each, held");
  const ChangeOutcome refused{Verb::kHold, 1, 3, "a", "", "", {Tone::kBad, "“b” was not held"}, ""};
  EXPECT_EQ(OutcomeMessage(refused).text, "Held: “a”; “b” was not held; 2 more jobs were refused");
  EXPECT_EQ(ProgressText({Verb::kHold, 3, 9}), "");
  EXPECT_EQ(ProgressText({Verb::kHold, 3, 10}), "Holding: 3 of 10 jobs");
  EXPECT_EQ(AwayText("ada", "does not answer", 0), "ada does not answer. Trying again…");
  Outgoing out = Sending(1, "a", OutgoingState::kSending);
  out.total = 100, out.silent_s = 7;
  EXPECT_EQ(WordsOfOutgoing(out).ShownText(), "its file does not answer, for 7 s");
  QueueRows rows;
  rows.Show(Jobs({"a:p", "a:w"}), {out, Sending(2, "b", OutgoingState::kFailed)});
  EXPECT_EQ(FactsOfSeveral(rows, {Id(1), Id(2), {1, {}}, {2, {}}})[1].value,
            "1 waiting, 1 printing, 1 on the way, 1 not sent");
  std::string why;
  PlanReordering(rows, {{2, {}}}, 0, &why);
  EXPECT_EQ(why, "The document could not be sent");
  out = Sending(1, "a", OutgoingState::kWaiting);
  out.media = "A1", out.copies = 3, out.priority = 70;
  std::string facts;
  for (const Fact& fact : FactsOfOutgoing(out, 5000)) facts += fact.name + " " + fact.value + " ";
  EXPECT_NE(facts.find("Media A1 Copies 3 Priority 70"), std::string::npos) << facts;
  // What another console did first is told, and is no error.
  for (const int status : {NC_STATUS_UNKNOWN_ID, NC_STATUS_WRONG_STATE})
    EXPECT_EQ(AnswerMessage(Verb::kMove, status, "a").tone, Tone::kWarning);
  EXPECT_EQ(AnswerMessage(Verb::kRemove, NC_STATUS_UNKNOWN_ID, "a.pdf").text,
            "“a.pdf” had been removed already, by somebody else");
  EXPECT_EQ(AnswerMessage(Verb::kHold, -1, "a").tone, Tone::kBad);
}

TEST(Removal, AsksWhenItConcernsOthers) {
  QueueRows rows("me");
  rows.Show(Jobs({"a:p", "b:w", "xc:w", "d:h", "f:p", "f:w"}),
            {Sending(1, "e", OutgoingState::kSending), Sending(2, "g", OutgoingState::kFailed)});
  const struct {
    std::vector<QueueId> ids;
    const char* text;
  } cases[] = {
      {{Id(2)}, ""},
      {{{1, {}}}, ""},
      {{Id(2), {1, {}}}, "Remove 2 jobs?"},
      {{{1, {}}, {2, {}}}, "Remove 2 documents? They are not at the server."},
      {{Id(1)}, "Remove “a”? It is at the printer."},
      {{Id(3)}, "Remove “xc”? It belongs to “ada”."},
      {{Id(5)}, "Remove “f” (job 5)? It is at the printer."},
      {{Id(2), Id(4)}, "Remove 2 jobs?"},
      {{Id(1), Id(3)}, "Remove 2 jobs? 1 is at the printer. 1 is not yours."},
  };
  for (const auto& c : cases) {
    const std::optional<Question> question = RemovalQuestion(rows, c.ids);
    EXPECT_EQ(question ? question->text : "", c.text);
    EXPECT_TRUE(!question || question->harmless == "Keep");
  }
}

}  // namespace
}  // namespace console

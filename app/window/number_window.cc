// The small window that asks for a priority, or for copies, which the menu's short list lacks. It
// keeps the jobs that it was opened for, whatever is selected by then; without any it is about the
// next job.
#include <string>
#include <vector>

#include "app/format/words.h"
#include "app/look/controls.h"
#include "app/look/hits.h"
#include "app/model/print_choice.h"
#include "app/window/form.h"
#include "app/window/print_options.h"
#include "app/window/queue_commands.h"

namespace console {
namespace {

enum Id { kBox = 1, kCancel, kSet };

constexpr int kWidth = 340, kHeight = 124, kEdge = 20;
constexpr Area kText{kEdge, 20, kWidth - 2 * kEdge, 18};
constexpr Area kBoxArea{kEdge, 46, 64, 26};
constexpr Area kRange{kEdge + 74, 46, 200, 26};
constexpr int kButtonTop = 84;

struct NumberWindow {
  Console* console = nullptr;
  XwWindow* window = nullptr;
  XwWindow *box = nullptr, *set = nullptr;
  Verb verb = Verb::kPriority;
  std::vector<QueueId> jobs;
  std::string text;
  Hits hits;
};
NumberWindow* g_window;

int Most(Verb verb) {
  return verb == Verb::kPriority ? kMostPriority : kMostCopies;
}

// 0 when the box holds none that counts.
int Typed(const NumberWindow* w) {
  return NumberIn(w->box, Most(w->verb));
}

void Say(NumberWindow* w, const Area& a, const std::string& text, int32_t ink) {
  XwClear(a.x, a.y, a.w, a.h);
  DrawLabel(TheStyle().normal, Align::kLeft, a, text, ink);
  w->hits.Cover(a, {XWA_LABEL, 0, text, ""});
}

void Draw(NumberWindow* w) {
  const Style& l = TheStyle();
  XwPush(w->window);
  w->hits.Begin();
  Say(w, kText, w->text, l.ink);
  const std::string range = "1 to " + NumberText(Most(w->verb)) +
                            (w->verb == Verb::kPriority ? ", the highest first" : "");
  Say(w, kRange, range, Typed(w) ? l.second : l.bad);
  w->hits.End();
  XwPop();
}

void Update(NumberWindow* w) {
  EnableControl(w->set, Typed(w) > 0);
  Draw(w);
}

void Close() {
  NumberWindow* w = g_window;
  if (!w) return;
  g_window = nullptr;
  CloseSecond(w->window);
  delete w;
}

void Set(NumberWindow* w) {
  const int number = Typed(w);
  if (!number) return GoToBox(w->box);
  Console* c = w->console;
  const std::vector<QueueId> jobs = std::move(w->jobs);
  const Verb verb = w->verb;
  Close();
  if (jobs.empty())
    SetNextCopies(c, number);
  else
    ChangeThese(c, jobs, {verb, number});
  DrawConsole(c);
}

int Handle(int type) {
  NumberWindow* w = g_window;
  if (!w) return 0;
  switch (FormEventOf(type, kSet, kCancel)) {
    case FormEvent::kDraw:
      Draw(w);
      break;
    case FormEvent::kEdited:
      Update(w);
      break;
    case FormEvent::kAccept:
      Set(w);
      break;
    case FormEvent::kCancel:
      Close();
      break;
    case FormEvent::kOther:
      break;
  }
  return 0;
}

void Make(NumberWindow* w) {
  w->box = XwEditBox(w->window, "", kBox, 0, 0, 9, 9, XWC_ENABLED | XWC_VISIBLE | XWC_DROPS_FOCUS);
  PlaceControl(w->box, kBoxArea);
  w->set = MakeFormButtons(w->window, "Set", kSet, kCancel, kWidth - kEdge, kButtonTop).accept;
  XwSetDragHandler(w->window, 0, nullptr);
  XwSetActivationHandler(w->window, [](int on) {
    if (g_window) NoteActivity(g_window->window, on != 0);
  });
}

// "“notes.txt”", "3 jobs".
std::string JobsText(const Console* c, const std::vector<QueueId>& jobs) {
  const NC_Job* job = jobs.size() == 1 ? c->queue.rows.JobOf(jobs[0]) : nullptr;
  return job ? Quoted(job->document) : NumberOf(int64_t(jobs.size()), "job", "jobs");
}

void Open(Console* c, Verb verb, std::vector<QueueId> jobs, const std::string& of, int number) {
  Close();
  XwWindow* window = XwCreate(kFormStyle, 0, 0, kWidth, kHeight, Handle);
  if (!window) return;
  NumberWindow* w = g_window = new NumberWindow;
  w->console = c;
  w->window = window;
  w->verb = verb;
  w->jobs = std::move(jobs);
  const std::string name = verb == Verb::kPriority ? "Priority" : "Copies";
  w->text = name + " of " + of;
  XwSetTextUtf8(window, name.c_str());
  XwSetGround(window, nullptr, 2);
  Make(w);
  XwDescribeControl(w->box, name.c_str());
  if (number > 0) XwSetTextUtf8(w->box, std::to_string(number).c_str());
  Update(w);
  XwCenter(window, c->window);
  XwShow(window, 1);
  XwSetFocus(window);
  GoToBox(w->box);
  NoteActivity(window, true);
}

}  // namespace

void AskNumber(Console* c, Verb verb) {
  const VerbCheck check = c->queue.Check(verb);
  if (!check.possible()) return;
  const NC_Job* job = c->queue.rows.JobOf(check.on[0]);
  const int number = !job ? 0 : verb == Verb::kPriority ? job->priority : job->copies;
  Open(c, verb, check.on, JobsText(c, check.on), number);
}

void AskNextCopies(Console* c) {
  Open(c, Verb::kCopies, {}, "the next job", c->choice.copies);
}

void CloseNumberWindow() {
  Close();
}

}  // namespace console

#include "platform/input/record.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <vector>

#include "platform/display/window.h"
#include "platform/events/queue.h"
#include "platform/input/record_line.h"
#include "platform/input/translate.h"

namespace platform {

JournalMode journal_mode = JournalMode::kNone;

namespace {

constexpr char kHeading[] = "xw-record 1\n";
// Written with six digits.
constexpr double kDigit = 1e-6;
// Seconds that the replay waits for a take beyond its time.
constexpr double kTakePatience = 20;
// Beyond what a real clock's waits miss.
constexpr double kLate = 0.005;

struct Journal {
  double start = 0;
  FILE* file = nullptr;  // recording
  std::vector<JournalLine> lines;
  size_t next = 0;    // to be played
  size_t played = 0;  // events that were played and may still be queued
  std::string program, detail;
  // What was asked for at this moment, and how often.
  double asked_at = -1;
  std::map<std::string, unsigned> asked;
};
Journal& J() {
  static auto* journal = new Journal;
  return *journal;
}

bool Fail(const char* file, const char* why) {
  fprintf(stderr, "%s: %s: %s\n", J().program.c_str(), file, why);
  return false;
}

bool ReadRecording(const char* name) {
  FILE* f = fopen(name, "re");
  if (!f) return Fail(name, strerror(errno));
  char* text = nullptr;
  size_t size = 0;
  bool good = getline(&text, &size, f) > 0 && !strcmp(text, kHeading);
  if (!good) Fail(name, "is no recording");
  for (int number = 2; good && getline(&text, &size, f) > 0; ++number) {
    text[strcspn(text, "\n")] = 0;
    JournalLine line;
    if (*text == 0 || *text == '#') continue;
    good =
        ParseJournalLine(text, &line) && (J().lines.empty() || line.time >= J().lines.back().time);
    if (!good) Fail(name, ("line " + std::to_string(number) + " is faulty").c_str());
    J().lines.push_back(line);
  }
  free(text);
  fclose(f);
  return good;
}

WindowRef WindowOfNumber(unsigned number) {
  for (WindowRef w : WindowList())
    if (w->number == number) return w;
  return nullptr;
}

void Write(JournalLine line) {
  Journal& j = J();
  const double now = GetCurrentEventTime();
  line.time = now - j.start;
  line.after_timers = TimersFiredAt() == now;
  if (line.raw.time > 0) line.raw.time -= j.start;
  fprintf(j.file, "%s\n", FormatJournalLine(line).c_str());
  // A recording is read when the program has crashed.
  fflush(j.file);
}

bool TimeHasCome(const JournalLine& line, double now) {
  return line.time <= now - J().start + kDigit;
}

bool TimeIsOver(const JournalLine& line, double now) {
  return line.time < now - J().start - kDigit;
}

// Its time has come, and the timers that fired before it have fired.
bool IsDue(const JournalLine& line, double now) {
  if (!TimeHasCome(line, now)) return false;
  const double timer = line.after_timers ? NextTimer(now) : -1;
  return timer < 0 || timer > kDigit;
}

void Play(const JournalLine& line) {
  RawEvent raw = line.raw;
  raw.time = line.raw.time + J().start;
  raw.window = line.window ? WindowOfNumber(line.window) : nullptr;
  raw.under = line.under < 0 ? raw.window : WindowOfNumber(unsigned(line.under));
  if (raw.type == RawEvent::kOpenFile) raw.path = line.path.c_str();
  TranslateRawEvent(raw);
}

// How often it was asked for at this moment before. Where time is stepped, a program asks more than
// once at one moment, and what has not come at the first may have come at the next.
unsigned CountAsking(const char* what, double now) {
  Journal& j = J();
  if (j.asked_at != now) j.asked.clear();
  j.asked_at = now;
  return j.asked[what]++;
}

// Nobody else could end it: on a display whose time is stepped nothing comes any more.
void EndReplay() {
  journal_mode = JournalMode::kNone;
  if (!input_hints.stepped) return;
  RawEvent quit;
  quit.type = RawEvent::kQuit;
  TranslateRawEvent(quit);
}

}  // namespace

bool OpenJournal(const char* program) {
  Journal& j = J();
  j = Journal();
  j.program = program ? program : "";
  j.start = GetCurrentEventTime();
  const char* replay = getenv("XW_REPLAY");
  if (replay && *replay) {
    if (!ReadRecording(replay)) return false;
    journal_mode = JournalMode::kReplaying;
    return true;
  }
  const char* record = getenv("XW_RECORD");
  if (!record || !*record) return true;
  j.file = fopen(record, "we");
  if (!j.file) return Fail(record, strerror(errno));
  fputs(kHeading, j.file);
  journal_mode = JournalMode::kRecording;
  return true;
}

void CloseJournal() {
  if (J().file) fclose(J().file);
  J() = Journal();
  journal_mode = JournalMode::kNone;
}

void TakeReport(const RawEvent& raw) {
  if (journal_mode == JournalMode::kNone || IsDisplaysOwn(raw.type)) {
    TranslateRawEvent(raw);
    return;
  }
  if (journal_mode == JournalMode::kReplaying) {
    // A replay can be ended from outside.
    if (raw.type == RawEvent::kQuit) TranslateRawEvent(raw);
    return;
  }
  JournalLine line;
  line.raw = raw;
  if (raw.window) {
    if (!IsValidWindow(raw.window)) return;
    line.window = raw.window->number;
    const bool button = raw.type == RawEvent::kPress || raw.type == RawEvent::kRelease;
    if (button && raw.under != raw.window)
      line.under = IsValidWindow(raw.under) ? raw.under->number : 0;
  }
  if (raw.path) line.path = raw.path;
  Write(line);
  TranslateRawEvent(raw);
}

void ReplayDue() {
  Journal& j = J();
  const double now = GetCurrentEventTime();
  double group = -1;
  while (j.next < j.lines.size() && IsDue(j.lines[j.next], now)) {
    const JournalLine& line = j.lines[j.next];
    // After a take that was waited for, what came together comes together.
    const bool late = now - j.start > line.time + kLate;
    if (late && group != line.time && (group >= 0 || !main_event_queue.empty())) return;
    group = line.time;
    if (line.take()) {
      if (now - j.start < line.time + kTakePatience) return;
      Fail("replay", ("nobody took up " + line.what).c_str());
    }
    ++j.next;
    Play(line);
    j.played = main_event_queue.size();
  }
  if (j.next == j.lines.size()) EndReplay();
}

bool ReplayHoldsTimers() {
  Journal& j = J();
  if (input_hints.stepped || main_event_queue.empty()) j.played = 0;
  if (j.played == 0) return false;
  --j.played;
  return true;
}

double NextReplay(double now) {
  const Journal& j = J();
  if (journal_mode != JournalMode::kReplaying || j.next >= j.lines.size()) return -1;
  const JournalLine& line = j.lines[j.next];
  if (line.take()) return line.time + kTakePatience - (now - j.start);
  // What is due and not played waits for a timer.
  return TimeHasCome(line, now) ? -1 : line.time - (now - j.start);
}

const char* TakeUp(const char* what, const char* detail) {
  Journal& j = J();
  if (journal_mode == JournalMode::kNone) return detail;
  const double now = GetCurrentEventTime();
  const unsigned asked = CountAsking(what, now);
  if (journal_mode == JournalMode::kRecording) {
    JournalLine line;
    line.what = what;
    line.asked = asked;
    if (detail) line.detail = detail;
    if (detail) Write(line);
    return detail;
  }
  if (j.next >= j.lines.size()) return nullptr;
  const JournalLine& line = j.lines[j.next];
  if (line.what != what || !TimeHasCome(line, now)) return nullptr;
  if (asked < line.asked && !TimeIsOver(line, now)) return nullptr;
  j.detail = line.detail;
  ++j.next;
  return j.detail.c_str();
}

}  // namespace platform

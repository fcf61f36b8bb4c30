#include "platform/input/record.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <vector>

#include "platform/events/clock.h"
#include "platform/events/queue.h"
#include "platform/events/timers.h"
#include "platform/input/record_line.h"
#include "platform/input/results.h"
#include "platform/input/translate.h"
#include "platform/windows/internal.h"

namespace platform {

RecordMode record_mode = RecordMode::kNone;

namespace {

constexpr char kHeading[] = "xw-record 1\n";
// Written with six digits.
constexpr double kDigit = 1e-6;
// Seconds between two checks whether an awaited result can still come.
constexpr double kAwaitedLook = 0.1;
// Bytes of a text that another program has given.
constexpr size_t kLongestText = 1 << 20;
// Beyond what a real clock's waits miss.
constexpr double kLate = 0.005;

struct Recording {
  double start = 0;
  FILE* file = nullptr;  // recording
  std::vector<RecordLine> lines;
  size_t next = 0;      // to be played
  size_t played = 0;    // events that were played and may still be queued
  bool behind = false;  // the last line was played late
  // Since when results are awaited, real seconds, and the line before the first of them.
  double awaited_since = -1, awaited_after = 0;
  std::string program;
};
Recording& Current() {
  static auto* recording = new Recording;
  return *recording;
}

bool Fail(const char* file, const char* why) {
  fprintf(stderr, "%s: %s: %s\n", Current().program.c_str(), file, why);
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
    RecordLine line;
    if (*text == 0 || *text == '#') continue;
    good = ParseRecordLine(text, &line) &&
           (Current().lines.empty() || line.time >= Current().lines.back().time);
    if (!good) Fail(name, ("line " + std::to_string(number) + " is faulty").c_str());
    Current().lines.push_back(line);
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

void Write(RecordLine line) {
  Recording& r = Current();
  const double now = GetCurrentEventTime();
  line.time = now - r.start;
  line.after_timers = TimersFiredAt() == now;
  if (line.raw.time > 0) line.raw.time -= r.start;
  fprintf(r.file, "%s\n", FormatRecordLine(line).c_str());
  // Written at once, so that the recording is complete when the program crashes.
  fflush(r.file);
}

bool TimeHasCome(const RecordLine& line, double now) {
  return line.time <= now - Current().start + kDigit;
}

// Whether its time has come and the timers that fired before it have fired.
bool IsDue(const RecordLine& line, double now) {
  if (!TimeHasCome(line, now)) return false;
  const double timer = line.after_timers ? NextTimer(now) : -1;
  return timer < 0 || timer > kDigit;
}

void Play(const RecordLine& line) {
  RawEvent raw = line.raw;
  raw.time = line.raw.time + Current().start;
  raw.window = line.window ? WindowOfNumber(line.window) : nullptr;
  raw.under = line.under < 0 ? raw.window : WindowOfNumber(unsigned(line.under));
  std::string text = line.path;
  if (raw.type == RawEvent::kOpenFile) raw.text = text.c_str();
  if (line.has_text) raw.arrived = &text;
  TranslateRawEvent(raw);
}

double RealSeconds() {
  timespec t;
  clock_gettime(CLOCK_MONOTONIC, &t);
  return double(t.tv_sec) + double(t.tv_nsec) * 1e-9;
}

// Whether the replay goes on without the result of its next line.
bool PassesOver(const RecordLine& line) {
  Recording& r = Current();
  const double now = RealSeconds();
  if (r.awaited_since < 0) {
    r.awaited_since = now;
    r.awaited_after = r.next > 0 ? r.lines[r.next - 1].time : 0;
  }
  return ShouldSkipResult(line, r.awaited_after, now - r.awaited_since);
}

// With a stepped clock no further input can come, so the program is also asked to quit.
void EndReplay() {
  record_mode = RecordMode::kNone;
  KeepResults(false);
  if (!intake_hints.stepped) return;
  RawEvent quit;
  quit.type = RawEvent::kQuit;
  TranslateRawEvent(quit);
}

}  // namespace

bool OpenRecord(const char* program) {
  Recording& r = Current();
  r = Recording();
  r.program = program ? program : "";
  r.start = GetCurrentEventTime();
  const char* replay = getenv("XW_REPLAY");
  if (replay && *replay) {
    if (!ReadRecording(replay)) return false;
    record_mode = RecordMode::kReplaying;
    KeepResults(true);
    return true;
  }
  const char* record = getenv("XW_RECORD");
  if (!record || !*record) return true;
  r.file = fopen(record, "we");
  if (!r.file) return Fail(record, strerror(errno));
  fputs(kHeading, r.file);
  record_mode = RecordMode::kRecording;
  return true;
}

void CloseRecord() {
  if (Current().file) fclose(Current().file);
  Current() = Recording();
  record_mode = RecordMode::kNone;
  KeepResults(false);
}

void TakeReport(const RawEvent& raw) {
  if (record_mode == RecordMode::kNone || IsDisplaysOwn(raw.type)) {
    TranslateRawEvent(raw);
    return;
  }
  if (record_mode == RecordMode::kReplaying) {
    // A replay can be ended from outside.
    if (raw.type == RawEvent::kQuit) TranslateRawEvent(raw);
    return;
  }
  RecordLine line;
  line.raw = raw;
  const bool live = IsValidWindow(raw.window);
  if (!live && NamesWindow(raw.type) && !IsRelease(raw.type)) return;
  if (live) {
    line.window = raw.window->number;
    const bool button = raw.type == RawEvent::kPress || raw.type == RawEvent::kRelease;
    if (button && raw.under != raw.window)
      line.under = IsValidWindow(raw.under) ? raw.under->number : 0;
  }
  if (raw.text) line.path = raw.text;
  line.has_text = raw.arrived != nullptr;
  if (raw.arrived) line.path = *raw.arrived;
  // A text that is too long for a line is left out of the recording.
  if (line.path.size() <= kLongestText) Write(line);
  TranslateRawEvent(raw);
}

void ReplayDue() {
  Recording& r = Current();
  const double now = GetCurrentEventTime();
  double group = -1;
  while (r.next < r.lines.size() && IsDue(r.lines[r.next], now)) {
    const RecordLine& line = r.lines[r.next];
    // Behind a result that came late, or on a busy machine, lines of one time are played together,
    // and what they led to is done before the next: their places depend on it.
    const bool late = now - r.start > line.time + kLate;
    const bool waits = (late || r.behind) && !main_event_queue.empty();
    if (group != line.time && (group >= 0 || waits)) return;
    group = line.time;
    r.behind = late;
    if (line.result) {
      if (!PassesOver(line)) return;
      ++r.next;
      continue;
    }
    r.awaited_since = -1;
    ++r.next;
    Play(line);
    r.played = main_event_queue.size();
  }
  if (r.next == r.lines.size()) EndReplay();
}

bool ReplayHoldsTimers() {
  Recording& r = Current();
  if (intake_hints.stepped && Replaying() && AwaitedResult()) return true;
  if (intake_hints.stepped || main_event_queue.empty()) r.played = 0;
  if (r.played == 0) return false;
  --r.played;
  return true;
}

double NextReplay(double now) {
  const Recording& r = Current();
  if (record_mode != RecordMode::kReplaying || r.next >= r.lines.size()) return -1;
  const RecordLine& line = r.lines[r.next];
  if (line.result && IsDue(line, now)) return kAwaitedLook;
  if (IsDue(line, now)) return 0;
  // What has its time and is not due waits for a timer.
  return TimeHasCome(line, now) ? -1 : line.time - (now - r.start);
}

void RecordResult(const std::string& kind, const std::string& detail) {
  RecordLine line;
  line.result = true;
  line.what = kind;
  line.detail = detail;
  Write(line);
}

const RecordLine* AwaitedResult() {
  const Recording& r = Current();
  if (r.next >= r.lines.size()) return nullptr;
  const RecordLine& line = r.lines[r.next];
  return line.result && IsDue(line, GetCurrentEventTime()) ? &line : nullptr;
}

void ResultTaken() {
  ++Current().next;
  Current().awaited_since = -1;
}

double LaterResult(const std::string& kind, const std::string& detail) {
  const Recording& r = Current();
  for (size_t i = r.next + 1; i < r.lines.size(); ++i) {
    const RecordLine& line = r.lines[i];
    if (line.result && line.what == kind && line.detail == detail) return line.time;
  }
  return -1;
}

}  // namespace platform

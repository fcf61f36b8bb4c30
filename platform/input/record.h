// Record and replay of a session's raw input.
//
// XW_RECORD=file writes each report of the display and each request of the desktop as a line, when
// it is taken in. XW_REPLAY=file plays such a file back: the reports come at their times, and the
// display's own input is ignored, but for what it needs to show its windows. Timers, redraws and
// posted events are not in the file: they arise again.
//
//     xw-record 1
//     0.350000 press w1 x=20 y=54 rx=50 ry=134 button=1 at=0.349
//     0.351200 configure w1 rx=30 ry=80 w=800 h=600
//     0.400000 result server 51f0 quiet 0
//     0.600000 result folder 3
//     1.200000 open /home/mia/report.pdf
//     1.300000 text 1 :what another program had on the clipboard
//
// The first column is when it was taken in, in seconds since the session began; a '+' behind it
// says that timers had fired at that moment already. wN is the Nth window that was made. What is 0
// is left out; `at` is the event's own time where it differs, `under` the number of the window
// under the pointer where that is another one, 0 for none, `char` the code point that a key typed
// and `typed` its text as hexadecimal bytes where that is more than one character. A "result" is
// where the result of a background task was taken up (results.h): its kind and its detail; what
// follows waits for it.
#pragma once
#include <string>

#include "platform/events/raw_event.h"

namespace platform {

enum class RecordMode : uint8_t { kNone, kRecording, kReplaying };
extern RecordMode record_mode;
inline bool Replaying() {
  return record_mode == RecordMode::kReplaying;
}

// Reads the two variables. False, after a line on standard error, when a file cannot be opened or
// is no recording. Called once the display is open.
bool OpenRecord(const char* program);
void CloseRecord();

// A report of the display or the desktop: recorded, passed on, or ignored.
void TakeReport(const RawEvent& raw);
// Replaying: passes on what is due.
void ReplayDue();
// Replaying on a clock that nobody steps: whether timers wait, since what was played together is
// still being handled. Their events carry the state from when they fired, such as a button that was
// held, and nothing fired between those lines when they were recorded.
bool ReplayHoldsTimers();
// Seconds until the next line is due; negative when none waits for its time.
double NextReplay(double now);

// --- For the results of background tasks.
struct RecordLine;
void RecordResult(const std::string& kind, const std::string& detail);
// The line of the result that the replay takes up now; null: none.
const RecordLine* AwaitedResult();
// It has been taken up.
void ResultTaken();
// The time of the next line that takes up such a result, behind the one that is awaited; negative
// when there is none.
double LaterResult(const std::string& kind, const std::string& detail);

}  // namespace platform

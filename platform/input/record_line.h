// One line of a recording, as text and as a report.
#pragma once
#include <string>

#include "platform/events/raw_event.h"

namespace platform {

struct RecordLine {
  double time = 0;  // taken in, since the session began
  bool after_timers = false;
  unsigned window = 0;       // its number, 0 none
  int64_t under = -1;        // that of the window under the pointer, 0 none; -1: the same
  RawEvent raw;              // without its window; `time` since the session began
  std::string path;          // of an open request; the text of an answer
  bool has_text = false;     // it is no answer of none
  std::string what, detail;  // of a result
  bool result = false;       // of a background task
};

// Reports that are neither recorded nor replayed: the display shows its windows by them.
bool IsDisplaysOwn(RawEvent::Type type);
// Whether it is a report of one window.
bool NamesWindow(RawEvent::Type type);
std::string FormatRecordLine(const RecordLine& line);
// False for what is no line.
bool ParseRecordLine(const std::string& text, RecordLine* line);

}  // namespace platform

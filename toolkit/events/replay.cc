// Results of background tasks, and record and replay, as programs see them.
#include "platform/input/record.h"
#include "platform/input/results.h"
#include "toolkit/xw.h"

void XwPost(const char* kind, const char* detail, void (*take)(void* data, int taken), void* data) {
  platform::PostResult(kind, detail, take, data);
}

int XwReplaying() {
  return platform::record_mode == platform::RecordMode::kReplaying;
}

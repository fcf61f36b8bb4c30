// Results of background tasks: XwPost, and whether a replay is running.
#include "platform/input/results.h"
#include "platform/input/record.h"
#include "toolkit/xw.h"

void XwPost(const char* kind, const char* detail, void (*take)(void* data, int taken), void* data) {
  platform::PostResult(kind, detail, take, data);
}

int XwReplaying() {
  return platform::record_mode == platform::RecordMode::kReplaying;
}

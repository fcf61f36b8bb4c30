#include "platform/ahead_job.h"

#include <gtest/gtest.h>
#include <unistd.h>

namespace platform {
namespace {

// Not atomic: a job and its caller take turns.
int given, found, runs;

AheadJob job([] {
  found = given;
  ++runs;
});

TEST(AheadJob, IsDoneOnceItHasFinishedAndNeverAfterItWasDropped) {
  for (int round = 1; round <= 2000; ++round) {
    given = round;
    const bool begun = job.Begin();
    ASSERT_EQ(job.begun(), begun);
    if (round % 3 == 0) {
      job.Drop();
      ASSERT_TRUE(found == round || found == round - 1) << found;
      const int before = runs;
      found = round;
      // A thread that comes late does nothing any more.
      if (round % 100 == 0) usleep(2000);
      ASSERT_EQ(runs, before);
    } else {
      job.Finish();
      if (!begun) found = round;
      ASSERT_EQ(found, round);
    }
    ASSERT_FALSE(job.begun());
  }
}

}  // namespace
}  // namespace platform

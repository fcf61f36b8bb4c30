#include "platform/ahead_job.h"

#include <gtest/gtest.h>

namespace platform {
namespace {

int given, found;  // not atomic: a job and its caller take turns

AheadJob job([] { found = given; });

TEST(AheadJob, IsDoneOnceItHasFinishedAndNeverAfterItWasDropped) {
  for (int round = 1; round <= 2000; ++round) {
    given = round;
    const bool begun = job.Begin();
    ASSERT_EQ(job.begun(), begun);
    if (round % 3 == 0) {
      job.Drop();
      ASSERT_TRUE(found == round || found == round - 1) << found;
      found = round;
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

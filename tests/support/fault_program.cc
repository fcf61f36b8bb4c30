// Linked into a program that is run with faults: they are armed from its first call on when the
// test says so in the environment.
#include <stdlib.h>

#include "tests/support/fault_calls.h"

__attribute__((constructor)) static void ArmFromEnvironment() {
  if (getenv(support::kFaultFile)) support::Arm();
}

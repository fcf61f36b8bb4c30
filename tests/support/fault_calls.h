// Which outcome a wrapped call has. For use inside tests/support/.
#pragma once
#include <cstddef>

namespace support {

// What a call does instead of its work: fail, transfer half, or transfer half and then fail the
// next time.
struct Outcome {
  int error;  // 0: none
  bool half = false;
};

// What the next call of this name does; null: its work.
const Outcome* NextOutcome(const char* call);

// Half of a transfer, at least a byte.
size_t HalfOf(size_t size);

// The wrapped calls of a child of this process work.
void DisarmChild();

// The variable that names the file through which a test and a program of its own share the fault.
constexpr char kFaultFile[] = "QUORVIK_FAULT_FILE";
// From now on the calls of this process count.
void Arm();

}  // namespace support

// Moving bytes over a connection within a deadline. For use inside printserver/.
#ifndef QUORVIK_PRINTSERVER_WIRE_H
#define QUORVIK_PRINTSERVER_WIRE_H

#include <stddef.h>
#include <stdint.h>

namespace nc {

// A moment in the future, or none; and perhaps a descriptor that ends the waiting before it when it
// becomes readable.
class Deadline {
 public:
  static Deadline None() { return Deadline(-1); }
  static Deadline In(int32_t ms, int stop = -1);
  // The one that a call on this connection has from now on.
  static Deadline Of(int fd);

  bool none() const { return end_ < 0; }
  // Milliseconds left, rounded up; 0 when it has passed, -1 when there is none: as poll takes it.
  int Left() const;
  // The descriptor, -1 for none, and whether it is readable.
  int stop() const { return stop_; }
  bool Stopped() const;

 private:
  explicit Deadline(int64_t end, int stop = -1) : end_(end), stop_(stop) {}
  int64_t end_;  // nanoseconds of the monotonic clock
  int stop_;
};

// Send or receive exactly `n` bytes; false, with errno, when that fails (ETIMEDOUT: out of time;
// ECONNRESET: the peer closed). Without a deadline an interrupted send fails.
bool SendAll(int fd, const void* data, size_t n, Deadline deadline);
bool ReadAll(int fd, void* data, size_t n, Deadline deadline);

// Wait until the descriptor is ready for `events` (of poll), has failed, or the deadline has
// passed. Signals do not end the wait. 1 ready, 0 out of time, -1 error (ECANCELED: stopped).
int WaitFor(int fd, short events, Deadline deadline);

// Send "KRV" and the code, followed by the fields, in one piece.
struct Field {
  const void* data;
  size_t size;
};
bool SendRequest(int fd, uint8_t code, const Field* fields, size_t count, Deadline deadline);

// Integers of the protocol: 32 bits, low byte first.
void PutInteger(uint8_t* to, uint32_t value);
bool ReadInteger(int fd, uint32_t* value, Deadline deadline);

// The single byte that ends many replies: its value, or -1.
int32_t ReadStatus(int fd, Deadline deadline);

// The refusal of arguments that cannot be sent: -1, with errno.
int32_t Refuse(int error);

}  // namespace nc

#endif

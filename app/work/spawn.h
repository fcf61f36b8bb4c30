// Starts other programs, without a shell: with three descriptors and no others, and with default
// signals.
#pragma once
#include <sys/types.h>

#include <cstdint>
#include <string>
#include <vector>

namespace console {

// What is to be started. The caller keeps its descriptors.
struct Program {
  // The program first: a path, or a name without '/', which is looked up along PATH.
  std::vector<std::string> words;
  // Become its standard input, output and error; below 0: /dev/null.
  int input = -1, output = -1, error = -1;
  enum Place : uint8_t {
    kOwnGroup,    // of processes: it can be ended with all that it starts
    kSameGroup,   // it ends with this program's group
    kOwnSession,  // it outlives this program; its folder is the root
  } place = kOwnGroup;
};

// A program that was started. Its end has to be waited for; the destructor leaves it alone.
class Child {
 public:
  Child() = default;
  Child(pid_t pid, bool leads) : pid_(pid), leads_(leads) {}

  bool running() const { return pid_ > 0; }
  pid_t pid() const { return pid_; }
  // Takes note of its end. Whether it has ended, `status` as of waitpid; true when there is none.
  bool HasEnded(int* status);
  // Waits for its end. -1 when there is none.
  int Wait();
  // Ends the program, and what it has started if it leads a process group. Waits for its end and
  // returns the status; a program that hangs in the system holds up the caller.
  int Kill();

 private:
  pid_t pid_ = 0;
  bool leads_ = false;  // a group
};

// None, with errno, when it cannot be started: ENOENT when there is no such program.
Child Start(const Program& program);

// The path of a program that belongs to this one: beside its own executable, else along PATH. "" if
// there is none.
std::string FindProgram(const std::string& name);

}  // namespace console

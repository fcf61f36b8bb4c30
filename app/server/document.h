// A document on its way to the server, read on a thread of its own: one on a mount that does not
// answer holds up neither the lists nor the end of the program.
#pragma once
#include <sys/types.h>

#include <cstdint>
#include <memory>
#include <string>

#include "app/work/background_task.h"
#include "os/final_path.h"

namespace console {

class Document {
 public:
  // Begins to open and to read it.
  explicit Document(const std::string& path);

  // Whether it has been opened, or cannot be, after at most that many milliseconds.
  bool Opened(int ms) const;
  // Why it cannot be sent, or could not be read on; empty when nothing is wrong.
  std::string Trouble() const;
  // In bytes, and nanoseconds since 1970, as it was when it was opened.
  int64_t size() const;
  int64_t modified_ns() const;
  // Its bytes come out here, `size` of them, or fewer where it could not be read on. Closed with
  // the document.
  int descriptor() const { return out_.get(); }
  // Nothing lies ready, and more is to come: it is the file that is waited for.
  bool Silent() const;

  // What stands for the system's open and read.
  static int (*open_file)(const char* path);
  static ssize_t (*read_file)(int fd, void* data, size_t size);

 private:
  struct Reading;
  std::shared_ptr<Reading> reading_;
  os::Handle out_;
  BackgroundTask task_;
};

}  // namespace console

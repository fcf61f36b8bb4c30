// The lines of a small system table. For use inside os/.
#ifndef QUORVIK_OS_LINES_H
#define QUORVIK_OS_LINES_H

#include <string>
#include <vector>

#include "os/final_path.h"

namespace os {

// Reads a file line by line, each cut to `limit` bytes and before its first zero byte. A file that
// cannot be opened or read has no (more) lines; a pipe without a writer is empty.
class Lines {
 public:
  Lines(const std::string& path, size_t limit);
  // Store the next line, without its end; false when there is none.
  bool Next(std::string* line);

 private:
  bool Fill();

  Handle file_;
  size_t limit_;
  char buffer_[4096];
  size_t at_ = 0;
  size_t end_ = 0;
};

// The first words of a line, at most `most`, as white space separates them.
std::vector<std::string> Words(const std::string& line, size_t most);

}  // namespace os

#endif

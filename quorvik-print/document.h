// A document to be printed: a file, or what comes from standard input.
#pragma once

#include <cstdint>
#include <string>

#include "os/final_path.h"

namespace cli {

class Document {
 public:
  // Opens a file; "-" is standard input. What is no regular file, or has the size 0, as those have
  // that are made while they are read, is read to its end first, into a file without a name that
  // nobody else can open. kGood, or kNoFile, which has been told.
  int Open(const std::string& path);

  int fd() const { return file_.get(); }
  int64_t size() const { return size_; }
  // Reading it may have taken long.
  bool copied() const { return copied_; }

 private:
  int Copy(int from, const std::string& name);

  os::Handle file_;
  int64_t size_ = 0;
  bool copied_ = false;
};

}  // namespace cli

// The layout and the scan server: programs of the configuration, started without a shell.
#pragma once

#include <sys/types.h>

#include <string>
#include <string_view>
#include <vector>

namespace printserverd {

class Child {
 public:
  explicit Child(std::string_view what) : what_(what) {}
  ~Child() { End(); }
  Child(const Child&) = delete;
  Child& operator=(const Child&) = delete;

  // Starts `command`; its arguments "%1" and "%2" become `first` and `second`. Nothing is started
  // when the command is empty, the last one still runs, or an argument could pass for an option.
  void Start(const std::vector<std::string>& command, std::string_view first,
             std::string_view second);

  // Asks a running program to end.
  void End();

  // Takes notice of its end, when it has ended.
  void Reap();

 private:
  std::string what_;
  pid_t pid_ = 0;
};

}  // namespace printserverd

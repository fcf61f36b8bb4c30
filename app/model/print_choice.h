// How the next file is printed.
#pragma once
#include <string>

namespace console {

constexpr int kMostPriority = 100, kMostCopies = 999;

struct PrintChoice {
  std::string printer;  // its name, "" as long as none is chosen: the server's default
  std::string profile;  // "": the server's choice
  int copies = 1, priority = 50;
  bool hold = false;
};

}  // namespace console

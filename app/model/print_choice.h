// How the next file is printed.
#pragma once
#include <string>

namespace console {

constexpr int kMostPriority = 100, kMostCopies = 999;

struct PrintChoice {
  std::string printer;  // its name, "" as long as none is chosen: the server's default
  std::string profile;  // "": the server's choice
  std::string media;    // "": the printer's usual
  int copies = 1, priority = 50;
  bool hold = false;
  bool no_copies = false;  // what stands in the box of the copies is no number of them
  int colour = -1;         // of the job in lists, 0xRRGGBB; -1: none

  // What counts for one print only is as usual again.
  void AfterPrint() {
    copies = 1;
    no_copies = false;
    priority = 50;
    hold = false;
  }
};

}  // namespace console

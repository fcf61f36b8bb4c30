// What a wait for one thing drops and must not be lost: redraws, and requests of the desktop.
#pragma once
#include <map>
#include <utility>

#include "toolkit/xw.h"

class Dropped {
 public:
  // Keeps the event when it is one of those; of several for a window, or of a request, the last.
  void Add(const XwEvent& e);
  // Once each. The current event stays.
  void PostAgain() const;

 private:
  std::map<std::pair<XwWindow*, int>, XwEvent> redraws_;
  std::map<int, XwEvent> requests_;
};

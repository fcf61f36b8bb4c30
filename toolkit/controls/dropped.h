// Events that a wait for other events drops but that must not be lost: redraws, and requests of the
// desktop.
#pragma once
#include <map>
#include <utility>

#include "toolkit/xw.h"

class Dropped {
 public:
  // Keeps the event when it is one of those: the last of each kind for a window, and the last of
  // each request.
  void Add(const XwEvent& e);
  // Posts each kept event once. The current event stays.
  void PostAgain() const;

 private:
  std::map<std::pair<XwWindow*, int>, XwEvent> redraws_;
  std::map<int, XwEvent> requests_;
};

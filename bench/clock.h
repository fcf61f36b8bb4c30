// What benches that time single rounds have in common.
#pragma once
#include <algorithm>
#include <ctime>
#include <vector>

inline double Microseconds() {
  timespec t{};
  clock_gettime(CLOCK_MONOTONIC, &t);
  return double(t.tv_sec) * 1e6 + double(t.tv_nsec) * 1e-3;
}

// Of at least one value.
inline double Median(std::vector<double> v) {
  std::sort(v.begin(), v.end());
  return v[v.size() / 2];
}

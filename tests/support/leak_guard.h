// What a piece of work leaves behind: compare two measurements.
//
//     const support::Resources before = support::Measure();
//     ... work that should leave nothing ...
//     EXPECT_TRUE(support::NothingLeft(before));
//
// Let the work run once before the first measurement: caches are filled and tables have grown then.
#pragma once
#include <gtest/gtest.h>

#include <cstdint>

namespace support {

struct Resources {
  int windows = 0;      // native windows of the headless display, and records of the toolkit
  int64_t memory = 0;   // bytes in use on the heap
  int descriptors = 0;  // open files and sockets
  int threads = 0;
};
Resources Measure();
// A failure names each count that has grown, memory by more than `slack` bytes.
testing::AssertionResult NothingLeft(const Resources& before, int64_t slack = 0);

}  // namespace support

// Numbers of the protocol and the limits that the server holds against its peers.
#pragma once

#include <cstddef>
#include <cstdint>

namespace printserverd {

constexpr uint16_t kPort = 51470;
constexpr uint8_t kGreetingBytes[4] = {4, 3, 2, 1};

enum class Status : uint8_t {
  kRefused = 0,
  kDone = 1,
  kUnknownId = 2,
  kBadTicket = 3,
  kTooLarge = 4,
  kWrongState = 5,
  kStorage = 6,
  kUnknownName = 7,
  kBadPath = 8,
  kNoFile = 9,
};

// Longest values of a job, in bytes.
constexpr size_t kMaxDocumentName = 255;
constexpr size_t kMaxName = 63;
constexpr size_t kMaxProfile = 31;
constexpr size_t kMaxMedia = 31;
constexpr size_t kMaxText = 127;
constexpr size_t kMaxMediaList = 255;
constexpr int64_t kMaxCopies = 999;
constexpr int64_t kMaxPriority = 100;

constexpr size_t kMaxTicket = 8192;
constexpr uint32_t kMaxRequest = 0x7fffffff;
constexpr size_t kMaxJobs = 4096;
constexpr int64_t kMaxNumber = 999999999;
constexpr size_t kMaxPrinters = 1024, kMaxProfiles = 1024, kMaxScanners = 64;
constexpr size_t kMaxPrinterList = 1 << 20;  // bytes

constexpr size_t kProfileRecord = 48;
constexpr size_t kMaxField = 512;       // the longest run of fixed fields in a request
constexpr int64_t kDocumentMs = 30000;  // the deadline for the next bytes of a document

// With every byte of every text escaped a job record stays below 2048 bytes, the list below 8 MiB.
static_assert(2 * (kMaxDocumentName + 2 * kMaxName + kMaxProfile + kMaxMedia + kMaxText) + 15 * 34 +
                  kMaxText + 128 <
              2048);

inline uint32_t LoadU32(const uint8_t* p) {
  return p[0] | uint32_t{p[1]} << 8 | uint32_t{p[2]} << 16 | uint32_t{p[3]} << 24;
}

inline void StoreU32(uint8_t* p, uint32_t value) {
  for (int i = 0; i < 4; ++i) p[i] = static_cast<uint8_t>(value >> (8 * i));
}

}  // namespace printserverd

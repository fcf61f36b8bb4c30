#include "tests/support/seed.h"

#include <unistd.h>

#include <cerrno>
#include <cinttypes>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace support {

namespace {

uint64_t FromEnvironment(const char* text) {
  uint64_t seed = 0;
  if (strcmp(text, "random") == 0) {
    return getentropy(&seed, sizeof seed) == 0 ? seed : uint64_t(getpid());
  }
  char* end = nullptr;
  errno = 0;
  seed = strtoull(text, &end, 0);
  if (errno != 0 || end == text || *end != '\0' || *text == '-') {
    fprintf(stderr, "QUORVIK_SEED is no number: \"%s\"\n", text);
    exit(2);
  }
  return seed;
}

uint64_t Choose(uint64_t usual) {
  const char* text = getenv("QUORVIK_SEED");
  const uint64_t seed = text != nullptr ? FromEnvironment(text) : usual;
  printf("seed: QUORVIK_SEED=%" PRIu64 "\n", seed);
  fflush(stdout);
  return seed;
}

}  // namespace

uint64_t Seed(uint64_t usual) {
  static const uint64_t seed = Choose(usual);
  return seed;
}

// splitmix64.
uint64_t Dice::Next() {
  uint64_t z = state_ += 0x9E3779B97F4A7C15u;
  z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9u;
  z = (z ^ (z >> 27)) * 0x94D049BB133111EBu;
  return z ^ (z >> 31);
}

int Dice::Between(int low, int high) {
  const uint64_t span = uint64_t(int64_t(high) - low) + 1;
  return int(low + int64_t(Next() % span));
}

}  // namespace support

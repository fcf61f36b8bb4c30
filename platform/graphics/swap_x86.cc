#include <immintrin.h>
#ifdef __clang__
#define _Bool bool  // the next header is written for C, and clang's C++ has no such word
#endif
#include <sys/platform/x86.h>

#include "platform/graphics/swap.h"

namespace platform {
namespace {

void SwapPlain(uint32_t* out, const uint8_t* in, int n) {
  for (int i = 0; i < n; ++i, in += 4)
    out[i] = 0xFF000000u | uint32_t(in[1]) << 16 | uint32_t(in[2]) << 8 | in[3];
}

__attribute__((target("ssse3"))) void Swap4(uint32_t* out, const uint8_t* in, int n) {
  const __m128i order = _mm_setr_epi8(3, 2, 1, 0, 7, 6, 5, 4, 11, 10, 9, 8, 15, 14, 13, 12);
  const __m128i opaque = _mm_set1_epi32(int(0xFF000000u));
  for (; n >= 4; n -= 4, in += 16, out += 4) {
    __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i*>(in));
    v = _mm_or_si128(_mm_shuffle_epi8(v, order), opaque);
    _mm_storeu_si128(reinterpret_cast<__m128i*>(out), v);
  }
  SwapPlain(out, in, n);
}

__attribute__((target("avx2"))) void Swap8(uint32_t* out, const uint8_t* in, int n) {
  const __m256i order = _mm256_setr_epi8(3, 2, 1, 0, 7, 6, 5, 4, 11, 10, 9, 8, 15, 14, 13, 12, 3, 2,
                                         1, 0, 7, 6, 5, 4, 11, 10, 9, 8, 15, 14, 13, 12);
  const __m256i opaque = _mm256_set1_epi32(int(0xFF000000u));
  auto eight = [&](int at) __attribute__((target("avx2"), always_inline)) {
    __m256i v = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(in + 4 * at));
    v = _mm256_or_si256(_mm256_shuffle_epi8(v, order), opaque);
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(out + at), v);
  };
  // A longer turn makes the time depend less on where the loop lies.
  for (; n >= 32; n -= 32, in += 128, out += 32) {
    eight(0);
    eight(8);
    eight(16);
    eight(24);
  }
  for (; n >= 8; n -= 8, in += 32, out += 8) eight(0);
  SwapPlain(out, in, n);
}

using Swap = void (*)(uint32_t*, const uint8_t*, int);

Swap Best() {
  // The C library knows; to ask the processor itself takes a long time in a virtual machine.
  if (CPU_FEATURE_ACTIVE(AVX2)) return Swap8;
  return CPU_FEATURE_ACTIVE(SSSE3) ? Swap4 : SwapPlain;
}

}  // namespace

void SwapRow(uint32_t* out, const uint8_t* in, int n) {
  static const Swap swap = Best();
  swap(out, in, n);
}

}  // namespace platform

// Takes numbers and bytes from a fuzzer's input; what is not there is zero.
#pragma once
#include <stddef.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <string>

struct Input {
  const uint8_t* at;
  const uint8_t* end;
  Input(const uint8_t* data, size_t size) : at(data), end(data + size) {}
  bool done() const { return at == end; }
  template <typename T>
  T Take() {
    T v{};
    size_t n = std::min(sizeof v, size_t(end - at));
    if (n) std::memcpy(&v, at, n);
    at += n;
    return v;
  }
  uint8_t Byte() { return Take<uint8_t>(); }
  // Mostly small, now and then anything.
  int Number() {
    uint8_t kind = Byte();
    return kind < 224 ? int(kind) - 64 : Take<int32_t>();
  }
  std::string Text(size_t most) {
    size_t n = std::min({most, size_t(Take<uint16_t>()), size_t(end - at)});
    std::string s(reinterpret_cast<const char*>(at), n);
    at += n;
    return s;
  }
};

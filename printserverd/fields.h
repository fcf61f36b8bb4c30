// Records of `key=value` lines: the form of tickets, lists, job files (docs/protocol.md,
// "Records").
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace printserverd {

// Takes the next line off `text` (without its line feed) into `line`; false when none is left.
bool TakeLine(std::string_view* text, std::string_view* line);

// Splits a line at its first `=`; false when it has none or the key is not made of a-z, 0-9, `-`.
bool SplitField(std::string_view line, std::string_view* key, std::string_view* value);

// The value behind its escapes.
std::string Unescape(std::string_view value);

// Appends `key=value`, escaped, and a line feed. The value is cut at `max` bytes and at a zero
// byte.
void AppendField(std::string* out, std::string_view key, std::string_view value, size_t max);
void AppendField(std::string* out, std::string_view key, int64_t value);

// A whole decimal number within the range; nothing when it is anything else.
std::optional<int64_t> ParseNumber(std::string_view text, int64_t low, int64_t high);

// As ParseNumber, with one of K, M, G (powers of 1024) allowed at the end.
std::optional<int64_t> ParseScaledNumber(std::string_view text, int64_t low, int64_t high);

// The text of a fixed field of a request: what comes before the first zero byte, the last byte
// of the field counting as zero.
std::string_view TextField(const uint8_t* field, size_t size);

// 16 bytes as 32 digits, and back; false when `text` is not 32 of 0-9, a-f.
using RequestId = std::string;  // always 16 bytes
std::string HexOfId(const RequestId& id);
bool IdOfHex(std::string_view text, RequestId* id);

}  // namespace printserverd

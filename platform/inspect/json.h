// The little of JSON that the inspector speaks: a request is one object of plain values, an answer
// is text that is put together.
#pragma once
#include <map>
#include <string>
#include <string_view>

namespace platform {

struct JsonValue {
  enum Kind : uint8_t { kNull, kBool, kNumber, kText } kind = kNull;
  bool truth = false;
  double number = 0;
  std::string text;  // UTF-8
};
using JsonObject = std::map<std::string, JsonValue, std::less<>>;

// False for everything but one object whose values are texts, numbers, true, false or null, each
// key once, in valid UTF-8 and without a zero character.
bool ParseJsonObject(std::string_view text, JsonObject* out);
// Appends a text with its quotes; bytes that are not UTF-8 become U+FFFD.
void PutJsonText(std::string* out, std::string_view text);
// Appends any bytes as a text in base 64, with its quotes.
void PutJsonBytes(std::string* out, std::string_view bytes);

}  // namespace platform

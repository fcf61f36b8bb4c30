#include "platform/inspect/json.h"

#include <charconv>

#include "platform/text/utf8.h"

namespace platform {
namespace {

class Reader {
 public:
  explicit Reader(std::string_view text) : left_(text) {}

  bool Object(JsonObject* out) {
    if (!Take('{')) return false;
    if (!Take('}')) {
      do {
        std::string key;
        JsonValue value;
        if (!Text(&key) || !Take(':') || !Value(&value)) return false;
        if (!out->emplace(std::move(key), std::move(value)).second) return false;
      } while (Take(','));
      if (!Take('}')) return false;
    }
    SkipBlanks();
    return left_.empty();
  }

 private:
  void SkipBlanks() {
    while (!left_.empty() && std::string_view(" \t\r\n").find(left_[0]) != left_.npos)
      left_.remove_prefix(1);
  }
  bool Take(char c) {
    SkipBlanks();
    if (left_.empty() || left_[0] != c) return false;
    left_.remove_prefix(1);
    return true;
  }
  bool TakeWord(std::string_view word) {
    if (left_.substr(0, word.size()) != word) return false;
    left_.remove_prefix(word.size());
    return true;
  }

  bool Value(JsonValue* out) {
    SkipBlanks();
    if (left_.empty()) return false;
    if (left_[0] == '"') {
      out->kind = JsonValue::kText;
      return Text(&out->text);
    }
    if (TakeWord("null")) return true;
    out->kind = JsonValue::kBool;
    if (TakeWord("false")) return true;
    if ((out->truth = TakeWord("true"))) return true;
    out->kind = JsonValue::kNumber;
    return Number(&out->number);
  }

  size_t Digits(size_t at) const {
    size_t n = 0;
    while (at + n < left_.size() && left_[at + n] >= '0' && left_[at + n] <= '9') ++n;
    return n;
  }
  // The length of the number that the text begins with; 0 for none.
  size_t NumberLength() const {
    size_t at = left_[0] == '-' ? 1 : 0;
    const size_t whole = Digits(at);
    if (whole == 0 || (whole > 1 && left_[at] == '0')) return 0;
    at += whole;
    if (at < left_.size() && left_[at] == '.') {
      const size_t part = Digits(at + 1);
      if (part == 0) return 0;
      at += 1 + part;
    }
    if (at < left_.size() && (left_[at] == 'e' || left_[at] == 'E')) {
      ++at;
      if (at < left_.size() && (left_[at] == '+' || left_[at] == '-')) ++at;
      const size_t power = Digits(at);
      if (power == 0) return 0;
      at += power;
    }
    return at;
  }
  bool Number(double* out) {
    const size_t length = NumberLength();
    if (length == 0) return false;
    const auto [end, fault] = std::from_chars(left_.data(), left_.data() + length, *out);
    left_.remove_prefix(length);
    return fault == std::errc();
  }

  bool Hex(uint32_t* out) {
    if (left_.size() < 4) return false;
    const char* end = left_.data() + 4;
    if (std::from_chars(left_.data(), end, *out, 16).ptr != end) return false;
    left_.remove_prefix(4);
    return true;
  }
  // Behind "\u": a character, which may take two of them.
  bool Unicode(std::string* out) {
    uint32_t c, second;
    if (!Hex(&c) || c == 0) return false;
    if (c >> 10 == 0x36) {
      if (!TakeWord("\\u") || !Hex(&second) || second >> 10 != 0x37) return false;
      c = 0x10000 + ((c & 0x3FF) << 10 | (second & 0x3FF));
    } else if (c >> 10 == 0x37) {
      return false;
    }
    char bytes[4];
    out->append(bytes, size_t(PutUtf8(c, bytes)));
    return true;
  }
  bool Escape(std::string* out) {
    if (left_.empty()) return false;
    const char c = left_[0];
    left_.remove_prefix(1);
    if (c == 'u') return Unicode(out);
    static constexpr std::string_view kNames = "\"\\/bfnrt", kMeanings = "\"\\/\b\f\n\r\t";
    const size_t which = kNames.find(c);
    if (which == kNames.npos) return false;
    out->push_back(kMeanings[which]);
    return true;
  }
  bool Text(std::string* out) {
    if (!Take('"')) return false;
    while (!left_.empty()) {
      const char c = left_[0];
      left_.remove_prefix(1);
      if (c == '"') return IsUtf8(*out);
      if (static_cast<unsigned char>(c) < 0x20) return false;
      if (c != '\\')
        out->push_back(c);
      else if (!Escape(out))
        return false;
    }
    return false;
  }

  std::string_view left_;
};

}  // namespace

bool ParseJsonObject(std::string_view text, JsonObject* out) {
  return Reader(text).Object(out);
}

void PutJsonText(std::string* out, std::string_view text) {
  *out += '"';
  for (char c : ValidUtf8(text)) {
    if (c == '"' || c == '\\') {
      *out += '\\';
      *out += c;
    } else if (static_cast<unsigned char>(c) < 0x20) {
      static constexpr char kHex[] = "0123456789abcdef";
      *out += "\\u00";
      *out += kHex[c >> 4];
      *out += kHex[c & 15];
    } else {
      *out += c;
    }
  }
  *out += '"';
}

void PutJsonBytes(std::string* out, std::string_view bytes) {
  static constexpr char kDigits[] =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  out->reserve(out->size() + bytes.size() / 3 * 4 + 8);
  *out += '"';
  for (size_t i = 0; i < bytes.size(); i += 3) {
    uint32_t three = 0;
    for (size_t k = 0; k < 3; ++k)
      three = three << 8 | (i + k < bytes.size() ? uint8_t(bytes[i + k]) : 0);
    for (size_t k = 0; k < 4; ++k)
      *out += i + k <= bytes.size() ? kDigits[three >> (18 - 6 * k) & 63] : '=';
  }
  *out += '"';
}

}  // namespace platform

#include "printserverd/fields.h"

#include <charconv>

namespace printserverd {

bool TakeLine(std::string_view* text, std::string_view* line) {
  if (text->empty()) return false;
  const size_t end = text->find('\n');
  *line = text->substr(0, end);
  text->remove_prefix(end == std::string_view::npos ? text->size() : end + 1);
  return true;
}

bool SplitField(std::string_view line, std::string_view* key, std::string_view* value) {
  const size_t equals = line.find('=');
  if (equals == 0 || equals == std::string_view::npos) return false;
  *key = line.substr(0, equals);
  *value = line.substr(equals + 1);
  return key->find_first_not_of("abcdefghijklmnopqrstuvwxyz0123456789-") == std::string_view::npos;
}

std::string Unescape(std::string_view value) {
  std::string out;
  out.reserve(value.size());
  for (size_t i = 0; i < value.size(); ++i) {
    if (value[i] == '\\' && i + 1 < value.size()) {
      ++i;
      out.push_back(value[i] == 'n' ? '\n' : value[i]);
    } else {
      out.push_back(value[i]);
    }
  }
  return out;
}

void AppendField(std::string* out, std::string_view key, std::string_view value, size_t max) {
  out->append(key);
  out->push_back('=');
  value = value.substr(0, max);
  value = value.substr(0, value.find('\0'));
  // Whole runs at once: a list has thousands of fields, and few need an escape.
  for (size_t special; (special = value.find_first_of("\n\\")) != std::string_view::npos;) {
    out->append(value.substr(0, special));
    out->append(value[special] == '\n' ? "\\n" : "\\\\");
    value.remove_prefix(special + 1);
  }
  out->append(value);
  out->push_back('\n');
}

void AppendField(std::string* out, std::string_view key, int64_t value) {
  char digits[24];
  const auto [end, error] = std::to_chars(digits, digits + sizeof digits, value);
  out->append(key);
  out->push_back('=');
  out->append(digits, static_cast<size_t>(end - digits));
  out->push_back('\n');
}

std::optional<int64_t> ParseNumber(std::string_view text, int64_t low, int64_t high) {
  int64_t value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
  if (value < low || value > high) return std::nullopt;
  return value;
}

std::optional<int64_t> ParseScaledNumber(std::string_view text, int64_t low, int64_t high) {
  int shift = 0;
  if (!text.empty()) {
    const size_t unit = std::string_view("KMG").find(text.back());
    if (unit != std::string_view::npos) {
      shift = 10 * (static_cast<int>(unit) + 1);
      text.remove_suffix(1);
    }
  }
  const int64_t limit = INT64_MAX >> shift;
  const auto value = ParseNumber(text, -limit, limit);
  if (!value) return std::nullopt;
  const int64_t scaled = *value * (int64_t{1} << shift);
  if (scaled < low || scaled > high) return std::nullopt;
  return scaled;
}

std::string_view TextField(const uint8_t* field, size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(field), size - 1);
  return text.substr(0, text.find('\0'));
}

std::string HexOfId(const RequestId& id) {
  static constexpr char kDigits[] = "0123456789abcdef";
  std::string out;
  for (const char c : id) {
    out.push_back(kDigits[static_cast<uint8_t>(c) >> 4]);
    out.push_back(kDigits[c & 15]);
  }
  return out;
}

bool IdOfHex(std::string_view text, RequestId* id) {
  if (text.size() != 32) return false;
  RequestId bytes;
  for (size_t i = 0; i < text.size(); i += 2) {
    uint8_t value = 0;
    for (const char c : text.substr(i, 2)) {
      const bool digit = c >= '0' && c <= '9';
      if (!digit && !(c >= 'a' && c <= 'f')) return false;
      value = static_cast<uint8_t>(value * 16 + (digit ? c - '0' : c - 'a' + 10));
    }
    bytes.push_back(static_cast<char>(value));
  }
  *id = bytes;
  return true;
}

}  // namespace printserverd

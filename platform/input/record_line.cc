#include "platform/input/record_line.h"

#include <cctype>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <sstream>

namespace platform {
namespace {

struct KindRow {
  RawEvent::Type type;
  const char* name;
};
constexpr KindRow kKinds[] = {
    {RawEvent::kMotion, "motion"},
    {RawEvent::kPress, "press"},
    {RawEvent::kRelease, "release"},
    {RawEvent::kScroll, "scroll"},
    {RawEvent::kKeyDown, "key-down"},
    {RawEvent::kKeyRepeat, "key-repeat"},
    {RawEvent::kKeyUp, "key-up"},
    {RawEvent::kModifiers, "modifiers"},
    {RawEvent::kConfigure, "configure"},
    {RawEvent::kClose, "close"},
    {RawEvent::kFocusIn, "focus"},
    {RawEvent::kFocusOut, "unfocus"},
    {RawEvent::kQuit, "quit"},
    {RawEvent::kPreferences, "preferences"},
    {RawEvent::kOpenFile, "open"},
    {RawEvent::kLeave, "leave"},
    {RawEvent::kGrabLost, "grab-lost"},
    {RawEvent::kTextArrived, "text"},
    {RawEvent::kSelectionLost, "text-lost"},
    {RawEvent::kDragOver, "drag"},
    {RawEvent::kDragLeft, "drag-left"},
    {RawEvent::kDragDropped, "dropped"},
    {RawEvent::kDropFailed, "drop-failed"},
};

// One of these points at a field of a report.
struct FieldRow {
  const char* name;
  float RawEvent::*real;
  int RawEvent::*whole;
  uint32_t RawEvent::*bits;
};
constexpr FieldRow kFields[] = {
    {"x", &RawEvent::x, nullptr, nullptr},
    {"y", &RawEvent::y, nullptr, nullptr},
    {"rx", &RawEvent::root_x, nullptr, nullptr},
    {"ry", &RawEvent::root_y, nullptr, nullptr},
    {"dx", &RawEvent::dx, nullptr, nullptr},
    {"dy", &RawEvent::dy, nullptr, nullptr},
    {"w", nullptr, &RawEvent::width, nullptr},
    {"h", nullptr, &RawEvent::height, nullptr},
    {"modifiers", nullptr, nullptr, &RawEvent::modifiers},
    {"code", nullptr, nullptr, &RawEvent::keycode},
    {"key", nullptr, nullptr, &RawEvent::keysym},
    {"base", nullptr, nullptr, &RawEvent::base_keysym},
    {"char", nullptr, nullptr, &RawEvent::unicode},
    {"held", nullptr, nullptr, &RawEvent::held},
    {"held", nullptr, nullptr, &RawEvent::held},
};

const char* KindName(RawEvent::Type type) {
  for (const KindRow& row : kKinds)
    if (row.type == type) return row.name;
  return nullptr;
}

void Put(std::string* text, const char* name, double value) {
  if (value == 0) return;
  char number[64];
  snprintf(number, sizeof number, " %s=%.9g", name, value);
  *text += number;
}

std::string Escaped(const std::string& path) {
  std::string text;
  for (char c : path) {
    if (c == '\n' || c == '\\' || c == 0) text += '\\';
    text += c == '\n' ? 'n' : c == 0 ? '0' : c;
  }
  return text;
}

std::string Unescaped(const std::string& text) {
  std::string path;
  for (size_t i = 0; i < text.size(); ++i) {
    const bool escape = text[i] == '\\' && i + 1 < text.size();
    if (escape) ++i;
    path += escape && text[i] == 'n' ? '\n' : escape && text[i] == '0' ? '\0' : text[i];
  }
  return path;
}

// Numbers are cut to what their field holds.
template <typename T>
T Cut(double value, double least, double most) {
  return T(value < least ? least : value > most ? most : value);
}

bool SetField(RawEvent* raw, const std::string& name, double v) {
  if (!std::isfinite(v)) return false;
  for (const FieldRow& row : kFields) {
    if (name != row.name) continue;
    if (row.real) raw->*row.real = Cut<float>(v, -1e9, 1e9);
    if (row.whole) raw->*row.whole = Cut<int>(v, -1e6, 1e6);
    if (row.bits) raw->*row.bits = Cut<uint32_t>(v, 0, UINT32_MAX);
    return true;
  }
  if (name == "button") return raw->button = Cut<uint8_t>(v, 0, 255), true;
  if (name == "tablet") return raw->tablet_type = Cut<uint8_t>(v, 0, 255), true;
  if (name == "tip") return raw->tablet.buttons = Cut<uint16_t>(v, 0, 65535), true;
  if (name == "pressure") return raw->tablet.pressure = Cut<uint16_t>(v, 0, 65535), true;
  if (name == "tilt-x") return raw->tablet.tilt_x = Cut<int16_t>(v, -32768, 32767), true;
  if (name == "tilt-y") return raw->tablet.tilt_y = Cut<int16_t>(v, -32768, 32767), true;
  if (name == "at") return raw->time = v, true;
  return false;
}

// The bytes of a key's text, two hexadecimal digits each.
std::string FormatTyped(const RawEvent& raw) {
  std::string text;
  for (const char* at = raw.typed; *at; ++at) {
    char digits[4];
    snprintf(digits, sizeof digits, "%02x", unsigned(uint8_t(*at)));
    text += digits;
  }
  return text;
}

bool TakeTyped(const std::string& digits, RawEvent* raw) {
  const size_t n = digits.size() / 2;
  if (digits.size() % 2 || n >= sizeof raw->typed) return false;
  for (size_t i = 0; i < n; ++i) {
    if (!isxdigit(uint8_t(digits[2 * i])) || !isxdigit(uint8_t(digits[2 * i + 1]))) return false;
    raw->typed[i] = char(strtoul(digits.substr(2 * i, 2).c_str(), nullptr, 16));
  }
  return true;
}

bool ParseFields(std::istringstream* in, RecordLine* line) {
  std::string word;
  while (*in >> word) {
    const size_t equals = word.find('=');
    char* end = nullptr;
    if (equals == std::string::npos || equals + 1 == word.size()) return false;
    const double value = strtod(word.c_str() + equals + 1, &end);
    const std::string name = word.substr(0, equals);
    if (name == "typed") {
      if (!TakeTyped(word.substr(equals + 1), &line->raw)) return false;
      continue;
    }
    if (*end) return false;
    if (name == "under") {
      line->under = Cut<int64_t>(value, 0, UINT32_MAX);
    } else if (!SetField(&line->raw, name, value)) {
      return false;
    }
  }
  return true;
}

// The number of a request, and its answer behind a colon, if there was one; a selection.
std::string FormatSelection(const RecordLine& line) {
  if (line.raw.type == RawEvent::kSelectionLost)
    return line.raw.selection ? "primary" : "clipboard";
  return std::to_string(line.raw.request) + (line.has_text ? " :" + Escaped(line.path) : "");
}

bool ParseSelection(const std::string& rest, RecordLine* line) {
  if (line->raw.type == RawEvent::kSelectionLost) {
    line->raw.selection = rest == "primary";
    return rest == "primary" || rest == "clipboard";
  }
  char* end = nullptr;
  const unsigned long number = strtoul(rest.c_str(), &end, 10);
  line->raw.request = int(number);
  line->has_text = end[0] == ' ' && end[1] == ':';
  if (line->has_text) line->path = Unescaped(end + 2);
  return isdigit(uint8_t(rest[0])) && number >= 1 && number <= INT32_MAX &&
         (line->has_text || !*end);
}

// What remains of the line behind one blank.
std::string Rest(std::istringstream* in) {
  std::string rest;
  std::getline(*in >> std::ws, rest);
  return rest;
}

}  // namespace

bool IsDisplaysOwn(RawEvent::Type type) {
  return !KindName(type);
}

static bool NamesSelection(RawEvent::Type type) {
  return type == RawEvent::kTextArrived || type == RawEvent::kSelectionLost;
}

bool NamesWindow(RawEvent::Type type) {
  return type != RawEvent::kQuit && type != RawEvent::kPreferences && type != RawEvent::kOpenFile &&
         type != RawEvent::kGrabLost && !NamesSelection(type);
}

std::string FormatRecordLine(const RecordLine& line) {
  char time[64];
  snprintf(time, sizeof time, "%.6f%s", line.time, line.after_timers ? "+" : "");
  std::string text = time;
  text += ' ';
  if (line.result) text += "result " + line.what;
  if (line.result) return line.detail.empty() ? text : text + " " + line.detail;
  text += KindName(line.raw.type);
  if (line.raw.type == RawEvent::kOpenFile)
    return text + (line.raw.request ? " asked " : " ") + Escaped(line.path);
  if (NamesSelection(line.raw.type)) return text + " " + FormatSelection(line);
  if (line.window) text += " w" + std::to_string(line.window);
  const RawEvent& r = line.raw;
  for (const FieldRow& row : kFields)
    Put(&text, row.name,
        row.real    ? double(r.*row.real)
        : row.whole ? double(r.*row.whole)
                    : double(r.*row.bits));
  if (r.typed[0]) text += " typed=" + FormatTyped(r);
  if (line.under >= 0) text += " under=" + std::to_string(line.under);
  Put(&text, "button", r.button);
  Put(&text, "tablet", r.tablet_type);
  Put(&text, "tip", r.tablet.buttons);
  Put(&text, "pressure", r.tablet.pressure);
  Put(&text, "tilt-x", r.tablet.tilt_x);
  Put(&text, "tilt-y", r.tablet.tilt_y);
  if (std::fabs(r.time - line.time) > 1e-6) Put(&text, "at", r.time);
  return text;
}

bool ParseRecordLine(const std::string& text, RecordLine* line) {
  *line = RecordLine();
  std::istringstream in(text);
  std::string time, kind, window;
  if (!(in >> time >> kind)) return false;
  char* end = nullptr;
  line->time = strtod(time.c_str(), &end);
  line->after_timers = *end == '+';
  end += line->after_timers;
  if (*end || !(line->time >= 0) || line->time > 1e9) return false;
  line->result = kind == "result";
  if (line->result) {
    in >> line->what;
    line->detail = Rest(&in);
    return !line->what.empty();
  }
  for (const KindRow& row : kKinds)
    if (kind == row.name) line->raw.type = row.type;
  if (line->raw.type == RawEvent::kNone) return false;
  line->raw.time = line->time;
  if (line->raw.type == RawEvent::kOpenFile) {
    std::string rest = Rest(&in);
    constexpr std::string_view kAsked = "asked ";
    line->raw.request = rest.rfind(kAsked, 0) == 0;
    if (line->raw.request) rest.erase(0, kAsked.size());
    line->path = Unescaped(rest);
    return !line->path.empty();
  }
  if (NamesSelection(line->raw.type)) return ParseSelection(Rest(&in), line);
  if (!NamesWindow(line->raw.type)) return ParseFields(&in, line);
  const std::streampos fields = in.tellg();
  // A release that no window gets has no window number.
  if (!(in >> window) || window[0] != 'w' || !isdigit(uint8_t(window[1]))) {
    if (!IsRelease(line->raw.type)) return false;
    in.clear();
    in.seekg(fields);
    return ParseFields(&in, line);
  }
  const unsigned long number = strtoul(window.c_str() + 1, &end, 10);
  if (*end || number < 1 || number > UINT32_MAX) return false;
  line->window = unsigned(number);
  return ParseFields(&in, line);
}

}  // namespace platform

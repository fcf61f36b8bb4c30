#include "app/format/texts.h"

#include <cstdio>
#include <ctime>

#include "app/format/words.h"
#include "printserver/visible.h"

namespace console {
namespace {

struct Unit {
  double bytes;
  const char* name;
};
constexpr Unit kUnits[] = {{1e12, "TB"}, {1e9, "GB"}, {1e6, "MB"}, {1e3, "KB"}, {1, "bytes"}};

const Unit& UnitOf(int64_t bytes) {
  // From half of the last digit below on, the next unit says it shorter.
  for (const Unit& u : kUnits)
    if (double(bytes) >= u.bytes * 0.9995) return u;
  return kUnits[4];
}

std::string Number(double value, const Unit& unit) {
  char text[32];
  const bool fraction = unit.bytes > 1e3 && value < 99.95;
  snprintf(text, sizeof text, fraction ? "%.1f" : "%.0f", value);
  return text;
}

std::string Format(const char* format, int64_t seconds) {
  time_t t = time_t(seconds);
  tm parts{};
  char text[64];
  if (!localtime_r(&t, &parts) || !strftime(text, sizeof text, format, &parts)) return "";
  return text[0] == ' ' ? text + 1 : text;
}

}  // namespace

std::string SizeText(int64_t bytes) {
  if (bytes < 0) bytes = 0;
  if (bytes == 1) return "1 byte";
  const Unit& u = UnitOf(bytes);
  return Number(double(bytes) / u.bytes, u) + " " + u.name;
}

std::string PartText(int64_t part, int64_t whole) {
  const Unit& u = UnitOf(whole);
  return Number(double(part) / u.bytes, u) + " of " + SizeText(whole);
}

std::string DayText(int64_t seconds, int64_t now) {
  if (seconds == 0) return "";
  const bool this_year = Format("%Y", seconds) == Format("%Y", now);
  return Format(this_year ? "%e %b %H:%M" : "%e %b %Y", seconds);
}

std::string HourText(int64_t seconds, int64_t now) {
  if (seconds == 0) return "";
  if (Format("%F", seconds) == Format("%F", now)) return Format("%H:%M", seconds);
  const bool this_year = Format("%Y", seconds) == Format("%Y", now);
  return Format(this_year ? "%e %b" : "%e %b %Y", seconds);
}

std::string Shown(const std::string& bytes) {
  return nc::VisibleName(bytes);
}

std::string CountText(int64_t n, const char* one, const char* many) {
  return NumberOf(n, one, many);
}

}  // namespace console

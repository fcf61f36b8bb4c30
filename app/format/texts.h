// Sizes, times and names as a person reads them, in UTF-8.
#pragma once
#include <cstdint>
#include <string>

namespace console {

// "83 KB", "4.2 MB", "118 MB": thousands of bytes.
std::string SizeText(int64_t bytes);
// "2.1 of 4.2 MB": both in the unit of the whole.
std::string PartText(int64_t part, int64_t whole);
// "24 Nov 09:41", or "24 Nov 2023" in another year; local time. "" for 0.
std::string DayText(int64_t seconds, int64_t now);
// "09:41" today, else the day as above without the time.
std::string HourText(int64_t seconds, int64_t now);
// A name or a message that comes from elsewhere: every script as it is, what cannot be seen as its
// code.
std::string Shown(const std::string& bytes);
// "1 file", "14,000 files".
std::string CountText(int64_t n, const char* one, const char* many);

}  // namespace console

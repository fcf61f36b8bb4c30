// Numbers, kinds of files and failures in words.
#pragma once
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace console {

// "1,234,567", "-12".
std::string NumberText(int64_t n);
// "1 file", "100,000 files".
std::string NumberOf(int64_t n, const char* one, const char* many);
// What a filter leaves out: "The filter hides all 12 files", "The filter hides 3 other files".
std::string HidesText(int all, int shown, const char* one, const char* many);
// The name between quotation marks, in at most 40 characters, cut in the middle.
std::string Quoted(std::string_view name);

// What a file is, by its ending: "PDF document", "JPEG picture", else "INDD file", or "File".
std::string FileKindText(std::string_view name);
// The ending without case, by which kinds are sorted.
std::string FileKindKey(std::string_view name);

// Why the system refuses something, as a part of a sentence: "you are not allowed to read it".
const char* TroubleText(int error);
// Of names, at least one: "“a”: no such file or folder", "3 files are missing: “a”, “b”, “c”".
std::string MissingText(const std::vector<std::string>& names);

}  // namespace console

// One line on standard error for each thing that an operator should know.
#pragma once

#include <string>
#include <string_view>

namespace printserverd {

// Writes "printserverd: " and the text. What a terminal could take for a command, and what is not
// UTF-8, is shown as `?`. A line that nobody takes at once is left out.
void Log(const std::string& text);

// The same for what a peer can cause again and again: at most one line a second.
void LogRarely(const std::string& text);

// `text` with each control character, separator of lines, control of direction and each byte that
// is not UTF-8 as `?`.
std::string PlainText(std::string_view text);

// Writes a whole line without waiting for a reader; false when that is not possible now.
bool WriteLine(int fd, const std::string& line);

}  // namespace printserverd

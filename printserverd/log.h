// One line on standard error for each thing that an operator should know.
#pragma once

#include <string>

namespace printserverd {

// Writes "printserverd: " and the text, control characters shown as `?`.
void Log(const std::string& text);

// The same for what a peer can cause again and again: at most one line a second.
void LogRarely(const std::string& text);

}  // namespace printserverd

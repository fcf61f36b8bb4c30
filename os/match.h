// Lists of wildcard patterns, split for the two listing calls, and which hidden names are listed.
#ifndef QUORVIK_OS_MATCH_H
#define QUORVIK_OS_MATCH_H

#include <string>
#include <vector>

namespace os {

// The single patterns of a list such as "*.txt,*.log", doubled in upper case where it contains
// "*.". Null stands for "*". At most 60 patterns and 1023 bytes; what lies past them is left out.
std::vector<std::string> SplitPatterns(const char* patterns);

// Whether OS_ListDir, asked for `types`, leaves out a name that begins with '.'. With folders asked
// for, hidden names of two characters are kept, as are names that begin with two dots.
bool IsLeftOut(const char* name, int types);

}  // namespace os

#endif

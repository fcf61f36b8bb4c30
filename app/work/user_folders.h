// The folders in which a program keeps what is its user's alone.
#pragma once
#include <string>

namespace console {

// The value of an environment variable such as XDG_CONFIG_HOME where it is an absolute path, else
// the folder of that name below the home folder ("/.config"); "" when the user has none.
std::string UserFolder(const char* variable, const char* below_home);

// Makes a folder, and those above it that are missing, for this user alone. False, with errno, when
// it is not there afterwards.
bool MakeUserFolder(const std::string& path);

}  // namespace console

// Where the fixed paths of the system are found. Tests put a root of their own in front of them, so
// that they need no privileges and leave nothing behind. For use inside os/ and by tests.
#ifndef QUORVIK_OS_SYSTEM_PATHS_H
#define QUORVIK_OS_SYSTEM_PATHS_H

#include <string>

namespace os {

// The place of a fixed absolute path such as "/Users/Shared": every one of them passes through
// here.
std::string SystemPath(const char* path);

// The folder for temporary files, made if it is not there, open to everyone.
std::string TemporaryFolder();

// The path of the running executable.
std::string ExecutablePath();

// What OS_GetPathName and OS_GetUserName give, whole. Safe on several threads.
std::string FolderPath(int folder);
std::string UserName();

// Put `root` in front of every fixed path; null or "" for none. Forgets what was found before.
void SetSystemRoot(const char* root);

// Say where the executable is; null for where it really is. Forgets what was found before.
void SetExecutablePath(const char* path);

// Forget the folders and names that OS_GetPathName and OS_GetUserName keep.
void ForgetPathNames();

}  // namespace os

#endif

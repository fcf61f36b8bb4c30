// The services layer: folder listings, standard folders and application-path files, temporary
// files, threads and recursive mutexes, and the debug log. Valid C11 and C++20.
//
// Conventions. Nothing here throws, prints (besides DBG_printf) or keeps an error text: a failure
// is the return value named at each call, with errno left as the system set it. File names and
// paths are bytes, zero-terminated, in whatever encoding the file system uses. A null pointer where
// a string is needed is a refusal, never a crash. Calls whose result is a `char *` return a buffer
// of this layer that the next call of the same function overwrites; copy what is to be kept, and
// use them from one thread. Calls ending in N are twins of calls whose records or results have a
// fixed size: they give everything whole and are safe on several threads.
#ifndef QUORVIK_OS_OS_H
#define QUORVIK_OS_OS_H

#include <pthread.h>
#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

// ------------------------------------------------------------------------------------------------
// Folder listings
//
// A listing is one flat array of the files of one folder, chosen by patterns and by type, sorted on
// request. Patterns are separated by ',' or '|' ("*.txt,*.log"). If the list of patterns contains
// "*.", it is used a second time in upper case, so that "*.txt" also finds A.TXT. See match_name
// for what one pattern means.

// One file of OS_ListDir.
typedef struct OS_ListEntry {
  char name[40];  // cut to 39 bytes, always zero-terminated
  uint32_t size;  // bytes, the low 32 bits
  uint32_t time;  // last change, seconds since 1970
} OS_ListEntry;

// What to list: the `types` argument, bits that may be joined. The first two are compared with the
// type bits of the file's mode, bit by bit.
#define OS_LIST_FOLDERS 0x4000             // folders; also puts a ".." entry in front
#define OS_LIST_FILES 0x8000               // regular files; links and sockets have this bit too
#define OS_LIST_SELF 0x40000000            // with OS_LIST_FOLDERS: a "." entry before the ".."
#define OS_LIST_HIDDEN ((int)0x80000000u)  // also names that begin with '.'
#define OS_LIST_ALL_FOLDERS 0x10000000     // OS_ListDirN only: patterns do not apply to folders
#define OS_LIST_OTHERS 0x20000000          // OS_ListDirN only: pipes, devices, sockets, dead links

// In what order: the `sort` argument, bits that may be joined. With 0 entries stay in the order in
// which the folder holds them.
#define OS_SORT_DESCENDING 1  // largest first
#define OS_SORT_NAME 2        // by name, ignoring case
#define OS_SORT_TIME 4        // by time, unless OS_SORT_NAME is given
#define OS_SORT_SIZE 8        // by size, unless one of the two above is given
#define OS_SORT_WHOLE 16      // OS_ListDir: sort the whole result, not each pattern's files apart
#define OS_SORT_FOLDERS_FIRST 32  // OS_ListDirN only: folders before everything else

// List the folder `path` (null or "": the current one; a volume prefix that ends in the first ':'
// is dropped). The result is an array of *count entries that the caller frees with OS_ListFree;
// null with *count 0 if nothing matched or the folder cannot be read. The folder is read once for
// each pattern, and the files of one pattern stay together unless OS_SORT_WHOLE is given; a file
// that two patterns match is listed twice. Null patterns list everything, empty ones nothing;
// patterns past 60 or past 1023 bytes are ignored, and the second, upper-case use is left out where
// it would not fit the 1023. With OS_LIST_FOLDERS: ".." is there even in an empty folder, with size
// and time 0; "." carries the kilobytes of all regular files that matched; hidden names of two
// characters (".a") and those that begin with ".." are listed always. `count` may be null. Safe on
// several threads at once.
OS_ListEntry* OS_ListDir(const char* path, const char* patterns, int* count, int types, int sort);

// Free a result of OS_ListDir; null is allowed.
void OS_ListFree(OS_ListEntry* list);

// One file of OS_ListDirN. For a link that leads somewhere, `size` and `time` are the target's.
typedef struct OS_ListEntryN {
  const char* name;  // the whole name; lives as long as the list
  uint64_t size;     // bytes
  int64_t time;      // last change, seconds since 1970
  uint32_t mode;     // type and permissions of the file itself (S_ISLNK for a link)
  uint32_t target;   // the same for what a link leads to, 0 for a dead link; else equal to `mode`
} OS_ListEntryN;

// List the folder `path` (null or "": the current one; taken as it is, ':' has no meaning) with
// whole names and 64-bit figures. Folders and files may be asked for together. Differences from
// OS_ListDir: each file is listed once; the sort is always over the whole result, with equal
// entries in the order of their names; links count as what they lead to; OS_LIST_HIDDEN is what it
// says for names of any length; the "." entry carries bytes; ".." and "." have folder modes, stay
// in front whatever the order, and have time 0. The result is an array of *count entries, freed
// with OS_ListFreeN; null with *count 0 when nothing matched, null with *count -1 and errno set
// when the folder cannot be read. `count` may be null. Safe on several threads at once.
OS_ListEntryN* OS_ListDirN(const char* path, const char* patterns, int* count, int types, int sort);

// Sort the `count` entries of a result of OS_ListDirN anew, in any of its orders; ".." and "." stay
// in front. Nothing is read. Null, and a sort of 0, change nothing.
void OS_ListSortN(OS_ListEntryN* list, int count, int sort);

// Free a result of OS_ListDirN; null is allowed.
void OS_ListFreeN(OS_ListEntryN* list);

// 1 if `name` matches the single pattern, else 0 (also when either is null). Case matters.
// - A leading '*': the name ends with the rest of the pattern, in which nothing is special.
// - Elsewhere '?' is any one character, and '*' runs to the first occurrence of the character after
//   it ("a*c" matches "abc", not "abcc"); a '*' at the end matches any rest, also an empty one.
int match_name(const char* pattern, const char* name);

// Compare two entries the way this thread's last OS_ListDir sorted: -1, 0 or 1 (by name: negative,
// 0 or positive), turned over by OS_SORT_DESCENDING.
int sort_func(const OS_ListEntry* a, const OS_ListEntry* b);

// ------------------------------------------------------------------------------------------------
// Standard folders

#define OS_FOLDER_APPLICATION 0  // of the program; outside the ".app" bundle if it sits in one
#define OS_FOLDER_HOME 1         // $HOME, "/" if unset
#define OS_FOLDER_TEMPORARY 2    // "/var/tmp/Quorvik", made on first use, writable for everyone
#define OS_FOLDER_SHARED 3       // "/Users/Shared"
#define OS_FOLDER_DOCUMENTS 4    // Documents in the home folder
#define OS_FOLDER_DESKTOP 5      // Desktop in the home folder
#define OS_FOLDER_NONE 6         // always ""
#define OS_FOLDER_EXECUTABLE 7   // the folder that holds the executable
#define OS_FOLDER_RESOURCES 8    // "../Resources" beside the executable's folder

// The path of a standard folder, without a slash at its end, at most 255 bytes (longer is cut).
// Found on the first call and kept. Never null; "" for a number outside 0..8.
char* OS_GetPathName(int folder);

// The login name ($USER, "nobody" if unset), at most 63 bytes, kept from the first call on.
char* OS_GetUserName(void);

// ------------------------------------------------------------------------------------------------
// Application-path files
//
// A program tells others of its family where it is installed by a file "Quorvik/<key>" in the
// shared folder: one line, the absolute path of its application folder. Folder and files are
// writable for every user. They are never reached through a link: a link there is as good as no
// file.

// The folder recorded under `key`; with a null key this program's own application folder. If
// nothing is recorded (or the key holds a '/', or is too long) the result is the name of the file
// that was looked for. At most 255 bytes.
char* OS_GetAppPath(const char* key);

// Record this program's application folder under `key`, in a new file that takes the place of what
// was there. 0 when the file is there and shared, else -1; also for a key that OS_GetAppPath could
// not find again.
int OS_SetAppPath(const char* key);

// ------------------------------------------------------------------------------------------------
// Files
//
// Modes and times are set through a descriptor. If the last part of the path is a link, it is
// followed only when the caller or the owner of its target owns the link; else the call does
// nothing and fails with ELOOP.

// A name in the temporary folder, hidden, that no file has yet, ending in '.' and `ext` (null: "").
// The file is not made: use OS_TempFileN where another user could make it first. "" if the name
// would not fit 255 bytes; an `ext` that is too long is cut.
char* OS_TempFile(const char* ext);

// Make a new, empty temporary file that only this user can read, and store its path in `path`
// (`size` bytes, 256 are always enough). The result is its descriptor, open for reading and writing
// and closed on exec, which the caller closes; -1 on failure. Safe on several threads.
int OS_TempFileN(const char* ext, char* path, size_t size);

// Make one folder. 1 if it was made, else 0 (also when it exists already).
int OS_CreateDirectory(const char* path);

// Let everyone read and write: mode 0777 for a folder, 0666 for anything else. 0, or -1.
int OS_SetFileShared(const char* path);

// Set the times of last access and last change, seconds since 1970. Always 0.
int OS_SetFileTime(const char* path, unsigned atime, unsigned mtime);

// Have the system write everything to its disks.
void OS_Sync(void);

// ------------------------------------------------------------------------------------------------
// Threads and mutexes
//
// A thread handle is a small number from 1 on. It is valid until OS_WaitThread returns it; every
// thread has to be waited for once, and its number may then be used again. The toolkit itself runs
// on the main thread only.

// Run func(arg) on a new thread. A handle, or -1 if it could not be started or `func` is null.
int OS_StartThread(void* (*func)(void*), void* arg);

// End the calling thread, as if its function had returned null. `value` has no use.
void OS_EndThread(int value) __attribute__((noreturn));

// Wait until the thread has ended and give its handle back. Always 0; returns at once for a number
// that is no thread's, for a thread that is being waited for already, and for the caller's own.
int OS_WaitThread(int thread);

// Make *m a mutex that its owner may reserve again. 1, or 0 on failure: unlike the other three.
int OS_CreateMutex(pthread_mutex_t* m);

// Wait for the mutex and own it; release it as often as it was reserved; end its life (nobody may
// own it). 0, or an error number (EINVAL for null).
int OS_ReserveMutex(pthread_mutex_t* m);
int OS_ReleaseMutex(pthread_mutex_t* m);
int OS_DestroyMutex(pthread_mutex_t* m);

// Sleep for `ms` milliseconds, signals or not. Returns at once for 0 or less.
void OS_Sleep(int ms);

// ------------------------------------------------------------------------------------------------
// Debug log

// Does nothing; kept so that programs can mark where their log begins.
void DBG_open(void);

// Write to standard output exactly what printf would: no prefix, no time, no line end added.
void DBG_printf(const char* format, ...) __attribute__((format(printf, 1, 2)));

#ifdef __cplusplus
}
#endif

#endif

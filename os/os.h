// The services layer: folder listings, volumes and folder trees, standard folders and
// application-path files, temporary files, threads and recursive mutexes, child processes and
// pipes, and the debug log. Valid C11 and C++20.
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

// Sort the `count` entries of a result of OS_ListDirN again, in any of its orders; ".." and "."
// stay in front. Nothing is read. Null, and a sort of 0, change nothing.
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
// Volumes
//
// The places that a user can browse, in this order: "ROOT", "LOCAL" (home), "DOCUMENTS" and
// "DESKTOP"; network mounts of the mount table, sorted by name; what the table of remote file
// systems (/etc/rfstab) names, in its order; and the folders of /Volumes, by name ignoring case.
// Where there is no /Volumes, the folder in which the desktop mounts things takes its place:
// /run/media/<user>, else /media/<user>. Missing tables are skipped.

// One place of OS_ListDev. Texts are cut, always zero-terminated.
typedef struct OS_Device {
  char name[40];  // of a network mount: its path without the first slash, in capitals, with a ':'
  char path[87];
  char host[64];  // the server of a network mount, else ""
  uint8_t index;  // bits 2..7: the place's number in the list; bits 0..1: 0, the caller's to use
} OS_Device;

// Find the places: an array of *count records of this layer, at most 50, that the next call
// overwrites; for one thread. Only the first 120 bytes of each line of the tables are read. Never
// null; `count` may be null.
OS_Device* OS_ListDev(int* count);

// Compare two places by name, as strcmp does; 0 when either is null.
int lsdev_sort(const OS_Device* a, const OS_Device* b);

// One place of OS_ListDevN; the texts live as long as the list.
typedef struct OS_DeviceN {
  const char* name;
  const char* path;
  const char* host;
} OS_DeviceN;

// The same list, whole: every place, every line, every byte. An array of *count records that the
// caller frees with OS_ListDevFreeN. `count` may be null. Safe on several threads at once.
OS_DeviceN* OS_ListDevN(int* count);

// Free a result of OS_ListDevN; null is allowed.
void OS_ListDevFreeN(OS_DeviceN* list);

// ------------------------------------------------------------------------------------------------
// Folder trees
//
// The folders below a starting folder, read on demand. The caller writes `open` (show the children)
// and `selected`; everything else is the tree's. A null node is ignored: the results are then 0.

// A node. Only the root is a block of its own; all others lie in their parent's array.
typedef struct OS_TreeNode {
  uint8_t open;   // whether OS_TreeScan goes into the children
  uint8_t depth;  // 0 for the root; 255 for all that lie deeper than that
  uint8_t selected;
  char path[253];                // zero-terminated
  char* name;                    // in `path`: its last part; for the root, all of it
  int16_t child_count;           // at most 32767: further folders are left out
  struct OS_TreeNode* children;  // null before the first expansion
} OS_TreeNode;

// Make the tree of `path` with two levels of folders read. Nothing is open, but for a root that
// cannot be read: it has no children and `open` 1. Null when `path` is null or has more than 252
// bytes. OS_TreeDestroy frees it.
OS_TreeNode* OS_TreeCreate(const char* path);

// Read the folders of a node again, as OS_ListDir lists them by name. What was below it is freed,
// with its open and selected states, and the node itself is closed; if the folder cannot be read
// nothing changes. Folders whose path would have more than 252 bytes are left out.
void OS_TreeExpand(OS_TreeNode* node);

// Free a tree. Of another node than the root everything below it is freed, and the node stays.
void OS_TreeDestroy(OS_TreeNode* node);

// Store the nodes below this one that are to be shown, in order, in `out` (null: nothing is stored;
// it needs room for all of them). Their number.
int OS_TreeScan(OS_TreeNode* node, OS_TreeNode** out);

// Clear `selected` of the node and of everything below it; 1 if any of these is selected, else 0.
void OS_TreeClearSel(OS_TreeNode* node);
int OS_TreeIsSelected(OS_TreeNode* node);

// A node of the twin, with paths of any length. Nodes of different trees may be used on several
// threads at once.
typedef struct OS_TreeNodeN {
  uint8_t open;
  int32_t depth;
  uint8_t selected;
  const char* path;
  const char* name;  // in `path`
  int32_t child_count;
  struct OS_TreeNodeN* children;
} OS_TreeNodeN;

// As above, with the folders as OS_ListDirN lists them: links that lead to folders are there, names
// that begin with '.' are not, and ':' has no meaning. OS_TreeExpandN returns 0, or -1 with errno
// when the folder cannot be read; OS_TreeCreateN leaves that errno for its root.
OS_TreeNodeN* OS_TreeCreateN(const char* path);
int OS_TreeExpandN(OS_TreeNodeN* node);
void OS_TreeDestroyN(OS_TreeNodeN* node);
int OS_TreeScanN(OS_TreeNodeN* node, OS_TreeNodeN** out);
void OS_TreeClearSelN(OS_TreeNodeN* node);
int OS_TreeIsSelectedN(OS_TreeNodeN* node);

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
// nothing is recorded (or the file cannot be read, or the key holds a '/', or is too long) the
// result is the name of the file that was looked for. At most 255 bytes.
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
// Child processes and pipes
//
// A program is searched along PATH. Its arguments follow its name and end with a null pointer;
// OS_StartProcess has room for 30 and OS_StartPipe for 34, those past it are left out. If the
// program cannot be run, the call returns a second time, in the child, which goes on with the
// caller's code: end it there with _exit. Every child has to be waited for.

// Start a program. The id of its process; -1 if none could be made or `program` is null; in a child
// that cannot run the program, 0.
int OS_StartProcess(const char* program, ...) __attribute__((sentinel));

// Wait until the child has ended, signals or not. Its status as waitpid gives it; 0 at once for an
// id below 1 or of no child.
int OS_WaitProcess(int pid);

// A child whose standard input and output are pipes. From malloc: the caller frees it.
typedef struct OS_Pipe {
  int32_t write_fd;  // feeds the child's standard input
  int32_t read_fd;   // carries its standard output
  int32_t pid;
} OS_Pipe;

// Start a program with both streams piped. Null if that failed, if `program` is null, or in a child
// that cannot run the program. The descriptors lie above those of the standard streams and are
// closed on exec. The child's two ends stay open here as well, until OS_ClosePipe: the end of its
// output is never seen on `read_fd` itself.
OS_Pipe* OS_StartPipe(const char* program, ...) __attribute__((sentinel));

// Read exactly `len` bytes. `len`; or 0 when fewer come before the child has ended, when a signal
// interrupts the call, on any other failure, for a null, and for a `len` below 1.
int OS_ReadPipe(OS_Pipe* p, void* buf, int len);

// Write `len` bytes, waiting for room. `len`; or -1 when the child has ended (errno EPIPE), on any
// other failure, and for a null or a negative `len`. A signal ends the call with what had been
// written by then, -1 for nothing.
int OS_WritePipe(OS_Pipe* p, const void* buf, int len);

// Close all ends of the pipes and set the two descriptors to -1. The child is not waited for. 0, or
// -1: the result of closing `read_fd`.
int OS_ClosePipe(OS_Pipe* p);

// ------------------------------------------------------------------------------------------------
// Figures

// The size and the free part, in bytes, of the file system that holds the current folder (what is
// kept back for the superuser counts as free). Both 0 when that cannot be found out. Each may be
// null.
void OS_DiskInfo(uint64_t* total, uint64_t* free);

// Memory figures, in bytes: always 246579200, 104857600, 246579200, 104857600. Each may be null.
void OS_MemInfo(uint64_t* a, uint64_t* b, uint64_t* c, uint64_t* d);

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

// The client of the print server's protocol: TCP port 51470, one request and its reply at a time.
// Valid C11 and C++20.
//
// A connection is a socket descriptor. The functions keep no state beside it: several connections
// may be used on several threads, but one descriptor on one thread at a time. Failures are return
// values, with errno left as the system set it; nothing is printed. After a result below 0 from any
// call that takes a connection, the place in the stream is unknown: disconnect and connect again
// (the exceptions are named). NC_Connect and its relatives set SIGPIPE to ignored for the process.
//
//   int fd = NC_ConnectN("localhost", 5000);
//   if (fd < 0) ...
//   uint8_t status;
//   char list[65536];
//   int n = NC_GetPrinterListN(fd, &status, list, sizeof list);
//   NC_Disconnect(fd);
//
// Deadlines. A connection of NC_ConnectN or NC_ReadyN carries the deadline it was made with, one of
// NC_Connect has none; NC_SetDeadline changes it. It is the longest that one call may take, or, for
// the calls that move a file (NC_CopyGamutFile and NC_WritePrintRequestN), the longest time without
// any progress (a gamut file progresses in pieces of 8192 bytes). A call that runs out of time
// returns -1 with errno ETIMEDOUT. The deadline is kept with the socket itself.
//
// Null: a missing buffer, id, path or string is a refusal (-1 with EINVAL, nothing sent), unless a
// call says that null is allowed.
#ifndef QUORVIK_PRINTSERVER_NC_H
#define QUORVIK_PRINTSERVER_NC_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

#define NC_PORT 51470

// Results below 0 of NC_Connect and its relatives (and NC_CANCELLED of NC_ConnectStopN).
#define NC_NO_HOST -1    // the host was not found
#define NC_NO_SOCKET -3  // the system gave no socket
#define NC_NO_SERVER -4  // nobody listens there, or the greeting was not answered
#define NC_REFUSED -5    // the server refused the greeting

// Results below 0 of NC_WritePrintRequestN.
#define NC_ERROR -1        // the connection failed or ran out of time
#define NC_CANCELLED -2    // the progress function, or the descriptor, asked to stop
#define NC_BAD_REQUEST -3  // refused before anything was sent: the connection is still good
#define NC_UNREADABLE -4   // the document could not be read or was shorter than announced

// Sizes on the wire, in bytes.
#define NC_ID_SIZE 16       // a request id, opaque, made by the server
#define NC_PROFILE_SIZE 48  // one record of a profile list
#define NC_PROFILE_KEY 80   // the key of NC_GetProfileList
#define NC_GAMUT_A 100      // the first argument of NC_CopyGamutFile
#define NC_GAMUT_B 40       // its second
#define NC_PATH_SIZE 512    // the path of NC_RemoveFile, with its terminating zero
#define NC_SCAN_TEXT 80     // each text of NC_StartScanServer, with its terminating zero

// ------------------------------------------------------------------------------------------------
// Connections

// Store the name of this machine in `name` (64 bytes). 0, or -1.
int NC_GetHostName(char* name);

// Store the address of this machine as text in `dst` (16 bytes): always "127.0.0.1".
void NC_GetHostAddr(char* dst);

// Connect to `host` (a name or a dotted address; null or "": "localhost"). With `blocking` not 0:
// connect, greet, and return the connection, without any deadline. With 0: start connecting and
// return the descriptor, not greeted, for NC_Ready. Below 0: one of the four codes above.
int NC_Connect(const char* host, int32_t blocking);

// Connect and greet within `ms` milliseconds in all (below 1: 10000), finding the host included.
// That is also the deadline of the connection from then on. `host` may be "HOST:PORT", here and in
// the other calls ending in N; a port that is not 1..65535 is NC_NO_HOST with EINVAL. The codes are
// those of NC_Connect; errno is ETIMEDOUT when time ran out.
int NC_ConnectN(const char* host, int32_t ms);

// The same, but another thread can end the waiting: as soon as the descriptor `stop` (of an eventfd
// or a pipe; below 0: none) can be read, the result is NC_CANCELLED. Nothing is read from it.
int NC_ConnectStopN(const char* host, int32_t ms, int stop);

// Poll a descriptor of NC_Connect(host, 0), without waiting. 0: not yet. 1: the server is there,
// and *fd is now a new connection, greeted, without a deadline. If the server accepted but the
// greeting failed, and if *fd is below 0, *fd becomes a fresh attempt (which may itself be below 0)
// and the result is 0.
int NC_Ready(const char* host, int* fd);

// The same within `ms` milliseconds (below 1: 10000), finding the host included; the new connection
// carries that deadline, as by NC_ConnectN. With "HOST:PORT" let it begin itself, from an *fd
// below 0: NC_Connect knows the usual port alone.
int NC_ReadyN(const char* host, int* fd, int32_t ms);

// Set the deadline of every later call on this connection, milliseconds; 0 for none. 0, or -1.
int NC_SetDeadline(int fd, int32_t ms);

// The deadline in force, milliseconds (the system may have rounded it up a little); 0 for none.
int32_t NC_GetDeadline(int fd);

// Send n bytes. n when all were sent, 0 when the peer took nothing (or n is 0), -1 on error.
// Without a deadline a signal that interrupts the call is an error.
int32_t NC_Write(int fd, const void* buf, int32_t n);

// Receive exactly n bytes. n, or -1: also when the peer closed before all had come, and for n below
// 1, which reads nothing.
int32_t NC_Read(int fd, void* buf, int32_t n);

// Close the connection. 0, or -1.
int NC_Disconnect(int fd);

// Send a command header: the letters "KRV" and the code (1..11). 4 on success, else as NC_Write.
int32_t NC_SendCommand(int fd, uint8_t code);

// ------------------------------------------------------------------------------------------------
// Lists
//
// The plain calls write as much as the server announces (at most INT32_MAX bytes: more is -1) and
// trust it to fit. The N calls take the size of the buffer in bytes and return -1, with errno
// EMSGSIZE and nothing written, when the server announces more.

// The print queue: its size in bytes, 0 when it is empty, -1 on error.
int32_t NC_GetPrintQueue(int fd, void* buf);
int32_t NC_GetPrintQueueN(int fd, void* buf, uint32_t size);

// The printers and the scanners: *status is what the server says first (null: not wanted); with
// status 0 no list follows and the result is 0. Else the size of the list in bytes; -1 on error.
int32_t NC_GetPrinterList(int fd, uint8_t* status, void* buf);
int32_t NC_GetPrinterListN(int fd, uint8_t* status, void* buf, uint32_t size);
int32_t NC_GetScannerList(int fd, uint8_t* status, void* buf);
int32_t NC_GetScannerListN(int fd, uint8_t* status, void* buf, uint32_t size);

// The profiles for `key` (80 bytes, sent as they are): the number of records of 48 bytes stored in
// `buf`, -1 on error.
int32_t NC_GetProfileList(int fd, const void* key, void* buf);
int32_t NC_GetProfileListN(int fd, const void* key, void* buf, uint32_t size);

// ------------------------------------------------------------------------------------------------
// Print requests

// Store a new request id (16 bytes) in `id`. 1, or -1.
int32_t NC_CreateRequestID(int fd, void* id);

// Write the request `id` (16 bytes): `len` bytes of data, at most INT32_MAX. `data` may be null
// when `len` is 0. The server's status byte (0..255), or -1.
int32_t NC_WritePrintRequest(int fd, const void* id, const void* data, uint32_t len);

// Called while a request is being sent, at least ten times a second, with how many of its bytes
// have gone and how many there are. Return 0 to go on, anything else to give up.
typedef int (*NC_ProgressFunc)(void* context, int64_t sent, int64_t total);

// Write the request `id` from a ticket and a document, in pieces. `ticket` is text, lines
// "key=value" with '\n' between them, none of them empty; the blank line that ends it is added
// here. The document is the next `size` bytes of the descriptor `document`, from its present
// position (use the size of fstat); with size 0 the request is the ticket alone and `document` is
// not looked at. Ticket, blank line and document together may have INT32_MAX bytes. `progress` may
// be null. The server's status byte (0..255), or one of the four codes above; NC_BAD_REQUEST (too
// large, a null, a negative size, an empty line in the ticket) sends nothing and leaves the
// connection good.
int32_t NC_WritePrintRequestN(int fd, const void* id, const char* ticket, int document,
                              int64_t size, NC_ProgressFunc progress, void* context);

// Remove the request `id` (16 bytes) from the queue. The server's status byte, or -1.
int32_t NC_RemovePrintRequest(int fd, const void* id);

// ------------------------------------------------------------------------------------------------
// Files and servers

// Remove a file of the server. `path` has at most 511 bytes (longer is -1, and nothing is sent).
// The server's status byte, or -1.
int32_t NC_RemoveFile(int fd, const char* path);

// Fetch the gamut file that `a` (100 bytes) and `b` (40 bytes) name, and write it to `path` with
// the time that the server gives it. 0: written, or the server has none (`path` is then not
// touched). 1: `path` could not be written; the connection is still good. -1: error. A connection
// that ends within the file is not told apart: the result is then 0 or 1 with a shorter file.
int32_t NC_CopyGamutFile(int fd, const void* a, const void* b, const char* path);

// The same for at most `limit` bytes: -1 with errno EMSGSIZE when the server announces more, and -1
// also when the connection ends within the file.
int32_t NC_CopyGamutFileN(int fd, const void* a, const void* b, const char* path, uint32_t limit);

// Start the layout server; there is no reply. 1, or -1.
int32_t NC_StartLayoutServer(int fd);

// Start the scan server with two texts of at most 79 bytes (longer is -1, and nothing is sent);
// there is no reply. 1, or -1.
int32_t NC_StartScanServer(int fd, const char* s1, const char* s2);

#ifdef __cplusplus
}
#endif

#endif

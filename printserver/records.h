// The records of the print server's lists (docs/protocol.md, "Records") as plain structures, and
// tickets as text. Valid C11 and C++20.
//
// Readers take any bytes: keys that they do not know are skipped, texts that are too long are cut,
// numbers that are none or out of range leave the default, and neither a length nor a count of the
// server is trusted. Nothing is allocated, no state is kept. Texts end with a zero byte and are the
// server's bytes, UTF-8 by convention: they may hold anything but a zero.
#ifndef QUORVIK_PRINTSERVER_RECORDS_H
#define QUORVIK_PRINTSERVER_RECORDS_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

// Sizes with the terminating zero, in bytes.
#define NC_DOCUMENT_TEXT 256
#define NC_NAME_TEXT 64
#define NC_PROFILE_TEXT 32
#define NC_MEDIA_TEXT 32
#define NC_MEDIA_LIST_TEXT 256
#define NC_DISPLAY_TEXT 128
#define NC_REASONS_TEXT 128
#define NC_SUPPLIES_TEXT 256

// A queue list that a server sends never has more bytes and jobs than these.
#define NC_QUEUE_MAX 8388608
#define NC_JOBS_MAX 4096

// Other lists have at most so many records, and no more bytes than NC_LIST_MAX.
#define NC_RECORDS_MAX 1024
#define NC_LIST_MAX 1048576

// The status bytes of commands 3, 6 and 7. Take all but NC_STATUS_DONE for a refusal.
#define NC_STATUS_REFUSED 0
#define NC_STATUS_DONE 1
#define NC_STATUS_UNKNOWN_ID 2
#define NC_STATUS_BAD_TICKET 3
#define NC_STATUS_TOO_LARGE 4
#define NC_STATUS_WRONG_STATE 5
#define NC_STATUS_STORAGE 6
#define NC_STATUS_UNKNOWN_NAME 7
#define NC_STATUS_BAD_PATH 8
#define NC_STATUS_NO_FILE 9

// A few words in English for a status byte; never null.
const char* NC_StatusText(int status);

typedef enum NC_JobState {
  NC_JOB_WAITING,  // also for a state that is not known
  NC_JOB_HELD,
  NC_JOB_PRINTING,
  NC_JOB_PAPER_OUT,
  NC_JOB_DONE,
  NC_JOB_FAILED
} NC_JobState;

typedef struct NC_Job {
  uint8_t id[16];  // for NC_WritePrintRequest and NC_RemovePrintRequest
  NC_JobState state;
  int32_t copies;         // 1..999
  int32_t priority;       // 1..100, higher prints first
  int32_t hold;           // 0, 1
  int64_t submitted;      // seconds since 1970
  int64_t size;           // bytes of the document
  int64_t total;          // bytes to print
  int64_t printed;        // 0..total
  int32_t number;         // from 1 on, no two jobs of a spool alike; 0: the server gives none
  int32_t kept;           // 0, 1: the server has the document
  int32_t pages;          // -1: not known
  int32_t pages_printed;  // -1: not known
  int32_t colour;         // 0xRRGGBB, -1: none
  char document[NC_DOCUMENT_TEXT];
  char owner[NC_NAME_TEXT];
  char printer[NC_NAME_TEXT];
  char profile[NC_PROFILE_TEXT];
  char media[NC_MEDIA_TEXT];
  char text[NC_DISPLAY_TEXT];     // to be shown, not to be interpreted
  char reasons[NC_REASONS_TEXT];  // keywords with commas between, why it does not go on
  int64_t started;                // seconds since 1970, when it came to its printer last; 0: never
  int64_t since;                  // the same, when it came into its state; 0: not known
} NC_Job;

// Read a queue list of `size` bytes into at most `max` jobs, in the server's order. The number
// stored; 0 also for a null or a size below 1. Jobs past `max` are left out.
int32_t NC_ParseJobs(const void* list, int32_t size, NC_Job* jobs, int32_t max);

// The protocol's word for a state: "paper-out". Never null; "waiting" for what is no state.
const char* NC_JobStateWord(NC_JobState state);

typedef enum NC_PrinterState {
  NC_PRINTER_IDLE,  // also for a state that is not known
  NC_PRINTER_PRINTING,
  NC_PRINTER_PAPER_OUT
} NC_PrinterState;

typedef struct NC_Printer {
  NC_PrinterState state;
  int32_t is_default;  // 0, 1
  int32_t jobs;        // that have not ended: they wait, are held, or are at it
  int32_t paper;       // sheets left, -1: does not run out
  int32_t paused;      // 0, 1: begins no job
  int32_t accepting;   // 0, 1: takes new jobs
  int32_t has_id;      // 0, 1: `id` is one, under which a ticket alone changes the printer
  uint8_t id[16];
  char name[NC_NAME_TEXT];
  char media[NC_MEDIA_LIST_TEXT];  // names separated by commas
  char text[NC_DISPLAY_TEXT];
  char reasons[NC_REASONS_TEXT];    // keywords with commas between, why it does not go on
  char supplies[NC_SUPPLIES_TEXT];  // "name:percent" with commas between, -1: not known
} NC_Printer;

// The same for a printer list.
int32_t NC_ParsePrinters(const void* list, int32_t size, NC_Printer* printers, int32_t max);

// The protocol's word for a state. Never null; "idle" for what is no state.
const char* NC_PrinterStateWord(NC_PrinterState state);

typedef struct NC_Scanner {
  int32_t away;  // 0, 1
  char name[NC_NAME_TEXT];
  char text[NC_DISPLAY_TEXT];
} NC_Scanner;

// The same for a scanner list.
int32_t NC_ParseScanners(const void* list, int32_t size, NC_Scanner* scanners, int32_t max);

typedef struct NC_Profile {
  int32_t dpi_across;
  int32_t dpi_along;
  char name[NC_PROFILE_TEXT];
  char media[12];
} NC_Profile;

// Read `count` profile records of 48 bytes, as NC_GetProfileList stores them, into at most `max`
// profiles. The number stored; records without a name are left out.
int32_t NC_ParseProfiles(const void* records, int32_t count, NC_Profile* profiles, int32_t max);

// Append the line "key=value\n" to the text in `ticket` (`size` bytes in all), the value escaped.
// An empty ticket begins with ticket[0] = 0. 1; or 0, with the ticket as it was, when it does not
// fit, when something is null, or when the key is not made of a-z, 0-9 and '-'. What results is a
// ticket for NC_WritePrintRequestN.
int32_t NC_AddTicketText(char* ticket, int32_t size, const char* key, const char* value);

// The same for a number.
int32_t NC_AddTicketNumber(char* ticket, int32_t size, const char* key, int64_t value);

// An id as 32 hexadecimal digits with a zero after them (33 bytes), and back: 1, or 0 when `text`
// is null or not 32 digits 0-9, a-f, A-F and nothing after them.
void NC_FormatId(const uint8_t* id, char* text);
int32_t NC_ParseId(const char* text, uint8_t* id);

#ifdef __cplusplus
}
#endif

#endif

#include "printserver/records.h"

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <cstring>
#include <string_view>

namespace {

// Copies a value behind its escapes, cut at `size` - 1 bytes.
void CopyText(std::string_view value, char* to, size_t size) {
  size_t length = 0;
  for (size_t i = 0; i < value.size() && length + 1 < size; ++i) {
    char c = value[i];
    if (c == '\\' && i + 1 < value.size()) {
      c = value[++i];
      if (c == 'n') c = '\n';
    }
    if (c == '\0') break;
    to[length++] = c;
  }
  to[length] = '\0';
}

// A number of the range, or `otherwise`.
int64_t NumberOf(std::string_view value, int64_t low, int64_t high, int64_t otherwise) {
  int64_t number = 0;
  const auto [end, error] = std::from_chars(value.data(), value.data() + value.size(), number);
  if (error != std::errc() || end != value.data() + value.size()) return otherwise;
  return number < low || number > high ? otherwise : number;
}

// The place of a word in a table, 0 when it is not there.
template <size_t n>
int PlaceOf(std::string_view value, const std::string_view (&words)[n]) {
  const auto* found = std::find(words, words + n, value);
  return found == words + n ? 0 : static_cast<int>(found - words);
}

// The word at a place, the first for a place outside.
template <size_t n>
const char* WordOf(int place, const std::string_view (&words)[n]) {
  return words[place >= 0 && place < static_cast<int>(n) ? place : 0].data();
}

constexpr std::string_view kJobStates[] = {"waiting",   "held", "printing",
                                           "paper-out", "done", "failed"};
constexpr std::string_view kPrinterStates[] = {"idle", "printing", "paper-out"};
constexpr std::string_view kScannerStates[] = {"ready", "away"};

// Where a value of a record goes: a text of `size` bytes, or a number of 4 or 8 bytes.
struct Field {
  std::string_view key;
  size_t offset;
  size_t size;
  bool is_text;
  int64_t low, high;
};

#define TEXT_FIELD(record, name) \
  { #name, offsetof(record, name), sizeof(record::name), true, 0, 0 }
#define NUMBER_FIELD(record, key, name, low, high) \
  { key, offsetof(record, name), sizeof(record::name), false, low, high }

constexpr Field kJobFields[] = {
    TEXT_FIELD(NC_Job, document),
    TEXT_FIELD(NC_Job, owner),
    TEXT_FIELD(NC_Job, printer),
    TEXT_FIELD(NC_Job, profile),
    TEXT_FIELD(NC_Job, media),
    TEXT_FIELD(NC_Job, text),
    TEXT_FIELD(NC_Job, reasons),
    NUMBER_FIELD(NC_Job, "number", number, 0, INT32_MAX),
    NUMBER_FIELD(NC_Job, "kept", kept, 0, 1),
    NUMBER_FIELD(NC_Job, "pages", pages, 0, INT32_MAX),
    NUMBER_FIELD(NC_Job, "pages-printed", pages_printed, 0, INT32_MAX),
    NUMBER_FIELD(NC_Job, "copies", copies, 1, 999),
    NUMBER_FIELD(NC_Job, "priority", priority, 1, 100),
    NUMBER_FIELD(NC_Job, "hold", hold, 0, 1),
    NUMBER_FIELD(NC_Job, "submitted", submitted, 0, INT64_MAX),
    NUMBER_FIELD(NC_Job, "started", started, 0, INT64_MAX),
    NUMBER_FIELD(NC_Job, "since", since, 0, INT64_MAX),
    NUMBER_FIELD(NC_Job, "size", size, 0, INT64_MAX),
    NUMBER_FIELD(NC_Job, "total", total, 0, INT64_MAX),
    NUMBER_FIELD(NC_Job, "printed", printed, 0, INT64_MAX),
};

constexpr Field kPrinterFields[] = {
    TEXT_FIELD(NC_Printer, name),
    TEXT_FIELD(NC_Printer, media),
    TEXT_FIELD(NC_Printer, text),
    TEXT_FIELD(NC_Printer, reasons),
    TEXT_FIELD(NC_Printer, supplies),
    NUMBER_FIELD(NC_Printer, "paused", paused, 0, 1),
    NUMBER_FIELD(NC_Printer, "accepting", accepting, 0, 1),
    NUMBER_FIELD(NC_Printer, "default", is_default, 0, 1),
    NUMBER_FIELD(NC_Printer, "jobs", jobs, 0, INT32_MAX),
    NUMBER_FIELD(NC_Printer, "paper", paper, -1, INT32_MAX),
};

constexpr Field kScannerFields[] = {
    TEXT_FIELD(NC_Scanner, name),
    TEXT_FIELD(NC_Scanner, text),
};

void SetField(const Field& field, std::string_view value, void* record) {
  char* to = static_cast<char*>(record) + field.offset;
  if (field.is_text) return CopyText(value, to, field.size);
  if (field.size == sizeof(int32_t)) {
    int32_t number;
    memcpy(&number, to, sizeof number);
    number = static_cast<int32_t>(NumberOf(value, field.low, field.high, number));
    memcpy(to, &number, sizeof number);
  } else {
    int64_t number;
    memcpy(&number, to, sizeof number);
    number = NumberOf(value, field.low, field.high, number);
    memcpy(to, &number, sizeof number);
  }
}

template <size_t n>
void SetByKey(const Field (&fields)[n], std::string_view key, std::string_view value,
              void* record) {
  for (const Field& field : fields) {
    if (field.key == key) SetField(field, value, record);
  }
}

// An id of a record, which is 32 digits and nothing else.
bool TakeId(std::string_view value, uint8_t* id) {
  char text[33];
  CopyText(value, text, sizeof text);
  return value.size() == 32 && NC_ParseId(text, id);
}

// Six digits, red first; -1 for anything else.
int32_t ColourOf(std::string_view value) {
  int32_t colour = 0;
  const char* end = value.data() + value.size();
  const bool good = value.size() == 6 && value[0] != '-' &&
                    std::from_chars(value.data(), end, colour, 16).ptr == end;
  return good ? colour : -1;
}

// One kind of record: how it begins, what a field does to it, whether it is complete.
struct JobReader {
  NC_Job job;
  bool has_id;
  void Begin() {
    job = NC_Job();
    job.copies = 1;
    job.priority = 50;
    job.kept = job.pages = job.pages_printed = job.colour = -1;
    has_id = false;
  }
  void Take(std::string_view key, std::string_view value) {
    if (key == "state") job.state = static_cast<NC_JobState>(PlaceOf(value, kJobStates));
    if (key == "id") has_id = TakeId(value, job.id);
    if (key == "colour") job.colour = ColourOf(value);
    SetByKey(kJobFields, key, value, &job);
  }
  bool End(NC_Job* to) {
    if (!has_id) return false;
    job.printed = std::min(job.printed, job.total);
    if (job.kept < 0) job.kept = job.state != NC_JOB_DONE;
    *to = job;
    return true;
  }
};

struct PrinterReader {
  NC_Printer printer;
  void Begin() {
    printer = NC_Printer();
    printer.paper = -1;
    printer.accepting = 1;
  }
  void Take(std::string_view key, std::string_view value) {
    if (key == "state") {
      printer.state = static_cast<NC_PrinterState>(PlaceOf(value, kPrinterStates));
    }
    if (key == "id") printer.has_id = TakeId(value, printer.id);
    SetByKey(kPrinterFields, key, value, &printer);
  }
  bool End(NC_Printer* to) {
    *to = printer;
    return printer.name[0] != '\0';
  }
};

struct ScannerReader {
  NC_Scanner scanner;
  void Begin() { scanner = NC_Scanner(); }
  void Take(std::string_view key, std::string_view value) {
    if (key == "state") scanner.away = PlaceOf(value, kScannerStates);
    SetByKey(kScannerFields, key, value, &scanner);
  }
  bool End(NC_Scanner* to) {
    *to = scanner;
    return scanner.name[0] != '\0';
  }
};

template <typename Reader, typename Record>
int32_t Parse(const void* list, int32_t size, Record* records, int32_t max) {
  if (!list || !records || size < 1) return 0;
  std::string_view text(static_cast<const char*>(list), static_cast<size_t>(size));
  Reader reader;
  int32_t count = 0;
  while (!text.empty() && count < max) {
    reader.Begin();
    bool any = false;
    while (!text.empty()) {
      const std::string_view line = text.substr(0, text.find('\n'));
      text.remove_prefix(std::min(line.size() + 1, text.size()));
      if (line.empty()) break;
      any = true;
      const size_t equals = line.find('=');
      if (equals == std::string_view::npos) continue;
      reader.Take(line.substr(0, equals), line.substr(equals + 1));
    }
    if (any && reader.End(&records[count])) ++count;
  }
  return count;
}

bool IsKey(std::string_view key) {
  return !key.empty() &&
         key.find_first_not_of("abcdefghijklmnopqrstuvwxyz0123456789-") == std::string_view::npos;
}

constexpr const char* kStatusTexts[] = {
    "refused",
    "done",
    "no such job",
    "a value of the ticket is not allowed",
    "too large, or the queue or the spool is full",
    "not possible in the state that the job is in",
    "the server could not store it",
    "no such printer or profile",
    "a path that is not allowed",
    "no such file",
};

}  // namespace

const char* NC_StatusText(int status) {
  const int count = static_cast<int>(std::size(kStatusTexts));
  return status >= 0 && status < count ? kStatusTexts[status] : "refused for a reason unknown here";
}

const char* NC_JobStateWord(NC_JobState state) {
  return WordOf(state, kJobStates);
}

const char* NC_PrinterStateWord(NC_PrinterState state) {
  return WordOf(state, kPrinterStates);
}

int32_t NC_ParseJobs(const void* list, int32_t size, NC_Job* jobs, int32_t max) {
  return Parse<JobReader>(list, size, jobs, max);
}

int32_t NC_ParsePrinters(const void* list, int32_t size, NC_Printer* printers, int32_t max) {
  return Parse<PrinterReader>(list, size, printers, max);
}

int32_t NC_ParseScanners(const void* list, int32_t size, NC_Scanner* scanners, int32_t max) {
  return Parse<ScannerReader>(list, size, scanners, max);
}

int32_t NC_ParseProfiles(const void* records, int32_t count, NC_Profile* profiles, int32_t max) {
  if (!records || !profiles) return 0;
  const auto* record = static_cast<const uint8_t*>(records);
  const auto copy = [](const uint8_t* from, char* to, size_t size) {
    const size_t length = strnlen(reinterpret_cast<const char*>(from), size - 1);
    memset(to, 0, size);
    memcpy(to, from, length);
  };
  int32_t stored = 0;
  for (int32_t i = 0; i < count && stored < max; ++i, record += 48) {
    NC_Profile& profile = profiles[stored];
    copy(record, profile.name, sizeof profile.name);
    copy(record + 32, profile.media, sizeof profile.media);
    profile.dpi_across = record[44] | record[45] << 8;
    profile.dpi_along = record[46] | record[47] << 8;
    if (profile.name[0] != '\0') ++stored;
  }
  return stored;
}

int32_t NC_AddTicketText(char* ticket, int32_t size, const char* key, const char* value) {
  if (!ticket || !key || !value || size < 1 || !IsKey(key)) return 0;
  const size_t room = static_cast<size_t>(size);
  const size_t start = strnlen(ticket, room);
  if (start == room) return 0;
  size_t at = start;
  const auto put = [&](char c) {
    if (at + 1 < room) ticket[at] = c;
    ++at;
  };
  for (const char* c = key; *c; ++c) put(*c);
  put('=');
  for (const char* c = value; *c; ++c) {
    if (*c == '\n' || *c == '\\') put('\\');
    put(*c == '\n' ? 'n' : *c);
  }
  put('\n');
  const bool fits = at + 1 <= room;
  ticket[fits ? at : start] = '\0';
  return fits;
}

int32_t NC_AddTicketNumber(char* ticket, int32_t size, const char* key, int64_t value) {
  char text[24];
  *std::to_chars(text, text + sizeof text - 1, value).ptr = '\0';
  return NC_AddTicketText(ticket, size, key, text);
}

void NC_FormatId(const uint8_t* id, char* text) {
  static constexpr char kDigits[] = "0123456789abcdef";
  for (int i = 0; i < 16; ++i) {
    *text++ = kDigits[id[i] >> 4];
    *text++ = kDigits[id[i] & 15];
  }
  *text = '\0';
}

int32_t NC_ParseId(const char* text, uint8_t* id) {
  if (!text || !id || strnlen(text, 33) != 32) return 0;
  uint8_t bytes[16];
  for (int i = 0; i < 16; ++i) {
    const char* end = text + 2 * i + 2;
    if (std::from_chars(end - 2, end, bytes[i], 16).ptr != end) return 0;
  }
  memcpy(id, bytes, sizeof bytes);
  return 1;
}

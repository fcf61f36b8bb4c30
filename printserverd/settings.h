// The command line and the configuration file (docs/protocol.md, "The daemon").
#pragma once

#include <netinet/in.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace printserverd {

struct PrinterSettings {
  std::string name;
  std::string folder;
  std::string text;
  std::string media;
  std::string supplies;
  int64_t rate = 1 << 20;  // bytes a second, 0: without delay
  int64_t paper = 500;     // sheets, 0: never runs out
  int64_t sheet_bytes = 1 << 20;
  int64_t refill_seconds = 0;
  int64_t keep = 100;
};

struct ProfileSettings {
  std::string name;
  std::string media;
  int64_t dpi_across = 300;
  int64_t dpi_along = 300;
  std::string printer;  // empty: of every printer
};

struct ScannerSettings {
  std::string name;
  std::string text;
};

struct Settings {
  std::vector<PrinterSettings> printers;  // the first is the default one
  std::vector<ProfileSettings> profiles;
  std::vector<ScannerSettings> scanners;
  std::vector<std::string> layout_command;
  std::vector<std::string> scan_command;
  int64_t spool_limit = int64_t{16} << 30;
  int64_t done_seconds = 600;
  int64_t done_keep = 100;
  int64_t done_bytes = int64_t{1} << 30;
  std::string access_log;  // empty: standard error

  const PrinterSettings* FindPrinter(std::string_view name) const;  // null: not there
  const ProfileSettings* FindProfile(std::string_view name, std::string_view printer) const;
};

// Fills `settings` from the text of a configuration file and what it leaves out from the
// defaults. False with `error` ("line 3: ...") when the text is faulty.
bool ParseSettings(std::string_view text, Settings* settings, std::string* error);

struct Faults {
  bool refuse = false;
  bool paper_out = false;
  std::optional<uint32_t> cut;
  std::optional<uint32_t> stall;
  std::optional<uint32_t> length;
  uint32_t slow_disk = 0;  // milliseconds
  uint32_t sync_error = 0;
  uint32_t disk_full = 0, output_error = 0;
};

struct Options {
  sockaddr_in listen{};
  std::string spool;
  std::string config;  // empty: none
  std::optional<int64_t> rate;
  Faults faults;
  bool help = false;
};

// False with `error` when the command line is faulty.
bool ParseOptions(int argc, char** argv, Options* options, std::string* error);

// Reads the configuration that `options` name (the defaults when none) and applies --rate. The
// first time it may be a pipe, which is read to its end; `again`, only a regular file. False with
// `error`.
bool LoadSettings(const Options& options, bool again, Settings* settings, std::string* error);

// The text of --help.
const char* HelpText();

}  // namespace printserverd

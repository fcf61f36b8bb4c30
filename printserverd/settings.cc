#include "printserverd/settings.h"

#include <algorithm>
#include <cstdio>
#include <map>
#include <set>

#include "printserverd/fields.h"
#include "printserverd/folder.h"
#include "printserverd/wire.h"

namespace printserverd {

namespace {

bool SetText(std::string_view value, size_t max, std::string* out) {
  const std::string text = Unescape(value);
  const auto control = [](char c) { return static_cast<uint8_t>(c) < 0x20 || c == 0x7f; };
  if (text.size() > max || std::any_of(text.begin(), text.end(), control)) return false;
  *out = text;
  return true;
}

bool SetName(std::string_view value, size_t max, std::string* out) {
  return !value.empty() && SetText(value, max, out);
}

bool SetNumber(std::string_view value, int64_t low, int64_t high, int64_t* out) {
  const auto number = ParseScaledNumber(value, low, high);
  if (number) *out = *number;
  return number.has_value();
}

bool SetFolder(std::string_view value, std::string* out) {
  return SetName(value, 100, out) && IsPlainName(*out) && (*out)[0] != '.';
}

bool SetDpi(std::string_view value, ProfileSettings* profile) {
  const size_t cross = value.find('x');
  const std::string_view along = cross == std::string_view::npos ? value : value.substr(cross + 1);
  return SetNumber(value.substr(0, cross), 1, 0xffff, &profile->dpi_across) &&
         SetNumber(along, 1, 0xffff, &profile->dpi_along);
}

bool SetCommand(std::string_view value, std::vector<std::string>* out) {
  std::string text;
  if (!SetText(value, 4096, &text)) return false;
  out->clear();
  for (size_t at = 0; at < text.size();) {
    const size_t end = std::min(text.find(' ', at), text.size());
    if (end > at) out->push_back(text.substr(at, end - at));
    at = end + 1;
  }
  return !out->empty() && out->front()[0] == '/';
}

bool SetPath(std::string_view value, std::string* out) {
  return SetText(value, 4096, out) && !out->empty() && (*out)[0] == '/';
}

// NAME:PERCENT with commas between.
bool SetSupplies(std::string_view value, std::string* out) {
  if (!SetText(value, kMaxMediaList, out)) return false;
  for (std::string_view rest = *out; !rest.empty();) {
    const size_t comma = std::min(rest.find(','), rest.size());
    const std::string_view one = rest.substr(0, comma);
    const size_t colon = one.rfind(':');
    if (colon == 0 || colon == std::string_view::npos) return false;
    if (!ParseNumber(one.substr(colon + 1), -1, 100)) return false;
    rest.remove_prefix(std::min(comma + 1, rest.size()));
  }
  return out->empty() || out->back() != ',';
}

constexpr int64_t kMost = INT64_MAX / 4;

struct Key {
  std::string_view section;
  std::string_view key;
  const char* wants;
  bool (*set)(std::string_view value, Settings* settings);
};

const Key kKeys[] = {
    {"server", "layout-command", "an absolute program path and its arguments",
     [](std::string_view v, Settings* s) { return SetCommand(v, &s->layout_command); }},
    {"server", "scan-command", "an absolute program path and its arguments",
     [](std::string_view v, Settings* s) { return SetCommand(v, &s->scan_command); }},
    {"server", "spool-limit", "a number of bytes",
     [](std::string_view v, Settings* s) { return SetNumber(v, 0, kMost, &s->spool_limit); }},
    {"server", "done-seconds", "a number of seconds",
     [](std::string_view v, Settings* s) { return SetNumber(v, 0, 1 << 30, &s->done_seconds); }},
    {"server", "done-keep", "a number of jobs, at most 2000",
     [](std::string_view v, Settings* s) { return SetNumber(v, 0, 2000, &s->done_keep); }},
    {"server", "done-bytes", "a number of bytes",
     [](std::string_view v, Settings* s) { return SetNumber(v, 0, kMost, &s->done_bytes); }},
    {"server", "access-log", "an absolute path",
     [](std::string_view v, Settings* s) { return SetPath(v, &s->access_log); }},
    {"printer", "name", "a name of at most 63 bytes",
     [](std::string_view v, Settings* s) {
       return SetName(v, kMaxName, &s->printers.back().name);
     }},
    {"printer", "folder", "a plain name that does not begin with a dot",
     [](std::string_view v, Settings* s) { return SetFolder(v, &s->printers.back().folder); }},
    {"printer", "text", "a text of at most 127 bytes",
     [](std::string_view v, Settings* s) {
       return SetText(v, kMaxText, &s->printers.back().text);
     }},
    {"printer", "media", "names separated by commas, at most 255 bytes",
     [](std::string_view v, Settings* s) {
       return SetText(v, kMaxMediaList, &s->printers.back().media);
     }},
    {"printer", "supplies", "NAME:PERCENT with commas between, -1 to 100, at most 255 bytes",
     [](std::string_view v, Settings* s) { return SetSupplies(v, &s->printers.back().supplies); }},
    {"printer", "rate", "bytes a second",
     [](std::string_view v, Settings* s) {
       return SetNumber(v, 0, int64_t{1} << 40, &s->printers.back().rate);
     }},
    {"printer", "paper", "a number of sheets",
     [](std::string_view v, Settings* s) {
       return SetNumber(v, 0, 1 << 30, &s->printers.back().paper);
     }},
    {"printer", "sheet-bytes", "a number of bytes above 0",
     [](std::string_view v, Settings* s) {
       return SetNumber(v, 1, kMost, &s->printers.back().sheet_bytes);
     }},
    {"printer", "refill-seconds", "a number of seconds",
     [](std::string_view v, Settings* s) {
       return SetNumber(v, 0, 1 << 30, &s->printers.back().refill_seconds);
     }},
    {"printer", "keep", "a number of files above 0",
     [](std::string_view v, Settings* s) {
       return SetNumber(v, 1, 1 << 30, &s->printers.back().keep);
     }},
    {"profile", "name", "a name of at most 31 bytes",
     [](std::string_view v, Settings* s) {
       return SetName(v, kMaxProfile, &s->profiles.back().name);
     }},
    {"profile", "media", "a text of at most 11 bytes",
     [](std::string_view v, Settings* s) { return SetText(v, 11, &s->profiles.back().media); }},
    {"profile", "dpi", "one number or two with an x between them, each 1 to 65535",
     [](std::string_view v, Settings* s) { return SetDpi(v, &s->profiles.back()); }},
    {"profile", "printer", "the name of a printer",
     [](std::string_view v, Settings* s) {
       return SetName(v, kMaxName, &s->profiles.back().printer);
     }},
    {"scanner", "name", "a name of at most 63 bytes",
     [](std::string_view v, Settings* s) {
       return SetName(v, kMaxName, &s->scanners.back().name);
     }},
    {"scanner", "text", "a text of at most 127 bytes",
     [](std::string_view v, Settings* s) {
       return SetText(v, kMaxText, &s->scanners.back().text);
     }},
};

bool BeginSection(std::string_view section, Settings* settings, std::string* error) {
  const auto full = [error](size_t count, size_t most) {
    if (count >= most) *error = "more than " + std::to_string(most) + " of these";
    return count >= most;
  };
  if (section == "server") return true;
  if (section == "printer") {
    if (full(settings->printers.size(), kMaxPrinters)) return false;
    settings->printers.emplace_back();
  } else if (section == "profile") {
    if (full(settings->profiles.size(), kMaxProfiles)) return false;
    settings->profiles.emplace_back();
  } else if (section == "scanner") {
    if (full(settings->scanners.size(), kMaxScanners)) return false;
    settings->scanners.emplace_back();
  } else {
    *error = "unknown section [" + std::string(section) + "]";
    return false;
  }
  return true;
}

bool ApplyLine(std::string_view section, std::string_view line, Settings* settings,
               std::string* error) {
  std::string_view key, value;
  if (!SplitField(line, &key, &value)) {
    *error = "not a line of the form key=value";
    return false;
  }
  for (const Key& row : kKeys) {
    if (row.section != section || row.key != key) continue;
    if (row.set(value, settings)) return true;
    *error = std::string(key) + " wants " + row.wants;
    return false;
  }
  *error = section.empty()
               ? "a key before the first section"
               : "unknown key " + std::string(key) + " in [" + std::string(section) + "]";
  return false;
}

std::string FolderOf(std::string_view name) {
  std::string folder;
  for (const char c : name) {
    const bool upper = c >= 'A' && c <= 'Z';
    const bool plain = (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9');
    folder.push_back(upper ? static_cast<char>(c + 32) : plain ? c : '-');
  }
  return folder;
}

// Eight digits that tell a name from others: FNV-1a.
std::string DigitsOf(std::string_view name) {
  uint32_t hash = 2166136261;
  for (const char c : name) hash = (hash ^ static_cast<uint8_t>(c)) * 16777619;
  char digits[9];
  snprintf(digits, sizeof digits, "%08x", hash);
  return digits;
}

// Names in other scripts, and those that differ in little, leave the same letters.
void NameFolders(Settings* settings) {
  std::map<std::string, int> uses;
  for (const PrinterSettings& printer : settings->printers) {
    ++uses[printer.folder.empty() ? FolderOf(printer.name) : printer.folder];
  }
  for (PrinterSettings& printer : settings->printers) {
    if (!printer.folder.empty()) continue;
    printer.folder = FolderOf(printer.name);
    const bool bare = printer.folder.find_first_not_of('-') == std::string::npos;
    if (bare || uses[printer.folder] > 1) printer.folder += "-" + DigitsOf(printer.name);
  }
}

void AddDefaults(Settings* settings) {
  if (settings->printers.empty()) {
    PrinterSettings printer;
    printer.name = "Proof printer";
    printer.folder = "proof";
    printer.text = "prints to a folder";
    printer.media = "A4,A3";
    settings->printers.push_back(printer);
  }
  if (settings->profiles.empty()) {
    settings->profiles = {{"Draft", "A4", 150, 150, ""},
                          {"Standard", "A4", 300, 300, ""},
                          {"Fine", "A4", 600, 600, ""}};
  }
  NameFolders(settings);
}

// The most that a printer's record can take.
size_t RecordBytes(const PrinterSettings& printer) {
  size_t bytes = 384;
  for (const std::string* text :
       {&printer.name, &printer.media, &printer.text, &printer.supplies}) {
    bytes += text->size() + static_cast<size_t>(std::count(text->begin(), text->end(), '\\'));
  }
  return bytes;
}

bool CheckWhole(const Settings& settings, std::string* error) {
  std::set<std::string_view> names, folders;
  size_t list = 0;
  for (const PrinterSettings& printer : settings.printers) {
    list += RecordBytes(printer);
    if (printer.name.empty()) *error = "a printer has no name";
    if (!names.insert(printer.name).second) *error = "two printers named " + printer.name;
    if (!folders.insert(printer.folder).second && error->empty()) {
      *error = "two printers with the folder " + printer.folder;
    }
  }
  if (list > kMaxPrinterList) *error = "the printer list could pass 1 MiB";
  for (const ProfileSettings& profile : settings.profiles) {
    if (profile.name.empty()) *error = "a profile has no name";
    if (!profile.printer.empty() && !settings.FindPrinter(profile.printer)) {
      *error = "profile " + profile.name + " is of an unknown printer, " + profile.printer;
    }
  }
  for (const ScannerSettings& scanner : settings.scanners) {
    if (scanner.name.empty()) *error = "a scanner has no name";
  }
  return error->empty();
}

}  // namespace

const PrinterSettings* Settings::FindPrinter(std::string_view name) const {
  for (const PrinterSettings& printer : printers) {
    if (printer.name == name) return &printer;
  }
  return nullptr;
}

const ProfileSettings* Settings::FindProfile(std::string_view name,
                                             std::string_view printer) const {
  for (const ProfileSettings& profile : profiles) {
    if (profile.name == name && (profile.printer.empty() || profile.printer == printer)) {
      return &profile;
    }
  }
  return nullptr;
}

bool ParseSettings(std::string_view text, Settings* settings, std::string* error) {
  *settings = Settings();
  error->clear();
  std::string_view line, section;
  for (int number = 1; TakeLine(&text, &line); ++number) {
    if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
    if (line.empty() || line[0] == '#') continue;
    bool good;
    if (line[0] == '[' && line.back() == ']') {
      section = line.substr(1, line.size() - 2);
      good = BeginSection(section, settings, error);
    } else {
      good = ApplyLine(section, line, settings, error);
    }
    if (!good) {
      *error = "line " + std::to_string(number) + ": " + *error;
      return false;
    }
  }
  AddDefaults(settings);
  return CheckWhole(*settings, error);
}

}  // namespace printserverd

// The print server's configuration: it is taken whole, within its limits, or refused with an error.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <set>
#include <string>

#include "printserverd/folder.h"
#include "printserverd/settings.h"
#include "printserverd/wire.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace printserverd;
  const std::string text(reinterpret_cast<const char*>(data), size);
  Settings settings;
  std::string error;
  if (ParseSettings(text, &settings, &error) != error.empty()) abort();
  if (!error.empty()) return 0;
  if (settings.printers.empty() || settings.printers.size() > kMaxPrinters) abort();
  std::set<std::string> names, folders;
  for (const PrinterSettings& printer : settings.printers) {
    if (!IsPlainName(printer.folder) || printer.name.size() > kMaxName) abort();
    if (!names.insert(printer.name).second || !folders.insert(printer.folder).second) abort();
    if (settings.FindPrinter(printer.name) != &printer || printer.sheet_bytes < 1) abort();
  }
  for (const ProfileSettings& profile : settings.profiles) {
    if (profile.dpi_across < 1 || profile.dpi_across > 65535) abort();
    if (!profile.printer.empty() && !settings.FindPrinter(profile.printer)) abort();
  }
  return 0;
}

// The commands that show printers, profiles and scanners.
#include "printserver/nc.h"
#include "printserver/read_lists.h"
#include "quorvik-print/jobs.h"
#include "quorvik-print/table.h"

namespace cli {

int List(Session& session, const Options& options) {
  std::vector<NC_Printer> printers;
  if (!nc::ReadPrinters(session.fd(), &printers)) return Lost();
  const std::vector<Column> columns = {
      {"name", "NAME"},
      {"state", "STATE"},
      {"paused", "PAUSED", Kind::kFlag},
      {"accepting", nullptr, Kind::kFlag},
      {nullptr, "REFUSING", Kind::kFlag},
      {"jobs", "JOBS", Kind::kNumber},
      {"paper", "PAPER", Kind::kNumber},
      {"supplies", "SUPPLIES", Kind::kWords},
      {"media", "MEDIA", Kind::kWords},
      {"default", "DEFAULT", Kind::kFlag},
      {nullptr, "REMARK"},
      {"reasons", nullptr, Kind::kWords},
      {"text", nullptr},
      {"id", nullptr},
  };
  std::vector<std::vector<std::string>> rows;
  for (const NC_Printer& printer : printers) {
    rows.push_back({printer.name, NC_PrinterStateWord(printer.state), printer.paused ? "1" : "0",
                    printer.accepting ? "1" : "0", printer.accepting ? "0" : "1",
                    std::to_string(printer.jobs), NumberCell(printer.paper), printer.supplies,
                    printer.media, printer.is_default ? "1" : "0",
                    RemarkCell(printer.reasons, printer.text), printer.reasons, printer.text,
                    printer.has_id ? IdText(printer.id) : ""});
  }
  ShowTable(options, columns, rows, "no printers");
  return kGood;
}

int Profiles(Session& session, const Options& options) {
  std::vector<NC_Profile> profiles;
  const std::string printer = options.words.empty() ? "" : options.words[0];
  if (printer.size() >= NC_PROFILE_KEY) return Fail(kUsage, "the name is too long");
  if (!nc::ReadProfiles(session.fd(), printer, &profiles)) return Lost();
  const std::vector<Column> columns = {{"name", "NAME"},
                                       {"media", "MEDIA", Kind::kWords},
                                       {nullptr, "DPI"},
                                       {"dpi-across", nullptr, Kind::kNumber},
                                       {"dpi-along", nullptr, Kind::kNumber}};
  std::vector<std::vector<std::string>> rows;
  for (const NC_Profile& profile : profiles) {
    const std::string across = std::to_string(profile.dpi_across);
    const std::string along = std::to_string(profile.dpi_along);
    rows.push_back({profile.name, profile.media, across + "x" + along, across, along});
  }
  ShowTable(options, columns, rows, "no profiles");
  return kGood;
}

int Scanners(Session& session, const Options& options) {
  std::vector<NC_Scanner> scanners;
  if (!nc::ReadScanners(session.fd(), &scanners)) return Lost();
  std::vector<std::vector<std::string>> rows;
  for (const NC_Scanner& scanner : scanners) {
    rows.push_back({scanner.name, scanner.away ? "away" : "ready", scanner.text});
  }
  ShowTable(options, {{"name", "NAME"}, {"state", "STATE"}, {"text", "REMARK"}}, rows,
            "no scanners");
  return kGood;
}

}  // namespace cli

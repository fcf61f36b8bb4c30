#include "app/model/printers.h"

#include <algorithm>
#include <charconv>
#include <string_view>

#include "app/format/cut.h"
#include "app/format/folding.h"
#include "app/format/texts.h"
#include "app/format/words.h"
#include "printserver/words.h"

namespace console {
namespace {

constexpr int kMostInList = 22;
constexpr int kLittle = 10;  // percent

bool IsLow(const std::vector<Supply>& supplies) {
  return std::any_of(supplies.begin(), supplies.end(),
                     [](const Supply& s) { return s.percent >= 0 && s.percent < kLittle; });
}

// One that prints on its last sheet has what it needs, so far.
bool NeedsPaper(const NC_Printer& p) {
  return p.state == NC_PRINTER_PAPER_OUT || (p.paper == 0 && p.state != NC_PRINTER_PRINTING);
}

}  // namespace

bool IsStopped(const NC_Printer& p) {
  return p.state == NC_PRINTER_IDLE && p.reasons[0] && !p.paused;
}

namespace {

Tone DotOf(const NC_Printer& p, const std::vector<Supply>& supplies) {
  if (NeedsPaper(p) || p.reasons[0]) return Tone::kBad;
  if (p.paused || !p.accepting || p.paper == 0 || IsLow(supplies)) return Tone::kWarning;
  return p.state == NC_PRINTER_PRINTING ? Tone::kBusy : Tone::kGood;
}

std::string StateOf(const NC_Printer& p) {
  const bool idle = p.state == NC_PRINTER_IDLE;
  // One that stands still says why, not that it does.
  std::string text = idle && p.reasons[0] ? "stopped" : nc::PrinterStateText(p.state);
  if (p.paused) text = idle ? "paused" : text + ", then paused";
  // What it needs stands first, where a narrow pane shows it.
  if (NeedsPaper(p) && p.state != NC_PRINTER_PAPER_OUT)
    text = std::string(nc::PrinterStateText(NC_PRINTER_PAPER_OUT)) + ", " + text;
  if (!p.accepting) text += ", takes no new jobs";
  if (p.reasons[0]) text += ": " + Shown(nc::ReasonsText(p.reasons));
  return text;
}

std::string PaperOf(const NC_Printer& p) {
  if (p.paper < 0) return "";
  return NumberOf(p.paper, "sheet", "sheets");
}

PrinterRow RowOf(const NC_Printer& p) {
  PrinterRow row{};
  row.printer = &p;
  row.name = Shown(p.name);
  row.short_name = CutMiddle(row.name, kMostInList);
  row.supplies = SuppliesOf(p.supplies);
  row.dot = DotOf(p, row.supplies);
  row.state = StateOf(p);
  row.jobs = p.jobs > 0 ? NumberOf(p.jobs, "job", "jobs") : "";
  row.paper = PaperOf(p);
  row.is_default = p.is_default != 0;
  row.needs_paper = NeedsPaper(p);
  return row;
}

}  // namespace

std::vector<Supply> SuppliesOf(const char* text) {
  std::vector<Supply> supplies;
  std::string_view left = text ? text : "";
  while (!left.empty()) {
    const std::string_view one = left.substr(0, left.find(','));
    left.remove_prefix(std::min(one.size() + 1, left.size()));
    const size_t colon = one.rfind(':');
    if (colon == std::string_view::npos || colon == 0) continue;
    const std::string_view number = one.substr(colon + 1);
    int percent = -1;
    const auto read = std::from_chars(number.data(), number.data() + number.size(), percent);
    if (read.ec != std::errc() || percent < 0 || percent > 100) percent = -1;
    supplies.push_back({Shown(std::string(one.substr(0, colon))), percent});
  }
  return supplies;
}

std::vector<std::string> MediaOf(const NC_Printer* printer) {
  std::vector<std::string> media;
  std::string_view rest = printer ? printer->media : "";
  while (!rest.empty()) {
    const size_t end = std::min(rest.find(','), rest.size());
    if (end > 0) media.emplace_back(rest.substr(0, end));
    rest.remove_prefix(std::min(end + 1, rest.size()));
  }
  return media;
}

std::string NoMediaText(const std::string& printer, const std::string& media) {
  return Quoted(printer) + " has no " + Shown(media) + ": its usual media are used";
}

bool HasMedia(const NC_Printer& printer, const std::string& media) {
  const std::vector<std::string> all = MediaOf(&printer);
  return media.empty() || all.empty() || std::find(all.begin(), all.end(), media) != all.end();
}

void Printers::Show(std::shared_ptr<const std::vector<NC_Printer>> printers) {
  if (printers && printers == printers_) return;
  printers_ = std::move(printers);
  rows_.clear();
  if (!printers_) return;
  for (const NC_Printer& p : *printers_) rows_.push_back(RowOf(p));
  std::stable_sort(rows_.begin(), rows_.end(), [](const PrinterRow& a, const PrinterRow& b) {
    return NaturalLess(a.printer->name, b.printer->name);
  });
  for (const NC_Printer& p : *printers_)
    if (chosen_.empty() && p.is_default) chosen_ = p.name;
}

void Printers::ForgetServer() {
  printers_ = nullptr;
  rows_.clear();
  if (!by_somebody_) chosen_.clear();
}

std::vector<std::string> Printers::Names() const {
  std::vector<std::string> names;
  for (const PrinterRow& row : rows_) names.push_back(row.printer->name);
  return names;
}

const PrinterRow* Printers::Find(const std::string& name) const {
  for (const PrinterRow& row : rows_)
    if (name == row.printer->name) return &row;
  return nullptr;
}

std::string Printers::WhyNotPrintOn(const std::string& name) const {
  if (!known()) return "The printers are not known yet";
  if (rows_.empty()) return "The server has no printers";
  if (name.empty()) return "No printer is chosen";
  const PrinterRow* row = Find(name);
  if (!row) return "The printer " + Quoted(name) + " is gone: choose another one";
  return row->printer->accepting ? "" : Quoted(name) + " takes no new jobs";
}

const char* PrinterVerbText(PrinterVerb verb) {
  constexpr const char* kTexts[] = {"Pause",          "Resume",       "Refuse New Jobs",
                                    "Take New Jobs",  "Paper Loaded", "Move All Jobs",
                                    "Make My Default"};
  return kTexts[int(verb)];
}

bool Printers::Offers(PrinterVerb verb, const PrinterRow& row, const std::string& mine) const {
  const NC_Printer& p = *row.printer;
  switch (verb) {
    case PrinterVerb::kPause:
      return !p.paused;
    case PrinterVerb::kResume:
      return p.paused || (p.state == NC_PRINTER_IDLE && p.reasons[0]);
    case PrinterVerb::kRefuseJobs:
      return p.accepting;
    case PrinterVerb::kTakeJobs:
      return !p.accepting;
    case PrinterVerb::kPaperLoaded:
      return p.paper >= 0 || row.needs_paper;
    case PrinterVerb::kMoveJobs:
      return true;
    case PrinterVerb::kMakeMine:
      return mine != p.name;
  }
  return false;
}

std::string Printers::WhyNot(PrinterVerb verb, const PrinterRow& row) const {
  if (verb == PrinterVerb::kMakeMine) return "";
  if (verb == PrinterVerb::kMoveJobs) {
    if (row.printer->jobs == 0) return "No job waits for this printer";
    return MoveTargets(row).empty() ? "No other printer takes jobs" : "";
  }
  return row.printer->has_id ? "" : "The server does not let this printer be changed";
}

std::vector<const PrinterRow*> Printers::MoveTargets(const PrinterRow& from) const {
  std::vector<const PrinterRow*> targets;
  for (const PrinterRow& row : rows_)
    if (&row != &from && row.printer->accepting) targets.push_back(&row);
  return targets;
}

std::vector<const PrinterRow*> Printers::WithoutPaper() const {
  std::vector<const PrinterRow*> without;
  for (const PrinterRow& row : rows_)
    if (row.needs_paper) without.push_back(&row);
  std::stable_partition(without.begin(), without.end(),
                        [this](const PrinterRow* row) { return chosen_ == row->printer->name; });
  return without;
}

}  // namespace console

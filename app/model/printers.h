// The printers as the console lists them, and the one that is chosen.
#pragma once
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "app/model/notices.h"
#include "printserver/records.h"

namespace console {

struct Supply {
  std::string name;
  int percent;  // -1: not known
};

struct PrinterRow {
  const NC_Printer* printer;  // lives until the next Show
  std::string name;           // as it is shown
  std::string short_name;     // in at most 22 characters, cut in the middle
  Tone dot;
  std::string state;  // "idle", "paused", "out of paper: …"
  std::string jobs;   // "12 jobs", "" for none
  std::string paper;  // "480 sheets", "" where it never runs out
  std::vector<Supply> supplies;
  bool is_default, needs_paper;
};

// What the menu of a printer has.
enum class PrinterVerb : uint8_t {
  kPause,
  kResume,
  kRefuseJobs,
  kTakeJobs,
  kPaperLoaded,
  kMoveJobs,
  kMakeMine
};
const char* PrinterVerbText(PrinterVerb verb);

class Printers {
 public:
  // By name, in natural order; null: not known.
  void Show(std::shared_ptr<const std::vector<NC_Printer>> printers);

  const std::vector<PrinterRow>& rows() const { return rows_; }
  // Their names as the server has them, in the same order.
  std::vector<std::string> Names() const;
  bool known() const { return printers_ != nullptr; }
  // By its name as the server has it; null when there is none.
  const PrinterRow* Find(const std::string& name) const;

  // Somebody chooses a printer, or did so in an earlier session.
  void Choose(const std::string& name) {
    chosen_ = name;
    by_somebody_ = true;
  }
  // Those of another server come. What somebody chose stays chosen, by its name: where that server
  // has none of that name, WhyNotPrint says so.
  void ForgetServer();
  // Its name as the server has it. Nothing but a choice changes it: before the first one it becomes
  // the server's default with the first list that has one, and stays so. "" when none was known
  // yet.
  const std::string& chosen() const { return chosen_; }
  // Null when it is not there.
  const PrinterRow* Chosen() const { return Find(chosen_); }
  // It was chosen, and the server has others only.
  bool ChosenIsGone() const { return !rows_.empty() && !chosen_.empty() && !Chosen(); }
  // Why nothing can be printed on it: a sentence without its full stop, "" when it can.
  std::string WhyNotPrint() const { return WhyNotPrintOn(chosen_); }
  std::string WhyNotPrintOn(const std::string& name) const;

  // Whether the verb is offered for this printer, and why it is grey, "" when it can be used.
  bool Offers(PrinterVerb verb, const PrinterRow& row, const std::string& mine) const;
  std::string WhyNot(PrinterVerb verb, const PrinterRow& row) const;
  // Those to which its jobs can be moved.
  std::vector<const PrinterRow*> MoveTargets(const PrinterRow& from) const;
  // "HP is out of paper", what somebody should see without looking for it; the chosen one first.
  std::vector<const PrinterRow*> WithoutPaper() const;

 private:
  std::shared_ptr<const std::vector<NC_Printer>> printers_;
  std::vector<PrinterRow> rows_;
  std::string chosen_;
  bool by_somebody_ = false;  // else it is the server's default
};

// It stands still, and nobody has paused it.
bool IsStopped(const NC_Printer& printer);
// The names of the media that it has, in its order; null: none.
std::vector<std::string> MediaOf(const NC_Printer* printer);
// Also where the server does not say what it has.
bool HasMedia(const NC_Printer& printer, const std::string& media);
// What becomes of a job for media that a printer does not have: the server prints it all the same.
std::string NoMediaText(const std::string& printer, const std::string& media);
// "name:percent" with commas between, as records have them; what is none is left out.
std::vector<Supply> SuppliesOf(const char* text);

}  // namespace console

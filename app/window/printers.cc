// The printers: which one is chosen, and what their menu does.
#include <iterator>

#include "app/format/texts.h"
#include "app/format/words.h"
#include "app/model/server_words.h"
#include "app/window/side_commands.h"

namespace console {
namespace {

const PrinterRow* Meant(const Console* c, Which which = Which::kAt) {
  return which == Which::kAt ? c->printer_list.At() : c->printers.Chosen();
}

constexpr PrinterSetting kSettings[] = {PrinterSetting::kPause, PrinterSetting::kResume,
                                        PrinterSetting::kRefuseJobs, PrinterSetting::kTakeJobs,
                                        PrinterSetting::kPaperLoaded};
static_assert(int(PrinterVerb::kPaperLoaded) + 1 == std::size(kSettings));

}  // namespace

void PrintersCame(Console* c) {
  if (c->state.link == Link::kReady || !c->state.printers->empty())
    c->printers.Show(c->state.printers);
  c->choice.printer = c->printers.chosen();
  c->printer_list.mine = c->remembered.preferences.default_printer;
  c->printer_list.away = c->state.link != Link::kReady;
  c->printer_list.Update();
  const bool needed = !c->needs.Text().empty() && c->state.link == Link::kReady;
  if (needed != c->needs.shown) {
    c->needs.shown = needed;
    LayOutWindow(c);
  }
  c->needs.Place();
  c->damage |= kPrintersPane | kNeedsPane;
}

void ChoosePrinter(Console* c, const std::string& name) {
  const std::string media = c->choice.media;
  c->choice.printer = name;
  c->printers.Choose(name);
  // What was chosen elsewhere comes into sight; a keyboard that is in the list stays where it is.
  if (c->stop != FocusStop::kPrinters) c->printer_list.GoTo(name);
  c->tools.FitMedia(c->state);
  if (c->choice.media != media) Tell(c, true, NoMediaText(name, media));
  PrintersCame(c);
  c->damage |= kToolsPane | kDetailsPane;
}

void PressPrinter(Console* c, const Hit& hit) {
  c->printer_pressed = c->printer_list.NameAt(hit.index);
  if (hit.part == SideList::kBody) return SetFocusStop(c, FocusStop::kPrinters);
  c->printer_list.GoTo(c->printer_pressed);
}

void UsePrinter(Console* c, const Hit& hit) {
  const PrinterRow* row = c->printers.Find(c->printer_pressed);
  if (!row || hit.part == SideList::kBody) return;
  if (hit.part == SideList::kMark)
    c->server.ChangePrinter(c->printer_pressed, PrinterSetting::kPaperLoaded);
  else
    ChoosePrinter(c, c->printer_pressed);
}

void PrintersKey(Console* c, int type) {
  c->damage |= kPrintersPane;
  SideList& list = c->printer_list.list;
  const auto name = [c](int row) { return c->printers.rows()[size_t(row)].name; };
  if (list.Key(type) || list.Type(type, Inp.time, name)) return c->printer_list.KeyMoved();
  if (type != XWE_RETURN && type != ' ') return;
  if (const PrinterRow* row = Meant(c)) ChoosePrinter(c, row->printer->name);
}

// --- Commands

bool CanDoToPrinter(const Console* c, Which which, PrinterVerb verb) {
  const PrinterRow* row = Meant(c, which);
  return row && c->state.link == Link::kReady &&
         c->printers.Offers(verb, *row, c->printer_list.mine);
}

std::string WhyNotToPrinter(const Console* c, Which which, PrinterVerb verb) {
  const PrinterRow* row = Meant(c, which);
  return row ? c->printers.WhyNot(verb, *row) : "";
}

std::string ChosenPrinterText(const Console* c, const char* verb) {
  const PrinterRow* row = c->printers.Chosen();
  return row ? std::string(verb) + " “" + row->short_name + "”" : verb;
}

void DoToPrinter(Console* c, Which which, PrinterVerb verb) {
  const PrinterRow* row = Meant(c, which);
  if (!row) return;
  if (verb != PrinterVerb::kMakeMine)
    return c->server.ChangePrinter(row->printer->name, kSettings[int(verb)]);
  c->remembered.preferences.default_printer = row->printer->name;
  if (c->remembered.writer) c->remembered.writer->Store(c->remembered.preferences);
  PrintersCame(c);
  Tell(c, true, "The console starts with " + Quoted(row->printer->name) + " from now on");
}

std::vector<CommandChoice> MoveChoices(const Console* c) {
  std::vector<CommandChoice> choices;
  const PrinterRow* row = Meant(c);
  if (!row) return choices;
  for (const PrinterRow* target : c->printers.MoveTargets(*row))
    choices.push_back({target->short_name, false, true, target->printer->name});
  return choices;
}

void MoveAllJobs(Console* c, const std::string& printer) {
  if (const PrinterRow* row = Meant(c)) c->server.MoveJobs(row->printer->name, printer);
}

namespace {

// The one that wants paper; while none does, the chosen one.
const PrinterRow* ToLoad(const Console* c) {
  const PrinterRow* wants = c->needs.WithoutPaper();
  return wants ? wants : c->printers.Chosen();
}

}  // namespace

std::string LoadPaperText(const Console* c) {
  const PrinterRow* row = ToLoad(c);
  return row ? "Paper Loaded in “" + row->short_name + "”" : "Paper Loaded";
}

std::string WhyNotLoadPaper(const Console* c) {
  if (c->state.link != Link::kReady) return kServerAway;
  const PrinterRow* row = ToLoad(c);
  if (!row) return "No printer wants paper";
  if (!c->printers.Offers(PrinterVerb::kPaperLoaded, *row, ""))
    return "The server does not count the paper of " + Quoted(row->printer->name);
  return c->printers.WhyNot(PrinterVerb::kPaperLoaded, *row);
}

void LoadPaper(Console* c) {
  c->server.ChangePrinter(ToLoad(c)->printer->name, PrinterSetting::kPaperLoaded);
}

}  // namespace console

#include "app/panes/needs.h"

#include <algorithm>

#include "app/format/words.h"
#include "app/look/controls.h"
#include "app/look/strip.h"
#include "app/look/style.h"
#include "app/panes/ids.h"

namespace console {
namespace {

constexpr int kButton = 122, kWide = 244, kTextEnds = 24;

// It says which printer where there are more.
std::string LoadText(const NeedsPane* p) {
  const bool which = p->printers.WithoutPaper().size() > 1;
  return which ? "Paper Loaded in “" + p->WithoutPaper()->short_name + "”" : "Paper Loaded";
}

int ButtonWidth(const NeedsPane* p) {
  const int text = XwTextWidthUtf8(TheStyle().bold, LoadText(p).c_str());
  return std::clamp(text + kTextEnds, kButton, kWide);
}

}  // namespace

void NeedsPane::MakeControls(XwWindow* window) {
  load =
      XwButton(window, "Paper Loaded", kLoadPaperCommand, 0, 0, 9, 9, XWC_ENABLED | XWC_VARIANT, 0);
  choose = XwButton(window, "Choose Printer", kGoToPrintersCommand, 0, 0, 9, 9,
                    XWC_ENABLED | XWC_VARIANT, 0);
}

const PrinterRow* NeedsPane::WithoutPaper() const {
  const auto all = printers.WithoutPaper();
  return all.empty() ? nullptr : all.front();
}

bool NeedsPane::ChosenIsStopped() const {
  const PrinterRow* row = printers.Chosen();
  return row && IsStopped(*row->printer);
}

std::string NeedsPane::Text() const {
  const auto all = printers.WithoutPaper();
  const std::string gone = printers.ChosenIsGone() ? printers.WhyNotPrint() : "";
  if (all.empty() && !gone.empty()) return gone;
  if (all.empty())
    return ChosenIsStopped()
               ? "“" + printers.Chosen()->short_name + "”: " + printers.Chosen()->state
               : "";
  const std::string text =
      (gone.empty() ? "" : gone + ". ") + Quoted(all.front()->printer->name) + " is out of paper";
  return all.size() == 1 ? text
                         : text + ", and so " + (all.size() == 2 ? "is " : "are ") +
                               NumberOf(int64_t(all.size()) - 1, "other printer", "other printers");
}

void NeedsPane::Place() {
  Area a = layout.needs;
  a.TakeRight(kStripEnd);
  const Area button = TakeStripButton(&a, ButtonWidth(this));
  const PrinterRow* row = WithoutPaper();
  const std::string text = LoadText(this);
  if (text != load_text_) XwSetTextUtf8(load, text.c_str());
  load_text_ = text;
  const Area second = TakeStripButton(&a, kButton);
  const bool empty = layout.needs.Empty();
  PlaceControl(load, row && !empty ? button : Area{});
  PlaceControl(choose, empty ? Area{} : !row ? button : printers.ChosenIsGone() ? second : Area{});
}

void NeedsPane::Draw() const {
  Area a = layout.needs;
  if (a.Empty()) return;
  const Style& l = TheStyle();
  a = DrawStrip(a, WithoutPaper() ? l.bad : l.warning);
  a.TakeRight(kStripEnd + ButtonWidth(this) + kStripGap);
  if (WithoutPaper() && printers.ChosenIsGone()) a.TakeRight(kButton + kStripGap);
  DrawLabel(l.view, Align::kLeft, a, Text(), l.ink);
}

void NeedsPane::AddHits(Hits* hits) const {
  // Nothing is pressed there; the tip has the whole of it, where it is cut.
  hits->Add({}, layout.needs, {XWA_STATUS, 0, "Attention", Text(), Text()});
}

}  // namespace console

#include "app/panes/tools.h"

#include <algorithm>

#include "app/format/words.h"
#include "app/look/controls.h"
#include "app/look/style.h"
#include "app/panes/ids.h"

namespace console {
namespace {

constexpr uint32_t kShown = XWC_ENABLED | XWC_VISIBLE;

XwWindow* MakeIconButton(XwWindow* window, ToolIcon icon, int id, const char* name,
                         uint32_t style = 0) {
  XwWindow* b = XwButton(window, ButtonIcon(icon), id, 0, 0, 9, 9, kShown | XWC_ICON | style, 0);
  XwDescribeControl(b, name);
  return b;
}

std::vector<std::string> NamesOf(const std::vector<NC_Profile>& profiles) {
  std::vector<std::string> names;
  for (const NC_Profile& p : profiles) names.push_back(p.name);
  return names;
}

}  // namespace

const NC_Printer* ChosenPrinter(const PrintChoice& choice, const ServerState& state) {
  const NC_Printer* standard = nullptr;
  for (const NC_Printer& p : *state.printers) {
    if (p.name == choice.printer) return &p;
    if (!standard || p.is_default) standard = &p;
  }
  return choice.printer.empty() ? standard : nullptr;
}

void ToolsPane::MakeControls(XwWindow* w) {
  print = MakeIconButton(w, ToolIcon::kPrint, kPrintCommand, "Print", XWC_BESIDE);
  XwSetTextUtf8(print, "Print");
  refresh = MakeIconButton(w, ToolIcon::kRefresh, kRefreshCommand, "Refresh");
  printer_.Make(w, kPrinterControl, "Printer", nullptr);
  profile_.Make(w, kProfileControl, "Profile", "Usual");
  media_.Make(w, kMediaControl, "Media", "Usual");
  copies = XwEditBox(w, "1", kCopiesControl, 0, 0, 9, 9, kShown | XWC_DROPS_FOCUS);
  XwDescribeControl(copies, "Copies");
  priority = XwSlider(w, kPriorityControl, 0, 0, 9, 1, kShown, 1, kMostPriority, choice_->priority);
  XwDescribeControl(priority, "Priority");
  hold = XwCheckBox(w, "Hold next", kHoldNextControl, 0, 0, kShown, choice_->hold);
  XwDescribeControl(hold, "Hold Next Job");
  XwSetTip(copies, 0, ("Copies of the next job, 1 to " + NumberText(kMostCopies)).c_str());
  XwSetTip(priority, 0, "Priority of the next job: the highest is printed first");
  XwSetTip(hold, 0, "The next job waits until it is released (Ctrl+J)");
  colour = XwColor(w, "", kColourCommand, 0, 0, 9, 9, kShown | XWC_ICON, 0);
  XwDescribeControl(colour, "Mark in the Queue");
  no_colour = MakeIconButton(w, ToolIcon::kNoColour, kColourCommand, "Mark in the Queue");
  options = MakeIconButton(w, ToolIcon::kOptions, kOptionsCommand, "Print Options");
}

void ToolsPane::Place(const Layout& l) {
  PlaceControl(print, l.print);
  PlaceControl(refresh, l.refresh);
  PlaceControl(printer(), l.printer);
  PlaceControl(profile(), l.profile);
  PlaceControl(media(), l.media);
  PlaceControl(copies, l.copies);
  // Its track is then in the middle of the bar.
  PlaceControl(priority, {l.slider.x, l.slider.y + 1, l.slider.w, l.slider.h - 1});
  PlaceControl(hold, l.hold);
  colour_area_ = l.colour;
  PlaceColour();
  PlaceControl(options, l.options);
}

void ToolsPane::PlaceColour() {
  for (XwWindow* control : {colour, no_colour})
    PlaceControl(control, control == ShownColour() ? colour_area_ : Area{});
}

void ToolsPane::Update(const ServerState& state, std::vector<std::string> printers, bool enabled) {
  const NC_Printer* p = ChosenPrinter(*choice_, state);
  printer_.Show(std::move(printers), p ? p->name : choice_->printer, enabled);
  profile_.Show(NamesOf(*state.profiles), choice_->profile, enabled);
  media_.Show(MediaOf(p), choice_->media, enabled);
  for (XwWindow* control : {copies, priority, hold}) EnableControl(control, enabled);
}

void ToolsPane::ShowDocuments(int n) {
  n = std::max(1, n);
  if (n == documents_) return;
  documents_ = n;
  const std::string text = n == 1 ? "Print" : "Print " + NumberText(n);
  // The button has room for four figures.
  const std::string shown = n < 10000 ? text : "Print " + NumberText(n / 1000) + "k";
  XwSetTextUtf8(print, shown.c_str());
  XwDescribeControl(print, text.c_str());
}

void ToolsPane::Draw(const Layout& l) const {
  const Style& s = TheStyle();
  Fill(l.tools, s.tool_bar);
  LineAtBottom(l.tools);
  DrawLabel(s.normal, Align::kRight, l.printer_label, "Printer", s.ink);
  DrawLabel(s.normal, Align::kRight, l.profile_label, "Profile", s.ink);
  DrawLabel(s.normal, Align::kRight, l.media_label, "Media", s.ink);
  DrawLabel(s.normal, Align::kRight, l.copies_label, "Copies", choice_->no_copies ? s.bad : s.ink);
  DrawLabel(s.normal, Align::kRight, l.priority_label, "Priority", s.ink);
  DrawLabel(s.view, Align::kRight, l.priority, std::to_string(choice_->priority), s.second);
}

bool ToolsPane::Chosen(int id, int value) {
  switch (id) {
    case kPrinterControl:
      choice_->printer = printer_.Choose(value);
      return true;
    case kProfileControl:
      choice_->profile = profile_.Choose(value);
      return true;
    case kMediaControl:
      choice_->media = media_.Choose(value);
      return true;
    case kPriorityControl:
      choice_->priority = value;
      return true;
    case kHoldNextControl:
      choice_->hold = XwGetValue(hold) == 1;
      return true;
    default:
      return false;
  }
}

// What is no number of copies stays to be seen, until another one is typed or chosen.
void ToolsPane::Edited(int type) {
  const int n = NumberIn(copies, kMostCopies);
  choice_->no_copies = n == 0;
  if (n > 0) choice_->copies = n;
  if (n > 0 && type != XWE_EDIT_CHANGED) XwSetValue(copies, n);
}

void ToolsPane::PutBackCopies() {
  choice_->no_copies = false;
  choice_->copies = copies_before_;
  XwSetValue(copies, choice_->copies);
}

void ToolsPane::ChangeCopies(int by) {
  choice_->no_copies = false;
  choice_->copies = std::clamp(choice_->copies + by, 1, kMostCopies);
  XwSetValue(copies, choice_->copies);
}

void ToolsPane::ChangePriority(int by) {
  choice_->priority = std::clamp(choice_->priority + by, 1, kMostPriority);
  XwSetSliderRange(priority, 1, kMostPriority, choice_->priority);
}

void ToolsPane::ShowChoice() {
  if (!choice_->no_copies) XwSetValue(copies, choice_->copies);
  BeginCopies();
  XwSetSliderRange(priority, 1, kMostPriority, choice_->priority);
  if ((XwGetValue(hold) == 1) != choice_->hold) XwSetValue(hold, choice_->hold);
  const int rgb = choice_->colour;
  if (rgb >= 0 && XwGetValue(colour) != FromRgb(rgb)) XwSetValue(colour, FromRgb(rgb));
  PlaceColour();
}

void ToolsPane::FitMedia(const ServerState& state) {
  const NC_Printer* printer = ChosenPrinter(*choice_, state);
  if (printer && !HasMedia(*printer, choice_->media)) choice_->media.clear();
}

}  // namespace console

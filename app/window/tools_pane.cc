// The tool bar: printing what is selected, and how.
#include <algorithm>
#include <cstring>

#include "app/format/texts.h"
#include "app/window/console.h"

namespace console {
namespace {

ButtonState StateOf(const Console* c, int tool, bool enabled) {
  return ButtonAt(c, {kTools, tool, 0}, enabled);
}

void DrawIconButton(const Console* c, int tool, const Area& a, ToolIcon icon, bool enabled) {
  const Style& l = TheStyle();
  const ButtonState s = StateOf(c, tool, enabled);
  const int32_t ink = DrawFace(a, s, l.tool_bar);
  const int32_t face = s.pressed ? l.pressed : s.hover ? Mix(l.pressed, l.face, 35) : l.face;
  DrawIcon(icon, a.x + (a.w - 16) / 2, a.y + (a.h - 16) / 2, ink, face);
}

void DrawPrintButton(const Console* c) {
  const Style& l = TheStyle();
  Area a = c->layout.print;
  ButtonState s = StateOf(c, kPrint, CanPrint(c));
  s.focused = HasKeyboard(c, FocusStop::kPrint);
  const int32_t ink = DrawFace(a, s, l.tool_bar);
  DrawIcon(ToolIcon::kPrinter, a.x + 10, a.y + 5, ink, l.face);
  a.TakeLeft(32);
  DrawLabel(l.normal, Align::kLeft, a, "Print", ink);
}

void DrawPrinterField(const Console* c) {
  const Style& l = TheStyle();
  Area a = c->layout.printer;
  ButtonState s = StateOf(c, kPrinter, !c->state.printers->empty());
  s.focused = HasKeyboard(c, FocusStop::kPrinter);
  s.pressed |= c->list_open;
  DrawLabel(l.normal, Align::kRight, c->layout.printer_label, "Printer", l.ink);
  const int32_t ink = DrawFace(a, s, l.tool_bar);
  const NC_Printer* p = ChosenPrinter(c);
  DrawArrowDown(a.right() - 18, a.y + 11, Mix(ink, l.face, 75));
  a.TakeRight(22);
  a.TakeLeft(10);
  DrawLabel(l.normal, Align::kLeft, a, p ? Shown(p->name) : Shown(c->choice.printer), ink);
}

// The box between the buttons is a control.
void DrawCopies(const Console* c) {
  const Style& l = TheStyle();
  DrawLabel(l.normal, Align::kRight, c->layout.copies_label, "Copies", l.ink);
  DrawIconButton(c, kLess, c->layout.less, ToolIcon::kMinus, c->choice.copies > 1);
  DrawIconButton(c, kMore, c->layout.more, ToolIcon::kPlus, c->choice.copies < kMostCopies);
}

// The slider itself is a control.
void DrawPriority(const Console* c) {
  const Style& l = TheStyle();
  DrawLabel(l.normal, Align::kRight, c->layout.priority_label, "Priority", l.ink);
  DrawLabel(l.view, Align::kRight, c->layout.priority, std::to_string(c->choice.priority),
            l.second);
}

void DrawHold(const Console* c) {
  const Style& l = TheStyle();
  Area a = c->layout.hold;
  const Area box{a.x + 1, a.y + (a.h - 14) / 2, 14, 14};
  const ButtonState s = StateOf(c, kHold, true);
  if (HasKeyboard(c, FocusStop::kHold)) DrawFocusRing(box, 3, l.tool_bar);
  if (c->choice.hold) {
    XwRoundBox(box.x, box.y, 14, 14, 3, s.pressed ? l.dark_accent : l.accent, l.dark_accent);
    DrawTick(box.x - 2, box.y, l.on_accent);
  } else {
    XwRoundBox(box.x, box.y, 14, 14, 3, s.pressed ? l.pressed : l.face,
               s.hover || s.pressed ? l.pressed_line : l.line);
  }
  a.TakeLeft(21);
  DrawLabel(l.normal, Align::kLeft, a, "Hold", l.ink);
}

}  // namespace

void DrawToolsPane(Console* c) {
  const Style& l = TheStyle();
  Fill(c->layout.tools, l.tool_bar);
  LineAtBottom(c->layout.tools);
  DrawPrintButton(c);
  DrawIconButton(c, kUp, c->layout.up, ToolIcon::kUp, c->folder.path() != "/");
  DrawIconButton(c, kRefresh, c->layout.refresh, ToolIcon::kRefresh, true);
  DrawPrinterField(c);
  DrawCopies(c);
  DrawPriority(c);
  DrawHold(c);
}

void AddToolsHits(Console* c) {
  const Layout& l = c->layout;
  const struct {
    Tool tool;
    const Area& area;
  } kAreas[] = {{kPrint, l.print}, {kUp, l.up},     {kRefresh, l.refresh}, {kPrinter, l.printer},
                {kLess, l.less},   {kMore, l.more}, {kHold, l.hold}};
  for (const auto& row : kAreas) c->hits.Add({kTools, row.tool, 0}, row.area);
}

bool CanPrint(const Console* c) {
  const int row = c->files.selected();
  return row >= 0 && !c->folder.At(row).folder;
}

void PrintSelected(Console* c) {
  if (!CanPrint(c)) {
    Tell(c, false, "Select a file to print");
    return;
  }
  const int row = c->files.selected();
  PrintOrder order;
  order.path = c->folder.PathOf(row);
  order.document = c->folder.At(row).name;
  order.owner = OS_GetUserName();
  const NC_Printer* printer = ChosenPrinter(c);
  order.printer = printer ? printer->name : c->choice.printer;
  order.copies = c->choice.copies;
  order.priority = c->choice.priority;
  order.hold = c->choice.hold;
  c->server.Send(std::move(order));
  ++c->just_sent;
  if (c->state.link == Link::kAway)
    Tell(c, true, "It will be sent when " + c->server.host() + " is back");
}

const NC_Printer* ChosenPrinter(const Console* c) {
  const NC_Printer* standard = nullptr;
  for (const NC_Printer& p : *c->state.printers) {
    if (p.name == c->choice.printer) return &p;
    if (!standard || p.is_default) standard = &p;
  }
  return c->choice.printer.empty() ? standard : nullptr;
}

void ChangeCopies(Console* c, int by) {
  c->choice.copies = std::clamp(c->choice.copies + by, 1, kMostCopies);
  XwSetValue(c->copies, c->choice.copies);
  c->damage |= kToolsPane;
}

void ChangePriority(Console* c, int by) {
  SlidePriority(c, std::clamp(c->choice.priority + by, 1, kMostPriority));
  XwSetSliderRange(c->priority, 1, kMostPriority, c->choice.priority);
}

void SlidePriority(Console* c, int value) {
  c->choice.priority = value;
  c->damage |= kToolsPane;
}

}  // namespace console

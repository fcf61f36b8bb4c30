#include "app/window/print_options.h"

#include "app/window/commands.h"
#include "app/window/side_commands.h"

namespace console {
namespace {

constexpr int kPriorities[] = {10, 25, 50, 75, 100};
constexpr int kCopies[] = {1, 2, 3, 4, 5, 6, 8, 10, 12, 15, 20, 25, 50, 100};

struct Colour {
  const char* name;
  int rgb;
};
constexpr Colour kColours[] = {{"Red", 0xC0392B},    {"Orange", 0xD9822B}, {"Yellow", 0xE3B505},
                               {"Green", 0x2E8B57},  {"Teal", 0x1F9E9E},   {"Blue", 0x3875D7},
                               {"Violet", 0x7D4FB5}, {"Brown", 0x8A5A3C},  {"Grey", 0x7A7F87}};

void Changed(Console* c) {
  c->tools.ShowChoice();
  c->damage |= kToolsPane | kDetailsPane;
}

// Where a menu opens that belongs to a control of the tool bar.
void OpenBelow(Console* c, const Area& a) {
  const Area& at = a.Empty() ? c->layout.options : a;
  XwPopupLocation(c->window, at.x, at.bottom() + 2);
}

}  // namespace

std::vector<CommandChoice> NextPrinterChoices(const Console* c) {
  const NC_Printer* printer = ChosenPrinter(c->choice, c->state);
  const std::string chosen = printer ? printer->name : c->choice.printer;
  std::vector<CommandChoice> choices;
  for (const std::string& name : c->printers.Names())
    choices.push_back(NamedChoice(name, name == chosen));
  return choices;
}

std::vector<std::string> ProfileNames(const Console* c) {
  std::vector<std::string> names;
  for (const NC_Profile& profile : *c->state.profiles) names.push_back(profile.name);
  return names;
}

std::vector<CommandChoice> NextProfileChoices(const Console* c) {
  return NamedChoicesOrNone("Usual", ProfileNames(c), c->choice.profile);
}
void ChooseNextProfile(Console* c, const std::string& name) {
  c->choice.profile = name;
  Changed(c);
}

std::vector<CommandChoice> NextMediaChoices(const Console* c) {
  return NamedChoicesOrNone("Usual", MediaOf(ChosenPrinter(c->choice, c->state)), c->choice.media);
}
void ChooseNextMedia(Console* c, const std::string& name) {
  c->choice.media = name;
  Changed(c);
}

std::vector<CommandChoice> NextCopiesChoices(const Console* c) {
  std::vector<CommandChoice> choices;
  for (const int n : kCopies)
    choices.push_back({std::to_string(n), n == c->choice.copies && !c->choice.no_copies});
  choices.push_back({"Other…"});
  return choices;
}
void ChooseNextCopies(Console* c, int choice) {
  if (choice == int(std::size(kCopies))) return AskNextCopies(c);
  if (choice < int(std::size(kCopies))) SetNextCopies(c, kCopies[choice]);
}
void SetNextCopies(Console* c, int copies) {
  c->choice.copies = copies;
  c->choice.no_copies = false;
  Changed(c);
}

std::vector<CommandChoice> NextPriorityChoices(const Console* c) {
  std::vector<CommandChoice> choices;
  for (const int n : kPriorities) {
    const char* word = n == 10 ? " – lowest" : n == 50 ? " – usual" : n == 100 ? " – highest" : "";
    choices.push_back({std::to_string(n) + word, n == c->choice.priority});
  }
  return choices;
}
void ChooseNextPriority(Console* c, int choice) {
  if (size_t(choice) >= std::size(kPriorities)) return;
  c->choice.priority = kPriorities[choice];
  Changed(c);
}

void ChooseColour(Console* c) {
  constexpr int kNone = 1, kBefore = 2;  // items before the colours
  XwMenuItem items[kBefore + std::size(kColours) + 1] = {};
  const int chosen_now = c->choice.colour;
  items[0] = {"No Mark", chosen_now < 0 ? XWM_CHECKED : 0, kNone, nullptr};
  items[1] = {"", 0, 0, nullptr};
  int n = kBefore;
  for (const Colour& colour : kColours) {
    const int rgb = colour.rgb;
    items[n++] = {colour.name, XWM_COLOUR | (rgb == chosen_now ? XWM_CHECKED : 0), FromRgb(rgb),
                  nullptr};
  }
  OpenBelow(c, c->layout.colour);
  const int chosen = XwPopupMenu(items);
  if (!chosen) return;
  // A colour comes as its place in the menu, from 1 on, below 0.
  c->choice.colour = chosen == kNone ? -1 : kColours[-chosen - 1 - kBefore].rgb;
  Changed(c);
}

void HoldNext(Console* c) {
  c->choice.hold = !c->choice.hold;
  Changed(c);
}
bool HoldsNext(const Console* c) {
  return c->choice.hold;
}

void UseUsualOptions(Console* c) {
  const std::string printer = c->choice.printer;
  c->choice = {};
  c->choice.printer = printer;
  Changed(c);
}

void OpenOptions(Console* c) {
  OpenBelow(c, c->layout.options);
  OpenContextMenu(c, kOnOptions);
}

}  // namespace console

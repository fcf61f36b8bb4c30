// What keys and the context menu do in an edit box, and the clipboard.
#include <optional>

#include "platform/access/access.h"
#include "platform/controls/edit.h"
#include "platform/events/context_key.h"
#include "platform/events/key_characters.h"
#include "platform/menus/menus.h"

namespace platform {
namespace {

constexpr int kPasteTime = 2000;   // milliseconds
constexpr size_t kMostPastes = 8;  // that may wait at once
constexpr uint32_t kShift = shiftKey | rightShiftKey, kControl = controlKey | rightControlKey;
constexpr uint32_t kHeld = kShift | kControl | cmdKey | optionKey | rightOptionKey;

using Command = EditCommand;

// Of the context menu, in its order; an empty text is a separator.
struct CommandRow {
  Command command;
  const char* text;
  const char* key;
};
constexpr CommandRow kCommands[] = {
    {Command::kUndo, "Undo", "Ctrl+Z"},
    {Command::kRedo, "Redo", "Ctrl+Y"},
    {{}, "", ""},
    {Command::kCut, "Cut", "Ctrl+X"},
    {Command::kCopy, "Copy", "Ctrl+C"},
    {Command::kPaste, "Paste", "Ctrl+V"},
    {Command::kDelete, "Delete", "Del"},
    {{}, "", ""},
    {Command::kAll, "Select All", "Ctrl+A"},
};

bool CanDo(const Control* c, Command command) {
  const Edit& e = EditOf(c);
  const bool writable = c->active && !e.read_only;
  switch (command) {
    case Command::kUndo:
      return writable && !e.state.undo.empty();
    case Command::kRedo:
      return writable && !e.state.redo.empty();
    case Command::kCut:
    case Command::kDelete:
      return writable && e.state.selects();
    case Command::kCopy:
      // Of a text that cannot be selected, all.
      return e.read_only ? e.looks_enabled && !e.state.text.empty() : e.state.selects();
    case Command::kPaste:
      return writable;
    case Command::kAll:
      return writable && !e.state.text.empty();
    default:
      return false;
  }
}

void Changed(Control* c) {
  NoticeChange(c->object.serial, Change::kValue);
  ShowEdit(c);
}

// True when the text has changed.
bool Do(Control* c, Command command) {
  EditState& s = EditOf(c).state;
  if (!CanDo(c, command)) return false;
  bool changed = false;
  switch (command) {
    case Command::kUndo:
      changed = UndoEdit(&s);
      break;
    case Command::kRedo:
      changed = RedoEdit(&s);
      break;
    case Command::kCut:
      // The text is deleted only when the clipboard has it.
      changed = OfferText(Selection::kClipboard, std::string(s.selected())) &&
                DeleteEdit(&s, EditMove::kLeft);
      break;
    case Command::kDelete:
      changed = DeleteEdit(&s, EditMove::kRight);
      break;
    case Command::kCopy:
      OfferText(Selection::kClipboard, EditOf(c).read_only ? s.text : std::string(s.selected()));
      break;
    case Command::kPaste:
      Paste(c, Selection::kClipboard);
      break;
    case Command::kAll:
      // This selection does not become the primary selection: neither pointer nor Shift made it.
      SelectEdit(&s, 0, s.text.size());
      break;
    default:
      break;
  }
  if (changed)
    Changed(c);
  else
    ShowEdit(c);
  return changed;
}

struct ShortcutRow {
  uint8_t character;
  uint32_t modifier;  // of which either key, and no other, is held
  Command command;
};
constexpr ShortcutRow kShortcuts[] = {
    {'z', kControl, Command::kUndo},        {'y', kControl, Command::kRedo},
    {'x', kControl, Command::kCut},         {'c', kControl, Command::kCopy},
    {'v', kControl, Command::kPaste},       {'a', kControl, Command::kAll},
    {kInsertKey, kControl, Command::kCopy}, {kInsertKey, kShift, Command::kPaste},
    {kDeleteKey, kShift, Command::kCut},
};

std::optional<Command> ShortcutOf(const Event& e) {
  uint8_t character = e.key.character;
  if (character >= 'A' && character <= 'Z') character |= 32;
  const uint32_t held = e.key.modifiers & kHeld;
  for (const ShortcutRow& row : kShortcuts)
    if (row.character == character && (held & row.modifier) && !(held & ~row.modifier))
      return row.command;
  return std::nullopt;
}

struct MoveRow {
  uint8_t character;
  EditMove move, with_control;
  bool deletes;
};
constexpr MoveRow kMoves[] = {
    {kLeftKey, EditMove::kLeft, EditMove::kWordLeft, false},
    {kRightKey, EditMove::kRight, EditMove::kWordRight, false},
    {kHomeKey, EditMove::kHome, EditMove::kHome, false},
    {kEndKey, EditMove::kEnd, EditMove::kEnd, false},
    {kBackspaceKey, EditMove::kLeft, EditMove::kWordLeft, true},
    {kDeleteKey, EditMove::kRight, EditMove::kWordRight, true},
};

// True when the text has changed.
bool Move(Control* c, const MoveRow& row, uint32_t modifiers) {
  EditState& s = EditOf(c).state;
  const EditMove move = modifiers & kControl ? row.with_control : row.move;
  if (row.deletes) {
    const bool changed = DeleteEdit(&s, move);
    if (changed) Changed(c);
    return changed;
  }
  MoveEditCaret(&s, move, modifiers & kShift);
  if (s.selects()) OfferSelection(c);
  ShowEdit(c);
  return false;
}

// Of a key that the box has taken: true when the text has changed.
bool Apply(Control* c, const Event& e) {
  for (const MoveRow& row : kMoves)
    if (row.character == e.key.character) return Move(c, row, e.key.modifiers);
  if (!e.key.text[0] || (e.key.modifiers & (kControl | cmdKey))) return false;
  const bool changed = InsertEdit(&EditOf(c).state, EditLine(e.key.text), true);
  if (changed) Changed(c);
  return changed;
}

void Tell(Control* c) {
  SendControlEvent(c, kEventControlTextChanged);
}

}  // namespace

void OfferSelection(const Control* c) {
  OfferText(Selection::kPrimary, std::string(EditOf(c).state.selected()));
}

void ForgetPastes(Edit* e) {
  for (const auto& paste : e->pastes) ForgetAsk(paste->request);
  e->pastes.clear();
}

static void PasteArrived(void* data, const std::string* text) {
  auto* paste = static_cast<EditPaste*>(data);
  Control* c = paste->box;
  const size_t at = paste->at;
  std::erase_if(EditOf(c).pastes, [paste](const auto& p) { return p.get() == paste; });
  if (!text || OwnerOf(c).focus != c) return;
  EditState& s = EditOf(c).state;
  if (at != kAtSelection) SelectEdit(&s, at, at);
  if (!InsertEdit(&s, EditLine(*text), false)) return;
  DispatchScope scope;  // the record stays
  Changed(c);
  WakeCaret(c);
  Tell(c);
}

void Paste(Control* c, Selection from, size_t at) {
  Edit& e = EditOf(c);
  if (e.pastes.size() >= kMostPastes) return;
  e.pastes.push_back(std::make_unique<EditPaste>(EditPaste{c, at, 0}));
  EditPaste* paste = e.pastes.back().get();
  paste->request = AskText(from, kPasteTime, PasteArrived, paste);
}

void OpenEditMenu(Control* c, Point at) {
  MenuRef menu = CreateNewMenu(0);
  for (const CommandRow& row : kCommands) {
    const int item = AppendMenuItemText(menu, row.text);
    SetMenuItemKeyText(menu, item, row.key);
    if (!*row.text)
      ChangeMenuItemAttributes(menu, item, kMenuItemAttrSeparator, 0);
    else if (!CanDo(c, row.command))
      DisableMenuItem(menu, item);
  }
  DispatchScope scope;  // the record stays
  const int chosen = select_below(menu, OwnerOf(c).window, {at.x, at.y, at.x, at.y}, 0);
  DisposeMenu(menu);
  if (!chosen || !IsValidControl(c)) return;
  WakeCaret(c);
  if (Do(c, kCommands[chosen - 1].command)) Tell(c);
}

bool CanEditText(ControlRef c, EditCommand command) {
  return IsEditText(c) && CanDo(c, command);
}

void EditTextBy(ControlRef c, EditCommand command) {
  if (!IsEditText(c)) return;
  DispatchScope scope;  // the record stays
  WakeCaret(c);
  if (Do(c, command)) Tell(c);
}

bool EditKey(Control* c, const Event& e) {
  if (OpensContextMenu(e)) {
    if (e.kind == kEventRawKeyDown) {
      const Rect caret = CaretRect(c);
      OpenEditMenu(c, {caret.left, caret.bottom});
    }
    return true;
  }
  if (e.key.character == kTabKey) return false;
  WakeCaret(c);
  const std::optional<Command> shortcut = ShortcutOf(e);
  // A paste reports its change later, when the text arrives.
  const bool filtered = !(e.key.modifiers & (kControl | cmdKey)) && shortcut != Command::kPaste;
  Event key = e;
  DispatchScope scope;  // the record stays
  if (filtered && EditOf(c).filter && !EditOf(c).filter(c, &key)) return true;
  if (!IsValidControl(c)) return true;
  bool changed = false;
  if (shortcut)
    changed = Do(c, *shortcut);
  else
    changed = Apply(c, key);
  if (changed && !filtered) Tell(c);
  // Other keys with Control may belong to a menu.
  return filtered || shortcut;
}

}  // namespace platform

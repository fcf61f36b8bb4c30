// Edit boxes: layout, drawing, caret.
#include "platform/controls/edit.h"

#include <utility>

#include "platform/access/access.h"
#include "platform/events/clock.h"
#include "platform/text/characters.h"
#include "platform/text/utf8.h"
#include "platform/theme/roles.h"

namespace platform {
namespace {

constexpr int kTextMargin = 6;        // from the frame
constexpr double kBlinkPeriod = 0.5;  // seconds
constexpr double kBlinkTime = 10;     // seconds; then the caret stays on
constexpr int kCaretWidth = 1;

bool HasCaret(const Control* c) {
  const WindowControls& all = OwnerOf(c);
  return all.focus == c && all.window->active;
}

const TextLine& LineOf(const Control* c) {
  Edit& e = EditOf(c);
  if (!std::exchange(e.laid_out, true)) {
    std::string shown = e.state.text;
    shown.insert(e.state.caret, e.state.preedit);
    LayOutText(e.state.font, shown, &e.line);
  }
  return e.line;
}

// Pixels of the line before its n-th cluster.
int PixelsBefore(const Control* c, size_t cluster) {
  return GetTextScale(EditOf(c).state.font).Pixels(LineOf(c).clusters[cluster].pen);
}

// The last cluster that does not begin behind a byte of what shows.
size_t ClusterAt(const TextLine& line, size_t byte) {
  auto after = std::upper_bound(line.clusters.begin(), line.clusters.end(), byte,
                                [](size_t b, const TextCluster& k) { return b < k.start; });
  return after == line.clusters.begin() ? 0 : size_t(after - line.clusters.begin()) - 1;
}

// The same for a byte of the text; what is being composed stands before the caret.
int PixelsAt(const Control* c, size_t byte) {
  const EditState& s = EditOf(c).state;
  if (byte >= s.caret) byte += s.preedit.size();
  return PixelsBefore(c, ClusterAt(LineOf(c), byte));
}

void ScrollToCaret(Control* c) {
  Edit& e = EditOf(c);
  const int room = EditTextArea(c).width() - kCaretWidth;
  const int caret = PixelsAt(c, e.state.caret), width = PixelsBefore(c, LineOf(c).count());
  e.scroll = std::min(e.scroll, std::max(0, width - room));
  e.scroll = std::max(std::min(e.scroll, caret), caret - std::max(0, room));
}

void DrawFrame(Control* c, ContextRef context, int alpha) {
  const Rect r = ControlArea(c);
  const Role fill = EditOf(c).read_only ? Role::kSide : Role::kDocument;
  FillRoundRect(context, r, kCorner, RoleColor(fill), alpha);
  FrameRoundRect(context, r, kCorner, RoleColor(HasCaret(c) ? Role::kAccent : Role::kLine), alpha);
}

void Draw(Control* c, ContextRef context) {
  const Edit& e = EditOf(c);
  const bool faint = e.read_only ? !e.looks_enabled : !c->active;
  const int alpha = faint ? kThemeDisabledAlpha : kOpaqueAlpha;
  DrawFrame(c, context, alpha);
  const Rect area = EditTextArea(c);
  const ThemeTextFont font = GetViewTextFont();
  if (area.empty() || !font.font) return;
  // One column more at the left, where letters may reach out of their advance.
  ClipContextToRect(context, {area.left - 1, area.top, area.right, area.bottom});
  const int x = area.left - e.scroll;
  const int top = CaretRect(c).top, baseline = top + font.ascent;
  const uint32_t ink = RoleColor(e.read_only ? Role::kSecondInk : Role::kInk);
  DrawLine(context, font.font, x, baseline, LineOf(c), ink, alpha);
  const bool focused = OwnerOf(c).focus == c;
  if (focused && e.state.selects()) {
    const int from = x + PixelsAt(c, e.state.first()), to = x + PixelsAt(c, e.state.last());
    ClipContextToRect(context, {from, area.top, to, area.bottom});
    SetContextColor(context, RoleColor(HasCaret(c) ? Role::kAccent : Role::kInactiveSelection));
    FillRect(context, from, top, to - from, font.ascent + font.descent);
    DrawLine(context, font.font, x, baseline, LineOf(c),
             HasCaret(c) ? RoleColor(Role::kDocument) : ink);
    RestoreContextClip(context);
  }
  if (!e.state.preedit.empty()) {
    const int end = x + PixelsAt(c, e.state.caret);
    const int begin = x + PixelsBefore(c, ClusterAt(LineOf(c), e.state.caret));
    SetContextColor(context, ink);
    FillRect(context, begin, baseline + 1, end - begin, 1);
  }
  if (focused && !e.caret_off && !e.state.selects()) {
    SetContextColor(context, HasCaret(c) ? ink : RoleColor(Role::kSecondInk));
    const Rect caret = CaretRect(c);
    FillRect(context, caret.left, caret.top, caret.width(), caret.height());
  }
  RestoreContextClip(context);
}

void StopBlinking(Edit* e) {
  RemoveEventLoopTimer(e->blink);
  e->blink = nullptr;
  e->caret_off = false;
}

void Blink(EventLoopTimerRef, void* control) {
  auto* c = static_cast<Control*>(control);
  if (!IsValidControl(c)) return;
  Edit& e = EditOf(c);
  e.caret_off = !e.caret_off;
  if (!HasCaret(c) || GetCurrentEventTime() >= e.last_input + kBlinkTime) StopBlinking(&e);
  if (!e.state.selects()) RedrawArea(OwnerOf(c), c->pane, CaretRect(c));
}

void Describe(const Control* c, Description* out) {
  out->value = EditOf(c).state.text;
  if (EditOf(c).read_only) {
    // The pointer can select in it, but it never gets the focus.
    out->state &= ~uint32_t{kIsEnabled};
    out->state |= EditOf(c).looks_enabled ? kIsReadOnly | kIsEnabled : kIsReadOnly;
  }
  out->actions &= ~uint32_t{kActionPress};
}

void Border(const Control* c, Rect* border, int* corner) {
  *border = ControlArea(c);
  *corner = kCorner;
}

void End(Control* c) {
  auto* e = static_cast<Edit*>(c->data);
  StopBlinking(e);
  StopEditScrolling(e);
  ForgetPastes(e);
  delete e;
}

void Focused(Control* c, bool gained) {
  Edit& e = EditOf(c);
  e.presses = 0;
  e.arrival = gained ? Edit::kFresh : Edit::kSettled;
  if (gained)
    WakeCaret(c);
  else
    StopBlinking(&e);
}

constexpr KindRow MakeKind() {
  KindRow kind{};
  kind.draw = Draw;
  kind.press = PressEdit;
  kind.drag = DragEdit;
  kind.release = ReleaseEdit;
  kind.lost = LoseEdit;
  kind.press_other = PressEditWithOther;
  kind.key = EditKey;
  kind.focused = Focused;
  kind.describe = Describe;
  kind.border = Border;
  kind.placed = ScrollToCaret;
  kind.end = End;
  kind.role = ObjectRole::kTextField;
  kind.focus_by_press = true;
  kind.whole_area = true;
  kind.text_cursor = true;
  return kind;
}

Edit* Find(ControlRef c) {
  return IsEditText(c) ? &EditOf(c) : nullptr;
}

// A program's text: one line, whole.
std::string OneLine(std::string_view text) {
  std::string line;
  while (!text.empty()) {
    char32_t ch = TakeUtf8(&text);
    if (ch == '\n' || ch == '\r' || ch == '\t') ch = ' ';
    char bytes[4];
    if (KindOf(ch) != CharacterKind::kControl) line.append(bytes, size_t(PutUtf8(ch, bytes)));
  }
  return line;
}

}  // namespace

bool IsEditText(ControlRef c) {
  return IsValidControl(c) && c->kind == &kEditTextKind;
}

const KindRow kEditTextKind = MakeKind();

Rect EditTextArea(const Control* c) {
  const Rect r = ControlArea(c);
  return {r.left + kTextMargin, r.top + 1, r.right - kTextMargin, r.bottom - 1};
}

Rect CaretRect(const Control* c) {
  const Rect area = EditTextArea(c);
  const ThemeTextFont font = GetViewTextFont();
  const int x = area.left - EditOf(c).scroll + PixelsAt(c, EditOf(c).state.caret);
  const int top = area.top + (area.height() - font.ascent - font.descent) / 2;
  return {x, top, x + kCaretWidth, top + font.ascent + font.descent};
}

size_t EditPlaceAt(const Control* c, int x) {
  const Edit& e = EditOf(c);
  const TextLine& line = LineOf(c);
  const int column = x - EditTextArea(c).left + e.scroll;
  const TextScale scale = GetTextScale(e.state.font);
  auto after =
      std::partition_point(line.clusters.begin(), line.clusters.end(),
                           [&](const TextCluster& k) { return scale.Pixels(k.pen) <= column; });
  size_t n = after == line.clusters.begin() ? 0 : size_t(after - line.clusters.begin()) - 1;
  // Behind the cluster, once its middle has been passed.
  if (n < line.count() && 2 * column >= PixelsBefore(c, n) + PixelsBefore(c, n + 1)) ++n;
  const size_t byte = line.clusters[n].start, composed = e.state.preedit.size();
  if (byte <= e.state.caret) return byte;
  return std::max(e.state.caret, byte - composed);
}

void WakeCaret(Control* c) {
  Edit& e = EditOf(c);
  e.last_input = GetCurrentEventTime();
  e.caret_off = false;
  if (e.blink)
    SetEventLoopTimerNextFireTime(e.blink, kBlinkPeriod);
  else
    e.blink = InstallEventLoopTimer(kBlinkPeriod, kBlinkPeriod, Blink, c);
}

void ShowEdit(Control* c) {
  Edit& e = EditOf(c);
  e.laid_out = false;
  ScrollToCaret(c);
  const auto before = std::exchange(
      e.drawn, {e.state.text, PixelsAt(c, e.state.caret), PixelsBefore(c, LineOf(c).count()),
                e.scroll, e.state.selects() || !e.state.preedit.empty()});
  if (before.whole || e.drawn.whole || before.scroll != e.scroll) return Draw1Control(c);
  const auto same = std::mismatch(before.text.begin(), before.text.end(), e.state.text.begin(),
                                  e.state.text.end());
  // The change may also affect the cluster before it.
  const size_t first = ClusterAt(LineOf(c), size_t(same.second - e.state.text.begin()));
  const int left = std::min({PixelsBefore(c, first ? first - 1 : 0), before.caret, e.drawn.caret});
  const bool equal = same.first == before.text.end() && same.second == e.state.text.end();
  const int right =
      equal ? std::max(before.caret, e.drawn.caret) : std::max(before.width, e.drawn.width);
  constexpr int kBeside = 2;  // letters reach out of their advance
  const int x = EditTextArea(c).left - e.scroll;
  Rect changed = ControlArea(c);
  changed.left = std::max(changed.left, x + left - kBeside);
  changed.right = std::min(changed.right, x + right + kCaretWidth + kBeside);
  RedrawArea(OwnerOf(c), c->pane, changed);
}

ControlRef CreateEditTextControl(PaneRef pane, const Rect& bounds) {
  ControlRef c = NewControl(pane, kEditTextKind, bounds);
  if (!c) return nullptr;
  auto* e = new Edit;
  e->state.font = GetViewTextFont().font;
  c->data = e;
  SetControlKeys(c, kKeysByTab | kKeysByRequest);
  return c;
}

void SetEditKeyFilter(ControlRef c, EditKeyFilter filter) {
  if (Edit* e = Find(c)) e->filter = filter;
}

void SetEditReadOnly(ControlRef c, bool looks_enabled) {
  Edit* e = Find(c);
  if (!e) return;
  e->read_only = true;
  e->looks_enabled = looks_enabled;
  SetControlKeys(c, 0);
  Draw1Control(c);
}

void SetEditText(ControlRef c, const char* utf8) {
  Edit* e = Find(c);
  if (!e) return;
  SetEditState(&e->state, OneLine(utf8 ? utf8 : ""));
  // A box that never gets the focus shows the beginning of its text.
  if (e->read_only) e->state.caret = e->state.anchor = 0;
  NoticeChange(c->object.serial, Change::kValue);
  ShowEdit(c);
}

std::string GetEditText(ControlRef c) {
  const Edit* e = Find(c);
  return e ? e->state.text : std::string();
}

void SelectEditText(ControlRef c, int first, int last) {
  Edit* e = Find(c);
  if (!e || std::exchange(e->arrival, Edit::kSettled) == Edit::kPointerFirst) return;
  auto offset = [e](int n) { return EditOffset(e->state, size_t(std::max(0, n))); };
  SelectEdit(&e->state, offset(first), offset(last));
  e->pointer_selects = false;
  ShowEdit(c);
}

void SetEditPreedit(ControlRef c, const char* utf8) {
  Edit* e = Find(c);
  if (!e) return;
  e->state.preedit = EditLine(utf8 ? utf8 : "");
  ShowEdit(c);
}

Rect GetEditCaret(ControlRef c) {
  return Find(c) && OwnerOf(c).focus == c ? CaretRect(c) : Rect();
}

}  // namespace platform

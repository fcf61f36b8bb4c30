// What the window manager is told about a window.
#include <unistd.h>
#include <xcb/xcb_icccm.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cmath>
#include <cstring>

#include "platform/display/x11/x.h"

namespace platform::x11 {

namespace {

// What each class of windows is to the desktop.
struct ClassStyle {
  int window_class;
  AtomIndex type;
  bool decorated;
  bool transient;  // kept above the window that the record names, else the first
};
constexpr ClassStyle kClassStyles[] = {
    {kAlertWindowClass, kNetWmWindowTypeDialog, true, true},
    {kModalWindowClass, kNetWmWindowTypeDialog, true, true},
    {kFloatingWindowClass, kNetWmWindowTypeUtility, true, true},
    {kDocumentWindowClass, kNetWmWindowTypeNormal, true, false},
    {kToolbarWindowClass, kNetWmWindowTypeUtility, false, true},
    {kSimpleWindowClass, kNetWmWindowTypeNormal, false, false},
};
constexpr ClassStyle kPopUpStyle = {0, kNetWmWindowTypePopUp, false, true};
constexpr ClassStyle kDockedStyle = {0, kNetWmWindowTypeUtility, false, true};

// Attributes and what they allow: functions and decorations of the Motif hints.
struct AttributeHint {
  uint32_t attribute, functions, decorations;
};
constexpr AttributeHint kAttributeHints[] = {
    {kWindowResizableAttribute, 2, 4},
    {kWindowCollapseBoxAttribute, 8, 32},
    {kWindowFullZoomAttribute, 16, 64},
    {kWindowCloseBoxAttribute, 32, 0},
};
constexpr uint32_t kMoveFunction = 4, kFrameDecorations = 2 | 8 | 16;  // border, title, menu

// States of the record as the desktop names them. The second name may be absent.
struct StateAtoms {
  uint32_t bit;
  AtomIndex first, second;
};
constexpr StateAtoms kStateAtoms[] = {
    {kStateFullScreen, kNetWmStateFullscreen, kAtomCount},
    {kStateModal, kNetWmStateModal, kAtomCount},
    {kStateDocked, kNetWmStateSkipTaskbar, kNetWmStateSkipPager},
};

const ClassStyle& StyleOf(const Window& w) {
  if (w.parent != nullptr) return kPopUpStyle;
  if ((w.state & kStateDocked) != 0) return kDockedStyle;
  const int window_class = (w.state & kStateModal) != 0 ? kModalWindowClass : w.window_class;
  for (const ClassStyle& s : kClassStyles) {
    if (s.window_class == window_class) return s;
  }
  return kClassStyles[3];
}

void SetProperty(xcb_window_t id, xcb_atom_t property, xcb_atom_t type, const void* data,
                 size_t words) {
  xcb_change_property(x.c, XCB_PROP_MODE_REPLACE, id, property, type, 32, uint32_t(words), data);
}

void SetText(xcb_window_t id, xcb_atom_t property, xcb_atom_t type, const std::string& text) {
  xcb_change_property(x.c, XCB_PROP_MODE_REPLACE, id, property, type, 8, uint32_t(text.size()),
                      text.data());
}

// Functions and decorations of the Motif hints.
struct MotifWords {
  uint32_t functions, decorations;
};
MotifWords MotifWordsOf(const Window& w, const ClassStyle& style) {
  MotifWords words{kMoveFunction, style.decorated ? kFrameDecorations : 0};
  for (const AttributeHint& h : kAttributeHints) {
    if ((w.attributes & h.attribute) == 0) continue;
    words.functions |= h.functions;
    if (style.decorated) words.decorations |= h.decorations;
  }
  return words;
}

void SetMotifHints(const Native& n, const ClassStyle& style) {
  const MotifWords words = MotifWordsOf(*n.w, style);
  const uint32_t hints[5] = {1 | 2, words.functions, words.decorations, 0, 0};
  SetProperty(n.id, Atom(kMotifWmHints), Atom(kMotifWmHints), hints, 5);
}

void SetTransient(const Native& n, const ClassStyle& style) {
  xcb_window_t parent = 0;
  if (style.transient) {
    const Window* above = n.w->parent != nullptr ? n.w->parent : n.w->transient_for;
    const Native* named = NativeOf(above);
    parent = named != nullptr ? named->id : x.leader;
  }
  if (parent == 0 || parent == n.id) {
    xcb_delete_property(x.c, n.id, XCB_ATOM_WM_TRANSIENT_FOR);
  } else {
    SetProperty(n.id, XCB_ATOM_WM_TRANSIENT_FOR, XCB_ATOM_WINDOW, &parent, 1);
  }
}

uint32_t WantedStates(const Window& w) {
  return w.state & (kStateFullScreen | kStateModal | kStateDocked);
}

// The window manager keeps the state of a mapped window, so it is asked to change it.
void AskStates(Native* n) {
  const uint32_t wanted = WantedStates(*n->w);
  for (const StateAtoms& s : kStateAtoms) {
    if (((wanted ^ n->states) & s.bit) == 0) continue;
    const uint32_t second = s.second == kAtomCount ? 0 : Atom(s.second);
    const uint32_t data[5] = {(wanted & s.bit) != 0 ? 1u : 0u, Atom(s.first), second, 1, 0};
    SendClientMessage(x.screen->root, n->id, kNetWmState, data,
                      XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY);
  }
  n->states = wanted;
}

// The step of one axis in device pixels; 1 where it would not be whole.
int DeviceStep(int step, double scale) {
  const double device = step * scale;
  return step > 1 && device == std::floor(device) && device < 32767 ? int(device) : 1;
}

}  // namespace

uint64_t FrameKind(const Window& w) {
  const ClassStyle& style = StyleOf(w);
  if (!style.decorated) return 0;
  return uint64_t{Atom(style.type)} << 32 | MotifWordsOf(w, style).decorations;
}

void SetIdentity(const Native& n) {
  std::string names = program_invocation_short_name;
  names.push_back('\0');
  names += x.session_name.empty() ? program_invocation_short_name : x.session_name;
  names.push_back('\0');
  SetText(n.id, XCB_ATOM_WM_CLASS, XCB_ATOM_STRING, names);
  char host[256] = {};
  if (gethostname(host, sizeof host - 1) == 0) {
    SetText(n.id, XCB_ATOM_WM_CLIENT_MACHINE, XCB_ATOM_STRING, host);
    const uint32_t pid = uint32_t(getpid());
    SetProperty(n.id, Atom(kNetWmPid), XCB_ATOM_CARDINAL, &pid, 1);
  }
  SetProtocols(n);
  xcb_icccm_wm_hints_t hints{};
  xcb_icccm_wm_hints_set_input(&hints, 1);
  xcb_icccm_wm_hints_set_normal(&hints);
  xcb_icccm_wm_hints_set_window_group(&hints, x.leader);
  xcb_icccm_set_wm_hints(x.c, n.id, &hints);
  const xcb_atom_t version = 5;
  SetProperty(n.id, Atom(kXdndAware), XCB_ATOM_ATOM, &version, 1);
}

void SetProtocols(const Native& n) {
  const xcb_atom_t protocols[] = {Atom(kWmDeleteWindow), Atom(kNetWmPing), Atom(kNetWmSyncRequest)};
  SetProperty(n.id, Atom(kWmProtocols), XCB_ATOM_ATOM, protocols, n.sync.counter != 0 ? 3 : 2);
}

void SetBackdrop(const Native& n) {
  if (n.w->backdrop == kNoColor) return;
  xcb_change_window_attributes(x.c, n.id, XCB_CW_BACK_PIXEL, &n.w->backdrop);
}

void UpdateNative(const Window* w, uint32_t what) {
  Native* n = NativeOf(w);
  if (n == nullptr) return;
  if ((what & kUpdateTitle) != 0) SetTitle(*n);
  if ((what & kUpdateHints) != 0) {
    SetHints(n);
    if ((w->attributes & kWindowRefusesFilesAttribute) != 0) ForgetDragPlace(n);
  }
  if ((what & kUpdateCursor) != 0) SetCursor(n);
  if ((what & kUpdateBackdrop) != 0) {
    SetBackdrop(*n);
    PrepareBuffer(*n);
  }
  if ((what & kUpdateIcon) != 0 && n->finished) SetIcon(*n);
}

void SetTitle(const Native& n) {
  const std::string shown = n.w->modified ? "\u2022 " + n.w->title : n.w->title;
  SetText(n.id, Atom(kNetWmName), Atom(kUtf8String), shown);
  SetText(n.id, XCB_ATOM_WM_NAME, Atom(kUtf8String), shown);
}

// The window manager counts the whole window, so all sizes include the menu bar.
void SetSizeHints(const Native& n) {
  const Window& w = *n.w;
  const int width = w.content.width(), height = w.content.height();
  const double scale = w.surface.scale;
  auto device = [scale](int v) {
    return std::min(DeviceEdge(std::clamp(v, 0, 32767), scale), 32767);
  };
  const DeviceRect bounds = DeviceBounds(w);
  xcb_size_hints_t h{};
  h.flags = XCB_ICCCM_SIZE_HINT_P_POSITION | XCB_ICCCM_SIZE_HINT_US_POSITION |
            XCB_ICCCM_SIZE_HINT_P_SIZE | XCB_ICCCM_SIZE_HINT_P_WIN_GRAVITY;
  h.x = bounds.left;
  h.y = bounds.top;
  h.width = bounds.width();
  h.height = bounds.height();
  // What is asked for is the place of the content, not that of the frame.
  h.win_gravity = XCB_GRAVITY_STATIC;
  const bool fixed = !w.has_limits || (w.attributes & kWindowResizableAttribute) == 0;
  if ((w.state & kStateFullScreen) == 0) {
    const SizeLimits l = LimitsOf(w);
    h.flags |= XCB_ICCCM_SIZE_HINT_P_MIN_SIZE | XCB_ICCCM_SIZE_HINT_P_MAX_SIZE;
    h.min_width = device(fixed ? width : std::min(l.min_width, width));
    h.min_height = device((fixed ? height : std::min(l.min_height, height)) + w.menu_bar_height);
    h.max_width = device(fixed ? width : std::max(l.max_width, width));
    h.max_height = device((fixed ? height : std::max(l.max_height, height)) + w.menu_bar_height);
    const int step_x = DeviceStep(l.step_x, scale), step_y = DeviceStep(l.step_y, scale);
    if (!fixed && (step_x > 1 || step_y > 1)) {
      h.flags |= XCB_ICCCM_SIZE_HINT_P_RESIZE_INC | XCB_ICCCM_SIZE_HINT_BASE_SIZE;
      h.width_inc = step_x;
      h.height_inc = step_y;
      h.base_width = device(width) % step_x;
      h.base_height =
          (bounds.height() - device(w.menu_bar_height)) % step_y + device(w.menu_bar_height);
    }
  }
  xcb_icccm_set_wm_normal_hints(x.c, n.id, &h);
}

void SetHints(Native* n) {
  const ClassStyle& style = StyleOf(*n->w);
  SetProperty(n->id, Atom(kNetWmWindowType), XCB_ATOM_ATOM, &x.atoms[style.type], 1);
  SetTransient(*n, style);
  if (n->w->parent != nullptr) return;  // no window manager reads more of a pop-up
  SetMotifHints(*n, style);
  // While the window leaves full screen, the record still has the screen's size: the hints are set
  // once the former size has been reported.
  const bool leaving = n->mapped() && (n->states & ~WantedStates(*n->w) & kStateFullScreen) != 0;
  if (!leaving) SetSizeHints(*n);
  if (n->mapped()) AskStates(n);
}

void ReadStates(Native* n) {
  // The manager removes the states of a withdrawn window; the program's own requests stay.
  if (!n->mapped()) return;
  auto cookie = xcb_get_property(x.c, 0, n->id, Atom(kNetWmState), XCB_ATOM_ATOM, 0, 64);
  Reply<xcb_get_property_reply_t> reply(xcb_get_property_reply(x.c, cookie, nullptr));
  bool full = false;
  if (reply && reply->format == 32) {
    const auto* atoms = static_cast<const xcb_atom_t*>(xcb_get_property_value(reply.p));
    const xcb_atom_t* end = atoms + xcb_get_property_value_length(reply.p) / 4;
    full = std::find(atoms, end, Atom(kNetWmStateFullscreen)) != end;
  }
  if (n->full_screen == full) return;
  n->full_screen = full;
  const uint32_t state = full ? uint32_t{kStateFullScreen} : 0;
  n->states = (n->states & ~uint32_t{kStateFullScreen}) | state;
  Emit(RawEvent::kState, n)->state = state;
}

void WriteStates(Native* n) {
  xcb_atom_t atoms[8];
  size_t count = 0;
  n->states = WantedStates(*n->w);
  for (const StateAtoms& s : kStateAtoms) {
    if ((n->states & s.bit) == 0) continue;
    atoms[count++] = Atom(s.first);
    if (s.second != kAtomCount) atoms[count++] = Atom(s.second);
  }
  // An empty list would be a change, whose notice asks the server for the list again.
  if (count == 0)
    xcb_delete_property(x.c, n->id, Atom(kNetWmState));
  else
    SetProperty(n->id, Atom(kNetWmState), XCB_ATOM_ATOM, atoms, count);
}

}  // namespace platform::x11

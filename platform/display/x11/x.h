// The X display: what its files share. Nothing outside this folder includes an X header.
#pragma once
#include <xcb/xcb.h>
#include <xcb/xproto.h>

#include <cstdint>
#include <deque>
#include <map>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "platform/display/display.h"
#include "platform/display/screens.h"
#include "platform/display/window.h"
#include "platform/events/clock.h"
#include "platform/events/queue.h"
#include "platform/events/timers.h"

namespace platform::x11 {

// Every atom that is used, by the name of its constant. All are asked for in one batch.
#define XW_ATOMS(ATOM)                                           \
  ATOM(kUtf8String, "UTF8_STRING")                               \
  ATOM(kWmProtocols, "WM_PROTOCOLS")                             \
  ATOM(kWmDeleteWindow, "WM_DELETE_WINDOW")                      \
  ATOM(kWmState, "WM_STATE")                                     \
  ATOM(kNetWmPing, "_NET_WM_PING")                               \
  ATOM(kNetWmSyncRequest, "_NET_WM_SYNC_REQUEST")                \
  ATOM(kNetWmSyncRequestCounter, "_NET_WM_SYNC_REQUEST_COUNTER") \
  ATOM(kNetWmIcon, "_NET_WM_ICON")                               \
  ATOM(kNetWmName, "_NET_WM_NAME")                               \
  ATOM(kNetWmPid, "_NET_WM_PID")                                 \
  ATOM(kNetWmUserTime, "_NET_WM_USER_TIME")                      \
  ATOM(kNetStartupId, "_NET_STARTUP_ID")                         \
  ATOM(kNetStartupInfoBegin, "_NET_STARTUP_INFO_BEGIN")          \
  ATOM(kNetStartupInfo, "_NET_STARTUP_INFO")                     \
  ATOM(kNetActiveWindow, "_NET_ACTIVE_WINDOW")                   \
  ATOM(kNetFrameExtents, "_NET_FRAME_EXTENTS")                   \
  ATOM(kNetRequestFrameExtents, "_NET_REQUEST_FRAME_EXTENTS")    \
  ATOM(kNetSupported, "_NET_SUPPORTED")                          \
  ATOM(kNetSupportingWmCheck, "_NET_SUPPORTING_WM_CHECK")        \
  ATOM(kNetWmWindowType, "_NET_WM_WINDOW_TYPE")                  \
  ATOM(kNetWmWindowTypeNormal, "_NET_WM_WINDOW_TYPE_NORMAL")     \
  ATOM(kNetWmWindowTypeDialog, "_NET_WM_WINDOW_TYPE_DIALOG")     \
  ATOM(kNetWmWindowTypeUtility, "_NET_WM_WINDOW_TYPE_UTILITY")   \
  ATOM(kNetWmWindowTypePopUp, "_NET_WM_WINDOW_TYPE_POPUP_MENU")  \
  ATOM(kNetWmState, "_NET_WM_STATE")                             \
  ATOM(kNetWmStateModal, "_NET_WM_STATE_MODAL")                  \
  ATOM(kNetWmStateFullscreen, "_NET_WM_STATE_FULLSCREEN")        \
  ATOM(kNetWmStateSkipTaskbar, "_NET_WM_STATE_SKIP_TASKBAR")     \
  ATOM(kNetWmStateSkipPager, "_NET_WM_STATE_SKIP_PAGER")         \
  ATOM(kMotifWmHints, "_MOTIF_WM_HINTS")                         \
  ATOM(kXsettingsSelection, "_XSETTINGS_S0")                     \
  ATOM(kXsettingsSettings, "_XSETTINGS_SETTINGS")                \
  ATOM(kManager, "MANAGER")                                      \
  ATOM(kXdndAware, "XdndAware")                                  \
  ATOM(kXdndEnter, "XdndEnter")                                  \
  ATOM(kXdndPosition, "XdndPosition")                            \
  ATOM(kXdndStatus, "XdndStatus")                                \
  ATOM(kXdndLeave, "XdndLeave")                                  \
  ATOM(kXdndDrop, "XdndDrop")                                    \
  ATOM(kXdndFinished, "XdndFinished")                            \
  ATOM(kXdndSelection, "XdndSelection")                          \
  ATOM(kXdndTypeList, "XdndTypeList")                            \
  ATOM(kXdndActionCopy, "XdndActionCopy")                        \
  ATOM(kTextUriList, "text/uri-list")                            \
  ATOM(kXwDrop, "_XW_DROP")                                      \
  ATOM(kXwDrop2, "_XW_DROP_2")                                   \
  ATOM(kIncr, "INCR")                                            \
  ATOM(kClipboard, "CLIPBOARD")                                  \
  ATOM(kClipboardManager, "CLIPBOARD_MANAGER")                   \
  ATOM(kSaveTargets, "SAVE_TARGETS")                             \
  ATOM(kTargets, "TARGETS")                                      \
  ATOM(kMultiple, "MULTIPLE")                                    \
  ATOM(kAtomPair, "ATOM_PAIR")                                   \
  ATOM(kTimestamp, "TIMESTAMP")                                  \
  ATOM(kText, "TEXT")                                            \
  ATOM(kTextPlain, "text/plain")                                 \
  ATOM(kTextPlainUtf8, "text/plain;charset=utf-8")               \
  ATOM(kXwText, "_XW_TEXT")                                      \
  ATOM(kAbsPressure, "Abs Pressure")                             \
  ATOM(kAbsTiltX, "Abs Tilt X")                                  \
  ATOM(kAbsTiltY, "Abs Tilt Y")

enum AtomIndex {
#define XW_ATOM_INDEX(constant, name) constant,
  XW_ATOMS(XW_ATOM_INDEX)
#undef XW_ATOM_INDEX
      kAtomCount
};

// What the display keeps of one window.
struct Native {
  const Window* w = nullptr;
  xcb_window_t id = 0;
  // Pixels. `rows` x `stride` is what the memory holds; width and height are what is in use.
  uint32_t* pixels = nullptr;
  size_t bytes = 0;
  int width = 0, height = 0, stride = 0, rows = 0;
  uint32_t segment = 0;  // 0: plain memory, sent through the connection
  unsigned attach_sequence = 0;
  bool presented = false;  // the buffer holds a picture that may be shown again
  // As the server reports them; not `bounds_known` once the program has asked for others.
  DeviceRect bounds;
  bool bounds_known = false;
  // What the program has asked for and the window manager has not answered yet (bounds.cc).
  struct {
    struct Request {
      DeviceRect bounds;
      unsigned sequence;
    };
    std::vector<Request> open;             // oldest first, neighbours differ
    double since = 0;                      // the newest
    DeviceRect held;                       // the last other bounds that came
    EventLoopTimerRef patience = nullptr;  // runs while something is held
  } asked;
  // The question to the server where the window is, asked when an event that another program sent
  // tells of other bounds than the known ones. Sequence numbers of its two requests; 0: not asked.
  struct {
    unsigned place = 0, size = 0;
    bool passed_over = false;  // an event of the server's own, for one that was sent after it
  } check;
  bool reparented = false;
  // Whether the program wants it shown, and how far that has come.
  bool wanted = false;
  enum Phase : uint8_t { kUnmapped, kMapping, kMapped, kWithdrawing } phase = kUnmapped;
  bool activate = false;  // once it is mapped
  bool mapped() const { return wanted && (phase == kMapping || phase == kMapped); }
  uint32_t states = 0;       // bits of kStateAtoms that the desktop was told
  bool full_screen = false;  // as the desktop says
  xcb_cursor_t cursor = 0;
  bool finished = false;  // has what comes after the first picture (sync.cc)
  // The window manager's wait for the picture of a size that it gives.
  struct {
    uint32_t counter = 0;  // 0: none
    uint32_t low = 0;      // the value that it waits for
    int32_t high = 0;
    bool waits = false;
    bool sized = false;  // the size that it has announced is here
    EventLoopTimerRef patience = nullptr;
  } sync;
};

// An event as xcb gives it.
struct FreeEvent {
  void operator()(xcb_generic_event_t* e) const { free(e); }
};
using ServerEvent = std::unique_ptr<xcb_generic_event_t, FreeEvent>;

struct State {
  xcb_connection_t* c = nullptr;
  xcb_screen_t* screen = nullptr;
  xcb_visualid_t visual = 0;
  uint8_t depth = 24;
  xcb_colormap_t colormap = 0;  // 0: the screen's own
  xcb_gcontext_t gc = 0;
  xcb_atom_t atoms[kAtomCount] = {};
  std::string session_name;
  std::vector<Screen> screens;
  double scale = 1.0;
  xcb_window_t settings_owner = 0;  // publishes the desktop's settings
  bool shm = false;
  bool shapes = false;            // the server has been told that windows get shapes
  bool lost = false;              // the loss of the connection has been reported
  bool late_done = false;         // keymap, XInput and the like are open
  bool shown = false;             // something has been presented
  bool idle = false;              // and after that the program had nothing left to do
  xcb_timestamp_t user_time = 0;  // of the last press or key
  xcb_window_t leader = 0;        // the first window
  // What is known of the window manager (manager.cc).
  struct {
    bool known = false;
    bool tells_frames = false, syncs = false;
    // The check window, read with the screens; good for one look, since a manager may end.
    bool checked = false;
    xcb_window_t check = XCB_NONE;
    struct Frame {
      uint64_t kind;
      DeviceRect widths;
    };
    std::vector<Frame> frames;
  } manager;
  enum { kSyncUnknown, kSyncMissing, kSyncHere } sync = kSyncUnknown;  // the extension
  uint8_t randr_event = 0, xkb_event = 0, xi_opcode = 0;
  // The server's clock in seconds since its first report, and what leads from there to ours.
  struct {
    bool known = false;
    uint32_t last = 0;
    double server = 0, offset = 0;
  } clock;
  std::unordered_map<xcb_window_t, Native*> windows;
  int checks = 0;                      // windows about whose place the server has been asked
  std::deque<ServerEvent> pending;     // read, not looked at
  std::deque<RawEvent> out;            // made, not handed out
  std::deque<std::string> paths;       // of the files to open in `out`, in their order
  std::string path;                    // the one handed out last
  double frame_patience = 0.1;         // seconds that a manager has to tell its frames' widths
  double picture_patience = 0.1;       // seconds that the picture of a new size may take
  double drop_patience = 5;            // seconds that a dropped list may make no progress
  std::map<int, std::string> arrived;  // texts of the answers in `out`, by request
  std::string taken_text;              // the one handed out last
  double delivery_patience = 5;        // seconds until an asker takes the next piece
  size_t most_text = kMostText;        // bytes that are taken of an owner
};
extern State x;

inline Native* NativeOf(const Window* w) {
  return w != nullptr ? static_cast<Native*>(w->native) : nullptr;
}
Native* FindNative(xcb_window_t id);
// The protocol's coordinates are 16 bits wide.
inline int Clamp16(int v) {
  return v < -32768 ? -32768 : v > 32767 ? 32767 : v;
}
inline uint32_t Side(int v) {
  return uint32_t(v < 1 ? 1 : v > 32767 ? 32767 : v);
}
inline xcb_atom_t Atom(AtomIndex i) {
  return x.atoms[i];
}

// A reply of xcb, freed with its scope.
template <class T>
struct Reply {
  explicit Reply(T* reply) : p(reply) {}
  ~Reply() { free(p); }
  Reply(const Reply&) = delete;
  Reply& operator=(const Reply&) = delete;
  T* operator->() const { return p; }
  explicit operator bool() const { return p != nullptr; }
  T* p;
};

// --- bounds.cc
// Where the window shall be.
DeviceRect Wanted(const Window& w);
// Asks for that.
void MoveResizeNative(const Window* w);
// Gives a pop-up its round corners, for the size that it has been asked for.
void ShapePopUp(const Native& n);
// Reports bounds.
void EmitBounds(Native* n, const DeviceRect& r);
// Takes the bounds that the server reports, in an event with this sequence number.
void TakeBounds(Native* n, const DeviceRect& bounds, unsigned sequence);
// The same from an event that a program has sent: the window manager, or one that pretends to be.
void TakeToldBounds(Native* n, const DeviceRect& bounds, unsigned sequence);
// Takes the replies to the requests of TakeToldBounds, as far as they have arrived.
void TakeChecks();
void ForgetAsked(Native* n);
void ForgetCheck(Native* n);

// --- windows.cc, hints.cc
void* CreateNative(const Window* w, DeviceRect* frame);
void DestroyNative(const Window* w);
void RaiseNative(const Window* w, uint32_t how, const char* token);
// Asks for the focus, now or once it is mapped.
void Activate(Native* n);
// What never changes: class, process, protocols.
void SetIdentity(const Native& n);
void UpdateNative(const Window* w, uint32_t what);
void SetTitle(const Native& n);
void SetHints(Native* n);
// Size hints only: when the size changes they may have to follow.
void SetSizeHints(const Native& n);
// The state property of a window that is about to be mapped.
void WriteStates(Native* n);
// Reads the states from the window manager and reports changes: the user may have ended full screen
// there.
void ReadStates(Native* n);
// What decides how wide the frame of a window is, as one number; 0: there is none.
uint64_t FrameKind(const Window& w);
// The protocols of the window manager that the window takes part in.
void SetProtocols(const Native& n);
// The colour of what is uncovered before it is drawn.
void SetBackdrop(const Native& n);
void SendClientMessage(xcb_window_t to, xcb_window_t about, AtomIndex type, const uint32_t data[5],
                       uint32_t mask);

// --- manager.cc
// Its question goes with a batch of requests that is sent anyway.
xcb_get_property_cookie_t AskManager();
void TakeManager(xcb_get_property_cookie_t cookie);
bool HasWindowManager();
// It takes part in the protocol of sync.cc.
bool ManagerSyncs();
// Another one may run now.
void ForgetManager();
// The widths of the frame that a new window of this kind will get, where that is known or has to be
// asked for; waits for the answer.
DeviceRect FrameOf(const Native& n, uint64_t kind);
// The widths of the window's frame, reported.
void ReadFrameExtents(Native* n);

// --- sync.cc
// Sets up, after its first picture, what a window did not need for it.
void FinishWindow(Native* n);
void SetIcon(const Native& n);
// The manager announces a size; the server has given it; a picture is out.
void HandleSyncRequest(Native* n, const xcb_client_message_event_t* e);
void NoteSize(Native* n);
void NotePresented(Native* n);
void ForgetCounter(Native* n);

// --- mapping.cc
void MapNative(const Window* w, bool shown);
// The window manager has the window, or there is none; it has let go of it.
void TakeMapped(Native* n);
void TakeWithdrawn(Native* n);
// Maps docked windows that have waited for a window that is destroyed.
void StepDocked();

// --- startup.cc
void BeginStartup();
// The first window of the process gets the launcher's token.
void MarkStartup(const Native& n);
// Whether a program of this name runs: each step goes with a batch of requests that is sent anyway.
void AskProgramName();
void AskOthers();
void TakeOthers();
bool OthersRun();
// The first window of the process stands for it.
void MarkProgram(const Native& n);
// The first frame is shown.
void EndStartup();
void UseToken(const char* token);

// --- shared_memory.cc
// Memory that the server can map too; the caller unmaps it and closes the descriptor. No pixels
// when there is none.
struct SharedMemory {
  uint32_t* pixels = nullptr;
  int descriptor = -1;
};
SharedMemory AllocateShared(size_t bytes);
// The same, all of it in one colour.
SharedMemory AllocateFilled(size_t bytes, uint32_t pixel);
// The same ahead, while the program fills its first window with controls. The next of the two calls
// ends that: the first gives the memory, none where that has another size or colour; the second
// frees it.
void AllocateAhead(size_t bytes, uint32_t pixel);
SharedMemory TakeAhead(size_t bytes, uint32_t pixel);
void DropAhead();

// --- pixels.cc
// Begins to make the pixels of the first window, whose colour is known now.
void PrepareBuffer(const Native& n);
uint32_t* ResizeBuffer(const Window* w, int width, int height, int* stride);
void FreeBuffer(Native* n);
// The buffer of a pop-up that ends is kept for the next one.
void KeepBuffer(Native* n);
void DropSpareBuffers();
void Present(const Window* w, const DeviceRect* rects, int count);
void Flush(bool wait);
// Handles an error of the server; true when it was about shared memory.
bool HandleSharedMemoryError(const xcb_generic_error_t* error);

// --- screens.cc
// Asks for the monitors and the scale, and waits for the answers.
void ReadScreens();
int Screens(Screen* out, int max);
// Screens or scale may have changed: read again, and reported if so.
void RefreshScreens();
// RESOURCE_MANAGER text: the value of Xft.dpi, or 0.
double DpiOfResources(const char* text, size_t size);
// The settings property: Xft/DPI in dots, or 0. Any bytes may come in.
double DpiOfSettings(const uint8_t* data, size_t size);
double ScaleOfDpi(double dpi);

// --- events.cc
bool NextEvent(RawEvent* out);
// Opens what the first picture does not need, once.
void OpenLate();
// Reads what the connection has into `pending`, at most so many events (negative: all).
void Pump(int most = -1);
// A report for `n` at the server's time `t` (0: now), at the end of the queue.
RawEvent* Emit(RawEvent::Type type, Native* n, xcb_timestamp_t t = 0);
double Now();

// --- keys.cc
void OpenKeyboard();
void CloseKeyboard();
// The symbol of a key in a group of layouts (from 0) with the server's modifiers held; 0: none.
uint32_t KeysymOf(uint8_t code, int group, uint8_t mods);
void HandleKey(const xcb_key_press_event_t* e, bool press);
void HandleXkb(const xcb_generic_event_t* event);
// Reports the release of every held key, since the real releases will not reach the program.
void ReleaseKeys(Native* n, xcb_timestamp_t time);
// The window is destroyed: releases of its keys and buttons are reported without a window.
void ForgetKeys(const Window* w);
void ForgetPress(const Window* w);
// A button went down in it and is held.
bool IsPressedIn(const Window* w);
// `n` has got the focus: reports changes of modifiers and releases from before.
void RefreshKeys(Native* n);
// The modifier bits of the table for the server's.
uint32_t Modifiers(uint32_t state);

// --- pointer.cc, devices.cc
void OpenPointer();
void ClosePointer();
void SelectPointer(const Native& n);
void HandleButton(const xcb_button_press_event_t* e, bool press);
void HandleMotion(const xcb_motion_notify_event_t* e);
void HandleCrossing(const xcb_enter_notify_event_t* e, bool enter);
void HandleInput2(const xcb_ge_generic_event_t* event);
// Drops the buttons that are up in the server's state; returns those still held, bit n for button
// n.
uint32_t DropReleased(uint16_t state);
// Windows have been shown or hidden: another one may be under the pointer.
void ForgetUnder();
// Ends the automatic grab of a press that the extension has reported: it would block the program's
// own grab, even for the same window.
void DropPressGrab();

// --- cursors.cc
// Shows the record's cursor.
void SetCursor(Native* n);
void DestroyCursor(const Cursor* cursor);
// The server's cursor for one of the program's, null included.
xcb_cursor_t NativeCursor(const Cursor* cursor);
// Gives the windows made so far the theme's arrow.
void OpenCursors();
void CloseCursors();

// --- grab.cc
void Grab(const Window* w, GrabMode mode, const Cursor* cursor);
// Takes the server's answers to requests for a grab: those that have come, or all.
void TakeGrabAnswers(bool wait);
// `n` has the pointer, in whichever mode; the windows of the program share it.
bool HoldsGrab(const Native* n);
bool GrabsForProgram();
bool GrabsKeyboard();
// The window is on the screen; it has left the screen; it ends.
void GrabWhenShown(const Native* n);
void LoseGrab(Native* n);
void ForgetGrab(const Native* n);
void DropGrabCursor(const Cursor* cursor);

// --- drops.cc
bool HandleDropMessage(Native* n, const xcb_client_message_event_t* e);
void HandleDropData(const xcb_selection_notify_event_t* e);
// Properties in which lists of files come, in turn.
bool IsDropProperty(xcb_atom_t property);
void HandleDropPiece(const Native* n, xcb_atom_t property);
// The window of a source is gone.
void HandleSourceEnd(xcb_window_t source);
// The window has heard the end of what is dragged over it: a drop needs a new place first.
void ForgetDragPlace(const Native* n);
void ForgetDrop(const Native* n);

// --- watches.cc: windows of other programs.
// The server tells of its end, and of its properties, until Unwatch is called as often. Nothing
// happens for the program's own windows and the root.
enum WatchWhat : uint8_t { kWatchEnd, kWatchProperties };
void Watch(xcb_window_t window, WatchWhat what);
void Unwatch(xcb_window_t window, WatchWhat what);
// The window is gone.
void ForgetWatch(xcb_window_t window);
void CloseWatches();

// --- selections.cc: the texts that the program offers.
bool OfferText(Selection which, const SharedText& text);
void KeepText();
xcb_atom_t SelectionAtom(Selection which);
// The window that stands for the program; 0 while it has offered nothing.
xcb_window_t SelectionWindow();
void HandleAsker(const xcb_selection_request_event_t* e);
void HandleSelectionClear(const xcb_selection_clear_event_t* e, unsigned sequence);
// An asker may have taken a piece. False when it was none.
bool HandlePieceTaken(xcb_window_t window, xcb_atom_t property);
// The window of an asker is gone.
void HandleAskerEnd(xcb_window_t window);
void CloseSelections();

// --- text_requests.cc: the texts that the program asks for.
void AskText(Selection which, int request, bool wanted);
bool IsTextRequestWindow(xcb_window_t window);
void HandleText(const xcb_selection_notify_event_t* e);
void HandleTextPiece(xcb_window_t window);
// The window of an owner is gone.
void HandleOwnerEnd(xcb_window_t window);
void CloseTextRequests();

}  // namespace platform::x11

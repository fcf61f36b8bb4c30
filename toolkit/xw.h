/* Xw: a small windowing toolkit.
 *
 * A program opens a session, creates windows, and receives everything that happens as one kind of
 * record, the XwEvent. It selects a window and draws into it with whole coordinates.
 *
 *     #include <stdlib.h>
 *
 *     #include "toolkit/xw.h"
 *
 *     static int Main(int type) {
 *       if (type == XWE_CLOSE || type == XWE_QUIT) exit(0);
 *       if (type == XWE_EXPOSE) {
 *         XwSet(Inp.window);
 *         XwDrawText(XWF_BOLD, 0, 0, 0, XW->width, XW->height, "Hello", 0, -1);
 *       }
 *       return 0;
 *     }
 *     int main(void) {
 *       XwSession("hello", "Hello", 7);
 *       XwWindow* w = XwCreate(0, 100, 100, 320, 200, Main);
 *       XwShow(w, 1);
 *       XwRunEventLoop();
 *     }
 *
 * This header is the manual. It compiles as C11 and as C++20. What holds everywhere:
 *
 *   Units      Coordinates and sizes are logical pixels, origin top-left, y down. A top-level
 *              window's own position is that of its content on the screen; everything inside is
 *              relative to its parent. Stores into 16-bit fields saturate.
 *   Text       One byte a character, Mac Roman, zero-terminated. Longer than a fixed buffer: cut.
 *   Null       A null window, font or string is ignored (or means the default, where said).
 *   Failure    Shows in the result: null, 0 or -1. Nothing throws. Two failures print a line on
 *              standard error: no display can be opened, and the system has no font.
 *   Scale      Coordinates do not change with the screen's scale, and a program need not know it:
 *              one logical pixel is one to eight device pixels, text and lines are sharp at each.
 *              When a window comes to a screen of another scale, its content is drawn again (769).
 *   Threads    Everything runs on the main thread, but XwPost: by it the program's other threads
 *              hand their results over.
 *   Memory     Windows belong to the tree and are freed by XwDestroy; no pointer to a destroyed
 *              window stays anywhere in the toolkit. Strings that are returned live in static
 *              buffers: the next call of the same function overwrites them.
 */
#ifndef XW_H
#define XW_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* A number that can also carry a pointer. */
typedef intptr_t XwValue;

typedef struct XwWindow XwWindow;
typedef struct XwEvent XwEvent;
typedef struct XwFont XwFont;
typedef struct XwIcon XwIcon;
typedef struct XwBoxes XwBoxes;
/* The platform's objects; opaque here. */
typedef struct XwContext XwContext;
typedef struct XwRegion XwRegion;
typedef struct XwCursor XwCursor;

/* Called with the type of the event; the rest is in Inp. Returns 0 when it consumed the event (768
 * and 769 count as consumed too); any other type makes the waiting call return that type to its
 * caller. A handler may destroy any window, its own included. */
typedef int (*XwHandler)(int type);

/* ==== Session ===================================================================================
 *
 * One session a process, opened before any other call here. It starts the display (the environment
 * variable XW_DISPLAY chooses x11 or headless; unset, the first that opens), loads the standard
 * fonts and makes the root of the window tree. When no display can be opened it says so in one line
 * on standard error and ends the process with status 1. */

/* `name` is the short name (menu bar, window class), `title` the first window's title; both
 * pointers are kept, not copied. Bit value 4 of `flags`: the program has no Preferences command; no
 * other bit is read. The working directory becomes the user's home: make paths of the command line
 * absolute before.
 * On a desktop with a message bus a program runs once on a display: a second start with the same
 * name brings the first one forward, shows nothing, and gets 796 as soon as it has a window. */
void XwSession(const char* name, const char* title, uint8_t flags);
/* Removes the timers and drops what is queued. Only the process's end follows. */
void XwEndSession(void);

extern const char* SessionName;
extern const char* SessionTitle;
extern int32_t OSversion; /* 0x0300 */
/* Main screen as it is now, logical pixels; and points per millimetre (72 / 25.4 on any screen). */
extern int32_t XW_SCREENX, XW_SCREENY;
extern double XW_SCREENRES;
/* Selection colours, as colour values (see Drawing). */
extern int32_t CL_HILIGHT, CL_HILIGHTTEXT;
/* Opaque, never null after XwSession. */
extern void* MainQueue;
extern void* MainTarget;
extern void* XW_ColorSpace;
extern void* TextMeasContext;
extern void* Pserial;
extern void* XW_DockedWindowsGroup;
extern float TextCTM[6]; /* the identity */

/* Length-prefixed to zero-terminated and back, each in a static buffer of its own that the next
 * call overwrites. P2CSTR cuts at 254 characters, C2PSTR at 255. Null gives the empty string. */
char* P2CSTR(const unsigned char* pascal);
unsigned char* C2PSTR(const char* text);

/* ==== Events ====================================================================================
 *
 * There is one current event, Inp. A waiting call fills it and calls the handler of the window that
 * the event is addressed to; the handler reads from Inp what it needs. Input arrives in Inp as it
 * is translated; what the toolkit or the program sends (timers, redraw requests, XwSendEvent) is a
 * copy of a whole record that waits in the queue, so receiving one restores the sender's other
 * fields as well.
 *
 * Types. The number of a printable key is its character; with Control held it stays that of the
 * letter (Control-A is 'a', with XWS_CONTROL in Inp.state). A notch of the wheel has no type: it
 * goes to a scroll handler (XwSetScrollHandler) or a scroll bar, 48 logical pixels each. */
enum {
  XWE_NONE = 0,
  /* 32..126: a printable key. */
  XWE_F1 = 256, /* to XWE_F1 + 11, F12 */
  XWE_BACKSPACE = 512, XWE_TAB = 513, XWE_RETURN = 514, XWE_ESCAPE = 515, XWE_F13 = 517,
  XWE_HELP = 520, XWE_DELETE = 521, XWE_HOME = 522, XWE_END = 523, XWE_PAGE_UP = 524,
  XWE_PAGE_DOWN = 525, XWE_UP = 526, XWE_LEFT = 527, XWE_DOWN = 528, XWE_RIGHT = 529,
  XWE_CONFIGURE = 768,    /* moved or resized */
  /* Draw the content: it has been cleared; select the window and draw. A program asks for it with
   * XwSendEvent(w, XWE_EXPOSE, 0, 0, 0). Requests are not merged: two of them draw twice. */
  XWE_EXPOSE = 769,
  XWE_MOTION = 770,       /* the pointer moved; one outside the window tells that it has left */
  XWE_PRESS = 771,        /* primary; 772 secondary, 773 tertiary, 774 and 775 side buttons */
  XWE_RELEASE = 776,
  XWE_MODIFIERS = 777,    /* Inp.state has the new modifier bits */
  XWE_CLOSE = 778,        /* the user asks for it; the window stays */
  XWE_TIMER = 779,
  XWE_CONTROL = 783, XWE_EDIT_SELECT = 788, XWE_EDIT_CHANGED = 789, XWE_EDIT_DONE = 790,
  XWE_SCROLLED = 791, XWE_SCROLLING = 792,
  XWE_MENU_OPENING = 793, XWE_MENU = 794, XWE_TOOLBAR = 795,
  /* To the first window: the user chose Quit, the desktop's session ends, or SIGTERM came; the
   * program ends itself. A wait that returns other windows' events returns this one, too. */
  XWE_QUIT = 796,
  XWE_PREFERENCES = 797, /* to the first window */
  /* To the first window: a document to open, asked for by the desktop or dropped on a window of the
   * program. The value is its path, a char* in UTF-8. */
  XWE_OPEN = 798,
  XWE_KEY_UP = 800
};

/* Bits of XwEvent.state. */
enum {
  XWS_BUTTONS = 0x1F, /* bit 0 the primary button ... bit 4 */
  XWS_CONTROL = 0x20, XWS_SHIFT = 0x40, XWS_OPTION = 0x80, XWS_CAPS = 0x200, XWS_COMMAND = 0x800
};

struct XwEvent {
  XwWindow* window;  /* all: the window addressed */
  XwWindow* focus;   /* where keys go: set by XwSetFocus and by every pointer event */
  uint32_t time;     /* keys, press, release: milliseconds */
  int32_t type;
  XwValue value;     /* 779: the timer's value. 798: the path, a char*. 800: the key released */
  int32_t item;      /* pointer and keys: position of the box under the pointer (XwBoxList), 0 none.
                        783: the control's id. 794: the command */
  int32_t param;     /* XwSendEvent's last argument, else 0. 796: 1 when the user chose Quit. 798: 1
                        when another program asks by the message bus, 0 for a drop */
  int32_t spare;     /* the program's own; copied along */
  int32_t x, y, width, height; /* 768: new bounds. 769: 0, 0 and the size. item != 0: the box */
  int32_t root_x, root_y;      /* pointer: on the screen */
  int32_t px, py;              /* pointer: in the window's own coordinates */
  uint32_t state;              /* XWS_ bits: buttons held and modifiers */
  int32_t pressure;            /* pointer: pen pressure 0..255, 0 for a mouse */
  int32_t tilt_x, tilt_y;      /* pointer: pen tilt, signed 16 bits */
};
extern XwEvent Inp;

/* Waits and dispatches for ever. The program ends itself, usually on 778 or 796. */
#ifdef __cplusplus
[[noreturn]]
#else
_Noreturn
#endif
void XwRunEventLoop(void);
/* Waits for an event that the caller must see and returns its type: one whose window has no
 * handler, or the other code that a handler returned. `modal` null: all windows. A window: events
 * of windows outside it are returned undispatched (a loop hands redraws on: DirectSendEvent with
 * 768, 769), but closing them only beeps, and a press beeps and raises `modal`. (XwWindow*)-1:
 * nothing is dispatched. -9874: a release above button 5. */
int XwWaitEvent(XwWindow* modal);
/* Takes at most one event each 25 ms, without waiting; 0 when there is none or it is too early.
 * `modal` as above.
 * `dispatch` 0 leaves toolkit events other than 768 and 769 undelivered: the caller has the type
 * and Inp. Input is translated but never delivered here. */
int XwGetEvent(XwWindow* modal, int dispatch);
/* XwGetEvent until it returns 0. Returns 0. For long computations whose windows are drawn and
 * whose timers run; input that comes during it is lost. What can be cancelled runs in a thread and
 * reports by XwPost. */
int XwPeekEvents(XwWindow* modal, int dispatch);
/* The next raw event for a loop of the program's own, such as a drag. Timer events for windows with
 * a handler are dropped while it waits. */
int XwGrabEvent(void);
/* Puts a copy of Inp with these fields replaced at the end of the queue. Dropped when the window is
 * null or has been destroyed. What `value` points at stays the sender's, and must live until the
 * event has been handled. */
void XwSendEvent(XwWindow* window, int type, int item, XwValue value, int param);
/* Delivers at once: sets Inp and calls the handler, whose result goes to Inp.type and is returned.
 * A window without a handler gets the event through the queue. */
int DirectSendEvent(XwWindow* window, int type, int item, XwValue value);
/* True when the current event is the second click of a double click: at most 219 ms after
 * *last_time, on the same item as the click before. The caller keeps *last_time. */
int XwDoubleClick(uint32_t* last_time);
/* True when the pointer (Inp.px, Inp.py) lies inside the rectangle, its border excluded. */
int XwCheckPointer(int x, int y, int w, int h);
/* 0 up, 1 down, 2 repeating; `key` is a key's type. 0 outside 0..531. */
uint8_t XwGetKeyState(int key);
void XwBeep(void);
/* Hands the result of a background task to the main thread; on any thread, and before the session
 * too. XwWaitEvent(null) wakes and calls take(data, 1) between two events, once those that have
 * come before are handled; never inside a wait for one window or for raw events, an alert or a
 * menu, nor in XwGetEvent. `data` is then the program's again.
 *
 * `kind` is one word. Of each kind one result waits at most: a newer one takes its place, and the
 * older one ends with take(data, 0) on the thread that posts the newer. What still waits when the
 * session ends, and what is posted after that or without a kind, ends so too. Null `take`: nothing.
 *
 * Record and replay: a recording notes where each result was taken, and a replay takes it there,
 * however late it comes. `detail`, one line, tells this result from others of its kind, so that the
 * replay waits for the same; null or "": any will do. A recorded one that has passed by unseen in
 * the replay is left out: one that comes later in the recording is there instead, or the state
 * before it holds still when it has taken longer than it did. A kind with a dot in front only
 * adorns what is shown (".preview"): it is not recorded, and a replay takes it when it comes. */
void XwPost(const char* kind, const char* detail, void (*take)(void* data, int taken), void* data);
/* Record and replay. XW_RECORD=file keeps a session's raw input, and where it took results, as
 * lines of text; XW_REPLAY=file plays it back, without the user. */
/* 1 while a recording is played back. */
int XwReplaying(void);

/* ==== Clipboard =================================================================================
 *
 * The desktop's, for text in UTF-8: what one program puts there every other can take. Where the
 * desktop keeps such texts, the program's stays there when it ends. */

/* Puts a copy of the text there; bytes that are not UTF-8 become U+FFFD. Null takes the program's
 * text away again. 1; 0 when the desktop or another program refuses it, or it is longer than 256
 * MiB: then the clipboard is as it was. */
int XwSetClipboard(const char* utf8);
/* The text that is there, in a block from malloc that the caller frees; null when there is none or
 * it has not come whole within `ms` milliseconds. Zero bytes in it are U+FFFD, and more than 256
 * MiB count as none. Only timers run while it waits: other events stay queued, in order. The
 * program's own text is there at once, and with `ms` below 1 no other is asked for. */
char* XwGetClipboard(int ms);

/* ==== Timers ====================================================================================
 *
 * A timer is a pair of window and value, 32 in all. It sends 779 with that value. */

/* value 0: stops all of the window's timers. ms 0: stops this one. Else starts it, every `ms`
 * milliseconds, or moves the next firing of a running one (whose period stays as it was). Stopping
 * drops what timers have queued. A 33rd timer, and a null window, are refused. */
void XwTimer(XwWindow* w, int32_t value, int32_t ms);

/* ==== Pointer grabs and cursors =================================================================
 *
 * While the primary button is held, the window that it was pressed in gets all pointer events (a
 * passive grab, which the toolkit makes and ends). An active grab is the program's and lasts until
 * XwUngrabPointer. A press of another button is the last event that a grab sends to its window.
 * Outside the program's windows a grab hears motion and releases, no press. */

/* `cursor` is an index into XWcursors and is shown everywhere until then; outside 0..21: none. */
void XwGrabPointer(XwWindow* w, int32_t cursor);
void XwUngrabPointer(void);
/* The window of the grab, also of a passive one; null when there is none. */
XwWindow* XwPointerIsGrabbed(void);
extern XwWindow* GrabWindow;

/* 0 arrow, 1 invisible, 2 cross-hair, 3 to 5 red arrows (plain, plus, right), 6 rotate, 7 move,
 * 8 to 15 sizes N S E W NW NE SW SE, 16 hand, 17 zoom in, 18 zoom out, 19 to 21 none. */
enum { XW_CURSORS = 22 };
extern XwCursor* XWcursors[XW_CURSORS];
/* Index 1..20 takes that entry (19 and 20: the pointer stays as it was), others the arrow. */
void XwSetCursor(XwWindow* w, int32_t index);

/* ==== Windows ===================================================================================
 *
 * Every top-level window, docked window, sub-window and control is one record in one tree. The
 * first top-level window is the main window: it gets quit, preferences and open requests, and
 * carries the session's title and the menu bar.
 *
 * The record's fields are for reading. Kind 0 is a top-level or docked window, 12 a sub-window,
 * other kinds are controls. */
struct XwWindow {
  XwWindow* parent;
  XwWindow* toolbar;
  XwWindow* linked;
  void* platform;        /* native window (a sub-window shares its parent's) or control */
  int16_t brush;         /* theme brush of the background, 0 none */
  int32_t color;         /* colour of the background when brush is 0; -1 none */
  XwContext* context;    /* made when the window is selected */
  void* menu;
  XwRegion* clip_region; /* made with the context */
  XwCursor* cursor;
  uint16_t min_width, min_height, max_width, max_height, step_x, step_y;
  XwHandler handler;
  int16_t clip_x, clip_y, clip_width, clip_height; /* XwClip; width or height 0: all */
  int32_t spare1;
  int16_t origin_x, origin_y; /* sub-windows: place inside the top-level window */
  int16_t x, y, width, height;
  XwBoxes* boxes;
  char* text;
  int32_t spare2;
  uint8_t enabled;
  uint8_t kind;
  int16_t child_count;   /* slots in use; some may be null */
  XwWindow** children;
  XwWindow* next;
  XwWindow* previous;
  int32_t id;
  uint32_t style;
  int32_t value;
  void* user_data;       /* from malloc; freed with the window unless XWF_DATA_NOT_OWNED is set */
  void* button_menu;
  uint8_t flags;
  uint8_t flags2;
  /* The toolkit's own, so that no list is searched. */
  int32_t free_slot;     /* no null slot of `children` lies before this one */
  int32_t slot;          /* where it stands in the parent's `children`; -1 nowhere */
  int32_t subwindows;    /* children of kind 12 */
  int32_t capacity;      /* slots that `children` has room for */
  uint32_t generation;   /* of the pixels that `context` was made for */
  XwWindow* linked_by;   /* the record whose `linked` this is */
  uint64_t serial;       /* never given twice, though a record may take a place used before */
  void (*scroll_handler)(float dx, float dy);
  void (*activation_handler)(int active);
  void (*context_menu_handler)(void);
  void (*drag_handler)(int what);
  void* pane;            /* sub-windows: the platform's part of the window, once it has controls */
};
enum { XW_DATA_NOT_OWNED = 4, XW_EDITING = 8, XW_SHOWN = 16, XW_HAS_SUBWINDOWS = 32 }; /* flags */
enum { XW_DOCKED = 1, XW_HAS_PANES = 2 };                              /* flags2 */

extern XwWindow* W_Root;  /* parent of the top-level windows */
extern XwWindow* W_Start; /* the first window; never changes */
extern XwWindow* W_End;   /* the record created last */
extern XwWindow* W_MenuBar;

/* parent_or_style > 0 is the parent: makes a sub-window, at (x, y) of it, not shown.
 * Otherwise makes a top-level window, hidden: 0 is the standard one; -256..-1 gives in its low byte
 * a style index (bits 0-2: 0 alert, 1 document, 2 utility, 3 modal dialog, 4 floating, 5 document,
 * 6 alert, 7 tool bar) and boxes (8 collapse, 16 zoom, 32 close). Width or height 0: full screen
 * below the menu bar. A window that would lie partly off the screen is moved. The size is fixed
 * until XwSetSizes. Null when the display refuses it. */
XwWindow* XwCreate(XwValue parent_or_style, int x, int y, int width, int height, XwHandler handler);
/* A borderless window that moves, layers and hides with the first window; (x, y) on the screen. */
XwWindow* XwCreateDocked(XwWindow* parent, int x, int y, int width, int height, XwHandler handler);
/* Destroys the window and everything in it: timers, queued events, grabs and focus that name it go
 * too. The first window's record stays as an empty one, since the program still asks for it. */
void XwDestroy(XwWindow* window);
/* The first direct child with this id, or null. */
XwWindow* XwFind(XwWindow* parent, int32_t id);
/* 1 when `candidate` lies anywhere below `window`, else 0 (a window is not below itself). */
int IsSubWindow(XwWindow* window, XwWindow* candidate);
/* Enters `child` in the first free slot of the parent's list. */
void AddSubWindow(XwWindow* parent, XwWindow* child);

/* Top-level: on the screen, and 768 is posted. Docked: relative to its parent. Sub-window: relative
 * to its parent; it, its parent and its siblings are redrawn. Control: relative to its parent.
 * A sub-window is not cut to its parent, and one inside another gets no pointer events and is not
 * moved with it: sub-windows stand side by side in a top-level window. */
void XwMove(XwWindow* window, int x, int y, int width, int height);
/* Centres it over the bounds of `reference`, keeping the size. */
void XwCenter(XwWindow* window, XwWindow* reference);
/* The first window fills the screen below the menu bar, until it is moved. */
void XwSetFullScreen(void);
/* Makes the window resizable: content limits (maximum 0: the screen's size) and steps (0: any size;
 * else sizes that differ from the present one by whole steps). Values saturate at 16 bits. */
void XwSetSizes(XwWindow* window, int min_width, int min_height, int max_width, int max_height,
                int step_x, int step_y);
void XwShow(XwWindow* window, int show);
void XwEnable(XwWindow* window, int enable);
/* Keys go to the window (of a control: to its top-level window, and the control gets the caret). */
void XwSetFocus(XwWindow* window);
/* Title of a top-level window, text of a control; Mac Roman. Style bits of a control may append to
 * it. Null: the empty text. Ignored for a sub-window. For a list, and a combo box that is not
 * editable, it is an array of texts that ends with a null pointer: all rows, all items. */
void XwSetText(XwWindow* window, const char* text);
/* The same in UTF-8, of every script, for every kind that XwSetText takes; the title of a top-level
 * window is cut to 4096 bytes. */
void XwSetTextUtf8(XwWindow* window, const char* utf8);
/* Of a top-level window: 1 puts a mark before the shown title, the document has changes; 0 takes it
 * away. Of a control: its value, cut to its kind's range. Of a list: the row that is selected and
 * scrolled to; one that is not there selects none. Of an editable combo box: the array of the texts
 * of its menu, 0 for none. */
void XwSetValue(XwWindow* window, XwValue value);
/* The value of a control as the platform has it: 0 for those that the toolkit draws. Of a list the
 * row that was chosen or set last. -1 for an editable combo box; 0 for windows and null. */
int32_t XwGetValue(XwWindow* window);
/* Copies the title of a top-level window (without the mark) to `dst`, 256 bytes, and returns it. Of
 * a control: its length in the first byte and then the title, without an ending zero; length 0
 * where it has none. The empty string for a sub-window and null. Null `dst`: null. */
char* XwGetText(XwWindow* window, char* dst);
/* In UTF-8: the title of a top-level window, the text of an edit box or of an editable combo box's,
 * the title of other controls, the chosen row of a list or combo box. Returns its whole length in
 * bytes; writes at most `size` bytes with the ending zero, cut between characters, and nothing for
 * a null `dst` or a size below 1. "" for a sub-window and null. */
int XwGetTextUtf8(XwWindow* window, char* dst, int size);
/* The background that erasing paints. `colour` not null: that colour value. Else a theme brush by
 * code: 1 document, 2 dialog, 3 utility, 4 tool bar, other values are brush numbers, 0 none. */
void XwSetGround(XwWindow* window, const int32_t* colour, int brush);

/* The wheel over the window's own content: dx, dy in logical pixels, positive right and down, 48
 * a notch; the pointer fields of Inp are set. Null takes it away. A wait that keeps the window out,
 * and one that dispatches nothing, let its wheel turn nothing. In a window without a handler the
 * wheel turns the vertical scroll bar, where exactly one shows. */
typedef void (*XwScrollHandler)(float dx, float dy);
void XwSetScrollHandler(XwWindow* window, XwScrollHandler handler);

/* A top-level window becomes active (1: the desktop gives it the keyboard) or stops being so (0).
 * Called in the order of the events; a program shows there that keys do not reach its selection.
 * Null takes it away. Ignored for other windows. */
typedef void (*XwActivationHandler)(int active);
void XwSetActivationHandler(XwWindow* window, XwActivationHandler handler);

/* The Menu key or Shift+F10 in a top-level window, which no control there has taken: the program
 * shows the menu of what is selected (XwPopupLocation, XwPopupMenu). The event of the key, if it
 * has one, comes afterwards. Not called in a wait that keeps the window out or dispatches nothing.
 * Null takes it away. Ignored for other windows. */
typedef void (*XwContextMenuHandler)(void);
void XwSetContextMenuHandler(XwWindow* window, XwContextMenuHandler handler);

/* Files that another program drags over a top-level window. `take` 0: the window refuses them, and
 * the desktop shows so; else it takes them, as every window does that is not told. The handler,
 * which may be null, hears as they move over the window and when they are dropped (Inp.px, Inp.py
 * and Inp.item tell where), and when they have left it (Inp.item is 0): the program shows there
 * where they would go. It hears one end of each drag; that they have left also as the window begins
 * to refuse them, and as it is destroyed. What was dropped comes afterwards, as 798 to the first
 * window; when it does not arrive the handler hears that it failed (Inp.item is 0). A wait that
 * keeps the window out hears of the end alone.
 * Ignored for other windows. */
enum { XW_DRAG_LEFT = 0, XW_DRAG_OVER = 1, XW_DRAG_DROPPED = 2, XW_DRAG_FAILED = 3 };
typedef void (*XwDragHandler)(int what);
void XwSetDragHandler(XwWindow* window, int take, XwDragHandler handler);

/* While 798 is handled: all its documents, where a drop or a request has several; the event itself
 * has the first one of fewer than 4096 bytes. Absolute paths, bytes (names are not always UTF-8);
 * what lies on another computer by its address ("http://host/a"). `*count` gets their number.
 * They belong to the toolkit and stay as they are until the next event. Outside 798 the result is
 * null and the number 0; `count` may be null. */
const char* const* XwDroppedFiles(int* count);

/* The number of a drop, counted from 1. In the drag handler, as it hears XW_DRAG_DROPPED or
 * XW_DRAG_FAILED: of that drop. While 798 is handled: of the drop that brought its documents, 0
 * where another program asked for them by the message bus. With it a program finds where documents
 * were dropped that come later; of several drops during an alert only the last one comes. Elsewhere
 * it is the number of the last drop, 0 before the first one. */
int XwDropNumber(void);

/* The program's icon, which the desktop shows beside its windows and their names: size x size
 * pixels, rows from the top, 0xAARRGGBB, colours not multiplied by alpha. One for each size (16,
 * 32, 48 and 128 are common), copied; null takes that size away. Sizes outside 1 to 256 are
 * ignored. */
void XwSetProgramIcon(const uint32_t* argb, int size);

/* Device pixels per logical pixel where the window shows, at most 8; null: of the main screen. When
 * it changes, the window is drawn again (769). */
double XwGetScale(XwWindow* window);

/* A line about a window or control (position 0), or about a box of its present list by its
 * position: a small window below it, once the pointer has rested on it for half a second, until it
 * leaves or the user presses, types or scrolls. UTF-8, copied; null or "" takes it away. The tips
 * of boxes go with the list: set them as the list is made. */
void XwSetTip(XwWindow* window, int position, const char* utf8);

/* ==== Controls ==================================================================================
 *
 * A control is a record in a top-level window or a sub-window, of an XWK_ kind. It draws itself,
 * tracks the pointer and the keyboard by itself, and reports to its parent: 783 with its id as
 * item. The parent's handler never sees the press. One with id 0 reports nothing.
 *
 * Tab goes from control to control in the order of creation; Space and Return press the one with
 * the keyboard; Alt and the first letter of a text press the first control that has it. A report
 * that a key has caused takes the place of that key's event. */

/* Kinds of records beside 0 (top-level) and 12 (sub-window). */
enum {
  XWK_BUTTON = 1, XWK_CHECK_BOX = 2, XWK_EDIT = 3, XWK_COMBO = 4, XWK_LABEL = 5, XWK_SCROLL = 7,
  XWK_COLOR = 8, XWK_LIST = 9
};
/* The style word. Bits 20 to 23 mean something else for each kind. */
enum {
  XWC_CENTER = 0x100, XWC_RIGHT = 0x200, XWC_LEFT = 0x400, /* text of a label, of a list header;
                                                            left: of any drawn button */
  XWC_SORT_DOWN = 0x800,    /* list header: the mark of value 1 points down */
  XWC_ENABLED = 0x10000,    /* only an enabled control reports */
  XWC_VISIBLE = 0x20000,
  XWC_DOTS = 0x40000,       /* its text gets " ..." appended */
  XWC_COLON = 0x80000,      /* its text gets ":" appended, behind the dots */
  XWC_VARIANT = 0x100000,   /* button: bevel. Check box: radio button. Label: bold. Well: sunken.
                               Scroll bar: reports when it is let go, and not before. Head: no line.
                               Combo box: two items open a menu as well. Edit box: read-only */
  XWC_ICON = 0x200000,      /* button, label: the text argument is an XwIcon*. Well: a bevel */
  XWC_MENU = 0x400000,      /* button: opens the menu that the value argument points at */
  XWC_DROPS_FOCUS = 0x400000, /* edit box: Return does not go on to the next */
  XWC_EDITABLE = 0x200000,  /* combo box: with an edit box */
  XWC_EDGE = 0x200000,      /* scroll bar: lies at the edge of its area, without a frame */
  XWC_HEADER = 0x800000,    /* button: the head of a column */
  XWC_OWN_TEXT = 0xC00000,  /* of a button: the toolkit draws its text */
  XWC_BESIDE = 0x1000000    /* icon button: the text of a later XwSetText stands beside the icon */
};

/* A push button of w - 6 by h - 4 pixels inside the rectangle, whose record is h + 3 high; with
 * XWC_VARIANT a bevel button (pressed while `value` is not 0); with XWC_ICON, XWC_MENU or
 * XWC_HEADER one that the toolkit draws. `text` is copied; as an icon it stays the caller's. A menu
 * button reports the command that was chosen as item; its menu (an XwMenuItem*) stays the caller's.
 * A list header has a value: 1 pressed with a sorting mark, 2 pressed, -1 greyed. A press of the
 * secondary button reports at once. Null for a null parent, or one that is no window. */
XwWindow* XwButton(XwWindow* parent, const char* text, int32_t id, int x, int y, int w, int h,
                   uint32_t style, XwValue value);
/* 16 pixels high at y + 2, as wide as its text needs. Value 0 off, 1 on, 2 mixed; a press turns it
 * on or off, a radio button on: the others of its group are the program's. */
XwWindow* XwCheckBox(XwWindow* parent, const char* text, int32_t id, int x, int y, uint32_t style,
                     int32_t value);
/* A field of one colour (a colour value). A press reports; the program chooses another colour and
 * sets it with XwSetValue. */
XwWindow* XwColor(XwWindow* parent, const char* text, int32_t id, int x, int y, int w, int h,
                  uint32_t style, int32_t colour);
/* A line of text in the middle of the height, centred unless XWC_LEFT or XWC_RIGHT. A press on one
 * with an id reports, with value -1. With XWC_ICON an icon that is pressed like a button. */
XwWindow* XwLabel(XwWindow* parent, const char* text, int32_t id, int x, int y, int w, int h,
                  uint32_t style);

/* One line of text, of every script: what is typed and pasted is kept whole. XwSetText and
 * XwGetText speak the toolkit's characters ('?' for what has no place there, at most 255),
 * XwSetTextUtf8 and XwGetTextUtf8 all of it. `text` is copied (null: "").
 *
 * The parent's handler gets 788 with value 1 when the box gets the keyboard, which selects its
 * text, and with 0 when it loses it; 789 for each key that it takes and each change by the user;
 * 790 for Return and for Tab, which move on to the next box (XWC_DROPS_FOCUS: Return to none).
 * Escape gives the keyboard up. The item is the id without its sign. Keys with Control, Alt or
 * Super keep their own codes; Control with A, C, X, V, Z, Y edits. One that is read-only
 * (XWC_VARIANT) takes no keyboard; a press on it is 783 with the id as it is. */
XwWindow* XwEditBox(XwWindow* parent, const char* text, int32_t id, int x, int y, int w, int h,
                    uint32_t style);
/* Edits `text`, 256 bytes, in a box of its own inside `parent`, at least 22 high, and waits: 1 once
 * Return has confirmed it, which writes the text back, 0 after a press of the secondary button.
 * Other events are dropped; redraws and requests of the desktop come again afterwards. A null text
 * or parent: 0. */
int32_t XwEditField(XwWindow* parent, int x, int y, int w, int h, char* text);

/* What the menu of an edit box does, for an Edit menu of the program: on an edit box or an editable
 * combo box. XwCanEdit: 1 when it can be done now. XwEdit does it and reports 789 where the text
 * has changed; what is pasted comes later. What cannot be done, other numbers and other windows:
 * 0, and nothing. */
enum { XWU_UNDO, XWU_REDO, XWU_CUT, XWU_COPY, XWU_PASTE, XWU_DELETE, XWU_SELECT_ALL };
int XwCanEdit(XwWindow* box, int action);
void XwEdit(XwWindow* box, int action);

/* A slider takes `minimum` to `maximum`. With w > h it lies, else it stands and its maximum is at
 * the top. A press on its track moves the knob there. While it has the keyboard, Left and Down,
 * Right and Up and each notch of the wheel change it by 1, the page keys by a tenth of its range,
 * and Home and End go to its ends.
 * While it moves, its parent's handler is called at once with 792 for each change; 791 follows when
 * it is let go, and after each key and each turn of the wheel. Both carry its id as item and the
 * value. A minimum other than 0 lowers what the user can reach: it is maximum - minimum + 1 at most
 * (of a scroll bar, less its page). */
XwWindow* XwSlider(XwWindow* parent, int32_t id, int x, int y, int w, int h, uint32_t style,
                   int32_t minimum, int32_t maximum, int32_t value);
/* All three, without a report. */
void XwSetSliderRange(XwWindow* slider, int32_t minimum, int32_t maximum, int32_t value);
/* A scroll bar over a document that reaches from `minimum` to `maximum` and of which `page` shows
 * from its value on, so that the greatest value is maximum + 1 - page; with w > h it lies. Arrow
 * keys change it by `line`, the wheel by three lines a notch, page keys and a press beside the
 * thumb by `page`, for as long as it is held; they count from the value reported last (or set with
 * the bar's range). It reports as a slider does. With XWC_VARIANT there is no 792, and a press
 * beside the thumb counts once, when it is let go. With XWC_EDGE it has no frame but a line at its
 * left (one that lies: above it). Tab does not reach it; XwFocusControl does. One with nothing to
 * scroll shows no thumb and takes no input. */
XwWindow* XwScrollBar(XwWindow* parent, int32_t id, int x, int y, int w, int h, uint32_t style,
                      int32_t minimum, int32_t maximum, int32_t line, int32_t page, int32_t value);
void XwSetScrollRange(XwWindow* bar, int32_t minimum, int32_t maximum, int32_t line, int32_t page,
                      int32_t value);

/* One column of rows, one of which can be selected; `items` is an array of texts that ends with a
 * null pointer (null: empty), copied. A row that is chosen, by a click, at the end of a drag, by
 * the arrow and page keys, Home, End or its first letters, comes as the value of 783, also when it
 * was selected before by a click; a double click is two of them (XwDoubleClick). Its value is the
 * row that was chosen or set last, -1 for none. */
XwWindow* XwListBox(XwWindow* parent, const char* const* items, int32_t id, int x, int y, int w,
                    int h, uint32_t style);
/* All rows become those; none is selected. */
void XwUpdateListBox(XwWindow* list, const char* const* items);
/* A choice among fixed items, counted from 0: a button that shows the chosen one and opens a menu
 * of all. An empty text is a separator, which counts. Two items take turns without a menu, unless
 * XWC_VARIANT. The button lies two pixels below its rectangle. 783 has the item as its value.
 * `value` -1: none is chosen. With XWC_EDITABLE the menu fills an edit box. */
XwWindow* XwComboBox(XwWindow* parent, const char* const* items, int32_t id, int x, int y, int w,
                     int h, uint32_t style, int32_t value);

/* One control of a list that ends with type 0. */
typedef struct XwDialogItem {
  uint8_t type;      /* 1 button, 2 check box, 3 edit box, 4 combo box, 5 label, 6 slider,
                        7 scroll bar, 8 colour well, 9 list; others are skipped */
  const char* text;  /* null: "". 4 and 9: the array of texts */
  int16_t id;
  int16_t x, y;      /* negative: from the parent's right and lower edge */
  int16_t width, height;
  uint32_t style;
  XwValue value;
  int32_t minimum, maximum, line, page;
} XwDialogItem;
/* Makes them all in `parent`. (dx, dy) is added to places that are not negative. */
void XwCreateDialogItems(XwWindow* parent, const XwDialogItem* items, int32_t dx, int32_t dy);

/* Asks the user something: a window at the pointer, wholly on the screen, with a picture, one line
 * and a button for each label, from left to right. Waits for one to be pressed and returns its
 * number from 1; events of other windows wait or are dropped, but redraws and requests of the
 * desktop come again afterwards. The first button has the keyboard, and Escape presses it: put the
 * harmless label first. Without a label the alert has no way out.
 *
 * The first character of `kind`: '?' a question, 'i' information, anything else a warning. `title`
 * is not used. The labels end with a null pointer. A message wider than the screen takes several
 * lines. 0 when the display refuses the window. */
#ifdef __GNUC__
#define XW_ENDS_WITH_NULL __attribute__((sentinel))
#else
#define XW_ENDS_WITH_NULL
#endif
int XwConfirm(const char* kind, const char* title, const char* message, ...) XW_ENDS_WITH_NULL;
/* The same in UTF-8. A message that is wider than 420, or the buttons, takes several lines. */
int XwConfirmUtf8(const char* kind, const char* title, const char* message, ...) XW_ENDS_WITH_NULL;

/* The file of the running program. */
typedef struct FSSpec {
  char path[4096]; /* absolute; bytes, not the toolkit's characters */
} FSSpec;
/* 0; -43 for null and where the system does not tell it. */
int GetApplicationBundleFSSpec(FSSpec* spec);

/* The control with the keyboard in the window's top-level window; null when none has it. */
XwWindow* XwGetFocus(XwWindow* window);
/* Gives the keyboard to a control that shows and is enabled, and the keys to its window. Ignored
 * for labels that are text. */
void XwFocusControl(XwWindow* control);
/* In the top-level window of `window`: Return presses `ok`, which looks like it, and Escape presses
 * `cancel`, when the control with the keyboard does not take the key. Null: none. */
void XwSetDefaultButtons(XwWindow* window, XwWindow* ok, XwWindow* cancel);
/* 0: Tab moves nothing in the top-level window; the program does it in its 513. 1 at creation. */
void XwSetTab(XwWindow* window, int on);
/* What a control is called for those who cannot see it, in UTF-8, copied. Null: by its own text, or
 * that of the label made before it. */
void XwDescribeControl(XwWindow* control, const char* name);

/* ==== Menus =====================================================================================
 *
 * A menu is an array of items of the program's own, ended by one whose text is null. The toolkit
 * keeps pointers into it and writes the state back; it copies nothing. A menu bar is such an array,
 * too: its texts are the titles, its ids point at the menus.
 *
 * Menus nest at most 64 deep. A sub-menu that is not made, as it lies deeper or in itself, leaves
 * its item greyed.
 *
 * Before a menu of the bar shows, and before a key of its items is looked up, the first window
 * hears 793 with the menu's array as value, and may change it. A chosen item comes as 794 with its
 * id as item. */
typedef struct XwMenuItem {
  const char* text; /* "": a separator. In a bar: the title */
  int32_t flags;    /* XWM_ bits */
  XwValue id;       /* below 0x10000: the command. Else: the array of a sub-menu. With XWM_COLOUR: a
                       colour value, which is the command */
  void* menu;       /* the toolkit's */
} XwMenuItem;
enum {
  XWM_DISABLED = 1, XWM_DOTS = 2 /* "..." is appended */, XWM_CHECKED = 16, XWM_HIDDEN = 32,
  XWM_COLOUR = 64 /* shows a swatch of its id */, XWM_UTF8 = 0x100 /* its text is UTF-8 */,
  XWM_BUILT = 0x8000 /* the toolkit's, in the first item */
};

/* Makes `bar` the menu bar. Only for the first window. Called again it only changes which menus
 * stand in the bar, and in which order. Null empties it. */
void XwSetMenu(XwWindow* window, XwMenuItem* bar);
/* Shows a menu at (Inp.root_x, Inp.root_y) and waits. The chosen item's id; of a colour item its
 * negative position from 1; 0 when it is dismissed. */
int32_t XwPopupMenu(XwMenuItem* items);
/* The same for one that a key opens: the first item that is checked and can be chosen has the
 * keyboard. Where there is none nothing is highlighted, and no second key chooses unseen. */
int32_t XwPopupMenuByKey(XwMenuItem* items);
/* The same with a null-terminated list of texts, the one at `current` with a mark. The index of the
 * chosen one from 0; -1. */
int32_t XwPopupList(const char* const* strings, int32_t current);
/* The next pop-up comes at (x, y) of the window's own position. Returns the current event. */
XwEvent* XwPopupLocation(XwWindow* window, int x, int y);

/* What follows finds an item by its id in `items` and the menus below; one that is not there is
 * ignored. Shown menus follow. The id of a sub-menu's item (the array's address) means, for
 * enabling, the whole sub-menu. */
void XwEnableMenuItem(XwMenuItem* items, XwValue id, int enable);
/* `text` is kept. It is shown as it is, without dots. */
void XwChangeMenuItemText(XwMenuItem* items, XwValue id, const char* text);
void XwChangeMenuItemFlags(XwMenuItem* items, XwValue id, int32_t flags);
void XwCheckMenuItem(XwMenuItem* items, XwValue id, int check);
/* Of the items from id `first` to id `last`, or (first 0) of all of `items`, checks those whose id
 * is `selected` and no other. The range stands at the top of its menu. */
void XwCheckMenuRadioItem(XwMenuItem* items, XwValue first, XwValue last, XwValue selected);
/* 1 for a checked item, else 0. */
int XwGetMenuItemState(XwMenuItem* items, XwValue id);
/* The id of the first checked item of the range; 0. */
XwValue XwGetMenuRadioItem(XwMenuItem* items, XwValue first, XwValue last);
/* Copies its text to `buffer`, which has room for it; the empty string and null when there is no
 * such item. */
char* XwGetMenuItemText(XwMenuItem* items, XwValue id, char* buffer);
/* The key that chooses the item while it stands in the bar: the type of the key's event, letters
 * without case, and exactly the modifiers that are held (XWS_ bits; caps lock does not count). It
 * is shown at the item's right, in a pop-up too. 794 comes after the key's own event. Type 0 takes
 * the key away. */
void XwSetMenuItemKey(XwMenuItem* items, int32_t id, int type, uint32_t modifiers);

/* ==== Toolbar ===================================================================================
 *
 * A bar across the top of a window, 40 pixels high, filled from left to right with the controls of
 * a list. What the user does with one (783, 790, 791) comes to the window as 795, with the
 * control's id as item (of a menu, the chosen command), its value, and the place of the pointer in
 * root_x and root_y; the bar's other events go nowhere. The window draws its content below. */

typedef struct XwToolbarItem {
  uint32_t word; /* an XWB_ type, XWB_ flags and the width, added. 0 ends the list */
  XwValue data;  /* a text, an array of texts that ends with a null pointer, an XwIcon* or a colour
                    value, as the type says. A null text is empty */
  int32_t id;
  XwValue menu;  /* buttons: 0, or the XwMenuItem* that a press opens below */
} XwToolbarItem;
enum {
  XWB_BUTTON = 0x1000000,     /* a text */
  XWB_EDIT_COMBO = 0x2000000, /* texts. Its box is read-only: a press on it comes with -id */
  XWB_LIST = 0x3000000,       /* texts, of which the first shows */
  XWB_COLOR = 0x4000000,      /* a colour value */
  XWB_GAP = 0x5000000,        /* 5 pixels */
  XWB_ICON = 0x6000000,       /* an icon */
  XWB_OPTIONS = 0x7000000,    /* a narrow button, at the right of the control before it */
  XWB_LABEL = 0x8000000,      /* a text */
  XWB_SLIDER = 0x9000000,     /* a text, "minimum,maximum,value" */
  XWB_EDIT = 0xA000000,       /* a text */
  XWB_CHECK_BOX = 0xB000000,  /* a text */
  XWB_WIDTH = 0x7FF,          /* its pixels; 0: what the texts need, where the type has any. Of a
                                 combo box the least; of buttons, wells and icons none */
  XWB_CLOSER = 0x40000000     /* the next one comes 3 pixels closer */
};
#define XWB_DISABLED 0x80000000u

/* Makes the bar, or fills the one that is there with other controls, and shows it. `items` stays
 * the program's and must live as long as the bar; null destroys it. The bar, a sub-window; null
 * without one. */
XwWindow* XwSetToolbar(XwWindow* window, const XwToolbarItem* items);
/* Nothing without a bar. */
void XwShowToolbar(XwWindow* window, int show);
/* The control with this id gets the value 1 when `state` has bit 1, else 0 (an editable combo box
 * none), and is enabled when `state` is not 0. */
void XwSetToolbarItem(XwWindow* window, int32_t id, int32_t state);
/* The control with this id; null. */
XwWindow* XwGetToolbarItem(XwWindow* window, int32_t id);

/* ==== Hit boxes =================================================================================
 *
 * A window that draws its own content registers a rectangle for each thing that can be hit, while
 * it draws. Pointer and key events then carry in Inp.item which box lies under the pointer. */

/* For the selected window. op 3 starts a new list (needed before the first box), op 4 closes it;
 * any other op adds a box with that id, cut to 16 bits. Later boxes lie over earlier ones; one with
 * id 0 hides what lies under it and is never hit. The item of an event is the position in the list,
 * from 1. */
void XwBoxList(int op, int x, int y, int width, int height);
/* The id of a box in the window's present list by its position; 0 when there is none. */
int XwBoxId(XwWindow* window, int position);

/* What a drawn thing is, for those who cannot look at it: tests, inspectors, assistive technology.
 * Controls describe themselves. */
enum {
  XWA_PANE = 1, XWA_BUTTON = 2, XWA_MENU_BUTTON = 3, XWA_CHECK_BOX = 4, XWA_RADIO_BUTTON = 5,
  XWA_COLOR_WELL = 6, XWA_COLUMN_HEADER = 7, XWA_SLIDER = 8, XWA_SCROLL_BAR = 9, XWA_LABEL = 10,
  XWA_LIST = 15, XWA_ROW = 16, XWA_POP_UP_BUTTON = 17, XWA_TEXT_FIELD = 18, XWA_TABLE = 19,
  XWA_CELL = 20, XWA_GROUP = 21, XWA_PICTURE = 22, XWA_STATUS = 23, XWA_PROGRESS = 24,
  XW_A_ROLES = 25
};
/* Bits of its state. Whether it shows is known from its rectangle. */
enum {
  XWT_DISABLED = 1, XWT_FOCUSABLE = 4, XWT_FOCUSED = 8, XWT_CHECKED = 16,
  XWT_MIXED = 32 /* neither on nor off */, XWT_PRESSED = 64, XWT_DEFAULT = 128, XWT_HAS_MENU = 512,
  XWT_SELECTED = 1024, XWT_READ_ONLY = 2048, XWT_EXPANDED = 4096 /* what is in it shows */
};
/* Says what the box at `position` of XW's list is (-1: the one added last), at best right behind
 * it; position 0 is XW itself, of which a top-level window stays one, with its title where `name`
 * is null or "". Names and values are UTF-8, copied; null is "". The same role and name at the same
 * position of the next list is the same thing. Does nothing while nobody reads descriptions; when
 * somebody begins to, all windows are asked to redraw. A position without a box, a role that is
 * none and a control as XW are ignored. */
void XwDescribe(int position, int role, uint32_t state, const char* name, const char* value);

/* ==== Drawing ===================================================================================
 *
 * Everything is drawn into the selected window XW, in its own coordinates, cut to its bounds less
 * its shown children. Nothing needs to be released; drawing into a hidden sub-window paints
 * nothing. With no window selected the calls do nothing.
 *
 * A colour value is 0x00BBGGRR: red in the low byte. -1 to -10 are no colours: -1 paints nothing,
 * -2 erases to the window's own background, the others paint nothing. */

extern XwWindow* XW; /* the selected window, null when none */
/* Selects (null: none). XwPush saves the selection first, XwPop selects the last one saved; more
 * than 200 deep is not remembered. */
void XwSet(XwWindow* window);
void XwPush(XwWindow* window);
void XwPop(void);
/* Cuts drawing into XW to a rectangle; width or height 0: the whole window again. */
void XwClip(uint16_t x, uint16_t y, uint16_t width, uint16_t height);
/* After changes of a record made by hand: its clip is made again when it is next selected. */
void ResetClipMask(XwWindow* w);

/* ---- Colours and dashes. The current colour and the dash pattern are the program's, not the
 * window's: they stay when another window is selected. */

/* The colour of everything that takes none: fills, outlines, lines, polygons, ellipses. */
void XwSetColor(int32_t colour);
/* Lines and outlines drawn from now on alternate between two colours: first the dashes of `pattern`
 * in `colour1`, starting `offset` pixels into it, then the same pattern one dash further on in
 * `colour2`. `pattern` is a zero-terminated string of lengths in pixels, cut at 128, copied; a dash
 * of n covers n pixels along the path, and an odd number of lengths swaps dashes and gaps at each
 * round. Afterwards lines keep `colour2` until XwSetColor. An empty pattern makes no new dashes but
 * leaves XW with those it has; null: solid lines again. */
void XwSetDashes(const uint8_t* pattern, int offset, int32_t colour1, int32_t colour2);
/* For reading. Colours are red, green, blue, alpha, 0..1. */
extern int32_t DashCount;
extern float DashOffset, DashCol1[4], DashCol2[4], DashArray1[128];

/* Does nothing; XwSync shows what was drawn. */
void XwFlush(void);
/* Brings everything drawn so far to the screen and waits until the display has it. The loop does
 * the same by itself before it waits. */
void XwSync(void);
/* Paints the rectangle with the window's own background (a colour becomes the current colour);
 * nothing when the window has none. Width and height both 0: the whole window. */
void XwClear(int x, int y, int width, int height);

/* ---- Shapes. A rectangle (x, y, w, h) covers w columns from x and h rows from y; an empty or
 * negative one paints nothing. Any numbers may be given: what lies outside is cut. Lines are one
 * pixel thin at every scale (a whole number of device pixels), without gaps or overlaps between
 * neighbours. */

/* Filled, in `colour`, which becomes the current colour. -2 erases, other markers paint nothing. */
void XwBox(int x, int y, int w, int h, int32_t colour);
void XwFillRect(int x, int y, int w, int h);
/* The outline inside the same rectangle. Dashes run from the bottom-left corner to the right, up,
 * left, down. */
void XwDrawRect(int x, int y, int w, int h);
/* Both ends are painted; equal ends give one pixel. */
void XwDrawLine(int x1, int y1, int x2, int y2);
/* An open line through n points, pairs of x and y. A point names the upper border of its row, so at
 * the same y it paints one row above XwDrawLine; at y = 0 nothing shows. Fewer than two points, and
 * null, paint nothing. */
void XwDrawLines(const int16_t* points, int n);
/* Closed and filled, inside and outside alternating where it crosses itself. Points are corners
 * between pixels. Fewer than three points, and null, paint nothing. */
void XwFillPolygon(const int16_t* points, int n);
/* The ellipse that touches the rectangle's sides, and its outline. */
void XwDrawEllipse(int x, int y, int w, int h);
void XwFillEllipse(int x, int y, int w, int h);

/* ---- Elements of the desktop's look. */

/* A button's face. state: 0 inactive, 1 active, 2 pressed. */
void XwDrawBevel(int x, int y, int w, int h, int state);
/* A well: a sunken frame. `fill` a colour: fills it two pixels inside (and becomes the current
 * colour). -2: erases from two pixels inside the left and top to four inside the right and bottom.
 * Other markers: the frame alone. */
void XwDrawHole(int x, int y, int w, int h, int32_t fill);
/* A grey line along the top and the right edge of XW. The current colour becomes that grey. */
void XwDrawBorder(void);
/* A hairline: horizontal in row y when w > h, else vertical in column x; the row (column) before it
 * is erased. */
void XwDrawSeparator(int x, int y, int w, int h);
/* A grid of separators: rows + 1 horizontal ones rowHeight apart (none for negative rows), a
 * vertical one at x and behind each column. `colWidths` ends with 0; null draws nothing. */
void XwDrawTable(int x, int y, int rows, int rowHeight, const int* colWidths);
/* A progress bar. `value` counts pixels of the bar, 0 to w - 8. The area is cleared first, four
 * pixels more at the left and right, two at the top and bottom. */
void XwDrawProgress(int x, int y, int w, int h, int value);

/* ---- Text. A font argument of null means XWF_NORMAL. Line height is ascent + descent. */
struct XwFont {
  uint16_t reserved; /* 0 */
  char name[82];     /* the name that was found, or the last one tried */
  int32_t style;     /* as asked for: 1 bold, 2 italic, 32 narrow */
  int32_t size;      /* pixels */
  int32_t ascent, descent, max_advance;
  void* platform;    /* the toolkit's */
};
/* Of the session: 13 pixels plain, bold, narrow; 12 for lists and fields; the toolkit's own. */
extern XwFont *XWF_NORMAL, *XWF_BOLD, *XWF_NARROW, *XWF_VIEW;
extern XwFont *FT_SMALL, *FT_BUTTON, *FT_ALERT;

/* A font by family, size in pixels and style (1 bold, 2 italic, 32 narrow, added). The family
 * without its spaces, then "-Narrow", "-Bold" and "-Italic" as asked for, is looked up as a font
 * name; what is not found is tried without italic, then without narrow, then without bold, at last
 * as the family alone. Only exact names count. Never null: a font that is not found draws with the
 * desktop's, has ascent = size, and a descent that is negative. Lives for the process. */
XwFont* LoadFont(const char* family, int size, int style);
/* By a name with dashes, such as "-*-helvetica-bold-r-normal-*-18-*-*-*-*-*-*-*": family (its first
 * letter made a capital), "bold", "i" for italic, "narrow" as set width, size. Bold replaces
 * narrow. Null is a name without fields. */
XwFont* XwLoadFont(const char* xname);
/* Copies field n (2 family, 3 weight, 4 slant, 5 set width, 7 size) to `dst`, which has room for
 * 200 bytes, and returns it; the empty string where there is no such field. Null `dst`: null. */
char* GetFontParm(const char* xname, int field, char* dst);

/* Pixels, a fraction dropped. Null text: 0. */
int XwTextWidth(XwFont* font, const char* text);
/* The longest beginning that is narrower than `width`, at most 199 characters, in a static buffer;
 * XwDrawText overwrites it too. */
char* XwTextTrim(XwFont* font, const char* text, int width);
/* The text, if it is narrower than width - 6, else shortened in the middle to "begin...end" so that
 * it is; the empty string when nothing fits. In a static buffer of its own, at most 199
 * characters; texts are cut to 211 characters before they are shortened. */
char* XwTextFit(XwFont* font, const char* text, int width);
/* One line. With w and h: in that box, in the middle of its height, trimmed to w - 6; flags 0x200
 * puts it 5 pixels from the right, 0x400 5 pixels from the left, anything else in the middle;
 * `background` fills the box. With w or h 0: whole, its top left corner at (x, y), and `background`
 * fills the height and width of the text. 0x800 underlines. background -1: none, -2: erases.
 * Afterwards fills and polygons keep the text's colour, lines and ellipses that of the background
 * or the underline where there was one, until XwSetColor. */
void XwDrawText(XwFont* font, int flags, int x, int y, int w, int h, const char* text,
                int32_t colour, int32_t background);

/* The same for UTF-8, text of every script: what the font lacks comes from another font of the
 * desktop (of XW_FONTS, where that is set), at last as a box with the character's number. From left
 * to right in stored order. A byte that is not UTF-8 shows as U+FFFD; control and format characters
 * take no room. These calls count in clusters, which are never cut: a letter with its marks, a
 * syllable, a joined picture. Nothing bounds the length of a text. */
int XwTextWidthUtf8(XwFont* font, const char* utf8);
void XwDrawTextUtf8(XwFont* font, int flags, int x, int y, int w, int h, const char* utf8,
                    int32_t colour, int32_t background);
/* As XwTextTrim and XwTextFit. They write valid UTF-8, at most `size` bytes with the ending zero,
 * cut between characters, and return the length of the whole result without the zero; they write
 * nothing for a null `dst` or a size below 1. `dst` may be the text itself. Null text is the empty
 * one. */
int XwTextTrimUtf8(XwFont* font, const char* utf8, int width, char* dst, int size);
int XwTextFitUtf8(XwFont* font, const char* utf8, int width, char* dst, int size);

/* File names, and whatever else comes as UTF-8, to the toolkit's characters and back. Both write at
 * most `size` bytes with the ending zero, never a part of a character, and return the length. What
 * the set lacks, and bytes that are not UTF-8, become '?'. Null text is the empty one; null `dst`
 * or a size below 1 writes nothing and returns 0. */
int XwFromUtf8(const char* utf8, char* dst, int size);
int XwToUtf8(const char* text, char* dst, int size);

/* ---- The desktop's colours by role, as colour values; a role that is none is the ink. */
enum {
  XWR_DOCUMENT, XWR_ROW, XWR_DIALOG, XWR_ALERT, XWR_UTILITY, XWR_TOOL_BAR, XWR_SIDE, XWR_STATUS,
  XWR_INK, XWR_SECOND_INK, XWR_HAIRLINE, XWR_LINE, XWR_FACE, XWR_PRESSED, XWR_PRESSED_LINE,
  XWR_ACCENT, XWR_DARK_ACCENT, XWR_INACTIVE_SELECTION, XWR_TRACK, XWR_PROGRESS_LINE, XWR_THUMB,
  XWR_HELD_THUMB, XWR_SCROLL_GROUND, XWR_GOOD, XWR_WARNING, XWR_BAD, XW_ROLES
};
int32_t XwThemeColor(int role);
/* A box with smooth round corners: filled, then outlined one pixel thin inside the same rectangle.
 * -1 for either: not that. The radius is cut to half of the shorter side. */
void XwRoundBox(int x, int y, int w, int h, int radius, int32_t fill, int32_t line);

/* ---- Smooth paths: lines and curves with fractional coordinates, anti-aliased at the device's own
 * pixels whatever the scale, cut by the clip. A part's (x, y) is its end, the others are control
 * points of curves. A part that follows none or a close begins at its end. Each call rasterises. */
enum { XWP_MOVE, XWP_LINE, XWP_QUAD, XWP_CUBIC, XWP_CLOSE };
typedef struct XwPathPart {
  uint8_t verb;
  float x, y, x1, y1, x2, y2;
} XwPathPart;
/* Closed and filled, inside and outside alternating where parts cross or lie in each other. The
 * current colour stays. Markers, null, a count outside 1 to 10000, a verb that is none and a number
 * that is not finite or beyond 16384 paint nothing. */
void XwFillPath(const XwPathPart* parts, int count, int32_t colour);
/* A line of `width` logical pixels along it, with round ends and joins; a width that is not above 0
 * paints nothing. */
void XwStrokePath(const XwPathPart* parts, int count, float width, int32_t colour);

/* ---- Icons: small pictures of one bit a pixel, drawn in any pair of colours. */
struct XwIcon {
  int32_t width, height; /* 1 to 32767; others draw nothing */
  void* cache;           /* null; the toolkit's, made once and kept */
  const uint8_t* bits;   /* height rows of (width + 7) / 8 bytes, lowest bit leftmost */
};
extern XwIcon IC_POPUP_MORE_DATA_UP[1], IC_POPUP_MORE_DATA_DOWN[1]; /* 25 x 16 */
extern XwIcon IC_EXCHANGE[1];                                       /* 16 x 14 */
extern XwIcon IC_SMALL_ARROW_DOWN[1], IC_SMALL_ARROW_UP[1];         /* 7 x 5 */
extern XwIcon IC_OPT_DIALOG[1];                                     /* 6 x 16 */
extern XwIcon IC_OPT_MENU[1];                                       /* 7 x 16 */
extern XwIcon IC_CHECKBOX[1];                                       /* 16 x 16 */
extern XwIcon IC_ARROWS[1];                                         /* 10 x 10 */

/* Gives an icon an outline, in pixels of the icon, filled as by XwFillPath, in place of its bits
 * where buttons show it: it is sharp at every scale. Copied. Null or a count below 1 takes the
 * outline away; more than 4096 parts, and what XwFillPath refuses, change nothing. The toolkit's
 * own icons have one. */
void XwSetIconOutline(XwIcon* icon, const XwPathPart* parts, int count);
/* Makes the icon's cache if it has none: its bits are read once. Returns `icon`. */
XwIcon* XwLoadIcon(XwIcon* icon);
/* Fills the rectangle with copies of the icon, from its bottom-left corner to the right and up; w
 * or h 0: the icon's own. Set bits take `colour`, clear ones `background`; markers leave them as
 * they are. The colour used last becomes the current colour. Null draws nothing. */
void XwDrawIcon(XwIcon* icon, int x, int y, int w, int h, int32_t colour, int32_t background);

/* ---- Images: pixels of the program's own. Row by row without gaps, four bytes a pixel: ignored,
 * red, green, blue. */

/* Room for width x height pixels (0: XW's), black. The pointer is to the first pixel; XwFreeImage
 * frees it. Null for a negative size and beyond 2^28 pixels. */
uint8_t* XwAllocImage(int width, int height);
/* Frees `image` and makes a new one; the pixels are not kept. */
uint8_t* XwReallocImage(uint8_t* image, int width, int height);
/* Null is ignored. */
void XwFreeImage(uint8_t* image);
/* Copies the part (srcX, srcY, w, h) of an image, cut to what exists of it, to (dstX, dstY). Only
 * for pointers from XwAllocImage; null is ignored. */
void XwPutImage(int srcX, int srcY, int dstX, int dstY, int w, int h, uint8_t* image);
/* The same for w x h pixels anywhere. They stay the caller's, and may be freed afterwards. */
void XwPutImageData(int x, int y, int w, int h, const uint8_t* pixels);
/* width x height pixels, the caller's, in the rectangle (x, y, w, h): each pixel of the device has
 * the one that is nearest. A picture of w and h times XwGetScale pixels, rounded, is shown one to
 * one; where the rectangle's edges fall between pixels of the device, its last column or row may be
 * left out or shown twice. Null and sizes below 1 draw nothing. */
void XwPutImageScaled(int x, int y, int w, int h, const uint8_t* pixels, int width, int height);

#ifdef __cplusplus
} /* extern "C" */

/* Pointers where a value is wanted; the int overloads keep a literal 0 unambiguous. */
inline XwWindow* XwCreate(XwWindow* parent, int x, int y, int width, int height,
                          XwHandler handler) {
  return XwCreate(reinterpret_cast<XwValue>(parent), x, y, width, height, handler);
}
inline XwWindow* XwCreate(int style, int x, int y, int width, int height, XwHandler handler) {
  return XwCreate(XwValue(style), x, y, width, height, handler);
}
inline void XwSendEvent(XwWindow* w, int type, int item, const void* value, int param) {
  XwSendEvent(w, type, item, reinterpret_cast<XwValue>(value), param);
}
inline void XwSendEvent(XwWindow* w, int type, int item, int value, int param) {
  XwSendEvent(w, type, item, XwValue(value), param);
}
inline int DirectSendEvent(XwWindow* w, int type, int item, const void* value) {
  return DirectSendEvent(w, type, item, reinterpret_cast<XwValue>(value));
}
inline int DirectSendEvent(XwWindow* w, int type, int item, int value) {
  return DirectSendEvent(w, type, item, XwValue(value));
}
inline void XwSetValue(XwWindow* w, const void* value) {
  XwSetValue(w, reinterpret_cast<XwValue>(value));
}
template <typename Text> /* char, or const char */
inline void XwSetText(XwWindow* w, Text* const* texts) {
  XwSetText(w, reinterpret_cast<const char*>(texts));
}
template <typename Text>
inline void XwSetTextUtf8(XwWindow* w, Text* const* texts) {
  XwSetTextUtf8(w, reinterpret_cast<const char*>(texts));
}
inline void XwSetValue(XwWindow* w, int value) { XwSetValue(w, XwValue(value)); }
inline XwWindow* XwButton(XwWindow* parent, const char* text, int32_t id, int x, int y, int w,
                          int h, uint32_t style, int value) {
  return XwButton(parent, text, id, x, y, w, h, style, XwValue(value));
}
inline XwWindow* XwButton(XwWindow* parent, const char* text, int32_t id, int x, int y, int w,
                          int h, uint32_t style, const void* menu) {
  return XwButton(parent, text, id, x, y, w, h, style, reinterpret_cast<XwValue>(menu));
}
inline XwWindow* XwButton(XwWindow* parent, const XwIcon* icon, int32_t id, int x, int y, int w,
                          int h, uint32_t style, int value) {
  return XwButton(parent, reinterpret_cast<const char*>(icon), id, x, y, w, h, style,
                  XwValue(value));
}
inline XwWindow* XwButton(XwWindow* parent, const XwIcon* icon, int32_t id, int x, int y, int w,
                          int h, uint32_t style, const void* menu) {
  return XwButton(parent, reinterpret_cast<const char*>(icon), id, x, y, w, h, style,
                  reinterpret_cast<XwValue>(menu));
}
inline XwWindow* XwLabel(XwWindow* parent, const XwIcon* icon, int32_t id, int x, int y, int w,
                         int h, uint32_t style) {
  return XwLabel(parent, reinterpret_cast<const char*>(icon), id, x, y, w, h, style);
}
#endif

#endif

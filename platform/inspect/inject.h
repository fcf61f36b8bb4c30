// Input that a client asks for. It goes the way of the display's own: reports that are recorded,
// translated and queued.
#pragma once
#include <string>

#include "platform/base.h"

namespace platform {

// Modifiers by name with blanks between ("control shift alt super") as bits of KeyFields; false for
// other words.
bool ParseModifiers(const std::string& words, uint32_t* out);

// What is seen at a global point, of the top-level window with this serial and the pop-ups above
// it; null when the window has ended or does not show.
WindowRef WindowAt(uint64_t serial, Point where);
// The window itself, or the one that a pop-up belongs to.
WindowRef FrameOf(WindowRef w);
// Moves the pointer to a point of the window and presses and releases the button `count` times.
// The window gets the focus first, if it can have it.
void InjectClick(WindowRef w, Point where, int button, int count, uint32_t modifiers);
// The window gets the focus, as from the desktop, if it can have it and has it not.
void InjectFocus(WindowRef w);
// The window that keys go to; the front one gets the focus where none has it. Null: there is none.
WindowRef KeyWindow();
// IsKey: whether there is a key of this name, such as "a", "Return", "F5" or "Page_Up". The other:
// whether keys can type a text, which may have no control characters but tabs and line feeds.
bool IsKey(const std::string& key);
bool IsTypable(const std::string& utf8);
// Presses and releases a key in the window; an unknown key is ignored.
void InjectKey(WindowRef w, const std::string& key, uint32_t modifiers);
// Types at most so many characters of a text; returns how many bytes of it these are.
size_t InjectText(WindowRef w, const char* utf8, int most);

}  // namespace platform

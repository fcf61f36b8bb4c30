// The clipboard and the primary selection: texts offered to all programs, and asked of them.
#pragma once
#include <string>

#include "platform/display/selection.h"

namespace platform {

// Offers a text in place of what was there, until another program offers one. What is not UTF-8
// becomes U+FFFD. False, and nothing has changed, when the display or another program refuses it,
// or it is longer than kMostText.
bool OfferText(Selection which, std::string utf8);
// Takes the text back. Nothing happens when it is not this program's.
void GiveUp(Selection which);
// The text that this program offers; null when it offers none.
SharedText OfferedText(Selection which);

// Called once for a request: with the text, valid during the call, or with null when there is none,
// it was refused, was too long or did not come in time. It may ask again.
using TextArrived = void (*)(void* data, const std::string* text);
// Asks for the text of a selection, which may be this program's own. The answer comes while the
// loop dispatches, never inside this call, `timeout_ms` after it at the latest (below 1: only what
// the program offers itself). Returns the number of the request, above 0.
int AskText(Selection which, int timeout_ms, TextArrived arrived, void* data);
// The callback of the request never runs. An unknown number is ignored.
void ForgetAsk(int request);

// --- For the loop and the translation of reports.
// The event with which an answer is dispatched (class kEventClassClipboard) has the request's
// number in `request.id`.
void InitClipboard();
// The display reports: the answer to a request (null: none), whose text is taken over; another
// program has the selection from now on.
void TextReported(int request, std::string* text);
void SelectionLost(Selection which);
// The program ends, now or soon: a desktop that keeps texts gets the clipboard's. Waits at most
// half a second.
void KeepText();
void FinishClipboard();

}  // namespace platform

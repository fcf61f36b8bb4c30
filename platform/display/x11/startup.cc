// Startup notification: the launcher's token goes onto the first window, its time stands for the
// user's action, and after the first frame the launcher hears that the start is over.
//
// And starts of one program: the first owns a selection that is named after it, so that a second
// one knows of it before it shows anything. The server ends the ownership with the program.
#include "platform/desktop/startup.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "platform/desktop/application.h"
#include "platform/display/x11/x.h"

namespace platform::x11 {

namespace {

bool begun = false;  // the first window carries the token
bool told = false;

struct Program {
  xcb_intern_atom_cookie_t name{};
  xcb_get_selection_owner_cookie_t owner{};
  xcb_atom_t selection = XCB_NONE;
  bool others = false;  // another program owned the selection at the start
};
Program program;

// The server's time of the action, which ends a token; 0 when there is none.
xcb_timestamp_t TimeOfToken(const std::string& token) {
  constexpr char kMark[] = "_TIME";
  const size_t at = token.rfind(kMark);
  if (at == std::string::npos) return 0;
  return xcb_timestamp_t(strtoul(token.c_str() + at + sizeof kMark - 1, nullptr, 10));
}

// Sends a text to all who listen at the root window, in messages of twenty bytes; a zero ends it.
void Broadcast(const std::string& text) {
  xcb_client_message_event_t m{};
  m.response_type = XCB_CLIENT_MESSAGE;
  m.format = 8;
  m.window = x.leader != 0 ? x.leader : x.screen->root;
  m.type = Atom(kNetStartupInfoBegin);
  for (size_t at = 0; at <= text.size(); at += sizeof m.data.data8) {
    memset(m.data.data8, 0, sizeof m.data.data8);
    memcpy(m.data.data8, text.data() + at, std::min(sizeof m.data.data8, text.size() - at));
    xcb_send_event(x.c, 0, x.screen->root, XCB_EVENT_MASK_PROPERTY_CHANGE,
                   reinterpret_cast<const char*>(&m));
    m.type = Atom(kNetStartupInfo);
  }
}

void TellEnd(const std::string& token) {
  std::string text = "remove: ID=";
  for (char c : token) {
    if (c == ' ' || c == '"' || c == '\\') text.push_back('\\');
    text.push_back(c);
  }
  Broadcast(text);
}

}  // namespace

void BeginStartup() {
  begun = told = false;
  if (const xcb_timestamp_t time = TimeOfToken(StartToken())) x.user_time = time;
}

void MarkStartup(const Native& n) {
  const std::string& token = StartToken();
  if (begun || token.empty()) return;
  begun = true;
  xcb_change_property(x.c, XCB_PROP_MODE_REPLACE, n.id, Atom(kNetStartupId), Atom(kUtf8String), 8,
                      uint32_t(token.size()), token.data());
}

void AskProgramName() {
  program = Program{};
  const std::string name = "_XW_PROGRAM_" + ApplicationBusName(x.session_name);
  program.name = xcb_intern_atom(x.c, 0, uint16_t(name.size()), name.data());
}

void AskOthers() {
  Reply<xcb_intern_atom_reply_t> name(xcb_intern_atom_reply(x.c, program.name, nullptr));
  program.selection = name ? name->atom : xcb_atom_t{XCB_NONE};
  if (program.selection != XCB_NONE)
    program.owner = xcb_get_selection_owner(x.c, program.selection);
}

void TakeOthers() {
  if (program.selection == XCB_NONE) return;
  Reply<xcb_get_selection_owner_reply_t> owner(
      xcb_get_selection_owner_reply(x.c, program.owner, nullptr));
  program.others = owner && owner->owner != XCB_NONE;
}

bool OthersRun() {
  return program.others;
}

void MarkProgram(const Native& n) {
  if (program.selection == XCB_NONE || program.others || x.leader != n.id) return;
  xcb_set_selection_owner(x.c, n.id, program.selection, XCB_CURRENT_TIME);
}

void EndStartup() {
  if (!told && !StartToken().empty()) TellEnd(StartToken());
  told = true;
}

void UseToken(const char* token) {
  const std::string text = std::string(token).substr(0, 1024);
  const xcb_timestamp_t time = TimeOfToken(text);
  // The time never goes back: there may have been later input.
  if (time != 0 && (x.user_time == 0 || int32_t(time - x.user_time) > 0)) x.user_time = time;
  TellEnd(text);
}

}  // namespace platform::x11

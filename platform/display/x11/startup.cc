// Startup notification: the launcher's token goes onto the first window, its time stands for the
// user's action, and after the first frame the launcher hears that the start is over.
#include "platform/desktop/startup.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "platform/display/x11/x.h"

namespace platform::x11 {

namespace {

bool begun = false;  // the first window carries the token
bool told = false;

// The server's time of the action, which ends a token; 0 when there is none.
xcb_timestamp_t TimeOfToken(const std::string& token) {
  constexpr char kMark[] = "_TIME";
  const size_t at = token.rfind(kMark);
  if (at == std::string::npos) return 0;
  return xcb_timestamp_t(strtoul(token.c_str() + at + sizeof kMark - 1, nullptr, 10));
}

// A text in pieces of twenty bytes, the last with a zero, to all who listen at the root window.
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

void EndStartup() {
  if (!told && !StartToken().empty()) TellEnd(StartToken());
  told = true;
}

void UseToken(const char* token) {
  const std::string text = std::string(token).substr(0, 1024);
  const xcb_timestamp_t time = TimeOfToken(text);
  // Only forward: the user may have done more meanwhile.
  if (time != 0 && (x.user_time == 0 || int32_t(time - x.user_time) > 0)) x.user_time = time;
  TellEnd(text);
}

}  // namespace platform::x11

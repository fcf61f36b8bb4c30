// Another program of the desktop, on its own connection: it owns selections and answers as
// it is told, or asks the owner. It does something only while Work() runs.
#pragma once
#include <xcb/xcb.h>

#include <cstdlib>
#include <cstring>
#include <functional>
#include <map>
#include <string>
#include <vector>

namespace x11_test {

class Peer {
 public:
  Peer() {
    c_ = xcb_connect(nullptr, nullptr);
    root_ = xcb_setup_roots_iterator(xcb_get_setup(c_)).data->root;
    window_ = MakeWindow();
  }
  ~Peer() { xcb_disconnect(c_); }
  Peer(const Peer&) = delete;
  Peer& operator=(const Peer&) = delete;

  xcb_window_t window() const { return window_; }
  xcb_window_t root() const { return root_; }
  xcb_connection_t* connection() const { return c_; }
  xcb_atom_t Atom(const std::string& name) {
    auto at = atoms_.find(name);
    if (at != atoms_.end()) return at->second;
    auto cookie = xcb_intern_atom(c_, 0, uint16_t(name.size()), name.data());
    auto* reply = xcb_intern_atom_reply(c_, cookie, nullptr);
    const xcb_atom_t atom = reply != nullptr ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
    free(reply);
    return atoms_[name] = atom;
  }
  xcb_window_t OwnerOf(const std::string& selection) {
    auto cookie = xcb_get_selection_owner(c_, Atom(selection));
    auto* reply = xcb_get_selection_owner_reply(c_, cookie, nullptr);
    const xcb_window_t owner = reply != nullptr ? reply->owner : xcb_window_t{XCB_NONE};
    free(reply);
    return owner;
  }
  // Its window goes, as that of a program that has ended.
  void Die() {
    xcb_destroy_window(c_, window_);
    Sync();
  }
  void Sync() { free(xcb_get_input_focus_reply(c_, xcb_get_input_focus(c_), nullptr)); }

  // --- An owner.
  // What it puts into the property it is asked with, before it says that it has; with `pieces` each
  // of them when the one before has been taken.
  struct Value {
    std::string type;
    int format = 8;
    std::string bytes;
  };
  struct Answer {
    Value value;
    std::vector<Value> pieces;
    enum { kSays, kSaysNothing, kDies, kSaysTwice, kNamesAnother } how = kSays;
  };
  // By target; what is not there is refused.
  std::map<std::string, Answer> answers;
  // Called instead, where it is set.
  std::function<void(const xcb_selection_request_event_t&)> on_request;
  size_t requests = 0, pieces_sent = 0;
  // The pieces that are still to come, by the window that they go to, and their property there.
  std::map<xcb_window_t, std::vector<Value>> sending;
  std::map<xcb_window_t, xcb_atom_t> sending_in;
  // Whatever else it is told.
  std::function<void(const xcb_client_message_event_t&)> on_message;

  void Own(const std::string& selection) {
    xcb_set_selection_owner(c_, window_, Atom(selection), XCB_CURRENT_TIME);
    Sync();
  }
  // The text as UTF8_STRING; longer than `piece` in pieces.
  void Offer(const std::string& selection, const std::string& text, size_t piece = 200000) {
    answers.clear();
    answers["UTF8_STRING"] = InPieces("UTF8_STRING", text, piece);
    Own(selection);
  }
  static Answer InPieces(const std::string& type, const std::string& text, size_t piece) {
    if (text.size() <= piece) return {{type, 8, text}, {}};
    Answer answer{{"INCR", 32, Word(uint32_t(text.size()))}, {}};
    for (size_t at = 0; at < text.size(); at += piece)
      answer.pieces.push_back({type, 8, text.substr(at, piece)});
    answer.pieces.push_back({type, 8, ""});
    return answer;
  }
  static std::string Word(uint32_t word) {
    return std::string(reinterpret_cast<const char*>(&word), sizeof word);
  }
  void Put(xcb_window_t w, xcb_atom_t property, const Value& v) {
    xcb_change_property(c_, XCB_PROP_MODE_REPLACE, w, property, Atom(v.type), uint8_t(v.format),
                        uint32_t(v.bytes.size() / size_t(v.format / 8)), v.bytes.data());
  }
  void Say(const xcb_selection_request_event_t& r, xcb_atom_t property) {
    xcb_selection_notify_event_t n{};
    n.response_type = XCB_SELECTION_NOTIFY;
    n.requestor = r.requestor;
    n.selection = r.selection;
    n.target = r.target;
    n.property = property;
    xcb_send_event(c_, 0, r.requestor, 0, reinterpret_cast<const char*>(&n));
  }

  // --- An asker. Each question uses a separate window.
  struct Question {
    xcb_window_t window = 0;
    bool told = false, refused = false, done = false;
    bool in_pieces = false, stalls = false;  // it takes no piece
    std::string type, bytes;
    int format = 0;
    size_t pieces = 0;
    xcb_atom_t property = 0;
  };
  Question* Ask(const std::string& selection, const std::string& target,
                xcb_timestamp_t time = XCB_CURRENT_TIME) {
    return AskWith(MakeWindow(), selection, target, "ANSWER", time);
  }
  Question* AskWith(xcb_window_t window, const std::string& selection, const std::string& target,
                    const std::string& property, xcb_timestamp_t time = XCB_CURRENT_TIME) {
    Question& q = questions_[window];
    q.window = window;
    q.property = property.empty() ? xcb_atom_t{XCB_NONE} : Atom(property);
    xcb_convert_selection(c_, q.window, Atom(selection), Atom(target), q.property, time);
    xcb_flush(c_);
    return &q;
  }
  xcb_window_t MakeWindow() {
    const xcb_window_t window = xcb_generate_id(c_);
    const uint32_t mask = XCB_EVENT_MASK_PROPERTY_CHANGE;
    xcb_create_window(c_, 0, window, root_, 0, 0, 1, 1, 0, XCB_WINDOW_CLASS_INPUT_ONLY, 0,
                      XCB_CW_EVENT_MASK, &mask);
    return window;
  }

  void Work() {
    while (xcb_generic_event_t* e = xcb_poll_for_event(c_)) {
      const int type = e->response_type & 0x7F;
      if (type == XCB_SELECTION_REQUEST)
        OnRequest(*reinterpret_cast<const xcb_selection_request_event_t*>(e));
      else if (type == XCB_SELECTION_NOTIFY)
        OnAnswer(*reinterpret_cast<const xcb_selection_notify_event_t*>(e));
      else if (type == XCB_PROPERTY_NOTIFY)
        OnProperty(*reinterpret_cast<const xcb_property_notify_event_t*>(e));
      else if (type == XCB_CLIENT_MESSAGE && on_message)
        on_message(*reinterpret_cast<const xcb_client_message_event_t*>(e));
      free(e);
    }
    xcb_flush(c_);
  }

 private:
  void OnRequest(const xcb_selection_request_event_t& r) {
    ++requests;
    sending_in[r.requestor] = r.property;
    if (on_request) return on_request(r);
    const Answer* answer = nullptr;
    for (const auto& [target, a] : answers)
      if (Atom(target) == r.target) answer = &a;
    if (answer == nullptr) return Say(r, XCB_NONE);
    if (answer->how == Answer::kDies) return Die();
    if (answer->how == Answer::kSaysNothing) return;
    const uint32_t mask = XCB_EVENT_MASK_PROPERTY_CHANGE;
    if (!answer->pieces.empty())
      xcb_change_window_attributes(c_, r.requestor, XCB_CW_EVENT_MASK, &mask);
    if (!answer->value.type.empty()) Put(r.requestor, r.property, answer->value);
    sending[r.requestor] = answer->pieces;
    Say(r, answer->how == Answer::kNamesAnother ? Atom("OTHER") : r.property);
    if (answer->how == Answer::kSaysTwice) Say(r, r.property);
  }
  void OnAnswer(const xcb_selection_notify_event_t& n) {
    const auto at = questions_.find(n.requestor);
    if (at == questions_.end()) return;
    Question& q = at->second;
    q.told = true;
    q.refused = n.property == XCB_NONE;
    q.done = q.refused;
    q.property = n.property;
    if (!q.refused && !q.stalls) Take(&q);
  }
  void OnProperty(const xcb_property_notify_event_t& p) {
    const auto at = questions_.find(p.window);
    if (at != questions_.end() && at->second.in_pieces && p.state == XCB_PROPERTY_NEW_VALUE &&
        p.atom == at->second.property && !at->second.stalls) {
      Take(&at->second);
    }
    const auto to = sending.find(p.window);
    if (to == sending.end() || p.state != XCB_PROPERTY_DELETE || to->second.empty()) return;
    if (p.atom != sending_in[p.window]) return;
    Put(p.window, p.atom, to->second.front());
    to->second.erase(to->second.begin());
    ++pieces_sent;
  }
  void Take(Question* q) {
    auto cookie = xcb_get_property(c_, 1, q->window, q->property, XCB_ATOM_ANY, 0, 1 << 26);
    auto* reply = xcb_get_property_reply(c_, cookie, nullptr);
    if (reply == nullptr) return;
    const size_t size = size_t(xcb_get_property_value_length(reply));
    const bool first = !q->in_pieces;
    if (first && reply->type == Atom("INCR")) {
      q->in_pieces = true;
    } else {
      q->type = NameOf(reply->type);
      q->format = reply->format;
      q->bytes.append(static_cast<const char*>(xcb_get_property_value(reply)), size);
      q->done = first || size == 0;
      ++q->pieces;
    }
    free(reply);
  }
  std::string NameOf(xcb_atom_t atom) {
    auto* reply = xcb_get_atom_name_reply(c_, xcb_get_atom_name(c_, atom), nullptr);
    if (reply == nullptr) return "";
    std::string name(xcb_get_atom_name_name(reply), size_t(xcb_get_atom_name_name_length(reply)));
    free(reply);
    return name;
  }

  xcb_connection_t* c_ = nullptr;
  xcb_window_t root_ = 0, window_ = 0;
  std::map<std::string, xcb_atom_t> atoms_;
  std::map<xcb_window_t, Question> questions_;
};

}  // namespace x11_test

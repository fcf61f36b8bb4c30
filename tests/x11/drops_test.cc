// Files dropped by other programs, well behaved and not.
#include <algorithm>

#include "tests/x11/reports.h"

namespace x11_test {
namespace {

// The other side of a drop: a program with a connection of its own.
class Source {
 public:
  Source(support::XUser* user, xcb_window_t target) : user_(user), target_(target) {
    window_ = xcb_generate_id(c());
    xcb_create_window(c(), 0, window_, user_->root(), 0, 0, 1, 1, 0, XCB_WINDOW_CLASS_INPUT_ONLY, 0,
                      0, nullptr);
    // Its pieces follow the deletion of the one before.
    const uint32_t mask = XCB_EVENT_MASK_PROPERTY_CHANGE;
    xcb_change_window_attributes(c(), target, XCB_CW_EVENT_MASK, &mask);
    xcb_set_selection_owner(c(), window_, user_->Atom("XdndSelection"), XCB_CURRENT_TIME);
    user_->Sync();
  }
  void Enter(const char* type) {
    Send("XdndEnter", {window_, 5u << 24, user_->Atom(type), 0, 0});
    Send("XdndPosition", {window_, 0, 150 << 16 | 200, 0, user_->Atom("XdndActionCopy")});
  }
  void Drop() {
    Enter("text/uri-list");
    Send("XdndDrop", {window_, 0, 0, 0, 0});
  }
  void Leave() { Send("XdndLeave", {window_, 0, 0, 0, 0}); }
  void Destroy() {
    xcb_destroy_window(c(), window_);
    user_->Sync();
  }
  // What the selection is answered with: put into the property by `write`, in `pieces` after it.
  std::function<void(xcb_window_t requestor, xcb_atom_t property)> write;
  std::vector<std::string> pieces;
  bool silent = false;  // asked for the list, it says nothing
  std::vector<std::string> answers;

  void Put(xcb_window_t w, xcb_atom_t property, const char* type, int format, const void* data,
           size_t count) {
    xcb_change_property(c(), XCB_PROP_MODE_REPLACE, w, property, user_->Atom(type), uint8_t(format),
                        uint32_t(count), data);
  }
  void Answer(const std::string& list) {
    write = [this, list](xcb_window_t w, xcb_atom_t property) {
      Put(w, property, "text/uri-list", 8, list.data(), list.size());
    };
  }
  // In pieces of `size` bytes, the empty one last.
  void AnswerInPieces(const std::string& list, size_t size) {
    for (size_t at = 0; at < list.size(); at += size) pieces.push_back(list.substr(at, size));
    pieces.push_back("");
    write = [this, list](xcb_window_t w, xcb_atom_t property) {
      const uint32_t total = uint32_t(list.size());
      Put(w, property, "INCR", 32, &total, 1);
    };
  }
  // Does what a source does when this has come.
  void Take(const xcb_generic_event_t* e) {
    const int type = e->response_type & 0x7F;
    if (type == XCB_CLIENT_MESSAGE) {
      auto* m = reinterpret_cast<const xcb_client_message_event_t*>(e);
      if (m->window != window_) return;
      answers.push_back((m->type == user_->Atom("XdndStatus") ? "status " : "finished ") +
                        std::to_string(m->data.data32[1]));
    } else if (type == XCB_SELECTION_REQUEST && !silent) {
      auto* r = reinterpret_cast<const xcb_selection_request_event_t*>(e);
      if (r->owner == window_) OnRequest(*r);
    } else if (type == XCB_PROPERTY_NOTIFY) {
      OnProperty(*reinterpret_cast<const xcb_property_notify_event_t*>(e));
    }
  }
  xcb_window_t window() const { return window_; }
  void Send(const char* type, std::vector<uint32_t> data) {
    xcb_client_message_event_t m{};
    m.response_type = XCB_CLIENT_MESSAGE;
    m.format = 32;
    m.window = target_;
    m.type = user_->Atom(type);
    std::copy(data.begin(), data.end(), m.data.data32);
    xcb_send_event(c(), 0, target_, 0, reinterpret_cast<const char*>(&m));
    user_->Sync();
  }

 private:
  xcb_connection_t* c() { return user_->connection(); }
  void OnRequest(const xcb_selection_request_event_t& r) {
    xcb_selection_notify_event_t n{};
    n.response_type = XCB_SELECTION_NOTIFY;
    n.requestor = r.requestor;
    n.selection = r.selection;
    n.target = r.target;
    n.property = write ? r.property : xcb_atom_t{XCB_ATOM_NONE};
    if (write) write(r.requestor, r.property);
    xcb_send_event(c(), 0, r.requestor, 0, reinterpret_cast<const char*>(&n));
    user_->Sync();
    sending_ = !pieces.empty();
    property_ = r.property;
  }
  void OnProperty(const xcb_property_notify_event_t& p) {
    if (!sending_ || p.atom != property_ || p.state != XCB_PROPERTY_DELETE || pieces.empty())
      return;
    Put(target_, property_, "text/uri-list", 8, pieces.front().data(), pieces.front().size());
    pieces.erase(pieces.begin());
    user_->Sync();
  }

  support::XUser* user_;
  xcb_window_t target_, window_ = 0;
  xcb_atom_t property_ = 0;
  bool sending_ = false;
};

class Drops : public Reports {
 protected:
  void SetUp() override {
    Start();
    window = Ready();
    id = x11::NativeOf(window)->id;
  }
  // Both sides at work until `done`.
  bool Run(const std::function<bool()>& done) {
    return support::Eventually([&] {
      RawEvent raw;
      while (kX11Display.next_event(&raw)) {
        if (raw.type == RawEvent::kOpenFile) paths.push_back(raw.text);
      }
      while (auto* e = xcb_poll_for_event(user().connection())) {
        for (Source* s : sources) s->Take(e);
        free(e);
      }
      return done();
    });
  }
  std::unique_ptr<Source> MakeSource() {
    auto s = std::make_unique<Source>(&user(), id);
    sources = {s.get()};
    return s;
  }
  bool Answered(const Source& s, size_t count) {
    return Run([&] { return s.answers.size() >= count; });
  }
  WindowRef window = nullptr;
  xcb_window_t id = 0;
  std::vector<Source*> sources;
  std::vector<std::string> paths;
};

TEST_F(Drops, OnlyListsOfAddressesAreTaken) {
  EXPECT_EQ(user().Words(id, "XdndAware"), std::vector<uint32_t>{5});
  auto source = MakeSource();
  source->Answer("# list\r\nfile:///tmp/a%20file.txt\r\nfile:///second\r\n");
  source->Enter("text/uri-list");
  source->Leave();
  source->Enter("image/png");
  source->Drop();
  ASSERT_TRUE(Answered(*source, 4));
  EXPECT_EQ(source->answers,
            (std::vector<std::string>{"status 1", "status 0", "status 1", "finished 1"}));
  EXPECT_EQ(paths, std::vector<std::string>{"/tmp/a file.txt"});
}

TEST_F(Drops, ALongListComesInPieces) {
  std::string list = "# a list\r\nfile:///tmp/the%20first\r\n";
  for (int i = 0; i < 2000; ++i) list += "file:///tmp/another-" + std::to_string(i) + "\r\n";
  for (size_t size : {size_t{7}, size_t{4096}}) {
    auto source = MakeSource();
    source->AnswerInPieces(size == 7 ? list.substr(0, 200) : list, size);
    source->Drop();
    ASSERT_TRUE(Answered(*source, 2));
    EXPECT_EQ(source->answers.back(), "finished 1");
    EXPECT_TRUE(source->pieces.empty());
  }
  EXPECT_EQ(paths, (std::vector<std::string>{"/tmp/the first", "/tmp/the first"}));
}

TEST_F(Drops, AListWithoutEndIsCut) {
  auto source = MakeSource();
  source->AnswerInPieces("file:///kept\r\n" + std::string(3 << 20, 'x'), 200000);
  source->Drop();
  ASSERT_TRUE(Answered(*source, 2));
  EXPECT_EQ(source->answers.back(), "finished 1");
  EXPECT_GT(source->pieces.size(), 5u);  // it was not read to its end
  // The same in one piece; nothing of it stays with the window.
  source = MakeSource();
  source->Answer("file:///kept\r\n" + std::string(3 << 20, 'x'));
  source->Drop();
  ASSERT_TRUE(Answered(*source, 2));
  EXPECT_EQ(paths, (std::vector<std::string>{"/kept", "/kept"}));
  EXPECT_EQ(user().Text(id, "_XW_DROP"), "");
}

TEST_F(Drops, WhatIsNoListIsRefused) {
  const uint32_t words[] = {1, 2, 3};
  const std::string list = "file:///tmp/a\r\n";
  struct Row {
    const char* what;
    std::function<void(Source&)> prepare;
  };
  const Row rows[] = {
      {"nothing", [](Source&) {}},
      {"empty", [](Source& s) { s.Answer(""); }},
      {"another type",
       [&](Source& s) {
         s.write = [&](xcb_window_t w, xcb_atom_t p) {
           s.Put(w, p, "STRING", 8, list.data(), list.size());
         };
       }},
      {"words",
       [&](Source& s) {
         s.write = [&](xcb_window_t w, xcb_atom_t p) {
           s.Put(w, p, "text/uri-list", 32, words, 3);
         };
       }},
      {"no property", [](Source& s) { s.write = [](xcb_window_t, xcb_atom_t) {}; }},
      {"an address elsewhere", [](Source& s) { s.Answer("http://elsewhere.example/a\r\n"); }},
      {"bytes", [](Source& s) { s.Answer(std::string("file:///\0\xFF\r\n", 12)); }},
      {"no pieces", [](Source& s) { s.AnswerInPieces("", 1); }},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.what);
    auto source = MakeSource();
    row.prepare(*source);
    source->Drop();
    ASSERT_TRUE(Answered(*source, 2));
    EXPECT_EQ(source->answers.back(), "finished 0");
  }
  EXPECT_TRUE(paths.empty());
}

// A source that stops in the middle holds up nothing, and what it sends much later is not opened.
TEST_F(Drops, ASourceThatStopsIsGivenUp) {
  auto stuck = MakeSource();
  stuck->AnswerInPieces("file:///tmp/stuck\r\n", 4);
  stuck->pieces.resize(2);
  stuck->Drop();
  ASSERT_TRUE(Run([&] { return stuck->pieces.empty(); }));
  auto silent = MakeSource();
  silent->silent = true;
  silent->Drop();
  sources = {stuck.get(), silent.get()};
  ASSERT_TRUE(Answered(*silent, 1) && Answered(*stuck, 2));
  EXPECT_EQ(stuck->answers.back(), "finished 0");
  auto good = MakeSource();
  good->Answer("file:///good\r\n");
  good->Drop();
  ASSERT_TRUE(Answered(*good, 2));
  EXPECT_EQ(paths, std::vector<std::string>{"/good"});
  // Out of patience when the list comes.
  x11::x.drop_patience = -1;
  auto late = MakeSource();
  late->Answer("file:///late\r\n");
  late->Drop();
  ASSERT_TRUE(Answered(*late, 2));
  EXPECT_EQ(late->answers.back(), "finished 0");
  EXPECT_EQ(paths.size(), 1u);
}

// The wait of the loop ends for it: nothing else comes that could.
TEST_F(Drops, ASilentSourceIsGivenUpWithoutAnyEvent) {
  x11::x.drop_patience = 0.2;
  auto give_up = [this](Source* s) {
    s->Drop();
    // Until it says no more.
    ASSERT_TRUE(Run([&] { return !s->answers.empty() && s->pieces.empty(); }));
    Event e;
    EXPECT_FALSE(ReceiveNextEvent(1.5, &e) && e.cls == kEventClassAppleEvent);
    // The display is not looked at any more, and it is told all the same.
    ASSERT_TRUE(support::Eventually([&] {
      while (auto* event = xcb_poll_for_event(user().connection())) {
        s->Take(event);
        free(event);
      }
      return s->answers.size() == 2;
    }));
    EXPECT_EQ(s->answers.back(), "finished 0");
  };
  auto silent = MakeSource();
  silent->silent = true;
  give_up(silent.get());
  auto stuck = MakeSource();
  stuck->AnswerInPieces("file:///tmp/stuck\r\nfile:///tmp/another\r\n", 4);
  const std::vector<std::string> late(stuck->pieces.begin() + 2, stuck->pieces.end());
  stuck->pieces.resize(2);
  give_up(stuck.get());
  // What it sends after all is neither opened nor kept.
  stuck->pieces = late;
  stuck->pieces.push_back("");
  stuck->Put(id, user().Atom("_XW_DROP"), "text/uri-list", 8, "late", 4);
  user().Sync();
  ASSERT_TRUE(Run([&] { return stuck->pieces.empty(); }));
  Run([&] { return user().Words(id, "_XW_DROP").empty(); });
  EXPECT_EQ(user().Text(id, "_XW_DROP"), "");
  EXPECT_TRUE(paths.empty());
}

TEST_F(Drops, ASourceThatEndsLeavesNothing) {
  x11::x.drop_patience = 1000;
  auto source = MakeSource();
  source->AnswerInPieces("file:///tmp/a\r\n", 4);
  source->pieces.resize(2);
  source->Drop();
  ASSERT_TRUE(Run([&] { return source->pieces.empty(); }));
  source->Put(id, user().Atom("_XW_DROP"), "text/uri-list", 8, "half", 4);
  source->Destroy();
  EXPECT_TRUE(Run([&] { return user().Text(id, "_XW_DROP").empty(); }));
  // Of one that was still hovering neither: a window that gets its number has to enter again.
  auto hovering = MakeSource();
  hovering->Enter("text/uri-list");
  ASSERT_TRUE(Answered(*hovering, 1));
  hovering->Destroy();
  Run([] { return true; });
  hovering->Send("XdndDrop", {hovering->window(), 0, 0, 0, 0});
  hovering->Send("XdndPosition", {hovering->window(), 0, 150 << 16 | 200, 0, 0});
  auto good = MakeSource();
  good->Answer("file:///good\r\n");
  good->Drop();
  ASSERT_TRUE(Answered(*good, 2));
  EXPECT_EQ(paths, std::vector<std::string>{"/good"});
  EXPECT_EQ(hovering->answers.size(), 1u);
}

TEST_F(Drops, EitherSideMayGoAwayInTheMiddle) {
  auto source = MakeSource();
  source->AnswerInPieces("file:///tmp/a\r\n", 4);
  source->pieces.resize(2);
  source->Drop();
  ASSERT_TRUE(Run([&] { return source->pieces.empty(); }));
  source->Destroy();
  // Messages that name a window which is gone.
  source->Enter("text/uri-list");
  source->Drop();
  Run([] { return true; });
  WindowRef other = Show("Other", {500, 300, 600, 400});
  const xcb_window_t other_id = x11::NativeOf(other)->id;
  auto second = std::make_unique<Source>(&user(), other_id);
  sources = {second.get()};
  second->AnswerInPieces("file:///tmp/a\r\n", 4);
  second->pieces.resize(2);
  second->Drop();
  ASSERT_TRUE(Run([&] { return second->pieces.empty(); }));
  DisposeWindow(other);
  ASSERT_TRUE(Answered(*second, 2));
  EXPECT_EQ(second->answers.back(), "finished 0");
  EXPECT_TRUE(paths.empty());
}

}  // namespace
}  // namespace x11_test

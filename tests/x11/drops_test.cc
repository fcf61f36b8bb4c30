// Files dropped by other programs, well behaved and not.
#include <algorithm>
#include <list>

#include "platform/desktop/documents.h"
#include "tests/x11/drop_source.h"
#include "tests/x11/reports.h"

namespace x11_test {
namespace {

constexpr const char* kList = DropSource::kList;

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
        if (raw.type == RawEvent::kDragOver)
          drag += std::to_string(int(raw.x)) + "," + std::to_string(int(raw.y)) + " ";
        if (raw.type == RawEvent::kDragLeft) drag += "left ";
        if (raw.type == RawEvent::kDragDropped) drag += "dropped ";
        if (raw.type == RawEvent::kDropFailed) drag += "failed ";
        if (raw.type == RawEvent::kOpenFile) {
          dropped.push_back(SplitPaths(raw.text));
          paths.push_back(dropped.back().front());
        }
      }
      for (DropSource& s : sources) s.Work();
      return done();
    });
  }
  void TearDown() override {
    sources.clear();
    Reports::TearDown();
  }
  DropSource* MakeSource() { return &sources.emplace_back(id); }
  std::string LeftWithWindow() {
    return user().Text(id, "_XW_DROP") + user().Text(id, "_XW_DROP_2");
  }
  bool Answered(const DropSource& s, size_t count) {
    return Run([&] { return s.heard.size() >= count; });
  }
  WindowRef window = nullptr;
  xcb_window_t id = 0;
  std::list<DropSource> sources;
  std::vector<std::vector<std::string>> dropped;
  std::vector<std::string> paths;  // the first of each
  std::string drag;                // what is told before the drop
};

TEST_F(Drops, OnlyListsOfAddressesAreTaken) {
  EXPECT_EQ(user().Words(id, "XdndAware"), std::vector<uint32_t>{5});
  auto source = MakeSource();
  source->Give("# list\r\nfile:///tmp/a%20file.txt\r\nfile:///second\r\n");
  source->Enter("text/uri-list");
  source->Leave();
  source->Enter("image/png");
  source->Drop();
  ASSERT_TRUE(Answered(*source, 4));
  EXPECT_EQ(source->heard,
            (std::vector<std::string>{"status 1", "status 0", "status 1", "finished 1"}));
  ASSERT_EQ(dropped.size(), 1u);
  EXPECT_EQ(dropped[0], (std::vector<std::string>{"/tmp/a file.txt", "/second"}));
  // The place in the window, which lies at its bounds.
  const DeviceRect at = x11::NativeOf(window)->bounds;
  const std::string place =
      std::to_string(150 - at.left) + "," + std::to_string(200 - at.top) + " ";
  EXPECT_EQ(drag, place + "left " + place + "dropped ");
  ChangeWindowAttributes(window, kWindowRefusesFilesAttribute, 0);
  source->Drop();
  ASSERT_TRUE(Answered(*source, 6));
  EXPECT_EQ(source->heard[4], "status 0");
  EXPECT_EQ(source->heard[5], "finished 0");
  EXPECT_EQ(drag, place + "left " + place + "dropped ");
  // It begins to refuse while files are over it, and ceases.
  ChangeWindowAttributes(window, 0, kWindowRefusesFilesAttribute);
  source->Enter("text/uri-list");
  ASSERT_TRUE(Answered(*source, 7));
  drag.clear();
  for (const bool refuses : {true, false}) {
    const uint32_t bit = kWindowRefusesFilesAttribute;
    ChangeWindowAttributes(window, refuses ? bit : 0, refuses ? 0 : bit);
    source->Position();
    ASSERT_TRUE(Answered(*source, refuses ? 8 : 9));
  }
  EXPECT_EQ(source->heard[7] + ", " + source->heard[8], "status 0, status 1");
  // A drop that was nowhere over the window has no place in it.
  source->Send("XdndEnter", {source->window(), 5u << 24, source->Atom(kList), 0, 0});
  source->Send("XdndDrop", {source->window(), 0, 0, 0, 0});
  ASSERT_TRUE(Answered(*source, 10));
  EXPECT_EQ(source->heard.back(), "finished 0");
  EXPECT_EQ(drag, place + "left ");  // the window itself tells that it refuses
  EXPECT_EQ(dropped.size(), 1u);
}

TEST_F(Drops, ALongListComesInPieces) {
  std::string list = "# a list\r\nfile:///tmp/the%20first\r\n";
  for (int i = 0; i < 2000; ++i) list += "file:///tmp/another-" + std::to_string(i) + "\r\n";
  for (size_t size : {size_t{7}, size_t{4096}}) {
    auto source = MakeSource();
    source->GiveInPieces(size == 7 ? list.substr(0, 200) : list, size);
    source->Drop();
    ASSERT_TRUE(Answered(*source, 2));
    EXPECT_EQ(source->heard.back(), "finished 1");
    EXPECT_TRUE(source->sending[id].empty());
  }
  EXPECT_EQ(paths, (std::vector<std::string>{"/tmp/the first", "/tmp/the first"}));
  EXPECT_EQ(dropped[1].size(), 2001u);
}

TEST_F(Drops, AListWithoutEndIsCut) {
  auto source = MakeSource();
  source->GiveInPieces("file:///kept\r\n" + std::string(3 << 20, 'x'), 200000);
  source->Drop();
  ASSERT_TRUE(Answered(*source, 2));
  EXPECT_EQ(source->heard.back(), "finished 1");
  EXPECT_GT(source->sending[id].size(), 5u);  // it was not read to its end
  // The same in one piece; nothing of it stays with the window.
  source->sending.clear();
  source = MakeSource();
  source->Give("file:///kept\r\n" + std::string(3 << 20, 'x'));
  source->Drop();
  ASSERT_TRUE(Answered(*source, 2));
  EXPECT_EQ(paths, (std::vector<std::string>{"/kept", "/kept"}));
  EXPECT_TRUE(Run([&] { return LeftWithWindow().empty(); }));
}

TEST_F(Drops, WhatIsNoListIsRefused) {
  struct Row {
    const char* what;
    std::function<void(DropSource&)> prepare;
  };
  const Row rows[] = {
      {"nothing", [](DropSource&) {}},
      {"empty", [](DropSource& s) { s.Give(""); }},
      {"another type",
       [](DropSource& s) {
         s.Give({"STRING", 8, "file:///tmp/a\r\n"});
       }},
      {"words",
       [](DropSource& s) {
         s.Give({kList, 32, "file:///tmp/a\r\n "});
       }},
      {"no property", [](DropSource& s) { s.Give(Peer::Value{}); }},
      {"an address elsewhere",
       [](DropSource& s) {
         s.Give("#http://comment/\r\nhttp://elsewhere.example/a\r\nhttp://\xFF/\r\n");
       }},
      {"bytes", [](DropSource& s) { s.Give(std::string("file:///\0\xFF\r\n", 12)); }},
      {"no pieces",
       [](DropSource& s) {
         s.answers[kList] = {{"INCR", 32, Peer::Word(0)}, {{kList, 8, ""}}};
       }},
  };
  std::vector<std::string> told;
  for (const Row& row : rows) {
    SCOPED_TRACE(row.what);
    auto source = MakeSource();
    row.prepare(*source);
    source->Drop();
    paths.clear();
    drag.clear();
    ASSERT_TRUE(Answered(*source, 2));
    EXPECT_EQ(source->heard.back(), "finished 0");
    EXPECT_EQ(drag.find("failed") == std::string::npos, !paths.empty());
    told.insert(told.end(), paths.begin(), paths.end());
  }
  EXPECT_EQ(told, std::vector<std::string>{"http://elsewhere.example/a"}) << "to say so";
}

// A source that stops in the middle holds up nothing, and what it sends much later is not opened.
TEST_F(Drops, ASourceThatStopsIsGivenUp) {
  auto stuck = MakeSource();
  stuck->GiveInPieces("file:///tmp/stuck\r\n", 4, 2);
  stuck->Drop();
  ASSERT_TRUE(Run([&] { return stuck->pieces_sent == 2; }));
  auto good = MakeSource();
  good->GiveInPieces("file:///good\r\n", 4);
  // It goes on while the next one comes: nothing of it gets among that.
  stuck->sending[id] = stuck->late;
  good->Drop();
  ASSERT_TRUE(Answered(*good, 2) && Answered(*stuck, 2));
  EXPECT_EQ(stuck->heard.back(), "finished 0");
  EXPECT_EQ(good->heard.back(), "finished 1");
  auto silent = MakeSource();
  silent->BeSilent();
  silent->Drop();
  ASSERT_TRUE(Answered(*silent, 1));
  EXPECT_EQ(paths, std::vector<std::string>{"/good"});
  // Out of patience when the list comes.
  x11::x.drop_patience = -1;
  auto late = MakeSource();
  late->Give("file:///late\r\n");
  late->Drop();
  ASSERT_TRUE(Answered(*late, 2));
  EXPECT_EQ(late->heard.back(), "finished 0");
  EXPECT_EQ(paths.size(), 1u);
}

// The wait of the loop ends for it: nothing else comes that could.
TEST_F(Drops, ASilentSourceIsGivenUpWithoutAnyEvent) {
  x11::x.drop_patience = 0.2;
  auto give_up = [this](DropSource* s) {
    s->Drop();
    // Until it says no more.
    ASSERT_TRUE(Run([&] { return s->requests == 1 && s->sending[id].empty(); }));
    Event e;
    EXPECT_FALSE(ReceiveNextEvent(1.5, &e) && e.cls == kEventClassAppleEvent);
    // The display is not looked at any more, and it is told all the same.
    ASSERT_TRUE(support::Eventually([&] {
      s->Work();
      return s->heard.size() == 2;
    }));
    EXPECT_EQ(s->heard.back(), "finished 0");
  };
  auto silent = MakeSource();
  silent->BeSilent();
  give_up(silent);
  auto stuck = MakeSource();
  stuck->GiveInPieces("file:///tmp/stuck\r\nfile:///tmp/another\r\n", 4, 2);
  give_up(stuck);
  // What it sends after all is neither opened nor kept.
  stuck->sending[id] = stuck->late;
  stuck->Put(id, stuck->sending_in[id], {kList, 8, "late"});
  stuck->Sync();
  ASSERT_TRUE(Run([&] { return stuck->sending[id].empty(); }));
  EXPECT_TRUE(Run([&] { return LeftWithWindow().empty(); }));
  EXPECT_TRUE(paths.empty());
}

TEST_F(Drops, ASourceThatEndsLeavesNothing) {
  x11::x.drop_patience = 1000;
  auto source = MakeSource();
  source->GiveInPieces("file:///tmp/a\r\n", 4, 2);
  source->Drop();
  ASSERT_TRUE(Run([&] { return source->pieces_sent == 2; }));
  source->Put(id, source->sending_in[id], {kList, 8, "half"});
  source->Die();
  EXPECT_TRUE(Run([&] { return LeftWithWindow().empty(); }));
  // Of one that was still hovering neither: a window that gets its number has to enter again.
  auto hovering = MakeSource();
  hovering->Enter("text/uri-list");
  ASSERT_TRUE(Answered(*hovering, 1));
  hovering->Die();
  Run([] { return true; });
  hovering->Send("XdndDrop", {hovering->window(), 0, 0, 0, 0});
  hovering->Send("XdndPosition", {hovering->window(), 0, 150 << 16 | 200, 0, 0});
  auto good = MakeSource();
  good->Give("file:///good\r\n");
  good->Drop();
  ASSERT_TRUE(Answered(*good, 2));
  EXPECT_EQ(paths, std::vector<std::string>{"/good"});
  EXPECT_EQ(hovering->heard.size(), 1u);
}

TEST_F(Drops, ItsWindowMayGoAwayInTheMiddle) {
  WindowRef other = Show("Other", {500, 300, 600, 400});
  const xcb_window_t other_id = x11::NativeOf(other)->id;
  auto* second = &sources.emplace_back(other_id);
  second->GiveInPieces("file:///tmp/a\r\n", 4, 2);
  second->Drop();
  ASSERT_TRUE(Run([&] { return second->pieces_sent == 2; }));
  DisposeWindow(other);
  ASSERT_TRUE(Answered(*second, 2));
  EXPECT_EQ(second->heard.back(), "finished 0");
  EXPECT_TRUE(paths.empty());
}

}  // namespace
}  // namespace x11_test

// The clipboard and the primary selection beside other programs of the desktop, some of which die,
// lie or stall in the middle.
#include "tests/x11/selections.h"

#include <algorithm>
#include <cstring>
#include <set>

#include "tests/support/seed.h"

namespace x11_test {
namespace {

using Answer = Peer::Answer;

// --- Texts of the program.

TEST_F(Selections, AnotherProgramGetsTheTextAsItAsksForIt) {
  Peer peer;
  peers = {&peer};
  ASSERT_TRUE(OfferText(kClip, "gr\u00FCn \u4E2D"));
  ASSERT_TRUE(OfferText(Selection::kPrimary, "primary"));
  const struct {
    const char *selection, *target, *type, *bytes;
  } rows[] = {
      {"CLIPBOARD", "UTF8_STRING", "UTF8_STRING", "gr\u00FCn \u4E2D"},
      {"CLIPBOARD", "text/plain;charset=utf-8", "text/plain;charset=utf-8", "gr\u00FCn \u4E2D"},
      {"CLIPBOARD", "text/plain", "text/plain", "gr\u00FCn \u4E2D"},
      {"CLIPBOARD", "TEXT", "UTF8_STRING", "gr\u00FCn \u4E2D"},
      {"CLIPBOARD", "STRING", "STRING", "gr\xFCn ?"},
      {"PRIMARY", "UTF8_STRING", "UTF8_STRING", "primary"},
      {"CLIPBOARD", "image/png", nullptr, nullptr},
      {"CLIPBOARD", "INCR", nullptr, nullptr},
      {"SECONDARY", "UTF8_STRING", nullptr, nullptr},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.target);
    auto* q = peer.Ask(row.selection, row.target);
    ASSERT_TRUE(Run([&] { return q->done; }));
    EXPECT_EQ(q->refused, row.type == nullptr);
    if (row.type == nullptr) continue;
    EXPECT_EQ(q->type, row.type);
    EXPECT_EQ(q->format, 8);
    EXPECT_EQ(q->bytes, row.bytes);
  }
  auto* targets = peer.Ask("CLIPBOARD", "TARGETS");
  auto* time = peer.Ask("CLIPBOARD", "TIMESTAMP");
  ASSERT_TRUE(Run([&] { return targets->done && time->done; }));
  EXPECT_EQ(targets->type + time->type, "ATOMINTEGER");
  EXPECT_EQ(targets->format, 32);
  std::set<xcb_atom_t> named;
  for (size_t at = 0; at + 4 <= targets->bytes.size(); at += 4) {
    xcb_atom_t atom;
    memcpy(&atom, targets->bytes.data() + at, 4);
    named.insert(atom);
  }
  for (const char* name : {"TARGETS", "TIMESTAMP", "MULTIPLE", "UTF8_STRING", "STRING",
                           "text/plain", "text/plain;charset=utf-8"}) {
    EXPECT_EQ(named.count(peer.Atom(name)), 1u) << name;
  }
  // A question from before the text was there, and one without a property, as older programs ask.
  uint32_t owned = 0;
  ASSERT_EQ(time->bytes.size(), 4u);
  memcpy(&owned, time->bytes.data(), 4);
  ASSERT_NE(owned, 0u);
  auto* early = peer.Ask("CLIPBOARD", "UTF8_STRING", owned - 1);
  auto* older = peer.AskWith(peer.MakeWindow(), "CLIPBOARD", "UTF8_STRING", "", owned);
  ASSERT_TRUE(Run([&] { return early->done && older->done; }));
  EXPECT_TRUE(early->refused);
  EXPECT_EQ(older->bytes, "gr\u00FCn \u4E2D");
}

TEST_F(Selections, SeveralTargetsAreAnsweredAtOnce) {
  Peer peer;
  peers = {&peer};
  ASSERT_TRUE(OfferText(kClip, "text"));
  const xcb_window_t window = peer.MakeWindow();
  const std::string names[] = {"UTF8_STRING", "A", "image/png", "B",
                               "MULTIPLE",    "C", "STRING",    "D"};
  std::string pairs;
  for (const std::string& name : names) pairs += Peer::Word(peer.Atom(name));
  peer.Put(window, peer.Atom("ANSWER"), {"ATOM_PAIR", 32, pairs});
  auto* q = peer.AskWith(window, "CLIPBOARD", "MULTIPLE", "ANSWER");
  ASSERT_TRUE(Run([&] { return q->done; }));
  for (size_t i : {2u, 4u}) pairs.replace(4 * i, 4, 4, '\0');
  EXPECT_EQ(q->bytes, pairs);
  auto text = [&](const char* property) {
    auto cookie = xcb_get_property(peer.connection(), 0, window, peer.Atom(property), 0, 0, 100);
    auto* reply = xcb_get_property_reply(peer.connection(), cookie, nullptr);
    std::string s(static_cast<const char*>(xcb_get_property_value(reply)),
                  size_t(xcb_get_property_value_length(reply)));
    free(reply);
    return s;
  };
  EXPECT_EQ(text("A") + "/" + text("B") + "/" + text("C") + "/" + text("D"), "text///text");
  // Nothing that could be a list.
  for (const Peer::Value& v : {Peer::Value{"", 8, ""}, Peer::Value{"ATOM_PAIR", 8, "abc"},
                               Peer::Value{"ATOM_PAIR", 32, std::string(4096, 1)}}) {
    const xcb_window_t other = peer.MakeWindow();
    if (!v.type.empty()) peer.Put(other, peer.Atom("ANSWER"), v);
    auto* bad = peer.AskWith(other, "CLIPBOARD", "MULTIPLE", "ANSWER");
    ASSERT_TRUE(Run([&] { return bad->done; }));
    EXPECT_TRUE(bad->refused);
  }
}

TEST_F(Selections, TheNewestOfferCounts) {
  Peer peer;
  peers = {&peer};
  EXPECT_EQ(Paste(), "(none)");
  ASSERT_TRUE(OfferText(kClip, "mine"));
  const xcb_window_t window = peer.OwnerOf("CLIPBOARD");
  EXPECT_NE(window, 0u);
  EXPECT_EQ(peer.OwnerOf("PRIMARY"), 0u);
  peer.Offer("CLIPBOARD", "theirs");
  Idle();
  EXPECT_FALSE(OfferedText(kClip));
  GiveUp(kClip);
  EXPECT_EQ(peer.OwnerOf("CLIPBOARD"), peer.window());
  // Offered again before the loss has been heard of.
  ASSERT_TRUE(OfferText(kClip, "one"));
  peer.Own("CLIPBOARD");
  ASSERT_TRUE(OfferText(kClip, "two"));
  Idle();
  EXPECT_EQ(Paste(), "two");
  GiveUp(kClip);
  Idle();
  EXPECT_EQ(peer.OwnerOf("CLIPBOARD"), 0u);
  // A question that names a window of the program itself gets nothing there.
  WindowRef w = Show("Window", {100, 100, 200, 200});
  ASSERT_TRUE(OfferText(kClip, "mine"));
  xcb_convert_selection(peer.connection(), x11::NativeOf(w)->id, peer.Atom("CLIPBOARD"),
                        peer.Atom("UTF8_STRING"), XCB_ATOM_WM_NAME, XCB_CURRENT_TIME);
  xcb_convert_selection(peer.connection(), peer.root(), peer.Atom("CLIPBOARD"),
                        peer.Atom("UTF8_STRING"), peer.Atom("ANSWER"), XCB_CURRENT_TIME);
  peer.Sync();
  Idle();
  EXPECT_EQ(user().Text(x11::NativeOf(w)->id, "WM_NAME"), "Window");
  EXPECT_EQ(user().Text(peer.root(), "ANSWER"), "");
}

TEST_F(Selections, ALongTextGoesOutInPieces) {
  Peer quick, slow;
  peers = {&quick};
  const std::string first = LongText(1 << 20), second = LongText(700000);
  ASSERT_TRUE(OfferText(kClip, first));
  auto* a = slow.Ask("CLIPBOARD", "UTF8_STRING");
  auto* b = quick.Ask("CLIPBOARD", "UTF8_STRING");
  ASSERT_TRUE(Run([&] { return b->done; }));
  EXPECT_GT(b->pieces, 4u);
  EXPECT_EQ(b->bytes, first);
  // One that has begun gets its text to the end, whatever is offered during it.
  ASSERT_TRUE(OfferText(kClip, second));
  peers = {&quick, &slow};
  auto* c = quick.Ask("CLIPBOARD", "UTF8_STRING");
  ASSERT_TRUE(Run([&] { return a->done && c->done; }));
  EXPECT_EQ(a->bytes, first);
  EXPECT_EQ(c->bytes, second);
}

// A requestor that stops in the middle holds nothing up, and what it would have got is freed.
TEST_F(Selections, AnAskerThatStopsIsGivenUp) {
  auto freed = [this](SharedText text) {
    GiveUp(kClip);
    return Run([&] { return text.use_count() == 1; });
  };
  auto offer = [&] {
    OfferText(kClip, LongText(1 << 20));
    return OfferedText(kClip);
  };
  x11::x.delivery_patience = 1000;
  auto peer = std::make_unique<Peer>();
  peers = {peer.get()};
  SharedText text = offer();
  auto* q = peer->Ask("CLIPBOARD", "UTF8_STRING");
  ASSERT_TRUE(Run([&] { return q->pieces >= 2; }));
  q->stalls = true;
  Idle();
  EXPECT_GT(text.use_count(), 2);
  xcb_destroy_window(peer->connection(), q->window);
  peer->Sync();
  EXPECT_TRUE(freed(std::move(text)));

  text = offer();
  q = peer->Ask("CLIPBOARD", "UTF8_STRING");
  ASSERT_TRUE(Run([&] { return q->pieces >= 1; }));
  peers.clear();
  peer.reset();  // the whole program
  EXPECT_TRUE(freed(std::move(text)));

  x11::x.delivery_patience = 0.05;
  peer = std::make_unique<Peer>();
  peers = {peer.get()};
  text = offer();
  std::vector<Peer::Question*> all;
  for (int i = 0; i < 40; ++i) {
    all.push_back(peer->Ask("CLIPBOARD", "UTF8_STRING"));
    all.back()->stalls = true;
  }
  ASSERT_TRUE(Run(
      [&] { return std::all_of(all.begin(), all.end(), [](auto* one) { return one->told; }); }));
  EXPECT_GT(std::count_if(all.begin(), all.end(), [](auto* one) { return one->refused; }), 10);
  EXPECT_LT(std::count_if(all.begin(), all.end(), [](auto* one) { return one->refused; }), 30);
  EXPECT_TRUE(freed(std::move(text)));
  // Asked again with the same property, the first is forgotten.
  x11::x.delivery_patience = 1000;
  text = offer();
  const xcb_window_t window = peer->MakeWindow();
  for (int i = 0; i < 40; ++i) q = peer->AskWith(window, "CLIPBOARD", "UTF8_STRING", "ANSWER");
  ASSERT_TRUE(Run([&] { return q->done; }));
  EXPECT_FALSE(q->refused);
  EXPECT_TRUE(freed(std::move(text)));
}

// --- Texts of others.

TEST_F(Selections, AnOwnersAnswerIsTakenOrCountsAsNone) {
  Peer::Answer utf8{{"UTF8_STRING", 8, "text"}, {}}, latin{{"STRING", 8, "gr\xFCn"}, {}};
  const Peer::Value begin{"INCR", 32, Peer::Word(4)};
  const Peer::Value piece{"UTF8_STRING", 8, "te"}, rest{"UTF8_STRING", 8, "xt"};
  const Peer::Value end{"UTF8_STRING", 8, ""};
  const std::string many(1 << 20, 'x');
  const struct {
    const char* what;
    std::map<std::string, Answer> answers;
    std::string text;
  } rows[] = {
      {"the best of all", {{"UTF8_STRING", utf8}, {"STRING", latin}}, "text"},
      {"eight bits only", {{"STRING", latin}}, "gr\u00FCn"},
      {"plain text only", {{"text/plain", {{"text/plain", 8, "plain"}, {}}}}, "plain"},
      {"another type of text", {{"UTF8_STRING", latin}}, "gr\u00FCn"},
      {"empty", {{"UTF8_STRING", {{"UTF8_STRING", 8, ""}, {}}}}, ""},
      {"nothing", {}, "(none)"},
      {"no property, then text", {{"UTF8_STRING", {}}, {"STRING", latin}}, "gr\u00FCn"},
      {"half words", {{"UTF8_STRING", {{"UTF8_STRING", 16, "text"}, {}}}}, "(none)"},
      {"a picture", {{"UTF8_STRING", {{"image/png", 8, many}, {}}}}, "(none)"},
      {"another property",
       {{"UTF8_STRING", {utf8.value, {}, Answer::kNamesAnother}}, {"STRING", latin}},
       "gr\u00FCn"},
      {"told twice", {{"UTF8_STRING", {utf8.value, {}, Answer::kSaysTwice}}}, "text"},
      {"pieces told twice",
       {{"UTF8_STRING", {begin, {piece, rest, end}, Answer::kSaysTwice}}},
       "text"},
      {"no piece", {{"UTF8_STRING", {begin, {end}}}}, ""},
      {"pieces of eight bits",
       {{"STRING", {begin, {{"STRING", 8, "\xE4"}, {"STRING", 8, ""}}}}},
       "\u00E4"},
      {"a size of bytes", {{"UTF8_STRING", {{"INCR", 8, "many"}, {piece, end}}}}, "te"},
      {"a huge size",
       {{"UTF8_STRING", {{"INCR", 32, Peer::Word(0xFFFFFFFF)}, {piece, end}}}},
       "(none)"},
      {"more than was said", {{"UTF8_STRING", {begin, {{"UTF8_STRING", 8, many}, end}}}}, many},
      {"pieces of two types",
       {{"UTF8_STRING", {begin, {piece, {"STRING", 8, "t"}, end}}}},
       "(none)"},
      {"pieces in pieces", {{"UTF8_STRING", {begin, {piece, begin, end}}}}, "(none)"},
      {"it dies", {{"UTF8_STRING", {{}, {}, Answer::kDies}}}, "(none)"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.what);
    Peer& peer = NewPeer();
    peer.answers = row.answers;
    peer.Own("CLIPBOARD");
    EXPECT_EQ(Paste(), row.text);
    Idle(5);
    EXPECT_EQ(answers.size(), 1u);
  }
  EXPECT_TRUE(x11::x.arrived.empty());
}

// No more than the limit is held, however it comes.
TEST_F(Selections, ATextWithoutEndCountsAsNone) {
  x11::x.most_text = 3 << 20;
  Peer peer;
  peers = {&peer};
  const std::string most(3 << 20, 'x');
  peer.Offer("CLIPBOARD", most, 1 << 18);
  EXPECT_EQ(Paste(), most);
  peer.Offer("CLIPBOARD", most + "y", 1 << 18);
  EXPECT_EQ(Paste(), "(none)");
  peer.answers["UTF8_STRING"] = Peer::InPieces("UTF8_STRING", most + most, 1 << 18);
  peer.answers["UTF8_STRING"].value.bytes = Peer::Word(5);
  peer.pieces_sent = 0;
  EXPECT_EQ(Paste(), "(none)");
  EXPECT_LT(peer.pieces_sent, 20u);  // it was not read to its end
  // The same in one property, which is not left with the server.
  peer.on_request = [&](const xcb_selection_request_event_t& r) {
    for (int i = 0; i < 20; ++i) {
      xcb_change_property(peer.connection(), XCB_PROP_MODE_APPEND, r.requestor, r.property,
                          peer.Atom("UTF8_STRING"), 8, 200000, most.data());
    }
    peer.Say(r, r.property);
  };
  EXPECT_EQ(Paste(), "(none)");
  EXPECT_EQ(peer.requests, 4u);
}

// One that falls silent, or dies, in any state: the answer comes in time, once, and what comes late
// does no harm.
TEST_F(Selections, AnOwnerThatStopsIsGivenUp) {
  const std::string text = LongText(1 << 20);
  for (bool dies : {false, true}) {
    for (size_t pieces : {0u, 1u, 3u}) {
      SCOPED_TRACE(std::to_string(pieces) + (dies ? " dies" : " stalls"));
      Peer& peer = NewPeer();
      peer.Offer("CLIPBOARD", text);
      Answer& answer = peer.answers["UTF8_STRING"];
      answer.pieces.resize(pieces);
      if (pieces == 0) answer.how = Answer::kSaysNothing;
      Ask(kClip, dies ? 100000 : 150);
      if (dies) {
        ASSERT_TRUE(Run([&] { return peer.requests > 0 && peer.pieces_sent == pieces; }));
        peer.Die();
      }
      ASSERT_TRUE(Run([&] { return !answers.empty(); }));
      EXPECT_EQ(answers, std::vector<std::string>{"(none)"});
      answers.clear();
    }
  }
  // Forgotten in the middle, and answered after all.
  Peer late;
  peers = {&late};
  xcb_selection_request_event_t asked{};
  late.on_request = [&](const xcb_selection_request_event_t& r) { asked = r; };
  late.Own("CLIPBOARD");
  const int forgotten = Ask(kClip, 100000);
  ASSERT_TRUE(Run([&] { return asked.requestor != 0; }));
  ForgetAsk(forgotten);
  EXPECT_FALSE(x11::IsTextRequestWindow(asked.requestor));
  Idle();
  late.Put(asked.requestor, asked.property, {"UTF8_STRING", 8, "late"});
  late.Say(asked, asked.property);
  Idle();
  EXPECT_TRUE(answers.empty());
  late.on_request = nullptr;
  late.Offer("CLIPBOARD", "well");
  EXPECT_EQ(Paste(), "well");
}

// Any types, formats, sizes and orders: each request ends once, and the next owner is heard.
TEST_F(Selections, RandomAnswersDoNoHarm) {
  support::Dice dice(support::Seed(15));
  const char* const types[] = {"UTF8_STRING", "STRING", "INCR", "ATOM", "text/plain", "ATOM_PAIR"};
  auto value = [&] {
    const int formats[] = {8, 8, 16, 32};
    const size_t sizes[] = {0, 4, 1, 1000, 100000};
    std::string bytes(sizes[dice.Between(0, 4)] * 4, char(dice.Next()));
    return Peer::Value{types[dice.Between(0, 5)], formats[dice.Between(0, 3)], bytes};
  };
  for (int round = 0; round < 60; ++round) {
    Peer& peer = NewPeer();
    for (const char* target : {"UTF8_STRING", "STRING", "text/plain"}) {
      if (dice.OneIn(3)) continue;
      Answer& a = peer.answers[target];
      a.value = value();
      for (int i = dice.Between(0, 4); i > 0; --i) a.pieces.push_back(value());
      constexpr decltype(a.how) kHows[] = {Answer::kSays, Answer::kSays, Answer::kSaysTwice,
                                           Answer::kDies, Answer::kNamesAnother};
      a.how = kHows[dice.Between(0, 4)];
    }
    peer.Own("CLIPBOARD");
    answers.clear();
    const int asks = dice.Between(1, 3);
    for (int i = 0; i < asks; ++i) Ask(kClip, dice.Between(20, 60));
    ASSERT_TRUE(Run([&] { return answers.size() == size_t(asks); }));
    Idle(3);
    ASSERT_EQ(answers.size(), size_t(asks));
  }
  Peer good;
  peers = {&good};
  good.Offer("CLIPBOARD", LongText(1 << 19));
  EXPECT_EQ(Paste(), LongText(1 << 19));
}

}  // namespace
}  // namespace x11_test

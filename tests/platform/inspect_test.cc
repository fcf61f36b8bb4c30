// The reader of the inspector's requests: what is an object of plain values, and nothing else; and
// what a click hits.
#include <gtest/gtest.h>

#include "platform/display/headless/headless.h"
#include "platform/input/record.h"
#include "platform/inspect/json.h"
#include "platform/inspect/requests.h"
#include "platform/loop/receive.h"
#include "platform/loop/start.h"
#include "platform/windows/internal.h"

namespace {

using namespace platform;

// "key=value" of all fields, in the order of their keys.
std::string Read(const std::string& text) {
  JsonObject object;
  if (!ParseJsonObject(text, &object)) return "refused";
  std::string out;
  for (const auto& [key, v] : object) {
    out += (out.empty() ? "" : " ") + key + "=";
    if (v.kind == JsonValue::kText) out += "'" + v.text + "'";
    if (v.kind == JsonValue::kNumber) out += std::to_string(v.number);
    if (v.kind == JsonValue::kBool) out += v.truth ? "yes" : "no";
    if (v.kind == JsonValue::kNull) out += "none";
  }
  return out;
}

TEST(Json, ReadsFlatObjects) {
  EXPECT_EQ(Read("{}"), "");
  EXPECT_EQ(Read(" { \"b\" : true , \"a\":false,\t\"c\":null}\r\n"), "a=no b=yes c=none");
  EXPECT_EQ(Read(R"({"a":-0.5,"b":12e1,"c":0})"), "a=-0.500000 b=120.000000 c=0.000000");
  EXPECT_EQ(Read(R"({"a":"x\"\\\/\n\u00e9\uD83D\uDE00 é"})"), "a='x\"\\/\né😀 é'");
  std::string long_text(200000, 'x');
  EXPECT_EQ(Read("{\"a\":\"" + long_text + "\"}"), "a='" + long_text + "'");
}

TEST(Json, RefusesEverythingElse) {
  for (const char* text : {"",
                           "{",
                           "}",
                           "[]",
                           "7",
                           "\"a\"",
                           "{}{}",
                           "{\"a\"}",
                           "{\"a\":}",
                           "{\"a\":1,}",
                           "{,}",
                           "{\"a\":1 \"b\":2}",
                           "{\"a\":1,\"a\":2}",
                           "{a:1}",
                           "{\"a\":[1]}",
                           "{\"a\":{}}",
                           "{\"a\":01}",
                           "{\"a\":+1}",
                           "{\"a\":.5}",
                           "{\"a\":1.}",
                           "{\"a\":1e}",
                           "{\"a\":-}",
                           "{\"a\":1e999}",
                           "{\"a\":0x1}",
                           "{\"a\":NaN}",
                           "{\"a\":True}",
                           "{\"a\":nul}",
                           "{\"a\":\"\\x\"}",
                           "{\"a\":\"\\u12\"}",
                           "{\"a\":\"\\u0000\"}",
                           "{\"a\":\"\\uD83D\"}",
                           "{\"a\":\"\\uD83D\\u0041\"}",
                           "{\"a\":\"\\uDE00\"}",
                           "{\"a\":\"\\u+123\"}",
                           "{\"a\":\"\xFF\"}",
                           "{\"a\":\"\xC3\"}",
                           "{\"a\":\"\n\"}",
                           "{\"a\":\"b}",
                           "{\"a\":\"b\\"})
    EXPECT_EQ(Read(text), "refused") << text;
}

TEST(Json, WritesTextThatItReads) {
  std::string out;
  PutJsonText(&out, "a\"\\\n\x01\xFF é");
  EXPECT_EQ(out, "\"a\\\"\\\\\\u000a\\u0001\uFFFD é\"");
  EXPECT_EQ(Read("{\"a\":" + out + "}"), "a='a\"\\\n\x01\uFFFD é'");
  const struct {
    std::string_view bytes;
    const char* text;
  } rows[] = {{"", "\"\""},
              {"\xFF", "\"/w==\""},
              {"\xFB\x01", "\"+wE=\""},
              {"abc", "\"YWJj\""},
              {{"\0\xFF\x10z", 4}, "\"AP8Qeg==\""}};
  for (const auto& row : rows) {
    out.clear();
    PutJsonBytes(&out, row.bytes);
    EXPECT_EQ(out, row.text);
  }
}

// A window with a pane in it, of which things stand out.
DescribedNode Describe(ObjectRole role, const char* name, const Rect& bounds,
                       std::vector<DescribedNode> children = {}) {
  DescribedNode node;
  node.what.role = role;
  node.what.name = name;
  node.what.bounds = bounds;
  node.what.state = kIsShown | kIsEnabled;
  node.children = std::move(children);
  return node;
}
WindowRef window;
void DescribeWindow(std::vector<DescribedNode>* roots) {
  using enum ObjectRole;
  DescribedNode gray = Describe(kButton, "gray", {70, 110, 110, 130});
  gray.what.state = kIsShown;
  DescribedNode hidden = Describe(kButton, "hidden", {70, 110, 110, 130});
  hidden.what.state = kIsEnabled;
  roots->push_back(Describe(
      kWindow, "all", {60, 100, 260, 300},
      {Describe(kPane, "pane", {80, 200, 360, 240},
                {Describe(kRow, "half", {60, 190, 100, 210}),
                 Describe(kRow, "corner", {250, 230, 310, 250}),
                 Describe(kRow, "above", {80, 180, 120, 200})}),
       gray, hidden, Describe(kGroup, "", {}, {Describe(kRow, "whole", {60, 110, 110, 130})}),
       Describe(kMenu, "menu", {250, 100, 350, 200},
                {Describe(kMenuItem, "item", {250, 120, 350, 140}),
                 Describe(kSeparator, "line", {250, 140, 350, 150})})}));
  roots->back().serial = window->object.serial;
}
std::string Word(const Event& e) {
  char word[80] = "";
  if (e.cls == kEventClassMouse && (e.kind == kEventMouseDown || e.kind == kEventMouseUp))
    snprintf(word, sizeof word, "%s%d %d,%d ", e.kind == kEventMouseDown ? "down" : "up",
             e.mouse.button, e.mouse.where.x, e.mouse.where.y);
  if (e.cls == kEventClassKeyboard && e.kind == kEventRawKeyModifiersChanged)
    snprintf(word, sizeof word, "modifiers%x ", e.key.modifiers);
  else if (e.cls == kEventClassKeyboard)
    snprintf(word, sizeof word, "%s%x%s ", e.kind == kEventRawKeyDown ? "key" : "up", e.key.keysym,
             e.key.text);
  return word;
}
// The input that the request brings about; when it fails, why.
std::string Input(const std::string& request) {
  Answer answer = Perform("{" + request + "}");
  std::string words;
  for (;;) {
    Event e;
    while (ReceiveNextEvent(0, &e)) words += Word(e);
    if (!answer.line.empty() || !answer.typing) break;
    answer.line = TypeOn(&*answer.typing);
  }
  return answer.line.find("\"ok\":true") == std::string::npos ? answer.line : words;
}

TEST(Requests, TheirInputIsForWhatShows) {
  headless::UseSteppedClock(1000);
  ASSERT_TRUE(InitPlatform("test"));
  window = CreateNewWindow(kDocumentWindowClass, 0, {60, 100, 260, 300});
  ShowWindow(window);
  headless::Focus(nullptr);
  for (Event e; ReceiveNextEvent(0, &e);) {
  }
  const TreeSource source{DescribeWindow, nullptr, [](bool) {}};
  SetTreeSource(&source);
  const struct {
    const char *request, *result;
  } rows[] = {
      {R"("do":"click","name":"all")", "down1 160,200 up1 160,200 "},
      {R"("do":"click","name":"half")", "down1 90,205 "},
      {R"("do":"click","name":"corner")", "down1 255,235 "},
      {R"("do":"click","name":"item")", "down1 300,130 "},
      {R"("do":"click","name":"line")", "down1 300,145 "},
      {R"("do":"click","name":"above")", "is out of sight"},
      {R"("do":"click","name":"hidden")", "no node"},
      {R"("do":"click","name":"gray")", "is disabled"},
      {R"("do":"type","text":"a","name":"gray")", "is disabled"},
      {R"("do":"click","name":"whole","button":3,"count":2,"modifiers":"control shift")",
       "modifiers1200 down3 85,120 up3 85,120 down3 85,120 up3 85,120 modifiers0 "},
      {R"("do":"key","key":"F5")", "keyffc2 upffc2 "},
      {R"("do":"key","key":"Home")", "keyff50 upff50 "},
      {R"("do":"key","key":"Tab","modifiers":"shift")", "modifiers200 keyfe20 upfe20 modifiers0 "},
      {R"("do":"key","key":"a","modifiers":"alt super")", "modifiers900 key61 up61 modifiers0 "},
      {R"("do":"key","key":"Space")", "key20  up20 "},
      {R"("do":"type","text":"a\u00e9\n","name":"half")",
       "down1 90,205 up1 90,205 key61a up61 keye9é upe9 keyff0d upff0d "},
      {R"("do":"type","text":"\u007f")", "no key types"},
      {R"("do":"shot","name":"whole")", R"("width":50,"height":20,)"},
  };
  for (const auto& row : rows) {
    std::string result = Input(row.request);
    if (std::string(row.request).find("shot") != std::string::npos)
      result = Perform("{" + std::string(row.request) + "}").line;
    EXPECT_NE(result.find(row.result), std::string::npos) << row.request << ": " << result;
    EXPECT_TRUE(window->focused);
  }
  record_mode = RecordMode::kReplaying;
  for (const char* request : {R"("do":"click","name":"all")", R"("do":"key","key":"a")",
                              R"("do":"type","text":"a","name":"half")"})
    EXPECT_NE(Perform("{" + std::string(request) + "}").line.find("recording"), std::string::npos)
        << request;
  record_mode = RecordMode::kNone;
  // The window ends before the text does.
  Answer answer = Perform(R"({"do":"type","text":"ab"})");
  DisposeWindow(window);
  ASSERT_TRUE(answer.typing);
  EXPECT_NE(TypeOn(&*answer.typing).find("the window has ended"), std::string::npos);
  SetTreeSource(nullptr);
}

std::string told;
void Tell(void* name, uint64_t serial, Change) {
  told += static_cast<const char*>(name) + std::to_string(serial) + " ";
}
TreeListener once = {[](void* name, uint64_t serial, Change change) {
                       Tell(name, serial, change);
                       RemoveTreeListener(&once);
                     },
                     const_cast<char*>("once")};

TEST(Listeners, HearEachChangeOnce) {
  TreeListener a = {Tell, const_cast<char*>("a")}, b = {Tell, const_cast<char*>("b")};
  const TreeSource source{[](std::vector<DescribedNode>*) {},
                          [](uint64_t serial, uint32_t action) { return serial == action; },
                          [](bool heard) { told += heard ? "heard " : "unheard "; }};
  AddTreeListener(&a);
  SetTreeSource(&source);
  AddTreeListener(nullptr);
  for (TreeListener* l : {&once, &b, &a}) AddTreeListener(l);
  NoticeChange(1, Change::kName);
  NoticeChange(2, Change::kName);
  RemoveTreeListener(&a);
  RemoveTreeListener(&b);
  NoticeChange(3, Change::kName);
  AddTreeListener(&b);
  RemoveTreeListener(&b);
  EXPECT_EQ(told, "heard once1 b1 a1 b2 a2 unheard heard unheard ");
  EXPECT_TRUE(ActOn(4, 4));
  EXPECT_FALSE(ActOn(4, 1));
  SetTreeSource(nullptr);
}

TEST(Nodes, AsText) {
  DescribedNode node = Describe(ObjectRole::kSlider, "Level", {3, 4, 13, 34},
                                {Describe(ObjectRole::kLabel, "\"", {9, 9, 5, 5})});
  node.serial = 77;
  node.help = "Loud";
  node.what.value = "5";
  node.what.minimum = -2;
  node.what.maximum = 9;
  node.what.state |= kIsExpanded;
  node.what.actions = kActionPress | kActionDecrease;
  std::string out;
  PutNodes(&out, {node, node.children[0]});
  const std::string child =
      R"({"role":"label","name":"\"","states":["shown","enabled"],"x":9,"y":9,"width":0,)"
      R"("height":0,"serial":0})";
  EXPECT_EQ(out, R"([{"role":"slider","name":"Level","value":"5","help":"Loud",)"
                 R"("states":["shown","enabled","expanded"],"actions":["press","decrease"],"x":3,)"
                 R"("y":4,"width":10,"height":30,"minimum":-2,"maximum":9,"serial":77,)"
                 R"("children":[)" +
                     child + "]}," + child + "]");
}

}  // namespace

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
  DescribedNode gray = Describe(kButton, "gray", {110, 110, 150, 130});
  gray.what.state &= ~uint32_t{kIsEnabled};
  roots->push_back(
      Describe(kWindow, "all", {100, 100, 300, 300},
               {Describe(kPane, "pane", {120, 200, 400, 240},
                         {Describe(kRow, "half", {100, 190, 140, 210}),
                          Describe(kRow, "corner", {290, 230, 350, 250}),
                          Describe(kRow, "above", {120, 180, 160, 200})}),
                gray, Describe(kGroup, "", {}, {Describe(kRow, "whole", {110, 110, 150, 130})}),
                Describe(kMenu, "menu", {290, 100, 390, 200},
                         {Describe(kMenuItem, "item", {290, 120, 390, 140})})}));
  roots->back().serial = window->object.serial;
}
// Where the request presses the button; else its answer.
std::string Pressed(const std::string& request) {
  const std::string answer = Perform("{" + request + "}").line;
  Event e;
  while (ReceiveNextEvent(0, &e))
    if (e.cls == kEventClassMouse && e.kind == kEventMouseDown)
      return std::to_string(e.mouse.where.x) + " " + std::to_string(e.mouse.where.y);
  return answer;
}

TEST(Requests, AClickHitsWhatShows) {
  headless::UseSteppedClock(1000);
  ASSERT_TRUE(InitPlatform("test"));
  window = CreateNewWindow(kDocumentWindowClass, 0, {100, 100, 300, 300});
  ShowWindow(window);
  const TreeSource source{DescribeWindow, nullptr, [](bool) {}};
  SetTreeSource(&source);
  const struct {
    const char *name, *result;
  } rows[] = {{"all", "200 200"},     {"half", "130 205"}, {"corner", "295 235"},
              {"whole", "130 120"},   {"item", "340 130"}, {"above", "is out of sight"},
              {"gray", "is disabled"}};
  for (const auto& row : rows) {
    const std::string result = Pressed(R"("do":"click","name":")" + std::string(row.name) + '"');
    EXPECT_NE(result.find(row.result), std::string::npos) << row.name << ": " << result;
  }
  record_mode = RecordMode::kReplaying;
  for (const char* request : {R"("do":"click","name":"all")", R"("do":"key","key":"a")",
                              R"("do":"type","text":"a","name":"half")"})
    EXPECT_NE(Perform("{" + std::string(request) + "}").line.find("recording"), std::string::npos)
        << request;
  record_mode = RecordMode::kNone;
  SetTreeSource(nullptr);
}

}  // namespace

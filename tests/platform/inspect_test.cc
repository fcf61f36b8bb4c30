// The reader of the inspector's requests: what is an object of plain values, and nothing else.
#include <gtest/gtest.h>

#include "platform/inspect/json.h"

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
}

}  // namespace

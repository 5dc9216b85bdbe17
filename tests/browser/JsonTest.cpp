// The JSON that pages pass to the bridge and get back from it.

#include "browser/Json.h"

#include <gtest/gtest.h>

namespace {

using browser::JsonValue;

std::string rewritten(const char* text)
{
    const browser::JsonResult result = browser::parseJson(ZString::fromUtf8(text));
    return result.ok ? browser::writeJson(result.value).toUtf8() : "error: " + result.error.toUtf8();
}

TEST(Json, ValidTextsReadAndWriteBack)
{
    const struct {
        const char* text;
        const char* written;
    } cases[] = {
        {" { \"method\" : \"POST\", \"headers\": {\"A\": \"1\"}, \"timeout\": 5000 } ",
         "{\"method\":\"POST\",\"headers\":{\"A\":\"1\"},\"timeout\":5000}"},
        {"[1, -0.5, 2e3, 1E-2, 0, -0, true, false, null, [], {}]", "[1,-0.5,2000,0.01,0,0,true,false,null,[],{}]"},
        {"\"\\\" \\\\ \\/ \\b \\f \\n \\r \\t \\u00e9 \\ud83d\\udcc4 \\u0001\"",
         "\"\\\" \\\\ / \\u0008 \\u000c \\n \\r \\t \xC3\xA9 \xF0\x9F\x93\x84 \\u0001\""},
        {"1e400", "null"},    // an infinity, which JSON cannot write
        {"1e-400", "0"},      // underflow
        {"9007199254740993", "9007199254740992"},
        {"0.1", "0.10000000000000001"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(rewritten(c.text), c.written) << c.text;
}

TEST(Json, BrokenTextsAreRefusedWithWhereReadingStopped)
{
    const struct {
        const char* text;
        const char* error;
    } cases[] = {
        {"", "error: unexpected character at offset 0"},
        {"{\"a\":1,}", "error: a member name must be a string at offset 7"},
        {"{\"a\" 1}", "error: ':' expected at offset 5"},
        {"[1 2]", "error: ',' or ']' expected at offset 3"},
        {"{\"a\":1", "error: ',' or '}' expected at offset 6"},
        {"\"abc", "error: unterminated string at offset 4"},
        {"\"a\nb\"", "error: control character in a string at offset 3"},
        {"\"\\x\"", "error: unknown escape at offset 3"},
        {"\"\\u12G4\"", "error: bad \\u escape at offset 6"},
        {"01", "error: text after the value at offset 1"},
        {"-", "error: unexpected character at offset 1"},
        {"1.", "error: digits expected after '.' at offset 2"},
        {"1e+", "error: digits expected in the exponent at offset 3"},
        {"nul", "error: unknown word at offset 0"},
        {"true false", "error: text after the value at offset 5"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(rewritten(c.text), c.error) << c.text;
}

TEST(Json, LimitsOfDepthAndValuesHoldWithoutRecursingFurther)
{
    const std::string deep(100000, '[');
    EXPECT_EQ(rewritten(deep.c_str()), "error: nested too deeply at offset 32");
    browser::JsonLimits small;
    small.values = 3;
    EXPECT_TRUE(browser::parseJson(ZString(u"[1,2]"), small).ok);
    EXPECT_EQ(browser::parseJson(ZString(u"[1,2,3]"), small).error, ZString(u"too many values at offset 5"));
}

TEST(Json, MembersAreFoundByNameTheLastOfDuplicatesWinning)
{
    const browser::JsonResult result = browser::parseJson(ZString(u"{\"a\":1,\"b\":\"x\",\"a\":2}"));
    ASSERT_TRUE(result.ok);
    ASSERT_NE(result.value.member(ZString(u"a")), nullptr);
    EXPECT_EQ(result.value.member(ZString(u"a"))->number(), 2);
    EXPECT_EQ(result.value.member(ZString(u"b"))->string(), ZString(u"x"));
    EXPECT_EQ(result.value.member(ZString(u"c")), nullptr);
    EXPECT_EQ(JsonValue(1.0).member(ZString(u"a")), nullptr);
}

} // namespace

// Entity decoding: numeric forms, the named table, and what stays as written.

#include "xhtml/HtmlEntities.h"

#include <gtest/gtest.h>

#include <set>

namespace {

std::u16string decoded(const std::u16string& text)
{
    ZString value(reinterpret_cast<const ZChar*>(text.c_str()), static_cast<int>(text.size()));
    xhtml::decodeEntities(value);
    return std::u16string(reinterpret_cast<const char16_t*>(value.c_str()), static_cast<size_t>(value.length()));
}

} // namespace

TEST(HtmlEntities, NumericNamedAndMalformed)
{
    const struct {
        const char16_t* text;
        const char16_t* expected;
    } cases[] = {
        // Numbers follow the rules of wcstol: decimal, "x" or "0x" hexadecimal, "0" octal.
        {u"&#65;", u"A"},     {u"&#X41;", u"A"},   {u"&#0x41;", u"A"},  {u"&#0101;", u"A"},  {u"&#x20AC;", u"\u20AC"},
        {u"&#+65;", u"A"},    {u"&# 65;", u"A"},   {u"&#x0x41;", u"A"},
        {u"&#65601;", u"A"},  {u"&#x1F600;", u"\uF600"},               // the low 16 bits
        {u"&#99999999999;", u"\uFFFF"},                                // clamped to the 32-bit maximum first
        {u"&#65", u"&#65"},   {u"&#;", u"&#;"},    {u"&#0x;", u"&#0x;"}, {u"&#0;", u"&#0;"}, {u"&#-65;", u"&#-65;"},
        {u"&#65a;", u"&#65a;"}, {u"&#08;", u"&#08;"}, {u"&#xG1;", u"&#xG1;"},
        // Names are case-sensitive; Greek letters and arrows are not in the table.
        {u"a&amp;b", u"a&b"}, {u"&lt;b&gt;", u"<b>"}, {u"&Yuml;", u"\u0178"}, {u"&foo;", u"&foo;"},
        {u"&AMP;", u"&AMP;"}, {u"&alpha;", u"&alpha;"}, {u"&rarr;", u"&rarr;"}, {u"&nbsp", u"&nbsp"},
        {u"&amp&lt;", u"&amp<"}, // another "&" comes before the ";"
        {u"&&amp;", u"&&"},   {u"a & b; c", u"a & b; c"}, {u"&amp;amp;", u"&amp;"}, {u"x&", u"x&"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(decoded(c.text), std::u16string(c.expected)) << ZString(c.text).toUtf8();
    EXPECT_EQ(decoded(u"&#00;x"), std::u16string(u"\0x", 2)); // zero is a valid, non-negative value
}

TEST(HtmlEntities, TableOf125NamesEachDecodingToItsUnit)
{
    const xhtml::NamedEntity* table = xhtml::namedEntities();
    std::set<std::u16string> names;
    for (int i = 0; i < xhtml::namedEntityCount; ++i) {
        names.insert(table[i].name);
        EXPECT_EQ(decoded(u"<" + std::u16string(table[i].name) + u">"), std::u16string(u"<") + table[i].unit + u">") << i;
        if (i >= 4 && i < 100) { // the Latin-1 block, from &nbsp; to &yuml;, runs in code order without gaps
            EXPECT_EQ(table[i].unit, 160 + (i - 4)) << i;
        }
    }
    EXPECT_EQ(names.size(), 125u);
    EXPECT_EQ(std::u16string(table[4].name) + table[99].name, u"&nbsp;&yuml;");
}

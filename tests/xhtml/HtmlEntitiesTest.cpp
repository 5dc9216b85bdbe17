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

struct Case {
    const char16_t* text;
    const char16_t* expected;
};

void expectDecoded(const Case* cases, size_t count)
{
    for (size_t i = 0; i < count; ++i) {
        EXPECT_EQ(decoded(cases[i].text), std::u16string(cases[i].expected))
            << "case " << i << ": " << ZString(reinterpret_cast<const ZChar*>(cases[i].text)).toUtf8();
    }
}

} // namespace

TEST(HtmlEntities, NumericForms)
{
    const Case cases[] = {
        {u"&#65;", u"A"},        {u"&#x41;", u"A"},     {u"&#X41;", u"A"},    {u"&#0x41;", u"A"},
        {u"&#0X41;", u"A"},      {u"&#0101;", u"A"},    {u"&#x20AC;", u"\u20AC"},
        {u"&#+65;", u"A"},       {u"&# 65;", u"A"},     {u"&#x0x41;", u"A"},  // the rules of wcstol
        {u"&#65601;", u"A"},     {u"&#x1F600;", u"\uF600"}, // the low 16 bits
        {u"&#99999999999;", u"\uFFFF"},                 // clamped to the 32-bit maximum first
    };
    expectDecoded(cases, sizeof cases / sizeof cases[0]);
    EXPECT_EQ(decoded(u"&#00;x"), std::u16string(u"\0x", 2)); // zero is a valid, non-negative value
}

TEST(HtmlEntities, MalformedNumbersStayAsWritten)
{
    const Case cases[] = {
        {u"&#65", u"&#65"},       // no ";"
        {u"&#;", u"&#;"},         // too short
        {u"&#x;", u"&#x;"},       // too short for the hexadecimal form
        {u"&#0x;", u"&#0x;"},
        {u"&#0;", u"&#0;"},       // too short for the octal form
        {u"&#-65;", u"&#-65;"},   // negative
        {u"&#65a;", u"&#65a;"},   // does not end at ";"
        {u"&#08;", u"&#08;"},     // 8 is no octal digit
        {u"&#xG1;", u"&#xG1;"},
        {u"&#abc;", u"&#abc;"},
    };
    expectDecoded(cases, sizeof cases / sizeof cases[0]);
}

TEST(HtmlEntities, NamedAndUnknown)
{
    const Case cases[] = {
        {u"&nbsp;", u"\u00A0"},   {u"a&amp;b", u"a&b"},       {u"&lt;b&gt;", u"<b>"},
        {u"&quot;", u"\""},       {u"&euro;", u"\u20AC"},     {u"&trade;", u"\u2122"},
        {u"&yuml;", u"\u00FF"},   {u"&Yuml;", u"\u0178"},     {u"&foo;", u"&foo;"},
        {u"&AMP;", u"&AMP;"},     // names are case-sensitive
        {u"&alpha;", u"&alpha;"}, // Greek letters are not in the table
        {u"&rarr;", u"&rarr;"},
        {u"&nbsp", u"&nbsp"},     // no ";"
        {u"&amp&lt;", u"&amp<"},  // another "&" comes before the ";"
        {u"&&amp;", u"&&"},
        {u"a & b; c", u"a & b; c"},
        {u"&;", u"&;"},
        {u"&amp;amp;", u"&amp;"}, // decoded once
        {u"x&", u"x&"},
        {u"plain", u"plain"},
    };
    expectDecoded(cases, sizeof cases / sizeof cases[0]);
}

TEST(HtmlEntities, TableHasTheHtml4Entities)
{
    const xhtml::NamedEntity* table = xhtml::namedEntities();
    std::set<std::u16string> names;
    for (int i = 0; i < xhtml::namedEntityCount; ++i)
        names.insert(table[i].name);
    EXPECT_EQ(names.size(), 125u); // no name twice
    EXPECT_EQ(std::u16string(table[0].name), u"&quot;");
    EXPECT_EQ(std::u16string(table[4].name), u"&nbsp;");
    EXPECT_EQ(std::u16string(table[99].name), u"&yuml;");
    EXPECT_EQ(std::u16string(table[124].name), u"&trade;");
    // The Latin-1 block runs in code order without gaps.
    for (int i = 4; i < 100; ++i)
        EXPECT_EQ(table[i].unit, 160 + (i - 4)) << i;
}

TEST(HtmlEntities, EveryNamedEntityDecodesToItsUnit)
{
    const xhtml::NamedEntity* table = xhtml::namedEntities();
    for (int i = 0; i < xhtml::namedEntityCount; ++i) {
        const std::u16string name(table[i].name);
        EXPECT_EQ(decoded(u"<" + name + u">"), std::u16string(u"<") + table[i].unit + u">") << i;
    }
}

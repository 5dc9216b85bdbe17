#include "base/ZString.h"

#include <gtest/gtest.h>

#include <climits>
#include <stdexcept>

namespace {

ZString z(const char* utf8) { return ZString::fromUtf8(utf8); }

TEST(ZString, Utf8RoundTripKeepsEveryPlaneAndReplacesMalformedInput)
{
    // A, e-acute, euro sign, G clef (a surrogate pair).
    const std::string text = "A\xC3\xA9\xE2\x82\xAC\xF0\x9D\x84\x9E";
    EXPECT_EQ(z(text.c_str()), ZString(u"A\u00E9\u20AC\U0001D11E"));
    EXPECT_EQ(z(text.c_str()).toUtf8(), text);

    EXPECT_EQ(z("ab\xE2\x82").toUtf8(), "ab\xEF\xBF\xBD\xEF\xBF\xBD") << "truncated";
    for (const char* bad : {"\xC0\xAF", "\xED\xA0\x80", "\xF4\x90\x80\x80"}) // overlong, surrogate, > U+10FFFF
        EXPECT_EQ(z(bad).getAt(0), ZChar(0xFFFD)) << bad;
    ZString lone;
    lone.append(ZChar(0xD800)).append(ZChar('x'));
    EXPECT_EQ(lone.toUtf8(), "\xEF\xBF\xBDx");
}

TEST(ZString, GetAtOutsideTheStringThrowsWithTheFixedMessage)
{
    EXPECT_EQ(z("abc").getAt(2), ZChar('c'));
    EXPECT_THROW(z("abc").getAt(-1), std::out_of_range);
    try {
        z("abc").getAt(3);
        ADD_FAILURE() << "no exception";
    } catch (const std::out_of_range& e) {
        EXPECT_STREQ(e.what(), "ZString::getAt(int): Index out of range");
    }
}

TEST(ZString, ComparesByUnitOrWithoutCaseAndLowerCases)
{
    EXPECT_LT(z("B").compare(z("a")), 0);
    EXPECT_GT(z("abcd").compare(z("abc")), 0);
    EXPECT_LT(z("abc").compareNoCase(z("ABCD")), 0);
    EXPECT_TRUE(z("\xD0\x9F\xD0\xA0\xD0\x98").equalsNoCase(z("\xD0\xBF\xD1\x80\xD0\xB8"))); // Cyrillic
    EXPECT_EQ(z("ABC-xyz \xC3\x96\xC3\x97").toLower(), z("abc-xyz \xC3\xB6\xC3\x97")); // O-umlaut; x has no case
    EXPECT_EQ(z("\xC5\x81\xC5\xB8\xCE\xA3").toLower(), z("\xC5\x82\xC3\xBF\xCF\x83")); // L-stroke, Y-diaeresis, sigma
}

TEST(ZString, FindSubstringAffixesAndTrim)
{
    const ZString s = z("shot.png.png");
    EXPECT_EQ(s.find(z(".png"), 5), 8);
    EXPECT_EQ(s.find(ZChar('.'), 99), ZString::npos);
    EXPECT_EQ(s.findLast(z(".png")), 8);
    EXPECT_EQ(s.findLast(ZChar('.'), 7), 4);
    EXPECT_EQ(s.substring(50), ZString());
    EXPECT_EQ(s.substring(-3, 4), z("shot"));
    EXPECT_TRUE(s.endsWith(z(".png")) && s.startsWith(z("shot")));
    EXPECT_FALSE(z("ng").endsWith(z(".png")) || z("sh").startsWith(z("shot")));

    EXPECT_EQ(z("\t\n\v\f\r a b \r\n").trim(), z("a b"));
    EXPECT_EQ(z(" \t ").trim(), ZString());
    EXPECT_EQ(z("\xC2\xA0x").trim().length(), 2) << "a no-break space is text";
}

TEST(ZString, DecimalParsingAndFormatting)
{
    long long v = 7;
    EXPECT_TRUE(z(" -9223372036854775808 ").toInt(v));
    EXPECT_EQ(v, LLONG_MIN);
    v = 7;
    for (const char* bad : {"", "-", "1 2", "9223372036854775808", "0x10", "+-1"}) {
        EXPECT_FALSE(z(bad).toInt(v)) << bad;
        EXPECT_EQ(v, 7) << bad;
    }
    int i = 0;
    EXPECT_FALSE(z("2147483648").toInt(i));
    EXPECT_EQ(z("oops").toIntOr(144), 144);
    EXPECT_EQ(z("+100").toIntOr(0), 100);
    EXPECT_EQ(ZString::fromInt(LLONG_MIN), z("-9223372036854775808"));
    EXPECT_EQ(ZString::fromUInt(ULLONG_MAX), z("18446744073709551615"));
}

TEST(ZString, PrintfStyleFormatting)
{
    EXPECT_EQ(ZString::format(u"[%5d|%-4d|%05d|%+d]", 42, 7, -3, 1), z("[   42|7   |-0003|+1]"));
    EXPECT_EQ(ZString::format(u"%x %X %#x %o %u", 255u, 255u, 255u, 8u, 4000000000u), z("ff FF 0xff 10 4000000000"));
    EXPECT_EQ(ZString::format(u"%lld %I64d %zu", -5000000000LL, 1LL << 40, size_t(3)), z("-5000000000 1099511627776 3"));
    EXPECT_EQ(ZString::format(u"%.2f %g %e", 1.005, 0.5, 1500.0), z("1.00 0.5 1.500000e+03"));
    EXPECT_EQ(ZString::format(u"%c%%%.3s|%6s|%-3s|%hs", 'Z', z("abcdef").c_str(), z("ab").c_str(), z("x").c_str(), "\xC3\xA9"),
              z("Z%abc|    ab|x  |\xC3\xA9"));
    EXPECT_EQ(ZString::format(u"%*d|%.*s", 4, 9, 2, z("xyz").c_str()), z("   9|xy"));
    EXPECT_EQ(ZString::format(u"%s", static_cast<const ZChar*>(nullptr)), z("(null)"));
}

} // namespace

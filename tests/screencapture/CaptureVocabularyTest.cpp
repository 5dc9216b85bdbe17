#include "screencapture/CaptureVocabulary.h"

#include <gtest/gtest.h>

namespace screenCapture {
namespace {

ZString text(const ZChar* units) { return units ? ZString(units) : ZString(ZSTR("(null)")); }

TEST(CaptureVocabulary, TablesKeepTheirStoredOrder)
{
    const struct {
        const ZChar* name;
        int value;
    } modes[] = {{ZSTR("screen"), 1},          {ZSTR("screenClient"), 2},    {ZSTR("activeWindow"), 3},
                 {ZSTR("activeWindowClient"), 4}, {ZSTR("userDefinedArea"), 5}, {ZSTR("clipboard"), 6}},
      targets[] = {{ZSTR("pdfPrinter"), 2}, {ZSTR("clipboard"), 1}, {ZSTR("imageEditor"), 3}, {ZSTR("file"), 4}};

    int row = 0;
    for (const auto& expected : modes) {
        EXPECT_EQ(text(modeNames[row].name), text(expected.name)) << row;
        EXPECT_EQ(modeNames[row].value, expected.value) << row;
        ++row;
    }
    EXPECT_EQ(modeNames[row].name, nullptr);
    row = 0;
    for (const auto& expected : targets) {
        EXPECT_EQ(text(targetNames[row].name), text(expected.name)) << row;
        EXPECT_EQ(targetNames[row].value, expected.value) << row;
        ++row;
    }
    EXPECT_EQ(targetNames[row].name, nullptr);
}

TEST(CaptureVocabulary, NamesAreExactAndTheTwoTablesAreSeparate)
{
    EXPECT_EQ(modeNamed(ZSTR("screen")), screen);
    EXPECT_EQ(modeNamed(ZSTR("Screen")), noMode) << "case matters";
    EXPECT_EQ(modeNamed(ZSTR("screen ")), noMode) << "no trimming";
    EXPECT_EQ(modeNamed(ZSTR("scree")), noMode) << "no prefix match";
    EXPECT_EQ(modeNamed(ZSTR("")), noMode);
    EXPECT_EQ(modeNamed(ZSTR("clipboard")), clipboard);
    EXPECT_EQ(targetNamed(ZSTR("clipboard")), toClipboard);
    EXPECT_EQ(targetNamed(ZSTR("screen")), noTarget);
    EXPECT_EQ(modeNamed(ZSTR("pdfPrinter")), noMode);
}

TEST(CaptureVocabulary, ValuesOutsideTheTablesHaveNoName)
{
    EXPECT_EQ(text(nameOf(pdfPrinter)), ZString(ZSTR("pdfPrinter")));
    EXPECT_EQ(nameOf(pdfPrinter), targetNames[0].name) << "the pointer is into the table";
    EXPECT_EQ(text(nameOf(userDefinedArea)), ZString(ZSTR("userDefinedArea")));
    for (int value : {0, -1, 7, 1000}) {
        EXPECT_EQ(nameOf(static_cast<Mode>(value)), nullptr) << value;
        EXPECT_EQ(nameOf(static_cast<Target>(value)), nullptr) << value;
    }
    EXPECT_EQ(nameOf(static_cast<Target>(5)), nullptr);
}

} // namespace
} // namespace screenCapture

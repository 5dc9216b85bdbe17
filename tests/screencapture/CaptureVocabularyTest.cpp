#include "screencapture/CaptureVocabulary.h"

#include <gtest/gtest.h>

namespace screenCapture {
namespace {

// Names are stored in settings and typed on command lines, so they must match exactly, and
// the stored numbers must keep their names.
TEST(CaptureVocabulary, NamesMatchExactlyAndMapBothWays)
{
    const struct {
        const ZChar* name;
        int mode;
        int target;
    } rows[] = {
        {ZSTR("screen"), 1, 0},          {ZSTR("screenClient"), 2, 0},    {ZSTR("activeWindow"), 3, 0},
        {ZSTR("activeWindowClient"), 4, 0}, {ZSTR("userDefinedArea"), 5, 0}, {ZSTR("clipboard"), 6, 1},
        {ZSTR("pdfPrinter"), 0, 2},      {ZSTR("imageEditor"), 0, 3},     {ZSTR("file"), 0, 4},
        {ZSTR("Screen"), 0, 0},          {ZSTR("screen "), 0, 0},         {ZSTR(""), 0, 0},
    };
    for (const auto& row : rows) {
        const std::string name = ZString(row.name).toUtf8();
        EXPECT_EQ(modeNamed(row.name), row.mode) << name;
        EXPECT_EQ(targetNamed(row.name), row.target) << name;
        if (row.mode) {
            EXPECT_EQ(ZString(nameOf(static_cast<Mode>(row.mode))), ZString(row.name));
        }
        if (row.target) {
            EXPECT_EQ(ZString(nameOf(static_cast<Target>(row.target))), ZString(row.name));
        }
    }
    for (int value : {0, -1, 7, 1000}) {
        EXPECT_EQ(nameOf(static_cast<Mode>(value)), nullptr) << value;
        EXPECT_EQ(nameOf(static_cast<Target>(value)), nullptr) << value;
    }
}

} // namespace
} // namespace screenCapture

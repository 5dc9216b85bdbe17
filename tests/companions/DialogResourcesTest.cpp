// What the web bridge relies on for both dialog libraries: exports under their C names, and
// nothing left behind however often the dialogs are opened.

#include "companions/about/About.h"
#include "companions/formatoptions/FormatOptions.h"
#include "companions/language/Language.h"
#include "tests/companions/DialogKit.h"
#include "tests/support/ResourceCounters.h"
#include "tests/support/ScratchEnvironment.h"

#include <gtest/gtest.h>

namespace {

TEST(CompanionDialogs, AreFoundByTheirCNamesAndLeaveNoWindowsHandlesOrGdiObjectsBehind)
{
    EXPECT_NE(GetProcAddress(GetModuleHandleW(L"About.dll"), "about_show"), nullptr);
    EXPECT_NE(GetProcAddress(GetModuleHandleW(L"FormatOptions.dll"), "formatOptions_show"), nullptr);

    ScratchEnvironment env;
    const auto openBoth = [] {
        EXPECT_EQ(withDialog(lang_getStr(L"about/title").c_str(), [] { about_show(nullptr); },
                             [](UiRobot&, HWND box) { closeDialog(box, CloseBy::escape); }),
                  "");
        EXPECT_EQ(withDialog(lang_getStr(L"format-options/title").c_str(), [] { formatOptions_show(nullptr); },
                             [](UiRobot&, HWND dialog) { closeDialog(dialog, CloseBy::closeBox); }),
                  "");
    };
    openBoth(); // what stays loaded after the first time (libraries, fonts) is not a leak
    const ResourceCounts before = countResources();
    for (int i = 0; i < 4; ++i)
        openBoth();
    EXPECT_EQ(countResourcesSettled(before).describe(), before.describe());
}

} // namespace

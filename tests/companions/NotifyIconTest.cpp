#include "companions/notifyicon/NotifyIcon.h"
#include "tests/support/ResourceCounters.h"
#include "tests/support/UiRobot.h"

#include <gtest/gtest.h>

#include <shellapi.h>

namespace {

const wchar_t* const kNoteWindowClass = L"PryxaNotifyIconWindow";
// Whether the shell still has the note's icon: modifying an icon that is gone fails.
bool iconExists(HWND window)
{
    NOTIFYICONDATAW data = {};
    data.cbSize = sizeof data;
    data.hWnd = window;
    data.uID = 1;
    data.uFlags = NIF_TIP;
    return Shell_NotifyIconW(NIM_MODIFY, &data) != FALSE;
}

template <typename Function>
Function function(HMODULE module, const char* name)
{
    return reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(module, name)));
}

// One note from loading the library to its unloading, checked on the way.
void noteCycle()
{
    HMODULE library = LoadLibraryW(L"NotifyIcon.dll");
    ASSERT_NE(library, nullptr);
    auto info = function<void (*)(const ZString&, const ZString&)>(library, "notifyIcon_info");
    auto setDuration = function<void (*)(uint32_t)>(library, "notifyIcon_setDuration");
    ASSERT_TRUE(info && setDuration);
    setDuration(1500);

    // The call returns while its note is still up.
    info(L"Note", L"The captured picture has been copied to the clipboard.");
    HWND window = nullptr;
    ASSERT_TRUE(pumpUntil([&] { return (window = FindWindowW(kNoteWindowClass, nullptr)) != nullptr; }, 2000));
    EXPECT_TRUE(pumpUntil([&] { return iconExists(window); }, 2000)) << "the balloon's icon is up";

    // A second note while the first is up reuses the same window and icon.
    info(L"Note", L"Again");
    pumpMessages(100);
    EXPECT_EQ(FindWindowW(kNoteWindowClass, nullptr), window);

    // The library stays loaded for its note and unloads when the note is over.
    FreeLibrary(library);
    EXPECT_NE(GetModuleHandleW(L"NotifyIcon.dll"), nullptr);
    EXPECT_TRUE(pumpUntil([] { return GetModuleHandleW(L"NotifyIcon.dll") == nullptr; }, 8000))
        << "library still loaded long after its note";
    EXPECT_EQ(FindWindowW(kNoteWindowClass, nullptr), nullptr);
    EXPECT_FALSE(iconExists(window));
}

TEST(NotifyIcon, ReturnsAtOnceAndLeavesNothingBehindWhenTheNoteIsOver)
{
    // The first cycle also pays for what the shell loads once per process.
    noteCycle();
    const ResourceCounts before = countResources();
    noteCycle();
    const ResourceCounts after = countResourcesSettled(before);
    EXPECT_TRUE(after == before) << after.describe() << " after, " << before.describe() << " before";
}

} // namespace

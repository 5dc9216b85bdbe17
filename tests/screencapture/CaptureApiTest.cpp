// The module as a host sees it: screencapture.dll's exports.

#include "companions/notifyicon/NotifyIcon.h"
#include "screencapture/CaptureApi.h"
#include "screencapture/ScreenCapture.h"
#include "tests/screencapture/CaptureTestKit.h"
#include "tests/support/HelperProcess.h"
#include "tests/support/ResourceCounters.h"
#include "tests/support/UiRobot.h"
#include "tests/support/Wine.h"

namespace {

using ScreenCaptureApi = CaptureTest;

// The tray note of the clipboard target has its own window and thread while it is up.
bool noteIsOver()
{
    return pumpUntil([] { return FindWindowW(L"PryxaNotifyIconWindow", nullptr) == nullptr; }, 5000);
}

// The probe answers whether a bitmap is offered now; the clipboard mode takes exactly that,
// and without it the user is told.
TEST_F(ScreenCaptureApi, ClipboardModeTakesOnlyABitmapOfferedNow)
{
    const auto expectBitmap = [](bool offered, const char* state) {
        EXPECT_EQ(screenCapture::canCaptureClipboard(), offered) << state;
        EXPECT_EQ(screenCapture_canCaptureClipboard(), offered ? 1 : 0) << state;
        screenCapture::ScreenCapture capture(nullptr);
        capture.grab(screenCapture::clipboard);
        EXPECT_EQ(capture.image() != nullptr, offered) << state;
    };
    ASSERT_TRUE(putBitmapOnClipboard(createDibSection(4, 4, gradientPattern)));
    {
        ClipboardHolder holder;
        ASSERT_TRUE(holder.holding());
        expectBitmap(false, "held open by another process");
    }
    expectBitmap(true, "a bitmap");
    ASSERT_TRUE(putTextOnClipboard(L"no picture here"));
    expectBitmap(false, "only text");

    MessageBoxInfo box;
    UiRobot robot([&](UiRobot& r) {
        HWND found = r.waitForWindow(L"#32770", L"Error");
        box = readMessageBox(found);
        pressButton(found, IDOK);
    });
    screenCapture::capture(screenCapture::clipboard, screenCapture::toClipboard);
    ASSERT_EQ(robot.finish(), "");
    EXPECT_EQ(box.text, L"Could not capture the screen");
    EXPECT_EQ(box.icon, static_cast<UINT>(MB_ICONWARNING));
}

// A C export as a host in another language finds it: by its plain name, in the module
// loaded by name. decltype keeps the WINAPI convention of the declaration.
template <auto function>
auto exported(HMODULE module, const char* name)
{
    return reinterpret_cast<decltype(function)>(reinterpret_cast<void*>(GetProcAddress(module, name)));
}

TEST_F(ScreenCaptureApi, CFunctionsAreFoundByTheirPlainNamesAndCalledWithTheWindowsConvention)
{
    HMODULE module = LoadLibraryW(L"screencapture.dll");
    ASSERT_NE(module, nullptr);
    const auto capture = exported<&screenCapture_capture>(module, "screenCapture_capture");
    const auto canCaptureClipboard = exported<&screenCapture_canCaptureClipboard>(module, "screenCapture_canCaptureClipboard");
    const auto modeToName = exported<&screenCapture_modeToName>(module, "screenCapture_modeToName");
    const auto nameToMode = exported<&screenCapture_nameToMode>(module, "screenCapture_nameToMode");
    const auto targetToName = exported<&screenCapture_targetToName>(module, "screenCapture_targetToName");
    const auto nameToTarget = exported<&screenCapture_nameToTarget>(module, "screenCapture_nameToTarget");
    ASSERT_TRUE(capture && canCaptureClipboard && modeToName && nameToMode && targetToName && nameToTarget);

    EXPECT_STREQ(modeToName(5), L"userDefinedArea");
    EXPECT_EQ(modeToName(7), nullptr);
    EXPECT_EQ(nameToMode(L"activeWindowClient"), 4);
    EXPECT_STREQ(targetToName(2), L"pdfPrinter");
    EXPECT_EQ(nameToTarget(L"clipboard"), 1);
    EXPECT_EQ(nameToTarget(L"Clipboard"), 0);

    // The clipboard mode to the clipboard target needs nobody at the screen: the bitmap is
    // taken and put back as a new clipboard content, with a note to the user.
    notifyIcon_setDuration(100);
    ASSERT_TRUE(putBitmapOnClipboard(createDibSection(4, 4, gradientPattern)));
    EXPECT_EQ(canCaptureClipboard(), 1);
    const DWORD sequence = GetClipboardSequenceNumber();
    capture(6, 1);
    EXPECT_NE(GetClipboardSequenceNumber(), sequence) << "nothing was put on the clipboard";
    ASSERT_TRUE(OpenClipboard(nullptr));
    const PixelGrid onClipboard = readBitmapPixels(static_cast<HBITMAP>(GetClipboardData(CF_BITMAP)));
    CloseClipboard();
    ASSERT_EQ(onClipboard.width, 4);
    for (int i = 0; i < 16; ++i)
        EXPECT_EQ(onClipboard.pixels[i], gradientPattern(i % 4, i / 4)) << "pixel " << i;
    EXPECT_TRUE(noteIsOver());

    ASSERT_TRUE(putTextOnClipboard(L"no picture"));
    EXPECT_EQ(canCaptureClipboard(), 0);
    FreeLibrary(module);
}

TEST_F(ScreenCaptureApi, ManyCapturesLeaveNoGdiObjectHandleOrWindowBehind)
{
    notifyIcon_setDuration(100);
    CommandRecorder recorder(env.folder());
    PngEditVerb verb(CommandRecorder::commandFor(L"\"%1\""));
    auto captureBoth = [] {
        screenCapture::capture(screenCapture::screen, screenCapture::toClipboard);
        screenCapture::capture(screenCapture::screen, screenCapture::imageEditor);
    };
    // The first captures pay for what is set up once per process (GDI+, the shell, the
    // clipboard, the tray), including what only a quick succession of notes sets up.
    for (int i = 0; i < 10; ++i)
        captureBoth();
    ASSERT_TRUE(recorder.waitForLines(10));
    ASSERT_TRUE(noteIsOver());
    const ResourceCounts before = countResources();
    for (int i = 0; i < 100; ++i)
        captureBoth();
    ASSERT_TRUE(recorder.waitForLines(110, 60000)) << "the edit verb was not started each time";
    ASSERT_TRUE(noteIsOver());
    const ResourceCounts after = countResourcesSettled(before, 3000);
    EXPECT_TRUE(after == before) << after.describe() << " after, " << before.describe() << " before";
}

TEST_F(ScreenCaptureApi, UnusableTemporaryFolderIsTheOneFailureThatReachesTheHost)
{
    if (!runningOnWine())
        GTEST_SKIP() << "needs Wine's Z: drive";
    // Z: is the Unix root under Wine, and nobody can create files in /proc. Everything that
    // names the temporary folder points there (the scratch environment puts TMP and TEMP back).
    wchar_t current[MAX_PATH] = {};
    GetCurrentDirectoryW(MAX_PATH, current);
    for (const wchar_t* variable : {L"TMP", L"TEMP"})
        SetEnvironmentVariableW(variable, L"Z:\\proc");
    SetCurrentDirectoryW(L"Z:\\proc");
    auto acknowledge = [](UiRobot& r) { pressButton(r.waitForWindow(L"#32770", L"Temporary files folder not writeable"), IDOK); };

    UiRobot cppHost(acknowledge);
    EXPECT_THROW(screenCapture::capture(screenCapture::screen, screenCapture::imageEditor), std::runtime_error);
    EXPECT_EQ(cppHost.finish(), "");

    UiRobot cHost(acknowledge);
    EXPECT_NO_THROW(screenCapture_capture(screenCapture::screen, screenCapture::imageEditor));
    EXPECT_EQ(cHost.finish(), "");
    SetCurrentDirectoryW(current);
}

} // namespace

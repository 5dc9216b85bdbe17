#include "base/win/KernelHandle.h"
#include "base/win/TempFolder.h"
#include "screencapture/Delivery.h"
#include "screencapture/ScreenCapture.h"
#include "tests/screencapture/CaptureTestKit.h"
#include "tests/support/HelperProcess.h"
#include "tests/support/UiRobot.h"

#include <shlwapi.h>

namespace screenCapture {
namespace {

std::vector<std::pair<ZString, ZString>> notes; // heading and message

// Routes the clipboard target's tray notes to `notes` while it lives.
struct NoteRecorder {
    NoteRecorder()
    {
        notes.clear();
        trayNote = [](const ZString& heading, const ZString& message) { notes.emplace_back(heading, message); };
    }
    ~NoteRecorder() { trayNote = previous; }
    TrayNote previous = trayNote;
};

std::unique_ptr<ScreenCapture> grabPattern(const RECT& area)
{
    auto window = showPattern(area, gradientPattern);
    auto capture = std::make_unique<ScreenCapture>(nullptr);
    capture->grab(screen);
    return capture;
}

bool fileExists(const ZString& path) { return PathFileExistsW(path.c_str()) != FALSE; }

std::vector<ZString> temporaryPngs() { return filesIn(moduleTempFolder(), L"screenCapture_"); }

using Delivery = CaptureTest;

TEST_F(Delivery, NamesSayWhatWasCapturedAndFilesEndInPng)
{
    const ZString title200(200, L't'), title201(201, L't');
    const struct {
        Mode mode;
        ZString title;
        ZString expected;
    } names[] = {
        {screen, L"ignored", L"Screen capture"},        {noMode, L"", L"Screen capture"},
        {static_cast<Mode>(42), L"", L"Screen capture"}, {screenClient, L"", L"Working area capture"},
        {activeWindow, L"Report.pdf - Pryxa", L"Report.pdf - Pryxa"}, {activeWindowClient, title200, title200},
        {activeWindowClient, title201, L"Window capture"}, {activeWindow, L"", L"Window capture"},
        {userDefinedArea, L"x", L"Area capture"},       {clipboard, L"x", L"Clipboard picture"},
    };
    for (const auto& c : names)
        EXPECT_EQ(defaultName(c.mode, c.title).toUtf8(), c.expected.toUtf8()) << "mode " << c.mode;

    const std::pair<const wchar_t*, const wchar_t*> files[] = {
        {L"shot", L"shot.png"}, {L"shot.PNG", L"shot.PNG"}, {L"a.pn", L"a.pn.png"}, {L".png", L".png"},
        {L"png", L"png.png"}, {L"C:\\x.png.txt", L"C:\\x.png.txt.png"}, {L"C:\\a b\\c.Png", L"C:\\a b\\c.Png"}};
    for (const auto& [chosen, expected] : files)
        EXPECT_EQ(withPngExtension(chosen), ZString(expected)) << ZString(chosen).toUtf8();
}

TEST_F(Delivery, ClipboardGetsOnlyTheBitmapAndTheUserANote)
{
    auto capture = grabPattern({100, 100, 260, 220});
    ASSERT_NE(capture->image(), nullptr);
    putTextOnClipboard(L"old content");
    NoteRecorder recorder;
    deliver(screen, toClipboard, *capture);

    const std::vector<UINT> formats = clipboardFormats();
    ASSERT_FALSE(formats.empty());
    EXPECT_EQ(formats.front(), static_cast<UINT>(CF_BITMAP));
    for (UINT format : formats) {
        // The system offers DIB forms of a bitmap by itself; nothing else may be there.
        EXPECT_TRUE(format == CF_BITMAP || format == CF_DIB || format == CF_DIBV5 || format == CF_PALETTE) << format;
    }
    ASSERT_TRUE(OpenClipboard(nullptr));
    const PixelGrid onClipboard = readBitmapPixels(static_cast<HBITMAP>(GetClipboardData(CF_BITMAP)));
    CloseClipboard();
    EXPECT_TRUE(onClipboard.pixels == imagePixels(*capture->image()).pixels);

    ASSERT_EQ(notes.size(), 1u);
    EXPECT_EQ(notes[0].first, ZString(L"Note"));
    EXPECT_EQ(notes[0].second, ZString(L"The captured picture has been copied to the clipboard."));
}

TEST_F(Delivery, ImageEditorOpensATemporaryPngWithTheEditVerb)
{
    auto capture = grabPattern({100, 100, 260, 220});
    CommandRecorder recorder(env.folder());
    PngEditVerb verb(CommandRecorder::commandFor(L"\"%1\""));
    deliver(screen, imageEditor, *capture);

    ASSERT_TRUE(recorder.waitForLines(1)) << "the edit verb's program was not started";
    const std::string line = recorder.lines().front();
    const std::vector<ZString> pngs = temporaryPngs();
    ASSERT_EQ(pngs.size(), 1u);
    EXPECT_NE(line.find(pngs.front().toUtf8()), std::string::npos) << line;
    EXPECT_TRUE(pngFilePixels(pngs.front()).pixels == imagePixels(*capture->image()).pixels) << "left for the editor";
}

// Fills the save dialog with `typed` (or cancels it when empty) and notes the suggestion
// it showed. With `confirmOverwrite` it also answers Yes when asked to replace the file.
class SaveDialogRobot : public UiRobot {
public:
    explicit SaveDialogRobot(const std::wstring& typed, bool confirmOverwrite = false)
        : UiRobot([this, typed, confirmOverwrite](UiRobot& r) { fill(r, typed, confirmOverwrite); })
    {
    }
    std::wstring suggestion;

private:
    void fill(UiRobot& r, const std::wstring& typed, bool confirmOverwrite)
    {
        HWND dialog = r.waitForWindow(L"#32770", L"Save As");
        HWND edit = findDescendant(dialog, L"Edit");
        if (!edit)
            throw RobotFailure("no file name field in the save dialog");
        suggestion = windowText(edit);
        if (typed.empty()) {
            pressButton(dialog, IDCANCEL);
            r.waitForWindowGone(dialog);
            return;
        }
        typeText(edit, typed);
        pressButton(dialog, IDOK);
        if (confirmOverwrite) {
            HWND confirm = r.waitForWindow(
                [&](HWND w) { return w != dialog && windowClass(w) == L"#32770" && GetDlgItem(w, IDYES); },
                "asking to replace the file");
            pressButton(confirm, IDYES);
        }
        r.waitForWindowGone(dialog);
    }
};

TEST_F(Delivery, FileTargetSavesUnderTheChosenNameWithPngExtension)
{
    auto capture = grabPattern({100, 100, 260, 220});
    const PixelGrid expected = imagePixels(*capture->image());
    const ZString folder = env.folder();
    const struct {
        const wchar_t* typed;
        const wchar_t* saved;
    } cases[] = {{L"shot.PNG", L"shot.PNG"}, {L"a.pn", L"a.pn.png"}};
    for (const auto& c : cases) {
        SaveDialogRobot robot((folder + L"\\" + c.typed).c_str());
        deliver(screen, file, *capture);
        ASSERT_EQ(robot.finish(), "");
        EXPECT_EQ(robot.suggestion, L"Screen capture");
        const ZString saved = folder + L"\\" + c.saved;
        ASSERT_TRUE(fileExists(saved)) << saved.toUtf8();
        EXPECT_TRUE(pngFilePixels(saved).pixels == expected.pixels) << saved.toUtf8();
    }

    const size_t pngsBefore = temporaryPngs().size();
    SaveDialogRobot cancel(L"");
    deliver(screen, file, *capture);
    ASSERT_EQ(cancel.finish(), "");
    EXPECT_EQ(temporaryPngs().size(), pngsBefore) << "cancel writes nothing";
}

TEST_F(Delivery, FailedCopyOffersRetryAndKeepsTheTemporaryPng)
{
    auto capture = grabPattern({100, 100, 160, 160});
    const ZString destination = env.folder() + L"\\locked.png";
    // Held open without sharing, the destination cannot be written.
    KernelHandle locked(CreateFileW(destination.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr));
    ASSERT_TRUE(locked);

    std::vector<MessageBoxInfo> boxes;
    DWORD firstBoxAt = 0, secondBoxAt = 0;
    SaveDialogRobot dialog(destination.c_str(), true);
    UiRobot errors([&](UiRobot& r) {
        HWND box = r.waitForWindow(L"#32770", L"File copy error", 20000);
        firstBoxAt = GetTickCount();
        boxes.push_back(readMessageBox(box));
        pressButton(box, IDRETRY);
        r.waitForWindowGone(box);
        box = r.waitForWindow(L"#32770", L"File copy error", 20000);
        secondBoxAt = GetTickCount();
        boxes.push_back(readMessageBox(box));
        pressButton(box, IDCANCEL);
    });
    deliver(screen, file, *capture);
    ASSERT_EQ(dialog.finish(), "");
    ASSERT_EQ(errors.finish(), "");

    ASSERT_EQ(boxes.size(), 2u);
    const std::vector<ZString> pngs = temporaryPngs();
    ASSERT_EQ(pngs.size(), 1u) << "the temporary PNG stays after Cancel";
    const std::wstring text = boxes[0].text;
    EXPECT_EQ(text.rfind(L"Could not write to file.\n\nErrorCode=", 0), 0u) << ZString(text.c_str()).toUtf8();
    EXPECT_NE(text.find(L"\nErrorMsg="), std::wstring::npos);
    EXPECT_NE(text.find((L"\n\nSource=" + pngs.front() + L"\nDestination=" + destination).c_str()), std::wstring::npos)
        << ZString(text.c_str()).toUtf8();
    EXPECT_EQ(boxes[0].icon, static_cast<UINT>(MB_ICONERROR));
    EXPECT_EQ(boxes[0].buttons, (std::vector<int>{IDCANCEL, IDRETRY}));
    // Retry means five more tries 100 ms apart before the box comes back.
    EXPECT_GE(secondBoxAt - firstBoxAt, 400u);
}

} // namespace
} // namespace screenCapture

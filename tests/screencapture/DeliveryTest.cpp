// The picture of a capture on its way to each target.

#include "base/win/KernelHandle.h"
#include "base/win/RegistryKey.h"
#include "base/win/TempFolder.h"
#include "base/win/ThisModule.h"
#include "screencapture/AssistantHandOff.h"
#include "screencapture/Delivery.h"
#include "screencapture/PdfDelivery.h"
#include "screencapture/ScreenCapture.h"
#include "tests/screencapture/CaptureTestKit.h"
#include "tests/support/HelperProcess.h"
#include "tests/support/UiRobot.h"
#include "zpdf/PdfException.h"

#include <filesystem>
#include <fstream>
#include <tuple>

namespace screenCapture {
namespace {

std::vector<ZString> notes; // the clipboard target's tray notes, "HEADING: MESSAGE" each

// What windows of the classes the hand-off looks for were sent: "CLASS CODE TEXT" each.
std::vector<std::wstring> handedOff;

class FakeAssistantWindow {
public:
    explicit FakeAssistantWindow(const wchar_t* className)
    {
        WNDCLASSW type = {};
        type.lpfnWndProc = [](HWND window, UINT message, WPARAM wParam, LPARAM lParam) CALLBACK -> LRESULT {
            if (message != WM_COPYDATA)
                return DefWindowProcW(window, message, wParam, lParam);
            const auto* data = reinterpret_cast<const COPYDATASTRUCT*>(lParam);
            handedOff.push_back(windowClass(window) + L" " + std::to_wstring(data->dwData) + L" "
                                + std::wstring(static_cast<const wchar_t*>(data->lpData), data->cbData / 2 - 1));
            return TRUE;
        };
        type.hInstance = GetModuleHandleW(nullptr);
        type.lpszClassName = className;
        RegisterClassW(&type);
        window_ = CreateWindowExW(0, className, L"", WS_POPUP, 0, 0, 0, 0, nullptr, nullptr, nullptr, nullptr);
    }
    ~FakeAssistantWindow() { DestroyWindow(window_); }

private:
    HWND window_;
};

std::vector<ZString> temporaryPngs() { return filesIn(moduleTempFolder(), L"screenCapture_"); }
std::vector<ZString> temporaryPdfs() { return filesIn(moduleTempFolder(), L"screenCapture-"); }

// A screen grab with a known pattern on it, smooth so that JPEG stays close to it.
class Delivery : public CaptureTest {
protected:
    void SetUp() override
    {
        window = showPattern({100, 80, 740, 560}, [](int x, int y) { return rgb(x * 255 / 640, y * 255 / 480, 128); });
        capture.grab(screen);
        ASSERT_NE(capture.image(), nullptr);
        captured = imagePixels(*capture.image());
        handedOff.clear();
        notes.clear();
        trayNote = [](const ZString& heading, const ZString& message) { notes.push_back(heading + L": " + message); };
    }
    void TearDown() override { trayNote = keptNote; }

    const TrayNote keptNote = trayNote;

    std::unique_ptr<TestWindow> window;
    ScreenCapture capture{nullptr};
    PixelGrid captured;
};

TEST(DeliveryNames, SayWhatWasCapturedAndFilesEndInPng)
{
    const ZString title200(200, L't'), title201(201, L't');
    const struct {
        Mode mode;
        ZString title;
        ZString expected;
    } names[] = {
        {screen, L"ignored", L"Screen capture"}, {noMode, L"", L"Screen capture"}, {screenClient, L"", L"Working area capture"},
        {activeWindowClient, title200, title200}, {activeWindowClient, title201, L"Window capture"},
        {activeWindow, L"", L"Window capture"}, {userDefinedArea, L"x", L"Area capture"}, {clipboard, L"x", L"Clipboard picture"},
    };
    for (const auto& c : names)
        EXPECT_EQ(defaultName(c.mode, c.title).toUtf8(), c.expected.toUtf8()) << "mode " << c.mode;

    const std::pair<const wchar_t*, const wchar_t*> files[] = {
        {L"shot.PNG", L"shot.PNG"}, {L"a.pn", L"a.pn.png"}, {L"png", L"png.png"}, {L"C:\\x.png.txt", L"C:\\x.png.txt.png"}};
    for (const auto& [chosen, expected] : files)
        EXPECT_EQ(withPngExtension(chosen), ZString(expected)) << ZString(chosen).toUtf8();
}

TEST_F(Delivery, ClipboardGetsOnlyTheBitmapAndTheUserANote)
{
    putTextOnClipboard(L"old content");
    deliver(screen, toClipboard, capture);

    for (UINT format : clipboardFormats()) {
        // The system offers DIB forms of a bitmap by itself; nothing else may be there.
        EXPECT_TRUE(format == CF_BITMAP || format == CF_DIB || format == CF_DIBV5 || format == CF_PALETTE) << format;
    }
    ASSERT_TRUE(OpenClipboard(nullptr));
    const PixelGrid onClipboard = readBitmapPixels(static_cast<HBITMAP>(GetClipboardData(CF_BITMAP)));
    CloseClipboard();
    EXPECT_TRUE(onClipboard.pixels == captured.pixels);

    EXPECT_EQ(notes, std::vector<ZString>{L"Note: The captured picture has been copied to the clipboard."});
}

TEST_F(Delivery, ImageEditorOpensATemporaryPngWithTheEditVerb)
{
    CommandRecorder recorder(env.folder());
    PngEditVerb verb(CommandRecorder::commandFor(L"\"%1\""));
    deliver(screen, imageEditor, capture);

    ASSERT_TRUE(recorder.waitForLines(1)) << "the edit verb's program was not started";
    const std::string line = recorder.lines().front();
    const std::vector<ZString> pngs = temporaryPngs();
    ASSERT_EQ(pngs.size(), 1u);
    EXPECT_NE(line.find(pngs.front().toUtf8()), std::string::npos) << line;
    EXPECT_TRUE(pngFilePixels(pngs.front()).pixels == captured.pixels) << "left for the editor";
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
    SaveDialogRobot robot((env.folder() + L"\\a.pn").c_str());
    deliver(screen, file, capture);
    ASSERT_EQ(robot.finish(), "");
    EXPECT_EQ(robot.suggestion, L"Screen capture");
    EXPECT_TRUE(pngFilePixels(env.folder() + L"\\a.pn.png").pixels == captured.pixels);

    const size_t pngsBefore = temporaryPngs().size();
    SaveDialogRobot cancel(L"");
    deliver(screen, file, capture);
    ASSERT_EQ(cancel.finish(), "");
    EXPECT_EQ(temporaryPngs().size(), pngsBefore) << "cancel writes nothing";
}

TEST_F(Delivery, FailedCopyOffersRetryAndKeepsTheTemporaryPng)
{
    const ZString destination = env.folder() + L"\\locked.png";
    // Held open without sharing, the destination cannot be written.
    KernelHandle locked(CreateFileW(destination.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr));
    ASSERT_TRUE(locked);

    std::vector<MessageBoxInfo> boxes;
    SaveDialogRobot dialog(destination.c_str(), true);
    UiRobot errors([&](UiRobot& r) {
        HWND box = r.waitForWindow(L"#32770", L"File copy error", 20000);
        boxes.push_back(readMessageBox(box));
        pressButton(box, IDRETRY);
        r.waitForWindowGone(box);
        box = r.waitForWindow(L"#32770", L"File copy error", 20000);
        boxes.push_back(readMessageBox(box));
        pressButton(box, IDCANCEL);
    });
    deliver(screen, file, capture);
    ASSERT_EQ(dialog.finish(), "");
    ASSERT_EQ(errors.finish(), "");

    ASSERT_EQ(boxes.size(), 2u);
    const std::vector<ZString> pngs = temporaryPngs();
    ASSERT_EQ(pngs.size(), 1u) << "the temporary PNG stays after Cancel";
    const std::wstring text = boxes[0].text;
    EXPECT_EQ(text.rfind(L"Could not write to file.\n\nErrorCode=", 0), 0u) << ZString(text.c_str()).toUtf8();
    EXPECT_NE(text.find((L"\n\nSource=" + pngs.front() + L"\nDestination=" + destination).c_str()), std::wstring::npos)
        << ZString(text.c_str()).toUtf8();
    EXPECT_EQ(boxes[0].icon, static_cast<UINT>(MB_ICONERROR));
    EXPECT_EQ(boxes[0].buttons, (std::vector<int>{IDCANCEL, IDRETRY}));
}

// Where the PDFs of these tests are kept for the checks that only Linux tools can make
// (qpdf, pdfimages, pdftoppm); run by ctest after this program.
ZString artifactFolder()
{
    static const ZString folder = [] {
        const ZString path = joinPath(moduleFolder(GetModuleHandleW(nullptr)), L"..\\test-artifacts\\pdf");
        std::error_code ignored;
        std::filesystem::remove_all(path.c_str(), ignored);
        createFolderTree(path);
        return path;
    }();
    return folder;
}

// Keeps `pdf` as NAME.pdf with the captured pixels (NAME.ppm) and what its one image must
// be (NAME.expect: width, height and the encoding pdfimages reports).
void keepForChecks(const ZString& pdf, const char* name, const PixelGrid& pixels)
{
    const ZString base = joinPath(artifactFolder(), ZString::fromUtf8(name));
    ASSERT_TRUE(CopyFileW(pdf.c_str(), (base + L".pdf").c_str(), FALSE));
    std::ofstream ppm(std::filesystem::path((base + L".ppm").c_str()), std::ios::binary);
    ppm << "P6\n" << pixels.width << " " << pixels.height << "\n255\n";
    for (uint32_t p : pixels.pixels)
        ppm << static_cast<char>(p >> 16) << static_cast<char>(p >> 8) << static_cast<char>(p);
    std::ofstream(std::filesystem::path((base + L".expect").c_str()))
        << pixels.width << " " << pixels.height << " jpeg\n";
}

TEST_F(Delivery, PdfGoesToTheSuiteWindowElseToTheAssistant)
{
    FakeAssistantWindow assistant(L"Pryxa_Assistent");
    deliver(screen, noTarget, capture);
    const std::vector<ZString> pdfs = temporaryPdfs();
    ASSERT_EQ(pdfs.size(), 1u);
    const ZString pdf = pdfs.front();
    const std::wstring sent = L"-deleteFile -name \"Screen capture\" " + std::wstring(quoteArgument(pdf).c_str());
    EXPECT_EQ(handedOff, std::vector<std::wstring>{L"Pryxa_Assistent " + std::to_wstring(kCommandLineCopyData) + L" " + sent});
    keepForChecks(pdf, "screen", captured);

    FakeAssistantWindow suite(L"Pryxa_Creator");
    deliver(screen, pdfPrinter, capture);
    ASSERT_EQ(handedOff.size(), 2u);
    EXPECT_EQ(handedOff[1].rfind(L"Pryxa_Creator ", 0), 0u) << "the suite comes first";
}

bool failingConversion(const imageToPdf::ConversionOptions&, Gdiplus::Image&, zpdf::Document&)
{
    throw zpdf::PdfException("Only GRAY or RGB supported");
}

// A conversion that fails, or a configured resolution that gives no page (0, or a DWORD that
// reads as negative): the user is told, and no PDF is written or handed on.
TEST_F(Delivery, FailedPdfConversionTellsTheUserAndHandsNothingOn)
{
    FakeAssistantWindow assistant(L"Pryxa_Assistent");
    const RegistryKey program = env.programValues();
    const PdfConversion gdiplusConversion = pdfConversion;
    const struct {
        PdfConversion conversion;
        DWORD dpi;
    } cases[] = {{failingConversion, 144}, {gdiplusConversion, 0}, {gdiplusConversion, 0xFFFFFFFF},
                 {gdiplusConversion, 0x80000000}};
    for (const auto& c : cases) {
        ASSERT_TRUE(program.writeDword(L"Img2PdfDpi", c.dpi));
        MessageBoxInfo box;
        UiRobot robot([&](UiRobot& r) {
            HWND found = r.waitForWindow(L"#32770", L"Error");
            box = readMessageBox(found);
            pressButton(found, IDOK);
        });
        pdfConversion = c.conversion;
        deliver(screen, pdfPrinter, capture);
        pdfConversion = gdiplusConversion;
        ASSERT_EQ(robot.finish(), "") << "dpi " << c.dpi;
        EXPECT_EQ(box.text, L"Could not create PDF file") << "dpi " << c.dpi;
        EXPECT_EQ(box.icon, static_cast<UINT>(MB_ICONWARNING));
        EXPECT_TRUE(temporaryPdfs().empty()) << "dpi " << c.dpi;
        EXPECT_TRUE(handedOff.empty()) << "dpi " << c.dpi;
    }
}

TEST_F(Delivery, RunningDocumentToolGetsThePdfInItsDropFolderOnly)
{
    FakeAssistantWindow assistant(L"Pryxa_Assistent");
    MutexHolder documentTool(L"Pryxa-DocTool-Sink");
    ASSERT_TRUE(documentTool.holding());
    deliver(screen, pdfPrinter, capture);

    EXPECT_TRUE(temporaryPdfs().empty()) << "the source is deleted after the copy";
    const std::vector<ZString> dropped = filesIn(joinPath(moduleTempFolder(), L"Pryxa\\DocToolSink"), L"screenCapture-");
    ASSERT_EQ(dropped.size(), 1u);
    EXPECT_TRUE(handedOff.empty()) << "nothing is sent";
    keepForChecks(dropped.front(), "dropped", captured);
}

TEST_F(Delivery, WithoutAnyWindowTheAssistantIsStartedFromBinDir)
{
    const ZString binDir = env.folder() + L"\\Pryxa Bin";
    createFolderTree(binDir);
    ASSERT_TRUE(CommandRecorder::installAs(binDir + L"\\pryxa-Assistant.exe"));
    env.programValues().writeString(L"BinDir", binDir);
    CommandRecorder recorder(env.folder());
    deliver(screen, pdfPrinter, capture);

    ASSERT_TRUE(recorder.waitForLines(1));
    const std::vector<ZString> pdfs = temporaryPdfs();
    ASSERT_EQ(pdfs.size(), 1u);
    const std::string line = recorder.lines().front();
    EXPECT_NE(line.find("Pryxa Bin\\pryxa-Assistant.exe"), std::string::npos) << line;
    EXPECT_NE(line.find("-deleteFile -name \"Screen capture\" " + quoteArgument(pdfs.front()).toUtf8()), std::string::npos) << line;
}

TEST(PdfOptions, ConfiguredValuesAreReadButTheQualityIsAlwaysFull)
{
    ScratchEnvironment env;
    const auto read = [] {
        const imageToPdf::ConversionOptions o = pdfOptionsFromConfiguration();
        return std::tuple(o.dpi, o.jpegQuality, o.passThroughJpg, o.optForA4);
    };
    EXPECT_EQ(read(), std::tuple(144, 100, true, true));
    const RegistryKey program = env.programValues();
    for (const auto& [name, value] : {std::pair(L"Img2PdfDpi", 300), {L"Img2PdfJpegQuality", 40},
                                      {L"Img2PdfPassThroughJpg", 0}, {L"Img2PdfOptForA4", 0}})
        ASSERT_TRUE(program.writeDword(name, value));
    EXPECT_EQ(read(), std::tuple(300, 100, false, false)) << "a capture is always encoded at full quality";
}

} // namespace
} // namespace screenCapture

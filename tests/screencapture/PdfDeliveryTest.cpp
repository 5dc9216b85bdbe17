#include "base/win/TempFolder.h"
#include "base/win/RegistryKey.h"
#include "base/win/ThisModule.h"
#include "screencapture/AssistantHandOff.h"
#include "screencapture/Delivery.h"
#include "screencapture/PdfDelivery.h"
#include "screencapture/ScreenCapture.h"
#include "tests/screencapture/CaptureTestKit.h"
#include "tests/support/HelperProcess.h"
#include "tests/support/UiRobot.h"
#include "zpdf/PdfException.h"

#include <shlwapi.h>

#include <filesystem>
#include <fstream>

namespace screenCapture {
namespace {

// A window of one of the classes the hand-off looks for, recording what it is sent.
class FakeAssistantWindow {
public:
    explicit FakeAssistantWindow(const wchar_t* className)
    {
        WNDCLASSW windowClass = {};
        windowClass.lpfnWndProc = proc;
        windowClass.hInstance = GetModuleHandleW(nullptr);
        windowClass.lpszClassName = className;
        RegisterClassW(&windowClass);
        window_ = CreateWindowExW(0, className, L"", WS_POPUP, 0, 0, 0, 0, nullptr, nullptr, nullptr, this);
    }
    ~FakeAssistantWindow() { DestroyWindow(window_); }

    std::vector<std::wstring> received;
    std::vector<ULONG_PTR> codes;

private:
    static LRESULT CALLBACK proc(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
    {
        if (message == WM_NCCREATE)
            SetWindowLongPtrW(window, GWLP_USERDATA,
                              reinterpret_cast<LONG_PTR>(reinterpret_cast<CREATESTRUCTW*>(lParam)->lpCreateParams));
        auto* self = reinterpret_cast<FakeAssistantWindow*>(GetWindowLongPtrW(window, GWLP_USERDATA));
        if (message == WM_COPYDATA && self) {
            const auto* data = reinterpret_cast<const COPYDATASTRUCT*>(lParam);
            self->codes.push_back(data->dwData);
            self->received.emplace_back(static_cast<const wchar_t*>(data->lpData), data->cbData / sizeof(wchar_t) - 1);
            return TRUE;
        }
        return DefWindowProcW(window, message, wParam, lParam);
    }
    HWND window_ = nullptr;
};

std::vector<ZString> temporaryPdfs() { return filesIn(moduleTempFolder(), L"screenCapture-"); }

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
void keepForChecks(const ZString& pdf, const char* name, Gdiplus::Bitmap& captured)
{
    const ZString base = joinPath(artifactFolder(), ZString::fromUtf8(name));
    ASSERT_TRUE(CopyFileW(pdf.c_str(), (base + L".pdf").c_str(), FALSE));
    const PixelGrid pixels = imagePixels(captured);
    std::ofstream ppm(std::filesystem::path((base + L".ppm").c_str()), std::ios::binary);
    ppm << "P6\n" << pixels.width << " " << pixels.height << "\n255\n";
    for (uint32_t p : pixels.pixels)
        ppm << static_cast<char>(p >> 16) << static_cast<char>(p >> 8) << static_cast<char>(p);
    std::ofstream(std::filesystem::path((base + L".expect").c_str()))
        << pixels.width << " " << pixels.height << " jpeg\n";
}

class PdfDelivery : public CaptureTest {
protected:
    // A screen grab with a known pattern on it.
    void SetUp() override
    {
        // Smooth, so that JPEG at whatever quality the encoder takes stays close.
        window = showPattern({100, 80, 740, 560}, [](int x, int y) { return rgb(x * 255 / 640, y * 255 / 480, 128); });
        capture.grab(screen);
        ASSERT_NE(capture.image(), nullptr);
    }

    std::unique_ptr<TestWindow> window;
    ScreenCapture capture{nullptr};
};

TEST_F(PdfDelivery, ScreenWithoutTargetBecomesAPdfHandedToTheAssistant)
{
    FakeAssistantWindow assistant(L"Pryxa_Assistent");
    deliver(screen, noTarget, capture);

    const std::vector<ZString> pdfs = temporaryPdfs();
    ASSERT_EQ(pdfs.size(), 1u);
    const ZString pdf = pdfs.front();
    EXPECT_TRUE(ZString(PathFindFileNameW(pdf.c_str())).startsWith(L"screenCapture-_")) << pdf.toUtf8();
    EXPECT_TRUE(pdf.endsWith(L".pdf"));
    ASSERT_EQ(assistant.received.size(), 1u);
    EXPECT_EQ(assistant.codes.front(), kCommandLineCopyData);
    EXPECT_EQ(ZString(assistant.received.front().c_str()), L"-deleteFile -name \"Screen capture\" " + quoteArgument(pdf));
    keepForChecks(pdf, "screen", *capture.image());
}

TEST_F(PdfDelivery, TheSuiteWindowComesBeforeTheAssistant)
{
    FakeAssistantWindow assistant(L"Pryxa_Assistent");
    FakeAssistantWindow suite(L"Pryxa_Creator");
    deliver(screen, pdfPrinter, capture);
    EXPECT_EQ(suite.received.size(), 1u);
    EXPECT_TRUE(assistant.received.empty());
}

bool failingConversion(const imageToPdf::ConversionOptions&, Gdiplus::Image&, zpdf::Document&)
{
    throw zpdf::PdfException("Only GRAY or RGB supported");
}

TEST_F(PdfDelivery, FailedConversionTellsTheUserAndWritesNoFile)
{
    FakeAssistantWindow assistant(L"Pryxa_Assistent");
    const PdfConversion previous = pdfConversion;
    pdfConversion = failingConversion;
    MessageBoxInfo box;
    UiRobot robot([&](UiRobot& r) {
        HWND found = r.waitForWindow(L"#32770", L"Error");
        box = readMessageBox(found);
        pressButton(found, IDOK);
    });
    deliver(screen, pdfPrinter, capture);
    pdfConversion = previous;
    ASSERT_EQ(robot.finish(), "");
    EXPECT_EQ(box.text, L"Could not create PDF file");
    EXPECT_EQ(box.icon, static_cast<UINT>(MB_ICONWARNING));
    EXPECT_TRUE(temporaryPdfs().empty());
    EXPECT_TRUE(assistant.received.empty());
}

TEST_F(PdfDelivery, RunningDocumentToolGetsThePdfInItsDropFolderOnly)
{
    FakeAssistantWindow assistant(L"Pryxa_Assistent");
    CommandRecorder recorder(env.folder());
    MutexHolder documentTool(L"Pryxa-DocTool-Sink");
    ASSERT_TRUE(documentTool.holding());
    deliver(screen, pdfPrinter, capture);

    EXPECT_TRUE(temporaryPdfs().empty()) << "the source is deleted after the copy";
    const std::vector<ZString> dropped = filesIn(joinPath(moduleTempFolder(), L"Pryxa\\DocToolSink"), L"screenCapture-");
    ASSERT_EQ(dropped.size(), 1u);
    EXPECT_TRUE(assistant.received.empty()) << "nothing is sent";
    pumpMessages(300);
    EXPECT_TRUE(recorder.lines().empty()) << "nothing is started";
    keepForChecks(dropped.front(), "dropped", *capture.image());
}

TEST_F(PdfDelivery, WithoutAnyWindowTheAssistantIsStartedFromBinDir)
{
    const ZString binDir = env.folder() + L"\\Pryxa Bin";
    createFolderTree(binDir);
    ASSERT_TRUE(CommandRecorder::installAs(binDir + L"\\pryxa-Assistant.exe"));
    RegistryKey::openForWriting(HKEY_CURRENT_USER, env.registryKey() + L"\\Program").writeString(L"BinDir", binDir);
    CommandRecorder recorder(env.folder());
    deliver(screen, pdfPrinter, capture);

    ASSERT_TRUE(recorder.waitForLines(1));
    const std::vector<ZString> pdfs = temporaryPdfs();
    ASSERT_EQ(pdfs.size(), 1u);
    const std::string line = recorder.lines().front();
    const std::string arguments = "-deleteFile -name \"Screen capture\" " + quoteArgument(pdfs.front()).toUtf8();
    ASSERT_GE(line.size(), arguments.size());
    EXPECT_EQ(line.substr(line.size() - arguments.size()), arguments) << line;
    EXPECT_NE(line.find("Pryxa Bin\\pryxa-Assistant.exe"), std::string::npos) << line;
}

TEST(PdfOptions, ConfiguredValuesAreReadButTheQualityIsAlwaysFull)
{
    ScratchEnvironment env;
    const RegistryKey program = RegistryKey::openForWriting(HKEY_CURRENT_USER, env.registryKey() + L"\\Program");
    imageToPdf::ConversionOptions options = pdfOptionsFromConfiguration();
    EXPECT_EQ(options.dpi, 144);
    EXPECT_EQ(options.jpegQuality, 100);
    EXPECT_TRUE(options.passThroughJpg);
    EXPECT_TRUE(options.optForA4);

    program.writeDword(L"Img2PdfDpi", 300);
    program.writeDword(L"Img2PdfJpegQuality", 40);
    program.writeDword(L"Img2PdfPassThroughJpg", 0);
    program.writeDword(L"Img2PdfOptForA4", 0);
    options = pdfOptionsFromConfiguration();
    EXPECT_EQ(options.dpi, 300);
    EXPECT_EQ(options.jpegQuality, 100) << "a capture is always encoded at full quality";
    EXPECT_FALSE(options.passThroughJpg);
    EXPECT_FALSE(options.optForA4);
}

} // namespace
} // namespace screenCapture

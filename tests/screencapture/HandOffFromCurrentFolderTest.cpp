// Without any temporary folder the module works in the current folder; the PDF it hands on
// must still be found by the suite's assistant, which runs in a folder of its own.

#include "base/win/KernelHandle.h"
#include "base/win/TempFolder.h"
#include "base/win/ThisModule.h"
#include "screencapture/Delivery.h"
#include "screencapture/ScreenCapture.h"
#include "tests/screencapture/CaptureTestKit.h"
#include "tests/support/HelperProcess.h"
#include "tests/support/UiRobot.h"

#include <filesystem>
#include <fstream>
#include <iterator>

namespace screenCapture {
namespace {

std::string contentOf(const ZString& path)
{
    std::ifstream in(std::filesystem::path(path.c_str()), std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

// The file that the assistant's log says it saved last, empty if none.
ZString lastSaved(const std::string& log)
{
    const size_t line = log.rfind(" saved ");
    const size_t as = line == std::string::npos ? line : log.find(" as ", line);
    const size_t end = as == std::string::npos ? as : log.find("\r\n", as);
    return as == std::string::npos ? ZString() : ZString::fromUtf8(log.substr(as + 4, end - as - 4));
}

using HandOffFromCurrentFolder = CaptureTest;

TEST_F(HandOffFromCurrentFolder, AssistantRunningElsewhereTakesThePdf)
{
    const ZString missing = env.folder() + L"\\missing";
    const ZString host = env.folder() + L"\\host";
    const ZString elsewhere = env.folder() + L"\\elsewhere";
    ASSERT_TRUE(createFolderTree(host) && createFolderTree(elsewhere));
    env.setTempVariables(missing, missing, missing);

    // Started as a user or the suite would start it, from its own folder, waiting for files.
    ASSERT_TRUE(env.useCurrentFolder(elsewhere));
    const KernelHandle assistant =
        startProgram(L"\"" + moduleFolder(GetModuleHandleW(nullptr)) + L"\\pryxa-Assistant.exe\"");
    ASSERT_TRUE(assistant);
    HWND window = nullptr;
    ASSERT_TRUE(pumpUntil([&] { return (window = FindWindowW(L"Pryxa_Assistent", nullptr)) != nullptr; }, 10000));

    ASSERT_TRUE(env.useCurrentFolder(host));
    ScreenCapture capture(nullptr);
    capture.grab(screen);
    ASSERT_NE(capture.image(), nullptr);
    deliver(screen, pdfPrinter, capture);
    // The assistant saves the file and then deletes it, possibly after it has answered.
    const bool taken = pumpUntil([&] { return filesIn(host + L"\\Pryxa", L"screenCapture-").empty(); }, 10000);

    PostMessageW(window, WM_CLOSE, 0, 0);
    EXPECT_EQ(WaitForSingleObject(assistant.get(), 10000), WAIT_OBJECT_0);
    const std::string log = contentOf(elsewhere + L"\\Pryxa\\pryxa-Assistant.log");
    EXPECT_TRUE(taken) << "the temporary PDF is still there\n" << log;
    const ZString saved = lastSaved(log);
    ASSERT_FALSE(saved.isEmpty()) << log;
    EXPECT_EQ(contentOf(saved).substr(0, 5), "%PDF-") << saved.toUtf8();
    DeleteFileW(saved.c_str()); // in the assistant's output folder, outside the scratch places
}

} // namespace
} // namespace screenCapture

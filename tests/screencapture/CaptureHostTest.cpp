// pryxa-capture, the command-line host, run as a user would run it.

#include "base/win/ThisModule.h"
#include "tests/screencapture/CaptureTestKit.h"
#include "tests/support/HelperProcess.h"

namespace {

ZString host(const wchar_t* arguments)
{
    return L"\"" + moduleFolder(GetModuleHandleW(nullptr)) + L"\\pryxa-capture.exe\" " + arguments;
}

TEST(CaptureHost, ValidNamesCaptureAndBadNamesFailWithTheList)
{
    ASSERT_TRUE(putTextOnClipboard(L"before"));
    std::string output;
    EXPECT_EQ(runProgram(host(L"screen clipboard"), output), 0) << output;
    EXPECT_EQ(clipboardFormats().front(), static_cast<UINT>(CF_BITMAP)) << "the screen is on the clipboard";

    EXPECT_EQ(runProgram(host(L"Screen clipboard"), output), 2);
    EXPECT_NE(output.find("unknown mode \"Screen\""), std::string::npos) << output;
    EXPECT_NE(output.find("screen, screenClient, activeWindow, activeWindowClient, userDefinedArea, clipboard"),
              std::string::npos)
        << output;

    EXPECT_EQ(runProgram(host(L"screen printer"), output), 2);
    EXPECT_NE(output.find("unknown target \"printer\""), std::string::npos) << output;
    EXPECT_NE(output.find("clipboard, pdfPrinter, imageEditor, file"), std::string::npos) << output;
}

} // namespace

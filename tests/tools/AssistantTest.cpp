#include "base/win/KernelHandle.h"
#include "base/win/TempFolder.h"
#include "base/win/ThisModule.h"
#include "tests/support/HelperProcess.h"
#include "tests/support/ScratchEnvironment.h"
#include "tests/support/UiRobot.h"
#include "tools/assistant/Inbox.h"

#include <gtest/gtest.h>

#include <shlwapi.h>

#include <filesystem>
#include <fstream>
#include <iterator>

namespace {

bool exists(const ZString& path) { return PathFileExistsW(path.c_str()) != FALSE; }

std::string contentOf(const ZString& path)
{
    std::ifstream in(std::filesystem::path(path.c_str()), std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

class Assistant : public testing::Test {
protected:
    // A "PDF" with recognisable content.
    ZString source(const wchar_t* name, const char* content) { return env.writeFile(ZString(L"in\\") + name, content); }

    ScratchEnvironment env;
    const ZString out = env.folder() + L"\\out";
    const ZString logPath = env.folder() + L"\\assistant.log";
};

TEST_F(Assistant, SavesUnderTheGivenNameWithoutOverwritingAndDeletesOnlyWhenAsked)
{
    Inbox inbox(out, logPath);
    const ZString first = source(L"a.pdf", "first");
    const ZString second = source(L"b.pdf", "second");
    EXPECT_EQ(inbox.receive({L"-dir", out, L"-name", L"My shot", first}), std::vector<ZString>{out + L"\\My shot.pdf"});
    EXPECT_TRUE(exists(first)) << "kept: the line did not ask to delete it";
    EXPECT_EQ(inbox.receive({L"-deleteFile", L"-dir", out, L"-name", L"My shot", second}),
              std::vector<ZString>{out + L"\\My shot (2).pdf"});
    EXPECT_FALSE(exists(second));
    EXPECT_EQ(contentOf(out + L"\\My shot.pdf") + contentOf(out + L"\\My shot (2).pdf"), "firstsecond");

    // Without -dir the default folder is used; without -name the file keeps its own.
    Inbox elsewhere(env.folder() + L"\\default", logPath);
    EXPECT_EQ(elsewhere.receive({source(L"c.pdf", "third")}), std::vector<ZString>{env.folder() + L"\\default\\c.pdf"});
}

TEST_F(Assistant, BadLinesAreLoggedAndChangeNothing)
{
    Inbox inbox(out, logPath);
    const ZString file = source(L"a.pdf", "data");
    EXPECT_TRUE(inbox.receive({L"-deleteFile", L"-bogus", L"x", file}).empty());
    EXPECT_TRUE(inbox.receive({L"-deleteFile", L"-dir", out, file + L".missing", file}).empty());
    EXPECT_TRUE(inbox.receive({L"-name"}).empty());
    EXPECT_TRUE(exists(file));
    EXPECT_FALSE(exists(out));
    const std::string log = contentOf(logPath);
    EXPECT_NE(log.find("refused: unknown option -bogus"), std::string::npos) << log;
    EXPECT_NE(log.find("refused: no such file"), std::string::npos) << log;
    EXPECT_NE(log.find("refused: no value after -name"), std::string::npos) << log;
}

KernelHandle startAssistant(const ZString& arguments)
{
    return startProgram(L"\"" + moduleFolder(GetModuleHandleW(nullptr)) + L"\\pryxa-Assistant.exe\" " + arguments);
}

TEST_F(Assistant, OneInstanceTakesFilesFromItsCommandLineAndFromLaterStarts)
{
    const ZString arguments = L"-deleteFile -dir \"" + out + L"\" -name \"Screen capture\" ";
    KernelHandle first = startAssistant(arguments + source(L"one.pdf", "1"));
    ASSERT_TRUE(first);
    ASSERT_TRUE(pumpUntil([&] { return exists(out + L"\\Screen capture.pdf"); }, 10000));
    HWND window = FindWindowW(L"Pryxa_Assistent", nullptr);
    ASSERT_NE(window, nullptr) << "the first instance stays for more";

    KernelHandle second = startAssistant(arguments + source(L"two.pdf", "2"));
    ASSERT_TRUE(second);
    EXPECT_EQ(WaitForSingleObject(second.get(), 10000), WAIT_OBJECT_0) << "the second start hands over and ends";
    EXPECT_TRUE(exists(out + L"\\Screen capture (2).pdf"));
    EXPECT_FALSE(exists(env.folder() + L"\\in\\two.pdf"));

    PostMessageW(window, WM_CLOSE, 0, 0);
    EXPECT_EQ(WaitForSingleObject(first.get(), 10000), WAIT_OBJECT_0);
    EXPECT_TRUE(exists(joinPath(moduleTempFolder(), L"pryxa-Assistant.log"))) << "it keeps a log";
}

} // namespace

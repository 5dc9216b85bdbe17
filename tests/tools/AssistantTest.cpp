#include "base/win/KernelHandle.h"
#include "base/win/SystemText.h"
#include "base/win/TempFolder.h"
#include "base/win/ThisModule.h"
#include "tests/support/HelperProcess.h"
#include "tests/support/ScratchEnvironment.h"
#include "tests/support/UiRobot.h"
#include "tools/assistant/FreeNames.h"
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

    Inbox inboxFor(const ZString& defaultFolder)
    {
        return Inbox(defaultFolder, logPath, [this](const ZString& heading, const ZString& message) {
            notes.push_back(heading + L": " + message);
        });
    }

    // The note for a file that could not be saved, with the system's text for `error`.
    static ZString failureNote(DWORD error, const ZString& source)
    {
        return L"Error: The PDF file could not be saved:\n" + ZString(SystemText(error).get()).trim()
            + L"\nIt has been kept here:\n" + source;
    }

    ScratchEnvironment env;
    const ZString out = env.folder() + L"\\out";
    const ZString logPath = env.folder() + L"\\assistant.log";
    std::vector<ZString> notes;
    Inbox inbox = inboxFor(out);
};

TEST_F(Assistant, SavesUnderTheGivenNameWithoutOverwritingAndDeletesOnlyWhenAsked)
{
    const ZString first = source(L"a.pdf", "first");
    const ZString second = source(L"b.pdf", "second");
    EXPECT_EQ(inbox.receive({L"-dir", out, L"-name", L"My shot", first}), std::vector<ZString>{out + L"\\My shot.pdf"});
    EXPECT_TRUE(exists(first)) << "kept: the line did not ask to delete it";
    // A file that appeared meanwhile is passed over, not overwritten.
    env.writeFile(L"out\\My shot (2).pdf", "someone else's");
    EXPECT_EQ(inbox.receive({L"-deleteFile", L"-dir", out, L"-name", L"My shot", second}),
              std::vector<ZString>{out + L"\\My shot (3).pdf"});
    EXPECT_FALSE(exists(second));
    EXPECT_EQ(contentOf(out + L"\\My shot.pdf") + contentOf(out + L"\\My shot (2).pdf")
                  + contentOf(out + L"\\My shot (3).pdf"),
              "firstsomeone else'ssecond");
    EXPECT_EQ(notes.back(), L"Note: The PDF file has been saved here:\n" + out + L"\\My shot (3).pdf");

    // Without -dir the default folder is used; without -name the file keeps its own.
    Inbox elsewhere = inboxFor(env.folder() + L"\\default");
    EXPECT_EQ(elsewhere.receive({source(L"c.pdf", "third")}), std::vector<ZString>{env.folder() + L"\\default\\c.pdf"});
}

TEST_F(Assistant, BadLinesAreLoggedAndChangeNothing)
{
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

TEST_F(Assistant, EveryTitleLandsInTheOutputFolderAndNowhereElse)
{
    const struct {
        const wchar_t* title;
        const wchar_t* saved;
    } titles[] = {{L"*Unsaved - Editor", L"_Unsaved - Editor.pdf"},
                  {L"Report 12/05/2024", L"Report 12_05_2024.pdf"},
                  {L"..\\..\\x", L".._.._x.pdf"},
                  {L"C:\\x", L"C__x.pdf"},
                  {L"\\\\server\\share\\x", L"__server_share_x.pdf"},
                  {L"x/../../y", L"x_.._.._y.pdf"},
                  {L"con", L"_con.pdf"},
                  {L"...", L"Untitled.pdf"}};
    for (const auto& t : titles) {
        EXPECT_EQ(inbox.receive({L"-deleteFile", L"-dir", out, L"-name", t.title, source(L"capture.pdf", "x")}),
                  std::vector<ZString>{out + L"\\" + t.saved})
            << ZString(t.title).toUtf8();
    }
    EXPECT_FALSE(exists(L"C:\\x.pdf"));
    for (const auto& entry : std::filesystem::recursive_directory_iterator(std::filesystem::path(env.folder().c_str()))) {
        const ZString path(entry.path().wstring().c_str());
        EXPECT_TRUE(path.startsWith(out) || path.startsWith(env.folder() + L"\\in") || path.startsWith(env.tempFolder())
                    || path == logPath)
            << path.toUtf8();
    }
}

TEST_F(Assistant, LongNamesAreCutSoThatEveryPathStaysWithinMaxPath)
{
    const ZString deep = out + L"\\" + ZString(150 - out.length(), L'd');
    const ZString title = ZString(150, L'T') + L"\xD83D\xDE00" + ZString(150, L'u');
    for (int i = 0; i < 2; ++i) {
        const std::vector<ZString> saved = inbox.receive({L"-dir", deep, L"-name", title, source(L"a.pdf", "long")});
        ASSERT_EQ(saved.size(), 1u);
        EXPECT_LE(saved[0].length(), MAX_PATH - 1) << saved[0].toUtf8();
        EXPECT_TRUE(exists(saved[0])) << saved[0].toUtf8();
    }
}

TEST_F(Assistant, WhatCannotBeSavedIsToldAndKept)
{
    // A folder that leaves no room for a name: kept even though the line asks to delete it.
    const ZString tooDeep = out + L"\\" + ZString(250, L'd');
    const ZString first = source(L"a.pdf", "1");
    EXPECT_TRUE(inbox.receive({L"-deleteFile", L"-dir", tooDeep, first}).empty());
    EXPECT_TRUE(exists(first));
    EXPECT_EQ(notes.back(), failureNote(ERROR_FILENAME_EXCED_RANGE, first));

    // An output folder that cannot be made: a file stands where a folder should be.
    const ZString blocked = env.writeFile(L"blocker", "not a folder") + L"\\out";
    EXPECT_TRUE(inbox.receive({L"-deleteFile", L"-dir", blocked, first}).empty());
    EXPECT_TRUE(exists(first));
    EXPECT_EQ(notes.back(), failureNote(ERROR_PATH_NOT_FOUND, first));

    // Of two files the one that is locked stays; the other is saved and deleted.
    const ZString second = source(L"b.pdf", "2");
    const KernelHandle locked(CreateFileW(second.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr));
    ASSERT_TRUE(locked);
    EXPECT_EQ(inbox.receive({L"-deleteFiles", L"-dir", out, second, first}), std::vector<ZString>{out + L"\\a.pdf"});
    EXPECT_FALSE(exists(first));
    EXPECT_TRUE(exists(second));
    ASSERT_EQ(notes.size(), 4u);
    EXPECT_EQ(notes[2], failureNote(ERROR_SHARING_VIOLATION, second));
    EXPECT_NE(contentOf(logPath).find("failed: cannot save " + second.toUtf8()), std::string::npos);
}

TEST_F(Assistant, FreeNamesGoOnWhereTheLastSearchStopped)
{
    createFolderTree(out);
    env.writeFile(L"out\\Shot.pdf", "");
    env.writeFile(L"out\\Shot (2).pdf", "");
    FreeNames names;
    EXPECT_EQ(names.next(out, L"Shot"), out + L"\\Shot (3).pdf");
    EXPECT_EQ(names.next(out, L"shot"), out + L"\\shot (4).pdf") << "names are compared without case";
    env.writeFile(L"out\\Shot (5).pdf", "");
    EXPECT_EQ(names.next(out, L"Shot"), out + L"\\Shot (6).pdf");
    EXPECT_EQ(names.next(out, L"Other"), out + L"\\Other.pdf");

    // Past the highest number there is no name.
    FreeNames few(3);
    EXPECT_EQ(few.next(out, L"Shot"), out + L"\\Shot (3).pdf");
    EXPECT_EQ(few.next(out, L"Shot"), ZString());
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
    EXPECT_TRUE(pumpUntil([&] { return exists(out + L"\\Screen capture (2).pdf"); }, 10000));
    EXPECT_TRUE(pumpUntil([&] { return !exists(env.folder() + L"\\in\\two.pdf"); }, 10000));

    PostMessageW(window, WM_CLOSE, 0, 0);
    EXPECT_EQ(WaitForSingleObject(first.get(), 10000), WAIT_OBJECT_0);
    EXPECT_TRUE(exists(joinPath(moduleTempFolder(), L"pryxa-Assistant.log"))) << "it keeps a log";
}

} // namespace

// The module's temporary folder, its fallbacks, the write test and unique names, with
// TMP, TEMP and TMPDIR pointed at scratch places.

#include "base/win/TempFolder.h"
#include "tests/support/ScratchEnvironment.h"
#include "tests/support/UiRobot.h"

#include <gtest/gtest.h>

#include <windows.h>
#include <shlwapi.h>

#include <functional>
#include <regex>
#include <string>
#include <vector>

namespace {

// Sets TMP, TEMP and TMPDIR (empty: removed) and puts the old values back.
class TempVariables {
public:
    TempVariables(const ZString& tmp, const ZString& temp, const ZString& tmpdir)
    {
        const ZString values[] = {tmp, temp, tmpdir};
        for (int i = 0; i < 3; ++i) {
            std::vector<wchar_t> buffer(32768);
            had_[i] = GetEnvironmentVariableW(kNames[i], buffer.data(), 32768) > 0;
            saved_[i] = buffer.data();
            SetEnvironmentVariableW(kNames[i], values[i].isEmpty() ? nullptr : values[i].c_str());
        }
    }
    ~TempVariables()
    {
        for (int i = 0; i < 3; ++i)
            SetEnvironmentVariableW(kNames[i], had_[i] ? saved_[i].c_str() : nullptr);
    }

private:
    static constexpr const wchar_t* kNames[3] = {L"TMP", L"TEMP", L"TMPDIR"};
    std::wstring saved_[3];
    bool had_[3] = {};
};

// Changes the current folder and changes it back.
class CurrentFolder {
public:
    explicit CurrentFolder(const ZString& folder)
    {
        GetCurrentDirectoryW(MAX_PATH, saved_);
        changed = SetCurrentDirectoryW(folder.c_str()) != FALSE;
    }
    ~CurrentFolder() { SetCurrentDirectoryW(saved_); }
    bool changed = false;

private:
    wchar_t saved_[MAX_PATH] = {};
};

// A folder that exists but where nobody can create anything, not even root: under Wine
// the drive Z: is the Unix root, and the kernel refuses new entries in /proc.
const ZString kUnwritableFolder = L"Z:\\proc";

bool isFolder(const ZString& path)
{
    return PathIsDirectoryW(path.c_str()) != FALSE;
}

bool isEmptyFolder(const ZString& path)
{
    return PathIsDirectoryEmptyW(path.c_str()) != FALSE;
}

bool exists(const ZString& path)
{
    return PathFileExistsW(path.c_str()) != FALSE;
}

// Runs `action`, which must show the error box `title` with `text` and an OK button
// (pressed by a robot), then throw TempFolderError(`thrown`).
void expectErrorBoxAndThrow(const std::wstring& title, const std::wstring& text, const std::string& thrown,
                            const std::function<void()>& action)
{
    MessageBoxInfo box;
    UiRobot robot([&](UiRobot& r) {
        HWND window = r.waitForWindow(L"#32770", title);
        box = readMessageBox(window);
        pressButton(window, IDOK);
    });
    std::string message = "nothing thrown";
    try {
        action();
    } catch (const TempFolderError& error) {
        message = error.what();
    }
    ASSERT_EQ(robot.finish(), "");
    EXPECT_EQ(box.title, title);
    EXPECT_EQ(box.text, text);
    EXPECT_EQ(box.icon, static_cast<UINT>(MB_ICONERROR));
    EXPECT_EQ(box.buttons, std::vector<int>{IDOK});
    EXPECT_EQ(message, thrown);
}

const std::wstring kMissingText =
    L"The following temporary files folder does not exist and could not be created by the current user. Please check "
    L"the permissions of the parent folder so that the subfolder can be created.\r\n\r\n";
const std::wstring kNotWriteableText =
    L"The following temporary files folder is not writeable by the current user. Please ensure that the current user "
    L"can create files in that folder by checking permissions. Alternatively, you can try to delete the folder "
    L"manually.\r\n\r\n";

} // namespace

TEST(JoinPath, PutsOneBackslashBetween)
{
    EXPECT_EQ(joinPath(L"C:\\temp\\\\", L"\\\\a.png"), ZString(L"C:\\temp\\a.png"));
    EXPECT_EQ(joinPath(L".", L"Pryxa"), ZString(L".\\Pryxa"));
    EXPECT_EQ(joinPath(L"", L"a.png"), ZString(L"a.png"));
}

TEST(SystemTempFolder, TakesTheFirstCandidateThatExistsElseTheCurrentFolder)
{
    ScratchEnvironment scratch;
    const ZString first = scratch.folder() + L"\\first";
    const ZString second = scratch.folder() + L"\\second";
    const ZString missing = scratch.folder() + L"\\missing";
    ASSERT_TRUE(createFolderTree(first));
    ASSERT_TRUE(createFolderTree(second));
    // GetTempPathW follows TMP (adding a backslash) without checking that it exists, so
    // a missing TMP makes the system's answer useless and the variables are tried one by
    // one; a TMP longer than MAX_PATH makes GetTempPathW fail outright.
    const ZString tooLong = missing + L"\\" + ZString(300, L'x');
    const ZString cases[][4] = {
        {first, second, second, first},
        {missing, first, second, first},
        {missing, missing, second + L"\\sub\\..\\", second},
        {missing, missing, L"\"" + second + L"\"", second},
        {missing, missing, ZString(), L"."},
        {tooLong, missing, ZString(), L"."},
    };
    for (const auto& c : cases) {
        TempVariables variables(c[0], c[1], c[2]);
        EXPECT_EQ(systemTempFolder(), c[3]) << c[0].toUtf8() << " " << c[1].toUtf8() << " " << c[2].toUtf8();
    }
}

TEST(IsWritable, CreatesTheFolderLeavesNoFileAndGivesUpAfterAbout100Ms)
{
    ScratchEnvironment scratch;
    const ZString folder = scratch.folder() + L"\\new\\deeper";
    EXPECT_TRUE(isWritable(folder)) << "missing parents are created too";
    EXPECT_TRUE(isWritable(folder));
    EXPECT_TRUE(isEmptyFolder(folder)) << "the write test leaves nothing behind";

    DWORD start = GetTickCount();
    EXPECT_FALSE(isWritable(scratch.writeFile(L"plain", "x") + L"\\below"));
    EXPECT_LT(GetTickCount() - start, 90u) << "a folder that cannot be created needs no write tries";

    ASSERT_TRUE(isFolder(kUnwritableFolder));
    start = GetTickCount();
    EXPECT_FALSE(isWritable(kUnwritableFolder));
    const DWORD elapsed = GetTickCount() - start;
    EXPECT_GE(elapsed, 90u) << "ten tries 10 ms apart";
    EXPECT_LT(elapsed, 2000u);
}

TEST(ModuleTempFolder, IsPryxaElsePryxa1WhileAFileIsInTheWayNothingCached)
{
    ScratchEnvironment scratch;
    const ZString pryxa = scratch.tempFolder() + L"\\Pryxa";
    EXPECT_EQ(moduleTempFolder(), pryxa);
    EXPECT_TRUE(isEmptyFolder(pryxa)) << "created, and the write test leaves nothing behind";

    ASSERT_TRUE(RemoveDirectoryW(pryxa.c_str()));
    const ZString blocker = scratch.writeFile(L"temp\\Pryxa", "not a folder");
    EXPECT_EQ(moduleTempFolder(), pryxa + L"_1");
    EXPECT_TRUE(isFolder(pryxa + L"_1"));
    EXPECT_EQ(moduleTempFolder(), pryxa + L"_1");
    ASSERT_TRUE(DeleteFileW(blocker.c_str()));
    EXPECT_EQ(moduleTempFolder(), pryxa) << "used again once the way is clear";
}

TEST(ModuleTempFolder, AfterPryxa99ComesTheSystemTempFolder)
{
    // Each blocked name costs a full write test (about 100 ms).
    ScratchEnvironment scratch;
    scratch.writeFile(L"temp\\Pryxa", "x");
    for (int n = 1; n <= 99; ++n)
        scratch.writeFile(ZString::format(L"temp\\Pryxa_%d", n), "x");
    EXPECT_EQ(moduleTempFolder(), scratch.tempFolder());
    EXPECT_FALSE(exists(scratch.tempFolder() + L"\\Pryxa_100"));
}

TEST(ModuleTempFolder, WithoutATempFolderUsesTheCurrentOneElseTellsTheUserAndThrows)
{
    ScratchEnvironment scratch;
    const ZString belowFile = scratch.writeFile(L"plain", "x") + L"\\temp";
    TempVariables variables(belowFile, belowFile, belowFile);
    {
        const ZString current = scratch.folder() + L"\\current";
        ASSERT_TRUE(createFolderTree(current));
        CurrentFolder inCurrent(current);
        ASSERT_TRUE(inCurrent.changed);
        EXPECT_EQ(moduleTempFolder(), ZString(L".\\Pryxa"));
        EXPECT_TRUE(isFolder(current + L"\\Pryxa"));
    }
    CurrentFolder inUnwritable(kUnwritableFolder);
    ASSERT_TRUE(inUnwritable.changed);
    expectErrorBoxAndThrow(L"Temporary files folder not writeable", kNotWriteableText + L".",
                           "Temporary files folder not writeable", [] { moduleTempFolder(); });
}

TEST(ReportUnusableTempFolder, TellsWhetherTheFolderIsMissingOrNotWriteable)
{
    ScratchEnvironment scratch;
    const ZString missing = scratch.writeFile(L"plain", "x") + L"\\temp";
    expectErrorBoxAndThrow(L"Could not create temporary files folder", kMissingText + missing.c_str(),
                           "Temporary files folder could not be created", [&] { reportUnusableTempFolder(missing); });
    expectErrorBoxAndThrow(L"Temporary files folder not writeable", kNotWriteableText + scratch.tempFolder().c_str(),
                           "Temporary files folder not writeable",
                           [&] { reportUnusableTempFolder(scratch.tempFolder()); });
}

TEST(UniqueFileName, FollowsPrefixCounterTickRandomExtension)
{
    ScratchEnvironment scratch;
    struct Case {
        ZString folder;
        const wchar_t* prefix;
        const wchar_t* extension;
        std::wstring expectedStart;
    };
    const std::wstring folder = scratch.folder().c_str();
    const std::wstring temp = scratch.tempFolder().c_str();
    const Case cases[] = {
        {scratch.folder(), L"screenCapture_", L".png", folder + L"\\screenCapture_"},
        {scratch.folder(), L"shot", L".pdf", folder + L"\\shot_"},
        {scratch.folder(), L"", L".png", folder + L"\\"},
        {ZString(), L"x_", L"", temp + L"\\x_"},
    };
    long long previousCounter = -1;
    for (const Case& c : cases) {
        const DWORD before = GetTickCount();
        const ZString path = uniqueFileName(c.folder, c.prefix, c.extension);
        const DWORD after = GetTickCount();
        const std::wstring text = path.c_str();
        ASSERT_EQ(text.substr(0, c.expectedStart.size()), c.expectedStart) << path.toUtf8();
        std::wsmatch parts;
        const std::wstring rest = text.substr(c.expectedStart.size());
        ASSERT_TRUE(std::regex_match(rest, parts, std::wregex(L"(\\d+)_(\\d+)_\\d+(\\D.*)?"))) << path.toUtf8();
        EXPECT_EQ(parts[3].str(), c.extension) << path.toUtf8();
        const long long counter = std::stoll(parts[1].str());
        if (previousCounter >= 0) {
            EXPECT_EQ(counter, previousCounter + 1) << "one counter step a name";
        }
        previousCounter = counter;
        const unsigned long tick = std::stoul(parts[2].str());
        EXPECT_GE(tick, before);
        EXPECT_LE(tick, after);
        EXPECT_FALSE(exists(path)) << "named, not created";
    }
}

// The module's temporary folder, its fallbacks, the write test and unique names, with
// TMP, TEMP and TMPDIR pointed at scratch places.

#include "base/win/TempFolder.h"
#include "tests/support/ScratchEnvironment.h"
#include "tests/support/UiRobot.h"

#include <gtest/gtest.h>

#include <windows.h>
#include <shlwapi.h>

#include <regex>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

// Sets an environment variable (null: removes it) and puts the old value back.
class EnvironmentOverride {
public:
    EnvironmentOverride(const wchar_t* name, const wchar_t* value) : name_(name)
    {
        const DWORD size = GetEnvironmentVariableW(name, nullptr, 0);
        if (size > 0) {
            std::vector<wchar_t> buffer(size);
            GetEnvironmentVariableW(name, buffer.data(), size);
            saved_ = buffer.data();
            hadValue_ = true;
        }
        SetEnvironmentVariableW(name, value);
    }
    ~EnvironmentOverride() { SetEnvironmentVariableW(name_.c_str(), hadValue_ ? saved_.c_str() : nullptr); }
    EnvironmentOverride(const EnvironmentOverride&) = delete;
    EnvironmentOverride& operator=(const EnvironmentOverride&) = delete;

private:
    std::wstring name_;
    std::wstring saved_;
    bool hadValue_ = false;
};

// The three variables that the system temporary folder is taken from, all at once.
struct TempVariables {
    TempVariables(const ZString& tmp, const ZString& temp, const ZString& tmpdir)
        : tmp(L"TMP", tmp.c_str()), temp(L"TEMP", temp.c_str()), tmpdir(L"TMPDIR", tmpdir.isEmpty() ? nullptr : tmpdir.c_str())
    {
    }
    EnvironmentOverride tmp;
    EnvironmentOverride temp;
    EnvironmentOverride tmpdir;
};

// Changes the current folder and changes it back.
class CurrentFolder {
public:
    explicit CurrentFolder(const ZString& folder)
    {
        wchar_t saved[MAX_PATH] = {};
        GetCurrentDirectoryW(MAX_PATH, saved);
        saved_ = saved;
        changed_ = SetCurrentDirectoryW(folder.c_str()) != FALSE;
    }
    ~CurrentFolder() { SetCurrentDirectoryW(saved_.c_str()); }
    CurrentFolder(const CurrentFolder&) = delete;
    CurrentFolder& operator=(const CurrentFolder&) = delete;

    bool changed() const { return changed_; }

private:
    std::wstring saved_;
    bool changed_ = false;
};

// A folder that exists but where nobody can create anything, not even root: under Wine
// the drive Z: is the Unix root, and the kernel refuses new entries in /proc.
const ZString kUnwritableFolder = L"Z:\\proc";

bool isFolder(const ZString& path)
{
    return PathIsDirectoryW(path.c_str()) != FALSE;
}

bool exists(const ZString& path)
{
    return PathFileExistsW(path.c_str()) != FALSE;
}

std::vector<std::wstring> folderEntries(const ZString& folder)
{
    std::vector<std::wstring> names;
    WIN32_FIND_DATAW found = {};
    HANDLE search = FindFirstFileW(joinPath(folder, L"*").c_str(), &found);
    if (search == INVALID_HANDLE_VALUE)
        return names;
    do {
        const std::wstring name = found.cFileName;
        if (name != L"." && name != L"..")
            names.push_back(name);
    } while (FindNextFileW(search, &found));
    FindClose(search);
    return names;
}

struct BoxAndThrow {
    MessageBoxInfo box;
    std::string exceptionMessage;
    std::string robotFailure;
};

// Runs `action` with a robot that reads the error box with this title and presses OK.
template <typename Action>
BoxAndThrow expectErrorBox(const std::wstring& title, Action action)
{
    BoxAndThrow result;
    UiRobot robot([&](UiRobot& r) {
        HWND box = r.waitForWindow(L"#32770", title);
        result.box = readMessageBox(box);
        pressButton(box, IDOK);
    });
    try {
        action();
    } catch (const TempFolderError& error) {
        result.exceptionMessage = error.what();
    }
    result.robotFailure = robot.finish();
    return result;
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
    struct Case {
        const wchar_t* folder;
        const wchar_t* name;
        const wchar_t* joined;
    };
    const Case cases[] = {
        {L"C:\\temp", L"Pryxa", L"C:\\temp\\Pryxa"},
        {L"C:\\temp\\", L"Pryxa", L"C:\\temp\\Pryxa"},
        {L"C:\\temp", L"\\Pryxa", L"C:\\temp\\Pryxa"},
        {L"C:\\temp\\\\", L"\\\\a.png", L"C:\\temp\\a.png"},
        {L"C:\\", L"a.png", L"C:\\a.png"},
        {L".", L"Pryxa", L".\\Pryxa"},
        {L"", L"a.png", L"a.png"},
    };
    for (const Case& c : cases)
        EXPECT_EQ(joinPath(c.folder, c.name), ZString(c.joined)) << c.folder << " + " << c.name;
}

TEST(SystemTempFolder, IsTheTempPathWithoutTrailingBackslash)
{
    ScratchEnvironment scratch;
    ASSERT_FALSE(scratch.tempFolder().endsWith(L"\\"));
    EXPECT_EQ(systemTempFolder(), scratch.tempFolder());
}

TEST(SystemTempFolder, TakesTheFirstCandidateThatExists)
{
    ScratchEnvironment scratch;
    const ZString first = scratch.folder() + L"\\first";
    const ZString second = scratch.folder() + L"\\second";
    const ZString missing = scratch.folder() + L"\\missing";
    ASSERT_TRUE(createFolderTree(first));
    ASSERT_TRUE(createFolderTree(second));
    struct Case {
        ZString tmp, temp, tmpdir, expected;
    };
    // GetTempPathW follows TMP without checking that it exists, so a missing TMP makes
    // the system's answer useless and the variables are tried one by one.
    const Case cases[] = {
        {first, second, second, first},
        {missing, first, second, first},
        {missing, missing, second, second},
        {missing, missing, second + L"\\", second},
        {missing, missing, second + L"\\sub\\..", second},
        {missing, missing, L"\"" + second + L"\"", second},
    };
    for (const Case& c : cases) {
        TempVariables variables(c.tmp, c.temp, c.tmpdir);
        EXPECT_EQ(systemTempFolder(), c.expected) << c.tmp.toUtf8() << " " << c.temp.toUtf8() << " " << c.tmpdir.toUtf8();
    }
}

TEST(SystemTempFolder, IsTheCurrentFolderWhenNothingExists)
{
    ScratchEnvironment scratch;
    const ZString missing = scratch.folder() + L"\\missing";
    {
        TempVariables variables(missing, missing, ZString());
        EXPECT_EQ(systemTempFolder(), ZString(L"."));
    }
    // A TMP longer than MAX_PATH makes GetTempPathW fail outright.
    const ZString tooLong = missing + L"\\" + ZString(300, L'x');
    TempVariables variables(tooLong, missing, ZString());
    std::vector<wchar_t> buffer(4096);
    ASSERT_EQ(GetTempPathW(4096, buffer.data()), 0u) << "GetTempPathW did not fail";
    EXPECT_EQ(systemTempFolder(), ZString(L"."));
}

TEST(CreateFolderTree, CreatesMissingParentsButNotBelowAFile)
{
    ScratchEnvironment scratch;
    const ZString nested = scratch.folder() + L"\\a\\b\\c";
    EXPECT_TRUE(createFolderTree(nested));
    EXPECT_TRUE(isFolder(nested));
    EXPECT_TRUE(createFolderTree(nested)) << "an existing folder";
    EXPECT_FALSE(createFolderTree(ZString()));
    const ZString file = scratch.writeFile(L"plain", "x");
    EXPECT_FALSE(createFolderTree(file));
    EXPECT_FALSE(createFolderTree(file + L"\\below"));
    EXPECT_FALSE(exists(file + L"\\below"));
}

TEST(IsWritable, CreatesAMissingFolderAndLeavesNoFileBehind)
{
    ScratchEnvironment scratch;
    const ZString folder = scratch.folder() + L"\\new\\deeper";
    for (int i = 0; i < 3; ++i)
        EXPECT_TRUE(isWritable(folder));
    EXPECT_TRUE(isFolder(folder));
    EXPECT_TRUE(folderEntries(folder).empty());
}

TEST(IsWritable, FailsAtOnceForAFolderThatCannotBeCreated)
{
    ScratchEnvironment scratch;
    const ZString file = scratch.writeFile(L"plain", "x");
    const DWORD start = GetTickCount();
    EXPECT_FALSE(isWritable(file + L"\\below"));
    EXPECT_LT(GetTickCount() - start, 90u) << "a missing folder needs no write tries";
}

TEST(IsWritable, GivesUpAfterTenTriesAboutTenMillisecondsApart)
{
    ASSERT_TRUE(isFolder(kUnwritableFolder));
    const DWORD start = GetTickCount();
    EXPECT_FALSE(isWritable(kUnwritableFolder));
    const DWORD elapsed = GetTickCount() - start;
    EXPECT_GE(elapsed, 90u);
    EXPECT_LT(elapsed, 2000u);
}

TEST(ModuleTempFolder, IsPryxaBelowTheSystemTempFolder)
{
    ScratchEnvironment scratch;
    const ZString expected = scratch.tempFolder() + L"\\Pryxa";
    EXPECT_EQ(moduleTempFolder(), expected);
    EXPECT_TRUE(isFolder(expected));
    EXPECT_TRUE(folderEntries(expected).empty()) << "the write test leaves nothing behind";
}

TEST(ModuleTempFolder, FallsBackToPryxa1WhileAFileIsInTheWayAndBackAfterwards)
{
    ScratchEnvironment scratch;
    const ZString blocker = scratch.writeFile(L"temp\\Pryxa", "not a folder");
    const ZString fallback = scratch.tempFolder() + L"\\Pryxa_1";
    EXPECT_EQ(moduleTempFolder(), fallback);
    EXPECT_TRUE(isFolder(fallback));
    EXPECT_EQ(moduleTempFolder(), fallback);
    // Nothing is cached: once the way is clear, "Pryxa" is used again.
    ASSERT_TRUE(DeleteFileW(blocker.c_str()));
    EXPECT_EQ(moduleTempFolder(), scratch.tempFolder() + L"\\Pryxa");
}

TEST(ModuleTempFolder, TriesAllNinetyNineFallbacksThenTheSystemTempFolder)
{
    ScratchEnvironment scratch;
    scratch.writeFile(L"temp\\Pryxa", "x");
    for (int n = 1; n <= 98; ++n)
        scratch.writeFile(ZString::format(L"temp\\Pryxa_%d", n), "x");
    EXPECT_EQ(moduleTempFolder(), scratch.tempFolder() + L"\\Pryxa_99");

    ASSERT_TRUE(RemoveDirectoryW((scratch.tempFolder() + L"\\Pryxa_99").c_str()));
    scratch.writeFile(L"temp\\Pryxa_99", "x");
    EXPECT_EQ(moduleTempFolder(), scratch.tempFolder());
    EXPECT_FALSE(exists(scratch.tempFolder() + L"\\Pryxa_100"));
}

TEST(ModuleTempFolder, UsesTheCurrentFolderWhenTheTempVariablesLeadBelowAFile)
{
    ScratchEnvironment scratch;
    const ZString belowFile = scratch.writeFile(L"plain", "x") + L"\\temp";
    const ZString current = scratch.folder() + L"\\current";
    ASSERT_TRUE(createFolderTree(current));
    TempVariables variables(belowFile, belowFile, belowFile);
    CurrentFolder inCurrent(current);
    ASSERT_TRUE(inCurrent.changed());
    EXPECT_EQ(moduleTempFolder(), ZString(L".\\Pryxa"));
    EXPECT_TRUE(isFolder(current + L"\\Pryxa"));
}

TEST(ModuleTempFolder, WithNoWritableFolderTellsTheUserAndThrows)
{
    ScratchEnvironment scratch;
    const ZString belowFile = scratch.writeFile(L"plain", "x") + L"\\temp";
    TempVariables variables(belowFile, belowFile, belowFile);
    CurrentFolder inUnwritable(kUnwritableFolder);
    ASSERT_TRUE(inUnwritable.changed());
    const BoxAndThrow seen = expectErrorBox(L"Temporary files folder not writeable", [] { moduleTempFolder(); });
    ASSERT_EQ(seen.robotFailure, "");
    EXPECT_EQ(seen.box.text, kNotWriteableText + L".");
    EXPECT_EQ(seen.box.icon, static_cast<UINT>(MB_ICONERROR));
    EXPECT_EQ(seen.box.buttons, std::vector<int>{IDOK});
    EXPECT_EQ(seen.exceptionMessage, "Temporary files folder not writeable");
}

TEST(ReportUnusableTempFolder, TellsWhetherTheFolderIsMissingOrNotWriteable)
{
    ScratchEnvironment scratch;
    const ZString missing = scratch.writeFile(L"plain", "x") + L"\\temp";
    struct Case {
        ZString folder;
        std::wstring title;
        std::wstring text;
        std::string exceptionMessage;
    };
    const Case cases[] = {
        {missing, L"Could not create temporary files folder", kMissingText + missing.c_str(),
         "Temporary files folder could not be created"},
        {scratch.tempFolder(), L"Temporary files folder not writeable", kNotWriteableText + scratch.tempFolder().c_str(),
         "Temporary files folder not writeable"},
    };
    for (const Case& c : cases) {
        const BoxAndThrow seen = expectErrorBox(c.title, [&] { reportUnusableTempFolder(c.folder); });
        ASSERT_EQ(seen.robotFailure, "");
        EXPECT_EQ(seen.box.title, c.title);
        EXPECT_EQ(seen.box.text, c.text);
        EXPECT_EQ(seen.box.icon, static_cast<UINT>(MB_ICONERROR));
        EXPECT_EQ(seen.box.buttons, std::vector<int>{IDOK});
        EXPECT_EQ(seen.exceptionMessage, c.exceptionMessage);
    }
}

TEST(UniqueFileName, FollowsPrefixCounterTickRandomExtension)
{
    ScratchEnvironment scratch;
    const ZString folder = scratch.folder();
    struct Case {
        const wchar_t* prefix;
        const wchar_t* extension;
        const wchar_t* namePrefix;
    };
    const Case cases[] = {
        {L"screenCapture_", L".png", L"screenCapture_"},
        {L"screenCapture-", L".pdf", L"screenCapture-_"},
        {L"shot", L".png", L"shot_"},
        {L"", L".png", L""},
        {L"x_", L"", L"x_"},
    };
    long long previousCounter = -1;
    for (const Case& c : cases) {
        const DWORD before = GetTickCount();
        const ZString path = uniqueFileName(folder, c.prefix, c.extension);
        const DWORD after = GetTickCount();
        const std::wstring expectedStart = std::wstring(folder.c_str()) + L"\\" + c.namePrefix;
        const std::wstring text = path.c_str();
        ASSERT_EQ(text.substr(0, expectedStart.size()), expectedStart) << path.toUtf8();
        std::wsmatch parts;
        const std::wstring rest = text.substr(expectedStart.size());
        const std::wregex pattern(L"(\\d+)_(\\d+)_(\\d+)" + std::regex_replace(std::wstring(c.extension), std::wregex(L"\\."), L"\\."));
        ASSERT_TRUE(std::regex_match(rest, parts, pattern)) << path.toUtf8();
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

TEST(UniqueFileName, UsesTheSystemTempFolderForAnEmptyFolder)
{
    ScratchEnvironment scratch;
    const ZString path = uniqueFileName(ZString(), L"screenCapture_", L".png");
    EXPECT_TRUE(path.startsWith(scratch.tempFolder() + L"\\screenCapture_")) << path.toUtf8();
    EXPECT_NE(path, uniqueFileName(ZString(), L"screenCapture_", L".png"));
    EXPECT_TRUE(folderEntries(scratch.tempFolder()).empty());
}

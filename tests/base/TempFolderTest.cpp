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
#include <tuple>
#include <vector>

namespace {

// A folder that exists but where nobody can create anything, not even root: under Wine
// the drive Z: is the Unix root, and the kernel refuses new entries in /proc.
const ZString kUnwritableFolder = L"Z:\\proc";

} // namespace

// Every candidate, the current folder included, is made absolute against the current
// folder at the time of the call, so that paths made from it can be handed to programs
// started elsewhere.
TEST(SystemTempFolder, TakesTheFirstCandidateThatExistsElseTheCurrentFolderAlwaysAbsolute)
{
    ScratchEnvironment scratch;
    const ZString first = scratch.folder() + L"\\first";
    const ZString second = scratch.folder() + L"\\second";
    const ZString missing = scratch.folder() + L"\\missing";
    ASSERT_TRUE(createFolderTree(first));
    ASSERT_TRUE(createFolderTree(second));
    const ZString current = scratch.folder() + L"\\current";
    ASSERT_TRUE(createFolderTree(current + L"\\relative"));
    ASSERT_TRUE(scratch.useCurrentFolder(current));
    // GetTempPathW follows TMP without checking that it exists, so a missing TMP makes the
    // variables be tried one by one; a TMP longer than MAX_PATH makes GetTempPathW fail.
    const ZString tooLong = missing + L"\\" + ZString(300, L'x');
    const ZString cases[][4] = {
        {missing, first, second, first},
        {missing, missing, second + L"\\sub\\..\\", second},
        {missing, missing, L"\"" + second + L"\"", second},
        {missing, missing, L"relative\\", current + L"\\relative"},
        {missing, L".", second, current},
        {missing, missing, ZString(), current},
        {tooLong, missing, ZString(), current},
    };
    for (const auto& c : cases) {
        scratch.setTempVariables(c[0], c[1], c[2]);
        EXPECT_EQ(systemTempFolder().toUtf8(), c[3].toUtf8())
            << c[0].toUtf8() << " " << c[1].toUtf8() << " " << c[2].toUtf8();
    }
    ASSERT_TRUE(scratch.useCurrentFolder(first));
    EXPECT_EQ(systemTempFolder().toUtf8(), first.toUtf8()) << "the current folder when asked, not a remembered one";
}

TEST(IsWritable, CreatesTheFolderAndLeavesNoFileElseFails)
{
    ScratchEnvironment scratch;
    const ZString folder = scratch.folder() + L"\\new\\deeper";
    EXPECT_TRUE(isWritable(folder)) << "missing parents are created too";
    EXPECT_TRUE(PathIsDirectoryEmptyW(folder.c_str())) << "the write test leaves nothing behind";
    EXPECT_FALSE(isWritable(scratch.writeFile(L"plain", "x") + L"\\below"));
    ASSERT_TRUE(PathIsDirectoryW(kUnwritableFolder.c_str()));
    EXPECT_FALSE(isWritable(kUnwritableFolder));
}

TEST(ModuleTempFolder, IsPryxaElsePryxa1WhileAFileIsInTheWayNothingCached)
{
    ScratchEnvironment scratch;
    const ZString pryxa = scratch.tempFolder() + L"\\Pryxa";
    EXPECT_EQ(moduleTempFolder(), pryxa);
    EXPECT_TRUE(PathIsDirectoryEmptyW(pryxa.c_str())) << "created, and the write test leaves nothing behind";

    ASSERT_TRUE(RemoveDirectoryW(pryxa.c_str()));
    const ZString blocker = scratch.writeFile(L"temp\\Pryxa", "not a folder");
    EXPECT_EQ(moduleTempFolder(), pryxa + L"_1");
    ASSERT_TRUE(DeleteFileW(blocker.c_str()));
    EXPECT_EQ(moduleTempFolder(), pryxa) << "used again once the way is clear";
}

TEST(ModuleTempFolder, AfterPryxa99ComesTheSystemTempFolder)
{
    ScratchEnvironment scratch;
    scratch.writeFile(L"temp\\Pryxa", "x");
    for (int n = 1; n <= 99; ++n)
        scratch.writeFile(ZString::format(L"temp\\Pryxa_%d", n), "x");
    EXPECT_EQ(moduleTempFolder(), scratch.tempFolder());
}

// Without one the current folder is used; without that either, the user is told in an
// error box with OK whether the folder is missing or not writeable, and TempFolderError is
// thrown.
TEST(ModuleTempFolder, WithoutATempFolderUsesTheCurrentOneElseTellsTheUserAndThrows)
{
    ScratchEnvironment scratch;
    const ZString missing = scratch.writeFile(L"plain", "x") + L"\\temp";
    scratch.setTempVariables(missing, missing, missing);
    const ZString current = scratch.folder() + L"\\current";
    ASSERT_TRUE(createFolderTree(current));
    ASSERT_TRUE(scratch.useCurrentFolder(current));
    EXPECT_EQ(moduleTempFolder().toUtf8(), (current + L"\\Pryxa").toUtf8());
    EXPECT_TRUE(PathIsDirectoryW((current + L"\\Pryxa").c_str()));

    ASSERT_TRUE(scratch.useCurrentFolder(kUnwritableFolder));
    const struct {
        std::function<void()> action;
        std::wstring title, text;
        std::string thrown;
    } cases[] = {
        {[] { moduleTempFolder(); }, L"Temporary files folder not writeable",
         L"The following temporary files folder is not writeable by the current user. Please ensure that the current "
         L"user can create files in that folder by checking permissions. Alternatively, you can try to delete the "
         L"folder manually.\r\n\r\n" + std::wstring(kUnwritableFolder.c_str()),
         "Temporary files folder not writeable"},
        {[&] { reportUnusableTempFolder(missing); }, L"Could not create temporary files folder",
         L"The following temporary files folder does not exist and could not be created by the current user. Please "
         L"check the permissions of the parent folder so that the subfolder can be created.\r\n\r\n" +
             std::wstring(missing.c_str()),
         "Temporary files folder could not be created"},
    };
    for (const auto& c : cases) {
        MessageBoxInfo box;
        UiRobot robot([&](UiRobot& r) {
            HWND window = r.waitForWindow(L"#32770", c.title);
            box = readMessageBox(window);
            pressButton(window, IDOK);
        });
        std::string thrown = "nothing";
        try {
            c.action();
        } catch (const TempFolderError& error) {
            thrown = error.what();
        }
        ASSERT_EQ(robot.finish(), "");
        EXPECT_EQ(box.text, c.text);
        EXPECT_EQ(box.icon, static_cast<UINT>(MB_ICONERROR));
        EXPECT_EQ(box.buttons, std::vector<int>{IDOK});
        EXPECT_EQ(thrown, c.thrown);
    }
}

TEST(UniqueFileName, IsPrefixCounterTickRandomExtensionAndNotCreated)
{
    ScratchEnvironment scratch;
    const std::tuple<ZString, const wchar_t*, const wchar_t*, std::wstring> cases[] = {
        {scratch.folder(), L"shot", L".pdf", scratch.folder().c_str() + std::wstring(L"\\shot_")},
        {scratch.folder(), L"", L".png", scratch.folder().c_str() + std::wstring(L"\\")},
        {ZString(), L"x_", L"", scratch.tempFolder().c_str() + std::wstring(L"\\x_")},
    };
    long long previousCounter = -1;
    for (const auto& [in, prefix, extension, start] : cases) {
        const DWORD before = GetTickCount();
        const std::wstring path = uniqueFileName(in, prefix, extension).c_str();
        const DWORD after = GetTickCount();
        ASSERT_EQ(path.substr(0, start.size()), start);
        const std::wstring rest = path.substr(start.size());
        std::wsmatch parts;
        ASSERT_TRUE(std::regex_match(rest, parts, std::wregex(L"(\\d+)_(\\d+)_\\d+(\\D.*)?"))) << rest;
        EXPECT_EQ(parts[3].str(), extension);
        const long long counter = std::stoll(parts[1].str());
        EXPECT_TRUE(previousCounter < 0 || counter == previousCounter + 1) << "one counter step a name";
        previousCounter = counter;
        EXPECT_GE(std::stoul(parts[2].str()), before);
        EXPECT_LE(std::stoul(parts[2].str()), after);
        EXPECT_FALSE(PathFileExistsW(path.c_str())) << "named, not created";
    }
}

// The About box as the user meets it: about_show opens it modal to its owner with the
// version, the language and the library notices, and returns once it is closed.

#include "companions/about/About.h"
#include "companions/settings/Settings.h"
#include "pryxa/Version.h"
#include "tests/companions/DialogKit.h"
#include "tests/support/ScratchEnvironment.h"

#include <gtest/gtest.h>

namespace {

// A plain window of the test's thread to own the box.
struct OwnerWindow {
    HWND window = CreateWindowExW(0, L"STATIC", L"owner", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 0, 0, 200, 100, nullptr,
                                  nullptr, nullptr, nullptr);
    ~OwnerWindow() { DestroyWindow(window); }
};

enum class Close { button, escapeInDetails, escape, closeBox };

TEST(About, ShowsVersionLanguageAndNoticesModalToItsOwnerUntilClosedByButtonEscapeOrCloseBox)
{
    ScratchEnvironment env;
    OwnerWindow owner;
    const struct {
        const wchar_t* language;
        const wchar_t* title;
        const wchar_t* languageLine;
        const wchar_t* closeLabel;
        Close how;
        bool owned;
    } cases[] = {
        {L"en", L"About Pryxa Creator", L"Language: English", L"Close", Close::button, true},
        {L"de", L"Über Pryxa Creator", L"Sprache: Deutsch (German)", L"Schließen", Close::escape, false},
        {L"en", L"About Pryxa Creator", L"Language: English", L"Close", Close::escapeInDetails, true},
        {L"en", L"About Pryxa Creator", L"Language: English", L"Close", Close::closeBox, false},
    };
    for (const auto& c : cases) {
        userConfig_setStr(L"language", c.language);
        env.useLanguageFolder(ScratchEnvironment::shippedLanguageFolder());
        std::wstring details;
        bool ownerDisabled = false, ownedBy = false;
        const std::string failure = withDialog(c.title, [&] { about_show(c.owned ? owner.window : nullptr); },
                                               [&](UiRobot&, HWND box) {
                                                   ownerDisabled = !IsWindowEnabled(owner.window);
                                                   ownedBy = GetWindow(box, GW_OWNER) == owner.window;
                                                   const std::vector<HWND> fields = controls(box, L"Edit");
                                                   if (fields.size() != 1)
                                                       throw RobotFailure("no details field");
                                                   details = windowText(fields[0]);
                                                   HWND close = buttonLabelled(box, c.closeLabel);
                                                   if (c.how == Close::button)
                                                       click(close);
                                                   else if (c.how == Close::escapeInDetails)
                                                       pressKey(fields[0], VK_ESCAPE);
                                                   else
                                                       closeDialog(box, c.how == Close::escape ? CloseBy::escape
                                                                                               : CloseBy::closeBox);
                                               });
        const std::wstring version = L"Version " PRYXA_VERSION_WTEXT L"\r\n";
        EXPECT_EQ(failure, "") << int(c.how);
        EXPECT_EQ(details.find(version + c.languageLine + L"\r\n\r\n"), 0u) << ZString(details.c_str()).toUtf8();
        for (const wchar_t* notice : {L"Jean-loup Gailly and Mark Adler", L"Zope Public License 2.1", L"winpthreads",
                                      L"GCC Runtime Library Exception, version 3.1"})
            EXPECT_NE(details.find(notice), std::wstring::npos) << ZString(notice).toUtf8();
        EXPECT_EQ(ownerDisabled, c.owned);
        EXPECT_EQ(ownedBy, c.owned);
        EXPECT_TRUE(IsWindowEnabled(owner.window)) << "the owner is given back";
    }
}

} // namespace

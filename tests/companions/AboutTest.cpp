// The About box as the user meets it: about_show opens it modal to its owner with the
// version, the language and the library notices, and returns once it is closed.

#include "companions/about/About.h"
#include "pryxa/Version.h"
#include "tests/companions/DialogKit.h"

#include <gtest/gtest.h>

namespace {

enum class Close { button, escape, escapeInDetails, closeBox };

TEST(About, ShowsVersionLanguageAndNoticesModalToItsOwnerUntilClosedByButtonEscapeOrCloseBox)
{
    ScratchEnvironment env;
    const HWND owner = CreateWindowExW(0, L"STATIC", L"owner", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 0, 0, 200, 100, nullptr,
                                       nullptr, nullptr, nullptr);
    const struct {
        const wchar_t *language, *title, *languageLine, *closeLabel;
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
        bool ownedAndDisabled = false;
        EXPECT_EQ(withDialog(c.title, [&] { about_show(c.owned ? owner : nullptr); },
                             [&](UiRobot&, HWND box) {
                                 ownedAndDisabled = GetWindow(box, GW_OWNER) == owner && !IsWindowEnabled(owner);
                                 const std::vector<HWND> fields = controls(box, L"Edit");
                                 details = fields.size() == 1 ? windowText(fields[0]) : L"not one details field";
                                 HWND close = buttonLabelled(box, c.closeLabel);
                                 if (c.how == Close::button)
                                     pressButton(box, GetDlgCtrlID(close));
                                 else if (c.how == Close::escapeInDetails)
                                     postKey(fields.at(0), VK_ESCAPE);
                                 else
                                     closeDialog(box, c.how == Close::escape ? CloseBy::escape : CloseBy::closeBox);
                             }),
                  "");
        const std::wstring head = std::wstring(L"Version " PRYXA_VERSION_WTEXT L"\r\n") + c.languageLine + L"\r\n\r\n";
        EXPECT_EQ(details.substr(0, head.size()), head);
        for (const wchar_t* notice : {L"Jean-loup Gailly and Mark Adler", L"Zope Public License 2.1", L"winpthreads",
                                      L"GCC Runtime Library Exception, version 3.1"})
            EXPECT_NE(details.find(notice), std::wstring::npos) << ZString(notice).toUtf8();
        EXPECT_EQ(ownedAndDisabled, c.owned);
        EXPECT_TRUE(IsWindowEnabled(owner)) << "the owner is given back";
    }
    DestroyWindow(owner);
}

} // namespace

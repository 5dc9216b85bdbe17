// What the web bridge relies on for both dialog libraries: exports under their C names, and
// nothing left behind however often the dialogs are opened.

#include "companions/about/About.h"
#include "companions/formatoptions/FormatOptions.h"
#include "companions/language/Language.h"
#include "companions/language/LanguageFile.h"
#include "tests/companions/DialogKit.h"
#include "tests/support/ResourceCounters.h"
#include "tests/support/ScratchEnvironment.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <fstream>
#include <regex>
#include <sstream>

namespace {

TEST(CompanionDialogs, AreFoundByTheirCNamesAndLeaveNoWindowsHandlesOrGdiObjectsBehind)
{
    EXPECT_NE(GetProcAddress(GetModuleHandleW(L"About.dll"), "about_show"), nullptr);
    EXPECT_NE(GetProcAddress(GetModuleHandleW(L"FormatOptions.dll"), "formatOptions_show"), nullptr);

    ScratchEnvironment env;
    // Each dialog is painted and has the mouse over it before it is closed, as when a user
    // looks at it, so that every run does the same.
    const auto lookedAt = [](HWND dialog) {
        RedrawWindow(dialog, nullptr, nullptr, RDW_INVALIDATE | RDW_UPDATENOW | RDW_ALLCHILDREN);
        SendMessageW(dialog, WM_MOUSEMOVE, 0, MAKELPARAM(5, 5));
    };
    const auto openBoth = [&] {
        EXPECT_EQ(withDialog(lang_getStr(L"about/title").c_str(), [] { about_show(nullptr); },
                             [&](UiRobot&, HWND box) {
                                 lookedAt(box);
                                 closeDialog(box, CloseBy::escape);
                             }),
                  "");
        EXPECT_EQ(withDialog(lang_getStr(L"format-options/title").c_str(), [] { formatOptions_show(nullptr); },
                             [&](UiRobot&, HWND dialog) {
                                 lookedAt(dialog);
                                 closeDialog(dialog, CloseBy::closeBox);
                             }),
                  "");
    };
    openBoth(); // what the system sets up once (libraries, fonts, settings it reads) is not a leak
    const ResourceCounts before = countResources();
    for (int i = 0; i < 4; ++i)
        openBoth();
    EXPECT_EQ(countResourcesSettled(before).describe(), before.describe());
    WNDCLASSEXW info = {sizeof info};
    for (const wchar_t* library : {L"About.dll", L"FormatOptions.dll"})
        EXPECT_FALSE(GetClassInfoExW(GetModuleHandleW(library), L"XhtmlFrameView", &info)) << "no class stays registered";
}

// Refuses the markup frames of this thread, as a system out of window resources would.
LRESULT CALLBACK refuseFrames(int code, WPARAM wParam, LPARAM lParam)
{
    if (code == HCBT_CREATEWND && windowClass(reinterpret_cast<HWND>(wParam)) == L"XhtmlFrameView")
        return 1;
    return CallNextHookEx(nullptr, code, wParam, lParam);
}

TEST(CompanionDialogs, SayWhenTheirWindowCannotBeMadeAndLeaveNothingOpen)
{
    ScratchEnvironment env;
    const struct {
        const char* what;
        std::function<bool()> show;
        const wchar_t* message;
    } dialogs[] = {
        {"About", [] { about_show(nullptr); return false; }, L"Could not show the About box"},
        {"FormatOptions", [] { return formatOptions_show(nullptr); }, L"Could not show the PDF options"},
    };
    const HHOOK hook = SetWindowsHookExW(WH_CBT, refuseFrames, nullptr, GetCurrentThreadId());
    ASSERT_NE(hook, nullptr);
    for (const auto& d : dialogs) {
        MessageBoxInfo box;
        UiRobot robot([&](UiRobot& r) { box = answerMessageBox(r); });
        EXPECT_FALSE(d.show()) << d.what;
        EXPECT_EQ(robot.finish(), "") << d.what;
        EXPECT_EQ(box.text, d.message) << d.what;
        EXPECT_EQ(box.title, L"Error") << d.what;
        EXPECT_EQ(box.icon, static_cast<UINT>(MB_ICONWARNING)) << d.what;
        EXPECT_TRUE(processWindows().empty()) << d.what;
    }
    UnhookWindowsHookEx(hook);
}

LanguageTexts shippedTexts(const char* fileName)
{
    std::ifstream in(std::filesystem::path((ScratchEnvironment::shippedLanguageFolder() + L"\\").c_str()) / fileName,
                     std::ios::binary);
    std::ostringstream content;
    content << in.rdbuf();
    return parseLanguageFile(content.str());
}

// The keys in a markup resource of a library, of all four forms ("{lang/KEY}", ...).
std::vector<std::string> markupKeys(const wchar_t* library, const wchar_t* resource)
{
    const HMODULE module = GetModuleHandleW(library);
    const HRSRC found = FindResourceW(module, resource, RT_RCDATA);
    const auto* data = found ? static_cast<const char*>(LockResource(LoadResource(module, found))) : nullptr;
    const std::string markup = data ? std::string(data, SizeofResource(module, found)) : std::string();
    std::vector<std::string> keys;
    const std::regex key(R"(\{lang(?:-esq|-edq|-hsc)?/([^}]*)\})");
    for (std::sregex_iterator at(markup.begin(), markup.end(), key), end; at != end; ++at)
        keys.push_back((*at)[1]);
    return keys;
}

TEST(CompanionDialogs, EveryTextTheirMarkupAndCodeAskForIsInBothShippedLanguages)
{
    const struct {
        const wchar_t* library;
        const wchar_t* markup;
        const char* section;
        std::vector<std::string> codeKeys;
    } dialogs[] = {
        {L"About.dll", L"ABOUT.XHTML", "about/", {"title", "version", "language"}},
        {L"FormatOptions.dll", L"FORMATOPTIONS.XHTML", "format-options/", {"title", "~dpi-invalid", "~jpeg-quality-invalid"}},
    };
    for (const char* file : {"en.lng", "de.lng"}) {
        const LanguageTexts texts = shippedTexts(file);
        for (const auto& d : dialogs) {
            std::vector<std::string> keys = markupKeys(d.library, d.markup);
            EXPECT_GE(keys.size(), 2u) << "the markup of " << ZString(d.library).toUtf8();
            keys.insert(keys.end(), d.codeKeys.begin(), d.codeKeys.end());
            for (const std::string& key : keys) {
                const bool known = texts.count(ZString::fromUtf8(d.section + key)) || texts.count(ZString::fromUtf8(key));
                EXPECT_TRUE(known) << file << ": " << d.section << key;
            }
        }
    }
}

} // namespace

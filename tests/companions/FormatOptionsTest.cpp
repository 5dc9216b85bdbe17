// The image-to-PDF options dialog as the user meets it: formatOptions_show opens it with the
// values the PDF path reads, OK stores the user's values once they are acceptable, and every
// other way out stores nothing.

#include "base/win/RegistryKey.h"
#include "companions/formatoptions/FormatOptions.h"
#include "companions/language/Language.h"
#include "companions/settings/Settings.h"
#include "tests/companions/DialogKit.h"
#include "tests/support/ScratchEnvironment.h"

#include <gtest/gtest.h>

namespace {

const uint32_t kUnwritten = 0xDEADBEEF;
const wchar_t* const kKeys[] = {L"Img2PdfDpi", L"Img2PdfJpegQuality", L"Img2PdfPassThroughJpg", L"Img2PdfOptForA4"};

std::wstring text(const wchar_t* key) { return lang_getStr(key).c_str(); }
std::wstring title() { return text(L"format-options/title"); }

// What the dialog shows or holds: the two numbers and the two check marks.
struct Shown {
    std::wstring dpi, quality;
    bool passThrough, a4;
    bool operator==(const Shown& o) const
    {
        return dpi == o.dpi && quality == o.quality && passThrough == o.passThrough && a4 == o.a4;
    }
};

// The dialog's two fields (resolution, quality) and two checkboxes, in markup order.
struct Controls {
    explicit Controls(HWND dialog) : dialog(dialog)
    {
        const std::vector<HWND> edits = controls(dialog, L"Edit");
        for (HWND button : controls(dialog, L"Button")) {
            if ((GetWindowLongW(button, GWL_STYLE) & BS_TYPEMASK) == BS_AUTOCHECKBOX)
                checks.push_back(button);
        }
        if (edits.size() != 2 || checks.size() != 2)
            throw RobotFailure("the dialog has not two fields and two checkboxes");
        dpi = edits[0];
        quality = edits[1];
    }
    Shown shown() const
    {
        const auto checked = [](HWND box) { return SendMessageW(box, BM_GETCHECK, 0, 0) == BST_CHECKED; };
        return Shown{windowText(dpi), windowText(quality), checked(checks[0]), checked(checks[1])};
    }
    // Types both numbers and clicks the checkboxes that should change.
    void enter(const Shown& wanted) const
    {
        typeText(dpi, wanted.dpi);
        typeText(quality, wanted.quality);
        const Shown now = shown();
        if (now.passThrough != wanted.passThrough)
            SendMessageW(checks[0], BM_CLICK, 0, 0);
        if (now.a4 != wanted.a4)
            SendMessageW(checks[1], BM_CLICK, 0, 0);
    }
    void press(const wchar_t* labelKey) const { click(buttonLabelled(dialog, text(labelKey))); }

    HWND dialog, dpi, quality;
    std::vector<HWND> checks;
};

// The four user values as stored, kUnwritten where none is.
std::vector<uint32_t> storedUserValues()
{
    std::vector<uint32_t> values;
    for (const wchar_t* key : kKeys)
        values.push_back(userConfig_getDword(key, kUnwritten));
    return values;
}

TEST(FormatOptions, OpensWithTheValuesThePdfPathReadsAndOkStoresTheUsersValues)
{
    const struct {
        const char* what;
        std::vector<uint32_t> program; // empty: none
        Shown opens, entered;
        std::vector<uint32_t> stored;
    } cases[] = {
        {"the defaults", {}, {L"144", L"100", true, true}, {L" 96 ", L"100", false, true}, {96, 100, 0, 1}},
        {"program values, the quality clamped", {300, 250, 0, 0}, {L"300", L"100", false, false},
         {L"1", L"+0", true, false}, {1, 0, 1, 0}},
    };
    for (const auto& c : cases) {
        ScratchEnvironment env;
        const RegistryKey program = RegistryKey::openForWriting(HKEY_CURRENT_USER, env.registryKey() + L"\\Program");
        for (size_t i = 0; i < c.program.size(); ++i)
            ASSERT_TRUE(program.writeDword(kKeys[i], c.program[i]));
        Shown opened{};
        bool saved = false;
        const std::string failure = withDialog(title(), [&] { saved = formatOptions_show(nullptr); },
                                               [&](UiRobot&, HWND dialog) {
                                                   const Controls controls(dialog);
                                                   opened = controls.shown();
                                                   if (focusOf(dialog) != controls.dpi)
                                                       throw RobotFailure("the resolution has not the focus");
                                                   controls.enter(c.entered);
                                                   controls.press(L"general/ok");
                                               });
        EXPECT_EQ(failure, "") << c.what;
        EXPECT_TRUE(opened == c.opens) << c.what;
        EXPECT_TRUE(saved) << c.what;
        EXPECT_EQ(storedUserValues(), c.stored) << c.what;
    }
}

TEST(FormatOptions, RefusesNumbersOutOfRangeOrNotWholeWithAMessageAndStaysOpen)
{
    ScratchEnvironment env;
    const std::wstring badDpi = text(L"format-options/~dpi-invalid");
    const std::wstring badQuality = text(L"format-options/~jpeg-quality-invalid");
    const struct {
        const wchar_t* dpi;
        const wchar_t* quality;
        const std::wstring& message;
        bool inDpi; // where the focus goes back to
    } refused[] = {
        {L"0", L"80", badDpi, true},    {L"-72", L"80", badDpi, true},        {L"abc", L"80", badDpi, true},
        {L"", L"80", badDpi, true},     {L"1.5", L"80", badDpi, true},        {L"3000000000", L"80", badDpi, true},
        {L"72", L"101", badQuality, false}, {L"72", L"-1", badQuality, false}, {L"72", L"high", badQuality, false},
    };
    std::vector<std::string> wrong;
    bool saved = true;
    const std::string failure = withDialog(title(), [&] { saved = formatOptions_show(nullptr); },
                                           [&](UiRobot& robot, HWND dialog) {
                                               const Controls controls(dialog);
                                               for (const auto& r : refused) {
                                                   controls.enter(Shown{r.dpi, r.quality, true, true});
                                                   controls.press(L"general/ok");
                                                   const MessageBoxInfo box = answerMessageBox(robot);
                                                   HWND field = r.inDpi ? controls.dpi : controls.quality;
                                                   const bool focused =
                                                       pumpUntil([&] { return focusOf(dialog) == field; }, 5000);
                                                   if (box.text != r.message || box.title != title()
                                                       || box.icon != MB_ICONWARNING || !focused || !IsWindow(dialog))
                                                       wrong.push_back(ZString(r.dpi).toUtf8() + "/"
                                                                       + ZString(r.quality).toUtf8());
                                               }
                                               controls.press(L"general/cancel");
                                           });
    EXPECT_EQ(failure, "");
    EXPECT_TRUE(wrong.empty()) << wrong.front();
    EXPECT_FALSE(saved);
    EXPECT_EQ(storedUserValues(), std::vector<uint32_t>(4, kUnwritten));
}

TEST(FormatOptions, CancelEscapeAndTheCloseBoxStoreNothingAndAFailedStoreKeepsTheDialogOpen)
{
    ScratchEnvironment env;
    for (int way = 0; way < 3; ++way) {
        bool saved = true;
        const std::string failure = withDialog(title(), [&] { saved = formatOptions_show(nullptr); },
                                               [&](UiRobot&, HWND dialog) {
                                                   const Controls controls(dialog);
                                                   controls.enter(Shown{L"300", L"50", false, false});
                                                   if (way == 0)
                                                       controls.press(L"general/cancel");
                                                   else
                                                       closeDialog(dialog, way == 1 ? CloseBy::escape : CloseBy::closeBox);
                                               });
        EXPECT_EQ(failure, "") << way;
        EXPECT_FALSE(saved) << way;
        EXPECT_EQ(storedUserValues(), std::vector<uint32_t>(4, kUnwritten)) << way;
    }

    // Registry key names are limited to 255 characters: nothing can be written there.
    settings_redirect(env.registryKey() + L"\\" + ZString(300, L'x'));
    MessageBoxInfo box;
    bool saved = true;
    const std::string failure = withDialog(title(), [&] { saved = formatOptions_show(nullptr); },
                                           [&](UiRobot& robot, HWND dialog) {
                                               const Controls controls(dialog);
                                               controls.press(L"general/ok");
                                               box = answerMessageBox(robot);
                                               if (!IsWindow(dialog))
                                                   throw RobotFailure("the dialog closed after a failed store");
                                               controls.press(L"general/cancel");
                                           });
    EXPECT_EQ(failure, "");
    EXPECT_FALSE(saved);
    EXPECT_EQ(box.text, L"Could not save the PDF options");
    EXPECT_EQ(box.title, L"Error");
    EXPECT_EQ(box.icon, static_cast<UINT>(MB_ICONWARNING));
}

} // namespace

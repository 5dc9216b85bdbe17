// The image-to-PDF options dialog as the user meets it: formatOptions_show opens it with the
// values the PDF path reads, OK stores the user's values once they are acceptable, and every
// other way out stores nothing.

#include "base/win/RegistryKey.h"
#include "companions/formatoptions/FormatOptions.h"
#include "tests/companions/DialogKit.h"

#include <gtest/gtest.h>

namespace {

const uint32_t kUnwritten = 0xDEADBEEF;
const std::vector<uint32_t> kNothingStored(4, kUnwritten);
const wchar_t* const kKeys[] = {L"Img2PdfDpi", L"Img2PdfJpegQuality", L"Img2PdfPassThroughJpg", L"Img2PdfOptForA4"};

// The dialog's controls in markup order.
struct Form {
    HWND dialog, dpi, quality, passThrough, a4;
};

bool checked(HWND box) { return SendMessageW(box, BM_GETCHECK, 0, 0) == BST_CHECKED; }

// "resolution quality pass-through A4" as shown, as "144 100 on on".
std::wstring shown(const Form& f)
{
    return windowText(f.dpi) + L" " + windowText(f.quality) + (checked(f.passThrough) ? L" on" : L" off")
           + (checked(f.a4) ? L" on" : L" off");
}

void enter(const Form& f, const wchar_t* dpi, const wchar_t* quality, bool passThrough = true, bool a4 = true)
{
    typeText(f.dpi, dpi);
    typeText(f.quality, quality);
    for (auto [box, wanted] : {std::pair(f.passThrough, passThrough), {f.a4, a4}}) {
        if (checked(box) != wanted)
            SendMessageW(box, BM_CLICK, 0, 0);
    }
}

void press(const Form& f, const wchar_t* label) { pressButton(f.dialog, GetDlgCtrlID(buttonLabelled(f.dialog, label))); }

// Shows the dialog while the robot acts on it; whether the user's values were stored.
bool showWith(const std::function<void(UiRobot&, const Form&)>& act)
{
    bool saved = false;
    EXPECT_EQ(withDialog(L"PDF Options for Pictures", [&] { saved = formatOptions_show(nullptr); },
                         [&](UiRobot& robot, HWND dialog) {
                             const std::vector<HWND> edits = controls(dialog, L"Edit");
                             const std::vector<HWND> buttons = controls(dialog, L"Button");
                             if (edits.size() != 2 || buttons.size() != 4)
                                 throw RobotFailure("not the options form");
                             act(robot, Form{dialog, edits[0], edits[1], buttons[0], buttons[1]});
                         }),
              "");
    return saved;
}

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
        std::vector<uint32_t> program; // empty: none
        const wchar_t* opens;
        const wchar_t *dpi, *quality;
        bool passThrough, a4;
        std::vector<uint32_t> stored;
    } cases[] = {
        {{}, L"144 100 on on", L" 96 ", L"100", false, true, {96, 100, 0, 1}},
        {{300, 250, 0, 0}, L"300 100 off off", L"1", L"+0", true, false, {1, 0, 1, 0}}, // the quality clamped
    };
    for (const auto& c : cases) {
        EnglishScratch env;
        const RegistryKey program = env.programValues();
        for (size_t i = 0; i < c.program.size(); ++i)
            ASSERT_TRUE(program.writeDword(kKeys[i], c.program[i]));
        std::wstring opened;
        EXPECT_TRUE(showWith([&](UiRobot&, const Form& f) {
            opened = focusOf(f.dialog) == f.dpi ? shown(f) : L"the resolution has not the focus";
            enter(f, c.dpi, c.quality, c.passThrough, c.a4);
            press(f, L"OK");
        }));
        EXPECT_EQ(opened, c.opens);
        EXPECT_EQ(storedUserValues(), c.stored) << ZString(c.opens).toUtf8();
    }
}

// Numbers out of range or not whole are refused with a message and the dialog stays open;
// Cancel, Escape and the close box store nothing; a failed store keeps the dialog open.
TEST(FormatOptions, RefusesBadNumbersAndStoresNothingWhenLeftOtherwiseOrWhenTheStoreFails)
{
    EnglishScratch env;
    const wchar_t* const badDpi = L"The resolution must be a whole number greater than 0.";
    const wchar_t* const badQuality = L"The JPEG quality must be a whole number from 0 to 100.";
    const struct {
        const wchar_t *dpi, *quality, *message;
    } refused[] = {
        {L"0", L"80", badDpi},    {L"-72", L"80", badDpi},        {L"abc", L"80", badDpi},
        {L"", L"80", badDpi},     {L"1.5", L"80", badDpi},        {L"3000000000", L"80", badDpi},
        {L"72", L"101", badQuality}, {L"72", L"-1", badQuality}, {L"72", L"high", badQuality},
    };
    std::vector<std::wstring> seen, expected;
    EXPECT_FALSE(showWith([&](UiRobot& robot, const Form& f) {
        for (const auto& r : refused) {
            enter(f, r.dpi, r.quality);
            press(f, L"OK");
            const MessageBoxInfo box = answerMessageBox(robot);
            HWND field = r.message == badDpi ? f.dpi : f.quality;
            const bool focused = pumpUntil([&] { return focusOf(f.dialog) == field; }, 5000);
            seen.push_back(box.title + L": " + box.text + (focused && IsWindow(f.dialog) ? L"" : L" (focus lost)")
                           + (box.icon == MB_ICONWARNING ? L"" : L" (no warning)"));
            expected.push_back(std::wstring(L"PDF Options for Pictures: ") + r.message);
        }
        enter(f, L"300", L"50", false, false);
        press(f, L"Cancel");
    }));
    EXPECT_EQ(seen, expected);
    EXPECT_EQ(storedUserValues(), kNothingStored);
    for (const CloseBy how : {CloseBy::escape, CloseBy::closeBox}) {
        EXPECT_FALSE(showWith([&](UiRobot&, const Form& f) {
            enter(f, L"300", L"50", false, false);
            closeDialog(f.dialog, how);
        }));
        EXPECT_EQ(storedUserValues(), kNothingStored);
    }

    settings_redirect(env.registryKey() + L"\\" + ZString(300, L'x')); // key names over 255 characters fail
    MessageBoxInfo box;
    EXPECT_FALSE(showWith([&](UiRobot& robot, const Form& f) {
        press(f, L"OK");
        box = answerMessageBox(robot);
        if (!IsWindow(f.dialog))
            throw RobotFailure("the dialog closed after a failed store");
        press(f, L"Cancel");
    }));
    EXPECT_EQ(box.title + L": " + box.text + (box.icon == MB_ICONWARNING ? L"" : L" (no warning)"),
              L"Error: Could not save the PDF options");
}

} // namespace

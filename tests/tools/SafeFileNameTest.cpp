#include "tools/assistant/SafeFileName.h"

#include <gtest/gtest.h>

namespace {

constexpr int kWide = 243; // the room in a short folder

struct NameCase {
    const wchar_t* wanted;
    int room;
    const wchar_t* saved;
};

const NameCase kNames[] = {
    // Window titles as they come.
    {L"Untitled - Notepad", kWide, L"Untitled - Notepad"},
    {L"*Unsaved.txt - Editor", kWide, L"_Unsaved.txt - Editor"},
    {L"Report 12/05/2024", kWide, L"Report 12_05_2024"},
    {L"Why? \"Quoted\" <a|b>: c", kWide, L"Why_ _Quoted_ _a_b__ c"},
    {L"tab\there\x1f", kWide, L"tab_here_"},
    {L"  padded . . ", kWide, L"padded"},
    // Path parts are never followed.
    {L"..\\..\\x", kWide, L".._.._x"},
    {L"C:\\x", kWide, L"C__x"},
    {L"\\\\server\\share\\x", kWide, L"__server_share_x"},
    {L"x/../../y", kWide, L"x_.._.._y"},
    {L"..", kWide, L"Untitled"},
    // Device names, in any case, with an extension or trailing blanks.
    {L"CON", kWide, L"_CON"},
    {L"con.pdf", kWide, L"_con.pdf"},
    {L"Com1", kWide, L"_Com1"},
    {L"lpt9.txt", kWide, L"_lpt9.txt"},
    {L"NUL .x", kWide, L"_NUL .x"},
    {L"aux   ", kWide, L"_aux"},
    {L"prn.", kWide, L"_prn"},
    {L"COM\u00b9", kWide, L"_COM\u00b9"},
    {L"Console", kWide, L"Console"},
    {L"COM10", kWide, L"COM10"},
    // Nothing left: the fallback; a replaced character is not nothing.
    {L"", kWide, L"Untitled"},
    {L" . .", kWide, L"Untitled"},
    {L"?", kWide, L"_"},
    // Surrogates: pairs stay, lone halves go.
    {L"a\xD83D\xDE00" L"b", kWide, L"a\xD83D\xDE00" L"b"},
    {L"a\xD800" L"b\xDC00", kWide, L"a_b_"},
    // Cutting to the room: never inside a pair, never to a blank, dot or device name.
    {L"abcdef", 4, L"abcd"},
    {L"abc def", 4, L"abc"},
    {L"ab\xD83D\xDE00", 3, L"ab"},
    {L"ab\xD83D\xDE00", 4, L"ab\xD83D\xDE00"},
    {L"Console", 3, L"_Co"},
    {L"", 3, L"Unt"},
    {L"CON", 3, L"_CO"},
    {L"anything", 0, L""},
};

TEST(SafeFileName, TitlesBecomeNamesWindowsAcceptsInTheFolderItself)
{
    for (const NameCase& c : kNames)
        EXPECT_EQ(safeFileName(c.wanted, c.room, L"Untitled").toUtf8(), ZString(c.saved).toUtf8())
            << ZString(c.wanted).toUtf8() << " in " << c.room;
}

TEST(SafeFileName, RoomKeepsTheWholePathWithinMaxPath)
{
    // "C:\out\" + name + " (99999).pdf" is 259 units, the most without a terminator.
    EXPECT_EQ(roomForName(L"C:\\out"), 259 - 7 - kLongestNameEnding);
    EXPECT_EQ(roomForName(L"C:\\out\\\\"), roomForName(L"C:\\out"));
    // A short folder: the file's own name may have 255 units.
    EXPECT_EQ(roomForName(L"C:"), 255 - kLongestNameEnding);
    EXPECT_EQ(roomForName(ZString(246, L'd')), 0);
}

} // namespace

#include "xhtml/MarkupText.h"

namespace xhtml {

namespace {

struct LetterRange {
    ZChar first;
    ZChar last;
};

// Sorted; the Latin-1 gaps (multiplication and division signs) are split out.
constexpr LetterRange letterRanges[] = {
    {0x00AA, 0x00AA}, {0x00B5, 0x00B5}, {0x00BA, 0x00BA}, {0x00C0, 0x00D6}, {0x00D8, 0x00F6},
    {0x00F8, 0x02AF}, {0x0370, 0x03FF}, {0x0400, 0x0481}, {0x048A, 0x052F}, {0x0531, 0x0587},
    {0x05D0, 0x05EA}, {0x0620, 0x064A}, {0x3041, 0x30FF}, {0x4E00, 0x9FFF}, {0xAC00, 0xD7A3},
};

} // namespace

bool isLetterSlow(ZChar unit)
{
    for (const LetterRange& range : letterRanges) {
        if (unit < range.first)
            return false;
        if (unit <= range.last)
            return true;
    }
    return false;
}

bool equals(const ZString& text, const char16_t* literal)
{
    const ZChar* units = text.c_str();
    const int length = text.length();
    for (int i = 0; i < length; ++i, ++literal) {
        if (*literal == 0 || static_cast<char16_t>(units[i]) != *literal)
            return false;
    }
    return *literal == 0;
}

bool equalsNoCase(const ZString& text, const char16_t* literal)
{
    const ZChar* units = text.c_str();
    const int length = text.length();
    for (int i = 0; i < length; ++i, ++literal) {
        if (*literal == 0 || asciiLower(units[i]) != asciiLower(static_cast<ZChar>(*literal)))
            return false;
    }
    return *literal == 0;
}

bool equalsNoCase(const ZString& a, const ZString& b)
{
    if (a.length() != b.length())
        return false;
    const ZChar* x = a.c_str();
    const ZChar* y = b.c_str();
    for (int i = 0; i < a.length(); ++i) {
        if (asciiLower(x[i]) != asciiLower(y[i]))
            return false;
    }
    return true;
}

ZString trimmed(const ZChar* begin, const ZChar* end)
{
    while (begin < end && isSpace(*begin))
        ++begin;
    while (end > begin && isSpace(end[-1]))
        --end;
    return ZString(begin, static_cast<int>(end - begin));
}

std::vector<ZString> splitWords(const ZString& value)
{
    auto isSeparator = [](ZChar unit) { return unit == ' ' || unit == ';' || unit == ',' || unit == ':'; };
    std::vector<ZString> words;
    const ZChar* p = value.c_str();
    const ZChar* end = p + value.length();
    while (p < end) {
        while (p < end && isSeparator(*p))
            ++p;
        const ZChar* start = p;
        while (p < end && !isSeparator(*p))
            ++p;
        ZString word = trimmed(start, p);
        if (!word.isEmpty())
            words.push_back(std::move(word));
    }
    return words;
}

} // namespace xhtml

#include "xhtml/HtmlEntities.h"

#include "xhtml/MarkupText.h"
#include "xhtml/NumberReader.h"

namespace xhtml {

namespace {

constexpr NamedEntity entityTable[namedEntityCount] = {
    {u"&quot;", 0x0022}, {u"&amp;", 0x0026}, {u"&lt;", 0x003C}, {u"&gt;", 0x003E},
    {u"&nbsp;", 0x00A0}, {u"&iexcl;", 0x00A1}, {u"&cent;", 0x00A2}, {u"&pound;", 0x00A3},
    {u"&curren;", 0x00A4}, {u"&yen;", 0x00A5}, {u"&brvbar;", 0x00A6}, {u"&sect;", 0x00A7},
    {u"&uml;", 0x00A8}, {u"&copy;", 0x00A9}, {u"&ordf;", 0x00AA}, {u"&laquo;", 0x00AB},
    {u"&not;", 0x00AC}, {u"&shy;", 0x00AD}, {u"&reg;", 0x00AE}, {u"&macr;", 0x00AF},
    {u"&deg;", 0x00B0}, {u"&plusmn;", 0x00B1}, {u"&sup2;", 0x00B2}, {u"&sup3;", 0x00B3},
    {u"&acute;", 0x00B4}, {u"&micro;", 0x00B5}, {u"&para;", 0x00B6}, {u"&middot;", 0x00B7},
    {u"&cedil;", 0x00B8}, {u"&sup1;", 0x00B9}, {u"&ordm;", 0x00BA}, {u"&raquo;", 0x00BB},
    {u"&frac14;", 0x00BC}, {u"&frac12;", 0x00BD}, {u"&frac34;", 0x00BE}, {u"&iquest;", 0x00BF},
    {u"&Agrave;", 0x00C0}, {u"&Aacute;", 0x00C1}, {u"&Acirc;", 0x00C2}, {u"&Atilde;", 0x00C3},
    {u"&Auml;", 0x00C4}, {u"&Aring;", 0x00C5}, {u"&AElig;", 0x00C6}, {u"&Ccedil;", 0x00C7},
    {u"&Egrave;", 0x00C8}, {u"&Eacute;", 0x00C9}, {u"&Ecirc;", 0x00CA}, {u"&Euml;", 0x00CB},
    {u"&Igrave;", 0x00CC}, {u"&Iacute;", 0x00CD}, {u"&Icirc;", 0x00CE}, {u"&Iuml;", 0x00CF},
    {u"&ETH;", 0x00D0}, {u"&Ntilde;", 0x00D1}, {u"&Ograve;", 0x00D2}, {u"&Oacute;", 0x00D3},
    {u"&Ocirc;", 0x00D4}, {u"&Otilde;", 0x00D5}, {u"&Ouml;", 0x00D6}, {u"&times;", 0x00D7},
    {u"&Oslash;", 0x00D8}, {u"&Ugrave;", 0x00D9}, {u"&Uacute;", 0x00DA}, {u"&Ucirc;", 0x00DB},
    {u"&Uuml;", 0x00DC}, {u"&Yacute;", 0x00DD}, {u"&THORN;", 0x00DE}, {u"&szlig;", 0x00DF},
    {u"&agrave;", 0x00E0}, {u"&aacute;", 0x00E1}, {u"&acirc;", 0x00E2}, {u"&atilde;", 0x00E3},
    {u"&auml;", 0x00E4}, {u"&aring;", 0x00E5}, {u"&aelig;", 0x00E6}, {u"&ccedil;", 0x00E7},
    {u"&egrave;", 0x00E8}, {u"&eacute;", 0x00E9}, {u"&ecirc;", 0x00EA}, {u"&euml;", 0x00EB},
    {u"&igrave;", 0x00EC}, {u"&iacute;", 0x00ED}, {u"&icirc;", 0x00EE}, {u"&iuml;", 0x00EF},
    {u"&eth;", 0x00F0}, {u"&ntilde;", 0x00F1}, {u"&ograve;", 0x00F2}, {u"&oacute;", 0x00F3},
    {u"&ocirc;", 0x00F4}, {u"&otilde;", 0x00F5}, {u"&ouml;", 0x00F6}, {u"&divide;", 0x00F7},
    {u"&oslash;", 0x00F8}, {u"&ugrave;", 0x00F9}, {u"&uacute;", 0x00FA}, {u"&ucirc;", 0x00FB},
    {u"&uuml;", 0x00FC}, {u"&yacute;", 0x00FD}, {u"&thorn;", 0x00FE}, {u"&yuml;", 0x00FF},
    {u"&OElig;", 0x0152}, {u"&oelig;", 0x0153}, {u"&Scaron;", 0x0160}, {u"&scaron;", 0x0161},
    {u"&Yuml;", 0x0178}, {u"&fnof;", 0x0192}, {u"&circ;", 0x02C6}, {u"&tilde;", 0x02DC},
    {u"&ndash;", 0x2013}, {u"&mdash;", 0x2014}, {u"&lsquo;", 0x2018}, {u"&rsquo;", 0x2019},
    {u"&sbquo;", 0x201A}, {u"&ldquo;", 0x201C}, {u"&rdquo;", 0x201D}, {u"&bdquo;", 0x201E},
    {u"&dagger;", 0x2020}, {u"&Dagger;", 0x2021}, {u"&bull;", 0x2022}, {u"&hellip;", 0x2026},
    {u"&permil;", 0x2030}, {u"&lsaquo;", 0x2039}, {u"&rsaquo;", 0x203A}, {u"&euro;", 0x20AC},
    {u"&trade;", 0x2122},
};

bool startsWith(const ZChar* p, const char16_t* literal)
{
    for (; *literal; ++p, ++literal) {
        if (static_cast<char16_t>(*p) != *literal)
            return false;
    }
    return true;
}

bool sameName(const ZChar* candidate, int length, const char16_t* name)
{
    for (int i = 0; i < length; ++i) {
        if (name[i] == 0 || static_cast<char16_t>(candidate[i]) != name[i])
            return false;
    }
    return name[length] == 0;
}

// number-reference := "&#" ("x" hex | "0x" hex | "0" octal | decimal) ";"
// Each form has a shortest candidate; the number must run exactly to the ";" and be
// non-negative. Returns false for anything else.
bool decodeNumber(const ZChar* candidate, int length, ZChar& unit)
{
    int base = 10;
    int digitsAt = 2;
    int shortest = 4;
    if (startsWith(candidate, u"&#x") || startsWith(candidate, u"&#X")) {
        base = 16, digitsAt = 3, shortest = 5;
    } else if (startsWith(candidate, u"&#0x") || startsWith(candidate, u"&#0X")) {
        base = 16, digitsAt = 4, shortest = 6;
    } else if (startsWith(candidate, u"&#0")) {
        base = 8, digitsAt = 3, shortest = 5;
    }
    if (length < shortest)
        return false;
    const ZChar* end = nullptr;
    const int32_t value = readLong(candidate + digitsAt, &end, base);
    if (end != candidate + length - 1 || value < 0)
        return false;
    unit = static_cast<ZChar>(value & 0xFFFF); // one UTF-16 unit, as the reference's low 16 bits
    return true;
}

bool decodeName(const ZChar* candidate, int length, ZChar& unit)
{
    for (const NamedEntity& entity : entityTable) {
        if (sameName(candidate, length, entity.name)) {
            unit = static_cast<ZChar>(entity.unit);
            return true;
        }
    }
    return false;
}

// The length of the candidate "&...;" at p, or 0 when another "&" or the end comes first.
int candidateLength(const ZChar* p, const ZChar* end)
{
    for (const ZChar* q = p + 1; q < end; ++q) {
        if (*q == ';')
            return static_cast<int>(q - p) + 1;
        if (*q == '&')
            return 0;
    }
    return 0;
}

} // namespace

const NamedEntity* namedEntities()
{
    return entityTable;
}

void decodeEntities(ZString& text)
{
    if (text.find(ZChar('&')) == ZString::npos)
        return;
    const ZChar* p = text.c_str();
    const ZChar* end = p + text.length();
    ZString::Storage out;
    out.reserve(text.units().size());
    while (p < end) {
        const int length = *p == '&' ? candidateLength(p, end) : 0;
        ZChar unit = 0;
        if (length == 0) {
            out.push_back(*p++);
            continue;
        }
        const bool decoded = p[1] == '#' ? decodeNumber(p, length, unit) : decodeName(p, length, unit);
        if (decoded)
            out.push_back(unit);
        else
            out.append(p, static_cast<size_t>(length));
        p += length;
    }
    text = ZString(std::move(out));
}

} // namespace xhtml

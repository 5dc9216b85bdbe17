#include "companions/language/LanguageFile.h"

namespace {

ZString unescape(const ZString& text)
{
    ZString out;
    for (int i = 0; i < text.length(); ++i) {
        const ZChar c = text.getAt(i);
        if (c != '\\' || i + 1 == text.length()) {
            out += c;
            continue;
        }
        const ZChar next = text.getAt(++i);
        if (next == 'n')
            out += ZChar('\n');
        else if (next == 't')
            out += ZChar('\t');
        else if (next == '\\')
            out += ZChar('\\');
        else
            out.append(ZChar('\\')).append(next); // not an escape: keep both as written
    }
    return out;
}

} // namespace

LanguageTexts parseLanguageFile(std::string_view utf8)
{
    if (utf8.substr(0, 3) == "\xEF\xBB\xBF")
        utf8.remove_prefix(3);
    LanguageTexts texts;
    while (!utf8.empty()) {
        const size_t end = utf8.find('\n');
        const std::string_view line = utf8.substr(0, end);
        utf8.remove_prefix(end == std::string_view::npos ? utf8.size() : end + 1);

        const ZString text = ZString::fromUtf8(line).trim();
        if (text.isEmpty() || text.getAt(0) == '#' || text.getAt(0) == ';')
            continue;
        const int equals = text.find(ZChar('='));
        if (equals == ZString::npos)
            continue;
        const ZString key = text.substring(0, equals).trim();
        if (key.isEmpty())
            continue;
        texts[key] = unescape(text.substring(equals + 1).trim());
    }
    return texts;
}

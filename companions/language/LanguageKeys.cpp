#include "companions/language/LanguageKeys.h"

#include "companions/language/Language.h"

namespace language {

namespace {

enum class Escape { none, singleQuoted, doubleQuoted, html };

struct KeyForm {
    const wchar_t* opening;
    Escape escape;
};

const KeyForm kForms[] = {
    {L"{lang/", Escape::none},
    {L"{lang-esq/", Escape::singleQuoted},
    {L"{lang-edq/", Escape::doubleQuoted},
    {L"{lang-hsc/", Escape::html},
};

// For a script string: the backslash, the quote and line ends get a backslash.
ZString escapedForQuotes(const ZString& text, ZChar quote)
{
    ZString out;
    for (ZChar unit : text.units()) {
        if (unit == '\\' || unit == quote) {
            out += ZChar('\\');
            out += unit;
        } else if (unit == '\n') {
            out += ZString(L"\\n");
        } else if (unit == '\r') {
            out += ZString(L"\\r");
        } else {
            out += unit;
        }
    }
    return out;
}

ZString escapedForHtml(const ZString& text)
{
    ZString out;
    for (ZChar unit : text.units()) {
        switch (unit) {
        case '&': out += ZString(L"&amp;"); break;
        case '<': out += ZString(L"&lt;"); break;
        case '>': out += ZString(L"&gt;"); break;
        case '"': out += ZString(L"&quot;"); break;
        case '\'': out += ZString(L"&#39;"); break;
        default: out += unit; break;
        }
    }
    return out;
}

ZString escaped(const ZString& text, Escape escape)
{
    switch (escape) {
    case Escape::singleQuoted: return escapedForQuotes(text, '\'');
    case Escape::doubleQuoted: return escapedForQuotes(text, '"');
    case Escape::html: return escapedForHtml(text);
    default: return text;
    }
}

// "?/name" and its kin; an unknown fact is empty.
ZString languageFact(const ZString& key, const LanguageFacts& facts)
{
    const ZString name = key.substring(2);
    struct Fact {
        const wchar_t* first;
        const wchar_t* second;
        const ZString LanguageFacts::*field;
    };
    static const Fact table[] = {
        {L"langName", L"name", &LanguageFacts::name},
        {L"langCode", L"code", &LanguageFacts::code},
        {L"langNativeName", L"nativeName", &LanguageFacts::nativeName},
        {L"fileName", nullptr, &LanguageFacts::fileName},
        {L"countryCode", nullptr, &LanguageFacts::countryCode},
        {L"langDir", L"dir", &LanguageFacts::direction},
    };
    for (const Fact& fact : table) {
        if (name == ZString(fact.first) || (fact.second && name == ZString(fact.second)))
            return facts.*fact.field;
    }
    return ZString();
}

// The first opening of any form at or after `from`.
int nextOpening(const ZString& text, int from, const KeyForm*& form)
{
    int best = ZString::npos;
    for (const KeyForm& candidate : kForms) {
        const int at = text.find(ZString(candidate.opening), from);
        if (at != ZString::npos && (best == ZString::npos || at < best)) {
            best = at;
            form = &candidate;
        }
    }
    return best;
}

} // namespace

LanguageSource installedLanguage()
{
    LanguageSource source;
    source.has = [](const ZString& key) { return lang_hasStr(key); };
    source.text = [](const ZString& key) { return lang_getStr(key); };
    source.facts = [] {
        const LanguageInfo info = lang_getCurrent();
        return LanguageFacts{info.name, info.code, info.nativeName, info.fileName, info.countryCode, info.direction};
    };
    return source;
}

ZString languageText(const ZString& key, const ZString& section, const LanguageSource& source)
{
    if (key.startsWith(ZString(L"?/")))
        return languageFact(key, source.facts());
    const ZString own = section + key;
    return source.has(own) ? source.text(own) : source.text(key);
}

void replaceLanguageKeys(ZString& text, const ZString& section, const LanguageSource& source)
{
    if (text.find(ZString(L"{lang")) == ZString::npos)
        return;
    ZString out;
    int at = 0;
    const KeyForm* form = nullptr;
    for (int opening = nextOpening(text, 0, form); opening != ZString::npos; opening = nextOpening(text, at, form)) {
        const int keyStart = opening + static_cast<int>(wcslen(form->opening));
        const int close = text.find(ZChar('}'), keyStart);
        if (close == ZString::npos)
            break;
        out += text.substring(at, opening - at);
        out += escaped(languageText(text.substring(keyStart, close - keyStart), section, source), form->escape);
        at = close + 1;
    }
    out += text.substring(at);
    text = out;
}

} // namespace language

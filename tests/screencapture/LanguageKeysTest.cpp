// Language keys in the dialog's markup, against a language of known texts.

#include "screencapture/ui/LanguageKeys.h"

#include <gtest/gtest.h>

#include <map>

namespace {

const std::map<std::wstring, std::wstring> knownTexts = {
    {L"screen-capture/start", L"Capture"},
    {L"start", L"Start (general)"},
    {L"general/ok", L"OK"},
    {L"screen-capture/quote", L"It's \"<b>\" & \\ fine"},
};

TEST(LanguageKeys, EveryFormIsReplacedWithTheDialogsOwnTextFirst)
{
    screenCapture::LanguageSource source;
    source.has = [](const ZString& key) { return knownTexts.count(key.c_str()) > 0; };
    source.text = [](const ZString& key) {
        auto found = knownTexts.find(key.c_str());
        return found == knownTexts.end() ? key : ZString(found->second.c_str()); // the key itself if missing
    };
    source.facts = [] { return screenCapture::LanguageFacts{L"German", L"de", L"Deutsch", L"de.lng", L"DE", L"ltr"}; };
    const struct {
        const wchar_t* markup;
        const wchar_t* expected;
    } cases[] = {
        {L"<b>{lang/start}</b>", L"<b>Capture</b>"},
        {L"a{lang/start}b{lang/general/ok}c", L"aCapturebOKc"},
        {L"{lang/no/such}", L"no/such"},
        {L"'{lang-esq/quote}'", L"'It\\'s \"<b>\" & \\\\ fine'"},
        {L"\"{lang-edq/quote}\"", L"\"It's \\\"<b>\\\" & \\\\ fine\""},
        {L"{lang-hsc/quote}", L"It&#39;s &quot;&lt;b&gt;&quot; &amp; \\ fine"},
        {L"{lang/?/langName} {lang/?/name} {lang/?/code} {lang/?/langCode}", L"German German de de"},
        {L"{lang/?/nativeName}/{lang/?/fileName}/{lang/?/countryCode}/{lang/?/dir}/{lang/?/langDir}",
         L"Deutsch/de.lng/DE/ltr/ltr"},
        {L"{lang/start", L"{lang/start"},
        {L"{lang}{language/x}", L"{lang}{language/x}"},
    };
    for (const auto& c : cases) {
        ZString text(c.markup);
        screenCapture::replaceLanguageKeys(text, source);
        EXPECT_EQ(text, ZString(c.expected)) << ZString(c.markup).toUtf8();
    }
}

} // namespace

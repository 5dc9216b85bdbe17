#include "companions/about/About.h"

#include "base/win/GdiplusSession.h"
#include "companions/dialog/CompanionDialog.h"
#include "companions/language/Language.h"
#include "pryxa/Version.h"

namespace {

// The box: the markup shows the product; the details field the version, the language and
// the notices, as text the user can select and copy.
class AboutBox : public companions::CompanionDialog {
public:
    AboutBox() : CompanionDialog(L"res:///about.xhtml", L"about/") {}

protected:
    void onShown() override
    {
        setFieldValue(L"details", details());
        focusControl(L"close");
    }

    void onButton(const ZString& name) override
    {
        if (name == ZString(L"close"))
            destroy();
    }

private:
    ZString details()
    {
        return text(L"version") + L" " + PRYXA_VERSION_WTEXT + L"\n" + text(L"language") + L": " + languageName()
               + L"\n\n" + notices();
    }

    // "Deutsch (German)"; a language's native name alone when it is its English name too.
    static ZString languageName()
    {
        const LanguageInfo language = lang_getCurrent();
        if (language.name.isEmpty() || language.name == language.nativeName)
            return language.nativeName;
        return language.nativeName + L" (" + language.name + L")";
    }

    ZString notices()
    {
        std::vector<uint8_t> bytes;
        context().resourceLoader()->load(L"res:///notices.txt", bytes);
        return xhtml::decodeMarkupBytes(bytes);
    }
};

} // namespace

extern "C" ABOUT_API void about_show(HWND owner)
{
    try {
        const GdiplusSession gdiplus; // for the logo, as long as the box lives
        AboutBox box;
        if (!box.run(owner))
            MessageBoxW(nullptr, L"Could not show the About box", L"Error", MB_OK | MB_ICONWARNING);
    } catch (...) {
        // Nothing leaves the library; the box is gone with the stack.
    }
}

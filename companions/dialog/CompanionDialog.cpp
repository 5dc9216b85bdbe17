#include "companions/dialog/CompanionDialog.h"

#include "base/win/ThisModule.h"
#include "companions/language/LanguageKeys.h"
#include "xhtml/win/ModuleResourceLoader.h"

namespace companions {

namespace {

// The window class in this library for the length of one dialog, so that no class with a
// procedure in an unloaded library stays behind. Unregistering fails harmlessly while another
// dialog of the library is open.
class FrameClass {
public:
    FrameClass() : registered_(xhtml::XhtmlFrameView::registerClass(thisModule())) {}
    ~FrameClass() { UnregisterClassW(xhtml::XhtmlFrameView::className, thisModule()); }
    FrameClass(const FrameClass&) = delete;
    FrameClass& operator=(const FrameClass&) = delete;

    bool registered() const { return registered_; }

private:
    bool registered_;
};

} // namespace

CompanionDialog::CompanionDialog(const ZString& markupAddress, const ZString& section)
    : markupAddress_(markupAddress), section_(section), buttons_(*this)
{
    context().setResourceLoader(std::make_unique<xhtml::ModuleResourceLoader>(thisModule()));
    context().setButtonListener(&buttons_);
}

bool CompanionDialog::run(HWND owner)
{
    const FrameClass frameClass;
    if (!frameClass.registered() || !open(owner))
        return false;
    makeModal();
    return true;
}

bool CompanionDialog::open(HWND owner)
{
    if (!create(WS_EX_DLGMODALFRAME, className, text(L"title").c_str(), WS_POPUP | WS_CAPTION | WS_SYSMENU, 0, 0, 0, 0,
                IsWindow(owner) ? owner : nullptr, nullptr, thisModule(), this))
        return false;
    setSizeToContent(true, true);
    if (!load(markupAddress_)) {
        destroy();
        return false;
    }
    requestFit(true);
    show(SW_SHOW);
    setForeground();
    onShown(); // after the activation, which puts the focus on the frame
    return true;
}

void CompanionDialog::filterMarkup(ZString& markup)
{
    language::replaceLanguageKeys(markup, section_, language::installedLanguage());
}

ZString CompanionDialog::text(const ZString& key) const
{
    return language::languageText(key, section_, language::installedLanguage());
}

void CompanionDialog::focusControl(const ZString& id)
{
    HWND control = controlWindow(id);
    if (!control)
        return;
    SetFocus(control);
    SendMessageW(control, EM_SETSEL, 0, -1); // controls other than fields ignore it
}

void CompanionDialog::tellUser(const ZString& message)
{
    MessageBoxW(handle(), message.c_str(), text(L"title").c_str(), MB_OK | MB_ICONWARNING);
}

} // namespace companions

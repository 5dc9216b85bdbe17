#include "screencapture/ui/ScreenCaptureUi.h"

#include "browser/AppInfo.h"
#include "companions/language/Language.h"
#include "companions/language/LanguageKeys.h"
#include "companions/settings/Settings.h"
#include "screencapture/CaptureVocabulary.h"

namespace screenCapture {

namespace {

const wchar_t* const kLastMode = L"screenCapture.lastMode";
const wchar_t* const kLastTarget = L"screenCapture.lastTarget";
const wchar_t* const kModeSelect = L"modeSelect";
const wchar_t* const kTargetSelect = L"targetSelect";

ZString nameOrEmpty(const ZChar* name)
{
    return name ? ZString(name) : ZString();
}

} // namespace

ScreenCaptureUi::ScreenCaptureUi() : start_(*this)
{
    start_.mode = static_cast<Mode>(userConfig_getDword(kLastMode, 0));
    start_.target = static_cast<Target>(userConfig_getDword(kLastTarget, 0));
}

ScreenCaptureUi::~ScreenCaptureUi() = default;

void ScreenCaptureUi::StartListener::onButtonPressed(const ZString& name)
{
    if (name != ZString(L"start"))
        return;
    accepted = true;
    mode = modeNamed(dialog_.selectValue(kModeSelect).c_str());
    target = targetNamed(dialog_.selectValue(kTargetSelect).c_str());
    userConfig_setDword(kLastMode, static_cast<uint32_t>(mode));
    userConfig_setDword(kLastTarget, static_cast<uint32_t>(target));
    dialog_.destroy();
}

void ScreenCaptureUi::filterMarkup(ZString& text)
{
    language::replaceLanguageKeys(text, L"screen-capture/", language::installedLanguage());
}

LRESULT ScreenCaptureUi::onCreate()
{
    setText(lang_getStr(L"screen-capture/capture-screen").c_str());
    context().setButtonListener(&start_);
    setAxisMode(3, 0);
    setSizeToContent(true, true);
    load(markupAddress);
    if (embeddedBrowserEnabled())
        openInAppPage();
    // A mode or target without an option (nothing stored, or the clipboard mode) leaves
    // the markup's own selection.
    setSelectValue(kModeSelect, nameOrEmpty(nameOf(start_.mode)));
    setSelectValue(kTargetSelect, nameOrEmpty(nameOf(start_.target)));
    if (sizesToContent())
        requestFit(true);
    show(SW_SHOW);
    setForeground();
    return 0;
}

void ScreenCaptureUi::openInAppPage()
{
    if (!inAppPageFactory)
        return; // no browser in this program: the bar keeps its own content
    ole_.emplace();
    browser_ = inAppPageFactory(handle());
    if (!browser_)
        return;
    placeInAppPage();
    browser_->navigate(inAppPageAddress(browser::inAppQuery(ZString())));
}

void ScreenCaptureUi::placeInAppPage()
{
    const xhtml::Rect bottom = elementRect(L"bottom");
    browser_->setBounds(RECT{bottom.x, bottom.y, bottom.right(), bottom.bottom()});
}

void ScreenCaptureUi::onLayout()
{
    if (browser_)
        placeInAppPage();
}

LRESULT ScreenCaptureUi::handleMessage(UINT message, WPARAM wParam, LPARAM lParam)
{
    switch (message) {
    case WM_CREATE:
        return onCreate();
    case WM_CLOSE:
        destroy();
        return 0;
    default:
        return XhtmlFrameView::handleMessage(message, wParam, lParam);
    }
}

} // namespace screenCapture

#include "browser/DefaultBrowser.h"

#include <windows.h>
#include <shellapi.h>

namespace browser {

namespace {

void shellOpen(const ZString& address)
{
    ShellExecuteW(nullptr, L"open", address.c_str(), nullptr, nullptr, SW_SHOWNORMAL);
}

} // namespace

UrlOpener openInDefaultBrowser = shellOpen;

} // namespace browser

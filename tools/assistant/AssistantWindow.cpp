#include "tools/assistant/AssistantWindow.h"

#include "base/win/ThisModule.h"
#include "screencapture/AssistantHandOff.h"

namespace {

constexpr UINT_PTR kIdleTimer = 1;

} // namespace

AssistantWindow::AssistantWindow(Mailbox::Handler handler, UINT idleMs)
    : idleMs_(idleMs), mailbox_(std::move(handler))
{
}

bool AssistantWindow::open()
{
    WNDCLASSW windowClass = {};
    windowClass.lpfnWndProc = &BaseWindow::windowProc;
    windowClass.hInstance = thisModule();
    windowClass.lpszClassName = kAssistantWindowClass;
    RegisterClassW(&windowClass); // fails harmlessly after the first time
    // A hidden top-level window, not a message-only one: FindWindowW must find it.
    return create(0, kAssistantWindowClass, L"Pryxa Assistant", WS_POPUP, 0, 0, 0, 0, nullptr, nullptr, thisModule(),
                  this)
        && setTimer(kIdleTimer, idleMs_) != 0;
}

void AssistantWindow::receive(ZString line)
{
    mailbox_.post(std::move(line));
    setTimer(kIdleTimer, idleMs_); // the idle time starts again
}

LRESULT AssistantWindow::handleMessage(UINT message, WPARAM wParam, LPARAM lParam)
{
    switch (message) {
    case WM_COPYDATA:
        return onCopyData(*reinterpret_cast<const COPYDATASTRUCT*>(lParam));
    case WM_TIMER:
        if (wParam == kIdleTimer)
            onIdle();
        return 0;
    case WM_CLOSE:
        destroy();
        return 0;
    case WM_DESTROY:
        PostQuitMessage(0);
        return 0;
    default:
        return defaultProc(message, wParam, lParam);
    }
}

LRESULT AssistantWindow::onCopyData(const COPYDATASTRUCT& data)
{
    if (data.dwData != screenCapture::kCommandLineCopyData || data.cbData < sizeof(wchar_t) || !data.lpData)
        return FALSE;
    // The text is only valid during the message: copy it, without trusting a terminator.
    receive(ZString(static_cast<const wchar_t*>(data.lpData), static_cast<int>(data.cbData / sizeof(wchar_t)) - 1));
    return TRUE;
}

// The timer ticks on while files are being saved; the next tick looks again.
void AssistantWindow::onIdle()
{
    if (!mailbox_.busy())
        destroy();
}

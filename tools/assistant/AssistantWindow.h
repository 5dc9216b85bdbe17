#pragma once
// The assistant's hidden window. It takes command lines by WM_COPYDATA (code 111), copies
// each, hands it to its mailbox and answers at once: the program that sent it waits in
// SendMessageW for that answer, and must never wait for files to be saved. When nothing
// has come for the idle time and nothing is being saved, the window closes itself and
// posts WM_QUIT, as it does on WM_CLOSE.

#include "base/ZString.h"
#include "base/win/BaseWindow.h"
#include "tools/assistant/Mailbox.h"

#include <windows.h>

// Spelled so on purpose: the suite looks for this class.
inline constexpr wchar_t kAssistantWindowClass[] = L"Pryxa_Assistent";

class AssistantWindow : public BaseWindow {
public:
    // `handler` gets each command line on the mailbox's thread.
    AssistantWindow(Mailbox::Handler handler, UINT idleMs);

    // Creates the window; false if that failed.
    bool open();
    // A command line from elsewhere (the program's own), taken like a received one.
    void receive(ZString line);

protected:
    LRESULT handleMessage(UINT message, WPARAM wParam, LPARAM lParam) override;

private:
    LRESULT onCopyData(const COPYDATASTRUCT& data);
    void onIdle();

    UINT idleMs_;
    // Destroyed before the window: lines still waiting are handled first.
    Mailbox mailbox_;
};

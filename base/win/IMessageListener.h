#pragma once
// Something that wants to see every message of a window before the window's own handler.

#include "base/win/BaseWindow.h"

class BaseWindow::IMessageListener {
public:
    virtual ~IMessageListener() = default;
    // Called before the filter or the handler; it cannot change the message's result. It may
    // add or remove listeners of `window`, itself included.
    virtual void onMessage(BaseWindow& window, UINT message, WPARAM wParam, LPARAM lParam) = 0;
};

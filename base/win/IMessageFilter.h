#pragma once
// Takes over the messages of a window: while set, the window's own handler is not called.

#include "base/win/BaseWindow.h"

class BaseWindow::IMessageFilter {
public:
    virtual ~IMessageFilter() = default;
    // The message's result.
    virtual LRESULT filterMessage(BaseWindow& window, UINT message, WPARAM wParam, LPARAM lParam) = 0;
};

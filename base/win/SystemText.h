#pragma once
// The system's text for an error code, as FormatMessageW gives it (with its line break),
// in a buffer that is freed with LocalFree when the owner goes.

#include <windows.h>

class SystemText {
public:
    explicit SystemText(DWORD errorCode)
    {
        FormatMessageW(FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS,
                       nullptr, errorCode, LANG_USER_DEFAULT, reinterpret_cast<LPWSTR>(&text_), 0, nullptr);
    }
    ~SystemText()
    {
        if (text_)
            LocalFree(text_);
    }
    SystemText(const SystemText&) = delete;
    SystemText& operator=(const SystemText&) = delete;

    // Empty when the system has no text for the code.
    const wchar_t* get() const { return text_ ? text_ : L""; }

private:
    wchar_t* text_ = nullptr;
};

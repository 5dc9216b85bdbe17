#pragma once
// A WinINet handle (session, connection or request), closed when the owner goes.

#include <windows.h>
#include <wininet.h>

#include <utility>

namespace browser {

class InternetHandle {
public:
    InternetHandle() = default;
    explicit InternetHandle(HINTERNET handle) : handle_(handle) {}
    ~InternetHandle() { reset(); }
    InternetHandle(InternetHandle&& other) noexcept : handle_(std::exchange(other.handle_, nullptr)) {}
    InternetHandle& operator=(InternetHandle&& other) noexcept
    {
        if (this != &other) {
            reset();
            handle_ = std::exchange(other.handle_, nullptr);
        }
        return *this;
    }
    InternetHandle(const InternetHandle&) = delete;
    InternetHandle& operator=(const InternetHandle&) = delete;

    HINTERNET get() const { return handle_; }
    explicit operator bool() const { return handle_ != nullptr; }
    void reset()
    {
        if (handle_)
            InternetCloseHandle(std::exchange(handle_, nullptr));
    }

private:
    HINTERNET handle_ = nullptr;
};

} // namespace browser

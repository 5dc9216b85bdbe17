#pragma once
// A kernel object handle (event, mutex, process, file), closed when the owner goes.

#include <windows.h>

#include <utility>

class KernelHandle {
public:
    KernelHandle() = default;
    explicit KernelHandle(HANDLE handle) : handle_(handle == INVALID_HANDLE_VALUE ? nullptr : handle) {}
    ~KernelHandle() { reset(); }
    KernelHandle(KernelHandle&& other) noexcept : handle_(std::exchange(other.handle_, nullptr)) {}
    KernelHandle& operator=(KernelHandle&& other) noexcept
    {
        if (this != &other) {
            reset();
            handle_ = std::exchange(other.handle_, nullptr);
        }
        return *this;
    }
    KernelHandle(const KernelHandle&) = delete;
    KernelHandle& operator=(const KernelHandle&) = delete;

    HANDLE get() const { return handle_; }
    explicit operator bool() const { return handle_ != nullptr; }
    void reset()
    {
        if (handle_)
            CloseHandle(std::exchange(handle_, nullptr));
    }

private:
    HANDLE handle_ = nullptr; // never INVALID_HANDLE_VALUE: that is kept as null
};

#pragma once
// One owner type per kind of GDI acquisition, each freeing in its destructor exactly as
// its kind must be freed. Device contexts go before the bitmaps selected into them:
// declare the bitmap first so that it is destroyed last.

#include <windows.h>

#include <utility>

// A device context from GetDC, given back with ReleaseDC.
class WindowDC {
public:
    explicit WindowDC(HWND window = nullptr) : window_(window), dc_(GetDC(window)) {}
    ~WindowDC()
    {
        if (dc_)
            ReleaseDC(window_, dc_);
    }
    WindowDC(const WindowDC&) = delete;
    WindowDC& operator=(const WindowDC&) = delete;

    HDC get() const { return dc_; }
    explicit operator bool() const { return dc_ != nullptr; }

private:
    HWND window_;
    HDC dc_;
};

// A device context that its creator frees with DeleteDC.
class OwnedDC {
public:
    ~OwnedDC()
    {
        if (dc_)
            DeleteDC(dc_);
    }
    OwnedDC(const OwnedDC&) = delete;
    OwnedDC& operator=(const OwnedDC&) = delete;

    HDC get() const { return dc_; }
    explicit operator bool() const { return dc_ != nullptr; }

protected:
    explicit OwnedDC(HDC dc) : dc_(dc) {}

private:
    HDC dc_;
};

// A memory device context from CreateCompatibleDC.
class MemoryDC : public OwnedDC {
public:
    explicit MemoryDC(HDC compatibleWith) : OwnedDC(CreateCompatibleDC(compatibleWith)) {}
};

// The whole display's device context from CreateDCW, spanning every monitor.
class DisplayDC : public OwnedDC {
public:
    DisplayDC() : OwnedDC(CreateDCW(L"DISPLAY", nullptr, nullptr, nullptr)) {}
};

// A pen, brush, bitmap, font or region, freed with DeleteObject.
template <typename Handle>
class GdiObject {
public:
    GdiObject() = default;
    explicit GdiObject(Handle handle) : handle_(handle) {}
    ~GdiObject() { reset(); }
    GdiObject(GdiObject&& other) noexcept : handle_(std::exchange(other.handle_, nullptr)) {}
    GdiObject& operator=(GdiObject&& other) noexcept
    {
        if (this != &other) {
            reset();
            handle_ = std::exchange(other.handle_, nullptr);
        }
        return *this;
    }
    GdiObject(const GdiObject&) = delete;
    GdiObject& operator=(const GdiObject&) = delete;

    Handle get() const { return handle_; }
    explicit operator bool() const { return handle_ != nullptr; }
    // Hands the object to a new owner (for example the clipboard).
    Handle release() { return std::exchange(handle_, nullptr); }
    void reset(Handle handle = nullptr)
    {
        if (handle_)
            DeleteObject(handle_);
        handle_ = handle;
    }

private:
    Handle handle_ = nullptr;
};

using BitmapHandle = GdiObject<HBITMAP>;
using PenHandle = GdiObject<HPEN>;
using BrushHandle = GdiObject<HBRUSH>;
using FontHandle = GdiObject<HFONT>;
using RegionHandle = GdiObject<HRGN>;

// Selects an object into a DC and puts the previous one back when it goes.
class SelectedObject {
public:
    SelectedObject(HDC dc, HGDIOBJ object) : dc_(dc), previous_(SelectObject(dc, object)) {}
    ~SelectedObject()
    {
        if (previous_ && previous_ != HGDI_ERROR)
            SelectObject(dc_, previous_);
    }
    SelectedObject(const SelectedObject&) = delete;
    SelectedObject& operator=(const SelectedObject&) = delete;

private:
    HDC dc_;
    HGDIOBJ previous_;
};

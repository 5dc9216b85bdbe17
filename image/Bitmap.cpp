#include "image/Bitmap.h"

#include "base/win/GdiHandles.h"

namespace {

const DWORD kShowOnScreenPauseMs = 10;

} // namespace

void Bitmap::reset()
{
    handle_ = nullptr;
    transparent_ = false;
    transparentColor_ = 0;
    info_ = BITMAP{};
    owned_ = true;
}

Bitmap::~Bitmap()
{
    if (handle_ && owned_)
        DeleteObject(handle_);
}

void Bitmap::release()
{
    if (handle_ && owned_)
        DeleteObject(handle_);
    handle_ = nullptr;
    owned_ = true;
}

void Bitmap::create(HDC dc, int width, int height)
{
    release();
    handle_ = CreateCompatibleBitmap(dc, width, height);
    refreshInfo();
}

void Bitmap::load(WORD resourceId, HINSTANCE module)
{
    load(static_cast<UINT>(resourceId), module);
}

void Bitmap::load(UINT resourceId, HINSTANCE module)
{
    release();
    // Only 16-bit ids name a resource; a wider value would be taken for a name pointer.
    if (!IS_INTRESOURCE(static_cast<ULONG_PTR>(resourceId)))
        return;
    if (!module)
        module = GetModuleHandleW(nullptr);
    handle_ = LoadBitmapW(module, MAKEINTRESOURCEW(resourceId));
    refreshInfo();
}

void Bitmap::attach(HBITMAP bitmap, bool owned)
{
    release();
    handle_ = bitmap;
    owned_ = owned;
    refreshInfo();
}

HBITMAP Bitmap::detach()
{
    HBITMAP bitmap = handle_;
    handle_ = nullptr;
    return bitmap;
}

void Bitmap::draw(HDC dc, int x, int y, int width, int height, int srcX, int srcY)
{
    if (!handle_)
        return;
    MemoryDC memory(dc);
    SelectedObject selected(memory.get(), handle_);
    if (transparent_)
        TransparentBlt(dc, x, y, width, height, memory.get(), srcX, srcY, width, height, transparentColor_);
    else
        BitBlt(dc, x, y, width, height, memory.get(), srcX, srcY, SRCCOPY);
}

void Bitmap::draw(HDC dc, int x, int y)
{
    draw(dc, x, y, width(), height(), 0, 0);
}

void Bitmap::copyFrom(HDC dc, int srcX, int srcY, int width, int height, int dstX, int dstY)
{
    if (!handle_)
        return;
    MemoryDC memory(dc);
    SelectedObject selected(memory.get(), handle_);
    BitBlt(memory.get(), dstX, dstY, width, height, dc, srcX, srcY, SRCCOPY);
}

void Bitmap::copyFrom(HDC dc, int srcX, int srcY)
{
    copyFrom(dc, srcX, srcY, width(), height(), 0, 0);
}

void Bitmap::setTransparentColor(COLORREF color)
{
    transparent_ = true;
    transparentColor_ = color;
}

int Bitmap::height()
{
    return info_.bmHeight;
}

int Bitmap::width()
{
    return info_.bmWidth;
}

bool Bitmap::isValid()
{
    return handle_ != nullptr;
}

HBITMAP Bitmap::handle()
{
    return handle_;
}

void Bitmap::scale(double factor)
{
    if (!handle_)
        return;
    const int newWidth = static_cast<int>(width() * factor);
    const int newHeight = static_cast<int>(height() * factor);
    BitmapHandle scaled;
    {
        MemoryDC source(nullptr);
        SelectedObject sourceSelected(source.get(), handle_);
        scaled.reset(CreateCompatibleBitmap(source.get(), newWidth, newHeight));
        if (!scaled)
            return;
        MemoryDC target(source.get());
        SelectedObject targetSelected(target.get(), scaled.get());
        StretchBlt(target.get(), 0, 0, newWidth, newHeight, source.get(), 0, 0, width(), height(), SRCCOPY);
    }
    attach(scaled.release(), true);
}

void Bitmap::showOnScreen()
{
    WindowDC screen;
    MemoryDC memory(screen.get());
    SelectedObject selected(memory.get(), handle_);
    for (;;) {
        BitBlt(screen.get(), 0, 0, width(), height(), memory.get(), 0, 0, SRCCOPY);
        Sleep(kShowOnScreenPauseMs);
    }
}

HBITMAP Bitmap::copy()
{
    return static_cast<HBITMAP>(CopyImage(handle_, IMAGE_BITMAP, 0, 0, 0));
}

// GetObjectW answers a bitmap handle with a BITMAP record of exactly this size; bmBits
// makes it differ between the suite's 32-bit programs and 64-bit ones.
static_assert(sizeof(BITMAP) == (sizeof(void*) == 4 ? 24 : 32), "BITMAP layout");

void Bitmap::refreshInfo()
{
    if (handle_)
        GetObjectW(handle_, sizeof info_, &info_);
}

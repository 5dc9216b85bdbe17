#pragma once
// A GDI device-dependent bitmap that the object owns (or borrows), with drawing onto a
// device context, copying from one, scaling and handing on.
//
// An owned handle is deleted when the object lets go of it (release, a new create, load
// or attach, destruction); a borrowed one (attach with owned = false) never is. Whenever
// a handle comes in through create, load or attach, the size is read from it again.

#include <windows.h>

class Bitmap {
public:
    Bitmap() = default;
    Bitmap(const Bitmap&) = delete;
    Bitmap& operator=(const Bitmap&) = delete;

    // Forgets everything, owned becomes true; does not free the handle.
    virtual void reset();
    // Frees the handle if it is owned.
    virtual ~Bitmap();
    // Frees the handle if it is owned and forgets it; owned becomes true.
    virtual void release();
    // A bitmap compatible with `dc`; no handle if that fails.
    virtual void create(HDC dc, int width, int height);
    // A bitmap resource of `module` (null: the process's executable); no handle if that
    // fails. The 16-bit form widens the id.
    virtual void load(WORD resourceId, HINSTANCE module);
    virtual void load(UINT resourceId, HINSTANCE module);
    // Takes `bitmap`; the object deletes it later only if `owned`.
    virtual void attach(HBITMAP bitmap, bool owned);
    // Hands the handle to the caller and forgets it; the ownership flag stays as it was.
    virtual HBITMAP detach();
    // Copies a part of the bitmap onto `dc`, keyed by the transparent colour if one is set.
    virtual void draw(HDC dc, int x, int y, int width, int height, int srcX, int srcY);
    // The whole bitmap at (x, y).
    virtual void draw(HDC dc, int x, int y);
    // Copies a rectangle of `dc` into the bitmap at (dstX, dstY).
    virtual void copyFrom(HDC dc, int srcX, int srcY, int width, int height, int dstX, int dstY);
    // Fills the whole bitmap from `dc` at (srcX, srcY).
    virtual void copyFrom(HDC dc, int srcX, int srcY);
    // Pixels of this colour are left out when drawing from now on.
    virtual void setTransparentColor(COLORREF color);
    virtual int height();
    virtual int width();
    virtual bool isValid();
    // The handle; the object keeps owning it.
    virtual HBITMAP handle();
    // Replaces the bitmap with a stretched copy of (int)(width * factor) x (int)(height * factor).
    virtual void scale(double factor);
    // Debugging aid only: blits the bitmap to the top left of the screen every 10 ms,
    // forever. It never returns; nothing in the product calls it.
    [[noreturn]] virtual void showOnScreen();
    // A copy of the bitmap at its own size; the caller owns it.
    virtual HBITMAP copy();

private:
    void refreshInfo();

    HBITMAP handle_ = nullptr;
    bool transparent_ = false;
    COLORREF transparentColor_ = 0;
    BITMAP info_ = {};
    bool owned_ = true;
};

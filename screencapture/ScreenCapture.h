#pragma once
// One grab of one mode: the picture as a 24-bit GDI+ bitmap, and for the window modes the
// title of the window taken. The capture run makes one per capture and reads the image,
// the title and the cancelled flag after grab() returns.

#include "base/ZString.h"
#include "screencapture/CaptureApi.h"
#include "screencapture/Gdiplus.h"

#include <memory>

namespace screenCapture {

class ScreenCapture {
public:
    explicit ScreenCapture(HINSTANCE instance) : instance_(instance) {}
    ScreenCapture(const ScreenCapture&) = delete;
    ScreenCapture& operator=(const ScreenCapture&) = delete;

    // Fills the image (null when nothing could be taken) and, for the window modes, the
    // title. Any mode outside 1 to 6 grabs the primary screen.
    void grab(Mode mode);
    // Copies `area` of `source` into a new 24-bit image of the area's size. An area without
    // width or height leaves the image as it is.
    void grabRect(HDC source, const RECT& area);
    // Lets the user drag a rectangle on a frozen picture of the screen.
    void selectArea();

    // The window finder of EnumWindows: the first visible top-level window with a caption.
    // `result` is the address of the HWND that receives it.
    static BOOL CALLBACK findWindow(HWND window, LPARAM result);

    Gdiplus::Bitmap* image() const { return image_.get(); }
    const ZString& title() const { return title_; }
    bool cancelled() const { return cancelled_; }

private:
    class CaptureWindow; // the selection overlay, screencapture/CaptureWindow.h

    void grabScreenArea(const RECT& area);
    void copyClipboard();
    // The active window, with its title read into title_; null if there is none.
    HWND takeActiveWindow();

    HINSTANCE instance_;
    std::unique_ptr<Gdiplus::Bitmap> image_;
    ZString title_;
    bool cancelled_ = false;
};

} // namespace screenCapture

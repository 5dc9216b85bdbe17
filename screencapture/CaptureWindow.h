#pragma once
// The selection overlay of userDefinedArea: a topmost borderless window over the whole
// virtual screen that shows a snapshot taken before it appeared, under a white veil. The
// user drags a rectangle, shown clear with a dotted outline; releasing the left button cuts
// that rectangle out of the snapshot into the owner's image, and releasing Escape cancels.
// Geometry lives in SelectionGeometry.h; here are painting and messages.

#include "base/win/BaseWindow.h"
#include "base/win/GdiHandles.h"
#include "screencapture/ScreenCapture.h"

#include <optional>

namespace screenCapture {

class ScreenCapture::CaptureWindow : public BaseWindow {
public:
    explicit CaptureWindow(ScreenCapture& owner) : owner_(&owner) {}
    // Frees, in this order, the snapshot DC and bitmap, the work DC and bitmap, and the pen
    // (by the order of the members below); then the base destroys the window if still bound.
    ~CaptureWindow() override = default;

    // Freezes the screen, shows the overlay and loops on the thread's messages until the
    // overlay is gone. The outcome is in the owner's image and in cancelled().
    void run(HINSTANCE instance);
    bool cancelled() const { return cancelled_; }
    // A rectangle was completed by releasing the button.
    bool selected() const { return selected_; }

protected:
    LRESULT handleMessage(UINT message, WPARAM wParam, LPARAM lParam) override;

private:
    // A memory DC with a bitmap of its own selected; the DC is freed before the bitmap.
    struct Surface {
        Surface(HDC screen, int width, int height);

        BitmapHandle bitmap;
        MemoryDC dc;
        SelectedObject selection;
    };

    // Takes the snapshot of `virtualScreen` and prepares the work surface; false without a
    // screen DC.
    bool freezeScreen(const RECT& virtualScreen);
    void paint();
    void startAt(POINT point);
    void moveTo(POINT point);
    void finishAt(POINT point);
    void showSnapshot(const RECT& area);
    void veil(const RECT& area);
    HDC workDC() const { return work_->dc.get(); }

    ScreenCapture* owner_;
    bool selecting_ = false;
    bool selected_ = false;
    bool cancelled_ = false;
    POINT start_ = {};
    POINT current_ = {};
    HCURSOR arrowCursor_ = nullptr; // shared system cursors, never destroyed
    HCURSOR crossCursor_ = nullptr;
    PenHandle pen_;
    std::optional<Surface> work_;
    std::optional<SelectedObject> workPen_;
    std::optional<SelectedObject> workBrush_;
    std::optional<Surface> snapshot_;
};

} // namespace screenCapture

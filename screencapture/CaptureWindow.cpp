#include "screencapture/CaptureWindow.h"

#include "base/win/ScreenDpi.h"
#include "screencapture/SelectionGeometry.h"

namespace screenCapture {

namespace {

// White at alpha 150 of 255.
constexpr Gdiplus::ARGB kVeilColour = 0x96FFFFFF;
constexpr DWORD kSnapshotCopy = SRCCOPY | CAPTUREBLT; // layered windows included

int widthOf(const RECT& r) { return r.right - r.left; }
int heightOf(const RECT& r) { return r.bottom - r.top; }

RECT virtualScreen()
{
    const int x = GetSystemMetrics(SM_XVIRTUALSCREEN);
    const int y = GetSystemMetrics(SM_YVIRTUALSCREEN);
    return {x, y, x + GetSystemMetrics(SM_CXVIRTUALSCREEN), y + GetSystemMetrics(SM_CYVIRTUALSCREEN)};
}

} // namespace

void ScreenCapture::selectArea()
{
    CaptureWindow overlay(*this);
    overlay.run(instance_);
    cancelled_ = overlay.cancelled();
}

ScreenCapture::CaptureWindow::Surface::Surface(HDC screen, int width, int height)
    : bitmap(CreateCompatibleBitmap(screen, width, height)), dc(screen), selection(dc.get(), bitmap.get())
{
}

void ScreenCapture::CaptureWindow::run(HINSTANCE instance)
{
    selecting_ = selected_ = cancelled_ = false;
    arrowCursor_ = LoadCursorW(nullptr, IDC_ARROW);
    crossCursor_ = LoadCursorW(nullptr, IDC_CROSS);
    pen_.reset(CreatePen(PS_DOT, screenDpi() / 96, RGB(0, 0, 0)));
    const RECT screen = virtualScreen();
    if (!freezeScreen(screen)) {
        MessageBoxW(nullptr, L"Could not create screen DC to capture the screen", L"Error", MB_ICONERROR);
        return;
    }
    // The system's static class serves only as a borderless visible popup.
    if (!create(WS_EX_TOPMOST, L"static", L"ScreenCapture", WS_POPUP | WS_VISIBLE, screen.left, screen.top,
                widthOf(screen), heightOf(screen), nullptr, nullptr, instance, nullptr)) {
        MessageBoxW(nullptr, L"Could not create screen overlay window", L"Error", MB_ICONERROR);
        return;
    }
    // No TranslateMessage: keys arrive as key-down and key-up only. WM_DESTROY posts the quit.
    MSG message;
    while (GetMessageW(&message, nullptr, 0, 0))
        DispatchMessageW(&message);
}

bool ScreenCapture::CaptureWindow::freezeScreen(const RECT& screen)
{
    const int width = widthOf(screen);
    const int height = heightOf(screen);
    {
        DisplayDC display;
        if (!display.get())
            return false;
        // The cursor is kept out of the snapshot.
        ShowCursor(FALSE);
        snapshot_.emplace(display.get(), width, height);
        BitBlt(snapshot_->dc.get(), 0, 0, width, height, display.get(), screen.left, screen.top, kSnapshotCopy);
        // Not filled here: painting fills it.
        work_.emplace(display.get(), width, height);
        workPen_.emplace(workDC(), pen_.get());
        workBrush_.emplace(workDC(), GetStockObject(NULL_BRUSH));
    }
    ShowCursor(TRUE);
    return true;
}

LRESULT ScreenCapture::CaptureWindow::handleMessage(UINT message, WPARAM wParam, LPARAM lParam)
{
    switch (message) {
    case WM_PAINT:
        paint();
        return 0;
    case WM_MOUSEMOVE:
        moveTo(mousePosition(lParam));
        return 0;
    case WM_LBUTTONDOWN:
        startAt(mousePosition(lParam));
        return 0;
    case WM_LBUTTONUP:
        // A release whose press did not happen here (held as the overlay appeared) is ignored.
        if (selecting_)
            finishAt(mousePosition(lParam));
        return 0;
    case WM_KEYUP:
        // Acted on at release, not at press; the key then goes on like any other.
        if (wParam == VK_ESCAPE) {
            cancelled_ = true;
            destroy();
        }
        return defaultProc(message, wParam, lParam);
    case WM_SETCURSOR:
        return 1; // so that the system does not put its own cursor back
    case WM_DESTROY:
        PostQuitMessage(0);
        return 0;
    default:
        return defaultProc(message, wParam, lParam);
    }
}

// The update rectangle only, veiled; the selection is drawn again by the next mouse move.
void ScreenCapture::CaptureWindow::paint()
{
    PAINTSTRUCT paint = {};
    HDC dc = BeginPaint(handle(), &paint);
    const RECT& area = paint.rcPaint;
    showSnapshot(area);
    veil(area);
    BitBlt(dc, area.left, area.top, widthOf(area), heightOf(area), workDC(), area.left, area.top, SRCCOPY);
    EndPaint(handle(), &paint);
}

void ScreenCapture::CaptureWindow::startAt(POINT point)
{
    // A second press while dragging starts again here; the old outline stays until redrawn.
    start_ = current_ = point;
    selecting_ = true;
}

// Only the bounding box of the old and the new selection is composed and sent to the screen.
void ScreenCapture::CaptureWindow::moveTo(POINT point)
{
    SetCursor(crossCursor_);
    if (!selecting_)
        return;
    const RECT damaged = damagedArea(start_, current_, point);
    showSnapshot(damaged);
    veil(damaged);
    current_ = point;
    const RECT selection = selectionRect(start_, current_);
    showSnapshot(selection);
    Rectangle(workDC(), selection.left, selection.top, selection.right, selection.bottom);
    if (HDC dc = getDC()) {
        BitBlt(dc, damaged.left, damaged.top, widthOf(damaged), heightOf(damaged), workDC(), damaged.left,
               damaged.top, SRCCOPY);
        releaseDC(dc);
    }
}

// The picture is cut from the snapshot, so it shows the screen as it was when the overlay
// appeared.
void ScreenCapture::CaptureWindow::finishAt(POINT point)
{
    show(SW_HIDE);
    SetCursor(arrowCursor_);
    selecting_ = false;
    selected_ = true;
    current_ = point;
    owner_->grabRect(snapshot_->dc.get(), selectionRect(start_, current_));
    destroy();
}

void ScreenCapture::CaptureWindow::showSnapshot(const RECT& area)
{
    BitBlt(workDC(), area.left, area.top, widthOf(area), heightOf(area), snapshot_->dc.get(), area.left, area.top,
           SRCCOPY);
}

// A GDI+ graphics and brush live for one fill only.
void ScreenCapture::CaptureWindow::veil(const RECT& area)
{
    Gdiplus::Graphics graphics(workDC());
    Gdiplus::SolidBrush brush{Gdiplus::Color(kVeilColour)};
    graphics.FillRectangle(&brush, static_cast<INT>(area.left), static_cast<INT>(area.top), widthOf(area),
                           heightOf(area));
}

} // namespace screenCapture

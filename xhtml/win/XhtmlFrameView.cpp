#include "xhtml/win/XhtmlFrameView.h"

#include "base/win/GdiHandles.h"
#include "base/win/ScreenDpi.h"
#include "xhtml/paint/Painter.h"
#include "xhtml/win/GdiCanvas.h"
#include "xhtml/win/PaintSession.h"

#include <algorithm>

namespace xhtml {

namespace {

constexpr UINT_PTR kFitTimer = 0x5846; // "XF"
constexpr UINT kFitDelayMs = 100;

RECT workAreaOf(HWND window)
{
    MONITORINFO info = {};
    info.cbSize = sizeof info;
    if (GetMonitorInfoW(MonitorFromWindow(window, MONITOR_DEFAULTTOPRIMARY), &info))
        return info.rcWork;
    RECT area = {0, 0, GetSystemMetrics(SM_CXSCREEN), GetSystemMetrics(SM_CYSCREEN)};
    SystemParametersInfoW(SPI_GETWORKAREA, 0, &area, 0);
    return area;
}

} // namespace

bool XhtmlFrameView::registerClass(HINSTANCE instance)
{
    WNDCLASSEXW windowClass = {};
    windowClass.style = CS_HREDRAW | CS_VREDRAW;
    windowClass.hInstance = instance;
    windowClass.hCursor = LoadCursorW(nullptr, IDC_ARROW);
    windowClass.lpszClassName = className;
    return BaseWindow::registerClass(windowClass);
}

XhtmlFrameView::XhtmlFrameView() = default;

XhtmlFrameView::~XhtmlFrameView()
{
    controls_.reset();
}

double XhtmlFrameView::scale() const
{
    return screenDpi() / 96.0;
}

bool XhtmlFrameView::load(const ZString& address)
{
    std::vector<uint8_t> bytes;
    if (!context_.resourceLoader() || !context_.resourceLoader()->load(address, bytes))
        return false;
    setMarkup(decodeMarkupBytes(bytes), address);
    return true;
}

void XhtmlFrameView::setMarkup(const ZString& text, const ZString& baseAddress)
{
    hover_ = pressed_ = pressedLink_ = nullptr;
    if (controls_)
        controls_->destroyAll();
    views_.clear();
    document_.setMarkup(text, *this, baseAddress);
    images_.setLoader(context_.resourceLoader());
    views_.build(document_.root(), context_.styleRules(), document_.baseAddress(), scale());
    if (handle()) {
        if (!controls_)
            controls_ = std::make_unique<NativeControls>(handle(), fonts_);
        controls_->rebuild(views_);
    }
    relayout();
    if (controls_)
        keys_.watch(controls_->windows()); // after the layout, which shows the windows
}

void XhtmlFrameView::setAxisMode(int axisMask, int mode)
{
    if (axisMask & 2)
        axisMode_[0] = mode;
    if (axisMask & 1)
        axisMode_[1] = mode;
}

void XhtmlFrameView::setSizeToContent(bool width, bool height)
{
    sizeToWidth_ = width;
    sizeToHeight_ = height;
}

void XhtmlFrameView::relayout()
{
    if (views_.isEmpty() || inLayout_)
        return;
    inLayout_ = true;
    MemoryDC measuring(nullptr);
    GdiCanvas canvas(measuring.get(), fonts_, images_);
    const RECT client = handle() ? clientRect() : RECT{};
    int width = client.right - client.left;
    if (sizeToWidth_) {
        const RECT work = workAreaOf(handle());
        width = std::min(views_.preferredWidth(canvas), static_cast<int>(work.right - work.left));
    }
    const Size size = views_.layout(canvas, width, sizeToHeight_ ? -1 : client.bottom - client.top);
    const int dx = axisMode_[0] == 1 ? std::max(0, static_cast<int>(client.right) - size.width) / 2 : 0;
    const int dy = axisMode_[1] == 1 ? std::max(0, static_cast<int>(client.bottom) - size.height) / 2 : 0;
    if (dx || dy)
        views_.root()->translate(dx, dy);
    if (controls_) {
        controls_->refreshFonts();
        controls_->place();
    }
    inLayout_ = false;
    onLayout();
    if (handle())
        invalidate(nullptr, false);
    if (size != content_) {
        content_ = size;
        if (sizesToContent())
            requestFit(false);
    }
}

void XhtmlFrameView::fitToContent()
{
    if (!handle())
        return;
    relayout();
    const RECT client = clientRect();
    RECT frame = {0, 0, sizeToWidth_ ? content_.width : client.right - client.left,
                  sizeToHeight_ ? content_.height : client.bottom - client.top};
    AdjustWindowRectEx(&frame, style(), FALSE, exStyle());
    const int width = frame.right - frame.left;
    const int height = frame.bottom - frame.top;
    const RECT work = workAreaOf(handle());
    const RECT now = windowRect();
    int x = placed_ ? now.left : work.left + (work.right - work.left - width) / 2;
    int y = placed_ ? now.top : work.top + (work.bottom - work.top - height) / 2;
    x = std::max(static_cast<int>(work.left), std::min(x, static_cast<int>(work.right) - width));
    y = std::max(static_cast<int>(work.top), std::min(y, static_cast<int>(work.bottom) - height));
    placed_ = true;
    setPosition(nullptr, x, y, width, height, SWP_NOZORDER | SWP_NOACTIVATE);
    relayout();
}

void XhtmlFrameView::requestFit(bool immediate)
{
    if (immediate) {
        if (fitPending_)
            killTimer(kFitTimer);
        fitPending_ = false;
        fitToContent();
        return;
    }
    if (fitPending_ || !handle())
        return;
    fitPending_ = setTimer(kFitTimer, kFitDelayMs) != 0;
}

Rect XhtmlFrameView::elementRect(const ZString& id)
{
    View* view = views_.findById(id);
    return view ? view->box : Rect{};
}

bool XhtmlFrameView::setSelectValue(const ZString& id, const ZString& value)
{
    View* view = views_.findById(id);
    if (!view || !view->control || view->control->type != ControlType::select)
        return false;
    if (!view->control->selectValue(value))
        return false;
    if (controls_)
        controls_->showSelection(*view);
    return true;
}

ZString XhtmlFrameView::selectValue(const ZString& id)
{
    View* view = views_.findById(id);
    if (!view || !view->control || view->control->type != ControlType::select)
        return ZString();
    if (controls_)
        controls_->readBack(*view);
    return view->control->selectedValue();
}

View* XhtmlFrameView::controlView(const ZString& id, bool (ControlModel::*kind)() const)
{
    View* view = views_.findById(id);
    return view && view->control && (*view->control.*kind)() ? view : nullptr;
}

void XhtmlFrameView::showState(View& view)
{
    if (controls_)
        controls_->showState(view);
}

bool XhtmlFrameView::setFieldValue(const ZString& id, const ZString& value)
{
    View* view = controlView(id, &ControlModel::holdsText);
    if (!view)
        return false;
    view->control->value = value;
    showState(*view);
    return true;
}

ZString XhtmlFrameView::fieldValue(const ZString& id)
{
    View* view = controlView(id, &ControlModel::holdsText);
    if (!view)
        return ZString();
    if (controls_)
        controls_->readBack(*view);
    return view->control->value;
}

bool XhtmlFrameView::setChecked(const ZString& id, bool checked)
{
    View* view = controlView(id, &ControlModel::isCheckable);
    if (!view)
        return false;
    ControlModel& control = *view->control;
    if (checked && control.type == ControlType::radio) {
        views_.forEach([&](View& other) {
            if (&other != view && other.control && other.control->type == ControlType::radio
                && other.control->name == control.name && other.control->checked) {
                other.control->checked = false;
                showState(other);
            }
        });
    }
    control.checked = checked;
    showState(*view);
    return true;
}

bool XhtmlFrameView::isChecked(const ZString& id)
{
    View* view = controlView(id, &ControlModel::isCheckable);
    if (!view)
        return false;
    if (controls_)
        controls_->readBack(*view);
    return view->control->checked;
}

HWND XhtmlFrameView::controlWindow(const ZString& id)
{
    View* view = views_.findById(id);
    return view && controls_ ? controls_->windowOf(*view) : nullptr;
}

void XhtmlFrameView::paint()
{
    PaintSession session(handle());
    const RECT client = clientRect();
    const int width = client.right - client.left;
    const int height = client.bottom - client.top;
    if (width <= 0 || height <= 0 || !session.dc())
        return;
    BitmapHandle bitmap(CreateCompatibleBitmap(session.dc(), width, height));
    MemoryDC buffer(session.dc());
    if (!bitmap || !buffer)
        return;
    SelectedObject selected(buffer.get(), bitmap.get());
    const RECT& dirty = session.area();
    FillRect(buffer.get(), &client, static_cast<HBRUSH>(GetStockObject(WHITE_BRUSH)));
    if (View* root = views_.root()) {
        GdiCanvas canvas(buffer.get(), fonts_, images_);
        paintView(*root, canvas, Rect{dirty.left, dirty.top, dirty.right - dirty.left, dirty.bottom - dirty.top});
    }
    BitBlt(session.dc(), dirty.left, dirty.top, dirty.right - dirty.left, dirty.bottom - dirty.top, buffer.get(),
           dirty.left, dirty.top, SRCCOPY);
}

void XhtmlFrameView::setHoverView(View* view)
{
    if (view == hover_)
        return;
    bool changed = false;
    if (hover_ && hover_ != pressed_)
        changed |= views_.setState(*hover_, PointerState::normal);
    hover_ = view;
    if (hover_ && hover_ != pressed_)
        changed |= views_.setState(*hover_, PointerState::over);
    if (changed)
        relayout();
}

void XhtmlFrameView::setPressedView(View* view, PointerState state)
{
    bool changed = false;
    if (pressed_)
        changed |= views_.setState(*pressed_, pressed_ == hover_ ? PointerState::over : PointerState::normal);
    pressed_ = view;
    if (pressed_)
        changed |= views_.setState(*pressed_, state);
    if (changed)
        relayout();
}

void XhtmlFrameView::onMouseMove(int x, int y)
{
    if (!trackingLeave_) {
        TRACKMOUSEEVENT track = {sizeof track, TME_LEAVE, handle(), 0};
        trackingLeave_ = TrackMouseEvent(&track) != FALSE;
    }
    setHoverView(ViewTree::styledAncestor(views_.viewAt(x, y), PointerState::over));
}

void XhtmlFrameView::onButton(int x, int y, PointerState state, bool down)
{
    View* at = views_.viewAt(x, y);
    if (down) {
        setPressedView(ViewTree::styledAncestor(at, state), state);
        pressedLink_ = state == PointerState::leftButtonDown ? ViewTree::linkAncestor(at) : nullptr;
        setCapture();
        return;
    }
    setPressedView(nullptr, state);
    if (hasCapture())
        releaseCapture();
    View* link = ViewTree::linkAncestor(at);
    const bool clicked = link && link == pressedLink_ && state == PointerState::leftButtonDown;
    pressedLink_ = nullptr;
    if (clicked && context_.linkListener()) {
        const ZString href = link->href; // the listener may replace the markup
        context_.linkListener()->onLinkClicked(href);
    }
}

bool XhtmlFrameView::setCursor()
{
    const POINT at = cursorPosition();
    View* view = views_.viewAt(at.x, at.y);
    if (!view || (!ViewTree::linkAncestor(view) && !view->style.pointerCursor))
        return false;
    SetCursor(LoadCursorW(nullptr, IDC_HAND));
    return true;
}

LRESULT XhtmlFrameView::handleMessage(UINT message, WPARAM wParam, LPARAM lParam)
{
    const int x = static_cast<short>(LOWORD(lParam));
    const int y = static_cast<short>(HIWORD(lParam));
    switch (message) {
    case WM_SIZE:
        relayout();
        return 0;
    case WM_PAINT:
        paint();
        return 0;
    case WM_ERASEBKGND:
        return 1;
    case WM_TIMER:
        if (wParam != kFitTimer)
            break;
        killTimer(kFitTimer);
        fitPending_ = false;
        fitToContent();
        return 0;
    case WM_SETFOCUS:
        if (keys_.restoreFocus())
            return 0;
        break;
    case WM_KEYDOWN:
        if (keys_.onKeyDown(handle(), wParam, 0))
            return 0;
        break;
    case WM_NEXTDLGCTL: // a text area in dialog mode sends it for Tab, in its flag form
        if (LOWORD(lParam))
            break;
        keys_.moveFocus(GetFocus(), wParam != 0);
        return 0;
    case WM_COMMAND:
        if (controls_ && controls_->onCommand(wParam, lParam, context_.buttonListener()))
            return 0;
        break;
    case WM_MOUSEMOVE:
        onMouseMove(x, y);
        return 0;
    case WM_MOUSELEAVE:
        trackingLeave_ = false;
        setHoverView(nullptr);
        return 0;
    case WM_LBUTTONDOWN:
    case WM_LBUTTONUP:
        onButton(x, y, PointerState::leftButtonDown, message == WM_LBUTTONDOWN);
        return 0;
    case WM_RBUTTONDOWN:
    case WM_RBUTTONUP:
        onButton(x, y, PointerState::rightButtonDown, message == WM_RBUTTONDOWN);
        return 0;
    case WM_SETCURSOR:
        if (LOWORD(lParam) == HTCLIENT && setCursor())
            return TRUE;
        break;
    case WM_DESTROY:
        if (fitPending_)
            killTimer(kFitTimer);
        fitPending_ = false;
        controls_.reset();
        break;
    default:
        break;
    }
    return defaultProc(message, wParam, lParam);
}

} // namespace xhtml

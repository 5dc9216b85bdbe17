#pragma once
// The base of the program's top-level windows: binds one object to one native window by
// subclassing, hands every message of that window to the registered listeners, then to a
// message filter if one is set, else to the object's own handler, and runs a modal loop
// that disables the owner while the window lives. The rest is a thin object face over the
// USER calls, one virtual operation each, so that a derived class can replace any of them.
//
// Binding, the window procedure and the teardown all live in BaseWindow.cpp. The object may
// be destroyed while one of its messages is being handled or inside its modal loop: the
// procedure and the loop notice it and touch the object no more.

#include <windows.h>

#include <list>

class BaseWindow {
public:
    class IMessageListener; // base/win/IMessageListener.h
    class IMessageFilter;   // base/win/IMessageFilter.h

    BaseWindow() = default;
    // A window still bound to this object is unsubclassed and destroyed.
    virtual ~BaseWindow();
    BaseWindow(const BaseWindow&) = delete;
    BaseWindow& operator=(const BaseWindow&) = delete;

    // The procedure to register for window classes whose windows are made with their object
    // as the creation parameter: such a window is bound at WM_CREATE.
    static LRESULT CALLBACK windowProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
    // Registers a window class whose windows windowProc serves (the procedure and size
    // fields are filled in here). A class of that name left by an earlier load of the same
    // library would point at freed code: it is replaced. True when the class is ready.
    static bool registerClass(WNDCLASSEXW windowClass);

    // Binding.
    virtual void setHandle(HWND window); // forgets any binding; no subclassing
    virtual bool create(DWORD exStyle, LPCWSTR className, LPCWSTR title, DWORD style, int x, int y, int width,
                        int height, HWND parent, HMENU menu, HINSTANCE instance, LPVOID parameter);
    virtual bool isAttached() const;
    virtual void attach(HWND window, IMessageFilter* filter);
    virtual void attach(HWND window);
    virtual void reattach();
    virtual void detach();

    // Listeners and the filter; neither is owned.
    virtual void setMessageFilter(IMessageFilter* filter) { filter_ = filter; }
    virtual void removeMessageFilter(IMessageFilter* filter);
    virtual void addMessageListener(IMessageListener* listener) { listeners_.push_back(listener); }
    virtual void removeMessageListener(IMessageListener* listener) { listeners_.remove(listener); }

    virtual LRESULT defaultProc(UINT message, WPARAM wParam, LPARAM lParam)
    {
        return DefWindowProcW(handle_, message, wParam, lParam);
    }

    // Loops on the thread's messages until the window is destroyed, endModal is called or
    // WM_QUIT arrives; the owner is disabled meanwhile. Returns at once for a child window.
    virtual void makeModal();
    virtual void endModal() { modalEnd_ = true; }

    // Thin forwarding to USER and GDI.
    virtual HWND handle() const { return handle_; }
    virtual HWND parent() const { return GetParent(handle_); }
    virtual HWND owner() const { return reinterpret_cast<HWND>(GetWindowLongPtrW(handle_, GWLP_HWNDPARENT)); }
    virtual HDC getDC() { return GetDC(handle_); }
    virtual HDC getWindowDC() { return GetWindowDC(handle_); }
    virtual int releaseDC(HDC dc) { return ReleaseDC(handle_, dc); }
    virtual bool destroy() { return DestroyWindow(handle_) != FALSE; }
    virtual bool show(int command) { return ShowWindow(handle_, command) != FALSE; }
    virtual bool move(int x, int y, int width, int height, bool repaint = true)
    {
        return MoveWindow(handle_, x, y, width, height, repaint) != FALSE;
    }
    virtual bool setPosition(HWND insertAfter, int x, int y, int width, int height, UINT flags)
    {
        return SetWindowPos(handle_, insertAfter, x, y, width, height, flags) != FALSE;
    }
    // Sizes the window so that its client area has this size.
    virtual bool setClientSize(int width, int height);
    virtual void centerOnDesktop();
    virtual void centerOnParent();
    virtual RECT windowRect() const;
    virtual RECT clientRect() const;
    virtual HWND setParent(HWND newParent) { return SetParent(handle_, newParent); }
    virtual DWORD style() const { return static_cast<DWORD>(GetWindowLongW(handle_, GWL_STYLE)); }
    virtual void setStyle(DWORD style) { SetWindowLongW(handle_, GWL_STYLE, static_cast<LONG>(style)); }
    virtual DWORD exStyle() const { return static_cast<DWORD>(GetWindowLongW(handle_, GWL_EXSTYLE)); }
    virtual void setExStyle(DWORD style) { SetWindowLongW(handle_, GWL_EXSTYLE, static_cast<LONG>(style)); }
    virtual LRESULT sendMessage(UINT message, WPARAM wParam = 0, LPARAM lParam = 0)
    {
        return SendMessageW(handle_, message, wParam, lParam);
    }
    virtual bool postMessage(UINT message, WPARAM wParam = 0, LPARAM lParam = 0)
    {
        return PostMessageW(handle_, message, wParam, lParam) != FALSE;
    }
    virtual HWND setFocus() { return SetFocus(handle_); }
    virtual bool clientToScreen(POINT& point) const { return ClientToScreen(handle_, &point) != FALSE; }
    virtual bool screenToClient(POINT& point) const { return ScreenToClient(handle_, &point) != FALSE; }
    // The mouse position in client coordinates.
    virtual POINT cursorPosition() const;
    virtual bool setText(LPCWSTR text) { return SetWindowTextW(handle_, text) != FALSE; }
    virtual bool isVisible() const { return IsWindowVisible(handle_) != FALSE; }
    virtual bool isWindow() const { return IsWindow(handle_) != FALSE; }
    virtual HWND setCapture() { return SetCapture(handle_); }
    virtual bool hasCapture() const { return handle_ && GetCapture() == handle_; }
    virtual bool releaseCapture() { return ReleaseCapture() != FALSE; }
    virtual bool bringToTop() { return BringWindowToTop(handle_) != FALSE; }
    virtual bool setForeground() { return SetForegroundWindow(handle_) != FALSE; }
    virtual UINT_PTR setTimer(UINT_PTR id, UINT milliseconds) { return SetTimer(handle_, id, milliseconds, nullptr); }
    virtual bool killTimer(UINT_PTR id) { return KillTimer(handle_, id) != FALSE; }
    virtual bool invalidate(const RECT* area = nullptr, bool erase = true)
    {
        return InvalidateRect(handle_, area, erase) != FALSE;
    }
    virtual bool update() { return UpdateWindow(handle_) != FALSE; }

protected:
    // The window's own handling of a message; the base passes everything to defaultProc.
    virtual LRESULT handleMessage(UINT message, WPARAM wParam, LPARAM lParam)
    {
        return defaultProc(message, wParam, lParam);
    }
    // The procedure the window had before this object attached itself (a control's own
    // procedure, for an object that subclasses a control); DefWindowProcW when there was none.
    virtual LRESULT keptProc(UINT message, WPARAM wParam, LPARAM lParam)
    {
        return keptProc_ ? CallWindowProcW(keptProc_, handle_, message, wParam, lParam)
                         : DefWindowProcW(handle_, message, wParam, lParam);
    }

private:
    struct LifeWatch;
    class Dispatch;

    static LRESULT bindOnCreate(HWND window, LPARAM createStruct);
    LRESULT dispatch(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
    void notifyListeners(UINT message, WPARAM wParam, LPARAM lParam, const LifeWatch& watch);
    bool boundHere() const;
    void unbind();
    void runModalLoop(const bool& destroyed, UINT_PTR timer, const LifeWatch& watch);

    std::list<IMessageListener*> listeners_;
    WNDPROC keptProc_ = nullptr;
    bool modalEnd_ = false;
    HWND handle_ = nullptr;
    IMessageFilter* filter_ = nullptr;

    // Activations on the stack that must learn of the object's destruction, innermost first.
    LifeWatch* watches_ = nullptr;
    // Messages of this object being handled, nested ones included.
    int dispatchDepth_ = 0;
    // The window got WM_NCDESTROY; the handle is forgotten when the outermost message returns.
    bool windowGone_ = false;
};

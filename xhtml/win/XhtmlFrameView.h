#pragma once
// The markup host: a top-level window of class "XhtmlFrameView" whose whole content is a
// markup document, laid out and painted by the toolkit, with native child windows for its
// form controls. It can size itself to its content per axis, fitting at once or deferred
// (one fit, 100 ms after a burst of changes), and runs a modal loop through the window base.
// Its text filter (MarkupTextFilter) sees every markup text before it is parsed. Its keyboard
// is a dialog box's: Tab order, default button, Escape closes (KeyboardNavigation).
//
// Painting, mouse states and links live here; building, styling and layout in ViewTree,
// controls in NativeControls, keys and focus in KeyboardNavigation, drawing in GdiCanvas.

#include "base/win/BaseWindow.h"
#include "xhtml/HtmlDocument.h"
#include "xhtml/host/ViewContext.h"
#include "xhtml/view/ViewTree.h"
#include "xhtml/win/FontCache.h"
#include "xhtml/win/ImageCache.h"
#include "xhtml/win/KeyboardNavigation.h"
#include "xhtml/win/NativeControls.h"

#include <memory>

namespace xhtml {

class XhtmlFrameView : public BaseWindow, public MarkupTextFilter {
public:
    static constexpr const wchar_t* className = L"XhtmlFrameView";
    // Registers the window class in `instance` once (again only if a reloaded module left
    // a class with another procedure); true when the class is there.
    static bool registerClass(HINSTANCE instance);

    XhtmlFrameView();
    // Controls go first, then the views, the document, images and fonts (member order).
    ~XhtmlFrameView() override;

    ViewContext& context() { return context_; }

    // Loads markup through the context's resource loader; false when there is none or the
    // address gives nothing. The address becomes the base of relative addresses.
    bool load(const ZString& address);
    // Filters, parses and builds the views, then lays them out (and fits, when sizing to
    // the content).
    void setMarkup(const ZString& text, const ZString& baseAddress = ZString());

    // Axis mask: 2 the first (horizontal) axis, 1 the second (vertical), 3 both. The mode
    // says where content smaller than the window sits on that axis: 0 at the start, 1 in
    // the middle.
    void setAxisMode(int axisMask, int mode);
    int axisMode(int axis) const { return axisMode_[axis]; }
    void setSizeToContent(bool width, bool height);
    bool sizesToContent() const { return sizeToWidth_ || sizeToHeight_; }
    // Sizes the window around its content (on the axes that follow it) and keeps it on its
    // monitor's work area; centred there the first time.
    void fitToContent();
    // At once, or once 100 ms after the last of a burst of requests.
    void requestFit(bool immediate);

    ViewTree& views() { return views_; }
    // The element's box in client coordinates; empty when there is no such element.
    Rect elementRect(const ZString& id);
    // Selects the option with this value in the select with this id, without a change
    // notification; false when there is no such select or option (the selection stays).
    bool setSelectValue(const ZString& id, const ZString& value);
    // The value of the select's selected option as the user left it; empty without one.
    ZString selectValue(const ZString& id);
    // Sets the text of the text field (of any kind, text areas included) with this id; false
    // when there is no such field.
    bool setFieldValue(const ZString& id, const ZString& value);
    // The field's text as the user left it; empty when there is no such field.
    ZString fieldValue(const ZString& id);
    // Checks or clears the checkbox or radio button with this id; checking a radio button
    // clears the others of its name. False when there is no such control.
    bool setChecked(const ZString& id, bool checked);
    // Whether the checkbox or radio button is checked as the user left it; false when there
    // is no such control.
    bool isChecked(const ZString& id);
    HWND controlWindow(const ZString& id);

protected:
    LRESULT handleMessage(UINT message, WPARAM wParam, LPARAM lParam) override;
    // Called after every layout, with the views in place (a subclass places what it adds).
    virtual void onLayout() {}

private:
    void relayout();
    // The control view with this id whose model passes `kind`, or null.
    View* controlView(const ZString& id, bool (ControlModel::*kind)() const);
    // Shows the model's state in the control's window after a change by the program.
    void showState(View& view);
    void paint();
    void onMouseMove(int x, int y);
    void onButton(int x, int y, PointerState state, bool down);
    void setHoverView(View* view);
    void setPressedView(View* view, PointerState state);
    bool setCursor();
    double scale() const;

    ViewContext context_;
    FontCache fonts_;
    ImageCache images_;
    HtmlDocument document_;
    ViewTree views_;
    std::unique_ptr<NativeControls> controls_;
    KeyboardNavigation keys_{*this};

    int axisMode_[2] = {0, 0};
    bool sizeToWidth_ = false;
    bool sizeToHeight_ = false;
    bool fitPending_ = false;
    bool placed_ = false;
    bool inLayout_ = false;
    Size content_;
    View* hover_ = nullptr;
    View* pressed_ = nullptr;
    View* pressedLink_ = nullptr;
    bool trackingLeave_ = false;
};

} // namespace xhtml

#pragma once
// The native child windows that show a view tree's form controls: one per control view,
// made when the views are built, placed after each layout, destroyed with this object.
// User changes flow back into the controls' models; button presses go to the listener.

#include "xhtml/host/ViewContext.h"
#include "xhtml/view/ViewTree.h"
#include "xhtml/win/FontCache.h"

#include <windows.h>

#include <vector>

namespace xhtml {

class NativeControls {
public:
    // The windows are children of `parent`; their fonts come from `fonts`, which must
    // outlive this object.
    NativeControls(HWND parent, FontCache& fonts) : parent_(parent), fonts_(fonts) {}
    ~NativeControls() { destroyAll(); }
    NativeControls(const NativeControls&) = delete;
    NativeControls& operator=(const NativeControls&) = delete;

    // Destroys the windows of the old views and makes one for each control of `views`.
    void rebuild(ViewTree& views);
    void destroyAll();
    // Moves each window to its view's box and shows it unless the view is not shown.
    void place();
    // Fonts and enabled state after a restyle.
    void refreshFonts();

    // Handles WM_COMMAND from one of the windows; false when it is none of ours.
    bool onCommand(WPARAM wParam, LPARAM lParam, ButtonListener* listener);
    // Shows the model's selection in the select's window, without a change notification.
    void showSelection(const View& select);
    // Shows the model's text, check mark or selection in the view's window.
    void showState(const View& view);
    HWND windowOf(const View& view) const;
    // All the windows, in document order.
    std::vector<HWND> windows() const;
    // Reads what the user has done to the window into the view's model.
    void readBack(View& view);

private:
    struct Entry {
        View* view;
        HWND window;
    };
    HWND create(View& view, int id);
    void fill(const Entry& entry);
    void checkRadio(const Entry& clicked);
    Entry* entryOf(HWND window);

    HWND parent_;
    FontCache& fonts_;
    std::vector<Entry> entries_;
};

} // namespace xhtml

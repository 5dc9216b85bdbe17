#pragma once
// A dialog of a companion library: a markup frame whose content is a markup resource of the
// library ("res:///NAME"), with the language keys of the dialog's own section replaced
// before parsing, shown modal to an optional owner. Its title is the section's "title" text.
//
// A derived dialog fills its controls in onShown() and hears its buttons in onButton(); it
// closes itself with destroy(). The close box and Escape close it too (WM_CLOSE). GDI+ must
// be running for the object's whole life when the markup shows images.

#include "xhtml/win/XhtmlFrameView.h"

namespace companions {

class CompanionDialog : public xhtml::XhtmlFrameView {
public:
    // `section` ends in "/", as "about/".
    CompanionDialog(const ZString& markupAddress, const ZString& section);

    // Shows the dialog modal to `owner` (null, or not a window: no owner) and returns once it
    // is closed. False, with nothing shown, when the window or its markup could not be made.
    bool run(HWND owner);

protected:
    void filterMarkup(ZString& markup) override;
    // The markup is in and the window shown and active: time to fill and focus the controls.
    virtual void onShown() {}
    virtual void onButton(const ZString& name) = 0;

    // The text of a key of the dialog's section (else of the key itself).
    ZString text(const ZString& key) const;
    // Gives the keyboard focus to the control with this id and selects a field's text.
    void focusControl(const ZString& id);
    // Tells the user what to correct, in a message box owned by the dialog.
    void tellUser(const ZString& message);

private:
    class Buttons : public xhtml::ButtonListener {
    public:
        explicit Buttons(CompanionDialog& dialog) : dialog_(dialog) {}
        void onButtonPressed(const ZString& name) override { dialog_.onButton(name); }

    private:
        CompanionDialog& dialog_;
    };

    bool open(HWND owner);

    ZString markupAddress_;
    ZString section_;
    Buttons buttons_;
};

} // namespace companions

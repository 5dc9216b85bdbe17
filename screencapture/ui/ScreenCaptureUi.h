#pragma once
// The capture dialog: a markup frame whose content is the resource "captureUi.xhtml". It
// starts from the last mode and target the user chose, lets the user pick again, and on
// "start" keeps and stores the choice and closes. Closing the window any other way leaves
// it not accepted and stores nothing.
//
// The caller creates the window (class "XhtmlFrameView", the dialog as creation parameter),
// runs makeModal() and reads accepted(), mode() and target() afterwards.

#include "screencapture/CaptureApi.h"
#include "screencapture/ui/InAppPage.h"
#include "xhtml/win/XhtmlFrameView.h"

#include <ole2.h>

#include <memory>
#include <optional>

namespace screenCapture {

class ScreenCaptureUi : public xhtml::XhtmlFrameView {
public:
    static constexpr const wchar_t* markupAddress = L"res:///captureUi.xhtml";

    // Starts from the user values "screenCapture.lastMode" and "screenCapture.lastTarget".
    ScreenCaptureUi();
    ~ScreenCaptureUi() override;

    bool accepted() const { return start_.accepted; }
    // OLE sessions that dialogs hold now: one per dialog that shows the in-app page.
    static int oleSessions() { return OleSession::live; }
    Mode mode() const { return start_.mode; }
    Target target() const { return start_.target; }

protected:
    LRESULT handleMessage(UINT message, WPARAM wParam, LPARAM lParam) override;
    // Replaces the language keys before the markup is parsed.
    void filterMarkup(ZString& text) override;
    // Keeps the in-app page over the bottom bar.
    void onLayout() override;

private:
    // Hears the "start" button: reads the two selects, stores the choice, closes.
    class StartListener : public xhtml::ButtonListener {
    public:
        explicit StartListener(ScreenCaptureUi& dialog) : dialog_(dialog) {}
        void onButtonPressed(const ZString& name) override;

        bool accepted = false;
        Mode mode = noMode;
        Target target = noTarget;

    private:
        ScreenCaptureUi& dialog_;
    };

    // OLE on the dialog's thread for the in-app page; given back only if this start took.
    class OleSession {
    public:
        OleSession() : started_(SUCCEEDED(OleInitialize(nullptr))) { ++live; }
        ~OleSession()
        {
            --live;
            if (started_)
                OleUninitialize();
        }
        OleSession(const OleSession&) = delete;
        OleSession& operator=(const OleSession&) = delete;

        static inline int live = 0; // only the dialogs' thread changes it

    private:
        bool started_;
    };

    LRESULT onCreate();
    void openInAppPage();
    void placeInAppPage();

    StartListener start_;
    std::optional<OleSession> ole_; // outlives the page
    std::unique_ptr<InAppPage> browser_;
};

} // namespace screenCapture

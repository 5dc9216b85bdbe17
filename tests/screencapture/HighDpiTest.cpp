// 192 DPI, in the display shape "hidpi" (scripts/wine-env): the overlay's outline is two
// pixels wide, and the capture dialog is laid out at twice its size, nothing clipped or on
// top of anything else.

#include "base/win/GdiHandles.h"
#include "base/win/ScreenDpi.h"
#include "screencapture/DpiAwareness.h"
#include "screencapture/ModuleInstance.h"
#include "screencapture/ScreenCapture.h"
#include "companions/language/LanguageKeys.h"
#include "screencapture/ui/ScreenCaptureUi.h"
#include "tests/screencapture/CaptureTestKit.h"
#include "tests/screencapture/OverlayHand.h"
#include "xhtml/HtmlDocument.h"
#include "xhtml/win/GdiCanvas.h"
#include "xhtml/win/ModuleResourceLoader.h"

#include <string>
#include <utility>
#include <vector>

namespace screenCapture {
namespace {

class HighDpi : public CaptureTest {
protected:
    void SetUp() override
    {
        makeProcessDpiAware();
        ASSERT_EQ(screenDpi(), 192) << "needs a display at 192 DPI (PRYXA_WINE_SHAPE=hidpi)";
    }
};

RECT wholeScreen() { return {0, 0, GetSystemMetrics(SM_CXSCREEN), GetSystemMetrics(SM_CYSCREEN)}; }

// How many lines across an edge of the selection do not show an outline `width` pixels wide
// (dots or not: a wide dotted pen draws solid). `step` walks across the edge, `along` along it.
int linesNotOfWidth(const PixelGrid& seen, const PixelGrid& before, POINT edge, POINT step, POINT along, int length,
                    int width)
{
    int wrong = 0;
    for (int i = 0; i < length; ++i) {
        const int x0 = edge.x + along.x * i, y0 = edge.y + along.y * i;
        int seenWidth = 0;
        for (int d = -6; d <= 6; ++d) {
            const uint32_t now = seen.at(x0 + step.x * d, y0 + step.y * d), was = before.at(x0 + step.x * d, y0 + step.y * d);
            seenWidth += now != was && !isVeiled(now, was); // neither the screen as it was nor veiled
        }
        wrong += seenWidth != width;
    }
    return wrong;
}

// The last move comes back from beyond the right and bottom edges, so the damaged area holds
// the whole outline there. On the left and top it holds only the inner half: only the
// damaged area travels to the screen, so the outer half stays veiled.
TEST_F(HighDpi, OverlayOutlineIsTwoPixelsWide)
{
    auto window = showPattern({300, 200, 700, 500}, calmPattern);
    const PixelGrid before = readScreenPixels(wholeScreen());
    const POINT from = {400, 260}, to = {600, 420};
    const POINT inside = {(from.x + to.x) / 2, (from.y + to.y) / 2};
    PixelGrid dragging;
    SetCursorPos(to.x, to.y);
    pumpMessages(50);
    ScreenCapture capture(nullptr);
    selectWith(capture, [&](OverlayHand& o) {
        o.press(from);
        o.moveTo({to.x + 40, to.y + 30});
        o.moveTo(to);
        dragging = screenOnce(o.window, wholeScreen(), [&](const PixelGrid& g) {
            return g.at(inside.x, inside.y) == before.at(inside.x, inside.y) && isVeiled(g.at(to.x + 20, to.y + 15), before.at(to.x + 20, to.y + 15));
        });
        o.keyUp(VK_ESCAPE);
    });
    ASSERT_EQ(dragging.pixels.size(), before.pixels.size());
    const struct {
        const char* edge;
        POINT at, step, along;
        int width;
    } edges[] = {
        {"right", {to.x, from.y + 30}, {1, 0}, {0, 1}, 2},
        {"bottom", {from.x + 30, to.y}, {0, 1}, {1, 0}, 2},
        {"left", {from.x, from.y + 30}, {1, 0}, {0, 1}, 1},
        {"top", {from.x + 30, from.y}, {0, 1}, {1, 0}, 1},
    };
    for (const auto& e : edges)
        EXPECT_EQ(linesNotOfWidth(dragging, before, e.at, e.step, e.along, 100, e.width), 0) << e.edge;
}

using xhtml::Rect;
using xhtml::View;
using xhtml::ViewKind;

// What the dialog shows, in document order: images, controls and pieces of text.
struct Shown {
    std::string what;
    Rect box;
};

std::vector<Shown> shownIn(xhtml::ViewTree& views)
{
    std::vector<Shown> shown;
    views.forEach([&](View& view) {
        if (view.kind == ViewKind::image || view.kind == ViewKind::control)
            shown.push_back({view.kind == ViewKind::image ? "image" : "control", view.box});
        for (const xhtml::TextFragment& fragment : view.fragments)
            shown.push_back({"text", fragment.box});
    });
    return shown;
}

bool overlap(const Rect& a, const Rect& b) { return a.x < b.right() && b.x < a.right() && a.y < b.bottom() && b.y < a.bottom(); }

std::string describe(const Shown& s)
{
    const Rect& b = s.box;
    return s.what + " " + std::to_string(b.x) + "," + std::to_string(b.y) + " " + std::to_string(b.width) + "x" + std::to_string(b.height);
}

struct LanguageFilter : xhtml::MarkupTextFilter {
    void filterMarkup(ZString& text) override { language::replaceLanguageKeys(text, L"screen-capture/", language::installedLanguage()); }
};

// The dialog's markup laid out at 96 DPI, measured with this process's fonts.
struct LayoutAt96 {
    explicit LayoutAt96(const xhtml::StyleRuleList& rules) : loader(moduleInstance())
    {
        std::vector<uint8_t> bytes;
        loader.load(ScreenCaptureUi::markupAddress, bytes);
        document.setMarkup(xhtml::decodeMarkupBytes(bytes), filter, ScreenCaptureUi::markupAddress);
        images.setLoader(&loader);
        views.build(document.root(), rules, document.baseAddress(), 1.0);
        xhtml::GdiCanvas canvas(measuring.get(), fonts, images);
        size = views.layout(canvas, views.preferredWidth(canvas), -1);
    }

    xhtml::ModuleResourceLoader loader;
    LanguageFilter filter;
    xhtml::HtmlDocument document;
    xhtml::FontCache fonts;
    xhtml::ImageCache images;
    MemoryDC measuring{nullptr};
    xhtml::ViewTree views;
    xhtml::Size size;
};

SIZE textExtent(HWND control, const std::wstring& text)
{
    WindowDC dc(control);
    SelectedObject font(dc.get(), reinterpret_cast<HGDIOBJ>(SendMessageW(control, WM_GETFONT, 0, 0)));
    SIZE extent = {};
    GetTextExtentPoint32W(dc.get(), text.c_str(), static_cast<int>(text.size()), &extent);
    return extent;
}

// The texts of a native control (each entry of a drop-down list), and the room they have in
// its client coordinates: a closed drop-down list's field, or the whole client area.
std::pair<RECT, std::vector<std::wstring>> textsAndRoom(HWND control)
{
    RECT room = {};
    GetClientRect(control, &room);
    COMBOBOXINFO combo = {};
    combo.cbSize = sizeof combo;
    if (windowClass(control) != L"ComboBox" || !GetComboBoxInfo(control, &combo))
        return {room, {windowText(control)}};
    std::vector<std::wstring> texts;
    for (LRESULT i = 0, count = SendMessageW(control, CB_GETCOUNT, 0, 0); i < count; ++i) {
        std::wstring text(static_cast<size_t>(SendMessageW(control, CB_GETLBTEXTLEN, i, 0)) + 1, L'\0');
        SendMessageW(control, CB_GETLBTEXT, i, reinterpret_cast<LPARAM>(text.data()));
        texts.push_back(text.c_str());
    }
    return {combo.rcItem, texts};
}

// The real dialog, made as the capture run makes it, without its modal loop; its markup and
// images are the module's resources.
struct DialogInThisProgram {
    DialogInThisProgram()
    {
        setModuleInstance(module);
        dialog.context().setResourceLoader(std::make_unique<xhtml::ModuleResourceLoader>(moduleInstance()));
        xhtml::XhtmlFrameView::registerClass(moduleInstance());
        created = dialog.create(WS_EX_TOPMOST | WS_EX_TOOLWINDOW, xhtml::XhtmlFrameView::className, L"",
                                WS_POPUP | WS_VISIBLE | WS_CAPTION | WS_SYSMENU, 0, 0, 0, 0, nullptr, nullptr,
                                moduleInstance(), &dialog);
        pumpMessages(300);
    }
    ~DialogInThisProgram()
    {
        setModuleInstance(nullptr);
        FreeLibrary(module);
    }

    HMODULE module = LoadLibraryW(L"screencapture.dll"); // before the dialog, freed after it
    ScreenCaptureUi dialog;
    bool created = false;
};

// Everything the dialog shows lies in its client area, apart from everything else, about
// twice as large as at 96 DPI; every native control lies in its box and holds its texts.
TEST_F(HighDpi, CaptureDialogIsTwiceAsLargeWithNothingClippedOrOverlapping)
{
    DialogInThisProgram made;
    ASSERT_TRUE(made.created);
    ScreenCaptureUi& dialog = made.dialog;
    const RECT client = dialog.clientRect();
    const std::vector<Shown> shown = shownIn(dialog.views());
    ASSERT_GE(shown.size(), 10u);
    for (size_t i = 0; i < shown.size(); ++i) {
        const Rect& box = shown[i].box;
        EXPECT_TRUE(box.x >= 0 && box.y >= 0 && box.right() <= client.right && box.bottom() <= client.bottom)
            << describe(shown[i]) << " outside the client area " << client.right << "x" << client.bottom;
        for (size_t j = i + 1; j < shown.size(); ++j)
            EXPECT_FALSE(overlap(box, shown[j].box)) << describe(shown[i]) << " and " << describe(shown[j]);
    }

    LayoutAt96 at96(dialog.context().styleRules());
    const std::vector<Shown> small = shownIn(at96.views);
    ASSERT_EQ(small.size(), shown.size());
    const auto twice = [](int big, int little) { return big >= little * 17 / 10 && big <= little * 23 / 10; };
    EXPECT_TRUE(twice(client.right, at96.size.width) && twice(client.bottom, at96.size.height))
        << client.right << "x" << client.bottom << " at 192 DPI, " << at96.size.width << "x" << at96.size.height << " at 96";
    for (size_t i = 0; i < shown.size(); ++i) {
        if (shown[i].what == "text" && small[i].box.width <= 10)
            continue; // spaces are too narrow to tell
        EXPECT_TRUE(twice(shown[i].box.width, small[i].box.width) && twice(shown[i].box.height, small[i].box.height))
            << describe(shown[i]) << " at 192 DPI, " << describe(small[i]) << " at 96";
    }

    std::vector<Rect> controlBoxes;
    for (const Shown& s : shown)
        if (s.what == "control")
            controlBoxes.push_back(s.box);
    std::vector<HWND> controls;
    for (HWND child = GetWindow(dialog.handle(), GW_CHILD); child; child = GetWindow(child, GW_HWNDNEXT))
        controls.push_back(child);
    ASSERT_EQ(controls.size(), controlBoxes.size());
    for (size_t i = 0; i < controls.size(); ++i) {
        RECT closed = {};
        GetWindowRect(controls[i], &closed); // a drop-down list's closed field
        MapWindowPoints(nullptr, dialog.handle(), reinterpret_cast<POINT*>(&closed), 2);
        const Rect& box = controlBoxes[i];
        EXPECT_TRUE(closed.left >= box.x && closed.top >= box.y && closed.right <= box.right() && closed.bottom <= box.bottom())
            << windowClass(controls[i]) << " outside its box";
        const auto [room, texts] = textsAndRoom(controls[i]);
        for (const std::wstring& text : texts) {
            const SIZE extent = textExtent(controls[i], text);
            EXPECT_TRUE(extent.cx <= room.right - room.left && extent.cy <= room.bottom - room.top)
                << windowClass(controls[i]) << ": \"" << std::string(text.begin(), text.end()) << "\" " << extent.cx << "x"
                << extent.cy << " in " << room.right - room.left << "x" << room.bottom - room.top;
        }
    }
}

// An open drop-down list is as many rows tall at 192 DPI as at 96, though each row is twice
// as high: twelve rows fit at both.
TEST_F(HighDpi, OpenDropDownListShowsAsManyRowsAsAt96Dpi)
{
    xhtml::XhtmlFrameView::registerClass(GetModuleHandleW(nullptr));
    xhtml::XhtmlFrameView frame;
    ASSERT_TRUE(frame.create(0, xhtml::XhtmlFrameView::className, L"list", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 0, 0, 600,
                             400, nullptr, nullptr, GetModuleHandleW(nullptr), &frame));
    ZString markup(L"<select id=list>");
    for (int i = 1; i <= 12; ++i)
        markup += ZString(L"<option value=") + ZString(std::to_wstring(i).c_str()) + ZString(L">Row</option>");
    frame.setMarkup(markup + ZString(L"</select>"));
    HWND list = frame.controlWindow(L"list");
    ASSERT_NE(list, nullptr);
    SendMessageW(list, CB_SHOWDROPDOWN, TRUE, 0);
    RECT dropped = {}, closed = {};
    SendMessageW(list, CB_GETDROPPEDCONTROLRECT, 0, reinterpret_cast<LPARAM>(&dropped));
    GetWindowRect(list, &closed);
    SendMessageW(list, CB_SHOWDROPDOWN, FALSE, 0);
    const int rowHeight = static_cast<int>(SendMessageW(list, CB_GETITEMHEIGHT, 0, 0));
    EXPECT_GE((dropped.bottom - dropped.top) - (closed.bottom - closed.top), 12 * rowHeight);
}

} // namespace
} // namespace screenCapture

// The markup host as a window (native controls and their values, listeners, resources and
// images by "res:///" address, fitting to the content) and its GDI canvas, read back from a
// bitmap.

#include "base/win/GdiHandles.h"
#include "tests/support/TestPixels.h"
#include "tests/support/UiRobot.h"
#include "xhtml/view/ComputedStyle.h"
#include "xhtml/win/GdiCanvas.h"
#include "xhtml/win/ModuleResourceLoader.h"
#include "xhtml/win/XhtmlFrameView.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <vector>

using namespace xhtml;

namespace {

struct GdiplusOn {
    ULONG_PTR token = 0;
    Gdiplus::GdiplusStartupInput input;
    GdiplusOn() { Gdiplus::GdiplusStartup(&token, &input, nullptr); }
    ~GdiplusOn() { Gdiplus::GdiplusShutdown(token); }
};

// GDI+ on (until the frame is gone) and a visible 400 x 300 frame for each test.
class MarkupHost : public testing::Test {
protected:
    MarkupHost()
    {
        XhtmlFrameView::registerClass(GetModuleHandleW(nullptr));
        frame.create(0, XhtmlFrameView::className, L"test frame", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 0, 0, 400, 300,
                     nullptr, nullptr, GetModuleHandleW(nullptr), &frame);
    }

    GdiplusOn gdiplus;
    XhtmlFrameView frame;
};

const wchar_t* const kControls =
    L"<select id=s><option value=a>Alpha</option><option value=b selected>Beta</option><option value=c>Gamma</option></select>"
    L"<select id=m multiple><option value=1>one</option><option value=2>two</option><option value=3>three</option></select>"
    L"<input type=button name=go value=Go/><input id=stop type=button name=stop value=Stop/><a id=next href='next.xhtml'>next</a>";

TEST_F(MarkupHost, SelectValueIsSetQuietlyByOptionValueAndReadBackAsTheUserLeftIt)
{
    frame.setMarkup(kControls);
    HWND combo = frame.controlWindow(L"s");
    ASSERT_NE(combo, nullptr);
    EXPECT_EQ(frame.selectValue(L"s"), ZString(L"b"));
    EXPECT_TRUE(frame.setSelectValue(L"s", L"c"));
    EXPECT_EQ(SendMessageW(combo, CB_GETCURSEL, 0, 0), 2) << "the window shows the new choice";
    EXPECT_FALSE(frame.setSelectValue(L"s", L"clipboard"));
    EXPECT_EQ(frame.selectValue(L"s"), ZString(L"c")) << "an unknown value keeps the selection";
    SendMessageW(combo, CB_SETCURSEL, 0, 0); // the user's choice, however it arrived
    EXPECT_EQ(frame.selectValue(L"s"), ZString(L"a"));

    HWND list = frame.controlWindow(L"m");
    ASSERT_EQ(windowClass(list), L"ListBox");
    EXPECT_TRUE(frame.setSelectValue(L"m", L"3") && frame.setSelectValue(L"m", L"2"));
    EXPECT_GT(SendMessageW(list, LB_GETSEL, 2, 0), 0) << "several choices: the earlier one stays";
    EXPECT_EQ(frame.selectValue(L"m"), ZString(L"2"));
}

const wchar_t* const kFields =
    L"<input id=t value='start'/><input id=p type=password/><textarea id=a>one</textarea><input id=h type=hidden/>"
    L"<input id=c type=checkbox checked/><input id=r1 type=radio name=g checked/><input id=r2 type=radio name=g/>"
    L"<select id=list><option>a</option></select>";

TEST_F(MarkupHost, FieldTextsAndCheckMarksAreSetByIdAndReadBackAsTheUserLeftThem)
{
    frame.setMarkup(kFields);
    EXPECT_EQ(frame.fieldValue(L"t"), ZString(L"start"));
    const struct {
        const wchar_t* id;
        const wchar_t* set;
        const wchar_t* shown; // null: no window
    } fields[] = {{L"t", L"72", L"72"}, {L"p", L"secret", L"secret"}, {L"a", L"one\ntwo", L"one\r\ntwo"}, {L"h", L"x", nullptr}};
    for (const auto& f : fields) {
        EXPECT_TRUE(frame.setFieldValue(f.id, f.set)) << f.id;
        if (f.shown) {
            EXPECT_EQ(windowText(frame.controlWindow(f.id)), f.shown) << f.id;
        }
        EXPECT_EQ(frame.fieldValue(f.id), ZString(f.shown ? f.shown : f.set)) << f.id;
    }
    typeText(frame.controlWindow(L"t"), L"300");
    EXPECT_EQ(frame.fieldValue(L"t"), ZString(L"300"));

    EXPECT_TRUE(frame.isChecked(L"c"));
    EXPECT_TRUE(frame.setChecked(L"c", false));
    EXPECT_EQ(SendMessageW(frame.controlWindow(L"c"), BM_GETCHECK, 0, 0), BST_UNCHECKED);
    SendMessageW(frame.controlWindow(L"c"), BM_SETCHECK, BST_CHECKED, 0); // however the user's mark arrived
    EXPECT_TRUE(frame.isChecked(L"c"));
    EXPECT_TRUE(frame.setChecked(L"r2", true));
    EXPECT_EQ(SendMessageW(frame.controlWindow(L"r1"), BM_GETCHECK, 0, 0), BST_UNCHECKED) << "one of a group";
    EXPECT_FALSE(frame.isChecked(L"r1"));

    for (const wchar_t* wrong : {L"c", L"list", L"missing"}) {
        EXPECT_FALSE(frame.setFieldValue(wrong, L"1")) << wrong;
        EXPECT_EQ(frame.fieldValue(wrong), ZString()) << wrong;
    }
    EXPECT_FALSE(frame.setChecked(L"t", true));
    EXPECT_FALSE(frame.isChecked(L"t"));
}

TEST_F(MarkupHost, ButtonPressesAndLinkClicksReachTheListeners)
{
    struct Presses : ButtonListener, LinkListener {
        std::vector<std::wstring> heard;
        void onButtonPressed(const ZString& name) override { heard.push_back(L"button " + std::wstring(name.c_str())); }
        void onLinkClicked(const ZString& href) override { heard.push_back(L"link " + std::wstring(href.c_str())); }
    } presses;
    frame.context().setButtonListener(&presses);
    frame.context().setLinkListener(&presses);
    frame.setMarkup(kControls);
    SendMessageW(frame.controlWindow(L"stop"), BM_CLICK, 0, 0);
    pumpUntil([&] { return !presses.heard.empty(); }, 5000);
    const Rect next = frame.elementRect(L"next");
    const LPARAM at = MAKELPARAM(next.x + 2, next.y + 2);
    SendMessageW(frame.handle(), WM_LBUTTONDOWN, MK_LBUTTON, at);
    SendMessageW(frame.handle(), WM_LBUTTONUP, 0, at);
    EXPECT_EQ(presses.heard, (std::vector<std::wstring>{L"button stop", L"link next.xhtml"}));
}

TEST_F(MarkupHost, EscapeInAModalFrameClosesItUnlessAnOpenDropDownListTakesTheKey)
{
    frame.setMarkup((std::wstring(kControls) + kFields).c_str());
    const HWND window = frame.handle(), combo = frame.controlWindow(L"s"), field = frame.controlWindow(L"t");
    UiRobot robot([&](UiRobot& r) {
        SendMessageW(combo, CB_SHOWDROPDOWN, TRUE, 0);
        postKey(combo, VK_ESCAPE);
        if (!pumpUntil([&] { return !SendMessageW(combo, CB_GETDROPPEDSTATE, 0, 0); }, 5000))
            throw RobotFailure("the list stayed open");
        pumpMessages(200);
        if (!IsWindow(window))
            throw RobotFailure("the list's Escape closed the frame");
        postKey(field, VK_ESCAPE);
        r.waitForWindowGone(window);
    });
    frame.makeModal();
    EXPECT_EQ(robot.finish(), "");
}

TEST_F(MarkupHost, LoadsMarkupAndImagesFromTheModulesResourcesWithTheirAlpha)
{
    frame.context().setResourceLoader(std::make_unique<ModuleResourceLoader>(GetModuleHandleW(nullptr)));
    EXPECT_FALSE(frame.load(L"res:///missing.xhtml"));
    ASSERT_TRUE(frame.load(L"res:///page.xhtml"));
    EXPECT_EQ(frame.elementRect(L"dot"), (Rect{3, 3, 4, 2}));

    std::vector<uint8_t> bytes;
    ASSERT_TRUE(frame.context().resourceLoader()->load(L"res:///Dot.png", bytes)) << "names ignore case";
    std::unique_ptr<Gdiplus::Bitmap> image = ImageCache::decode(bytes);
    ASSERT_TRUE(image);
    Gdiplus::Color left, right;
    image->GetPixel(0, 0, &left);
    image->GetPixel(3, 1, &right);
    EXPECT_EQ(left.GetValue(), 0xFFFF0000u);
    EXPECT_EQ(right.GetAlpha(), 0) << "the transparent half stays transparent";
}

TEST_F(MarkupHost, FitsToItsContentOnceAfterABurstOfChangesOrElseLetsPercentagesFollowTheWindow)
{
    const LONG before = frame.clientRect().right;
    frame.setAxisMode(3, 0);
    frame.setSizeToContent(true, true);
    frame.setMarkup(L"<div style='width:120px; height:40px'></div>");
    frame.setMarkup(L"<div style='width:150px; height:60px'></div>");
    EXPECT_EQ(frame.clientRect().right, before) << "the fit waits";
    EXPECT_TRUE(pumpUntil([&] { return frame.clientRect().right == 150; }, 5000));
    EXPECT_EQ(frame.clientRect().bottom, 60);
    frame.setSizeToContent(false, false);
    frame.setMarkup(L"<div id=half style='width:50%; height:100%'></div>");
    frame.setClientSize(300, 200);
    EXPECT_EQ(frame.elementRect(L"half"), (Rect{0, 0, 150, 200}));
    frame.setAxisMode(3, 1);
    frame.setMarkup(L"<div id=small style='width:100px; height:50px'></div>");
    EXPECT_EQ(frame.elementRect(L"small"), (Rect{0, 75, 100, 50})) << "a block fills the width; centred vertically";
}

// Paints with a GdiCanvas on a white 40 x 40 bitmap and returns its pixels (0xRRGGBB).
PixelGrid painted(const std::function<void(GdiCanvas&)>& paint)
{
    WindowDC screen;
    BitmapHandle bitmap(CreateCompatibleBitmap(screen.get(), 40, 40));
    {
        MemoryDC dc(screen.get());
        SelectedObject selected(dc.get(), bitmap.get());
        const RECT all = {0, 0, 40, 40};
        FillRect(dc.get(), &all, static_cast<HBRUSH>(GetStockObject(WHITE_BRUSH)));
        FontCache fonts;
        ImageCache images;
        GdiCanvas canvas(dc.get(), fonts, images);
        paint(canvas);
    }
    return readBitmapPixels(bitmap.get());
}

int red(uint32_t pixel) { return (pixel >> 16) & 0xFF; }
int blue(uint32_t pixel) { return pixel & 0xFF; }

TEST(GdiCanvas, GradientsRunFromTheFirstColourInTheirDirection)
{
    const struct {
        GradientDirection direction;
        POINT first, second; // where the first colour (red) and the second (blue) are
    } cases[] = {
        {GradientDirection::vertical, {20, 0}, {20, 39}},        {GradientDirection::horizontal, {0, 20}, {39, 20}},
        {GradientDirection::forwardDiagonal, {0, 0}, {39, 39}}, {GradientDirection::backwardDiagonal, {39, 0}, {0, 39}},
    };
    for (const auto& c : cases) {
        const PixelGrid grid = painted([&](GdiCanvas& canvas) {
            canvas.fillGradient(Rect{0, 0, 40, 40}, StyleGradient{rgb(0xFF0000), rgb(0x0000FF), c.direction});
        });
        const uint32_t first = grid.at(c.first.x, c.first.y), second = grid.at(c.second.x, c.second.y);
        EXPECT_TRUE(red(first) > 0xE0 && blue(first) < 0x20) << std::hex << first << " " << int(c.direction);
        EXPECT_TRUE(blue(second) > 0xE0 && red(second) < 0x20) << std::hex << second << " " << int(c.direction);
    }
}

TEST(GdiCanvas, TransparentColoursDrawNothingAndHalfTransparentOnesBlend)
{
    const PixelGrid grid = painted([](GdiCanvas& canvas) {
        canvas.fillRect(Rect{0, 0, 10, 10}, transparentColour);
        canvas.fillRect(Rect{10, 0, 10, 10}, rgb(0x000000) | 0x80000000);
        canvas.fillRect(Rect{20, 0, 10, 10}, rgb(0x204060));
        canvas.pushClip(Rect{0, 20, 5, 5});
        canvas.fillRect(Rect{0, 20, 20, 20}, rgb(0x000000));
        canvas.popClip();
    });
    EXPECT_EQ(grid.at(5, 5), 0xFFFFFFu);
    EXPECT_NEAR(red(grid.at(15, 5)), 0x7F, 2);
    EXPECT_EQ(grid.at(25, 5), 0x204060u);
    EXPECT_EQ(grid.at(4, 24), 0x000000u);
    EXPECT_EQ(grid.at(6, 24), 0xFFFFFFu) << "outside the clip";
}

} // namespace

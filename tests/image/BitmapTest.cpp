// The GDI bitmap wrapper: ownership of its handle, drawing with and without a colour key,
// copying from the screen, scaling, copies, resources and leaks.

#include "image/Bitmap.h"

#include "base/win/GdiHandles.h"
#include "tests/image/TestImages.h"
#include "tests/support/ResourceCounters.h"
#include "tests/support/TestPixels.h"
#include "tests/support/UiRobot.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

namespace {

const uint32_t kBackground = rgb(128, 128, 128);

bool isLiveBitmap(HBITMAP bitmap)
{
    return GetObjectType(bitmap) == OBJ_BITMAP;
}

PixelGrid gridOf(int width, int height, const PixelPattern& pattern)
{
    PixelGrid grid;
    grid.width = width;
    grid.height = height;
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            grid.pixels.push_back(pattern(x, y));
    return grid;
}

// A screen-compatible bitmap showing `pattern`; the caller owns it.
HBITMAP makeBitmap(int width, int height, const PixelPattern& pattern)
{
    WindowDC screen;
    HBITMAP bitmap = CreateCompatibleBitmap(screen.get(), width, height);
    BITMAPINFO info = {};
    info.bmiHeader.biSize = sizeof info.bmiHeader;
    info.bmiHeader.biWidth = width;
    info.bmiHeader.biHeight = -height;
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 32;
    info.bmiHeader.biCompression = BI_RGB;
    const PixelGrid grid = gridOf(width, height, pattern);
    SetDIBits(screen.get(), bitmap, 0, height, grid.pixels.data(), &info, DIB_RGB_COLORS);
    return bitmap;
}

// Four solid quadrants split at (splitX, splitY).
PixelPattern quadrants(int splitX, int splitY)
{
    return [=](int x, int y) {
        if (y < splitY)
            return x < splitX ? rgb(255, 0, 0) : rgb(0, 0, 255);
        return x < splitX ? rgb(0, 255, 0) : rgb(255, 255, 0);
    };
}

// Distinct colours everywhere, so that any shift shows.
uint32_t gradient(int x, int y)
{
    return rgb(10 * x, 10 * y, 200);
}

// A `width` x `height` grey surface with `pattern` (in its own coordinates) in the
// rectangle at (left, top); pixels for which `pattern` gives `hole` stay grey.
PixelGrid expectedCanvas(int width, int height, const RECT& placed, const PixelPattern& pattern,
                         uint32_t hole = 0xFFFFFFFF)
{
    return gridOf(width, height, [&](int x, int y) {
        if (x < placed.left || x >= placed.right || y < placed.top || y >= placed.bottom)
            return kBackground;
        const uint32_t pixel = pattern(x - placed.left, y - placed.top);
        return pixel == hole ? kBackground : pixel;
    });
}

// A grey surface to draw on, read back after drawing.
class Canvas {
public:
    Canvas(int width, int height) : bitmap_(makeBitmap(width, height, [](int, int) { return kBackground; })) {}

    template <typename Draw>
    PixelGrid drawn(Draw draw)
    {
        {
            WindowDC screen;
            MemoryDC memory(screen.get());
            SelectedObject selected(memory.get(), bitmap_.get());
            draw(memory.get());
        }
        return readBitmapPixels(bitmap_.get());
    }

private:
    BitmapHandle bitmap_;
};

} // namespace

TEST(Bitmap, WithoutAHandleDoesNothing)
{
    Bitmap bitmap;
    EXPECT_FALSE(bitmap.isValid());
    EXPECT_EQ(bitmap.handle(), nullptr);
    EXPECT_EQ(bitmap.width(), 0);
    EXPECT_EQ(bitmap.height(), 0);
    bitmap.scale(2.0);
    EXPECT_FALSE(bitmap.isValid());
    EXPECT_EQ(bitmap.copy(), nullptr);
    Canvas canvas(4, 4);
    const PixelGrid after = canvas.drawn([&](HDC dc) {
        bitmap.draw(dc, 0, 0, 4, 4, 0, 0);
        bitmap.copyFrom(dc, 0, 0);
    });
    EXPECT_EQ(after.pixels, std::vector<uint32_t>(16, kBackground));
}

TEST(Bitmap, CreateMakesACompatibleBitmapAndFreesThePreviousOne)
{
    WindowDC screen;
    Bitmap bitmap;
    bitmap.create(screen.get(), 30, 20);
    ASSERT_TRUE(bitmap.isValid());
    EXPECT_EQ(bitmap.width(), 30);
    EXPECT_EQ(bitmap.height(), 20);
    HBITMAP first = bitmap.handle();
    bitmap.create(screen.get(), 7, 9);
    EXPECT_FALSE(isLiveBitmap(first));
    EXPECT_EQ(bitmap.width(), 7);
    EXPECT_EQ(bitmap.height(), 9);
    HBITMAP second = bitmap.handle();
    // A failed create leaves no handle and the last size.
    bitmap.create(screen.get(), 0x10000000, 0x10000000);
    EXPECT_FALSE(bitmap.isValid());
    EXPECT_FALSE(isLiveBitmap(second));
    EXPECT_EQ(bitmap.width(), 7);
}

TEST(Bitmap, LoadsABitmapResourceOfTheProgram)
{
    const PixelGrid expected = gridOf(5, 3, [](int x, int y) {
        if (x == 0 && y == 0)
            return rgb(255, 255, 255);
        return y == 0 ? rgb(255, 0, 0) : y == 1 ? rgb(0, 255, 0) : rgb(0, 0, 255);
    });
    Bitmap fromNull;
    fromNull.load(static_cast<WORD>(ROWS_BITMAP), nullptr);
    ASSERT_TRUE(fromNull.isValid());
    EXPECT_EQ(fromNull.width(), 5);
    EXPECT_EQ(fromNull.height(), 3);
    EXPECT_EQ(readBitmapPixels(fromNull.handle()).pixels, expected.pixels);

    Bitmap fromModule;
    fromModule.load(static_cast<UINT>(ROWS_BITMAP), GetModuleHandleW(nullptr));
    ASSERT_TRUE(fromModule.isValid());
    EXPECT_EQ(readBitmapPixels(fromModule.handle()).pixels, expected.pixels);

    HBITMAP loaded = fromModule.handle();
    fromModule.load(static_cast<WORD>(999), nullptr);
    EXPECT_FALSE(fromModule.isValid());
    EXPECT_FALSE(isLiveBitmap(loaded));
    fromModule.load(static_cast<UINT>(0x10000 + ROWS_BITMAP), nullptr);
    EXPECT_FALSE(fromModule.isValid()) << "not a 16-bit id";
}

TEST(Bitmap, ABorrowedHandleIsNeverFreedAndReleaseMakesTheNextOneOwned)
{
    HBITMAP borrowed = makeBitmap(6, 4, gradient);
    WindowDC screen;
    HBITMAP created = nullptr;
    {
        Bitmap bitmap;
        bitmap.attach(borrowed, false);
        EXPECT_EQ(bitmap.width(), 6);
        EXPECT_EQ(bitmap.height(), 4);
        bitmap.release();
        EXPECT_FALSE(bitmap.isValid());
        EXPECT_TRUE(isLiveBitmap(borrowed));
        // Owned again: the next handle goes with the object.
        bitmap.create(screen.get(), 3, 3);
        created = bitmap.handle();
        ASSERT_TRUE(isLiveBitmap(created));

        bitmap.attach(borrowed, false);
        EXPECT_FALSE(isLiveBitmap(created)) << "attach frees an owned handle";
        // Scaling keeps the borrowed original and owns the scaled bitmap.
        bitmap.scale(0.5);
        EXPECT_EQ(bitmap.width(), 3);
        EXPECT_TRUE(isLiveBitmap(borrowed));
    }
    EXPECT_TRUE(isLiveBitmap(borrowed)) << "destruction leaves a borrowed handle";
    DeleteObject(borrowed);
}

TEST(Bitmap, OwnedHandlesGoWithReleaseAndDestruction)
{
    HBITMAP first = makeBitmap(2, 2, gradient);
    HBITMAP second = makeBitmap(2, 2, gradient);
    {
        Bitmap bitmap;
        bitmap.attach(first, true);
        bitmap.release();
        EXPECT_FALSE(isLiveBitmap(first));
        bitmap.attach(second, true);
    }
    EXPECT_FALSE(isLiveBitmap(second));
}

TEST(Bitmap, ADetachedHandleSurvivesTheObject)
{
    HBITMAP handle = makeBitmap(3, 2, gradient);
    HBITMAP detached = nullptr;
    {
        Bitmap bitmap;
        bitmap.attach(handle, true);
        detached = bitmap.detach();
        EXPECT_FALSE(bitmap.isValid());
        bitmap.release();
    }
    EXPECT_EQ(detached, handle);
    EXPECT_TRUE(isLiveBitmap(handle));
    DeleteObject(handle);
}

TEST(Bitmap, ResetForgetsTheHandleWithoutFreeingIt)
{
    HBITMAP handle = makeBitmap(3, 2, gradient);
    {
        Bitmap bitmap;
        bitmap.attach(handle, true);
        bitmap.setTransparentColor(RGB(10, 10, 200));
        bitmap.reset();
        EXPECT_FALSE(bitmap.isValid());
        EXPECT_EQ(bitmap.width(), 0);
        EXPECT_EQ(bitmap.height(), 0);
        // The colour key went too: drawing copies every pixel.
        bitmap.attach(makeBitmap(2, 2, gradient), true);
        Canvas canvas(2, 2);
        EXPECT_EQ(canvas.drawn([&](HDC dc) { bitmap.draw(dc, 0, 0); }).pixels, gridOf(2, 2, gradient).pixels);
    }
    EXPECT_TRUE(isLiveBitmap(handle));
    DeleteObject(handle);
}

TEST(Bitmap, DrawCopiesTheWholeBitmapOrAPart)
{
    Bitmap bitmap;
    bitmap.attach(makeBitmap(8, 6, gradient), true);
    Canvas whole(20, 16);
    EXPECT_EQ(whole.drawn([&](HDC dc) { bitmap.draw(dc, 5, 4); }).pixels,
              expectedCanvas(20, 16, {5, 4, 13, 10}, gradient).pixels);
    Canvas part(6, 6);
    EXPECT_EQ(part.drawn([&](HDC dc) { bitmap.draw(dc, 1, 2, 3, 2, 4, 3); }).pixels,
              expectedCanvas(6, 6, {1, 2, 4, 4}, [](int x, int y) { return gradient(x + 4, y + 3); }).pixels);
}

TEST(Bitmap, DrawWithATransparentColourLeavesKeyPixelsOut)
{
    const uint32_t key = rgb(255, 0, 255);
    const PixelPattern pattern = [&](int x, int y) { return (x + y) % 3 == 0 ? key : gradient(x, y); };
    Bitmap bitmap;
    bitmap.attach(makeBitmap(9, 7, pattern), true);
    bitmap.setTransparentColor(RGB(255, 0, 255));
    Canvas whole(12, 10);
    EXPECT_EQ(whole.drawn([&](HDC dc) { bitmap.draw(dc, 2, 1); }).pixels,
              expectedCanvas(12, 10, {2, 1, 11, 8}, pattern, key).pixels);
    Canvas part(4, 4);
    EXPECT_EQ(part.drawn([&](HDC dc) { bitmap.draw(dc, 0, 0, 4, 4, 3, 2); }).pixels,
              expectedCanvas(4, 4, {0, 0, 4, 4}, [&](int x, int y) { return pattern(x + 3, y + 2); }, key).pixels);
}

TEST(Bitmap, CopyFromTakesWhatTheScreenShows)
{
    const RECT area = {200, 150, 264, 198};
    const PixelPattern pattern = [](int x, int y) { return rgb(3 * x, 4 * y, 90); };
    TestWindow window(area, pattern);
    ASSERT_TRUE(window.showAndWait());
    WindowDC screen;

    Bitmap whole;
    whole.create(screen.get(), 64, 48);
    whole.copyFrom(screen.get(), area.left, area.top);
    EXPECT_EQ(readBitmapPixels(whole.handle()).pixels, gridOf(64, 48, pattern).pixels);

    Bitmap part;
    part.attach(makeBitmap(30, 20, [](int, int) { return kBackground; }), true);
    part.copyFrom(screen.get(), area.left + 10, area.top + 5, 20, 10, 3, 2);
    EXPECT_EQ(readBitmapPixels(part.handle()).pixels,
              expectedCanvas(30, 20, {3, 2, 23, 12}, [&](int x, int y) { return pattern(x + 10, y + 5); }).pixels);
}

TEST(Bitmap, ScaleTruncatesTheNewSize)
{
    struct Case {
        double factor;
        int width;
        int height;
    };
    const Case cases[] = {{0.5, 50, 25}, {0.33, 33, 16}, {1.5, 151, 76}, {2.0, 202, 102}};
    for (const Case& c : cases) {
        Bitmap bitmap;
        bitmap.attach(makeBitmap(101, 51, quadrants(50, 25)), true);
        HBITMAP original = bitmap.handle();
        bitmap.scale(c.factor);
        EXPECT_EQ(bitmap.width(), c.width) << c.factor;
        EXPECT_EQ(bitmap.height(), c.height) << c.factor;
        EXPECT_NE(bitmap.handle(), original);
        EXPECT_FALSE(isLiveBitmap(original)) << "the owned original is freed";
    }
}

TEST(Bitmap, ScaleStretchesThePixels)
{
    Bitmap bitmap;
    bitmap.attach(makeBitmap(101, 51, quadrants(50, 25)), true);
    bitmap.scale(0.5);
    const PixelGrid half = readBitmapPixels(bitmap.handle());
    ASSERT_EQ(half.width, 50);
    ASSERT_EQ(half.height, 25);
    const PixelPattern expected = quadrants(25, 12);
    // Away from the edges between the quadrants, where neighbours mix.
    for (int y = 0; y < 25; ++y)
        for (int x = 0; x < 50; ++x) {
            const bool nearEdge = (x >= 23 && x <= 26) || (y >= 10 && y <= 14);
            if (!nearEdge) {
                ASSERT_EQ(half.at(x, y), expected(x, y)) << x << "," << y;
            }
        }
}

TEST(Bitmap, CopyGivesTheCallerAnEqualBitmap)
{
    Bitmap bitmap;
    bitmap.attach(makeBitmap(7, 5, gradient), true);
    BitmapHandle copy(bitmap.copy());
    ASSERT_TRUE(copy);
    EXPECT_NE(copy.get(), bitmap.handle());
    EXPECT_EQ(readBitmapPixels(copy.get()).pixels, gridOf(7, 5, gradient).pixels);
    bitmap.release();
    EXPECT_TRUE(isLiveBitmap(copy.get()));
}

TEST(Bitmap, ManyOperationsLeakNoGdiObjects)
{
    WindowDC screen;
    const auto exercise = [&] {
        Canvas canvas(40, 40);
        for (int i = 0; i < 20; ++i) {
            Bitmap bitmap;
            bitmap.create(screen.get(), 20, 20);
            bitmap.copyFrom(screen.get(), i, i);
            canvas.drawn([&](HDC dc) { bitmap.draw(dc, 1, 1); });
            bitmap.setTransparentColor(RGB(0, 0, 0));
            canvas.drawn([&](HDC dc) { bitmap.draw(dc, 2, 2, 5, 5, 1, 1); });
            bitmap.scale(1.5);
            DeleteObject(bitmap.copy());
            bitmap.load(static_cast<WORD>(ROWS_BITMAP), nullptr);
            HBITMAP borrowed = makeBitmap(4, 4, gradient);
            bitmap.attach(borrowed, false);
            bitmap.release();
            bitmap.attach(borrowed, true);
            DeleteObject(bitmap.detach());
        }
    };
    exercise();
    const ResourceCounts before = countResources();
    ASSERT_GE(before.gdiObjects, 0);
    for (int round = 0; round < 5; ++round)
        exercise();
    const ResourceCounts after = countResourcesSettled(before);
    EXPECT_EQ(after.gdiObjects, before.gdiObjects) << after.describe();
}

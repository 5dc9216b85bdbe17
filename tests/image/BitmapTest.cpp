// The GDI bitmap wrapper: ownership of its handle, drawing with and without a colour key,
// copying from the screen, scaling, resources and leaks.

#include "image/Bitmap.h"

#include "base/win/DibHeader.h"
#include "base/win/GdiHandles.h"
#include "tests/support/ResourceCounters.h"
#include "tests/support/TestPixels.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <functional>
#include <vector>

namespace {

const uint32_t kBackground = rgb(128, 128, 128);
// A bitmap resource that user32.dll carries and LoadBitmapW(nullptr, ...) would find.
const WORD kSystemBitmap = 32754; // OBM_CLOSE

bool isLive(HBITMAP bitmap) { return GetObjectType(bitmap) == OBJ_BITMAP; }

// Distinct colours everywhere, so that any shift shows.
uint32_t gradient(int x, int y) { return rgb(10 * x, 10 * y, 200); }

std::vector<uint32_t> pixelsOf(int width, int height, const PixelPattern& pattern)
{
    std::vector<uint32_t> pixels;
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            pixels.push_back(pattern(x, y));
    return pixels;
}

// A screen-compatible bitmap showing `pattern`; the caller owns it.
HBITMAP makeBitmap(int width, int height, const PixelPattern& pattern)
{
    WindowDC screen;
    HBITMAP bitmap = CreateCompatibleBitmap(screen.get(), width, height);
    BITMAPINFO info = topDownDibHeader(width, height, 32);
    SetDIBits(screen.get(), bitmap, 0, height, pixelsOf(width, height, pattern).data(), &info, DIB_RGB_COLORS);
    return bitmap;
}

// A grey `width` x `height` surface with `pattern` shifted by (dx, dy) in the rectangle
// `placed`; pixels for which `pattern` gives `hole` stay grey.
std::vector<uint32_t> expectedCanvas(int width, int height, const RECT& placed, int dx, int dy,
                                     const PixelPattern& pattern, uint32_t hole = 0xFFFFFFFF)
{
    return pixelsOf(width, height, [&](int x, int y) {
        if (x < placed.left || x >= placed.right || y < placed.top || y >= placed.bottom)
            return kBackground;
        const uint32_t pixel = pattern(x - placed.left + dx, y - placed.top + dy);
        return pixel == hole ? kBackground : pixel;
    });
}

// The pixels of a grey `width` x `height` surface after `draw` drew on it.
std::vector<uint32_t> drawnOnCanvas(int width, int height, const std::function<void(HDC)>& draw)
{
    BitmapHandle canvas(makeBitmap(width, height, [](int, int) { return kBackground; }));
    {
        WindowDC screen;
        MemoryDC memory(screen.get());
        SelectedObject selected(memory.get(), canvas.get());
        draw(memory.get());
    }
    return readBitmapPixels(canvas.get()).pixels;
}

} // namespace

TEST(Bitmap, FreesOnlyOwnedHandlesAndNeverOneItHandedOnAndLoadsResources)
{
    WindowDC screen;
    HBITMAP created = nullptr;
    const struct {
        const char* what;
        bool owned, freed;
        std::function<void(Bitmap&)> letGo;
    } cases[] = {
        {"release, owned", true, true, [](Bitmap& b) { b.release(); }},
        {"destruction, owned", true, true, [](Bitmap&) {}},
        {"destruction, borrowed", false, false, [](Bitmap&) {}},
        {"create over it", true, true, [&](Bitmap& b) { b.create(screen.get(), 3, 3); }},
        {"scale, borrowed", false, false, [](Bitmap& b) { b.scale(0.5); }},
        {"detach", true, false, [](Bitmap& b) {
             HBITMAP handle = b.handle();
             EXPECT_EQ(b.detach(), handle);
         }},
        {"reset", true, false, [](Bitmap& b) { b.reset(); }},
        {"load over it", true, true, [](Bitmap& b) {
             b.load(kSystemBitmap, GetModuleHandleW(L"user32.dll"));
             ASSERT_TRUE(b.isValid());
             EXPECT_EQ(b.width(), readBitmapPixels(b.handle()).width) << "the size is read again";
         }},
        {"load what the program lacks", true, true, [](Bitmap& b) {
             b.load(kSystemBitmap, nullptr);
             EXPECT_FALSE(b.isValid());
         }},
        // After a release the object owns what it makes next.
        {"release borrowed, then create", false, false, [&](Bitmap& b) {
             b.release();
             EXPECT_FALSE(b.isValid());
             b.create(screen.get(), 3, 3);
             created = b.handle();
         }},
    };
    for (const auto& c : cases) {
        HBITMAP handle = makeBitmap(6, 4, gradient);
        {
            Bitmap bitmap;
            bitmap.attach(handle, c.owned);
            c.letGo(bitmap);
        }
        EXPECT_EQ(isLive(handle), !c.freed) << c.what;
        DeleteObject(handle);
    }
    ASSERT_NE(created, nullptr);
    EXPECT_FALSE(isLive(created)) << "owned again after release";
}

TEST(Bitmap, DrawCopiesTheBitmapOrAPartLeavingOutATransparentColour)
{
    const uint32_t key = rgb(255, 0, 255);
    const PixelPattern pattern = [&](int x, int y) { return (x + y) % 3 == 0 ? key : gradient(x, y); };
    for (bool keyed : {false, true}) {
        Bitmap bitmap;
        bitmap.attach(makeBitmap(9, 7, pattern), true);
        if (keyed)
            bitmap.setTransparentColor(RGB(255, 0, 255));
        const uint32_t hole = keyed ? key : 0xFFFFFFFF;
        EXPECT_EQ(drawnOnCanvas(12, 10, [&](HDC dc) { bitmap.draw(dc, 2, 1); }),
                  expectedCanvas(12, 10, {2, 1, 11, 8}, 0, 0, pattern, hole))
            << keyed;
        EXPECT_EQ(drawnOnCanvas(6, 6, [&](HDC dc) { bitmap.draw(dc, 1, 2, 3, 2, 4, 3); }),
                  expectedCanvas(6, 6, {1, 2, 4, 4}, 4, 3, pattern, hole))
            << keyed;
    }
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
    EXPECT_EQ(readBitmapPixels(whole.handle()).pixels, pixelsOf(64, 48, pattern));
    Bitmap part;
    part.attach(makeBitmap(30, 20, [](int, int) { return kBackground; }), true);
    part.copyFrom(screen.get(), area.left + 10, area.top + 5, 20, 10, 3, 2);
    EXPECT_EQ(readBitmapPixels(part.handle()).pixels, expectedCanvas(30, 20, {3, 2, 23, 12}, 10, 5, pattern));
}

TEST(Bitmap, ScaleTruncatesTheSizeAndStretchesThePixels)
{
    // Four solid quadrants of a width x height area.
    const auto quadrants = [](double width, double height) -> PixelPattern {
        return [=](int x, int y) { return rgb(x < width / 2 ? 255 : 0, y < height / 2 ? 255 : 0, 90); };
    };
    for (double factor : {1.5, 0.5}) {
        Bitmap bitmap;
        bitmap.attach(makeBitmap(101, 51, quadrants(100, 50)), true);
        HBITMAP original = bitmap.handle();
        bitmap.scale(factor);
        EXPECT_FALSE(isLive(original)) << "the owned original is freed";
        BitmapHandle copy(bitmap.copy());
        const PixelGrid scaled = readBitmapPixels(copy.get());
        ASSERT_EQ(scaled.width, static_cast<int>(101 * factor));
        ASSERT_EQ(scaled.height, static_cast<int>(51 * factor));
        EXPECT_EQ(scaled.pixels, readBitmapPixels(bitmap.handle()).pixels) << "a copy shows the same";
        const PixelPattern expected = quadrants(100 * factor, 50 * factor);
        for (int y = 0; y < scaled.height; ++y)
            for (int x = 0; x < scaled.width; ++x) {
                // Away from the edges between the quadrants, where neighbours mix.
                if (std::abs(x + 0.5 - 50 * factor) > 3 && std::abs(y + 0.5 - 25 * factor) > 3) {
                    ASSERT_EQ(scaled.at(x, y), expected(x, y)) << factor << ": " << x << "," << y;
                }
            }
    }
}

TEST(Bitmap, ManyOperationsLeakNoGdiObjects)
{
    WindowDC screen;
    const auto exercise = [&] {
        for (int i = 0; i < 20; ++i) {
            Bitmap bitmap;
            bitmap.create(screen.get(), 20, 20);
            bitmap.copyFrom(screen.get(), i, i);
            drawnOnCanvas(40, 40, [&](HDC dc) { bitmap.draw(dc, 1, 1); });
            bitmap.setTransparentColor(RGB(0, 0, 0));
            drawnOnCanvas(40, 40, [&](HDC dc) { bitmap.draw(dc, 2, 2, 5, 5, 1, 1); });
            bitmap.scale(1.5);
            DeleteObject(bitmap.copy());
            bitmap.load(kSystemBitmap, GetModuleHandleW(L"user32.dll"));
            HBITMAP borrowed = makeBitmap(4, 4, gradient);
            bitmap.attach(borrowed, false);
            bitmap.release();
            bitmap.attach(borrowed, true);
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

// The GDI bitmap wrapper: ownership of its handle, drawing with and without a colour key,
// copying from the screen, scaling, resources and leaks.

#include "image/Bitmap.h"

#include "base/win/DibHeader.h"
#include "base/win/GdiHandles.h"
#include "tests/support/ResourceCounters.h"
#include "tests/support/TestPixels.h"

#include <gtest/gtest.h>

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

using Pixels = std::vector<uint32_t>;

// A screen-compatible bitmap showing `pattern`; the caller owns it.
HBITMAP makeBitmap(int width, int height, const PixelPattern& pattern)
{
    Pixels pixels;
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            pixels.push_back(pattern(x, y));
    WindowDC screen;
    HBITMAP bitmap = CreateCompatibleBitmap(screen.get(), width, height);
    BITMAPINFO info = topDownDibHeader(width, height, 32);
    SetDIBits(screen.get(), bitmap, 0, height, pixels.data(), &info, DIB_RGB_COLORS);
    return bitmap;
}

// A grey `width` x `height` surface after `draw` drew on it.
PixelGrid drawnOnCanvas(int width, int height, const std::function<void(HDC)>& draw)
{
    BitmapHandle canvas(makeBitmap(width, height, [](int, int) { return kBackground; }));
    {
        WindowDC screen;
        MemoryDC memory(screen.get());
        SelectedObject selected(memory.get(), canvas.get());
        draw(memory.get());
    }
    return readBitmapPixels(canvas.get());
}

// The pixels of `grid` at `points`: the corners of what was placed and just beyond.
Pixels pick(const PixelGrid& grid, std::initializer_list<POINT> points)
{
    Pixels pixels;
    for (const POINT& p : points)
        pixels.push_back(grid.at(p.x, p.y));
    return pixels;
}

// Runs `checks` once, to pay for what is set up once per process, then five times more,
// after which no GDI object may be left over.
void expectNoLeak(const std::function<void()>& checks)
{
    checks();
    const ResourceCounts before = countResources();
    ASSERT_GE(before.gdiObjects, 0);
    for (int round = 0; round < 5; ++round)
        checks();
    const ResourceCounts after = countResourcesSettled(before);
    EXPECT_EQ(after.gdiObjects, before.gdiObjects) << after.describe();
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
        {"release, borrowed, then create", false, false, [&](Bitmap& b) {
             b.release();
             b.create(screen.get(), 3, 3);
             created = b.handle();
         }},
        {"destruction, owned", true, true, [](Bitmap&) {}},
        {"destruction, borrowed", false, false, [](Bitmap&) {}},
        {"create over it", true, true, [&](Bitmap& b) { b.create(screen.get(), 3, 3); }},
        {"scale, owned", true, true, [](Bitmap& b) { b.scale(1.5); }},
        {"scale, borrowed", false, false, [](Bitmap& b) { b.scale(0.5); }},
        {"detach", true, false, [](Bitmap& b) { HBITMAP handle = b.handle(); EXPECT_EQ(b.detach(), handle); }},
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
    };
    expectNoLeak([&] {
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
        EXPECT_FALSE(isLive(created)) << "after a release the object owns what it makes next";
    });
}

TEST(Bitmap, DrawCopyFromAndScaleGiveThePixelsExpected)
{
    const uint32_t key = rgb(255, 0, 255);
    const PixelPattern keyed = [&](int x, int y) { return (x + y) % 3 == 0 ? key : gradient(x, y); };
    const RECT area = {200, 150, 264, 198};
    const PixelPattern onScreen = [](int x, int y) { return rgb(3 * x, 4 * y, 90); };
    TestWindow window(area, onScreen);
    ASSERT_TRUE(window.showAndWait());
    // Solid quadrants of 100 x 50.
    const PixelPattern quadrants = [](int x, int y) { return rgb(x < 50 ? 255 : 0, y < 25 ? 255 : 0, 90); };
    WindowDC screen;
    expectNoLeak([&] {
        // Drawn whole or in part, leaving out the transparent colour once it is set.
        for (bool transparent : {false, true}) {
            Bitmap bitmap;
            bitmap.attach(makeBitmap(9, 7, keyed), true);
            if (transparent)
                bitmap.setTransparentColor(RGB(255, 0, 255));
            const uint32_t hole = transparent ? kBackground : key;
            const PixelGrid all = drawnOnCanvas(12, 10, [&](HDC dc) { bitmap.draw(dc, 2, 1); });
            EXPECT_EQ(pick(all, {{3, 1}, {10, 7}, {2, 1}, {11, 7}, {10, 8}}),
                      (Pixels{gradient(1, 0), gradient(8, 6), hole, kBackground, kBackground}));
            const PixelGrid some = drawnOnCanvas(6, 6, [&](HDC dc) { bitmap.draw(dc, 1, 2, 3, 2, 4, 3); });
            EXPECT_EQ(pick(some, {{1, 2}, {3, 3}, {2, 3}, {4, 3}, {3, 4}}),
                      (Pixels{gradient(4, 3), gradient(6, 4), hole, kBackground, kBackground}));
        }

        // Copied from the screen, whole or in part.
        Bitmap whole;
        whole.create(screen.get(), 64, 48);
        whole.copyFrom(screen.get(), area.left, area.top);
        EXPECT_EQ(pick(readBitmapPixels(whole.handle()), {{0, 0}, {63, 47}}),
                  (Pixels{onScreen(0, 0), onScreen(63, 47)}));
        Bitmap part;
        part.attach(makeBitmap(30, 20, [](int, int) { return kBackground; }), true);
        part.copyFrom(screen.get(), area.left + 10, area.top + 5, 20, 10, 3, 2);
        EXPECT_EQ(pick(readBitmapPixels(part.handle()), {{3, 2}, {22, 11}, {2, 2}, {23, 11}, {22, 12}}),
                  (Pixels{onScreen(10, 5), onScreen(29, 14), kBackground, kBackground, kBackground}));

        // Scaled to the truncated size, and copied.
        for (double factor : {1.5, 0.5}) {
            Bitmap bitmap;
            bitmap.attach(makeBitmap(101, 51, quadrants), true);
            bitmap.scale(factor);
            BitmapHandle copy(bitmap.copy());
            const PixelGrid scaled = readBitmapPixels(copy.get());
            ASSERT_EQ(std::make_pair(scaled.width, scaled.height), std::make_pair(int(101 * factor), int(51 * factor)));
            EXPECT_EQ(scaled.pixels, readBitmapPixels(bitmap.handle()).pixels) << "a copy shows the same";
            for (int x : {25, 75})
                for (int y : {12, 37})
                    EXPECT_EQ(scaled.at(int(x * factor), int(y * factor)), quadrants(x, y)) << factor;
        }
    });
}

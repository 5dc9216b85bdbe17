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
    const struct {
        const char* what;
        bool owned, freed;
        std::function<void(Bitmap&)> letGo;
    } cases[] = {
        {"release, owned", true, true, [](Bitmap& b) { b.release(); }},
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
        // After a release the object owns what it makes next.
        HBITMAP borrowed = makeBitmap(2, 2, gradient), created = nullptr;
        {
            Bitmap bitmap;
            bitmap.attach(borrowed, false);
            bitmap.release();
            bitmap.create(screen.get(), 3, 3);
            created = bitmap.handle();
        }
        EXPECT_TRUE(isLive(borrowed));
        EXPECT_FALSE(isLive(created)) << "owned again after release";
        DeleteObject(borrowed);
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
    // Four solid quadrants of a width x height area.
    const auto quadrants = [](double width, double height) -> PixelPattern {
        return [=](int x, int y) { return rgb(x < width / 2 ? 255 : 0, y < height / 2 ? 255 : 0, 90); };
    };
    WindowDC screen;
    expectNoLeak([&] {
        // Drawn whole or in part, leaving out the transparent colour once it is set.
        for (uint32_t hole : {0xFFFFFFFFu, key}) {
            Bitmap bitmap;
            bitmap.attach(makeBitmap(9, 7, keyed), true);
            if (hole == key)
                bitmap.setTransparentColor(RGB(255, 0, 255));
            EXPECT_EQ(drawnOnCanvas(12, 10, [&](HDC dc) { bitmap.draw(dc, 2, 1); }),
                      expectedCanvas(12, 10, {2, 1, 11, 8}, 0, 0, keyed, hole));
            EXPECT_EQ(drawnOnCanvas(6, 6, [&](HDC dc) { bitmap.draw(dc, 1, 2, 3, 2, 4, 3); }),
                      expectedCanvas(6, 6, {1, 2, 4, 4}, 4, 3, keyed, hole));
        }

        // Copied from the screen, whole or in part.
        Bitmap whole;
        whole.create(screen.get(), 64, 48);
        whole.copyFrom(screen.get(), area.left, area.top);
        EXPECT_EQ(readBitmapPixels(whole.handle()).pixels, pixelsOf(64, 48, onScreen));
        Bitmap part;
        part.attach(makeBitmap(30, 20, [](int, int) { return kBackground; }), true);
        part.copyFrom(screen.get(), area.left + 10, area.top + 5, 20, 10, 3, 2);
        EXPECT_EQ(readBitmapPixels(part.handle()).pixels, expectedCanvas(30, 20, {3, 2, 23, 12}, 10, 5, onScreen));

        // Scaled to the truncated size, and copied.
        for (double factor : {1.5, 0.5}) {
            Bitmap bitmap;
            bitmap.attach(makeBitmap(101, 51, quadrants(100, 50)), true);
            bitmap.scale(factor);
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
    });
}

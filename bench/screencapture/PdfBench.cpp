// Times the conversion of screen-sized pictures to a PDF file, step by step, with the peak
// memory it takes; then whole captures of the screen to the PDF path. It also leaves the
// picture as PNG and PPM files for the yardsticks that run outside Wine (run-pdf-bench).
//
//   pdf_bench WIDTH HEIGHT OUTPUT_FOLDER

#include "base/win/GdiHandles.h"
#include "base/win/GdiplusSession.h"
#include "base/win/TempFolder.h"
#include "image/GdiplusHelpers.h"
#include "image/ImagePdfRules.h"
#include "image/ImageToPdf.h"
#include "screencapture/CaptureApi.h"
#include "screencapture/PdfDelivery.h"
#include "zpdf/FileWriter.h"

#include <psapi.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <functional>
#include <fstream>
#include <memory>
#include <vector>

namespace {

constexpr int kRuns = 9;

using Clock = std::chrono::steady_clock;

double msSince(Clock::time_point start)
{
    return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

double median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

// Desktop-like content: a background, overlapping windows with title bars, much text in
// several sizes, a toolbar of icons and a photo-like area.
std::unique_ptr<Gdiplus::Bitmap> screenLikePicture(int width, int height)
{
    auto picture = std::make_unique<Gdiplus::Bitmap>(width, height, PixelFormat24bppRGB);
    Gdiplus::Graphics graphics(picture.get());
    HDC dc = graphics.GetHDC();
    {
        BrushHandle desktop(CreateSolidBrush(RGB(58, 110, 165)));
        RECT all = {0, 0, width, height};
        FillRect(dc, &all, desktop.get());
        FontHandle body(CreateFontW(-14, 0, 0, 0, FW_NORMAL, 0, 0, 0, DEFAULT_CHARSET, 0, 0, 0, 0, L"Tahoma"));
        FontHandle title(CreateFontW(-16, 0, 0, 0, FW_BOLD, 0, 0, 0, DEFAULT_CHARSET, 0, 0, 0, 0, L"Tahoma"));
        SetBkMode(dc, TRANSPARENT);
        for (int w = 0; w < 4; ++w) {
            const RECT frame = {width * w / 6 + 20, height * w / 7 + 20, width * w / 6 + width / 2, height * w / 7 + height / 2};
            BrushHandle paper(CreateSolidBrush(RGB(250, 250, 248)));
            BrushHandle bar(CreateSolidBrush(RGB(10 + 40 * w, 36, 106)));
            FillRect(dc, &frame, paper.get());
            const RECT caption = {frame.left, frame.top, frame.right, frame.top + 26};
            FillRect(dc, &caption, bar.get());
            SelectedObject titleFont(dc, title.get());
            SetTextColor(dc, RGB(255, 255, 255));
            TextOutW(dc, frame.left + 8, frame.top + 4, L"Quarterly report.pdf - Pryxa Creator", 36);
            SelectedObject bodyFont(dc, body.get());
            SetTextColor(dc, RGB(20, 20, 20));
            for (int y = frame.top + 40, line = 0; y < frame.bottom - 18; y += 18, ++line) {
                wchar_t text[160];
                const int n = swprintf(text, 160, L"%d. The figures for region %c grew by %d.%d%% over the last quarter; "
                                       L"see table %d and the notes below.", line + 1, L'A' + line % 26, line * 7 % 13,
                                       line % 10, line % 9 + 1);
                TextOutW(dc, frame.left + 12, y, text, n);
            }
        }
        // A photo-like corner: smooth colour with some grain.
        for (int y = height * 2 / 3; y < height; y += 2) {
            for (int x = width * 2 / 3; x < width; x += 2) {
                const int grain = (x * 7919 + y * 104729) % 23;
                SetPixelV(dc, x, y, RGB((x / 7 + grain) & 255, (y / 5 + grain) & 255, (x + y) / 11 & 255));
            }
        }
    }
    graphics.ReleaseHDC(dc);
    return picture;
}

void savePpm(Gdiplus::Bitmap& picture, const ZString& path)
{
    const int width = static_cast<int>(picture.GetWidth());
    const int height = static_cast<int>(picture.GetHeight());
    Gdiplus::Rect all(0, 0, width, height);
    Gdiplus::BitmapData data = {};
    picture.LockBits(&all, Gdiplus::ImageLockModeRead, PixelFormat24bppRGB, &data);
    std::ofstream out(std::filesystem::path(path.c_str()), std::ios::binary);
    out << "P6\n" << width << " " << height << "\n255\n";
    std::vector<char> row(static_cast<size_t>(width) * 3);
    for (int y = 0; y < height; ++y) {
        const auto* bgr = static_cast<const uint8_t*>(data.Scan0) + static_cast<ptrdiff_t>(y) * data.Stride;
        for (int x = 0; x < width; ++x) {
            row[x * 3] = static_cast<char>(bgr[x * 3 + 2]);
            row[x * 3 + 1] = static_cast<char>(bgr[x * 3 + 1]);
            row[x * 3 + 2] = static_cast<char>(bgr[x * 3]);
        }
        out.write(row.data(), static_cast<std::streamsize>(row.size()));
    }
    picture.UnlockBits(&data);
}

PROCESS_MEMORY_COUNTERS memoryCounters()
{
    PROCESS_MEMORY_COUNTERS counters = {};
    counters.cb = sizeof counters;
    GetProcessMemoryInfo(GetCurrentProcess(), &counters, sizeof counters);
    return counters;
}

struct StepTimes {
    std::vector<double> checks, encoding, build, writing, whole;
};

// The conversion's steps one by one, as the converter runs them for a capture.
void timeSteps(Gdiplus::Bitmap& picture, const ZString& pdfPath, StepTimes& times)
{
    auto start = Clock::now();
    const int orientation = imageToPdf::ImageToPdf::gdiplusOrientation(picture);
    GUID format = {};
    picture.GetRawFormat(&format);
    const auto facts = std::make_tuple(orientation, picture.GetPixelFormat(), picture.GetFlags(), picture.GetWidth(),
                                       picture.GetHeight());
    times.checks.push_back(msSince(start));
    (void)facts;

    start = Clock::now();
    std::vector<uint8_t> jpeg;
    imageToPdf::ImageToPdf::gdiplusJpegEncoder(picture, 100, jpeg);
    times.encoding.push_back(msSince(start));

    start = Clock::now();
    imageToPdf::ImageToPdf converter;
    converter.setJpegEncoder([&](Gdiplus::Image&, long, std::vector<uint8_t>& bytes) {
        bytes = jpeg; // already made above
        return true;
    });
    zpdf::Document document;
    converter.convert(imageToPdf::ConversionOptions(), picture, std::wstring(), document);
    times.build.push_back(msSince(start));

    start = Clock::now();
    zpdf::FileWriter writer(pdfPath);
    writer.writeDocument(document);
    writer.close();
    times.writing.push_back(msSince(start));

    start = Clock::now();
    zpdf::Document whole;
    imageToPdf::ImageToPdf().convert(imageToPdf::ConversionOptions(), picture, std::wstring(), whole);
    zpdf::FileWriter wholeWriter(pdfPath);
    wholeWriter.writeDocument(whole);
    wholeWriter.close();
    times.whole.push_back(msSince(start));
}

// Stands in for the assistant, so that whole captures end at the hand-off.
LRESULT CALLBACK acceptAll(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    return message == WM_COPYDATA ? TRUE : DefWindowProcW(window, message, wParam, lParam);
}

double timeWholeCaptures()
{
    WNDCLASSW windowClass = {};
    windowClass.lpfnWndProc = acceptAll;
    windowClass.lpszClassName = L"Pryxa_Assistent";
    RegisterClassW(&windowClass);
    HWND assistant = CreateWindowExW(0, windowClass.lpszClassName, L"", WS_POPUP, 0, 0, 0, 0, nullptr, nullptr, nullptr,
                                     nullptr);
    std::vector<double> times;
    for (int i = 0; i < kRuns; ++i) {
        const auto start = Clock::now();
        screenCapture::capture(screenCapture::screen, screenCapture::pdfPrinter);
        times.push_back(msSince(start));
    }
    DestroyWindow(assistant);
    std::error_code ignored;
    for (const auto& entry : std::filesystem::directory_iterator(moduleTempFolder().c_str(), ignored)) {
        if (entry.path().filename().wstring().rfind(L"screenCapture-", 0) == 0)
            std::filesystem::remove(entry.path(), ignored);
    }
    return median(times);
}

} // namespace

int wmain(int argc, wchar_t** argv)
{
    if (argc != 4) {
        std::fprintf(stderr, "usage: pdf_bench WIDTH HEIGHT OUTPUT_FOLDER\n");
        return 2;
    }
    SetProcessDPIAware();
    const int width = _wtoi(argv[1]);
    const int height = _wtoi(argv[2]);
    const ZString folder = argv[3];
    const double raw = static_cast<double>(width) * height * 3;
    StepTimes times;
    size_t base = 0, peak = 0;
    {
        GdiplusSession gdiplus;
        // The memory of a conversion counts the picture itself: measured from before it.
        base = memoryCounters().PagefileUsage;
        auto picture = screenLikePicture(width, height);
        for (int i = 0; i < kRuns; ++i)
            timeSteps(*picture, joinPath(folder, L"screen.pdf"), times);
        peak = memoryCounters().PeakPagefileUsage;
        CLSID png = {};
        findEncoder(L"image/png", &png);
        picture->Save(joinPath(folder, L"screen.png").c_str(), &png, nullptr);
        savePpm(*picture, joinPath(folder, L"screen.ppm"));
    }
    const double captures = timeWholeCaptures();

    std::printf("picture %dx%d (%.1f MB raw), median of %d runs, under Wine\n", width, height, raw / 1e6, kRuns);
    std::printf("  orientation and format checks %8.2f ms\n", median(times.checks));
    std::printf("  JPEG encoding (quality 100)    %8.2f ms\n", median(times.encoding));
    std::printf("  document build                 %8.2f ms\n", median(times.build));
    std::printf("  writing the file               %8.2f ms\n", median(times.writing));
    std::printf("  whole conversion to a file     %8.2f ms\n", median(times.whole));
    std::printf("  peak memory, picture included  %8.1f MB (%.2f x raw; goal < 4)\n", (peak - base) / 1e6,
                (peak - base) / raw);
    std::printf("  capture(screen, pdfPrinter)    %8.2f ms (the screen at this size, to the hand-off)\n", captures);
    std::printf("WHOLE_CONVERSION_MS=%.2f\nWHOLE_CAPTURE_MS=%.2f\n", median(times.whole), captures);
    return 0;
}

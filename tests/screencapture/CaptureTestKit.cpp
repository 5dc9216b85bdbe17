#include "tests/screencapture/CaptureTestKit.h"

#include "base/win/GdiHandles.h"
#include "base/win/RegistryKey.h"
#include "tests/support/Wine.h"

#include <cstring>
#include <filesystem>

PixelGrid imagePixels(Gdiplus::Bitmap& image)
{
    HBITMAP bitmap = nullptr;
    if (image.GetHBITMAP(Gdiplus::Color(0, 0, 0), &bitmap) != Gdiplus::Ok)
        return PixelGrid();
    return readBitmapPixels(BitmapHandle(bitmap).get());
}

PixelGrid pngFilePixels(const ZString& path)
{
    Gdiplus::Bitmap image(path.c_str());
    return image.GetLastStatus() == Gdiplus::Ok ? imagePixels(image) : PixelGrid();
}

std::vector<ZString> filesIn(const ZString& folder, const wchar_t* prefix)
{
    std::vector<ZString> found;
    std::error_code error;
    for (const auto& entry : std::filesystem::directory_iterator(folder.c_str(), error)) {
        const ZString name(entry.path().filename().wstring().c_str());
        if (name.startsWith(prefix))
            found.push_back(ZString(entry.path().wstring().c_str()));
    }
    return found;
}

std::vector<UINT> clipboardFormats()
{
    std::vector<UINT> formats;
    if (!OpenClipboard(nullptr))
        return formats;
    for (UINT format = EnumClipboardFormats(0); format; format = EnumClipboardFormats(format))
        formats.push_back(format);
    CloseClipboard();
    return formats;
}

namespace {

// Replaces the clipboard's content with `data`, which the clipboard then owns.
bool putOnClipboard(UINT format, HANDLE data)
{
    if (!data || !OpenClipboard(nullptr))
        return false;
    EmptyClipboard();
    const bool placed = SetClipboardData(format, data) != nullptr;
    CloseClipboard();
    return placed;
}

} // namespace

bool putBitmapOnClipboard(HBITMAP bitmap)
{
    return putOnClipboard(CF_BITMAP, bitmap) || (DeleteObject(bitmap), false);
}

bool putTextOnClipboard(const wchar_t* text)
{
    const size_t bytes = (wcslen(text) + 1) * sizeof(wchar_t);
    HGLOBAL memory = GlobalAlloc(GMEM_MOVEABLE, bytes);
    if (memory) {
        std::memcpy(GlobalLock(memory), text, bytes);
        GlobalUnlock(memory);
    }
    return putOnClipboard(CF_UNICODETEXT, memory) || (GlobalFree(memory), false);
}

HBITMAP createDibSection(int width, int height, const PixelPattern& pattern)
{
    const BITMAPINFO info = {{sizeof(BITMAPINFOHEADER), width, -height, 1, 32, BI_RGB, 0, 0, 0, 0, 0}, {}};
    void* bits = nullptr;
    HBITMAP bitmap = CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
    for (int i = 0; bitmap && i < width * height; ++i)
        static_cast<uint32_t*>(bits)[i] = pattern(i % width, i / width);
    return bitmap;
}

std::unique_ptr<TestWindow> showPattern(const RECT& area, PixelPattern pattern, DWORD style, const std::wstring& title)
{
    auto window = std::make_unique<TestWindow>(area, std::move(pattern), title, style);
    EXPECT_TRUE(window->showAndWait()) << "the test window did not appear on screen";
    return window;
}

uint32_t gradientPattern(int x, int y)
{
    return rgb((x * 7) & 0xFF, (y * 5) & 0xFF, ((x ^ y) * 3) & 0xFF);
}

ReservedTaskBar::ReservedTaskBar(const RECT& monitor) : workArea_(monitor)
{
    SystemParametersInfoW(SPI_GETWORKAREA, 0, &previous_, 0);
    workArea_.bottom -= 40;
    SystemParametersInfoW(SPI_SETWORKAREA, 0, &workArea_, 0);
}

ReservedTaskBar::~ReservedTaskBar()
{
    SystemParametersInfoW(SPI_SETWORKAREA, 0, &previous_, 0);
}

namespace {

const wchar_t* const kPngKey = L"Software\\Classes\\.png";
const wchar_t* const kProgramKey = L"Software\\Classes\\PryxaTests.EditPng";

// Wine's HKEY_CLASSES_ROOT has no per-user part: it is the machine's classes only.
HKEY classesHive()
{
    return runningOnWine() ? HKEY_LOCAL_MACHINE : HKEY_CURRENT_USER;
}

} // namespace

PngEditVerb::PngEditVerb(const ZString& command)
{
    EXPECT_FALSE(RegistryKey::openForReading(classesHive(), kPngKey).isOpen()) << "a .png association exists already";
    RegistryKey::openForWriting(classesHive(), kPngKey).writeString(ZString(), L"PryxaTests.EditPng");
    RegistryKey::openForWriting(classesHive(), ZString(kProgramKey) + L"\\shell\\edit\\command")
        .writeString(ZString(), command);
}

PngEditVerb::~PngEditVerb()
{
    RegistryKey::deleteTree(classesHive(), kPngKey);
    RegistryKey::deleteTree(classesHive(), kProgramKey);
}

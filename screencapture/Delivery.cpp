#include "screencapture/Delivery.h"

#include "base/win/FileCopy.h"
#include "base/win/GdiHandles.h"
#include "base/win/TempFolder.h"
#include "companions/language/Language.h"
#include "companions/notifyicon/NotifyIcon.h"
#include "image/GdiplusHelpers.h"
#include "screencapture/PdfDelivery.h"
#include "screencapture/ScreenCapture.h"

#include <commdlg.h>
#include <shellapi.h>
#include <shlwapi.h>

#include <vector>

namespace screenCapture {

TrayNote trayNote = notifyIcon_info;

namespace {

constexpr int kLongestTitleName = 200;
constexpr DWORD kFileNameCapacity = 4096;

void showWarning(const wchar_t* text)
{
    MessageBoxW(nullptr, text, L"Error", MB_OK | MB_ICONWARNING);
}

// GetObjectW fills in the whole DIBSECTION only when given its exact size, which differs
// between the suite's 32-bit programs and 64-bit ones.
static_assert(sizeof(DIBSECTION) == (sizeof(void*) == 4 ? 84 : 104), "DIBSECTION layout");

void deliverToClipboard(Gdiplus::Bitmap& image)
{
    HBITMAP converted = nullptr;
    if (image.GetHBITMAP(Gdiplus::Color(0xFF000000), &converted) == Gdiplus::Ok) {
        BitmapHandle dibSection(converted);
        DIBSECTION dib = {};
        GetObjectW(dibSection.get(), sizeof dib, &dib);
        // The clipboard gets a device-dependent bitmap, which it then owns.
        BitmapHandle ddb;
        {
            WindowDC screen;
            ddb.reset(CreateDIBitmap(screen.get(), &dib.dsBmih, CBM_INIT, dib.dsBm.bmBits,
                                     reinterpret_cast<BITMAPINFO*>(&dib.dsBmih), DIB_RGB_COLORS));
        }
        if (OpenClipboard(nullptr)) {
            EmptyClipboard();
            if (SetClipboardData(CF_BITMAP, ddb.get()))
                ddb.release();
            CloseClipboard();
        }
    }
    trayNote(lang_getStr(L"general/note"), lang_getStr(L"screen-capture/~image-copied-to-clipboard"));
}

void deliverToImageEditor(Gdiplus::Bitmap& image)
{
    const ZString path = saveTemporaryPng(image);
    // The file stays for the editor; a failed launch is silent.
    if (!path.isEmpty())
        ShellExecuteW(nullptr, L"edit", path.c_str(), nullptr, nullptr, SW_SHOWNORMAL);
}

// The user's choice of PNG file, or empty when the dialog was cancelled.
ZString askForPngFileName(const ZString& suggestion)
{
    std::vector<wchar_t> name(kFileNameCapacity, L'\0');
    lstrcpynW(name.data(), suggestion.c_str(), static_cast<int>(kFileNameCapacity));
    OPENFILENAMEW dialog = {};
    dialog.lStructSize = sizeof dialog;
    dialog.lpstrFilter = L"PNG (*.png)\0*.png\0";
    dialog.nFilterIndex = 1;
    dialog.lpstrFile = name.data();
    dialog.nMaxFile = kFileNameCapacity;
    dialog.lpstrDefExt = L"png";
    dialog.Flags = OFN_EXPLORER | OFN_OVERWRITEPROMPT | OFN_HIDEREADONLY;
    if (!GetSaveFileNameW(&dialog))
        return ZString();
    return withPngExtension(ZString(name.data()));
}

void deliverToFile(Gdiplus::Bitmap& image, const ZString& suggestion)
{
    const ZString destination = askForPngFileName(suggestion);
    if (destination.isEmpty())
        return;
    const ZString temporary = saveTemporaryPng(image);
    if (temporary.isEmpty() || !PathFileExistsW(temporary.c_str()))
        return;
    // The temporary PNG is kept whatever happens, so nothing is lost if the copy fails.
    copyFileWithRetry(temporary, destination);
}

} // namespace

ZString defaultName(Mode mode, const ZString& windowTitle)
{
    switch (mode) {
    case screenClient:
        return lang_getStr(L"screen-capture/filenames/~working-area");
    case activeWindow:
    case activeWindowClient:
        // A longer title is replaced, never cut short.
        if (windowTitle.length() >= 1 && windowTitle.length() <= kLongestTitleName)
            return windowTitle;
        return lang_getStr(L"screen-capture/filenames/~window");
    case userDefinedArea:
        return lang_getStr(L"screen-capture/filenames/~user-defined-area");
    case clipboard:
        return lang_getStr(L"screen-capture/filenames/~clipboard");
    default:
        return lang_getStr(L"screen-capture/filenames/~screen");
    }
}

ZString withPngExtension(const ZString& path)
{
    const ZString lower = path.toLower();
    if (lower.length() < 4 || !lower.endsWith(L".png"))
        return path + L".png";
    return path;
}

ZString saveTemporaryPng(Gdiplus::Bitmap& image)
{
    const ZString path = uniqueFileName(moduleTempFolder(), L"screenCapture_", L".png");
    CLSID png = {};
    findEncoder(L"image/png", &png);
    if (image.Save(path.c_str(), &png, nullptr) != Gdiplus::Ok) {
        showWarning(L"Could not save captured image");
        return ZString();
    }
    return path;
}

void deliver(Mode mode, Target target, ScreenCapture& capture)
{
    Gdiplus::Bitmap& image = *capture.image();
    const ZString name = defaultName(mode, capture.title());
    switch (target) {
    case toClipboard:
        deliverToClipboard(image);
        return;
    case imageEditor:
        deliverToImageEditor(image);
        return;
    case file:
        deliverToFile(image, name);
        return;
    default:
        // pdfPrinter, 0 and unknown values: the PDF path.
        deliverAsPdf(image, name);
        return;
    }
}

} // namespace screenCapture

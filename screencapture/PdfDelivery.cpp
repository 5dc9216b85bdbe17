#include "screencapture/PdfDelivery.h"

#include "base/win/TempFolder.h"
#include "image/ConversionSettings.h"
#include "screencapture/AssistantHandOff.h"
#include "zpdf/FileWriter.h"
#include "zpdf/Names.h"
#include "zpdf/PdfException.h"
#include "zpdf/String.h"

namespace screenCapture {

namespace {

bool convertWithGdiplus(const imageToPdf::ConversionOptions& options, Gdiplus::Image& image, zpdf::Document& document)
{
    return imageToPdf::ImageToPdf().convert(options, image, std::wstring(), document);
}

// False when no page could be made; PDF errors count as that too.
bool buildDocument(Gdiplus::Bitmap& image, zpdf::Document& document)
{
    const zpdf::Ptr<zpdf::String> suite = zpdf::make<zpdf::String>(ZString(L"Pryxa Creator"));
    document.setInfo(zpdf::names::Creator(), suite);
    document.setInfo(zpdf::names::Producer(), suite);
    try {
        return pdfConversion(pdfOptionsFromConfiguration(), image, document);
    } catch (const zpdf::PdfException&) {
        return false;
    }
}

// A file that cannot be written is not reported: the assistant gets the path anyway.
void writeSilently(zpdf::Document& document, const ZString& path)
{
    try {
        zpdf::FileWriter writer(path);
        writer.writeDocument(document);
        writer.close();
    } catch (...) {
    }
}

} // namespace

PdfConversion pdfConversion = convertWithGdiplus;

imageToPdf::ConversionOptions pdfOptionsFromConfiguration()
{
    imageToPdf::ConversionOptions options = imageToPdf::configuredOptions();
    // A capture is always encoded at full quality; the configured value is for other
    // pictures and deliberately has no effect here.
    options.jpegQuality = 100;
    return options;
}

void deliverAsPdf(Gdiplus::Bitmap& image, const ZString& defaultName)
{
    zpdf::Document document;
    if (!buildDocument(image, document)) {
        MessageBoxW(nullptr, L"Could not create PDF file", L"Error", MB_OK | MB_ICONWARNING);
        return;
    }
    FileHandlerArgs args;
    args.files.push_back(uniqueFileName(moduleTempFolder(), L"screenCapture-", L".pdf"));
    args.name = defaultName;
    args.deleteFile = true;
    writeSilently(document, args.files.front());
    handToAssistant(args);
}

} // namespace screenCapture

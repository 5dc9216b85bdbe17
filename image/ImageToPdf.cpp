#include "image/ImageToPdf.h"

#include "base/win/KernelHandle.h"
#include "image/GdiplusHelpers.h"
#include "image/ImagePdfRules.h"
#include "zpdf/Names.h"
#include "zpdf/Number.h"
#include "zpdf/Stream.h"

#include <optional>
#include <string>

namespace imageToPdf {

namespace {

constexpr PROPID kOrientationTag = 0x0112;
constexpr WORD kPropertyTypeShort = 3;
// The page's one image, under the first of the "img" names.
constexpr char kImageName[] = "img0";

// What the conversion reads of the image, after any rotation.
struct ImageFacts {
    bool isJpeg = false;
    Gdiplus::PixelFormat pixelFormat = 0;
    uint32_t flags = 0;
    uint32_t width = 0;
    uint32_t height = 0;
};

// The pixels as the PDF gets them.
struct Embedding {
    std::string data;
    bool jpeg = false;
    zpdf::Ptr<zpdf::Object> colorSpace;
    int bitsPerComponent = 8;
};

ImageFacts readFacts(Gdiplus::Image& image)
{
    ImageFacts facts;
    GUID format = {};
    image.GetRawFormat(&format);
    facts.isJpeg = format == Gdiplus::ImageFormatJPEG;
    facts.pixelFormat = image.GetPixelFormat();
    facts.flags = image.GetFlags();
    facts.width = image.GetWidth();
    facts.height = image.GetHeight();
    return facts;
}

// The whole file, or nothing if it cannot be read; the size is -1 then.
std::optional<std::string> readWholeFile(const std::wstring& path)
{
    if (path.empty())
        return std::nullopt;
    KernelHandle file(CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr));
    LARGE_INTEGER size = {};
    if (!file || !GetFileSizeEx(file.get(), &size) || size.QuadPart > 0x7FFFFFFF)
        return std::nullopt;
    std::string bytes(static_cast<size_t>(size.QuadPart), '\0');
    DWORD read = 0;
    if (!bytes.empty() && (!ReadFile(file.get(), &bytes[0], static_cast<DWORD>(bytes.size()), &read, nullptr)
                           || read != bytes.size()))
        return std::nullopt;
    return bytes;
}

int indexedBits(Gdiplus::PixelFormat format)
{
    switch (format) {
    case PixelFormat1bppIndexed: return 1;
    case PixelFormat4bppIndexed: return 4;
    case PixelFormat8bppIndexed: return 8;
    default: return 0;
    }
}

Palette readPalette(Gdiplus::Image& image)
{
    const int size = image.GetPaletteSize();
    if (size <= 0)
        return Palette{0, {}};
    std::vector<uint8_t> buffer(static_cast<size_t>(size));
    auto* palette = reinterpret_cast<Gdiplus::ColorPalette*>(buffer.data());
    if (image.GetPalette(palette, size) != Gdiplus::Ok)
        return Palette{0, {}};
    const size_t fits = (buffer.size() - offsetof(Gdiplus::ColorPalette, Entries)) / sizeof(Gdiplus::ARGB);
    const size_t count = std::min<size_t>(palette->Count, fits);
    return Palette{palette->Count, std::vector<uint32_t>(palette->Entries, palette->Entries + count)};
}

// The file's own JPEG bytes, taken over rather than copied.
Embedding passThrough(const ImageFacts& facts, std::string file)
{
    Embedding embedding;
    embedding.data = std::move(file);
    embedding.jpeg = true;
    embedding.colorSpace = facts.pixelFormat == PixelFormat8bppIndexed ? zpdf::names::DeviceGray() : zpdf::names::DeviceRGB();
    return embedding;
}

std::optional<Embedding> indexed(Gdiplus::Image& image, const ImageFacts& facts, zpdf::Document& document)
{
    const int bits = indexedBits(facts.pixelFormat);
    std::vector<uint8_t> rows;
    if (!packIndexedRows(static_cast<Gdiplus::Bitmap*>(&image), bits, rows) || rows.empty())
        return std::nullopt;
    Embedding embedding;
    embedding.colorSpace = makeIndexedColorSpace(document, readPalette(image), facts.flags);
    embedding.data.assign(rows.begin(), rows.end());
    embedding.bitsPerComponent = bits;
    return embedding;
}

zpdf::Ptr<zpdf::Stream> imageStream(const ImageFacts& facts, Embedding embedding)
{
    auto stream = zpdf::make<zpdf::Stream>(std::move(embedding.data));
    zpdf::Dict& dict = *stream->dict();
    dict.set(zpdf::names::Subtype(), zpdf::names::Image());
    dict.set(zpdf::names::Width(), zpdf::make<zpdf::Number>(static_cast<int64_t>(facts.width)));
    dict.set(zpdf::names::Height(), zpdf::make<zpdf::Number>(static_cast<int64_t>(facts.height)));
    if (embedding.jpeg)
        dict.set(zpdf::names::Filter(), zpdf::names::DCTDecode());
    dict.set(zpdf::names::ColorSpace(), embedding.colorSpace);
    dict.set(zpdf::names::BitsPerComponent(), zpdf::make<zpdf::Number>(embedding.bitsPerComponent));
    stream->compress(); // leaves DCTDecode data alone
    return stream;
}

zpdf::Ptr<zpdf::Dict> resourcesWith(const zpdf::Ptr<zpdf::Reference>& image)
{
    auto procSet = zpdf::make<zpdf::Array>();
    procSet->append(zpdf::names::PDF());
    procSet->append(zpdf::names::ImageC());
    auto xObjects = zpdf::make<zpdf::Dict>();
    xObjects->set(zpdf::make<zpdf::Name>(kImageName), image);
    auto resources = zpdf::make<zpdf::Dict>();
    resources->set(zpdf::names::ProcSet(), procSet);
    resources->set(zpdf::names::XObject(), xObjects);
    return resources;
}

} // namespace

ImageToPdf::ImageToPdf() : encodeJpeg_(gdiplusJpegEncoder), readOrientation_(gdiplusOrientation) {}

bool ImageToPdf::gdiplusJpegEncoder(Gdiplus::Image& image, long quality, std::vector<uint8_t>& bytes)
{
    CLSID jpeg = {};
    return findEncoder(L"image/jpeg", &jpeg) >= 0 && encodeToBuffer(&image, jpeg, quality, bytes);
}

int ImageToPdf::gdiplusOrientation(Gdiplus::Image& image)
{
    const UINT size = image.GetPropertyItemSize(kOrientationTag);
    if (size < sizeof(Gdiplus::PropertyItem))
        return 0;
    std::vector<uint8_t> buffer(size);
    auto* item = reinterpret_cast<Gdiplus::PropertyItem*>(buffer.data());
    if (image.GetPropertyItem(kOrientationTag, size, item) != Gdiplus::Ok || item->type != kPropertyTypeShort
        || item->length < sizeof(uint16_t) || !item->value)
        return 0;
    return *static_cast<const uint16_t*>(item->value);
}

bool ImageToPdf::convert(const ConversionOptions& options, Gdiplus::Image& image, const std::wstring& sourcePath,
                         zpdf::Document& document) const
{
    // What the source is, read before turning it: a turned picture need not keep its
    // format (Wine's GDI+ forgets that it was a JPEG). The size is read after.
    ImageFacts facts = readFacts(image);
    const Orientation orientation = orientationRule(readOrientation_(image));
    if (orientation.rotateFlip != 0) {
        image.RotateFlip(static_cast<Gdiplus::RotateFlipType>(orientation.rotateFlip));
        facts.width = image.GetWidth();
        facts.height = image.GetHeight();
    }
    const std::optional<PageSize> page = pageSize(facts.width, facts.height, options.dpi, options.optForA4);
    if (!page)
        return false;
    // Only a JPEG's file is of use: its bytes may pass through, its size bounds a new encoding.
    std::optional<std::string> file = facts.isJpeg ? readWholeFile(sourcePath) : std::nullopt;
    const int64_t fileSize = file ? static_cast<int64_t>(file->size()) : -1;

    std::optional<Embedding> embedding;
    if (options.passThroughJpg && facts.isJpeg && file && orientation.passThroughAllowed
        && (facts.pixelFormat == PixelFormat8bppIndexed || facts.pixelFormat == PixelFormat24bppRGB))
        embedding = passThrough(facts, std::move(*file));
    if (!embedding && indexedBits(facts.pixelFormat) != 0
        && (facts.flags & (kColorSpaceRgb | kColorSpaceGray)) != 0)
        embedding = indexed(image, facts, document);
    if (!embedding) {
        CLSID jpeg = {};
        if (findEncoder(L"image/jpeg", &jpeg) < 0)
            return false;
        std::vector<uint8_t> bytes;
        if (facts.isJpeg && fileSize > 0)
            bytes = encodeWithinSize([&](long quality, std::vector<uint8_t>& out) { return encodeJpeg_(image, quality, out); },
                                     fileSize);
        else
            encodeJpeg_(image, options.jpegQuality, bytes);
        embedding = Embedding{std::string(bytes.begin(), bytes.end()), true, zpdf::names::DeviceRGB(), 8};
    }

    const zpdf::Ptr<zpdf::Reference> imageObject = document.add(imageStream(facts, std::move(*embedding)));
    auto contents = zpdf::make<zpdf::Stream>(contentStream(page->width, page->height, 0, 0, kImageName));
    document.addPage(page->width, page->height, resourcesWith(imageObject), contents);
    return true;
}

} // namespace imageToPdf

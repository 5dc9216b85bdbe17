#include "xhtml/win/ImageCache.h"

#include <shlwapi.h>

namespace xhtml {

namespace {

// Releases a COM interface when it goes.
template <typename Interface>
struct ComReleaser {
    Interface* object = nullptr;
    ~ComReleaser()
    {
        if (object)
            object->Release();
    }
};

} // namespace

std::unique_ptr<Gdiplus::Bitmap> ImageCache::decode(const std::vector<uint8_t>& bytes)
{
    if (bytes.empty())
        return nullptr;
    ComReleaser<IStream> stream{SHCreateMemStream(bytes.data(), static_cast<UINT>(bytes.size()))};
    if (!stream.object)
        return nullptr;
    // A bitmap read from a stream reads it again later; the copy drawn from it does not.
    std::unique_ptr<Gdiplus::Bitmap> decoded(Gdiplus::Bitmap::FromStream(stream.object));
    if (!decoded || decoded->GetLastStatus() != Gdiplus::Ok)
        return nullptr;
    const int width = static_cast<int>(decoded->GetWidth());
    const int height = static_cast<int>(decoded->GetHeight());
    auto copy = std::make_unique<Gdiplus::Bitmap>(width, height, PixelFormat32bppARGB);
    if (copy->GetLastStatus() != Gdiplus::Ok)
        return nullptr;
    Gdiplus::Graphics graphics(copy.get());
    graphics.SetCompositingMode(Gdiplus::CompositingModeSourceCopy);
    if (graphics.DrawImage(decoded.get(), 0, 0, width, height) != Gdiplus::Ok)
        return nullptr;
    return copy;
}

Gdiplus::Bitmap* ImageCache::image(const ZString& address)
{
    auto found = images_.find(address);
    if (found != images_.end())
        return found->second.get();
    std::vector<uint8_t> bytes;
    std::unique_ptr<Gdiplus::Bitmap> decoded;
    if (loader_ && !address.isEmpty() && loader_->load(address, bytes))
        decoded = decode(bytes);
    return images_.emplace(address, std::move(decoded)).first->second.get();
}

} // namespace xhtml

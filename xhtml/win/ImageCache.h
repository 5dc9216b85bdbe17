#pragma once
// The images of one markup host by address, read through its resource loader and decoded
// with GDI+ into 32-bit bitmaps with their alpha. Needs GDI+ started for its whole life.

#include "xhtml/host/ViewContext.h"

#include <windows.h>
#include <objidl.h>
#include <gdiplus.h>

#include <map>
#include <memory>

namespace xhtml {

class ImageCache {
public:
    ImageCache() = default;
    ImageCache(const ImageCache&) = delete;
    ImageCache& operator=(const ImageCache&) = delete;

    // Loading goes through `loader` (not owned; null: nothing loads).
    void setLoader(ResourceLoader* loader) { loader_ = loader; }
    // The decoded image, owned by the cache; null when it cannot be loaded (remembered, so a
    // missing image is asked for once).
    Gdiplus::Bitmap* image(const ZString& address);
    void clear() { images_.clear(); }

    // Decodes PNG, JPEG, GIF or BMP bytes into a bitmap that needs no stream; null on failure.
    static std::unique_ptr<Gdiplus::Bitmap> decode(const std::vector<uint8_t>& bytes);

private:
    ResourceLoader* loader_ = nullptr;
    std::map<ZString, std::unique_ptr<Gdiplus::Bitmap>> images_;
};

} // namespace xhtml

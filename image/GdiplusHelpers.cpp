#include "image/GdiplusHelpers.h"

#include <cstdlib>
#include <cwchar>
#include <memory>

namespace {

// {1d5be4b5-fa4a-452d-9cdd-5db35105e7eb}
const GUID kEncoderQuality = {0x1d5be4b5, 0xfa4a, 0x452d, {0x9c, 0xdd, 0x5d, 0xb3, 0x51, 0x05, 0xe7, 0xeb}};

struct FreeDeleter {
    void operator()(void* memory) const { std::free(memory); }
};

struct ReleaseDeleter {
    void operator()(IUnknown* object) const { object->Release(); }
};

using StreamOwner = std::unique_ptr<IStream, ReleaseDeleter>;

// A global memory block locked for reading, unlocked when the object goes.
class LockedGlobal {
public:
    explicit LockedGlobal(HGLOBAL memory) : memory_(memory), data_(GlobalLock(memory)) {}
    ~LockedGlobal()
    {
        if (data_)
            GlobalUnlock(memory_);
    }
    LockedGlobal(const LockedGlobal&) = delete;
    LockedGlobal& operator=(const LockedGlobal&) = delete;

    const uint8_t* data() const { return static_cast<const uint8_t*>(data_); }
    size_t size() const { return GlobalSize(memory_); }

private:
    HGLOBAL memory_;
    void* data_;
};

// Appends everything the stream's memory holds.
bool appendStreamMemory(IStream* stream, std::vector<uint8_t>& bytes)
{
    HGLOBAL memory = nullptr;
    if (FAILED(GetHGlobalFromStream(stream, &memory)))
        return false;
    const LockedGlobal locked(memory);
    if (!locked.data())
        return false;
    bytes.insert(bytes.end(), locked.data(), locked.data() + locked.size());
    return true;
}

// Unlocks the bits when the object goes.
class LockedBits {
public:
    explicit LockedBits(Gdiplus::Bitmap* bitmap) : bitmap_(bitmap)
    {
        const Gdiplus::Rect whole(0, 0, static_cast<INT>(bitmap->GetWidth()), static_cast<INT>(bitmap->GetHeight()));
        locked_ = bitmap->LockBits(&whole, Gdiplus::ImageLockModeRead, bitmap->GetPixelFormat(), &data_) == Gdiplus::Ok;
    }
    ~LockedBits()
    {
        if (locked_)
            bitmap_->UnlockBits(&data_);
    }
    LockedBits(const LockedBits&) = delete;
    LockedBits& operator=(const LockedBits&) = delete;

    bool isLocked() const { return locked_; }
    const Gdiplus::BitmapData& data() const { return data_; }

private:
    Gdiplus::Bitmap* bitmap_;
    Gdiplus::BitmapData data_ = {};
    bool locked_ = false;
};

} // namespace

int findEncoder(const wchar_t* mimeType, CLSID* clsid)
{
    UINT count = 0;
    UINT size = 0;
    if (Gdiplus::DllExports::GdipGetImageEncodersSize(&count, &size) != Gdiplus::Ok || size == 0)
        return -1;
    const std::unique_ptr<void, FreeDeleter> buffer(std::malloc(size));
    if (!buffer)
        return -1;
    auto* encoders = static_cast<Gdiplus::ImageCodecInfo*>(buffer.get());
    if (Gdiplus::DllExports::GdipGetImageEncoders(count, size, encoders) != Gdiplus::Ok)
        return -1;
    for (UINT i = 0; i < count; ++i) {
        if (encoders[i].MimeType && std::wcscmp(encoders[i].MimeType, mimeType) == 0) {
            *clsid = encoders[i].Clsid;
            return static_cast<int>(i);
        }
    }
    return -1;
}

bool encodeToBuffer(Gdiplus::Image* image, const CLSID& encoder, long quality, std::vector<uint8_t>& bytes)
{
    IStream* rawStream = nullptr;
    if (FAILED(CreateStreamOnHGlobal(nullptr, TRUE, &rawStream)))
        return false;
    const StreamOwner stream(rawStream);
    Gdiplus::EncoderParameters parameters = {};
    parameters.Count = 1;
    parameters.Parameter[0].Guid = kEncoderQuality;
    parameters.Parameter[0].NumberOfValues = 1;
    parameters.Parameter[0].Type = Gdiplus::EncoderParameterValueTypeLong;
    parameters.Parameter[0].Value = &quality;
    // Image::Save is GdipSaveImageToStream on the wrapper's native image; going through
    // the wrapper keeps a failure as the image's last status, where the callers look.
    if (image->Save(stream.get(), &encoder, quality == 0 ? nullptr : &parameters) != Gdiplus::Ok)
        return false;
    return appendStreamMemory(stream.get(), bytes);
}

bool packIndexedRows(Gdiplus::Bitmap* bitmap, int bitsPerPixel, std::vector<uint8_t>& bytes)
{
    if (bitsPerPixel != 1 && bitsPerPixel != 4 && bitsPerPixel != 8)
        return false;
    const size_t rowBytes = (static_cast<size_t>(bitmap->GetWidth()) * bitsPerPixel + 7) / 8;
    const LockedBits locked(bitmap);
    if (!locked.isLocked())
        return false;
    const Gdiplus::BitmapData& data = locked.data();
    // A depth larger than the image's own would read past each row.
    if (rowBytes > static_cast<size_t>(std::abs(data.Stride)))
        return false;
    const auto* top = static_cast<const uint8_t*>(data.Scan0);
    for (UINT y = 0; y < data.Height; ++y) {
        const uint8_t* row = top + static_cast<ptrdiff_t>(y) * data.Stride;
        bytes.insert(bytes.end(), row, row + rowBytes);
    }
    return true;
}

#include "browser/ContentDecoding.h"

#include <zlib.h>

#include <algorithm>
#include <limits>
#include <vector>

namespace browser {

namespace {

enum class Wrapper { gzip, zlib, raw };

// zlib counts in uInt; larger buffers are fed in parts of at most this size.
constexpr std::size_t maxFeed = std::numeric_limits<uInt>::max();
constexpr std::size_t outputStep = 256 * 1024;
constexpr std::size_t expectedRatio = 4;

// A failure of one coding; the message is complete.
struct DecodeError {
    std::string message;
};

std::string tooLarge(std::size_t limit)
{
    return "The decoded content is larger than the limit of " + std::to_string(limit) + " bytes";
}

std::string zlibReason(const z_stream& stream, int status)
{
    if (status == Z_NEED_DICT)
        return "it needs a preset dictionary";
    return stream.msg ? stream.msg : "zlib status " + std::to_string(status);
}

bool isZlibHeader(std::string_view data)
{
    if (data.size() < 2)
        return false;
    const unsigned first = static_cast<unsigned char>(data[0]);
    const unsigned second = static_cast<unsigned char>(data[1]);
    // Method 8 (deflate), a window of at most 32 KB, and the check bits.
    return (first & 0x0F) == 8 && (first >> 4) <= 7 && ((first << 8) | second) % 31 == 0;
}

bool isGzipMember(const Bytef* next, uInt available)
{
    return available >= 2 && next[0] == 0x1F && next[1] == 0x8B;
}

int windowBits(Wrapper wrapper)
{
    switch (wrapper) {
    case Wrapper::gzip:
        return 16 + MAX_WBITS;
    case Wrapper::zlib:
        return MAX_WBITS;
    case Wrapper::raw:
        break;
    }
    return -MAX_WBITS;
}

class Inflater {
public:
    Inflater(Wrapper wrapper, const char* name, std::size_t limit) : wrapper_(wrapper), name_(name), limit_(limit)
    {
        if (inflateInit2(&stream_, windowBits(wrapper)) != Z_OK)
            throw DecodeError{"The " + name_ + " content could not be decoded (out of memory)"};
    }
    ~Inflater() { inflateEnd(&stream_); }
    Inflater(const Inflater&) = delete;
    Inflater& operator=(const Inflater&) = delete;

    std::string run(std::string_view input)
    {
        next_ = input.data();
        remaining_ = inputSize_ = input.size();
        for (;;) {
            feed();
            makeRoom();
            const int status = inflate(&stream_, Z_NO_FLUSH);
            produced_ = out_.size() - stream_.avail_out;
            checkLimit();
            if (status == Z_STREAM_END) {
                if (!startNextMember())
                    break;
            } else if (status != Z_OK && status != Z_BUF_ERROR) {
                throw DecodeError{"The " + name_ + " content is corrupt (" + zlibReason(stream_, status) + ")"};
            }
            if (status != Z_STREAM_END && stream_.avail_in == 0 && remaining_ == 0 && stream_.avail_out > 0)
                throw DecodeError{"The " + name_ + " content is truncated"};
        }
        out_.resize(produced_);
        return std::move(out_);
    }

private:
    void feed()
    {
        if (stream_.avail_in != 0 || remaining_ == 0)
            return;
        const std::size_t part = std::min(remaining_, maxFeed);
        stream_.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(next_));
        stream_.avail_in = static_cast<uInt>(part);
        next_ += part;
        remaining_ -= part;
    }

    // Output goes straight into the result, which doubles as it fills (starting from a guess
    // at text's usual ratio); at most one byte past the limit is ever asked for, which is how
    // going over it is noticed.
    void makeRoom()
    {
        if (stream_.avail_out != 0)
            return;
        const std::size_t allowed = limit_ - std::min(limit_, produced_) + 1;
        const std::size_t guess = std::min(inputSize_, maxFeed / expectedRatio) * expectedRatio;
        const std::size_t wanted = produced_ ? produced_ : std::max(outputStep, guess);
        const std::size_t step = std::min({wanted, allowed, maxFeed});
        out_.resize(produced_ + step);
        stream_.next_out = reinterpret_cast<Bytef*>(&out_[produced_]);
        stream_.avail_out = static_cast<uInt>(step);
    }

    void checkLimit() const
    {
        if (produced_ > limit_)
            throw DecodeError{tooLarge(limit_)};
    }

    // After the end of a stream: gzip allows further members; anything else is left over.
    bool startNextMember()
    {
        feed();
        if (stream_.avail_in == 0)
            return false;
        if (wrapper_ != Wrapper::gzip || !isGzipMember(stream_.next_in, stream_.avail_in))
            throw DecodeError{"The " + name_ + " content has data after its end"};
        inflateReset(&stream_);
        return true;
    }

    z_stream stream_{};
    Wrapper wrapper_;
    std::string name_;
    std::size_t limit_;
    const char* next_ = nullptr;
    std::size_t inputSize_ = 0;
    std::size_t remaining_ = 0;
    std::string out_;
    std::size_t produced_ = 0;
};

std::string lowerTrimmed(std::string_view text)
{
    const auto notSpace = [](char c) { return c != ' ' && c != '\t'; };
    const auto begin = std::find_if(text.begin(), text.end(), notSpace);
    const auto end = std::find_if(text.rbegin(), text.rend(), notSpace).base();
    std::string result(begin, begin < end ? end : begin);
    for (char& c : result)
        if (c >= 'A' && c <= 'Z')
            c = static_cast<char>(c - 'A' + 'a');
    return result;
}

std::vector<std::string> codingsOf(std::string_view encodings)
{
    std::vector<std::string> codings;
    std::size_t start = 0;
    while (start <= encodings.size()) {
        const std::size_t comma = std::min(encodings.find(',', start), encodings.size());
        std::string coding = lowerTrimmed(encodings.substr(start, comma - start));
        if (!coding.empty() && coding != "identity")
            codings.push_back(std::move(coding));
        start = comma + 1;
    }
    return codings;
}

std::string undo(const std::string& coding, std::string_view body, std::size_t limit)
{
    if (coding == "gzip" || coding == "x-gzip")
        return Inflater(Wrapper::gzip, "gzip", limit).run(body);
    if (coding == "deflate")
        return Inflater(isZlibHeader(body) ? Wrapper::zlib : Wrapper::raw, "deflate", limit).run(body);
    throw DecodeError{"Unsupported content encoding \"" + coding + "\""};
}

} // namespace

DecodedContent decodeContent(std::string_view encodings, std::string body, std::size_t limit)
{
    DecodedContent result;
    try {
        const std::vector<std::string> codings = codingsOf(encodings);
        if (codings.empty() && body.size() > limit)
            throw DecodeError{tooLarge(limit)};
        for (auto coding = codings.rbegin(); coding != codings.rend() && !body.empty(); ++coding)
            body = undo(*coding, body, limit);
        result.bytes = std::move(body);
        result.ok = true;
    } catch (const DecodeError& error) {
        result.error = error.message;
    } catch (const std::bad_alloc&) {
        result.error = "The content could not be decoded (out of memory)";
    }
    return result;
}

} // namespace browser

// Content decoding: every coding the client asks for, and every way a body can be bad.
// The fuzz target's seed corpus and found failures are replayed here too.
#include "Compression.h"
#include "fuzz/FuzzTargets.h"

#include "browser/ContentDecoding.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>

using browser::decodeContent;
using namespace browserTest;

namespace {

const std::string text = sampleText(20000);

std::string withByte(std::string data, std::size_t at, char change)
{
    data[at] ^= change;
    return data;
}

TEST(ContentDecoding, DecodesOrRefusesWhole)
{
    const std::string gz = gzip(text);
    const std::string zl = zlibWrapped(text);
    const std::string raw = rawDeflate(text);
    const std::size_t big = 1 << 20;
    // The decoded bytes, or an error.
    const struct { const char *label, *encodings; std::string body; std::size_t limit; std::string decoded;
                   const char* error; } cases[] = {
        {"gzip", "gzip", gz, big, text, nullptr},
        {"x-gzip in capitals", " X-GZIP ", gz, big, text, nullptr},
        {"gzip members in a row", "gzip", gz + gzip("tail"), big, text + "tail", nullptr},
        {"zlib-wrapped deflate", "deflate", zl, big, text, nullptr},
        {"raw deflate", "Deflate", raw, big, text, nullptr},
        {"gzip, then deflate", "gzip, deflate", zlibWrapped(gz), big, text, nullptr},
        {"identity", "identity", text, big, text, nullptr},
        {"no coding", "", text, big, text, nullptr},
        {"an empty body", "gzip", "", big, "", nullptr},
        {"exactly the limit", "gzip", gz, text.size(), text, nullptr},
        {"one byte over the limit", "gzip", gz, text.size() - 1, "",
         "The decoded content is larger than the limit of 19999 bytes"},
        {"identity over the limit", "identity", text, 10, "", "The decoded content is larger than the limit of 10 bytes"},
        {"a wrong check sum", "gzip", withByte(gz, gz.size() - 6, 1), big, "",
         "The gzip content is corrupt (incorrect data check)"},
        {"a wrong length", "gzip", withByte(gz, gz.size() - 2, 1), big, "",
         "The gzip content is corrupt (incorrect length check)"},
        {"a wrong Adler-32", "deflate", withByte(zl, zl.size() - 1, 1), big, "",
         "The deflate content is corrupt (incorrect data check)"},
        {"no gzip at all", "gzip", "hello", big, "", "The gzip content is corrupt (incorrect header check)"},
        {"a cut gzip", "gzip", gz.substr(0, gz.size() - 4), big, "", "The gzip content is truncated"},
        {"a cut raw deflate", "deflate", raw.substr(0, raw.size() / 2), big, "", "The deflate content is truncated"},
        {"bytes after gzip", "gzip", gz + "\n", big, "", "The gzip content has data after its end"},
        {"bytes after zlib", "deflate", zl + "xx", big, "", "The deflate content has data after its end"},
        {"brotli", "br", "\x0b\x02\x80hello\x03", big, "", "Unsupported content encoding \"br\""},
    };
    for (const auto& c : cases) {
        const browser::DecodedContent result = decodeContent(c.encodings, c.body, c.limit);
        EXPECT_EQ(result.ok, c.error == nullptr) << c.label;
        EXPECT_EQ(result.error, c.error ? c.error : "") << c.label;
        EXPECT_TRUE(result.bytes == c.decoded) << c.label << ": " << result.bytes.size() << " bytes";
    }
}

// No cut of a compressed body decodes: there is never a short success.
TEST(ContentDecoding, EveryCutIsAnError)
{
    const std::string sample = text.substr(0, 300);
    const struct { const char* encoding; std::string body; } forms[] = {
        {"gzip", gzip(sample)}, {"deflate", zlibWrapped(sample)}, {"deflate", rawDeflate(sample)}};
    for (const auto& form : forms) {
        ASSERT_EQ(decodeContent(form.encoding, form.body, 1000).bytes, sample);
        for (std::size_t length = 1; length < form.body.size(); ++length)
            EXPECT_FALSE(decodeContent(form.encoding, form.body.substr(0, length), 1000).ok)
                << form.encoding << " cut to " << length << " of " << form.body.size() << " bytes";
    }
}

TEST(ContentDecoding, FuzzSeedsAndFoundFailures)
{
    int seeds = 0;
    for (const char* kind : {"corpus", "regressions"}) {
        const std::filesystem::path folder = std::filesystem::path(BROWSER_FUZZ_DIR) / kind / "decode";
        // git keeps no empty folder
        for (const auto& entry : exists(folder) ? std::filesystem::directory_iterator(folder)
                                                : std::filesystem::directory_iterator()) {
            std::ifstream in(entry.path(), std::ios::binary);
            const std::string bytes(std::istreambuf_iterator<char>(in), {});
            EXPECT_TRUE(browserFuzz::decodeHolds(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size()))
                << entry.path().string();
            seeds += kind[0] == 'c';
        }
    }
    EXPECT_GE(seeds, 6);
}

} // namespace

// Damaged files: each is repaired as the widespread readers do, or refused with a clear error.
#include "PdfBuilder.h"
#include "WrittenDocument.h"

#include "zpdf/Array.h"
#include "zpdf/Names.h"
#include "zpdf/Number.h"
#include "zpdf/PdfFile.h"
#include "zpdf/Stream.h"

#include <gtest/gtest.h>

#include <cstdio>

using namespace zpdf;
using zpdfTest::errorOf;
using zpdfTest::PdfBuilder;

namespace {

struct Good {
    std::string bytes;
    std::size_t contentsAt; // offset of object 4, the page's contents
    std::size_t xrefAt;
};

// Catalog, page tree, one page with a contents stream whose Length is object 5, in a classic table.
Good goodFile()
{
    PdfBuilder pdf;
    pdf.pageTree(612, " /Contents 4 0 R");
    const std::size_t contents = pdf.object(4, "<</Length 5 0 R>>\nstream\n0 0 m 100 100 l S\nendstream");
    pdf.object(5, "17");
    const std::size_t xref = pdf.table("/Root 1 0 R");
    return {pdf.bytes(), contents, xref};
}

std::string replaced(std::string bytes, const std::string& what, const std::string& with)
{
    const std::size_t at = bytes.find(what);
    EXPECT_NE(at, std::string::npos) << what;
    return at == std::string::npos ? bytes : bytes.replace(at, what.size(), with);
}

std::string offsetField(std::size_t offset)
{
    char field[11];
    std::snprintf(field, sizeof field, "%010zu", offset);
    return field;
}

TEST(DamagedFile, RepairedAndReadInFull)
{
    const Good good = goodFile();
    const std::string startxref = "startxref\n" + std::to_string(good.xrefAt);
    const std::string comment = "% a comment that moves every object\n";
    const struct {
        const char* name;
        std::string bytes;
        bool repaired; // the whole cross-reference data had to be rebuilt
    } cases[] = {
        {"no cross-reference data at all", good.bytes.substr(0, good.xrefAt), true},
        {"startxref points elsewhere", replaced(good.bytes, startxref, "startxref\n" + std::to_string(good.xrefAt - 40)), true},
        {"startxref beyond the end", replaced(good.bytes, startxref, "startxref\n99999999"), true},
        // Each object is found by the scan when it is not at its offset.
        {"every offset in the table shifted",
         replaced(replaced(good.bytes, "1 0 obj", comment + "1 0 obj"), startxref,
                  "startxref\n" + std::to_string(good.xrefAt + comment.size())),
         false},
        {"the contents stream's offset wrong", replaced(good.bytes, offsetField(good.contentsAt), offsetField(good.contentsAt + 3)),
         false},
        {"the stream's Length too short", replaced(good.bytes, "5 0 obj\n17\n", "5 0 obj\n12\n"), false},
        {"the stream's Length too long", replaced(good.bytes, "5 0 obj\n17\n", "5 0 obj\n99\n"), false},
        {"garbage before the header", "garbage line\n" + good.bytes, true},
        {"a broken trailer", replaced(good.bytes, "trailer\n<<", "trailer\n[["), true},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        PdfFile file(c.bytes);
        EXPECT_EQ(file.wasRepaired(), c.repaired);
        file.loadAllObjects();
        EXPECT_EQ(file.objects().count(), 5u);
        Object* page = file.pages()->get(names::Kids())->asArray()->at(0);
        EXPECT_EQ(page->asDict()->get(names::Contents())->asStream()->data()->bytes(), "0 0 m 100 100 l S");
    }
}

TEST(DamagedFile, TruncatedFileKeepsWhatPrecedesTheCut)
{
    const Good good = goodFile();
    // Cut inside the contents stream: the page tree survives, the stream does not.
    PdfFile file(good.bytes.substr(0, good.contentsAt + 40));
    EXPECT_TRUE(file.wasRepaired());
    EXPECT_EQ(file.pages()->get(names::Count())->asNumber()->value(), 1);
    EXPECT_EQ(errorOf([&] { file.loadAllObjects(); }),
              "Stream without \"endstream\" at offset " + std::to_string(good.contentsAt + 26));
}

TEST(DamagedFile, DeepNestingAndLengthChains)
{
    PdfBuilder pdf;
    pdf.pageTree();
    const std::size_t deep = pdf.object(4, std::string(100000, '[') + std::string(100000, ']'));
    pdf.table("/Root 1 0 R");
    PdfFile nested(pdf.bytes());
    // "4 0 obj\n" and the deepest allowed level.
    EXPECT_EQ(errorOf([&] { nested.loadAllObjects(); }), "Objects nested too deeply at offset " + std::to_string(deep + 8 + 256));

    PdfBuilder chain;
    chain.pageTree();
    chain.object(4, "<</Length 4 0 R>>\nstream\nabc\nendstream");
    // Each stream's Length is the next stream, far deeper than loading may nest.
    for (std::uint32_t n = 10; n < 200; ++n)
        chain.object(n, "<</Length " + std::to_string(n + 1) + " 0 R>>\nstream\nxy\nendstream");
    chain.object(200, "2");
    chain.table("/Root 1 0 R");
    PdfFile file(chain.bytes());
    file.loadAllObjects();
    EXPECT_EQ(file.object(4)->value()->asStream()->data()->bytes(), "abc");
    EXPECT_EQ(file.object(10)->value()->asStream()->data()->bytes(), "xy");
    EXPECT_EQ(file.object(199)->value()->asStream()->data()->bytes(), "xy");
}

TEST(DamagedFile, ManyStreamsWithoutEndAreReadInLinearTime)
{
    // Each stream's data would run to the end of the file; read naively, that is quadratic
    // (here some 10^11 steps). Each object is read up to the next one instead.
    std::string bytes = "%PDF-1.4\n1 0 obj <</Type /Catalog /Pages 2 0 R>> endobj\n2 0 obj <</Type /Pages /Kids [] /Count 0>> endobj\n";
    for (int n = 3; n < 60000; ++n)
        bytes += std::to_string(n) + " 0 obj <</Length 99999999>> stream\n0 0 m 10 10 l S\n";
    bytes += "trailer <</Root 1 0 R>>\n";
    PdfFile file(bytes);
    EXPECT_TRUE(file.wasRepaired());
    EXPECT_THROW(file.loadAllObjects(), PdfException);
    EXPECT_EQ(file.pages()->get(names::Count())->asNumber()->value(), 0);
}

TEST(DamagedFile, UnrepairableFilesGiveClearErrors)
{
    EXPECT_EQ(errorOf([] { PdfFile file("%PDF-1.4\n1 0 obj (no catalog) endobj\n"); }),
              "Damaged file: neither a trailer nor a document catalog found");
    EXPECT_EQ(errorOf([] { PdfFile file("%PDF-1.4\ntrailer <</Root 7 0 R>>\n"); }),
              "Damaged file: the document catalog cannot be read");
}

} // namespace

// Damaged files: each is repaired as the widespread readers do, or refused with a clear error.
#include "PdfBuilder.h"

#include "zpdf/Array.h"
#include "zpdf/Names.h"
#include "zpdf/Number.h"
#include "zpdf/PdfException.h"
#include "zpdf/PdfFile.h"
#include "zpdf/Stream.h"

#include <gtest/gtest.h>

#include <functional>

using namespace zpdf;
using zpdfTest::PdfBuilder;

namespace {

struct Good {
    std::string bytes;
    std::size_t contentsAt; // offset of object 4, the page's contents
    std::size_t xrefAt;
};

// Catalog, page tree, one page with a contents stream, written with a classic table.
Good goodFile()
{
    PdfBuilder pdf;
    pdf.object(1, "<</Type /Catalog /Pages 2 0 R>>");
    pdf.object(2, "<</Type /Pages /Kids [3 0 R] /Count 1>>");
    pdf.object(3, "<</Type /Page /Parent 2 0 R /MediaBox [0 0 612 792] /Contents 4 0 R>>");
    const std::size_t contents = pdf.object(4, "<</Length 5 0 R>>\nstream\n0 0 m 100 100 l S\nendstream");
    pdf.object(5, "17");
    const std::size_t xref = pdf.table("/Root 1 0 R");
    return {pdf.bytes(), contents, xref};
}

std::string contentsOf(PdfFile& file)
{
    Object* page = file.pages()->get(names::Kids())->asArray()->at(0);
    return page->asDict()->get(names::Contents())->asStream()->data()->bytes();
}

void replaceFirst(std::string& bytes, const std::string& what, const std::string& with)
{
    const std::size_t at = bytes.find(what);
    ASSERT_NE(at, std::string::npos) << what;
    bytes.replace(at, what.size(), with);
}

struct RepairCase {
    const char* name;
    std::function<void(std::string&, const Good&)> damage;
    bool repaired; // the whole cross-reference data had to be rebuilt
};

TEST(DamagedFile, RepairedAndReadInFull)
{
    const RepairCase cases[] = {
        {"no cross-reference data at all",
         [](std::string& bytes, const Good& good) { bytes.resize(good.xrefAt); }, true},
        {"startxref points elsewhere",
         [](std::string& bytes, const Good& good) {
             replaceFirst(bytes, "startxref\n" + std::to_string(good.xrefAt), "startxref\n" + std::to_string(good.xrefAt - 40));
         },
         true},
        {"startxref beyond the end",
         [](std::string& bytes, const Good& good) {
             replaceFirst(bytes, "startxref\n" + std::to_string(good.xrefAt), "startxref\n99999999");
         },
         true},
        {"every offset in the table shifted",
         [](std::string& bytes, const Good& good) {
             const std::string comment = "% a comment that moves every object\n";
             bytes.insert(bytes.find("1 0 obj"), comment);
             replaceFirst(bytes, "startxref\n" + std::to_string(good.xrefAt),
                          "startxref\n" + std::to_string(good.xrefAt + comment.size()));
         },
         false /* each object is found by the scan when it is not at its offset */},
        {"the contents stream's offset wrong",
         [](std::string& bytes, const Good& good) {
             char wrong[11];
             std::snprintf(wrong, sizeof wrong, "%010zu", good.contentsAt);
             char right[11];
             std::snprintf(right, sizeof right, "%010zu", good.contentsAt + 3);
             replaceFirst(bytes, std::string(wrong) + " 00000 n", std::string(right) + " 00000 n");
         },
         false},
        {"the stream's Length too short",
         [](std::string& bytes, const Good&) { replaceFirst(bytes, "5 0 obj\n17\n", "5 0 obj\n12\n"); }, false},
        {"the stream's Length too long",
         [](std::string& bytes, const Good&) { replaceFirst(bytes, "5 0 obj\n17\n", "5 0 obj\n99\n"); }, false},
        {"garbage before the header",
         [](std::string& bytes, const Good&) { bytes.insert(0, "garbage line\n"); }, true},
        {"a broken trailer",
         [](std::string& bytes, const Good&) { replaceFirst(bytes, "trailer\n<<", "trailer\n[["); }, true},
    };
    for (const RepairCase& c : cases) {
        SCOPED_TRACE(c.name);
        const Good good = goodFile();
        std::string bytes = good.bytes;
        c.damage(bytes, good);
        PdfFile file(bytes);
        EXPECT_EQ(file.wasRepaired(), c.repaired);
        file.loadAllObjects();
        EXPECT_EQ(file.objects().count(), 5u);
        EXPECT_EQ(contentsOf(file), "0 0 m 100 100 l S");
    }
}

TEST(DamagedFile, TruncatedFileKeepsWhatPrecedesTheCut)
{
    const Good good = goodFile();
    // Cut inside the contents stream: the page tree survives, the stream does not.
    PdfFile file(good.bytes.substr(0, good.contentsAt + 40));
    EXPECT_TRUE(file.wasRepaired());
    EXPECT_EQ(file.pages()->get(names::Count())->asNumber()->value(), 1);
    try {
        file.loadAllObjects();
        ADD_FAILURE();
    } catch (const PdfException& error) {
        EXPECT_EQ(std::string(error.what()), "Stream without \"endstream\" at offset " + std::to_string(good.contentsAt + 26));
    }
}

TEST(DamagedFile, DeepNestingIsAnErrorAtItsOffset)
{
    PdfBuilder pdf;
    pdf.object(1, "<</Type /Catalog /Pages 2 0 R>>");
    pdf.object(2, "<</Type /Pages /Kids [] /Count 0>>");
    const std::size_t deep = pdf.object(3, std::string(100000, '[') + std::string(100000, ']'));
    pdf.table("/Root 1 0 R");
    PdfFile file(pdf.bytes());
    try {
        file.loadAllObjects();
        ADD_FAILURE();
    } catch (const PdfException& error) {
        const std::size_t at = deep + 8 + 256; // "3 0 obj\n" and the deepest allowed level
        EXPECT_EQ(std::string(error.what()), "Objects nested too deeply at offset " + std::to_string(at));
    }
}

TEST(DamagedFile, ObjectsThatReferToThemselvesForTheirLength)
{
    PdfBuilder pdf;
    pdf.object(1, "<</Type /Catalog /Pages 2 0 R>>");
    pdf.object(2, "<</Type /Pages /Kids [] /Count 0>>");
    pdf.object(3, "<</Length 3 0 R>>\nstream\nabc\nendstream");
    // Each stream's Length is the next stream, far deeper than loading may nest.
    for (std::uint32_t n = 10; n < 200; ++n)
        pdf.object(n, "<</Length " + std::to_string(n + 1) + " 0 R>>\nstream\nxy\nendstream");
    pdf.object(200, "2");
    pdf.table("/Root 1 0 R");
    PdfFile file(pdf.bytes());
    file.loadAllObjects();
    EXPECT_EQ(file.object(3)->value()->asStream()->data()->bytes(), "abc");
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
    const std::pair<std::string, const char*> cases[] = {
        {"%PDF-1.4\n1 0 obj (no catalog) endobj\n", "Damaged file: neither a trailer nor a document catalog found"},
        {"%PDF-1.4\ntrailer <</Root 7 0 R>>\n", "Damaged file: the document catalog cannot be read"},
    };
    for (const auto& [bytes, message] : cases) {
        try {
            PdfFile file(bytes);
            ADD_FAILURE() << message;
        } catch (const PdfException& error) {
            EXPECT_STREQ(error.what(), message);
        }
    }
}

} // namespace

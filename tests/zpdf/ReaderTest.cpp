// Reading files: cross-reference tables and streams, object streams, incremental updates,
// lazy loading, repair of damaged files, refusal of what cannot be read.
#include "TestSupport.h"
#include "fuzz/FuzzTargets.h"

#include "zpdf/Names.h"
#include "zpdf/Number.h"
#include "zpdf/PdfFile.h"
#include "zpdf/String.h"
#include "zpdf/XRefParser.h"

#include <gtest/gtest.h>

#include <filesystem>

using namespace zpdf;
using namespace zpdfTest;

namespace {

double pageWidth(PdfFile& file)
{
    return file.object(3)->value()->asDict()->get(names::MediaBox())->asArray()->at(2)->asNumber()->value();
}

std::string offsetField(std::size_t offset)
{
    const std::string digits = std::to_string(offset);
    return std::string(10 - digits.size(), '0') + digits;
}

std::string replaced(std::string bytes, const std::string& what, const std::string& with)
{
    return bytes.replace(bytes.find(what), what.size(), with); // throws when `what` is missing
}

TEST(Reader, TableAndUpdatesThroughPrevLoadObjectsOnFirstUse)
{
    PdfBuilder pdf;
    pdf.pageTree();
    pdf.object(4, "[3 0 R 3 0 R]");
    pdf.object(7, "(seven)");
    pdf.table("/Root 1 0 R");
    // An update in a cross-reference stream, then one in a table.
    pdf.object(3, page(300));
    pdf.object(8, "(added)");
    pdf.xrefStream(9, "/Root 1 0 R /Prev " + std::to_string(pdf.lastSection));
    pdf.object(8, "(changed again)");
    pdf.table("/Root 1 0 R /Prev " + std::to_string(pdf.lastSection));
    PdfFile file(pdf.bytes);
    EXPECT_FALSE(file.wasRepaired());
    EXPECT_LE(file.objects().count(), 1u) << "only the catalog is looked at while opening";
    Array* array = file.object(4)->value()->asArray();
    EXPECT_EQ(array->at(0)->resolve(), array->at(1)->resolve()) << "loaded once, then taken from the table";
    EXPECT_EQ(file.add(make<Number>(5))->number(), 10u) << "new numbers follow the file's, loaded or not";
    file.loadAllObjects();
    EXPECT_EQ(file.objects().count(), 7u) << "the cross-reference stream is structure";
    EXPECT_EQ(pageWidth(file), 300);
    EXPECT_EQ(file.object(7)->value()->asString()->serialized(), "(seven)");
    EXPECT_EQ(file.object(8)->value()->asString()->serialized(), "(changed again)");
}

// Cross-reference streams alone and behind a classic table (a hybrid file).
TEST(Reader, CrossReferenceStreamsObjectStreamsAndHybridFiles)
{
    for (const bool hybrid : {false, true}) {
        SCOPED_TRACE(hybrid);
        PdfBuilder pdf;
        const std::size_t one = pdf.object(1, catalog);
        const std::size_t four = pdf.objectStream(4, {{2, pages}, {3, page(595)}, {6, "[1 2.5 (x)]"}});
        const std::size_t stream = pdf.xrefStream(5, hybrid ? "" : "/Root 1 0 R");
        if (hybrid) {
            // Objects 2, 3 and 6 are free in the table; the stream named by XRefStm has them.
            const std::string free = "0000000000 00000 f\r\n";
            const std::size_t table = pdf.bytes.size();
            pdf.bytes += "xref\n0 7\n0000000000 65535 f\r\n" + offsetField(one) + " 00000 n\r\n" + free + free + offsetField(four)
                         + " 00000 n\r\n" + offsetField(stream) + " 00000 n\r\n" + free + "trailer\n<</Size 7 /Root 1 0 R /XRefStm "
                         + std::to_string(stream) + ">>\nstartxref\n" + std::to_string(table) + "\n%%EOF\n";
        }
        PdfFile file(pdf.bytes);
        file.loadAllObjects();
        EXPECT_FALSE(file.wasRepaired());
        EXPECT_EQ(file.objects().count(), 4u) << "the object stream and the cross-reference stream are structure";
        EXPECT_EQ(pageWidth(file), 595);
        EXPECT_EQ(file.object(6)->value()->asArray()->at(1)->asNumber()->value(), 2.5);
    }
}

TEST(Reader, BrokenCrossReferenceChainsAndOverlargeCountsAreErrors)
{
    using namespace std::string_literals;
    PdfBuilder loop;
    loop.pageTree();
    const std::size_t first = loop.table("/Root 1 0 R /Prev 0");
    // The only section names itself as the one before it.
    const std::string looped = replaced(loop.bytes, "/Prev 0", "/Prev " + std::to_string(first));
    const std::pair<std::string, std::string> cases[] = {
        {looped, "Loop in the chain of cross-reference sections at offset " + std::to_string(first)},
        {"%PDF-1.4\nxref\n0 100000\n0000000000 65535 f\r\ntrailer <<>>\nstartxref\n9\n%%EOF",
         "Cross-reference subsection larger than the file at offset 22"},
        {"%PDF-1.4\nxref\n4000000000 1\n0000000000 65535 f\r\ntrailer <<>>\nstartxref\n9\n%%EOF",
         "Cross-reference subsection larger than the file at offset 26"},
        {"%PDF-1.4\n1 0 obj <</Type /XRef /W [1 2 1] /Size 1000 /Length 4>> stream\n\x01\x00\x09\x00\nendstream endobj\n"
         "startxref\n9\n%%EOF"s,
         "Cross-reference stream declares more entries than it holds at offset 9"},
        {"%PDF-1.4\n1 0 obj <</Type /XRef /W [1 9 1] /Size 1 /Length 0>> stream\n\nendstream endobj\nstartxref\n9\n%%EOF",
         "Cross-reference stream field width out of range at offset 9"},
    };
    for (const auto& c : cases) { // read from startxref on
        NameTable names;
        XRefParser parser(c.first, names, {});
        CrossReference entries(1000);
        EXPECT_EQ(errorOf([&] { parser.readChain(XRefParser::findStartXRef(c.first), entries); }), c.second);
    }
    PdfFile repaired(looped);
    EXPECT_EQ(pageWidth(repaired), 612) << "repaired";

    PdfBuilder pdf;
    pdf.pageTree();
    const std::size_t stream = pdf.objectStream(8, {{6, "(x)"}});
    pdf.xrefStream(9, "/Root 1 0 R");
    PdfFile file(replaced(pdf.bytes, "/N 1 ", "/N 9 ")); // same length, so every offset stays right
    EXPECT_EQ(errorOf([&] { file.object(6); }), "Object stream declares more than it holds at offset " + std::to_string(stream));
    EXPECT_EQ(file.object(6), nullptr) << "a failed object stays absent";
}

TEST(Reader, RefusedFilesGiveClearErrors)
{
    PdfBuilder pdf;
    pdf.pageTree();
    pdf.object(4, "<</Filter /Standard /V 2 /R 3 /O <00> /U <00> /P -4>>");
    pdf.table("/Root 1 0 R /Encrypt 4 0 R");
    const std::pair<std::string, const char*> cases[] = {
        {pdf.bytes, "Encrypted PDF files are not supported"},
        {"", "Not a PDF file: no \"%PDF-\" header"},
        {"%PDF-1.4\n1 0 obj (no catalog) endobj\n", "Damaged file: neither a trailer nor a document catalog found"},
        {"%PDF-1.4\ntrailer <</Root 7 0 R>>\n", "Damaged file: the document catalog cannot be read"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(errorOf([&] { PdfFile file(c.first); }), c.second);
}

TEST(DamagedFile, RepairedAndReadInFull)
{
    // Catalog, page tree, one page whose contents stream has its Length in object 5.
    PdfBuilder pdf;
    pdf.pageTree(" /Contents 4 0 R");
    const std::size_t contentsAt = pdf.object(4, "<</Length 5 0 R>>\nstream\n0 0 m 100 100 l S\nendstream");
    pdf.object(5, "17");
    const std::size_t xrefAt = pdf.table("/Root 1 0 R");
    const std::string& bytes = pdf.bytes;
    const std::string startxref = "startxref\n" + std::to_string(xrefAt);
    const std::string comment = "% a comment that moves every object\n";
    // repaired: the whole cross-reference data had to be rebuilt.
    const struct { const char* name; std::string bytes; bool repaired; } cases[] = {
        {"no cross-reference data at all", bytes.substr(0, xrefAt), true},
        {"startxref points elsewhere", replaced(bytes, startxref, "startxref\n" + std::to_string(xrefAt - 40)), true},
        // Each object is found by the scan when it is not at its offset.
        {"every offset in the table shifted",
         replaced(replaced(bytes, "1 0 obj", comment + "1 0 obj"), startxref,
                  "startxref\n" + std::to_string(xrefAt + comment.size())),
         false},
        {"the stream's Length beyond its end", replaced(bytes, "5 0 obj\n17\n", "5 0 obj\n99\n"), false},
        {"garbage before the header", "garbage line\n" + bytes, true},
        {"a broken trailer", replaced(bytes, "trailer\n<<", "trailer\n[["), true},
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

    // Cut inside the contents stream: the page tree survives, the stream does not.
    PdfFile file(bytes.substr(0, contentsAt + 40));
    EXPECT_EQ(file.pages()->get(names::Count())->asNumber()->value(), 1);
    EXPECT_EQ(errorOf([&] { file.loadAllObjects(); }),
              "Stream without \"endstream\" at offset " + std::to_string(contentsAt + 26));
}

TEST(DamagedFile, LengthChainsAndManyUnendedStreamsStayBounded)
{
    PdfBuilder chain;
    chain.pageTree();
    chain.object(4, "<</Length 4 0 R>>\nstream\nabc\nendstream");
    // Each stream's Length is the next stream, far deeper than loading may nest.
    for (std::uint32_t n = 10; n < 200; ++n)
        chain.object(n, "<</Length " + std::to_string(n + 1) + " 0 R>>\nstream\nxy\nendstream");
    chain.object(200, "2");
    chain.table("/Root 1 0 R");
    PdfFile file(chain.bytes);
    file.loadAllObjects();
    EXPECT_EQ(file.object(4)->value()->asStream()->data()->bytes(), "abc");
    EXPECT_EQ(file.object(199)->value()->asStream()->data()->bytes(), "xy");

    // Each stream's data would run to the end of the file; read naively, that is quadratic
    // (some 10^11 steps, beyond the test's time limit). Each object is read up to the next.
    std::string bytes = "%PDF-1.4\n1 0 obj <</Type /Catalog /Pages 2 0 R>> endobj\n2 0 obj <</Type /Pages /Kids [] /Count 0>> endobj\n";
    for (int n = 3; n < 60000; ++n)
        bytes += std::to_string(n) + " 0 obj <</Length 99999999>> stream\n0 0 m 10 10 l S\n";
    PdfFile unended(bytes + "trailer <</Root 1 0 R>>\n");
    EXPECT_THROW(unended.loadAllObjects(), PdfException);
    EXPECT_EQ(unended.pages()->get(names::Count())->asNumber()->value(), 0);
}

// The fuzzer's seed corpus and every input that ever made it fail.
TEST(FuzzReplay, SeedCorpusAndFoundFailures)
{
    int seeds = 0;
    for (const char* kind : {"corpus", "regressions"}) {
        const std::filesystem::path folder = std::filesystem::path(ZPDF_FUZZ_DIR) / kind / "open";
        // git keeps no empty folder
        for (const auto& entry : exists(folder) ? std::filesystem::directory_iterator(folder) : std::filesystem::directory_iterator()) {
            const std::string bytes = readFile(entry.path().string());
            EXPECT_TRUE(zpdffuzz::openAndLoad(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size()))
                << entry.path().string();
            seeds += kind[0] == 'c';
        }
    }
    EXPECT_GE(seeds, 7);
}

} // namespace

// Reading the structure of a file: cross-reference tables and streams, object streams,
// incremental updates, lazy loading, encryption.
#include "PdfBuilder.h"
#include "WrittenDocument.h"

#include "zpdf/Array.h"
#include "zpdf/NameTable.h"
#include "zpdf/Names.h"
#include "zpdf/Number.h"
#include "zpdf/PdfFile.h"
#include "zpdf/String.h"
#include "zpdf/XRefParser.h"

#include <gtest/gtest.h>

#include <cstdio>

using namespace zpdf;
using zpdfTest::errorOf;
using zpdfTest::PdfBuilder;

namespace {

const char* const catalog = "<</Type /Catalog /Pages 2 0 R>>";
const char* const pages = "<</Type /Pages /Kids [3 0 R] /Count 1>>";

std::string page(int width) { return "<</Type /Page /Parent 2 0 R /MediaBox [0 0 " + std::to_string(width) + " 792]>>"; }

double pageWidth(PdfFile& file)
{
    Indirect* object = file.object(3);
    if (!object || !object->value() || !object->value()->asDict())
        return -1;
    return object->value()->asDict()->get(names::MediaBox())->asArray()->at(2)->asNumber()->value();
}

std::string entryLine(std::size_t offset)
{
    char line[24];
    std::snprintf(line, sizeof line, "%010zu 00000 n\r\n", offset);
    return line;
}

// The error reading the chain of cross-reference sections from startxref on.
std::string chainError(const std::string& bytes)
{
    NameTable names;
    XRefParser parser(bytes, names, {});
    CrossReference entries(1000);
    return errorOf([&] { parser.readChain(XRefParser::findStartXRef(bytes), entries); });
}

TEST(Reader, ClassicTableWithSubsectionsLoadsObjectsOnFirstUse)
{
    PdfBuilder pdf;
    pdf.pageTree();
    pdf.object(4, "[3 0 R 3 0 R]");
    pdf.object(7, "(seven)");
    pdf.table("/Root 1 0 R");
    PdfFile file(pdf.bytes());
    EXPECT_FALSE(file.wasRepaired());
    EXPECT_EQ(file.version(), "1.7");
    EXPECT_EQ(file.highestNumber(), 7u);
    const std::size_t afterOpen = file.objects().count();
    EXPECT_LE(afterOpen, 1u) << "only the catalog is looked at while opening";
    Array* array = file.object(4)->value()->asArray();
    EXPECT_EQ(array->at(0)->resolve(), array->at(1)->resolve()) << "loaded once, then taken from the table";
    EXPECT_EQ(file.objects().count(), afterOpen + 2);
    EXPECT_EQ(file.add(make<Number>(5))->number(), 8u) << "new numbers follow the file's, loaded or not";
    file.loadAllObjects();
    EXPECT_EQ(file.objects().count(), 6u);
    EXPECT_EQ(pageWidth(file), 612);
    EXPECT_EQ(file.object(7)->value()->asString()->serialized(), "(seven)");
    EXPECT_EQ(file.trailer().get(names::Root())->asDict(), file.object(1)->value());
}

TEST(Reader, CrossReferenceStreamsWithObjectStreams)
{
    for (const bool compressed : {false, true}) {
        PdfBuilder pdf;
        pdf.object(1, catalog);
        pdf.objectStream(4, {{2, pages}, {3, page(595)}, {6, "[1 2.5 (x)]"}}, compressed);
        pdf.xrefStream(5, "/Root 1 0 R", compressed);
        PdfFile file(pdf.bytes());
        file.loadAllObjects();
        EXPECT_FALSE(file.wasRepaired());
        EXPECT_EQ(file.objects().count(), 4u) << "the object stream and the cross-reference stream are structure";
        EXPECT_EQ(file.object(4), nullptr);
        EXPECT_EQ(pageWidth(file), 595);
        EXPECT_EQ(file.object(6)->value()->asArray()->at(1)->asNumber()->value(), 2.5);
    }
}

TEST(Reader, HybridFileTakesCompressedObjectsFromItsStream)
{
    PdfBuilder pdf;
    const std::size_t one = pdf.object(1, catalog);
    const std::size_t four = pdf.objectStream(4, {{2, pages}, {3, page(500)}});
    const std::size_t stream = pdf.xrefStream(5, "");
    const std::size_t table = pdf.bytes().size();
    // Objects 2 and 3 are free in the table; the stream named by XRefStm has them.
    pdf.raw("xref\n0 6\n0000000000 65535 f\r\n" + entryLine(one) + "0000000000 00000 f\r\n0000000000 00000 f\r\n"
            + entryLine(four) + entryLine(stream) + "trailer\n<</Size 6 /Root 1 0 R /XRefStm " + std::to_string(stream)
            + ">>\nstartxref\n" + std::to_string(table) + "\n%%EOF\n");
    PdfFile file(pdf.bytes());
    file.loadAllObjects();
    EXPECT_FALSE(file.wasRepaired());
    EXPECT_EQ(pageWidth(file), 500);
    EXPECT_EQ(file.objects().count(), 3u);
}

TEST(Reader, IncrementalUpdatesReplaceObjectsThroughPrev)
{
    PdfBuilder pdf;
    pdf.pageTree();
    pdf.table("/Root 1 0 R");
    pdf.object(3, page(300));
    pdf.object(8, "(added)");
    pdf.xrefStream(9, "/Root 1 0 R /Prev " + std::to_string(pdf.lastSection()));
    pdf.object(8, "(changed again)");
    pdf.table("/Root 1 0 R /Prev " + std::to_string(pdf.lastSection()));
    PdfFile file(pdf.bytes());
    file.loadAllObjects();
    EXPECT_FALSE(file.wasRepaired());
    EXPECT_EQ(pageWidth(file), 300);
    EXPECT_EQ(file.object(8)->value()->asString()->serialized(), "(changed again)");
    EXPECT_EQ(file.objects().count(), 4u);
}

TEST(Reader, LoopInThePrevChainIsDetectedAndRepaired)
{
    PdfBuilder pdf;
    pdf.pageTree();
    const std::size_t first = pdf.table("/Root 1 0 R /Prev 0");
    std::string bytes = pdf.bytes();
    // The only section names itself as the one before it.
    bytes.replace(bytes.find("/Prev 0"), 7, "/Prev " + std::to_string(first));
    EXPECT_EQ(chainError(bytes), "Loop in the chain of cross-reference sections at offset " + std::to_string(first));
    PdfFile file(bytes);
    EXPECT_TRUE(file.wasRepaired());
    EXPECT_EQ(pageWidth(file), 612);
}

TEST(Reader, DeclaredCountsLargerThanTheFileAreErrors)
{
    using namespace std::string_literals;
    const std::pair<std::string, const char*> cases[] = {
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
    for (const auto& [bytes, message] : cases)
        EXPECT_EQ(chainError(bytes), message);

    PdfBuilder pdf;
    pdf.pageTree();
    const std::size_t stream = pdf.objectStream(8, {{6, "(x)"}}, false);
    pdf.xrefStream(9, "/Root 1 0 R");
    std::string bytes = pdf.bytes();
    bytes.replace(bytes.find("/N 1 "), 5, "/N 9 "); // same length, so every offset stays right
    PdfFile file(bytes);
    EXPECT_EQ(errorOf([&] { file.object(6); }), "Object stream declares more than it holds at offset " + std::to_string(stream));
    EXPECT_EQ(file.object(6), nullptr) << "a failed object stays absent";
}

TEST(Reader, EncryptedAndNonPdfFilesAreRefused)
{
    PdfBuilder pdf;
    pdf.pageTree();
    pdf.object(4, "<</Filter /Standard /V 2 /R 3 /O <00> /U <00> /P -4>>");
    pdf.table("/Root 1 0 R /Encrypt 4 0 R");
    EXPECT_THROW(PdfFile{pdf.bytes()}, UnsupportedException);
    EXPECT_EQ(errorOf([&] { PdfFile file(pdf.bytes()); }), "Encrypted PDF files are not supported");
    for (const char* bytes : {"", "hello world", "%PDX-1.4\n1 0 obj <<>> endobj"})
        EXPECT_EQ(errorOf([&] { PdfFile file(bytes); }), "Not a PDF file: no \"%PDF-\" header") << bytes;
}

} // namespace

#include "WrittenDocument.h"

#include "zpdf/Array.h"
#include "zpdf/BufferWriter.h"
#include "zpdf/FileWriter.h"
#include "zpdf/Names.h"
#include "zpdf/Number.h"
#include "zpdf/PdfException.h"
#include "zpdf/String.h"
#include "zpdf/XRef.h"

#include <gtest/gtest.h>

#include <cstdio>

using namespace zpdf;
using zpdfTest::writeChecked;

namespace {

// The number after "startxref" must be the offset of "xref".
void expectStartXRefPointsAtTable(const std::string& pdf)
{
    const std::size_t at = pdf.rfind("startxref\r\n");
    ASSERT_NE(at, std::string::npos);
    const long long offset = std::stoll(pdf.substr(at + 11));
    ASSERT_GE(offset, 0);
    ASSERT_LT(static_cast<std::size_t>(offset), pdf.size());
    EXPECT_EQ(pdf.compare(static_cast<std::size_t>(offset), 6, "xref\r\n"), 0);
    EXPECT_EQ(pdf.substr(pdf.size() - 5), "%%EOF") << "nothing, not even a line break, after %%EOF";
}

Ptr<Dict> dictOf(std::initializer_list<std::pair<Ptr<Name>, Ptr<Object>>> entries)
{
    Ptr<Dict> dict = make<Dict>();
    for (const auto& [key, value] : entries)
        dict->set(key, value);
    return dict;
}

Ptr<Array> mediaBox(int width, int height)
{
    Ptr<Array> box = make<Array>();
    for (int value : {0, 0, width, height})
        box->append(make<Number>(value));
    return box;
}

TEST(Writer, FiveObjectsWithoutGaps)
{
    Document document;
    document.addPage(612, 792.5, nullptr, make<Stream>("0 0 m 10 10 l S"));
    document.setInfo(names::Producer(), make<String>(ZString(u"zpdf")));

    const std::string expected =
        "%PDF-1.4\r\n"
        "%\xC3\xA2\xC3\xA3\xC3\x8F\xC3\x93\r\n"
        "1 0 obj\r\n<<\r\n/Pages 2 0 R\r\n/Type /Catalog\r\n>>\r\nendobj\r\n"
        "2 0 obj\r\n<<\r\n/Count 1\r\n/Kids [4 0 R]\r\n/Type /Pages\r\n>>\r\nendobj\r\n"
        "3 0 obj\r\n<<\r\n/Length 15\r\n>>\r\nstream\r\n0 0 m 10 10 l S\r\nendstream\r\nendobj\r\n"
        "4 0 obj\r\n<<\r\n/Contents 3 0 R\r\n/MediaBox [0 0 612 792.5]\r\n/Parent 2 0 R\r\n"
        "/Resources <<\r\n>>\r\n/Type /Page\r\n>>\r\nendobj\r\n"
        "5 0 obj\r\n<<\r\n/Producer <FEFF007a007000640066>\r\n>>\r\nendobj\r\n"
        "xref\r\n"
        "0 6\r\n"
        "0000000000 65535 f\r\n"
        "0000000021 00000 n\r\n"
        "0000000076 00000 n\r\n"
        "0000000140 00000 n\r\n"
        "0000000213 00000 n\r\n"
        "0000000329 00000 n\r\n"
        "trailer\r\n<<\r\n/Info 5 0 R\r\n/Root 1 0 R\r\n/Size 6\r\n>>\r\n"
        "startxref\r\n388\r\n%%EOF";
    const std::string pdf = writeChecked(document);
    EXPECT_EQ(pdf, expected);
    expectStartXRefPointsAtTable(pdf);
}

TEST(Writer, MissingNumberBecomesFreeEntryInOneSubsection)
{
    Document document;
    const Ptr<Reference> pages = document.put(2, 0, nullptr);
    document.put(1, 0, dictOf({{names::Type(), names::Catalog()}, {names::Pages(), pages}}));
    const Ptr<Reference> page = document.put(
        4, 0, dictOf({{names::Type(), names::Page()}, {names::Parent(), pages}, {names::MediaBox(), mediaBox(200, 100)}}));
    Ptr<Array> kids = make<Array>();
    kids->append(page);
    document.object(2)->setValue(
        dictOf({{names::Type(), names::Pages()}, {names::Kids(), kids}, {names::Count(), make<Number>(1)}}));
    document.trailer().set(names::Root(), document.referenceTo(1));

    const std::string expected =
        "%PDF-1.4\r\n"
        "%\xC3\xA2\xC3\xA3\xC3\x8F\xC3\x93\r\n"
        "1 0 obj\r\n<<\r\n/Pages 2 0 R\r\n/Type /Catalog\r\n>>\r\nendobj\r\n"
        "2 0 obj\r\n<<\r\n/Count 1\r\n/Kids [4 0 R]\r\n/Type /Pages\r\n>>\r\nendobj\r\n"
        "4 0 obj\r\n<<\r\n/MediaBox [0 0 200 100]\r\n/Parent 2 0 R\r\n/Type /Page\r\n>>\r\nendobj\r\n"
        "xref\r\n"
        "0 5\r\n"
        "0000000000 65535 f\r\n"
        "0000000021 00000 n\r\n"
        "0000000076 00000 n\r\n"
        "0000000000 00000 f\r\n"
        "0000000140 00000 n\r\n"
        "trailer\r\n<<\r\n/Root 1 0 R\r\n/Size 5\r\n>>\r\n"
        "startxref\r\n218\r\n%%EOF";
    const std::string pdf = writeChecked(document);
    EXPECT_EQ(pdf, expected);
    expectStartXRefPointsAtTable(pdf);
}

TEST(Writer, FreeEntriesPointBackToThePreviousFreeNumber)
{
    Document document;
    const Ptr<Reference> pages = document.put(3, 0, nullptr);
    const Ptr<Reference> page = document.put(
        6, 0, dictOf({{names::Type(), names::Page()}, {names::Parent(), pages}, {names::MediaBox(), mediaBox(9, 9)}}));
    Ptr<Array> kids = make<Array>();
    kids->append(page);
    document.object(3)->setValue(
        dictOf({{names::Type(), names::Pages()}, {names::Kids(), kids}, {names::Count(), make<Number>(1)}}));
    document.trailer().set(names::Root(),
                           document.put(1, 0, dictOf({{names::Type(), names::Catalog()}, {names::Pages(), pages}})));
    const std::string pdf = writeChecked(document);

    const std::size_t table = pdf.find("xref\r\n0 7\r\n");
    ASSERT_NE(table, std::string::npos);
    auto line = [&](int number) { return pdf.substr(table + 11 + 20 * number, 20); };
    auto inUse = [&](const char* header) {
        char text[32];
        std::snprintf(text, sizeof text, "%010zu 00000 n\r\n", pdf.find(header));
        return std::string(text);
    };
    EXPECT_EQ(line(0), "0000000000 65535 f\r\n");
    EXPECT_EQ(line(1), inUse("1 0 obj"));
    EXPECT_EQ(line(2), "0000000000 00000 f\r\n");
    EXPECT_EQ(line(3), inUse("3 0 obj"));
    EXPECT_EQ(line(4), "0000000002 00000 f\r\n");
    EXPECT_EQ(line(5), "0000000004 00000 f\r\n");
    EXPECT_EQ(line(6), inUse("6 0 obj"));
    EXPECT_NE(pdf.find("/Size 7\r\n"), std::string::npos);
}

TEST(Writer, TableSubsectionsAndWideFields)
{
    Ptr<XRef> xref = make<XRef>();
    xref->add({6, 0, 600, true});
    xref->add({0, 65535, 0, false});
    xref->add({5, 2, 12345678901LL, true});
    xref->add({1, 0, 17, true});
    BufferWriter out;
    xref->write(out);
    EXPECT_EQ(out.data(), "xref\r\n"
                          "0 2\r\n"
                          "0000000000 65535 f\r\n"
                          "0000000017 00000 n\r\n"
                          "5 2\r\n"
                          "12345678901 00002 n\r\n"
                          "0000000600 00000 n\r\n");
}

TEST(Writer, HeaderCarriesTheVersionAndTheBinaryComment)
{
    Document document;
    document.setVersion("1.7");
    document.addPage(100, 100, nullptr, nullptr);
    const std::string pdf = writeChecked(document);
    EXPECT_EQ(pdf.substr(0, 21), std::string("%PDF-1.7\r\n%\xC3\xA2\xC3\xA3\xC3\x8F\xC3\x93\r\n"));
}

TEST(Writer, TrailerTakesOnlyItsEntriesInKeyOrder)
{
    Document document;
    document.addPage(10, 10, nullptr, nullptr);
    document.setInfo(names::Title(), make<String>("T", StringMode::literal));
    Ptr<Array> id = make<Array>();
    id->append(make<String>("00ff", StringMode::hex));
    id->append(make<String>("00ff", StringMode::hex));
    document.trailer().set(names::ID(), id);
    document.trailer().set(names::Prev(), make<Number>(99));
    const std::string pdf = writeChecked(document);
    EXPECT_NE(pdf.find("trailer\r\n<<\r\n/ID [<00ff> <00ff>]\r\n/Info 4 0 R\r\n/Root 1 0 R\r\n/Size 5\r\n>>\r\n"),
              std::string::npos)
        << pdf;
}

TEST(Writer, FileWriterReportsAFolderThatDoesNotExist)
{
    const std::string path = zpdfTest::temporaryPath("_missing") + "/out.pdf";
    EXPECT_THROW(FileWriter(ZString::fromUtf8(path)), PdfException);
}

TEST(Writer, PositionCountsStagedAndLargeWrites)
{
    BufferWriter out;
    out.write("ab");
    out.put('c');
    out.writeInt(-42);
    EXPECT_EQ(out.position(), 6);
    const std::string large(300 * 1024, 'x');
    out.write(large);
    out.write("!");
    EXPECT_EQ(out.position(), static_cast<std::int64_t>(6 + large.size() + 1));
    const std::string& data = out.data();
    EXPECT_EQ(data.size(), 6 + large.size() + 1);
    EXPECT_EQ(data.substr(0, 6), "abc-42");
    EXPECT_EQ(data.back(), '!');
}

} // namespace

#include "WrittenDocument.h"

#include "zpdf/Array.h"
#include "zpdf/BufferWriter.h"
#include "zpdf/FileWriter.h"
#include "zpdf/Names.h"
#include "zpdf/Number.h"
#include "zpdf/String.h"

#include <gtest/gtest.h>

#include <cstdio>

using namespace zpdf;
using zpdfTest::writeChecked;

namespace {

// Writes the document and checks what every file must hold: the number after "startxref"
// is the offset of "xref", and nothing, not even a line break, follows "%%EOF".
std::string writtenAndChecked(Document& document)
{
    const std::string pdf = writeChecked(document);
    const std::size_t at = pdf.rfind("startxref\r\n");
    EXPECT_EQ(pdf.find("xref\r\n"), at == std::string::npos ? at : std::stoull(pdf.substr(at + 11)));
    EXPECT_EQ(pdf.substr(pdf.size() - 5), "%%EOF");
    return pdf;
}

TEST(Writer, FiveObjectsWithoutGaps)
{
    Document document;
    document.addPage(612, 792.5, nullptr, make<Stream>("0 0 m 10 10 l S"));
    document.setInfo(names::Producer(), make<String>(ZString(u"zpdf")));
    EXPECT_EQ(writtenAndChecked(document),
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
              "startxref\r\n388\r\n%%EOF");
}

TEST(Writer, MissingNumberBecomesFreeEntryInOneSubsection)
{
    Document document;
    Dict* page = document.addPage(200, 100, nullptr, nullptr)->asDict();
    page->remove("Resources");
    document.pages()->get(names::Kids())->asArray()->set(0, document.put(4, 0, Ptr<Object>(page)));
    document.remove(3);
    EXPECT_EQ(writtenAndChecked(document),
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
              "startxref\r\n218\r\n%%EOF");
}

TEST(Writer, FreeEntriesPointBackToThePreviousFreeNumber)
{
    Document document;
    document.addPage(200, 100, nullptr, nullptr);
    document.put(6, 0, make<Number>(6));
    const std::string pdf = writtenAndChecked(document);
    auto inUse = [&](const char* header) {
        char text[32];
        std::snprintf(text, sizeof text, "%010zu 00000 n\r\n", pdf.find(header));
        return std::string(text);
    };
    const std::string table = "xref\r\n0 7\r\n0000000000 65535 f\r\n" + inUse("1 0 obj") + inUse("2 0 obj") + inUse("3 0 obj")
                              + "0000000000 00000 f\r\n0000000004 00000 f\r\n" + inUse("6 0 obj")
                              + "trailer\r\n<<\r\n/Root 1 0 R\r\n/Size 7\r\n>>";
    EXPECT_NE(pdf.find(table), std::string::npos) << pdf;
}

TEST(Writer, HeaderVersionAndTrailerTakingOnlyItsEntries)
{
    Document document;
    document.setVersion("1.7");
    document.addPage(10, 10, nullptr, nullptr);
    document.setInfo(names::Title(), make<String>("T", StringMode::literal));
    Ptr<Array> id = make<Array>();
    id->append(make<String>("00ff", StringMode::hex));
    id->append(make<String>("00ff", StringMode::hex));
    document.trailer().set(names::ID(), id);
    document.trailer().set(names::Prev(), make<Number>(99));
    const std::string pdf = writtenAndChecked(document);
    EXPECT_EQ(pdf.substr(0, 21), "%PDF-1.7\r\n%\xC3\xA2\xC3\xA3\xC3\x8F\xC3\x93\r\n");
    EXPECT_NE(pdf.find("trailer\r\n<<\r\n/ID [<00ff> <00ff>]\r\n/Info 4 0 R\r\n/Root 1 0 R\r\n/Size 5\r\n>>\r\n"),
              std::string::npos)
        << pdf;
}

TEST(Writer, PositionCountsStagedAndLargeWritesAndAMissingFolderIsReported)
{
    BufferWriter out;
    out.write("ab");
    out.put('c');
    out.writeInt(-42);
    EXPECT_EQ(out.position(), 6);
    const std::string large(300 * 1024, 'x');
    out.write(large);
    out.write("!");
    EXPECT_EQ(out.position(), static_cast<std::int64_t>(large.size() + 7));
    EXPECT_EQ(out.data(), "abc-42" + large + "!");

    const std::string path = zpdfTest::temporaryPath("_missing") + "/out.pdf";
    EXPECT_THROW(FileWriter(ZString::fromUtf8(path)), PdfException);
}

} // namespace

// The files the writer makes, and documents written, read back and written again.
#include "TestSupport.h"

#include "zpdf/Bool.h"
#include "zpdf/BufferWriter.h"
#include "zpdf/FileWriter.h"
#include "zpdf/Names.h"
#include "zpdf/Null.h"
#include "zpdf/Number.h"
#include "zpdf/PdfFile.h"
#include "zpdf/String.h"

#include <gtest/gtest.h>

using namespace zpdf;
using zpdfTest::arrayOf;
using zpdfTest::writeChecked;

namespace {

// Missing numbers are free entries, each naming the free number before it; the trailer
// takes ID, Info and Root only.
TEST(Writer, WholeFile)
{
    Document document;
    document.setVersion("1.7");
    document.addPage(612, 792.5, nullptr, make<Stream>("0 0 m 10 10 l S"));
    document.setInfo(names::Producer(), make<String>(ZString(u"zpdf")));
    document.put(8, 0, make<Number>(8));
    document.trailer().set(names::ID(), arrayOf({make<String>("00ff", StringMode::hex), make<String>("00ff", StringMode::hex)}));
    document.trailer().set(names::Prev(), make<Number>(99));
    EXPECT_EQ(writeChecked(document),
              "%PDF-1.7\r\n"
              "%\xC3\xA2\xC3\xA3\xC3\x8F\xC3\x93\r\n"
              "1 0 obj\r\n<<\r\n/Pages 2 0 R\r\n/Type /Catalog\r\n>>\r\nendobj\r\n"
              "2 0 obj\r\n<<\r\n/Count 1\r\n/Kids [4 0 R]\r\n/Type /Pages\r\n>>\r\nendobj\r\n"
              "3 0 obj\r\n<<\r\n/Length 15\r\n>>\r\nstream\r\n0 0 m 10 10 l S\r\nendstream\r\nendobj\r\n"
              "4 0 obj\r\n<<\r\n/Contents 3 0 R\r\n/MediaBox [0 0 612 792.5]\r\n/Parent 2 0 R\r\n"
              "/Resources <<\r\n>>\r\n/Type /Page\r\n>>\r\nendobj\r\n"
              "5 0 obj\r\n<<\r\n/Producer <FEFF007a007000640066>\r\n>>\r\nendobj\r\n"
              "8 0 obj\r\n8\r\nendobj\r\n"
              "xref\r\n0 9\r\n"
              "0000000000 65535 f\r\n0000000021 00000 n\r\n0000000076 00000 n\r\n"
              "0000000140 00000 n\r\n0000000213 00000 n\r\n0000000329 00000 n\r\n"
              "0000000000 00000 f\r\n0000000006 00000 f\r\n0000000388 00000 n\r\n"
              "trailer\r\n<<\r\n/ID [<00ff> <00ff>]\r\n/Info 5 0 R\r\n/Root 1 0 R\r\n/Size 9\r\n>>\r\n"
              "startxref\r\n408\r\n%%EOF");
}

TEST(Writer, PositionCountsStagedAndLargeWritesAndAMissingFolderIsReported)
{
    BufferWriter out;
    out.writeInt(-42);
    const std::string large(300 * 1024, 'x');
    out.write(large);
    out.put('!');
    EXPECT_EQ(out.position(), static_cast<std::int64_t>(large.size() + 4));
    EXPECT_EQ(out.data(), "-42" + large + "!");
    EXPECT_THROW(FileWriter(ZString::fromUtf8(zpdfTest::temporaryPath("_missing") + "/out.pdf")), PdfException);
}

// A document with every kind of object the writer knows; returns the number of its array.
// Its names are the predefined ones, as the module's are: names compare by identity.
std::uint32_t fill(Document& document)
{
    Ptr<Dict> font = make<Dict>(), fonts = make<Dict>(), resources = make<Dict>();
    font->set(names::Type(), names::Font());
    fonts->set(names::F(), document.add(font));
    resources->set(names::Font(), fonts);
    Ptr<Stream> contents = make<Stream>("BT /F 12 Tf 72 712 Td (Hello) Tj ET");
    contents->compress();
    document.addPage(595.5, 842, resources, contents);
    document.addPage(612, 792, nullptr, make<Stream>(std::string("\0\xFF(raw)\r\nbytes", 14)));

    const Ptr<Reference> values = document.add(arrayOf(
        {make<Number>(-3), make<Number>(0.125), make<Number>(1e-4), make<Bool>(true), make<Null>(),
         make<String>("literal (balanced) text", StringMode::literal), make<String>("0a1B", StringMode::hex),
         make<String>(ZString(u"Wide \u00e9")), make<String>(ZString()), make<Array>(), make<Dict>()}));
    document.setInfo(names::Title(), make<String>(ZString(u"Gr\u00fc\u00dfe \U0001F600")));
    return values->number();
}

TEST(RoundTrip, WrittenDocumentsReadBackEqualRewriteByteForByteAndCanBeChanged)
{
    Document original;
    const std::uint32_t array = fill(original);
    std::string info;
    const std::string bytes = writeChecked(original, &info);
#ifndef _WIN32
    // Another reader sees the pages and decodes the UTF-16 text, the surrogate pair included.
    EXPECT_NE(info.find("Pages:           2"), std::string::npos) << info;
    EXPECT_NE(info.find("Title:           Gr\xC3\xBC\xC3\x9F" "e \xF0\x9F\x98\x80"), std::string::npos) << info;
#endif
    PdfFile file(bytes);
    file.loadAllObjects();
    EXPECT_FALSE(file.wasRepaired());
    ASSERT_EQ(file.objects().count(), original.objects().count());
    for (const Ptr<Indirect>& object : original.objects().slots()) {
        Indirect* read = object ? file.object(object->number()) : nullptr;
        EXPECT_TRUE(!object || (read && read->equals(object.get(), true))) << (object ? object->number() : 0u);
    }

    PdfFile once(bytes); // not loaded beforehand: the writer loads what it needs
    BufferWriter out;
    out.writeDocument(once);
    EXPECT_EQ(out.take(), bytes) << "the writer's own output comes back byte for byte";

    PdfFile changing(bytes);
    changing.addPage(100, 100, nullptr, nullptr);
    EXPECT_TRUE(changing.remove(array)) << "an object not loaded yet can be removed";
    PdfFile changed(writeChecked(changing));
    EXPECT_EQ(changed.object(array), nullptr) << "and does not come back from the file";
    EXPECT_EQ(changed.pages()->get(names::Count())->asNumber()->value(), 3);
}

} // namespace

// Documents written by the module's writer read back equal, and reading then writing is stable.
#include "WrittenDocument.h"

#include "zpdf/Array.h"
#include "zpdf/Bool.h"
#include "zpdf/BufferWriter.h"
#include "zpdf/Names.h"
#include "zpdf/Null.h"
#include "zpdf/Number.h"
#include "zpdf/PdfFile.h"
#include "zpdf/String.h"

#include <gtest/gtest.h>

using namespace zpdf;

namespace {

std::string written(Document& document)
{
    BufferWriter out;
    out.writeDocument(document);
    return out.data();
}

// A document with every kind of object the writer knows; returns the number of its array.
// Its names are the predefined ones, as the module's are: names compare by identity.
std::uint32_t fill(Document& document)
{
    Ptr<Dict> font = make<Dict>();
    font->set(names::Type(), names::Font());
    font->set(names::Subtype(), names::Type0());
    Ptr<Dict> fonts = make<Dict>();
    fonts->set(names::F(), document.add(font));
    Ptr<Dict> resources = make<Dict>();
    resources->set(names::Font(), fonts);
    Ptr<Stream> contents = make<Stream>("BT /F 12 Tf 72 712 Td (Hello) Tj ET");
    contents->compress();
    document.addPage(595.5, 842, resources, contents);
    document.addPage(612, 792, nullptr, make<Stream>(std::string("\0\xFF(raw)\r\nbytes", 14)));

    Ptr<Array> values = make<Array>();
    for (const Ptr<Object>& value :
         {Ptr<Object>(make<Number>(-3)), Ptr<Object>(make<Number>(0.125)), Ptr<Object>(make<Number>(1e-4)),
          Ptr<Object>(make<Bool>(true)), Ptr<Object>(make<Null>()),
          Ptr<Object>(make<String>("literal (balanced) text", StringMode::literal)),
          Ptr<Object>(make<String>("0a1B", StringMode::hex)), Ptr<Object>(make<String>(ZString(u"Wide \u00e9"))),
          Ptr<Object>(make<String>(ZString())), Ptr<Object>(make<Array>()), Ptr<Object>(make<Dict>())})
        values->append(value);
    const std::uint32_t arrayNumber = document.add(values)->number();
    document.setInfo(names::Title(), make<String>(ZString(u"Round trip")));
    document.setInfo(names::Producer(), make<String>("zpdf", StringMode::literal));
    return arrayNumber;
}

TEST(RoundTrip, WrittenDocumentsReadBackEqualAndRewriteByteForByte)
{
    Document original;
    fill(original);
    const std::string bytes = zpdfTest::writeChecked(original);
    PdfFile file(bytes);
    file.loadAllObjects();
    EXPECT_FALSE(file.wasRepaired());
    ASSERT_EQ(file.objects().count(), original.objects().count());
    for (const Ptr<Indirect>& object : original.objects().slots()) {
        if (!object)
            continue;
        Indirect* read = file.object(object->number());
        ASSERT_NE(read, nullptr) << object->number();
        EXPECT_TRUE(read->equals(object.get(), true)) << "object " << object->number();
    }
    for (const Ptr<Name>* key : {&names::Root(), &names::Info()})
        EXPECT_TRUE(file.trailer().get(*key)->equals(original.trailer().get(*key)));

    PdfFile once(bytes); // not loaded beforehand: the writer loads what it needs
    const std::string second = written(once);
    EXPECT_EQ(second, bytes) << "the writer's own output comes back byte for byte";
    PdfFile twice(second);
    EXPECT_EQ(written(twice), second);
}

TEST(RoundTrip, ReadDocumentsCanBeChangedAndWritten)
{
    Document original;
    const std::uint32_t array = fill(original);
    PdfFile file(written(original));
    file.addPage(100, 100, nullptr, nullptr);
    EXPECT_TRUE(file.remove(array)) << "an object not loaded yet can be removed";
    EXPECT_EQ(file.object(array), nullptr) << "and does not come back from the file";
    PdfFile changed(zpdfTest::writeChecked(file));
    changed.loadAllObjects();
    EXPECT_EQ(changed.object(array), nullptr);
    EXPECT_EQ(changed.pages()->get(names::Count())->asNumber()->value(), 3);
}

} // namespace

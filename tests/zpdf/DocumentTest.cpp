#include "WrittenDocument.h"

#include "zpdf/Array.h"
#include "zpdf/Names.h"
#include "zpdf/Number.h"
#include "zpdf/String.h"

#include <gtest/gtest.h>

using namespace zpdf;

namespace {

TEST(Document, NumbersOfAddedAndRemovedObjects)
{
    Document document;
    EXPECT_EQ(document.version(), "1.4");
    EXPECT_TRUE(document.objects().isEmpty());
    document.put(3, 0, make<Number>(3));
    document.put(7, 0, make<Number>(7));
    EXPECT_EQ(document.add(make<Number>(8))->number(), 8u);
    EXPECT_TRUE(document.remove(8));
    EXPECT_TRUE(document.remove(7));
    EXPECT_FALSE(document.remove(7));
    EXPECT_EQ(document.highestNumber(), 3u);
    EXPECT_EQ(document.add(make<Number>(4))->number(), 4u);
}

TEST(Document, PageTreeAndWideInformationEntries)
{
    Document document;
    Ptr<Dict> resources = make<Dict>();
    const Ptr<Reference> first = document.addPage(842, 421, resources, make<Stream>("q Q"));
    const Ptr<Reference> second = document.addPage(595.5, 842, nullptr, nullptr);
    document.setInfo(names::Creator(), make<String>(ZString(u"Pryxa Creator")));
    document.setInfo(names::Title(), make<String>(ZString(u"Gr\u00fc\u00dfe \U0001F600")));

    Dict* pages = document.pages();
    EXPECT_EQ(pages->get(names::Count())->asNumber()->value(), 2);
    Array* kids = pages->get(names::Kids())->asArray();
    ASSERT_EQ(kids->size(), 2);
    EXPECT_TRUE(kids->at(0)->equals(first.get()));
    EXPECT_TRUE(kids->at(1)->equals(second.get()));
    EXPECT_EQ(document.trailer().get(names::Root())->asDict(), document.catalog());
    EXPECT_EQ(document.catalog()->get(names::Pages())->asDict(), pages);
    EXPECT_EQ(document.trailer().get(names::Info())->asDict(), document.info());
    Dict* page = first->asDict();
    EXPECT_EQ(page->get(names::Type()), names::Page().get());
    EXPECT_EQ(page->get(names::Parent())->asDict(), pages);
    EXPECT_EQ(page->get(names::Resources())->asDict(), resources.get());
    EXPECT_EQ(page->get(names::Contents())->asStream()->data()->bytes(), "q Q");
    EXPECT_EQ(second->asDict()->get(names::Contents()), nullptr);

    const std::string pdf = zpdfTest::writeChecked(document);
    EXPECT_NE(pdf.find("/MediaBox [0 0 842 421]"), std::string::npos);
    EXPECT_NE(pdf.find("/MediaBox [0 0 595.5 842]"), std::string::npos);
    EXPECT_NE(pdf.find("/Creator <FEFF00500072007900780061002000430072006500610074006f0072>"), std::string::npos);
#ifndef _WIN32
    // pdfinfo decodes the UTF-16 text, the surrogate pair included.
    const std::string info = zpdfTest::pdfinfo(pdf);
    EXPECT_NE(info.find("Pages:           2"), std::string::npos) << info;
    EXPECT_NE(info.find("Creator:         Pryxa Creator"), std::string::npos) << info;
    EXPECT_NE(info.find("Title:           Gr\xC3\xBC\xC3\x9F" "e \xF0\x9F\x98\x80"), std::string::npos) << info;
#endif
}

} // namespace

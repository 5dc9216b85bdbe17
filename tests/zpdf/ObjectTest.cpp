#include "WrittenDocument.h"

#include "zpdf/Array.h"
#include "zpdf/Bool.h"
#include "zpdf/BufferWriter.h"
#include "zpdf/Marker.h"
#include "zpdf/Names.h"
#include "zpdf/Null.h"
#include "zpdf/Number.h"
#include "zpdf/String.h"

#include <gtest/gtest.h>

#include <clocale>
#include <functional>

using namespace zpdf;
using zpdfTest::errorOf;

namespace {

std::string written(const Object& object)
{
    BufferWriter out;
    object.write(out);
    return out.take();
}

Ptr<Array> arrayOf(std::initializer_list<Ptr<Object>> elements)
{
    Ptr<Array> array = make<Array>();
    for (const Ptr<Object>& element : elements)
        array->append(element);
    return array;
}

TEST(Object, Serialisation)
{
    const struct {
        Ptr<Object> object;
        const char* text;
    } cases[] = {
        {make<Number>(1), "1"}, {make<Number>(-17), "-17"}, {make<Number>(std::int64_t{3000000000}), "3000000000"},
        {make<Number>(1.5), "1.5"}, {make<Number>(2.0), "2.0"}, {make<Number>(-0.25), "-0.25"},
        {make<Number>(0.1), "0.1"}, {make<Number>(612.123456789), "612.123457"}, {make<Number>(0.0000001), "0.0"},
        {make<Number>(0.000001), "0.000001"}, {make<Number>(-0.0), "-0.0"}, {make<Number>(1e15), "1000000000000000.0"},
        {make<Number>(2.5, "%.3f"), "2.500"}, {make<Number>(7.0, "%g"), "7"},
        {make<String>(ZString()), "()"}, {make<String>(ZString(u"\u00e9\u20ac")), "<FEFF00e920ac>"},
        // Outside the Basic Multilingual Plane: a surrogate pair, two units.
        {make<String>(ZString(u"x\U0001F600")), "<FEFF0078d83dde00>"}, {make<String>(ZString(u"\U0010FFFF")), "<FEFFdbffdfff>"},
        {make<String>("a(b\\", StringMode::literal), "(a(b\\)"}, {make<String>("4142", StringMode::hex), "<4142>"},
        {make<String>("(kept)", StringMode::raw), "(kept)"},
        {arrayOf({make<Number>(1), names::Type(), nullptr, make<Null>(), arrayOf({make<Bool>(true), make<Bool>(false)}),
                  make<Reference>(12, 0)}),
         "[1 /Type null null [true false] 12 0 R]"},
        {make<Array>(), "[]"}, {make<Dict>(), "<<\r\n>>"},
        {make<Indirect>(7, 0, nullptr), "7 0 obj\r\nnull\r\nendobj"}, {make<Indirect>(3, 2, make<Number>(5)), "3 2 obj\r\n5\r\nendobj"},
        {make<Reference>(40000, 65535), "40000 65535 R"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(written(*c.object), c.text);
    EXPECT_THROW(written(*Marker::get(Marker::dictStart)), UnsupportedException);
}

// The output must not depend on the process locale.
TEST(Object, NumbersIgnoreACommaLocale)
{
    const std::string previous = std::setlocale(LC_NUMERIC, nullptr);
    const char* comma = nullptr;
    for (const char* name : {"de_DE.UTF-8", "de_DE", "German_Germany.1252", "German", "de-DE"})
        if ((comma = std::setlocale(LC_NUMERIC, name)) != nullptr)
            break;
    if (!comma)
        GTEST_SKIP() << "no locale with a decimal comma is installed";
    const std::string texts = written(*make<Number>(1.5)) + " " + written(*make<Number>(0.75, "%.2f"));
    std::setlocale(LC_NUMERIC, previous.c_str());
    EXPECT_EQ(texts, "1.5 0.75");
}

TEST(Object, DictKeyOrderAndArrayIndexChecks)
{
    Ptr<Dict> dict = make<Dict>();
    // Bytes compare as signed chars: 0xC3 is negative and sorts first; upper case before
    // lower, a name before a longer one it begins.
    for (const char* key : {"a", "Type", "\xC3x", "B", "Ab", "A", "TypeX"})
        dict->set(make<Name>(key), make<Number>(1));
    dict->set(make<Name>("A"), make<Bool>(true));
    dict->set(make<Name>("Ab"), nullptr);
    EXPECT_TRUE(dict->remove("B"));
    EXPECT_FALSE(dict->remove("B"));
    EXPECT_EQ(written(*dict), "<<\r\n/\xC3x 1\r\n/A true\r\n/Type 1\r\n/TypeX 1\r\n/a 1\r\n>>");

    Ptr<Array> array = arrayOf({make<Null>(), names::Type()});
    for (const auto& action : {std::function<void()>([] { make<Array>()->at(0); }), std::function<void()>([&] { array->at(-1); }),
                               std::function<void()>([] { make<Array>()->set(0, make<Null>()); })})
        EXPECT_EQ(errorOf(action), "Index not in array range");
    array->remove(0);
    EXPECT_EQ(written(*array), "[/Type]");
}

TEST(Object, EqualityRules)
{
    EXPECT_TRUE(make<Number>(3)->equals(make<Number>(3.0).get()));
    EXPECT_FALSE(make<Number>(3)->equals(make<Number>(3.5).get()));
    EXPECT_FALSE(make<Number>(3)->equals(make<String>("3", StringMode::literal).get()));
    EXPECT_FALSE(make<String>("3", StringMode::literal)->equals(make<Number>(3).get()));
    EXPECT_FALSE(make<Number>(3)->equals(nullptr));
    EXPECT_FALSE(make<Reference>(4, 0)->equals(make<Reference>(4, 1).get()));
    // Names compare by identity: only the shared objects are equal.
    EXPECT_FALSE(make<Name>("Type")->equals(names::Type().get()));

    // Deep compares contents; shallow compares the element objects.
    Ptr<Array> a = arrayOf({make<Number>(1)});
    Ptr<Array> b = arrayOf({make<Number>(1.0)});
    EXPECT_TRUE(a->equals(b.get(), true));
    EXPECT_FALSE(a->equals(b.get(), false));
    b->set(0, Ptr<Object>(a->at(0)));
    EXPECT_TRUE(a->equals(b.get(), false));
    b->append(make<Null>());
    EXPECT_FALSE(a->equals(b.get(), true));
    Ptr<Dict> x = make<Dict>();
    Ptr<Dict> y = make<Dict>();
    x->set(names::Width(), make<Number>(2));
    y->set(names::Width(), make<Number>(2));
    EXPECT_TRUE(x->equals(y.get()));
    y->set(names::Height(), make<Number>(2));
    EXPECT_FALSE(x->equals(y.get()));
}

TEST(Object, CloneIsDeepButSharesPredefinedNames)
{
    Ptr<Stream> stream = make<Stream>("data");
    stream->dict()->set(names::Filter(), names::DCTDecode());
    Ptr<Dict> original = make<Dict>();
    original->set(names::Kids(), arrayOf({make<Number>(1)}));
    original->set(names::Contents(), stream);

    const Ptr<Object> copy = original->clone();
    ASSERT_TRUE(copy->equals(original.get(), true));
    copy->asDict()->get(names::Kids())->asArray()->append(make<Number>(2));
    copy->asDict()->get(names::Contents())->asStream()->append("more");
    EXPECT_EQ(original->get(names::Kids())->asArray()->size(), 1);
    EXPECT_EQ(stream->data()->bytes(), "data");
    EXPECT_EQ(copy->asDict()->get(names::Contents())->asDict()->get(names::Filter()), names::DCTDecode().get());
    EXPECT_EQ(names::find("Type"), names::Type().get());
    EXPECT_EQ(names::find("NotPredefined"), nullptr);
}

TEST(Object, AccessThroughReferences)
{
    Ptr<Reference> outliving;
    Ptr<Number> number = make<Number>(8);
    {
        Document document;
        Ptr<Stream> stream = make<Stream>("xyz");
        const Ptr<Reference> toStream = document.add(stream);
        outliving = document.add(number);
        EXPECT_EQ(toStream->asDict(), stream->dict());
        EXPECT_EQ(toStream->asStream(), stream.get());
        EXPECT_EQ(toStream->asNumber(), nullptr);
        EXPECT_EQ(outliving->asNumber(), number.get());
        EXPECT_EQ(make<Reference>(1, 0)->resolve(), nullptr) << "belongs to no document";

        // A different generation, a missing number and a loop resolve to nothing.
        const Ptr<Reference> toSecond = document.referenceTo(2);
        document.put(5, 1, make<Number>(1));
        EXPECT_NE(document.referenceTo(5)->resolve(), nullptr);
        document.object(2)->setValue(document.put(3, 0, toSecond));
        EXPECT_EQ(toSecond->resolve(), nullptr);
        EXPECT_EQ(document.put(9, 0, nullptr)->resolve(), nullptr);
        EXPECT_THROW(document.referenceTo(4), PdfException);
    }
    EXPECT_EQ(outliving->resolve(), nullptr) << "the document is gone";
    EXPECT_EQ(number->refCount(), 1) << "the document released its object";
}

} // namespace

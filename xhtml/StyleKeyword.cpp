#include "xhtml/StyleKeyword.h"

#include "xhtml/MarkupText.h"

#include <cstddef>

namespace xhtml {

namespace {

using K = StyleKeyword;

constexpr const char16_t* keywordTable[styleKeywordCount] = {
    u"left", u"top", u"right", u"bottom", u"none", u"hidden", u"dotted", u"dashed", u"solid",
    u"center", u"justify", u"middle", u"baseline", u"text-top", u"xx-small", u"x-small", u"small",
    u"medium", u"large", u"x-large", u"xx-large", u"smaller", u"larger", u"normal", u"bold",
    u"bolder", u"lighter", u"100", u"200", u"300", u"400", u"500", u"600", u"700", u"800", u"900",
    u"auto", u"pointer", u"static", u"fixed", u"relative", u"absolute", u"visible", u"block",
    u"inline-block", u"inline", u"underline", u"overline", u"line-through", u"scroll",
    u"no-repeat", u"repeat", u"repeat-x", u"repeat-y",
};

constexpr K alignment[] = {K::left, K::right, K::center, K::justify};
constexpr K verticalAlignment[] = {K::top, K::middle, K::bottom, K::baseline, K::textTop};
constexpr K fontSize[] = {K::xxSmall, K::xSmall,  K::small,   K::medium, K::large,
                          K::xLarge,  K::xxLarge, K::smaller, K::larger};
constexpr K fontWeight[] = {K::normal,    K::bold,      K::bolder,    K::lighter,   K::weight100,
                            K::weight200, K::weight300, K::weight400, K::weight500, K::weight600,
                            K::weight700, K::weight800, K::weight900};
constexpr K borderStyle[] = {K::none, K::hidden, K::dotted, K::dashed, K::solid};
constexpr K cursor[] = {K::autoValue, K::pointer};
constexpr K position[] = {K::staticValue, K::fixed, K::relative, K::absolute};
constexpr K visibility[] = {K::visible, K::hidden};
constexpr K display[] = {K::none, K::block, K::inlineBlock, K::inlineValue};
constexpr K overflow[] = {K::visible, K::hidden, K::scroll, K::autoValue};
constexpr K backgroundRepeat[] = {K::noRepeat, K::repeat, K::repeatX, K::repeatY};
constexpr K textDecoration[] = {K::underline, K::lineThrough, K::overline, K::none};

struct Members {
    const K* first;
    const K* last;
    const K* begin() const { return first; }
    const K* end() const { return last; }
};

template <size_t N>
Members of(const K (&keywords)[N])
{
    return Members{keywords, keywords + N};
}

Members members(KeywordSet set)
{
    switch (set) {
    case KeywordSet::alignment:
        return of(alignment);
    case KeywordSet::verticalAlignment:
        return of(verticalAlignment);
    case KeywordSet::fontSize:
        return of(fontSize);
    case KeywordSet::fontWeight:
        return of(fontWeight);
    case KeywordSet::borderStyle:
        return of(borderStyle);
    case KeywordSet::cursor:
        return of(cursor);
    case KeywordSet::position:
        return of(position);
    case KeywordSet::visibility:
        return of(visibility);
    case KeywordSet::display:
        return of(display);
    case KeywordSet::overflow:
        return of(overflow);
    case KeywordSet::backgroundRepeat:
        return of(backgroundRepeat);
    case KeywordSet::textDecoration:
        return of(textDecoration);
    }
    return Members{nullptr, nullptr};
}

} // namespace

const char16_t* keywordName(StyleKeyword keyword)
{
    return keywordTable[static_cast<int>(keyword)];
}

std::optional<StyleKeyword> findKeyword(const ZString& name, KeywordSet set)
{
    for (K keyword : members(set)) {
        if (equalsNoCase(name, keywordName(keyword)))
            return keyword;
    }
    return std::nullopt;
}

} // namespace xhtml

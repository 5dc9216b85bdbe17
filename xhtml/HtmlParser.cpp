#include "xhtml/HtmlParser.h"

#include "xhtml/MarkupText.h"

#include <vector>

namespace xhtml {

namespace {

bool startsWith(const ZChar* p, const char16_t* literal)
{
    for (; *literal; ++p, ++literal) {
        if (static_cast<char16_t>(*p) != *literal)
            return false;
    }
    return true;
}

// ">" or "/>": where a start tag ends.
bool isTagEnd(const ZChar* p)
{
    return p[0] == '>' || (p[0] == '/' && p[1] == '>');
}

// Where an attribute value stops even inside quotes: at the tag's end or at a new tag.
bool isValueStop(const ZChar* p)
{
    return isTagEnd(p) || (p[0] == '<' && isLetter(p[1]));
}

bool isRawContent(const HtmlTagNode& node)
{
    const int length = node.name().length();
    return (length == 8 && equals(node.name(), u"textarea")) || (length == 5 && equals(node.name(), u"style"));
}

// Compares the units at p with a lower-case name, ignoring case; stops at the terminator.
bool hasPrefixNoCase(const ZChar* p, const ZString& lowerName)
{
    const ZChar* name = lowerName.c_str();
    for (int i = 0; i < lowerName.length(); ++i) {
        if (p[i] == 0 || ZString::toLower(p[i]) != name[i])
            return false;
    }
    return true;
}

// raw-content := { any } up to "</" name (any case) or the end
// Returns the position of that end tag, or the end.
const ZChar* findRawContentEnd(const ZChar* p, const ZString& name)
{
    for (; *p; ++p) {
        if (p[0] == '<' && p[1] == '/' && hasPrefixNoCase(p + 2, name))
            return p;
    }
    return p;
}

// comment := "<!--" { any } "-->"
// A comment that is never closed takes the rest of the text.
const ZChar* skipComment(const ZChar* p)
{
    for (p += 4; *p; ++p) {
        if (p[0] == '-' && p[1] == '-' && p[2] == '>')
            return p + 3;
    }
    return p;
}

ZChar lowerUnit(ZChar unit)
{
    return unit < 0x80 ? asciiLower(unit) : ZString::toLower(unit);
}

// Names are nearly always written in lower case already; those are copied as they stand.
ZString lowerCopy(const ZChar* begin, const ZChar* end)
{
    const ZChar* upper = begin;
    while (upper != end && lowerUnit(*upper) == *upper)
        ++upper;
    if (upper == end)
        return ZString(begin, static_cast<int>(end - begin));
    ZString::Storage units(begin, end);
    for (ZChar& unit : units)
        unit = lowerUnit(unit);
    return ZString(std::move(units));
}

// tag-name := letter { any but white space, ">" and "/>" }
ZString readTagName(const ZChar*& p)
{
    const ZChar* start = p;
    while (*p && !isSpace(*p) && !isTagEnd(p))
        ++p;
    return lowerCopy(start, p);
}

// value := quote { any but that quote } | { any but white space }
// Either form also stops at ">", "/>" and "<" followed by a letter; a closing quote is left
// for the attribute loop to skip.
const ZChar* readValueEnd(const ZChar* p)
{
    const ZChar quote = *p == '"' || *p == '\'' ? *p : 0;
    if (quote)
        ++p;
    while (*p && !isValueStop(p) && (quote ? *p != quote : !isSpace(*p)))
        ++p;
    return p;
}

// attribute := name [space* "=" space* value]; name := letter { any but "=", white space,
// ">" and "/>" }. Stray characters before a name are skipped.
void readAttributes(const ZChar*& p, HtmlTagNode& node)
{
    for (;;) {
        while (*p && !isLetter(*p) && !isTagEnd(p))
            ++p;
        if (!*p || isTagEnd(p))
            return;
        // The name begins with a letter and stops at white space, so it is already trimmed.
        const ZChar* nameStart = p;
        while (*p && *p != '=' && !isSpace(*p) && !isTagEnd(p))
            ++p;
        ZString name = lowerCopy(nameStart, p);
        while (isSpace(*p))
            ++p;
        ZString value;
        if (*p == '=') {
            ++p;
            while (isSpace(*p))
                ++p;
            const ZChar* valueStart = *p == '"' || *p == '\'' ? p + 1 : p;
            p = readValueEnd(p);
            // The text of a "value" keeps its spaces: a button label or option value may need them.
            value = equals(name, u"value") ? ZString(valueStart, static_cast<int>(p - valueStart))
                                           : trimmed(valueStart, p);
        }
        node.addAttribute(std::move(name), std::move(value));
    }
}

// Whether the units [begin, end), lower-cased, are `lowerName`.
bool isNameNoCase(const ZChar* begin, const ZChar* end, const ZString& lowerName)
{
    return end - begin == lowerName.length() && hasPrefixNoCase(begin, lowerName);
}

// text := any { any but "<" followed by "/", "!" or a letter }
// The first unit is always taken, so a "<" that begins no tag or comment is text.
const ZChar* findTextEnd(const ZChar* p)
{
    for (++p; *p; ++p) {
        if (*p == '<' && (p[1] == '/' || p[1] == '!' || isLetter(p[1])))
            return p;
    }
    return p;
}

class ParseRun {
public:
    explicit ParseRun(const ZChar* text) : p_(text) {}

    const ZChar* run(HtmlTagNode* parent)
    {
        // The nodes of one parse are carved from shared chunks: far cheaper than a heap
        // block each, and a parse makes one or two blocks per node.
        NodeMemory::Scope nodeMemory;
        open_.push_back(parent);
        while (!open_.empty()) {
            HtmlTagNode& current = *open_.back();
            if (isRawContent(current)) {
                readRawContent(current);
                open_.pop_back();
            } else if (!*p_) {
                break; // Every element still open ends with the text.
            } else {
                step(current);
            }
        }
        return p_;
    }

private:
    void step(HtmlTagNode& current)
    {
        if (startsWith(p_, u"<!--"))
            p_ = skipComment(p_);
        else if (p_[0] == '<' && isLetter(p_[1]))
            readStartTag(current);
        else if (p_[0] == '<' && p_[1] == '/')
            readEndTagOf(current);
        else
            readText(current);
    }

    // start-tag := "<" tag-name attributes (">" content | "/>")
    void readStartTag(HtmlTagNode& current)
    {
        ++p_;
        // `new` rather than make_unique: the name is built in place, not moved twice more.
        std::unique_ptr<HtmlTagNode> node(new HtmlTagNode(readTagName(p_)));
        readAttributes(p_, *node);
        HtmlTagNode* element = static_cast<HtmlTagNode*>(current.appendChild(std::move(node)));
        if (*p_ == '>') {
            ++p_;
            open_.push_back(element); // its content comes next
        } else if (*p_) {
            // "/>": an empty element. No list of void elements: only "/>" makes one.
            while (*p_ && *p_ != '>')
                ++p_;
            if (*p_)
                ++p_;
        }
    }

    // An end tag closes the current element only; any other end tag is dropped, so it
    // never closes an outer element. An empty name ("</>", "</ p>") closes an element whose
    // name is empty: the root, after which the rest of the text is not read.
    //
    // end-tag := "</" { any but white space and ">" } { any } ">"
    void readEndTagOf(HtmlTagNode& current)
    {
        p_ += 2;
        const ZChar* nameStart = p_;
        while (*p_ && !isSpace(*p_) && *p_ != '>')
            ++p_;
        const bool closes = isNameNoCase(nameStart, p_, current.name());
        while (*p_ && *p_ != '>')
            ++p_;
        if (*p_)
            ++p_;
        if (closes)
            open_.pop_back();
    }

    void readText(HtmlTagNode& current)
    {
        appendText(current, findTextEnd(p_));
    }

    // The whole content up to the element's end tag is one text node; the end tag itself is
    // left for the enclosing element, where it is read like any other end tag.
    void readRawContent(HtmlTagNode& current)
    {
        if (!*p_)
            return;
        appendText(current, findRawContentEnd(p_, current.name()));
    }

    // The text from here to `end` becomes a child of `current`.
    void appendText(HtmlTagNode& current, const ZChar* end)
    {
        // `new` rather than make_unique: the text is built in place, not moved twice more.
        current.appendChild(std::unique_ptr<HtmlNode>(new HtmlTextNode(ZString(p_, static_cast<int>(end - p_)))));
        p_ = end;
    }

    const ZChar* p_;
    std::vector<HtmlTagNode*> open_;
};

} // namespace

const ZChar* HtmlParser::parse(HtmlTagNode* parent, const ZChar* text)
{
    if (!parent || !text || !*text)
        return nullptr;
    return ParseRun(text).run(parent);
}

} // namespace xhtml

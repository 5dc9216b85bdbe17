#include "browser/Json.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <string>

namespace browser {

const JsonValue* JsonValue::member(const ZString& name) const
{
    if (type() != Type::object)
        return nullptr;
    const Object& members = object();
    for (auto it = members.rbegin(); it != members.rend(); ++it) {
        if (it->first == name)
            return &it->second;
    }
    return nullptr;
}

namespace {

// One pass over the text; each routine is headed by the grammar it reads.
class Reader {
public:
    Reader(const ZString& text, const JsonLimits& limits) : text_(text.units()), limits_(limits) {}

    JsonResult read()
    {
        JsonResult result;
        skipSpace();
        if (readValue(result.value, 0)) {
            skipSpace();
            if (pos_ == text_.size())
                result.ok = true;
            else
                fail(u"text after the value");
        }
        if (!result.ok) {
            result.value = JsonValue();
            result.error = ZString(error_) + ZString(u" at offset ") + ZString::fromUInt(pos_);
        }
        return result;
    }

private:
    bool fail(const char16_t* what)
    {
        if (!error_)
            error_ = what;
        return false;
    }
    bool atEnd() const { return pos_ >= text_.size(); }
    ZChar peek() const { return atEnd() ? ZChar(0) : text_[pos_]; }
    void skipSpace()
    {
        while (!atEnd() && (peek() == ' ' || peek() == '\t' || peek() == '\n' || peek() == '\r'))
            ++pos_;
    }
    bool take(ZChar unit)
    {
        if (peek() != unit || atEnd())
            return false;
        ++pos_;
        return true;
    }
    bool takeWord(const char* word)
    {
        for (size_t i = 0; word[i]; ++i) {
            if (pos_ + i >= text_.size() || text_[pos_ + i] != static_cast<ZChar>(word[i]))
                return fail(u"unknown word");
        }
        pos_ += std::char_traits<char>::length(word);
        return true;
    }

    // value = object / array / string / number / "true" / "false" / "null"
    bool readValue(JsonValue& out, int depth)
    {
        if (++values_ > limits_.values)
            return fail(u"too many values");
        switch (peek()) {
        case '{': return depth < limits_.depth ? readObject(out, depth + 1) : fail(u"nested too deeply");
        case '[': return depth < limits_.depth ? readArray(out, depth + 1) : fail(u"nested too deeply");
        case '"': {
            ZString text;
            if (!readString(text))
                return false;
            out = JsonValue(std::move(text));
            return true;
        }
        case 't': out = JsonValue(true); return takeWord("true");
        case 'f': out = JsonValue(false); return takeWord("false");
        case 'n': out = JsonValue(); return takeWord("null");
        default: return readNumber(out);
        }
    }

    // object = "{" [ string ":" value *( "," string ":" value ) ] "}"
    bool readObject(JsonValue& out, int depth)
    {
        JsonValue::Object members;
        ++pos_;
        skipSpace();
        if (!take('}')) {
            do {
                skipSpace();
                ZString name;
                if (peek() != '"')
                    return fail(u"a member name must be a string");
                if (!readString(name))
                    return false;
                skipSpace();
                if (!take(':'))
                    return fail(u"':' expected");
                skipSpace();
                JsonValue value;
                if (!readValue(value, depth))
                    return false;
                members.emplace_back(std::move(name), std::move(value));
                skipSpace();
            } while (take(','));
            if (!take('}'))
                return fail(u"',' or '}' expected");
        }
        out = JsonValue(std::move(members));
        return true;
    }

    // array = "[" [ value *( "," value ) ] "]"
    bool readArray(JsonValue& out, int depth)
    {
        JsonValue::Array items;
        ++pos_;
        skipSpace();
        if (!take(']')) {
            do {
                skipSpace();
                JsonValue value;
                if (!readValue(value, depth))
                    return false;
                items.push_back(std::move(value));
                skipSpace();
            } while (take(','));
            if (!take(']'))
                return fail(u"',' or ']' expected");
        }
        out = JsonValue(std::move(items));
        return true;
    }

    // string = '"' *( unescaped / "\" ( '"' / "\" / "/" / "b" / "f" / "n" / "r" / "t" / "u" 4HEXDIG ) ) '"'
    bool readString(ZString& out)
    {
        ++pos_;
        for (;;) {
            if (atEnd())
                return fail(u"unterminated string");
            const ZChar unit = text_[pos_++];
            if (unit == '"')
                return true;
            if (unit < 0x20)
                return fail(u"control character in a string");
            if (unit != '\\') {
                out += unit;
                continue;
            }
            if (atEnd())
                return fail(u"unterminated string");
            const ZChar escaped = text_[pos_++];
            switch (escaped) {
            case '"': case '\\': case '/': out += escaped; break;
            case 'b': out += ZChar('\b'); break;
            case 'f': out += ZChar('\f'); break;
            case 'n': out += ZChar('\n'); break;
            case 'r': out += ZChar('\r'); break;
            case 't': out += ZChar('\t'); break;
            case 'u': {
                ZChar named = 0;
                if (!readHex4(named))
                    return fail(u"bad \\u escape");
                out += named;
                break;
            }
            default: return fail(u"unknown escape");
            }
        }
    }

    bool readHex4(ZChar& out)
    {
        if (pos_ + 4 > text_.size())
            return false;
        unsigned value = 0;
        for (int i = 0; i < 4; ++i) {
            const ZChar c = text_[pos_++];
            const int digit = c >= '0' && c <= '9' ? c - '0'
                              : c >= 'a' && c <= 'f' ? c - 'a' + 10
                              : c >= 'A' && c <= 'F' ? c - 'A' + 10
                                                     : -1;
            if (digit < 0)
                return false;
            value = value * 16 + static_cast<unsigned>(digit);
        }
        out = static_cast<ZChar>(value);
        return true;
    }

    // number = [ "-" ] ( "0" / 1-9 *DIGIT ) [ "." 1*DIGIT ] [ ( "e" / "E" ) [ "-" / "+" ] 1*DIGIT ]
    bool readNumber(JsonValue& out)
    {
        const size_t start = pos_;
        take('-');
        if (!take('0') && !digits())
            return fail(u"unexpected character");
        if (take('.') && !digits())
            return fail(u"digits expected after '.'");
        if (take('e') || take('E')) {
            if (!take('+'))
                take('-');
            if (!digits())
                return fail(u"digits expected in the exponent");
        }
        // The grammar above admits only ASCII, and strtod reads it in the C locale, which
        // the module never changes; overflow gives an infinity, underflow zero.
        const std::string ascii(text_.begin() + static_cast<std::ptrdiff_t>(start),
                                text_.begin() + static_cast<std::ptrdiff_t>(pos_));
        out = JsonValue(std::strtod(ascii.c_str(), nullptr));
        return true;
    }

    // 1-9 *DIGIT after the optional sign; true if at least one digit was read
    bool digits()
    {
        const size_t start = pos_;
        while (peek() >= '0' && peek() <= '9' && !atEnd())
            ++pos_;
        return pos_ > start;
    }

    const ZString::Storage& text_;
    const JsonLimits limits_;
    size_t pos_ = 0;
    int values_ = 0;
    const char16_t* error_ = nullptr;
};

void writeNumber(double value, ZString& out)
{
    if (!std::isfinite(value)) {
        out += ZString(u"null");
        return;
    }
    if (value == 0)
        value = 0; // no "-0"
    char buffer[32];
    if (value == std::floor(value) && std::fabs(value) <= 9007199254740992.0)
        std::snprintf(buffer, sizeof buffer, "%.0f", value);
    else
        std::snprintf(buffer, sizeof buffer, "%.17g", value);
    out += ZString::fromUtf8(buffer);
}

void write(const JsonValue& value, ZString& out)
{
    switch (value.type()) {
    case JsonValue::Type::null: out += ZString(u"null"); break;
    case JsonValue::Type::boolean: out += ZString(value.boolean() ? u"true" : u"false"); break;
    case JsonValue::Type::number: writeNumber(value.number(), out); break;
    case JsonValue::Type::string: out += quoteJson(value.string()); break;
    case JsonValue::Type::array: {
        out += ZChar('[');
        for (size_t i = 0; i < value.array().size(); ++i) {
            if (i)
                out += ZChar(',');
            write(value.array()[i], out);
        }
        out += ZChar(']');
        break;
    }
    case JsonValue::Type::object: {
        out += ZChar('{');
        bool first = true;
        for (const auto& [name, member] : value.object()) {
            if (!first)
                out += ZChar(',');
            first = false;
            out += quoteJson(name);
            out += ZChar(':');
            write(member, out);
        }
        out += ZChar('}');
        break;
    }
    }
}

} // namespace

JsonResult parseJson(const ZString& text, const JsonLimits& limits)
{
    return Reader(text, limits).read();
}

ZString writeJson(const JsonValue& value)
{
    ZString out;
    write(value, out);
    return out;
}

ZString quoteJson(const ZString& text)
{
    static const char hex[] = "0123456789abcdef";
    ZString out(u"\"");
    for (const ZChar unit : text.units()) {
        switch (unit) {
        case '"': out += ZString(u"\\\""); break;
        case '\\': out += ZString(u"\\\\"); break;
        case '\n': out += ZString(u"\\n"); break;
        case '\r': out += ZString(u"\\r"); break;
        case '\t': out += ZString(u"\\t"); break;
        default:
            if (unit < 0x20) {
                out += ZString(u"\\u00");
                out += ZChar(hex[unit >> 4]);
                out += ZChar(hex[unit & 15]);
            } else {
                out += unit;
            }
        }
    }
    out += ZChar('"');
    return out;
}

} // namespace browser

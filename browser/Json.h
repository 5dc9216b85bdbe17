#pragma once
// JSON text for the web bridge: it reads the options that a page passes (as JSON text) and
// writes the answers that a page gets (application facts, response headers).
//
// The reader takes one JSON text (RFC 8259) of UTF-16 units, as it comes from a script
// string. It never throws and never recurses without bound: a text that is not JSON, nests
// deeper than the limit or holds more values than the limit yields an error with the
// offset where reading stopped. "\u" escapes are kept as the units they name, lone
// surrogates included, since a script string may hold them.

#include "base/ZString.h"

#include <memory>
#include <utility>
#include <variant>
#include <vector>

namespace browser {

class JsonValue {
public:
    enum class Type { null, boolean, number, string, array, object };
    using Array = std::vector<JsonValue>;
    using Object = std::vector<std::pair<ZString, JsonValue>>; // in the text's order

    JsonValue() = default;
    explicit JsonValue(bool value) : data_(value) {}
    explicit JsonValue(double value) : data_(value) {}
    explicit JsonValue(ZString value) : data_(std::move(value)) {}
    explicit JsonValue(Array value) : data_(std::move(value)) {}
    explicit JsonValue(Object value) : data_(std::move(value)) {}

    Type type() const { return static_cast<Type>(data_.index()); }
    bool isString() const { return type() == Type::string; }

    // Each accessor requires the matching type.
    bool boolean() const { return std::get<bool>(data_); }
    double number() const { return std::get<double>(data_); }
    const ZString& string() const { return std::get<ZString>(data_); }
    const Array& array() const { return std::get<Array>(data_); }
    const Object& object() const { return std::get<Object>(data_); }

    // The last member of that name (as most readers take duplicates), or null if this is
    // no object or has no such member.
    const JsonValue* member(const ZString& name) const;

    friend bool operator==(const JsonValue& a, const JsonValue& b) { return a.data_ == b.data_; }

private:
    std::variant<std::monostate, bool, double, ZString, Array, Object> data_;
};

struct JsonLimits {
    int depth = 32;        // arrays and objects inside each other
    int values = 10000;    // values of every kind in the whole text
};

struct JsonResult {
    bool ok = false;
    JsonValue value;
    ZString error; // what was wrong and where, when not ok
};

JsonResult parseJson(const ZString& text, const JsonLimits& limits = {});

// The JSON text of a value. Numbers that are whole and within 2^53 are written without a
// fraction; others with up to 17 significant digits; NaN and infinities (which JSON cannot
// hold) as null. Strings escape quotes, backslashes and control units, nothing else.
ZString writeJson(const JsonValue& value);
// `text` as a JSON string literal, quotes included.
ZString quoteJson(const ZString& text);

} // namespace browser

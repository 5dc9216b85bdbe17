#include "browser/FetchOptions.h"

#include "browser/Json.h"

#include <cmath>

namespace browser {

namespace {

bool wholeNumberIn(const JsonValue& value, double least, double most)
{
    return value.type() == JsonValue::Type::number && value.number() >= least && value.number() <= most
           && std::floor(value.number()) == value.number();
}

// Reads one option into the request; false with the reason when it is not acceptable.
bool applyOption(const ZString& name, const JsonValue& value, HttpRequest& request, ZString& error)
{
    if (name == ZString(u"method") && value.isString()) {
        request.method = value.string();
    } else if (name == ZString(u"body") && value.isString()) {
        request.body = value.string().toUtf8();
    } else if (name == ZString(u"headers") && value.type() == JsonValue::Type::object) {
        for (const auto& [header, text] : value.object()) {
            if (!text.isString()) {
                error = ZString(u"the header \"") + header + ZString(u"\" must be a text");
                return false;
            }
            request.headers.push_back({header, text.string()});
        }
    } else if (name == ZString(u"timeout") && wholeNumberIn(value, 1, kMaxFetchTimeoutMs)) {
        const auto ms = static_cast<unsigned>(value.number());
        request.connectTimeoutMs = request.sendTimeoutMs = request.receiveTimeoutMs = request.deadlineMs = ms;
    } else if (name == ZString(u"maxBytes") && wholeNumberIn(value, 1, kMaxFetchBytes)) {
        request.maxBodyBytes = static_cast<std::size_t>(value.number());
    } else {
        const bool known = name == ZString(u"method") || name == ZString(u"body") || name == ZString(u"headers")
                           || name == ZString(u"timeout") || name == ZString(u"maxBytes");
        error = known ? ZString(u"the option \"") + name + ZString(u"\" has a value of the wrong kind or size")
                      : ZString(u"unknown option \"") + name + ZString(u"\"");
        return false;
    }
    return true;
}

} // namespace

bool applyFetchOptions(const ZString& json, HttpRequest& request, ZString& error)
{
    const JsonResult options = parseJson(json);
    if (!options.ok) {
        error = ZString(u"the options are no JSON: ") + options.error;
        return false;
    }
    if (options.value.type() != JsonValue::Type::object) {
        error = ZString(u"the options must be a JSON object");
        return false;
    }
    for (const auto& [name, value] : options.value.object()) {
        if (!applyOption(name, value, request, error))
            return false;
    }
    return true;
}

ZString headersJson(const HttpHeaders& headers)
{
    JsonValue::Object members;
    for (const HttpHeader& header : headers) {
        auto same = members.begin();
        while (same != members.end() && !same->first.equalsNoCase(header.name))
            ++same;
        if (same == members.end())
            members.emplace_back(header.name, JsonValue(header.value));
        else
            same->second = JsonValue(same->second.string() + ZString(u", ") + header.value);
    }
    return writeJson(JsonValue(std::move(members)));
}

} // namespace browser

#pragma once
// The arguments of one script call into the web bridge, read with the checks that keep a
// page's mistakes (or its malice) from reaching the program: wrong types, missing or extra
// arguments and over-long texts raise a ScriptError, which the bridge turns into a script
// exception. Nothing here crashes on any VARIANT a script engine can pass.

#include "base/ZString.h"

#include <oaidl.h>
#include <wrl/client.h>

#include <cstdint>
#include <stdexcept>
#include <string>

namespace browser {

// A refusal that the page sees as an exception with this text.
class ScriptError : public std::runtime_error {
public:
    explicit ScriptError(const ZString& text) : std::runtime_error(text.toUtf8()), text_(text) {}
    const ZString& text() const { return text_; }

private:
    ZString text_;
};

class ScriptArguments {
public:
    // `method` names the call in error texts; `params` as IDispatch::Invoke received them
    // (last argument first).
    ScriptArguments(const ZString& method, const DISPPARAMS& params);

    int count() const { return count_; }
    // Refuses fewer than `least` or more than `most` arguments.
    void expectCount(int least, int most) const;
    // True if argument `index` was passed and is not `undefined`.
    bool has(int index) const;

    // A text of at most `maxLength` units.
    ZString text(int index, int maxLength) const;
    // A whole number from 0 to 0xFFFFFFFF.
    uint32_t dword(int index) const;
    // A script function (any object that can be called).
    Microsoft::WRL::ComPtr<IDispatch> function(int index) const;

    // Raises "<method>: argument <n> must be <expected>".
    [[noreturn]] void refuse(int index, const ZString& expected) const;

private:
    const VARIANT& at(int index) const;

    ZString method_;
    const VARIANT* args_;
    int count_;
};

} // namespace browser

#include "browser/ScriptArguments.h"

#include <oleauto.h>

#include <cmath>

namespace browser {

namespace {

// A script engine may pass a value by reference; the value is what counts.
const VARIANT& dereferenced(const VARIANT& value)
{
    if (value.vt == (VT_BYREF | VT_VARIANT) && value.pvarVal)
        return *value.pvarVal;
    return value;
}

} // namespace

ScriptArguments::ScriptArguments(const ZString& method, const DISPPARAMS& params)
    : method_(method), args_(params.rgvarg), count_(params.rgvarg ? static_cast<int>(params.cArgs) : 0)
{
}

const VARIANT& ScriptArguments::at(int index) const
{
    // Invoke lists the arguments from the last to the first.
    return dereferenced(args_[count_ - 1 - index]);
}

void ScriptArguments::refuse(int index, const ZString& expected) const
{
    throw ScriptError(method_ + ZString(u": argument ") + ZString::fromInt(index + 1) + ZString(u" must be ")
                      + expected);
}

void ScriptArguments::expectCount(int least, int most) const
{
    if (count_ >= least && count_ <= most)
        return;
    const ZString wanted = least == most ? ZString::fromInt(least)
                                         : ZString::fromInt(least) + ZString(u" to ") + ZString::fromInt(most);
    const ZString noun = least == 1 && most == 1 ? ZString(u" argument") : ZString(u" arguments");
    throw ScriptError(method_ + ZString(u": ") + wanted + noun + ZString(u" expected, ")
                      + ZString::fromInt(count_) + ZString(u" given"));
}

bool ScriptArguments::has(int index) const
{
    return index < count_ && at(index).vt != VT_EMPTY;
}

ZString ScriptArguments::text(int index, int maxLength) const
{
    if (!has(index) || at(index).vt != VT_BSTR)
        refuse(index, u"a text");
    const BSTR value = at(index).bstrVal;
    const UINT length = value ? SysStringLen(value) : 0;
    if (length > static_cast<UINT>(maxLength))
        refuse(index, ZString(u"a text of at most ") + ZString::fromInt(maxLength) + ZString(u" characters"));
    return ZString(value ? value : L"", static_cast<int>(length));
}

uint32_t ScriptArguments::dword(int index) const
{
    const VARIANT& value = has(index) ? at(index) : VARIANT{};
    double number = -1;
    if (value.vt == VT_I4)
        number = value.lVal;
    else if (value.vt == VT_R8)
        number = value.dblVal;
    else if (value.vt == VT_I2)
        number = value.iVal;
    if (!(number >= 0 && number <= 4294967295.0 && std::floor(number) == number))
        refuse(index, u"a whole number from 0 to 4294967295");
    return static_cast<uint32_t>(number);
}

Microsoft::WRL::ComPtr<IDispatch> ScriptArguments::function(int index) const
{
    if (!has(index) || at(index).vt != VT_DISPATCH || !at(index).pdispVal)
        refuse(index, u"a function");
    return at(index).pdispVal;
}

} // namespace browser

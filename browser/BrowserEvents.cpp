#include "browser/BrowserEvents.h"

#include <exdispid.h>

namespace browser {

namespace {

// The argument at `index` in declaration order (Invoke passes them last first), with a
// by-reference VARIANT followed.
VARIANT* argument(DISPPARAMS* arguments, UINT index)
{
    if (!arguments || index >= arguments->cArgs)
        return nullptr;
    VARIANT* value = &arguments->rgvarg[arguments->cArgs - 1 - index];
    if (V_VT(value) == (VT_VARIANT | VT_BYREF))
        value = V_VARIANTREF(value);
    return value;
}

ZString text(VARIANT* value)
{
    if (!value || V_VT(value) != VT_BSTR || !V_BSTR(value))
        return ZString();
    return ZString(V_BSTR(value), static_cast<int>(SysStringLen(V_BSTR(value))));
}

IDispatch* dispatchOf(VARIANT* value)
{
    return value && V_VT(value) == VT_DISPATCH ? V_DISPATCH(value) : nullptr;
}

long statusOf(VARIANT* value)
{
    return value && V_VT(value) == VT_I4 ? V_I4(value) : 0;
}

// Sets a by-reference boolean, when the argument is one.
void setFlag(VARIANT* value, bool on)
{
    if (value && V_VT(value) == (VT_BOOL | VT_BYREF) && V_BOOLREF(value))
        *V_BOOLREF(value) = on ? VARIANT_TRUE : VARIANT_FALSE;
}

} // namespace

HRESULT dispatchBrowserEvent(DISPID event, DISPPARAMS* arguments, BrowserEvents& events)
{
    switch (event) {
    case DISPID_NAVIGATECOMPLETE2: // (pDisp, URL)
        events.navigateComplete(dispatchOf(argument(arguments, 0)), text(argument(arguments, 1)));
        break;
    case DISPID_DOCUMENTCOMPLETE: // (pDisp, URL)
        events.documentComplete(dispatchOf(argument(arguments, 0)), text(argument(arguments, 1)));
        break;
    case DISPID_NAVIGATEERROR: // (pDisp, URL, TargetFrameName, StatusCode, Cancel)
        if (events.navigateError(dispatchOf(argument(arguments, 0)), text(argument(arguments, 1)),
                                 statusOf(argument(arguments, 3))))
            setFlag(argument(arguments, 4), true);
        break;
    case DISPID_NEWWINDOW3: // (ppDisp, Cancel, dwFlags, bstrUrlContext, bstrUrl)
        if (events.newWindow(text(argument(arguments, 4))))
            setFlag(argument(arguments, 1), true);
        break;
    default:
        break;
    }
    return S_OK;
}

} // namespace browser

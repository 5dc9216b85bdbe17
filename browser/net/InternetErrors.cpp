#include "browser/net/InternetErrors.h"

#include <wininet.h>

namespace browser {

namespace {

struct KnownError {
    DWORD code;
    const char16_t* text;
};

constexpr KnownError knownErrors[] = {
    {ERROR_INTERNET_TIMEOUT, u"The connection timed out"},
    {WSAETIMEDOUT, u"The connection timed out"},
    {ERROR_INTERNET_NAME_NOT_RESOLVED, u"The server name could not be resolved"},
    {ERROR_INTERNET_CANNOT_CONNECT, u"Could not connect to the server"},
    {ERROR_INTERNET_CONNECTION_ABORTED, u"The connection with the server was ended"},
    {ERROR_INTERNET_CONNECTION_RESET, u"The connection with the server was reset"},
    {WSAECONNRESET, u"The connection with the server was reset"},
    {ERROR_HTTP_INVALID_SERVER_RESPONSE, u"The server sent an invalid response"},
    {ERROR_INTERNET_INVALID_URL, u"The address is not valid"},
    {ERROR_INTERNET_UNRECOGNIZED_SCHEME, u"Only http and https addresses can be fetched"},
    {ERROR_INTERNET_OPERATION_CANCELLED, u"The request was cancelled"},
    {ERROR_INTERNET_INVALID_CA, u"The server's certificate is not trusted"},
    {ERROR_INTERNET_SEC_CERT_CN_INVALID, u"The server's certificate is for another name"},
    {ERROR_INTERNET_SEC_CERT_DATE_INVALID, u"The server's certificate has expired or is not yet valid"},
    {ERROR_INTERNET_SEC_CERT_REVOKED, u"The server's certificate has been revoked"},
    {ERROR_INTERNET_SECURITY_CHANNEL_ERROR, u"A secure connection to the server could not be made"},
    {ERROR_NOT_ENOUGH_MEMORY, u"Out of memory"},
};

} // namespace

ZString internetErrorText(DWORD code)
{
    for (const KnownError& known : knownErrors)
        if (known.code == code)
            return known.text;
    return ZString(u"Network error ") + ZString::fromUInt(code);
}

HttpOutcome internetErrorOutcome(DWORD code)
{
    return code == ERROR_INTERNET_TIMEOUT || code == WSAETIMEDOUT ? HttpOutcome::timedOut : HttpOutcome::failed;
}

} // namespace browser

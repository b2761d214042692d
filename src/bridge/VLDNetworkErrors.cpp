#include "bridge/VLDNetworkErrors.h"

#include <cstring>
#include <gio/gio.h>
#include <libsoup/soup.h>
#include <webkit/webkit.h>

namespace velder::VLDNetworkErrors {

namespace {

// WebKit's own redirect limit: past it the load fails with an error of no domain.
constexpr unsigned engineRedirectLimit = 20;

std::int32_t codeForIOError(int code, bool committed)
{
    switch (code) {
    case G_IO_ERROR_CANCELLED:
        return aborted;
    case G_IO_ERROR_NOT_FOUND:
        return -6;
    case G_IO_ERROR_TIMED_OUT:
        return committed ? -7 : -118;
    case G_IO_ERROR_PARTIAL_INPUT:
        return committed ? -100 : -324;
    case G_IO_ERROR_CONNECTION_CLOSED:
        return -101;
    case G_IO_ERROR_CONNECTION_REFUSED:
        return -102;
    case G_IO_ERROR_HOST_NOT_FOUND:
        return -105;
    case G_IO_ERROR_NETWORK_UNREACHABLE:
        return -106;
    case G_IO_ERROR_HOST_UNREACHABLE:
        return -109;
    default:
        return failed;
    }
}

std::int32_t codeForTLSError(int code)
{
    switch (code) {
    case G_TLS_ERROR_EOF:
        return -100;
    case G_TLS_ERROR_UNAVAILABLE:
    case G_TLS_ERROR_MISC:
    case G_TLS_ERROR_NOT_TLS:
    case G_TLS_ERROR_HANDSHAKE:
        return -107;
    case G_TLS_ERROR_BAD_CERTIFICATE:
        return -207;
    default:
        return failed;
    }
}

} // namespace

std::int32_t codeForLoadError(const GError* error, bool committed, unsigned redirects)
{
    if (!error) {
        return failed;
    }
    GQuark domain = error->domain;
    int code = error->code;
    if (domain == WEBKIT_NETWORK_ERROR) {
        switch (code) {
        case WEBKIT_NETWORK_ERROR_CANCELLED:
            return aborted;
        case WEBKIT_NETWORK_ERROR_FILE_DOES_NOT_EXIST:
            return -6;
        case WEBKIT_NETWORK_ERROR_UNKNOWN_PROTOCOL:
            return -302;
        default:
            return failed;
        }
    }
    if (domain == WEBKIT_POLICY_ERROR) {
        switch (code) {
        // A navigation that became a download, or one the bridge itself refused.
        case WEBKIT_POLICY_ERROR_FRAME_LOAD_INTERRUPTED_BY_POLICY_CHANGE:
            return aborted;
        case WEBKIT_POLICY_ERROR_CANNOT_SHOW_URI:
            return -302;
        default:
            return failed;
        }
    }
    if (domain == G_IO_ERROR) {
        return codeForIOError(code, committed);
    }
    if (domain == G_RESOLVER_ERROR) {
        return code == G_RESOLVER_ERROR_NOT_FOUND || code == G_RESOLVER_ERROR_TEMPORARY_FAILURE ? -105 : failed;
    }
    if (domain == G_TLS_ERROR) {
        return codeForTLSError(code);
    }
    if (domain == SOUP_SESSION_ERROR) {
        switch (code) {
        case SOUP_SESSION_ERROR_TOO_MANY_REDIRECTS:
            return -310;
        case SOUP_SESSION_ERROR_PARSING:
        case SOUP_SESSION_ERROR_ENCODING:
            return -320;
        default:
            return failed;
        }
    }
    const char* domainName = domain ? g_quark_to_string(domain) : "";
    if (std::strcmp(domainName, "") == 0 && redirects >= engineRedirectLimit) {
        return -310;
    }
    return failed;
}

std::int32_t codeForCertificateFlags(unsigned flags)
{
    // The order in which a browser names the worst of several problems.
    if (flags & G_TLS_CERTIFICATE_GENERIC_ERROR) {
        return -207;
    }
    if (flags & G_TLS_CERTIFICATE_REVOKED) {
        return -206;
    }
    if (flags & G_TLS_CERTIFICATE_UNKNOWN_CA) {
        return -202;
    }
    if (flags & G_TLS_CERTIFICATE_BAD_IDENTITY) {
        return -200;
    }
    if (flags & G_TLS_CERTIFICATE_INSECURE) {
        return -208;
    }
    if (flags & (G_TLS_CERTIFICATE_EXPIRED | G_TLS_CERTIFICATE_NOT_ACTIVATED)) {
        return -201;
    }
    return -207;
}

} // namespace velder::VLDNetworkErrors

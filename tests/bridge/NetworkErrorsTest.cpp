#include "bridge/VLDNetworkErrors.h"

#include <gio/gio.h>
#include <gtest/gtest.h>
#include <libsoup/soup.h>
#include <webkit/webkit.h>

namespace velder::test {

TEST(NetworkErrorsTest, LoadErrorsBecomeNetworkErrorNumbers)
{
    struct LoadErrorCase {
        const char* name;
        GQuark domain;
        int code;
        bool committed;
        unsigned redirects;
        std::int32_t expected;
    };
    const LoadErrorCase cases[] = {
        { "stop or replaced load", WEBKIT_NETWORK_ERROR, WEBKIT_NETWORK_ERROR_CANCELLED, false, 0, -3 },
        { "became a download or was refused", WEBKIT_POLICY_ERROR,
            WEBKIT_POLICY_ERROR_FRAME_LOAD_INTERRUPTED_BY_POLICY_CHANGE, false, 0, -3 },
        { "cancelled I/O", G_IO_ERROR, G_IO_ERROR_CANCELLED, true, 0, -3 },
        { "timeout while reading", G_IO_ERROR, G_IO_ERROR_TIMED_OUT, true, 0, -7 },
        { "timeout while connecting", G_IO_ERROR, G_IO_ERROR_TIMED_OUT, false, 0, -118 },
        { "body cut short", G_IO_ERROR, G_IO_ERROR_PARTIAL_INPUT, true, 0, -100 },
        { "nothing came", G_IO_ERROR, G_IO_ERROR_PARTIAL_INPUT, false, 0, -324 },
        { "name not found", G_RESOLVER_ERROR, G_RESOLVER_ERROR_NOT_FOUND, false, 0, -105 },
        { "handshake", G_TLS_ERROR, G_TLS_ERROR_HANDSHAKE, false, 0, -107 },
        { "unknown scheme", WEBKIT_POLICY_ERROR, WEBKIT_POLICY_ERROR_CANNOT_SHOW_URI, false, 0, -302 },
        { "redirect loop, libsoup", SOUP_SESSION_ERROR, SOUP_SESSION_ERROR_TOO_MANY_REDIRECTS, false, 0, -310 },
        { "redirect loop, engine's limit", g_quark_from_static_string(""), 0, false, 20, -310 },
        { "no domain, few redirects", g_quark_from_static_string(""), 0, false, 3, -2 },
        { "unparsable answer", SOUP_SESSION_ERROR, SOUP_SESSION_ERROR_PARSING, false, 0, -320 },
        { "anything else", WEBKIT_NETWORK_ERROR, WEBKIT_NETWORK_ERROR_TRANSPORT, false, 0, -2 },
    };
    for (const auto& row : cases) {
        SCOPED_TRACE(row.name);
        GError* error = g_error_new_literal(row.domain, row.code, "text");
        EXPECT_EQ(VLDNetworkErrors::codeForLoadError(error, row.committed, row.redirects), row.expected);
        g_error_free(error);
    }
    EXPECT_EQ(VLDNetworkErrors::codeForLoadError(nullptr, false, 0), -2);
}

TEST(NetworkErrorsTest, RefusedCertificatesNameTheWorstProblem)
{
    struct CertificateCase {
        const char* name;
        unsigned flags;
        std::int32_t expected;
    };
    const CertificateCase cases[] = {
        { "unknown authority", G_TLS_CERTIFICATE_UNKNOWN_CA, -202 },
        { "wrong name", G_TLS_CERTIFICATE_BAD_IDENTITY, -200 },
        { "self-signed for another name", G_TLS_CERTIFICATE_UNKNOWN_CA | G_TLS_CERTIFICATE_BAD_IDENTITY, -202 },
        { "expired", G_TLS_CERTIFICATE_EXPIRED, -201 },
        { "not yet valid", G_TLS_CERTIFICATE_NOT_ACTIVATED, -201 },
        { "revoked and expired", G_TLS_CERTIFICATE_REVOKED | G_TLS_CERTIFICATE_EXPIRED, -206 },
        { "wrong name and expired", G_TLS_CERTIFICATE_BAD_IDENTITY | G_TLS_CERTIFICATE_EXPIRED, -200 },
        { "weak algorithm", G_TLS_CERTIFICATE_INSECURE, -208 },
        { "generic beats all", G_TLS_CERTIFICATE_GENERIC_ERROR | G_TLS_CERTIFICATE_REVOKED, -207 },
    };
    for (const auto& row : cases) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(VLDNetworkErrors::codeForCertificateFlags(row.flags), row.expected);
    }
}

} // namespace velder::test

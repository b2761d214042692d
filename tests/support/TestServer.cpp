#include "support/TestServer.h"

#include <algorithm>
#include <libsoup/soup.h>
#include <memory>
#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/x509.h>
#include <openssl/x509v3.h>
#include <stdexcept>

namespace velder::test {

std::string TestRequest::header(const std::string& lowerCaseName) const
{
    auto found = headers.find(lowerCaseName);
    return found == headers.end() ? std::string() : found->second;
}

namespace {

std::string toPEM(const std::function<int(BIO*)>& write)
{
    BIO* bio = BIO_new(BIO_s_mem());
    write(bio);
    char* data = nullptr;
    long length = BIO_get_mem_data(bio, &data);
    std::string text(data, static_cast<size_t>(length));
    BIO_free(bio);
    return text;
}

// A certificate signed with its own key, valid for a day: for "localhost", or for the address 127.0.0.1 (as
// an authority of its own, so that a client can be told to trust it alone). Its PEM goes to `pem`.
GTlsCertificate* selfSignedCertificate(bool forLoopback, std::string* certificatePem)
{
    EVP_PKEY* key = EVP_RSA_gen(2048);
    X509* certificate = X509_new();
    X509_set_version(certificate, 2);
    ASN1_INTEGER_set(X509_get_serialNumber(certificate), 1);
    X509_gmtime_adj(X509_getm_notBefore(certificate), -60);
    X509_gmtime_adj(X509_getm_notAfter(certificate), 24 * 3600);
    X509_set_pubkey(certificate, key);
    X509_NAME* name = X509_get_subject_name(certificate);
    const char* host = forLoopback ? "127.0.0.1" : "localhost";
    X509_NAME_add_entry_by_txt(name, "CN", MBSTRING_ASC, reinterpret_cast<const unsigned char*>(host), -1, -1, 0);
    X509_set_issuer_name(certificate, name);
    if (forLoopback) {
        X509V3_CTX context;
        X509V3_set_ctx(&context, certificate, certificate, nullptr, nullptr, 0);
        for (auto [nid, value] : { std::pair { NID_subject_alt_name, "IP:127.0.0.1" },
                 std::pair { NID_basic_constraints, "critical,CA:TRUE" } }) {
            X509_EXTENSION* extension = X509V3_EXT_conf_nid(nullptr, &context, nid, value);
            X509_add_ext(certificate, extension, -1);
            X509_EXTENSION_free(extension);
        }
    }
    X509_sign(certificate, key, EVP_sha256());
    *certificatePem = toPEM([&](BIO* bio) { return PEM_write_bio_X509(bio, certificate); });
    std::string pem = *certificatePem
        + toPEM([&](BIO* bio) { return PEM_write_bio_PrivateKey(bio, key, nullptr, nullptr, 0, nullptr, nullptr); });
    X509_free(certificate);
    EVP_PKEY_free(key);
    GError* error = nullptr;
    GTlsCertificate* tls = g_tls_certificate_new_from_pem(pem.c_str(), static_cast<gssize>(pem.size()), &error);
    if (!tls) {
        std::string message = error->message;
        g_error_free(error);
        throw std::runtime_error("the test certificate could not be made: " + message);
    }
    return tls;
}

} // namespace

TestServer::TestServer(Scheme scheme)
    : m_scheme(scheme)
{
    m_server = soup_server_new(nullptr, nullptr);
    if (scheme != Scheme::http) {
        GTlsCertificate* certificate = selfSignedCertificate(scheme == Scheme::pinnedHttps, &m_certificatePem);
        soup_server_set_tls_certificate(m_server, certificate);
        g_object_unref(certificate);
    }
    soup_server_add_handler(
        m_server, nullptr, reinterpret_cast<SoupServerCallback>(&TestServer::handle), this, nullptr);
    GError* error = nullptr;
    auto options = static_cast<SoupServerListenOptions>(
        SOUP_SERVER_LISTEN_IPV4_ONLY | (scheme != Scheme::http ? SOUP_SERVER_LISTEN_HTTPS : 0));
    if (!soup_server_listen_local(m_server, 0, options, &error)) {
        std::string message = error->message;
        g_error_free(error);
        throw std::runtime_error("the test server could not listen: " + message);
    }
    GSList* uris = soup_server_get_uris(m_server);
    m_port = g_uri_get_port(static_cast<GUri*>(uris->data));
    g_slist_free_full(uris, reinterpret_cast<GDestroyNotify>(g_uri_unref));
}

TestServer::~TestServer()
{
    for (auto& [source, message] : m_held) {
        g_source_remove(source);
        g_object_unref(message);
    }
    soup_server_disconnect(m_server);
    g_object_unref(m_server);
}

std::string TestServer::url(const std::string& path) const
{
    return std::string(m_scheme != Scheme::http ? "https" : "http") + "://127.0.0.1:" + std::to_string(m_port) + path;
}

void TestServer::route(const std::string& path, TestResponse response)
{
    m_routes[path] = [response](const TestRequest&) { return response; };
}

void TestServer::route(const std::string& path, Handler handler)
{
    m_routes[path] = std::move(handler);
}

void TestServer::hold(void* message, int milliseconds)
{
    soup_server_message_pause(static_cast<SoupServerMessage*>(message));
    g_object_ref(message);
    struct Release {
        TestServer* server;
        void* message;
    };
    guint source = g_timeout_add_full(
        G_PRIORITY_DEFAULT, static_cast<guint>(milliseconds),
        [](gpointer data) -> gboolean {
            auto* release = static_cast<Release*>(data);
            auto& held = release->server->m_held;
            for (auto it = held.begin(); it != held.end(); ++it) {
                if (it->second == release->message) {
                    held.erase(it);
                    break;
                }
            }
            soup_server_message_unpause(static_cast<SoupServerMessage*>(release->message));
            g_object_unref(release->message);
            return G_SOURCE_REMOVE;
        },
        new Release { this, message }, [](gpointer data) { delete static_cast<Release*>(data); });
    m_held.emplace_back(source, message);
}

int TestServer::count(const std::string& path) const
{
    return static_cast<int>(
        std::count_if(m_requests.begin(), m_requests.end(), [&](const TestRequest& r) { return r.path == path; }));
}

void TestServer::handle(SoupServer*, void* messagePointer, const char* path, void*, void* selfPointer)
{
    auto* self = static_cast<TestServer*>(selfPointer);
    auto* message = static_cast<SoupServerMessage*>(messagePointer);
    TestRequest request;
    request.method = soup_server_message_get_method(message);
    request.path = path;
    if (SoupMessageBody* body = soup_server_message_get_request_body(message); body && body->length > 0) {
        GBytes* bytes = soup_message_body_flatten(body);
        gsize size = 0;
        auto* data = static_cast<const char*>(g_bytes_get_data(bytes, &size));
        request.body.assign(data, size);
        g_bytes_unref(bytes);
    }
    SoupMessageHeadersIter iter;
    soup_message_headers_iter_init(&iter, soup_server_message_get_request_headers(message));
    const char* name = nullptr;
    const char* value = nullptr;
    while (soup_message_headers_iter_next(&iter, &name, &value)) {
        std::string lower(name);
        std::transform(lower.begin(), lower.end(), lower.begin(), [](unsigned char c) { return std::tolower(c); });
        request.headers[lower] = value;
    }
    if (request.path != "/favicon.ico") {
        self->m_requests.push_back(request);
    }

    auto route = self->m_routes.find(request.path);
    if (route == self->m_routes.end()) {
        soup_server_message_set_status(message, 404, nullptr);
        return;
    }
    TestResponse response = route->second(request);
    SoupMessageHeaders* headers = soup_server_message_get_response_headers(message);
    for (const auto& [headerName, headerValue] : response.headers) {
        soup_message_headers_append(headers, headerName.c_str(), headerValue.c_str());
    }
    if (!response.location.empty()) {
        soup_server_message_set_redirect(message, static_cast<guint>(response.status), response.location.c_str());
        return;
    }
    soup_server_message_set_status(message, static_cast<guint>(response.status), nullptr);
    soup_server_message_set_response(
        message, response.contentType.c_str(), SOUP_MEMORY_COPY, response.body.data(), response.body.size());
    if (response.delayMilliseconds > 0) {
        self->hold(message, response.delayMilliseconds);
    }
}

} // namespace velder::test

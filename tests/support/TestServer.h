#pragma once

#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

typedef struct _SoupServer SoupServer;

namespace velder::test {

struct TestRequest {
    std::string method;
    std::string path;
    std::map<std::string, std::string> headers; // names in lower case
    std::string body;

    std::string header(const std::string& lowerCaseName) const;
};

struct TestResponse {
    int status = 200;
    std::string contentType = "text/html; charset=utf-8";
    std::string body;
    std::vector<std::pair<std::string, std::string>> headers;
    std::string location; // with a 3xx status: the redirect's target
    int delayMilliseconds = 0; // the answer is held this long

    static TestResponse html(std::string body) { return { 200, "text/html; charset=utf-8", std::move(body) }; }
    static TestResponse redirect(std::string to) { return { 302, "text/plain", {}, {}, std::move(to) }; }
};

// An HTTP server on 127.0.0.1 with a port of the system's choosing, serving the routes a test gives it and
// 404 for anything else. It runs on the default main context, so it answers while a test runs the loop.
// The request log leaves out /favicon.ico, which the engine asks for by itself.
class TestServer {
public:
    using Handler = std::function<TestResponse(const TestRequest&)>;
    enum class Scheme { http, https, pinnedHttps };

    // With https, the server shows a certificate it signed itself for "localhost", which no browser
    // accepts: the certificate's authority is unknown and its name isn't 127.0.0.1. With pinnedHttps, one
    // for 127.0.0.1 that a client trusts when told to trust certificatePem() (the updater's pinning).
    explicit TestServer(Scheme scheme = Scheme::http);
    ~TestServer();
    TestServer(const TestServer&) = delete;
    TestServer& operator=(const TestServer&) = delete;

    int port() const { return m_port; }
    const std::string& certificatePem() const { return m_certificatePem; }
    // "http://127.0.0.1:<port>" (or https) followed by the path.
    std::string url(const std::string& path) const;

    void route(const std::string& path, TestResponse response);
    void route(const std::string& path, Handler handler);

    const std::vector<TestRequest>& requests() const { return m_requests; }
    // How many requests had this path (any query).
    int count(const std::string& path) const;
    bool received(const std::string& path) const { return count(path) > 0; }

private:
    static void handle(SoupServer*, void* message, const char* path, void* query, void* self);
    void hold(void* message, int milliseconds);

    SoupServer* m_server = nullptr;
    int m_port = 0;
    Scheme m_scheme;
    std::string m_certificatePem;
    std::map<std::string, Handler> m_routes;
    std::vector<TestRequest> m_requests;
    std::vector<std::pair<unsigned, void*>> m_held; // timeout source, paused message
};

} // namespace velder::test

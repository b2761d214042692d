// A thousand hard stops: starts the real Velder again and again on one profile, on loopback pages that
// navigate themselves (history), carry an icon (favicons) and a settings change of the user's own (the
// vault), and SIGKILLs it at a random moment each time. After every kill the three sealed files must open
// and decode (a file once written never goes away, and none is ever kept aside as unreadable), the vault
// holds the last homepage seen on disk or the one this run set, and the history and the icons only grow, but
// after a run that cleared them. The random moments come from a seed printed first, so a failing run can be repeated.
//
//   velder_kill_soak VELDER_BINARY [KILLS] [SEED]
//
// Run it under a display and a session bus of its own (bench/kill-soak/run does both).

#include "core/FaviconData.h"
#include "core/FileIO.h"
#include "core/HistoryData.h"
#include "core/Log.h"
#include "core/SecureJsonFile.h"
#include "core/Text.h"
#include "core/VaultData.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <map>
#include <netinet/in.h>
#include <random>
#include <set>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

using namespace velder;
namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

namespace {

constexpr int pageCount = 40;
// Kills fall anywhere from before the first file is read to well after the first writes, which come 2 s
// (the vault, the history) or 2.5 s (the icons) after the last change.
constexpr int maxDelayMs = 7000;
// A page moves on after longer than the stores' debounce: each write waits for a quiet moment, so a page
// that moved on faster would keep the history from being written at all until it stopped.
constexpr int pageMs = 2500;

// A 1x1 PNG.
constexpr unsigned char iconBytes[] = { 0x89, 0x50, 0x4E, 0x47, 0x0D, 0x0A, 0x1A, 0x0A, 0x00, 0x00, 0x00, 0x0D, 0x49,
    0x48, 0x44, 0x52, 0x00, 0x00, 0x00, 0x01, 0x00, 0x00, 0x00, 0x01, 0x08, 0x06, 0x00, 0x00, 0x00, 0x1F, 0x15, 0xC4,
    0x89, 0x00, 0x00, 0x00, 0x0D, 0x49, 0x44, 0x41, 0x54, 0x78, 0x9C, 0x63, 0xF8, 0xCF, 0xC0, 0xF0, 0x1F, 0x00, 0x05,
    0x00, 0x01, 0xFF, 0x89, 0x99, 0x3D, 0x1D, 0x00, 0x00, 0x00, 0x00, 0x49, 0x45, 0x4E, 0x44, 0xAE, 0x42, 0x60, 0x82 };

// An HTTP/1.0 server on 127.0.0.1: /p/N is a page with an icon that moves on to the next page after a
// moment; /icon.png and /favicon.ico are the icon; anything else is 404.
class LoopbackServer {
public:
    LoopbackServer()
    {
        m_socket = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
        sockaddr_in address {};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t length = sizeof address;
        if (m_socket < 0 || ::bind(m_socket, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0
            || ::listen(m_socket, 64) != 0
            || ::getsockname(m_socket, reinterpret_cast<sockaddr*>(&address), &length) != 0) {
            log("Velder: kill soak: no loopback server: " + std::string(std::strerror(errno)));
            std::exit(2);
        }
        m_port = ntohs(address.sin_port);
        m_thread = std::thread([this] { serve(); });
        m_thread.detach();
    }

    std::string url(const std::string& path) const { return "http://127.0.0.1:" + std::to_string(m_port) + path; }

private:
    void serve()
    {
        while (true) {
            int client = ::accept4(m_socket, nullptr, nullptr, SOCK_CLOEXEC);
            if (client >= 0) {
                std::thread([client] { answer(client); }).detach();
            }
        }
    }

    static void answer(int client)
    {
        std::string request;
        char buffer[2048];
        while (request.find("\r\n\r\n") == std::string::npos && request.size() < 65536) {
            ssize_t got = ::recv(client, buffer, sizeof buffer, 0);
            if (got <= 0) {
                break;
            }
            request.append(buffer, static_cast<size_t>(got));
        }
        size_t start = request.find(' ') + 1;
        std::string path = request.substr(start, request.find(' ', start) - start);
        std::string status = "200 OK";
        std::string type = "text/html; charset=utf-8";
        std::string body;
        if (path.starts_with("/p/")) {
            int page = std::atoi(path.c_str() + 3);
            body = "<!doctype html><title>Soak page " + std::to_string(page)
                + "</title><link rel=\"icon\" href=\"/icon.png\"><p>Page " + std::to_string(page)
                + "</p><script>setTimeout(function () { location.href = '/p/" + std::to_string((page + 1) % pageCount)
                + "'; }, " + std::to_string(pageMs) + ");</script>";
        } else if (path == "/icon.png" || path == "/favicon.ico") {
            type = "image/png";
            body.assign(reinterpret_cast<const char*>(iconBytes), sizeof iconBytes);
        } else {
            status = "404 Not Found";
        }
        std::string head = "HTTP/1.0 " + status + "\r\nContent-Type: " + type
            + "\r\nContent-Length: " + std::to_string(body.size()) + "\r\nConnection: close\r\n\r\n";
        std::string whole = head + body;
        for (size_t sent = 0; sent < whole.size();) {
            ssize_t wrote = ::send(client, whole.data() + sent, whole.size() - sent, MSG_NOSIGNAL);
            if (wrote <= 0) {
                break;
            }
            sent += static_cast<size_t>(wrote);
        }
        ::close(client);
    }

    int m_socket = -1;
    int m_port = 0;
    std::thread m_thread;
};

// What the files held after the last kill.
struct Seen {
    std::set<std::string> files; // those that existed
    std::optional<std::string> homepage;
    std::map<std::string, std::int64_t> visits; // url -> visit count
    std::set<std::string> icons; // sites
};

struct Run {
    int number = 0;
    std::string homepage; // what this run's settings change sets
    bool clearsHistory = false;
};

class Checker {
public:
    explicit Checker(std::string folder)
        : m_folder(std::move(folder))
    {
    }

    // Empty when all is well, else what went wrong.
    std::vector<std::string> check(const Run& run, Seen& seen)
    {
        m_problems.clear();
        auto keyBytes = FileIO::readWhole(m_folder + "/vault.key");
        std::optional<SymmetricKey> key;
        if (keyBytes && keyBytes->size() == 32) {
            key.emplace();
            std::copy(keyBytes->begin(), keyBytes->end(), key->begin());
        } else if (keyBytes || !seen.files.empty()) {
            problem("vault.key is missing or not 32 bytes");
        }
        auto vault = open<VaultData>("vault.bin", key, seen);
        auto history = open<HistoryData>("history.bin", key, seen);
        auto favicons = open<FaviconData>("favicons.bin", key, seen);
        std::error_code notYet;
        for (const auto& entry : fs::directory_iterator(m_folder, notYet)) {
            if (entry.path().filename().string().find(".unreadable-") != std::string::npos) {
                problem("Velder kept a file aside as unreadable: " + entry.path().filename().string());
            }
        }

        if (vault) {
            const std::string& homepage = vault->settings.homepage;
            bool allowed = homepage == run.homepage || (seen.homepage && homepage == *seen.homepage)
                || (!seen.homepage && homepage == AppSettings().homepage);
            if (!allowed) {
                problem("the vault's homepage is \"" + homepage + "\", neither the last one seen nor this run's");
            }
            m_freshSettings += homepage == run.homepage;
            seen.homepage = homepage;
        }
        if (history) {
            std::map<std::string, std::int64_t> visits;
            for (const auto& entry : history->entries) {
                visits[entry.url] = entry.visitCount;
            }
            if (!run.clearsHistory) {
                for (const auto& [url, count] : seen.visits) {
                    auto now = visits.find(url);
                    if (now == visits.end() || now->second < count) {
                        problem("the history lost visits of " + url);
                    }
                }
            }
            seen.visits = std::move(visits);
        }
        if (favicons) {
            std::set<std::string> icons;
            for (const auto& [site, icon] : favicons->icons) {
                icons.insert(site);
            }
            if (!run.clearsHistory
                && !std::includes(icons.begin(), icons.end(), seen.icons.begin(), seen.icons.end())) {
                problem("the favicons lost a site");
            }
            seen.icons = std::move(icons);
        }
        return m_problems;
    }

    int freshSettings() const { return m_freshSettings; }

private:
    void problem(std::string text) { m_problems.push_back(std::move(text)); }

    template<class Record>
    std::optional<Record> open(const std::string& name, const std::optional<SymmetricKey>& key, Seen& seen)
    {
        std::string path = m_folder + "/" + name;
        if (!fs::exists(path)) {
            if (seen.files.contains(name)) {
                problem(name + " went away");
            }
            return std::nullopt;
        }
        seen.files.insert(name);
        if (!key) {
            problem(name + " exists without a key");
            return std::nullopt;
        }
        auto plaintext = SealedFile(path, key).readPlaintext();
        if (!plaintext) {
            problem(name + " doesn't open");
            return std::nullopt;
        }
        try {
            return VldJson::decode<Record>(std::move(*plaintext), Record {});
        } catch (const JsonDecodeError& error) {
            problem(name + " doesn't decode: " + error.what());
            return std::nullopt;
        }
    }

    std::string m_folder;
    std::vector<std::string> m_problems;
    int m_freshSettings = 0;
};

pid_t start(const std::string& velder, const std::vector<std::string>& urls, const std::string& root)
{
    pid_t pid = ::fork();
    if (pid == 0) {
        ::setpgid(0, 0);
        ::setenv("XDG_DATA_HOME", (root + "/data").c_str(), 1);
        ::setenv("XDG_CACHE_HOME", (root + "/cache").c_str(), 1);
        ::setenv("XDG_CONFIG_HOME", (root + "/config").c_str(), 1);
        ::setenv("HOME", (root + "/home").c_str(), 1);
        int output = ::open((root + "/last-run.log").c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
        ::dup2(output, STDOUT_FILENO);
        ::dup2(output, STDERR_FILENO);
        std::vector<char*> arguments { const_cast<char*>(velder.c_str()) };
        for (const auto& url : urls) {
            arguments.push_back(const_cast<char*>(url.c_str()));
        }
        arguments.push_back(nullptr);
        ::execv(velder.c_str(), arguments.data());
        ::_exit(127);
    }
    ::setpgid(pid, pid);
    return pid;
}

// Kills the whole process group (Velder and the engine's processes) and waits until it is gone. The soak is
// the subreaper of the engine's processes, so it reaps them as well and no zombie keeps the group alive.
void killGroup(pid_t pid)
{
    for (int i = 0; i < 1000; ++i) {
        ::kill(-pid, SIGKILL);
        while (::waitpid(-1, nullptr, WNOHANG) > 0) { }
        if (::kill(-pid, 0) != 0) {
            return;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    log("Velder: kill soak: process group " + std::to_string(pid) + " outlived its SIGKILL");
}

} // namespace

int main(int argc, char** argv)
{
    if (argc < 2) {
        log("Velder: kill soak: usage: velder_kill_soak VELDER_BINARY [KILLS] [SEED]");
        return 2;
    }
    std::string velder = fs::absolute(argv[1]).string();
    int kills = argc > 2 ? std::atoi(argv[2]) : 1000;
    std::uint64_t seed = argc > 3 ? std::strtoull(argv[3], nullptr, 10) : std::random_device()();
    log("Velder: kill soak: seed " + std::to_string(seed) + ", " + std::to_string(kills) + " kills");

    char rootTemplate[] = "/tmp/velder-kill-soak-XXXXXX";
    std::string root = ::mkdtemp(rootTemplate);
    ::prctl(PR_SET_CHILD_SUBREAPER, 1);
    std::string folder = root + "/data/Velder";
    LoopbackServer server;
    Checker checker(folder);
    Seen seen;
    std::mt19937_64 random(seed);
    int failures = 0;
    auto began = Clock::now();

    for (int number = 1; number <= kills; ++number) {
        Run run { number, server.url("/home/" + std::to_string(number)), random() % 8 == 0 };
        std::vector<std::string> urls {
            "velder://settings/?save=1&MaxHistory=100000&Homepage=" + Text::percentEncoded(run.homepage, "-._~"),
        };
        for (int tab = 0; tab < 2; ++tab) {
            urls.push_back(server.url("/p/" + std::to_string(random() % pageCount)));
        }
        if (run.clearsHistory) {
            urls.push_back("velder://history/?clear=1");
        }
        auto delay = std::chrono::milliseconds(random() % (maxDelayMs + 1));

        pid_t pid = start(velder, urls, root);
        std::this_thread::sleep_for(delay);
        killGroup(pid);

        auto problems = checker.check(run, seen);
        if (!problems.empty()) {
            ++failures;
            fs::copy_file(root + "/last-run.log", root + "/failed-run-" + std::to_string(number) + ".log");
            for (const auto& text : problems) {
                log("Velder: kill soak: kill " + std::to_string(number) + " after " + std::to_string(delay.count())
                    + " ms: " + text);
            }
        }
        if (number % 50 == 0 || number == kills) {
            auto seconds = std::chrono::duration_cast<std::chrono::seconds>(Clock::now() - began).count();
            log("Velder: kill soak: " + std::to_string(number) + " kills, " + std::to_string(failures) + " failed, "
                + std::to_string(checker.freshSettings()) + " with this run's setting on disk, "
                + std::to_string(seen.visits.size()) + " history entries, " + std::to_string(seconds) + " s");
        }
    }
    log("Velder: kill soak: done: seed " + std::to_string(seed) + ", " + std::to_string(kills) + " kills, "
        + std::to_string(failures) + " failed; profile in " + root);
    return failures == 0 ? 0 : 1;
}

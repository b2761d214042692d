#include "support/ChildProcess.h"

#include "support/TestSupport.h"

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <poll.h>
#include <stdexcept>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ;

namespace velder::test {

ChildProcess::ChildProcess(
    const std::vector<std::string>& arguments, const std::map<std::string, std::optional<std::string>>& environment)
{
    int pipeFds[2];
    if (pipe(pipeFds) != 0) {
        throw std::runtime_error("pipe failed");
    }
    m_pid = fork();
    if (m_pid < 0) {
        throw std::runtime_error("fork failed");
    }
    if (m_pid == 0) {
        // A test that dies, or is killed at its timeout, takes its programs with it.
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        dup2(pipeFds[1], STDERR_FILENO);
        close(pipeFds[0]);
        close(pipeFds[1]);
        for (const auto& [name, value] : environment) {
            setEnv(name, value);
        }
        std::vector<char*> argv;
        for (const auto& argument : arguments) {
            argv.push_back(const_cast<char*>(argument.c_str()));
        }
        argv.push_back(nullptr);
        execv(argv[0], argv.data());
        _exit(127);
    }
    close(pipeFds[1]);
    m_stderr = pipeFds[0];
}

ChildProcess::~ChildProcess()
{
    if (!m_status && m_pid > 0) {
        kill(m_pid, SIGKILL);
        waitpid(m_pid, nullptr, 0);
    }
    if (m_stderr >= 0) {
        close(m_stderr);
    }
}

void ChildProcess::readAvailable(int timeoutMs)
{
    pollfd fd { m_stderr, POLLIN, 0 };
    if (poll(&fd, 1, timeoutMs) <= 0) {
        return;
    }
    char buffer[4096];
    ssize_t n = read(m_stderr, buffer, sizeof buffer);
    if (n <= 0) {
        return;
    }
    m_pending.append(buffer, static_cast<std::size_t>(n));
    std::size_t newline;
    while ((newline = m_pending.find('\n')) != std::string::npos) {
        m_lines.push_back(m_pending.substr(0, newline));
        m_pending.erase(0, newline + 1);
    }
}

bool ChildProcess::waitForLine(const std::string& text, std::chrono::milliseconds timeout)
{
    auto deadline = std::chrono::steady_clock::now() + timeout;
    std::size_t checked = 0;
    auto arrived = [&] {
        for (; checked < m_lines.size(); ++checked) {
            if (m_lines[checked].find(text) != std::string::npos) {
                return true;
            }
        }
        return false;
    };
    while (std::chrono::steady_clock::now() < deadline && !arrived()) {
        readAvailable(50);
        if (m_status || waitpid(m_pid, nullptr, WNOHANG) == m_pid) {
            readAvailable(0);
            return arrived();
        }
    }
    return arrived();
}

void ChildProcess::signal(int number)
{
    if (m_pid > 0 && !m_status) {
        kill(m_pid, number);
    }
}

std::optional<int> ChildProcess::wait(std::chrono::milliseconds timeout)
{
    auto deadline = std::chrono::steady_clock::now() + timeout;
    while (!m_status && std::chrono::steady_clock::now() < deadline) {
        int status = 0;
        pid_t done = waitpid(m_pid, &status, WNOHANG);
        if (done == m_pid) {
            m_status = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
            break;
        }
        readAvailable(20);
    }
    while (m_status) {
        std::size_t before = m_lines.size() + m_pending.size();
        readAvailable(0);
        if (m_lines.size() + m_pending.size() == before) {
            break;
        }
    }
    if (!m_pending.empty() && m_status) {
        m_lines.push_back(m_pending);
        m_pending.clear();
    }
    return m_status;
}

PrivateBus::PrivateBus()
    : m_daemon({ "/usr/bin/dbus-daemon", "--session", "--nofork", "--print-address=2" })
{
    m_daemon.waitForLine("unix:", std::chrono::seconds(10));
    for (const auto& line : m_daemon.errorLines()) {
        if (line.starts_with("unix:")) {
            m_address = line;
        }
    }
}

std::string ChildProcess::errorText() const
{
    std::string text;
    for (const auto& line : m_lines) {
        text += line + "\n";
    }
    return text;
}

} // namespace velder::test

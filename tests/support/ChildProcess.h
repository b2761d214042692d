#pragma once

#include <chrono>
#include <map>
#include <optional>
#include <string>
#include <sys/types.h>
#include <vector>

namespace velder::test {

// A program run by a test, with its standard error captured line by line.
class ChildProcess {
public:
    // `environment` changes are applied on top of the test's own; a nullopt value removes the variable.
    ChildProcess(const std::vector<std::string>& arguments,
        const std::map<std::string, std::optional<std::string>>& environment = {});
    ~ChildProcess();
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    // Reads standard error until a line containing `text` arrives; false at the timeout or the end.
    bool waitForLine(const std::string& text, std::chrono::milliseconds timeout);
    void signal(int number);
    // The exit status, or nothing if the program doesn't end in time (it is then killed).
    std::optional<int> wait(std::chrono::milliseconds timeout);
    const std::vector<std::string>& errorLines() const { return m_lines; }
    std::string errorText() const;

private:
    void readAvailable(int timeoutMs);

    pid_t m_pid = -1;
    int m_stderr = -1;
    std::string m_pending;
    std::vector<std::string> m_lines;
    std::optional<int> m_status;
};

// A D-Bus message bus of the test's own, for as long as the object lives.
class PrivateBus {
public:
    PrivateBus();
    const std::string& address() const { return m_address; }

private:
    ChildProcess m_daemon;
    std::string m_address;
};

} // namespace velder::test

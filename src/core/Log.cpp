#include "core/Log.h"

#include <algorithm>
#include <atomic>
#include <cassert>
#include <mutex>
#include <unistd.h>

namespace velder {

namespace {

std::mutex& logMutex()
{
    static std::mutex mutex;
    return mutex;
}

std::atomic<int> logDescriptor { STDERR_FILENO };
std::vector<std::string>* captured = nullptr; // guarded by logMutex()

void writeAll(int fd, const std::string& text)
{
    const char* data = text.data();
    size_t left = text.size();
    while (left > 0) {
        ssize_t n = ::write(fd, data, left);
        if (n <= 0) {
            return;
        }
        data += n;
        left -= static_cast<size_t>(n);
    }
}

} // namespace

void log(std::string_view line)
{
    assert(line.starts_with("Velder: "));
    std::string text(line);
    std::lock_guard lock(logMutex());
    if (captured) {
        captured->push_back(text);
    }
    text.push_back('\n');
    writeAll(logDescriptor.load(), text);
}

void setLogDescriptor(int fd)
{
    logDescriptor.store(fd);
}

LogCapture::LogCapture()
{
    std::lock_guard lock(logMutex());
    assert(!captured);
    captured = new std::vector<std::string>();
}

LogCapture::~LogCapture()
{
    std::lock_guard lock(logMutex());
    delete captured;
    captured = nullptr;
}

std::vector<std::string> LogCapture::lines() const
{
    std::lock_guard lock(logMutex());
    return *captured;
}

std::vector<std::string> LogCapture::linesStartingWith(std::string_view prefix) const
{
    std::vector<std::string> result;
    for (auto& line : lines()) {
        if (line.starts_with(prefix)) {
            result.push_back(line);
        }
    }
    return result;
}

bool LogCapture::contains(std::string_view line) const
{
    auto all = lines();
    return std::find(all.begin(), all.end(), line) != all.end();
}

void LogCapture::clear()
{
    std::lock_guard lock(logMutex());
    captured->clear();
}

} // namespace velder

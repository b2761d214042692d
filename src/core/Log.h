#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace velder {

// The one way Velder writes a line for its developers. Every line begins "Velder: ", and goes to
// standard error, which the desktop's journal collects. Safe to call from any thread.
void log(std::string_view line);

// Where log lines go. The engine runtime points standard error at the engine log, and keeps a
// duplicate of the original descriptor for Velder's own lines.
void setLogDescriptor(int fd);

// Collects every line logged while it lives, in order, for tests that assert on what was logged.
class LogCapture {
public:
    LogCapture();
    ~LogCapture();
    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;

    std::vector<std::string> lines() const;
    // Lines that begin with the given text.
    std::vector<std::string> linesStartingWith(std::string_view prefix) const;
    bool contains(std::string_view line) const;
    void clear();
};

} // namespace velder

#pragma once

#include "support/TestSupport.h"

#include <map>
#include <string>

namespace velder::test {

// An installation of Velder in a temporary folder that the program takes for its own: <root>/bin/velder
// (a placeholder) and <root>/share/velder/velder-info.json with the given fields. The real one is back
// when it goes.
class ScopedInstall {
public:
    explicit ScopedInstall(const std::map<std::string, std::string>& info, const std::string& folder = "velder");
    ~ScopedInstall();
    ScopedInstall(const ScopedInstall&) = delete;
    ScopedInstall& operator=(const ScopedInstall&) = delete;

    const std::string& root() const { return m_root; }

private:
    TempDir m_dir;
    std::string m_root;
};

} // namespace velder::test

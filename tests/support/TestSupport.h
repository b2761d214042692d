#pragma once

#include "core/SymmetricKey.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace velder::test {

// A fresh folder under /tmp, removed with everything in it when the object goes.
class TempDir {
public:
    TempDir();
    ~TempDir();
    TempDir(const TempDir&) = delete;
    TempDir& operator=(const TempDir&) = delete;

    const std::string& path() const { return m_path; }
    std::string file(const std::string& name) const { return m_path + "/" + name; }

private:
    std::string m_path;
};

// Sets an environment variable, or unsets it with nullopt.
void setEnv(const std::string& name, const std::optional<std::string>& value);

// Sets an environment variable (or unsets it, with nullopt) and restores the old value when it goes.
class ScopedEnv {
public:
    ScopedEnv(std::string name, std::optional<std::string> value);
    ~ScopedEnv();

private:
    std::string m_name;
    std::optional<std::string> m_old;
};

// A profile of its own: XDG_DATA_HOME, XDG_CACHE_HOME and HOME point into a temporary folder.
class TestProfile {
public:
    TestProfile();
    const TempDir& root() const { return m_root; }

private:
    TempDir m_root;
    ScopedEnv m_data;
    ScopedEnv m_cache;
    ScopedEnv m_home;
};

// The key of the shared test data: the bytes 00 01 02 ... 1f.
SymmetricKey testDataKey();
// A path in ../shared/testdata.
std::string testDataPath(const std::string& relative);

std::vector<std::uint8_t> readBytes(const std::string& path);
void writeBytes(const std::string& path, const std::vector<std::uint8_t>& bytes);
void copyFile(const std::string& from, const std::string& to);
bool fileExists(const std::string& path);

// prefix + n: GCC 12 warns falsely (-Wrestrict) on "literal" + std::to_string(n) at -O3.
std::string numbered(std::string_view prefix, long long n);

} // namespace velder::test

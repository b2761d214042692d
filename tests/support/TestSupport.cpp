#include "support/TestSupport.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace velder::test {

namespace fs = std::filesystem;

TempDir::TempDir()
{
    std::string pattern = (fs::temp_directory_path() / "velder-test-XXXXXX").string();
    if (!mkdtemp(pattern.data())) {
        throw std::runtime_error("mkdtemp failed");
    }
    m_path = pattern;
}

TempDir::~TempDir()
{
    std::error_code ignored;
    fs::permissions(m_path, fs::perms::owner_all, fs::perm_options::add, ignored);
    fs::remove_all(m_path, ignored);
}

void setEnv(const std::string& name, const std::optional<std::string>& value)
{
    if (value) {
        setenv(name.c_str(), value->c_str(), 1);
    } else {
        unsetenv(name.c_str());
    }
}

ScopedEnv::ScopedEnv(std::string name, std::optional<std::string> value)
    : m_name(std::move(name))
{
    if (const char* old = std::getenv(m_name.c_str())) {
        m_old = old;
    }
    setEnv(m_name, value);
}

ScopedEnv::~ScopedEnv()
{
    setEnv(m_name, m_old);
}

TestProfile::TestProfile()
    : m_data("XDG_DATA_HOME", m_root.file("data"))
    , m_cache("XDG_CACHE_HOME", m_root.file("cache"))
    , m_home("HOME", m_root.file("home"))
{
    fs::create_directories(m_root.file("home"));
}

SymmetricKey testDataKey()
{
    SymmetricKey key;
    for (size_t i = 0; i < key.size(); ++i) {
        key[i] = static_cast<std::uint8_t>(i);
    }
    return key;
}

std::string testDataPath(const std::string& relative)
{
    return std::string(VELDER_TESTDATA_DIR) + "/" + relative;
}

std::vector<std::uint8_t> readBytes(const std::string& path)
{
    std::ifstream in(path, std::ios::binary);
    if (!in) {
        throw std::runtime_error("cannot read " + path);
    }
    return std::vector<std::uint8_t>(std::istreambuf_iterator<char>(in), {});
}

void writeBytes(const std::string& path, const std::vector<std::uint8_t>& bytes)
{
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
}

void copyFile(const std::string& from, const std::string& to)
{
    fs::copy_file(from, to, fs::copy_options::overwrite_existing);
}

bool fileExists(const std::string& path)
{
    return fs::exists(path);
}

std::string numbered(std::string_view prefix, long long n)
{
    std::string text(prefix);
    text += std::to_string(n);
    return text;
}

} // namespace velder::test

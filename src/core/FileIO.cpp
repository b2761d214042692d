#include "core/FileIO.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace velder::FileIO {

namespace {

bool failWith(std::string* error, const std::string& what, int code)
{
    if (error) {
        *error = what + ": " + std::strerror(code);
    }
    return false;
}

} // namespace

std::optional<std::vector<std::uint8_t>> readWhole(const std::string& path, std::string* error)
{
    int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (fd < 0) {
        failWith(error, path, errno);
        return std::nullopt;
    }
    std::vector<std::uint8_t> bytes;
    struct stat info { };
    if (fstat(fd, &info) == 0 && info.st_size > 0) {
        bytes.reserve(static_cast<std::size_t>(info.st_size));
    }
    std::uint8_t buffer[65536];
    while (true) {
        ssize_t n = ::read(fd, buffer, sizeof buffer);
        if (n < 0) {
            if (errno == EINTR) {
                continue;
            }
            int code = errno;
            ::close(fd);
            failWith(error, path, code);
            return std::nullopt;
        }
        if (n == 0) {
            break;
        }
        bytes.insert(bytes.end(), buffer, buffer + n);
    }
    ::close(fd);
    return bytes;
}

bool writeAtomically(const std::string& path, std::span<const std::uint8_t> bytes, std::string* error)
{
    // A fixed name beside the target: writes to one file are serial, and a writer that died half-way
    // leaves one stale file that the next write replaces, not a growing litter.
    std::string temporary = path + ".tmp";
    int fd = ::open(temporary.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
    if (fd < 0) {
        return failWith(error, path, errno);
    }
    ::fchmod(fd, 0600);
    const std::uint8_t* data = bytes.data();
    std::size_t left = bytes.size();
    while (left > 0) {
        ssize_t n = ::write(fd, data, left);
        if (n < 0) {
            if (errno == EINTR) {
                continue;
            }
            int code = errno;
            ::close(fd);
            ::unlink(temporary.c_str());
            return failWith(error, path, code);
        }
        data += n;
        left -= static_cast<std::size_t>(n);
    }
    if (::close(fd) != 0) {
        int code = errno;
        ::unlink(temporary.c_str());
        return failWith(error, path, code);
    }
    if (::rename(temporary.c_str(), path.c_str()) != 0) {
        int code = errno;
        ::unlink(temporary.c_str());
        return failWith(error, path, code);
    }
    return true;
}

bool setMode(const std::string& path, unsigned mode)
{
    return ::chmod(path.c_str(), mode) == 0;
}

} // namespace velder::FileIO

#include "core/InstallSwap.h"

#include <filesystem>

namespace velder::InstallSwap {

namespace fs = std::filesystem;

std::string previousOf(const std::string& root)
{
    return root + ".previous";
}

void removePrevious(const std::string& root)
{
    std::error_code ignored;
    fs::remove_all(previousOf(root), ignored);
}

std::optional<std::string> swap(const std::string& root, const std::string& staged)
{
    std::string incoming = root + ".incoming";
    std::string previous = previousOf(root);
    std::error_code error;
    auto failed = [&](const std::string& step) {
        std::string why = step + " (" + error.message() + ")";
        std::error_code ignored;
        fs::remove_all(incoming, ignored);
        return why;
    };
    if (!fs::is_directory(root, error) || !fs::is_regular_file(fs::path(staged) / "bin" / "velder", error)) {
        return "the installation or the update is not where it should be";
    }
    fs::remove_all(incoming, error);
    if (!error) {
        fs::remove_all(previous, error);
    }
    if (error) {
        return failed("could not clear " + previous);
    }
    fs::copy(staged, incoming, fs::copy_options::recursive | fs::copy_options::copy_symlinks, error);
    if (error) {
        return failed("could not copy the update beside " + root);
    }
    fs::rename(root, previous, error);
    if (error) {
        return failed("could not move " + root + " aside");
    }
    fs::rename(incoming, root, error);
    if (error) {
        std::string why = failed("could not move the update into " + root);
        std::error_code rollback;
        fs::rename(previous, root, rollback);
        return why;
    }
    return std::nullopt;
}

} // namespace velder::InstallSwap

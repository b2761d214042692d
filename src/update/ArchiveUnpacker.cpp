#include "update/ArchiveUnpacker.h"

#include "core/ArchiveEntryRule.h"

#include <archive.h>
#include <archive_entry.h>
#include <filesystem>
#include <memory>

namespace velder::ArchiveUnpacker {

namespace fs = std::filesystem;

namespace {

struct ReadDeleter {
    void operator()(archive* reader) const { archive_read_free(reader); }
};
struct WriteDeleter {
    void operator()(archive* writer) const { archive_write_free(writer); }
};

std::unique_ptr<archive, ReadDeleter> openArchive(const std::string& path)
{
    std::unique_ptr<archive, ReadDeleter> reader(archive_read_new());
    archive_read_support_filter_xz(reader.get());
    archive_read_support_format_tar(reader.get());
    if (archive_read_open_filename(reader.get(), path.c_str(), 65536) != ARCHIVE_OK) {
        return nullptr;
    }
    return reader;
}

std::string errorOf(archive* handle)
{
    const char* text = archive_error_string(handle);
    return text ? text : "the archive can't be read";
}

// The entry's refusal under the rule, or for a kind of file an update has no use for.
std::optional<std::string> judge(archive_entry* entry)
{
    const char* name = archive_entry_pathname(entry);
    std::string path = name ? name : "";
    const char* hardlink = archive_entry_hardlink(entry);
    if (hardlink) {
        return ArchiveEntryRule::refusal(path, ArchiveEntryRule::Kind::hardLink, hardlink);
    }
    switch (archive_entry_filetype(entry)) {
    case AE_IFREG:
    case AE_IFDIR:
        return ArchiveEntryRule::refusal(path);
    case AE_IFLNK: {
        const char* target = archive_entry_symlink(entry);
        return ArchiveEntryRule::refusal(path, ArchiveEntryRule::Kind::symbolicLink, target ? target : "");
    }
    default:
        return "the entry \"" + path + "\" is not a file, a folder or a link";
    }
}

// The first entry the rule refuses, or an archive that can't be read through to its end.
std::optional<std::string> judgeAll(const std::string& path)
{
    auto reader = openArchive(path);
    if (!reader) {
        return "the archive can't be opened";
    }
    archive_entry* entry = nullptr;
    int status = ARCHIVE_OK;
    while ((status = archive_read_next_header(reader.get(), &entry)) == ARCHIVE_OK) {
        if (auto refusal = judge(entry)) {
            return refusal;
        }
    }
    return status == ARCHIVE_EOF ? std::nullopt : std::optional(errorOf(reader.get()));
}

std::optional<std::string> extract(const std::string& path, const fs::path& into)
{
    auto reader = openArchive(path);
    if (!reader) {
        return "the archive can't be opened";
    }
    std::unique_ptr<archive, WriteDeleter> writer(archive_write_disk_new());
    archive_write_disk_set_options(writer.get(),
        ARCHIVE_EXTRACT_TIME | ARCHIVE_EXTRACT_PERM | ARCHIVE_EXTRACT_SECURE_SYMLINKS
            | ARCHIVE_EXTRACT_SECURE_NODOTDOT);
    archive_entry* entry = nullptr;
    int status = ARCHIVE_OK;
    while ((status = archive_read_next_header(reader.get(), &entry)) == ARCHIVE_OK) {
        std::string target = (into / archive_entry_pathname(entry)).string();
        archive_entry_set_pathname(entry, target.c_str());
        if (const char* hardlink = archive_entry_hardlink(entry)) {
            std::string linked = (into / hardlink).string();
            archive_entry_set_hardlink(entry, linked.c_str());
        }
        if (archive_write_header(writer.get(), entry) < ARCHIVE_WARN) {
            return errorOf(writer.get());
        }
        const void* block = nullptr;
        size_t size = 0;
        la_int64_t offset = 0;
        int read = ARCHIVE_OK;
        while ((read = archive_read_data_block(reader.get(), &block, &size, &offset)) == ARCHIVE_OK) {
            if (archive_write_data_block(writer.get(), block, size, offset) < ARCHIVE_WARN) {
                return errorOf(writer.get());
            }
        }
        if (read != ARCHIVE_EOF) {
            return errorOf(reader.get());
        }
        if (archive_write_finish_entry(writer.get()) < ARCHIVE_WARN) {
            return errorOf(writer.get());
        }
    }
    if (status != ARCHIVE_EOF) {
        return errorOf(reader.get());
    }
    return archive_write_close(writer.get()) == ARCHIVE_OK ? std::nullopt : std::optional(errorOf(writer.get()));
}

} // namespace

std::optional<std::string> unpack(const std::string& archive, const std::string& destination)
{
    if (auto refusal = judgeAll(archive)) {
        return refusal;
    }
    fs::path partial = destination + ".partial";
    std::error_code error;
    fs::remove_all(partial, error);
    fs::create_directories(partial, error);
    if (error) {
        return "could not make " + partial.string() + " (" + error.message() + ")";
    }
    auto failure = extract(archive, partial);
    if (!failure) {
        fs::remove_all(destination, error);
        fs::rename(partial, destination, error);
        if (error) {
            failure = "could not move the unpacked update into place (" + error.message() + ")";
        }
    }
    if (failure) {
        fs::remove_all(partial, error);
    }
    return failure;
}

} // namespace velder::ArchiveUnpacker

#include "core/platform/file_replace.h"

#include <cerrno>

#if defined(__unix__)
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#else
#error "Replacing a file has no implementation for this system yet."
#endif

namespace quillmere {
namespace {

namespace fs = std::filesystem;

constexpr int kMostLinks = 40;         // as the kernel's own bound on a chain of links
constexpr mode_t kNewFileMode = 0666;  // less the umask

std::error_code LastError() {
    return {errno, std::generic_category()};
}

// Closes the descriptor at the end of the scope.
class CDescriptor {
public:
    explicit CDescriptor(int fd) : m_fd(fd) {}
    CDescriptor(const CDescriptor&) = delete;
    CDescriptor& operator=(const CDescriptor&) = delete;
    ~CDescriptor() { Close(); }

    int Get() const { return m_fd; }
    // Some file systems tell a failed write only here.
    std::error_code Close() {
        const int fd = m_fd;
        m_fd = -1;
        return fd >= 0 && close(fd) != 0 ? LastError() : std::error_code();
    }

private:
    int m_fd;
};

// The file that a chain of symbolic links ends in, which need not exist.
fs::path FollowLinks(fs::path file) {
    std::error_code error;
    for (int i = 0; i < kMostLinks && fs::is_symlink(file, error); ++i) {
        const fs::path target = fs::read_symlink(file, error);
        if (error) {
            break;
        }
        file = target.is_absolute() ? target : file.parent_path() / target;
    }
    return file;
}

std::error_code WriteAll(int fd, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t written = write(fd, bytes.data(), bytes.size());
        if (written < 0 && errno != EINTR) {
            return LastError();
        }
        if (written > 0) {
            bytes.remove_prefix(static_cast<std::size_t>(written));
        }
    }
    return {};
}

std::error_code
WritePending(const fs::path& pending, const struct stat* oldFile, std::string_view bytes) {
    CDescriptor out(
        open(pending.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC | O_NOFOLLOW, kNewFileMode));
    if (out.Get() < 0) {
        return LastError();
    }
    if (oldFile != nullptr && fchmod(out.Get(), oldFile->st_mode & 07777) != 0) {
        return LastError();
    }
    if (const auto error = WriteAll(out.Get(), bytes)) {
        return error;
    }
    if (fsync(out.Get()) != 0) {
        return LastError();
    }
    return out.Close();
}

}  // namespace

std::error_code ReadWholeFile(const fs::path& file, std::string& bytes) {
    bytes.clear();
    struct stat status {};
    if (stat(file.c_str(), &status) != 0) {
        return LastError();
    }
    if (!S_ISREG(status.st_mode)) {
        return std::make_error_code(S_ISDIR(status.st_mode) ? std::errc::is_a_directory
                                                            : std::errc::invalid_argument);
    }
    const CDescriptor in(open(file.c_str(), O_RDONLY | O_CLOEXEC));
    if (in.Get() < 0) {
        return LastError();
    }
    char block[1 << 16];
    for (;;) {
        const ssize_t count = read(in.Get(), block, sizeof(block));
        if (count == 0) {
            return {};
        }
        if (count > 0) {
            bytes.append(block, static_cast<std::size_t>(count));
        } else if (errno != EINTR) {
            return LastError();
        }
    }
}

std::error_code ReplaceFileContent(const fs::path& file, std::string_view bytes) {
    if (file.empty()) {
        return std::make_error_code(std::errc::no_such_file_or_directory);
    }
    const fs::path target = FollowLinks(file);
    std::error_code error;
    if (target.has_parent_path()) {
        fs::create_directories(target.parent_path(), error);
        if (error) {
            return error;
        }
    }
    struct stat status {};
    const bool isThere = stat(target.c_str(), &status) == 0;
    if (isThere && S_ISDIR(status.st_mode)) {
        return std::make_error_code(std::errc::is_a_directory);
    }
    if (isThere && access(target.c_str(), W_OK) != 0) {
        return LastError();
    }
    // The process number keeps two programs that save at the same moment out of each other's file.
    fs::path pending = target;
    pending += ".SAVE_PENDING." + std::to_string(getpid());
    error = WritePending(pending, isThere ? &status : nullptr, bytes);
    if (!error && std::rename(pending.c_str(), target.c_str()) != 0) {
        error = LastError();
    }
    if (error) {
        unlink(pending.c_str());
    }
    return error;
}

std::error_code BackupBeforeSave(const fs::path& file) {
    std::error_code error;
    const fs::file_status status = fs::status(file, error);
    if (!fs::exists(status) || fs::is_directory(status))
        return {};
    const auto backupName = [&](const std::string& number) {
        fs::path name = file;
        return name += number + ".BAK";
    };
    fs::path backup = backupName("");
    if (!fs::is_directory(backup, error))
        fs::remove(backup, error);
    for (int number = 1; fs::exists(fs::symlink_status(backup, error)); ++number)
        backup = backupName(std::to_string(number));
    fs::rename(file, backup, error);
    return error;
}

}  // namespace quillmere

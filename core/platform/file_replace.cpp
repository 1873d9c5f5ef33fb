#include "core/platform/file_replace.h"

#include <atomic>
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

constexpr int kMostBackups = 10'000;   // numbered ones; more would be a folder gone wild
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

std::error_code WritePending(const fs::path& pending,
                             const struct stat* oldFile,
                             std::string_view bytes,
                             bool& cannotOpen) {
    CDescriptor out(
        open(pending.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC | O_NOFOLLOW, kNewFileMode));
    cannotOpen = out.Get() < 0;
    if (cannotOpen) {
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

// The numbers keep two programs, and two threads, that save at the same moment out of each other's
// file.
fs::path PendingName(const fs::path& file, std::string_view purpose) {
    static std::atomic<unsigned> savesOfProgram{0};
    fs::path name = file;
    name += "." + std::string(purpose) + "_PENDING.";
    return name += std::to_string(getpid()) + "." + std::to_string(++savesOfProgram);
}

fs::path FolderOf(const fs::path& file) {
    return file.has_parent_path() ? file.parent_path() : fs::path(".");
}

// Brings the names in the folder to the disk.
std::error_code FlushFolder(const fs::path& folder) {
    const CDescriptor in(open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    // A folder that may be written but not read, and file systems that know no such flush.
    if (in.Get() < 0 || fsync(in.Get()) == 0 || errno == EINVAL || errno == EROFS)
        return {};
    return LastError();
}

std::error_code Rename(const fs::path& from, const fs::path& to) {
    return std::rename(from.c_str(), to.c_str()) == 0 ? std::error_code() : LastError();
}

// Backups

fs::path BackupName(const fs::path& file, const std::string& number) {
    fs::path name = file;
    return name += number + ".BAK";
}

// Makes an empty file of a name that is free.
bool Reserve(const fs::path& file) {
    const CDescriptor out(
        open(file.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, kNewFileMode));
    return out.Get() >= 0;
}

std::error_code CopyContent(const fs::path& from, const struct stat& status, const fs::path& to) {
    std::string bytes;
    if (const auto error = ReadWholeFile(from, bytes))
        return error;
    bool cannotOpen = false;
    return WritePending(to, &status, bytes, cannotOpen);
}

// Gives the content of `target` the backup name of `file`, and leaves it its own name too.
std::error_code
KeepBackup(const fs::path& file, const fs::path& target, const struct stat& status) {
    // 1. A second name, so that nothing is moved or written; a copy where disks do not know them.
    const fs::path pending = PendingName(file, "BACKUP");
    unlink(pending.c_str());
    std::error_code error;
    if (link(target.c_str(), pending.c_str()) != 0)
        error = CopyContent(target, status, pending);
    // 2. In place of the older backup, or beside one that stays.
    if (!error) {
        error = Rename(pending, BackupName(file, ""));
        for (int number = 1; error && number <= kMostBackups; ++number) {
            const fs::path backup = BackupName(file, std::to_string(number));
            if (Reserve(backup))
                error = Rename(pending, backup);
        }
    }
    // 3. A rename between two names of one file, as after a kill in mid-save, does nothing.
    unlink(pending.c_str());
    return error ? error : FlushFolder(FolderOf(file));
}

// What stands in the way of a new content before anything is written.
std::error_code PrepareTarget(const fs::path& target, bool isThere, const struct stat& status) {
    if (target.has_parent_path()) {
        std::error_code error;
        fs::create_directories(target.parent_path(), error);
        if (error) {
            return error;
        }
    }
    if (isThere && S_ISDIR(status.st_mode)) {
        return std::make_error_code(std::errc::is_a_directory);
    }
    // A file in place of a pipe or a device would be found by whoever reads from that.
    if (isThere && !S_ISREG(status.st_mode)) {
        return std::make_error_code(std::errc::invalid_argument);
    }
    if (isThere && access(target.c_str(), W_OK) != 0) {
        return LastError();
    }
    return {};
}

std::error_code
Replace(const fs::path& file, std::string_view bytes, bool keepsBackup, bool& cannotOpen) {
    // 1. What is to be replaced.
    cannotOpen = true;
    if (file.empty()) {
        return std::make_error_code(std::errc::no_such_file_or_directory);
    }
    const fs::path target = FollowLinks(file);
    struct stat status {};
    const bool isThere = stat(target.c_str(), &status) == 0;
    if (const std::error_code error = PrepareTarget(target, isThere, status)) {
        return error;
    }
    // 2. The new content, then the backup, then the name.
    const fs::path pending = PendingName(target, "SAVE");
    std::error_code error = WritePending(pending, isThere ? &status : nullptr, bytes, cannotOpen);
    if (!error && isThere && keepsBackup) {
        error = KeepBackup(file, target, status);
    }
    if (!error) {
        error = Rename(pending, target);
    }
    if (error) {
        unlink(pending.c_str());
        return error;
    }
    return keepsBackup ? FlushFolder(FolderOf(target)) : std::error_code();
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
    bool cannotOpen = false;
    return Replace(file, bytes, false, cannotOpen);
}

std::error_code
ReplaceFileKeepingBackup(const fs::path& file, std::string_view bytes, bool* cannotOpen) {
    bool ignored = false;
    return Replace(file, bytes, true, cannotOpen != nullptr ? *cannotOpen : ignored);
}

std::error_code BackupBeforeSave(const fs::path& file) {
    std::error_code error;
    const fs::file_status status = fs::status(file, error);
    if (!fs::exists(status) || fs::is_directory(status))
        return {};
    fs::path backup = BackupName(file, "");
    if (!fs::is_directory(backup, error))
        fs::remove(backup, error);
    for (int number = 1; fs::exists(fs::symlink_status(backup, error)); ++number)
        backup = BackupName(file, std::to_string(number));
    fs::rename(file, backup, error);
    return error;
}

}  // namespace quillmere

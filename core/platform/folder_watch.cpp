#include "core/platform/folder_watch.h"

#include <cerrno>
#include <cstring>
#include <sys/stat.h>
#include <unistd.h>

#if defined(__linux__)
#include <sys/inotify.h>
#endif

namespace quillmere {
namespace {

#if defined(__linux__)

// Room for some events with names.
constexpr std::size_t kEventBytes = 16'384;

int OpenWatch(const std::filesystem::path& folder) {
    constexpr u32 kEvents = IN_MODIFY | IN_ATTRIB | IN_CLOSE_WRITE | IN_CREATE | IN_DELETE |
                            IN_MOVED_FROM | IN_MOVED_TO | IN_DELETE_SELF | IN_MOVE_SELF |
                            IN_ONLYDIR;
    const int fd = inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
    if (fd >= 0 && inotify_add_watch(fd, folder.c_str(), kEvents) < 0) {
        close(fd);
        return -1;
    }
    return fd;
}

struct TEvents {
    bool isAny = false;
    // The folder is gone, or the system has ended the watch.
    bool isEnd = false;
};

TEvents TakeEvents(int fd) {
    TEvents taken;
    alignas(inotify_event) char block[kEventBytes];
    for (;;) {
        const ssize_t size = read(fd, block, sizeof(block));
        if (size < 0 && errno == EINTR)
            continue;
        if (size <= 0) {
            taken.isEnd = taken.isEnd || (size < 0 && errno != EAGAIN);
            return taken;
        }
        taken.isAny = true;
        for (ssize_t place = 0; place < size;) {
            inotify_event event{};
            std::memcpy(&event, block + place, sizeof(event));
            taken.isEnd =
                taken.isEnd || (event.mask & (IN_IGNORED | IN_MOVE_SELF | IN_UNMOUNT)) != 0;
            place += static_cast<ssize_t>(sizeof(event) + event.len);
        }
    }
}

#endif

}  // namespace

CFolderWatch::~CFolderWatch() {
    Stop();
}

bool CFolderWatch::Start(const std::filesystem::path& folder) {
    Stop();
#if defined(__linux__)
    m_fd = OpenWatch(folder.empty() ? std::filesystem::path(".") : folder);
#endif
    return m_fd >= 0;
}

void CFolderWatch::Stop() {
    if (m_fd >= 0)
        close(m_fd);
    m_fd = -1;
}

bool CFolderWatch::HasEvent() {
    if (m_fd < 0)
        return true;
#if defined(__linux__)
    const TEvents taken = TakeEvents(m_fd);
    if (taken.isEnd)
        Stop();
    return taken.isAny || taken.isEnd;
#else
    return true;
#endif
}

TFileStamp StampOf(const std::filesystem::path& file) {
    TFileStamp stamp;
    struct stat status {};
    if (stat(file.c_str(), &status) != 0)
        return stamp;
    stamp.isThere = true;
    stamp.writeSeconds = status.st_mtim.tv_sec;
    stamp.writeNanoseconds = status.st_mtim.tv_nsec;
    stamp.size = static_cast<u64>(status.st_size);
    return stamp;
}

}  // namespace quillmere

// Tells that something happened to the files of a folder.
#pragma once

#include "core/types.h"

#include <filesystem>

namespace quillmere {

// Names, sizes, write times and other attributes of the files in one folder, not in its sub-folders.
//
// Threads: belongs to the thread that made it.
class CFolderWatch {
public:
    CFolderWatch() = default;
    ~CFolderWatch();
    CFolderWatch(const CFolderWatch&) = delete;
    CFolderWatch& operator=(const CFolderWatch&) = delete;

    // Ends an older watch. False if the system cannot watch the folder.
    bool Start(const std::filesystem::path& folder);
    void Stop();
    // Something happened since Start or the last call. True at every call where the system tells
    // nothing: without a watch, or once the folder itself is gone. Never waits.
    bool HasEvent();

private:
    int m_fd = -1;
};

// What tells one content of a file from the next one.
struct TFileStamp {
    bool isThere = false;
    i64 writeSeconds = 0;
    i64 writeNanoseconds = 0;
    u64 size = 0;

    bool operator==(const TFileStamp&) const = default;
};

// Follows symbolic links. Never throws; a file that cannot be asked about is not there.
TFileStamp StampOf(const std::filesystem::path& file);

}  // namespace quillmere

// The change watch on a file of the disk.
#pragma once

#include "core/platform/folder_watch.h"
#include "problems/change_watch.h"

#include <chrono>

namespace quillmere {

// A file that is missing is no change: many editors take a file away for a moment when they save.
// It is reported when it is back with another content.
class CFileChangeWatch final : public IChangeWatch {
public:
    using TClock = std::chrono::steady_clock;
    // Changes made by another machine, and behind a symbolic link, come without a word from the
    // system; so the file is looked at now and then anyway.
    static constexpr std::chrono::milliseconds kLookAnyway{2000};

    explicit CFileChangeWatch(std::chrono::milliseconds lookAnyway = kLookAnyway)
        : m_lookAnyway(lookAnyway) {}

    void Start(const std::filesystem::path& file) override;
    void Stop() override;
    void Resume() override;
    bool Poll() override;

private:
    std::chrono::milliseconds m_lookAnyway;
    CFolderWatch m_folder;
    std::filesystem::path m_file;
    TFileStamp m_known;
    bool m_isOn = false;
    TClock::time_point m_lastLook;
};

}  // namespace quillmere

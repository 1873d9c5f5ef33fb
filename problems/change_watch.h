// Tells that a file was changed by another program.
#pragma once

#include <filesystem>

namespace quillmere {

// One watched file. The folder is watched for names, sizes and write times, not its sub-folders.
//
// Threads: belongs to the thread that made it.
class IChangeWatch {
public:
    virtual ~IChangeWatch() = default;
    // Begins to watch the file as it is now; what came before is known. Never throws: a file that
    // cannot be watched is simply never reported.
    virtual void Start(const std::filesystem::path& file) = 0;
    virtual void Stop() = 0;
    // Goes on after Stop with the same file and with what was known of it.
    virtual void Resume() = 0;
    // Something happened in the folder, and the write time of the file differs from that of its last
    // read or write. True once for each change. Quick: it is asked in the loop of a window.
    virtual bool Poll() = 0;
};

}  // namespace quillmere

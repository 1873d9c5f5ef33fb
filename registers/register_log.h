// The log of what happens to a register: "registerInfo.log" in the program's folder, written while
// the option RegisterInfoLog is on.
//
// Locking: one lock per log, a leaf; it guards the file, which is opened for each message and closed
// behind it. A message that cannot be written is lost silently: the log must not stop a search.
#pragma once

#include "core/types.h"

#include <filesystem>
#include <mutex>

namespace quillmere {

class CRegisterLog {
public:
    // An empty folder: no log.
    explicit CRegisterLog(const std::filesystem::path& programFolder);

    // Two lines: the message with its two parameters, and the two counts. Never throws.
    void Write(const char* message,
               i32 firstParameter,
               i32 secondParameter,
               u32 elementsIn,
               u32 doubtfulElementsIn) noexcept;

private:
    const std::filesystem::path m_file;
    std::mutex m_lock;
};

}  // namespace quillmere

// Registers of solved positions as the fronts of the program make them.
#pragma once

#include "registers/aggregated_register.h"

#include <filesystem>
#include <optional>

namespace quillmere {

// Settings of a register of so many bytes, with its log in `programFolder`. It has a clock of its
// own that goes on with the questions for the time, so that a search on one thread meets the same
// register in every run.
TRegisterSettings TaskRegisterSettings(u64 memoryLimitBytes,
                                       const std::filesystem::path& programFolder);

// The register that tasks use one after another.
//
// Threads: it belongs to the thread that runs the tasks; what it hands out may be read by any.
class CTaskRegister {
public:
    // `programFolder`: where its log is kept, see TRegisterSettings.
    CTaskRegister(u64 memoryLimitBytes, const std::filesystem::path& programFolder);
    CTaskRegister(const CTaskRegister&) = delete;
    CTaskRegister& operator=(const CTaskRegister&) = delete;

    // Null for a task too short for a register (kRegisterRoot). It is made for the first that is
    // long enough, with what stands in the options then.
    TAggregatedTemporaryChessboardRegister* ForHalfMoves(u16 halfMoves);

private:
    TRegisterSettings m_settings;
    std::optional<TAggregatedTemporaryChessboardRegister> m_register;
};

}  // namespace quillmere

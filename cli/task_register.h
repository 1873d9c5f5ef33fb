// The register of solved positions that tasks use one after another.
//
// Threads: it belongs to the thread that runs the tasks; what it hands out may be read by any.
#pragma once

#include "registers/aggregated_register.h"

#include <filesystem>
#include <optional>

namespace quillmere {

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

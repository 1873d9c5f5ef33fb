#include "session/task_register.h"

#include "core/search_context.h"

#include <atomic>
#include <memory>

namespace quillmere {
namespace {

// A full register drops verdicts for 16 ticks after it has emptied itself: some ten thousand, as it
// would by a clock of milliseconds.
constexpr u64 kQuestionsPerTick = 512;

// A full register asks once for each verdict; a true clock would let the number of nodes hang on the
// speed of the machine.
std::function<u64()> CountingClock() {
    return [questions = std::make_shared<std::atomic<u64>>(0)] {
        return questions->fetch_add(1, std::memory_order_relaxed) / kQuestionsPerTick;
    };
}

}  // namespace

TRegisterSettings TaskRegisterSettings(u64 memoryLimitBytes,
                                       const std::filesystem::path& programFolder) {
    TRegisterSettings settings = RegisterSettingsWithin(memoryLimitBytes);
    settings.programFolder = programFolder;
    settings.tickCount = CountingClock();
    return settings;
}

CTaskRegister::CTaskRegister(u64 memoryLimitBytes, const std::filesystem::path& programFolder)
    : m_settings(TaskRegisterSettings(memoryLimitBytes, programFolder)) {}

TAggregatedTemporaryChessboardRegister* CTaskRegister::ForHalfMoves(u16 halfMoves) {
    if (halfMoves < kRegisterRoot)
        return nullptr;
    if (!m_register)
        m_register.emplace(m_settings);
    return &*m_register;
}

}  // namespace quillmere

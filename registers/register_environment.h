// What a register needs of the outside, and the account that it shares with its sub-registers.
#pragma once

#include "core/platform/tick_count.h"
#include "core/warning_sink.h"
#include "registers/register_limits.h"
#include "registers/register_log.h"
#include "registers/register_memory.h"

#include <atomic>
#include <filesystem>
#include <functional>

namespace quillmere {

// Everything here is called by search threads, and must stand that.
struct TRegisterSettings {
    u64 memoryLimitBytes = 0;
    // Milliseconds of a clock that never goes back.
    std::function<u64()> tickCount = TickCount;
    // Where the log is kept; empty for no log, whatever the option RegisterInfoLog says.
    std::filesystem::path programFolder;
    // Told of contradictory elements; may be null. No lock of the register is held.
    IWarningSink* warnings = nullptr;
    // Told, at most every 600 ms, that the element counts have fallen while a large table is being
    // cleared. Locks of the register are held: it may read counts and must not call anything else.
    std::function<void()> repaint;
    // See CRegisterMemory.
    CRegisterMemory::TMayAllocate mayAllocate;
};

// From the options as they are now, this machine, and the program's folder without "--home".
TRegisterSettings DefaultRegisterSettings();
// The same with a memory limit of its own, in bytes.
TRegisterSettings RegisterSettingsWithin(u64 memoryLimitBytes);

struct TRegisterEnvironment {
    explicit TRegisterEnvironment(const TRegisterSettings& given)
        : settings(given),
          memory(given.memoryLimitBytes, given.mayAllocate),
          elementSpaceBytes(ElementSpaceBytes(given.memoryLimitBytes)),
          elementLimit(ElementLimitOf(given.memoryLimitBytes)),
          log(given.programFolder) {}

    const TRegisterSettings settings;
    CRegisterMemory memory;
    const u64 elementSpaceBytes;
    const u32 elementLimit;
    CRegisterLog log;
    // Elements that an insert made contradictory, mended ones included. They can only come from
    // a wrong verdict: 0 in every run is what tests and benchmarks expect.
    std::atomic<u32> incoherentElements{0};
};

}  // namespace quillmere

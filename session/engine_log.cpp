#include "session/engine_log.h"

#include "core/platform/local_time.h"
#include "core/platform/process_id.h"

#include <algorithm>
#include <array>
#include <fmt/format.h>
#include <fstream>
#include <mutex>
#include <system_error>

namespace quillmere {
namespace {

std::mutex g_logLock;

}  // namespace

std::string EngineLogLine(const std::tm& time, int processId, std::string_view text) {
    std::array<char, 32> stamp{};
    const std::size_t length =
        std::strftime(stamp.data(), stamp.size(), "%Y-%m-%d %H:%M:%S", &time);
    std::string line =
        fmt::format("{}, {}: {}", std::string_view(stamp.data(), length), processId, text);
    std::replace(line.begin(), line.end(), '\n', ' ');
    return line + "\n";
}

std::string EngineEndText(const std::string& answer, bool isStopped, const std::string& version) {
    return fmt::format("{}{}, version: {}",
                       isStopped ? "Engine stopped: " : "Engine has completed: ",
                       answer,
                       version);
}

void LogEngineEnd(const std::filesystem::path& programFolder,
                  const std::string& answer,
                  bool isStopped) {
    if (programFolder.empty())
        return;
    const std::string text = EngineEndText(answer, isStopped, QUILLMERE_VERSION);
    const std::lock_guard lock(g_logLock);
    std::error_code error;
    std::filesystem::create_directories(programFolder, error);
    std::ofstream file(programFolder / kEngineLogName, std::ios::binary | std::ios::app);
    file << EngineLogLine(LocalTime(), ProcessId(), text);
}

}  // namespace quillmere

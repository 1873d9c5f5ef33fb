#include "cli/task_log.h"

#include "core/chess_exception.h"
#include "session/options.h"

namespace quillmere {

bool WantsTaskLog(const TArguments& arguments, const std::filesystem::path& programFolder) {
    if (!arguments.Has("--log-moves"))
        return g_options.LogMoves;
    if (programFolder.empty())
        throw ChessException(EMessage::kNoProgramFolder);
    std::error_code error;
    std::filesystem::create_directories(programFolder, error);
    if (error)
        throw ChessException(EMessage::kCannotWriteFile, {programFolder.string(), error.message()});
    return true;
}

CTaskLog::CTaskLog(bool isWanted,
                   const std::filesystem::path& programFolder,
                   int problemNumber,
                   int threads) {
    for (int thread = 0; isWanted && thread < threads; ++thread)
        m_logs.push_back(
            std::make_unique<CMovesLog>(MovesLogFile(programFolder, problemNumber, thread), *this));
}

std::vector<CMovesLog*> CTaskLog::Logs() {
    std::vector<CMovesLog*> logs;
    for (const auto& log : m_logs)
        logs.push_back(log.get());
    return logs;
}

void CTaskLog::Warn(EMessage /*title*/, EMessage text, const std::vector<std::string>& values) {
    const std::lock_guard lock(m_mutex);
    m_warnings.emplace_back(text, values);
}

void CTaskLog::Tell(CConsole& console) const {
    for (const auto& [text, values] : m_warnings)
        console.Note(console.Text(text, values));
}

}  // namespace quillmere

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

CTaskLog::CTaskLog(bool isWanted, const std::filesystem::path& programFolder, int problemNumber) {
    constexpr int kOnlyThread = 0;
    if (isWanted)
        m_log.emplace(MovesLogFile(programFolder, problemNumber, kOnlyThread), *this);
}

void CTaskLog::Warn(EMessage /*title*/, EMessage text, const std::vector<std::string>& values) {
    m_warnings.emplace_back(text, values);
}

void CTaskLog::Tell(CConsole& console) const {
    for (const auto& [text, values] : m_warnings)
        console.Note(console.Text(text, values));
}

}  // namespace quillmere

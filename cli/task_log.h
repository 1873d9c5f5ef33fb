// The moves log of one solved position.
#pragma once

#include "cli/arguments.h"
#include "cli/console.h"
#include "core/warning_sink.h"
#include "search/moves_log.h"

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace quillmere {

// --log-moves, or the option LogMoves, asks for a log. Makes the program's folder for the former, since
// nothing else may have been written there yet. Throws ChessException if there can be none.
bool WantsTaskLog(const TArguments& arguments, const std::filesystem::path& programFolder);

// Made before the task is run, told after it; the warning of the searching thread is kept between.
class CTaskLog : public IWarningSink {
public:
    // problemNumber: of the position in the call, from 1.
    CTaskLog(bool isWanted, const std::filesystem::path& programFolder, int problemNumber);

    // For TTaskRequest::movesLog; null where no log is wanted.
    CMovesLog* Log() { return m_log ? &*m_log : nullptr; }

    void Warn(EMessage title, EMessage text, const std::vector<std::string>& values) override;
    void Tell(CConsole& console) const;

private:
    std::optional<CMovesLog> m_log;
    std::vector<std::pair<EMessage, std::vector<std::string>>> m_warnings;
};

}  // namespace quillmere

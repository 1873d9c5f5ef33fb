// The moves log of one solved position.
#pragma once

#include "cli/arguments.h"
#include "cli/console.h"
#include "core/warning_sink.h"
#include "search/moves_log.h"

#include <filesystem>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace quillmere {

// --log-moves, or the option LogMoves, asks for a log. Makes the program's folder for the former, since
// nothing else may have been written there yet. Throws ChessException if there can be none.
bool WantsTaskLog(const TArguments& arguments, const std::filesystem::path& programFolder);

// Made before the task is run, told after it; the warnings of the searching threads are kept between.
class CTaskLog : public IWarningSink {
public:
    // problemNumber: of the position in the call, from 1. threads: of the task; each has a file.
    CTaskLog(bool isWanted,
             const std::filesystem::path& programFolder,
             int problemNumber,
             int threads = 1);

    // For TTaskRequest::movesLogs; empty where no log is wanted.
    std::vector<CMovesLog*> Logs();

    void Warn(EMessage title, EMessage text, const std::vector<std::string>& values) override;
    void Tell(CConsole& console) const;

private:
    std::vector<std::unique_ptr<CMovesLog>> m_logs;
    std::mutex m_mutex;  // guards m_warnings, which each thread may add to; a leaf
    std::vector<std::pair<EMessage, std::vector<std::string>>> m_warnings;
};

}  // namespace quillmere

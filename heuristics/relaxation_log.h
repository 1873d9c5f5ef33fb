// The log of the ladder: "TryRelaxSpecialHeuristics.log" in the program's folder, written while the
// option TryRelaxSpecialHeuristicsLog is on. Each walk down the ladder is told by two lines, the
// word before and the word after it:
//
//     "2024-03-09 17:05:00 BEFORE th=0 SH_SAVEQUEEN/ROOK QuickMode"
//
// Between them a line may stand that tells of a decision by the time of the passes.
//
// Locking: one lock for the whole process, a leaf; it guards the file, which is opened for each
// line and closed behind it. A line that cannot be written is lost silently: the log must not stop
// a search.
#pragma once

#include "core/chessboard.h"
#include "core/platform/local_time.h"

#include <ctime>
#include <filesystem>
#include <functional>
#include <string>

namespace quillmere {

class CRelaxationLog {
public:
    using TClock = std::function<std::tm()>;

    // An empty folder: no log.
    explicit CRelaxationLog(const std::filesystem::path& programFolder, TClock clock = LocalTime);

    // The word of the node, before or after a relaxation. Never throws.
    void Write(const TChessboard& node, bool before) noexcept;
    // A line without its end, as it is. Never throws.
    void WriteLine(const std::string& line) noexcept;

private:
    std::string LineOf(const TChessboard& node, bool before) const;
    template <class TMakeLine>
    void Append(TMakeLine makeLine) noexcept;

    const std::filesystem::path m_file;
    const TClock m_clock;
};

// Writes to the log of the node's analysis (TSearchContext::relaxationLog), if it has one.
void LogRelaxation(const TChessboard& node, bool before);
// The same for a line about the time of a pass.
void LogRelaxationTime(const TChessboard& node, const std::string& line);

}  // namespace quillmere

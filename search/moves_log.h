// The moves log: what a search tried, line by line, for whoever wants to know why it answers as it
// does. Formats and words are the rows of search/moves_log.def.
//
// Each search thread writes a file of its own, "MovesLogger_problem" + number + "_thread" + number
// + ".log" in the program's folder, and appends to what is there. A line is in the file when the
// call returns. The log hangs on the thread context (TThreadContext::movesLog); a thread without
// one runs the nodes that do not know the log at all. Whoever made the log owns it, and it must
// outlive the search.
//
// A move and its result stand at the same indentation, one blank a ply, with the same number:
//
//     " 1.Qa1-a8+ 0N4...", "  1 ... Kh8-h7", "  1 ... mate", " 1.mate"
//
// Locking: one lock for the whole process is held while a line is formatted and written. A leaf:
// the warning of a failure is told after it is given back.
#pragma once

#include "core/chessboard.h"
#include "core/verdict.h"
#include "core/warning_sink.h"

#include <filesystem>
#include <fstream>
#include <string_view>

namespace quillmere {

// Lines deeper than this below the root (half-moves) are not written.
constexpr int kMaxLoggedPly = 600;

std::filesystem::path
MovesLogFile(const std::filesystem::path& programFolder, int problemNumber, int threadNumber);

class CMovesLog {
public:
    // The file is opened with the first line. If it cannot be opened or written, `warnings` is
    // told so, once, by the thread that wrote, and nothing more is written.
    CMovesLog(std::filesystem::path file, IWarningSink& warnings);

    // The next first move of white is told with the pass it stands in; `variant` tells apart the
    // passes with heuristics. The first of the log, and the first after m_pass changed, are told
    // so in any case.
    void StartPass(char variant);

    const std::filesystem::path& File() const { return m_file; }
    bool HasFailed() const { return m_hasFailed; }

private:
    friend class CLogLine;

    std::filesystem::path m_file;
    IWarningSink& m_warnings;
    std::ofstream m_stream;
    bool m_hasFailed = false;
    char m_variant = 'a';
    int m_toldPass = -1;  // the pass that was told last, -1 before the first
};

// All of these do nothing if the thread of the node has no log, while the log is hidden
// (TThreadContext::isLogHidden), and below kMaxLoggedPly. They allocate.

// `node` is the position after the move; its parent tells what moved. A node without a parent gets
// the plain form, squares alone. After white's first move stands the identifier of the position.
void LogMove(const TChessboard& node, TMove move, bool isBlack);

// The result of the move that led to `node`. A doubt is followed by its cause, the last that the
// thread noted (TThreadContext::doubtCause).
void LogResult(const TChessboard& node, TVerdict result);

// A line of text at the indentation of the node.
void LogText(const TChessboard& node, std::string_view text);

// The register of solved positions knows that the node is a mate.
void LogRegisterMate(const TChessboard& node);

// The node is searched by several threads from here on.
void LogNextThreadLevel(const TChessboard& node);

}  // namespace quillmere

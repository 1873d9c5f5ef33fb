#include "search/moves_log.h"

#include "core/chessboard_id.h"
#include "core/geometry.h"
#include "core/notation.h"
#include "core/thread_context.h"
#include "heuristics/catalogue.h"
#include "search/move_number.h"

#include <cstdio>
#include <mutex>
#include <string>
#include <utility>

namespace quillmere {
namespace {

#define QUILLMERE_LOG_FORMAT(name, format) constexpr char kLog##name[] = format;
#include "search/moves_log.def"
#undef QUILLMERE_LOG_FORMAT

std::mutex& LogMutex() {
    static std::mutex mutex;
    return mutex;
}

// The text of a format that is known when the program is built.
template <std::size_t kSize, typename... TValues>
std::string Format(const char (&format)[kSize], TValues... values) {
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-security"
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
    const int length = std::snprintf(nullptr, 0, format, values...);
    std::string text(static_cast<std::size_t>(length), '\0');
    std::snprintf(text.data(), text.size() + 1, format, values...);
#pragma GCC diagnostic pop
    return text;
}

// Of the move that led to the node.
int NumberOfLastMove(const TChessboard& node) {
    TChessboard before = node;
    ++before.m_nMoves;
    return MoveNumberOf(before);
}

std::string Numbered(int number, bool isBlack) {
    return isBlack ? Format(kLogBlackNumber, number) : Format(kLogWhiteNumber, number);
}

std::string Indentation(const TChessboard& node) {
    std::string text;
    for (int i = 0; i < node.Ply(); ++i)
        text += kLogIndentation;
    return text;
}

std::string PassText(const TChessboard& node, char variant) {
    if (node.m_pass != kPassHeuristics)
        return Format(kLogPass, static_cast<int>(node.m_pass));
    return Format(kLogPassOne,
                  variant,
                  static_cast<int>(node.Heur),
                  static_cast<int>(node.HeurParams),
                  HeuristicsText(node).c_str());
}

// The sign that stands behind the number of a move.
std::string SignOf(bool isBlack) {
    const std::string numbered = Numbered(0, isBlack);
    return numbered.substr(1);
}

std::string WordOf(TVerdict result, int number, const std::string& sign) {
    switch (result) {
    case kMate:
        return Format(kLogMate, number, sign.c_str());
    case kNoMate:
        return Format(kLogNoMate, number, sign.c_str());
    case kDoubtful:
        return Format(kLogDoubtful, number, sign.c_str());
    case kRepetition:
        return Format(kLogRepetition, number, sign.c_str());
    case kEndOfForced:
        return Format(kLogEndOfForced, number, sign.c_str());
    default:
        return Format(kLogResultError, number, sign.c_str());
    }
}

std::string DoubtLine(const std::string& word, const TDoubtCause& cause) {
    if (cause.isFromRegister)
        return Format(kLogFromRegister, word.c_str(), static_cast<int>(cause.code));
    if (cause.code >= kDoubtImpossible)
        return Format(kLogImpossible, word.c_str(), static_cast<int>(cause.code));
    const std::string description = cause.code == 0 ? std::string() : HeuristicNames(cause.code);
    return description.empty() ? Format(kLogResult, word.c_str())
                               : Format(kLogByHeuristic, word.c_str(), description.c_str());
}

bool IsWritten(const TChessboard& node) {
    const TThreadContext& thread = *node.m_threadContext;
    return thread.movesLog != nullptr && !thread.movesLog->HasFailed() && !thread.isLogHidden &&
           node.Ply() <= kMaxLoggedPly;
}

}  // namespace

// One line: formatted and written under the lock, a failure told after it.
class CLogLine {
public:
    template <typename TMake>
    static void Write(const TChessboard& node, const TMake& makeLine) {
        if (!IsWritten(node))
            return;
        CMovesLog& log = *node.m_threadContext->movesLog;
        {
            const std::lock_guard lock(LogMutex());
            if (!log.m_stream.is_open())
                log.m_stream.open(log.m_file, std::ios::app | std::ios::binary);
            log.m_stream << makeLine(log) << std::flush;
            log.m_hasFailed = !log.m_stream;
            if (log.m_hasFailed)
                log.m_stream.close();
        }
        if (log.m_hasFailed)
            log.m_warnings.Warn(
                EMessage::kTitleWarning, EMessage::kMovesLogFailed, {log.m_file.string()});
    }

    // The pass of the node was not told yet; from now on it is.
    static bool TakePassToTell(CMovesLog& log, const TChessboard& node) {
        return std::exchange(log.m_toldPass, node.m_pass) != node.m_pass;
    }
    static char VariantOf(const CMovesLog& log) { return log.m_variant; }
};

std::filesystem::path
MovesLogFile(const std::filesystem::path& programFolder, int problemNumber, int threadNumber) {
    return programFolder / Format(kLogFileName, problemNumber, threadNumber);
}

CMovesLog::CMovesLog(std::filesystem::path file, IWarningSink& warnings)
    : m_file(std::move(file)), m_warnings(warnings) {}

void CMovesLog::StartPass(char variant) {
    m_variant = variant;
    m_toldPass = -1;
}

void LogMove(const TChessboard& node, TMove move, bool isBlack) {
    CLogLine::Write(node, [&](CMovesLog& log) {
        const std::string indentation = Indentation(node);
        if (node.m_parent == nullptr)
            return Format(kLogPlainMove,
                          indentation.c_str(),
                          'a' + FileOf(move.from),
                          RankOf(move.from) + 1,
                          'a' + FileOf(move.to),
                          RankOf(move.to) + 1);
        const std::string text =
            Numbered(NumberOfLastMove(node), isBlack) + MoveToText(*node.m_parent, move);
        if (isBlack || node.Ply() != 1)
            return Format(kLogMove, indentation.c_str(), text.c_str());
        const std::string id = TChessboardId(node).ToAlphanum6();
        if (!CLogLine::TakePassToTell(log, node))
            return Format(kLogFirstMove, indentation.c_str(), text.c_str(), id.c_str());
        const std::string pass = PassText(node, CLogLine::VariantOf(log));
        return Format(
            kLogFirstMoveOfPass, indentation.c_str(), text.c_str(), id.c_str(), pass.c_str());
    });
}

void LogResult(const TChessboard& node, TVerdict result) {
    CLogLine::Write(node, [&](CMovesLog& /*log*/) {
        // The side that is not to move has made the move.
        const std::string word =
            WordOf(result, NumberOfLastMove(node), SignOf(node.IsWhiteToMove()));
        return Indentation(node) + (result == kDoubtful
                                        ? DoubtLine(word, node.m_threadContext->doubtCause)
                                        : Format(kLogResult, word.c_str()));
    });
}

void LogText(const TChessboard& node, std::string_view text) {
    CLogLine::Write(node, [&](CMovesLog& /*log*/) {
        return Format(kLogText, Indentation(node).c_str(), std::string(text).c_str());
    });
}

void LogRegisterMate(const TChessboard& node) {
    CLogLine::Write(node, [&](CMovesLog& /*log*/) {
        return Format(kLogRegisterMate, Indentation(node).c_str());
    });
}

void LogNextThreadLevel(const TChessboard& node) {
    CLogLine::Write(
        node, [](CMovesLog& /*log*/) { return std::string(kLogNextThreadLevel) + kLogDashes; });
}

}  // namespace quillmere

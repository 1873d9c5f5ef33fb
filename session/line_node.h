// A node inside the played line of a problem, ready for a search.
//
// Castling rights, en passant and the repetition rule follow from the chain of parents, so the
// search needs the whole line and not the board alone. The line is copied: who looks at the problem
// may take moves back while a thread searches. What white can force from the node does not depend on
// the positions before it, though: see CPastLeftOut.
#pragma once

#include "core/chessboard.h"
#include "core/thread_context.h"
#include "core/verdict.h"
#include "problems/chess_problem.h"
#include "search/solve.h"

#include <deque>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace quillmere {

// What an analysis inside the line may be told.
struct TAnalysisRequest {
    // Every move that does it, not only the first.
    bool wantAll = false;
    // The moves from the root to the node; nothing for those that the problem has played when the
    // analysis begins. A session copies them at its start.
    std::optional<std::vector<TMove>> line;
    u64 memoryBytes = 0;  // of the register; 0 for the limit of the options
    std::filesystem::path programFolder;
    // Not owned; null for nobody. The observer is told the moves of the node as first moves.
    ISolveObserver* observer = nullptr;
    ISearchProgress* progress = nullptr;
};

class CLineNode {
public:
    // Plays the moves from the root of the problem again; nothing stands for the moves up to its
    // current node. Throws ChessException if the position or a move is illegal.
    CLineNode(TChessProblem& problem, const std::optional<std::vector<TMove>>& line);
    CLineNode(const CLineNode&) = delete;
    CLineNode& operator=(const CLineNode&) = delete;

    TChessboard& Node() { return m_nodes.back(); }
    // An earlier node of the line, but for the root, has the same position.
    bool IsRepetition() const;

private:
    std::unique_ptr<TMoveMemory> m_memory = std::make_unique<TMoveMemory>();
    TThreadContext m_thread;
    std::deque<TChessboard> m_nodes;  // each the parent of the next; they never move
};

// While it lives, only positions behind `node` count as repeated; the bound of the context comes back
// then.
//
// That a shortest mate never repeats a position says nothing of positions from before its first move:
// white may well have gone a detour, and mate by way of where he was. A defence that "holds" by
// them would be none. And what the register is told behind the node then depends on nothing
// above it.
class CPastLeftOut {
public:
    explicit CPastLeftOut(const TChessboard& node);
    ~CPastLeftOut() { m_context.repetitionBound = m_bound; }
    CPastLeftOut(const CPastLeftOut&) = delete;
    CPastLeftOut& operator=(const CPastLeftOut&) = delete;

private:
    TSearchContext& m_context;
    const u16 m_bound;
};

// Looks at the stop slot, as the nodes of the search do before every move: waits while it is paused.
// True if the thread is to leave.
bool MustLeave(TChessboard& node);

// White, to move in `node`, mates within `halfMoves` (odd, at most those of the node). The node
// itself stays as it is.
TVerdict VerdictWithin(const TChessboard& node, int halfMoves);

// The verdict of a white node that the register of solved positions holds; kNothingKnown without
// one.
TVerdict VerdictOfRegister(const TChessboard& node);

// "Ng1-f3"; the null move as "-".
std::string LineMoveText(const TChessboard& node, TMove move);

}  // namespace quillmere

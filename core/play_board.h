// A board on which moves are played one after another by the rules of the game, for people:
// reading and writing lines of moves, counting legal moves, telling mate and stalemate.
#pragma once

#include "core/chessboard.h"
#include "core/search_context.h"
#include "core/thread_context.h"

#include <deque>
#include <string>
#include <vector>

namespace quillmere {

class CPlayBoard {
public:
    // Room for `halfMoves` moves. The side that is not to move must not be in check.
    CPlayBoard(const TChessboard& position, bool isBlackToMove, int halfMoves = 0);
    CPlayBoard(const CPlayBoard&) = delete;
    CPlayBoard& operator=(const CPlayBoard&) = delete;

    TChessboard& Node() { return m_nodes.back(); }
    bool IsBlackToMove() const { return !m_nodes.back().IsWhiteToMove(); }
    bool IsInCheck() const;
    // Half-moves that there is still room for.
    int MovesLeft() const { return m_nodes.back().m_nMoves; }
    std::vector<TMove> LegalMoves();
    // Throws ChessException if the move is not legal or there is no room for it.
    void Play(TMove move);

private:
    TSearchContext m_context;
    TThreadContext m_thread;
    // Elements stay in place, as each node points to its parent.
    std::deque<TChessboard> m_nodes;
};

// Plays the move and writes it in short notation with its mark, "Qf8+", "e8=N#". Throws ChessException
// as CPlayBoard::Play.
std::string PlayShortMove(CPlayBoard& board, TMove move);

// A move as people read it.
struct TWrittenMove {
    std::string text;   // long notation, "Ng1-f3"
    std::string uci;    // "g1f3"
    std::string check;  // "+", "#" or ""
};

// Plays the line and writes each move. Throws ChessException on an illegal move.
std::vector<TWrittenMove>
WriteLine(const TChessboard& position, bool isBlackToMove, const std::vector<TMove>& moves);
// One move of the position.
TWrittenMove WriteMove(const TChessboard& position, bool isBlackToMove, TMove move);

// "1.Qa3-c1+ Kf1-f2 2.Qc1-d2": the moves with their numbers.
std::string NumberedLine(const std::vector<TWrittenMove>& moves, bool isBlackToMove);

}  // namespace quillmere

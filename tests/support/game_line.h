// A line of play for tests: a root set up from a FEN code, and the nodes that were reached from it
// by legal moves, each linked to its parent as the derived rights want it.
#pragma once

#include "core/fen.h"
#include "core/legality.h"
#include "core/make_move.h"
#include "core/notation.h"
#include "core/thread_context.h"
#include "tests/support/boards.h"

#include <deque>
#include <stdexcept>
#include <string>

namespace quillmere::test {

constexpr const char* kStartPosition = "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR";

class CGameLine {
public:
    // halfMoves as of SetupAnalysisRoot: odd with white to move. It is also the longest line.
    CGameLine(const std::string& fen, u16 halfMoves) : m_thread(halfMoves) {
        TChessboard& root = m_nodes.emplace_back();
        InitBoard(root);
        root.m_threadContext = &m_thread;
        m_thread.rootNode = &root;
        if (!SetFromFENCode(root, fen.c_str(), nullptr, nullptr))
            throw std::runtime_error("no FEN code: " + fen);
        SetupAnalysisRoot(root, halfMoves, true);
    }
    CGameLine(const CGameLine&) = delete;
    CGameLine& operator=(const CGameLine&) = delete;

    TChessboard& Node() { return m_nodes.back(); }
    TThreadContext& Thread() { return m_thread; }

    void Play(TMove move) {
        TChessboard& parent = m_nodes.back();
        TChessboard& child = m_nodes.emplace_back(parent);
        child.m_parent = &parent;
        const int result = parent.IsWhiteToMove() ? MakeWhiteMoveLegal(child, move)
                                                  : MakeBlackMoveLegal(child, move);
        if (result != kMoveMade) {
            m_nodes.pop_back();
            throw std::runtime_error("no legal move: " + MoveToUci(move));
        }
    }

    // Two squares, as in "e2e4", and a letter of a promotion; the texts under test are not used to
    // set up their own tests.
    void Play(const std::string& squares) { Play(MoveOf(squares)); }

    // The move as the search makes it, with its assumptions and rules; the result of the make-move.
    // The line goes on only with kMoveMade.
    int PlayInSearch(TMove move, bool skipKingTest = false) {
        TChessboard& parent = m_nodes.back();
        TChessboard& child = m_nodes.emplace_back(parent);
        child.m_parent = &parent;
        const int result = parent.IsWhiteToMove() ? MakeWhiteMove(child, move)
                                                  : MakeBlackMove(child, move, skipKingTest);
        if (result != kMoveMade)
            m_nodes.pop_back();
        return result;
    }
    int PlayInSearch(const std::string& squares) { return PlayInSearch(MoveOf(squares)); }

private:
    TThreadContext m_thread;
    std::deque<TChessboard> m_nodes;
};

}  // namespace quillmere::test

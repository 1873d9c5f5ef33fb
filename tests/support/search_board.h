// A root of the search for tests: board, search context and thread context in one place.
#pragma once

#include "core/fen.h"
#include "core/make_move.h"
#include "core/notation.h"
#include "core/search_context.h"
#include "core/thread_context.h"

#include <deque>
#include <stdexcept>
#include <string>

namespace quillmere::test {

class CSearchBoard {
public:
    // halfMoves as of SetupAnalysisRoot: odd with white to move. The pass is the one without
    // heuristics.
    CSearchBoard(const std::string& fen, u16 halfMoves) : m_thread(halfMoves) {
        TChessboard& root = m_nodes.emplace_back();
        InitBoard(root);
        if (!SetFromFENCode(root, fen.c_str(), nullptr, nullptr))
            throw std::runtime_error("no FEN code: " + fen);
        root.m_searchContext = &m_context;
        root.m_threadContext = &m_thread;
        root.m_pass = kPassComplete;
        m_thread.rootNode = &root;
        SetupAnalysisRoot(root, halfMoves, true);
    }
    CSearchBoard(const CSearchBoard&) = delete;
    CSearchBoard& operator=(const CSearchBoard&) = delete;

    TChessboard& Root() { return m_nodes.front(); }
    TChessboard& Node() { return m_nodes.back(); }
    TSearchContext& Context() { return m_context; }
    TThreadContext& Thread() { return m_thread; }

    // Makes a move of the search, "e2e4" or "e7e8Q", and goes on to the child.
    int Play(const std::string& text) {
        TMove move{};
        ParseUci(text, move);
        TChessboard& parent = m_nodes.back();
        TChessboard& child = m_nodes.emplace_back(parent);
        child.m_parent = &parent;
        return parent.IsWhiteToMove() ? MakeWhiteMove(child, move)
                                      : MakeBlackMove(child, move, false);
    }

private:
    static void ParseUci(const std::string& text, TMove& move) {
        move = MakeMove(String2Square(text.substr(0, 2)), String2Square(text.substr(2, 2)));
        if (text.size() > 4)
            move.flags = FigureFromLetter(text[4]);
    }

    TSearchContext m_context;
    TThreadContext m_thread;
    std::deque<TChessboard> m_nodes;
};

}  // namespace quillmere::test

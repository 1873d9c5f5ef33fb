// Replies of black under a heuristic, for the tests of the rules: a line of play from a root, and
// whether its last move, a black one, is given up.
#pragma once

#include "core/material.h"
#include "heuristics/heur_params.h"
#include "heuristics/rules.h"
#include "tests/support/search_board.h"

#include <algorithm>
#include <cstddef>
#include <gtest/gtest.h>
#include <ostream>
#include <sstream>
#include <string>

namespace quillmere::test {

// What a case wants besides the word: settings of the thread and of the search, marks of the root.
using TSetUp = void (*)(CSearchBoard& board);

struct TReplyCase {
    const char* name;
    u32 heur;
    const char* fen;
    // At the root: odd with white to move, even with black to move.
    u16 halfMoves;
    // "e2e4 e7e5", black's reply last.
    const char* moves;
    bool isLeftOut;
    TSetUp setUp = nullptr;
};

inline void PrintTo(const TReplyCase& c, std::ostream* out) {
    *out << c.name;
}

// A root in the pass with heuristics, and the line played from it as a black node plays it.
class CReplyLine {
public:
    CReplyLine(const char* fen, u16 halfMoves, u32 heur, TSetUp setUp = nullptr)
        : m_board(fen, halfMoves) {
        m_board.Root().m_pass = kPassHeuristics;
        FillInitialCounts();
        if (setUp != nullptr)
            setUp(m_board);
        SetHeur(m_board.Root(), heur);
    }

    // Moves as in "e2e4 e7e5"; a null move is written with equal squares.
    void Play(const std::string& moves) {
        std::istringstream words(moves);
        std::string word;
        while (words >> word) {
            ASSERT_NE(m_board.Play(word), kMoveIllegal) << word;
            TChessboard& child = Node();
            if (child.IsWhiteToMove()) {
                UpdateAfterBlackMove(child);
                m_isLeftOut = IsReplyLeftOut(child);
            }
        }
    }

    TChessboard& Node() { return m_board.Node(); }
    CSearchBoard& Board() { return m_board; }
    // The answer about the last reply.
    bool IsLeftOut() const { return m_isLeftOut; }

private:
    void FillInitialCounts() {
        THeuristicSettings& settings = m_board.Thread().heuristics;
        for (std::size_t kind = 0; kind < 5; ++kind) {
            settings.InitialWhiteCounts[kind] = m_board.Root().m_counts[2 * kind];
            settings.InitialBlackCounts[kind] = m_board.Root().m_counts[2 * kind + 1];
        }
    }

    CSearchBoard m_board;
    bool m_isLeftOut = false;
};

class ReplyRule : public testing::TestWithParam<TReplyCase> {};

inline std::string NameOfCase(const testing::TestParamInfo<TReplyCase>& info) {
    return info.param.name;
}

// The answer for a case, and that asking changed no square of the board.
inline void CheckReplyCase(const TReplyCase& c) {
    CReplyLine line(c.fen, c.halfMoves, c.heur, c.setUp);
    line.Play(c.moves);
    EXPECT_EQ(line.IsLeftOut(), c.isLeftOut);
    TChessboard copy = line.Node();
    IsReplyLeftOut(copy);
    EXPECT_TRUE(std::equal(
        std::begin(copy.m_board), std::end(copy.m_board), std::begin(line.Node().m_board)));
}

inline THeuristicSettings& SettingsOf(CSearchBoard& board) {
    return board.Thread().heuristics;
}

}  // namespace quillmere::test

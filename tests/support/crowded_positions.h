// Positions full of men around the black king: batteries, pins, double checks, pawns about to
// promote, kings near each other, men on home squares. Where the tests of the last moves have their
// hardest cases.
#pragma once

#include "core/chessboard.h"
#include "core/legality.h"
#include "core/make_move.h"
#include "core/search_context.h"
#include "core/thread_context.h"
#include "tests/support/bridge.h"
#include "tests/support/random_positions.h"
#include "tests/support/reference.h"

#include <array>
#include <cstddef>
#include <optional>
#include <string_view>
#include <vector>

namespace quillmere::test {

inline reference::TRecipe CrowdedRecipe(CRandom& random) {
    constexpr std::string_view kWhiteMixes[] = {
        "QRBNP", "RRBB", "BBNN", "NNRP", "QNP", "PPPPRB", "QQRRBB", "PPPN", "RBNNP", "P"};
    constexpr std::string_view kBlackMixes[] = {"PPPPNB", "QRBNP", "RRBB", "P", "NNN", "QQRB"};
    reference::TRecipe recipe;
    recipe.whiteMen = random.Between(1, 9);
    recipe.blackMen = random.Between(0, 9);
    recipe.whiteLetters = kWhiteMixes[random.Below(static_cast<int>(std::size(kWhiteMixes)))];
    recipe.blackLetters = kBlackMixes[random.Below(static_cast<int>(std::size(kBlackMixes)))];
    recipe.blackKingOnEdge = random.Below(101);
    recipe.blackKingInCorner = random.Chance(30) ? 60 : 0;
    recipe.kingsClose = random.Chance(60) ? 90 : 20;
    recipe.whiteMenClose = random.Between(10, 90);
    recipe.blackMenClose = random.Below(101);
    recipe.pawnsFarAhead = random.Below(101);
    recipe.blackPawnsFarAhead = random.Chance(30) ? 80 : 10;
    recipe.isWhiteAtHome = random.Chance(8);
    recipe.isBlackAtHome = random.Chance(8);
    recipe.isMaterialOfGame = true;
    return recipe;
}

// A node with white to move in both worlds. In half of the cases black has just moved, so that en
// passant is possible and a castling right may be gone.
class CCrowdedNode {
public:
    CCrowdedNode(CRandom& random, u16 halfMoves)
        : CCrowdedNode(random, halfMoves, DrawStart(random)) {}
    CCrowdedNode(CRandom& random, u16 halfMoves, const reference::TPosition& start)
        : m_thread(static_cast<u16>(halfMoves + 1)), m_position(start) {
        bridge::FillBoard(m_nodes[0], start);
        m_nodes[0].m_searchContext = &m_context;
        m_nodes[0].m_threadContext = &m_thread;
        m_nodes[0].m_pass = kPassComplete;
        m_thread.rootNode = &m_nodes[0];
        const bool isWhite = start.isWhiteToMove;
        SetupAnalysisRoot(m_nodes[0], static_cast<u16>(isWhite ? halfMoves : halfMoves + 1), true);
        if (!isWhite)
            PlayBlackMove(random);
    }
    CCrowdedNode(const CCrowdedNode&) = delete;
    CCrowdedNode& operator=(const CCrowdedNode&) = delete;

    TChessboard& Node() { return m_isPlayed ? m_nodes[1] : m_nodes[0]; }
    const reference::TPosition& Position() const { return m_position; }

private:
    static reference::TPosition DrawStart(CRandom& random) {
        if (random.Chance(8)) {
            return reference::RandomEnPassantNest(random, false);
        }
        reference::TRecipe recipe = CrowdedRecipe(random);
        recipe.isWhiteToMove = random.Chance(50);
        return reference::RandomPosition(random, recipe);
    }
    // Double steps first: a capture in passing is what a drawn move seldom allows.
    void PlayBlackMove(CRandom& random) {
        TMoveList list;
        list.count = GetLegalMoves(m_nodes[0], list.moves);
        TMove move = list[random.Below(list.count)];
        for (const TMove step : list) {
            if (m_nodes[0].m_board[step.from] == kBlackPawn && step.from - step.to == 16 &&
                random.Chance(50))
                move = step;
        }
        m_nodes[1] = m_nodes[0];
        m_nodes[1].m_parent = &m_nodes[0];
        MakeBlackMoveLegal(m_nodes[1], move);
        m_position = reference::After(m_position, bridge::ToPlain(move));
        m_isPlayed = true;
    }

    TSearchContext m_context;
    TThreadContext m_thread;
    std::array<TChessboard, 2> m_nodes{};
    reference::TPosition m_position;
    bool m_isPlayed = false;
};

}  // namespace quillmere::test

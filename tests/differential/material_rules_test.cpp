// The exhaustive proof of two rules of core/mate_impossible.h. White to move,
//   - king and two knights against the bare king, and
//   - king and one minor figure against king and exactly one figure,
// without pawns: white forces mate only where it mates with its next move.
//
// What is gone through here: no position of these materials is a mate in exactly two moves. Longer
// mates follow by induction. Let a mate in exactly n >= 3 be given. After white's key there is a
// reply that leaves a mate in exactly n - 1. Neither side took a man on the way: without its minor
// figure, with one knight left against the bare king, or with its minor against the bare king,
// white has no mated position to lead to at all, which is gone through too. And black has no pawn,
// so that nothing new comes onto the board. So that reply leads to a position of the same material,
// a mate in exactly n - 1 >= 2, and down to n - 1 = 2 there is none.
//
// Castling. Only black could castle (white has no rook). It cannot answer a check with it, so that
// mates and mates in one are the same with the right and without. In a mate in two the right only
// adds replies, and it never lifts a stalemate: where black may castle, its king may also step onto
// the square that it crosses. So a mate in two with the right is one without it, and the positions
// below carry no rights. No pawn ever captures en passant.
//
// Symmetry. Without pawns and rights the eight turns and mirrorings of the board change nothing.
// The mated positions are drawn with the black king on the ten squares of the triangle a1-d1-d4 and
// then turned; everything after that works on whole boards.
//
// The way back from the mates. A mate in two that is no mate in one ends in a mate, two moves before
// which no man is taken (see above). So all of them are found by taking moves back to empty squares:
//   mated positions -> positions with a mate in one -> positions with black to move in which every
//   reply leads to a mate in one -> positions with white to move that lead there,
// and the last ones must all have been mates in one. All moves are those of the plain rules of
// tests/support/, and the search itself is tried on a material where mates in two abound.
#include "core/chessboard.h"
#include "core/direct_mates.h"
#include "core/make_move.h"
#include "core/mate_impossible.h"
#include "core/thread_context.h"
#include "tests/support/bridge.h"
#include "tests/support/random_positions.h"
#include "tests/support/reference.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <functional>
#include <gtest/gtest.h>
#include <string>
#include <utility>
#include <vector>

namespace quillmere {
namespace {

using reference::TPlainMove;
using reference::TPosition;

// The two men besides the kings, in FEN letters; '.' for none.
struct TMaterial {
    char first;
    char second;
    std::string Name() const {
        std::string name = "K";
        std::string black = " against k";
        for (const char man : {first, second}) {
            if (man >= 'A' && man <= 'Z')
                name += man;
            else if (man != '.')
                black += man;
        }
        return name + black;
    }
};

constexpr int kTriangle[] = {0, 1, 2, 3, 9, 10, 11, 18, 19, 27};

// A square of a board that was mirrored (bit 0 of the turn: files, bit 1: ranks, bit 2: the long
// diagonal).
int Turned(int square, int turn) {
    int file = square & 7;
    int rank = square >> 3;
    if ((turn & 1) != 0)
        file = 7 - file;
    if ((turn & 2) != 0)
        rank = 7 - rank;
    if ((turn & 4) != 0)
        std::swap(file, rank);
    return rank * 8 + file;
}

TPosition EmptyPosition(bool isWhiteToMove) {
    TPosition position = reference::FromFen("8/8/8/8/8/8/8/8");
    position.isWhiteToMove = isWhiteToMove;
    return position;
}

void Put(TPosition& position, char man, int square) {
    position.squares[square] = man;
    if (man == 'K')
        position.whiteKing = static_cast<signed char>(square);
    if (man == 'k')
        position.blackKing = static_cast<signed char>(square);
}

// A set of positions of one material, one bit each, and the list of its members.
class CPositions {
public:
    explicit CPositions(TMaterial material)
        : m_material(material), m_bits(std::size_t{1} << 18, 0) {}

    // False if it was there already.
    bool Add(const TPosition& position) {
        const std::uint32_t index = IndexOf(position);
        std::uint64_t& word = m_bits[index >> 6];
        const std::uint64_t bit = std::uint64_t{1} << (index & 63);
        if ((word & bit) != 0)
            return false;
        word |= bit;
        m_indices.push_back(index);
        return true;
    }
    bool Has(const TPosition& position) const {
        const std::uint32_t index = IndexOf(position);
        return (m_bits[index >> 6] >> (index & 63) & 1) != 0;
    }
    std::size_t Size() const { return m_indices.size(); }
    void ForEach(bool isWhiteToMove, const std::function<void(const TPosition&)>& use) const {
        for (const std::uint32_t index : m_indices) {
            TPosition position = EmptyPosition(isWhiteToMove);
            Put(position, 'k', static_cast<int>(index >> 18));
            Put(position, 'K', static_cast<int>(index >> 12 & 63));
            Put(position, m_material.first, static_cast<int>(index >> 6 & 63));
            if (m_material.second != '.')
                Put(position, m_material.second, static_cast<int>(index & 63));
            use(position);
        }
    }

private:
    // Squares of black king, white king, first and second man; two like men in rising order.
    std::uint32_t IndexOf(const TPosition& position) const {
        int first = -1;
        int second = -1;
        for (int square = 0; square < 64; ++square) {
            if (position.squares[square] == '.')
                continue;
            if (position.squares[square] == m_material.first && first < 0)
                first = square;
            else if (position.squares[square] == m_material.second)
                second = square;
        }
        return static_cast<std::uint32_t>(position.blackKing << 18 | position.whiteKing << 12 |
                                          first << 6 | (second < 0 ? 0 : second));
    }

    TMaterial m_material;
    std::vector<std::uint64_t> m_bits;
    std::vector<std::uint32_t> m_indices;
};

// Every legal position of the material with the black king on the triangle.
void ForEachPosition(TMaterial material,
                     bool isWhiteToMove,
                     const std::function<void(const TPosition&)>& use) {
    const bool hasSecond = material.second != '.';
    for (const int blackKing : kTriangle) {
        for (int whiteKing = 0; whiteKing < 64; ++whiteKing) {
            for (int first = 0; first < 64; ++first) {
                for (int second = 0; second < (hasSecond ? 64 : 1); ++second) {
                    TPosition position = EmptyPosition(isWhiteToMove);
                    Put(position, 'k', blackKing);
                    Put(position, 'K', whiteKing);
                    Put(position, material.first, first);
                    if (hasSecond)
                        Put(position, material.second, second);
                    // Fewer men than were put there: two of them share a square.
                    if (reference::CountMen(position) == (hasSecond ? 4 : 3) &&
                        !(material.first == material.second && second < first) &&
                        reference::IsLegalPosition(position))
                        use(position);
                }
            }
        }
    }
}

// The legal positions that lead to this one by a move to an empty square of the side that has just
// moved.
void ForEachPredecessor(const TPosition& position,
                        const std::function<void(const TPosition&)>& use) {
    TPosition before = position;
    before.isWhiteToMove = !position.isWhiteToMove;
    for (const TPlainMove step : reference::QuietSteps(before)) {
        TPosition predecessor = before;
        predecessor.squares[step.from] = '.';
        Put(predecessor, position.squares[step.from], step.to);
        if (reference::IsLegalPosition(predecessor))
            use(predecessor);
    }
}

struct TFindings {
    std::size_t mated = 0;
    std::size_t mateInOne = 0;
    // Positions with black to move in which every reply leads to a mate in one.
    std::size_t lost = 0;
    std::vector<TPosition> matesInTwo;
};

CPositions MatedPositions(TMaterial material) {
    CPositions mated(material);
    ForEachPosition(material, false, [&](const TPosition& position) {
        if (!reference::IsMate(position))
            return;
        for (int turn = 0; turn < 8; ++turn) {
            TPosition turned = EmptyPosition(false);
            for (int square = 0; square < 64; ++square) {
                if (position.squares[square] != '.')
                    Put(turned, position.squares[square], Turned(square, turn));
            }
            mated.Add(turned);
        }
    });
    return mated;
}

CPositions MatesInOne(TMaterial material, const CPositions& mated) {
    CPositions mateInOne(material);
    mated.ForEach(false, [&](const TPosition& position) {
        ForEachPredecessor(position, [&](const TPosition& before) { mateInOne.Add(before); });
    });
    return mateInOne;
}

TFindings FindMatesInTwo(TMaterial material, const CPositions& mated, const CPositions& mateInOne) {
    TFindings findings;
    findings.mated = mated.Size();
    findings.mateInOne = mateInOne.Size();
    CPositions seen(material);
    CPositions lost(material);
    mateInOne.ForEach(true, [&](const TPosition& position) {
        ForEachPredecessor(position, [&](const TPosition& before) {
            if (!seen.Add(before))
                return;
            const std::vector<TPlainMove> replies = reference::LegalMoves(before);
            const bool isLost = std::all_of(replies.begin(), replies.end(), [&](TPlainMove reply) {
                const TPosition after = reference::After(before, reply);
                return before.squares[reply.to] == '.' && mateInOne.Has(after);
            });
            if (isLost)
                lost.Add(before);
        });
    });
    findings.lost = lost.Size();
    CPositions found(material);
    lost.ForEach(false, [&](const TPosition& position) {
        ForEachPredecessor(position, [&](const TPosition& before) {
            if (!mateInOne.Has(before) && found.Add(before))
                findings.matesInTwo.push_back(before);
        });
    });
    return findings;
}

// The materials of the two rules.
const TMaterial kRuled[] = {
    {'N', 'N'},
    {'B', 'q'},
    {'B', 'r'},
    {'B', 'b'},
    {'B', 'n'},
    {'N', 'q'},
    {'N', 'r'},
    {'N', 'b'},
    {'N', 'n'},
};

// The search for mates in two itself, where there are many of them: it finds exactly those that the
// brute force finds.
TEST(MaterialRules, SearchForMatesInTwo_FindsThoseOfOneRook) {
    constexpr TMaterial kRook = {'R', '.'};
    const CPositions mated = MatedPositions(kRook);
    const CPositions mateInOne = MatesInOne(kRook, mated);
    const TFindings findings = FindMatesInTwo(kRook, mated, mateInOne);
    CPositions found(kRook);
    for (const TPosition& position : findings.matesInTwo)
        found.Add(position);
    reference::CBruteForce bruteForce;
    int matesInTwo = 0;
    ForEachPosition(kRook, true, [&](const TPosition& position) {
        // The corner, the edge and a square off it.
        if (position.blackKing != 0 && position.blackKing != 2 && position.blackKing != 9)
            return;
        const int shortest = bruteForce.ShortestMate(position, 2);
        EXPECT_EQ(mateInOne.Has(position), shortest == 1) << reference::ToFen(position);
        EXPECT_EQ(found.Has(position), shortest == 2) << reference::ToFen(position);
        matesInTwo += shortest == 2 ? 1 : 0;
    });
    EXPECT_GT(matesInTwo, 100);
}

// What a capture on the way of the two rules leaves has no mated position.
TEST(MaterialRules, WhatACaptureLeaves_HasNoMatedPosition) {
    for (const TMaterial material : {TMaterial{'N', '.'},
                                     TMaterial{'B', '.'},
                                     TMaterial{'q', '.'},
                                     TMaterial{'r', '.'},
                                     TMaterial{'b', '.'},
                                     TMaterial{'n', '.'}})
        EXPECT_EQ(MatedPositions(material).Size(), 0u) << material.Name();
}

TEST(MaterialRules, MaterialOfTheRules_HasNoMateInExactlyTwo) {
    std::size_t mates = 0;
    for (const TMaterial material : kRuled) {
        const CPositions mated = MatedPositions(material);
        const CPositions mateInOne = MatesInOne(material, mated);
        const TFindings findings = FindMatesInTwo(material, mated, mateInOne);
        std::printf("%-12s %7zu mated, %7zu mates in one, %6zu lost in two half-moves more\n",
                    material.Name().c_str(),
                    findings.mated,
                    findings.mateInOne,
                    findings.lost);
        for (const TPosition& position : findings.matesInTwo)
            ADD_FAILURE() << "mate in two: " << reference::ToFen(position);
        mates += findings.mated;
    }
    EXPECT_GT(mates, 200u);
}

// The rule as the program asks it: king and figures as they stand after a black move, white to move,
// with half-moves enough for the rules.
TEST(MaterialRules, TestMateImpossible_SaysNoExactlyWhereThereIsNoMateInOne) {
    for (const TMaterial material : kRuled) {
        const CPositions mateInOne = MatesInOne(material, MatedPositions(material));
        reference::CRandom random(2024);
        const auto expectAnswer = [&](const TPosition& position) {
            TThreadContext thread(9);
            TChessboard node;
            bridge::FillBoard(node, position);
            node.m_threadContext = &thread;
            thread.rootNode = &node;
            SetupAnalysisRoot(node, 9, true);
            EXPECT_EQ(TestMateImpossible(node, true),
                      mateInOne.Has(position) ? kMoveMade : kMateImpossible)
                << reference::ToFen(position);
        };
        mateInOne.ForEach(true, expectAnswer);
        ForEachPosition(material, true, [&](const TPosition& position) {
            if (random.Below(100) == 0)
                expectAnswer(position);
        });
    }
}

}  // namespace
}  // namespace quillmere

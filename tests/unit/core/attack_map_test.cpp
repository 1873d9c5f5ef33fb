#include "core/attack_map.h"
#include "tests/support/boards.h"
#include "tests/support/crowded_positions.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <map>
#include <string>
#include <tuple>
#include <vector>

namespace quillmere {
namespace {

using reference::TPlainMove;
using reference::TPosition;

TAttackMap MapOf(const TChessboard& board) {
    TAttackMap map;
    map.Build(board.m_board, board.BlackKingSquare());
    return map;
}

// Squares that the white men other than the one on `without` attack, with it and the black king off
// the board.
TSquareSet CoverOf(TPosition position, int without) {
    position.squares[position.blackKing] = '.';
    position.squares[without] = '.';
    TSquareSet set = 0;
    for (int square = 0; square < 64; ++square) {
        if (IsAttacked(position, square, true))
            set |= SetOf(square);
    }
    return set;
}

using TFoundCheck = std::tuple<TPlainMove, bool, bool>;  // direct, discovered

bool IsCastlingOrEnPassant(const TPosition& position, TPlainMove move) {
    const char man = position.squares[move.from];
    return (man == 'K' && std::abs(move.from - move.to) == 2) ||
           ((man == 'P' || man == 'p') && move.from % 8 != move.to % 8 &&
            position.squares[move.to] == '.');
}

// The legal checks of one man by the slow rules, castling and en passant left out; promotions as
// queen and knight.
std::vector<TFoundCheck> ChecksOf(const TPosition& position, int from) {
    std::vector<TFoundCheck> checks;
    for (const TPlainMove move : LegalMoves(position)) {
        if (move.from != from || move.promotion == 'r' || move.promotion == 'b' ||
            IsCastlingOrEnPassant(position, move))
            continue;
        const TPosition after = After(position, move);
        TPosition onlyMoved = after;
        TPosition onlyOthers = after;
        for (int square = 0; square < 64; ++square) {
            const char man = after.squares[square];
            if (man >= 'A' && man <= 'Z' && square != move.to)
                onlyMoved.squares[square] = 'p';  // still in the way
        }
        onlyOthers.squares[move.to] = 'p';
        const bool isDirect = IsAttacked(onlyMoved, after.blackKing, true);
        const bool isDiscovered = IsAttacked(onlyOthers, after.blackKing, true);
        if (isDirect || isDiscovered)
            checks.emplace_back(move, isDirect, isDiscovered);
    }
    std::sort(checks.begin(), checks.end());
    return checks;
}

TPlainMove PlainOf(const TPosition& position, const TAttackMap::TCheck& check) {
    const bool isPromotion = position.squares[check.from] == 'P' && check.to >= 56;
    return {check.from, check.to, isPromotion ? (check.kind == kQueen ? 'q' : 'n') : char{0}};
}

bool IsLegalMove(const TPosition& position, TPlainMove move) {
    const auto moves = LegalMoves(position);
    return std::find(moves.begin(), moves.end(), move) != moves.end();
}

// Black's legal answers to a check, the king's steps and en passant left out, by the man's square.
std::map<int, TSquareSet> DefendersOf(const TPosition& after) {
    std::map<int, TSquareSet> defenders;
    for (const TPlainMove move : LegalMoves(after)) {
        if (move.from != after.blackKing && !IsCastlingOrEnPassant(after, move))
            defenders[move.from] |= SetOf(move.to);
    }
    return defenders;
}

// Everything the map says of a position, against the slow rules.
void CheckMap(const TChessboard& node, const TPosition& position) {
    const TAttackMap map = MapOf(node);
    const TSquareSet all = CoverOf(position, position.blackKing);
    for (int square = 0; square < 64; ++square) {
        const bool isFlight =
            KingDistance(square, map.king) == 1 &&
            !(position.squares[square] >= 'a' && position.squares[square] <= 'z') &&
            (all & SetOf(square)) == 0;
        ASSERT_EQ((map.Flights() & SetOf(square)) != 0, isFlight) << test::TextOfSquare(square);
    }
    ASSERT_EQ(map.covered, all);
    for (int i = 0; i < map.manCount; ++i) {
        const TAttackMap::TMan& man = map.men[i];
        ASSERT_EQ(map.CoverWithout(man), CoverOf(position, man.square))
            << test::TextOfSquare(man.square);
        std::vector<TFoundCheck> found;
        map.ForEachCheckOf(man, [&](const TAttackMap::TCheck& check) {
            const TPlainMove move = PlainOf(position, check);
            if (!IsLegalMove(position, move))
                return false;
            found.emplace_back(move, check.isDirect, check.isDiscovered);
            std::map<int, TSquareSet> defenders;
            map.AnyDefender(check, [&defenders](int from, TSquareSet goals) {
                defenders[from] |= goals;
                return false;
            });
            EXPECT_EQ(defenders, DefendersOf(After(position, move))) << ToText(move);
            return false;
        });
        std::sort(found.begin(), found.end());
        ASSERT_EQ(found, ChecksOf(position, man.square)) << test::TextOfSquare(man.square);
    }
}

class AttackMapOf : public ::testing::TestWithParam<const char*> {};

TEST_P(AttackMapOf, AgreesWithTheSlowRules) {
    const TChessboard board = test::ValidBoard(GetParam());
    CheckMap(board, reference::FromFen(std::string(GetParam()) + " w"));
}

INSTANTIATE_TEST_SUITE_P(
    Positions,
    AttackMapOf,
    ::testing::Values("6k1/5ppp/8/8/8/8/8/R3K3",         // a rook checks on the last rank
                      "3k4/3N4/8/8/3R4/8/8/K7",          // a knight in front of a rook
                      "7k/8/5p2/4B3/8/2Q5/8/K7",         // a bishop in front of a queen
                      "8/8/4k3/8/3P4/4P3/8/K3R3",        // a pawn opens the file by a capture only
                      "1r2k3/2P5/8/8/8/8/8/K2R4",        // promotions, by capture too
                      "4k3/8/8/8/1b6/8/3N4/R3K3",        // a pinned white man
                      "3rkr2/4p3/8/4N3/7B/4R3/8/3K4",    // pinned black men do not defend
                      "6k1/5ppp/8/5N2/8/1B6/6q1/K5R1",   // pins from three sides
                      "r5k1/p6p/8/8/2b5/8/6P1/1K4R1",    // men that come between from afar
                      "4k3/3p1p2/8/8/8/8/8/K2Q4",        // pawn steps come between
                      "8/2p5/8/k7/8/8/K6R/8",            // a double step comes between
                      "k1K5/8/8/8/8/8/8/1R6",            // flights next to the other king
                      "4k3/8/4K3/8/8/8/8/4R3",           // the white king in front of its rook
                      "3R4/8/3N4/3k4/3N4/8/3R4/K2B4"));  // knights of two batteries

TEST(AttackMap, BlackInCheck_IsTold) {
    TAttackMap map;
    const TChessboard checked = test::ValidBoard("k7/1P6/8/3B4/8/8/8/K7");
    EXPECT_FALSE(map.Build(checked.m_board, checked.BlackKingSquare()));
    const TChessboard quiet = test::ValidBoard("k7/P7/8/3p4/4B3/8/8/K7");
    EXPECT_TRUE(map.Build(quiet.m_board, quiet.BlackKingSquare()));
}

TEST(AttackMap, CrowdedPositions_AgreeWithTheSlowRules) {
    for (std::uint64_t seed = 0; seed < static_cast<std::uint64_t>(bridge::CasesOf(3000)); ++seed) {
        test::CRandom random(seed);
        test::CCrowdedNode crowded(random, 1);
        CheckMap(crowded.Node(), crowded.Position());
        ASSERT_FALSE(HasFailure()) << ToFen(crowded.Position()) << ", seed " << seed;
    }
}

// A composed position may hold many more white men than a game.
TEST(AttackMap, MoreMenThanAGame_AreAllSeen) {
    const char* fen = "6k1/R4ppp/8/8/NNNNNNNN/NNNNNNNN/NNNNNNNN/4K3";
    const TChessboard board = test::ValidBoard(fen);
    EXPECT_EQ(MapOf(board).manCount, 26);
    CheckMap(board, reference::FromFen(std::string(fen) + " w"));
}

}  // namespace
}  // namespace quillmere

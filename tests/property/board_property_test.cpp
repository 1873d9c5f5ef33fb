// Laws of the board that hold for every move of every position. Random games are walked from random
// positions, and at every node each pseudo-legal move is made.
//
// The walk is seeded and the same everywhere. A failing node is printed with its FEN code, its last
// move and the seed of its game.
#include "core/attacks.h"
#include "core/chess_exception.h"
#include "core/direct_mates.h"
#include "core/fen.h"
#include "core/legality.h"
#include "core/make_move.h"
#include "core/move_generation.h"
#include "core/notation.h"
#include "core/search_context.h"
#include "core/thread_context.h"
#include "tests/support/bridge.h"
#include "tests/support/random_positions.h"

#include <algorithm>
#include <deque>
#include <functional>
#include <gtest/gtest.h>
#include <set>
#include <string>
#include <vector>

namespace quillmere {
namespace {

constexpr int kPlies = 60;

// One random game, its nodes linked as in a search.
class CRandomGame {
public:
    explicit CRandomGame(std::uint64_t seed) : m_random(seed), m_thread(kPlies + 2), m_seed(seed) {
        TChessboard& root = m_nodes.emplace_back();
        reference::TPosition position = reference::RandomMelee(m_random, m_random.Between(3, 32));
        bridge::FillBoard(root, position);
        root.m_searchContext = &m_context;
        root.m_threadContext = &m_thread;
        m_thread.rootNode = &root;
        SetupAnalysisRoot(root, position.isWhiteToMove ? kPlies + 1 : kPlies, true);
    }

    // Calls `check` at every node, then plays a random legal move; ends without one.
    void Walk(const std::function<void(TChessboard&)>& check) {
        while (m_nodes.back().m_nMoves > 2) {
            TChessboard& node = m_nodes.back();
            check(node);
            if (testing::Test::HasFatalFailure() || testing::Test::HasNonfatalFailure()) {
                ADD_FAILURE() << "seed " << m_seed << ", " << GetFENCode(node) << ", last move "
                              << MoveToUci(node.m_lastMove);
                return;
            }
            TMoveList list;
            list.count = GetLegalMoves(node, list.moves);
            if (list.count == 0)
                return;
            TChessboard& child = m_nodes.emplace_back(node);
            child.m_parent = &node;
            const TMove move = list[m_random.Below(list.count)];
            ASSERT_EQ(node.IsWhiteToMove() ? MakeWhiteMoveLegal(child, move)
                                           : MakeBlackMoveLegal(child, move),
                      kMoveMade);
        }
    }

    TThreadContext& Thread() { return m_thread; }

private:
    reference::CRandom m_random;
    TSearchContext m_context;
    TThreadContext m_thread;
    std::deque<TChessboard> m_nodes;
    std::uint64_t m_seed;
};

void WalkGames(std::uint64_t firstSeed, int games, const std::function<void(TChessboard&)>& check) {
    for (int i = 0; i < games && !testing::Test::HasFailure(); ++i) {
        CRandomGame game(firstSeed + static_cast<std::uint64_t>(i));
        game.Walk(check);
    }
}

TMoveList PseudoLegal(const TChessboard& node) {
    TMoveList list;
    list.count = node.IsWhiteToMove() ? GetAllWhiteMoves(node, list.moves)
                                      : GetAllBlackMoves(node, list.moves);
    return list;
}

std::set<int> EntriesOf(const i8* list, int size) {
    std::set<int> entries(list, list + size);
    entries.erase(-1);
    return entries;
}

// Everything that ValidateBoard derives, against what the moves kept up.
void ExpectBookkeeping(const TChessboard& node) {
    TChessboard fresh = node;
    ASSERT_NO_THROW(ValidateBoard(fresh, false));
    EXPECT_TRUE(std::equal(node.m_counts, node.m_counts + kCountFields, fresh.m_counts));
    EXPECT_EQ(node.WhiteKingSquare(), fresh.WhiteKingSquare());
    EXPECT_EQ(node.BlackKingSquare(), fresh.BlackKingSquare());
    EXPECT_EQ(node.m_whiteInCheck, fresh.m_whiteInCheck);
    EXPECT_EQ(node.m_blackInCheck, fresh.m_blackInCheck);
    EXPECT_EQ(node.BlackKingEdgeDistance(), fresh.BlackKingEdgeDistance());
    ASSERT_EQ(node.m_figureListValid, fresh.m_figureListValid);
    if (node.m_figureListValid != 0) {
        EXPECT_EQ(EntriesOf(node.m_whiteRooks, 2), EntriesOf(fresh.m_whiteRooks, 2));
        EXPECT_EQ(EntriesOf(node.m_whiteBishops, 2), EntriesOf(fresh.m_whiteBishops, 2));
        EXPECT_EQ(EntriesOf(node.m_whiteKnights, 2), EntriesOf(fresh.m_whiteKnights, 2));
        EXPECT_EQ(node.m_whiteQueen, fresh.m_whiteQueen);
        // A first slot is filled before the second: readers stop at the first -1.
        EXPECT_FALSE(node.m_whiteRooks[0] < 0 && node.m_whiteRooks[1] >= 0);
        EXPECT_FALSE(node.m_whiteBishops[0] < 0 && node.m_whiteBishops[1] >= 0);
        EXPECT_FALSE(node.m_whiteKnights[0] < 0 && node.m_whiteKnights[1] >= 0);
    }
}

TEST(Board, MakeMove_KeepsBookkeeping) {
    long made = 0;
    WalkGames(1000, 900, [&made](TChessboard& node) {
        const TMoveList list = PseudoLegal(node);
        for (const TMove move : list) {
            TChessboard child = node;
            child.m_parent = &node;
            const int result = node.IsWhiteToMove() ? MakeWhiteMoveLegal(child, move)
                                                    : MakeBlackMoveLegal(child, move);
            ++made;
            if (result == kMoveMade) {
                ExpectBookkeeping(child);
            } else {
                // What the make-move calls illegal leaves the own king attacked.
                TChessboard plain = child;
                plain.m_figureListValid = 0;
                IsFigureListValid(plain);
                const int king =
                    node.IsWhiteToMove() ? node.WhiteKingSquare() : node.BlackKingSquare();
                const int square = move.from == king ? move.to : king;
                EXPECT_TRUE(node.IsWhiteToMove() ? IsAttackedByBlack(plain, square)
                                                 : IsAttackedByWhite(plain, square));
            }
            if (testing::Test::HasFailure()) {
                ADD_FAILURE() << "move " << MoveToUci(move);
                return;
            }
        }
    });
    EXPECT_GT(made, 1'000'000);
}

TEST(Board, CheckFields_EqualTheAttackScanner) {
    WalkGames(2000, 300, [](TChessboard& node) {
        EXPECT_EQ(node.m_whiteInCheck >= 0, IsAttackedByBlack(node, node.WhiteKingSquare()));
        TAttacker attackers[16];
        int count = 0;
        const i8 white = GetChecksOnWhiteKing(
            node, node.m_whiteKingFile, node.m_whiteKingRank, attackers, &count);
        EXPECT_EQ(node.m_whiteInCheck, white);
        // A set-up root may hold more than two checkers.
        EXPECT_EQ(std::min(count, 2), white == kNotInCheck ? 0 : white == kDoubleCheck ? 2 : 1);
        const i8 black = GetChecksOnBlackKing(
            node, node.m_blackKingFile, node.m_blackKingRank, attackers, &count);
        EXPECT_EQ(node.m_blackInCheck, black);
        EXPECT_EQ(std::min(count, 2), black == kNotInCheck ? 0 : black == kDoubleCheck ? 2 : 1);
    });
}

// White's attacks are found through the figure lists or along rays; pseudo-legal moves are a third
// way, on a board where every square holds a black man to take.
TEST(Board, IsAttackedByWhite_ListsAndRaysAndMovesAgree) {
    WalkGames(3000, 120, [](TChessboard& node) {
        TChessboard rays = node;
        rays.m_figureListValid = 0;
        for (int square = 0; square < kSquareCount; ++square) {
            if (square == node.WhiteKingSquare())
                continue;
            const bool isAttacked = IsAttackedByWhite(node, square);
            EXPECT_EQ(isAttacked, IsAttackedByWhite(rays, square)) << "square " << square;
            TChessboard target = node;
            target.m_parent = nullptr;
            target.m_board[square] = kBlackKnight;
            TMove list[kMoveListSize];
            const int count = GetAllWhiteMoves(target, list);
            const bool isReached =
                std::any_of(list, list + count, [&](TMove move) { return move.to == square; });
            EXPECT_EQ(isAttacked, isReached) << "square " << square;
        }
    });
}

std::vector<int> LegalCodes(TChessboard& node, const TMoveList& list) {
    std::vector<int> codes;
    for (const TMove move : list) {
        if (IsLegalMove(node, move))
            codes.push_back(move.from * 4096 + move.to * 64 + move.Promotion());
    }
    std::sort(codes.begin(), codes.end());
    return codes;
}

TEST(Board, Evasions_EqualTheFilteredFullList) {
    int checks = 0;
    WalkGames(4000, 2500, [&checks](TChessboard& node) {
        const bool isInCheck =
            (node.IsWhiteToMove() ? node.m_whiteInCheck : node.m_blackInCheck) >= 0;
        if (!isInCheck)
            return;
        ++checks;
        TMoveList evasions;
        evasions.count = node.IsWhiteToMove() ? GetWhiteEvasions(node, evasions.moves)
                                              : GetBlackEvasions(node, evasions.moves);
        const std::vector<int> legal = LegalCodes(node, evasions);
        EXPECT_EQ(legal, LegalCodes(node, PseudoLegal(node)));
        if (!node.IsWhiteToMove()) {
            const TChessboard before = node;
            EXPECT_EQ(BlackHasEvasion(node), !legal.empty());
            EXPECT_TRUE(std::equal(node.m_board, node.m_board + kSquareCount, before.m_board));
        }
    });
    EXPECT_GT(checks, 10'000);
}

// The mate test and the flight count, at every black node after every white check.
TEST(Board, BlackHasEvasion_EqualsSomeLegalReply) {
    int mates = 0;
    int checks = 0;
    WalkGames(5000, 500, [&](TChessboard& node) {
        if (!node.IsWhiteToMove())
            return;
        for (const TMove move : PseudoLegal(node)) {
            TChessboard full = node;
            full.m_parent = &node;
            TChessboard fast = full;
            const int made = MakeWhiteMoveLegal(full, move);
            EXPECT_EQ(made, MakeWhiteMoveFast(fast, move));
            if (made != kMoveMade)
                continue;
            EXPECT_TRUE(std::equal(full.m_board, full.m_board + kSquareCount, fast.m_board));
            EXPECT_EQ(full.m_blackInCheck, fast.m_blackInCheck);
            EXPECT_EQ(full.m_nMoves, fast.m_nMoves);
            EXPECT_TRUE(std::equal(full.m_counts, full.m_counts + kCountFields, fast.m_counts));
            if (full.m_blackInCheck < 0)
                continue;
            TMove list[kMoveListSize];
            const bool hasReply = GetLegalMoves(full, list) != 0;
            EXPECT_EQ(BlackHasEvasion(full), hasReply) << MoveToUci(move);
            EXPECT_EQ(BlackHasEvasion(fast), hasReply) << MoveToUci(move);
            ++checks;
            mates += hasReply ? 0 : 1;
        }
    });
    EXPECT_GT(checks, 10'000);
    EXPECT_GT(mates, 200);
}

bool MatesAtOnce(TChessboard& node, TMove move) {
    TChessboard child = node;
    child.m_parent = &node;
    TMove replies[kMoveListSize];
    return MakeWhiteMoveLegal(child, move) == kMoveMade && child.m_blackInCheck >= 0 &&
           GetLegalMoves(child, replies) == 0;
}

TEST(Board, IsMateInOne_EqualsTryingEveryMove) {
    int mates = 0;
    int nodes = 0;
    WalkGames(6000, 4000, [&](TChessboard& node) {
        if (!node.IsWhiteToMove())
            return;
        TMoveList list;
        list.count = GetLegalMoves(node, list.moves);
        const bool hasMate = std::any_of(
            list.begin(), list.end(), [&](TMove move) { return MatesAtOnce(node, move); });
        TMove mate{};
        EXPECT_EQ(FindMateInOne(node, &mate), hasMate);
        if (hasMate) {
            EXPECT_TRUE(MatesAtOnce(node, mate)) << MoveToUci(mate);
        }
        ++nodes;
        mates += hasMate ? 1 : 0;
    });
    EXPECT_GT(mates, 2000);
    EXPECT_GT(nodes, 50'000);
}

// The same where the shortcuts of the test bite: few white men near a black king with few flights.
TEST(Board, IsMateInOne_EqualsTryingEveryMoveInSparsePositions) {
    reference::CRandom random(77);
    int mates = 0;
    for (int i = 0; i < 200'000 && !testing::Test::HasFailure(); ++i) {
        reference::TRecipe recipe;
        recipe.whiteMen = random.Between(1, 4);
        recipe.blackMen = random.Between(0, 8);
        constexpr std::string_view kLetters[] = {"RP", "BP", "NP", "P", "QRBNP", "RRBBNN"};
        recipe.whiteLetters = kLetters[random.Below(6)];
        recipe.blackKingOnEdge = random.Chance(50) ? 0 : 60;
        recipe.kingsClose = 80;
        recipe.whiteMenClose = 80;
        recipe.blackMenClose = 90;
        recipe.isWhiteAtHome = random.Chance(10);
        TSearchContext context;
        TThreadContext thread(3);
        TChessboard node;
        const reference::TPosition position = reference::RandomPosition(random, recipe);
        bridge::FillBoard(node, position);
        node.m_searchContext = &context;
        node.m_threadContext = &thread;
        thread.rootNode = &node;
        SetupAnalysisRoot(node, 1, true);
        TMoveList list;
        list.count = GetLegalMoves(node, list.moves);
        const bool hasMate = std::any_of(
            list.begin(), list.end(), [&](TMove move) { return MatesAtOnce(node, move); });
        EXPECT_EQ(IsMateInOne(node), hasMate) << GetFENCode(node);
        mates += hasMate ? 1 : 0;
    }
    EXPECT_GT(mates, 3000);
}

// White's move and its twin for black on the colour-swapped board.
TEST(Board, ColourSwappedTwins_Agree) {
    WalkGames(7000, 300, [](TChessboard& node) {
        TSearchContext context;
        TThreadContext thread(6);
        TChessboard twin;
        InitBoard(twin);
        for (int square = 0; square < kSquareCount; ++square) {
            const u8 figure = node.m_board[square];
            if (figure != 0)
                twin.m_board[square ^ 56] = figure ^ (kWhite | kBlack);
        }
        // A board of its own: the rights of both are those of a root.
        TChessboard root;
        InitBoard(root);
        std::copy_n(node.m_board, kSquareCount, root.m_board);
        for (TChessboard* board : {&root, &twin}) {
            board->m_searchContext = &context;
            board->m_threadContext = &thread;
        }
        thread.rootNode = nullptr;
        SetupAnalysisRoot(root, node.IsWhiteToMove() ? 3 : 4, true);
        SetupAnalysisRoot(twin, node.IsWhiteToMove() ? 4 : 3, true);
        EXPECT_EQ(root.m_whiteInCheck >= 0, twin.m_blackInCheck >= 0);
        EXPECT_EQ(root.m_blackInCheck >= 0, twin.m_whiteInCheck >= 0);
        TMoveList list;
        TMoveList twinList;
        list.count = GetLegalMoves(root, list.moves);
        twinList.count = GetLegalMoves(twin, twinList.moves);
        std::set<int> codes;
        std::set<int> twinCodes;
        for (const TMove move : list)
            codes.insert(move.from * 4096 + move.to * 64 + move.Promotion());
        for (const TMove move : twinList)
            twinCodes.insert((move.from ^ 56) * 4096 + (move.to ^ 56) * 64 + move.Promotion());
        EXPECT_EQ(codes, twinCodes);
        for (int square = 0; square < kSquareCount; ++square) {
            const u8 figure = root.m_board[square];
            if (figure == 0 || KindOf(figure) == kKing)
                continue;
            EXPECT_EQ(IsWhite(figure) ? IsPinnedToWhiteKing(root, square)
                                      : IsPinnedToBlackKing(root, square),
                      IsWhite(figure) ? IsPinnedToBlackKing(twin, square ^ 56)
                                      : IsPinnedToWhiteKing(twin, square ^ 56));
            u8 own[16];
            u8 mirrored[16];
            const int count = GetWhiteCapturers(root, FileOf(square), RankOf(square), own);
            const int twinCount =
                GetBlackCapturers(twin, FileOf(square), 7 - RankOf(square), mirrored);
            std::set<int> capturers(own, own + count);
            std::set<int> twinCapturers;
            for (int i = 0; i < twinCount; ++i)
                twinCapturers.insert(((mirrored[i] & 63) ^ 56) | (mirrored[i] & kPinnedMark));
            EXPECT_EQ(capturers, twinCapturers);
        }
    });
}

// A figure is pinned exactly if taking it off the board lets a slider of its line attack the king.
TEST(Board, IsPinned_EqualsLiftingTheFigure) {
    WalkGames(8000, 200, [](TChessboard& node) {
        for (int square = 0; square < kSquareCount; ++square) {
            const u8 figure = node.m_board[square];
            if (figure == 0 || KindOf(figure) == kKing)
                continue;
            TChessboard lifted = node;
            lifted.m_board[square] = 0;
            IsFigureListValid(lifted);
            TAttacker before[16];
            TAttacker after[16];
            int countBefore = 0;
            int countAfter = 0;
            if (IsWhite(figure)) {
                GetChecksOnWhiteKing(
                    node, node.m_whiteKingFile, node.m_whiteKingRank, before, &countBefore);
                GetChecksOnWhiteKing(
                    lifted, node.m_whiteKingFile, node.m_whiteKingRank, after, &countAfter);
                EXPECT_EQ(IsPinnedToWhiteKing(node, square), countAfter > countBefore);
            } else {
                GetChecksOnBlackKing(
                    node, node.m_blackKingFile, node.m_blackKingRank, before, &countBefore);
                GetChecksOnBlackKing(
                    lifted, node.m_blackKingFile, node.m_blackKingRank, after, &countAfter);
                EXPECT_EQ(IsPinnedToBlackKing(node, square), countAfter > countBefore);
            }
        }
    });
}

TEST(Board, WasPromotedInLine_CountsTheFiguresThatStand) {
    int promoted = 0;
    WalkGames(9000, 1500, [&promoted](TChessboard& node) {
        int standing = 0;
        for (int square = 0; square < kSquareCount; ++square) {
            if (IsBlack(node.m_board[square]) && WasPromotedInLine(node, square))
                ++standing;
        }
        int promotions = 0;
        for (const TChessboard* n = &node; n->m_parent != nullptr; n = n->m_parent)
            promotions += n->m_lastMove.Promotion() != 0 && n->IsWhiteToMove() ? 1 : 0;
        // The count saturates at three; on a line that never passed it, it is exact.
        if (promotions <= 3) {
            EXPECT_EQ(node.m_searchFlags & kSearchPromotionsMask, standing);
        }
        promoted += standing != 0 ? 1 : 0;
    });
    EXPECT_GT(promoted, 500);
}

}  // namespace
}  // namespace quillmere

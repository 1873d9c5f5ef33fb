#include "core/legality.h"
#include "core/move_generation.h"
#include "heuristics/rules.h"
#include "registers/aggregated_register.h"
#include "search/forcing_moves.h"
#include "search/mate_search.h"
#include "search/register_access.h"
#include "tests/support/bridge.h"
#include "tests/support/reference.h"
#include "tests/support/registers.h"
#include "tests/support/search_board.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace quillmere {
namespace {

class CForcedBoard : public test::CSearchBoard {
public:
    CForcedBoard(const std::string& fen, u16 halfMoves, u8 mode) : CSearchBoard(fen, halfMoves) {
        Root().Heur = SH_FINDFORCEDMATE;
        Root().m_pass = kPassHeuristics;
        Settings().FfmMode = mode;
    }
    THeuristicSettings& Settings() { return Thread().heuristics; }
    // The legal moves that are kept of the list behind the line.
    std::string Kept() {
        TMoveList list;
        list.count = GetAllWhiteMoves(Node(), list.moves);
        list.count = KeepForcingMoves(Node(), list.count, list.moves);
        std::vector<TMove> legal;
        for (const TMove move : list) {
            if (IsLegalMove(Node(), move))
                legal.push_back(move);
        }
        return reference::ToText(bridge::ToSortedPlain(legal));
    }
};

std::string Texts(const std::vector<std::string>& moves) {
    std::string text;
    for (const std::string& move : moves)
        text += (text.empty() ? "" : " ") + move;
    return text.empty() ? "none" : text;
}

TEST(ForcingMoves, List_IsThatOfTheMode) {
    const struct {
        const char* fen;
        const char* reply;  // of black, before the list; empty for none
        u8 mode;
        std::vector<std::string> kept;
    } rows[] = {
        // Castling checks by the rook, and the rook by its own moves.
        {"5k2/8/8/8/8/8/P7/4K2R w - - 0 1", "", 2, {"e1g1", "h1f1", "h1h8"}},
        // The pawn taken in passing checks, or opens the line of a mate.
        {"8/3pk3/8/4P3/8/8/8/K7 b - - 0 1", "d7d5", 2, {"e5d6"}},
        {"6k1/3p1ppp/8/4P3/8/8/8/4R1K1 b - - 0 1", "d7d5", 2, {}},
        {"6k1/3p1ppp/8/4P3/8/8/8/4R1K1 b - - 0 1", "d7d5", 3, {"e1a1", "e1b1", "e1c1", "e5d6"}},
        // Promotions check as queen or rook here; as a knight or bishop they threaten nothing.
        {"4k3/P7/8/8/8/8/8/K7 w - - 0 1", "", 2, {"a7a8q", "a7a8r"}},
        // Plain checks.
        {"7k/8/6K1/8/8/8/8/R7 w - - 0 1", "", 2, {"a1h1", "a1a8"}},
        {"6k1/8/6K1/8/8/8/1n6/R7 w - - 0 1", "", 2, {"a1a8"}},
    };
    for (const auto& row : rows) {
        const bool hasReply = *row.reply != 0;
        CForcedBoard board(row.fen, hasReply ? 10 : 9, row.mode);
        if (hasReply) {
            ASSERT_EQ(board.Play(row.reply), kMoveMade);
        }
        ASSERT_TRUE(IsForcedListOn(board.Node()));
        EXPECT_EQ(board.Kept(), Texts(row.kept)) << row.fen << ", mode " << int{row.mode};
    }
}

TEST(ForcingMoves, CapturesNextToTheKing_AreTakenOnRequestFromThreatsOfTwoOn) {
    // The rook may take the knight beside the king, which threatens no mate in two, or a pawn there.
    constexpr const char* kFen = "8/5b2/2n1p3/3k4/8/2R1R3/8/K7 w - - 0 1";
    for (const bool takes : {false, true}) {
        for (u8 mode = 2; mode <= 6; ++mode) {
            CForcedBoard board(kFen, 9, mode);
            board.Settings().FfmAddCaptures = takes;
            const bool isKept = board.Kept().find("c3c6") != std::string::npos;
            EXPECT_EQ(isKept, takes && mode >= kForcedThreatOfTwo) << int{mode};
            EXPECT_EQ(board.Kept().find("e3e6"), std::string::npos) << int{mode};
        }
    }
}

TEST(ForcingMoves, Lists_AreCutWhereTheWordIsInForce) {
    const auto isOn = [](const std::string& fen, u16 halfMoves, u8 mode, u8 pass, u32 heur) {
        CForcedBoard board(fen, halfMoves, mode);
        board.Root().m_pass = pass;
        board.Root().Heur = heur;
        return IsForcedListOn(board.Root());
    };
    const std::string free = "7k/8/8/8/8/8/8/KR6 w - - 0 1";
    const std::string checked = "r6k/8/8/8/8/8/8/KR6 w - - 0 1";
    const u32 word = SH_FINDFORCEDMATE;
    EXPECT_TRUE(isOn(free, 9, 2, kPassHeuristics, word));
    EXPECT_TRUE(isOn(free, 3, 2, kPassHeuristics, word));
    EXPECT_FALSE(isOn(free, 3, 3, kPassHeuristics, word));
    EXPECT_TRUE(isOn(free, 5, 3, kPassHeuristics, word));
    EXPECT_FALSE(isOn(free, 1, 2, kPassHeuristics, word));
    EXPECT_FALSE(isOn(free, 9, 1, kPassHeuristics, word));
    EXPECT_FALSE(isOn(free, 9, 2, kPassComplete, word));
    EXPECT_FALSE(isOn(free, 9, 2, kPassScan, word));
    EXPECT_FALSE(isOn(free, 9, 2, kPassHeuristics, SH_KEEPKINGONTHEEDGE));
    EXPECT_FALSE(isOn(checked, 9, 2, kPassHeuristics, word));
}

TEST(ForcingMoves, LineWithoutAForcingMove_EndsAndIsNotStored) {
    TAggregatedTemporaryChessboardRegister store(test::QuietSettings(u64{8} << 20));
    CForcedBoard ends("7k/8/8/8/8/8/P7/K7 w - - 0 1", 11, 2);
    ends.Context().tempRegister = &store;
    EXPECT_EQ(FindMate(ends.Root(), true), kEndOfForced);
    EXPECT_EQ(FindInRegister(ends.Root()), kNothingKnown);
}

TEST(ForcingMoves, SearchForThreats_LeavesTheMarksOfTheThread) {
    CForcedBoard board("8/8/8/3k4/8/8/8/KQ4R1 w - - 0 1", 9, 5);
    board.Thread().isPromotionSquareFree = true;
    board.Kept();
    EXPECT_TRUE(board.Thread().isPromotionSquareFree);
    EXPECT_FALSE(board.Thread().isLogHidden);
}

// Other rules beside it

TEST(ForcedMateWord, OthersWork_AsTheSettingSays) {
    const struct {
        i8 withOther;
        bool isCustom;
        bool isPreliminary;
        u16 halfMoves;  // of the node, of 17 at the root
        bool areOn;
        u32 word;  // after the cut
    } rows[] = {
        {1, false, false, 17, true, 0x204},
        {0, false, false, 17, false, 0x200},
        {0, true, false, 17, true, 0x204},
        {0, false, true, 17, true, 0x204},
        {-1, false, false, 17, false, 0x204},
        {-1, false, false, 9, false, 0x204},
        {-1, false, false, 8, true, 0x204},
        {-1, true, false, 17, true, 0x204},
    };
    for (const auto& row : rows) {
        CForcedBoard board("7k/8/8/8/8/8/8/KR6 w - - 0 1", 17, 3);
        TChessboard& node = board.Root();
        node.Heur = SH_FINDFORCEDMATE | SH_KEEPKINGONTHEEDGE;
        node.m_nMoves = row.halfMoves;
        board.Settings().FfmWithOther = row.withOther;
        board.Settings().FfmCustom = row.isCustom;
        board.Settings().FfmPreliminary = row.isPreliminary;
        EXPECT_EQ(AreRulesOn(node, SH_KEEPKINGONTHEEDGE), row.areOn) << row.halfMoves;
        CutToForcedMate(node);
        EXPECT_EQ(node.Heur, row.word) << row.halfMoves;
    }
}

TEST(ForcedMateWord, WithoutForcedMates_OthersAlwaysWork) {
    CForcedBoard board("7k/8/8/8/8/8/8/KR6 w - - 0 1", 17, 3);
    board.Root().Heur = SH_KEEPKINGONTHEEDGE;
    board.Settings().FfmWithOther = 0;
    EXPECT_TRUE(AreRulesOn(board.Root(), SH_KEEPKINGONTHEEDGE));
    CutToForcedMate(board.Root());
    EXPECT_EQ(board.Root().Heur, u32{SH_KEEPKINGONTHEEDGE});
}

}  // namespace
}  // namespace quillmere

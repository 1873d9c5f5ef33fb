#include "cli/task.h"
#include "core/chess_exception.h"
#include "core/notation.h"
#include "core/play_board.h"
#include "core/san.h"

#include <gtest/gtest.h>
#include <string>

namespace quillmere {
namespace {

std::string Read(const char* fen, const char* text) {
    const TPosition position = ReadPosition(fen);
    CPlayBoard board(position.board, position.IsBlackToMove());
    return MoveToUci(ReadShortMove(board.Node(), text));
}

EMessage FaultOf(const char* fen, const char* text) {
    try {
        Read(fen, text);
    } catch (const ChessException& fault) {
        return fault.Id();
    }
    return EMessage::kCount;
}

struct TMoveCase {
    const char* fen;
    const char* text;
    const char* uci;
};

constexpr const char* kStart = "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w";
constexpr const char* kBlackStart = "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR b";
constexpr const char* kCastling = "r3k2r/8/8/8/8/8/8/R3K2R w";
constexpr const char* kPromotion = "3r3k/4P3/8/8/8/8/8/4K3 w";
constexpr const char* kKnights = "4k3/8/8/8/8/1N6/8/1N2KN2 w";
constexpr const char* kRooks = "R7/6k1/8/8/8/8/8/R3K3 w";

constexpr TMoveCase kMoves[] = {
    {kStart, "e4", "e2e4"},
    {kStart, "e2-e4", "e2e4"},
    {kStart, "e2e4", "e2e4"},
    {kStart, "Nf3", "g1f3"},
    {kStart, "Sf3", "g1f3"},
    {kStart, " Ng1-f3! ", "g1f3"},
    {kBlackStart, "Nf6", "g8f6"},
    {kBlackStart, "d5", "d7d5"},
    {kCastling, "O-O", "e1g1"},
    {kCastling, "0-0-0", "e1c1"},
    {kCastling, "O-O-O+", "e1c1"},
    {kCastling, "Kf1", "e1f1"},
    {"r3k2r/8/8/8/8/8/8/R3K2R b", "O-O", "e8g8"},
    {kPromotion, "e8=Q+", "e7e8q"},
    {kPromotion, "e8N", "e7e8n"},
    {kPromotion, "e8(B)", "e7e8b"},
    {kPromotion, "exd8=R+", "e7d8r"},
    {kPromotion, "e7:d8Q", "e7d8q"},
    {kPromotion, "e7d8q", "e7d8q"},
    {kKnights, "Nfd2", "f1d2"},
    {kKnights, "N3d2", "b3d2"},
    {kKnights, "Nb3d2", "b3d2"},
    {kRooks, "R1a4", "a1a4"},
    {kRooks, "R8a4", "a8a4"},
    {"7k/8/8/8/8/8/1r6/K7 w", "Kxb2", "a1b2"},
    {"7k/8/8/8/8/8/1r6/K7 w", "K:b2#", "a1b2"},
};

TEST(ReadShortMove, EachForm_NamesItsMove) {
    for (const TMoveCase& row : kMoves) {
        try {
            EXPECT_EQ(Read(row.fen, row.text), row.uci) << row.text;
        } catch (const ChessException& fault) {
            ADD_FAILURE() << row.text << ": " << fault.what();
        }
    }
}

struct TFaultCase {
    const char* fen;
    const char* text;
    EMessage id;
};

constexpr TFaultCase kFaults[] = {
    {kStart, "", EMessage::kMoveNotUnderstood},
    {kStart, "+", EMessage::kMoveNotUnderstood},
    {kStart, "hello", EMessage::kMoveNotUnderstood},
    {kStart, "e9", EMessage::kMoveNotUnderstood},
    {kStart, "Xe4", EMessage::kMoveNotUnderstood},
    {kStart, "Nf3f4f5", EMessage::kMoveNotUnderstood},
    {kStart, "e5", EMessage::kMoveNotLegal},
    {kStart, "Qd4", EMessage::kMoveNotLegal},
    {kStart, "O-O", EMessage::kMoveNotLegal},
    {kPromotion, "e8", EMessage::kMoveNotLegal},
    {kPromotion, "e8=K", EMessage::kMoveNotUnderstood},
    {kPromotion, "Kd1=Q", EMessage::kMoveNotLegal},
    {kRooks, "Ra4", EMessage::kMoveAmbiguous},
    {kKnights, "Nbd2", EMessage::kMoveAmbiguous},
    {kKnights, "N1d2", EMessage::kMoveAmbiguous},
    // A king that steps two files castles, and only the castling text means it.
    {kCastling, "Kg1", EMessage::kMoveNotLegal},
    // Pinned: pseudo-legal, not legal.
    {"4r2k/8/8/8/8/8/4N3/4K3 w", "Nc3", EMessage::kMoveNotLegal},
    // A bishop, not a pawn of the b-file.
    {"7k/8/8/8/8/2p5/1P6/K7 w", "Bxc3", EMessage::kMoveNotLegal},
};

TEST(ReadShortMove, EachFault_IsNamed) {
    for (const TFaultCase& row : kFaults)
        EXPECT_EQ(MessageName(FaultOf(row.fen, row.text)), MessageName(row.id)) << row.text;
}

constexpr TMoveCase kWritten[] = {
    {kStart, "Nf3", "g1f3"},
    {kPromotion, "exd8=R", "e7d8r"},
    {kCastling, "O-O", "e1g1"},
    {kKnights, "Nfd2", "f1d2"},
    {kRooks, "R1a4", "a1a4"},
    // Three queens: neither file nor rank alone tells them apart.
    {"8/k7/8/8/4Q2Q/8/8/K6Q w", "Qh4e1", "h4e1"},
    // The other knight is pinned, so that nothing needs to be told.
    {"4r2k/8/8/8/8/8/N3N3/4K3 w", "Nc3", "a2c3"},
};

TEST(WriteShortMove, EachMove_IsToldAsShortAsItCanBe) {
    for (const TMoveCase& row : kWritten) {
        const TPosition position = ReadPosition(row.fen);
        CPlayBoard board(position.board, position.IsBlackToMove());
        for (const TMove move : board.LegalMoves()) {
            if (MoveToUci(move) == row.uci) {
                EXPECT_EQ(WriteShortMove(board.Node(), move), row.text);
            }
        }
        EXPECT_EQ(Read(row.fen, row.text), row.uci);
    }
}

TEST(PlayShortMove, CheckAndMate_AreMarked) {
    const auto written = [](const char* fen, const char* text) {
        const TPosition position = ReadPosition(fen);
        CPlayBoard board(position.board, position.IsBlackToMove());
        return PlayShortMove(board, ReadShortMove(board.Node(), text));
    };
    EXPECT_EQ(written("7k/8/6K1/8/8/8/8/R7 w - -", "Ra8"), "Ra8#");
    EXPECT_EQ(written("7k/8/8/6K1/8/8/8/R7 w - -", "Ra8"), "Ra8+");
    EXPECT_EQ(written("7k/8/8/6K1/8/8/8/R7 w - -", "Ra7"), "Ra7");
}

}  // namespace
}  // namespace quillmere

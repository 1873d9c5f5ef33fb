#include "core/chess_exception.h"
#include "core/fen_check.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace quillmere {
namespace {

struct TFaultCase {
    const char* fen;
    EMessage id;
    std::vector<std::string> values;
};

const TFaultCase kFaults[] = {
    {"", EMessage::kFenEmpty, {}},
    {"  \t ", EMessage::kFenEmpty, {}},
    {"8/8/8/8/8/Q7/4p3", EMessage::kFenTooFewRanks, {"7"}},
    {"hello", EMessage::kFenBadCharacter, {"8", "2", "e"}},
    {"8/8/8/8/8/Q7/4p3/5k1K/8 w", EMessage::kFenTooManyRanks, {"22"}},
    {"8/8/8/8/8/Q7/4p3/5k1K/ w", EMessage::kFenTooManyRanks, {"22"}},
    {"8/8/8/8/8/Q7/4p3/5k1 w", EMessage::kFenRankTooShort, {"1", "7"}},
    {"8//8/8/8/8/Q7/4p3/5k1K w", EMessage::kFenRankTooShort, {"7", "0"}},
    {"8/8/8/8/8/Q7/4p3/5k1KK w", EMessage::kFenRankTooLong, {"1", "22", "K"}},
    {"8/8/8/8/8/Q71/4p3/5k1K w", EMessage::kFenRankTooLong, {"3", "13", "1"}},
    {"8/8/8/8/8/Q9/4p3/5k1K w", EMessage::kFenBadDigit, {"3", "12", "9"}},
    {"8/8/0/8/8/Q7/4p3/5k1K w", EMessage::kFenBadDigit, {"6", "5", "0"}},
    {"8/8/8/x7/8/Q7/4p3/5k1K w", EMessage::kFenBadCharacter, {"5", "7", "x"}},
    {"8/8/8/*7/8/Q7/4p3/5k1K w", EMessage::kFenBadCharacter, {"5", "7", "*"}},
    {"\xc5\xbc"
     "7/8/8/8/8/Q7/4p3/5k1K",
     EMessage::kFenBadCharacter,
     {"8", "1", "\xc5\xbc"}},
    {"8/8/8/8/8/Q7/8/4pk1K w", EMessage::kFenPawnOnEdge, {"e1"}},
    {"P7/8/8/8/8/8/8/4k2K w", EMessage::kFenPawnOnEdge, {"a8"}},
    // The pawn is told before the kings.
    {"P7/8/8/8/8/8/8/8 w", EMessage::kFenPawnOnEdge, {"a8"}},
    {"8/8/8/8/8/Q7/4p3/5k2 w", EMessage::kFenWhiteKings, {"0"}},
    {"8/8/8/8/8/Q7/4p3/K4k1K w", EMessage::kFenWhiteKings, {"2"}},
    {"8/8/8/8/8/Q7/4p3/7K w", EMessage::kFenBlackKings, {"0"}},
    {"k7/8/8/8/8/Q7/4p3/5k1K w", EMessage::kFenBlackKings, {"2"}},
    {"8/8/8/8/8/Q7/8/5kK1 w", EMessage::kFenKingsAdjacent, {"g1", "f1"}},
    {"r6K/8/8/8/8/8/8/R6k w", EMessage::kBothKingsAttacked, {}},
    {"8/8/8/8/8/8/8/Q4k1K w", EMessage::kFenBlackInCheck, {"f1"}},
    {"8/8/8/8/8/8/8/q4K1k b", EMessage::kFenWhiteInCheck, {"f1"}},
    {"8/8/8/8/8/Q7/4p3/5k1K W", EMessage::kFenBadSide, {"W"}},
    {"8/8/8/8/8/Q7/4p3/5k1K white", EMessage::kFenBadSide, {"white"}},
    {"8/8/8/8/8/Q7/4p3/5k1K w KX", EMessage::kFenBadCastling, {"KX"}},
    {"8/8/8/8/8/Q7/4p3/5k1K w KK", EMessage::kFenBadCastling, {"KK"}},
    {"8/8/8/8/8/Q7/4p3/5k1K w - e4", EMessage::kFenBadEnPassant, {"e4"}},
    {"8/8/8/8/8/Q7/4p3/5k1K w - i3", EMessage::kFenBadEnPassant, {"i3"}},
    {"8/8/8/8/8/Q7/4p3/5k1K w - - x", EMessage::kFenBadCounter, {"5", "x"}},
    {"8/8/8/8/8/Q7/4p3/5k1K w - - 0 -1", EMessage::kFenBadCounter, {"6", "-1"}},
    {"8/8/8/8/8/Q7/4p3/5k1K w - - 0 1 bm", EMessage::kFenTooManyFields, {"bm"}},
};

TEST(CheckFEN, EachFault_IsNamedWithItsPlace) {
    for (const TFaultCase& row : kFaults) {
        try {
            CheckFEN(row.fen);
            ADD_FAILURE() << "no fault found in '" << row.fen << "'";
        } catch (const ChessException& fault) {
            EXPECT_EQ(MessageName(fault.Id()), MessageName(row.id)) << row.fen;
            EXPECT_EQ(fault.Values(), row.values) << row.fen;
        }
    }
}

struct TGoodCase {
    const char* fen;
    ESide side;
};

constexpr TGoodCase kGood[] = {
    {"8/8/8/8/8/Q7/4p3/5k1K", ESide::kNotSaid},
    {" 8/8/8/8/8/Q7/4p3/5k1K  w ", ESide::kWhiteToMove},
    {"8/8/8/8/8/Q7/4p3/5k1K b - -", ESide::kBlackToMove},
    {"r3k2r/8/8/8/8/8/8/R3K2R w KQkq - 0 1", ESide::kWhiteToMove},
    {"r3k2r/8/8/8/4P3/8/8/R3K2R b Kq E3 12 34", ESide::kBlackToMove},
    // Letters of other languages for queen, rook, bishop and knight.
    {"4k3/8/8/8/8/8/8/HWGSK3 w", ESide::kWhiteToMove},
    // A side in check may be to move, and without a side field nobody is blamed.
    {"8/8/8/8/8/8/8/Q4k1K b", ESide::kBlackToMove},
    {"8/8/8/8/8/8/8/Q4k1K", ESide::kNotSaid},
};

TEST(CheckFEN, GoodText_GivesItsSide) {
    for (const TGoodCase& row : kGood) {
        try {
            EXPECT_EQ(CheckFEN(row.fen), row.side) << row.fen;
        } catch (const ChessException& fault) {
            ADD_FAILURE() << row.fen << ": " << fault.what();
        }
    }
}

}  // namespace
}  // namespace quillmere

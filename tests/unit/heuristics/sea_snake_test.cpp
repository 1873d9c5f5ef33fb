#include "core/search_context.h"
#include "heuristics/sea_snake_detector.h"
#include "heuristics/unset_patterns.h"
#include "heuristics/zugzwang_triangles.h"
#include "tests/support/boards.h"
#include "tests/support/white_rules.h"

#include <gtest/gtest.h>
#include <iterator>
#include <set>
#include <sstream>
#include <string>

namespace quillmere {
namespace {

using test::CWhiteRuleBoard;
using test::SquareOf;

using TTexts = std::set<std::string>;

TTexts Words(const std::string& text) {
    std::istringstream words(text);
    return {std::istream_iterator<std::string>(words), {}};
}

// "" for no list. Each move once.
TTexts ListOf(TChessboard& node) {
    TMoveList list;
    if (!ReplaceWhiteMoves(node, list))
        return {};
    TTexts texts;
    for (const TMove move : list)
        EXPECT_TRUE(texts.insert(test::TextOfMove(move)).second);
    return texts;
}

u8 Square(const char* text) {
    return static_cast<u8>(SquareOf(text));
}

// Black's king swings between h8 and g7; with white's on f6 and black's on h8 only the pawn moves.
constexpr const char* kSnake = "8/3N2kP/6Pp/7K/8/8/1P6/8";

TSeaSnakeSquares Detect(const char* fen, int moves) {
    CWhiteRuleBoard board(fen, static_cast<u16>(moves | 1), 0);
    TSeaSnakeSquares squares;
    squares.approach = 1;
    squares.onlyAfter = {test::MoveOf("a1a2")};
    SeaSnakeDetect(board.Root(), squares, moves);
    return squares;
}

TEST(SeaSnakeDetector, FindsPendulumAndTriangle) {
    for (const char* fen : {kSnake, "7k/3N3P/6Pp/7K/8/8/1P6/8"}) {
        const TSeaSnakeSquares squares = Detect(fen, 15);
        EXPECT_EQ(squares.approach, Square("f5")) << fen;
        EXPECT_EQ(squares.turnBack, Square("e4")) << fen;
        EXPECT_EQ(squares.pendulum1, Square("h8")) << fen;
        EXPECT_EQ(squares.pendulum2, Square("g7")) << fen;
        EXPECT_TRUE(squares.onlyAfter.empty());
    }
}

TEST(SeaSnakeDetector, NoPattern) {
    struct TCase {
        const char* what;
        const char* fen;
        int moves;
    };
    constexpr TCase kCases[] = {
        {"too few half-moves", kSnake, 14},
        {"white is in check", "8/3N2kP/6Pp/6pK/6n1/8/1P2r3/3R3r", 15},
        {"a knight can move too", "n7/3N2kP/6Pp/7K/8/8/1P6/8", 15},
        {"the king has a third square", "8/6kP/6Pp/7K/8/8/1P6/8", 15},
        {"the stroke would be stalemate", "8/3N2kP/6Pp/7P/8/K7/1P6/8", 15},
        {"the king cannot come there", "8/3N2kP/6Pp/7p/p7/1p6/pP6/K7", 15},
    };
    for (const TCase& c : kCases)
        EXPECT_EQ(Detect(c.fen, c.moves).approach, kNoSquare) << c.what;
}

TEST(SeaSnakeDetector, StoredPlanIsTheProgramsOwn) {
    CWhiteRuleBoard board(kSnake, 17, SH_3MOVESTOMATE);
    StoreSeaSnake(board.Root(), {});
    EXPECT_EQ(board.Root().Heur, SH_3MOVESTOMATE);
    board.Settings().SeaSnakeByUser = true;
    TSeaSnakeSquares squares;
    SeaSnakeDetect(board.Root(), squares, 17);
    squares.onlyAfter = {test::MoveOf("b2b3")};
    StoreSeaSnake(board.Root(), squares);
    EXPECT_EQ(board.Root().Heur, SH_3MOVESTOMATE | SH_SEASNAKE);
    EXPECT_FALSE(board.Settings().SeaSnakeByUser);
    EXPECT_EQ(board.Settings().SeaSnakeApproach, Square("f5"));
    EXPECT_EQ(board.Settings().SeaSnakeTurnBack, Square("e4"));
    EXPECT_EQ(board.Settings().SeaSnakePendulum1, Square("h8"));
    EXPECT_EQ(board.Settings().SeaSnakePendulum2, Square("g7"));
    ASSERT_EQ(board.Context().SeaSnakeOnlyAfter.size(), 1u);
}

// White's list

struct TSnakeBoard : CWhiteRuleBoard {
    explicit TSnakeBoard(const char* fen, u16 halfMoves = 17)
        : CWhiteRuleBoard(fen, halfMoves, SH_SEASNAKE) {
        Settings().SeaSnakeApproach = Square("f5");
        Settings().SeaSnakeTurnBack = Square("e4");
        Settings().SeaSnakePendulum1 = Square("h8");
        Settings().SeaSnakePendulum2 = Square("g7");
    }
    void TakeUsers() {
        Settings().SeaSnakeByUser = true;
        Settings().SeaSnakePendulum1 = kNoSquare;
        Settings().SeaSnakePendulum2 = kNoSquare;
    }
};

struct TSnakeCase {
    const char* name;
    const char* fen;
    const char* moves;
    const char* usersMoves;  // the same squares, given by the user, the pendulum unknown
};

std::string NameOfCase(const testing::TestParamInfo<TSnakeCase>& info) {
    return info.param.name;
}

class SeaSnakeList : public testing::TestWithParam<TSnakeCase> {};

TEST_P(SeaSnakeList, IsTheKingsWay) {
    TSnakeBoard board(GetParam().fen);
    EXPECT_EQ(ListOf(board.Root()), Words(GetParam().moves));
    TSnakeBoard users(GetParam().fen);
    users.TakeUsers();
    EXPECT_EQ(ListOf(users.Root()), Words(GetParam().usersMoves));
    EXPECT_EQ(users.Root().Heur, SH_SEASNAKE);
}

INSTANTIATE_TEST_SUITE_P(
    Ways,
    SeaSnakeList,
    testing::Values(
        TSnakeCase{"StepIn", "7k/3N3P/6Pp/5K2/8/8/1P6/8", "f5f6", ""},
        TSnakeCase{"TooEarly", "8/3N2kP/6Pp/5K2/8/8/1P6/8", "f5e4", ""},
        TSnakeCase{
            "RoundTheTriangle", "8/3N2kP/6Pp/8/4K3/8/1P6/8", "e4f5 e4e5 e4f4", "e4f5 e4e5 e4f4"},
        TSnakeCase{"OnTheThirdSquare", "8/3N2kP/6Pp/4K3/8/8/1P6/8", "e5e4 e5f5", "e5e4 e5f5"},
        TSnakeCase{"FromAfar", kSnake, "h5g4", "h5g4"},
        TSnakeCase{
            "APawnAttacksTheTurnBack", "8/3N2kP/6Pp/3pK3/8/8/1P6/8", "e5f4 e5f5", "e5d4 e5f4 e5f5"},
        TSnakeCase{"NoWay", "7k/3N3P/6Pp/8/8/p1p5/r7/2K5", "", ""}),
    NameOfCase);

TEST(SeaSnakeList, PlainNearTheEndAndWithoutSquares) {
    TSnakeBoard enough(kSnake, 7);
    EXPECT_EQ(ListOf(enough.Root()), Words("h5g4"));
    TSnakeBoard few(kSnake, 5);
    EXPECT_EQ(ListOf(few.Root()), TTexts{});
    for (u8 THeuristicSettings::*square :
         {&THeuristicSettings::SeaSnakeApproach, &THeuristicSettings::SeaSnakeTurnBack}) {
        TSnakeBoard board(kSnake);
        board.Settings().*square = kNoSquare;
        EXPECT_EQ(ListOf(board.Root()), TTexts{});
    }
}

TEST(SeaSnakeList, BeginsAfterTheGivenMoves) {
    const std::vector<TMove> before = {
        test::MoveOf("d7f8"), test::MoveOf("g7h8"), test::MoveOf("f8d7"), test::MoveOf("h8g7")};
    struct TCase {
        const char* line;
        const char* moves;
    };
    constexpr TCase kCases[] = {
        {"", "d7f8"},
        {"d7f8 g7h8", "f8d7"},
        {"d7f8 g7h8 f8d7 h8g7", "h5g4 d7f8"},
        {"d7f8 g7f6", ""},
        {"b2b3 g7h8", ""},
        {"b2b3 g7h8 b3b4 h8g7", ""},
    };
    for (const TCase& c : kCases) {
        TSnakeBoard board(kSnake);
        board.Context().SeaSnakeOnlyAfter = before;
        EXPECT_EQ(ListOf(board.Line(c.line)), Words(c.moves)) << c.line;
    }
    TSnakeBoard impossible(kSnake);
    impossible.Context().SeaSnakeOnlyAfter = {test::MoveOf("d7d8"), test::MoveOf("g7h8")};
    EXPECT_EQ(ListOf(impossible.Root()), TTexts{});
}

TEST(SeaSnakeList, PawnCaptureThatUnblocksEndsThePlan) {
    TSnakeBoard board("8/3N2kP/6Pp/5p1K/5PP1/8/1P6/8");
    TChessboard& node = board.Line("b2b3 f5g4");
    EXPECT_EQ(ListOf(node), TTexts{});
    EXPECT_EQ(node.Heur, 0u);
}

// Triangles

TEST(ZugzwangTriangle, IsFoundAroundTheKing) {
    CWhiteRuleBoard board("8/8/8/8/8/4K2p/4N2k/8", 13, 0);
    u8 squares[2];
    ASSERT_TRUE(FindZugzwangTriangle(board.Root(), squares));
    EXPECT_EQ(squares[0], Square("e3"));
    EXPECT_EQ(squares[1], Square("d2"));
    EXPECT_EQ(board.Settings().ZugzwangTriangleSquares[0], kNoSquare) << "it is not stored";
}

TEST(ZugzwangTriangle, NoneWithoutItsConditions) {
    struct TCase {
        const char* what;
        const char* fen;
    };
    constexpr TCase kCases[] = {
        {"the white king guards", "8/8/8/8/8/7p/4NK1k/8"},
        {"black can do what it likes", "8/pppp4/8/8/8/4K2p/4N2k/8"},
        {"white has no guard", "8/8/8/8/8/4K2p/P6k/8"},
        {"black has no move: no zugzwang either", "6R1/8/8/8/8/2K5/7p/7k"},
        {"no room for a triangle", "8/8/8/1q6/8/P6p/RP1N3k/K7"},
    };
    for (const TCase& c : kCases) {
        CWhiteRuleBoard board(c.fen, 13, 0);
        u8 squares[2];
        EXPECT_FALSE(FindZugzwangTriangle(board.Root(), squares)) << c.what;
        EXPECT_EQ(squares[0], kNoSquare) << c.what;
        EXPECT_EQ(squares[1], kNoSquare) << c.what;
    }
}

// Squares that a text left open

TEST(UnsetPatterns, AreFoundForTheBitsThatAreOn) {
    CWhiteRuleBoard snake(kSnake, 17, SH_SEASNAKE);
    FindUnsetPatterns(snake.Root());
    EXPECT_EQ(snake.Settings().SeaSnakeApproach, Square("f5"));
    EXPECT_FALSE(snake.Settings().SeaSnakeByUser);

    CWhiteRuleBoard triangle("8/8/8/8/8/4K2p/4N2k/8", 13, SH_ZUGZWANGTRIANGLES);
    const u32 before = triangle.Root().HeurParams;
    FindUnsetPatterns(triangle.Root());
    EXPECT_EQ(triangle.Settings().ZugzwangTriangleSquares[1], Square("d2"));
    EXPECT_NE(triangle.Root().HeurParams, before);

    CWhiteRuleBoard off(kSnake, 17, SH_3MOVESTOMATE);
    FindUnsetPatterns(off.Root());
    EXPECT_EQ(off.Settings(), THeuristicSettings{});
}

TEST(UnsetPatterns, KeepWhatTheUserGave) {
    TSnakeBoard board(kSnake);
    board.TakeUsers();
    board.Settings().SeaSnakeApproach = Square("a1");
    FindUnsetPatterns(board.Root());
    EXPECT_EQ(board.Settings().SeaSnakeApproach, Square("a1"));
    EXPECT_TRUE(board.Settings().SeaSnakeByUser);
    CWhiteRuleBoard tooShort(kSnake, 13, SH_SEASNAKE);
    FindUnsetPatterns(tooShort.Root());
    EXPECT_EQ(tooShort.Settings().SeaSnakeApproach, kNoSquare);
    EXPECT_EQ(tooShort.Root().Heur, SH_SEASNAKE);
}

}  // namespace
}  // namespace quillmere

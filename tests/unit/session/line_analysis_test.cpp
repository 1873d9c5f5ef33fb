// Analyses inside the played line, against the plain solve and against the rules of the line.
#include "core/chess_exception.h"
#include "core/legality.h"
#include "core/platform/thread.h"
#include "core/thread_context.h"
#include "session/defence_analysis.h"
#include "session/run_state.h"
#include "session/white_analysis.h"
#include "tests/support/sessions.h"

#include <gtest/gtest.h>

namespace quillmere {
namespace {

constexpr const char* kTwoMover = "8/Q7/8/8/8/8/8/2k1K2R w K - 0 1";  // 1.Qf2 and 2.0-0
constexpr const char* kThreeMover = "4r1b1/1p4B1/pN2pR2/RB2k3/1P2N2p/2p3b1/n2P1p1r/5K1n w - - 0 1";
constexpr std::size_t kStack = std::size_t{1} << 20;

TAnalysisRequest All() {
    TAnalysisRequest request;
    request.wantAll = true;
    request.memoryBytes = u64{16} << 20;
    return request;
}

TWhiteAnalysis White(TChessProblem& problem, const TAnalysisRequest& request = All()) {
    TWhiteAnalysis analysis;
    RunOnThreadWithStack(kStack, [&] { analysis = AnalyseWhite(problem, request); });
    return analysis;
}

TDefenceAnalysis Defence(TChessProblem& problem, const TAnalysisRequest& request = All()) {
    TDefenceAnalysis analysis;
    RunOnThreadWithStack(kStack, [&] { analysis = AnalyseDefence(problem, request); });
    return analysis;
}

void Play(TChessProblem& problem, const std::vector<std::string>& moves) {
    for (const std::string& move : moves)
        ASSERT_TRUE(problem.PlayMove(test::MoveOf(problem, move))) << move;
}

TSolveResult PlainSolve(const TChessboard& board, u16 halfMoves, bool all) {
    TSearchContext context;
    TSolveRequest request;
    request.halfMoves = halfMoves;
    request.wantAllKeys = all;
    TSolveResult result;
    RunOnThreadWithStack(kStack, [&] { result = Solve(board, request, context); });
    return result;
}

bool Holds(const std::vector<TMove>& moves, TMove move) {
    return std::any_of(
        moves.begin(), moves.end(), [move](TMove other) { return MovesEqual(move, other); });
}

// After each legal reply to the key white's mating moves are the keys of the plain solve of that
// position: no castling right is lost on these lines, so the board says it all.
TEST(LineAnalysis, WhiteMoves_AreTheKeysOfThePlainSolve) {
    TChessProblem problem;
    test::SetProblem(problem, kThreeMover, 5);
    const TMove key = PlainSolve(*problem.position, 5, false).keys.front();
    ASSERT_TRUE(problem.PlayMove(key));
    TMove replies[kMoveListSize];
    const int count = GetLegalMoves(*problem.currentNode, replies);
    ASSERT_GT(count, 10);
    for (int i = 0; i < count; ++i) {
        problem.GoToStart();
        ASSERT_TRUE(problem.PlayMove(key));
        ASSERT_TRUE(problem.PlayMove(replies[i]));
        const std::vector<TMove> expected = PlainSolve(*problem.currentNode, 3, true).keys;
        const TWhiteAnalysis found = White(problem);
        EXPECT_TRUE(found.isProved);
        EXPECT_EQ(found.moves.size(), expected.size());
        EXPECT_FALSE(expected.empty());
        for (const TMove move : expected)
            EXPECT_TRUE(Holds(found.moves, move)) << MoveToPlainText(move);
    }
}

// A first move is a key exactly if no defence is found against it.
TEST(LineAnalysis, Defences_AreMissingOnlyAfterKeys) {
    TChessProblem problem;
    test::SetProblem(problem, kThreeMover, 5);
    const std::vector<TMove> keys = PlainSolve(*problem.position, 5, true).keys;
    TMove moves[kMoveListSize];
    const int count = GetLegalMoves(*problem.position, moves);
    for (int i = 0; i < count; ++i) {
        problem.GoToStart();
        ASSERT_TRUE(problem.PlayMove(moves[i]));
        const TDefenceAnalysis found = Defence(problem, {});
        EXPECT_TRUE(found.isProved);
        EXPECT_EQ(found.kind, Holds(keys, moves[i]) ? EDefence::kLoses : EDefence::kRefutes)
            << MoveToPlainText(moves[i]);
    }
}

TEST(LineAnalysis, Castling_FollowsFromTheLine) {
    TChessProblem problem;
    test::SetProblem(problem, kTwoMover, 3);
    Play(problem, {"Qa7-f2", "Kc1-b1"});
    EXPECT_EQ(White(problem).texts, std::vector<std::string>{"0-0"});

    // The same position with the same board, but the rook has moved on the way.
    TChessProblem moved;
    test::SetProblem(moved, "8/Q7/8/8/8/8/8/2k1K2R w K - 0 1", 7);
    Play(moved, {"Rh1-h2", "Kc1-b1", "Rh2-h1", "Kb1-c1", "Qa7-f2", "Kc1-b1"});
    EXPECT_EQ(moved.currentNode->m_nMoves, 1);
    const TWhiteAnalysis found = White(moved);
    EXPECT_EQ(std::count(found.texts.begin(), found.texts.end(), "0-0"), 0);
}

TEST(LineAnalysis, EnPassant_FollowsFromTheLine) {
    // After 1...g7-g5 the pawn on h5 captures en passant and mates no sooner or later than shown by
    // the legal moves: the capture is a move of the node.
    TChessProblem problem;
    test::SetProblem(problem, "7k/6p1/8/7P/8/8/8/K5R1 w - - 0 1", 3);
    Play(problem, {"Ka1-a2", "g7-g5"});
    TMove moves[kMoveListSize];
    const int count = GetLegalMoves(*problem.currentNode, moves);
    EXPECT_TRUE(Holds({moves, moves + count}, test::MoveOf(problem, "h5:g6")));
    const TWhiteAnalysis found = White(problem);
    EXPECT_TRUE(found.moves.empty());
    EXPECT_TRUE(found.isProved);
}

TEST(LineAnalysis, Repetition_IsToldAsSuch) {
    TChessProblem problem;
    test::SetProblem(problem, "7k/8/8/8/8/8/R7/K7 w - - 0 1", 15);
    Play(problem, {"Ra2-b2", "Kh8-g8", "Rb2-a2", "Kg8-h8", "Ra2-b2"});
    EXPECT_EQ(Defence(problem).kind, EDefence::kRepeats);
    problem.GoToStart();
    Play(problem, {"Ra2-b2", "Kh8-g8", "Rb2-a2"});
    EXPECT_NE(Defence(problem, {}).kind, EDefence::kRepeats);
}

TEST(LineAnalysis, OnlyReplies_AreToldAsSuch) {
    TChessProblem problem;
    test::SetProblem(problem, kTwoMover, 3);
    Play(problem, {"Qa7-f2"});
    const TDefenceAnalysis only = Defence(problem);
    EXPECT_TRUE(only.isOnlyReply);
    EXPECT_EQ(only.kind, EDefence::kLoses);
    EXPECT_EQ(only.text, "Kc1-b1");
    EXPECT_EQ(only.mateHalfMoves, 1);

    TChessProblem stalemate;
    test::SetProblem(stalemate, "7k/8/6K1/8/8/8/8/5Q2 w - - 0 1", 3);
    Play(stalemate, {"Qf1-f7"});
    EXPECT_EQ(Defence(stalemate).kind, EDefence::kNoMoves);
}

TEST(LineAnalysis, Stop_VoidsWhatIsUnderWay) {
    TChessProblem problem;
    test::SetProblem(problem, kThreeMover, 5);
    Play(problem, {"Kf1-e2"});
    SetStop(problem, kStopAll);
    const TDefenceAnalysis found = Defence(problem, {});
    EXPECT_TRUE(found.isStopped);
    EXPECT_EQ(found.kind, EDefence::kNone);
    EXPECT_EQ(DefenceAnalysisText(found, ELanguage::kEnglish), "Analysis stopped by user");
}

TEST(LineAnalysis, Register_OfTheProblemAnswersTheSecondTime) {
    TChessProblem problem;
    // A mate in five: four moves are left, and none less will do.
    test::SetProblem(problem, "8/8/8/8/8/Q7/4p3/5k1K w - - 0 1", 9);
    problem.registerRoot = 5;
    Play(problem, {"Qa3-f8", "Kf1-e1"});
    TAnalysisRequest request;
    request.memoryBytes = u64{16} << 20;
    const TWhiteAnalysis first = White(problem, request);
    ASSERT_FALSE(first.moves.empty());
    EXPECT_FALSE(first.isFromRegister);
    const TWhiteAnalysis second = White(problem, request);
    ASSERT_FALSE(second.moves.empty());
    EXPECT_TRUE(second.isFromRegister);
    EXPECT_TRUE(WhiteAnalysisText(second, false, ELanguage::kEnglish).ends_with("(from register)"));
}

// Texts

struct TTextRow {
    EDefence kind;
    bool isOnlyReply;
    bool isOnlySlowReply;
    const char* english;
    const char* polish;
};

TEST(DefenceText, EachResult_HasItsText) {
    constexpr TTextRow kRows[] = {
        {EDefence::kLoses,
         false,
         false,
         "Not found any defence against mate. The best looks: Ka8-a7",
         "Nie znaleziono obrony przed matem. Najlepiej wygląda: Ka8-a7"},
        {EDefence::kLoses,
         false,
         true,
         "The only reply that prevents fast mate (not a defence against mate) : Ka8-a7",
         "Jedyna odpowiedź zapobiegająca szybkiemu matowi (nie broni przed matem) : Ka8-a7"},
        {EDefence::kRefutes,
         false,
         false,
         "Mate in the requested stipulation was refuted with: Ka8-a7",
         "Mat w wymaganej liczbie ruchów został obalony przez: Ka8-a7"},
        {EDefence::kRefutes,
         false,
         true,
         "The only reply that prevents fast mate: Ka8-a7",
         "Jedyna odpowiedź zapobiegająca szybkiemu matowi: Ka8-a7"},
        {EDefence::kLoses,
         true,
         false,
         "The only reply (not a defence against mate) : Ka8-a7",
         "Jedyna odpowiedź (nie broni przed matem) : Ka8-a7"},
        {EDefence::kRefutes, true, false, "The only reply: Ka8-a7", "Jedyna odpowiedź: Ka8-a7"},
        {EDefence::kNoMoves,
         false,
         false,
         "No valid move found",
         "Nie znaleziono poprawnego ruchu"},
    };
    for (const TTextRow& row : kRows) {
        TDefenceAnalysis analysis;
        analysis.kind = row.kind;
        analysis.isOnlyReply = row.isOnlyReply;
        analysis.isOnlySlowReply = row.isOnlySlowReply;
        analysis.text = "Ka8-a7";
        EXPECT_EQ(DefenceAnalysisText(analysis, ELanguage::kEnglish), row.english);
        EXPECT_EQ(DefenceAnalysisText(analysis, ELanguage::kPolish), row.polish);
    }
}

TEST(DefenceText, Additions_StandBehind) {
    TDefenceAnalysis analysis;
    analysis.kind = EDefence::kRefutes;
    analysis.text = "Ka8-a7";
    analysis.isFromRegister = true;
    analysis.equivalentTexts = {"Ka8-b7", "b6-b5"};
    EXPECT_EQ(DefenceAnalysisText(analysis, ELanguage::kEnglish),
              "Mate in the requested stipulation was refuted with: Ka8-a7 (from register)\n"
              "Equivalent moves: Ka8-b7 | b6-b5");
    analysis.isStopped = true;
    analysis.isFromRegister = false;
    analysis.equivalentTexts.clear();
    EXPECT_EQ(DefenceAnalysisText(analysis, ELanguage::kEnglish),
              "Mate in the requested stipulation was refuted with: Ka8-a7 (stopped by user)");
    analysis.kind = EDefence::kRepeats;
    EXPECT_EQ(DefenceAnalysisText(analysis, ELanguage::kEnglish),
              "Program detected position repetition.\nFor performance reasons every position "
              "repetition is assumed to prevent possibility of mate within the required "
              "stipulation and program stops analysis in such case.");
}

TEST(WhiteText, EachResult_HasItsText) {
    TWhiteAnalysis analysis;
    analysis.isProved = true;
    analysis.milliseconds = 1250;
    EXPECT_EQ(WhiteAnalysisText(analysis, false, ELanguage::kEnglish),
              "No solution found (1.25 sec.)");
    EXPECT_EQ(WhiteAnalysisText(analysis, true, ELanguage::kEnglish),
              "No solution found NOTE: Pass without heuristics is currently switched off (see "
              "heuristics selection dialog box)");
    analysis.isProved = false;
    EXPECT_EQ(WhiteAnalysisText(analysis, false, ELanguage::kEnglish), "No solution found");
    analysis.isStopped = true;
    EXPECT_EQ(WhiteAnalysisText(analysis, false, ELanguage::kEnglish), "Analysis stopped by user");
    analysis.isStopped = false;
    analysis.moves = {MakeMove(0, 8), MakeMove(0, 16)};
    analysis.texts = {"Ra1-a2", "Ra1-a3"};
    analysis.isFromRegister = true;
    EXPECT_EQ(WhiteAnalysisText(analysis, false, ELanguage::kEnglish),
              "The following moves have been found:\nRa1-a2\nRa1-a3 (from register)");
}

}  // namespace
}  // namespace quillmere

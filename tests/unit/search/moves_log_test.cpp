#include "core/chessboard_id.h"
#include "search/mate_search.h"
#include "search/moves_log.h"
#include "search/pause.h"
#include "search/solve.h"
#include "tests/support/search_board.h"
#include "tests/support/temporary_folder.h"

#include <gtest/gtest.h>
#include <optional>
#include <string>
#include <thread>
#include <vector>

namespace quillmere {
namespace {

using test::CSearchBoard;
using test::CTemporaryFolder;
using test::ReadFile;

class CWarnings : public IWarningSink {
public:
    void Warn(EMessage title, EMessage text, const std::vector<std::string>& values) override {
        titles.push_back(title);
        texts.push_back(text);
        lastValues = values;
    }
    std::vector<EMessage> titles;
    std::vector<EMessage> texts;
    std::vector<std::string> lastValues;
};

// A rook that mates in two: 1.Rb1-b7 Kh8-g8 2.Ra1-a8.
constexpr const char* kTwoRooks = "7k/8/8/8/8/8/8/RR5K";

class MovesLog : public testing::Test {
protected:
    MovesLog() : m_log(MovesLogFile(m_folder.Path(), 3, 1), m_warnings) {}

    CSearchBoard& Board(const std::string& fen, u16 halfMoves) {
        m_board.emplace(fen, halfMoves);
        m_board->Thread().movesLog = &m_log;
        return *m_board;
    }
    std::string Text() const { return ReadFile(m_log.File()); }
    bool IsWritten() const { return std::filesystem::exists(m_log.File()); }
    static std::string IdOf(const TChessboard& node) { return TChessboardId(node).ToAlphanum6(); }

    CTemporaryFolder m_folder;
    CWarnings m_warnings;
    CMovesLog m_log;
    std::optional<CSearchBoard> m_board;
};

TEST_F(MovesLog, FileName_HoldsProblemAndThread) {
    EXPECT_EQ(MovesLogFile("folder", 3, 12),
              std::filesystem::path("folder") / "MovesLogger_problem3_thread12.log");
}

TEST_F(MovesLog, FirstMoveOfWhite_HasIdentifierAndPass) {
    CSearchBoard& board = Board(kTwoRooks, 3);
    ASSERT_EQ(board.Play("b1b7"), kMoveMade);
    LogMove(board.Node(), MakeMove(1, 49), false);
    EXPECT_EQ(Text(), " 1.Rb1-b7 " + IdOf(board.Node()) + " Pass 2\n");
}

TEST_F(MovesLog, SecondFirstMoveOfThePass_IsToldWithoutThePass) {
    CSearchBoard& board = Board(kTwoRooks, 3);
    ASSERT_EQ(board.Play("b1b7"), kMoveMade);
    const std::string id = IdOf(board.Node());
    LogMove(board.Node(), MakeMove(1, 49), false);
    LogMove(board.Node(), MakeMove(1, 49), false);
    m_log.StartPass('a');
    LogMove(board.Node(), MakeMove(1, 49), false);
    EXPECT_EQ(Text(),
              " 1.Rb1-b7 " + id + " Pass 2\n 1.Rb1-b7 " + id + "\n 1.Rb1-b7 " + id + " Pass 2\n");
}

TEST_F(MovesLog, PassOne_IsToldWithVariantAndHeuristics) {
    CSearchBoard& board = Board(kTwoRooks, 3);
    ASSERT_EQ(board.Play("b1b7"), kMoveMade);
    board.Node().m_pass = kPassHeuristics;
    board.Node().Heur = 0x80;
    board.Node().HeurParams = 0xffffffff;
    m_log.StartPass('c');
    LogMove(board.Node(), MakeMove(1, 49), false);
    EXPECT_EQ(Text(),
              " 1.Rb1-b7 " + IdOf(board.Node()) +
                  " Pass 1c Heur=128 HeurParams=-1 "
                  "SH_DONTLETFIGUREUNBLOCK,  QuickMode\n");
}

TEST_F(MovesLog, LaterMoves_HaveNumberSideAndOneBlankAPly) {
    CSearchBoard& board = Board(kTwoRooks, 5);
    ASSERT_EQ(board.Play("b1b7"), kMoveMade);
    ASSERT_EQ(board.Play("h8g8"), kMoveMade);
    LogMove(board.Node(), MakeMove(63, 62), true);
    ASSERT_EQ(board.Play("a1a8"), kMoveMade);
    LogMove(board.Node(), MakeMove(0, 56), false);
    EXPECT_EQ(Text(), "  1 ... Kh8-g8\n   2.Ra1-a8\n");
}

TEST_F(MovesLog, CaptureAndPromotion_StandInTheText) {
    CSearchBoard& board = Board("3r3k/4P3/8/8/8/8/8/K7", 3);
    ASSERT_EQ(board.Play("e7d8Q"), kMoveMade);
    LogMove(board.Node(), MakeMove(52, 59, kQueen), false);
    EXPECT_EQ(Text(), " 1.e7:d8Q " + IdOf(board.Node()) + " Pass 2\n");
}

TEST_F(MovesLog, NodeWithoutParent_IsToldBySquaresAlone) {
    CSearchBoard& board = Board(kTwoRooks, 3);
    board.Root().m_nMoves = 2;
    LogMove(board.Root(), MakeMove(1, 49), false);
    EXPECT_EQ(Text(), " b1-b7\n");
}

TEST_F(MovesLog, BlackBegins_BlacksFirstMoveAndWhitesReplyAreNumberedAsInPlay) {
    CSearchBoard& board = Board(kTwoRooks, 4);
    ASSERT_EQ(board.Play("h8g8"), kMoveMade);
    LogMove(board.Node(), MakeMove(63, 62), true);
    ASSERT_EQ(board.Play("b1b7"), kMoveMade);
    LogMove(board.Node(), MakeMove(1, 49), false);
    ASSERT_EQ(board.Play("g8h8"), kMoveMade);
    LogMove(board.Node(), MakeMove(62, 63), true);
    EXPECT_EQ(Text(), " 1 ... Kh8-g8\n  2.Rb1-b7\n   2 ... Kg8-h8\n");
}

struct TWordCase {
    TVerdict verdict;
    const char* line;
};

TEST_F(MovesLog, EveryResult_HasItsWord) {
    const TWordCase cases[] = {{kMate, " 1.mate\n"},
                               {kNoMate, " 1.no mate\n"},
                               {kDoubtful, " 1.doubtful\n"},
                               {kRepetition, " 1.position repetition\n"},
                               {kEndOfForced, " 1.end of FindForcedMate depth\n"},
                               {kNothingKnown, " 1.result error\n"},
                               {7, " 1.result error\n"}};
    CSearchBoard& board = Board(kTwoRooks, 3);
    ASSERT_EQ(board.Play("b1b7"), kMoveMade);
    std::string expected;
    for (const TWordCase& c : cases) {
        LogResult(board.Node(), c.verdict);
        expected += c.line;
    }
    EXPECT_EQ(Text(), expected);
}

TEST_F(MovesLog, ResultOfABlackMove_HasBlacksSign) {
    CSearchBoard& board = Board(kTwoRooks, 3);
    ASSERT_EQ(board.Play("b1b7"), kMoveMade);
    ASSERT_EQ(board.Play("h8g8"), kMoveMade);
    LogResult(board.Node(), kMate);
    EXPECT_EQ(Text(), "  1 ... mate\n");
}

TEST_F(MovesLog, Doubt_IsFollowedByItsCause) {
    CSearchBoard& board = Board(kTwoRooks, 3);
    ASSERT_EQ(board.Play("b1b7"), kMoveMade);
    TDoubtCause& cause = board.Thread().doubtCause;
    cause = {17, true};
    LogResult(board.Node(), kDoubtful);
    cause = {static_cast<u32>(kMateImpossibleAssumed), false};
    LogResult(board.Node(), kDoubtful);
    cause = {static_cast<u32>(kMateImpossible), false};
    LogResult(board.Node(), kDoubtful);
    LogResult(board.Node(), kNoMate);
    EXPECT_EQ(Text(),
              " 1.doubtful (17 (temp.reg.))\n 1.doubtful/impossible (-2)\n"
              " 1.doubtful/impossible (-1)\n 1.no mate\n");
}

TEST_F(MovesLog, Texts_StandAtTheIndentationOfTheNode) {
    CSearchBoard& board = Board(kTwoRooks, 3);
    ASSERT_EQ(board.Play("b1b7"), kMoveMade);
    LogText(board.Node(), "100%s");
    LogRegisterMate(board.Node());
    LogNextThreadLevel(board.Node());
    EXPECT_EQ(Text(),
              " 100%s\n Mate found (pos.in temp.reg.).\nNextMultithreadingLevel analysis...\n"
              "----------------------------------------\n");
}

TEST_F(MovesLog, BelowSixHundredPlies_NothingIsWritten) {
    CSearchBoard& board = Board(kTwoRooks, 701);
    ASSERT_EQ(board.Play("b1b7"), kMoveMade);
    board.Node().m_nMoves = 100;
    LogMove(board.Node(), MakeMove(1, 49), false);
    LogResult(board.Node(), kMate);
    LogText(board.Node(), "deep");
    EXPECT_FALSE(IsWritten());
    board.Node().m_nMoves = 101;
    LogText(board.Node(), "deep");
    EXPECT_EQ(Text(), std::string(600, ' ') + "deep\n");
}

TEST_F(MovesLog, Hidden_NothingIsWritten) {
    CSearchBoard& board = Board(kTwoRooks, 3);
    ASSERT_EQ(board.Play("b1b7"), kMoveMade);
    board.Thread().isLogHidden = true;
    LogMove(board.Node(), MakeMove(1, 49), false);
    LogResult(board.Node(), kMate);
    LogText(board.Node(), "hidden");
    EXPECT_FALSE(IsWritten());
}

TEST_F(MovesLog, ThreadWithoutLog_NothingHappens) {
    CSearchBoard& board = Board(kTwoRooks, 3);
    board.Thread().movesLog = nullptr;
    ASSERT_EQ(board.Play("b1b7"), kMoveMade);
    LogMove(board.Node(), MakeMove(1, 49), false);
    EXPECT_FALSE(IsWritten());
}

TEST_F(MovesLog, ExistingFile_IsAppendedTo) {
    test::WriteFile(m_log.File(), "before\n");
    CSearchBoard& board = Board(kTwoRooks, 3);
    LogText(board.Root(), "after");
    EXPECT_EQ(Text(), "before\nafter\n");
}

TEST_F(MovesLog, FileThatCannotBeOpened_IsToldOnceAndNothingMoreIsTried) {
    CSearchBoard& board = Board(kTwoRooks, 3);
    CMovesLog log(m_folder.Path() / "nowhere" / "x.log", m_warnings);
    board.Thread().movesLog = &log;
    LogText(board.Root(), "one");
    std::filesystem::create_directory(m_folder.Path() / "nowhere");
    LogText(board.Root(), "two");
    EXPECT_TRUE(log.HasFailed());
    EXPECT_FALSE(std::filesystem::exists(log.File()));
    ASSERT_EQ(m_warnings.texts, std::vector<EMessage>{EMessage::kMovesLogFailed});
    EXPECT_EQ(m_warnings.titles, std::vector<EMessage>{EMessage::kTitleWarning});
    EXPECT_EQ(m_warnings.lastValues, std::vector<std::string>{log.File().string()});
}

TEST_F(MovesLog, FullDisk_IsToldOnce) {
    if (!std::filesystem::exists("/dev/full"))
        GTEST_SKIP() << "no /dev/full here";
    CSearchBoard& board = Board(kTwoRooks, 3);
    CMovesLog log("/dev/full", m_warnings);
    board.Thread().movesLog = &log;
    LogText(board.Root(), "one");
    LogText(board.Root(), "two");
    EXPECT_TRUE(log.HasFailed());
    EXPECT_EQ(m_warnings.texts.size(), 1u);
}

TEST_F(MovesLog, FailedLog_DoesNotChangeTheVerdict) {
    CSearchBoard& board = Board(kTwoRooks, 3);
    CMovesLog log(m_folder.Path() / "nowhere" / "x.log", m_warnings);
    board.Thread().movesLog = &log;
    EXPECT_EQ(FindMate(board.Root(), true), kMate);
}

// The twin of the search

TEST_F(MovesLog, MovesThatFail_AreWrittenWithTheirResults) {
    // Black's king has no step, so that no move is known to be refuted beforehand.
    CSearchBoard& board = Board("kb5r/pp5p/8/8/8/8/1R6/6K1", 3);
    EXPECT_EQ(FindMate(board.Root(), true), kNoMate);
    EXPECT_NE(Text().find("  1 ... no mate\n 1.no mate\n"), std::string::npos) << Text();
}

TEST_F(MovesLog, Search_WritesMovesAndResults) {
    CSearchBoard& board = Board(kTwoRooks, 3);
    EXPECT_EQ(FindMate(board.Root(), true), kMate);
    const std::string text = Text();
    EXPECT_TRUE(text.starts_with(" 1.R")) << text;
    EXPECT_TRUE(text.ends_with("  1 ... Kh8-g8\n  1 ... mate\n 1.mate\n")) << text;
    // Every move has its result: as many lines of the one kind as of the other.
    int moves = 0;
    int results = 0;
    for (std::size_t i = 0; (i = text.find('\n', i)) != std::string::npos; ++i) {
        const std::size_t begin = text.rfind('\n', i - 1) + 1;
        const std::string line = text.substr(i < begin ? 0 : begin, i - begin);
        (line.ends_with("mate") || line.ends_with("repetition") ? results : moves) += 1;
    }
    EXPECT_EQ(moves, results);
    EXPECT_GT(moves, 0);
}

TEST_F(MovesLog, Twins_MakeTheSameMovesAndAnswerTheSame) {
    const char* fens[] = {
        "8/8/8/8/8/Q7/4p3/5k1K", "8/6R1/7p/5K1k/8/6p1/5bPP/4N3", "k7/8/8/2K5/8/8/8/1Q6"};
    for (const char* fen : fens) {
        CSearchBoard logged(fen, 5);
        logged.Thread().movesLog = &m_log;
        CSearchBoard plain(fen, 5);
        EXPECT_EQ(FindMate(logged.Root(), true), FindMate(plain.Root(), true)) << fen;
        EXPECT_EQ(logged.Thread().madeMoves, plain.Thread().madeMoves) << fen;
    }
    EXPECT_TRUE(IsWritten());
}

TEST_F(MovesLog, HeuristicsOfACompletePass_AreTheCauseOfTheDoubt) {
    CSearchBoard& single = Board("7k/8/8/8/8/8/8/R6K", 3);
    single.Root().Heur = 0x80;
    EXPECT_EQ(FindMate(single.Root(), true), kDoubtful);
    EXPECT_EQ(single.Thread().doubtCause.code, 0x80u);
    EXPECT_FALSE(single.Thread().doubtCause.isFromRegister);
}

TEST_F(MovesLog, Stop_LeavesNoResultBehind) {
    CSearchBoard& board = Board(kTwoRooks, 3);
    SetStop(board.Context(), kStopAll);
    FindMate(board.Root(), true);
    ASSERT_TRUE(IsStopped(board.Root()));
    EXPECT_FALSE(IsWritten());
}

TEST_F(MovesLog, Solve_LogsItsFirstMovesAndNotTheMainLine) {
    TChessboard board = CSearchBoard("k7/2K5/8/8/8/8/8/1R6", 3).Root();
    TSolveRequest request;
    request.halfMoves = 3;
    request.movesLogs = {&m_log};
    TSearchContext context;
    const TSolveResult result = Solve(board, request, context);
    ASSERT_EQ(result.verdict, ESolveVerdict::kProvedMate);
    ASSERT_FALSE(result.mainLine.empty());
    const std::string text = Text();
    EXPECT_TRUE(text.starts_with(" 1."));
    EXPECT_NE(text.find(" Pass 2\n"), std::string::npos);
    EXPECT_TRUE(text.ends_with("\n 1.mate\n")) << text.substr(text.size() - 40);
}

TEST_F(MovesLog, ManyThreads_WriteWholeLines) {
    constexpr int kLines = 200;
    CMovesLog second(m_log.File(), m_warnings);
    std::vector<std::thread> threads;
    for (CMovesLog* log : {&m_log, &second}) {
        threads.emplace_back([log] {
            CSearchBoard board(kTwoRooks, 3);
            board.Thread().movesLog = log;
            for (int i = 0; i < kLines; ++i)
                LogText(board.Root(), "a whole line of text");
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    std::string expected;
    for (int i = 0; i < 2 * kLines; ++i)
        expected += "a whole line of text\n";
    EXPECT_EQ(Text(), expected);
}

}  // namespace
}  // namespace quillmere

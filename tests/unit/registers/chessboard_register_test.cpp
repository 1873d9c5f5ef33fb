#include "core/chess_exception.h"
#include "registers/chessboard_register.h"
#include "tests/support/registers.h"
#include "tests/support/temporary_folder.h"

#include <cstring>
#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace quillmere {
namespace {

using test::kMegabyte;
using test::NumberedBoard;

constexpr TMove kKey = MakeMove(12, 28);
constexpr TMove kOther = MakeMove(3, 4);

class ChessboardRegister : public testing::Test {
protected:
    // Depths at which the position has a record.
    static std::vector<u16> DepthsOf(const TChessboardRegister<bool>& store, u32 number) {
        std::vector<u16> depths;
        for (const auto& [depth, positions] : store) {
            if (positions.contains(test::NumberedItem(number)))
                depths.push_back(depth);
        }
        return depths;
    }
    std::vector<u16> Depths(u32 number = 1) const { return DepthsOf(m_store, number); }

    void Move(u16 nMoves, bool bThereIsMate, u32 number = 1) {
        m_store.Insert(nMoves, NumberedBoard(number), bThereIsMate, kKey);
    }
    void Defence(u16 nMoves, bool bHolds, u32 number = 1) {
        m_store.InsertDefence(nMoves, NumberedBoard(number), bHolds, kKey);
    }
    TVerdict FindMove(u16 nMoves) const { return m_store.FindMove(nMoves, NumberedBoard(1)); }
    TVerdict FindDefence(u16 nMoves) const { return m_store.FindDefence(nMoves, NumberedBoard(1)); }

    TChessboardRegister<bool> m_store{test::QuietSettings(16 * kMegabyte)};
};

// Look-ups

TEST_F(ChessboardRegister, EmptyStore_KnowsNothing) {
    EXPECT_EQ(FindMove(9), kNothingKnown);
    EXPECT_EQ(FindDefence(8), kNothingKnown);
}

TEST_F(ChessboardRegister, Mate_AnswersItsDepthAndAllAbove) {
    Move(7, true);
    EXPECT_EQ(FindMove(5), kNothingKnown);
    EXPECT_EQ(FindMove(7), kMate);
    EXPECT_EQ(FindMove(599), kMate);
    EXPECT_EQ(m_store.FindMove(7, NumberedBoard(2)), kNothingKnown);
}

TEST_F(ChessboardRegister, NoMate_AnswersItsDepthAndAllBelow) {
    Move(7, false);
    EXPECT_EQ(FindMove(1), kNoMate);
    EXPECT_EQ(FindMove(7), kNoMate);
    EXPECT_EQ(FindMove(9), kNothingKnown);
}

TEST_F(ChessboardRegister, FindMove_WalksOnBehindRecordsThatDoNotAnswer) {
    Move(5, false);
    Move(11, true);
    EXPECT_EQ(FindMove(5), kNoMate);
    EXPECT_EQ(FindMove(7), kNothingKnown);
    EXPECT_EQ(FindMove(9), kNothingKnown);
    EXPECT_EQ(FindMove(11), kMate);
}

TEST_F(ChessboardRegister, FindMove_DoesNotLookAtDefences) {
    Defence(8, true);
    Defence(4, true, 2);
    EXPECT_EQ(FindMove(7), kNothingKnown);
    Move(7, true);
    EXPECT_EQ(FindDefence(10), kNothingKnown);
}

TEST_F(ChessboardRegister, DefenceThatHolds_AnswersItsDepthAndAllBelow) {
    Defence(8, true);
    EXPECT_EQ(FindDefence(8), 1);
    EXPECT_EQ(FindDefence(2), 1);
    EXPECT_EQ(FindDefence(10), kNothingKnown);
}

TEST_F(ChessboardRegister, DefenceThatFails_AnswersItsDepthAndAllAbove) {
    Defence(8, false);
    EXPECT_EQ(FindDefence(6), kNothingKnown);
    EXPECT_EQ(FindDefence(8), 0);
    EXPECT_EQ(FindDefence(20), 0);
}

TEST_F(ChessboardRegister, FindDefence_GivesTheMoveOfTheRecord) {
    m_store.InsertDefence(8, NumberedBoard(1), true, kKey);
    m_store.InsertDefence(12, NumberedBoard(1), false, kOther);
    TMove move{};
    EXPECT_EQ(m_store.FindDefence(6, NumberedBoard(1), &move), 1);
    EXPECT_TRUE(MovesEqual(move, kKey));
    EXPECT_EQ(m_store.FindDefence(14, NumberedBoard(1), &move), 0);
    EXPECT_TRUE(MovesEqual(move, kOther));
    // Without an answer the move stays.
    EXPECT_EQ(m_store.FindDefence(10, NumberedBoard(1), &move), kNothingKnown);
    EXPECT_TRUE(MovesEqual(move, kOther));
}

TEST_F(ChessboardRegister, OneColourPlay_IsAnotherKey) {
    TChessboard board = NumberedBoard(1);
    board.m_captureState = kOneColourParity1;
    m_store.Insert(7, board, true, kKey);
    EXPECT_EQ(m_store.FindMove(7, board), kMate);
    EXPECT_EQ(FindMove(7), kNothingKnown);
    board.m_captureState = kOneColourParity0;
    EXPECT_EQ(m_store.FindMove(7, board), kNothingKnown);
}

// Records

TEST_F(ChessboardRegister, Record_CarriesDepthStampMoveAndFlag) {
    Move(7, true);
    const auto& info = m_store.at(7).at(test::NumberedItem(1));
    EXPECT_EQ(info.nMoves, 7);
    EXPECT_EQ(info.stamp, 982);
    EXPECT_TRUE(MovesEqual(info.move, kKey));
    EXPECT_EQ(info.bThereIsMate, 1U);
}

TEST_F(ChessboardRegister, Mates_RemoveLongerMatesOnly) {
    Move(5, false);
    Move(15, true);
    Move(13, true);
    EXPECT_EQ(Depths(), (std::vector<u16>{5, 13}));
    EXPECT_EQ(m_store.MapElementsIn(), 2U);
    Move(9, true);
    EXPECT_EQ(Depths(), (std::vector<u16>{5, 9}));
    EXPECT_EQ(m_store.MapElementsIn(), 2U);
}

TEST_F(ChessboardRegister, NoMates_RemoveLowerNoMatesOnly) {
    Move(21, true);
    Move(5, false);
    Move(9, false);
    EXPECT_EQ(Depths(), (std::vector<u16>{9, 21}));
    EXPECT_EQ(m_store.MapElementsIn(), 2U);
}

TEST_F(ChessboardRegister, Pruning_LeavesOtherPositionsAndEvenDepthsAlone) {
    Move(5, false, 2);
    Defence(4, true);
    Move(9, false);
    EXPECT_EQ(Depths(1), (std::vector<u16>{4, 9}));
    EXPECT_EQ(Depths(2), (std::vector<u16>{5}));
    EXPECT_EQ(m_store.MapElementsIn(), 2U);
}

TEST_F(ChessboardRegister, AnsweredVerdict_IsNotStoredAgain) {
    Move(7, true);
    Move(7, true);
    Move(11, true);
    EXPECT_EQ(Depths(), (std::vector<u16>{7}));
    EXPECT_EQ(m_store.MapElementsIn(), 1U);
}

TEST_F(ChessboardRegister, Defences_AreNotCounted) {
    Defence(8, true);
    Defence(10, true);
    Defence(4, false, 2);
    EXPECT_EQ(m_store.MapElementsIn(), 0U);
    EXPECT_EQ(m_store.GetElementsIn(), 0U);
}

TEST_F(ChessboardRegister, DefencesThatHold_RemoveLowerOnes) {
    Defence(8, true);
    Defence(20, false);
    Defence(12, true);
    EXPECT_EQ(Depths(), (std::vector<u16>{12, 20}));
}

TEST_F(ChessboardRegister, DefencesThatFail_RemoveHigherOnes) {
    Defence(4, true);
    Defence(20, false);
    Defence(12, false);
    EXPECT_EQ(Depths(), (std::vector<u16>{4, 12}));
}

TEST_F(ChessboardRegister, OppositeVerdict_Throws) {
    Move(7, true);
    try {
        Move(9, false);
        FAIL() << "no exception";
    } catch (const ChessException& error) {
        EXPECT_STREQ(error.what(), "Incoherent information in TChessboardRegister::Insert()");
        EXPECT_EQ(error.Text(ELanguage::kPolish),
                  "Sprzeczna informacja w TChessboardRegister::Insert()");
    }
    EXPECT_EQ(Depths(), (std::vector<u16>{7}));
    // The lock is free again.
    EXPECT_FALSE(m_store.MapLock().IsHeldByThisThread());
    Move(5, false);
    EXPECT_EQ(m_store.MapElementsIn(), 2U);
}

TEST_F(ChessboardRegister, OppositeDefence_ThrowsWithItsOwnPolishText) {
    Defence(8, true);
    try {
        Defence(6, false);
        FAIL() << "no exception";
    } catch (const ChessException& error) {
        EXPECT_STREQ(error.what(), "Incoherent information in TChessboardRegister::Insert()");
        EXPECT_EQ(error.Text(ELanguage::kPolish),
                  "Sprzeczna informacja w TChessboardRegister::InsertDefence()");
    }
    EXPECT_FALSE(m_store.MapLock().IsHeldByThisThread());
}

TEST_F(ChessboardRegister, ClearMap_ForgetsEverythingAndFreesTheMemory) {
    Move(7, true);
    Defence(8, true);
    EXPECT_GT(m_store.BytesUsed(), 2 * 76U);
    m_store.ClearMap();
    EXPECT_EQ(m_store.MapElementsIn(), 0U);
    EXPECT_TRUE(m_store.empty());
    EXPECT_EQ(m_store.BytesUsed(), 0U);
}

// Limits

TEST_F(ChessboardRegister, LimitOfNothing_StoresNothing) {
    TChessboardRegister<bool> store(test::QuietSettings(0));
    EXPECT_EQ(store.ElementLimit(), 0U);
    store.Insert(7, NumberedBoard(1), true, kKey);
    store.InsertDefence(8, NumberedBoard(1), true, kKey);
    EXPECT_TRUE(store.empty());
}

TEST_F(ChessboardRegister, ElementLimit_StopsInserts) {
    TChessboardRegister<bool> store(test::QuietSettings(kMegabyte));
    const u32 limit = store.ElementLimit();
    for (u32 i = 0; i < limit + 100; ++i)
        store.Insert(7, NumberedBoard(i), true, kKey);
    EXPECT_EQ(store.MapElementsIn(), std::min<u32>(limit, store.at(7).size()));
    EXPECT_LE(store.MapElementsIn(), limit);
    EXPECT_LE(store.BytesUsed(), store.ByteLimit());
    EXPECT_GT(store.MapElementsIn(), limit / 2);
}

TEST_F(ChessboardRegister, RefusedNode_ForgetsTheInsert) {
    test::CMemoryGate gate;
    TRegisterSettings settings = test::QuietSettings(kMegabyte);
    settings.mayAllocate = gate.Function();
    TChessboardRegister<bool> store(settings);
    // The node of the depth, then that of the position.
    for (const int allowed : {0, 1}) {
        gate.Allow(allowed);
        EXPECT_NO_THROW(store.Insert(7, NumberedBoard(1), true, kKey));
        EXPECT_EQ(store.MapElementsIn(), 0U);
        EXPECT_EQ(store.FindMove(7, NumberedBoard(1)), kNothingKnown);
    }
    gate.Open();
    store.Insert(7, NumberedBoard(1), true, kKey);
    EXPECT_EQ(store.FindMove(7, NumberedBoard(1)), kMate);
    EXPECT_FALSE(store.MapLock().IsHeldByThisThread());
}

// The problem

TEST_F(ChessboardRegister, SetProblem_IdentifiesANewBoardAndForgetsTheOldOne) {
    TChessboard board = NumberedBoard(1);
    EXPECT_TRUE(m_store.SetProblem(board));
    EXPECT_EQ(m_store.ProblemId(), TChessboardId(board));
    Move(7, true);
    m_store.SetFilePaths("a", "b");
    m_store.ProblemRecord().halfMoves = 9;
    m_store.ProblemSolutions() = {1, 2};

    // The same squares: nothing happens, whatever else the board says.
    board.m_nMoves = 33;
    EXPECT_FALSE(m_store.SetProblem(board));
    EXPECT_EQ(m_store.MapElementsIn(), 1U);
    EXPECT_EQ(m_store.RegisterFile(), "a");

    EXPECT_TRUE(m_store.SetProblem(NumberedBoard(2)));
    EXPECT_EQ(m_store.ProblemId(), TChessboardId(NumberedBoard(2)));
    EXPECT_EQ(m_store.MapElementsIn(), 0U);
    EXPECT_TRUE(m_store.empty());
    EXPECT_EQ(m_store.RegisterFile(), "");
    EXPECT_EQ(m_store.RecordFile(), "");
    EXPECT_EQ(m_store.ProblemRecord().halfMoves, 0);
    EXPECT_EQ(m_store.ProblemRecord().firstRun.stamp, 982U);
    EXPECT_TRUE(m_store.ProblemSolutions().empty());
}

TEST_F(ChessboardRegister, BoardWithoutIdentifier_ChangesNothing) {
    ASSERT_TRUE(m_store.SetProblem(NumberedBoard(1)));
    Move(7, true);
    TChessboard bad = NumberedBoard(2);
    bad.m_board[5] = 3;
    EXPECT_THROW(m_store.SetProblem(bad), ChessException);
    EXPECT_EQ(m_store.ProblemId(), TChessboardId(NumberedBoard(1)));
    EXPECT_EQ(m_store.MapElementsIn(), 1U);
    EXPECT_FALSE(m_store.SetProblem(NumberedBoard(1)));
}

// The file

class RegisterFile : public ChessboardRegister {
protected:
    void SetUp() override { m_store.SetFilePaths(m_file.string(), ""); }

    test::CTemporaryFolder m_folder;
    std::filesystem::path m_file = m_folder.Path() / "position.cspdb";
};

TEST_F(RegisterFile, SavedRecords_AreReadBackTheSame) {
    Move(7, true);
    Move(3, false);
    Move(9, false, 2);
    Defence(8, true, 3);
    Defence(12, false, 3);
    ASSERT_TRUE(m_store.SaveFile());

    TChessboardRegister<bool> other(test::QuietSettings(kMegabyte));
    other.SetFilePaths(m_file.string(), "");
    other.Insert(5, NumberedBoard(99), true, kKey);
    EXPECT_TRUE(other.LoadFile());
    EXPECT_EQ(DepthsOf(other, 1), (std::vector<u16>{3, 7}));
    EXPECT_EQ(DepthsOf(other, 2), (std::vector<u16>{9}));
    EXPECT_EQ(DepthsOf(other, 3), (std::vector<u16>{8, 12}));
    // What stood there before is gone.
    EXPECT_EQ(DepthsOf(other, 99), (std::vector<u16>{}));
    EXPECT_EQ(other.MapElementsIn(), 3U);
    EXPECT_EQ(other.FindMove(7, NumberedBoard(1)), kMate);
    TMove move{};
    EXPECT_EQ(other.FindDefence(8, NumberedBoard(3), &move), 1);
    EXPECT_TRUE(MovesEqual(move, kKey));
}

TEST_F(RegisterFile, Layout_IsItemAndInfoByDepthAndKey) {
    Defence(8, true);
    Move(7, true, 1);
    Move(7, false, 2);
    ASSERT_TRUE(m_store.SaveFile());
    const std::string bytes = test::ReadFile(m_file);
    ASSERT_EQ(bytes.size(), 3U * 76);
    const bool isFirstLower = test::NumberedItem(1) < test::NumberedItem(2);
    const u32 order[] = {isFirstLower ? 1U : 2U, isFirstLower ? 2U : 1U, 1U};
    for (std::size_t i = 0; i < 3; ++i) {
        const TChessboardRegisterItem item = test::NumberedItem(order[i]);
        EXPECT_EQ(std::memcmp(bytes.data() + 76 * i, &item, 64), 0) << i;
    }
    const std::string info = bytes.substr(2 * 76 + 64);
    EXPECT_EQ(info, std::string("\x08\x00\xd6\x03\x0c\x1c\x00\x00\x01\x00\x00\x00", 12));
}

TEST_F(RegisterFile, OldFile_BecomesABackup) {
    Move(7, true);
    ASSERT_TRUE(m_store.SaveFile());
    const std::string first = test::ReadFile(m_file);
    Move(9, false, 2);
    ASSERT_TRUE(m_store.SaveFile());
    EXPECT_EQ(test::ReadFile(m_file.string() + ".BAK"), first);
    EXPECT_EQ(test::ReadFile(m_file).size(), 2U * 76);
}

TEST_F(RegisterFile, InsertWithSave_WritesTheFile) {
    m_store.Insert(7, NumberedBoard(1), true, kKey, true);
    EXPECT_EQ(test::ReadFile(m_file).size(), 76U);
    m_store.InsertDefence(8, NumberedBoard(1), true, kKey, true);
    EXPECT_EQ(test::ReadFile(m_file).size(), 2U * 76);
}

TEST_F(RegisterFile, FileCutWithinARecord_KeepsWhatWasWhole) {
    Move(7, true, 1);
    Move(7, true, 2);
    ASSERT_TRUE(m_store.SaveFile());
    const std::string bytes = test::ReadFile(m_file);
    for (const std::size_t length : {76U + 75U, 76U + 64U, 76U + 1U}) {
        test::WriteFile(m_file, bytes.substr(0, length));
        EXPECT_FALSE(m_store.LoadFile()) << length;
        EXPECT_EQ(m_store.MapElementsIn(), 1U) << length;
        // It is not shortened.
        EXPECT_EQ(test::ReadFile(m_file).size(), length);
    }
    test::WriteFile(m_file, bytes.substr(0, 76));
    EXPECT_TRUE(m_store.LoadFile());
    EXPECT_EQ(m_store.MapElementsIn(), 1U);
    test::WriteFile(m_file, "");
    EXPECT_TRUE(m_store.LoadFile());
    EXPECT_EQ(m_store.MapElementsIn(), 0U);
}

TEST_F(RegisterFile, ContradictoryRecord_EndsTheReading) {
    Move(7, true, 1);
    ASSERT_TRUE(m_store.SaveFile());
    std::string bytes = test::ReadFile(m_file);
    std::string opposite = bytes;
    opposite[64] = 9;  // depth
    opposite[72] = 0;  // no mate
    test::WriteFile(m_file, bytes + opposite + bytes);
    EXPECT_FALSE(m_store.LoadFile());
    EXPECT_EQ(Depths(), (std::vector<u16>{7}));
}

TEST_F(RegisterFile, Flag_IsTheLowByteAndStampIsNotLookedAt) {
    Move(7, true, 1);
    ASSERT_TRUE(m_store.SaveFile());
    std::string bytes = test::ReadFile(m_file);
    bytes[66] = 1;  // stamp
    bytes[72] = 0;  // flag
    bytes[73] = 1;  // not part of it
    test::WriteFile(m_file, bytes);
    EXPECT_TRUE(m_store.LoadFile());
    EXPECT_EQ(FindMove(7), kNoMate);
}

TEST_F(RegisterFile, Pruning_RestsWhileTheFileIsReadAndWorksAgainAfterwards) {
    // Depth 9 before 7, as no save would write it; pruning would leave one of the two.
    Move(9, true, 1);
    ASSERT_TRUE(m_store.SaveFile());
    std::string bytes = test::ReadFile(m_file);
    std::string shorter = bytes;
    shorter[64] = 7;
    test::WriteFile(m_file, bytes + shorter);
    EXPECT_TRUE(m_store.LoadFile());
    EXPECT_EQ(Depths(), (std::vector<u16>{7, 9}));
    EXPECT_EQ(m_store.MapElementsIn(), 2U);
    Move(5, true);
    EXPECT_EQ(Depths(), (std::vector<u16>{5}));
    EXPECT_EQ(m_store.MapElementsIn(), 1U);
}

TEST_F(RegisterFile, File_NeverPasses13797Records) {
    constexpr u32 kMost = 13'797;
    for (u32 i = 0; i < kMost - 1; ++i)
        Move(7, true, i);
    EXPECT_TRUE(m_store.SaveFile());
    EXPECT_EQ(std::filesystem::file_size(m_file), 1'048'572U - 76U);
    // The last record that fits is written, and tells that there may be more.
    Move(7, true, kMost);
    EXPECT_FALSE(m_store.SaveFile());
    EXPECT_EQ(std::filesystem::file_size(m_file), 1'048'572U);
    for (u32 i = 0; i < 100; ++i)
        Move(9, false, 100'000 + i);
    EXPECT_FALSE(m_store.SaveFile());
    EXPECT_EQ(std::filesystem::file_size(m_file), 1'048'572U);
    EXPECT_TRUE(m_store.LoadFile());
    EXPECT_EQ(m_store.MapElementsIn(), kMost);
}

TEST_F(RegisterFile, MissingFile_IsFalseAndLeavesAnEmptyMap) {
    Move(7, true);
    EXPECT_FALSE(m_store.LoadFile());
    EXPECT_EQ(m_store.MapElementsIn(), 0U);
}

TEST_F(RegisterFile, FolderInItsPlace_IsNeitherReadNorReplaced) {
    std::filesystem::create_directory(m_file);
    Move(7, true);
    EXPECT_FALSE(m_store.SaveFile());
    EXPECT_TRUE(std::filesystem::is_directory(m_file));
    EXPECT_FALSE(m_store.LoadFile());
}

TEST_F(RegisterFile, WithoutPersistence_NoFileIsTouched) {
    TAggregatedTemporaryChessboardRegister aggregate(test::QuietSettings(kMegabyte));
    aggregate.SetFilePaths(m_file.string(), "");
    aggregate.TChessboardRegister<bool>::Insert(7, NumberedBoard(1), true, kKey, true);
    EXPECT_EQ(aggregate.FindMove(7, NumberedBoard(1)), kMate);
    EXPECT_FALSE(aggregate.SaveFile());
    EXPECT_FALSE(std::filesystem::exists(m_file));
    test::WriteFile(m_file, "");
    EXPECT_FALSE(aggregate.LoadFile());
    EXPECT_EQ(aggregate.FindMove(7, NumberedBoard(1)), kMate);
}

}  // namespace
}  // namespace quillmere

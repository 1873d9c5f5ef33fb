#include "core/fen.h"
#include "problems/solved_record.h"
#include "tests/support/temporary_folder.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace quillmere {
namespace {

namespace fs = std::filesystem;

// White Ka1, Qb1, black Ke5.
constexpr const char* kQueenFen = "8/8/8/4k3/8/8/8/KQ6";
constexpr const char* kQueenName = "x400000c00000.000";
constexpr TMove kQueenUp = MakeMove(1, 57);     // b1-b8
constexpr TMove kKingAside = MakeMove(0, 8);    // a1-a2
constexpr TMove kQueenJumps = MakeMove(1, 19);  // b1-d3, legal
constexpr TMove kIllegal = MakeMove(1, 63);     // b1-h8

TChessboard Board(const char* fen) {
    TChessboard board;
    InitBoard(board);
    board.m_nMoves = board.m_nRootMoves = 3;
    EXPECT_TRUE(SetFromFENCode(board, fen, nullptr, nullptr)) << fen;
    return board;
}

TSolvedRecord RecordOf(const char* fen) {
    TSolvedRecord record;
    record.SetPosition(Board(fen).m_board);
    return record;
}

TSolvedRecord Reread(const TSolvedRecord& record, const fs::path& folder) {
    TSolvedRecord read;
    read.SetPosition(record.board.bytes);
    read.EnsureLoaded(folder);
    return read;
}

fs::path ResultFile(const fs::path& folder) {
    return folder / kSolvedProblemsFolder / (std::string(kQueenName) + ".cpdb");
}

fs::path SubFile(const fs::path& folder) {
    return folder / kSolvedProblemsFolder / (std::string(kQueenName) + ".cspdb");
}

TEST(SolvedRecordName, Capitals_AreToldBySecondPart) {
    EXPECT_EQ(SolvedRecordName(RecordOf(kQueenFen).board), kQueenName);
    // The start position, whose name holds capital letters.
    const std::string name =
        SolvedRecordName(RecordOf("rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR").board);
    const std::size_t point = name.find('.');
    ASSERT_EQ(point, 32u);
    ASSERT_EQ(name.size(), 32u + 1 + 7);
    constexpr std::string_view kDigits = "0123456789abcdefghijklmnopqrstuv";
    for (std::size_t i = 0; i < 32; ++i) {
        const auto group = kDigits.find(name[point + 1 + i / 5]);
        ASSERT_NE(group, std::string_view::npos);
        EXPECT_EQ((group >> (i % 5) & 1) != 0, name[i] >= 'A' && name[i] <= 'Z') << i;
    }
    EXPECT_NE(name.substr(point), ".0000000");
}

TEST(SolvedRecord, ChangeOfOneFigure_ChangesTheNameAndDropsTheResult) {
    const test::CTemporaryFolder folder;
    TSolvedRecord record = RecordOf(kQueenFen);
    record.RecordFirst(&kQueenUp, 13, 5, folder.Path());
    ASSERT_TRUE(record.HasFirstSolution(13));
    record.SetPosition(Board("8/8/8/4k3/8/8/8/KR6").m_board);
    EXPECT_NE(SolvedRecordName(record.board), kQueenName);
    EXPECT_TRUE(record.needsLoad);
    record.EnsureLoaded(folder.Path());
    EXPECT_FALSE(record.HasFirstSolution(-1));
}

TEST(SolvedRecord, SamePosition_KeepsWhatWasLoaded) {
    const test::CTemporaryFolder folder;
    TSolvedRecord record = RecordOf(kQueenFen);
    record.RecordFirst(&kQueenUp, 13, 5, folder.Path());
    record.EnsureLoaded(folder.Path());
    record.SetPosition(Board(kQueenFen).m_board);
    EXPECT_TRUE(record.HasFirstSolution(13));
    EXPECT_FALSE(record.needsLoad);
}

TEST(SolvedRecord, NoSolution_AnswersForShorterStipulationsOnly) {
    TSolvedRecord record = RecordOf(kQueenFen);
    record.RecordFirst(nullptr, 9, 1, "");
    struct {
        int halfMoves;
        bool isAnswered;
    } const rows[] = {{-1, true}, {1, true}, {5, true}, {9, true}, {11, false}};
    for (const auto& row : rows)
        EXPECT_EQ(record.HasFirstSolution(row.halfMoves), row.isAnswered) << row.halfMoves;
}

TEST(SolvedRecord, Solution_AnswersForLongerStipulationsOnly) {
    TSolvedRecord record = RecordOf(kQueenFen);
    record.RecordFirst(&kQueenUp, 9, 1, "");
    struct {
        int halfMoves;
        bool isAnswered;
    } const rows[] = {{-1, true}, {7, false}, {9, true}, {11, true}};
    for (const auto& row : rows)
        EXPECT_EQ(record.HasFirstSolution(row.halfMoves), row.isAnswered) << row.halfMoves;
}

TEST(SolvedRecord, AllSolutions_AnswerForTheirStipulationOnly) {
    TSolvedRecord record = RecordOf(kQueenFen);
    EXPECT_FALSE(record.HasAllSolutions(-1));
    record.RecordAll({kQueenUp}, 13, 1, "");
    EXPECT_TRUE(record.HasAllSolutions(-1));
    EXPECT_TRUE(record.HasAllSolutions(13));
    EXPECT_FALSE(record.HasAllSolutions(11));
    EXPECT_FALSE(record.HasAllSolutions(15));
    EXPECT_FALSE(record.HasFirstSolution(-1));
}

TEST(SolvedRecord, OtherHalfMoves_ClearTheOtherResult) {
    TSolvedRecord record = RecordOf(kQueenFen);
    record.RecordAll({kQueenUp}, 13, 1, "");
    record.RecordFirst(&kQueenUp, 13, 1, "");
    EXPECT_TRUE(record.HasAllSolutions(13));
    record.RecordFirst(&kQueenUp, 15, 1, "");
    EXPECT_FALSE(record.HasAllSolutions(-1));
    EXPECT_TRUE(record.HasFirstSolution(15));
    EXPECT_FALSE(record.HasFirstSolution(13));
    record.RecordAll({kQueenUp}, 17, 1, "");
    EXPECT_FALSE(record.HasFirstSolution(-1));
    EXPECT_TRUE(record.HasAllSolutions(17));
}

TEST(SolvedRecord, SameResultOfTheSameLength_IsKept) {
    TSolvedRecord record = RecordOf(kQueenFen);
    record.RecordFirst(&kQueenUp, 13, 100, "");
    record.RecordFirst(&kQueenUp, 13, 200, "");
    EXPECT_EQ(record.firstWhen.durationMs, 100);
    record.RecordFirst(&kQueenUp, 15, 300, "");
    EXPECT_EQ(record.firstWhen.durationMs, 300);
    record.RecordFirst(&kKingAside, 15, 400, "");
    EXPECT_EQ(record.firstWhen.durationMs, 400);
    record.RecordAll({kQueenUp}, 15, 100, "");
    record.RecordAll({kQueenUp}, 15, 200, "");
    EXPECT_EQ(record.allWhen.durationMs, 100);
    record.RecordAll({kQueenUp, kKingAside}, 15, 300, "");
    EXPECT_EQ(record.allWhen.durationMs, 300);
}

TEST(SolvedRecord, ResultThatIsContradicted_IsDropped) {
    TSolvedRecord record = RecordOf(kQueenFen);
    record.RecordAll({kQueenUp}, 13, 1, "");
    record.RecordFirst(&kKingAside, 13, 1, "");
    EXPECT_FALSE(record.HasAllSolutions(-1));
    record.RecordAll({}, 13, 1, "");
    EXPECT_FALSE(record.HasFirstSolution(-1));
    record.RecordFirst(nullptr, 13, 1, "");
    EXPECT_TRUE(record.HasAllSolutions(13));
    record.RecordAll({kQueenUp}, 13, 1, "");
    EXPECT_FALSE(record.HasFirstSolution(-1));
}

TEST(SolvedRecord, MarksOfTheSearch_AreNotKept) {
    TSolvedRecord record = RecordOf("k7/7P/8/8/8/8/8/K7");
    TMove promotion = MakeMove(55, 63, kQueen);
    promotion.flags |= kMoveMarkForced | kMoveMarkEvent;
    promotion.enPassant = 77;
    record.RecordFirst(&promotion, 13, 1, "");
    record.RecordAll({promotion}, 13, 1, "");
    EXPECT_EQ(record.first.flags, kQueen);
    EXPECT_EQ(record.first.enPassant, 0);
    EXPECT_EQ(record.all.at(0).flags, kQueen);
}

TEST(SolvedRecord, DisabledRecord_AnswersAndWritesNothing) {
    const test::CTemporaryFolder folder;
    TSolvedRecord record = RecordOf(kQueenFen);
    record.RecordFirst(&kQueenUp, 13, 1, folder.Path());
    record.disabled = true;
    EXPECT_FALSE(record.HasFirstSolution(13));
    const std::string before = test::ReadFile(ResultFile(folder.Path()));
    record.RecordFirst(&kKingAside, 13, 1, folder.Path());
    record.RecordAll({kKingAside}, 13, 1, folder.Path());
    EXPECT_EQ(test::ReadFile(ResultFile(folder.Path())), before);
}

TEST(SolvedRecord, ResultOfAnotherProblemWithThePosition_IsTakenOver) {
    const test::CTemporaryFolder folder;
    TSolvedRecord one = RecordOf(kQueenFen);
    TSolvedRecord other = RecordOf(kQueenFen);
    one.EnsureLoaded(folder.Path());
    other.EnsureLoaded(folder.Path());
    one.RecordAll({kQueenUp}, 13, 1, folder.Path());
    other.RecordFirst(&kQueenUp, 13, 1, folder.Path());
    const TSolvedRecord read = Reread(one, folder.Path());
    EXPECT_TRUE(read.HasAllSolutions(13));
    EXPECT_TRUE(read.HasFirstSolution(13));
}

TEST(SolvedRecord, Header_HasItsBytes) {
    const test::CTemporaryFolder folder;
    TSolvedRecord record = RecordOf(kQueenFen);
    record.halfMoves = 13;
    record.hasFirst = record.hasAll = true;
    record.firstWhen = {20240131, 235958, 70000};
    record.isFirstFound = true;
    record.first = kQueenUp;
    record.allWhen = {20240201, 1, 2};
    record.all = {kQueenUp, kKingAside};
    ASSERT_TRUE(record.Save(folder.Path()));
    const unsigned char expected[] = {13,   0,    1,    1,                 // half-moves, first, all
                                      0x03, 0xd7, 0x34, 0x01,              // 20240131
                                      0xb6, 0x99, 0x03, 0x00,              // 235958
                                      0x70, 0x11, 0x01, 0x00,              // 70000
                                      0xd6, 0x03, 0x00, 0x00,              // 982
                                      0x01, 0x00, 0x00, 0x00,              // found
                                      1,    57,   0,    0,                 // b1-b8
                                      0x49, 0xd7, 0x34, 0x01,              // 20240201
                                      0x01, 0x00, 0x00, 0x00, 2, 0, 0, 0,  // time, duration
                                      0xd6, 0x03, 0x00, 0x00,              // 982
                                      0x02, 0x00, 0x00, 0x00,              // count
                                      1,    57,   0,    0,    0, 8, 0, 0};  // the solutions
    EXPECT_EQ(test::ReadFile(ResultFile(folder.Path())),
              std::string(reinterpret_cast<const char*>(expected), sizeof(expected)));
}

TEST(SolvedRecord, MissingFolder_ReadsAsNoRecordAndIsMade) {
    const test::CTemporaryFolder folder;
    TSolvedRecord record = RecordOf(kQueenFen);
    EXPECT_FALSE(record.Load(folder.Path()));
    EXPECT_FALSE(fs::exists(folder.Path() / kSolvedProblemsFolder));
    EXPECT_TRUE(record.Save(folder.Path()));
    EXPECT_TRUE(fs::exists(ResultFile(folder.Path())));
}

TEST(SolvedRecord, FolderThatCannotBeWritten_LosesNothingInMemory) {
    const test::CTemporaryFolder folder;
    test::WriteFile(folder.Path() / kSolvedProblemsFolder, "a file in its place");
    TSolvedRecord record = RecordOf(kQueenFen);
    record.RecordFirst(&kQueenUp, 13, 1, folder.Path());
    EXPECT_TRUE(record.HasFirstSolution(13));
    EXPECT_FALSE(record.Save(folder.Path()));
}

// Files that are no good

struct TPatch {
    std::size_t place;
    unsigned char value;
    const char* what;
};

class SolvedRecordFile : public testing::Test {
protected:
    void SetUp() override {
        TSolvedRecord record = RecordOf(kQueenFen);
        record.RecordAll({kQueenUp, kKingAside}, 13, 1, m_folder.Path());
        record.RecordFirst(&kQueenUp, 13, 1, m_folder.Path());
        m_bytes = test::ReadFile(ResultFile(m_folder.Path()));
        ASSERT_TRUE(IsRead(m_bytes));
    }
    bool IsRead(const std::string& bytes) const {
        test::WriteFile(ResultFile(m_folder.Path()), bytes);
        const TSolvedRecord read = Reread(RecordOf(kQueenFen), m_folder.Path());
        EXPECT_EQ(read.hasFirst, read.hasAll);
        EXPECT_EQ(read.hasAll, !read.all.empty());
        return read.hasFirst;
    }
    test::CTemporaryFolder m_folder;
    std::string m_bytes;
};

TEST_F(SolvedRecordFile, EveryTruncationAndExtension_ReadsAsNoRecord) {
    for (std::size_t size = 0; size < m_bytes.size(); ++size)
        EXPECT_FALSE(IsRead(m_bytes.substr(0, size))) << size;
    EXPECT_FALSE(IsRead(m_bytes + std::string(1, '\0')));
    EXPECT_FALSE(IsRead(m_bytes + std::string(4, '\0')));
}

TEST_F(SolvedRecordFile, Damage_ReadsAsNoRecord) {
    const TPatch rows[] = {
        {0, 14, "even half-moves"},
        {1, 0x80, "half-moves out of all reason"},
        {2, 2, "a flag that is none"},
        {3, 0xff, "a flag that is none"},
        {20, 2, "a found flag that is none"},
        {20, 0, "no first solution beside solutions"},
        {24, 2, "an illegal first solution"},
        {25, 63, "an illegal first solution"},
        {25, 64, "a square off the board"},
        {26, 12, "a promotion of a queen"},
        {25, 19, "a first solution that is none of all"},
        {44, 1, "a count that is too small"},
        {44, 3, "a count that is too great"},
        {47, 0x80, "a huge count"},
        {49, 63, "an illegal solution"},
        {53, 255, "a square off the board"},
    };
    for (const TPatch& row : rows) {
        std::string bytes = m_bytes;
        bytes[row.place] = static_cast<char>(row.value);
        EXPECT_FALSE(IsRead(bytes)) << row.what;
    }
}

TEST_F(SolvedRecordFile, OtherByteOrder_ReadsAsNoRecord) {
    std::string bytes = m_bytes;
    std::swap(bytes[0], bytes[1]);
    for (std::size_t place = 4; place + 4 <= 48; place += 4) {
        std::swap(bytes[place], bytes[place + 3]);
        std::swap(bytes[place + 1], bytes[place + 2]);
    }
    EXPECT_FALSE(IsRead(bytes));
}

TEST_F(SolvedRecordFile, SameSolutionTwice_ReadsAsNoRecord) {
    std::string bytes = m_bytes;
    bytes.replace(52, 4, m_bytes.substr(48, 4));
    EXPECT_FALSE(IsRead(bytes));
}

TEST_F(SolvedRecordFile, FormatNumber_IsNotTested) {
    std::string bytes = m_bytes;
    bytes[16] = bytes[40] = 0;
    EXPECT_TRUE(IsRead(bytes));
}

TEST_F(SolvedRecordFile, EveryFlippedBit_IsReadWithoutHarm) {
    for (std::size_t bit = 0; bit < m_bytes.size() * 8; ++bit) {
        std::string bytes = m_bytes;
        bytes[bit / 8] = static_cast<char>(bytes[bit / 8] ^ (1 << bit % 8));
        test::WriteFile(ResultFile(m_folder.Path()), bytes);
        const TSolvedRecord read = Reread(RecordOf(kQueenFen), m_folder.Path());
        for (const TMove move : read.all)
            EXPECT_TRUE(IsLegalInPosition(read.board, move, true)) << bit;
    }
}

TEST_F(SolvedRecordFile, HugeFileOrFolder_ReadsAsNoRecord) {
    fs::resize_file(ResultFile(m_folder.Path()), std::uintmax_t{1} << 40);
    EXPECT_FALSE(Reread(RecordOf(kQueenFen), m_folder.Path()).hasAll);
    fs::remove(ResultFile(m_folder.Path()));
    fs::create_directory(ResultFile(m_folder.Path()));
    EXPECT_FALSE(Reread(RecordOf(kQueenFen), m_folder.Path()).hasAll);
}

TEST(IsLegalInPosition, Moves_AreJudgedForTheSide) {
    const TSolvedRecord record = RecordOf(kQueenFen);
    EXPECT_TRUE(IsLegalInPosition(record.board, kQueenUp, true));
    EXPECT_TRUE(IsLegalInPosition(record.board, kQueenJumps, true));
    EXPECT_FALSE(IsLegalInPosition(record.board, kIllegal, true));
    EXPECT_FALSE(IsLegalInPosition(record.board, TMove{}, true));
    EXPECT_FALSE(IsLegalInPosition(record.board, kQueenUp, false));
    EXPECT_TRUE(IsLegalInPosition(record.board, MakeMove(36, 35), false));
    EXPECT_FALSE(IsLegalInPosition(TChessboardRegisterItem{}, kQueenUp, true));
}

// Sub-positions

// The key of the root, and a defence behind it.
constexpr const char* kQueenUpFen = "1Q6/8/8/4k3/8/8/8/K7";
constexpr TMove kKingFlees = MakeMove(36, 35);  // e5-d5

std::string SubBytes(const TSolvedRecord& record, bool isOldLayout) {
    const auto bytesOf = [](const TChessboardRegisterItem& board) {
        return std::string(reinterpret_cast<const char*>(board.bytes), sizeof(board.bytes));
    };
    const std::string root = bytesOf(record.board);
    const std::string child = bytesOf(RecordOf(kQueenUpFen).board);
    const std::string key = {13, 0, static_cast<char>(0xd6), 3, 1, 57, 0, 0, 1, 0, 0, 0};
    const std::string defence = {12, 0, static_cast<char>(0xd6), 3, 36, 35, 0, 0, 0, 0, 0, 0};
    return isOldLayout ? root + key + root + defence + child : child + defence + root + key;
}

TEST(SolvedSubResults, BothLayouts_AreReadByTheirSize) {
    const test::CTemporaryFolder folder;
    TSolvedRecord record = RecordOf(kQueenFen);
    fs::create_directories(folder.Path() / kSolvedProblemsFolder);
    for (const bool isOldLayout : {false, true}) {
        test::WriteFile(SubFile(folder.Path()), SubBytes(record, isOldLayout));
        record.Load(folder.Path());
        ASSERT_EQ(record.whiteToMove.size(), 1u) << isOldLayout;
        ASSERT_EQ(record.blackToMove.size(), 1u) << isOldLayout;
        const TSolvedSubResult& white = record.whiteToMove.begin()->second;
        EXPECT_EQ(white.halfMoves, 13);
        EXPECT_TRUE(MovesEqual(white.move, kQueenUp));
        EXPECT_EQ(white.value, 1);
        EXPECT_EQ(record.whiteToMove.begin()->first, record.board);
        const TSolvedSubResult& black = record.blackToMove.begin()->second;
        EXPECT_EQ(black.halfMoves, 12);
        EXPECT_TRUE(MovesEqual(black.move, kKingFlees));
        EXPECT_EQ(record.blackToMove.begin()->first, RecordOf(kQueenUpFen).board);
    }
    // What is written is the newer layout.
    ASSERT_TRUE(record.SaveSubResults(folder.Path()));
    const std::string written = test::ReadFile(SubFile(folder.Path()));
    EXPECT_EQ(written.size() % 76, 0u);
    EXPECT_EQ(written, SubBytes(record, false));
}

TEST(SolvedSubResults, DamagedFile_ReadsAsNone) {
    const test::CTemporaryFolder folder;
    TSolvedRecord record = RecordOf(kQueenFen);
    fs::create_directories(folder.Path() / kSolvedProblemsFolder);
    const auto isRead = [&](const std::string& bytes) {
        test::WriteFile(SubFile(folder.Path()), bytes);
        record.Load(folder.Path());
        return !record.whiteToMove.empty() || !record.blackToMove.empty();
    };
    for (const bool isOldLayout : {false, true}) {
        const std::string bytes = SubBytes(record, isOldLayout);
        ASSERT_TRUE(isRead(bytes));
        for (std::size_t size = 0; size < bytes.size(); ++size) {
            // Where whole records are left, they are a file; their results are their own.
            if (isRead(bytes.substr(0, size))) {
                EXPECT_EQ(size, isOldLayout && size != 76 ? 140u : 76u) << isOldLayout;
                EXPECT_EQ(record.whiteToMove.size() + record.blackToMove.size(), 1u);
                for (const auto& [board, result] : record.whiteToMove)
                    EXPECT_EQ(board, record.board);
                for (const auto& [board, result] : record.blackToMove)
                    EXPECT_NE(board, record.board);
            }
        }
    }
    const TPatch rows[] = {{0, 0xc1, "a figure of both colours"},
                           {5, 0x43, "an unknown figure"},
                           {5, kWhiteKing, "a second king"},
                           {65, 0xff, "half-moves out of all reason"},
                           {64, 12, "the other side to move"},
                           {69, 63, "an illegal move"},
                           {68, 64, "a square off the board"}};
    for (const TPatch& row : rows) {
        std::string bytes = SubBytes(record, false).substr(76);
        ASSERT_TRUE(isRead(bytes));
        bytes[row.place] = static_cast<char>(row.value);
        EXPECT_FALSE(isRead(bytes)) << row.what;
    }
    std::string ofOtherRoot = SubBytes(record, true);
    ofOtherRoot[2] = static_cast<char>(kWhiteRook);
    EXPECT_FALSE(isRead(ofOtherRoot));
}

}  // namespace
}  // namespace quillmere

// Random results of random positions, stored, read again, and damaged.
#include "core/fen.h"
#include "core/legality.h"
#include "problems/solved_record.h"
#include "tests/support/random_positions.h"
#include "tests/support/temporary_folder.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace quillmere {
namespace {

using test::CRandom;

struct TCase {
    TSolvedRecord record;
    std::vector<TMove> moves;  // the legal ones
};

TCase RandomCase(CRandom& random) {
    const reference::TPosition position = reference::RandomPosition(random, reference::TRecipe{});
    TChessboard board;
    InitBoard(board);
    board.m_nMoves = board.m_nRootMoves = 13;
    EXPECT_TRUE(SetFromFENCode(board, reference::ToFen(position).c_str(), nullptr, nullptr));
    TCase drawn;
    TMoveList list;
    list.count = GetLegalMoves(board, list.moves);
    drawn.moves.assign(list.begin(), list.end());
    drawn.record.SetPosition(board.m_board);
    return drawn;
}

u16 RandomLength(CRandom& random) {
    return static_cast<u16>(2 * random.Between(4, 6) + 1);
}

// What the engine could have found: both results of one length agree.
void StoreSomething(CRandom& random, TCase& drawn, const std::filesystem::path& folder) {
    TSolvedRecord& record = drawn.record;
    const u16 halfMoves = RandomLength(random);
    const bool isSame = halfMoves == record.halfMoves;
    const auto& moves = drawn.moves;
    const TMove any = moves[static_cast<std::size_t>(random.Below(static_cast<int>(moves.size())))];
    if (random.Chance(50)) {
        const bool isKnown = isSame && record.hasAll;
        const bool isFound = isKnown ? !record.all.empty() : random.Chance(70);
        const TMove first = isKnown && isFound ? record.all.back() : any;
        record.RecordFirst(isFound ? &first : nullptr, halfMoves, random.Below(1000), folder);
        return;
    }
    std::vector<TMove> all;
    if (!isSame || !record.hasFirst || record.isFirstFound) {
        for (const TMove move : moves) {
            if (random.Chance(30) || (isSame && record.hasFirst && MovesEqual(move, record.first)))
                all.push_back(move);
        }
    }
    record.RecordAll(all, halfMoves, random.Below(1000), folder);
}

void ExpectEqual(const TSolvedRecord& read, const TSolvedRecord& record) {
    EXPECT_EQ(read.halfMoves, record.halfMoves);
    ASSERT_EQ(read.hasFirst, record.hasFirst);
    ASSERT_EQ(read.hasAll, record.hasAll);
    if (record.hasFirst) {
        EXPECT_EQ(read.isFirstFound, record.isFirstFound);
        EXPECT_TRUE(MovesEqual(read.first, record.first));
        EXPECT_EQ(read.firstWhen, record.firstWhen);
    }
    if (record.hasAll) {
        EXPECT_TRUE(std::equal(
            read.all.begin(), read.all.end(), record.all.begin(), record.all.end(), MovesEqual));
        EXPECT_EQ(read.allWhen, record.allWhen);
    }
}

std::filesystem::path ResultFile(const TSolvedRecord& record, const std::filesystem::path& folder) {
    return folder / kSolvedProblemsFolder / (SolvedRecordName(record.board) + ".cpdb");
}

TEST(SolvedRecordLaws, WhatIsStored_IsReadAgain) {
    const test::CTemporaryFolder folder;
    for (std::uint64_t seed = 1; seed <= 80; ++seed) {
        CRandom random(seed);
        TCase drawn = RandomCase(random);
        for (int step = 0; step < 5; ++step) {
            StoreSomething(random, drawn, folder.Path());
            TSolvedRecord read;
            read.SetPosition(drawn.record.board.bytes);
            read.EnsureLoaded(folder.Path());
            ExpectEqual(read, drawn.record);
            ASSERT_FALSE(testing::Test::HasFailure()) << "seed " << seed << ", step " << step;
        }
    }
}

// A damaged file may still be one; what is read of it has legal moves and no contradiction.
TEST(SolvedRecordLaws, DamagedFiles_AreNeverBelievedAgainstTheRules) {
    const test::CTemporaryFolder folder;
    int believed = 0;
    int refused = 0;
    for (std::uint64_t seed = 1; seed <= 300; ++seed) {
        CRandom random(seed);
        TCase drawn = RandomCase(random);
        for (int step = 0; step < 3; ++step)
            StoreSomething(random, drawn, "");
        ASSERT_TRUE(drawn.record.Save(folder.Path()));
        const auto file = ResultFile(drawn.record, folder.Path());
        std::string bytes = test::ReadFile(file);
        for (int i = random.Between(1, 3); i > 0; --i)
            bytes[static_cast<std::size_t>(random.Below(static_cast<int>(bytes.size())))] =
                static_cast<char>(random.Next());
        if (random.Chance(20))
            bytes.resize(
                static_cast<std::size_t>(random.Below(static_cast<int>(bytes.size()) + 8)));
        test::WriteFile(file, bytes);
        TSolvedRecord read;
        read.SetPosition(drawn.record.board.bytes);
        read.EnsureLoaded(folder.Path());
        ++(read.hasFirst || read.hasAll ? believed : refused);
        if (read.hasFirst && read.isFirstFound) {
            EXPECT_TRUE(IsLegalInPosition(read.board, read.first, true)) << seed;
        }
        for (const TMove move : read.all)
            EXPECT_TRUE(IsLegalInPosition(read.board, move, true)) << seed;
        if (read.hasFirst && read.hasAll) {
            EXPECT_EQ(read.isFirstFound, !read.all.empty()) << seed;
        }
    }
    EXPECT_GT(believed, 30);
    EXPECT_GT(refused, 30);
}

TEST(SolvedRecordLaws, NamesOfDifferentPositions_DifferWithoutRegardToCase) {
    std::map<std::string, TChessboardRegisterItem> byName;
    for (std::uint64_t seed = 1; seed <= 3000; ++seed) {
        CRandom random(seed);
        const TCase drawn = RandomCase(random);
        std::string name = SolvedRecordName(drawn.record.board);
        for (char& c : name) {
            if (c >= 'A' && c <= 'Z')
                c = static_cast<char>(c + 32);
        }
        const auto [place, isNew] = byName.emplace(name, drawn.record.board);
        EXPECT_EQ(place->second, drawn.record.board) << name;
    }
}

}  // namespace
}  // namespace quillmere

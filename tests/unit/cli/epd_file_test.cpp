#include "cli/commands.h"
#include "cli/epd_file.h"
#include "core/notation.h"
#include "tests/support/temporary_folder.h"

#include <gtest/gtest.h>

namespace quillmere {
namespace {

constexpr const char* kFields = "8/8/8/8/8/Q7/4p3/5k1K w - - ";

std::vector<TEpdRecord> Read(const std::string& operations) {
    return ReadEpdText(kFields + operations, "test.epd");
}

struct TGoodCase {
    const char* operations;
    const char* id;
    int halfMoves;
    std::vector<std::string> keys;
};

const TGoodCase kGood[] = {
    {"dm 5;", "line-1", 9, {}},
    {"dm 5", "line-1", 9, {}},
    {"bm #5;", "line-1", 9, {}},
    {"bm #5; dm 5; id \"a\";", "a", 9, {}},
    {"bm Qf8+; dm 5; id \"loyd; 1857\";", "loyd; 1857", 9, {"a3f8"}},
    {"bm #5 Qf8+ Qa3-a1;", "line-1", 9, {"a3f8", "a3a1"}},
    {"0 1 dm 5; id plain;", "plain", 9, {}},
    {"; dm 5;;", "line-1", 9, {}},
    {"dm\t5 ; id  \"b\" ;", "b", 9, {}},
};

TEST(ReadEpdText, Operations_AreRead) {
    for (const TGoodCase& row : kGood) {
        const auto records = Read(row.operations);
        ASSERT_EQ(records.size(), 1U) << row.operations;
        EXPECT_EQ(records[0].id, row.id) << row.operations;
        EXPECT_EQ(records[0].task.halfMoves, row.halfMoves) << row.operations;
        std::vector<std::string> keys;
        for (const TMove key : records[0].expectedKeys)
            keys.push_back(MoveToUci(key));
        EXPECT_EQ(keys, row.keys) << row.operations;
    }
}

TEST(ReadEpdText, UnknownOperations_AreKeptInOrder) {
    const auto records = Read("c0 \"Loyd; Samuel\"; dm 5; acd 12; pv Qf8 Ke1; hmvc;");
    const std::vector<std::pair<std::string, std::string>> expected = {
        {"c0", "Loyd; Samuel"}, {"acd", "12"}, {"pv", "Qf8 Ke1"}, {"hmvc", ""}};
    EXPECT_EQ(records[0].otherOperations, expected);
    EXPECT_EQ(records[0].Operation("acd"), "12");
    EXPECT_EQ(records[0].Operation("dm"), "");
}

TEST(ReadEpdText, CommentsAndEmptyLines_AreSkippedButCounted) {
    const std::string line = std::string(kFields) + "dm 5;";
    const auto records =
        ReadEpdText("\xef\xbb\xbf# head\r\n\r\n  # more\n" + line + "\r\n\n" + line, "test.epd");
    ASSERT_EQ(records.size(), 2U);
    EXPECT_EQ(records[0].line, 4);
    EXPECT_EQ(records[1].line, 6);
    EXPECT_EQ(records[1].id, "line-6");
}

TEST(ReadEpdText, BlackToMove_IsSolvedWithColoursSwapped) {
    const auto records = ReadEpdText("5K1k/4P3/q7/8/8/8/8/8 b - - dm 5; bm Qf1+;", "test.epd");
    EXPECT_TRUE(records[0].task.isSwapped);
    EXPECT_EQ(records[0].task.board.m_counts[kWhiteQueens], 1);
    EXPECT_EQ(MoveToUci(records[0].expectedKeys[0]), "a6f1");
}

struct TFaultCase {
    const char* text;
    const char* place;
    EMessage id;
};

constexpr TFaultCase kFaults[] = {
    {"8/8/8/8/8/Q7/4p3/5k1K w -", "test.epd:1", EMessage::kEpdMissingFields},
    {"\n\n8/8/8/8/8/Q7/4p3/5k2 w - - dm 5;", "test.epd:3", EMessage::kFenWhiteKings},
    {"8/8/8/8/8/Q7/4p3/5k1K w - - id \"a\";", "test.epd:1", EMessage::kEpdNoLength},
    {"8/8/8/8/8/Q7/4p3/5k1K w - - dm 0;", "test.epd:1", EMessage::kEpdBadLength},
    {"8/8/8/8/8/Q7/4p3/5k1K w - - dm five;", "test.epd:1", EMessage::kEpdBadLength},
    {"8/8/8/8/8/Q7/4p3/5k1K w - - dm 99999999999;", "test.epd:1", EMessage::kEpdBadLength},
    {"8/8/8/8/8/Q7/4p3/5k1K w - - dm 5; bm #4;", "test.epd:1", EMessage::kEpdLengthsDiffer},
    {"8/8/8/8/8/Q7/4p3/5k1K w - - dm 5; dm 5;", "test.epd:1", EMessage::kEpdTwice},
    {"8/8/8/8/8/Q7/4p3/5k1K w - - dm 5; bm Qd5;", "test.epd:1", EMessage::kMoveNotLegal},
    {"8/8/8/8/8/Q7/4p3/5k1K w - - dm 5; bm zzz;", "test.epd:1", EMessage::kMoveNotUnderstood},
    {"8/8/8/8/8/Q7/4p3/5k1K w - - dm 5; bm ;", "test.epd:1", EMessage::kEpdEmptyOperation},
    {"8/8/8/8/8/Q7/4p3/5k1K w - - dm 5; id \"a;", "test.epd:1", EMessage::kEpdOpenQuote},
    {"8/8/8/8/8/Q7/4p3/5k1K w - - 5;", "test.epd:1", EMessage::kEpdNoOperation},
};

TEST(ReadEpdText, EachFault_NamesFileLineAndReason) {
    for (const TFaultCase& row : kFaults) {
        try {
            ReadEpdText(row.text, "test.epd");
            ADD_FAILURE() << "no fault found in '" << row.text << "'";
        } catch (const CPlacedException& fault) {
            EXPECT_EQ(fault.Place(), row.place);
            EXPECT_EQ(MessageName(fault.Id()), MessageName(row.id)) << row.text;
        }
    }
}

TEST(ReadEpdText, NoPosition_IsAFault) {
    EXPECT_THROW(ReadEpdText("# nothing\n", "test.epd"), ChessException);
}

TEST(ReadEpdFile, MissingFileOrFolder_IsAFault) {
    const test::CTemporaryFolder folder;
    EXPECT_THROW(ReadEpdFile((folder.Path() / "missing.epd").string()), ChessException);
    EXPECT_THROW(ReadEpdFile(folder.Path().string()), ChessException);
}

TEST(ReadEpdFile, Samples_AreRead) {
    const auto records = ReadEpdFile(QUILLMERE_SOURCE_DIR "/samples/classics.epd");
    EXPECT_EQ(records.size(), 42U);
    for (const TEpdRecord& record : records) {
        EXPECT_EQ(record.expectedKeys.size(), 1U) << record.id;
        EXPECT_FALSE(record.Operation("c0").empty()) << record.id;
    }
}

}  // namespace
}  // namespace quillmere

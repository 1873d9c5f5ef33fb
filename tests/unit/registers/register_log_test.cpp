#include "registers/register_log.h"
#include "tests/support/registers.h"
#include "tests/support/temporary_folder.h"

#include <filesystem>
#include <gtest/gtest.h>

namespace quillmere {
namespace {

class RegisterLog : public testing::Test {
protected:
    void SetUp() override { g_options.RegisterInfoLog = true; }

    test::CKeptOptions m_options;
    test::CTemporaryFolder m_folder;
    std::filesystem::path m_file = m_folder.Path() / "registerInfo.log";
};

TEST_F(RegisterLog, Message_IsTwoLinesAppended) {
    CRegisterLog log(m_folder.Path());
    log.Write("Something.", 3, -5, 17, 4);
    log.Write("More", 0, 0, 0, 0);
    EXPECT_EQ(test::ReadFile(m_file),
              "Something., msg params: 3, -5\n"
              "\t\t\tElementsIn= 17, DoubtfulElementsIn=4\n"
              "More, msg params: 0, 0\n"
              "\t\t\tElementsIn= 0, DoubtfulElementsIn=0\n");
}

TEST_F(RegisterLog, OptionOff_WritesNothing) {
    g_options.RegisterInfoLog = false;
    CRegisterLog log(m_folder.Path());
    log.Write("Something.", 3, -5, 17, 4);
    EXPECT_FALSE(std::filesystem::exists(m_file));
    g_options.RegisterInfoLog = true;
    log.Write("Something.", 3, -5, 17, 4);
    EXPECT_TRUE(std::filesystem::exists(m_file));
}

TEST_F(RegisterLog, MissingFolder_LosesTheMessage) {
    CRegisterLog(m_folder.Path() / "nowhere").Write("Something.", 1, 2, 3, 4);
    CRegisterLog({}).Write("Something.", 1, 2, 3, 4);
    EXPECT_TRUE(std::filesystem::is_empty(m_folder.Path()));
}

TEST_F(RegisterLog, RemovalOfDoubt_IsToldWithTheTwoWords) {
    TRegisterSettings settings = test::QuietSettings(test::kMegabyte);
    settings.programFolder = m_folder.Path();
    TAggregatedTemporaryChessboardRegister store(settings);
    ASSERT_TRUE(store.Resize(16, true));
    store.InsertDoubtful(9, test::NumberedBoard(1), 0xffffffff, 7);
    store.TChessboardRegister<bool>::Insert(9, test::NumberedBoard(1), true, MakeMove(1, 2));
    EXPECT_EQ(store.RemoveDoubtful(0xffffffff, 7), 1U);
    EXPECT_EQ(test::ReadFile(m_file),
              "RemoveDoubtful start., msg params: -1, 7\n"
              "\t\t\tElementsIn= 1, DoubtfulElementsIn=1\n"
              "RemoveDoubtful complete., msg params: -1, 7\n"
              "\t\t\tElementsIn= 1, DoubtfulElementsIn=0\n");
}

TEST_F(RegisterLog, Sweep_IsToldTableByTable) {
    TRegisterSettings settings = test::QuietSettings(test::kMegabyte);
    settings.programFolder = m_folder.Path();
    TAggregatedTemporaryChessboardRegister store(settings);
    ASSERT_TRUE(store.Resize(16, true));
    store.InsertDoubtful(9, test::NumberedBoard(1), 1, 7);
    store.RemoveNMovers(5);
    std::string expected;
    for (const char* message : {"TAggregatedTemporaryChessboardRegister::RemoveNMovers start.",
                                "TTemporaryChessboardRegister::RemoveNMovers start.",
                                "TTemporaryChessboardRegister::RemoveNMovers complete.",
                                "TTemporaryChessboardRegister::RemoveNMovers start.",
                                "TTemporaryChessboardRegister::RemoveNMovers complete.",
                                "TAggregatedTemporaryChessboardRegister::RemoveNMovers complete."})
        expected += std::string(message) +
                    ", msg params: 5, 0\n\t\t\tElementsIn= 0, DoubtfulElementsIn=1\n";
    EXPECT_EQ(test::ReadFile(m_file), expected);
}

TEST_F(RegisterLog, RefusedInsert_IsTold) {
    test::CMemoryGate gate;
    TRegisterSettings settings = test::QuietSettings(test::kMegabyte);
    settings.programFolder = m_folder.Path();
    settings.mayAllocate = gate.Function();
    TTemporaryChessboardRegister<false> store(settings);
    ASSERT_TRUE(store.ResizeTable(16, true));
    gate.Refuse();
    store.Insert(9, test::NumberedBoard(1), true);
    EXPECT_EQ(test::ReadFile(m_file),
              "Exception caught in method TChessboardRegister::Insert, msg params: 0, 0\n"
              "\t\t\tElementsIn= 0, DoubtfulElementsIn=0\n");
}

}  // namespace
}  // namespace quillmere

#include "cli/task_arguments.h"
#include "core/platform/system_info.h"
#include "session/options.h"

#include <gtest/gtest.h>

namespace quillmere {
namespace {

TArguments With(std::string name, std::string value) {
    TArguments arguments;
    arguments.options[std::move(name)] = std::move(value);
    return arguments;
}

class TaskArguments : public testing::Test {
protected:
    ~TaskArguments() override { g_options = m_saved; }

    const TOptions m_saved = g_options;
};

TEST_F(TaskArguments, Limits_AreNoneUnlessGiven) {
    const TTaskRequest none = ReadTaskRequest({});
    EXPECT_EQ(none.seconds, 0);
    EXPECT_EQ(none.nodes, 0U);
    EXPECT_FALSE(none.wantAllKeys);
    EXPECT_EQ(ReadTaskRequest(With("--time", "0")).seconds, 0);
    EXPECT_EQ(ReadTaskRequest(With("--time", "1.5")).seconds, 1.5);
    EXPECT_EQ(ReadTaskRequest(With("--nodes", "7")).nodes, 7U);
    EXPECT_TRUE(ReadTaskRequest(With("--all", "")).wantAllKeys);
}

TEST_F(TaskArguments, Option_DecidesWhetherTheRegisterIsCleared) {
    g_options.ClearRegisterOnStartSolving = true;
    EXPECT_TRUE(ReadTaskRequest({}).clearRegister);
    g_options.ClearRegisterOnStartSolving = false;
    EXPECT_FALSE(ReadTaskRequest({}).clearRegister);
}

TEST_F(TaskArguments, Memory_IsInMegabytesUpToThoseOfTheMachine) {
    EXPECT_EQ(ReadMemoryBytes(With("--memory", "3")), u64{3} << 20);
    const u64 most = ReadSystemInfo().physicalMemoryBytes >> 20;
    EXPECT_EQ(ReadMemoryBytes(With("--memory", std::to_string(most))), most << 20);
    for (const std::string& text : {std::to_string(most + 1), std::string("0"), std::string("-1")})
        EXPECT_THROW(ReadMemoryBytes(With("--memory", text)), CUsageException) << text;
}

TEST_F(TaskArguments, MemoryNotGiven_IsThatOfTheOptions) {
    const TSystemInfo machine = ReadSystemInfo();
    g_options.MaxMemRatioForTempReg = 10;
    UpdateMemoryLimits(g_options, machine);
    EXPECT_EQ(ReadMemoryBytes({}), (machine.physicalMemoryBytes >> 20) * 10 / 100 << 20);
    g_options.MaxMemRatioForTempReg = 0;
    UpdateMemoryLimits(g_options, machine);
    EXPECT_EQ(ReadMemoryBytes({}), 0U);
}

}  // namespace
}  // namespace quillmere

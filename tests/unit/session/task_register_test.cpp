#include "core/search_context.h"
#include "session/task_register.h"
#include "tests/support/temporary_folder.h"

#include <gtest/gtest.h>

namespace quillmere {
namespace {

TEST(TaskRegister, ShortTask_GetsNone) {
    const test::CTemporaryFolder folder;
    CTaskRegister solved(u64{1} << 20, folder.Path());
    EXPECT_EQ(solved.ForHalfMoves(kRegisterRoot - 1), nullptr);
    EXPECT_NE(solved.ForHalfMoves(kRegisterRoot), nullptr);
}

TEST(TaskRegister, LaterTasks_GetTheSameOne) {
    const test::CTemporaryFolder folder;
    CTaskRegister solved(u64{1} << 20, folder.Path());
    const auto* first = solved.ForHalfMoves(kRegisterRoot);
    EXPECT_EQ(solved.ForHalfMoves(kRegisterRoot + 5), first);
    EXPECT_EQ(first->Figures().byteLimit, u64{1} << 20);
}

}  // namespace
}  // namespace quillmere

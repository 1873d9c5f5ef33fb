#include "cli/columns.h"

#include <gtest/gtest.h>

namespace quillmere {
namespace {

TEST(CutToWidth, CountsCharactersAndNeverCutsOne) {
    EXPECT_EQ(CutToWidth("abc", 5), "abc");
    EXPECT_EQ(CutToWidth("abc", 3), "abc");
    EXPECT_EQ(CutToWidth("abc", 2), "ab");
    EXPECT_EQ(CutToWidth("abc", 0), "");
    EXPECT_EQ(CutToWidth("хід", 2), "хі");
    EXPECT_EQ(CutToWidth("węzły", 3), "węz");
}

}  // namespace
}  // namespace quillmere

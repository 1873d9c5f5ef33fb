#include "session/time_estimate.h"

#include <gtest/gtest.h>

namespace quillmere {
namespace {

CTimeEstimate WithOpen(std::initializer_list<int> lengths, int jobs = 1, u64 limit = 0) {
    CTimeEstimate estimate(jobs, limit);
    for (const int halfMoves : lengths)
        estimate.AddOpen(halfMoves);
    return estimate;
}

TEST(TimeEstimate, BeforeAnythingIsFinished_IsNotKnown) {
    EXPECT_EQ(WithOpen({3}).MillisecondsLeft(), std::nullopt);
}

TEST(TimeEstimate, WhenAllIsDone_IsNothing) {
    CTimeEstimate estimate = WithOpen({3});
    estimate.Finish(3, 100);
    EXPECT_EQ(estimate.MillisecondsLeft(), u64{0});
}

TEST(TimeEstimate, OpenTests_CountAsTheMeanOfTheirLength) {
    CTimeEstimate estimate = WithOpen({3, 3, 3, 3, 5, 5});
    estimate.Finish(3, 100);
    estimate.Finish(3, 300);
    estimate.Finish(5, 5000);
    EXPECT_EQ(estimate.MillisecondsLeft(), u64{2 * 200 + 5000});
}

TEST(TimeEstimate, LengthAboveAllFinished_IsNotKnownWithoutALimit) {
    CTimeEstimate estimate = WithOpen({3, 7});
    estimate.Finish(3, 100);
    EXPECT_EQ(estimate.MillisecondsLeft(), std::nullopt);
}

TEST(TimeEstimate, LengthAboveAllFinished_CountsAsTheLimit) {
    CTimeEstimate estimate = WithOpen({3, 7}, 1, 64000);
    estimate.Finish(3, 100);
    EXPECT_EQ(estimate.MillisecondsLeft(), u64{64000});
}

TEST(TimeEstimate, LengthBetweenTwoFinished_LiesOnAGeometricLine) {
    CTimeEstimate estimate = WithOpen({3, 5, 7});
    estimate.Finish(3, 100);
    estimate.Finish(7, 10000);
    EXPECT_EQ(estimate.MillisecondsLeft(), u64{1000});
}

TEST(TimeEstimate, LengthBelowAllFinished_CountsAsTheShortestOfThem) {
    CTimeEstimate estimate = WithOpen({3, 7});
    estimate.Finish(7, 10000);
    EXPECT_EQ(estimate.MillisecondsLeft(), u64{10000});
}

TEST(TimeEstimate, DroppedTests_TakeNoTime) {
    CTimeEstimate estimate = WithOpen({3, 3, 9});
    estimate.Finish(3, 100);
    estimate.Drop(9);
    EXPECT_EQ(estimate.MillisecondsLeft(), u64{100});
}

TEST(TimeEstimate, Jobs_ShareTheTestsButNotOneTest) {
    CTimeEstimate estimate = WithOpen({3, 3, 3, 3, 3}, 2);
    estimate.Finish(3, 100);
    EXPECT_EQ(estimate.MillisecondsLeft(), u64{200});
    estimate.Finish(3, 100);
    estimate.Finish(3, 100);
    estimate.Finish(3, 100);
    EXPECT_EQ(estimate.MillisecondsLeft(), u64{100});
}

}  // namespace
}  // namespace quillmere

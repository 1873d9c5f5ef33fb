// How long the rest of a batch will take, as far as that can be said.
//
// The time of a test hangs on the length of its stipulation above all, so that what is left is
// weighted by length: each open test counts as the mean of the finished ones of its length. Between
// two lengths that are known the mean is laid on a geometric line, since each move multiplies the
// work; a length below all known ones counts as the shortest of them. Of a test that is longer than
// everything finished nothing is known but what a time limit says, and without one the estimate says
// so rather than guess.
#pragma once

#include "core/types.h"

#include <map>
#include <optional>

namespace quillmere {

class CTimeEstimate {
public:
    // Tests are solved `jobs` at a time; `limitMilliseconds` stops each, 0 for no limit.
    CTimeEstimate(int jobs, u64 limitMilliseconds)
        : m_jobs(jobs), m_limitMilliseconds(limitMilliseconds) {}

    void AddOpen(int halfMoves) { ++m_open[halfMoves]; }
    // The test leaves without a time: it was skipped, or finished by an earlier run.
    void Drop(int halfMoves);
    void Finish(int halfMoves, u64 milliseconds);

    // Nothing where nothing is known; 0 when all are done.
    std::optional<u64> MillisecondsLeft() const;

private:
    struct TMean {
        u64 count = 0;
        u64 milliseconds = 0;
        double Value() const {
            return static_cast<double>(milliseconds) / static_cast<double>(count);
        }
    };
    std::optional<double> Expected(int halfMoves) const;

    int m_jobs;
    u64 m_limitMilliseconds;
    std::map<int, int> m_open;
    std::map<int, TMean> m_finished;
};

}  // namespace quillmere

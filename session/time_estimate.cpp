#include "session/time_estimate.h"

#include <algorithm>
#include <cmath>
#include <iterator>

namespace quillmere {

void CTimeEstimate::Drop(int halfMoves) {
    const auto open = m_open.find(halfMoves);
    if (open != m_open.end() && --open->second == 0)
        m_open.erase(open);
}

void CTimeEstimate::Finish(int halfMoves, u64 milliseconds) {
    Drop(halfMoves);
    TMean& mean = m_finished[halfMoves];
    ++mean.count;
    mean.milliseconds += milliseconds;
}

std::optional<double> CTimeEstimate::Expected(int halfMoves) const {
    const auto above = m_finished.lower_bound(halfMoves);
    if (above == m_finished.end())
        return m_limitMilliseconds > 0 ? std::optional(static_cast<double>(m_limitMilliseconds))
                                       : std::nullopt;
    if (above->first == halfMoves || above == m_finished.begin())
        return above->second.Value();
    const auto below = std::prev(above);
    // A mean of 0 has no place on a geometric line.
    const double low = std::max(below->second.Value(), 1.0);
    const double high = std::max(above->second.Value(), 1.0);
    const double part =
        static_cast<double>(halfMoves - below->first) / (above->first - below->first);
    return low * std::pow(high / low, part);
}

std::optional<u64> CTimeEstimate::MillisecondsLeft() const {
    double sum = 0;
    double longest = 0;
    for (const auto& [halfMoves, count] : m_open) {
        const std::optional<double> one = Expected(halfMoves);
        if (!one)
            return std::nullopt;
        sum += *one * count;
        longest = std::max(longest, *one);
    }
    // Jobs share the tests, but none of them is shared.
    return static_cast<u64>(std::llround(std::max(sum / m_jobs, longest)));
}

}  // namespace quillmere

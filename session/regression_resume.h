// Reads a log of a batch run back: which tests were finished, and how.
//
// Only whole lines count, and lines that are none of the log's are passed over, so that every prefix
// of a log reads as the tests that were finished in it. Of a test that was told twice the last
// telling counts.
#pragma once

#include "session/regression_result.h"

#include <map>
#include <optional>
#include <string_view>
#include <utility>

namespace quillmere {

struct TLoggedTest {
    // What is not in the log has its default; isFromLog is set.
    TTestResult result;
    // The line of result was there; not so of a test that ended without one.
    bool hasResultLine = false;
    // The main variant was walked to its end too.
    bool isLineWalked = false;
};

// By number and pass; no pass for a problem that was skipped as a whole.
using TLoggedTests = std::map<std::pair<i32, std::optional<int>>, TLoggedTest>;

TLoggedTests ReadRegressionLog(std::string_view text);

}  // namespace quillmere

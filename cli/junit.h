// The report of a batch run in the XML form of JUnit, which build servers read.
#pragma once

#include "session/regression_result.h"

#include <string>
#include <string_view>
#include <vector>

namespace quillmere {

// `suite` names the file. Tests are told in this order. The text is well-formed UTF-8 whatever bytes
// stand in names and texts: what XML does not allow becomes U+FFFD.
std::string JunitReport(const std::string& suite, const std::vector<TTestResult>& results);

// For a text or an attribute between double quotes.
std::string EscapeXml(std::string_view text);

}  // namespace quillmere

// The positions of the bench suites, built into the program from bench/suite/*.epd.
#pragma once

#include <string>
#include <string_view>

namespace quillmere {

// EPD text of the suite; empty if there is none of that name.
std::string_view BenchSuite(std::string_view name);
// The names, with commas between them.
std::string BenchSuiteNames();

}  // namespace quillmere

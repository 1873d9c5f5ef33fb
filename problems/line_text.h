// Texts as they can stand in one line of a problem file. A line end is LF, or CR LF.
#pragma once

#include <string>
#include <string_view>

namespace quillmere {

// Without line ends, and without the closing bracket of the place where it stands.
std::string WithoutLineEnds(std::string_view text, char closing);

// With a blank for each line end, and without blanks at both ends.
std::string OneLine(std::string_view text);

}  // namespace quillmere

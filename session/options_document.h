// The text of docs/options.md, made from the option table.
#pragma once

#include <string>

namespace quillmere {

std::string OptionsDocument();

}  // namespace quillmere

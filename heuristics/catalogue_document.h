// The text of docs/heuristics.md, made from the catalogue.
#pragma once

#include <string>

namespace quillmere {

std::string HeuristicsDocument();

}  // namespace quillmere

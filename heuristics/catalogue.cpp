#include "heuristics/catalogue.h"

namespace quillmere {

std::string HeuristicName(u32 /*bit*/) {
    return "...";
}

std::string HeuristicParameterText(u32 /*bit*/, const TChessboard& /*node*/) {
    return {};
}

std::string HeuristicsText(const TChessboard& /*node*/) {
    return {};
}

std::string HeuristicNames(u32 /*heur*/) {
    return {};
}

}  // namespace quillmere

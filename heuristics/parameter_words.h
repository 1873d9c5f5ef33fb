// The words in the brackets behind the name of a heuristic: the printer writes them, the reader
// knows them again in any case of letters.
#pragma once

#include "core/text.h"
#include "core/types.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace quillmere {

// Equal but for the case of letters.
constexpr bool IsSameWord(std::string_view a, std::string_view b) {
    return std::ranges::equal(a, b, {}, ToUpperLetter, ToUpperLetter);
}

constexpr std::string_view kWordStrictKing = "STRICT";
constexpr std::string_view kWordAlmostStrict = "ALMOST_STRICT";
constexpr std::string_view kWordExceptions = "excptns";  // behind SH_DONTLETKINGMOVE
constexpr std::string_view kWordCorner = "incl.corner";
constexpr std::string_view kWordStrict = "strict";
constexpr std::string_view kWordEffective = "EFF";
constexpr std::string_view kWordPreliminary = "-Preliminary";
constexpr std::string_view kWordCustom = "-Custom";
constexpr std::string_view kWordOff = "OFF";  // of problem files

// SH_KEEPKINGONTHEEDGE in its strict forms, when it has no other parameters
constexpr std::string_view kNameDontLetKingMove = "SH_DONTLETKINGMOVE";

// By OneColorMode
constexpr std::array<std::string_view, 4> kOneColorWords = {
    "", "WhiteSquaresOnly", "BlackSquaresOnly", "SeparatedBlackBishop"};
// By LoseFiguresMode
constexpr std::array<std::string_view, 3> kLoseFiguresWords = {
    "", "incl.pawns", "incl.pawnsBeforePromo"};
// By FfmMode, from kFirstFfmMode
constexpr std::array<std::string_view, 8> kFfmModeWords = {
    "CheckOnly", "#1", "#1+", "#2", "#2+", "#3", "#4", "#5"};
constexpr u8 kFirstFfmMode = 2;

// Behind the list
constexpr std::string_view kWordQuickMode = "QuickMode";
constexpr std::string_view kWordNoDynamicBlock = "CannotApplyDLFUDynamically";

// Largest distances of SH_KEEPKINGNEARCORNER. One more of either holds on the whole board: the sum
// of the edge distances is 6 at most, the greater one 3.
constexpr int kMaxCornerSquares = 5;
constexpr int kMaxCornerMoves = 2;

}  // namespace quillmere

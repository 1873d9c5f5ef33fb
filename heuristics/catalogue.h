// The catalogue of the heuristics in words. The rows stand in heuristics/catalogue.def.
//
// What is written here is read back by heuristics/heuristics_parser.h. Threads: the texts read the
// settings of the node's thread and of its search context, so they are for the thread itself.
#pragma once

#include "core/chessboard.h"
#include "core/messages.h"

#include <array>
#include <string>
#include <string_view>

namespace quillmere {

// What stands in the brackets behind a name; each kind is one row of the printer and of the reader.
enum class EHeuristicParameters : u8 {
    kNoParameters,
    kEdge,              // STRICT or ALMOST_STRICT, incl.corner, C2f, A, D3,M5
    kExtEdge,           // C2f, A, D3,M5, incl.corner, strict
    kOneColor,          // WhiteSquaresOnly, BlackSquaresOnly, SeparatedBlackBishop
    kFigureOnDiagonal,  // a square
    kBlockedFigures,    // EFF, up to eight squares
    kForcedMate,        // CheckOnly, #1 to #5, #1+ or #2+; -Preliminary, -Custom
    kLessExceptions,    // strict
    kFile,              // A to H
    kDiagonal,          // two squares, A1-H8
    kLoseFigures,       // incl.pawns or incl.pawnsBeforePromo
    kKeySquare,         // a square
    kSurrounded,        // strict
    kKeyWhiteFigure,    // a square
    kNearCorner,        // 1S to 5S, 1M, 2M
    kSeaSnake,          // approach, turn back, number of moves to be played before
    kZugzwangMoves,     // the moves that lead to the position; read, never written
};

struct THeuristicRow {
    u32 bit;
    std::string_view name;
    EMessage label;   // EMessage::kCount for none
    EMessage choice;  // EMessage::kCount for none
    EHeuristicParameters parameters;
    EMessage help;
};

constexpr int kHeuristicCount = 29;
extern const std::array<THeuristicRow, kHeuristicCount> kHeuristicRows;

// The row of one bit, null for anything else.
const THeuristicRow* FindHeuristicRow(u32 bit);

// "SH_..." of one bit; "..." for anything else.
std::string HeuristicName(u32 bit);
// What stands in the brackets behind the name; empty for none.
std::string HeuristicParameterText(u32 bit, const TChessboard& node);
// The word of the node with its parameters, "SH_KEYLINE(A), SH_ZUGZWANG,  QuickMode"; empty for the
// word 0.
std::string HeuristicsText(const TChessboard& node);
// The names of a word without parameters, joined by ", ".
std::string HeuristicNames(u32 heur);

}  // namespace quillmere

// Problems made by code, as a file would give them.
#pragma once

#include "problems/chess_problem.h"
#include "problems/problem_collection.h"
#include "tests/support/boards.h"

#include <initializer_list>
#include <memory>
#include <string_view>

namespace quillmere::test {

// A direct mate in `fullMoves`; the FEN's board part only.
inline std::unique_ptr<TChessProblem> DirectMate(i32 number,
                                                 std::string_view fen,
                                                 int fullMoves,
                                                 std::initializer_list<const char*> answer = {}) {
    auto problem = std::make_unique<TChessProblem>();
    problem->number = number;
    problem->SetStipulation(kDirectMate, static_cast<u16>(HalfMovesOfMate(fullMoves)));
    problem->SetPosition(FilledBoard(fen).m_board);
    for (const char* move : answer)
        problem->answer.push_back(MoveOf(move));
    if (answer.size() > 0)
        problem->flags |= kProblemHasAnswer;
    return problem;
}

// The main variant from plain moves, white first.
inline void AddMainVariant(TChessProblem& problem, std::initializer_list<const char*> moves) {
    TProblemVariant variant;
    variant.name = MainVariantName(ELanguage::kEnglish);
    for (const char* move : moves)
        variant.moves.push_back({MoveOf(move), move, ""});
    problem.variants.emplace(variant.name, variant);
}

// White Kb6 mates with Rh1-h8; a king's move less far it is mate in two, with two keys.
constexpr std::string_view kMateInOne = "k7/8/1K6/8/8/8/8/7R";
constexpr std::string_view kMateInTwo = "k7/8/2K5/8/8/8/8/7R";  // Kc6-b6, Kc6-c7
// No search ends on it within the life of a test.
constexpr std::string_view kEndless = "8/Bk3p1p/1P3p2/KP2n2p/1P1p4/1Pp2p2/B1P5/7B";
constexpr int kEndlessMoves = 270;

}  // namespace quillmere::test

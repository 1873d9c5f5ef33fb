// Comparison of two problems in everything that the file format keeps.
#pragma once

#include "problems/chess_problem.h"

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

namespace quillmere::test {

inline bool AreSameMoves(const std::vector<TMove>& a, const std::vector<TMove>& b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), MovesEqual);
}

inline bool AreSameVariants(const TVariants& a, const TVariants& b) {
    const auto isSameMove = [](const TVariantMove& x, const TVariantMove& y) {
        return MovesEqual(x.move, y.move) && x.text == y.text && x.comment == y.comment;
    };
    const auto isSame = [&](const auto& x, const auto& y) {
        return x.first == y.first && x.second.name == y.second.name &&
               x.second.doesBlackBegin == y.second.doesBlackBegin &&
               std::equal(x.second.moves.begin(),
                          x.second.moves.end(),
                          y.second.moves.begin(),
                          y.second.moves.end(),
                          isSameMove);
    };
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), isSame);
}

// Flags that are written.
constexpr u32 kKeptFlags =
    0xffff & ~(kProblemNoGlobReg | kProblemHasExpectedSort | kProblemExpectedSortOnly);

// The first field that differs, empty if none does.
inline std::string FirstDifference(const TChessProblem& a, const TChessProblem& b) {
    const bool isForced = a.threads != kThreadsNotForced;
    if (a.number != b.number)
        return "number";
    if (a.type != b.type)
        return "type";
    if (a.maxHalfMoves != b.maxHalfMoves || a.initialHalfMoves != b.initialHalfMoves)
        return "half-moves";
    if (std::memcmp(a.position->m_board, b.position->m_board, kSquareCount) != 0)
        return "position";
    if (a.position->m_nMoves != b.position->m_nMoves)
        return "half-moves of the board";
    if (!AreSameMoves(a.PlayedMoves(), b.PlayedMoves()))
        return "played moves";
    if (!AreSameMoves(a.answer, b.answer))
        return "answer";
    if ((a.flags & kKeptFlags) != (b.flags & kKeptFlags))
        return "flags";
    if (a.threads != b.threads)
        return "threads";
    if (isForced && (a.areLevelsGiven != b.areLevelsGiven ||
                     (a.areLevelsGiven && a.multithreadingLevels != b.multithreadingLevels)))
        return "levels";
    if (a.description != b.description)
        return "description";
    if ((a.flags & (kProblemGuiCheck | kProblemGuiCheckBestDefence)) != 0 &&
        a.guiCheckRepeat != b.guiCheckRepeat)
        return "repeat count";
    if (a.requires_ != b.requires_)
        return "requires";
    if (!AreSameVariants(a.variants, b.variants))
        return "variants";
    if (a.useMainVariantAsSortIndications != b.useMainVariantAsSortIndications)
        return "main variant as sort indications";
    if (a.tags != b.tags)
        return "tags";
    if (!(a.sortIndications == b.sortIndications))
        return "sort indications";
    return "";
}

}  // namespace quillmere::test

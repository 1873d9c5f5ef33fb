#include "search/progress_line.h"

#include "core/notation.h"
#include "core/thread_context.h"
#include "search/move_number.h"

#include <algorithm>
#include <cstdio>
#include <vector>

namespace quillmere {
namespace {

// Moves of the line that are shown, by the length of the task: the first row whose half-moves are
// above the root's holds.
struct TLineLimit {
    int halfMoves;
    int moves;
};
constexpr TLineLimit kLineLimits[] = {{41, 24}, {81, 48}, {141, 144}, {65536, 288}};

int LineLimit(int rootHalfMoves) {
    for (const TLineLimit& limit : kLineLimits) {
        if (rootHalfMoves < limit.halfMoves)
            return limit.moves;
    }
    return 0;
}

// "1. Kc3-d3, Kd1-c1, 2. Kd3-c3, ": a number before each move of white, or before black's first.
std::string LineText(const TChessboard& node) {
    std::vector<const TChessboard*> line;
    for (const TChessboard* n = &node; n->m_parent != nullptr && n->m_nMoves < n->m_nRootMoves;
         n = n->m_parent)
        line.push_back(n);
    std::reverse(line.begin(), line.end());
    const auto shown =
        std::min(line.size(), static_cast<std::size_t>(LineLimit(node.m_nRootMoves)));
    std::string text;
    for (std::size_t i = 0; i < shown; ++i) {
        const TChessboard& before = *line[i]->m_parent;
        if (before.IsWhiteToMove() || i == 0)
            text += std::to_string(MoveNumberOf(before)) + ". ";
        text += MoveToText(before, line[i]->m_lastMove) + ", ";
    }
    return text;
}

std::string PassLetter(const TChessboard& node) {
    const int count = node.m_threadContext->heuristics.RelaxationCount;
    if (node.m_pass != kPassHeuristics || count == 0)
        return {};
    return {static_cast<char>('a' + count % 26)};
}

}  // namespace

std::string ProgressLine(const TChessboard& node, const TProgressFigures& figures) {
    std::string prefix;
    char text[64];
    if (node.Heur != 0) {
        std::snprintf(text, sizeof text, "SH:%xh", node.Heur);
        prefix += text;
    }
    if (figures.registerSize != 0) {
        std::snprintf(text,
                      sizeof text,
                      ",TR:%u(%lld)",
                      figures.registerSize,
                      static_cast<long long>(figures.registerDelta));
        prefix += text;
    }
    if (!prefix.empty())
        prefix += ' ';
    std::snprintf(text, sizeof text, "Pass %d", static_cast<int>(node.m_pass));
    prefix += text + PassLetter(node) + ", " + LineText(node);
    const double share = figures.moveCount == 0 ? 0 : 100.0 * figures.movesDone / figures.moveCount;
    std::snprintf(text,
                  sizeof text,
                  "%0.1f%% %llu             \r",
                  share,
                  static_cast<unsigned long long>(figures.nodes));
    return prefix + text;
}

}  // namespace quillmere

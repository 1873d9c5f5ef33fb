#include "session/gui_check.h"

#include "core/notation.h"
#include "session/regression_lines.h"

#include <algorithm>
#include <cstddef>

namespace quillmere {
namespace {

constexpr std::string_view kNoMove = "-";

void Remark(TGuiCheckResult& result, std::string text) {
    if (result.remark.empty())
        result.remark = std::move(text);
}

// Compares what is found in the node with the next move of the variant.
void CompareTurn(TChessProblem& problem,
                 TMove expected,
                 ILineAnalysis& analysis,
                 TGuiCheckResult& result) {
    const TChessboard& node = *problem.currentNode;
    const bool isWhite = node.IsWhiteToMove();
    const ILineAnalysis::TFound found =
        isWhite ? analysis.FindWhiteMove(problem) : analysis.FindDefence(problem);
    if (found.isStopped) {
        result.isUndecided = true;
        Remark(result, "the analysis inside the main variant was stopped");
        return;
    }
    if (found.move && MovesEqual(*found.move, expected))
        return;
    const std::string expectedText = MoveTextForLog(node, expected);
    const std::string foundText =
        found.move ? MoveTextForLog(node, *found.move) : std::string(kNoMove);
    result.isDifferent = true;
    result.lines +=
        isWhite ? AuxMateLine(expectedText, foundText) : BestDefenceLine(expectedText, foundText);
    Remark(result,
           std::string(isWhite ? "auxMate" : "best defence") + ": expected " + expectedText +
               ", found " + foundText);
}

}  // namespace

bool NeedsGuiCheck(const TChessProblem& problem) {
    if (problem.type != kDirectMate)
        return false;
    if (!problem.Has(kProblemGuiCheck) && !problem.Has(kProblemGuiCheckBestDefence))
        return false;
    const TProblemVariant* main = FindMainVariant(problem.variants);
    return main != nullptr && !main->doesBlackBegin && main->moves.size() > 1;
}

TGuiCheckResult WalkMainVariant(TChessProblem& problem, ILineAnalysis& analysis) {
    TGuiCheckResult result;
    const std::vector<TVariantMove>& moves = FindMainVariant(problem.variants)->moves;
    const std::size_t walked =
        2 * static_cast<std::size_t>(std::max(problem.guiCheckRepeat, i32{1})) - 1;
    for (std::size_t i = 0; i < std::min(walked, moves.size() - 1); ++i) {
        const TMove move = moves[i].move;
        const std::string text = MoveTextForLog(*problem.currentNode, move);
        if (!problem.PlayMove(move)) {
            result.isDifferent = true;
            Remark(result, "the main variant cannot be played: " + text);
            break;
        }
        // Nothing is left to be asked behind the last move of the stipulation.
        if (problem.currentNode->m_nMoves == 0)
            break;
        const bool isAsked = !problem.currentNode->IsWhiteToMove() || problem.Has(kProblemGuiCheck);
        if (isAsked)
            CompareTurn(problem, moves[i + 1].move, analysis, result);
        if (result.isUndecided)
            break;
    }
    problem.GoToStart();
    return result;
}

std::string MoveTextForLog(const TChessboard& node, TMove move) {
    // A file may state a square outside the board; the byte as it is says the most.
    if (!IsOnBoard(move))
        return std::to_string(move.from) + "-" + std::to_string(move.to);
    return node.m_board[move.from] == 0 ? MoveToPlainText(move) : MoveToText(node, move);
}

}  // namespace quillmere

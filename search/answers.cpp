#include "search/answers.h"

#include "core/chess_exception.h"
#include "core/legality.h"
#include "core/move_generation.h"
#include "core/notation.h"

#include <algorithm>
#include <cstddef>
#include <ostream>

namespace quillmere {

int GetAnswerCountFromMap(TMove move, const TAnswersMap& map) {
    for (const auto& [count, moves] : map) {
        if (std::any_of(moves.begin(), moves.end(), [move](TMove other) {
                return MovesEqual(move, other);
            }))
            return count;
    }
    throw ChessException(EMessage::kErrorInAnswerCount);
}

std::string GetDefenceText(TChessboard& node, ELanguage language) {
    if (node.m_nMoves != 0)
        return {};
    // The blank at the end is part of the text: more may follow it.
    if (node.m_blackInCheck < 0)
        return std::string(MessageText(EMessage::kLastMoveNoMate, language)) + ' ';
    TMoveList evasions;
    evasions.count = GetBlackEvasions(node, evasions.moves);
    int defences = 0;
    std::string moves;
    for (const TMove move : evasions) {
        if (!IsLegalMove(node, move))
            continue;
        moves += defences++ == 0 ? "" : ", ";
        moves += MoveToText(node, move);
    }
    const bool isOne = defences == 1;
    return FormatMessage(
        isOne ? EMessage::kLastMoveDefence : EMessage::kLastMoveDefences, language, {moves});
}

void PrintAnswers(const TAnswerTree& tree, std::ostream& file, int indent) {
    if (!tree.IsBare()) {
        file << std::string(static_cast<std::size_t>(indent), ' ');
        if (tree.IsFromRegister())
            file << "From temporary register\n";
        else
            file << SquareToText(tree.move.from) << '-' << SquareToText(tree.move.to) << '\n';
        ++indent;
    }
    for (const TAnswerTree& child : tree.children)
        PrintAnswers(child, file, indent);
}

}  // namespace quillmere

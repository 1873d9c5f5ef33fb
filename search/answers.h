// The answers of a solved task as data and as text: how many replies each first move left, what
// black can do after white's last move, and the tree of variants for printing.
//
// Texts are UTF-8 and in the language of the caller.
#pragma once

#include "core/chessboard.h"
#include "core/messages.h"

#include <iosfwd>
#include <map>
#include <string>
#include <vector>

namespace quillmere {

// White's first moves, filed under the number of black's answers that each left; refutations are
// filed in the same way.
using TAnswersMap = std::map<int, std::vector<TMove>>;

// The number under which the move is filed, the smallest if it stands there several times. Moves
// are compared by squares and promotion. Throws ChessException if the move is not there.
int GetAnswerCountFromMap(TMove move, const TAnswersMap& map);

// What black answers to white's last move when it does not mate: for a node with no half-moves
// left, that there is no mate, and the defences to a check. Empty for any other node.
std::string GetDefenceText(TChessboard& node, ELanguage language);

// A move and what follows it.
struct TAnswerTree {
    TMove move = {};
    std::vector<TAnswerTree> children;

    // Has no move of its own and only carries children.
    bool IsBare() const { return move.from == 0 && move.to == 0; }
    // Stands for a continuation that is known from the register of solved positions.
    bool IsFromRegister() const {
        return move.from == kRegisterSquare && move.to == kRegisterSquare;
    }
    static constexpr u8 kRegisterSquare = 9;
};
constexpr TMove kMoveFromRegister =
    MakeMove(TAnswerTree::kRegisterSquare, TAnswerTree::kRegisterSquare);

// Writes the tree, a line a move, each line behind `indent` blanks and one more for every level
// below. A bare node takes no level.
void PrintAnswers(const TAnswerTree& tree, std::ostream& file, int indent);

}  // namespace quillmere

// A line of play under heuristics, for the tests of what they do on white's side.
#pragma once

#include "heuristics/rules.h"
#include "tests/support/search_board.h"

#include <sstream>
#include <stdexcept>
#include <string>

namespace quillmere::test {

class CWhiteRuleBoard : public CSearchBoard {
public:
    CWhiteRuleBoard(const std::string& fen, u16 halfMoves, u32 heur)
        : CSearchBoard(fen, halfMoves) {
        Root().Heur = heur;
        Root().m_pass = kPassHeuristics;
    }

    THeuristicSettings& Settings() { return Thread().heuristics; }

    // Makes moves of the search, "e1e2 e8e7"; after white's the heuristics are told. A move with '!'
    // behind it is marked as an event.
    TChessboard& Line(const std::string& text) {
        std::istringstream moves(text);
        for (std::string move; moves >> move;)
            PlayTold(move);
        return Node();
    }

private:
    void PlayTold(std::string move) {
        const bool isEvent = move.back() == '!';
        if (isEvent)
            move.pop_back();
        const bool isWhite = Node().IsWhiteToMove();
        if (Play(move) != kMoveMade)
            throw std::runtime_error("no move of the search: " + move);
        if (isEvent)
            Node().m_lastMove.flags |= kMoveMarkEvent;
        if (isWhite)
            UpdateAfterWhiteMove(Node());
    }
};

// The node behind the line is left out by the screens of the word.
inline bool
IsLineLeftOut(const std::string& fen, u16 halfMoves, u32 heur, const std::string& line) {
    CWhiteRuleBoard board(fen, halfMoves, heur);
    return IsMoveLeftOut(board.Line(line));
}

}  // namespace quillmere::test

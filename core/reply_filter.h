// Which of white's moves could still mate in two against one given reply?
//
// In a node that asks for mate in two, one black move mostly refutes nearly all of white's. The
// filter plays that reply once, with white still to move, and then tells of each white move,
// without making it, whether a mate could follow the reply. The idea and why it is sound stand in
// the .cpp.
#pragma once

#include "core/attack_map.h"
#include "core/chessboard.h"

namespace quillmere {

class CReplyFilter {
public:
    // Left uninitialised: Build fills it, and many are made that are never built.
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-member-init,modernize-use-equals-default)
    CReplyFilter() {}
    // The map points to the board beside it.
    CReplyFilter(const CReplyFilter&) = delete;
    CReplyFilter& operator=(const CReplyFilter&) = delete;

    // White to move, black not in check, one-colour play off; `reply` is any move. False: nothing
    // can be said about this reply in this node, and MayMate must not be asked.
    bool Build(const TChessboard& node, TMove reply);

    // The same with a pass in the place of the reply: MayMate answers false where white's move is
    // illegal, or where it neither checks nor threatens mate in one.
    bool BuildPass(const TChessboard& node);

    TMove Reply() const { return m_reply; }

    // `move` is a pseudo-legal white move of the node. False: it is illegal, or the reply is legal
    // after it and white has no mate in one then. True: not known.
    bool MayMate(TMove move) {
        if ((m_known & SetOf(move.from)) == 0)
            Analyse(move.from);
        return (m_mayMate[move.from] & SetOf(move.to)) != 0;
    }

private:
    class CAnalysis;

    void Analyse(int from);

    TMove m_reply;
    u8 m_board[kSquareCount];  // after the reply
    TAttackMap m_map;          // of that board
    TSquareSet m_touched;      // destinations of white's move that change the reply itself
    TSquareSet m_known;        // squares whose man was analysed
    TSquareSet m_mayMate[kSquareCount];
};

}  // namespace quillmere

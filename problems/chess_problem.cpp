#include "problems/chess_problem.h"

#include "core/chess_exception.h"
#include "core/legality.h"
#include "core/make_move.h"
#include "core/thread_context.h"

#include <algorithm>

namespace quillmere {
namespace {

// The node of a game that begins in the problem: parity and chain are right, so that rights and
// legality can be asked.
bool MakeLegalMove(TChessboard& child, TMove move) {
    TThreadContext thread(child.m_nRootMoves);
    child.m_threadContext = &thread;
    thread.rootNode = &child;
    while (thread.rootNode->m_parent != nullptr)
        thread.rootNode = thread.rootNode->m_parent;
    const int result = child.m_parent->IsWhiteToMove() ? MakeWhiteMoveLegal(child, move)
                                                       : MakeBlackMoveLegal(child, move);
    child.m_threadContext = nullptr;
    return result == kMoveMade;
}

}  // namespace

TChessProblem::TChessProblem()
    : position(std::make_unique<TChessboard>()), currentNode(position.get()) {
    InitBoard(*position);
    position->m_searchContext = this;
    SetStipulation(kDirectMate, maxHalfMoves);
}

TChessProblem::~TChessProblem() = default;

void TChessProblem::SetStipulation(i32 newType, u16 halfMoves) {
    type = newType;
    maxHalfMoves = initialHalfMoves = halfMoves;
    position->m_nMoves = position->m_nRootMoves = halfMoves;
}

void TChessProblem::SetPosition(const u8 squares[kSquareCount]) {
    GoToStart();
    std::copy_n(squares, kSquareCount, position->m_board);
    try {
        ValidateBoard(*position, true);
    } catch (const ChessException&) {
        // Collections may hold positions that cannot be solved; whoever wants to solve them asks.
        TChessboard empty;
        InitBoard(empty);
        empty.m_searchContext = this;
        empty.m_nMoves = empty.m_nRootMoves = maxHalfMoves;
        std::copy_n(squares, kSquareCount, empty.m_board);
        *position = empty;
    }
    solvedRecord.SetPosition(squares);
}

bool TChessProblem::IsPositionValid() const {
    TChessboard copy = *position;
    try {
        ValidateBoard(copy, false);
        return true;
    } catch (const ChessException&) {
        return false;
    }
}

bool TChessProblem::PlayMove(TMove move) {
    if (currentNode->m_nMoves == 0 || !IsPositionValid())
        return false;
    TMoveList list;
    list.count = GetLegalMoves(*currentNode, list.moves);
    const auto isSame = [move](TMove candidate) { return MovesEqual(candidate, move); };
    if (std::none_of(list.begin(), list.end(), isSame))
        return false;
    playedNodes.push_back(*currentNode);
    TChessboard& child = playedNodes.back();
    child.m_parent = currentNode;
    if (!MakeLegalMove(child, move)) {
        playedNodes.pop_back();
        return false;
    }
    currentNode = &child;
    return true;
}

void TChessProblem::GoToStart() {
    playedNodes.clear();
    currentNode = position.get();
}

std::vector<TMove> TChessProblem::PlayedMoves() const {
    std::vector<TMove> moves;
    for (const TChessboard& node : playedNodes)
        moves.push_back(node.m_lastMove);
    return moves;
}

}  // namespace quillmere

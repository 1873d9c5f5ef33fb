#include "core/play_board.h"

#include "core/chess_exception.h"
#include "core/legality.h"
#include "core/make_move.h"
#include "core/notation.h"
#include "core/san.h"

namespace quillmere {
namespace {

// The parity of m_nMoves tells the side to move; a line of `halfMoves` must fit above zero.
u16 RootHalfMoves(bool isBlackToMove, int halfMoves) {
    const int least = halfMoves + 1;
    const bool isEven = least % 2 == 0;
    return static_cast<u16>(isEven == isBlackToMove ? least : least + 1);
}

}  // namespace

CPlayBoard::CPlayBoard(const TChessboard& position, bool isBlackToMove, int halfMoves)
    : m_thread(RootHalfMoves(isBlackToMove, halfMoves)) {
    TChessboard root = position;
    root.m_parent = nullptr;
    root.m_searchContext = &m_context;
    SetupAnalysisRoot(root, RootHalfMoves(isBlackToMove, halfMoves), true);
    m_nodes.push_back(root);
    m_nodes.back().m_threadContext = &m_thread;
    m_thread.rootNode = &m_nodes.back();
}

bool CPlayBoard::IsInCheck() const {
    const TChessboard& node = m_nodes.back();
    return (node.IsWhiteToMove() ? node.m_whiteInCheck : node.m_blackInCheck) != kNotInCheck;
}

std::vector<TMove> CPlayBoard::LegalMoves() {
    TMoveList list;
    list.count = GetLegalMoves(Node(), list.moves);
    return {list.begin(), list.end()};
}

void CPlayBoard::Play(TMove move) {
    if (Node().m_nMoves == 0 || !IsLegalMove(Node(), move))
        throw ChessException(EMessage::kIllegalMove);
    TChessboard& parent = Node();
    m_nodes.push_back(parent);
    TChessboard& child = m_nodes.back();
    child.m_parent = &parent;
    const int result =
        parent.IsWhiteToMove() ? MakeWhiteMoveLegal(child, move) : MakeBlackMoveLegal(child, move);
    if (result != kMoveMade) {
        m_nodes.pop_back();
        throw ChessException(EMessage::kIllegalMove);
    }
}

std::string PlayShortMove(CPlayBoard& board, TMove move) {
    std::string text = WriteShortMove(board.Node(), move);
    board.Play(move);
    if (board.IsInCheck())
        text += board.LegalMoves().empty() ? "#" : "+";
    return text;
}

std::vector<TWrittenMove>
WriteLine(const TChessboard& position, bool isBlackToMove, const std::vector<TMove>& moves) {
    CPlayBoard board(position, isBlackToMove, static_cast<int>(moves.size()));
    std::vector<TWrittenMove> written;
    for (const TMove move : moves) {
        TWrittenMove row{MoveToText(board.Node(), move), MoveToUci(move), ""};
        board.Play(move);
        if (board.IsInCheck())
            row.check = board.LegalMoves().empty() ? "#" : "+";
        written.push_back(std::move(row));
    }
    return written;
}

TWrittenMove WriteMove(const TChessboard& position, bool isBlackToMove, TMove move) {
    return WriteLine(position, isBlackToMove, {move}).front();
}

std::string NumberedLine(const std::vector<TWrittenMove>& moves, bool isBlackToMove) {
    std::string out;
    const std::size_t offset = isBlackToMove ? 1 : 0;
    for (std::size_t i = 0; i < moves.size(); ++i) {
        const std::size_t ply = i + offset;
        if (i > 0)
            out += ' ';
        if (ply % 2 == 0)
            out += std::to_string(ply / 2 + 1) + ".";
        else if (i == 0)
            out += std::to_string(ply / 2 + 1) + "...";
        out += moves[i].text + moves[i].check;
    }
    return out;
}

}  // namespace quillmere

// Mate in one. A mating move gives check, so only checks are looked at: of each man to the squares
// from which it sees the king, and anywhere off the line for a man that stands between an own slider
// and the king. All of it is done on sets of squares (core/attack_map.h), without making a move:
//   - a check is given up when a flight of the king stays open, that is, when neither the other men,
//     once the moved one has left, nor the moved one from its new square attack it. What the other
//     men attack is taken as if the new square closed no line, so nothing is given up wrongly;
//   - or when a black man that is not pinned can take the checker or come between.
// What is left looks like a mate, and nearly always is one. It is made on a copy and asked for an
// evasion, so that the answer rests on the moves of the game: the legality for white, lines that the
// new square closes, and en passant are judged there. Castling moves two men, and an en passant
// capture takes one off besides: these few are always made. A promotion to rook or bishop mates only
// where one to a queen does.
#include "core/direct_mates.h"

#include "core/attack_map.h"
#include "core/make_move.h"
#include "core/move_generation.h"
#include "core/rights.h"
#include "core/thread_context.h"

#include <algorithm>
#include <cassert>

namespace quillmere {
namespace {

class CMateInOne {
public:
    // m_child and m_map are written before they are read, and this is the hot path.
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-member-init,clang-analyzer-optin.cplusplus.UninitializedObject)
    explicit CMateInOne(TChessboard& node) : m_node(node) {}

    // The move that mated, after Run() answered true.
    TMove Mate() const { return m_child.m_lastMove; }

    bool Run() {
        m_map.Build(m_node.m_board, m_node.BlackKingSquare());
        if (m_node.m_whiteInCheck >= 0)
            return TryEvasions();
        for (int i = 0; i < m_map.manCount; ++i) {
            if (TryMan(m_map.men[i]))
                return true;
        }
        return TryEnPassant() || TryCastling();
    }

private:
    bool Make(int from, int to, u8 promotion) {
        m_child = m_node;
        m_child.m_parent = &m_node;
        return MakeWhiteMoveFast(m_child, MakeMove(from, to, promotion)) == kMoveMade &&
               m_child.m_blackInCheck >= 0 && !BlackHasEvasion(m_child);
    }

    // What the man's checks have in common is found once, with the first of them.
    bool TryMan(const TAttackMap::TMan& man) {
        const TSquareSet lifted = m_map.lifted & ~SetOf(man.square);
        TSquareSet cover = 0;
        bool isCoverKnown = false;
        return m_map.ForEachCheckOf(man, [&](const TAttackMap::TCheck& check) {
            if (!isCoverKnown)
                cover = m_map.CoverWithout(man);
            isCoverKnown = true;
            const TSquareSet flights = (m_map.free | (SetOf(check.to) & m_map.zone)) & ~cover &
                                       ~WhiteAttacks(check.kind, check.to, lifted);
            return flights == 0 && TryCheck(check);
        });
    }

    bool TryCheck(const TAttackMap::TCheck& check) {
        const bool isPromotion = check.kind != KindOf(m_node.m_board[check.from]);
        return !m_map.AnyDefender(check, [](int, TSquareSet) { return true; }) &&
               Make(check.from, check.to, isPromotion ? check.kind : u8{0});
    }

    bool TryEnPassant() {
        const int passed = DoubleStepSquare(m_node);
        const u8* b = m_node.m_board;
        if (passed == kNoSquare || b[passed] != kBlackPawn)
            return false;
        return (FileOf(passed) > 0 && b[passed - 1] == kWhitePawn &&
                Make(passed - 1, passed + 8, 0)) ||
               (FileOf(passed) < 7 && b[passed + 1] == kWhitePawn &&
                Make(passed + 1, passed + 8, 0));
    }

    // Castling mates by its rook, or by nothing.
    bool TryCastling() {
        const u8* b = m_node.m_board;
        if (b[kSquareE1] != kWhiteKing ||
            (b[kSquareA1] != kWhiteRook && b[kSquareH1] != kWhiteRook))
            return false;
        TMove list[16];
        const int count = GetKingMoves(m_node, kSquareE1, list);
        const int king = m_map.king;
        return std::any_of(list, list + count, [this, king](TMove m) {
            const int step = m.to - m.from;
            return (step == 2 || step == -2) && (LineBit(m.from + step / 2, king) & kRook) != 0 &&
                   Make(m.from, m.to, 0);
        });
    }

    bool TryEvasions() {
        TMoveList list;
        list.count = GetWhiteEvasions(m_node, list.moves);
        return std::any_of(list.begin(), list.end(), [this](TMove move) {
            return CanCheck(move) && Make(move.from, move.to, move.Promotion());
        });
    }

    // False where an evasion gives no check.
    bool CanCheck(TMove move) const {
        const u8 kind = KindOf(m_node.m_board[move.from]);
        if (move.Promotion() != 0 || (m_map.discoverers & SetOf(move.from)) != 0)
            return true;
        if (kind == kPawn && m_node.m_board[move.to] == 0 && FileOf(move.from) != FileOf(move.to))
            return true;
        return (m_map.checkSquares[ZoneIndex(kind)] & SetOf(move.to)) != 0;
    }

    TChessboard& m_node;
    TAttackMap m_map;
    TChessboard m_child;
};

// Black to move can avoid mate at white's next move.
bool CanAvoidMateInOne(TChessboard& node) {
    TMoveList list;
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-member-init): copied over before it is read
    TChessboard child;
    bool isAnyLegal = false;
    const bool isInCheck = node.m_blackInCheck >= 0;
    for (int square = 0; square < kSquareCount; ++square) {
        if (isInCheck) {
            // All evasions come at once.
            list.count = square == 0 ? GetBlackEvasions(node, list.moves) : 0;
        } else {
            list.count = GetBlackMoves(node, square, list.moves);
        }
        for (const TMove move : list) {
            child = node;
            child.m_parent = &node;
            if (MakeBlackMoveLegal(child, move) != kMoveMade)
                continue;
            if (!IsMateInOne(child))
                return true;
            isAnyLegal = true;
        }
        if (isInCheck)
            break;
    }
    return !isAnyLegal && !isInCheck;
}

}  // namespace

bool IsMateInOne(TChessboard& node) {
    assert(node.m_threadContext != nullptr && node.m_blackInCheck < 0);
    return CMateInOne(node).Run();
}

bool FindMateInOne(TChessboard& node, TMove* mate) {
    assert(node.m_threadContext != nullptr && node.m_blackInCheck < 0);
    CMateInOne search(node);
    if (!search.Run())
        return false;
    *mate = search.Mate();
    return true;
}

bool IsMateThreatened(TChessboard& node) {
    assert(!node.IsWhiteToMove() && node.m_nMoves > 0);
    TChessboard passed = node;
    passed.m_parent = &node;
    MakeNullMove(passed);
    return IsMateInOne(passed);
}

// The moves are those of the game: what an assumption leaves out must not turn into an exact "no".
bool IsMateInTwo(TChessboard& node) {
    TChessboard root = node;
    root.m_nMoves = 3;
    TMoveList list;
    list.count = root.m_whiteInCheck >= 0 ? GetWhiteEvasions(root, list.moves)
                                          : GetAllWhiteMoves(root, list.moves);
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-member-init): copied over before it is read
    TChessboard child;
    for (const TMove move : list) {
        child = root;
        child.m_parent = &root;
        if (MakeWhiteMoveLegal(child, move) == kMoveMade && !CanAvoidMateInOne(child))
            return true;
    }
    return false;
}

}  // namespace quillmere

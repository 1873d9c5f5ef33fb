// How a move is found forcing, the cheapest question first:
//   - checks are read off a map of the position, without making a move;
//   - of the others, a pass of black is laid over the list as a filter (core/reply_filter.h): what
//     threatens no mate in one falls without being made;
//   - what is left is made on a copy, black passes, and white is asked to mate: in one move by the
//     direct test, by checks alone with their few answers, and only then by a complete search, whose
//     exact results the register may keep.
#include "search/forcing_moves.h"

#include "core/attack_map.h"
#include "core/direct_mates.h"
#include "core/geometry.h"
#include "core/legality.h"
#include "core/make_move.h"
#include "core/move_generation.h"
#include "core/reply_filter.h"
#include "core/thread_context.h"
#include "search/mate_search.h"

#include <algorithm>
#include <cstdlib>
#include <utility>

namespace quillmere {
namespace {

// Moves in which a threat of the mode mates.
int ThreatOf(u8 mode) {
    if (mode < kForcedThreatOfThree)
        return (mode - 1) / 2;
    return mode - kForcedThreatOfThree + 3;
}

bool HasPlus(u8 mode) {
    return mode == kForcedThreatOfOnePlus || mode == kForcedThreatOfTwoPlus;
}

// The checks of a position without castling, promotions and en passant captures, by the square of
// the man that moves.
class CCheckMap {
public:
    // White to move, black not in check.
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-member-init): m_checks is read of known men only
    explicit CCheckMap(const TChessboard& node) {
        m_map.Build(node.m_board, node.BlackKingSquare());
        for (int i = 0; i < m_map.manCount; ++i) {
            TSquareSet& checks = m_checks[m_map.men[i].square];
            checks = 0;
            m_map.ForEachCheckOf(m_map.men[i], [&checks](const TAttackMap::TCheck& check) {
                checks |= SetOf(check.to);
                return false;
            });
        }
    }

    // `move` is a move of white's list and not special.
    bool IsCheck(TMove move) const { return (m_checks[move.from] & SetOf(move.to)) != 0; }
    bool IsNextToKing(int square) const { return (m_map.zone & SetOf(square)) != 0; }

private:
    TAttackMap m_map;
    TSquareSet m_checks[kSquareCount];
};

// A promotion, a castling or an en passant capture: only the board after it tells.
bool IsSpecial(const u8* board, TMove move) {
    if (move.Promotion() != 0)
        return true;
    switch (board[move.from]) {
    case kWhiteKing:
        return std::abs(move.to - move.from) == 2;
    case kWhitePawn:
        return FileOf(move.from) != FileOf(move.to) && board[move.to] == 0;
    default:
        return false;
    }
}

// Does white mate by checks alone? One object serves the moves of one list: what black answered a
// check with after one of them, it mostly answers after the next.
class CCheckSearch {
public:
    // White, to move, mates in at most so many moves, each of them a check. The node has the
    // half-moves for it.
    bool Mates(TChessboard& node, int moves) {
        if (IsMateInOne(node))
            return true;
        if (moves == 1)
            return false;
        const CCheckMap map(node);
        TMoveList list;
        list.count = node.m_whiteInCheck >= 0 ? GetWhiteEvasions(node, list.moves)
                                              : GetAllWhiteMoves(node, list.moves);
        return std::any_of(list.begin(), list.end(), [&](TMove move) {
            if (!IsSpecial(node.m_board, move) && !map.IsCheck(move))
                return false;
            TChessboard child = node;
            child.m_parent = &node;
            return MakeWhiteMoveFast(child, move) == kMoveMade && child.m_blackInCheck >= 0 &&
                   AreEvasionsMated(child, moves - 1);
        });
    }

private:
    bool AreEvasionsMated(TChessboard& node, int moves) {
        TMoveList evasions;
        evasions.count = GetBlackEvasions(node, evasions.moves);
        TMove& first = m_evasions[moves & 1][node.m_lastMove.to];
        const auto known = std::find_if(evasions.begin(), evasions.end(), [first](TMove move) {
            return MovesEqual(move, first);
        });
        if (known != evasions.end())
            std::swap(*known, *evasions.begin());
        for (const TMove move : evasions) {
            TChessboard child = node;
            child.m_parent = &node;
            if (MakeBlackMoveLegal(child, move) != kMoveMade || Mates(child, moves))
                continue;
            first = move;
            return false;
        }
        return true;
    }

    // That refuted the last check to the square, by the moves left, odd or even.
    TMove m_evasions[2][kSquareCount] = {};
};

// White, to move, mates in at most so many moves: a complete search.
bool MatesWithin(TChessboard& passed, int moves) {
    TThreadContext& thread = *passed.m_threadContext;
    TChessboard node = passed;
    node.m_nMoves = static_cast<u16>(2 * moves - 1);
    node.Heur = 0;
    node.HeurParams = 0;
    node.m_pass = kPassComplete;
    const bool isHidden = std::exchange(thread.isLogHidden, true);
    const TVerdict verdict = FindMate(node, true);
    thread.isLogHidden = isHidden;
    return verdict == kMate;
}

// The judge of one list.
class CForcingMoves {
public:
    CForcingMoves(TChessboard& node, u8 mode, bool takesCaptures)
        : m_node(node),
          m_mode(mode),
          m_takesCaptures(takesCaptures && mode >= kForcedThreatOfTwo),
          m_threat(std::min(ThreatOf(mode), MovesAfterPass())),
          m_map(node),
          m_isFiltered(mode == kForcedThreatOfOne && m_filter.BuildPass(node)) {}

    bool Contains(TMove move) {
        const bool isSpecial = IsSpecial(m_node.m_board, move);
        if (!isSpecial && m_map.IsCheck(move))
            return true;
        if (!isSpecial && m_mode < kForcedThreatOfOne)
            return false;
        if (m_takesCaptures && IsCaptureAtKing(move))
            return true;
        if (m_isFiltered && move.Promotion() == 0 && !m_filter.MayMate(move))
            return false;
        return IsForcingOnceMade(move);
    }

private:
    // White's moves that are left behind a move of the node and a pass.
    int MovesAfterPass() const { return (m_node.m_nMoves - 1) / 2; }

    bool IsCaptureAtKing(TMove move) const {
        const u8 taken = m_node.m_board[move.to];
        return taken != 0 && KindOf(taken) != kPawn && m_map.IsNextToKing(move.to);
    }

    bool IsForcingOnceMade(TMove move) {
        TChessboard child = m_node;
        child.m_parent = &m_node;
        if (MakeWhiteMoveFast(child, move) != kMoveMade)
            return false;
        if (child.m_blackInCheck >= 0)
            return true;
        if (m_mode < kForcedThreatOfOne)
            return false;
        TChessboard passed = child;
        passed.m_parent = &child;
        MakeNullMove(passed);
        return IsThreat(passed);
    }

    bool IsThreat(TChessboard& passed) {
        const bool hasPlus = HasPlus(m_mode) && m_threat < MovesAfterPass();
        const int checks = hasPlus ? m_threat + 1 : m_threat;
        if (m_checks.Mates(passed, checks))
            return true;
        return m_threat > 1 && MatesWithin(passed, m_threat);
    }

    TChessboard& m_node;
    const u8 m_mode;
    const bool m_takesCaptures;
    const int m_threat;  // moves
    const CCheckMap m_map;
    CCheckSearch m_checks;
    CReplyFilter m_filter;
    const bool m_isFiltered;
};

// White mates in at most so many moves, 1 or 2; nothing is searched or kept.
bool MatesDirectly(TChessboard& passed, int moves) {
    return moves == 1 ? IsMateInOne(passed) : IsMateInTwo(passed);
}

}  // namespace

bool IsForcedListOn(const TChessboard& node) {
    if ((node.Heur & SH_FINDFORCEDMATE) == 0 || node.m_pass != kPassHeuristics ||
        node.m_whiteInCheck >= 0)
        return false;
    const u8 mode = node.m_threadContext->heuristics.FfmMode;
    return mode >= kForcedChecks &&
           node.m_nMoves >= (mode == kForcedChecks ? kForcedChecksLevel : kForcedLevel);
}

int KeepForcingMoves(TChessboard& node, int count, TMove* list) {
    const THeuristicSettings& settings = node.m_threadContext->heuristics;
    CForcingMoves forcing(node, settings.FfmMode, settings.FfmAddCaptures);
    // In a search for threats nothing has been proved of black's last promotion.
    const bool isSquareFree = node.m_threadContext->isPromotionSquareFree;
    TMove* const end =
        std::remove_if(list, list + count, [&](TMove move) { return !forcing.Contains(move); });
    node.m_threadContext->isPromotionSquareFree = isSquareFree;
    return static_cast<int>(end - list);
}

bool AddsForcingMoves(TChessboard& node, u8 mode) {
    const int threat = ThreatOf(mode);
    if (!HasPlus(mode) || node.m_whiteInCheck >= 0 || node.m_nMoves < kForcedLevel ||
        (node.m_nMoves - 1) / 2 <= threat)
        return false;
    TMoveList list;
    list.count = GetLegalMoves(node, list.moves);
    CCheckSearch checks;
    return std::any_of(list.begin(), list.end(), [&](TMove move) {
        TChessboard child = node;
        child.m_parent = &node;
        if (MakeWhiteMoveFast(child, move) != kMoveMade || child.m_blackInCheck >= 0)
            return false;
        TChessboard passed = child;
        passed.m_parent = &child;
        MakeNullMove(passed);
        return !MatesDirectly(passed, threat) && checks.Mates(passed, threat + 1);
    });
}

}  // namespace quillmere

// Mate in one. A mating move gives check, so only moves that can give one are generated, by the
// figure's own rules: a knight only to a knight's step from the black king, a slider only to a
// square from which it sees the king, a pawn only next to the king, on the last rank or en passant,
// and any man that stands between an own slider and the king (a "discoverer") anywhere off that
// line.
//
// Most candidates fail because the black king steps away, and mostly to the same square. So the
// king's flights are found once, when they are first needed, and a candidate is given up without
// being made when one of them stays open: the moved man neither lands on it nor attacks it from its
// new square, and leaving its old square opens no line of an own slider to it. Nothing else that
// attacks a square can come about by one move. (Castling moves two men and an en passant capture
// takes one off besides; these two are always made.)
//
// The quick exclusion says the same without looking at a candidate, for the sparse positions of
// many endings. With at most one white figure besides king and pawns, no queen, and the black king
// off the edge, a check from a distance covers few flights:
//   - a rook or bishop at a distance covers the two squares of its line next to the king, so with
//     three flights one is left;
//   - a knight that checks covers one square next to the king, so with two flights one is left;
//   - a pawn that checks by a plain step covers, besides the king, only a square two files away
//     from it: with one flight one is left.
// This holds for quiet moves only, not next to the king (where the figure takes a flight away), and
// only if nothing else can change: no man that discovers a line, no castling, no pawn that may
// promote.
//
// The candidates that are left are made on a copy and asked for an evasion. The move that mated last
// in this thread comes first of all: black's defences at one node mostly fail to the same mate
// (13 % fewer instructions for Loyd's four-mover of 1856, 1 % more for his five-mover of 1857).
#include "core/direct_mates.h"

#include "core/attacks.h"
#include "core/geometry.h"
#include "core/king_zone.h"
#include "core/make_move.h"
#include "core/material.h"
#include "core/move_generation.h"
#include "core/rights.h"
#include "core/thread_context.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cassert>

namespace quillmere {
namespace {

// Flights from which on a figure's quiet check from a distance cannot mate.
constexpr int kSliderFlights = 3;
constexpr int kKnightFlights = 2;
constexpr int kPawnFlights = 1;

// Squares on which a slider that stands anywhere comes to see a king: where its lines cross the
// king's. Squares on a line that both share are left out.
struct TCheckSquares {
    u8 count = 0;
    // A queen's four lines cross three others of the king at most, each in one square.
    u8 square[15] = {};
};
using TCheckSquareTable = std::array<std::array<TCheckSquares, 64>, 64>;

TCheckSquareTable MakeCheckSquares(u8 kind) {
    TCheckSquareTable table{};
    for (int king = 0; king < kSquareCount; ++king) {
        for (int from = 0; from < kSquareCount; ++from) {
            TCheckSquares& squares = table[king][from];
            for (int d = 0; d < kDirections; ++d) {
                if ((kind & kSliderBit[d]) == 0)
                    continue;
                for (int i = 1; i <= kGeometry.rayLength[from][d]; ++i) {
                    const int to = from + i * kStep[d];
                    const int back = LineStep(to, king);
                    if ((LineBit(to, king) & kind) != 0 && back != kStep[d] && back != -kStep[d])
                        squares.square[squares.count++] = static_cast<u8>(to);
                }
            }
        }
    }
    return table;
}

// By bishop, rook and queen; then by the king's square and the slider's.
const std::array<TCheckSquareTable, 3> kCheckSquares = {
    MakeCheckSquares(kBishop), MakeCheckSquares(kRook), MakeCheckSquares(kQueen)};

class CMateInOne {
public:
    // m_child is copied over before it is read, and this is the hot path.
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-member-init,clang-analyzer-optin.cplusplus.UninitializedObject)
    explicit CMateInOne(TChessboard& node)
        : m_node(node), m_board(node.m_board), m_king(node.BlackKingSquare()) {}

    // The move that mated, after Run() answered true.
    TMove Mate() const { return m_child.m_lastMove; }

    bool Run() {
        if (m_node.m_whiteInCheck >= 0)
            return TryEvasions();
        if (TryLastMate())
            return true;
        FindDiscoverers();
        SetExclusion();
        return TryFigures() || TryPawns() || TryKing();
    }

private:
    bool Try(int from, int to, u8 promotion = 0) {
        m_child = m_node;
        m_child.m_parent = &m_node;
        return MakeWhiteMoveFast(m_child, MakeMove(from, to, promotion)) == kMoveMade &&
               m_child.m_blackInCheck >= 0 && !BlackHasEvasion(m_child);
    }

    // What mated in the position before often mates again: black's other defences fail to it too.
    bool TryLastMate() {
        const TMove move = m_node.m_threadContext->lastMate;
        const u8 figure = m_board[move.from];
        if (!IsWhite(figure) || IsWhite(m_board[move.to]) || figure == kWhitePawn ||
            (Relation(move.from, move.to) & KindOf(figure)) == 0)
            return false;
        if ((figure & kQueen) != 0 &&
            !IsLineClear(m_board, move.from, move.to, LineStep(move.from, move.to)))
            return false;
        return TryFiltered(move.from, move.to);
    }

    // Try, unless a flight is seen to stay open.
    bool TryFiltered(int from, int to, u8 promotion = 0) {
        return !LeavesFlight(promotion != 0 ? promotion : KindOf(m_board[from]), from, to) &&
               Try(from, to, promotion);
    }

    // The king's flights, found when they are first asked for.
    u8 Flights() {
        if (!m_areFlightsKnown) {
            m_flights = SafeKingSteps(m_node);
            m_areFlightsKnown = true;
        }
        return m_flights;
    }

    // A white slider sees the flight once the man on `from` has gone to `to`.
    bool OpensLine(int flight, int from, int to) const {
        const u8 bit = LineBit(flight, from);
        if (bit == 0)
            return false;
        const int step = LineStep(flight, from);
        for (int square = flight + step;
             square >= 0 && square < kSquareCount && LineStep(flight, square) == step;
             square += step) {
            if (square == to)
                return false;
            if (square == from || square == m_king || m_board[square] == 0)
                continue;
            const u8 mask = kWhite | bit;
            return (m_board[square] & mask) == mask;
        }
        return false;
    }

    bool LeavesFlight(u8 kind, int from, int to) {
        const u8 open =
            static_cast<u8>(Flights() & ~ZoneAttack(kind, m_king, to) & ~ZoneBit(m_king, to));
        // Leaving a square opens lines only along those that it shares with the flight.
        unsigned onLine = open & ZoneAttack(kQueen, m_king, from);
        if (open != onLine)
            return true;
        for (; onLine != 0; onLine &= onLine - 1) {
            const int flight = kGeometry.kingTargets[m_king][std::countr_zero(onLine)];
            if (!OpensLine(flight, from, to))
                return true;
        }
        return false;
    }

    bool TryEvasions() {
        TMoveList list;
        list.count = GetWhiteEvasions(m_node, list.moves);
        return std::any_of(list.begin(), list.end(), [this](TMove move) {
            return Try(move.from, move.to, move.Promotion());
        });
    }

    // Notes a white man as discoverer if it is the only man between the slider and the king.
    void NoteDiscoverer(int slider, u8 kinds) {
        if ((LineBit(m_king, slider) & kinds) == 0)
            return;
        const int step = LineStep(m_king, slider);
        int between = -1;
        for (int square = m_king + step; square != slider; square += step) {
            if (m_board[square] == 0)
                continue;
            if (between >= 0 || !IsWhite(m_board[square]))
                return;
            between = square;
        }
        if (between >= 0)
            m_discoverers[m_discovererCount++] = between;
    }

    void FindDiscoverers() {
        if (m_node.m_figureListValid != 0) {
            if (m_node.m_whiteQueen >= 0)
                NoteDiscoverer(m_node.m_whiteQueen, kQueen);
            for (const i8 rook : m_node.m_whiteRooks) {
                if (rook >= 0)
                    NoteDiscoverer(rook, kRook);
            }
            for (const i8 bishop : m_node.m_whiteBishops) {
                if (bishop >= 0)
                    NoteDiscoverer(bishop, kBishop);
            }
            return;
        }
        for (int square = 0; square < kSquareCount; ++square) {
            const u8 figure = m_board[square];
            if (IsWhite(figure) && (figure & kQueen) != 0)
                NoteDiscoverer(square, figure & kQueen);
        }
    }

    bool IsDiscoverer(int square) const {
        for (int i = 0; i < m_discovererCount; ++i) {
            if (m_discoverers[i] == square)
                return true;
        }
        return false;
    }

    bool IsCastlingPossible() const {
        return m_board[kSquareE1] == kWhiteKing &&
               (m_board[kSquareA1] == kWhiteRook || m_board[kSquareH1] == kWhiteRook);
    }

    void SetExclusion() {
        const u8* c = m_node.m_counts;
        const int figures = c[kWhiteRooks] + c[kWhiteBishops] + c[kWhiteKnights];
        if (c[kWhiteQueens] != 0 || figures > 1 || m_node.m_figureListValid == 0 ||
            (m_node.m_positionFlags & kPositionManyReplies) != 0 ||
            m_node.BlackKingEdgeDistance() == 0 || m_discovererCount != 0 || IsCastlingPossible())
            return;
        if (std::find(m_board + 48, m_board + 64, kWhitePawn) != m_board + 64)
            return;
        const int limit = figures == 0            ? kPawnFlights
                          : c[kWhiteKnights] != 0 ? kKnightFlights
                                                  : kSliderFlights;
        if (std::popcount(Flights()) < limit)
            return;
        m_isFigureExcluded = figures == 1;
        m_arePawnsExcluded = figures == 0;
    }

    bool TryFigures() {
        if (m_node.m_figureListValid == 0) {
            for (int square = 0; square < kSquareCount; ++square) {
                const u8 figure = m_board[square];
                if (!IsWhite(figure) || figure == kWhitePawn || figure == kWhiteKing)
                    continue;
                if (TryFigure(figure, square))
                    return true;
            }
            return false;
        }
        const auto tryListed = [this](u8 figure, int square) {
            return square >= 0 && TryFigure(figure, square);
        };
        return tryListed(kWhiteQueen, m_node.m_whiteQueen) ||
               tryListed(kWhiteRook, m_node.m_whiteRooks[0]) ||
               tryListed(kWhiteRook, m_node.m_whiteRooks[1]) ||
               tryListed(kWhiteBishop, m_node.m_whiteBishops[0]) ||
               tryListed(kWhiteBishop, m_node.m_whiteBishops[1]) ||
               tryListed(kWhiteKnight, m_node.m_whiteKnights[0]) ||
               tryListed(kWhiteKnight, m_node.m_whiteKnights[1]);
    }

    bool TryFigure(u8 figure, int square) {
        return figure == kWhiteKnight ? TryKnight(square) : TrySlider(figure, square);
    }

    bool IsExcluded(int to) const {
        return m_isFigureExcluded && m_board[to] == 0 && KingDistance(to, m_king) > 1;
    }

    bool TryKnight(int square) {
        const bool discovers = IsDiscoverer(square);
        for (int i = 0; i < kGeometry.knightCount[square]; ++i) {
            const int to = kGeometry.knightTargets[square][i];
            if (IsWhite(m_board[to]) || (!discovers && !IsKnightStep(to, m_king)) || IsExcluded(to))
                continue;
            if (TryFiltered(square, to))
                return true;
        }
        return false;
    }

    bool TrySlider(u8 figure, int square) {
        if (IsDiscoverer(square))
            return TryAllMoves(square);
        const int kind = KindOf(figure) == kQueen ? 2 : KindOf(figure) == kRook ? 1 : 0;
        const TCheckSquares& squares = kCheckSquares[kind][m_king][square];
        for (int i = 0; i < squares.count; ++i) {
            const int to = squares.square[i];
            if (IsWhite(m_board[to]) || IsExcluded(to) || LeavesFlight(KindOf(figure), square, to))
                continue;
            if (IsLineClear(m_board, square, to, LineStep(square, to)) &&
                IsLineClear(m_board, to, m_king, LineStep(to, m_king)) && Try(square, to))
                return true;
        }
        return (LineBit(square, m_king) & figure) != 0 && TryAlongLine(square);
    }

    // A slider that stands on the king's line behind black men: it checks only by taking the man
    // in front of it, if that is the last one.
    bool TryAlongLine(int square) {
        const int step = LineStep(square, m_king);
        int to = square + step;
        while (m_board[to] == 0)
            to += step;
        return IsBlack(m_board[to]) && to != m_king && IsLineClear(m_board, to, m_king, step) &&
               TryFiltered(square, to);
    }

    bool TryPawns() {
        if (m_node.m_counts[kWhitePawns] == 0)
            return false;
        for (int i = 0; i < m_discovererCount; ++i) {
            if (m_board[m_discoverers[i]] == kWhitePawn && TryAllMoves(m_discoverers[i]))
                return true;
        }
        const int file = FileOf(m_king);
        return (file > 0 && TryPawnTo(m_king - 9)) || (file < 7 && TryPawnTo(m_king - 7)) ||
               TryEnPassant() || TryPromotions();
    }

    // Pawn moves to a square from which a pawn attacks the king; the last rank is left to
    // TryPromotions.
    bool TryPawnTo(int to) {
        if (to < 16)
            return false;
        if (IsBlack(m_board[to])) {
            return (FileOf(to) > 0 && m_board[to - 9] == kWhitePawn && TryFiltered(to - 9, to)) ||
                   (FileOf(to) < 7 && m_board[to - 7] == kWhitePawn && TryFiltered(to - 7, to));
        }
        if (m_board[to] != 0 || m_arePawnsExcluded)
            return false;
        if (m_board[to - 8] == kWhitePawn)
            return TryFiltered(to - 8, to);
        return m_board[to - 8] == 0 && RankOf(to) == 3 && m_board[to - 16] == kWhitePawn &&
               TryFiltered(to - 16, to);
    }

    bool TryEnPassant() {
        const int passed = DoubleStepSquare(m_node);
        if (passed == kNoSquare || m_board[passed] != kBlackPawn)
            return false;
        return (FileOf(passed) > 0 && m_board[passed - 1] == kWhitePawn &&
                Try(passed - 1, passed + 8)) ||
               (FileOf(passed) < 7 && m_board[passed + 1] == kWhitePawn &&
                Try(passed + 1, passed + 8));
    }

    bool TryPromotions() {
        for (int square = 48; square < 56; ++square) {
            if (m_board[square] == kWhitePawn && TryAllMoves(square))
                return true;
        }
        return false;
    }

    bool TryAllMoves(int square) {
        TMove list[64];
        const int count = GetWhiteMoves(m_node, square, list);
        return std::any_of(list, list + count, [this](TMove m) {
            const bool isPlain = m_board[m.from] == kWhiteKing
                                     ? KingDistance(m.from, m.to) == 1
                                     : m_board[m.to] != 0 || FileOf(m.from) == FileOf(m.to) ||
                                           m_board[m.from] != kWhitePawn;
            return isPlain ? TryFiltered(m.from, m.to, m.Promotion())
                           : Try(m.from, m.to, m.Promotion());
        });
    }

    // The king checks by stepping off an own slider's line, or by castling with a checking rook.
    bool TryKing() {
        const int square = m_node.WhiteKingSquare();
        if (IsDiscoverer(square))
            return TryAllMoves(square);
        if (!IsCastlingPossible())
            return false;
        TMove list[16];
        const int count = GetKingMoves(m_node, square, list);
        return std::any_of(list, list + count, [this](TMove m) {
            const int step = m.to - m.from;
            return (step == 2 || step == -2) && (LineBit(m.from + step / 2, m_king) & kRook) != 0 &&
                   Try(m.from, m.to);
        });
    }

    TChessboard& m_node;
    const u8* m_board;
    int m_king;
    // A slider that sees the king through one man: at most one on each of the eight lines.
    int m_discoverers[kDirections] = {};
    int m_discovererCount = 0;
    u8 m_flights = 0;
    bool m_areFlightsKnown = false;
    bool m_isFigureExcluded = false;
    bool m_arePawnsExcluded = false;
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
    node.m_threadContext->lastMate = *mate;
    return true;
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

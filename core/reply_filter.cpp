// The filter of white's moves by one reply.
//
// The question. White to move wants to mate in two. Let r be a black move, m a move of white. If r
// is legal after m, and white has no mate in one after m and r, then m does not mate in two. Over a
// whole list of moves m the same r mostly refutes nearly all of them, and most of what is to be found
// out is the same each time.
//
// The idea. Play r first, as if white had passed, and call the position Q. As long as m does not
// touch r (it neither takes the man that moves, nor stands on its way or its goal, nor moves the man
// that r takes) and does not check the black king of Q, r is legal after m, and the position after
// m and r is the one after r and m. So m is refuted by r if, in Q, no second move q of white after m
// mates. That is decided for all destinations of one man at once. Take the man off; then q is
//   - a move of another man that checks. It leaves some of the king's flights open: the first move
//     must cover all of them from its destination, for nothing else has changed. If it leaves none
//     open, black must have a man that takes the checker or comes between; then the first move must
//     stop every such man, by taking it, by standing in its way, or by pinning it;
//   - a second move of the same man, which must cover alone what the others leave open;
//   - a check discovered from a line that the first move has only just armed.
// Whatever meets one of these conditions "may mate" and is searched as usual; all else is refuted.
//
// Why it is sound. Taking the man off opens every line that its leaving could open, and its
// destination can only close lines again. The lists of flights left open and of defenders are
// therefore true for every destination, except for what the destination itself covers, takes, blocks
// or pins, which is what the conditions allow for. Whether white's moves are legal is never asked:
// moves too many only make the filter weaker. Castling positions, replies that castle or make a
// double step, and promotions of white are not judged.
//
// The measure of the idea: in Loyd's four-mover of 1856 it takes away half of the moves in nodes that
// ask for mate in two.
#include "core/reply_filter.h"

#include "core/rights.h"

#include <cstring>

namespace quillmere {
namespace {

constexpr TSquareSet kNoSquares = 0;
constexpr TSquareSet kAllSquares = ~TSquareSet{0};

// White can castle, or its king and rook stand as if it could.
bool HasCastlingMen(const u8* board) {
    return board[kSquareE1] == kWhiteKing &&
           (board[kSquareA1] == kWhiteRook || board[kSquareH1] == kWhiteRook);
}

// A pseudo-legal black move that is neither a castling nor a double step.
bool IsPlainBlackMove(const u8* board, TMove move) {
    const int from = move.from;
    const int to = move.to;
    const u8 figure = board[from];
    if (from == to || !IsBlack(figure) || IsBlack(board[to]) || board[to] == kWhiteKing)
        return false;
    if (figure != kBlackPawn)
        return move.Promotion() == 0 && (Relation(from, to) & KindOf(figure)) != 0 &&
               ((figure & kQueen) == 0 || IsLineClear(board, from, to, LineStep(from, to)));
    if ((RankOf(to) == 0) != (move.Promotion() != 0))
        return false;
    if (board[to] == 0)
        return from - to == 8;
    return (from - to == 7 || from - to == 9) && KingDistance(from, to) == 1;
}

}  // namespace

// The moves of one man, on the board after the reply and with the man off it.
class CReplyFilter::CAnalysis {
public:
    // `board` is the board after the reply, with its map; it is changed while the object lives.
    CAnalysis(u8* board, const TAttackMap& map, int from)
        : m_board(board),
          m_from(from),
          m_self(SetOf(from)),
          m_kind(KindOf(board[from])),
          m_figure(board[from]),
          m_targets(TargetsOfMan(map)) {
        m_board[from] = 0;
        m_isQuiet = m_map.BuildWithout(map, from);
    }
    ~CAnalysis() { m_board[m_from] = m_figure; }
    CAnalysis(const CAnalysis&) = delete;
    CAnalysis& operator=(const CAnalysis&) = delete;

    // The destinations after which a mate may follow.
    TSquareSet Run(TSquareSet touched) {
        // A man that alone stands between a slider and the king, and pawns that promote now or
        // next, are not judged.
        if (!m_isQuiet || (m_kind == kPawn && RankOf(m_from) >= 5))
            return kAllSquares;
        m_mayMate = touched | ~m_targets;
        AllowChecks();
        AllowBatteries();
        AllowSecondSteps();
        for (int i = 0; i < m_map.manCount && Open() != 0; ++i)
            AddChecksOf(m_map.men[i]);
        return m_mayMate;
    }

private:
    // Destinations that are not yet known to be worth a look.
    TSquareSet Open() const { return m_targets & ~m_mayMate; }

    TSquareSet TargetsOfMan(const TAttackMap& map) const {
        const TSquareSet attacks = WhiteAttacks(m_kind, m_from, map.occupied);
        if (m_kind != kPawn)
            return attacks & ~map.white;
        const TSquareSet step = (m_self << 8) & ~map.occupied;
        const TSquareSet twice = RankOf(m_from) == 1 ? (step << 8) & ~map.occupied : kNoSquares;
        return (attacks & map.black) | step | twice;
    }

    // A first move that checks the king takes the reply away, or does so by standing next to it.
    void AllowChecks() {
        m_mayMate |= m_kind == kKing ? m_map.zone : m_map.checkSquares[ZoneIndex(m_kind)];
    }

    // The man comes behind another one on a line to the king, or takes the black man that stood in
    // front of an own slider.
    void AllowBatteries() {
        for (int d = 0; d < kDirections; ++d) {
            const TSquareSet first = RayAttacks(m_map.king, d, m_map.occupied) & m_map.occupied;
            if (first == 0)
                continue;
            const TSquareSet behind = RayAttacks(FirstOf(first), d, m_map.occupied);
            if ((first & m_map.white) != 0) {
                if ((m_kind & kSliderBit[d]) != 0)
                    m_mayMate |= behind;
            } else if (IsSlider(behind & m_map.white, kSliderBit[d])) {
                m_mayMate |= first;
            }
        }
    }

    bool IsSlider(TSquareSet man, u8 bit) const {
        return man != 0 && (m_board[FirstOf(man)] & bit) != 0;
    }

    // Destinations from which the same man could mate by its next move.
    void AllowSecondSteps() {
        if (m_kind == kKing)
            return;
        if (m_kind == kPawn) {
            const TSquareSet checks = m_map.checkSquares[ZoneIndex(kPawn)];
            m_mayMate |= ((checks & ~m_map.occupied) >> 8) | WhitePawnSources(checks & m_map.black);
            return;
        }
        const TSquareSet places = MatingPlaces(m_map.occupied, m_map.covered);
        for (TSquareSet rest = places; rest != 0 && Open() != 0; rest &= rest - 1)
            m_mayMate |= WhiteAttacks(m_kind, FirstOf(rest), m_map.occupied);
        ForEachSquare(Open() & m_map.black, [this](int taken) { AllowSecondStepFrom(taken); });
    }

    // The man took a black one and goes on: the square where that one stood is empty then.
    void AllowSecondStepFrom(int taken) {
        const TSquareSet occupied = m_map.occupied & ~SetOf(taken);
        const TSquareSet lifted = occupied & ~m_map.kingSet;
        TSquareSet cover = m_map.covered;
        for (int i = 0; i < m_map.sliderCount; ++i) {
            const TAttackMap::TMan& slider = m_map.men[m_map.sliders[i]];
            if ((slider.attacks & SetOf(taken)) != 0)
                cover |= SliderAttacks(slider.kind, slider.square, lifted);
        }
        const TSquareSet free = m_map.zone & ~(m_map.black & ~SetOf(taken));
        TSquareSet places = WhiteSources(m_kind, m_map.king, occupied) & ~m_map.white &
                            (~m_map.zone | cover) & WhiteAttacks(m_kind, taken, occupied);
        for (TSquareSet open = free & ~cover; open != 0 && places != 0; open &= open - 1)
            places &= WhiteSources(m_kind, FirstOf(open), lifted);
        if (places != 0)
            m_mayMate |= SetOf(taken);
    }

    // Squares on which the man would check and cover all flights that `cover` leaves open.
    TSquareSet MatingPlaces(TSquareSet occupied, TSquareSet cover) const {
        TSquareSet places =
            m_map.checkSquares[ZoneIndex(m_kind)] & ~m_map.white & (~m_map.zone | cover);
        const TSquareSet lifted = occupied & ~m_map.kingSet;
        for (TSquareSet open = m_map.free & ~cover; open != 0 && places != 0; open &= open - 1)
            places &= WhiteAttacks(m_kind, FirstOf(open), lifted);
        return places;
    }

    void AddChecksOf(const TAttackMap::TMan& man) {
        m_map.ForEachCheckOf(man, [this, &man](const TAttackMap::TCheck& check) {
            AddCheck(check, m_map.CoverWithout(man));
            return Open() == 0;
        });
    }

    void AddCheck(const TAttackMap::TCheck& check, TSquareSet cover) {
        const TSquareSet to = SetOf(check.to);
        const TSquareSet lifted = m_map.lifted & ~SetOf(check.from);
        const TSquareSet flights =
            (m_map.free | (to & m_map.zone)) & ~cover & ~WhiteAttacks(check.kind, check.to, lifted);
        TSquareSet places = Open();
        if (flights == 0) {
            places &= StopsOf(check);
        } else {
            for (TSquareSet rest = flights; rest != 0 && places != 0; rest &= rest - 1)
                places &= WhiteSources(m_kind, FirstOf(rest), lifted);
        }
        m_mayMate |= places;
    }

    // The king has no step after this check: where must white's first move go so that no black man
    // can take the checker or come between?
    TSquareSet StopsOf(const TAttackMap::TCheck& check) const {
        TSquareSet stops = kAllSquares;
        m_map.AnyDefender(check, [this, &stops](int from, TSquareSet goals) {
            const TSquareSet pins = LineBit(m_map.king, from) != 0 && (m_kind & kQueen) != 0
                                        ? kSetTables.beyond[m_map.king][from]
                                        : kNoSquares;
            ForEachSquare(goals, [&stops, from, pins](int goal) {
                stops &= kSetTables.between[from][goal] | pins | SetOf(from);
            });
            return stops == 0;
        });
        return stops;
    }

    u8* m_board;
    int m_from;
    TSquareSet m_self;
    u8 m_kind;
    u8 m_figure;
    bool m_isQuiet = false;
    TSquareSet m_targets = 0;
    TSquareSet m_mayMate = 0;
    TAttackMap m_map;
};

bool CReplyFilter::Build(const TChessboard& node, TMove reply) {
    const u8* board = node.m_board;
    if (HasCastlingMen(board) || !IsPlainBlackMove(board, reply))
        return false;
    m_reply = reply;
    std::memcpy(m_board, board, sizeof m_board);
    const u8 figure = board[reply.from];
    m_board[reply.from] = 0;
    m_board[reply.to] = reply.Promotion() != 0 ? kBlack | reply.Promotion() : figure;
    const int king = figure == kBlackKing ? reply.to : node.BlackKingSquare();
    if (!m_map.Build(m_board, king))
        return false;  // the reply is illegal if white passes
    m_touched = SetOf(reply.from) | SetOf(reply.to) | kSetTables.between[reply.from][reply.to];
    const int passed = DoubleStepSquare(node);
    if (passed != kNoSquare && IsBlack(board[passed]))
        m_touched |= SetOf(passed + 8);
    // A white man that the reply takes changes it by any move.
    m_known = SetOf(reply.to);
    m_mayMate[reply.to] = kAllSquares;
    return true;
}

// A pass is touched by nothing. En passant captures are no destinations of the analysis, so that they
// may always mate.
bool CReplyFilter::BuildPass(const TChessboard& node) {
    if (HasCastlingMen(node.m_board))
        return false;
    m_reply = MakeMove(0, 0);
    std::memcpy(m_board, node.m_board, sizeof m_board);
    if (!m_map.Build(m_board, node.BlackKingSquare()))
        return false;
    m_touched = 0;
    m_known = 0;
    return true;
}

void CReplyFilter::Analyse(int from) {
    m_known |= SetOf(from);
    m_mayMate[from] = CAnalysis(m_board, m_map, from).Run(m_touched);
}

}  // namespace quillmere

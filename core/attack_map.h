// White's men around the black king as sets of squares: what they attack, which moves check, and
// what black could do against a check.
//
// A map is built for one position with white to move and black not in check, and then answers many
// questions about single white moves without making them. All answers about a move take it as
// pseudo-legal; whether it leaves the white king attacked is not asked.
#pragma once

#include "core/chessboard.h"
#include "core/king_zone.h"
#include "core/square_set.h"

#include <algorithm>
#include <iterator>

namespace quillmere {

struct TAttackMap {
    struct TMan {
        u8 square;
        u8 kind;
        TSquareSet attacks;  // with the black king lifted
    };
    // A composed position may hold more men than a game.
    static constexpr int kMaxMen = 63;

    const u8* board;
    int king;
    TSquareSet kingSet;
    TSquareSet white;
    TSquareSet black;
    TSquareSet occupied;
    TSquareSet lifted;  // occupied, the black king taken off
    TSquareSet zone;    // squares next to the king
    TSquareSet free;    // of them, those that black does not hold
    TSquareSet covered;
    TSquareSet coveredTwice;
    // Squares from which a man checks, by ZoneIndex of its kind. White kings never do.
    TSquareSet checkSquares[6];
    // White men that alone stand between an own slider and the king, and that slider by direction.
    TSquareSet discoverers;
    u8 discoveredBy[kDirections];
    int manCount;
    int sliderCount;
    TMan men[kMaxMen];
    u8 sliders[kMaxMen];  // indices of men

    // `squares` is the board of the position; it must outlive the map. False if black is in check.
    bool Build(const u8* squares, int blackKing);

    // The map of the same board without the white man on the square, which the caller has emptied
    // and keeps empty while this map is used. False if black is in check then.
    bool BuildWithout(const TAttackMap& whole, int square);

    TSquareSet Flights() const { return free & ~covered; }

    // The king's line through the square, without the king's own.
    TSquareSet LineOf(int square) const {
        return kSetTables.between[king][square] | kSetTables.beyond[king][square];
    }

    // A white move, and how it checks.
    struct TCheck {
        u8 from;
        u8 to;
        u8 kind;  // of the man on `to`
        bool isDirect;
        bool isDiscovered;
    };

    // What the other white men attack at most once this one has left its square.
    TSquareSet CoverWithout(const TMan& man) const {
        const TSquareSet self = SetOf(man.square);
        TSquareSet cover = coveredTwice | (covered & ~man.attacks);
        if ((covered & self) == 0)
            return cover;
        for (int i = 0; i < sliderCount; ++i) {
            const TMan& slider = men[sliders[i]];
            if ((slider.attacks & self) != 0)
                cover |= SliderAttacks(slider.kind, slider.square, lifted & ~self);
        }
        return cover;
    }

    // Calls visit(TCheck) for every check of the man until it returns true. Promotions come as
    // queen and knight; castling and en passant captures are left out.
    template <class TVisit>
    bool ForEachCheckOf(const TMan& man, TVisit visit) const;

    // A black man other than the king can take the only checker or come between. En passant
    // captures are left out, and double checks answer false. Calls visit(from, squares it may go
    // to) for each such man until it returns true.
    template <class TVisit>
    bool AnyDefender(const TCheck& check, TVisit visit) const;

private:
    void AddMen();
    void CountCover();
    void AddLines();
    TSquareSet BlackGoals(int from, TSquareSet occ, TSquareSet take, TSquareSet block) const;
    bool IsPinned(int square, TSquareSet occ, const TCheck& check) const;
};

template <class TVisit>
bool TAttackMap::ForEachCheckOf(const TMan& man, TVisit visit) const {
    const TSquareSet self = SetOf(man.square);
    TSquareSet targets = man.attacks & ~white & ~kingSet;
    if (man.kind == kPawn) {
        const TSquareSet step = (self << 8) & ~occupied;
        targets = (targets & black) | step;
        if (RankOf(man.square) == 1)
            targets |= (step << 8) & ~occupied;
    }
    const TSquareSet discovered =
        (discoverers & self) != 0 ? targets & ~LineOf(man.square) : TSquareSet{0};
    const auto report = [&](int to, u8 kind, bool isDirect) {
        return visit(
            TCheck{man.square, static_cast<u8>(to), kind, isDirect, (discovered & SetOf(to)) != 0});
    };
    if (man.kind == kPawn && RankOf(man.square) == 6) {
        for (; targets != 0; targets &= targets - 1) {
            const int to = FirstOf(targets);
            for (const u8 kind : {kQueen, kKnight}) {
                const bool isDirect = (WhiteAttacks(kind, to, lifted & ~self) & kingSet) != 0;
                if ((isDirect || (discovered & SetOf(to)) != 0) && report(to, kind, isDirect))
                    return true;
            }
        }
        return false;
    }
    const TSquareSet direct = targets & checkSquares[ZoneIndex(man.kind)];
    for (TSquareSet rest = direct | discovered; rest != 0; rest &= rest - 1) {
        const int to = FirstOf(rest);
        if (report(to, man.kind, (direct & SetOf(to)) != 0))
            return true;
    }
    return false;
}

// Direction index from one square to another of the same line.
inline int DirectionOf(int from, int to) {
    return kSetTables.direction[from][to];
}

inline bool TAttackMap::Build(const u8* squares, int blackKing) {
    board = squares;
    king = blackKing;
    kingSet = SetOf(king);
    TakeMen(board, &white, &black);
    occupied = white | black;
    lifted = occupied & ~kingSet;
    zone = kSetTables.king[king];
    free = zone & ~black;
    AddMen();
    AddLines();
    return (covered & kingSet) == 0;
}

inline bool TAttackMap::BuildWithout(const TAttackMap& whole, int square) {
    const TSquareSet self = SetOf(square);
    board = whole.board;
    king = whole.king;
    kingSet = whole.kingSet;
    white = whole.white & ~self;
    black = whole.black;
    occupied = whole.occupied & ~self;
    lifted = whole.lifted & ~self;
    zone = whole.zone;
    free = whole.free;
    manCount = 0;
    sliderCount = 0;
    for (int i = 0; i < whole.manCount; ++i) {
        TMan man = whole.men[i];
        if (man.square == square)
            continue;
        if ((man.kind & kQueen) != 0) {
            if ((man.attacks & self) != 0)
                man.attacks = SliderAttacks(man.kind, man.square, lifted);
            sliders[sliderCount++] = static_cast<u8>(manCount);
        }
        men[manCount++] = man;
    }
    CountCover();
    if (LineBit(king, square) != 0) {
        AddLines();
    } else {
        std::copy(std::begin(whole.checkSquares), std::end(whole.checkSquares), checkSquares);
        std::copy(std::begin(whole.discoveredBy), std::end(whole.discoveredBy), discoveredBy);
        discoverers = whole.discoverers;
    }
    return (covered & kingSet) == 0;
}

inline void TAttackMap::CountCover() {
    covered = 0;
    coveredTwice = 0;
    for (int i = 0; i < manCount; ++i) {
        coveredTwice |= covered & men[i].attacks;
        covered |= men[i].attacks;
    }
}

inline void TAttackMap::AddMen() {
    manCount = 0;
    sliderCount = 0;
    ForEachSquare(white, [this](int square) {
        const u8 kind = KindOf(board[square]);
        const TSquareSet attacks = WhiteAttacks(kind, square, lifted);
        if ((kind & kQueen) != 0)
            sliders[sliderCount++] = static_cast<u8>(manCount);
        men[manCount++] = {static_cast<u8>(square), kind, attacks};
    });
    CountCover();
}

inline void TAttackMap::AddLines() {
    TSquareSet seen[2] = {};
    discoverers = 0;
    for (int d = 0; d < kDirections; ++d) {
        const TSquareSet line = RayAttacks(king, d, occupied);
        seen[kSliderBit[d] == kRook ? 1 : 0] |= line;
        const TSquareSet first = line & white;
        if (first == 0)
            continue;
        const TSquareSet second = RayAttacks(FirstOf(first), d, occupied) & white;
        if (second == 0)
            continue;
        const int square = FirstOf(second);
        if ((board[square] & kSliderBit[d]) != 0) {
            discoverers |= first;
            discoveredBy[d] = static_cast<u8>(square);
        }
    }
    checkSquares[ZoneIndex(kKing)] = 0;
    checkSquares[ZoneIndex(kPawn)] = WhitePawnSources(kingSet);
    checkSquares[ZoneIndex(kBishop)] = seen[0];
    checkSquares[ZoneIndex(kRook)] = seen[1];
    checkSquares[ZoneIndex(kQueen)] = seen[0] | seen[1];
    checkSquares[ZoneIndex(kKnight)] = kSetTables.knight[king];
}

inline TSquareSet
TAttackMap::BlackGoals(int from, TSquareSet occ, TSquareSet take, TSquareSet block) const {
    const u8 kind = KindOf(board[from]);
    if (kind != kPawn)
        return WhiteAttacks(kind, from, occ) & (take | block);
    const TSquareSet self = SetOf(from);
    const TSquareSet attacks = ((self & ~kFileA) >> 9) | ((self & ~kFileH) >> 7);
    const TSquareSet step = (self >> 8) & ~occ;
    const TSquareSet twice = RankOf(from) == 6 ? (step >> 8) & ~occ : TSquareSet{0};
    return (attacks & take) | ((step | twice) & block);
}

inline bool TAttackMap::IsPinned(int square, TSquareSet occ, const TCheck& check) const {
    const u8 bit = LineBit(king, square);
    if (bit == 0 || (kSetTables.between[king][square] & occ) != 0)
        return false;
    const TSquareSet behind = RayAttacks(square, DirectionOf(king, square), occ) & occ;
    if (behind == 0)
        return false;
    const int pinner = FirstOf(behind);
    const u8 figure = pinner == check.to ? kWhite | check.kind : board[pinner];
    const u8 mask = kWhite | bit;
    return (figure & mask) == mask;
}

template <class TVisit>
bool TAttackMap::AnyDefender(const TCheck& check, TVisit visit) const {
    if (check.isDirect && check.isDiscovered)
        return false;
    const TSquareSet occ = (occupied & ~SetOf(check.from)) | SetOf(check.to);
    int checker = check.to;
    u8 checkerKind = check.kind;
    if (!check.isDirect) {
        checker = discoveredBy[DirectionOf(king, check.from)];
        checkerKind = KindOf(board[checker]);
    }
    const TSquareSet take = SetOf(checker);
    const TSquareSet block =
        (checkerKind & kQueen) != 0 ? kSetTables.between[king][checker] : TSquareSet{0};
    // Men that could get there on an empty board.
    for (TSquareSet rest = black & ~kingSet & ~SetOf(check.to); rest != 0; rest &= rest - 1) {
        const int from = FirstOf(rest);
        const TSquareSet goals = BlackGoals(from, occ, take, block);
        if (goals != 0 && !IsPinned(from, occ, check) && visit(from, goals))
            return true;
    }
    return false;
}

}  // namespace quillmere

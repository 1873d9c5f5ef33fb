// What a proof-number search remembers of the nodes that it met (search/proof_number.h).
//
// Two hash tables. One holds what is settled of a position: mate within so many half-moves, and no
// mate within so many. The other holds the numbers of a node that is still open, for its position
// and its half-moves together; with the half-moves in the key the searched graph has no cycles, so
// that no repetition can spoil a number. Keys are whole positions, never a hash alone: a proof does
// not rest on luck.
//
// A mate is a mate under every word of heuristics, so it is kept for the bare position. Everything
// else is kept for position and word. "No mate" therefore means that the search under this word found
// none; who wants an exact "no mate" must know that nothing was left out.
//
// The tables grow as they fill, up to a number of bytes; from then on, and where memory is refused,
// what cost least is overwritten. Nothing here throws but the constructor.
//
// Threads: one.
#pragma once

#include "core/chessboard.h"

#include <cstddef>
#include <vector>

namespace quillmere {

// A node with its side to move and its rights and, in the upper half of the last word, its word of
// heuristics.
struct TProofKey {
    u64 squares[4] = {};
    u64 rest = 0;

    // The position alone.
    TProofKey Bare() const;
    // The same node in a search of this width (search/proof_number.h); 0 for none.
    TProofKey WithWidth(int width) const;
    u64 Hash() const;
    bool operator==(const TProofKey&) const = default;
};
TProofKey ProofKeyOf(const TChessboard& node);

// How many leaves must still be proved to prove (disprove) the node; 0 is settled.
struct TProofNumbers {
    u32 proof = 1;
    u32 disproof = 1;

    bool IsSettled() const { return proof == 0 || disproof == 0; }
};
constexpr u32 kProofInfinity = 1'000'000'000;
constexpr TProofNumbers kProved{0, kProofInfinity};
constexpr TProofNumbers kDisproved{kProofInfinity, 0};

// A table of clusters with entries that know their hash, their worth, and whether they are used.
template <class TEntry>
class CClusterTable {
public:
    explicit CClusterTable(std::size_t byteLimit);

    // The entry for which isSame answers true, or null.
    template <class Match>
    const TEntry* Find(u64 hash, Match isSame) const;
    // The same, or a place for a new entry: an unused one or the one of least worth, emptied.
    template <class Match>
    TEntry& Place(u64 hash, Match isSame);

private:
    static constexpr std::size_t kCluster = 4;
    static constexpr std::size_t kFirstSize = std::size_t{1} << 12;

    TEntry* ClusterOf(u64 hash) {
        return m_entries.data() + (hash & (m_entries.size() - 1) & ~(kCluster - 1));
    }
    TEntry& FreePlace(u64 hash);
    void Grow();

    std::vector<TEntry> m_entries;
    std::size_t m_used = 0;
    std::size_t m_sizeLimit;
};

class CProofTable {
public:
    // Of both tables together; at least some hundred kilobytes are taken. Throws std::bad_alloc.
    explicit CProofTable(std::size_t byteLimit);

    // What is settled of the node; false if nothing is.
    bool FindSettled(const TProofKey& key, int halfMoves, TProofNumbers* numbers) const;
    // That, or the numbers that were stored; false if nothing is known.
    bool Find(const TProofKey& key, int halfMoves, TProofNumbers* numbers) const;
    // The numbers that the position was left with last, open, whatever its half-moves were; false if
    // it was never stored open. The best guess for a node that was never searched: a line that comes
    // back to a position looks as hard as it is, not as easy as something new.
    bool FindHint(const TProofKey& key, TProofNumbers* numbers) const;
    // `work`: made moves below the node, for the choice of what is overwritten.
    void Store(const TProofKey& key, int halfMoves, TProofNumbers numbers, u64 work);
    // The fewest half-moves within which a mate of the position is known; 0 for none.
    int ShortestMate(const TProofKey& key) const;

private:
    struct TPosition {
        TProofKey key;
        u16 mate = 0;    // half-moves, 0 for none
        u16 noMate = 0;  // the same
        u32 work = 0;
        TProofNumbers hint{0, 0};  // 0 for none

        u64 Hash() const { return key.Hash(); }
        // A mate is part of a proof, and the main line is read from it: it goes last.
        u32 Worth() const { return work / 2 + (mate != 0 ? u32{1} << 31 : 0); }
        bool IsUsed() const { return mate != 0 || noMate != 0 || hint.proof != 0; }
    };
    struct TOpen {
        TProofKey key;
        TProofNumbers numbers;
        u32 work = 0;
        u16 halfMoves = 0;  // 0 for an unused entry

        u64 Hash() const;
        u32 Worth() const { return work; }
        bool IsUsed() const { return halfMoves != 0; }
    };

    const TPosition* FindPosition(const TProofKey& key) const;
    TPosition& PlacePosition(const TProofKey& key, u64 work);

    CClusterTable<TPosition> m_positions;
    CClusterTable<TOpen> m_open;
};

}  // namespace quillmere

#include "search/proof_table.h"

#include "core/rights.h"

#include <algorithm>
#include <array>
#include <bit>
#include <limits>
#include <new>
#include <utility>

namespace quillmere {
namespace {

constexpr u8 kKinds[] = {kKing, kPawn, kKnight, kBishop, kRook, kQueen};

// A figure in four bits; 0 is an empty square.
constexpr std::array<u8, 256> kFigureBits = [] {
    std::array<u8, 256> bits{};
    u8 next = 1;
    for (const u8 kind : kKinds) {
        bits[kWhite | kind] = next++;
        bits[kBlack | kind] = next++;
    }
    return bits;
}();

constexpr int kBareBits = 32;  // of TProofKey::rest; the word stands above

u64 Mixed(u64 value) {
    constexpr u64 kFactor = 0xd6e8feb86659fd93;
    value ^= value >> 32;
    value *= kFactor;
    value ^= value >> 32;
    value *= kFactor;
    return value ^ value >> 32;
}

u64 WordBits(const TChessboard& node) {
    if (node.Heur == 0)
        return 0;
    // Two words that meet here would only share numbers and doubts, never a mate.
    return (Mixed(node.Heur | u64{node.HeurParams} << 32) >> kBareBits | 1) << kBareBits;
}

u64 OpenHash(const TProofKey& key, int halfMoves) {
    constexpr u64 kStep = 0x9e3779b97f4a7c15;
    return Mixed(key.Hash() + static_cast<u64>(halfMoves) * kStep);
}

u32 Saturated(u64 work) {
    return static_cast<u32>(std::min<u64>(work, std::numeric_limits<u32>::max()));
}

}  // namespace

TProofKey TProofKey::Bare() const {
    TProofKey bare = *this;
    bare.rest &= (u64{1} << kBareBits) - 1;
    return bare;
}

TProofKey TProofKey::WithWidth(int width) const {
    TProofKey key = *this;
    if (width != 0)
        key.rest ^= Mixed(static_cast<u64>(width)) << kBareBits;
    return key;
}

u64 TProofKey::Hash() const {
    u64 hash = rest;
    for (const u64 word : squares)
        hash = Mixed(hash ^ word) + word;
    return hash;
}

TProofKey ProofKeyOf(const TChessboard& node) {
    constexpr int kSquaresOfWord = 16;
    constexpr int kBitsOfSquare = 4;
    constexpr int kRightBits = 4;
    constexpr int kSideBit = 16;
    TProofKey key;
    for (int square = 0; square < kSquareCount; ++square) {
        const u64 bits = kFigureBits[node.m_board[square]];
        key.squares[square / kSquaresOfWord] |= bits << square % kSquaresOfWord * kBitsOfSquare;
    }
    const int passant = IsEnPassantPossible(node) ? DoubleStepSquare(node) + 1 : 0;
    key.rest = static_cast<u64>(DerivedCastlingRights(node) | passant << kRightBits |
                                (node.IsWhiteToMove() ? 0 : 1 << kSideBit)) |
               WordBits(node);
    return key;
}

template <class TEntry>
CClusterTable<TEntry>::CClusterTable(std::size_t byteLimit)
    : m_entries(kFirstSize),
      m_sizeLimit(std::max(kFirstSize, std::bit_floor(byteLimit / sizeof(TEntry)))) {}

template <class TEntry>
template <class Match>
const TEntry* CClusterTable<TEntry>::Find(u64 hash, Match isSame) const {
    const TEntry* cluster = const_cast<CClusterTable*>(this)->ClusterOf(hash);
    const TEntry* end = cluster + kCluster;
    const TEntry* found = std::find_if(
        cluster, end, [&isSame](const TEntry& entry) { return entry.IsUsed() && isSame(entry); });
    return found == end ? nullptr : found;
}

template <class TEntry>
template <class Match>
TEntry& CClusterTable<TEntry>::Place(u64 hash, Match isSame) {
    if (const TEntry* found = Find(hash, isSame))
        return const_cast<TEntry&>(*found);
    constexpr std::size_t kFull = 2;  // one place in so many is used
    if (m_used * kFull >= m_entries.size() && m_entries.size() < m_sizeLimit)
        Grow();
    TEntry& place = FreePlace(hash);
    m_used += place.IsUsed() ? 0 : 1;
    place = TEntry{};
    return place;
}

template <class TEntry>
TEntry& CClusterTable<TEntry>::FreePlace(u64 hash) {
    TEntry* cluster = ClusterOf(hash);
    return *std::min_element(cluster, cluster + kCluster, [](const TEntry& a, const TEntry& b) {
        return a.IsUsed() != b.IsUsed() ? b.IsUsed() : a.Worth() < b.Worth();
    });
}

template <class TEntry>
void CClusterTable<TEntry>::Grow() {
    std::vector<TEntry> old;
    try {
        old.resize(m_entries.size() * 2);
    } catch (const std::bad_alloc&) {
        m_sizeLimit = m_entries.size();
        return;
    }
    std::swap(old, m_entries);
    // Each cluster is dealt out to two, so that everything finds a place.
    for (const TEntry& entry : old) {
        if (entry.IsUsed())
            FreePlace(entry.Hash()) = entry;
    }
}

u64 CProofTable::TOpen::Hash() const {
    return OpenHash(key, halfMoves);
}

CProofTable::CProofTable(std::size_t byteLimit)
    : m_positions(byteLimit / 2), m_open(byteLimit - byteLimit / 2) {}

const CProofTable::TPosition* CProofTable::FindPosition(const TProofKey& key) const {
    return m_positions.Find(key.Hash(),
                            [&key](const TPosition& entry) { return entry.key == key; });
}

int CProofTable::ShortestMate(const TProofKey& key) const {
    const TPosition* found = FindPosition(key.Bare());
    return found == nullptr ? 0 : found->mate;
}

bool CProofTable::FindSettled(const TProofKey& key, int halfMoves, TProofNumbers* numbers) const {
    const TProofKey bare = key.Bare();
    const TPosition* found = FindPosition(bare);
    if (found != nullptr && found->mate != 0 && found->mate <= halfMoves) {
        *numbers = kProved;
        return true;
    }
    if (key.rest != bare.rest)
        found = FindPosition(key);
    if (found != nullptr && found->noMate != 0 && found->noMate >= halfMoves) {
        *numbers = kDisproved;
        return true;
    }
    return false;
}

bool CProofTable::Find(const TProofKey& key, int halfMoves, TProofNumbers* numbers) const {
    if (FindSettled(key, halfMoves, numbers))
        return true;
    const TOpen* found = m_open.Find(OpenHash(key, halfMoves), [&](const TOpen& entry) {
        return entry.halfMoves == halfMoves && entry.key == key;
    });
    if (found != nullptr)
        *numbers = found->numbers;
    return found != nullptr;
}

bool CProofTable::FindHint(const TProofKey& key, TProofNumbers* numbers) const {
    const TPosition* found = FindPosition(key);
    if (found == nullptr || found->hint.proof == 0)
        return false;
    *numbers = found->hint;
    return true;
}

CProofTable::TPosition& CProofTable::PlacePosition(const TProofKey& key, u64 work) {
    TPosition& entry =
        m_positions.Place(key.Hash(), [&key](const TPosition& other) { return other.key == key; });
    entry.key = key;
    entry.work = std::max(entry.work, Saturated(work));
    return entry;
}

void CProofTable::Store(const TProofKey& key, int halfMoves, TProofNumbers numbers, u64 work) {
    // 0 half-moves stand for an unused entry, and such a node is judged without a table.
    if (halfMoves == 0)
        return;
    if (!numbers.IsSettled()) {
        TOpen& entry = m_open.Place(OpenHash(key, halfMoves), [&](const TOpen& open) {
            return open.halfMoves == halfMoves && open.key == key;
        });
        entry = TOpen{key, numbers, Saturated(work), static_cast<u16>(halfMoves)};
        PlacePosition(key, work).hint = numbers;
        return;
    }
    const bool isMate = numbers.proof == 0;
    TPosition& entry = PlacePosition(isMate ? key.Bare() : key, work);
    const auto depth = static_cast<u16>(halfMoves);
    if (isMate)
        entry.mate = entry.mate == 0 ? depth : std::min(entry.mate, depth);
    else
        entry.noMate = std::max(entry.noMate, depth);
}

}  // namespace quillmere

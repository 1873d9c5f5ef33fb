#include "bench/register_positions.h"

#include "bench/bench_positions.h"
#include "core/legality.h"
#include "core/make_move.h"
#include "search/register_access.h"

#include <algorithm>
#include <functional>
#include <random>
#include <stdexcept>
#include <string_view>
#include <unordered_set>

namespace quillmere::bench {
namespace {

constexpr u16 kHalfMoves = 11;
constexpr int kShallowest = 3;
constexpr int kReplies = 2;
constexpr int kFirstLength = 4;
constexpr int kLastLength = 12;

class CWalk {
public:
    explicit CWalk(std::vector<TChessboardRegisterItem>& items) : m_items(items) {}

    // Adds positions of the tree below a white node until there are `bound`.
    void WalkWhite(const TChessboard& node, std::size_t bound) {
        if (node.m_nMoves < node.m_nRootMoves && MayUseRegister(node))
            Note(node);
        if (node.m_nMoves <= kShallowest)
            return;
        ForMoves(node, kMaxMoves, [&](TChessboard& child) {
            ForMoves(child, kReplies, [&](TChessboard& reply) {
                if (m_items.size() < bound)
                    WalkWhite(reply, bound);
            });
        });
    }

private:
    static constexpr int kMaxMoves = 1'000;

    void Note(const TChessboard& node) {
        const TChessboardRegisterItem item = MakeRegisterItem(node);
        const std::string_view bytes(reinterpret_cast<const char*>(item.bytes), sizeof(item.bytes));
        // 64 bits tell ten million positions apart well enough; one that is lost does no harm.
        if (m_seen.insert(std::hash<std::string_view>()(bytes)).second)
            m_items.push_back(item);
    }

    template <class FVisit>
    void ForMoves(const TChessboard& node, int most, FVisit visit) {
        TMoveList list;
        TChessboard parent = node;
        list.count = GetLegalMoves(parent, list.moves);
        std::shuffle(list.moves, list.moves + list.count, m_random);
        for (int i = 0; i < std::min<int>(list.count, most); ++i) {
            TChessboard child = parent;
            child.m_parent = &parent;
            const int made = parent.IsWhiteToMove() ? MakeWhiteMoveLegal(child, list[i])
                                                    : MakeBlackMoveLegal(child, list[i]);
            if (made != kMoveMade)
                throw std::logic_error("a legal move was refused");
            visit(child);
        }
    }

    std::vector<TChessboardRegisterItem>& m_items;
    std::unordered_set<std::size_t> m_seen;
    std::mt19937 m_random{2026};
};

std::vector<TChessboardRegisterItem> WalkAll(std::size_t count) {
    std::vector<TClassic> roots;
    for (int length = kFirstLength; length <= kLastLength; ++length) {
        const auto classics = ClassicsOfLength(length);
        roots.insert(roots.end(), classics.begin(), classics.end());
    }
    std::vector<TChessboardRegisterItem> items;
    CWalk walk(items);
    for (std::size_t i = 0; i < roots.size(); ++i) {
        // What small trees leave over, the next ones take.
        CBenchRoot root(roots[i].fen, kHalfMoves);
        walk.WalkWhite(root.Root(), count * (i + 1) / roots.size());
    }
    if (items.size() < count)
        throw std::runtime_error("too few positions");
    return items;
}

}  // namespace

std::vector<TChessboardRegisterItem> TaskPositions(const std::string& fen, std::size_t count) {
    std::vector<TChessboardRegisterItem> items;
    CBenchRoot root(fen, kHalfMoves);
    CWalk(items).WalkWhite(root.Root(), count);
    return items;
}

const std::vector<TChessboardRegisterItem>& SolvePositions(std::size_t count) {
    static std::vector<TChessboardRegisterItem> items;
    static std::size_t walked = 0;
    if (walked < count) {
        items = WalkAll(count);
        walked = count;
    }
    return items;
}

}  // namespace quillmere::bench

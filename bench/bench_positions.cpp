#include "bench/bench_positions.h"

#include "core/fen.h"
#include "core/legality.h"
#include "core/make_move.h"

#include <fstream>
#include <sstream>
#include <stdexcept>

namespace quillmere::bench {
namespace {

// splitmix64
u64 NextRandom(u64& state) {
    state += 0x9e3779b97f4a7c15u;
    u64 word = state;
    word = (word ^ (word >> 30)) * 0xbf58476d1ce4e5b9u;
    word = (word ^ (word >> 27)) * 0x94d049bb133111ebu;
    return word ^ (word >> 31);
}

}  // namespace

std::vector<TClassic> ClassicsOfLength(int fullMoves) {
    std::ifstream file(QUILLMERE_CLASSICS);
    if (!file)
        throw std::runtime_error("cannot read " QUILLMERE_CLASSICS);
    std::vector<TClassic> classics;
    std::string line;
    while (std::getline(file, line)) {
        std::istringstream fields(line);
        TClassic classic;
        std::string moves;
        std::getline(fields, classic.fen, ';');
        std::getline(fields, moves, ';');
        std::getline(fields, classic.author, ';');
        std::getline(fields, classic.year, ';');
        if (moves == std::to_string(fullMoves)) {
            classic.fullMoves = fullMoves;
            classics.push_back(classic);
        }
    }
    return classics;
}

CBenchRoot::CBenchRoot(const std::string& fen, u16 halfMoves) : m_thread(halfMoves) {
    InitBoard(m_root);
    if (!SetFromFENCode(m_root, fen.c_str(), nullptr, nullptr))
        throw std::runtime_error("no FEN code: " + fen);
    m_root.m_searchContext = &m_context;
    m_root.m_threadContext = &m_thread;
    m_root.m_pass = kPassComplete;
    m_thread.rootNode = &m_root;
    SetupAnalysisRoot(m_root, halfMoves, true);
}

CSearchNodes::CSearchNodes(int fullMoves, EKind kind, int count) {
    const u16 halfMoves = static_cast<u16>(HalfMovesOfMate(fullMoves));
    for (const TClassic& classic : ClassicsOfLength(fullMoves))
        m_roots.emplace_back(classic.fen, halfMoves);
    const int last = kind == EKind::kWhiteLastMove ? 1 : 2;
    u64 random = 2026;
    while (static_cast<int>(m_nodes.size()) < count) {
        TChessboard* node = &m_roots[NextRandom(random) % m_roots.size()].Root();
        while (node->m_nMoves > last) {
            TMoveList list;
            list.count = GetLegalMoves(*node, list.moves);
            if (list.count == 0)
                break;
            const TMove move = list[static_cast<int>(NextRandom(random) % list.count)];
            m_line.push_back(*node);
            TChessboard& child = m_line.back();
            child.m_parent = node;
            const bool isWhite = node->IsWhiteToMove();
            if ((isWhite ? MakeWhiteMoveLegal(child, move) : MakeBlackMoveLegal(child, move)) !=
                kMoveMade)
                throw std::logic_error("a legal move was refused");
            node = &child;
        }
        if (node->m_nMoves == last && (kind == EKind::kWhiteLastMove || node->m_blackInCheck >= 0))
            m_nodes.push_back(node);
    }
}

}  // namespace quillmere::bench

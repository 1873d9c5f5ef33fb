// Positions that the benchmarks share.
#pragma once

#include "core/chessboard.h"
#include "core/search_context.h"
#include "core/thread_context.h"

#include <deque>
#include <string>
#include <vector>

namespace quillmere::bench {

struct TClassic {
    std::string fen;
    int fullMoves = 0;
    std::string author;
    std::string year;
};

// The compositions of tests/data/classics.csv with this length.
std::vector<TClassic> ClassicsOfLength(int fullMoves);

// A root with its contexts, ready to be searched.
class CBenchRoot {
public:
    CBenchRoot(const std::string& fen, u16 halfMoves);
    CBenchRoot(const CBenchRoot&) = delete;
    CBenchRoot& operator=(const CBenchRoot&) = delete;

    TChessboard& Root() { return m_root; }
    TThreadContext& Thread() { return m_thread; }

private:
    TSearchContext m_context;
    TThreadContext m_thread;
    TChessboard m_root;
};

// Nodes as a search meets them: from the compositions of the length, down random lines of legal
// moves (seeded, the same in every run).
class CSearchNodes {
public:
    enum class EKind {
        kWhiteLastMove,  // white to move, the mate-in-one test is asked
        kBlackInCheck,   // black to move and in check, the mate test is asked
    };
    CSearchNodes(int fullMoves, EKind kind, int count);

    std::vector<TChessboard*>& Nodes() { return m_nodes; }

private:
    std::deque<CBenchRoot> m_roots;
    std::deque<TChessboard> m_line;
    std::vector<TChessboard*> m_nodes;
};

}  // namespace quillmere::bench

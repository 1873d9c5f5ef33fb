// Sets the played moves of a problem aside while its root is solved.
//
// A file may hold a problem with moves played from its position, and a user may stand anywhere in a
// line; what is solved in a batch is the root. The nodes do not move meanwhile, and come back as they
// were on every way out.
#pragma once

#include "problems/chess_problem.h"

#include <deque>
#include <utility>

namespace quillmere {

class CParkedLine {
public:
    explicit CParkedLine(TChessProblem& problem)
        : m_problem(problem), m_currentNode(problem.currentNode) {
        m_nodes.swap(problem.playedNodes);
        problem.GoToStart();
    }
    ~CParkedLine() {
        m_problem.GoToStart();
        m_problem.playedNodes.swap(m_nodes);
        m_problem.currentNode = m_currentNode;
    }
    CParkedLine(const CParkedLine&) = delete;
    CParkedLine& operator=(const CParkedLine&) = delete;

private:
    TChessProblem& m_problem;
    std::deque<TChessboard> m_nodes;
    TChessboard* m_currentNode;
};

}  // namespace quillmere

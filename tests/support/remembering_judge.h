// The judge with a memory, for tasks that are too long for the brute force.
//
// Plays by the rules of reference.h and remembers of every position up to which length white does
// not mate, and from which length on it does. Without a rule that looks back at the game these are
// facts of the position alone: castling rights and en passant are fields of it.
#pragma once

#include "tests/support/judged_solve.h"
#include "tests/support/reference.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

namespace quillmere::bridge {

class CRememberingJudge {
public:
    explicit CRememberingJudge(std::uint64_t moveLimit) : m_movesLeft(moveLimit) {}

    // As CBruteForce::WhiteMates; throws COutOfMoves.
    bool WhiteMates(const reference::TPosition& position, int halfMoves) {
        if (halfMoves == 0)
            return reference::IsMate(position);
        const std::string key = KeyOf(position);
        if (const auto found = m_known.find(key); found != m_known.end()) {
            if (halfMoves <= found->second.noMate)
                return false;
            if (halfMoves >= found->second.mate)
                return true;
        }
        const bool isMate = position.isWhiteToMove ? WhiteNode(position, halfMoves)
                                                   : BlackNode(position, halfMoves);
        TKnown& known = m_known[key];
        if (isMate)
            known.mate = std::min(known.mate, halfMoves);
        else
            known.noMate = std::max(known.noMate, halfMoves);
        return isMate;
    }

private:
    struct TKnown {
        int noMate = -1;
        int mate = 1000;
    };

    static std::string KeyOf(const reference::TPosition& position) {
        std::string key(position.squares, position.squares + 64);
        for (const bool right : position.rights)
            key += right ? '1' : '0';
        key += static_cast<char>('a' + position.enPassantFile);
        key += position.isWhiteToMove ? 'w' : 'b';
        return key;
    }
    void CountMove() {
        if (m_movesLeft == 0)
            throw reference::COutOfMoves();
        --m_movesLeft;
    }
    bool WhiteNode(const reference::TPosition& position, int halfMoves) {
        const auto moves = reference::LegalMoves(position);
        return std::any_of(moves.begin(), moves.end(), [&](reference::TPlainMove move) {
            CountMove();
            return WhiteMates(reference::After(position, move), halfMoves - 1);
        });
    }
    bool BlackNode(const reference::TPosition& position, int halfMoves) {
        const auto moves = reference::LegalMoves(position);
        if (moves.empty())
            return reference::IsInCheck(position, false);
        return std::all_of(moves.begin(), moves.end(), [&](reference::TPlainMove move) {
            CountMove();
            return WhiteMates(reference::After(position, move), halfMoves - 1);
        });
    }

    std::uint64_t m_movesLeft;
    std::unordered_map<std::string, TKnown> m_known;
};

// As Judge, with a memory.
inline std::optional<TJudgement>
JudgeFar(const reference::TPosition& position, int halfMoves, std::uint64_t moveLimit) {
    try {
        CRememberingJudge judge(moveLimit);
        TJudgement judgement;
        for (const reference::TPlainMove move : reference::LegalMoves(position)) {
            const bool isMate = judge.WhiteMates(reference::After(position, move), halfMoves - 1);
            if (isMate && position.isWhiteToMove)
                judgement.keys.push_back(move);
            if (!isMate && !position.isWhiteToMove)
                judgement.defences.push_back(move);
        }
        std::sort(judgement.keys.begin(), judgement.keys.end());
        std::sort(judgement.defences.begin(), judgement.defences.end());
        judgement.isMate = judge.WhiteMates(position, halfMoves);
        judgement.isExact =
            judgement.isMate && (halfMoves < 2 || !judge.WhiteMates(position, halfMoves - 2));
        return judgement;
    } catch (const reference::COutOfMoves&) {
        return std::nullopt;
    }
}

}  // namespace quillmere::bridge

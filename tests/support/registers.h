// Positions, clocks and settings for the tests of registers/.
#pragma once

#include "core/chessboard.h"
#include "registers/aggregated_register.h"
#include "session/options.h"

#include <memory>
#include <string>
#include <vector>

namespace quillmere::test {

// Boards for keys, told apart by their number: a pawn on one of the squares a5 to h8 for each of its
// bits. The white king's square follows from it too, so that hashes of all remainders occur.
inline TChessboard NumberedBoard(u32 number, u16 nMoves = 9) {
    constexpr int kFirstSquare = 32;
    constexpr u32 kKingSquares = 31;
    TChessboard board;
    InitBoard(board);
    board.m_board[number % kKingSquares] = kWhiteKing;
    board.m_board[kKingSquares] = kBlackKing;
    for (int bit = 0; bit < 32; ++bit) {
        if ((number >> bit & 1) != 0)
            board.m_board[kFirstSquare + bit] = kWhitePawn;
    }
    board.m_nMoves = nMoves;
    return board;
}

inline TChessboardRegisterItem NumberedItem(u32 number) {
    return MakeRegisterItem(NumberedBoard(number));
}

// A clock that goes only when told to.
class CTestClock {
public:
    u64 Now() const { return *m_now; }
    void Advance(u64 milliseconds) { *m_now += milliseconds; }
    std::function<u64()> Function() const {
        return [now = m_now] { return *now; };
    }

private:
    std::shared_ptr<u64> m_now = std::make_shared<u64>(1'000'000);
};

// Settings that touch nothing outside: no log, no warnings.
inline TRegisterSettings QuietSettings(u64 memoryLimitBytes) {
    TRegisterSettings settings;
    settings.memoryLimitBytes = memoryLimitBytes;
    return settings;
}

constexpr u64 kMegabyte = u64{1} << 20;

// Refuses blocks of memory when told to. Outlives the register that uses it.
class CMemoryGate {
public:
    CRegisterMemory::TMayAllocate Function() {
        return [this](std::size_t) {
            ++m_asked;
            return m_asked != m_refusedOne &&
                   (m_left == kUnlimited || (m_left > 0 && m_left-- > 0));
        };
    }
    void Refuse() { m_left = 0; }
    // `count` more blocks, then none.
    void Allow(int count) { m_left = count; }
    // `count` more blocks, then one refusal, then all.
    void RefuseOneBehind(int count) { m_refusedOne = m_asked + count + 1; }
    void Open() {
        m_left = kUnlimited;
        m_refusedOne = 0;
    }
    // Blocks that were asked for so far, refused ones included.
    int Asked() const { return m_asked; }

private:
    static constexpr int kUnlimited = -1;
    int m_left = kUnlimited;
    int m_asked = 0;
    int m_refusedOne = 0;
};

// Puts the options back at the end of a test.
class CKeptOptions {
public:
    CKeptOptions() = default;
    CKeptOptions(const CKeptOptions&) = delete;
    CKeptOptions& operator=(const CKeptOptions&) = delete;
    ~CKeptOptions() { g_options = m_kept; }

private:
    TOptions m_kept = g_options;
};

// Keeps warnings as English texts.
class CKeptWarnings : public IWarningSink {
public:
    void Warn(EMessage title, EMessage text, const std::vector<std::string>& values) override {
        titles.push_back(FormatMessage(title, ELanguage::kEnglish));
        texts.push_back(FormatMessage(text, ELanguage::kEnglish, values));
    }
    std::vector<std::string> titles;
    std::vector<std::string> texts;
};

}  // namespace quillmere::test

#include "registers/register_item.h"

#include <algorithm>
#include <array>

namespace quillmere {
namespace {

// (i + 1)^2 for every square, at most 4,096: with bytes as the other factor both fit 16 signed bits,
// so that the compiler makes eight multiply-and-add instructions of the sum.
constexpr std::array<i16, kSquareCount> kSquareWeights = [] {
    std::array<i16, kSquareCount> weights{};
    for (int i = 0; i < kSquareCount; ++i)
        weights[static_cast<std::size_t>(i)] = static_cast<i16>((i + 1) * (i + 1));
    return weights;
}();

}  // namespace

TChessboardRegisterItem RegisterItemOfSquares(const u8 (&squares)[kSquareCount]) {
    TChessboardRegisterItem item{};
    std::copy(std::begin(squares), std::end(squares), item.bytes);
    return item;
}

TChessboardRegisterItem MakeRegisterItem(const TChessboard& board) {
    TChessboardRegisterItem item = RegisterItemOfSquares(board.m_board);
    const u8 mode = board.OneColourMode();
    if (mode != kOneColourParity1 && mode != kOneColourParity0)
        return item;
    // At most 31 figures are left without the bishop, so one of the 32 squares is empty.
    for (int square = mode == kOneColourParity1 ? 1 : 0; square < kSquareCount; square += 2) {
        if (item.bytes[square] == 0) {
            item.bytes[square] = kOneColourKeyFigure;
            break;
        }
    }
    return item;
}

u32 Hash(const TChessboardRegisterItem& item) {
    // The greatest sum is 255 * 89,440, so that nothing overflows.
    int sum = 0;
    for (int i = 0; i < kSquareCount; ++i)
        sum += static_cast<i16>(item.bytes[i]) * kSquareWeights[static_cast<std::size_t>(i)];
    return static_cast<u32>(sum);
}

}  // namespace quillmere

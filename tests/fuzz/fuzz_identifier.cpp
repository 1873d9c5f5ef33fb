// Any bytes read three ways: as the printable form of an identifier, as its bits, and as the
// squares of a board.

#include "core/chess_exception.h"
#include "core/chessboard_id.h"
#include "tests/fuzz/fuzz_support.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace quillmere::fuzz {
namespace {

// An identifier is no position and leaves the squares, or its squares name it again.
void TestDecoding(const TChessboardId& id) {
    u8 squares[kSquareCount];
    std::fill(std::begin(squares), std::end(squares), u8{0x55});
    try {
        id.ToBoard(squares);
    } catch (const ChessException& e) {
        Require(e.Id() == EMessage::kWrongChessboardId ||
                    e.Id() == EMessage::kUnknownFigureShortCode,
                "decoding has two faults");
        Require(std::all_of(std::begin(squares), std::end(squares), [](u8 f) { return f == 0x55; }),
                "a refused identifier leaves the squares");
        return;
    }
    TChessboard board;
    InitBoard(board);
    std::copy(std::begin(squares), std::end(squares), board.m_board);
    const TChessboardId again(board);
    Require(again.BitCount() <= id.BitCount(), "encoding adds no bits");
    for (int i = 0; i < again.BitCount(); ++i)
        Require(again.Bit(i) == id.Bit(i), "the bits are the same");
}

void TestText(std::string_view text) {
    TChessboardId id;
    id.AddBit(true);
    const TChessboardId before = id;
    if (!id.FromAlphanum6(text)) {
        Require(id == before, "a refused text leaves the identifier");
        return;
    }
    Require(id.ToAlphanum6() == text, "the text comes back");
    TestDecoding(id);
}

void TestBits(const std::uint8_t* data, std::size_t size) {
    TChessboardId id;
    for (std::size_t i = 0; i < 8 * size; ++i) {
        const bool bit = (data[i / 8] >> (i % 8) & 1) != 0;
        if (i < 320) {
            id.AddBit(bit);
            continue;
        }
        try {
            id.AddBit(bit);
            Require(false, "there is room for 320 bits only");
        } catch (const ChessException& e) {
            Require(e.Id() == EMessage::kIdOverflow, "the overflow has its message");
        }
        break;
    }
    TestDecoding(id);
    TChessboardId again;
    Require(again.FromAlphanum6(id.ToAlphanum6()), "the printable form is read");
    Require(again.ToAlphanum6() == id.ToAlphanum6(), "the printable form comes back");
}

void TestSquares(const std::uint8_t* data, std::size_t size) {
    TChessboard board;
    InitBoard(board);
    std::copy(data, data + std::min<std::size_t>(size, kSquareCount), board.m_board);
    try {
        const TChessboardId id(board);
        u8 squares[kSquareCount];
        id.ToBoard(squares);
        Require(SameSquares(squares, board.m_board), "the squares come back");
    } catch (const ChessException& e) {
        Require(e.Id() == EMessage::kUnknownFigureCode, "encoding has one fault");
    }
}

}  // namespace
}  // namespace quillmere::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    quillmere::fuzz::TestText(std::string_view(reinterpret_cast<const char*>(data), size));
    quillmere::fuzz::TestBits(data, size);
    quillmere::fuzz::TestSquares(data, size);
    return 0;
}

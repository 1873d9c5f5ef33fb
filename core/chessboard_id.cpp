#include "core/chessboard_id.h"

#include "core/chess_exception.h"

#include <algorithm>
#include <cstring>

namespace quillmere {
namespace {

// Figures in the order of their four-bit codes.
constexpr u8 kFigureOfCode[] = {kWhiteKing,
                                kBlackKing,
                                kWhitePawn,
                                kBlackPawn,
                                kWhiteQueen,
                                kBlackQueen,
                                kWhiteRook,
                                kBlackRook,
                                kWhiteBishop,
                                kBlackBishop,
                                kWhiteKnight,
                                kBlackKnight};
constexpr int kCodeCount = 12;
static_assert(sizeof(kFigureOfCode) == kCodeCount);

constexpr int kBitsOfCode = 4;
constexpr int kBitsOfCharacter = 6;
constexpr int kBitRoom = 320;

constexpr char kAlphabet[] = "0123456789abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ()";
constexpr int kAlphabetSize = 1 << kBitsOfCharacter;
static_assert(sizeof(kAlphabet) == kAlphabetSize + 1);

int CodeOf(u8 figure) {
    const u8* end = kFigureOfCode + kCodeCount;
    const u8* found = std::find(kFigureOfCode, end, figure);
    if (found == end)
        throw ChessException(EMessage::kUnknownFigureCode);
    return static_cast<int>(found - kFigureOfCode);
}

char CharacterOf(int value) {
    if (value >= kAlphabetSize)
        throw ChessException(EMessage::kErrorInToAlphanum6);
    return kAlphabet[value];
}

// The value of a character, or -1.
int ValueOf(char character) {
    if (character == '\0')
        return -1;
    const char* found = std::strchr(kAlphabet, character);
    return found == nullptr ? -1 : static_cast<int>(found - kAlphabet);
}

}  // namespace

TChessboardId::TChessboardId(const TChessboard& board) {
    for (const u8 figure : board.m_board) {
        AddBit(figure != 0);
        if (figure == 0)
            continue;
        const int code = CodeOf(figure);
        for (int i = 0; i < kBitsOfCode; ++i)
            AddBit((code >> i & 1) != 0);
    }
}

void TChessboardId::AddBit(bool bit) {
    if (m_bitCount >= kBitRoom)
        throw ChessException(EMessage::kIdOverflow);
    if (bit)
        m_bits[m_bitCount / 8] |= static_cast<u8>(1 << (m_bitCount % 8));
    ++m_bitCount;
}

void TChessboardId::ToBoard(u8 board[kSquareCount]) const {
    u8 decoded[kSquareCount] = {};
    int index = 0;
    for (u8& square : decoded) {
        if (index >= m_bitCount)
            throw ChessException(EMessage::kWrongChessboardId);
        if (!Bit(index++))
            continue;
        if (index + kBitsOfCode > m_bitCount)
            throw ChessException(EMessage::kWrongChessboardId);
        int code = 0;
        for (int i = 0; i < kBitsOfCode; ++i)
            code |= static_cast<int>(Bit(index++)) << i;
        if (code >= kCodeCount)
            throw ChessException(EMessage::kUnknownFigureShortCode);
        square = kFigureOfCode[code];
    }
    std::copy(std::begin(decoded), std::end(decoded), board);
}

std::string TChessboardId::ToAlphanum6() const {
    std::string text;
    for (int start = 0; start < m_bitCount; start += kBitsOfCharacter) {
        int value = 0;
        // The last group may be short; its missing bits are 0.
        const int end = std::min<int>(start + kBitsOfCharacter, m_bitCount);
        for (int index = start; index < end; ++index)
            value |= static_cast<int>(Bit(index)) << (index - start);
        text += CharacterOf(value);
    }
    return text;
}

bool TChessboardId::FromAlphanum6(std::string_view text) {
    TChessboardId id;
    for (const char character : text) {
        const int value = ValueOf(character);
        if (value < 0)
            return false;
        for (int i = 0; i < kBitsOfCharacter; ++i) {
            const bool bit = (value >> i & 1) != 0;
            // The last character of a full identifier carries four bits of filling.
            if (id.m_bitCount < kBitRoom)
                id.AddBit(bit);
            else if (bit || i == 0)
                return false;
        }
    }
    *this = id;
    return true;
}

}  // namespace quillmere

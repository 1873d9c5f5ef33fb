// Any bytes read as moves. The first byte picks a position, each line after it is a text: it is
// refused and leaves everything as it was, or it is a legal move of the node, which comes back from
// its written form and is then played.

#include "core/chess_exception.h"
#include "core/legality.h"
#include "core/notation.h"
#include "tests/fuzz/fuzz_support.h"
#include "tests/support/game_line.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <string>
#include <string_view>

namespace quillmere::fuzz {
namespace {

struct TStart {
    const char* fen;
    u16 halfMoves;
};

constexpr TStart kStarts[] = {
    {test::kStartPosition, 41},
    {"r3k2r/pppppppp/8/8/8/8/PPPPPPPP/R3K2R", 41},
    {"r3k2r/8/8/8/8/8/8/R3K2R", 42},
    {"n1n5/PPPk4/8/8/8/8/4Kppp/5N1N", 41},
    {"8/2p5/3p4/KP5r/1R3p1k/8/4P1P1/8", 42},
    {"4k3/pppppppp/8/8/8/8/PPPPPPPP/4K3", 3},
};

constexpr TMove kUntouched = {11, 22, 0x80, 1};

bool IsUntouched(TMove move) {
    return move.from == kUntouched.from && move.to == kUntouched.to &&
           move.flags == kUntouched.flags && move.enPassant == kUntouched.enPassant;
}

void TestDescription(std::string_view text, bool whiteToMove) {
    TMove move = kUntouched;
    try {
        TextToMove(move, text, whiteToMove);
    } catch (const ChessException&) {
        Require(IsUntouched(move), "a refused description leaves the move");
    }
    try {
        const int square = String2Square(text);
        Require(square >= 0 && square < kSquareCount, "a square is on the board");
    } catch (const ChessException& e) {
        Require(e.Id() == EMessage::kBadSquareText, "a bad square has its message");
    }
}

// True if the text was accepted.
bool TestText(TChessboard& node, std::string_view text, TMove& move) {
    TestDescription(text, node.IsWhiteToMove());
    const std::string before = BytesOf(node);
    move = kUntouched;
    try {
        ParseMove(node, move, text);
    } catch (const ChessException&) {
        Require(BytesOf(node) == before, "a refused text leaves the node");
        Require(IsUntouched(move), "a refused text leaves the move");
        return false;
    }
    Require(BytesOf(node) == before, "an accepted text leaves the node");

    TMoveList list;
    list.count = GetLegalMoves(node, list.moves);
    Require(
        std::any_of(list.begin(), list.end(), [&](TMove legal) { return MovesEqual(legal, move); }),
        "an accepted text is a legal move");

    TMove again = {};
    const std::string written = MoveToText(node, move);
    Require(written.size() < std::size_t{kMoveTextSize}, "the text fits its buffer");
    ParseMove(node, again, written);  // an exception here is a finding
    Require(MovesEqual(again, move), "the written move is the same move");
    return true;
}

void TestLines(std::uint8_t selector, std::string_view text) {
    const TStart& start = kStarts[selector % std::size(kStarts)];
    test::CGameLine line(start.fen, start.halfMoves);
    while (line.Node().m_nMoves > 0) {
        const std::size_t end = text.find('\n');
        TMove move = {};
        if (TestText(line.Node(), text.substr(0, end), move))
            line.Play(move);
        if (end == std::string_view::npos)
            return;
        text.remove_prefix(end + 1);
    }
}

}  // namespace
}  // namespace quillmere::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size > 0) {
        quillmere::fuzz::TestLines(
            data[0], std::string_view(reinterpret_cast<const char*>(data) + 1, size - 1));
    }
    return 0;
}

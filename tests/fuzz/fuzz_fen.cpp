// Any bytes read as a FEN code: a text is refused and leaves the board as it was, or it is read,
// is a legal position, and comes back the same when it is written.

#include "core/chess_exception.h"
#include "core/fen.h"
#include "tests/fuzz/fuzz_support.h"

#include <cstddef>
#include <cstdint>
#include <string>

namespace quillmere::fuzz {
namespace {

bool Read(TChessboard& board, const std::string& text, bool* castlingDenied, bool* enPassant) {
    try {
        return SetFromFENCode(board, text.c_str(), castlingDenied, enPassant);
    } catch (const ChessException& e) {
        Require(e.Id() == EMessage::kUnknownFigureLetter, "only an unknown letter throws");
        return false;
    }
}

void TestText(const std::string& text) {
    TChessboard board;
    InitBoard(board);
    Require(Read(board, "4k3/8/8/8/8/8/8/4K2R", nullptr, nullptr), "a good text is read");
    board.m_nMoves = 5;
    board.m_nRootMoves = 7;
    const std::string before = BytesOf(board);

    bool castlingDenied = false;
    bool enPassantGiven = false;
    const bool isRead = Read(board, text, &castlingDenied, &enPassantGiven);
    Require(isRead == IsValidFENCode(text.c_str()), "both entries agree");
    if (!isRead) {
        Require(BytesOf(board) == before, "a refused text leaves the board");
        Require(!castlingDenied && !enPassantGiven, "a refused text leaves the flags");
        return;
    }
    Require(board.m_nMoves == 5 && board.m_nRootMoves == 7, "the half-moves stay");

    TChessboard validated = board;
    ValidateBoard(validated, true);  // an exception here is a finding
    Require(BytesOf(validated) == BytesOf(board), "the bookkeeping is complete");

    for (const bool boardOnly : {false, true}) {
        const std::string written = GetFENCode(board, boardOnly);
        Require(written.size() < std::size_t{kFenBufferSize}, "the code fits its buffer");
        char buffer[kFenBufferSize];
        GetFENCode(board, buffer, boardOnly, 0);
        Require(written == buffer, "both forms write the same");
        TChessboard again = board;
        bool isDeniedAgain = false;
        bool isGivenAgain = false;
        Require(Read(again, written, &isDeniedAgain, &isGivenAgain), "what was written is read");
        Require(BytesOf(again) == BytesOf(board), "what was written is the same board");
        Require(!isDeniedAgain && !isGivenAgain, "a root writes all its rights");
    }
}

}  // namespace
}  // namespace quillmere::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    quillmere::fuzz::TestText(std::string(reinterpret_cast<const char*>(data), size));
    return 0;
}

// quillmere position: what the program knows of a position.
#include "cli/columns.h"
#include "cli/commands.h"
#include "cli/json.h"
#include "cli/report.h"
#include "core/chessboard_id.h"
#include "core/material.h"
#include "core/notation.h"
#include "core/play_board.h"
#include "core/rights.h"

#include <fmt/format.h>

namespace quillmere {
namespace {

struct TCountRow {
    char letter;
    ECount white;
    ECount black;
};

constexpr TCountRow kCountRows[] = {{'Q', kWhiteQueens, kBlackQueens},
                                    {'R', kWhiteRooks, kBlackRooks},
                                    {'B', kWhiteBishops, kBlackBishops},
                                    {'N', kWhiteKnights, kBlackKnights},
                                    {'P', kWhitePawns, kBlackPawns}};

std::string MaterialText(const TChessboard& board) {
    std::string white = "K";
    std::string black = "K";
    for (const TCountRow& row : kCountRows) {
        white += std::string(board.m_counts[row.white], row.letter);
        black += std::string(board.m_counts[row.black], row.letter);
    }
    return white + "v" + black;
}

std::string RightsText(int rights) {
    constexpr std::string_view kLetters = "KQkq";
    std::string text;
    for (std::size_t i = 0; i < kLetters.size(); ++i) {
        if ((rights >> i & 1) != 0)
            text += kLetters[i];
    }
    return text.empty() ? "-" : text;
}

// Squares of the checkers as words of the JSON: "none", a square, or "double".
std::string CheckWord(i8 check) {
    if (check == kNotInCheck)
        return "none";
    return check == kDoubleCheck ? "double" : SquareToText(check);
}

EMessage StateOf(const CPlayBoard& board, int legalMoves) {
    if (legalMoves == 0)
        return board.IsInCheck() ? EMessage::kStateMate : EMessage::kStateStalemate;
    return board.IsInCheck() ? EMessage::kStateCheck : EMessage::kStateOpen;
}

std::string_view StateWord(EMessage state) {
    switch (state) {
    case EMessage::kStateMate:
        return "mate";
    case EMessage::kStateStalemate:
        return "stalemate";
    case EMessage::kStateCheck:
        return "check";
    default:
        return "open";
    }
}

TJson CountsJson(const TChessboard& board, bool isWhite) {
    TJson json = TJson::object();
    for (const TCountRow& row : kCountRows)
        json[std::string(1, row.letter)] = board.m_counts[isWhite ? row.white : row.black];
    return json;
}

std::string Row(std::string_view label, std::string_view text) {
    constexpr std::size_t kWidth = 15;
    return fmt::format("{}{}\n", PadRight(label, kWidth), text);
}

}  // namespace

EExitCode RunPosition(const TCommandCall& call) {
    const TPosition position = ReadPosition(JoinWords(call.arguments.positionals));
    CheckSideNotToMove(position.board, position.IsBlackToMove());
    CConsole& console = call.console;
    if (position.NeedsCastlingNote())
        console.Note(console.Text(EMessage::kCastlingNote));

    CPlayBoard board(position.board, position.IsBlackToMove());
    const TChessboard& node = board.Node();
    const auto legalMoves = static_cast<int>(board.LegalMoves().size());
    const EMessage state = StateOf(board, legalMoves);
    const i8 check = position.IsBlackToMove() ? node.m_blackInCheck : node.m_whiteInCheck;
    const std::string rights = RightsText(DerivedCastlingRights(node));
    const std::string id = TChessboardId(position.board).ToAlphanum6();

    if (call.arguments.Has("--json")) {
        const TJson json = {{"schema", kSchema},
                            {"fen", WritePosition(position)},
                            {"id", id},
                            {"side", position.IsBlackToMove() ? "black" : "white"},
                            {"check", CheckWord(check)},
                            {"rights", rights},
                            {"white", CountsJson(node, true)},
                            {"black", CountsJson(node, false)},
                            {"material", MaterialText(node)},
                            {"legalMoves", legalMoves},
                            {"state", StateWord(state)}};
        console.Print(JsonLine(json));
        return kExitDone;
    }
    const std::string checkText = check == kNotInCheck ? console.Text(EMessage::kNone)
                                  : check == kDoubleCheck
                                      ? console.Text(EMessage::kCheckDouble)
                                      : console.Text(EMessage::kCheckFrom, {SquareToText(check)});
    std::string out = Diagram(position.board) + "\n";
    out += Row("FEN", WritePosition(position));
    out += Row(console.Text(EMessage::kLabelId), id);
    out += Row(
        console.Text(EMessage::kLabelToMove),
        console.Text(position.IsBlackToMove() ? EMessage::kBlackToMove : EMessage::kWhiteToMove));
    out += Row(console.Text(EMessage::kLabelCheck), checkText);
    out += Row(console.Text(EMessage::kLabelRights), rights);
    out += Row(console.Text(EMessage::kLabelMaterial), MaterialText(node));
    out += Row(
        console.Text(EMessage::kLabelMen),
        console.Text(EMessage::kMenCounts,
                     {std::to_string(CountWhiteMen(node)), std::to_string(CountBlackMen(node))}));
    out += Row(console.Text(EMessage::kLabelLegalMoves), std::to_string(legalMoves));
    out += Row(console.Text(EMessage::kLabelState), console.Text(state));
    console.Print(out);
    return kExitDone;
}

}  // namespace quillmere

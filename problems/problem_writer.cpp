// Every text that is written here reads back as the same problem; what cannot be written so is
// refused, or listed by problems/save_losses.h.

#include "problems/problem_writer.h"

#include "core/chess_exception.h"
#include "core/fen.h"
#include "core/notation.h"
#include "core/rights.h"
#include "core/text.h"
#include "problems/line_text.h"
#include "problems/problem_fields.h"
#include "problems/problem_options.h"

#include <algorithm>

namespace quillmere {
namespace {

constexpr std::string_view kFileHead = "UTF-8\n\n";

[[noreturn]] void Refuse() {
    throw ChessException(EMessage::kErrorSavingToFile);
}

// Head

std::string HeadStart(const TChessProblem& problem) {
    const std::string stipulation = StipulationText(problem);
    if (stipulation.empty() && problem.type != kNoStipulation)
        Refuse();  // there is no word for it that the reader knows
    return std::to_string(problem.number) + " " + stipulation;
}

std::string GuiCheckCount(const TChessProblem& problem) {
    return problem.guiCheckRepeat > 1 ? " " + std::to_string(problem.guiCheckRepeat) : "";
}

std::string ThreadsText(const TChessProblem& problem) {
    std::string text = " " + std::to_string(problem.threads);
    if (problem.areLevelsGiven)
        text += "^" + std::to_string(problem.multithreadingLevels);
    return text;
}

std::string OptionText(const TChessProblem& problem, const TProblemOptionRow& row) {
    const std::string word = " " + std::string(row.written);
    const bool hasFlag = (problem.flags & row.flag) != 0;
    switch (row.kind) {
    case EOptionKind::kFlag:
    case EOptionKind::kUseMainVariant:
        return hasFlag ? word : "";
    case EOptionKind::kGuiCheck:
        return hasFlag ? word + GuiCheckCount(problem) : "";
    case EOptionKind::kThreads:
        return problem.threads < kThreadsNotForced ? word + ThreadsText(problem) : "";
    case EOptionKind::kRequires: {
        std::string text;
        for (const std::string& material : problem.requires_)
            text += word + " " + material;
        return text;
    }
    default:
        return "";
    }
}

std::string HeadText(const TChessProblem& problem) {
    std::string text = HeadStart(problem);
    for (const TProblemOptionRow& row : kProblemOptionRows) {
        if (!row.written.empty())
            text += OptionText(problem, row);
    }
    return text + "\n";
}

// Blocks of lines

std::string TagsText(const TChessProblem& problem) {
    std::string text;
    for (const std::string& tag : problem.tags) {
        const std::string line = OneLine(tag);
        if (!line.empty())
            text += "//#" + line + "\n";
    }
    return text.empty() ? text : "//#TAGS\n" + text;
}

std::string VariantsText(const TChessProblem& problem, bool withComments) {
    if (problem.variants.empty())
        return "";
    std::string text = "//!VARIANTS\n";
    for (const auto& [name, variant] : problem.variants)
        text += "//!" + VariantToText(variant, withComments) + "\n";
    return text + "//!ENDVARIANTS\n";
}

std::string SortIndicationsText(const TChessProblem& problem) {
    std::string list;
    for (const auto& [number, indications] : problem.sortIndications.byMoveNumber) {
        for (const SortIndication& indication : indications)
            list += (list.empty() ? "" : "; ") + SortIndicationToText(indication);
    }
    return list.empty() ? list : "//@SortIndications: " + list + "\n";
}

// Body

std::string FigureList(const TChessboard& board, u8 colour) {
    std::string list;
    for (int square = 0; square < kSquareCount; ++square) {
        const u8 figure = board.m_board[square];
        if ((figure & (kWhite | kBlack)) != colour)
            continue;
        list += list.empty() ? "" : ", ";
        if (KindOf(figure) != kPawn)
            list += LetterFromFigure(figure);
        list += SquareToText(square);
    }
    return list;
}

std::string PositionText(const TChessProblem& problem) {
    if (problem.IsPositionValid())
        return "\tFEN: " + GetFENCode(*problem.position, true) + "\n";
    const std::string white = FigureList(*problem.position, kWhite);
    if (white.empty())
        Refuse();
    return "\tWhite: " + white + "\n\tBlack: " + FigureList(*problem.position, kBlack) + "\n";
}

std::string MovesText(const TChessProblem& problem) {
    if (problem.type != kNoStipulation || problem.playedNodes.empty())
        return "";
    std::string text = "   Moves:    ";
    for (const TChessboard& node : problem.playedNodes)
        text += " " + MoveToText(*node.m_parent, node.m_lastMove);
    return text + "\n";
}

// A square of an answer, which may lie beyond the edge by its rank.
std::string AnswerSquare(u8 square) {
    const int rank = square >= 256 - 8 ? -1 : RankOf(square);
    if (rank > 8)
        Refuse();
    return {static_cast<char>('a' + FileOf(square)), static_cast<char>('1' + rank)};
}

// Long notation by the board, though the move may be none on it. "0-0" reads as white's castling,
// whatever figure moves, so that no other move may be written as such.
std::string AnswerText(const TChessboard& board, TMove move) {
    if (move.from >= kSquareCount)
        Refuse();
    const u8 figure = board.m_board[move.from];
    if (KindOf(figure) == kKing && figure != 0 && move.from == kSquareE1 && move.Promotion() == 0) {
        if (move.to == kSquareG1)
            return "0-0";
        if (move.to == kSquareC1)
            return "0-0-0";
    }
    std::string text;
    if (figure != 0 && KindOf(figure) != kPawn)
        text += LetterFromFigure(figure);
    const bool isCapture = move.to < kSquareCount && !move.IsNull() && IsCapture(board, move);
    text += AnswerSquare(move.from) + (isCapture ? ":" : "-") + AnswerSquare(move.to);
    if (move.Promotion() != 0)
        text += LetterFromFigure(move.Promotion());
    return text;
}

std::string AnswersText(const TChessProblem& problem) {
    if (!problem.Has(kProblemHasAnswer))
        return "";
    std::string list;
    for (const TMove move : problem.answer)
        list += (list.empty() ? "" : ", ") + AnswerText(*problem.position, move);
    return "\tAnswer: " + list + "\n";
}

}  // namespace

std::string WriteProblem(const TChessProblem& problem, bool withComments) {
    if (problem.number < 0)
        Refuse();
    const std::string description = OneLine(problem.description);
    std::string text = HeadText(problem) + TagsText(problem) + VariantsText(problem, withComments) +
                       SortIndicationsText(problem) + "{\n";
    if (!description.empty())
        text += "\tDescription: " + description + "\n";
    return text + PositionText(problem) + MovesText(problem) + AnswersText(problem) + "}\n";
}

std::string WriteProblems(const TProblemCollection& collection, bool withComments) {
    const std::lock_guard guard(collection.lock);
    std::string text(kFileHead);
    for (const auto& [number, problem] : collection.problems)
        text += WriteProblem(*problem, withComments);
    return text;
}

std::string DefaultProblemFile(ELanguage language) {
    return "UTF-8\n1 #2\n{\n\tDesc: " +
           std::string(MessageText(EMessage::kDefaultDescription, language)) +
           "\n\tWhite: Ke1\n\tBlack: Ke8\n}\n";
}

}  // namespace quillmere

#include "cli/report.h"

#include "cli/columns.h"
#include "core/fen.h"
#include "core/play_board.h"
#include "session/session_texts.h"

#include <algorithm>
#include <cmath>
#include <fmt/format.h>

namespace quillmere {
namespace {

constexpr std::size_t kLabelWidth = 9;

// Lines longer than this are broken between moves and go on below their beginning.
constexpr std::size_t kTextWidth = 78;

std::string Wrap(std::string_view text) {
    std::string out;
    std::size_t column = 0;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find(' '), text.size());
        const std::string_view word = text.substr(0, end);
        if (column > 0 && column + 1 + word.size() > kTextWidth - kLabelWidth) {
            out += "\n" + std::string(kLabelWidth, ' ');
            column = 0;
        } else if (column > 0) {
            out += ' ';
            ++column;
        }
        out += word;
        column += word.size();
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return out;
}

// Where the search is, behind what is told of the first moves: the beginning of its own line.
std::string LineTail(std::string_view line) {
    constexpr std::size_t kTailWidth = 60;
    const std::size_t end = std::min(line.find_last_not_of(" \r") + 1, kTailWidth);
    return end == 0 ? std::string() : " | " + std::string(line.substr(0, end));
}

std::string RegisterText(const CConsole& console, EMessage id, const TRegisterFigures& figures) {
    return console.Text(id,
                        {std::to_string(figures.elements),
                         std::to_string(figures.doubtfulElements),
                         fmt::format("{:.1f}", Megabytes(figures.bytesUsed))});
}

// "1a", then the word; in the pass without heuristics the name alone.
std::string PassText(std::string_view name, std::string_view heuristics) {
    return PadRight(name, 4) + std::string(heuristics.empty() ? "-" : heuristics);
}

// What was tried under heuristics, and what proved the mate. Nothing for a solve without them.
std::string PassRows(const CConsole& console, const TSolveResult& result) {
    const bool hadHeuristics =
        std::ranges::any_of(result.passes, [](const TPassRecord& pass) { return pass.Heur != 0; });
    if (!hadHeuristics)
        return {};
    std::string out;
    std::string label = console.Text(EMessage::kLabelPasses);
    for (const TPassRecord& pass : result.passes) {
        const std::string work = console.Text(EMessage::kPassDone,
                                              {std::string(VerdictWord(pass.verdict)),
                                               std::to_string(pass.nodes),
                                               std::to_string(pass.madeMoves),
                                               SecondsText(pass.milliseconds)});
        out += ReportRow(label, PassText(pass.name, pass.heuristics) + ": " + work);
        label.clear();
    }
    if (const TPassRecord* proof = ProofOf(result))
        out += ReportRow(console.Text(EMessage::kLabelProof),
                         PassText(proof->name, proof->heuristics));
    return out;
}

// The chosen word with its reasons, the trials, and what all that cost.
std::string SelectionText(const CConsole& console, const TSelectionRecord& selection) {
    if (!selection.wasMade)
        return {};
    std::string out;
    std::string label = console.Text(EMessage::kLabelChosen);
    const auto addRow = [&](const std::string& text) {
        out += ReportRow(label, Wrap(text));
        label.clear();
    };
    for (const TChosenHeuristic& heuristic : selection.heuristics)
        addRow(heuristic.text + ": " + console.Text(heuristic.reason, heuristic.values));
    if (selection.whyNothing != EMessage::kCount)
        addRow(console.Text(EMessage::kChosenNothing, {console.Text(selection.whyNothing)}));
    label = console.Text(EMessage::kLabelTrials);
    for (const TTrialRecord& trial : selection.trials)
        addRow(trial.heuristics + ": " +
               console.Text(EMessage::kTrialDone,
                            {std::string(TrialWord(trial.outcome)),
                             std::to_string(trial.madeMoves),
                             std::to_string(trial.limit)}));
    if (!selection.trials.empty())
        addRow(console.Text(EMessage::kSelectionWork, {std::to_string(selection.madeMoves)}));
    return out + "\n";
}

// Why a solve that was not decided could not be: what the user switched off.
std::string SwitchedOffNotes(const CConsole& console, const TSolveResult& result) {
    std::string out;
    if (result.verdict != ESolveVerdict::kDoubt && result.verdict != ESolveVerdict::kProvedNoMate)
        return out;
    const bool hadHeuristics = !result.passes.empty() && result.passes.front().Heur != 0;
    if (hadHeuristics && !result.passes.front().settings.LetRelaxHeuristics)
        out += "\t* " + console.Text(EMessage::kNoteNoRelaxation) + "\n";
    return out;
}

}  // namespace

std::string ReportRow(std::string_view label, std::string_view text) {
    return fmt::format("{}{}\n", PadRight(label, kLabelWidth), text);
}

std::string PlannedPassName(const TSolveResult& result, std::size_t index) {
    if (result.plannedPasses[index].heuristics.empty())
        return "2";
    constexpr std::size_t kLetters = 26;
    const std::string letter(1, static_cast<char>('a' + index % kLetters));
    return "1" + letter + (index < kLetters ? "" : std::to_string(index / kLetters));
}

const TPassRecord* ProofOf(const TSolveResult& result) {
    const bool isKnown = !result.keyPasses.empty() && result.keyPasses.front() >= 0;
    return isKnown ? &result.passes[static_cast<std::size_t>(result.keyPasses.front())] : nullptr;
}

std::string ExplainText(const CConsole& console, const TSolveResult& result) {
    return SelectionText(console, result.selection) + PlanText(console, result);
}

std::string PlanText(const CConsole& console, const TSolveResult& result) {
    std::string out;
    std::string label = console.Text(EMessage::kLabelPlan);
    for (std::size_t i = 0; i < result.plannedPasses.size(); ++i) {
        const TPlannedPass& pass = result.plannedPasses[i];
        std::string text = PassText(PlannedPassName(result, i), pass.heuristics);
        if (pass.isOptional)
            text += fmt::format(" ({})", console.Text(EMessage::kPassOptional));
        out += ReportRow(label, text);
        label.clear();
    }
    return out;
}

std::string Diagram(const TChessboard& board) {
    std::string out = "  +-----------------+\n";
    for (int rank = 7; rank >= 0; --rank) {
        out += fmt::format("{} |", rank + 1);
        for (int file = 0; file < 8; ++file) {
            const u8 figure = board.m_board[SquareAt(file, rank)];
            char letter = figure == 0 ? '.' : LetterFromFigure(figure);
            if (IsBlack(figure))
                letter = static_cast<char>(letter - 'A' + 'a');
            out += {' ', letter};
        }
        out += " |\n";
    }
    return out + "  +-----------------+\n    a b c d e f g h\n";
}

int FullMovesOfTask(const TTask& task) {
    return FullMovesOf(task.halfMoves);
}

double Megabytes(u64 bytes) {
    constexpr double kBytes = 1 << 20;
    return std::round(static_cast<double>(bytes) * 10 / kBytes) / 10;
}

std::string StipulationText(const CConsole& console, const TTask& task) {
    const std::string side = console.Text(task.position.IsBlackToMove() ? EMessage::kBlackToMove
                                                                        : EMessage::kWhiteToMove);
    if (task.IsDefence())
        return console.Text(EMessage::kTaskDefence, {std::to_string(task.halfMoves), side});
    return console.Text(EMessage::kTaskMate, {std::to_string(FullMovesOfTask(task)), side});
}

std::string ReportText(const CConsole& console, const TTask& task, const TTaskOutcome& outcome) {
    const TSolveResult& result = outcome.result;
    const TChessboard& board = task.position.board;
    const bool isBlack = task.position.IsBlackToMove();
    const auto label = [&console](EMessage id) { return console.Text(id); };

    const std::vector<TMove>& found = task.IsDefence() ? result.defences : result.keys;
    std::string moves;
    for (const TMove move : found) {
        moves += moves.empty() ? "" : "  ";
        moves += NumberedLine({WriteMove(board, isBlack, move)}, isBlack) + "!";
    }
    moves = moves.empty() ? label(EMessage::kNone) : console.Bold(moves);
    // A key is asked for; but that a defence holds could be read as if no other did.
    if (task.IsDefence() && !found.empty() && !outcome.wereAllAsked)
        moves += fmt::format(" ({})", label(EMessage::kFirstDefenceFound));
    std::string out = ReportRow(label(task.IsDefence()   ? EMessage::kLabelDefences
                                      : found.size() > 1 ? EMessage::kLabelKeys
                                                         : EMessage::kLabelKey),
                                moves);

    std::string defenceLabel = label(EMessage::kLabelBestDefence);
    for (std::size_t i = 0; i < result.keys.size(); ++i) {
        const std::vector<TWrittenMove> line = KeyLine(task, result, i);
        if (line.size() < 2)
            continue;
        out += ReportRow(defenceLabel, NumberedLine(line, isBlack));
        defenceLabel.clear();
    }

    std::string triesLabel = label(EMessage::kLabelTries);
    for (const TTry& attempt : result.tries) {
        const auto line = WriteLine(board, isBlack, {attempt.move, attempt.refutation});
        const std::string text =
            NumberedLine({line[0]}, isBlack) + "? " + line[1].text + line[1].check + "!";
        out += ReportRow(triesLabel, text);
        triesLabel.clear();
    }
    if (!result.mainLine.empty())
        out += ReportRow(label(EMessage::kLabelLine),
                         Wrap(NumberedLine(WriteLine(board, isBlack, result.mainLine), isBlack)));

    std::string verdict = console.Bold(VerdictWord(result.verdict));
    if (result.verdict == ESolveVerdict::kProvedMate && !result.isComplete)
        verdict += fmt::format(" ({})", label(EMessage::kNotAllTried));
    if (result.verdict == ESolveVerdict::kDoubt && result.isFinalPassOff)
        verdict += " " + console.Text(EMessage::kNoteNoFinalPass);
    out += ReportRow(label(EMessage::kLabelVerdict), verdict);
    out += SwitchedOffNotes(console, result);
    out += PassRows(console, result);
    if (outcome.registerFigures)
        out +=
            ReportRow(label(EMessage::kLabelRegister),
                      RegisterText(console, EMessage::kRegisterFigures, *outcome.registerFigures));
    out += ReportRow(label(EMessage::kLabelWork),
                     console.Text(EMessage::kWorkDone,
                                  {std::to_string(result.nodes),
                                   std::to_string(result.madeMoves),
                                   SecondsText(outcome.milliseconds)}));
    return out;
}

TProgressCallback ShowProgress(CConsole& console, const TTask& task) {
    if (!console.WantsProgress())
        return {};
    return [&console, &task](const TTaskProgress& progress) {
        const std::string nodes = std::to_string(progress.nodes);
        const std::string seconds = std::to_string(progress.milliseconds / 1000);
        std::string memory;
        if (progress.registerFigures)
            memory = RegisterText(console, EMessage::kProgressRegister, *progress.registerFigures);
        if (progress.isAfterKeys) {
            console.Status(console.Text(EMessage::kProgressAfterKeys, {nodes, seconds}) + memory);
        } else if (progress.number > 0) {
            const bool isBlack = task.position.IsBlackToMove();
            const auto move = WriteMove(task.position.board, isBlack, progress.move);
            console.Status(console.Text(EMessage::kProgressFirstMove,
                                        {NumberedLine({move}, isBlack),
                                         std::to_string(progress.number),
                                         std::to_string(progress.count),
                                         nodes,
                                         seconds}) +
                           memory + LineTail(progress.line));
        } else {
            console.Status(console.Text(EMessage::kInitialPositionCheck) + memory);
        }
    };
}

}  // namespace quillmere

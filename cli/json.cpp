#include "cli/json.h"

#include "cli/report.h"

namespace quillmere {

TJson MoveJson(const TWrittenMove& move) {
    return {{"move", move.text}, {"uci", move.uci}};
}

TJson LineJson(const std::vector<TWrittenMove>& line) {
    TJson json = TJson::array();
    for (const TWrittenMove& move : line)
        json.push_back(MoveJson(move));
    return json;
}

void AddResultJson(TJson& json, const TTask& task, const TSolveResult& result) {
    const TChessboard& board = task.position.board;
    const bool isBlack = task.position.IsBlackToMove();
    const auto write = [&](const std::vector<TMove>& moves, std::string_view mark) {
        TJson list = TJson::array();
        for (const TMove move : moves) {
            const TWrittenMove written = WriteMove(board, isBlack, move);
            TJson row = MoveJson(written);
            row["text"] = NumberedLine({written}, isBlack) + std::string(mark);
            list.push_back(std::move(row));
        }
        return list;
    };
    json["keys"] = write(result.keys, "!");
    for (std::size_t i = 0; i < result.keys.size(); ++i) {
        const std::vector<TWrittenMove> line = KeyLine(task, result, i);
        json["keys"][i]["bestDefence"] = line.size() > 1 ? MoveJson(line[1]) : TJson();
    }
    if (task.IsDefence())
        json["defences"] = write(result.defences, "!");
    TJson tries = TJson::array();
    for (const TTry& attempt : result.tries) {
        const auto line = WriteLine(board, isBlack, {attempt.move, attempt.refutation});
        TJson row = MoveJson(line[0]);
        row["refutations"] = TJson::array({MoveJson(line[1])});
        tries.push_back(std::move(row));
    }
    json["tries"] = std::move(tries);
    json["mainLine"] = LineJson(WriteLine(board, isBlack, result.mainLine));
}

void AddSelectionJson(TJson& json, const TSolveResult& result) {
    const TSelectionRecord& selection = result.selection;
    json["selection"] = nullptr;
    if (!selection.wasMade)
        return;
    const auto english = [](EMessage id, const std::vector<std::string>& values) {
        return FormatMessage(id, ELanguage::kEnglish, values);
    };
    TJson chosen = TJson::array();
    for (const TChosenHeuristic& heuristic : selection.heuristics)
        chosen.push_back({{"heuristic", heuristic.text},
                          {"bit", heuristic.bit},
                          {"reason", english(heuristic.reason, heuristic.values)}});
    TJson trials = TJson::array();
    for (const TTrialRecord& trial : selection.trials)
        trials.push_back({{"heuristics", trial.heuristics},
                          {"halfMoves", trial.halfMoves},
                          {"limit", trial.limit},
                          {"outcome", TrialWord(trial.outcome)},
                          {"madeMoves", trial.madeMoves}});
    json["selection"] = {{"heuristics", std::move(chosen)},
                         {"whyNothing", nullptr},
                         {"trials", std::move(trials)},
                         {"madeMoves", selection.madeMoves}};
    if (selection.whyNothing != EMessage::kCount)
        json["selection"]["whyNothing"] = english(selection.whyNothing, {});
}

void AddPassesJson(TJson& json, const TSolveResult& result) {
    TJson plan = TJson::array();
    for (std::size_t i = 0; i < result.plannedPasses.size(); ++i) {
        const TPlannedPass& pass = result.plannedPasses[i];
        plan.push_back({{"name", PlannedPassName(result, i)},
                        {"heuristics", pass.heuristics},
                        {"optional", pass.isOptional}});
    }
    json["plan"] = std::move(plan);
    TJson passes = TJson::array();
    for (const TPassRecord& pass : result.passes)
        passes.push_back({{"name", pass.name},
                          {"heuristics", pass.heuristics},
                          {"verdict", VerdictWord(pass.verdict)},
                          {"nodes", pass.nodes},
                          {"madeMoves", pass.madeMoves},
                          {"ms", pass.milliseconds}});
    json["passes"] = std::move(passes);
    json["proof"] = nullptr;
    if (const TPassRecord* proof = ProofOf(result))
        json["proof"] = {{"name", proof->name}, {"heuristics", proof->heuristics}};
}

void AddRegisterJson(TJson& json, const TTaskOutcome& outcome) {
    const TRegisterFigures figures = outcome.registerFigures.value_or(TRegisterFigures());
    json["registerElements"] = figures.elements;
    json["memoryMB"] = Megabytes(figures.bytesUsed);
}

std::string JsonLine(const TJson& json) {
    return json.dump(-1, ' ', false, TJson::error_handler_t::replace) + "\n";
}

}  // namespace quillmere

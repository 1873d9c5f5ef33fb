// Writing collections as JSON.
#include "cli/convert_json.h"
#include "cli/json.h"
#include "core/fen.h"
#include "core/notation.h"
#include "heuristics/catalogue.h"
#include "problems/problem_fields.h"
#include "problems/text_encoding.h"

namespace quillmere {
namespace {

TJson MovesJson(const std::vector<TMove>& moves) {
    TJson json = TJson::array();
    for (const TMove move : moves)
        json.push_back(RawMoveText(move));
    return json;
}

TJson TextsJson(const std::set<std::string>& texts) {
    TJson json = TJson::array();
    for (const std::string& text : texts)
        json.push_back(text);
    return json;
}

TJson VariantsJson(const TVariants& variants) {
    TJson json = TJson::array();
    for (const auto& [name, variant] : variants) {
        TJson moves = TJson::array();
        for (const TVariantMove& row : variant.moves) {
            const bool isWhite = (moves.size() % 2 == 0) != variant.doesBlackBegin;
            const std::string typed = WrittenMoveText(row, isWhite);
            // JSON holds UTF-8 only, but the move itself must not be lost.
            TJson move = {{"text", IsUtf8(typed) ? typed : MoveToPlainText(row.move)}};
            if (!row.comment.empty())
                move["comment"] = row.comment;
            moves.push_back(std::move(move));
        }
        json.push_back(
            {{"name", name}, {"blackBegins", variant.doesBlackBegin}, {"moves", std::move(moves)}});
    }
    return json;
}

TJson HeuristicsJson(const TChessProblem& problem) {
    TJson json = TJson::object();
    for (const auto& [bit, parameters] : problem.heuristicOverrides)
        json[HeuristicName(bit)] = TextsJson(parameters);
    return json;
}

TJson IndicationsJson(const TSortIndications& indications) {
    TJson json = TJson::array();
    for (const auto& [number, rules] : indications.byMoveNumber) {
        for (const SortIndication& rule : rules)
            json.push_back(SortIndicationToText(rule));
    }
    return json;
}

TJson ProblemJson(const TChessProblem& problem) {
    TJson json = {{"schema", kCollectionSchema},
                  {"number", problem.number},
                  {"stipulation", StipulationText(problem)},
                  {"description", problem.description},
                  {"board", GetFENCode(*problem.position, true)}};
    const auto addList = [&](std::string_view name, TJson list) {
        if (!list.empty())
            json[std::string(name)] = std::move(list);
    };
    const auto addNumber = [&](std::string_view name, bool isGiven, i64 value) {
        if (isGiven)
            json[std::string(name)] = value;
    };
    addList("moves", MovesJson(problem.PlayedMoves()));
    if (problem.Has(kProblemHasAnswer))
        json["answer"] = MovesJson(problem.answer);
    if (problem.Has(kProblemHasExpectedSort)) {
        json["expectedFirstMoves"] = MovesJson(problem.expectedSortWhiteMoves);
        json["expectedFirstMovesOnly"] = problem.Has(kProblemExpectedSortOnly);
    }
    TJson flags = TJson::array();
    for (const std::string& word : FlagWordsOf(problem))
        flags.push_back(word);
    addList("flags", std::move(flags));
    addNumber("guiCheckRepeat", problem.guiCheckRepeat != 1, problem.guiCheckRepeat);
    addNumber("threads", problem.threads != kThreadsNotForced, problem.threads);
    addNumber("multithreadingLevels", problem.areLevelsGiven, problem.multithreadingLevels);
    addNumber(
        "schedulerLevels", problem.schedulerLevels != kLevelsNotForced, problem.schedulerLevels);
    addNumber("lichessLevels", problem.lichessLevels != kLevelsNotForced, problem.lichessLevels);
    addNumber("globRegMB", problem.globRegMB != -1, problem.globRegMB);
    if (problem.stopRelaxHeuristicsOnFirstSolution)
        json["stopRelaxHeuristicsOnFirstSolution"] = true;
    addList("heuristics", HeuristicsJson(problem));
    addList("requires", TextsJson(problem.requires_));
    addList("allSolutionsRequires", TextsJson(problem.allSolutionsRequires));
    addList("tags", TextsJson(problem.tags));
    addList("variants", VariantsJson(problem.variants));
    addList("sortIndications", IndicationsJson(problem.sortIndications));
    return json;
}

}  // namespace

std::string
WriteJson(const TProblemCollection& collection, bool areLines, TConversionRemarks& remarks) {
    std::string text = areLines ? "" : "[\n";
    for (const auto& [number, problem] : collection.problems) {
        std::string line = JsonLine(ProblemJson(*problem));
        const bool isLast = number == collection.problems.rbegin()->first;
        if (!areLines && !isLast)
            line.insert(line.size() - 1, ",");
        text += line;
    }
    text += areLines ? "" : "]\n";
    TProblemCollection back;
    if (!collection.problems.empty())
        ReadBack([&] { ReadJson(text, back); });
    AddLosses(collection, back, "JSON", remarks);
    return text;
}

}  // namespace quillmere

#include "problems/collection_merge.h"

#include "problems/problem_fields.h"
#include "problems/save_losses.h"
#include "problems/text_encoding.h"

#include <algorithm>
#include <iterator>
#include <string_view>
#include <unordered_map>

namespace quillmere {
namespace {

// The squares of a problem, as a key that hash tables know; it points into the problem.
std::string_view SquaresOf(const TChessProblem& problem) {
    return {reinterpret_cast<const char*>(problem.position->m_board), kSquareCount};
}

using TProblemsByPosition = std::unordered_map<std::string_view, std::vector<const TChessProblem*>>;

TProblemsByPosition ByPosition(const TProblemCollection& collection) {
    const std::lock_guard guard(collection.lock);
    TProblemsByPosition byPosition;
    byPosition.reserve(collection.problems.size());
    for (const auto& [number, problem] : collection.problems)
        byPosition[SquaresOf(*problem)].push_back(problem.get());
    return byPosition;
}

bool IsSameStipulation(const TChessProblem& a, const TChessProblem& b) {
    return a.type == b.type && a.maxHalfMoves == b.maxHalfMoves;
}

void ReadOther(const std::filesystem::path& path,
               TProblemCollection& other,
               TProblemCollection& collection,
               const TFileSettings& settings) {
    RequireNoSolve(settings);
    ReadProblemFile(path, other, false, settings);
    collection.allTags.insert(other.allTags.begin(), other.allTags.end());
}

// Takes the remarks of a file out of the losses.
std::set<std::string> TakeRemarks(std::set<std::string>& losses) {
    std::set<std::string> remarks;
    for (auto it = losses.begin(); it != losses.end();) {
        const auto next = std::next(it);
        if (IsLostRemark(*it))
            remarks.insert(losses.extract(it));
        it = next;
    }
    return remarks;
}

bool IsAllAscii(const TChessProblem& problem) {
    const auto isAsciiLine = [](const auto& variant) {
        return IsAscii(variant.first) &&
               std::ranges::all_of(variant.second.moves,
                                   [](const TVariantMove& row) { return IsAscii(row.comment); });
    };
    return IsAscii(problem.description) && std::ranges::all_of(problem.tags, IsAscii) &&
           std::ranges::all_of(problem.variants, isAsciiLine);
}

// Letters that were read in the wrong code page come along with the problem.
void TakeEncoding(const TProblemCollection& other, TChessProblem& problem) {
    if (IsAllAscii(problem))
        return;
    for (const std::string& entry : other.lostBySave) {
        if (IsLostEncoding(entry))
            problem.lostBySave.insert(entry);
    }
}

// The remarks of one problem wait under its number in the other file.
void MoveRemarks(TChessProblem& problem, TProblemCollection& remarks) {
    auto shadow = std::make_unique<TChessProblem>();
    shadow->number = problem.number;
    shadow->lostBySave = TakeRemarks(problem.lostBySave);
    remarks.Insert(std::move(shadow));
}

std::string AppendReport(const TAppended& appended, ELanguage language) {
    std::string report = FormatMessage(
        EMessage::kAppendedProblems, language, {std::to_string(appended.numbers.size())});
    if (appended.differOnlyByStipulation.empty())
        return report;
    report += MessageText(EMessage::kDifferOnlyByStipulation, language);
    bool isFirst = true;
    for (const auto& [otherNumber, number] : appended.differOnlyByStipulation) {
        report += isFirst ? "" : "\n";
        isFirst = false;
        report += FormatMessage(EMessage::kAppendedVersus,
                                language,
                                {std::to_string(otherNumber), std::to_string(number)});
    }
    return report;
}

}  // namespace

std::vector<TSamePosition> FindSamePositions(const TProblemCollection& collection) {
    std::vector<TSamePosition> doubles;
    for (const auto& [squares, problems] : ByPosition(collection)) {
        for (std::size_t i = 1; i < problems.size(); ++i)
            doubles.push_back({problems[i]->number, problems[0]->number});
    }
    std::sort(doubles.begin(), doubles.end(), [](const TSamePosition& a, const TSamePosition& b) {
        return a.number < b.number;
    });
    return doubles;
}

const TChessProblem* FindSamePosition(const TProblemCollection& collection,
                                      const TChessProblem& problem) {
    const std::lock_guard guard(collection.lock);
    for (const auto& [number, candidate] : collection.problems) {
        if (candidate.get() != &problem && number != problem.number &&
            SquaresOf(*candidate) == SquaresOf(problem))
            return candidate.get();
    }
    return nullptr;
}

std::string SamePositionQuestion(const TChessProblem& existing, ELanguage language) {
    const std::string stipulation = StipulationText(existing);
    std::string text = std::to_string(existing.number);
    if (!stipulation.empty())
        text += " " + stipulation;
    if (!existing.description.empty())
        text += " " + existing.description;
    return FormatMessage(EMessage::kAskSaveSamePosition, language, {text});
}

TAppended AppendFile(const std::filesystem::path& path,
                     TProblemCollection& collection,
                     const TFileSettings& settings) {
    TProblemCollection other;
    ReadOther(path, other, collection, settings);
    TProblemCollection remarks;
    remarks.lostBySave = TakeRemarks(other.lostBySave);
    TAppended appended;
    appended.wasChanged = collection.isChanged;
    TProblemsByPosition known = ByPosition(collection);
    for (auto& [otherNumber, problem] : other.problems) {
        // Keys point into problems, which stay where they are when their owner changes.
        std::vector<const TChessProblem*>& same = known[SquaresOf(*problem)];
        if (same.empty()) {
            MoveRemarks(*problem, remarks);
            TakeEncoding(other, *problem);
            problem->number = collection.NextNumber();
            appended.numbers.push_back(problem->number);
            same.push_back(problem.get());
            collection.Insert(std::move(problem));
            continue;
        }
        const bool isDouble = std::any_of(
            same.begin(), same.end(), [&wanted = *problem](const TChessProblem* candidate) {
                return IsSameStipulation(*candidate, wanted);
            });
        if (!isDouble)
            appended.differOnlyByStipulation.emplace_back(otherNumber, same.front()->number);
    }
    collection.isChanged = collection.isChanged || !appended.numbers.empty();
    const ELanguage language = settings.reading.language;
    appended.remarks = SaveLossLines(remarks, language);
    appended.report = AppendReport(appended, language);
    appended.question =
        appended.report + std::string(MessageText(EMessage::kAskSaveOrReject, language));
    return appended;
}

void RejectAppended(TProblemCollection& collection, const TAppended& appended) {
    const std::lock_guard guard(collection.lock);
    for (const i32 number : appended.numbers)
        collection.problems.erase(number);
    collection.isChanged = appended.wasChanged;
}

TRemoved RemovePresentInFile(const std::filesystem::path& path,
                             TProblemCollection& collection,
                             const TChessProblem* current,
                             const TFileSettings& settings) {
    TProblemCollection other;
    ReadOther(path, other, collection, settings);
    TRemoved removed;
    removed.wasChanged = collection.isChanged;
    const TProblemsByPosition present = ByPosition(other);
    {
        const std::lock_guard guard(collection.lock);
        for (auto it = collection.problems.begin(); it != collection.problems.end();) {
            const bool isPresent = present.count(SquaresOf(*it->second)) != 0;
            const bool isCurrent = it->second.get() == current;
            removed.isCurrentKept = removed.isCurrentKept || (isPresent && isCurrent);
            if (isPresent && !isCurrent) {
                removed.problems.push_back(std::move(it->second));
                it = collection.problems.erase(it);
            } else {
                ++it;
            }
        }
    }
    collection.isChanged = collection.isChanged || !removed.problems.empty();
    const ELanguage language = settings.reading.language;
    removed.report = FormatMessage(
        EMessage::kRemovedProblems, language, {std::to_string(removed.problems.size())});
    if (removed.isCurrentKept)
        removed.report += MessageText(EMessage::kCurrentCannotBeRemoved, language);
    removed.question =
        removed.report + std::string(MessageText(EMessage::kAskSaveOrReject, language));
    return removed;
}

void RejectRemoved(TProblemCollection& collection, TRemoved& removed) {
    for (std::unique_ptr<TChessProblem>& problem : removed.problems)
        collection.Insert(std::move(problem));
    removed.problems.clear();
    collection.isChanged = removed.wasChanged;
}

}  // namespace quillmere

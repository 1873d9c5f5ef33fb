#include "problems/save_losses.h"

#include "heuristics/catalogue.h"
#include "problems/line_text.h"
#include "problems/problem_fields.h"
#include "problems/problem_options.h"

#include <algorithm>
#include <charconv>
#include <utility>

namespace quillmere {
namespace {

// An entry with a kind is the kind, a blank and a value; words of the grammar hold no blank.
struct TLossKind {
    std::string_view name;
    EMessage message;
};

constexpr TLossKind kComment = {"comment", EMessage::kLossComment};
constexpr TLossKind kBesideMoves = {"beside", EMessage::kLossBesideMoves};
constexpr TLossKind kMoveNumbers = {"numbers", EMessage::kLossMoveNumbers};
constexpr TLossKind kBytes = {"bytes", EMessage::kLossBytes};
constexpr TLossKind kEncoding = {"encoding", EMessage::kLossEncoding};
constexpr TLossKind kStipulation = {"stipulation", EMessage::kLossStipulation};
constexpr TLossKind kTag = {"tag", EMessage::kLossTag};
constexpr TLossKind kReplaced = {"replaced", EMessage::kLossReplaced};
constexpr TLossKind kRest = {"rest", EMessage::kLossUnreadRest};
constexpr TLossKind kLossKinds[] = {
    kRest, kEncoding, kStipulation, kTag, kBytes, kBesideMoves, kMoveNumbers, kReplaced, kComment};
// Remarks of a file, and not of its problems.
constexpr TLossKind kRemarkKinds[] = {kBesideMoves, kMoveNumbers, kComment};

std::string Entry(const TLossKind& kind, std::string_view value) {
    return std::string(kind.name) + " " + std::string(value);
}

// Values that are lines come in the order of their numbers.
bool ComesBefore(const std::string& a, const std::string& b) {
    const auto numberOf = [](const std::string& text) {
        int number = 0;
        std::from_chars(text.data(), text.data() + text.size(), number);
        return number;
    };
    return std::pair(numberOf(a), a) < std::pair(numberOf(b), b);
}

class CLossList {
public:
    explicit CLossList(ELanguage language) : m_language(language) {}

    void Add(EMessage message, std::string_view value) {
        m_losses.push_back(FormatMessage(message, m_language, {std::string(value)}));
    }

    void AddWord(std::string_view word) {
        if (m_words.insert(std::string(word)).second)
            Add(EMessage::kLossWord, word);
    }

    // What the reader entered.
    void AddEntries(const std::set<std::string>& entries) {
        for (const std::string& entry : entries) {
            if (entry.find(' ') == std::string::npos)
                AddWord(entry);
        }
        for (const TLossKind& kind : kLossKinds)
            AddEntriesOf(kind, entries);
    }

    std::vector<std::string> Take() { return std::move(m_losses); }
    const std::set<std::string>& Words() const { return m_words; }

private:
    void AddEntriesOf(const TLossKind& kind, const std::set<std::string>& entries) {
        const std::string start = Entry(kind, "");
        std::vector<std::string> values;
        for (const std::string& entry : entries) {
            if (entry.starts_with(start))
                values.push_back(entry.substr(start.size()));
        }
        std::ranges::sort(values, ComesBefore);
        for (const std::string& value : values)
            Add(kind.message, value);
    }

    ELanguage m_language;
    std::vector<std::string> m_losses;
    std::set<std::string> m_words;
};

// The option is set in the record, by whomever.
bool IsSet(const TChessProblem& problem, const TProblemOptionRow& row) {
    switch (row.kind) {
    case EOptionKind::kFlag:
        return (problem.flags & row.flag) != 0;
    case EOptionKind::kAllSolutionsRequires:
        return !problem.allSolutionsRequires.empty();
    case EOptionKind::kSchedulerLevels:
        return problem.schedulerLevels != kLevelsNotForced;
    case EOptionKind::kLichessLevels:
        return problem.lichessLevels != kLevelsNotForced;
    case EOptionKind::kGlobRegMB:
        return problem.globRegMB >= 0;
    case EOptionKind::kStopRelax:
        return problem.stopRelaxHeuristicsOnFirstSolution;
    default:
        return false;
    }
}

void AddOptions(const TChessProblem& problem, CLossList& losses) {
    for (const TProblemOptionRow& row : kProblemOptionRows) {
        if (row.isLost && IsSet(problem, row))
            losses.AddWord(row.keyword);
    }
    if (problem.areLevelsGiven && problem.threads == kThreadsNotForced)
        losses.AddWord("THREADS");
    for (const auto& [bit, parameters] : problem.heuristicOverrides) {
        const THeuristicRow* const row = FindHeuristicRow(bit);
        if (row != nullptr)
            losses.AddWord(row->name);
    }
    if (problem.Has(kProblemExpectedSortOnly))
        losses.AddWord(kWordExpectedSortOnly);
    else if (problem.Has(kProblemHasExpectedSort) || !problem.expectedSortWhiteMoves.empty())
        losses.AddWord(kWordExpectedSort);
}

void AddTexts(const TChessProblem& problem, CLossList& losses) {
    const auto addIfChanged = [&](EMessage message, const std::string& text, const auto& written) {
        if (text != written)
            losses.Add(message, text);
    };
    addIfChanged(EMessage::kLossTextForm, problem.description, OneLine(problem.description));
    for (const std::string& tag : problem.tags)
        addIfChanged(EMessage::kLossTextForm, tag, OneLine(tag));
    for (const auto& [name, variant] : problem.variants) {
        addIfChanged(EMessage::kLossVariantName, variant.name, CleanVariantName(variant.name));
        for (const TVariantMove& move : variant.moves)
            addIfChanged(
                EMessage::kLossVariantComment, move.comment, CleanVariantComment(move.comment));
    }
}

std::set<std::string> WrittenTags(const TChessProblem& problem) {
    std::set<std::string> tags;
    for (const std::string& tag : problem.tags)
        tags.insert(OneLine(tag));
    return tags;
}

TVariants WrittenVariants(const TChessProblem& problem) {
    TVariants written;
    for (const auto& [name, variant] : problem.variants) {
        TProblemVariant copy = variant;
        copy.name = CleanVariantName(copy.name);
        for (TVariantMove& move : copy.moves)
            move.comment = CleanVariantComment(move.comment);
        written.emplace(copy.name, std::move(copy));
    }
    return written;
}

}  // namespace

std::string LostComment(int line) {
    return Entry(kComment, std::to_string(line));
}

std::string LostBesideMoves(int line) {
    return Entry(kBesideMoves, std::to_string(line));
}

std::string LostMoveNumbers(int line) {
    return Entry(kMoveNumbers, std::to_string(line));
}

std::string LostBytes(int line) {
    return Entry(kBytes, std::to_string(line));
}

std::string LostEncoding(std::string_view codePage) {
    return Entry(kEncoding, codePage);
}

std::string LostStipulation(std::string_view text) {
    return Entry(kStipulation, text);
}

std::string LostTag(std::string_view tag) {
    return Entry(kTag, tag);
}

std::string LostProblem(i32 number) {
    return Entry(kReplaced, std::to_string(number));
}

std::string LostRest(int line) {
    return Entry(kRest, std::to_string(line));
}

bool IsLostRemark(std::string_view entry) {
    return std::ranges::any_of(kRemarkKinds, [entry](const TLossKind& kind) {
        return entry.starts_with(Entry(kind, ""));
    });
}

bool IsLostEncoding(std::string_view entry) {
    return entry.starts_with(Entry(kEncoding, ""));
}

std::vector<std::string> UnnamedLosses(const TChessProblem& problem, const TChessProblem& back) {
    CLossList named(ELanguage::kEnglish);
    AddOptions(problem, named);
    // The texts are named where their form alone changes; then they come back in that form.
    const bool isDescriptionNamed = back.description == OneLine(problem.description);
    const bool areTagsNamed = back.tags == WrittenTags(problem);
    const bool areVariantsNamed = AreSameVariants(back.variants, WrittenVariants(problem));
    std::vector<std::string> fields = DifferentFields(problem, back);
    std::erase_if(fields, [&](const std::string& field) {
        return named.Words().contains(field) ||
               (field == kWordExpectedSort &&
                named.Words().contains(std::string(kWordExpectedSortOnly))) ||
               (field == "Description" && isDescriptionNamed) ||
               (field == kTagsField && areTagsNamed) ||
               (field.starts_with(kVariantsField) && areVariantsNamed);
    });
    return fields;
}

std::vector<std::string> SaveLossesOf(const TChessProblem& problem, ELanguage language) {
    CLossList losses(language);
    AddOptions(problem, losses);
    losses.AddEntries(problem.lostBySave);
    AddTexts(problem, losses);
    return losses.Take();
}

std::vector<std::string> SaveLossLines(const TProblemCollection& collection, ELanguage language) {
    const std::lock_guard guard(collection.lock);
    std::vector<std::string> lines;
    CLossList ofFile(language);
    ofFile.AddEntries(collection.lostBySave);
    for (const std::string& loss : ofFile.Take())
        lines.push_back(FormatMessage(EMessage::kLossInFile, language, {loss}));
    for (const auto& [number, problem] : collection.problems) {
        for (const std::string& loss : SaveLossesOf(*problem, language))
            lines.push_back(
                FormatMessage(EMessage::kLossInProblem, language, {std::to_string(number), loss}));
    }
    return lines;
}

}  // namespace quillmere

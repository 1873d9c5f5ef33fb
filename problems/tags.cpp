#include "problems/tags.h"

#include "problems/chess_problem.h"
#include "problems/save_losses.h"

#include <array>
#include <map>
#include <utility>

namespace quillmere {
namespace {

using TTagRow = std::array<std::string_view, kLanguageCount>;

// Columns by ELanguage.
constexpr TTagRow kRows[] = {
#define QUILLMERE_TAG(polish, english, ukrainian) {polish, english, ukrainian},
#include "problems/tags.def"
#undef QUILLMERE_TAG
};

// The first row of each form, one map a language.
using TRowsByForm = std::map<std::string_view, const TTagRow*>;

std::array<TRowsByForm, kLanguageCount> MakeIndex() {
    std::array<TRowsByForm, kLanguageCount> index;
    for (const TTagRow& row : kRows) {
        for (std::size_t column = 0; column < row.size(); ++column) {
            if (!row[column].empty())
                index[column].emplace(row[column], &row);
        }
    }
    return index;
}

}  // namespace

std::string TranslateTag(std::string_view tag, ELanguage language) {
    static const std::array<TRowsByForm, kLanguageCount> index = MakeIndex();
    const auto current = static_cast<std::size_t>(language);
    for (std::size_t column = 0; column < index.size(); ++column) {
        const auto found = index[column].find(tag);
        if (column == current || found == index[column].end())
            continue;
        const std::string_view form = (*found->second)[current];
        return std::string(form.empty() ? tag : form);
    }
    return std::string(tag);
}

void NormaliseTags(TChessProblem& problem, ELanguage language, std::set<std::string>& allTags) {
    std::set<std::string> tags;
    for (const std::string& tag : problem.tags) {
        const auto [place, isNew] = tags.insert(TranslateTag(tag, language));
        if (!isNew)
            problem.lostBySave.insert(LostTag(tag));
    }
    allTags.insert(tags.begin(), tags.end());
    problem.tags = std::move(tags);
}

}  // namespace quillmere

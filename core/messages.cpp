#include "core/messages.h"

#include <cstddef>
#include <iterator>

namespace quillmere {
namespace {

struct TMessageRow {
    std::string_view name;
    std::string_view english;
    std::string_view polish;
    std::string_view ukrainian;
};

constexpr TMessageRow kRows[] = {
#define QUILLMERE_MESSAGE(id, english, polish, ukrainian) {#id, english, polish, ukrainian},
#include "core/messages.def"
#undef QUILLMERE_MESSAGE
};
static_assert(std::size(kRows) == static_cast<std::size_t>(EMessage::kCount));

const TMessageRow& RowOf(EMessage id) {
    return kRows[static_cast<std::size_t>(id)];
}

}  // namespace

std::string_view MessageForm(EMessage id, ELanguage language) {
    const TMessageRow& row = RowOf(id);
    switch (language) {
    case ELanguage::kPolish:
        return row.polish;
    case ELanguage::kUkrainian:
        return row.ukrainian;
    case ELanguage::kEnglish:
        break;
    }
    return row.english;
}

std::string_view MessageText(EMessage id, ELanguage language) {
    const std::string_view form = MessageForm(id, language);
    return form.empty() ? RowOf(id).english : form;
}

std::string_view MessageName(EMessage id) {
    return RowOf(id).name;
}

std::string FormatMessage(EMessage id, ELanguage language, const std::vector<std::string>& values) {
    const std::string_view text = MessageText(id, language);
    std::string out;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool isPlace = text[i] == '{' && i + 2 < text.size() && text[i + 1] >= '0' &&
                             text[i + 1] <= '9' && text[i + 2] == '}';
        const std::size_t index = isPlace ? static_cast<std::size_t>(text[i + 1] - '0') : 0;
        if (isPlace && index < values.size()) {
            out += values[index];
            i += 2;
        } else {
            out += text[i];
        }
    }
    return out;
}

}  // namespace quillmere

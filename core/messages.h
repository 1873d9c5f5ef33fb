// Every text that a user reads, in three languages. The rows stand in core/messages.def.
//
// A text is a whole sentence with the values at numbered places "{0}", "{1}"; an empty form falls
// back on English. Texts are UTF-8.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace quillmere {

// Values of the option LanguageId.
enum class ELanguage { kPolish = 0, kEnglish = 1, kUkrainian = 2 };
constexpr int kLanguageCount = 3;

enum class EMessage {
#define QUILLMERE_MESSAGE(id, english, polish, ukrainian) id,
#include "core/messages.def"
#undef QUILLMERE_MESSAGE
    kCount
};

// The text with its places unfilled; English where the form of the language is empty.
std::string_view MessageText(EMessage id, ELanguage language);
// The raw form of one language, possibly empty.
std::string_view MessageForm(EMessage id, ELanguage language);
// The name of the row, for tests and logs.
std::string_view MessageName(EMessage id);

// The text with "{n}" replaced by values[n]; a place without a value stays as it is.
std::string
FormatMessage(EMessage id, ELanguage language, const std::vector<std::string>& values = {});

}  // namespace quillmere

// The one exception of the program: wrong input, or an internal fault.
//
// It carries a message id and the values that matter, so that the text can be shown in the
// language of the user; what() is the English text. The search never throws.
#pragma once

#include "core/messages.h"

#include <exception>
#include <string>
#include <vector>

namespace quillmere {

class ChessException : public std::exception {
public:
    explicit ChessException(EMessage id, std::vector<std::string> values = {});

    EMessage Id() const { return m_id; }
    const std::vector<std::string>& Values() const { return m_values; }
    std::string Text(ELanguage language) const;
    const char* what() const noexcept override { return m_english.c_str(); }

private:
    EMessage m_id;
    std::vector<std::string> m_values;
    std::string m_english;
};

}  // namespace quillmere

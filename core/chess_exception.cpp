#include "core/chess_exception.h"

#include <utility>

namespace quillmere {

ChessException::ChessException(EMessage id, std::vector<std::string> values)
    : m_id(id),
      m_values(std::move(values)),
      m_english(FormatMessage(id, ELanguage::kEnglish, m_values)) {}

std::string ChessException::Text(ELanguage language) const {
    return FormatMessage(m_id, language, m_values);
}

}  // namespace quillmere

#include "cli/console_services.h"

#include "session/questions.h"

namespace quillmere {

TSessionServices CConsoleServices::Services() {
    return {this, this, this, this};
}

void CConsoleServices::PostStatus(const std::string& text) {
    m_console.Status(std::string_view(text).substr(0, text.find('\n')));
}

EReply CConsoleServices::Ask(EMessage question, const std::string& /*text*/) {
    return BatchAnswer(question);
}

void CConsoleServices::Tell(EMessage title, const std::string& text) {
    if (title != EMessage::kTitleError)
        m_console.Note(text);
}

}  // namespace quillmere

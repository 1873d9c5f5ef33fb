// What is answered where nobody can be asked: in a batch, and by a front without a window.
#pragma once

#include "session/services.h"

namespace quillmere {

// The answer of the one table of questions; kNo for a question that is not in it.
EReply BatchAnswer(EMessage question);

// A question service that answers by the table and tells nothing.
class CBatchQuestions final : public IQuestionService {
public:
    EReply Ask(EMessage question, const std::string& /*text*/) override {
        return BatchAnswer(question);
    }
    void Tell(EMessage /*title*/, const std::string& /*text*/) override {}
};

}  // namespace quillmere

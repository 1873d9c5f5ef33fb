#include "session/questions.h"

#include <algorithm>
#include <iterator>

namespace quillmere {
namespace {

struct TAnswer {
    EMessage question;
    EReply answer;
};

constexpr TAnswer kAnswers[] = {
    // More threads are what the engine needs; nobody waits for the machine but the batch.
    {EMessage::kForceThreads, EReply::kYes},
    // A solve that was started is brought to its end.
    {EMessage::kNavigationQuestion, EReply::kNo},
    // Who ends the program means it.
    {EMessage::kQuitQuestion, EReply::kYes},
};

}  // namespace

EReply BatchAnswer(EMessage question) {
    const auto* const row =
        std::find_if(std::begin(kAnswers), std::end(kAnswers), [question](const TAnswer& answer) {
            return answer.question == question;
        });
    return row == std::end(kAnswers) ? EReply::kNo : row->answer;
}

}  // namespace quillmere

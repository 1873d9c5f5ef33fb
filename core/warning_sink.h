// Where a routine puts a warning that a user should see: the command line prints it, a window
// shows a box, a test keeps it.
//
// Messages travel as ids, so that the receiver chooses the language.
#pragma once

#include "core/messages.h"

#include <string>
#include <vector>

namespace quillmere {

class IWarningSink {
public:
    virtual ~IWarningSink() = default;
    virtual void Warn(EMessage title, EMessage text, const std::vector<std::string>& values) = 0;
};

}  // namespace quillmere

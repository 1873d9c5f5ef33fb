// The services of a front that shows and asks nothing: a batch on the command line.
#pragma once

#include "session/services.h"

namespace quillmere {

class CSilentStatus final : public IStatusService {
public:
    void PostStatus(const std::string& /*text*/) override {}
};

class CSilentRepaint final : public IRepaintService {
public:
    void Repaint() override {}
};

// The tick only repaints what takes time, so that nothing is lost without it.
class CSilentTick final : public ITickService {
public:
    void StartTick(int /*id*/, std::function<void()> /*tick*/) override {}
    void StopTick(int /*id*/) override {}
};

}  // namespace quillmere

// Ctrl-C and the polite request to end (SIGTERM).
//
// The handlers are process-wide. The first request is only noted, so that the work can stop and
// tell what it knows; the second ends the process at once with kInterruptExitCode.
#pragma once

namespace quillmere {

constexpr int kInterruptExitCode = 130;

void CatchInterrupts();
// May be asked by any thread; never becomes false again.
bool WasInterrupted();

}  // namespace quillmere

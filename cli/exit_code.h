// What the program tells its caller.
#pragma once

namespace quillmere {

enum EExitCode : int {
    kExitDone = 0,       // done; a solve: mate; a batch: all as expected
    kExitNoMate = 1,     // no mate, or something differs from what was expected
    kExitUsage = 2,      // wrong usage
    kExitBadInput = 3,   // a bad file, position or option
    kExitUndecided = 4,  // limit reached, doubtful, stopped
    kExitFault = 5,      // internal fault
    kExitInterrupted = 130,
};

}  // namespace quillmere

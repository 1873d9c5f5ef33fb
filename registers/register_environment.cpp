#include "registers/register_environment.h"

#include "session/program_folder.h"

namespace quillmere {

TRegisterSettings RegisterSettingsWithin(u64 memoryLimitBytes) {
    TRegisterSettings settings;
    settings.memoryLimitBytes = memoryLimitBytes;
    settings.programFolder = ProgramFolder("");
    return settings;
}

TRegisterSettings DefaultRegisterSettings() {
    return RegisterSettingsWithin(DefaultRegisterBytes(g_options, ReadSystemInfo()));
}

}  // namespace quillmere

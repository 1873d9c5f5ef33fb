#include "core/platform/terminal.h"

#include <sys/ioctl.h>
#include <unistd.h>

namespace quillmere {

bool IsOutputTerminal() {
    return isatty(STDOUT_FILENO) == 1;
}

bool IsErrorTerminal() {
    return isatty(STDERR_FILENO) == 1;
}

int ErrorTerminalColumns() {
    winsize size{};
    return ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 ? size.ws_col : 0;
}

}  // namespace quillmere

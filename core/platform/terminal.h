// What the standard streams are connected to.
#pragma once

namespace quillmere {

bool IsOutputTerminal();
bool IsErrorTerminal();
// Columns of the terminal behind standard error; 0 if it does not tell.
int ErrorTerminalColumns();

}  // namespace quillmere

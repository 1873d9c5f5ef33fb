// What the standard streams are connected to.
#pragma once

namespace quillmere {

bool IsOutputTerminal();
bool IsErrorTerminal();

}  // namespace quillmere

#include "cli/commands.h"

int main(int argc, char** argv) {
    return quillmere::RunCommandLine(argc, argv);
}

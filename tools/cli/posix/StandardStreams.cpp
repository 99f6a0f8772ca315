#include <unistd.h>

#include "tools/cli/Cli.h"

// They know no other mode here.
void zoka::cli::makeStandardStreamsBinary() {}

bool zoka::cli::isTerminal(std::FILE* stream) {
    return isatty(fileno(stream)) != 0;
}

#include <fcntl.h>
#include <io.h>

#include <cstdio>

#include "tools/cli/Cli.h"

void zoka::cli::makeStandardStreamsBinary() {
    for (std::FILE* stream : {stdin, stdout, stderr}) {
        _setmode(_fileno(stream), _O_BINARY);
    }
}

bool zoka::cli::isTerminal(std::FILE* stream) {
    return _isatty(_fileno(stream)) != 0;
}

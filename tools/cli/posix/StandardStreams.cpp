#include "tools/cli/Cli.h"

// They know no other mode here.
void zoka::cli::makeStandardStreamsBinary() {}

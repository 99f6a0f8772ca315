// A project file, a behaviours file and a components file from any bytes.
#include <cstdint>
#include <cstdio>
#include <cstdlib>

#include "tests/project/Checks.h"
#include "tests/support/TempFolder.h"
#include "util/DebugLog.h"
#include "util/OsFiles.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const zoka::test::TempFolder folder;
    static const bool ready =
        (zoka::debugLogFileName().clear(), zoka::osFiles().setCurrentFolder(folder.path()));
    const std::string fault =
        ready ? zoka::test::ZOKA_FAULT({reinterpret_cast<const char*>(data), size}, folder.path())
              : "no folder";
    if (!fault.empty()) {
        std::fprintf(stderr, "does not hold: %s\n", fault.c_str());
        std::abort();
    }
    return 0;
}

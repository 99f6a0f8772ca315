#include "tests/cli/Unreadable.h"

// A link to itself: rights would not keep out the superuser, as whom tests are often run.
Unreadable::Unreadable(const std::filesystem::path& path) {
    std::filesystem::create_symlink(path.filename(), path);
}

Unwritable::Unwritable(const std::filesystem::path&) {}

// No file may grow beyond 1024 bytes, as if the disk were full; enough for the program's own message.
std::string Unwritable::before() const {
    return "trap '' XFSZ; ulimit -f 2;";
}

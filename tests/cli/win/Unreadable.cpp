#include "tests/cli/Unreadable.h"

#include <share.h>

#include <cstdio>
#include <fstream>

namespace {

std::shared_ptr<void> openUnshared(const std::filesystem::path& path, int share) {
    return {_fsopen(path.string().c_str(), "rb", share),
            [](void* file) { std::fclose(static_cast<std::FILE*>(file)); }};
}

}  // namespace

Unreadable::Unreadable(const std::filesystem::path& path) {
    std::ofstream(path) << "<a/>";
    m_open = openUnshared(path, _SH_DENYRW);
}

Unwritable::Unwritable(const std::filesystem::path& path) : m_open(openUnshared(path, _SH_DENYWR)) {}

std::string Unwritable::before() const {
    return "";
}

#include "tests/cli/Unreadable.h"

#include <share.h>

#include <cstdio>
#include <fstream>

// The file is open here and not shared.
Unreadable::Unreadable(const std::filesystem::path& path) {
    std::ofstream(path) << "<a/>";
    m_handle = _fsopen(path.string().c_str(), "rb", _SH_DENYRW);
}

Unreadable::~Unreadable() {
    std::fclose(static_cast<std::FILE*>(m_handle));
}

Unwritable::Unwritable(const std::filesystem::path& path)
    : m_handle(_fsopen(path.string().c_str(), "rb", _SH_DENYWR)) {}

Unwritable::~Unwritable() {
    std::fclose(static_cast<std::FILE*>(m_handle));
}

std::string Unwritable::before() const {
    return "";
}

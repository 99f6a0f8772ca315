#include "util/OsFiles.h"

namespace zoka {
namespace {
OsFiles* g_files = nullptr;
}

OsFiles& osFiles() {
    return g_files ? *g_files : systemFiles();
}

void setOsFiles(OsFiles* files) {
    g_files = files;
}

}  // namespace zoka

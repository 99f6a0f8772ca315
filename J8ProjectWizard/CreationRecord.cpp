#include "J8ProjectWizard/CreationRecord.h"

#include <algorithm>

#include "util/OsFiles.h"
#include "util/PathRules.h"

namespace zoka {
namespace {

std::string withoutSeparator(std::string path) {
    while (path.size() > 3 && isSeparator(path.back())) {
        path.pop_back();
    }
    return path;
}

}  // namespace

bool CreationRecord::makeFolders(const std::string& path) {
    std::vector<std::string> missing;
    for (std::string folder = withoutSeparator(osFiles().fullPath(path));
         osFiles().kindOf(folder) == OsKind::Missing; folder = folderOf(folder)) {
        missing.push_back(folder);
        if (folderOf(folder).size() >= folder.size()) {
            break;
        }
    }
    const bool made = osFiles().makeFolders(path);
    for (auto folder = missing.rbegin(); folder != missing.rend(); ++folder) {
        if (osFiles().kindOf(*folder) == OsKind::Folder) {
            m_folders.push_back(*folder);
        }
    }
    return made && osFiles().kindOf(path) == OsKind::Folder;
}

bool CreationRecord::makeNewFolder(const std::string& path) {
    const std::string folder = withoutSeparator(osFiles().fullPath(path));
    if (!osFiles().makeFolder(folder)) {
        return false;
    }
    m_folders.push_back(folder);
    return true;
}

void CreationRecord::fileMade(const std::string& path) {
    const auto entry = osFiles().search(path);
    if (!entry) {
        return;
    }
    const std::string full = osFiles().fullPath(path);
    // A file that is written anew was made a moment ago: it is among the last.
    const auto known = std::find_if(m_files.rbegin(), m_files.rend(),
                                    [&full](const File& file) { return file.path == full; });
    if (known != m_files.rend()) {
        *known = {full, entry->size, entry->lastWrite};
    } else {
        m_files.push_back({full, entry->size, entry->lastWrite});
    }
}

std::vector<std::string> CreationRecord::remove() {
    std::vector<std::string> left;
    for (const File& file : m_files) {
        const auto entry = osFiles().search(file.path);
        if (!entry) {
            continue;
        }
        const bool same = entry->size == file.size && entry->lastWrite == file.time;
        if (!same || !osFiles().deleteFile(file.path)) {
            left.push_back(file.path);
        }
    }
    for (auto folder = m_folders.rbegin(); folder != m_folders.rend(); ++folder) {
        if (!osFiles().deleteFolder(*folder) && osFiles().kindOf(*folder) != OsKind::Missing) {
            left.push_back(*folder);
        }
    }
    m_files.clear();
    m_folders.clear();
    return left;
}

}  // namespace zoka

#include "J8ProjectWizard/CreationRecord.h"

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
    const std::string parent(folderOf(folder));
    // The last one is made by itself, which fails where it is there.
    if (!parent.empty() && osFiles().kindOf(parent) != OsKind::Folder && !makeFolders(parent)) {
        return false;
    }
    if (!osFiles().makeFolder(folder)) {
        return false;
    }
    m_folders.push_back(folder);
    return true;
}

bool CreationRecord::copyFile(const std::string& from, const std::string& to) {
    const auto entry = osFiles().copyNew(from, to);
    if (!entry) {
        m_failed.push_back(to);
        return false;
    }
    m_files.push_back({osFiles().fullPath(to), entry->size, entry->lastWrite});
    return true;
}

void CreationRecord::fileWritten(const std::string& path) {
    const std::string full = osFiles().fullPath(path);
    std::erase_if(m_files, [&full](const File& file) { return file.path == full; });
    if (const auto entry = osFiles().search(path)) {
        m_files.push_back({full, entry->size, entry->lastWrite});
    }
}

CreationRecord::Removal CreationRecord::remove(JobProgress* progress) {
    Removal removal;
    size_t done = 0;
    for (const File& file : m_files) {
        removal.isStopped =
            removal.isStopped || !mayContinue(progress, done++, m_files.size(), "Removing " + file.path);
        const auto entry = removal.isStopped ? std::nullopt : osFiles().search(file.path);
        if (!entry && !removal.isStopped) {
            continue;
        }
        const bool same = entry && entry->size == file.size && entry->lastWrite == file.time;
        if (!same || !osFiles().deleteFile(file.path)) {
            removal.left.push_back(file.path);
        }
    }
    for (auto folder = m_folders.rbegin(); folder != m_folders.rend(); ++folder) {
        if (removal.isStopped ||
            (!osFiles().deleteFolder(*folder) && osFiles().kindOf(*folder) != OsKind::Missing)) {
            removal.left.push_back(*folder);
        }
    }
    m_files.clear();
    m_folders.clear();
    m_failed.clear();
    return removal;
}

}  // namespace zoka

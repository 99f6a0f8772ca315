#include "J8ProjectManager/J8File.h"

#include <utility>

#include "J8ProjectManager/J8ProjectManager.h"
#include "J8ProjectManager/ReportTexts.h"
#include "util/OsFiles.h"
#include "util/PathRules.h"
#include "xml/XMLRead.h"

namespace zoka {
namespace {

std::string withSeparator(std::string folder) {
    if (!folder.empty() && !isSeparator(folder.back())) {
        folder += '\\';
    }
    return folder;
}

}  // namespace

void J8Roots::setProject(std::string folder) {
    m_project = withSeparator(std::move(folder));
}

void J8Roots::setData(std::string folder) {
    m_data = withSeparator(std::move(folder));
}

bool isProjectFileThere(const std::string& path) {
    if (path.empty() || hasWildcard(path)) {
        return false;
    }
    const auto entry = osFiles().search(pathFromXml(path));
    return entry && !entry->isFolder;
}

}  // namespace zoka

void CJ8File::Set(std::string text, eType type) {
    m_path = std::move(text);
    m_type = type;
    m_declared = type;
}

void CJ8File::Clear() {
    *this = CJ8File();
}

bool CJ8File::GetFilepath(std::string& out, eType kind, const zoka::J8Roots& roots) const {
    if (m_type <= kInline) {
        return false;
    }
    switch (kind) {
        case kCustomPath:
            out = m_base + m_path;
            return true;
        case kFile:
            out = m_path;
            return true;
        case kProjFile:
            out = roots.project() + m_path;
            return true;
        case kJ8File:
            out = roots.data() + m_path;
            return true;
        default:
            return false;
    }
}

bool CJ8File::GetFilepath(std::string& out, eType kind) const {
    return GetFilepath(out, kind, CJ8ProjectManager::Instance()->m_roots);
}

const char* PathTag(const CJ8File::eType& type) {
    switch (type) {
        case CJ8File::kFile:
            return "file";
        case CJ8File::kProjFile:
            return "proj_file";
        case CJ8File::kJ8File:
            return "j8_file";
        case CJ8File::kNotValid: {
            std::string unused;
            zoka::writeReport(zoka::texts::kSource, unused, zoka::texts::kBadPathTag);
            return "";
        }
        default:
            return "";
    }
}

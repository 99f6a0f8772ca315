#include "util/FileNames.h"

#include "util/File.h"

void fname_t::SplitPath(const char* path) {
    const zoka::PathParts parts = zoka::splitPath(path ? path : "");
    m_drive = parts.drive;
    m_dir = parts.folder;
    m_name = parts.name;
    m_ext = parts.ext;
}

void fname_t::SetExt(const char* ext) {
    m_ext = ext ? ext : "";
    if (!m_ext.empty() && m_ext[0] != '.') {
        m_ext.insert(0, 1, '.');
    }
}

bool dname_t::Exist() const {
    return file_t::DirExist(m_path.c_str());
}

// Here, and not in the class, so that the DLL has something of the class to export.
CFName::CFName(const char* name) : m_name(name ? name : "") {}

CFileFinder::CFileFinder(const char* pattern) {
    const std::string text = pattern ? pattern : "";
    m_folder = text.substr(0, text.size() - zoka::fileNameOf(text).size());
    m_found = zoka::osFiles().list(text);
}

bool CFileFinder::FindNext() {
    if (m_next >= m_found.size()) {
        return false;
    }
    ++m_next;
    return true;
}

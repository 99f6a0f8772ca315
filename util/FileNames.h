// Exported helpers for file names and for finding files, over PathRules and OsFiles.
#pragma once

#include <string>
#include <vector>

#include "util/Export.h"
#include "util/OsFiles.h"
#include "util/PathRules.h"

// A null text is an empty one in all of these.

// A file's path in its four parts; name and extension can be replaced.
class ZOKA_API fname_t {
public:
    fname_t() = default;
    explicit fname_t(const char* path) { SplitPath(path); }

    void SplitPath(const char* path);

    const std::string& GetDrive() const { return m_drive; }  // "C:" or empty
    const std::string& GetDir() const { return m_dir; }      // with its last separator, or empty
    const std::string& GetName() const { return m_name; }    // without extension
    const std::string& GetExt() const { return m_ext; }      // with its dot, or empty
    std::string GetFileName() const { return m_name + m_ext; }
    std::string GetPath() const { return m_drive + m_dir + m_name + m_ext; }

    void SetName(const char* name) { m_name = name ? name : ""; }
    void SetExt(const char* ext);  // with or without its dot

private:
    std::string m_drive, m_dir, m_name, m_ext;
};

// A folder's path.
class ZOKA_API dname_t {
public:
    dname_t() = default;
    explicit dname_t(const char* path) : m_path(path ? path : "") {}

    // Both put a "\" in between unless the path ends with a separator.
    void Append(const char* part) { m_path = GetFile(part); }
    std::string GetFile(const char* name) const { return zoka::joinPath(m_path, name ? name : ""); }
    const std::string& GetPath() const { return m_path; }
    bool Exist() const;

private:
    std::string m_path;
};

// A name that is compared without regard to case.
class ZOKA_API CFName {
public:
    explicit CFName(const char* name);

    const std::string& GetName() const { return m_name; }
    bool operator==(const CFName& other) const { return zoka::equalNoCase(m_name, other.m_name); }
    bool operator<(const CFName& other) const { return zoka::lessNoCase(m_name, other.m_name); }

private:
    std::string m_name;
};

// The files and folders that match a wildcard ("C:\a\*.kez"), sorted by name, as they
// were when the search began.
//     CFileFinder finder("C:\\a\\*.kez");
//     while (finder.FindNext()) use(finder.GetPath());
class ZOKA_API CFileFinder {
public:
    explicit CFileFinder(const char* pattern);

    // Goes to the first, then to each further match; false after the last.
    bool FindNext();
    // Of the current match; only after a FindNext that was true.
    const std::string& GetName() const { return m_found[m_next - 1].name; }
    std::string GetPath() const { return m_folder + GetName(); }
    bool IsDir() const { return m_found[m_next - 1].isFolder; }
    zoka::FileTime GetTime() const { return m_found[m_next - 1].lastWrite; }

private:
    std::string m_folder;  // as in the pattern, with its separator
    std::vector<zoka::OsEntry> m_found;
    size_t m_next = 0;
};

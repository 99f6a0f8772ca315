// A reference to a file of the project, and the folders that references are read against.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace zoka {

// The two folders of a project. Each is empty or ends with a separator.
class J8Roots {
public:
    const std::string& project() const { return m_project; }
    const std::string& data() const { return m_data; }
    // A "\" is added to a text that ends with no separator; an empty one stays empty.
    void setProject(std::string folder);
    void setData(std::string folder);

private:
    std::string m_project;  // the project's own folder: "proj_file"
    std::string m_data;     // the J8 templates' folder: "j8_file"
};

}  // namespace zoka

class CJ8File {
public:
    enum eType : int {
        kNotValid = -1,
        kInline = 0,      // no file: what it would hold stands in the project file
        kCustomPath = 1,  // m_base and m_path
        kFile = 2,        // the text as it stands, relative to the current folder
        kProjFile = 3,    // relative to the project's folder
        kJ8File = 4,      // relative to the J8 templates' folder
    };

    void Set(std::string text, eType type);
    void Clear();

    // The path, in the character set of XML texts, not looked up on the disk. False, with `out` as it was,
    // when this file's kind is not positive or `kind` is none of 1 to 4. The second form goes by the file's
    // own kind. `roots` are those of the project that the file belongs to.
    bool GetFilepath(std::string& out, eType kind, const zoka::J8Roots& roots) const;
    bool GetFilepath(std::string& out, const zoka::J8Roots& roots) const {
        return GetFilepath(out, m_type, roots);
    }
    // The same with the roots of CJ8ProjectManager::Instance(). [editor thread]
    bool GetFilepath(std::string& out, eType kind) const;
    bool GetFilepath(std::string& out) const { return GetFilepath(out, m_type); }

    // Whether the project names a file here, found or not.
    bool isNamed() const { return m_declared >= kFile; }
    // The kind to write it with: a file that wasn't found keeps the kind that it was declared with.
    eType kindToWrite() const { return m_type == kNotValid ? m_declared : m_type; }

    eType m_type = kInline;
    std::string m_path;
    std::string m_base;            // of kCustomPath only
    eType m_declared = kNotValid;  // by the attribute that named it
    std::uint32_t m_place = 0;     // of the element that named it, see XMLNode::place
};

// The attribute that names a file of that kind; empty for kinds without one.
const char* PathTag(const CJ8File::eType& type);

namespace zoka {

// Whether a regular file of that name, in the character set of XML texts, is on the disk.
bool isProjectFileThere(const std::string& path);

}  // namespace zoka

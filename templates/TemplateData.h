// The catalogue of the template scripts that a project can include. Exported: other modules of the suite use
// it under this name.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include "templates/RecordIndex.h"
#include "templates/ScriptElm.h"
#include "util/Export.h"
#include "util/JobProgress.h"
#include "util/KeyedHash.h"
#include "xml/XMLNode.h"

// Holds the catalogue's own header, its folders and its scripts, all in file order. Queries compare exactly,
// with regard to case, unless they say otherwise; where several records match, the first one counts. Lookups
// by name, file name, class and type are indexed.
//
// List queries empty their list, fill it in catalogue order and return true, also when nothing was found.
// Queries for one value return false, and leave it alone, when there is no such script. Texts are in the
// process's 8-bit character set and belong to the caller once copied out.
//
// A catalogue loaded from a file keeps the file's document, and makes a script's record from it when somebody
// asks for one: loading takes little more than parsing, however many fields the scripts have. A copy of the
// catalogue shares the document.
//
// Threads: one at a time for a catalogue and all its copies, for reading too, as for every XML tree.
class ZOKA_API CTemplateData {
public:
    using StringList = std::vector<std::string>;

    // --- the catalogue's own header
    void SetName(const std::string& name) { m_name = name; }
    void SetType(const std::string& type) { m_type = type; }
    void SetVers(const std::string& version) { m_version = version; }
    void SetDate(const std::string& date) { m_date = date; }
    // "6.1 PRO" is taken apart into version and edition (CEngineReq::SetFromText).
    void SetEngReq(const std::string& value) { m_engreq.SetFromText(value); }
    // The folder to which the catalogue's directories are relative. Stays when the catalogue is emptied or
    // loaded.
    void SetBaseDirectory(const std::string& folder) { m_baseDirectory = folder; }
    std::string GetName() const { return m_name; }
    std::string GetDate() const { return m_date; }
    std::string GetType() const { return m_type; }
    std::string GetVers() const { return m_version; }
    std::string GetEngReq() const { return m_engreq.AsText(); }
    std::string GetBaseDirectory() const { return m_baseDirectory; }

    // --- filling
    // Appends a copy, also of a script whose name or file name is there already: queries find the first.
    void AddScript(CScriptElm script);
    // Appends the script of a catalogue file's Script element. Prefix, note, section pictures and editions
    // are not read back: the file format keeps them for people and other programs alone.
    void AddScript(const XMLNode& node);
    // `type` is what scripts name as their directory.
    void AddDirectory(const std::string& type, const std::string& path);
    // Removes everything but the base directory.
    void Empty();
    // True when it holds no script.
    bool IsEmpty() const { return m_rows.empty(); }

    // --- queries
    // "<ALL>", then each script's class once; classes that differ in case alone count as one, spelled as the
    // first.
    bool GetClassList(StringList& list) const;
    // "<ALL>", then the classes of the scripts of that type, each once, case regarded.
    bool GetClassListOfType(StringList& list, const std::string& type) const;
    bool GetScriptList(StringList& list) const;
    // The class "<all>", in any case, stands for every class, here and below.
    bool GetScriptList(StringList& list, const std::string& className) const;
    bool GetScriptListOfType(StringList& list, const std::string& type) const;
    bool GetScriptListOfType(StringList& list, const std::string& type, const std::string& className) const;
    // Names of the actions of all sections; empty when there is no such script.
    bool GetScriptActionNames(StringList& list, const std::string& name) const;
    bool GetScriptActionDesc(std::string& desc, const std::string& name, const std::string& action) const;
    bool GetScriptDesc(std::string& desc, const std::string& name) const;
    bool GetScriptDate(std::string& date, const std::string& name) const;
    bool GetScriptVers(std::string& version, const std::string& name) const;
    bool GetScriptElmFromName(CScriptElm& script, const std::string& name) const;
    bool GetScriptElmFromFilename(CScriptElm& script, const std::string& filename) const;
    bool GetScriptArrayOfType(std::vector<CScriptElm>& scripts, const std::string& type) const;
    // The script's file name; with `withFolder` its path: base directory, the path of the catalogue directory
    // without leading dots, "\", the file name without leading dots, joined without any normalisation. False
    // also when the script's directory is not in the catalogue.
    bool GetScriptFilename(std::string& path, const std::string& name, bool withFolder) const;
    bool GetNameFromFilename(std::string& name, const std::string& filename) const;
    // Whether the script file comes from the template set: the catalogue holds this file name, in any case.
    // `filename` is a name without folder.
    bool QTemplateScript(const std::string& filename) const;

    // --- files
    // Replaces the content by that of a catalogue file. A file that can't be read or parsed shows the XML
    // error box and ends the process (XMLNode::loadFileOrExit); always true. zoka::loadCatalogue is for
    // everybody who goes on.
    bool LoadFromXML(const std::string& path);
    // Writes the catalogue file with today's date. False when the file can't be written; an old file is then
    // still there, whole.
    bool WriteXML(const std::string& path) const;
    // Appends the script described by the comment header of a KEZ file. The record's file name is `filename`
    // as given. Problems of content are appended to `errorText`. False, with nothing changed, when the file
    // can't be read.
    bool LoadScriptFromKEZ(const std::string& filename, std::string& errorText);
    // HTML pages of the scripts of type "USER", in "..\docs\" seen from the current folder: one page for each
    // class, one for each script. False when a page could not be written; the pages before it stay.
    bool WriteHelpDocsByClass() const;
    bool WriteHelpDocsByScript() const;
    // Today's local date as "%y%m%d".
    static std::string GetCurDate();

    // --- for code of this library. References and texts are valid until the catalogue changes. A script is
    // known by its record, its number in catalogue order.
    using Directory = std::pair<std::string, std::string>;  // type, path
    // What lists and lookups need of a script.
    struct Row {
        std::string_view name;
        std::string_view filename;
        std::string_view className;
        std::string_view type;

        std::string_view displayName() const { return name.empty() ? filename : name; }
    };
    // All records, for loops and by number; each is made when it is looked at.
    class Scripts {
    public:
        class Iterator {
        public:
            Iterator(const CTemplateData& catalogue, size_t at) : m_catalogue(&catalogue), m_at(at) {}
            CScriptElm operator*() const { return m_catalogue->script(m_at); }
            Iterator& operator++() {
                ++m_at;
                return *this;
            }
            bool operator==(const Iterator&) const = default;

        private:
            const CTemplateData* m_catalogue;
            size_t m_at;
        };

        explicit Scripts(const CTemplateData& catalogue) : m_catalogue(&catalogue) {}
        size_t size() const { return m_catalogue->rows().size(); }
        bool empty() const { return size() == 0; }
        CScriptElm operator[](size_t record) const { return m_catalogue->script(record); }
        Iterator begin() const { return {*m_catalogue, 0}; }
        Iterator end() const { return {*m_catalogue, size()}; }

    private:
        const CTemplateData* m_catalogue;
    };
    Scripts scripts() const { return Scripts(*this); }
    CScriptElm script(size_t record) const;
    // What a list shows of a script besides its row, without making its record.
    std::string_view description(size_t record) const;
    std::string_view version(size_t record) const;
    std::string_view date(size_t record) const;
    std::string engineReqText(size_t record) const;
    const std::vector<Row>& rows() const { return m_rows; }
    const std::vector<Directory>& directories() const { return m_directories; }
    const CEngineReq& engineReq() const { return m_engreq; }
    std::optional<CScriptElm> findByName(std::string_view name) const;
    std::optional<CScriptElm> findByFilename(std::string_view filename) const;
    std::optional<CScriptElm> findByFilenameNoCase(std::string_view filename) const;
    std::optional<std::uint32_t> recordByFilenameNoCase(std::string_view filename) const;
    const Directory* findDirectory(std::string_view type) const;
    // Replaces the content by that of a parsed catalogue, which nobody may change afterwards. False when `progress`
    // stopped it; the catalogue is then empty.
    bool LoadFromNode(const XMLNode& root, zoka::JobProgress* progress = nullptr);

private:
    // Where a record comes from: a Script element of the document loaded, or the script that was added.
    // Either stays where it is when the catalogue is copied or moved, so rows may point into it.
    using Source = std::variant<XMLNode, std::shared_ptr<const CScriptElm>>;
    using Records = std::vector<std::uint32_t>;

    void reserveScripts(size_t scripts);
    void append(const Row& row, Source source);

    std::string m_name;
    std::string m_type;
    std::string m_version;
    std::string m_date;
    CEngineReq m_engreq;
    std::string m_baseDirectory;
    std::vector<Directory> m_directories;
    std::vector<Row> m_rows;
    std::vector<Source> m_sources;  // of each row

    zoka::RecordIndex<false> m_byName;
    zoka::RecordIndex<true> m_byFilenameNoCase;
    // Those left out of the former, where an earlier one's name differs in case at most.
    zoka::RecordIndex<false> m_laterByFilename;
    zoka::RecordIndex<false> m_byDirectoryType;
    zoka::KeyedMap<std::string_view, Records> m_byClass;
    zoka::KeyedMap<std::string_view, Records> m_byType;
};

#include "templates/TemplateData.h"

#include <algorithm>
#include <ctime>
#include <utility>

#include "templates/CatalogueText.h"
#include "templates/CatalogueXml.h"
#include "templates/HelpPages.h"
#include "templates/ScriptHeader.h"
#include "util/PathRules.h"
#include "util/SafeWrite.h"
#include "xml/XMLRead.h"

namespace {

constexpr const char* kAllClasses = "<ALL>";

bool isAllClasses(std::string_view className) {
    return zoka::equalNoCase(className, kAllClasses);
}

std::string withoutLeadingDots(const std::string& text) {
    return text.substr(std::min(text.find_first_not_of('.'), text.size()));
}

// The text of a record that an index asks for.
auto nameIn(const std::vector<CTemplateData::Row>& rows) {
    return [&rows](std::uint32_t record) { return rows[record].name; };
}
auto filenameIn(const std::vector<CTemplateData::Row>& rows) {
    return [&rows](std::uint32_t record) { return rows[record].filename; };
}
auto typeIn(const std::vector<CTemplateData::Directory>& directories) {
    return [&directories](std::uint32_t record) { return std::string_view(directories[record].first); };
}

using Records = std::vector<std::uint32_t>;

const Records& recordsOf(const zoka::KeyedMap<std::string_view, Records>& index, const std::string& key) {
    static const Records kEmpty;
    const auto found = index.find(key);
    return found == index.end() ? kEmpty : found->second;
}

}  // namespace

void CTemplateData::AddScript(CScriptElm script) {
    const auto own = std::make_shared<const CScriptElm>(std::move(script));
    append({own->m_name, own->m_filename, own->m_class, own->m_type}, own);
}

void CTemplateData::reserveScripts(size_t scripts) {
    m_rows.reserve(scripts);
    m_sources.reserve(scripts);
    m_byName.reserve(scripts);
    m_byFilenameNoCase.reserve(scripts);
}

void CTemplateData::append(const Row& row, Source source) {
    const auto record = static_cast<std::uint32_t>(m_rows.size());
    const std::uint32_t nameHash = m_byName.hashAndPrefetch(row.name);
    const std::uint32_t filenameHash = m_byFilenameNoCase.hashAndPrefetch(row.filename);
    m_rows.push_back(row);
    m_sources.push_back(std::move(source));
    m_byClass[row.className].push_back(record);
    m_byType[row.type].push_back(record);
    m_byName.add(record, nameHash, nameIn(m_rows));
    if (!m_byFilenameNoCase.add(record, filenameHash, filenameIn(m_rows))) {
        m_laterByFilename.add(record, filenameIn(m_rows));
    }
}

void CTemplateData::AddDirectory(const std::string& type, const std::string& path) {
    m_directories.emplace_back(type, path);
    m_byDirectoryType.add(static_cast<std::uint32_t>(m_directories.size() - 1), typeIn(m_directories));
}

void CTemplateData::Empty() {
    std::string base = std::move(m_baseDirectory);
    *this = CTemplateData();
    m_baseDirectory = std::move(base);
}

bool CTemplateData::GetClassList(StringList& list) const {
    list.assign(1, kAllClasses);
    zoka::RecordIndex<true> seen;
    const auto classOf = [this](std::uint32_t record) { return m_rows[record].className; };
    for (std::uint32_t record = 0; record < m_rows.size(); ++record) {
        // A class that is called like the list's first line is in the list already.
        if (!isAllClasses(m_rows[record].className) && seen.add(record, classOf)) {
            list.emplace_back(m_rows[record].className);
        }
    }
    return true;
}

bool CTemplateData::GetClassListOfType(StringList& list, const std::string& type) const {
    list.assign(1, kAllClasses);
    zoka::KeyedSet<std::string_view> seen = {kAllClasses};
    for (const std::uint32_t record : recordsOf(m_byType, type)) {
        if (seen.insert(m_rows[record].className).second) {
            list.emplace_back(m_rows[record].className);
        }
    }
    return true;
}

bool CTemplateData::GetScriptList(StringList& list) const {
    list.clear();
    list.reserve(m_rows.size());
    for (const Row& row : m_rows) {
        list.emplace_back(row.name);
    }
    return true;
}

bool CTemplateData::GetScriptList(StringList& list, const std::string& className) const {
    if (isAllClasses(className)) {
        return GetScriptList(list);
    }
    list.clear();
    for (const std::uint32_t record : recordsOf(m_byClass, className)) {
        list.emplace_back(m_rows[record].name);
    }
    return true;
}

bool CTemplateData::GetScriptListOfType(StringList& list, const std::string& type) const {
    list.clear();
    for (const std::uint32_t record : recordsOf(m_byType, type)) {
        list.emplace_back(m_rows[record].name);
    }
    return true;
}

bool CTemplateData::GetScriptListOfType(StringList& list, const std::string& type,
                                        const std::string& className) const {
    if (isAllClasses(className)) {
        return GetScriptListOfType(list, type);
    }
    list.clear();
    for (const std::uint32_t record : recordsOf(m_byType, type)) {
        if (m_rows[record].className == className) {
            list.emplace_back(m_rows[record].name);
        }
    }
    return true;
}

bool CTemplateData::GetScriptActionNames(StringList& list, const std::string& name) const {
    list.clear();
    const std::optional<CScriptElm> script = findByName(name);
    if (!script) {
        return true;
    }
    for (const CScriptSection& section : script->m_sections) {
        for (const CScriptAction& action : section.m_actions) {
            list.push_back(action.m_name);
        }
    }
    return true;
}

bool CTemplateData::GetScriptActionDesc(std::string& desc, const std::string& name,
                                        const std::string& action) const {
    const std::optional<CScriptElm> script = findByName(name);
    if (!script) {
        return false;
    }
    for (const CScriptSection& section : script->m_sections) {
        for (const CScriptAction& candidate : section.m_actions) {
            if (candidate.m_name == action) {
                desc = candidate.m_desc;
                return true;
            }
        }
    }
    return false;
}

bool CTemplateData::GetScriptDesc(std::string& desc, const std::string& name) const {
    const std::optional<CScriptElm> script = findByName(name);
    if (script) {
        desc = script->m_desc;
    }
    return script.has_value();
}

bool CTemplateData::GetScriptDate(std::string& date, const std::string& name) const {
    const std::optional<CScriptElm> script = findByName(name);
    if (script) {
        date = script->m_date;
    }
    return script.has_value();
}

bool CTemplateData::GetScriptVers(std::string& version, const std::string& name) const {
    const std::optional<CScriptElm> script = findByName(name);
    if (script) {
        version = script->m_vers;
    }
    return script.has_value();
}

bool CTemplateData::GetScriptElmFromName(CScriptElm& script, const std::string& name) const {
    std::optional<CScriptElm> found = findByName(name);
    if (found) {
        script = std::move(*found);
    }
    return found.has_value();
}

bool CTemplateData::GetScriptElmFromFilename(CScriptElm& script, const std::string& filename) const {
    std::optional<CScriptElm> found = findByFilename(filename);
    if (found) {
        script = std::move(*found);
    }
    return found.has_value();
}

bool CTemplateData::GetScriptArrayOfType(std::vector<CScriptElm>& scripts, const std::string& type) const {
    scripts.clear();
    for (const std::uint32_t record : recordsOf(m_byType, type)) {
        scripts.push_back(script(record));
    }
    return true;
}

bool CTemplateData::GetScriptFilename(std::string& path, const std::string& name, bool withFolder) const {
    const std::optional<CScriptElm> script = findByName(name);
    if (!script) {
        return false;
    }
    if (!withFolder) {
        path = script->m_filename;
        return true;
    }
    const Directory* const directory = findDirectory(script->m_directory);
    if (!directory) {
        return false;
    }
    path = m_baseDirectory + withoutLeadingDots(directory->second) + "\\" +
           withoutLeadingDots(script->m_filename);
    return true;
}

bool CTemplateData::GetNameFromFilename(std::string& name, const std::string& filename) const {
    const std::optional<CScriptElm> script = findByFilename(filename);
    if (script) {
        name = script->m_name;
    }
    return script.has_value();
}

bool CTemplateData::QTemplateScript(const std::string& filename) const {
    return recordByFilenameNoCase(filename).has_value();
}

std::string CTemplateData::GetCurDate() {
    const std::time_t now = std::time(nullptr);
    std::tm local{};
#ifdef _WIN32
    local = *std::localtime(&now);  // one object for each thread there
#else
    localtime_r(&now, &local);
#endif
    char text[16];
    return std::string(text, std::strftime(text, sizeof text, "%y%m%d", &local));
}

std::optional<CScriptElm> CTemplateData::findByName(std::string_view name) const {
    const std::uint32_t record = m_byName.find(name, nameIn(m_rows));
    return record == m_byName.kNone ? std::nullopt : std::optional(script(record));
}

std::optional<CScriptElm> CTemplateData::findByFilename(std::string_view filename) const {
    const std::optional<std::uint32_t> first = recordByFilenameNoCase(filename);
    if (!first || m_rows[*first].filename == filename) {
        return first ? std::optional(script(*first)) : std::nullopt;
    }
    const std::uint32_t later = m_laterByFilename.find(filename, filenameIn(m_rows));
    return later == m_laterByFilename.kNone ? std::nullopt : std::optional(script(later));
}

std::optional<CScriptElm> CTemplateData::findByFilenameNoCase(std::string_view filename) const {
    const std::optional<std::uint32_t> record = recordByFilenameNoCase(filename);
    return record ? std::optional(script(*record)) : std::nullopt;
}

std::optional<std::uint32_t> CTemplateData::recordByFilenameNoCase(std::string_view filename) const {
    const std::uint32_t record = m_byFilenameNoCase.find(filename, filenameIn(m_rows));
    return record == m_byFilenameNoCase.kNone ? std::nullopt : std::optional(record);
}

const CTemplateData::Directory* CTemplateData::findDirectory(std::string_view type) const {
    const std::uint32_t record = m_byDirectoryType.find(type, typeIn(m_directories));
    return record == m_byDirectoryType.kNone ? nullptr : &m_directories[record];
}

void CTemplateData::AddScript(const XMLNode& node) {
    AddScript(zoka::readCatalogueScript(node));
}

std::string_view CTemplateData::version(size_t record) const {
    const Source& source = m_sources[record];
    const XMLNode* const node = std::get_if<XMLNode>(&source);
    return node ? zoka::xmlAttribute(*node, "vers")
                : std::string_view(std::get<std::shared_ptr<const CScriptElm>>(source)->m_vers);
}

std::string_view CTemplateData::date(size_t record) const {
    const Source& source = m_sources[record];
    const XMLNode* const node = std::get_if<XMLNode>(&source);
    return node ? zoka::xmlAttribute(*node, "date")
                : std::string_view(std::get<std::shared_ptr<const CScriptElm>>(source)->m_date);
}

std::string CTemplateData::engineReqText(size_t record) const {
    const Source& source = m_sources[record];
    const XMLNode* const node = std::get_if<XMLNode>(&source);
    return node ? zoka::engineVersion(*node)
                : std::get<std::shared_ptr<const CScriptElm>>(source)->m_engreq.AsText();
}

std::string_view CTemplateData::description(size_t record) const {
    const Source& source = m_sources[record];
    const XMLNode* const node = std::get_if<XMLNode>(&source);
    return node ? zoka::xmlFirstText(node->firstChild("desc"))
                : std::string_view(std::get<std::shared_ptr<const CScriptElm>>(source)->m_desc);
}

CScriptElm CTemplateData::script(size_t record) const {
    const Source& source = m_sources[record];
    const XMLNode* const node = std::get_if<XMLNode>(&source);
    return node ? zoka::readCatalogueScript(*node) : *std::get<std::shared_ptr<const CScriptElm>>(source);
}

bool CTemplateData::LoadFromNode(const XMLNode& root, zoka::JobProgress* progress) {
    Empty();
    m_name = zoka::xmlAttribute(root, "name");
    m_type = zoka::xmlAttribute(root, "type");
    m_version = zoka::xmlAttribute(root, "version");
    m_date = zoka::xmlAttribute(root, "date");
    // One walk over the children: the elements of a large file are far apart in memory, and each visit is felt.
    const auto total = static_cast<size_t>(root.childCount());
    reserveScripts(total);
    bool hasReq = false;
    for (XMLNode node = root.firstChild(); !node.isEmpty(); node = node.nextSibling()) {
        node.nextSibling().prefetch();
        const char* const name = node.getName();
        if (!zoka::equalNoCase(name, "Script")) {
            if (zoka::equalNoCase(name, "Directory")) {
                AddDirectory(zoka::xmlAttribute(node, "type"), zoka::xmlAttribute(node, "path"));
            } else if (zoka::equalNoCase(name, "EngineReq") && !std::exchange(hasReq, true)) {
                m_engreq.vers = zoka::xmlAttribute(node, "vers");
            }
            continue;
        }
        // Often enough to keep a window alive, too seldom to be felt.
        if (m_rows.size() % 1024 == 0 && !zoka::mayContinue(progress, m_rows.size(), total, m_name)) {
            Empty();
            return false;
        }
        append(zoka::readCatalogueRow(node), node);
    }
    return true;
}

bool CTemplateData::LoadFromXML(const std::string& path) {
    return LoadFromNode(XMLNode::loadFileOrExit(path.c_str(), zoka::kCatalogueRoot));
}

bool CTemplateData::WriteXML(const std::string& path) const {
    return static_cast<bool>(zoka::safeWrite(path, zoka::inTextMode(zoka::catalogueText(*this, GetCurDate())),
                                             zoka::FileKind::Generated));
}

bool CTemplateData::WriteHelpDocsByClass() const {
    return bool(zoka::writeClassPages(*this, zoka::kHelpFolder));
}

bool CTemplateData::WriteHelpDocsByScript() const {
    return bool(zoka::writeScriptPages(*this, zoka::kHelpFolder));
}

bool CTemplateData::LoadScriptFromKEZ(const std::string& filename, std::string& errorText) {
    CScriptElm script;
    if (!zoka::loadScriptHeader(filename, filename, script, errorText)) {
        return false;
    }
    AddScript(std::move(script));
    return true;
}

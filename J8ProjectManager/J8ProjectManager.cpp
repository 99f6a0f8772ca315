#include "J8ProjectManager/J8ProjectManager.h"

#include <algorithm>
#include <iterator>
#include <mutex>
#include <utility>

#include "J8ProjectManager/DeleteLogged.h"
#include "J8ProjectManager/ReportTexts.h"
#include "util/Doors.h"
#include "util/OsFiles.h"
#include "util/PathRules.h"
#include "util/Text.h"
#include "xml/XMLErrorText.h"
#include "xml/XMLRead.h"

namespace texts = zoka::texts;
using zoka::J8Section;

namespace zoka {
namespace {

// A section, and the lines of its report.
struct SectionFacts {
    const char* tag;
    const texts::FileLines* lines;
    const ReportEntry* missing;  // null: may be missing
};

constexpr SectionFacts kSections[kJ8Sections] = {
    {"Camera", &texts::kCameraFile, nullptr},
    {"UI", &texts::kUIFile, nullptr},
    {"AnimationPool", &texts::kAnimationFile, nullptr},
    {"WeaponDefPool", &texts::kWeaponDefFile, nullptr},
    {"Display", &texts::kDisplayFile, &texts::kDisplayMissing},
    {"UserInput", &texts::kUserInputFile, &texts::kUserInputMissing},
};

// The attributes that name a file, the first one present counts.
struct FileAttribute {
    const char* name;
    CJ8File::eType type;
};
constexpr FileAttribute kFileAttributes[] = {
    {"proj_file", CJ8File::kProjFile}, {"j8_file", CJ8File::kJ8File}, {"file", CJ8File::kFile}};

// In the order of trying.
constexpr CJ8File::eType kTried[] = {CJ8File::kFile, CJ8File::kProjFile, CJ8File::kJ8File};

const ReportEntry& lineOf(const texts::FileLines& lines, CJ8File::eType type) {
    switch (type) {
        case CJ8File::kInline:
            return lines.isInline;
        case CJ8File::kCustomPath:
            return lines.custom;
        case CJ8File::kFile:
            return lines.local;
        case CJ8File::kProjFile:
            return lines.proj;
        case CJ8File::kJ8File:
            return lines.j8;
        default:
            return lines.notValid;
    }
}

// Freed by deleteInstance, never by the process's end: a static's destructor would run when the library's other
// parts are gone.
std::mutex g_instanceLock;
CJ8ProjectManager* g_instance = nullptr;

}  // namespace

const char* sectionTag(J8Section section) {
    return kSections[static_cast<int>(section)].tag;
}

}  // namespace zoka

CJ8ProjectManager* CJ8ProjectManager::Instance() {
    const std::lock_guard lock(zoka::g_instanceLock);
    if (!zoka::g_instance) {
        zoka::g_instance = new CJ8ProjectManager();
    }
    return zoka::g_instance;
}

void CJ8ProjectManager::deleteInstance() {
    const std::lock_guard lock(zoka::g_instanceLock);
    delete zoka::g_instance;
    zoka::g_instance = nullptr;
}

CJ8ProjectManager::~CJ8ProjectManager() {
    constexpr const char* kFunc = "CJ8ProjectManager::~CJ8ProjectManager()";
    zoka::deleteLogged(m_apLevels, kFunc, "Throw while deleting m_apLevels");
    zoka::deleteLogged(m_apBehavior, kFunc, "Throw while deleting m_apBehavior");
    zoka::deleteLogged(m_apComponents, kFunc, "Throw while deleting m_apComponents");
    zoka::deleteLogged(m_apBehaviorFiles, kFunc, "Throw while deleting m_apBehaviorFiles");
}

void CJ8ProjectManager::clearContent() {
    m_report.clear();
    m_apBehaviorFiles.clear();
    m_apLostBehaviorFiles.clear();
    for (CJ8File& file : m_sections) {
        file.Clear();
    }
    m_apLevels.clear();
    m_apBehavior.clear();
    m_apComponents.clear();
    m_sources.clear();
    m_source = 0;
    m_referrer = 0;
    m_findings.clear();
    m_componentIndex.clear();
    m_behaviorIndex.clear();
    m_loadedComponents.clear();
    m_behaviorNames.reset();
    // Also where the rest is kept: a save after a load that failed must not empty the file loaded before.
    m_projectFile.Clear();
}

void CJ8ProjectManager::Clear() {
    clearContent();
    m_roots = {};
    m_name.clear();
    m_date.clear();
    m_vers.clear();
}

std::string CJ8ProjectManager::projectFile() const {
    std::string path;
    return m_projectFile.GetFilepath(path, m_roots) ? path : std::string();
}

void CJ8ProjectManager::setProjectFile(const std::string& path) {
    const std::string full = zoka::osFiles().fullPath(path);
    const std::string_view name = zoka::fileNameOf(full);
    m_projectFile.Set(std::string(name), CJ8File::kCustomPath);
    m_projectFile.m_base = full.substr(0, full.size() - name.size());
}

const CJ8CMPData* CJ8ProjectManager::component(std::string_view name) const {
    const auto found = m_componentIndex.find(name);
    return found ? &m_apComponents[*found] : nullptr;
}

const CJ8BehaviorData* CJ8ProjectManager::behavior(std::string_view name) const {
    const auto found = m_behaviorIndex.find(name);
    return found ? &m_apBehavior[*found] : nullptr;
}

void CJ8ProjectManager::add(const zoka::ReportEntry& entry, Arguments arguments, std::uint32_t place,
                            int sourceLine) {
    addTo(m_report, entry, arguments, place, sourceLine);
}

void CJ8ProjectManager::addTo(std::string& report, const zoka::ReportEntry& entry, Arguments arguments,
                              std::uint32_t place, int sourceLine) {
    if (m_isStopped) {
        return;
    }
    std::string line = zoka::writeReport(texts::kSource, report, entry, arguments, sourceLine, m_lateLog);
    if (entry.severity == 0) {
        return;
    }
    if (*entry.finding || line.empty()) {
        line = zoka::filledText(*entry.finding ? entry.finding : entry.log, arguments);
    }
    m_findings.push_back({entry.severity, m_source, place, zoka::onOneLine(line, "")});
}

void CJ8ProjectManager::log(const zoka::ReportEntry& entry, Arguments arguments, int sourceLine) {
    if (!m_isStopped) {
        zoka::writeReport(texts::kSource, m_report, entry, arguments, sourceLine, m_lateLog);
    }
}

std::uint32_t CJ8ProjectManager::addSource(const std::string& path) {
    m_sources.push_back(path);
    return static_cast<std::uint32_t>(m_sources.size() - 1);
}

XMLNode CJ8ProjectManager::openFile(const std::string& path, const char* root,
                                    const zoka::ReportEntry& missing, const zoka::ReportEntry& bad) {
    if (path.empty()) {  // what refers to it was told of
        log(missing, {path});
        return {};
    }
    if (!zoka::isProjectFileThere(path)) {
        add(missing, {path}, m_referrer);
        return {};
    }
    XMLResults results;
    XMLNode top =
        XMLNode::parseFile(zoka::pathFromXml(path).c_str(), root, &results, m_watch, XMLCharset::Utf8);
    if (top.isEmpty() && !m_isStopped) {
        add(bad, {path}, m_referrer);
        tellParseError(path, results, root);
    }
    return top;
}

// The place in the broken file, for those who mend it.
void CJ8ProjectManager::tellParseError(const std::string& path, const XMLResults& results, const char* root) {
    zoka::J8Finding finding{zoka::kReportError, addSource(path), 0,
                            zoka::xmlErrorMessage(results, root, path)};
    const zoka::XMLPlace place = zoka::xmlErrorPlace(results);
    finding.line = place.line;
    finding.column = place.column;
    m_findings.push_back(std::move(finding));
}

CJ8File::eType CJ8ProjectManager::GetFilenameFromXML(CJ8File& file, const XMLNode& element) {
    file.Clear();
    file.m_type = CJ8File::kNotValid;
    file.m_place = element.place();
    const char* text = nullptr;
    for (const zoka::FileAttribute& each : zoka::kFileAttributes) {
        if (const char* const value = element.getAttribute(each.name)) {
            text = value;
            file.Set(value, each.type);
            break;
        }
    }
    if (!text) {
        add(texts::kNoFilename, {}, element.place());
        return CJ8File::kNotValid;
    }
    return resolve(file);
}

CJ8File::eType CJ8ProjectManager::resolve(CJ8File& file) const {
    file.m_type = file.m_declared;  // so that a path can be asked for
    for (const CJ8File::eType kind : zoka::kTried) {
        std::string path;
        if (!file.m_path.empty() && file.GetFilepath(path, kind, m_roots) && zoka::isProjectFileThere(path)) {
            file.m_type = kind;
            return kind;
        }
    }
    file.m_type = CJ8File::kNotValid;
    return CJ8File::kNotValid;
}

void CJ8ProjectManager::resolveSections() {
    for (CJ8File& file : m_sections) {
        if (file.isNamed()) {
            if (file.m_type == CJ8File::kNotValid) {
                resolve(file);
            } else {
                keepKind(file);
            }
        }
    }
}

void CJ8ProjectManager::keepKind(CJ8File& file) const {
    std::string path;
    file.m_type = file.kindToWrite();
    if (!file.GetFilepath(path, m_roots) || !zoka::isProjectFileThere(path)) {
        file.m_type = CJ8File::kNotValid;
    }
}

std::shared_ptr<const std::vector<std::string>> CJ8ProjectManager::behaviorNames() const {
    if (!m_behaviorNames) {
        auto names = std::make_shared<std::vector<std::string>>();
        for (const CJ8BehaviorData& behavior : m_apBehavior) {
            if (!behavior.m_name.empty()) {
                names->push_back(behavior.m_name);
            }
        }
        m_behaviorNames = std::move(names);
    }
    return m_behaviorNames;
}

bool CJ8ProjectManager::LoadFromXML(const std::string& path, bool keepFilled) {
    const auto entry = zoka::hasWildcard(path) ? std::nullopt : zoka::osFiles().search(path);
    if (entry && !entry->isFolder) {
        XMLResults results;
        ReadLevels read;
        const XMLNode root = parseTakingLevels(path, results, read);
        if (results.outOfMemory) {
            throw zoka::OutOfMemory(path);
        }
        return load(root, path, keepFilled, &results, std::move(read));
    }
    keepFilled ? clearContent() : Clear();
    const std::string& file = m_sources.emplace_back(zoka::xmlFromPath(path));
    add(texts::kXmlMissing, {file}, 0);
    return false;
}

// Levels are most of a large project: each is read into the model and freed as soon as it is parsed, so that their tree
// takes the memory of one and stays in the processor's caches.
XMLNode CJ8ProjectManager::parseTakingLevels(const std::string& path, XMLResults& results, ReadLevels& read) {
    CJ8ProjectManager levels;
    levels.m_lateLog = &read.log;
    const auto take = [&](const XMLNode& child) {
        if (child.isEmpty()) {
            levels.Clear();
            read.log.clear();
            return false;
        }
        if (!zoka::equalNoCase(child.getName(), "Level")) {
            return false;
        }
        levels.loadLevel(child);
        return true;
    };
    const XMLNode root = XMLNode::parseFileTaking(path.c_str(), "Project", &results, take, XMLCharset::Utf8);
    read.levels = std::move(levels.m_apLevels);
    read.report = std::move(levels.m_report);
    read.findings = std::move(levels.m_findings);
    return root;
}

void CJ8ProjectManager::loadLevel(const XMLNode& node) {
    if (!LoadLevel(m_apLevels.emplace_back(), node, m_report)) {
        log(texts::kLevelFailed);
    }
}

std::unique_ptr<CJ8ProjectManager> CJ8ProjectManager::withoutLevels() const {
    auto copy = std::make_unique<CJ8ProjectManager>();
    copy->m_roots = m_roots;
    copy->m_name = m_name;
    copy->m_date = m_date;
    copy->m_vers = m_vers;
    copy->m_apBehaviorFiles = m_apBehaviorFiles;
    copy->m_apLostBehaviorFiles = m_apLostBehaviorFiles;
    std::ranges::copy(m_sections, copy->m_sections);
    copy->m_projectFile = m_projectFile;
    return copy;
}

void CJ8ProjectManager::replaceLevels(const XMLNode& root) {
    CJ8ProjectManager levels;
    std::vector<zoka::LateLogEntry> unused;
    levels.m_lateLog = &unused;
    for (XMLNode node = root.firstChild("Level"); !node.isEmpty(); node = node.nextSibling("Level")) {
        levels.loadLevel(node);
    }
    m_apLevels = std::move(levels.m_apLevels);
}

bool CJ8ProjectManager::loadFromTree(const XMLNode& root, const std::string& path, bool keepFilled,
                                     const XMLResults* results, const XMLProgress& watch) {
    if (watch) {
        m_watch = [this, watch](size_t done, size_t total) {
            m_isStopped = m_isStopped || !watch(done, total);
            return !m_isStopped;
        };
    }
    const bool loaded = load(root, path, keepFilled, results, {});
    m_watch = {};
    m_isStopped = false;
    return loaded;
}

// `read` are the levels that the tree holds no more.
bool CJ8ProjectManager::load(const XMLNode& root, const std::string& path, bool keepFilled,
                             const XMLResults* results, ReadLevels&& read) {
    keepFilled ? clearContent() : Clear();
    const std::string file = m_sources.emplace_back(zoka::xmlFromPath(path));
    if (root.isEmpty()) {
        add(texts::kRootMissing, {file}, 0);
        if (results) {
            tellParseError(file, *results, "Project");
        }
        return false;
    }
    setProjectFile(path);
    m_sources[0] = zoka::xmlFromPath(projectFile());
    const auto take = [&](std::string& field, const char* name, const zoka::ReportEntry& missing) {
        if (!field.empty()) {
            return;  // kept: a load that keeps nothing has emptied it
        }
        if (const char* const value = root.getAttribute(name)) {
            field = value;
        } else {
            add(missing, {file}, root.place());
        }
    };
    take(m_name, "name", texts::kNoName);
    take(m_vers, "vers", texts::kNoVers);
    take(m_date, "date", texts::kNoDate);
    loadPaths(root);
    loadBehaviorFiles(root);
    if (m_isStopped) {
        return false;
    }
    loadSections(root);
    m_apLevels = std::move(read.levels);
    m_report += read.report;
    std::ranges::move(read.findings, std::back_inserter(m_findings));
    for (const zoka::LateLogEntry& entry : read.log) {
        zoka::writeLog(texts::kSource, entry);
    }
    for (XMLNode node = root.firstChild("Level"); !node.isEmpty(); node = node.nextSibling("Level")) {
        loadLevel(node);
    }
    return true;
}

void CJ8ProjectManager::loadPaths(const XMLNode& root) {
    // What is filled here is kept: a load that keeps nothing has emptied both.
    if (!m_roots.data().empty() && !m_roots.project().empty()) {
        return;
    }
    const XMLNode paths = root.firstChild("Paths");
    if (paths.isEmpty()) {
        add(texts::kPathsMissing, {}, root.place());
        return;
    }
    if (m_roots.data().empty()) {
        if (const char* const value = paths.getAttribute("j8_file")) {
            m_roots.setData(value);
            add(texts::kJ8Path, {m_roots.data()}, 0);
        } else {
            add(texts::kJ8PathMissing, {}, paths.place());
        }
    }
    if (m_roots.project().empty()) {
        if (const char* const value = paths.getAttribute("proj_file")) {
            m_roots.setProject(value);
            add(texts::kProjPath, {m_roots.project()}, 0);
        } else {
            add(texts::kProjPathMissing, {}, paths.place());
        }
    }
}

void CJ8ProjectManager::reportFile(const CJ8File& file, const texts::FileLines& lines) {
    // Which file is missing is told by the check, which knows what was edited since.
    log(zoka::lineOf(lines, file.m_type), {file.m_path});
}

void CJ8ProjectManager::loadBehaviorFiles(const XMLNode& root) {
    for (XMLNode node = root.firstChild("Behavior"); !node.isEmpty() && !m_isStopped;
         node = node.nextSibling("Behavior")) {
        CJ8File file;
        GetFilenameFromXML(file, node);
        reportFile(file, texts::kBehaviorFile);
        std::string path;
        if (!file.GetFilepath(path, m_roots)) {
            log(texts::kNoBehaviorPath);
        }
        m_referrer = node.place();
        if (LoadBehaviorXML(path)) {
            m_apBehaviorFiles.push_back(std::move(file));
        } else {
            log(texts::kBehaviorProblem, {file.m_path, path});
            m_apLostBehaviorFiles.push_back(std::move(file));
        }
    }
}

void CJ8ProjectManager::loadSections(const XMLNode& root) {
    for (int i = 0; i < zoka::kJ8Sections; ++i) {
        const zoka::SectionFacts& facts = zoka::kSections[i];
        const XMLNode node = root.firstChild(facts.tag);
        if (!node.isEmpty()) {
            GetFilenameFromXML(m_sections[i], node);
            reportFile(m_sections[i], *facts.lines);
        } else if (facts.missing) {
            add(*facts.missing, {}, root.place());
        }
    }
}

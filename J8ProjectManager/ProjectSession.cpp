#include "J8ProjectManager/ProjectSession.h"

#include <algorithm>
#include <new>
#include <set>
#include <utility>

#include "J8ProjectManager/ProjectCheck.h"
#include "util/LineDiff.h"
#include "util/OsFiles.h"
#include "util/Text.h"
#include "xml/XMLConvert.h"
#include "xml/XMLErrorText.h"

namespace zoka {
namespace {

using ChangeKind = ProjectChange::Kind;

constexpr const char* kStopped = "Loading was stopped.";

// `name`, or with the first number behind it that makes it one that no record has.
template <class List, class Name>
std::string freeName(const List& list, std::string name, const Name& nameOf) {
    std::set<std::string> taken;
    for (const auto& record : list) {
        taken.insert(nameOf(record));
    }
    if (!taken.contains(name)) {
        return name;
    }
    for (size_t number = 2;; ++number) {
        const std::string tried = name + std::to_string(number);
        if (!taken.contains(tried)) {
            return tried;
        }
    }
}

std::string freeLevelName(const CJ8ProjectManager& project, const std::string& name) {
    return freeName(project.m_apLevels, name, [](const CJ8LevelData& level) { return level.m_name; });
}

std::string freeEntityName(const CJ8LevelData& level, const std::string& name) {
    return freeName(level.m_entities, name, [](const J8LevelEntity& entity) { return entity.name; });
}

// A copy stands in no file yet.
void forgetPlaces(J8LevelEntity& entity) {
    entity.place = 0;
    for (J8EntitySkill& skill : entity.skills) {
        skill.place = 0;
    }
    for (J8EntityComponent& component : entity.components) {
        component.place = 0;
        for (J8Edit& edit : component.edits) {
            edit.place = 0;
        }
    }
}

// Why a project file can't hold the text; else empty.
std::string textRefusal(const std::string& text) {
    if (firstNotUtf8(text) != text.npos) {
        return "This is no UTF-8 text.";
    }
    for (const char c : text) {
        if (static_cast<unsigned char>(c) < 0x20 && c != '\t' && c != '\n' && c != '\r') {
            return "The file can't hold control character " + std::to_string(static_cast<unsigned char>(c)) +
                   ".";
        }
    }
    return {};
}

// Why a value can't be taken away; else empty.
std::string removalRefusal(const CJ8ProjectManager& project, const ProjectField& field) {
    switch (field.kind) {
        case ProjectField::Kind::Name:
        case ProjectField::Kind::ProjectRoot:
        case ProjectField::Kind::DataRoot:
            return "A value is needed here, if an empty one: no parent gives one.";
        case ProjectField::Kind::LevelName:
        case ProjectField::Kind::EntityName:
            return fieldRefusal(project, field, "");
        default:
            return {};
    }
}

const char* severityWord(int severity) {
    return severity == kReportError ? "error" : severity == kReportWarning ? "warning" : "note";
}

}  // namespace

Outcome ProjectSession::open(Loaded loaded) {
    m_path = loaded.path;
    m_edits.clear();
    m_reserve.refill();
    Outcome usable = loaded.usable;
    replaceModel(std::move(loaded));
    return usable;
}

ProjectSession::Loaded ProjectSession::read(const std::string& path, const XMLProgress& watch) {
    std::string full = osFiles().fullPath(path);
    if (auto bytes = osFiles().readWhole(full)) {
        return loadedFrom(std::move(full), std::move(*bytes), watch);
    }
    Loaded loaded;
    loaded.usable = Refusal{"Can't read '" + full + "': " + osFiles().lastError()};
    loaded.model = std::make_unique<CJ8ProjectManager>();
    loaded.model->LoadFromXML(full, false);  // which reports it
    loaded.path = std::move(full);
    return loaded;
}

ProjectSession::Loaded ProjectSession::loadedFrom(std::string path, std::string bytes,
                                                  const XMLProgress& watch) {
    Loaded loaded;
    loaded.path = std::move(path);
    loaded.model = std::make_unique<CJ8ProjectManager>();
    loaded.bytes = std::move(bytes);
    XMLResults results;
    bool isStopped = false;
    XMLProgress asked;
    if (watch) {
        asked = [&](size_t done, size_t total) {
            isStopped = isStopped || !watch(done, total);
            return !isStopped;
        };
    }
    const XMLNode document = XMLNode::parseBytes(loaded.bytes, nullptr, &results, asked, XMLCharset::Utf8);
    if (isStopped) {  // not a damaged file, of which something would be told
        loaded.usable = Refusal{kStopped};
        return loaded;
    }
    loaded.wasRead = !results.outOfMemory;
    if (!document.isEmpty() && document.firstChild("Project").isEmpty()) {
        results.code = kXmlFirstTagNotFound;
    }
    if (loaded.model->loadFromTree(document.firstChild("Project"), loaded.path, false, &results, asked)) {
        loaded.frame = loaded.model->withoutLevels();
        return loaded;
    }
    if (isStopped) {
        loaded.usable = Refusal{kStopped};
        return loaded;
    }
    std::string why = xmlErrorMessage(results, "Project", loaded.path);
    if (!results.outOfMemory) {
        std::string where = loaded.path;
        if (const XMLPlace place = xmlErrorPlace(results); place.line > 0) {
            where += ":" + std::to_string(place.line) + ":" + std::to_string(place.column);
        }
        why = where + ": " + why;
    }
    loaded.usable = Refusal{std::move(why)};
    return loaded;
}

void ProjectSession::replaceModel(Loaded loaded) {
    if (modelGoes) {
        modelGoes();
    }
    m_model = std::move(*loaded.model);
    m_bytes = std::move(loaded.bytes);
    m_frame = std::move(loaded.frame);
    m_losses.clear();
    m_wasRead = loaded.wasRead;
    m_places.reset();
    if (modelReplaced) {
        modelReplaced();
    }
}

namespace {

// What of the file `bytes` has no place in the format; `frame` is what was loaded from it, without its levels.
std::vector<ProjectLoss> lossesOfFormat(const std::string& bytes, CJ8ProjectManager& frame) {
    const XMLNode document = XMLNode::parseBytes(bytes, nullptr, nullptr, {}, XMLCharset::Utf8);
    if (document.isEmpty()) {
        throw std::bad_alloc();  // it could be read before
    }
    // The model may have been edited since.
    frame.replaceLevels(document.firstChild("Project"));
    const XMLNode written = frame.createXMLTopNode({}, frame.m_date);
    if (written.isEmpty()) {
        throw std::bad_alloc();  // nobody could tell what a save would lose
    }
    return lossesOf(document, written, bytes);
}

}  // namespace

const std::vector<ProjectLoss>& ProjectSession::foundLosses() const {
    if (m_frame) {
        m_losses = lossesOfFormat(m_bytes, *m_frame);
        m_frame.reset();
    }
    return m_losses;
}

std::vector<ProjectLoss> ProjectSession::lossesOfFile(const std::string& bytes) const {
    const Loaded loaded = loadedFrom(m_path, bytes);
    if (!loaded.wasRead) {
        throw std::bad_alloc();
    }
    // Of what is no project nothing can be told; its copy keeps all.
    return loaded.frame ? lossesOfFormat(bytes, *loaded.frame) : std::vector<ProjectLoss>();
}

std::vector<ProjectProblem> ProjectSession::losses() const {
    std::vector<ProjectProblem> rows;
    for (const ProjectLoss& loss : foundLosses()) {
        rows.push_back({xmlFromPath(m_path), loss.place.line, loss.place.column, kReportWarning,
                        "a save does not keep " + loss.text, 0, loss.at});
    }
    return rows;
}

std::vector<ProjectProblem> ProjectSession::problems() const {
    std::vector<ProjectProblem> rows;
    ProjectPlaces places(m_model);
    const auto take = [&](const std::vector<J8Finding>& findings) {
        for (const J8Finding& finding : findings) {
            const XMLPlace place = places.of(finding);
            const std::string file =
                finding.source < m_model.sources().size() ? m_model.sources()[finding.source] : "";
            rows.push_back({file, place.line, place.column, finding.severity, finding.text, finding.source,
                            finding.place});
        }
    };
    take(m_model.findings());
    take(checkProject(m_model));
    for (ProjectProblem& loss : losses()) {
        rows.push_back(std::move(loss));
    }
    return rows;
}

std::string ProjectSession::problemsText(const std::vector<ProjectProblem>& problems) {
    std::string text;
    for (const ProjectProblem& each : problems) {
        text += each.file;
        if (each.line > 0) {
            text += ":" + std::to_string(each.line) + ":" + std::to_string(each.column);
        }
        text += std::string(": ") + severityWord(each.severity) + ": ";
        for (const char c : each.text) {
            text += c == '\n' ? "\\n" : c == '\r' ? "" : std::string(1, c);  // a name may hold line ends
        }
        text += "\n";
    }
    return text;
}

std::string ProjectSession::placeText(std::uint32_t source, std::uint32_t place) const {
    if (!m_places) {
        m_places.emplace(m_model);
    }
    J8Finding at;
    at.source = source;
    at.place = place;
    return m_places->text(at);
}

bool ProjectSession::leaveField() {
    m_edits.endJoining();
    const bool looks = std::exchange(m_typedPaths, false);
    if (looks) {
        m_model.resolveSections();
    }
    return looks;
}

Outcome ProjectSession::setValue(const ProjectField& field, const std::optional<std::string>& value,
                                 bool typing) {
    return setValues({{field, value}}, typing);
}

Outcome ProjectSession::setValues(const std::vector<FieldValue>& values, bool typing) {
    ProjectEdits::Step step;
    bool arePaths = false;
    for (const auto& [field, value] : values) {
        if (fieldValue(m_model, field) == value) {
            continue;
        }
        std::string refusal = value ? textRefusal(*value) : removalRefusal(m_model, field);
        if (value && refusal.empty()) {
            refusal = fieldRefusal(m_model, field, *value);
        }
        if (!refusal.empty()) {
            return Refusal{std::move(refusal)};
        }
        step.push_back(valueChange(m_model, field, value));
        arePaths = arePaths || field.kind <= ProjectField::Kind::Section;
    }
    if (!m_edits.apply(m_model, std::move(step), typing)) {
        return Refusal{"This value does not fit here."};
    }
    m_typedPaths = m_typedPaths || (typing && arePaths);
    return {};
}

void ProjectSession::step(ProjectChange change) {
    ProjectEdits::Step one;
    one.push_back(std::move(change));
    m_edits.apply(m_model, std::move(one));
}

void ProjectSession::addLevel(size_t place, const std::string& name) {
    CJ8LevelData level;
    level.m_name = freeLevelName(m_model, name);
    ProjectChange change;
    change.kind = ChangeKind::LevelAdded;
    change.field.level = std::min(place, m_model.m_apLevels.size());
    change.address = "level/" + level.m_name;
    change.level = std::make_shared<const CJ8LevelData>(std::move(level));
    step(std::move(change));
}

void ProjectSession::duplicateLevel(size_t level) {
    CJ8LevelData copy = m_model.m_apLevels[level];
    copy.m_name = freeLevelName(m_model, copy.m_name);
    copy.m_place = 0;
    std::ranges::for_each(copy.m_entities, forgetPlaces);
    ProjectChange change;
    change.kind = ChangeKind::LevelAdded;
    change.field.level = level + 1;
    change.address = "level/" + copy.m_name;
    change.level = std::make_shared<const CJ8LevelData>(std::move(copy));
    step(std::move(change));
}

void ProjectSession::removeLevel(size_t level) {
    ProjectChange change;
    change.kind = ChangeKind::LevelRemoved;
    change.field.level = level;
    change.address = addressOfLevel(m_model, level);
    change.level = std::make_shared<const CJ8LevelData>(m_model.m_apLevels[level]);
    step(std::move(change));
}

void ProjectSession::moveLevel(size_t from, size_t to) {
    ProjectChange change;
    change.kind = ChangeKind::LevelMoved;
    change.field.level = from;
    change.to = std::min(to, m_model.m_apLevels.size() - 1);
    change.address = addressOfLevel(m_model, from);
    if (change.to != from) {
        step(std::move(change));
    }
}

void ProjectSession::addEntity(size_t level, size_t place, const std::string& name,
                               const std::string& parent) {
    const CJ8LevelData& owner = m_model.m_apLevels[level];
    J8LevelEntity entity;
    entity.name = freeEntityName(owner, name);
    entity.parent = parent;
    ProjectChange change;
    change.kind = ChangeKind::EntityAdded;
    change.field.level = level;
    change.field.entity = std::min(place, owner.m_entities.size());
    change.address = addressOfLevel(m_model, level);
    change.entityAfter = std::make_shared<const J8LevelEntity>(std::move(entity));
    step(std::move(change));
}

void ProjectSession::duplicateEntity(size_t level, size_t entity) {
    const CJ8LevelData& owner = m_model.m_apLevels[level];
    J8LevelEntity copy = owner.m_entities[entity];
    copy.name = freeEntityName(owner, copy.name);
    forgetPlaces(copy);
    ProjectChange change;
    change.kind = ChangeKind::EntityAdded;
    change.field.level = level;
    change.field.entity = entity + 1;
    change.address = addressOfLevel(m_model, level);
    change.entityAfter = std::make_shared<const J8LevelEntity>(std::move(copy));
    step(std::move(change));
}

void ProjectSession::removeEntity(size_t level, size_t entity) {
    ProjectChange change;
    change.kind = ChangeKind::EntityRemoved;
    change.field.level = level;
    change.field.entity = entity;
    change.address = addressOfEntity(m_model, level, entity);
    change.entityAfter = std::make_shared<const J8LevelEntity>(m_model.m_apLevels[level].m_entities[entity]);
    step(std::move(change));
}

bool ProjectSession::moveEntity(size_t level, size_t from, size_t to) {
    if (level >= m_model.m_apLevels.size() || from >= m_model.m_apLevels[level].m_entities.size()) {
        return false;
    }
    ProjectChange change;
    change.kind = ChangeKind::EntityMoved;
    change.field.level = level;
    change.field.entity = from;
    change.to = std::min(to, m_model.m_apLevels[level].m_entities.size() - 1);
    change.address = addressOfEntity(m_model, level, from);
    if (change.to != from) {
        step(std::move(change));
    }
    return true;
}

const ProjectChange* ProjectSession::undo() {
    return m_edits.canUndo() ? &m_edits.undo(m_model).back() : nullptr;
}

const ProjectChange* ProjectSession::redo() {
    return m_edits.canRedo() ? &m_edits.redo(m_model).back() : nullptr;
}

std::string ProjectSession::text() const {
    const XMLText text = m_model.fileText({}, CJ8ProjectManager::dateNow());
    if (!text) {
        throw std::bad_alloc();  // an empty text would look like one that lost everything
    }
    return std::string(text.view());
}

std::string ProjectSession::changesText() const {
    const std::string after = text();
    return unifiedDifference(std::string_view(m_bytes).substr(utf8MarkLength(m_bytes)),
                             std::string_view(after).substr(utf8MarkLength(after)), xmlFromPath(m_path),
                             xmlFromPath(m_path));
}

}  // namespace zoka

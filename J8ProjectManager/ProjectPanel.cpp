#include "J8ProjectManager/ProjectPanel.h"

#include <memory>
#include <utility>

#include "util/PathRules.h"
#include "util/UserPrompt.h"

namespace zoka {

namespace {

using Kind = ProjectField::Kind;

bool canBeWithout(Kind kind) {
    return kind == Kind::Section || kind == Kind::LevelMap;
}

bool namesAFile(Kind kind) {
    return kind == Kind::Section || kind == Kind::LevelMap || kind == Kind::ProjectRoot ||
           kind == Kind::DataRoot;
}

bool startsWithoutCase(const std::string& path, const std::string& folder) {
    return !folder.empty() && path.size() > folder.size() &&
           equalNoCase(path.substr(0, folder.size()), folder);
}

}  // namespace

std::string shownForm(const ProjectRow& row, const std::string& stored, const ProjectTexts& texts) {
    std::string text = stored;
    if (row.property) {
        text = shownValue(J8TypedValue::of(*row.property), stored);
    } else if (row.skill) {
        text = shownValue(J8TypedValue::of(*row.skill), stored);
    }
    return texts.shown(text);
}

EntryModel rowModel(const ProjectRow& row, const ProjectTexts& texts) {
    EntryFacts facts = row.facts;
    facts.set = texts.set;
    facts.label = texts.shown(facts.label);
    facts.help = texts.shown(facts.help);
    for (std::string& option : facts.options) {
        option = texts.shown(option);
    }
    if (facts.hostNames) {
        auto names = std::make_shared<std::vector<std::string>>(*facts.hostNames);
        for (std::string& name : *names) {
            name = texts.shown(name);
        }
        facts.hostNames = std::move(names);
    }
    if (namesAFile(row.field.kind) && row.hasField) {
        facts.field = EntryField::FileField;
    }
    const std::string value = texts.shown(facts.value);
    facts.value = row.inherited ? shownForm(row, *row.inherited, texts)
                  : row.saved   ? texts.shown(*row.saved)
                                : value;
    if (!row.hasField && hasValue(facts.field)) {
        facts.field = EntryField::Text;
    }
    EntryModel model(std::move(facts));
    model.putBack(value);
    if (row.readOnly) {
        model.setReadOnly(row.readOnly);
    } else if (row.hasField && !row.editable) {
        model.setBlocked("The component does not offer this property for editing.");
    } else if (row.hasField && texts.stored(value) != row.facts.value) {
        model.setBlocked("The value holds characters that this system's character set lacks.");
    }
    return model;
}

std::string rowDetails(const ProjectSession& session, const ProjectRow& row, const ProjectTexts& texts) {
    std::string text;
    const auto line = [&text](const std::string& one) { text += (text.empty() ? "" : "\r\n") + one; };
    if (row.property || row.skill) {
        line(std::string("Type: ") + typeWord(row.type));
    }
    const CJ8CMPData* const component =
        row.property ? session.model().component(row.field.component) : nullptr;
    if (component) {
        line(texts.shown("Declared in " + session.placeText(component->m_source, row.property->place)));
    }
    return text;
}

EntryModel ProjectPanel::modelOf(const ProjectRow& row) const {
    if (row.hasField && row.field.kind == Kind::Section) {
        const CJ8File& file = m_session.model().section(row.field.section);
        ProjectRow found = row;
        if (file.isNamed() && file.m_type == CJ8File::kNotValid) {
            const auto extras = std::make_shared<EntryExtras>(extrasOf(row.facts));
            extras->alarming = true;
            found.facts.extras = extras;
            found.facts.label += " (missing)";
            found.facts.help =
                "There is no such file, neither as it stands, nor in the project folder or the data "
                "folder.\n" +
                row.facts.help;
        } else if (file.isNamed()) {
            const char* const where = file.m_type == CJ8File::kProjFile ? "in the project folder (proj)"
                                      : file.m_type == CJ8File::kJ8File ? "in the data folder (j8)"
                                                                        : "as it stands (local)";
            found.facts.help = std::string("Found ") + where + ".\n" + row.facts.help;
        }
        return rowModel(found, m_texts);
    }
    return rowModel(row, m_texts);
}

void ProjectPanel::show(Shown shown, size_t level, size_t entity) {
    m_shown = shown;
    m_level = level;
    m_entity = entity;
    const std::vector<CJ8LevelData>& levels = m_session.model().m_apLevels;
    if ((shown == Shown::Level || shown == Shown::Entity) && level >= levels.size()) {
        m_shown = Shown::Nothing;
    } else if (shown == Shown::Entity && entity >= levels[level].m_entities.size()) {
        m_shown = Shown::Nothing;
    } else if (shown == Shown::Component && level >= m_session.model().m_apComponents.size()) {
        m_shown = Shown::Nothing;
    }
    // Made apart: should memory run out, the view still has those before.
    std::vector<ProjectRow> source;
    switch (m_shown) {
        case Shown::Project:
            source = m_session.projectRows();
            break;
        case Shown::Level:
            source = m_session.levelRows(level);
            break;
        case Shown::Entity:
            source = m_session.entityRows(level, entity);
            break;
        case Shown::Component:
            source = propertyRows(m_session.model(), level);
            break;
        default:
            break;
    }
    std::vector<EntryModel> models;
    models.reserve(source.size());
    for (ProjectRow& row : source) {
        if (row.hasField && !row.inherited) {
            row.saved = m_session.savedValue(row.field);
        }
        models.push_back(modelOf(row));
    }
    m_source = std::move(source);
    m_models = std::move(models);
    showRows(m_models);
}

bool ProjectPanel::takeOtherRows() {
    return std::exchange(m_otherRows, false);
}

std::optional<size_t> ProjectPanel::rowOf(const ProjectField& field) const {
    for (size_t i = 0; i < m_source.size(); ++i) {
        if (m_source[i].hasField && m_source[i].field == field) {
            return i;
        }
    }
    return std::nullopt;
}

std::optional<ProjectField> ProjectPanel::fieldOf(std::optional<size_t> row) const {
    return row && *row < m_source.size() && m_source[*row].hasField ? std::optional(m_source[*row].field)
                                                                    : std::nullopt;
}

std::string ProjectPanel::subject() const {
    switch (m_shown) {
        case Shown::Project:
            return "project";
        case Shown::Level:
            return "level " + std::to_string(m_level);
        case Shown::Entity:
            return "entity " + std::to_string(m_level) + " " + std::to_string(m_entity);
        case Shown::Component:
            return "component " + std::to_string(m_level);
        default:
            return {};
    }
}

std::optional<std::string> ProjectPanel::defaultOf(size_t i) const {
    const ProjectRow& row = m_source[i];
    return row.inherited ? std::optional(shownForm(row, *row.inherited, m_texts)) : std::nullopt;
}

const char* ProjectPanel::loadedName(size_t i) const {
    return m_source[i].inherited ? "Parent's" : "Saved";
}

std::string ProjectPanel::details(size_t i) const {
    return rowDetails(m_session, m_source[i], m_texts);
}

std::string ProjectPanel::emptyText() const {
    return m_shown == Shown::Component && m_source.empty() ? "The component has no properties."
           : m_source.empty()                              ? "Nothing is selected."
                                                           : RowEditing::emptyText();
}

// Of the file that the row names, as it is shown; empty when it names none.
std::string ProjectPanel::wholePath(size_t i) const {
    const std::string& value = m_models[i].value();
    const J8Roots& roots = m_session.model().m_roots;
    const auto behind = [&value](std::string_view start) { return value.substr(start.size()); };
    if (value.empty()) {
        return {};
    }
    return value.starts_with("j8:")     ? m_texts.shown(roots.data()) + behind("j8:")
           : value.starts_with("file:") ? behind("file:")
           : value.starts_with("proj:") ? m_texts.shown(roots.project()) + behind("proj:")
                                        : m_texts.shown(roots.project()) + value;
}

std::optional<std::string> ProjectPanel::browse(size_t i) {
    const Kind kind = m_source[i].field.kind;
    const J8Roots& roots = m_session.model().m_roots;
    ChooserRequest request;
    request.startFolder = m_texts.shown(kind == Kind::DataRoot ? roots.data() : roots.project());
    if (kind == Kind::ProjectRoot || kind == Kind::DataRoot) {
        request.title = "Select a folder...";
        request.text = m_models[i].facts().label;
        return userPrompt().chooseFolder(request);
    }
    request.title = m_models[i].facts().label;
    if (const std::string now = wholePath(i); !now.empty()) {
        request.startFolder = std::string(folderOf(now));
        request.fileName = std::string(fileNameOf(now));
    }
    request.filter =
        kind == Kind::LevelMap ? "Level maps|*.zlb;*.zlm|All files|*.*" : "XML files|*.xml|All files|*.*";
    const auto chosen = userPrompt().chooseFile(request);
    if (!chosen) {
        return std::nullopt;
    }
    // As short as the project's folders allow, so that the project can be moved.
    const std::string project = m_texts.shown(roots.project()), data = m_texts.shown(roots.data());
    const bool inProject = startsWithoutCase(*chosen, project);
    const bool inData = !inProject && startsWithoutCase(*chosen, data);
    if (kind == Kind::LevelMap && !inProject) {
        userPrompt().tell("A level's map must be in the project folder (" + project +
                          "): the project file has no place for another one.");
        return std::nullopt;
    }
    const std::string rest = inProject ? chosen->substr(project.size())
                             : inData  ? chosen->substr(data.size())
                                       : *chosen;
    if (kind == Kind::LevelMap) {
        return rest;
    }
    return (inProject ? "proj:" : inData ? "j8:" : "file:") + rest;
}

Outcome ProjectPanel::store(size_t i, const std::string& value) {
    ProjectRow& row = m_source[i];
    // What looks like the parent's value is the parent's, however the entity's own was written.
    const bool parents = row.inherited && value == shownForm(row, *row.inherited, m_texts);
    const std::string stored = parents ? *row.inherited : row.stored(m_texts.stored(value));
    std::optional<std::string> given = stored;
    if (parents || (stored.empty() && canBeWithout(row.field.kind))) {
        given.reset();
    }
    std::string reason = takenRefusal(m_session.model(), row.field, stored);
    if (!reason.empty() && stored != row.current && stored != row.saved) {
        return Refusal{std::move(reason)};
    }
    if (const Outcome set = m_session.setValue(row.field, given, m_typing); !set) {
        return Refusal{m_texts.shown(set.why())};
    }
    row.current = stored;
    row.isOwn = given.has_value();
    m_otherRows = m_otherRows || row.field.kind == Kind::EntityParent;
    return {};
}

void ProjectPanel::stepBegins(bool typing) {
    m_typing = typing;
    if (!typing) {
        m_session.leaveField();
    }
    m_session.beginStep();
}

void ProjectPanel::stepEnds() {
    m_session.endStep();
}

void ProjectPanel::leaveField() {
    if (m_session.leaveField()) {
        m_otherRows = true;  // files may be missing now, or be there
        listener().valuesChanged();
    }
}

Result<size_t> ProjectPanel::undo() {
    m_undoOrRedo(true);
    return Refusal{};
}

Result<size_t> ProjectPanel::redo() {
    m_undoOrRedo(false);
    return Refusal{};
}

}  // namespace zoka

#include "customize/BehaviorSession.h"

#include <charconv>
#include <cstddef>
#include <utility>

#include "controls/EntryRules.h"
#include "util/OsFiles.h"
#include "util/PathRules.h"

namespace zoka {
namespace {

constexpr const char* kReadAnew = "The values were read anew; the one given here was not written.";
constexpr const char* kIsGone = " is gone from the level.";

}  // namespace

BehaviorSession::BehaviorSession(EntityAccess* entities, ZunEditorInterface& host)
    : BehaviorSession(entities, host, nullptr, {}) {}

BehaviorSession::BehaviorSession(EntityAccess* entities, ZunEditorInterface& host,
                                 std::unique_ptr<EntityComponents> components, std::string entity,
                                 OpenProject openProject)
    : m_host(host), m_entities(entities, std::move(entity)) {
    if (components) {
        m_project.emplace(std::move(components), host, std::move(openProject));
    }
}

// --- Which rows there are

void BehaviorSession::open() {
    const AtWork atWork(*this);
    if (m_project) {
        m_project->load();
    }
    if (!m_entities.isKnown()) {
        return show({});
    }
    m_entities.look(true);
    show(m_entities.selected());
}

void BehaviorSession::setFollowing(bool follows) {
    m_entities.setFollowing(follows);
    refresh(true);
}

void BehaviorSession::refresh(bool always) {
    if (m_workDepth > 0) {
        m_isLookDue = m_isLookDue || always;
        return;
    }
    const AtWork atWork(*this);
    look(std::exchange(m_isLookDue, false) || always);
}

void BehaviorSession::look(bool always) {
    const bool isMoved = lookAtProject();
    if (!m_entities.isKnown()) {
        if (isMoved) {
            show({});
        }
        return;
    }
    if (!m_entities.look(always || isMoved)) {
        return;
    }
    std::vector<std::string> now = m_entities.now();
    const bool isReloaded = m_project && components().reloadIfChanged();
    if (isMoved || isReloaded || m_entities.areOthers(now)) {
        return show(std::move(now));
    }
    const bool isGone = m_entities.noteGone();
    for (size_t i = 0; isGone && i < size(); ++i) {
        if (componentOf(i)) {
            block(m_models[i]);
        }
    }
    if (m_values.reread(m_models) || isGone) {
        listener().valuesChanged();
    }
}

// Should memory run out before the rows are all made, the view still has those before.
void BehaviorSession::show(std::vector<std::string> entities) {
    m_givenUp.clear();
    m_areOthers = entities != m_entities.shown();
    m_entities.show(std::move(entities), m_project ? m_project->shownComponents() : nullptr);
    if (m_project) {
        m_project->show(m_entities.withComponents());
    }
    std::vector<EntryModel> models;
    EntityValues values(m_entities, models);
    addComponents(models);
    if (otherProjectOpen()) {
        EntryFacts facts;
        facts.field = EntryField::Text;
        facts.label =
            "Changes of '" + components().file() + "' are not saved. Save asks what becomes of them.";
        models.emplace_back(std::move(facts));
    }
    m_values = std::move(values);
    m_models.swap(models);
    showRows(m_models);
}

void BehaviorSession::addComponents(std::vector<EntryModel>& models) const {
    for (size_t row = 0; m_project && row < components().size(); ++row) {
        models.push_back(components().modelOf(row));
        if (!m_entities.gone().empty()) {
            block(models.back());
        }
    }
}

// Of an entity that is gone: nobody would see what is changed.
void BehaviorSession::block(EntryModel& component) const {
    component.setBlocked(utf8Text(m_entities.gone(), TextSet::System) + kIsGone);
}

std::optional<size_t> BehaviorSession::componentOf(size_t i) const {
    const bool isOne = m_project && i >= m_values.size() && i - m_values.size() < components().size();
    return isOne ? std::optional(i - m_values.size()) : std::nullopt;
}

SaveResult BehaviorSession::save() {
    if (!m_project) {
        return SaveResult::NothingToSave;
    }
    leaveField();
    if (lookAtProject()) {
        show(entities());
    }
    if (otherProjectOpen()) {
        const SaveResult saved = m_project->saveElsewhere();
        if (!hasUnsaved()) {
            lookAtProject();
            show(entities());
        }
        return saved;
    }
    const ComponentsShown before = componentsShown();
    const SaveResult saved = components().save();
    showComponentsAfter(before);
    return saved;
}

bool BehaviorSession::close() {
    if (!m_project) {
        return true;
    }
    const ComponentsShown before = componentsShown();
    const bool closes = m_project->close();
    // A save that was given up after it had loaded what another program wrote.
    if (!closes && componentsShown().names != before.names) {
        showComponentsAfter(before);
    }
    return closes;
}

BehaviorSession::ComponentsShown BehaviorSession::componentsShown() const {
    ComponentsShown shown{{}, components().editsDone()};
    for (size_t row = 0; row < components().size(); ++row) {
        shown.names.push_back(components().nameOf(row));
    }
    return shown;
}

// The project was loaded anew; where another program had changed it, its rows may be others.
void BehaviorSession::showComponentsAfter(const ComponentsShown& before) {
    components().show(m_entities.withComponents());
    const bool isSame = componentsShown() == before;
    std::vector<EntryModel> models(m_models.begin(),
                                   m_models.begin() + static_cast<std::ptrdiff_t>(m_values.size()));
    addComponents(models);
    m_models.swap(models);
    showRows(m_models, isSame);
}

// --- Their values

void BehaviorSession::stepBegins(bool) {
    m_givenUp.clear();
    m_entities.stepBegins();
    ++m_workDepth;
}

void BehaviorSession::stepEnds() {
    --m_workDepth;
    m_entities.stepEnds();
}

std::string BehaviorSession::giveUpInput() {
    m_givenUp = m_areOthers ? kValueOutdated : kReadAnew;
    listener().valuesChanged();
    return m_givenUp;
}

Outcome BehaviorSession::told(Written written) {
    if (written == Written::All) {
        return {};
    }
    if (written == Written::Refused) {
        listener().valuesChanged();
    }
    return Refusal{written == Written::Refused ? kValueRefused : kValueOutdated};
}

Outcome BehaviorSession::store(size_t i, const std::string& value) {
    if (const auto row = componentOf(i)) {
        return components().set(*row, value);
    }
    const auto number = skillOfText(value);
    if (!number || !m_values.hasValue(i)) {
        return Refusal{skillRefusal(value)};
    }
    return told(m_values.write(i, *number, m_models));
}

// Of a component's row how many edits of the project are done: each entity's own value is among them.
std::string BehaviorSession::stateOf(size_t i) const {
    return componentOf(i) ? std::to_string(components().editsDone()) : m_values.stateOf(i);
}

Outcome BehaviorSession::putState(size_t i, const std::string& state) {
    const auto row = componentOf(i);
    if (!row) {
        return told(m_values.putState(i, state, m_models));
    }
    if (const std::string& blocked = m_models[i].blocked(); !blocked.empty()) {
        return Refusal{m_entities.gone().empty() ? blocked : m_entities.gone() + kIsGone};
    }
    size_t edits = 0;
    std::from_chars(state.data(), state.data() + state.size(), edits);
    components().goTo(edits);
    components().showValue(*row, m_models[i]);
    return {};
}

// Of several entities each one's own value.
Outcome BehaviorSession::putLoaded(size_t i) {
    const auto row = componentOf(i);
    if (!row) {
        return m_values.isLoaded(i) ? told(m_values.putLoaded(i, m_models)) : Refusal{kValueRefused};
    }
    Outcome taken = components().inherit(*row);
    if (taken) {
        components().showValue(*row, m_models[i]);
    }
    return taken;
}

// --- What is said of them

std::string BehaviorSession::subject() const {
    std::string all;
    for (const std::string& entity : entities()) {
        all += entity + '\n';
    }
    return all;
}

LineName BehaviorSession::lineName(size_t i) const {
    if (const auto component = componentOf(i)) {
        return {"", components().nameOf(*component)};
    }
    return m_values.hasValue(i)
               ? LineName{m_values.fieldOf(i), utf8Text(row(i).facts().label, row(i).facts().set)}
               : LineName();
}

std::string BehaviorSession::nameOf(size_t i) const {
    const std::string name = lineName(i).text();
    return name.empty() ? utf8Text(row(i).facts().label, row(i).facts().set) : name;
}

std::string BehaviorSession::status() const {
    // Briefly where there is more to be read in the line.
    const std::string whose = m_entities.inWords(!m_givenUp.empty());
    return m_givenUp.empty() ? whose : whose + (whose.ends_with('.') ? " " : ". ") + m_givenUp;
}

std::string BehaviorSession::emptyText() const {
    if (size() > 0) {
        return RowEditing::emptyText();
    }
    if (entities().empty()) {
        return canFollow() ? "Select an entity in the editor." : "No entity is selected.";
    }
    return m_entities.actions().panels().size() > 1
               ? "The actions of these entities have no value in common."
               : "The script of the entity's action can't be read, or has changed.";
}

// In the row's own character set, as all that its tooltip says.
std::string BehaviorSession::details(size_t i) const {
    const auto component = componentOf(i);
    return component ? components().details(*component) : m_values.details(i, row(i).facts().set);
}

std::string BehaviorSession::helpText(size_t i) const {
    const std::string help = RowEditing::helpText(i);
    const auto component = componentOf(i);
    const std::string sayer = component ? components().whoSays(*component) : "";
    return sayer.empty() ? help : "Value from " + sayer + ".\r\n" + help;
}

std::optional<std::string> BehaviorSession::defaultOf(size_t i) const {
    const auto component = componentOf(i);
    return component ? components().defaultOf(*component) : RowEditing::defaultOf(i);
}

std::string BehaviorSession::picturePath(const std::string& nameInScript) const {
    const std::vector<BehaviorPanel>& panels = m_entities.actions().panels();
    const TextSet set = panels.empty() ? TextSet::System : panels.front().set;
    const std::string name = convertText(nameInScript, set, TextSet::System).value().value_or(nameInScript);
    if (!panels.empty()) {
        const std::string own = joinPath(folderOf(panels.front().scriptName), name);
        if (osFiles().exists(own)) {
            return own;
        }
    }
    return m_host.TemplatePath(name);
}

std::vector<std::string> BehaviorSession::findings() const {
    std::vector<std::string> lines = m_entities.actions().findings();
    const auto add = [&](const std::vector<std::string>& more) {
        lines.insert(lines.end(), more.begin(), more.end());
    };
    add(m_values.findings(m_models));
    if (m_project) {
        add(components().findings());
    }
    return lines;
}

std::string BehaviorSession::findingsText() const {
    std::string text;
    for (const std::string& line : findings()) {
        text += line + "\r\n";
    }
    return text;
}

// --- Their values as lines

// A value of several lines would be taken for several values.
std::string BehaviorSession::copyText(size_t first, size_t last) const {
    std::string text;
    for (size_t i = first; i < last && i < size(); ++i) {
        const std::string name = lineName(i).text();
        const bool isOneLine = row(i).value().find_first_of("\r\n") == std::string::npos;
        if (!name.empty() && isOneLine && !row(i).isDifferent()) {
            text += name + " = " + utf8Text(row(i).value(), row(i).facts().set) + "\r\n";
        }
    }
    return text;
}

// As the row takes it: of a list the choice that is the same number. Of components the project says what they take.
Result<std::string> BehaviorSession::pastedValue(size_t i, std::string_view text) const {
    const EntryFacts& facts = row(i).facts();
    Result<std::string> value = convertText(text, TextSet::Utf8, facts.set);
    const auto number = value ? skillOfText(*value) : std::nullopt;
    if (!m_values.hasValue(i) || facts.options.empty() || !number) {
        return value;
    }
    value = m_values.textOf(i, facts, *number);
    if (!row(i).isDifferent() && *value == row(i).value()) {
        return value;
    }
    const std::string refusal = choiceRefusal(facts, *value);
    return refusal.empty() ? value : Refusal{utf8Text(refusal, facts.set)};
}

PasteResult BehaviorSession::paste(const std::string& text) {
    PasteResult result;
    std::vector<LineName> names(size());
    for (size_t i = 0; i < size(); ++i) {
        names[i] = lineName(i);
    }
    const BehaviorLines rows(std::move(names));
    std::vector<RowValue> values;
    std::vector<std::string_view> lines;  // of the values
    for (const std::string_view line : filledLines(text)) {
        const auto place = rows.placeOf(line);
        auto value = place ? pastedValue(place->row, place->value) : Refusal{place.why()};
        if (value) {
            values.push_back({place->row, std::move(*value)});
            lines.push_back(line);
        } else {
            result.refuse(line, value.why());
        }
    }
    std::vector<std::string> refusals;
    result.taken = setValues(values, &refusals);
    for (size_t i = 0; i < lines.size(); ++i) {
        if (!refusals[i].empty()) {
            result.refuse(lines[i], refusals[i]);
        }
    }
    return result;
}

}  // namespace zoka

#include "customize/BehaviorSession.h"

#include <algorithm>
#include <charconv>
#include <cmath>

namespace zoka {
namespace {

constexpr const char* kRefused = "The editor has refused the value.";
constexpr const char* kElsewhere = "The editor has gone on to other entities; the value was not written.";
constexpr const char* kReadAnew = "The values were read anew; the one given here was not written.";
constexpr const char* kIsGone = " is gone from the level.";
constexpr const char* kNoValue = "No value suits the actions of all these entities.";

// For a row whose texts are in that set.
std::string unreadable(const std::string& entity, TextSet set) {
    return *convertText("The editor no longer gives this value of " + entity + '.', TextSet::System, set);
}

// A host may hold what is no number; it is the same as itself here.
bool isSame(float one, float other) {
    return one == other || (std::isnan(one) && std::isnan(other));
}

bool areSame(const std::vector<float>& values, const std::vector<float>& others) {
    return std::equal(values.begin(), values.end(), others.begin(), others.end(), isSame);
}

bool allEqual(const std::vector<float>& values) {
    return std::all_of(values.begin(), values.end(), [&](float one) { return isSame(one, values.front()); });
}

}  // namespace

BehaviorSession::BehaviorSession(EntityAccess* entities, ZunEditorInterface& host)
    : BehaviorSession(entities, host, nullptr, {}) {}

BehaviorSession::BehaviorSession(EntityAccess* entities, ZunEditorInterface& host,
                                 std::unique_ptr<EntityComponents> components, std::string entity,
                                 OpenProject openProject)
    : m_access(entities), m_host(host), m_namedEntity(std::move(entity)) {
    if (components) {
        m_project.emplace(std::move(components), host, std::move(openProject));
    }
}

void BehaviorSession::open() {
    if (m_project) {
        m_project->load();
    }
    m_changes = m_known = m_access ? m_access->changes() : std::nullopt;
    show(m_access ? m_access->selected() : std::vector<std::string>());
}

void BehaviorSession::setFollowing(bool follows) {
    m_follows = follows;
    refresh(true);
}

// Those to be shown: the selection, if it's followed, without what is gone.
std::vector<std::string> BehaviorSession::entitiesNow() const {
    const auto gone = [this](const std::string& entity) { return !isThere(*m_access, entity); };
    std::vector<std::string> entities = follows() ? m_access->selected() : m_entities;
    if (std::all_of(entities.begin(), entities.end(), gone) &&
        std::all_of(m_entities.begin(), m_entities.end(), gone)) {
        return m_entities;  // what was shown has been deleted: that is told
    }
    std::erase_if(entities, gone);
    return entities;
}

void BehaviorSession::refresh(bool always) {
    const bool isMoved = lookAtProject();
    if (!m_access) {
        if (isMoved) {
            show({});
        }
        return;
    }
    const auto changes = m_access->changes();
    if (!always && !isMoved && (!changes || changes == m_changes)) {
        return;
    }
    m_changes = m_known = changes;
    std::vector<std::string> entities = entitiesNow();
    const bool isReloaded = m_project && components().reloadIfChanged();
    if (isMoved || isReloaded || entities != m_entities ||
        (!m_gone.empty() && isThere(*m_access, m_entities.front())) ||
        m_actions.haveChanged(*m_access, m_entities)) {
        show(std::move(entities));
        return;
    }
    bool any = m_gone.empty() && !m_entities.empty() && !isThere(*m_access, m_entities.front());
    if (any) {
        m_gone = m_entities.front();
        blockComponents();
    }
    for (size_t i = 0; i < m_sources.size(); ++i) {
        any = reread(i) || any;
    }
    if (any) {
        listener().valuesChanged();
    }
}

void BehaviorSession::show(std::vector<std::string> entities) {
    m_givenUp.clear();
    m_areOthers = entities != m_entities;
    m_entities = std::move(entities);
    m_gone = m_entities.size() == 1 && !isThere(*m_access, m_entities.front()) ? m_entities.front() : "";
    m_actions.load(m_access, namedEntities(), m_project ? m_project->shownComponents() : nullptr);
    if (m_project) {
        m_project->show(namedEntities());
    }
    replaceRows(0, [this] {
        for (const CustomEntry& row : m_actions.sharedRows()) {
            addRow(row);
        }
        if (m_project) {
            addComponents();
        }
        if (otherProjectOpen()) {
            EntryFacts facts;
            facts.field = EntryField::Text;
            facts.label =
                "Changes of '" + components().file() + "' are not saved. Save asks what becomes of them.";
            m_models.emplace_back(std::move(facts));
            m_sources.emplace_back();
        }
    });
    showRows(m_models);
}

// The first `kept` rows stay and `add` puts others behind them. Should memory run out, the view still has those before.
void BehaviorSession::replaceRows(size_t kept, const std::function<void()>& add) {
    std::vector<EntryModel> models(m_models.begin(), m_models.begin() + static_cast<std::ptrdiff_t>(kept));
    std::vector<Source> sources(m_sources.begin(), m_sources.begin() + static_cast<std::ptrdiff_t>(kept));
    m_models.swap(models);
    m_sources.swap(sources);
    try {
        add();
    } catch (...) {
        m_models.swap(models);
        m_sources.swap(sources);
        throw;
    }
}

void BehaviorSession::addComponents() {
    for (size_t row = 0; row < components().size(); ++row) {
        m_models.push_back(components().modelOf(row));
        m_sources.push_back({.component = row});
    }
    blockComponents();
}

// Those of an entity that is gone: nobody would see what is changed.
void BehaviorSession::blockComponents() {
    for (size_t i = 0; i < m_sources.size() && !m_gone.empty(); ++i) {
        if (m_sources[i].component) {
            m_models[i].setBlocked(utf8Text(m_gone, TextSet::System) + kIsGone);
        }
    }
}

void BehaviorSession::addRow(const CustomEntry& entry) {
    if (entry.kind == kTitle) {  // the window's caption
        return;
    }
    Source source{entry.kind, skillNumber(entry) + flagNumber(entry), entry.line};
    EntryFacts facts = behaviorFacts(entry, m_actions.panels().front().set);
    if (m_actions.panels().size() > 1 && facts.limited && facts.minimum > facts.maximum) {
        source.closed = kNoValue;
        facts.limited = false;
        facts.field = EntryField::FloatField;
    }
    if (!m_access && source.number > 0) {
        source.closed = "The editor tells nothing of its entities.";
    }
    std::string blocked = source.closed;
    bool isKnown = true;
    if (source.number > 0) {
        for (const std::string& entity : m_entities) {
            const auto value = read(source, entity);
            source.values.push_back(value.value_or(0));
            if (!value) {
                blocked = unreadable(entity, facts.set);
                isKnown = false;
            }
        }
        auto extras = std::make_shared<EntryExtras>();
        const auto standard = skillOfText(entry.value);
        if (standard && entry.line > 0) {
            extras->standard = entry.kind == kFlag ? (*standard != 0 ? "1" : "0") : skillText(*standard);
        }
        facts.extras = std::move(extras);
        facts.different = !allEqual(source.values);
        facts.value.clear();
    }
    if (isKnown) {
        source.loaded = source.values;
    }
    m_sources.push_back(std::move(source));
    const size_t i = m_sources.size() - 1;
    if (m_sources[i].number > 0 && !facts.different) {
        m_models.emplace_back(facts);  // for its choices, which textOf looks at
        facts.value = textOf(i, m_sources[i].values.empty() ? 0 : m_sources[i].values.front());
        m_models.pop_back();
    }
    m_models.emplace_back(std::move(facts)).setBlocked(blocked);
}

// A value as the row writes it: the choice that is equal, or a number.
std::string BehaviorSession::textOf(size_t i, float value) const {
    if (m_sources[i].kind == kFlag) {
        return value != 0 ? "1" : "0";
    }
    for (const std::string& option : m_models[i].facts().options) {
        if (skillOfText(option) == value) {
            return option;
        }
    }
    return skillText(value);
}

std::optional<float> BehaviorSession::read(const Source& source, const std::string& entity) const {
    if (source.kind == kSkill) {
        return m_access->skill(entity, source.number);
    }
    const auto on = m_access->flag(entity, source.number);
    return on ? std::optional(*on ? 1.0F : 0.0F) : std::nullopt;
}

bool BehaviorSession::write(const Source& source, const std::string& entity, float value) {
    return source.kind == kSkill ? m_access->setSkill(entity, source.number, value)
                                 : m_access->setFlag(entity, source.number, value != 0);
}

// A number that is declared twice has two rows.
std::vector<size_t> BehaviorSession::rowsLike(size_t i) const {
    std::vector<size_t> rows;
    for (size_t row = 0; row < m_sources.size(); ++row) {
        if (m_sources[row].number == m_sources[i].number && m_sources[row].kind == m_sources[i].kind) {
            rows.push_back(row);
        }
    }
    return rows;
}

// Whether the editor has gone on to other entities, or to a level with others of these names, since the rows were made:
// the panel looks only now and then. Of a host that does not count its changes these are many questions, so the first row
// of a step asks them for all.
bool BehaviorSession::isOutdated() {
    const auto now = m_access->changes();
    const bool isExpected = now ? now == m_known : m_isUpToDate;
    if (!isExpected && (entitiesNow() != m_entities || m_actions.haveMoved(*m_access, m_entities))) {
        return true;
    }
    // Not noted in m_changes: another hand may have changed values, which is still to be seen.
    m_known = now;
    m_isUpToDate = m_isInStep;
    return false;
}

// All entities get their value, or none: those already written get back what they had, unless the editor has opened
// another level meanwhile, whose entities may have the same names.
Outcome BehaviorSession::writeAll(size_t i, const std::vector<float>& values) {
    if (!m_access || isOutdated()) {
        return Refusal{kElsewhere};
    }
    const Source source = m_sources[i];
    std::uint32_t changed = 0;
    for (size_t n = 0; n < m_entities.size(); ++n) {
        if (write(source, m_entities[n], values[n])) {
            changed += isSame(values[n], source.values[n]) ? 0U : 1U;
            continue;
        }
        if (m_actions.haveMoved(*m_access, m_entities)) {
            return Refusal{kElsewhere};
        }
        while (n-- > 0) {
            write(source, m_entities[n], source.values[n]);
        }
        for (const size_t row : rowsLike(i)) {
            reread(row);
            m_models[row].setBlocked(kRefused);
        }
        listener().valuesChanged();
        return Refusal{kRefused};
    }
    // Between two of these writes a level may have opened. Where other entities were only selected, the values are written:
    // the next write or look notices.
    if (m_known) {
        const auto now = m_access->changes();
        if (now == *m_known + changed) {
            m_known = now;
        } else if (m_actions.haveMoved(*m_access, m_entities)) {
            return Refusal{kElsewhere};
        }
    }
    for (const size_t row : rowsLike(i)) {
        m_sources[row].values = values;
        if (row != i) {
            showValues(row);
        }
    }
    return {};
}

std::string BehaviorSession::giveUpInput() {
    m_givenUp = m_areOthers ? kElsewhere : kReadAnew;
    listener().valuesChanged();
    return m_givenUp;
}

void BehaviorSession::stepBegins(bool) {
    m_givenUp.clear();
    m_isInStep = true;
}

void BehaviorSession::stepEnds() {
    m_isInStep = m_isUpToDate = false;
}

Outcome BehaviorSession::store(size_t i, const std::string& value) {
    if (m_sources[i].component) {
        return components().set(*m_sources[i].component, value);
    }
    const auto number = skillOfText(value);
    if (!number || m_sources[i].number == 0) {
        return Refusal{skillRefusal(value)};
    }
    return writeAll(i, std::vector<float>(m_entities.size(), *number));
}

// Of a component's row how many edits of the project are done: each entity's own value is among them.
std::string BehaviorSession::stateOf(size_t i) const {
    if (m_sources[i].component) {
        return std::to_string(components().editsDone());
    }
    std::string state;
    for (const float value : m_sources[i].values) {
        char digits[32];
        const auto end = std::to_chars(digits, digits + sizeof digits, value).ptr;
        state.append(digits, end).push_back(' ');
    }
    return state;
}

Outcome BehaviorSession::putState(size_t i, const std::string& state) {
    if (const auto row = m_sources[i].component) {
        if (!m_models[i].blocked().empty()) {
            return Refusal{m_gone.empty() ? m_models[i].blocked() : m_gone + kIsGone};
        }
        size_t edits = 0;
        std::from_chars(state.data(), state.data() + state.size(), edits);
        components().goTo(edits);
        components().showValue(*row, m_models[i]);
        return {};
    }
    std::vector<float> values(m_entities.size());
    const char* at = state.data();
    const char* const end = at + state.size();
    for (float& value : values) {
        at = std::from_chars(at, end, value).ptr;
        at += at < end ? 1 : 0;
    }
    return putValues(i, values);
}

Outcome BehaviorSession::putValues(size_t i, const std::vector<float>& values) {
    Outcome written = writeAll(i, values);
    if (written) {
        showValues(i);
    }
    return written;
}

// Of several entities each one's own value.
Outcome BehaviorSession::putLoaded(size_t i) {
    if (const auto row = m_sources[i].component) {
        Outcome taken = components().inherit(*row);
        if (taken) {
            components().showValue(*row, m_models[i]);
        }
        return taken;
    }
    const std::vector<float> values = m_sources[i].loaded;
    return values.empty() ? Refusal{kRefused} : putValues(i, values);
}

// True when what the row shows is another thing than before.
bool BehaviorSession::reread(size_t i) {
    Source& source = m_sources[i];
    if (source.number == 0) {
        return false;
    }
    std::vector<float> values;
    for (const std::string& entity : m_entities) {
        const auto value = read(source, entity);
        if (!value) {
            const std::string why = unreadable(entity, m_models[i].facts().set);
            const bool isNews = m_models[i].blocked() != why;
            m_models[i].setBlocked(why);
            return isNews;
        }
        values.push_back(*value);
    }
    const bool isFirst = source.loaded.empty();  // one of them could not be read before
    if (isFirst) {
        source.loaded = values;
    }
    const bool isNews = !areSame(values, source.values) || m_models[i].blocked() != source.closed;
    m_models[i].setBlocked(source.closed);
    // A text that is being typed is not written anew while its number stays.
    if (!areSame(values, source.values)) {
        source.values = std::move(values);
        showValues(i);
    }
    if (isFirst) {
        m_models[i].takeAsLoaded();
    }
    return isNews;
}

void BehaviorSession::showValues(size_t i) {
    const std::vector<float>& values = m_sources[i].values;
    if (allEqual(values)) {
        m_models[i].putBack(textOf(i, values.front()));
    } else {
        m_models[i].setDifferent(!areSame(values, m_sources[i].loaded));
    }
}

SaveResult BehaviorSession::save() {
    if (!m_project) {
        return SaveResult::NothingToSave;
    }
    leaveField();
    if (lookAtProject()) {
        show(m_entities);
    }
    if (otherProjectOpen()) {
        const SaveResult saved = m_project->saveElsewhere();
        if (!hasUnsaved()) {
            lookAtProject();
            show(m_entities);
        }
        return saved;
    }
    const auto names = [this] {
        std::vector<std::string> all;
        for (size_t row = 0; row < components().size(); ++row) {
            all.push_back(components().nameOf(row));
        }
        return all;
    };
    const std::vector<std::string> before = names();
    const size_t edits = components().editsDone();
    const SaveResult saved = components().save();
    // The project was loaded anew; where another program had changed it, its rows may be others.
    components().show(namedEntities());
    const bool isSame = names() == before && components().editsDone() == edits;
    const auto first = std::find_if(m_sources.begin(), m_sources.end(),
                                    [](const Source& source) { return source.component.has_value(); });
    replaceRows(static_cast<size_t>(first - m_sources.begin()), [this] { addComponents(); });
    showRows(m_models, isSame);
    return saved;
}

}  // namespace zoka

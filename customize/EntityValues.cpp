#include "customize/EntityValues.h"

#include <algorithm>
#include <charconv>
#include <memory>
#include <optional>
#include <utility>

#include "controls/EntryRules.h"
#include "util/PathRules.h"

namespace zoka {
namespace {

constexpr const char* kNoValue = "No value suits the actions of all these entities.";

// For a row whose texts are in that set.
std::string unreadable(const std::string& entity, TextSet set) {
    return *convertText("The editor no longer gives this value of " + entity + '.', TextSet::System, set);
}

bool areSame(const std::vector<float>& values, const std::vector<float>& others) {
    return std::equal(values.begin(), values.end(), others.begin(), others.end(), isSame);
}

bool allEqual(const std::vector<float>& values) {
    return std::all_of(values.begin(), values.end(), [&](float one) { return isSame(one, values.front()); });
}

}  // namespace

EntityValues::EntityValues(EntitySelection& entities, std::vector<EntryModel>& models)
    : m_entities(&entities) {
    for (const CustomEntry& entry : entities.actions().sharedRows()) {
        if (entry.kind != kTitle) {  // the window's caption
            models.push_back(add(entry));
        }
    }
}

EntryModel EntityValues::add(const CustomEntry& entry) {
    const std::vector<BehaviorPanel>& actions = m_entities->actions().panels();
    Row row{{entry.kind, skillNumber(entry) + flagNumber(entry)}, entry.line};
    EntryFacts facts = behaviorFacts(entry, actions.front().set);
    if (actions.size() > 1 && facts.limited && facts.minimum > facts.maximum) {
        row.closed = kNoValue;
        facts.limited = false;
        facts.field = EntryField::FloatField;
    }
    if (!m_entities->isKnown() && row.field.number > 0) {
        row.closed = "The editor tells nothing of its entities.";
    }
    std::string blocked = row.closed;
    bool isKnown = true;
    if (row.field.number > 0) {
        for (const std::string& entity : m_entities->shown()) {
            const auto value = m_entities->read(row.field, entity);
            row.values.push_back(value.value_or(0));
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
        facts.different = !allEqual(row.values);
        facts.value.clear();
    }
    if (isKnown) {
        row.loaded = row.values;
    }
    m_rows.push_back(std::move(row));
    const size_t last = m_rows.size() - 1;
    if (hasValue(last) && !facts.different) {
        const std::vector<float>& values = m_rows[last].values;
        facts.value = textOf(last, facts, values.empty() ? 0 : values.front());
    }
    EntryModel model(std::move(facts));
    model.setBlocked(blocked);
    return model;
}

std::string EntityValues::details(size_t row, TextSet set) const {
    if (row >= m_rows.size() || m_rows[row].line == 0) {
        return fieldOf(row);
    }
    const std::string_view script = fileNameOf(m_entities->actions().panels().front().scriptName);
    const std::string place =
        *convertText(script, TextSet::System, set) + ", line " + std::to_string(m_rows[row].line);
    return hasValue(row) ? fieldOf(row) + "; " + place : place;
}

std::string EntityValues::textOf(size_t row, const EntryFacts& facts, float value) const {
    if (m_rows[row].field.kind == kFlag) {
        return value != 0 ? "1" : "0";
    }
    for (const std::string& option : facts.options) {
        if (skillOfText(option) == value) {
            return option;
        }
    }
    return skillText(value);
}

std::vector<std::string> EntityValues::findings(std::span<const EntryModel> models) const {
    std::vector<std::string> lines;
    for (size_t row = 0; row < m_rows.size(); ++row) {
        const EntryFacts& facts = models[row].facts();
        if (!facts.limited || facts.minimum > facts.maximum) {
            continue;
        }
        const std::vector<float>& values = m_rows[row].values;
        for (size_t n = 0; n < values.size(); ++n) {
            const double value = static_cast<double>(values[n]);
            // Compared as they are shown: 0.1 is no float.
            const bool out = value < facts.minimum || value > facts.maximum;
            const std::string text = skillText(values[n]);
            const double shown = numberOf(text).value_or(value);
            if (out && (shown < facts.minimum || shown > facts.maximum)) {
                lines.push_back(utf8Text(m_entities->shown()[n], TextSet::System) + ": " +
                                utf8Text(facts.label, facts.set) + " is " + text + "; " +
                                allowedRange(facts));
            }
        }
    }
    return lines;
}

// A number that is declared twice has two rows.
std::vector<size_t> EntityValues::rowsLike(size_t row) const {
    std::vector<size_t> rows;
    for (size_t i = 0; i < m_rows.size(); ++i) {
        if (m_rows[i].field == m_rows[row].field) {
            rows.push_back(i);
        }
    }
    return rows;
}

bool EntityValues::reread(std::vector<EntryModel>& models) {
    bool any = false;
    for (size_t row = 0; row < m_rows.size(); ++row) {
        any = rereadRow(row, models[row]) || any;
    }
    return any;
}

bool EntityValues::rereadRow(size_t at, EntryModel& model) {
    if (!hasValue(at)) {
        return false;
    }
    Row& row = m_rows[at];
    std::vector<float> values;
    for (const std::string& entity : m_entities->shown()) {
        const auto value = m_entities->read(row.field, entity);
        if (!value) {
            const std::string why = unreadable(entity, model.facts().set);
            const bool isNews = model.blocked() != why;
            model.setBlocked(why);
            return isNews;
        }
        values.push_back(*value);
    }
    const bool isFirst = row.loaded.empty();  // one of them could not be read before
    if (isFirst) {
        row.loaded = values;
    }
    const bool areOthers = !areSame(values, row.values);
    const bool isNews = areOthers || model.blocked() != row.closed;
    model.setBlocked(row.closed);
    // A text that is being typed is not written anew while its number stays.
    if (areOthers) {
        row.values = std::move(values);
        show(at, model);
    }
    if (isFirst) {
        model.takeAsLoaded();
    }
    return isNews;
}

void EntityValues::show(size_t row, EntryModel& model) const {
    const std::vector<float>& values = m_rows[row].values;
    if (allEqual(values)) {
        model.putBack(textOf(row, model.facts(), values.front()));
    } else {
        model.setDifferent(!areSame(values, m_rows[row].loaded));
    }
}

Written EntityValues::write(size_t row, float value, std::vector<EntryModel>& models) {
    return writeEach(row, std::vector<float>(m_entities->shown().size(), value), models);
}

Written EntityValues::writeEach(size_t row, const std::vector<float>& values,
                                std::vector<EntryModel>& models) {
    const Row before = m_rows[row];
    const Written written = m_entities->write(before.field, before.values, values);
    if (written == Written::Outdated) {
        return written;
    }
    for (const size_t like : rowsLike(row)) {
        if (written == Written::Refused) {
            rereadRow(like, models[like]);
            models[like].setBlocked(kValueRefused);
            continue;
        }
        m_rows[like].values = values;
        if (like != row) {
            show(like, models[like]);
        }
    }
    return written;
}

Written EntityValues::put(size_t row, const std::vector<float>& values, std::vector<EntryModel>& models) {
    const Written written = writeEach(row, values, models);
    if (written == Written::All) {
        show(row, models[row]);
    }
    return written;
}

std::string EntityValues::stateOf(size_t row) const {
    std::string state;
    if (!hasValue(row)) {
        return state;
    }
    for (const float value : m_rows[row].values) {
        char digits[32];
        const auto end = std::to_chars(digits, digits + sizeof digits, value).ptr;
        state.append(digits, end).push_back(' ');
    }
    return state;
}

Written EntityValues::putState(size_t row, const std::string& state, std::vector<EntryModel>& models) {
    std::vector<float> values(m_entities->shown().size());
    const char* at = state.data();
    const char* const end = at + state.size();
    for (float& value : values) {
        at = std::from_chars(at, end, value).ptr;
        at += at < end ? 1 : 0;
    }
    return put(row, values, models);
}

Written EntityValues::putLoaded(size_t row, std::vector<EntryModel>& models) {
    const std::vector<float> values = m_rows[row].loaded;
    return put(row, values, models);
}

}  // namespace zoka

#include "controls/RowEditing.h"

#include <algorithm>
#include <utility>

#include "controls/EntryRules.h"
#include "controls/FileFilter.h"
#include "util/OsFiles.h"
#include "util/PathRules.h"
#include "util/Text.h"
#include "util/UserPrompt.h"

namespace zoka {
namespace {

// A value as the row shows it.
std::string shownValue(const EntryModel& row, const std::string& value) {
    if (row.facts().field == EntryField::Switch) {
        return value != "0" ? "on" : "off";
    }
    return onOneLine(value);
}

}  // namespace

class RowEditing::OneStep {
public:
    OneStep(RowEditing& rows, bool typing) : m_rows(rows) { m_rows.stepBegins(typing); }
    OneStep(const OneStep&) = delete;
    OneStep& operator=(const OneStep&) = delete;
    ~OneStep() { m_rows.stepEnds(); }

private:
    RowEditing& m_rows;
};

size_t RowEditing::changedCount() const {
    return static_cast<size_t>(
        std::count_if(m_rows.begin(), m_rows.end(), [](const EntryModel& row) { return row.HasChanged(); }));
}

void RowEditing::showRows(std::span<EntryModel> rows, bool keepHistory) {
    m_rows = rows;
    if (!keepHistory) {
        m_history.clear();
    }
    m_listener->rowsReplaced();
}

void RowEditing::addChangesToHistory() {
    EditHistory::Step step;
    for (size_t i = 0; i < size(); ++i) {
        if (row(i).HasChanged()) {
            step.push_back({i, row(i).loadedValue(), row(i).value()});
        }
    }
    m_history.add(std::move(step));
}

Outcome RowEditing::setValue(size_t i, const std::string& text, bool typing) {
    const EntryModel& model = m_rows[i];
    const std::string value = model.asWritten(text);
    return take(i, value, model.refusalOf(value), typing);
}

Outcome RowEditing::putValue(size_t i, const std::string& value) {
    const EntryModel& model = m_rows[i];
    if (!model.isDifferent() && value == model.value()) {
        return {};
    }
    std::string refusal = model.blocked() + model.readOnly();  // one of them at most
    if (refusal.empty() && value != model.loadedValue()) {
        refusal = storedRefusal(model.facts(), value);
    }
    return take(i, value, std::move(refusal), false);
}

Outcome RowEditing::take(size_t i, const std::string& value, std::string refusal, bool typing) {
    EntryModel& model = m_rows[i];
    if (refusal.empty() && !model.isDifferent() && value == model.value()) {
        return {};
    }
    std::string before = stateOf(i);
    const OneStep one(*this, typing);
    if (!refusal.empty()) {
        return Refusal{std::move(refusal)};
    }
    if (Outcome stored = store(i, value); !stored) {
        return stored;
    }
    model.putBack(value);
    m_history.add({{i, std::move(before), stateOf(i)}}, typing);
    m_listener->valuesChanged();
    return {};
}

size_t RowEditing::setValues(std::span<const RowValue> values, std::vector<std::string>* refusals) {
    const OneStep all(*this, false);
    EditHistory::Step step;
    for (const RowValue& one : values) {
        EntryModel& model = m_rows[one.row];
        std::string value = model.asWritten(one.text), refusal = model.refusalOf(value);
        if (refusal.empty() && (model.isDifferent() || value != model.value())) {
            std::string before = stateOf(one.row);
            const Outcome stored = store(one.row, value);
            if (stored) {
                model.putBack(value);
                step.push_back({one.row, std::move(before), stateOf(one.row)});
            }
            refusal = stored.why();
        }
        if (refusals) {
            refusals->push_back(std::move(refusal));
        }
    }
    const size_t changed = step.size();
    m_history.add(std::move(step));
    if (changed > 0) {
        m_listener->valuesChanged();
    }
    return changed;
}

Outcome RowEditing::putState(size_t i, const std::string& state) {
    return putValueAsIs(i, state);
}

Outcome RowEditing::putValueAsIs(size_t i, const std::string& value) {
    Outcome stored = store(i, value);
    if (stored) {
        m_rows[i].putBack(value);
    }
    return stored;
}

Result<size_t> RowEditing::go(bool forward) {
    if (forward ? !canRedo() : !canUndo()) {
        return Refusal{};
    }
    const OneStep one(*this, false);
    const EditHistory::Step& step = forward ? m_history.redo() : m_history.undo();
    bool any = false;
    std::string refusal;
    for (size_t n = 0; n < step.size(); ++n) {
        const EditChange& change = forward ? step[n] : step[step.size() - 1 - n];
        const Outcome put = putState(change.entry, forward ? change.after : change.before);
        any = put || any;
        refusal = put ? std::move(refusal) : put.why();
    }
    const size_t shown = step.front().entry;
    if (!any) {  // the step stays where it was
        forward ? m_history.undo() : m_history.redo();
        return Refusal{std::move(refusal)};
    }
    m_listener->valuesChanged();
    return shown;
}

Result<size_t> RowEditing::undo() {
    return go(false);
}

Result<size_t> RowEditing::redo() {
    return go(true);
}

size_t RowEditing::sectionEnd(size_t heading) const {
    size_t last = heading + 1;
    while (last < size() && row(last).facts().field != EntryField::Heading) {
        ++last;
    }
    return last;
}

bool RowEditing::canResetRow(size_t i, ResetTo to) const {
    const EntryModel& model = row(i);
    if (!hasValue(model.facts().field) || !model.blocked().empty() || !model.readOnly().empty()) {
        return false;
    }
    if (to == ResetTo::Loaded) {
        return resetsToLoaded() && model.HasChanged();
    }
    const auto value = defaultOf(i);
    return value && (model.isDifferent() || *value != model.value());
}

bool RowEditing::canReset(size_t first, size_t last, ResetTo to) const {
    for (size_t i = first; i < last; ++i) {
        if (canResetRow(i, to)) {
            return true;
        }
    }
    return false;
}

Outcome RowEditing::putDefault(size_t i) {
    const std::string value = *defaultOf(i);
    if (value != row(i).loadedValue()) {
        if (Outcome fits = Outcome::unless(storedRefusal(row(i).facts(), value)); !fits) {
            return fits;
        }
    }
    return putValueAsIs(i, value);
}

size_t RowEditing::reset(size_t first, size_t last, ResetTo to) {
    const OneStep all(*this, false);
    EditHistory::Step step;
    for (size_t i = first; i < last; ++i) {
        if (!canResetRow(i, to)) {
            continue;
        }
        std::string before = stateOf(i);
        if (to == ResetTo::Loaded ? putLoaded(i) : putDefault(i)) {
            step.push_back({i, std::move(before), stateOf(i)});
        }
    }
    const size_t changed = step.size();
    m_history.add(std::move(step));
    if (changed > 0) {
        m_listener->valuesChanged();
    }
    return changed;
}

std::vector<bool> RowEditing::visibleRows() const {
    std::vector<FilterItem> items;
    items.reserve(size());
    for (const EntryModel& one : m_rows) {
        items.push_back(
            {one.facts().field, one.facts().label, one.facts().help, one.HasChanged(), one.facts().set});
    }
    return filter.visible(items);
}

std::string RowEditing::tooltip(size_t i) const {
    const EntryModel& model = row(i);
    const EntryFacts& facts = model.facts();
    std::string text = facts.label;
    const auto line = [&](const std::string& one) { text += "\r\n" + one; };
    if (hasValue(facts.field)) {
        for (const std::string* const why : {&model.blocked(), &model.readOnly()}) {
            if (!why->empty()) {
                line(*why);
            }
        }
        if (const auto value = defaultOf(i)) {
            line("Default: " + shownValue(model, *value));
        }
        if (model.HasChanged() && !facts.different) {
            line(std::string(loadedName(i)) + ": " + shownValue(model, model.loadedValue()));
        }
        if (const std::string range = allowedRange(facts); !range.empty()) {
            line(range);
        }
        if (facts.maxChars > 0) {
            line("at most " + std::to_string(facts.maxChars) + " characters");
        }
    }
    if (const std::string more = details(i); !more.empty()) {
        line(more);
    }
    return text;
}

std::optional<std::string> RowEditing::browse(size_t i) {
    ChooserRequest request;
    request.title = row(i).facts().label;
    request.startFolder = osFiles().currentFolder();
    request.filter = fileFilterFor(row(i).value());
    while (request.filter.ends_with('|')) {
        request.filter.pop_back();
    }
    const auto chosen = userPrompt().chooseFile(request);
    return chosen ? std::optional(std::string(fileNameOf(*chosen))) : std::nullopt;
}

std::string RowEditing::helpText(size_t i) const {
    return row(i).facts().help.empty() ? "No Help" : row(i).facts().help;
}

std::string RowEditing::emptyText() const {
    return size() == 0 ? "There is nothing to edit." : "No entry matches.";
}

}  // namespace zoka

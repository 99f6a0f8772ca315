// The rows of a panel with all that a user does to them: edit, undo, reset, search, fold.
#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "controls/EditHistory.h"
#include "controls/EntryModel.h"
#include "controls/PanelFilter.h"
#include "util/Outcome.h"

namespace zoka {

// Who shows the rows. [panel thread]
class RowsListener {
public:
    virtual ~RowsListener() = default;
    // All rows are others than before: forget every window of a row.
    virtual void rowsReplaced() {}
    // Values changed, of whichever rows: show them anew.
    virtual void valuesChanged() {}
};

enum class ResetTo { Loaded, Default };

// A value for a row, as a user would type it.
struct RowValue {
    size_t row = 0;
    std::string text;
};

// What a panel's session is derived from. To make a panel of rows:
// 1. Derive a session. Keep the rows in a std::vector<EntryModel>, made from EntryFacts, and hand them over with
//    showRows. Where the values are held by someone else (an entity, a project), override store, which may refuse.
// 2. Override what the rows say besides: defaultOf, details, helpText, picturePath, emptyText.
// 3. Show the session in a RowsView, a part of any window, or derive a window of its own from RowsDialog
//    (controls/win), which takes its buttons as data.
// Values that change from outside are put into the rows (EntryModel::putBack, setDifferent, setBlocked), followed by
// one valuesChanged of the listener. Rows are counted from 0. [panel thread]
class RowEditing {
public:
    virtual ~RowEditing() = default;
    RowEditing(const RowEditing&) = delete;
    RowEditing& operator=(const RowEditing&) = delete;

    // May be null. It outlives the object, or is taken away before it goes.
    void setListener(RowsListener* listener) { m_listener = listener ? listener : &m_noListener; }

    // --- Rows
    size_t size() const { return m_rows.size(); }
    const EntryModel& row(size_t i) const { return m_rows[i]; }
    size_t changedCount() const;

    // --- Edits
    // What the user typed or chose. When it's refused the value stays as it was. With `typing` the edits of one field
    // become one step of undo, until leaveField.
    Outcome setValue(size_t i, const std::string& text, bool typing = false);
    // A value of another version of the file, as it stands: limits and the ways of writing a number don't count.
    Outcome putValue(size_t i, const std::string& value);
    virtual void leaveField() { m_history.endJoining(); }
    // Several values at once, in one step of undo; how many rows have another value now. `refusals` (may be null)
    // gets the reason of each that is refused, and an empty text for the others.
    size_t setValues(std::span<const RowValue> values, std::vector<std::string>* refusals = nullptr);
    // Undo may be someone else's, who holds the values.
    virtual bool canUndo() const { return m_history.canUndo(); }
    virtual bool canRedo() const { return m_history.canRedo(); }
    // The row to be shown; refused when none of the step was taken, and without a reason when there was nothing to
    // undo or do again.
    virtual Result<size_t> undo();
    virtual Result<size_t> redo();
    // Each is one step of undo; how many values changed. Rows without a known default keep their values, and those
    // that don't take the value.
    size_t resetRow(size_t i, ResetTo to) { return reset(i, i + 1, to); }
    size_t resetSection(size_t heading, ResetTo to) { return reset(heading, sectionEnd(heading), to); }
    size_t resetAll(ResetTo to) { return reset(0, size(), to); }
    // Whether that would change any of the rows from `first` to in front of `last`.
    bool canReset(size_t first, size_t last, ResetTo to) const;
    // Behind the last row of a section.
    size_t sectionEnd(size_t heading) const;

    // --- What is shown
    PanelFilter filter;
    std::vector<bool> visibleRows() const;
    // Label, default, value loaded, allowed values and the details, a line each.
    std::string tooltip(size_t i) const;

    // --- What a panel's session may say otherwise
    // What the rows are of: with another subject the view begins at its beginning.
    virtual std::string subject() const { return {}; }
    // What the row is of its subject: where other rows follow, of this or another subject, and have one of that name,
    // it keeps the keyboard and its place in sight. Empty: no other row is like it.
    virtual std::string nameOf(size_t) const { return {}; }
    // What the user typed or chose was meant for rows that are gone, and nobody gets it. Gives the words for it, which
    // are shown at the row of that name if there is one; empty: it goes without saying.
    virtual std::string giveUpInput() { return {}; }
    // The value that the row has where nobody has set one; nothing where that isn't known.
    virtual std::optional<std::string> defaultOf(size_t i) const { return extrasOf(row(i).facts()).standard; }
    // Whose value defaultOf gives, as in "Reset to the template's default"; with its '&' for menus.
    virtual const char* defaultName() const { return "the &default"; }
    // Whether rows can be reset to what they were loaded with.
    virtual bool resetsToLoaded() const { return true; }
    // What the row was loaded with, in its tooltip: "Saved".
    virtual const char* loadedName(size_t /*row*/) const { return "Saved"; }
    // Lets the user choose a file for a row with a browse button; the value to give it, or nothing.
    virtual std::optional<std::string> browse(size_t i);
    // More lines of the row's tooltip, parted by CR LF; may be empty.
    virtual std::string details(size_t) const { return {}; }
    virtual std::string helpText(size_t i) const;
    // Full path of a picture that a row names.
    virtual std::string picturePath(const std::string& name) const { return name; }
    // Shown when there is no row, or none in sight.
    virtual std::string emptyText() const;

protected:
    RowEditing() = default;

    // The panel's rows, which stay the caller's until the next call, and their listener is told of. With
    // `keepHistory` they mean the same as those before, and undo goes on.
    void showRows(std::span<EntryModel> rows, bool keepHistory = false);
    EntryModel& rowToEdit(size_t i) { return m_rows[i]; }
    RowsListener& listener() { return *m_listener; }
    // All values that differ from those loaded become one step of undo.
    void addChangesToHistory();

    // Around what is one step of undo, for those whose undo is their own. With `typing` the next one may join it.
    virtual void stepBegins(bool /*typing*/) {}
    virtual void stepEnds() {}
    // Gives a value that the row takes to whoever holds it, who may refuse it.
    virtual Outcome store(size_t, const std::string& /*value*/) { return {}; }
    // What undo remembers of a row, and how it's given back: the value, unless a row stands for several.
    virtual std::string stateOf(size_t i) const { return row(i).value(); }
    virtual Outcome putState(size_t i, const std::string& state);
    // Gives the row back what it was loaded with.
    virtual Outcome putLoaded(size_t i) { return putValueAsIs(i, row(i).loadedValue()); }

private:
    class OneStep;
    bool canResetRow(size_t i, ResetTo to) const;
    Outcome putDefault(size_t i);
    Outcome putValueAsIs(size_t i, const std::string& value);
    size_t reset(size_t first, size_t last, ResetTo to);
    Outcome take(size_t i, const std::string& value, std::string refusal, bool typing);
    Result<size_t> go(bool forward);

    std::span<EntryModel> m_rows;
    EditHistory m_history;
    RowsListener m_noListener;
    RowsListener* m_listener = &m_noListener;
};

}  // namespace zoka

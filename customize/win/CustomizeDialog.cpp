#include "customize/win/CustomizeDialog.h"

#include <algorithm>

#include "customize/EntriesText.h"
#include "customize/ValueFile.h"
#include "ui/win/TextWindow.h"
#include "util/Backups.h"
#include "util/PathRules.h"

namespace zoka {
namespace {

constexpr const char* kCaption = "KEZ Customize";
constexpr int kFirstControl = 1100;
enum : int { kShowChanges = 1110, kShowFindings, kSave, kRestore, kUpdate };
enum : int { kCopyPlace = kFirstRowItem };
constexpr UINT kLookMs = 1000;           // between looks at the project that the editor has open
constexpr int kWide = 70, kNarrow = 44;  // dialog units: "Show changes...", "Restore"

}  // namespace

CustomizeDialog::CustomizeDialog(Setup setup)
    : RowsDialog({.title = kCaption,
                  .module = setup.module,
                  .icon = setup.icon,
                  .firstId = kFirstControl,
                  .buttons = {{kShowChanges, "Sho&w changes...", kWide, true},
                              findingsButton(kShowFindings),
                              {.id = kSave, .text = "&Save", .units = kNarrow, .key = 'S'},
                              {kRestore, "&Restore", kNarrow},
                              {kUpdate, "&Update", kNarrow}},
                  .chooserLabel = "S&cript:",
                  .lookMs = kLookMs,
                  .loading = setup.loading}),
      m_setup(std::move(setup)),
      m_session(m_setup.editor, userPrompt(), this, m_setup.loading) {}

void CustomizeDialog::fillRows() {
    listScripts();  // they take room that the rows don't get
    if (leaving()) {
        return;
    }
    if (!m_session.open(m_setup.scriptPath)) {
        view().rowsReplaced();
    }
}

void CustomizeDialog::look() {
    if (m_session.lookAtProject()) {
        listScripts();
        showState();
    }
}

void CustomizeDialog::activated() {
    listScripts();
    look();
}

void CustomizeDialog::bringToFront() {
    if (window()) {
        SetForegroundWindow(window());
    }
}

void CustomizeDialog::raiseOnce() {
    if (!window()) {
        return;
    }
    constexpr UINT kHow = SWP_NOMOVE | SWP_NOSIZE;
    SetWindowPos(window(), HWND_TOPMOST, 0, 0, 0, 0, kHow);
    SetWindowPos(window(), HWND_NOTOPMOST, 0, 0, 0, 0, kHow);
}

void CustomizeDialog::rowsChanged() {
    if (m_session.script().scriptPath != m_shownPath) {
        showScripts();
    }
    showState();
}

// The title names the script, with a mark while it has changes.
std::string CustomizeDialog::caption() const {
    const std::string& path = m_session.script().scriptPath;
    if (path.empty()) {
        return kCaption;
    }
    return std::string(kCaption) + " - " + std::string(fileNameOf(path)) + m_session.whereabouts() +
           (m_session.changedCount() > 0 ? " *" : "");
}

ButtonState CustomizeDialog::stateOf(int id) const {
    switch (id) {
        case kSave:
        case kShowChanges:
            return {m_session.changedCount() > 0};
        case kShowFindings:
            return findingsState(m_session.script().findings.count());
        default:
            return {!m_session.script().scriptPath.empty()};
    }
}

void CustomizeDialog::pressed(int id) {
    switch (id) {
        case kSave:
            save();
            break;
        case kRestore:
            m_session.restore();
            break;
        case kUpdate:
            if (m_session.update()) {
                showUnplaced();
            }
            break;
        case kShowChanges: {
            const std::vector<LineChange> changes = lineChanges(m_session.script());
            showTextWindow(window(), "Changes",
                           changes.size() == 1
                               ? "Save will change 1 place:"
                               : "Save will change " + std::to_string(changes.size()) + " places:",
                           changesText(changes), TextLook::FixedWidth);
            break;
        }
        case kShowFindings:
            showTextWindow(window(), "Problems in the script's markup",
                           "File, line, and what was done:", findingsText(m_session.script()),
                           TextLook::FixedWidth);
            break;
        default:
            break;
    }
}

void CustomizeDialog::save() {
    const bool hadUnplaced = !m_session.unplaced().empty();
    carryOut(kSave, [this] {
        m_session.save();
        listScripts();  // the project's own copy may stand in a template's place now
    });
    if (!hadUnplaced) {
        showUnplaced();
    }
    showState();
}

// The scripts that the level includes now; the user may have added some.
void CustomizeDialog::listScripts() {
    if (m_setup.choices) {
        m_session.offerScripts(m_setup.choices());
    }
    showScripts();
}

void CustomizeDialog::showScripts() {
    std::vector<std::string> paths = m_session.offeredScripts();
    const std::string open = m_session.script().scriptPath;
    const auto isOpen = [&](const std::string& path) { return equalNoCase(path, open); };
    const bool added = !open.empty() && std::none_of(paths.begin(), paths.end(), isOpen);
    if (added) {
        paths.insert(paths.begin(), open);
    }
    if (paths == m_choices && open == m_shownPath) {
        return;
    }
    m_choices = std::move(paths);
    m_shownPath = open;
    std::vector<std::string> names;
    for (const std::string& path : m_choices) {
        names.emplace_back(fileNameOf(path));
    }
    // The open script may be one of another project, which has some of the same names.
    for (size_t i = 1; added && i < names.size(); ++i) {
        if (equalNoCase(names[i], fileNameOf(open))) {
            names[i] = m_choices[i];
            names[0] = open;
        }
    }
    const auto at = std::find_if(m_choices.begin(), m_choices.end(), isOpen);
    setChoices(names, static_cast<size_t>(at - m_choices.begin()));
}

void CustomizeDialog::chosen(size_t item) {
    if (item >= m_choices.size() || equalNoCase(m_choices[item], m_shownPath)) {
        return;
    }
    const std::string path = m_choices[item];
    // Until it's open the list names the one that is, also below a question about it.
    m_shownPath.clear();
    showScripts();
    const Busy busy(*this);
    if (view().commit()) {
        m_session.switchTo(path);
    }
}

void CustomizeDialog::showUnplaced() {
    if (!window() || m_session.unplaced().empty() || !m_session.unplacedAreKept()) {
        return;
    }
    showTextWindow(window(), "Values that could not be kept",
                   "Kept in " + std::string(fileNameOf(m_session.script().scriptPath)) + kLeftOverEnding +
                       ", next to the script:",
                   unplacedText(m_session.unplaced()), TextLook::FixedWidth);
}

std::vector<RowMenuItem> CustomizeDialog::rowMenuItems(size_t) {
    return {{kCopyPlace, "Copy f&ile and line"}};
}

void CustomizeDialog::rowMenuChosen(size_t row, int id) {
    if (id == kCopyPlace) {
        copyToClipboard(window(), placeText(m_session.script(), m_session.entry(row)));
    }
}

}  // namespace zoka

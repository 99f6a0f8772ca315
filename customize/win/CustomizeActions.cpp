// What the buttons, menus and keys of "KEZ Customize" do.
#include <algorithm>

#include "customize/win/CustomizeControls.h"
#include "customize/win/CustomizeDialog.h"
#include "ui/win/TextWindow.h"
#include "util/PathRules.h"

namespace zoka {

void CustomizeDialog::command(int id, int code) {
    // While a question of the session is open the window takes no commands but those that terminate it.
    if (m_busy) {
        return;
    }
    switch (id) {
        case kSearch:
            if (code == EN_CHANGE) {
                filterChanged();
            }
            return;
        case kChangedOnly:
            if (code == BN_CLICKED) {
                filterChanged();
            }
            return;
        case kScript:
            if (code == CBN_SELCHANGE && !m_filling) {
                chooseScript();
            }
            return;
        case IDOK:  // Enter in a field
            m_panel.commit();
            return;
        case IDCANCEL:
            if (code == BN_CLICKED && !(GetKeyState(VK_ESCAPE) < 0 && m_panel.revert())) {
                closeWindow();
            }
            return;
        case kFindField:
            SendMessageA(m_window, WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(GetDlgItem(m_window, kSearch)),
                         TRUE);
            return;
        default:
            break;
    }
    if (code != BN_CLICKED) {
        return;
    }
    m_busy = true;
    if (m_panel.commit()) {
        switch (id) {
            case kSave:
                save();
                break;
            case kRestore:
                m_session.restore();
                break;
            case kUpdate:
                update();
                break;
            case kUndo:
            case kRedo:
                undoOrRedo(id == kUndo);
                break;
            case kShowChanges:
                showChanges();
                break;
            case kShowFindings:
                showFindings();
                break;
            default:
                break;
        }
    }
    m_busy = false;
}

void CustomizeDialog::save() {
    const bool hadUnplaced = !m_session.unplaced().empty();
    // The button can't keep the keyboard once there is nothing to save, and its neighbour must not get it.
    const bool byButton = GetFocus() == GetDlgItem(m_window, kSave);
    const std::string path = m_session.script().scriptPath;
    m_session.save();
    if (m_window && m_setup.choices && m_session.script().scriptPath != path) {
        // The project's own copy stands in the template's place now.
        m_session.scriptChoices = m_setup.choices();
        fillScriptChoices();
    }
    if (m_window && byButton && !IsWindowEnabled(GetDlgItem(m_window, kSave))) {
        m_panel.focusLast();
    }
    if (!hadUnplaced) {
        showUnplaced();
    }
    if (m_window && !m_session.unplaced().empty()) {
        showState();
    }
}

void CustomizeDialog::update() {
    if (m_session.update()) {
        showUnplaced();
    }
}

void CustomizeDialog::undoOrRedo(bool undo) {
    m_session.leaveField();
    const auto row = undo ? m_session.undo() : m_session.redo();
    if (row) {
        m_panel.focusRow(*row);
    }
}

void CustomizeDialog::filterChanged() {
    m_session.filter.search = textOf(GetDlgItem(m_window, kSearch));
    m_session.filter.changedOnly = IsDlgButtonChecked(m_window, kChangedOnly) == BST_CHECKED;
    m_panel.layoutSoon();
}

void CustomizeDialog::fillScriptChoices() {
    if (!m_window) {
        return;
    }
    m_choices = m_session.scriptChoices;
    const std::string& open = m_session.script().scriptPath;
    const auto isOpen = [&](const std::string& path) { return equalNoCase(path, open); };
    if (!open.empty() && std::none_of(m_choices.begin(), m_choices.end(), isOpen)) {
        m_choices.insert(m_choices.begin(), open);
    }
    const HWND list = GetDlgItem(m_window, kScript);
    m_filling = true;
    SendMessageA(list, CB_RESETCONTENT, 0, 0);
    for (const std::string& path : m_choices) {
        SendMessageA(list, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(std::string(fileNameOf(path)).c_str()));
    }
    const auto at = std::find_if(m_choices.begin(), m_choices.end(), isOpen);
    SendMessageA(list, CB_SETCURSEL, static_cast<WPARAM>(at == m_choices.end() ? -1 : at - m_choices.begin()),
                 0);
    m_filling = false;
    if (showsChoices() != (m_choices.size() > 1)) {
        layout();
    }
}

void CustomizeDialog::chooseScript() {
    const LRESULT chosen = SendDlgItemMessageA(m_window, kScript, CB_GETCURSEL, 0, 0);
    if (chosen < 0 || static_cast<size_t>(chosen) >= m_choices.size()) {
        return;
    }
    const std::string path = m_choices[static_cast<size_t>(chosen)];
    if (equalNoCase(path, m_session.script().scriptPath)) {
        return;
    }
    m_busy = true;
    if (m_panel.commit()) {
        m_session.switchTo(path);
    }
    m_busy = false;
    fillScriptChoices();
}

void CustomizeDialog::showChanges() {
    const size_t count = m_session.changes().size();
    showTextWindow(
        m_window, "Changes",
        count == 1 ? "Save will change 1 place:" : "Save will change " + std::to_string(count) + " places:",
        m_session.changesText(), TextLook::FixedWidth);
}

void CustomizeDialog::showFindings() {
    showTextWindow(m_window, "Problems in the script's markup",
                   "File, line, and what was done:", m_session.findingsText(), TextLook::FixedWidth);
}

void CustomizeDialog::showUnplaced() {
    if (!m_window || m_session.unplaced().empty()) {
        return;
    }
    showTextWindow(m_window, "Values without a place",
                   "Kept in the file beside the script that ends in .zoka.old:",
                   unplacedText(m_session.unplaced()), TextLook::FixedWidth);
}

bool CustomizeDialog::shortcut(WPARAM key) {
    int id = 0;
    switch (key) {
        case 'Z':
            id = GetKeyState(VK_SHIFT) < 0 ? kRedo : kUndo;
            break;
        case 'Y':
            id = kRedo;
            break;
        case 'S':
            id = kSave;
            break;
        case 'F':
            id = kFindField;
            break;
        default:
            return false;
    }
    // Posted: what it does may take the control away that has the key.
    PostMessageA(m_window, WM_COMMAND, static_cast<WPARAM>(id), 0);
    return true;
}

void CustomizeDialog::rowMenu(size_t row, HWND field, POINT at) {
    if (m_busy || !m_window) {
        return;
    }
    const EntryModel& model = m_session.row(row);
    const EntryField kind = model.facts().field;
    const HMENU menu = CreatePopupMenu();
    const auto item = [&](int id, const char* text, bool enabled = true) {
        AppendMenuA(menu, MF_STRING | (enabled ? MF_ENABLED : MF_GRAYED), static_cast<UINT_PTR>(id), text);
    };
    const auto line = [&] { AppendMenuA(menu, MF_SEPARATOR, 0, nullptr); };
    item(kUndo, "&Undo\tCtrl+Z", m_session.canUndo());
    item(kRedo, "&Redo\tCtrl+Y", m_session.canRedo());
    line();
    const bool text = field && IsWindow(field) && (SendMessageA(field, WM_GETDLGCODE, 0, 0) & DLGC_HASSETSEL);
    if (text) {
        item(kCutText, "Cu&t\tCtrl+X");
        item(kCopyText, "&Copy\tCtrl+C");
        item(kPasteText, "&Paste\tCtrl+V");
        line();
    }
    if (hasValue(kind)) {
        item(kResetLoaded, "Reset to the &loaded value", model.HasChanged());
        item(kResetDefault, "Reset to the template's &default",
             m_session.canReset(row, row + 1, ResetTo::Default));
    }
    if (kind == EntryField::Heading) {
        const size_t end = m_session.sectionEnd(row);
        item(kResetSectionLoaded, "Reset the section to the load&ed values",
             m_session.canReset(row, end, ResetTo::Loaded));
        item(kResetSectionDefault, "Reset the section to the template's de&faults",
             m_session.canReset(row, end, ResetTo::Default));
    }
    item(kResetAllLoaded, "Reset &all to the loaded values", m_session.changedCount() > 0);
    item(kResetAllDefault, "Re&set all to the template's defaults",
         m_session.canReset(0, m_session.size(), ResetTo::Default));
    line();
    item(kFoldAll, "F&old all sections");
    item(kUnfoldAll, "U&nfold all sections");
    line();
    item(kCopyPlace, "Show &in script (copies file and line)");
    m_busy = true;
    const int chosen = static_cast<int>(
        TrackPopupMenu(menu, TPM_RETURNCMD | TPM_RIGHTBUTTON, at.x, at.y, 0, m_window, nullptr));
    m_busy = false;
    DestroyMenu(menu);
    if (!m_window || row >= m_session.size()) {
        return;
    }
    switch (chosen) {
        case kUndo:
        case kRedo:
            undoOrRedo(chosen == kUndo);
            break;
        case kCutText:
        case kCopyText:
        case kPasteText:
            if (IsWindow(field)) {
                SendMessageA(field,
                             chosen == kCutText    ? WM_CUT
                             : chosen == kCopyText ? WM_COPY
                                                   : WM_PASTE,
                             0, 0);
            }
            break;
        case kResetLoaded:
        case kResetDefault:
            m_session.resetRow(row, chosen == kResetLoaded ? ResetTo::Loaded : ResetTo::Default);
            break;
        case kResetSectionLoaded:
        case kResetSectionDefault:
            m_session.resetSection(row, chosen == kResetSectionLoaded ? ResetTo::Loaded : ResetTo::Default);
            break;
        case kResetAllLoaded:
        case kResetAllDefault:
            m_session.resetAll(chosen == kResetAllLoaded ? ResetTo::Loaded : ResetTo::Default);
            break;
        case kFoldAll:
        case kUnfoldAll:
            for (size_t i = 0; i < m_session.size(); ++i) {
                if (m_session.row(i).facts().field == EntryField::Heading) {
                    m_session.filter.setFolded(i, chosen == kFoldAll);
                }
            }
            m_panel.layoutSoon();
            break;
        case kCopyPlace:
            copyToClipboard(m_window, m_session.placeInScript(row));
            break;
        default:
            break;
    }
}

}  // namespace zoka

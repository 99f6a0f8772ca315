#include "controls/win/RowsView.h"

#include <commctrl.h>

#include <algorithm>

#include "ui/win/Subclass.h"
#include "ui/win/Window.h"
#include "util/Text.h"

namespace zoka {
namespace {

// Controls, counted from the first number.
enum { kSearchLabel, kSearch, kChangedOnly, kRows, kHelpBox };
// Items of a row's menu, and commands of keys.
enum : int {
    kUndo = 1,
    kRedo,
    kCut,
    kCopy,
    kPaste,
    kResetLoaded,
    kResetDefault,
    kResetSectionLoaded,
    kResetSectionDefault,
    kResetAllLoaded,
    kResetAllDefault,
    kFoldAll,
    kUnfoldAll,
};

constexpr int kHelpLines = 4;

bool withCtrl() {
    return GetKeyState(VK_CONTROL) < 0 && GetKeyState(VK_MENU) >= 0;
}

}  // namespace

// Keys with Ctrl work from every control, and the wheel always scrolls the rows.
LRESULT CALLBACK RowsView::controlProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam,
                                       DWORD_PTR data) {
    return answerInside(window, [&]() -> LRESULT {
        auto* const self = reinterpret_cast<RowsView*>(data);
        switch (message) {
            case WM_KEYDOWN:
                if (!withCtrl()) {
                    break;
                }
                if (window == self->m_search && wParam == 'Z') {  // the field's own text
                    SendMessageA(window, EM_UNDO, 0, 0);
                    return 0;
                }
                if (window == self->m_search && wParam == 'A') {
                    SendMessageA(window, EM_SETSEL, 0, -1);
                    return 0;
                }
                if (self->shortcut(wParam)) {
                    return 0;
                }
                break;
            case WM_CHAR:
                // The characters of Ctrl+A, F, S, Y and Z, whose keys were taken.
                if (wParam == 1 || wParam == 6 || wParam == 19 || wParam == 25 || wParam == 26 ||
                    ((wParam == 3 || wParam == 22) && GetKeyState(VK_SHIFT) < 0)) {
                    return 0;
                }
                break;
            case WM_MOUSEWHEEL:
                if (window == self->m_help || SendMessageA(window, CB_GETDROPPEDSTATE, 0, 0)) {
                    break;
                }
                self->wheel(wParam, lParam);
                return 0;
            default:
                break;
        }
        return nextProcedure(window, message, wParam, lParam);
    });
}

void RowsView::join(HWND control) {
    addProcedure(control, controlProc, reinterpret_cast<DWORD_PTR>(this));
}

void RowsView::create(HWND parent, const WindowFonts& fonts, int firstId, bool canChange) {
    m_parent = parent;
    m_fonts = &fonts;
    m_firstId = firstId;
    const HFONT font = fonts.text();
    makeControl(parent, "STATIC", "Searc&h:", 0, 0, firstId + kSearchLabel, font);
    m_search = makeField(parent, firstId + kSearch, fonts);
    join(m_search);
    SendMessageA(m_search, EM_LIMITTEXT, 200, 0);
    if (canChange) {
        join(makeControl(parent, "BUTTON", "Changed &only", BS_AUTOCHECKBOX | WS_TABSTOP, 0,
                         firstId + kChangedOnly, font));
    }
    m_panel.create(parent, firstId + kRows, fonts);
    m_help = makeReadOnlyText(parent, firstId + kHelpBox, font);
    join(m_help);
    setText(m_help, "No Help");
    m_rows.setListener(this);
}

// From the top: search, rows; at the bottom: help. The rows get what is left.
void RowsView::place(const PanelRect& area) {
    if (!m_help) {
        return;
    }
    const WindowFonts& f = *m_fonts;
    const int gapX = f.x(kGapUnits), gapY = f.y(kGapUnits);
    const int field = f.y(kFieldHeightUnits), labelHeight = f.lineHeight() + 1;
    const int label = f.labelWidth("Search:") + gapX;
    const HWND changedOnly = item(kChangedOnly);
    const int check = changedOnly ? f.labelWidth("Changed only (20000)") + f.x(14) : -gapX;
    const auto to = [](HWND control, int x, int y, int width, int height) {
        zoka::place(control, x, y, std::max(width, 0), std::max(height, 0));
    };
    to(item(kSearchLabel), area.x, area.y + (field - labelHeight) / 2, label, labelHeight);
    to(m_search, area.x + label, area.y, area.width - label - check - gapX, field);
    if (changedOnly) {
        to(changedOnly, area.x + area.width - check, area.y, check, field);
    }
    const int help = kHelpLines * f.lineHeight() + f.px(8);
    const int top = area.y + field + gapY, bottom = area.y + area.height - help;
    to(m_help, area.x, bottom, area.width, help);
    to(m_panel.window(), area.x, top, area.width, bottom - gapY - top);
}

bool RowsView::command(int id, int code) {
    switch (id - m_firstId) {
        case kSearch:
            if (code == EN_CHANGE) {
                filterChanged();
            }
            return true;
        case kChangedOnly:
            if (code == BN_CLICKED) {
                filterChanged();
            }
            return true;
        default:
            return id >= m_firstId && id < m_firstId + kControls;
    }
}

void RowsView::filterChanged() {
    m_rows.filter.search = textOf(m_search, CP_UTF8);
    m_rows.filter.changedOnly = IsDlgButtonChecked(m_parent, m_firstId + kChangedOnly) == BST_CHECKED;
    m_panel.layoutSoon();
}

void RowsView::enter() {
    if (GetFocus() == m_search) {
        m_panel.layoutNow();
        m_panel.focusFirst();
    } else {
        m_panel.commit();
    }
}

bool RowsView::escape() {
    if (m_panel.revert()) {
        return true;
    }
    if (!m_search || textOf(m_search).empty()) {
        return false;
    }
    setText(m_search, "");
    return true;
}

void RowsView::focusRow(size_t row) {
    m_panel.focusRow(row);
}

void RowsView::focusSearch() {
    SendMessageA(m_parent, WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(m_search), TRUE);
}

void RowsView::findFocus() {
    if (m_parent && GetActiveWindow() == m_parent && !IsChild(m_parent, GetFocus())) {
        m_panel.focusLast();
        if (!IsChild(m_parent, GetFocus())) {
            focusSearch();
        }
    }
}

void RowsView::undoOrRedo(bool undo) {
    m_rows.leaveField();
    const auto row = undo ? m_rows.undo() : m_rows.redo();
    if (row) {
        m_panel.focusRow(*row);
    } else if (!row.why().empty()) {
        setText(m_help, row.why());
    }
}

void RowsView::rowsReplaced() {
    const bool samePlaces = m_rows.subject() == m_subject && m_rows.size() == m_shownRows;
    m_subject = m_rows.subject();
    m_shownRows = m_rows.size();
    m_panel.rowsReplaced(samePlaces);
    if (!m_parent) {
        return;
    }
    if (!samePlaces) {
        m_helpRow.reset();
        setText(m_help, "No Help");
    }
    findFocus();
    showCount();
    m_owner.rowsChanged();
}

void RowsView::valuesChanged() {
    if (!m_parent) {
        return;
    }
    if (!m_panel.leaveBlockedRow()) {
        focusSearch();
    }
    m_panel.showValues();
    if (m_helpRow) {
        rowFocused(*m_helpRow);
    }
    if (m_rows.filter.changedOnly) {
        m_panel.layoutSoon();
    }
    showCount();
    m_owner.rowsChanged();
}

void RowsView::showCount() {
    if (!item(kChangedOnly)) {
        return;
    }
    const size_t changed = m_rows.changedCount();
    setText(item(kChangedOnly),
            changed > 0 ? "Changed &only (" + std::to_string(changed) + ")" : "Changed &only");
}

void RowsView::rowFocused(size_t row) {
    if (row < m_rows.size()) {
        m_helpRow = row;
        // With line ends as the field wants them.
        setText(m_help, onOneLine(m_rows.helpText(row), "\r\n"), codePageOf(m_rows.row(row).facts().set));
    }
}

void RowsView::filterDropped() {
    setText(m_search, "");
    CheckDlgButton(m_parent, m_firstId + kChangedOnly, BST_UNCHECKED);
}

bool RowsView::shortcut(WPARAM key) {
    switch (key) {
        case 'Z':
        case 'Y': {
            const bool undo = key == 'Z' && GetKeyState(VK_SHIFT) >= 0;
            if (!(undo && m_panel.revertDraft())) {
                undoOrRedo(undo);
            }
            return true;
        }
        case 'F':
            focusSearch();
            return true;
        default:
            return m_owner.rowShortcut(key);
    }
}

std::vector<RowMenuItem> RowsView::menuItems(size_t row, HWND field) {
    const EntryModel& model = m_rows.row(row);
    const EntryField kind = model.facts().field;
    const std::string standard = m_rows.defaultName();
    std::vector<RowMenuItem> items;
    const auto item = [&](int id, const std::string& text, bool enabled = true) {
        items.push_back({id, text, enabled});
    };
    item(kUndo, "&Undo\tCtrl+Z", m_rows.canUndo());
    item(kRedo, "&Redo\tCtrl+Y", m_rows.canRedo());
    items.emplace_back();
    if (field && IsWindow(field) && (SendMessageA(field, WM_GETDLGCODE, 0, 0) & DLGC_HASSETSEL)) {
        item(kCut, "Cu&t\tCtrl+X");
        item(kCopy, "&Copy\tCtrl+C");
        item(kPaste, "&Paste\tCtrl+V");
        items.emplace_back();
    }
    const auto resetItem = [&](int id, const char* text, size_t first, size_t last) {
        if (m_rows.resetsToLoaded()) {
            item(id, text, m_rows.canReset(first, last, ResetTo::Loaded));
        }
    };
    if (hasValue(kind)) {
        resetItem(kResetLoaded, "Reset to the &loaded value", row, row + 1);
        item(kResetDefault, "Reset to " + standard, m_rows.canReset(row, row + 1, ResetTo::Default));
    }
    if (kind == EntryField::Heading) {
        const size_t end = m_rows.sectionEnd(row);
        resetItem(kResetSectionLoaded, "Reset the section to the load&ed values", row, end);
        item(kResetSectionDefault, "Reset the section to " + standard + 's',
             m_rows.canReset(row, end, ResetTo::Default));
    }
    resetItem(kResetAllLoaded, "Reset &all to the loaded values", 0, m_rows.size());
    std::string all = standard;
    std::erase(all, '&');
    item(kResetAllDefault, "Re&set all to " + all + 's', m_rows.canReset(0, m_rows.size(), ResetTo::Default));
    items.emplace_back();
    item(kFoldAll, "F&old all sections");
    item(kUnfoldAll, "U&nfold all sections");
    std::vector<RowMenuItem> own = m_owner.rowMenuItems(row);
    if (!own.empty()) {
        items.emplace_back();
        items.insert(items.end(), own.begin(), own.end());
    }
    return items;
}

void RowsView::rowMenu(size_t row, HWND field, POINT at) {
    if (!m_parent || m_owner.takesNoCommands()) {
        return;
    }
    const HMENU menu = CreatePopupMenu();
    for (const RowMenuItem& item : menuItems(row, field)) {
        if (item.id == 0) {
            AppendMenuA(menu, MF_SEPARATOR, 0, nullptr);
        } else {
            AppendMenuA(menu, MF_STRING | (item.enabled ? MF_ENABLED : MF_GRAYED),
                        static_cast<UINT_PTR>(item.id), item.text.c_str());
        }
    }
    const MeantRow meant(m_rows, row);
    const int chosen = static_cast<int>(
        TrackPopupMenu(menu, TPM_RETURNCMD | TPM_RIGHTBUTTON, at.x, at.y, 0, m_parent, nullptr));
    DestroyMenu(menu);
    // The window may be gone, or show other rows.
    if (chosen == 0 || !m_parent) {
        return;
    }
    if (!meant.isStillThere(m_rows)) {
        m_rows.giveUpInput();
        return;
    }
    menuChosen(row, field, chosen);
}

void RowsView::menuChosen(size_t row, HWND field, int id) {
    switch (id) {
        case kUndo:
        case kRedo:
            undoOrRedo(id == kUndo);
            return;
        case kCut:
        case kCopy:
        case kPaste:
            if (IsWindow(field)) {
                SendMessageA(field, id == kCut ? WM_CUT : id == kCopy ? WM_COPY : WM_PASTE, 0, 0);
            }
            return;
        case kResetLoaded:
        case kResetDefault:
            m_rows.resetRow(row, id == kResetLoaded ? ResetTo::Loaded : ResetTo::Default);
            return;
        case kResetSectionLoaded:
        case kResetSectionDefault:
            m_rows.resetSection(row, id == kResetSectionLoaded ? ResetTo::Loaded : ResetTo::Default);
            return;
        case kResetAllLoaded:
        case kResetAllDefault:
            m_rows.resetAll(id == kResetAllLoaded ? ResetTo::Loaded : ResetTo::Default);
            return;
        case kFoldAll:
        case kUnfoldAll:
            for (size_t i = 0; i < m_rows.size(); ++i) {
                if (m_rows.row(i).facts().field == EntryField::Heading) {
                    m_rows.filter.setFolded(i, id == kFoldAll);
                }
            }
            m_panel.layoutSoon();
            return;
        default:
            m_owner.rowMenuChosen(row, id);
            return;
    }
}

}  // namespace zoka

// The controls of the window around the rows, and where they stand.
#include <algorithm>

#include "customize/win/CustomizeControls.h"
#include "customize/win/CustomizeDialog.h"

namespace zoka {
namespace {

constexpr int kHelpLines = 4;
constexpr int kWideButton = 70;  // in dialog units: "Problems (1000)..."
constexpr int kShortestPanel = 60;

}  // namespace

// Keys with Ctrl work from every control, and the wheel always scrolls the rows.
LRESULT CALLBACK CustomizeDialog::controlProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam,
                                              UINT_PTR id, DWORD_PTR data) {
    auto* const self = reinterpret_cast<CustomizeDialog*>(data);
    switch (message) {
        case WM_KEYDOWN:
            if (GetKeyState(VK_CONTROL) < 0 && GetKeyState(VK_MENU) >= 0 && self->shortcut(wParam)) {
                return 0;
            }
            break;
        case WM_CHAR:
            // The characters of Ctrl+F, S, Y and Z, whose keys were taken.
            if (wParam == 6 || wParam == 19 || wParam == 25 || wParam == 26) {
                return 0;
            }
            break;
        case WM_MOUSEWHEEL:
            if (window == self->m_help || SendMessageA(window, CB_GETDROPPEDSTATE, 0, 0)) {
                break;
            }
            PostMessageA(self->m_panel.window(), message, wParam, lParam);
            return 0;
        case WM_NCDESTROY:
            RemoveWindowSubclass(window, controlProc, id);
            break;
        default:
            break;
    }
    return DefSubclassProc(window, message, wParam, lParam);
}

HWND CustomizeDialog::add(HWND control) {
    SetWindowSubclass(control, controlProc, 2, reinterpret_cast<DWORD_PTR>(this));
    return control;
}

// In the order of Tab.
void CustomizeDialog::makeControls() {
    const HFONT font = m_fonts->text();
    const auto button = [&](const char* text, int id) {
        add(makeControl(m_window, "BUTTON", text, WS_TABSTOP, 0, id, font));
    };
    makeControl(m_window, "STATIC", "S&cript:", 0, 0, kScriptLabel, font);
    add(makeControl(m_window, "COMBOBOX", "", CBS_DROPDOWNLIST | WS_VSCROLL | WS_TABSTOP, 0, kScript, font));
    makeControl(m_window, "STATIC", "Searc&h:", 0, 0, kSearchLabel, font);
    const HWND search =
        add(makeControl(m_window, "EDIT", "", ES_AUTOHSCROLL | WS_TABSTOP, WS_EX_CLIENTEDGE, kSearch, font));
    SendMessageA(search, EM_LIMITTEXT, 200, 0);
    add(makeControl(m_window, "BUTTON", "Changed &only", BS_AUTOCHECKBOX | WS_TABSTOP, 0, kChangedOnly,
                    font));
    m_panel.create(m_window, kRows, *m_fonts);
    m_help = add(makeReadOnlyText(m_window, kHelpBox, font));
    setText(m_help, "No Help");
    button("Show c&hanges...", kShowChanges);
    button("Problems (0)...", kShowFindings);
    button("&Save", kSave);
    button("&Restore", kRestore);
    button("&Update", kUpdate);
    button("Close", IDCANCEL);
    ShowWindow(GetDlgItem(m_window, kScript), SW_HIDE);
    ShowWindow(GetDlgItem(m_window, kScriptLabel), SW_HIDE);
}

SIZE CustomizeDialog::leastSize() const {
    const int buttons = 2 * kWideButton + 4 * 44 + 5 * kGapUnits;
    const int height =
        4 * kMarginUnits + 3 * kFieldHeightUnits + kShortestPanel + kHelpLines * 8 + 2 * kGapUnits;
    return outerSize(m_window, m_fonts->x(buttons + 2 * kMarginUnits), m_fonts->y(height));
}

bool CustomizeDialog::showsChoices() const {
    return (GetWindowLongPtrA(GetDlgItem(m_window, kScript), GWL_STYLE) & WS_VISIBLE) != 0;
}

// From the top: script, search, rows; from the bottom: buttons, help. The rows get what is left.
void CustomizeDialog::layout() {
    if (!m_window || !m_help) {
        return;
    }
    RECT area;
    GetClientRect(m_window, &area);
    const WindowFonts& f = *m_fonts;
    const int left = f.x(kMarginUnits), gapX = f.x(kGapUnits), gapY = f.y(kGapUnits);
    const int width = static_cast<int>(area.right) - 2 * left, right = left + width;
    const int field = f.y(kFieldHeightUnits), labelHeight = f.lineHeight() + 1;
    const auto item = [this](int id) { return GetDlgItem(m_window, id); };
    const int label = std::max(f.labelWidth("Search:"), f.labelWidth("Script:")) + gapX;
    const auto labelled = [&](int labelId, int y) {
        place(item(labelId), left, y + (field - labelHeight) / 2, label, labelHeight);
    };
    int y = f.y(kMarginUnits);
    const bool several = m_choices.size() > 1;
    if (showsChoices() != several) {
        for (const int id : {kScript, kScriptLabel}) {
            ShowWindow(item(id), several ? SW_SHOWNA : SW_HIDE);
        }
    }
    labelled(kScriptLabel, y);
    placeDropList(item(kScript), left + label, y, width - label, field);
    if (several) {
        y += field + gapY;
    }
    const int check = f.labelWidth("Changed only (20000)") + f.x(14);
    labelled(kSearchLabel, y);
    place(item(kSearch), left + label, y, width - label - check - gapX, field);
    place(item(kChangedOnly), right - check, y, check, field);
    y += field + gapY;

    const int button = f.y(kButtonHeightUnits);
    int bottom = static_cast<int>(area.bottom) - f.y(kMarginUnits) - button;
    const int wide = f.x(kWideButton), narrow = f.x(44);
    place(item(kShowChanges), left, bottom, wide, button);
    place(item(kShowFindings), left + wide + gapX, bottom, wide, button);
    int x = right;
    for (const int id : {static_cast<int>(IDCANCEL), static_cast<int>(kUpdate), static_cast<int>(kRestore),
                         static_cast<int>(kSave)}) {
        place(item(id), x - narrow, bottom, narrow, button);
        x -= narrow + gapX;
    }
    const int help = kHelpLines * f.lineHeight() + f.px(8);
    bottom -= gapY + help;
    place(m_help, left, bottom, width, help);
    place(m_panel.window(), left, y, width, bottom - gapY - y);
    InvalidateRect(m_window, nullptr, TRUE);
}

}  // namespace zoka

// What comes from the user and from the row's controls.
#include <windows.h>

#include <commctrl.h>

#include <algorithm>

#include "controls/win/EntryPanel.h"
#include "controls/win/EntryWindow.h"
#include "ui/win/Window.h"
#include "ui/win/WindowKit.h"

namespace zoka {

// The longer the button is held, the faster; counted here, because systems differ in how they take a table of speeds.
void EntryWindow::spun(bool up) {
    const DWORD held = GetTickCount() - m_spinPressed;
    const int steps = held < 2000 ? 1 : held < 4000 ? 5 : 20;
    step(up ? steps : -steps);
}

void EntryWindow::slid(WORD code) {
    const int position = static_cast<int>(SendMessageA(m_controls.track(), TBM_GETPOS, 0, 0));
    const bool isStep = code == TB_LINEUP || code == TB_LINEDOWN || code == TB_PAGEUP || code == TB_PAGEDOWN;
    if (position != model().sliderPosition() && !(isStep && refusesSteps())) {
        set(model().textAt(position), true);
    }
    showValue();
    if (code == TB_ENDTRACK) {
        m_panel.rows().leaveField();
    }
}

void EntryWindow::command(WORD code, HWND control) {
    if (m_updating) {
        return;
    }
    if (m_controls.browse() && control == m_controls.browse() && code == BN_CLICKED) {
        return m_panel.browseSoon(m_row);
    }
    if (!control || control != field()) {
        return;
    }
    if (facts().field == EntryField::Heading && code == BN_CLICKED) {
        m_panel.fold(m_row, !m_panel.rows().filter.isFolded(m_row));
        InvalidateRect(field(), nullptr, TRUE);
    } else if (facts().field == EntryField::Switch && code == BN_CLICKED) {
        set(model().isOn() && !model().isDifferent() ? "0" : "1", false);
    } else if (facts().field == EntryField::DropList && code == CBN_DROPDOWN) {
        widenOpenList(control);
    } else if (facts().field == EntryField::DropList && code == CBN_SELCHANGE) {
        const auto chosen = m_choices.chosen(facts());
        if (chosen && !set(*chosen, false)) {
            showValue();
        }
    } else if (isEdit() && code == EN_CHANGE) {
        typed();
    }
}

bool EntryWindow::keyDown(HWND control, WPARAM key) {
    if (GetKeyState(VK_CONTROL) < 0 && GetKeyState(VK_MENU) >= 0) {
        if (key == 'A' && control == field() && isEdit()) {
            SendMessageA(field(), EM_SETSEL, 0, -1);
            return true;
        }
        return m_panel.host().shortcut(key);
    }
    if (control == field() && isNumber(facts().field) && (key == VK_UP || key == VK_DOWN)) {
        step(key == VK_UP ? 1 : -1);
        return true;
    }
    if ((key == VK_PRIOR || key == VK_NEXT) && control != m_controls.track() && !isMultiLine() &&
        facts().field != EntryField::DropList) {
        PostMessageA(m_panel.window(), WM_VSCROLL, key == VK_PRIOR ? SB_PAGEUP : SB_PAGEDOWN, 0);
        return true;
    }
    return false;
}

LRESULT CALLBACK EntryWindow::fieldProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    return answerInside(window, [&] {
        auto* const self = reinterpret_cast<EntryWindow*>(GetWindowLongPtrW(window, GWLP_USERDATA));
        return self->fieldMessage(window, message, wParam, lParam);
    });
}

LRESULT EntryWindow::fieldMessage(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    m_panel.tips().relay(window, message, wParam, lParam);
    switch (message) {
        case WM_SETFOCUS:
            m_atFocus = model().value();
            m_differentAtFocus = model().isDifferent();
            m_panel.fieldFocused(m_row);
            break;
        case WM_KILLFOCUS:
            if (window == field() && !m_updating) {
                commit();
                if (isEdit() && !isMultiLine()) {
                    showBeginning();
                }
                m_panel.rows().leaveField();
            }
            break;
        case WM_LBUTTONDOWN:
        case WM_LBUTTONDBLCLK:
            if (window == m_controls.spin()) {
                m_spinPressed = GetTickCount();
            }
            break;
        case WM_MOUSEWHEEL:
            if (SendMessageA(window, CB_GETDROPPEDSTATE, 0, 0) && window == field() &&
                facts().field == EntryField::DropList) {
                break;
            }
            PostMessageA(m_panel.window(), WM_MOUSEWHEEL, wParam, lParam);
            return 0;
        case WM_KEYDOWN:
            if (keyDown(window, wParam)) {
                return 0;
            }
            break;
        case WM_CHAR:
            // The letters of Ctrl+Z and the like, whose keys were seen already.
            if (wParam < ' ' && GetKeyState(VK_CONTROL) < 0 &&
                (GetKeyState(VK_SHIFT) < 0 || (wParam != 3 && wParam != 22 && wParam != 24))) {
                return 0;
            }
            break;
        case WM_CONTEXTMENU:
            m_panel.menuSoon(m_row, window, lParam);
            return 0;
        case WM_GETDLGCODE:
            if (window == field() && isMultiLine()) {
                const auto* const pressed = reinterpret_cast<const MSG*>(lParam);
                const bool enter = pressed && pressed->message == WM_KEYDOWN && pressed->wParam == VK_RETURN;
                return DLGC_WANTARROWS | DLGC_WANTCHARS | DLGC_HASSETSEL | (enter ? DLGC_WANTMESSAGE : 0);
            }
            break;
        default:
            break;
    }
    // A menu's loop inside may free this row.
    const bool centred = m_controls.isCentred() && window == field();
    const bool scrolls = isMultiLine() && window == field();
    const LRESULT answer = m_controls.answerOf(window, message, wParam, lParam);
    if (scrolls) {
        fitScrollBar(window, message);
    }
    return centred ? centredFieldAnswer(window, message, lParam, answer) : answer;
}

LRESULT CALLBACK EntryWindow::windowProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    return answerInside(window, [&]() -> LRESULT {
        auto* const self = objectOf<EntryWindow>(window, message, lParam);
        if (!self) {
            return message == WM_NCCREATE ? FALSE : DefWindowProcA(window, message, wParam, lParam);
        }
        if (message == WM_NCCREATE) {
            self->m_window = window;
        }
        if (message == WM_NCDESTROY) {
            self->m_window = nullptr;
            forgetObject(window);
            return DefWindowProcA(window, message, wParam, lParam);
        }
        self->m_panel.tips().relay(window, message, wParam, lParam);
        return self->message(message, wParam, lParam);
    });
}

LRESULT EntryWindow::message(UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case WM_SIZE:
            m_controls.layOut(
                facts(), entryParts(facts(), m_panel.fonts(), LOWORD(lParam), HIWORD(lParam), m_labelWidth));
            m_controls.fitSwitchText(facts());
            return 0;
        case WM_PAINT:
            paint();
            return 0;
        case WM_COMMAND:
            command(HIWORD(wParam), reinterpret_cast<HWND>(lParam));
            return 0;
        case WM_HSCROLL:
            if (m_controls.track()) {
                slid(LOWORD(wParam));
            }
            return 0;
        case WM_NOTIFY: {
            const auto* const header = reinterpret_cast<const NMHDR*>(lParam);
            if (header && m_controls.spin() && header->hwndFrom == m_controls.spin() &&
                header->code == static_cast<UINT>(UDN_DELTAPOS)) {
                if (GetFocus() != field()) {
                    SetFocus(field());
                }
                spun(reinterpret_cast<const NMUPDOWN*>(lParam)->iDelta > 0);
                return TRUE;
            }
            return 0;
        }
        case WM_DRAWITEM:
            if (lParam && drawChoice(*reinterpret_cast<const DRAWITEMSTRUCT*>(lParam))) {
                return TRUE;
            }
            if (lParam) {
                drawButton(*reinterpret_cast<const DRAWITEMSTRUCT*>(lParam));
            }
            return TRUE;
        case WM_CTLCOLORSTATIC: {
            const LRESULT ground = DefWindowProcA(m_window, message, wParam, lParam);
            if (extrasOf(facts()).alarming && reinterpret_cast<HWND>(lParam) == m_controls.label()) {
                SetTextColor(reinterpret_cast<HDC>(wParam), RGB(176, 0, 0));
            }
            return ground;
        }
        case WM_CTLCOLOREDIT: {  // what was refused stands on another ground
            if (!m_panel.draftOf(m_row)) {
                return DefWindowProcA(m_window, message, wParam, lParam);
            }
            const auto dc = reinterpret_cast<HDC>(wParam);
            SetTextColor(dc, RGB(120, 0, 0));
            SetBkColor(dc, RGB(255, 225, 225));
            SetDCBrushColor(dc, RGB(255, 225, 225));
            return reinterpret_cast<LRESULT>(GetStockObject(DC_BRUSH));
        }
        case WM_LBUTTONDOWN:
            if (field()) {
                SetFocus(field());
            }
            return 0;
        case WM_CONTEXTMENU:
            m_panel.menuSoon(m_row, field(), lParam);
            return 0;
        default:
            return DefWindowProcA(m_window, message, wParam, lParam);
    }
}

}  // namespace zoka

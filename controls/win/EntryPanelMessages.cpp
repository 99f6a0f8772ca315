// What the panel's window answers to: scrolling, tooltips, what its rows left for later.

#include <windows.h>

#include <commdlg.h>

#include <algorithm>
#include <utility>

#include "controls/Colour.h"
#include "controls/FileFilter.h"
#include "controls/win/EntryPanel.h"
#include "ui/win/Window.h"
#include "util/OsFiles.h"
#include "util/PathRules.h"
#include "util/UserPrompt.h"

namespace zoka {

void EntryPanel::tooltipText(NMTTDISPINFOW& info) {
    const EntryWindow* window = windowOf(reinterpret_cast<HWND>(info.hdr.idFrom));
    if (window && m_tips.isRefusing(window->field())) {
        window = nullptr;  // the reason is in sight already, and would be hidden
    }
    const Draft* const draft = window ? draftOf(window->row()) : nullptr;
    const std::string why = draft ? "Not taken: " + draft->why + "\r\n" : std::string();
    const std::string about = window ? m_editing.tooltip(window->row()) : std::string();
    m_tip = wideReport(why) + wideReport(about);
    info.lpszText = m_tip.data();
}

void EntryPanel::showRefusal(HWND field, const std::string& text) {
    if (!text.empty() && !m_host.leaving()) {
        m_tips.showRefusal(field, text);
    }
}

void EntryPanel::browseSoon(size_t row) {
    ask(row, false, 0);
}

void EntryPanel::menuSoon(size_t row, HWND field, LPARAM at) {
    m_menuField = field;
    ask(row, true, at);
}

void EntryPanel::ask(size_t row, bool isMenu, LPARAM at) {
    m_asked.emplace(MeantRow(m_editing, row), isMenu, at);
    PostMessageA(m_window, kOpenAsked, 0, 0);
}

void EntryPanel::openAsked() {
    const std::optional<Asked> asked = std::exchange(m_asked, std::nullopt);
    if (asked && asked->row.isStillThere(m_editing)) {
        asked->isMenu ? openMenu(asked->row.row(), asked->at) : browse(asked->row);
    }
    m_menuField = nullptr;
}

void EntryPanel::openMenu(size_t row, LPARAM where) {
    POINT at{static_cast<short>(LOWORD(where)), static_cast<short>(HIWORD(where))};
    const auto live = m_live.find(row);
    if (where == -1 && live != m_live.end()) {  // by the keyboard: below the field, which stays in sight
        const HWND field = live->second->field();
        RECT area;
        GetWindowRect(field ? field : live->second->window(), &area);
        at = {area.left, area.bottom};
    }
    m_host.rowMenu(row, m_menuField, at);
}

void EntryPanel::browse(const MeantRow& meant) {
    const size_t row = meant.row();
    // A color's chooser is the window's own, a file's the session's.
    const auto chosen = m_editing.row(row).facts().field == EntryField::ColourField
                            ? chooseColour(m_editing.row(row).value())
                            : m_editing.browse(row);
    // The window may be gone, or show other rows.
    if (!chosen || !m_window) {
        return;
    }
    if (!meant.isStillThere(m_editing)) {
        m_editing.giveUpInput();
        return;
    }
    dropDraft(row);
    const Outcome taken = m_editing.setValue(row, *chosen);
    const auto live = m_live.find(row);
    if (!taken && live != m_live.end()) {
        showRefusal(live->second->field(), taken.why());
    }
}

std::optional<std::string> EntryPanel::chooseColour(const std::string& before) {
    static COLORREF own[16] = {};  // what the user mixed, as long as the plug-in is loaded
    const auto now = colourOf(before);
    CHOOSECOLORA chooser{};
    chooser.lStructSize = sizeof chooser;
    chooser.hwndOwner = GetAncestor(m_window, GA_ROOT);
    chooser.Flags = CC_FULLOPEN | CC_RGBINIT;
    chooser.rgbResult = now ? RGB(now->red, now->green, now->blue) : RGB(255, 255, 255);
    chooser.lpCustColors = own;
    if (!ChooseColorA(&chooser)) {
        return std::nullopt;
    }
    const Colour chosen{GetRValue(chooser.rgbResult), GetGValue(chooser.rgbResult),
                        GetBValue(chooser.rgbResult)};
    const bool same = now && chosen.red == now->red && chosen.green == now->green && chosen.blue == now->blue;
    return same ? before : colourText(chosen, before);  // the same one may be written in another way
}

void EntryPanel::scroll(WORD code) {
    RECT area;
    GetClientRect(m_window, &area);
    const int page = std::max(static_cast<int>(area.bottom) - m_fonts->px(30), 1), line = m_fonts->px(16);
    SCROLLINFO info{};
    info.cbSize = sizeof info;
    info.fMask = SIF_TRACKPOS;
    GetScrollInfo(m_window, SB_VERT, &info);
    switch (code) {
        case SB_LINEUP:
            return scrollTo(m_top - line);
        case SB_LINEDOWN:
            return scrollTo(m_top + line);
        case SB_PAGEUP:
            return scrollTo(m_top - page);
        case SB_PAGEDOWN:
            return scrollTo(m_top + page);
        case SB_TOP:
            return scrollTo(0);
        case SB_BOTTOM:
            return scrollTo(m_layout.contentHeight());
        case SB_THUMBTRACK:
        case SB_THUMBPOSITION:
            return scrollTo(info.nTrackPos);
        default:
            return;
    }
}

void EntryPanel::wheel(int delta) {
    UINT lines = 3;
    SystemParametersInfoA(SPI_GETWHEELSCROLLLINES, 0, &lines, 0);
    lines = std::clamp(lines, 1u, 20u);
    m_wheel += delta * static_cast<int>(lines) * m_fonts->px(16);
    const int pixels = m_wheel / WHEEL_DELTA;
    m_wheel -= pixels * WHEEL_DELTA;
    scrollTo(m_top - pixels);
}

void EntryPanel::paintEmpty() {
    PAINTSTRUCT painting;
    const HDC dc = BeginPaint(m_window, &painting);
    if (m_layout.rows().empty()) {
        RECT area;
        GetClientRect(m_window, &area);
        InflateRect(&area, -m_fonts->x(kMarginUnits), -m_fonts->y(kMarginUnits));
        const HGDIOBJ old = SelectObject(dc, m_fonts->text());
        SetBkMode(dc, TRANSPARENT);
        SetTextColor(dc, GetSysColor(COLOR_BTNTEXT));
        const std::string text = textOf(m_window);
        DrawTextA(dc, text.c_str(), -1, &area, DT_WORDBREAK | DT_NOPREFIX);
        SelectObject(dc, old);
    }
    EndPaint(m_window, &painting);
}

LRESULT CALLBACK EntryPanel::windowProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    return answerInside(window, [&]() -> LRESULT {
        auto* const self = objectOf<EntryPanel>(window, message, lParam);
        if (!self) {
            return message == WM_NCCREATE ? FALSE : DefWindowProcA(window, message, wParam, lParam);
        }
        if (message == WM_NCCREATE) {
            self->m_window = window;
        }
        if (message == WM_NCDESTROY) {
            self->m_window = nullptr;
            self->m_tips.forget();
            self->m_live.clear();
            self->m_measure.freePictures();
            forgetObject(window);
            return DefWindowProcA(window, message, wParam, lParam);
        }
        return self->message(message, wParam, lParam);
    });
}

LRESULT EntryPanel::message(UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case WM_SIZE:
            m_tips.hideRefusal();
            layout();
            return 0;
        case WM_VSCROLL:
            m_tips.hideRefusal();
            scroll(LOWORD(wParam));
            return 0;
        case WM_MOUSEWHEEL:
            // A row's open list would stay where it is.
            if (SendMessageA(GetFocus(), CB_GETDROPPEDSTATE, 0, 0)) {
                return 0;
            }
            m_tips.hideRefusal();
            wheel(static_cast<short>(HIWORD(wParam)));
            return 0;
        case WM_PAINT:
            paintEmpty();
            return 0;
        case WM_TIMER:
            m_tips.timer(wParam);
            return 0;
        case WM_NOTIFY: {
            auto* const header = reinterpret_cast<NMHDR*>(lParam);
            if (header && header->hwndFrom == m_tips.tooltip() &&
                header->code == static_cast<UINT>(TTN_GETDISPINFOW)) {
                tooltipText(*reinterpret_cast<NMTTDISPINFOW*>(lParam));
            }
            return 0;
        }
        case WM_NOTIFYFORMAT:
            return NFR_UNICODE;  // the tooltips ask
        case kLayoutRows:
            m_laidOutSoon = false;
            layout();
            return 0;
        case kFocused:
            if (const EntryWindow* const window = focused(); window && window->row() == wParam) {
                bringIntoSight(wParam);
                m_host.rowFocused(wParam);
            }
            return 0;
        case PanelTips::kShowRefusal:
            if (!m_host.leaving()) {
                m_tips.showNow();
            }
            return 0;
        case kOpenAsked:
            openAsked();
            return 0;
        default:
            return DefWindowProcA(m_window, message, wParam, lParam);
    }
}

}  // namespace zoka

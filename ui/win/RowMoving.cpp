#include "ui/win/RowMoving.h"

#include <algorithm>
#include <utility>

#include "ui/win/Subclass.h"
#include "ui/win/Window.h"

namespace zoka {

namespace {

constexpr UINT_PTR kScrollTimer = 71;
constexpr UINT kScrollEvery = 60;  // milliseconds
constexpr int kMarkHeight = 2;     // pixels

RECT itemArea(HWND list, int row) {
    RECT area{};
    area.left = LVIR_BOUNDS;
    SendMessageA(list, LVM_GETITEMRECT, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(&area));
    return area;
}

}  // namespace

void RowMoving::attach(HWND list, MayMove mayMove, Move move) {
    m_list = list;
    m_mayMove = std::move(mayMove);
    m_move = std::move(move);
    addProcedure(list, listProc, reinterpret_cast<DWORD_PTR>(this));
}

int RowMoving::count() const {
    return static_cast<int>(SendMessageA(m_list, LVM_GETITEMCOUNT, 0, 0));
}

int RowMoving::rowHeight() const {
    const RECT first = itemArea(m_list, 0);
    return std::max(static_cast<int>(first.bottom - first.top), 1);
}

void RowMoving::begin(int row) {
    if (!m_list || row < 0 || row >= count() || isDragging()) {
        return;
    }
    m_row = row;
    SetCapture(m_list);
    SetTimer(m_list, kScrollTimer, kScrollEvery, nullptr);
}

// The mark stands between two rows, in front of the one whose upper edge is nearest.
void RowMoving::follow(int y) {
    m_y = y;
    const int height = rowHeight();
    const int from = static_cast<int>(itemArea(m_list, 0).top);
    const int before = std::clamp((y - from + height / 2) / height, 0, count());
    const bool stays = before == m_row || before == m_row + 1;
    mark(!stays && m_mayMove(m_row, before) ? before : -1);
    SetCursor(LoadCursorA(nullptr, reinterpret_cast<LPCSTR>(m_before >= 0 || stays ? IDC_SIZENS : IDC_NO)));
}

// While the mouse is above or below the rows.
void RowMoving::scroll() {
    RECT inside;
    GetClientRect(m_list, &inside);
    const HWND header = reinterpret_cast<HWND>(SendMessageA(m_list, LVM_GETHEADER, 0, 0));
    RECT head{};
    if (header) {
        GetClientRect(header, &head);
    }
    const int by = m_y < head.bottom ? -1 : m_y >= inside.bottom ? 1 : 0;
    if (by != 0) {
        SendMessageA(m_list, LVM_SCROLL, 0, by * rowHeight());
        follow(m_y);
    }
}

void RowMoving::mark(int before) {
    if (before != m_before) {
        m_before = before;
        InvalidateRect(m_list, nullptr, FALSE);
    }
}

void RowMoving::end(bool drops) {
    const int row = std::exchange(m_row, -1), before = m_before;
    if (row < 0) {
        return;
    }
    KillTimer(m_list, kScrollTimer);
    mark(-1);
    if (GetCapture() == m_list) {
        ReleaseCapture();
    }
    // Asked again: other things than the mouse's moves may have changed the answer.
    if (drops && before >= 0 && row < count() && before <= count() && IsWindowVisible(m_list) &&
        m_mayMove(row, before)) {
        m_move(row, before);
    }
}

void RowMoving::step(int by) {
    const int row = static_cast<int>(
        SendMessageA(m_list, LVM_GETNEXTITEM, static_cast<WPARAM>(-1), MAKELPARAM(LVNI_SELECTED, 0)));
    const int before = by < 0 ? row - 1 : row + 2;
    if (row >= 0 && before >= 0 && before <= count() && m_mayMove(row, before)) {
        m_move(row, before);
    }
}

void RowMoving::paintMark(const NMLVCUSTOMDRAW& draw) const {
    const int row = static_cast<int>(draw.nmcd.dwItemSpec);
    const bool above = row == m_before, below = row + 1 == m_before && m_before == count();
    if (m_before < 0 || (!above && !below)) {
        return;
    }
    RECT line = itemArea(m_list, row);
    if (above) {
        line.bottom = line.top + kMarkHeight;
    } else {
        line.top = line.bottom - kMarkHeight;
    }
    FillRect(draw.nmcd.hdc, &line, GetSysColorBrush(COLOR_HIGHLIGHT));
}

// True when the message is no business of the list.
bool RowMoving::takes(UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case WM_SYSKEYDOWN:
            if (isDragging()) {
                return wParam == VK_UP || wParam == VK_DOWN;
            }
            if (wParam == VK_UP || wParam == VK_DOWN) {
                step(wParam == VK_UP ? -1 : 1);
                return true;
            }
            return false;
        case WM_MOUSEMOVE:
            if (isDragging()) {
                follow(static_cast<short>(HIWORD(lParam)));
            }
            return isDragging();
        case WM_LBUTTONUP:
            end(true);
            return false;  // the list knows of the press
        case WM_RBUTTONDOWN:
        case WM_KEYDOWN: {
            const bool gaveUp = isDragging() && (message == WM_RBUTTONDOWN || wParam == VK_ESCAPE);
            if (gaveUp) {
                end(false);
            }
            return gaveUp || isDragging();
        }
        case WM_CAPTURECHANGED:
            if (reinterpret_cast<HWND>(lParam) != m_list) {
                end(false);
            }
            return false;
        case WM_TIMER:
            if (wParam == kScrollTimer) {
                scroll();
            }
            return wParam == kScrollTimer;
        default:
            return false;
    }
}

LRESULT CALLBACK RowMoving::listProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam,
                                     DWORD_PTR data) {
    return answerInside(window, [&]() -> LRESULT {
        auto* const self = reinterpret_cast<RowMoving*>(data);
        if (message == WM_GETDLGCODE && self->isDragging()) {
            return DLGC_WANTMESSAGE;  // Esc gives up the drag, not the dialog
        } else if (self->takes(message, wParam, lParam)) {
            return 0;
        }
        return nextProcedure(window, message, wParam, lParam);
    });
}

}  // namespace zoka

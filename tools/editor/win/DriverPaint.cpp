// The drive script's commands about what is painted: how often, how a selected row looks, what lies over what.
#include <windows.h>

#include <commctrl.h>

#include <map>
#include <mutex>
#include <utility>

#include "tools/editor/win/ControlPicture.h"
#include "tools/editor/win/DriveContext.h"
#include "tools/editor/win/SlimLock.h"
#include "tools/editor/win/WindowSearch.h"

namespace zoka {

namespace {

// --- How often: every window of a thread, and each row of its lists, counted where its messages pass.

constexpr int kWholeWindow = -1;
SlimLock g_lock;                               // of the next one
std::map<std::pair<HWND, int>, int> g_paints;  // by window and row
HHOOK g_posted = nullptr, g_sent = nullptr;

void note(HWND window, int row) {
    const std::lock_guard lock(g_lock);
    ++g_paints[{window, row}];
}

LRESULT CALLBACK seePosted(int code, WPARAM wParam, LPARAM lParam) {
    const auto& message = *reinterpret_cast<const MSG*>(lParam);
    if (code == HC_ACTION && wParam == PM_REMOVE && message.message == WM_PAINT) {
        note(message.hwnd, kWholeWindow);
    }
    return CallNextHookEx(g_posted, code, wParam, lParam);
}

LRESULT CALLBACK seeSent(int code, WPARAM wParam, LPARAM lParam) {
    const auto& message = *reinterpret_cast<const CWPSTRUCT*>(lParam);
    if (code == HC_ACTION && message.message == WM_PAINT) {
        note(message.hwnd, kWholeWindow);
    } else if (code == HC_ACTION && message.message == WM_NOTIFY) {
        const auto& draw = *reinterpret_cast<const NMLVCUSTOMDRAW*>(message.lParam);
        if (draw.nmcd.hdr.code == static_cast<UINT>(NM_CUSTOMDRAW) &&
            draw.nmcd.dwDrawStage == CDDS_ITEMPREPAINT && isOfClass(draw.nmcd.hdr.hwndFrom, WC_LISTVIEWA)) {
            note(draw.nmcd.hdr.hwndFrom, static_cast<int>(draw.nmcd.dwItemSpec));
        }
    }
    return CallNextHookEx(g_sent, code, wParam, lParam);
}

void stopCounting() {
    for (HHOOK* const hook : {&g_posted, &g_sent}) {
        if (*hook) {
            UnhookWindowsHookEx(*hook);
        }
        *hook = nullptr;
    }
}

// Whether every window has been painted that was to be.
bool isPainted(HWND top) {
    ask(top, WM_NULL);  // what its thread is doing is done
    for (const HWND control : childWindows(top)) {
        if (IsWindowVisible(control) && GetUpdateRect(control, nullptr, FALSE)) {
            return false;
        }
    }
    return !GetUpdateRect(top, nullptr, FALSE);
}

void countPaints(DriveContext& drive, const Words&) {
    const HWND top = drive.window();
    drive.expect([&] { return isPainted(top); }, "all painted", [] { return std::string("some is not"); });
    stopCounting();
    {
        const std::lock_guard lock(g_lock);
        g_paints.clear();
    }
    const DWORD thread = GetWindowThreadProcessId(top, nullptr);
    g_posted = SetWindowsHookExA(WH_GETMESSAGE, seePosted, nullptr, thread);
    g_sent = SetWindowsHookExA(WH_CALLWNDPROC, seeSent, nullptr, thread);
    if (!g_posted || !g_sent) {
        throw DriveFault("what is painted can't be counted");
    }
}

void expectPaintedOnce(DriveContext& drive, const Words& words) {
    const HWND top = drive.window();
    std::vector<HWND> controls;
    for (const std::string& name : words) {
        controls.push_back(drive.control(name));
    }
    drive.expect([&] { return isPainted(top); }, "all painted", [] { return std::string("some is not"); });
    std::string faults;
    const std::lock_guard lock(g_lock);
    for (const HWND control : controls) {
        for (HWND window = control; window != GetAncestor(top, GA_PARENT);
             window = GetAncestor(window, GA_PARENT)) {
            const auto times = g_paints.find({window, kWholeWindow});
            const int count = times == g_paints.end() ? 0 : times->second;
            // The windows around it need not be painted for it. Other controls are not looked at.
            if (count > 1 || (count == 0 && window == control)) {
                faults += "\n    " + describe(window) + ", " + std::to_string(count) + " times";
            }
        }
    }
    for (const auto& [what, count] : g_paints) {
        if (count > 1 && what.second != kWholeWindow) {
            faults += "\n    row " + std::to_string(what.second + 1) + " of " + describe(what.first) + ", " +
                      std::to_string(count) + " times";
        }
    }
    stopCounting();
    if (!faults.empty()) {
        throw DriveFault(
            "expected these controls painted once, the windows around them and the rows of lists at most "
            "once; saw" +
            faults);
    }
}

// --- How a selected row looks

// How much its ground differs from that of its neighbours; -1 where none is selected, or it isn't in sight.
int rowContrast(HWND list) {
    const LRESULT row = ask(list, LVM_GETNEXTITEM, static_cast<WPARAM>(-1), LVNI_SELECTED);
    RECT inside;
    GetClientRect(list, &inside);
    const ControlPicture seen(static_cast<int>(inside.right), static_cast<int>(inside.bottom));
    seen.paint(list);
    // In front of the first text.
    const auto groundOf = [&](LRESULT of) {
        RECT area{};
        area.left = LVIR_LABEL;
        return of >= 0 && ask(list, LVM_GETITEMRECT, static_cast<WPARAM>(of), reinterpret_cast<LPARAM>(&area))
                   ? seen.at(area.left + 1, (area.top + area.bottom) / 2)
                   : CLR_INVALID;
    };
    const COLORREF own = groundOf(row);
    for (const LRESULT other : {row + 1, row - 1}) {
        const COLORREF ground = groundOf(other);
        if (own != CLR_INVALID && ground != CLR_INVALID) {
            return colourDistance(own, ground);
        }
    }
    return -1;
}

void expectRowSeen(DriveContext& drive, const Words& words) {
    constexpr int kSeen = 90;
    const HWND list = drive.control(words[0]);
    if (!isOfClass(list, WC_LISTVIEWA)) {
        throw DriveFault(describe(list) + " is no list of rows");
    }
    int contrast = -1;
    drive.expect([&] { return focusOf(list) != list && (contrast = rowContrast(list)) >= kSeen; },
                 "a selected row that is seen while the keyboard is elsewhere",
                 [&] {
                     return "a contrast of " + std::to_string(contrast) + "; the keyboard is in " +
                            describe(focusOf(list));
                 });
}

// --- What lies over what

// Looked at once: a balloon that hides itself after a while would cover nothing then.
void expectApart(DriveContext& drive, const Words& words) {
    const HWND control = drive.control(words[0]);
    HWND window = nullptr;
    drive.expect([&] { return (window = findTopWindow(words[1])) != nullptr; },
                 "a window \"" + words[1] + '"', [] { return "\n" + describeAll(); });
    drive.expect(
        [&] {
            RECT area{}, other{}, common{};
            GetWindowRect(control, &area);
            GetWindowRect(window, &other);
            return !IntersectRect(&common, &area, &other);
        },
        "nothing over " + describe(control), [&] { return describe(window); });
}

}  // namespace

void addPaintCommands(DriveCommands& table) {
    table["count-paints"] = {0, 0, countPaints};
    table["expect-painted-once"] = {1, 9, expectPaintedOnce};
    table["expect-apart"] = {2, 2, expectApart};
    table["expect-row-seen"] = {1, 1, expectRowSeen};
}

}  // namespace zoka

// The drive script's commands for the mouse wheel, for menus at a control, and for messages at random.
#include <windows.h>

#include <commctrl.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <random>

#include "tools/editor/win/DriveContext.h"
#include "tools/editor/win/Keyboard.h"
#include "tools/editor/win/WindowSearch.h"

namespace zoka {

namespace {

constexpr UINT kMenuHandle = 0x01E1;  // MN_GETHMENU
constexpr int kMostItems = 60;
constexpr unsigned kSeldom = 20;
constexpr int kBatch = 200;

HWND openPopUp() {
    return findTopWindow("*", "#32768");
}

std::string itemText(HMENU menu, int position) {
    char text[200] = {};
    GetMenuStringA(menu, static_cast<UINT>(position), text, sizeof text, MF_BYPOSITION);
    std::string plain = text;
    plain.erase(std::min(plain.find('\t'), plain.size()));
    std::erase(plain, '&');
    return plain;
}

// Whether a thread still takes messages: a mark is posted to one of its windows, and a hook sees it taken out,
// also by the loop of a menu or a dialog. One at a time.
class QueueProbe {
public:
    explicit QueueProbe(DWORD thread) : m_taken(CreateEventA(nullptr, TRUE, FALSE, nullptr)) {
        s_taken = m_taken;
        m_hook = SetWindowsHookExA(WH_GETMESSAGE, see, nullptr, thread);
    }
    ~QueueProbe() {
        UnhookWindowsHookEx(m_hook);
        CloseHandle(m_taken);
    }
    QueueProbe(const QueueProbe&) = delete;
    QueueProbe& operator=(const QueueProbe&) = delete;

    // False when nothing was taken for so long, or the window is gone.
    bool emptied(HWND window, DWORD patience) {
        ResetEvent(m_taken);
        if (!PostMessageA(window, mark(), 0, 0)) {
            return false;
        }
        for (const ULONGLONG end = GetTickCount64() + patience; GetTickCount64() < end && IsWindow(window);) {
            if (WaitForSingleObject(m_taken, 20) == WAIT_OBJECT_0) {
                return true;
            }
        }
        return false;
    }

private:
    static UINT mark() { return RegisterWindowMessageA("ZunHostQueueMark"); }
    static LRESULT CALLBACK see(int code, WPARAM wParam, LPARAM lParam) {
        if (code == HC_ACTION && wParam == PM_REMOVE &&
            reinterpret_cast<const MSG*>(lParam)->message == mark()) {
            SetEvent(s_taken);
        }
        return CallNextHookEx(nullptr, code, wParam, lParam);
    }

    static HANDLE s_taken;
    HANDLE m_taken;
    HHOOK m_hook = nullptr;
};
HANDLE QueueProbe::s_taken = nullptr;

// The identifiers that menus at the controls may have.
struct MenuIds {
    unsigned first = 1, count = 11;
};

// A message as a user, the system or another program could send it, without pointers: these a program that
// sends them would have to get right.
MSG randomMessage(std::mt19937& random, HWND top, const std::vector<HWND>& windows, const MenuIds& menu) {
    const auto below = [&](unsigned n) { return static_cast<unsigned>(random() % n); };
    const HWND window = windows[below(static_cast<unsigned>(windows.size()))];
    const LPARAM point = MAKELPARAM(below(700), below(700));
    static constexpr std::array kKeys{VK_TAB,    VK_UP,     VK_DOWN, VK_LEFT,  VK_RIGHT, VK_PRIOR,
                                      VK_NEXT,   VK_HOME,   VK_END,  VK_SPACE, VK_BACK,  VK_DELETE,
                                      VK_RETURN, VK_ESCAPE, VK_APPS, VK_F4};
    static constexpr std::array<UINT, 18> kPlain{
        WM_PASTE,      WM_COPY,     WM_CUT,          WM_CLEAR,          WM_UNDO,
        WM_CANCELMODE, WM_SETFOCUS, WM_KILLFOCUS,    WM_CAPTURECHANGED, WM_SYSCOLORCHANGE,
        WM_FONTCHANGE, WM_PAINT,    WM_MOUSELEAVE,   WM_CHILDACTIVATE,  WM_THEMECHANGED,
        WM_ENABLE,     WM_NCPAINT,  WM_DISPLAYCHANGE};
    static constexpr std::array<UINT, 13> kOfControls{
        EM_SETSEL,   EM_UNDO,    EM_LINESCROLL, EM_SCROLL,     CB_SETCURSEL,       CB_SHOWDROPDOWN, BM_CLICK,
        BM_SETCHECK, TBM_SETPOS, UDM_SETPOS32,  WM_NEXTDLGCTL, EM_EMPTYUNDOBUFFER, CB_GETLBTEXTLEN};
    MSG made{};
    made.hwnd = window;
    switch (below(16)) {
        case 0:
        case 1:
            made.message = WM_KEYDOWN;
            made.wParam = static_cast<WPARAM>(kKeys[below(kKeys.size())]);
            // Seldom, as all that closes the window or opens another: most messages should meet a busy one.
            if ((made.wParam == VK_RETURN || made.wParam == VK_ESCAPE) && below(kSeldom)) {
                made.wParam = VK_TAB;
            }
            break;
        case 2:
        case 3:
            made.message = WM_CHAR;
            made.wParam = below(4) ? 32 + below(224) : below(32);
            break;
        case 4:
            made.message = WM_LBUTTONDOWN;
            made.lParam = point;
            break;
        case 5:
            made.message = WM_LBUTTONUP;
            made.lParam = point;
            break;
        case 6:
            made.message = below(8) ? WM_MOUSEMOVE : WM_RBUTTONUP;
            made.lParam = point;
            break;
        case 7:
            made.message = WM_MOUSEWHEEL;
            made.wParam = MAKEWPARAM(0, below(2000));
            made.lParam = point;
            break;
        case 8:
            made.message = below(2) ? WM_VSCROLL : WM_HSCROLL;
            made.wParam = MAKEWPARAM(below(10), below(40000));
            break;
        case 9:  // a control's notice or a menu's choice
            made.hwnd = below(3) ? top : window;
            made.message = WM_COMMAND;
            made.wParam = below(kSeldom)
                              ? MAKEWPARAM(below(2000), 1 + below(0x800))
                              : MAKEWPARAM(below(2) ? menu.first + below(menu.count) : below(12), 0);
            break;
        case 10:
            // What stands behind a timer's number is a procedure.
            made.message = below(4 * kSeldom) ? WM_TIMER : WM_CONTEXTMENU;
            made.wParam = below(8);
            if (made.message == WM_CONTEXTMENU) {
                made.lParam = below(2) ? point : -1;
            }
            break;
        case 11:
            made.message = WM_SIZE;
            made.lParam = point;
            break;
        case 12:
        case 13:
            made.message = kPlain[below(kPlain.size())];
            made.wParam = made.message == WM_ENABLE ? 1 : 0;
            break;
        default:
            made.message = kOfControls[below(kOfControls.size())];
            if (made.message == BM_CLICK && below(kSeldom)) {
                made.message = BM_SETCHECK;
            }
            made.wParam = below(8) ? below(40) : random();
            if (made.message == WM_NEXTDLGCTL) {
                made.wParam = below(2);
            } else {
                made.lParam = static_cast<LPARAM>(below(200)) - 50;
            }
            break;
    }
    return made;
}

void wheel(DriveContext& drive, const Words& words) {
    const HWND found = drive.usableControl(words[0]);
    RECT area;
    GetWindowRect(found, &area);
    const auto notches = static_cast<short>(driveNumber(words[1]) * WHEEL_DELTA);
    PostMessageA(found, WM_MOUSEWHEEL, MAKEWPARAM(0, static_cast<WORD>(notches)),
                 MAKELPARAM(area.left + 2, area.top + 2));
}

// hover CONTROL TEXT: rests the mouse on it until a tooltip with that text is there.
void hover(DriveContext& drive, const Words& words) {
    RECT area;
    GetWindowRect(drive.usableControl(words[0]), &area);
    // The second one is a move, wherever the mouse was before.
    SetCursorPos(area.left + 2, area.top + 2);
    SetCursorPos(area.left + 4, area.top + 4);
    const auto shown = [] {
        std::string texts;
        for (const HWND one : topWindows()) {
            if (windowClass(one) == TOOLTIPS_CLASSA) {
                texts += windowText(one) + '\n';
            }
        }
        return texts;
    };
    drive.expect([&] { return shown().find(words[1]) != std::string::npos; },
                 "a tooltip with \"" + words[1] + "\"", shown);
}

// hold CONTROL up|down TEXT: presses spin buttons with the mouse until the field beside them shows TEXT.
void hold(DriveContext& drive, const Words& words) {
    const HWND found = drive.usableControl(words[0]);
    const HWND field = GetWindow(found, GW_HWNDPREV);
    if (!field || (words[1] != "up" && words[1] != "down")) {
        throw DriveFault("can't hold " + describe(found));
    }
    RECT area;
    GetClientRect(found, &area);
    const LPARAM at = MAKELPARAM(area.right / 2, words[1] == "up" ? 2 : area.bottom - 3);
    PostMessageA(found, WM_LBUTTONDOWN, MK_LBUTTON, at);
    const bool reached = drive.until([&] { return windowText(field) == words[2]; });
    PostMessageA(found, WM_LBUTTONUP, 0, at);
    if (!reached) {
        throw DriveFault("expected " + describe(field) + " to come to " + words[2] + "; saw " +
                         windowText(field));
    }
}

// drag-row LIST FROM BEFORE [BUTTON|ESC|PAGEUP|PAGEDOWN]: drags a row of a list with the mouse to the upper half of
// another one, or below the last one where BEFORE is "". Both are numbers from 1; no message waits for the one before,
// as the list takes them in turn. BUTTON does its work before the row is dropped, as its key could make it, and a key
// is pressed then.
void dragRow(DriveContext& drive, const Words& words) {
    const HWND found = drive.usableControl(words[0]);
    const LRESULT count = ask(found, LVM_GETITEMCOUNT);
    const auto middleOf = [&](long row) {
        RECT area{};
        area.left = LVIR_BOUNDS;
        if (row < 1 || row > count ||
            !ask(found, LVM_GETITEMRECT, static_cast<WPARAM>(row - 1), reinterpret_cast<LPARAM>(&area))) {
            throw DriveFault(describe(found) + " has no row " + std::to_string(row));
        }
        return POINT{area.left + 20, (area.top + area.bottom) / 2};
    };
    const POINT from = middleOf(driveNumber(words[1]));
    const bool toEnd = words[2].empty();
    POINT to = middleOf(toEnd ? static_cast<long>(count) : driveNumber(words[2]));
    to.y += toEnd ? 3 : -3;
    const auto post = [&](UINT message, WPARAM keys, POINT at) {
        PostMessageA(found, message, keys, MAKELPARAM(at.x, at.y));
    };
    post(WM_LBUTTONDOWN, MK_LBUTTON, from);
    for (int step = 1; step <= 8; ++step) {  // far enough apart to be a drag
        post(WM_MOUSEMOVE, MK_LBUTTON, {from.x + step, from.y + (to.y - from.y) * step / 8});
    }
    constexpr std::pair<const char*, WPARAM> kKeys[] = {
        {"ESC", VK_ESCAPE}, {"PAGEUP", VK_PRIOR}, {"PAGEDOWN", VK_NEXT}};
    const auto* const key = std::ranges::find_if(
        kKeys, [&](const auto& one) { return words.size() > 3 && words[3] == one.first; });
    if (key != std::end(kKeys)) {
        post(WM_KEYDOWN, key->second, {});
        post(WM_KEYUP, key->second, {});
    } else if (words.size() > 3) {
        const HWND button = drive.usableControl(words[3]);
        PostMessageA(GetParent(button), WM_COMMAND, MAKEWPARAM(GetDlgCtrlID(button), BN_CLICKED),
                     reinterpret_cast<LPARAM>(button));
    }
    post(WM_LBUTTONUP, 0, to);
}

// drag move|size|caption: the keyboard or, by its caption, the mouse moves or sizes the current window from now on.
void drag(DriveContext& drive, const Words& words) {
    const HWND window = drive.window();
    if (words[0] == "caption") {
        if (!bringToFront(window, drive.patience)) {
            throw DriveFault("the window does not come to the front");
        }
        RECT frame;
        GetWindowRect(window, &frame);
        SetCursorPos(frame.left + (frame.right - frame.left) / 2,
                     frame.top + GetSystemMetrics(SM_CYSIZEFRAME) + GetSystemMetrics(SM_CYCAPTION) / 2);
        INPUT press{};
        press.type = INPUT_MOUSE;
        press.mi.dwFlags = MOUSEEVENTF_LEFTDOWN;
        SendInput(1, &press, sizeof press);
        press.mi.dwFlags = MOUSEEVENTF_MOVE;
        press.mi.dx = press.mi.dy = 20;
        SendInput(1, &press, sizeof press);
    } else if (words[0] == "move" || words[0] == "size") {
        PostMessageA(window, WM_SYSCOMMAND, words[0] == "move" ? SC_MOVE : SC_SIZE, 0);
    } else {
        throw DriveFault("drag is move, size or caption");
    }
    const DWORD thread = GetWindowThreadProcessId(window, nullptr);
    const auto moves = [thread] {
        GUITHREADINFO state{};
        state.cbSize = sizeof state;
        return GetGUIThreadInfo(thread, &state) && (state.flags & GUI_INMOVESIZE) != 0;
    };
    drive.expect(moves, "the window to be moved or sized", [] { return std::string("it is not"); });
}

// Of the pop-up menu that is open.
void chooseItem(DriveContext& drive, const Words& words) {
    const HWND popUp = openPopUp();
    if (!popUp) {
        throw DriveFault("no menu is open");
    }
    const HMENU menu = reinterpret_cast<HMENU>(ask(popUp, kMenuHandle));
    int wanted = -1;
    std::string all;
    for (int i = 0; i < GetMenuItemCount(menu); ++i) {
        if (itemText(menu, i) == words[0]) {
            wanted = i;
        }
        all += "\n    " + itemText(menu, i);
    }
    if (wanted < 0) {
        throw DriveFault("the menu has no item \"" + words[0] + "\", only" + all);
    }
    if (GetMenuState(menu, static_cast<UINT>(wanted), MF_BYPOSITION) & (MF_GRAYED | MF_DISABLED)) {
        throw DriveFault("the menu item \"" + words[0] + "\" is greyed");
    }
    const HWND owner = drive.window();
    const auto chosen = [&] {
        return GetMenuState(menu, static_cast<UINT>(wanted), MF_BYPOSITION) & MF_HILITE;
    };
    // A key is posted once the one before has moved the mark.
    for (int i = 0; i < kMostItems && !chosen(); ++i) {
        const auto marked = [&] {
            for (int at = 0; at < GetMenuItemCount(menu); ++at) {
                if (GetMenuState(menu, static_cast<UINT>(at), MF_BYPOSITION) & MF_HILITE) {
                    return at;
                }
            }
            return -1;
        };
        const int before = marked();
        PostMessageA(owner, WM_KEYDOWN, VK_DOWN, 0);
        // The mark is nowhere for a moment on its way to the next item.
        const auto moved = [&] {
            const int now = marked();
            return now >= 0 && now != before;
        };
        drive.expect(moved, "the next item of the menu", [&] { return all; });
    }
    if (!chosen()) {
        throw DriveFault("the menu's mark does not come to \"" + words[0] + "\"");
    }
    PostMessageA(owner, WM_KEYDOWN, VK_RETURN, 0);
    drive.expect([] { return openPopUp() == nullptr; }, "the menu to close", [&] { return all; });
}

void contextMenu(DriveContext& drive, const Words& words) {
    // A menu that opens below the pointer would mark what lies there.
    SetCursorPos(GetSystemMetrics(SM_CXSCREEN) - 1, GetSystemMetrics(SM_CYSCREEN) - 1);
    PostMessageA(drive.usableControl(words[0]), WM_CONTEXTMENU, 0, -1);
    drive.expect([] { return openPopUp() != nullptr; }, "a menu at " + words[0],
                 [] { return std::string("none"); });
    if (words.size() == 2) {
        chooseItem(drive, {words[1]});
    }
}

// Whether both were made by one library: the system's boxes and choosers are its own.
bool sameModule(HWND one, HWND other) {
    return GetWindowLongPtrA(one, GWLP_HINSTANCE) == GetWindowLongPtrA(other, GWLP_HINSTANCE);
}

// random-messages SEED COUNT PROCEDURE [FIRST LAST]: to the window of a procedure, its controls and its own dialogs,
// among them choices of the menu items FIRST to LAST. The system's boxes and choosers that they open are cancelled,
// and the procedure is run again when they close it.
void randomMessages(DriveContext& drive, const Words& words) {
    std::mt19937 random(static_cast<std::mt19937::result_type>(driveNumber(words[0])));
    const long count = driveNumber(words[1]);
    const std::string title = words[2] + "*";
    MenuIds menu;
    if (words.size() == 4) {
        throw DriveFault("random-messages takes the first and the last menu item, or none");
    }
    if (words.size() > 4) {
        const long first = driveNumber(words[3]), last = driveNumber(words[4]);
        if (first < 1 || last < first || last > 0xFFFF) {
            throw DriveFault("menu items are numbered from 1 to 65535");
        }
        menu = {static_cast<unsigned>(first), static_cast<unsigned>(last - first + 1)};
    }
    std::printf("random messages, seed %s: %ld\n", words[0].c_str(), count);
    std::fflush(stdout);
    long boxes = 0, runs = 0;
    HWND top = nullptr;
    std::unique_ptr<QueueProbe> probe;
    for (long sent = 0; sent < count;) {
        if (!IsWindow(top)) {
            probe.reset();
            drive.carryOut({"execute", words[2]});
            drive.expect([&] { return (top = findTopWindow(title)) != nullptr; }, title,
                         [] { return std::string("no such window"); });
            probe = std::make_unique<QueueProbe>(GetWindowThreadProcessId(top, nullptr));
            ++runs;
        }
        if (!probe->emptied(top, drive.patience) && IsWindow(top)) {
            throw DriveFault("the window takes no messages after " + std::to_string(sent) +
                             " at random, seed " + words[0]);
        }
        // The innermost dialog stands first.
        const DWORD thread = GetWindowThreadProcessId(top, nullptr);
        HWND target = nullptr;
        for (const HWND one : topWindows()) {
            if (!target && thread && GetWindowThreadProcessId(one, nullptr) == thread &&
                IsWindowEnabled(one) && (windowClass(one) == "#32770" || one == top)) {
                target = one;
            }
        }
        if (!target) {
            continue;
        }
        if (target != top && !sameModule(target, top)) {
            ++boxes;
            PostMessageA(target, WM_COMMAND, random() % 2 ? IDCANCEL : IDNO, 0);
            PostMessageA(target, WM_COMMAND, IDCANCEL, 0);
            ++sent;
            continue;
        }
        std::vector<HWND> windows = childWindows(target);
        windows.push_back(target);
        for (int i = 0; i < kBatch && sent < count; ++i, ++sent) {
            const MSG message = randomMessage(random, target, windows, menu);
            PostMessageA(message.hwnd, message.message, message.wParam, message.lParam);
        }
        PostMessageA(target, WM_CANCELMODE, 0, 0);  // ends menus
    }
    if (!probe->emptied(top, drive.patience) && IsWindow(top)) {
        throw DriveFault("the window takes no messages");
    }
    std::printf("%ld sent; %ld runs, %ld boxes\n", count, runs, boxes);
    std::fflush(stdout);
}

}  // namespace

void addInputCommands(DriveCommands& table) {
    table["wheel"] = {2, 2, wheel};
    table["hover"] = {2, 2, hover};
    table["hold"] = {3, 3, hold};
    table["drag-row"] = {3, 4, dragRow};
    table["drag"] = {1, 1, drag};
    table["context-menu"] = {1, 2, contextMenu};
    table["choose-item"] = {1, 1, chooseItem};
    table["random-messages"] = {3, 5, randomMessages};
}

}  // namespace zoka

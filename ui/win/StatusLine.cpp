#include "ui/win/StatusLine.h"

#include <commctrl.h>

#include <algorithm>
#include <memory>

#include "ui/win/Subclass.h"
#include "ui/win/Window.h"

namespace zoka {

namespace {

constexpr size_t kTipColumns = 90;

TTTOOLINFOW toolOf(HWND line) {
    TTTOOLINFOW tool{};
    tool.cbSize = TTTOOLINFOW_V1_SIZE;
    tool.uFlags = TTF_IDISHWND;
    tool.hwnd = line;
    tool.uId = reinterpret_cast<UINT_PTR>(line);
    return tool;
}

bool isCut(HWND line, const std::wstring& text) {
    RECT area;
    GetClientRect(line, &area);
    const HDC dc = GetDC(line);
    const HGDIOBJ old = SelectObject(dc, reinterpret_cast<HFONT>(SendMessageA(line, WM_GETFONT, 0, 0)));
    SIZE size{};
    GetTextExtentPoint32W(dc, text.c_str(), static_cast<int>(text.size()), &size);
    SelectObject(dc, old);
    ReleaseDC(line, dc);
    return size.cx > area.right;
}

// A long path has no blanks where the tooltip could break it.
std::wstring inLines(std::wstring text) {
    for (size_t at = 0; text.size() - at > kTipColumns;) {
        const size_t end = text.find_last_of(L" \\", at + kTipColumns - 1);
        at = end != text.npos && end > at ? end + 1 : at + kTipColumns;
        text.insert(at, L"\r\n");
        at += 2;
    }
    return text;
}

// Of one line; goes with it. The tooltip is made when the mouse first rests on a text that is cut: most windows never
// need one, and it would be a tenth of the time that they take to open.
struct LineTip {
    HWND window = nullptr;
};

HWND makeLineTip(HWND line) {
    const RECT screen = workArea(line);
    const HWND tip = makeTip(line, static_cast<int>(screen.right - screen.left));
    SendMessageA(tip, TTM_SETDELAYTIME, TTDT_AUTOPOP, 20000);
    TTTOOLINFOW tool = toolOf(line);
    tool.lpszText = const_cast<wchar_t*>(L"");
    SendMessageW(tip, TTM_ADDTOOLW, 0, reinterpret_cast<LPARAM>(&tool));
    return tip;
}

// The mouse has moved on the line.
void showTip(HWND line, LineTip& tip, WPARAM wParam, LPARAM lParam) {
    const std::wstring text = wideText(textOf(line, CP_UTF8), CP_UTF8);
    std::wstring shown = isCut(line, text) ? inLines(text) : std::wstring();
    if (!tip.window) {
        if (shown.empty()) {
            return;
        }
        tip.window = makeLineTip(line);
    }
    TTTOOLINFOW tool = toolOf(line);
    tool.lpszText = shown.data();
    SendMessageW(tip.window, TTM_UPDATETIPTEXTW, 0, reinterpret_cast<LPARAM>(&tool));
    relayToTip(tip.window, line, WM_MOUSEMOVE, wParam, lParam);
}

LRESULT CALLBACK lineProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam, DWORD_PTR data) {
    return answerInside(window, [&]() -> LRESULT {
        auto* const tip = reinterpret_cast<LineTip*>(data);
        if (message == WM_NCHITTEST) {
            return HTCLIENT;  // or it would be its parent's mouse
        }
        if (message == WM_NCDESTROY) {
            delete tip;
        } else if (message == WM_MOUSEMOVE) {
            showTip(window, *tip, wParam, lParam);
        }
        return nextProcedure(window, message, wParam, lParam);
    });
}

}  // namespace

HWND makeTip(HWND owner, int width) {
    const HWND made =
        CreateWindowExW(WS_EX_TOPMOST, TOOLTIPS_CLASSW, L"", WS_POPUP | TTS_NOPREFIX | TTS_ALWAYSTIP, 0, 0, 0,
                        0, owner, nullptr, ownModule(), nullptr);
    SendMessageA(made, TTM_SETMAXTIPWIDTH, 0, width);
    // For a window without icons the system loads its own when it is first shown, which needs the loader's lock. A
    // thread that unmaps the library holds that, and the panel would never be gone.
    const auto icon = reinterpret_cast<LPARAM>(LoadIconA(nullptr, MAKEINTRESOURCEA(32512)));
    SendMessageA(made, WM_SETICON, ICON_SMALL,
                 icon);  // first: the system makes a small one of a large one alone
    SendMessageA(made, WM_SETICON, ICON_BIG, icon);
    return made;
}

void relayToTip(HWND tip, HWND control, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message < WM_MOUSEMOVE || message > WM_MBUTTONUP) {
        return;
    }
    MSG event{};
    event.hwnd = control;
    event.message = message;
    event.wParam = wParam;
    event.lParam = lParam;
    event.time = static_cast<DWORD>(GetMessageTime());
    GetCursorPos(&event.pt);
    SendMessageW(tip, TTM_RELAYEVENT, 0, reinterpret_cast<LPARAM>(&event));
}

HWND makeStatusLine(HWND parent, int id, const WindowFonts& fonts) {
    const HWND line = makeControl(parent, "STATIC", "", SS_NOPREFIX | SS_ENDELLIPSIS, 0, id, fonts.text());
    auto tip = std::make_unique<LineTip>();
    addProcedure(line, lineProc, reinterpret_cast<DWORD_PTR>(tip.get()));
    if (line) {
        tip.release();
    }
    return line;
}

}  // namespace zoka

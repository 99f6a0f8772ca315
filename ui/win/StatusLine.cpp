#include "ui/win/StatusLine.h"

#include <commctrl.h>

#include <algorithm>

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

LRESULT CALLBACK lineProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam, DWORD_PTR tip) {
    return answerInside(window, [&]() -> LRESULT {
        if (message == WM_NCHITTEST) {
            return HTCLIENT;  // or it would be its parent's mouse
        }
        if (message == WM_MOUSEMOVE) {
            const std::wstring text = wideText(textOf(window, CP_UTF8), CP_UTF8);
            std::wstring shown = isCut(window, text) ? inLines(text) : std::wstring();
            TTTOOLINFOW tool = toolOf(window);
            tool.lpszText = shown.data();
            SendMessageW(reinterpret_cast<HWND>(tip), TTM_UPDATETIPTEXTW, 0, reinterpret_cast<LPARAM>(&tool));
            MSG event{};
            event.hwnd = window;
            event.message = message;
            event.wParam = wParam;
            event.lParam = lParam;
            event.time = static_cast<DWORD>(GetMessageTime());
            GetCursorPos(&event.pt);
            SendMessageW(reinterpret_cast<HWND>(tip), TTM_RELAYEVENT, 0, reinterpret_cast<LPARAM>(&event));
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

HWND makeStatusLine(HWND parent, int id, const WindowFonts& fonts) {
    const HWND line = makeControl(parent, "STATIC", "", SS_NOPREFIX | SS_ENDELLIPSIS, 0, id, fonts.text());
    const RECT screen = workArea(parent);
    const HWND tip = makeTip(line, static_cast<int>(screen.right - screen.left));
    SendMessageA(tip, TTM_SETDELAYTIME, TTDT_AUTOPOP, 20000);
    TTTOOLINFOW tool = toolOf(line);
    tool.lpszText = const_cast<wchar_t*>(L"");
    SendMessageW(tip, TTM_ADDTOOLW, 0, reinterpret_cast<LPARAM>(&tool));
    addProcedure(line, lineProc, reinterpret_cast<DWORD_PTR>(tip));
    return line;
}

}  // namespace zoka

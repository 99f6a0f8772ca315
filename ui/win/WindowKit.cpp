#include "ui/win/WindowKit.h"

#include <commctrl.h>

#include <algorithm>
#include <cstring>

#include "ui/win/Subclass.h"

extern "C" const IMAGE_DOS_HEADER __ImageBase;  // the linker's: where this module begins

namespace zoka {

namespace {

SIZE averageCharacter(HDC dc, HFONT font) {
    static const char kLetters[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz";
    const HGDIOBJ old = SelectObject(dc, font);
    SIZE size{};
    GetTextExtentPoint32A(dc, kLetters, 52, &size);
    SelectObject(dc, old);
    return {(size.cx / 26 + 1) / 2, size.cy};
}

void showScrollBarAsNeeded(HWND text) {
    RECT area;
    TEXTMETRICA metrics;
    const HDC dc = GetDC(text);
    const HGDIOBJ old = SelectObject(dc, reinterpret_cast<HFONT>(SendMessageA(text, WM_GETFONT, 0, 0)));
    GetTextMetricsA(dc, &metrics);
    SelectObject(dc, old);
    ReleaseDC(text, dc);
    SendMessageA(text, EM_GETRECT, 0, reinterpret_cast<LPARAM>(&area));
    const LRESULT lines = SendMessageA(text, EM_GETLINECOUNT, 0, 0);
    const bool needed = lines * metrics.tmHeight > area.bottom - area.top;
    const bool shown = (GetWindowLongPtrA(text, GWL_STYLE) & WS_VSCROLL) != 0;
    // Showing it makes the lines shorter and so never fewer: this comes to rest.
    if (needed != shown) {
        ShowScrollBar(text, SB_VERT, needed);
    }
}

// Of a field of several lines. One to read only keeps of the keys the arrows alone; the others else take Enter and Tab,
// and close their parent on Escape.
LRESULT CALLBACK textProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam,
                          DWORD_PTR readOnly) noexcept {
    if (readOnly && message == WM_GETDLGCODE) {
        return DLGC_WANTARROWS;
    } else if (readOnly && message == WM_KEYDOWN && wParam == 'A' && GetKeyState(VK_CONTROL) < 0) {
        SendMessageA(window, EM_SETSEL, 0, -1);
        return 0;
    }
    const LRESULT result = nextProcedure(window, message, wParam, lParam);
    fitScrollBar(window, message);
    return result;
}

HWND makeTextOf(HWND parent, int id, HFONT font, DWORD style) {
    const HWND text = makeControl(parent, "EDIT", "", WS_TABSTOP | ES_MULTILINE | ES_AUTOVSCROLL | style,
                                  WS_EX_CLIENTEDGE, id, font);
    SendMessageA(text, EM_LIMITTEXT, 0, 0);
    addProcedure(text, textProc, style & ES_READONLY);
    return text;
}

// The bands above and below the inside of a field are its border's; they get the field's own colour.
void paintFieldBands(HWND field) {
    RECT frame, inside;
    GetWindowRect(field, &frame);
    GetClientRect(field, &inside);
    MapWindowPoints(field, nullptr, reinterpret_cast<POINT*>(&inside), 2);
    OffsetRect(&inside, -frame.left, -frame.top);
    const bool writable = IsWindowEnabled(field) && (GetWindowLongPtrA(field, GWL_STYLE) & ES_READONLY) == 0;
    const HDC dc = GetWindowDC(field);
    const auto brush = reinterpret_cast<HBRUSH>(
        SendMessageA(GetParent(field), writable ? WM_CTLCOLOREDIT : WM_CTLCOLORSTATIC,
                     reinterpret_cast<WPARAM>(dc), reinterpret_cast<LPARAM>(field)));
    const LONG edge = GetSystemMetrics(SM_CYEDGE), height = frame.bottom - frame.top;
    const RECT above{inside.left, edge, inside.right, inside.top};
    const RECT below{inside.left, inside.bottom, inside.right, height - edge};
    for (const RECT& band : {above, below}) {
        if (brush && band.bottom > band.top) {
            FillRect(dc, &band, brush);
        }
    }
    ReleaseDC(field, dc);
}

LRESULT CALLBACK fieldProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam, DWORD_PTR) noexcept {
    return centredFieldAnswer(window, message, lParam, nextProcedure(window, message, wParam, lParam));
}

BOOL CALLBACK takeFirstVisible(HWND window, LPARAM result) noexcept {
    if (!IsWindowVisible(window)) {
        return TRUE;
    }
    *reinterpret_cast<HWND*>(result) = window;
    return FALSE;
}

struct FontChange {
    HFONT from[2], to[2];
};

BOOL CALLBACK giveNewFont(HWND control, LPARAM data) noexcept {
    const auto& change = *reinterpret_cast<const FontChange*>(data);
    const auto has = reinterpret_cast<HFONT>(SendMessageA(control, WM_GETFONT, 0, 0));
    for (int i = 0; i < 2; ++i) {
        if (has == change.from[i]) {
            SendMessageA(control, WM_SETFONT, reinterpret_cast<WPARAM>(change.to[i]), FALSE);
        }
    }
    return TRUE;
}

}  // namespace

int textHeightOf(HWND control) {
    TEXTMETRICA metrics;
    const HDC dc = GetDC(control);
    const HGDIOBJ old = SelectObject(dc, reinterpret_cast<HFONT>(SendMessageA(control, WM_GETFONT, 0, 0)));
    GetTextMetricsA(dc, &metrics);
    SelectObject(dc, old);
    ReleaseDC(control, dc);
    return static_cast<int>(metrics.tmHeight);
}

// Not asked from the system, which needs the loader's lock to answer: a panel that is being opened while its library
// is unmapped would wait for it in vain.
HINSTANCE ownModule() {
    return reinterpret_cast<HINSTANCE>(const_cast<IMAGE_DOS_HEADER*>(&__ImageBase));
}

WindowFonts::WindowFonts() {
    make(0);
}

void WindowFonts::make(int dpi) {
    NONCLIENTMETRICSA metrics{};
    metrics.cbSize = sizeof metrics;
    LOGFONTA font{};
    if (SystemParametersInfoA(SPI_GETNONCLIENTMETRICS, sizeof metrics, &metrics, 0)) {
        font = metrics.lfMessageFont;
    } else {
        GetObjectA(GetStockObject(DEFAULT_GUI_FONT), sizeof font, &font);
    }
    const HDC dc = GetDC(nullptr);
    const int systemDpi = std::max(GetDeviceCaps(dc, LOGPIXELSY), 96);
    m_dpi = dpi > 0 ? dpi : systemDpi;
    font.lfHeight = MulDiv(static_cast<int>(font.lfHeight), m_dpi, systemDpi);
    m_text = CreateFontIndirectA(&font);
    font.lfPitchAndFamily = FIXED_PITCH | FF_MODERN;
    std::strcpy(font.lfFaceName, "Courier New");
    m_fixed = CreateFontIndirectA(&font);
    m_base = averageCharacter(dc, m_text);
    m_fixedWidth = static_cast<int>(averageCharacter(dc, m_fixed).cx);
    ReleaseDC(nullptr, dc);
}

bool WindowFonts::renew(HWND window, int dpi) {
    const FontChange old{{m_text, m_fixed}, {}};
    const SIZE base = m_base;
    const int oldDpi = m_dpi;
    make(dpi);
    LOGFONTA before{}, after{};
    GetObjectA(old.from[0], sizeof before, &before);
    GetObjectA(m_text, sizeof after, &after);
    const bool changed = base.cx != m_base.cx || base.cy != m_base.cy || oldDpi != m_dpi ||
                         std::memcmp(&before, &after, sizeof before) != 0;
    const FontChange change{{old.from[0], old.from[1]}, {m_text, m_fixed}};
    EnumChildWindows(window, giveNewFont, reinterpret_cast<LPARAM>(&change));
    DeleteObject(old.from[0]);
    DeleteObject(old.from[1]);
    return changed;
}

WindowFonts::~WindowFonts() {
    DeleteObject(m_text);
    DeleteObject(m_fixed);
}

int WindowFonts::labelWidth(const std::string& text) const {
    RECT area{};
    const HDC dc = GetDC(nullptr);
    const HGDIOBJ old = SelectObject(dc, m_text);
    DrawTextA(dc, text.c_str(), -1, &area, DT_CALCRECT | DT_SINGLELINE);
    SelectObject(dc, old);
    ReleaseDC(nullptr, dc);
    // The measure knows nothing of the last letter's overhang, nor of how a control smooths its text.
    return static_cast<int>(area.right) + px(3);
}

std::wstring wideText(std::string_view text, UINT codePage) {
    const int length = static_cast<int>(text.size());
    std::wstring wide;
    if (length > 0) {
        wide.resize(static_cast<size_t>(MultiByteToWideChar(codePage, 0, text.data(), length, nullptr, 0)));
        MultiByteToWideChar(codePage, 0, text.data(), length, wide.data(), static_cast<int>(wide.size()));
    }
    return wide;
}

std::wstring wideReport(const std::string& text) {
    const bool utf8 = MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, text.data(),
                                          static_cast<int>(text.size()), nullptr, 0) > 0;
    return wideText(text, utf8 ? CP_UTF8 : CP_ACP);
}

std::string narrowText(std::wstring_view text, UINT codePage) {
    const int length = static_cast<int>(text.size());
    std::string narrow;
    if (length > 0) {
        narrow.resize(static_cast<size_t>(
            WideCharToMultiByte(codePage, 0, text.data(), length, nullptr, 0, nullptr, nullptr)));
        WideCharToMultiByte(codePage, 0, text.data(), length, narrow.data(), static_cast<int>(narrow.size()),
                            nullptr, nullptr);
    }
    return narrow;
}

HWND makeControl(HWND parent, const char* className, const char* text, DWORD style, DWORD exStyle, int id,
                 HFONT font) {
    const HWND control = CreateWindowExW(
        exStyle, wideText(className).c_str(), wideText(text).c_str(), WS_CHILD | WS_VISIBLE | style, 0, 0, 0,
        0, parent, reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)), ownModule(), nullptr);
    SendMessageA(control, WM_SETFONT, reinterpret_cast<WPARAM>(font), FALSE);
    return control;
}

HWND makeLabel(HWND parent, const char* text, const WindowFonts& fonts, int id) {
    return makeControl(parent, "STATIC", text, SS_LEFTNOWORDWRAP, 0, id, fonts.text());
}

HWND makeButton(HWND parent, const char* text, int id, const WindowFonts& fonts, bool isDefault) {
    return makeControl(parent, "BUTTON", text,
                       WS_TABSTOP | static_cast<DWORD>(isDefault ? BS_DEFPUSHBUTTON : BS_PUSHBUTTON), 0, id,
                       fonts.text());
}

HWND makeField(HWND parent, int id, const WindowFonts& fonts, DWORD style) {
    const HWND field = makeControl(parent, "EDIT", "", ES_AUTOHSCROLL | WS_TABSTOP | style, WS_EX_CLIENTEDGE,
                                   id, fonts.text());
    centreFieldText(field);
    return field;
}

void centreFieldText(HWND edit) {
    addProcedure(edit, fieldProc);
    renewFrame(edit);
}

// A field of one line shows its text at the top of its inside, so the inside is made as high as the text.
LRESULT centredFieldAnswer(HWND edit, UINT message, LPARAM lParam, LRESULT own) {
    constexpr LONG kAir = 1;  // the field keeps that itself
    switch (message) {
        case WM_NCCALCSIZE: {
            RECT& inside = *reinterpret_cast<RECT*>(lParam);  // the first member of either structure
            const LONG spare = inside.bottom - inside.top - textHeightOf(edit) - 2 * kAir;
            if (spare > 1) {
                inside.top += spare / 2;
                inside.bottom -= spare - spare / 2;
            }
            return own;
        }
        case WM_NCPAINT:
            paintFieldBands(edit);
            return own;
        case WM_NCHITTEST:
            return own == HTNOWHERE || own == HTBORDER ? HTCLIENT : own;
        case WM_ENABLE:
        case EM_SETREADONLY:
            RedrawWindow(edit, nullptr, nullptr, RDW_FRAME | RDW_INVALIDATE);
            return own;
        case WM_SETFONT:
            renewFrame(edit);
            return own;
        default:
            return own;
    }
}

void renewFrame(HWND window) {
    SetWindowPos(window, nullptr, 0, 0, 0, 0,
                 SWP_NOMOVE | SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE | SWP_FRAMECHANGED);
}

void fitScrollBar(HWND edit, UINT message) {
    switch (message) {
        case WM_SETTEXT:
        case WM_SIZE:
        case WM_SETFONT:
        case WM_CHAR:
        case WM_KEYDOWN:
        case WM_PASTE:
        case WM_CUT:
        case WM_CLEAR:
        case WM_UNDO:
        case EM_UNDO:
        case EM_REPLACESEL:
            showScrollBarAsNeeded(edit);
            break;
        default:
            break;
    }
}

HWND makeText(HWND parent, int id, HFONT font) {
    return makeTextOf(parent, id, font, ES_WANTRETURN);
}

HWND makeReadOnlyText(HWND parent, int id, HFONT font) {
    return makeTextOf(parent, id, font, ES_READONLY);
}

void place(HWND control, int x, int y, int width, int height) {
    // Nothing is copied to the new place: neighbours that are moved one after the other would copy each other.
    SetWindowPos(control, nullptr, x, y, std::max(width, 0), std::max(height, 0),
                 SWP_NOZORDER | SWP_NOACTIVATE | SWP_NOCOPYBITS);
}

void placeLabel(HWND label, Area& row, const WindowFonts& fonts, int width) {
    const Area at = row.takeLeft(width > 0 ? width : fonts.labelWidth(textOf(label)), fonts.x(kGapUnits));
    place(label, at.middle(fonts.lineHeight()));
}

void placeLabelAbove(HWND label, Area& area, const WindowFonts& fonts) {
    place(label, area.takeTop(fonts.y(kLabelHeightUnits)));
}

void placeButtonsRight(std::initializer_list<HWND> buttons, Area& row, const WindowFonts& fonts, int units) {
    for (const HWND button : buttons) {
        place(button, row.takeRight(fonts.x(units), fonts.x(kGapUnits)));
    }
}

COLORREF inkOfWrong() {
    const COLORREF ground = GetSysColor(COLOR_WINDOW);
    const bool isDark = GetRValue(ground) + GetGValue(ground) + GetBValue(ground) < 3 * 128;
    return isDark ? RGB(255, 150, 140) : RGB(170, 0, 0);
}

std::string textOf(HWND window, UINT codePage) {
    std::wstring text(static_cast<size_t>(std::max(GetWindowTextLengthW(window), 0)) + 1, L'\0');
    text.resize(static_cast<size_t>(GetWindowTextW(window, text.data(), static_cast<int>(text.size()))));
    return narrowText(text, codePage);
}

void setText(HWND window, const std::string& text, UINT codePage) {
    if (textOf(window, codePage) != text) {
        SetWindowTextW(window, wideText(text, codePage).c_str());
    }
}

void setReport(HWND window, const std::string& text) {
    setText(window, narrowText(wideReport(text), CP_UTF8), CP_UTF8);
}

void enable(HWND control, bool enabled) {
    if ((IsWindowEnabled(control) != 0) == enabled) {
        return;
    }
    // The keyboard would be lost in a control that takes no input.
    if (!enabled && GetFocus() == control) {
        SendMessageA(GetAncestor(control, GA_ROOT), WM_NEXTDLGCTL, 0, FALSE);
    }
    EnableWindow(control, enabled);
}

DrawingOff::DrawingOff(HWND window)
    : m_window((GetWindowLongA(window, GWL_STYLE) & WS_VISIBLE) != 0 ? window : nullptr) {
    if (m_window) {
        SendMessageA(m_window, WM_SETREDRAW, FALSE, 0);
    }
}

DrawingOff::~DrawingOff() {
    if (m_window) {
        SendMessageA(m_window, WM_SETREDRAW, TRUE, 0);
        // At once: Wine leaves the arrows of a scroll bar black that is drawn later, below the mouse.
        RedrawWindow(m_window, nullptr, nullptr,
                     RDW_INVALIDATE | RDW_ERASE | RDW_FRAME | RDW_ALLCHILDREN | RDW_UPDATENOW);
    }
}

void setWindowIcons(HWND window, HINSTANCE module, int icon, HWND owner) {
    const auto give = [&](WPARAM kind, int width, int height) {
        const LPARAM shared = module ? reinterpret_cast<LPARAM>(LoadImageA(
                                           module, MAKEINTRESOURCEA(icon), IMAGE_ICON,
                                           GetSystemMetrics(width), GetSystemMetrics(height), LR_SHARED))
                                     : SendMessageA(owner, WM_GETICON, kind, 0);
        SendMessageA(window, WM_SETICON, kind, shared);
    };
    give(ICON_SMALL, SM_CXSMICON, SM_CYSMICON);  // first: the system makes a small one of a large one alone
    give(ICON_BIG, SM_CXICON, SM_CYICON);
}

HWND modalOwner() {
    HWND owner = GetActiveWindow();
    if (!owner) {
        EnumThreadWindows(GetCurrentThreadId(), takeFirstVisible, reinterpret_cast<LPARAM>(&owner));
    }
    return owner;
}

SIZE outerSize(HWND window, int width, int height) {
    RECT frame{0, 0, width, height};
    AdjustWindowRectEx(&frame, static_cast<DWORD>(GetWindowLongPtrA(window, GWL_STYLE)), FALSE,
                       static_cast<DWORD>(GetWindowLongPtrA(window, GWL_EXSTYLE)));
    return {frame.right - frame.left, frame.bottom - frame.top};
}

RECT workArea(HWND window) {
    MONITORINFO monitor{};
    monitor.cbSize = sizeof monitor;
    GetMonitorInfoA(MonitorFromWindow(window, MONITOR_DEFAULTTONEAREST), &monitor);
    return monitor.rcWork;
}

void placeOnScreen(HWND window, const RECT& place, const RECT& area) {
    const auto width = std::min(place.right - place.left, area.right - area.left);
    const auto height = std::min(place.bottom - place.top, area.bottom - area.top);
    const LONG left = std::clamp(place.left, area.left, area.right - width);
    const LONG top = std::clamp(place.top, area.top, area.bottom - height);
    SetWindowPos(window, nullptr, static_cast<int>(left), static_cast<int>(top), static_cast<int>(width),
                 static_cast<int>(height), SWP_NOZORDER | SWP_NOACTIVATE);
}

void centreOver(HWND window, HWND owner, int width, int height) {
    const RECT area = workArea(owner ? owner : window);
    RECT over = area;
    if (owner && !IsIconic(owner) && IsWindowVisible(owner)) {
        GetWindowRect(owner, &over);
    }
    const LONG left = (over.left + over.right) / 2 - width / 2,
               top = (over.top + over.bottom) / 2 - height / 2;
    placeOnScreen(window, {left, top, left + width, top + height}, area);
}

bool copyToClipboard(HWND owner, const std::string& text) {
    const std::wstring wide = wideReport(text);
    const size_t size = (wide.size() + 1) * sizeof(wchar_t);
    const HGLOBAL memory = GlobalAlloc(GMEM_MOVEABLE, size);
    if (!memory) {
        return false;
    }
    std::memcpy(GlobalLock(memory), wide.c_str(), size);
    GlobalUnlock(memory);
    bool done = false;
    if (OpenClipboard(owner)) {
        // The clipboard owns the memory once it has taken it.
        done = EmptyClipboard() && SetClipboardData(CF_UNICODETEXT, memory);
        CloseClipboard();
    }
    if (!done) {
        GlobalFree(memory);
    }
    return done;
}

std::string clipboardText(HWND owner, size_t most, UINT codePage) {
    if (!OpenClipboard(owner)) {
        return {};
    }
    // Closed also when memory runs out: no other program could use it.
    struct Opened {
        HANDLE data = GetClipboardData(CF_UNICODETEXT);
        const wchar_t* text = data ? static_cast<const wchar_t*>(GlobalLock(data)) : nullptr;
        ~Opened() {
            if (text) {
                GlobalUnlock(data);
            }
            CloseClipboard();
        }
    };
    const Opened opened;
    const wchar_t* const wide = opened.text;
    return wide ? narrowText(
                      {wide, wcsnlen(wide, std::min<size_t>(most, GlobalSize(opened.data) / sizeof *wide))},
                      codePage)
                : std::string();
}

}  // namespace zoka

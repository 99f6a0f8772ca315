// Whether a window is laid out as a user would want it: the drive script's expect-layout.
#include <windows.h>

#include <commctrl.h>

#include <algorithm>
#include <map>

#include "tools/editor/win/ControlPicture.h"
#include "tools/editor/win/DriveContext.h"
#include "tools/editor/win/WindowSearch.h"

namespace zoka {

namespace {

bool isGroupBox(HWND control) {
    return isOfClass(control, "Button") && (GetWindowLongA(control, GWL_STYLE) & BS_TYPEMASK) == BS_GROUPBOX;
}

bool isInSight(HWND control) {
    RECT area;
    GetWindowRect(control, &area);
    for (HWND parent = GetParent(control); parent; parent = GetAncestor(parent, GA_PARENT)) {
        RECT inside;
        GetClientRect(parent, &inside);
        MapWindowPoints(parent, nullptr, reinterpret_cast<POINT*>(&inside), 2);
        if (!IntersectRect(&area, &area, &inside)) {
            return false;
        }
    }
    return true;
}

// Whether a label's text, broken into lines at its width, is higher than the label.
bool isCutOff(HWND label, const RECT& area) {
    const LONG style = GetWindowLongA(label, GWL_STYLE);
    if ((style & (SS_TYPEMASK | SS_ELLIPSISMASK)) != SS_LEFT) {
        return false;
    }
    RECT needed = area;
    DrawTextA(WithFont(label).dc(), windowText(label).c_str(), -1, &needed,
              DT_CALCRECT | DT_WORDBREAK | (style & SS_NOPREFIX ? DT_NOPREFIX : 0u));
    return needed.bottom > area.bottom;
}

// Of the system's class, or of a plug-in's whose name ends like it.
bool isFieldOfOneLine(HWND control) {
    char name[64] = "";
    const int length = GetClassNameA(control, name, sizeof name);
    return length >= 4 && lstrcmpiA(name + length - 4, "Edit") == 0 &&
           !(GetWindowLongA(control, GWL_STYLE) & ES_MULTILINE) && !isOfClass(GetParent(control), "ComboBox");
}

// Whether it has its text elsewhere than in the middle of its height, as its label has.
bool isOffCentre(HWND field) {
    RECT frame, text;
    GetWindowRect(field, &frame);
    ask(field, EM_GETRECT, 0, reinterpret_cast<LPARAM>(&text));
    MapWindowPoints(field, nullptr, reinterpret_cast<POINT*>(&text), 2);
    const LONG height = WithFont(field).height();
    const LONG above = text.top - frame.top, below = frame.bottom - (text.top + height);
    return std::abs(above - below) > 2;
}

// What is wrong with the scroll bar of a field of several lines: it is there though all of them are shown, or isn't
// though some are not; empty when all is well.
std::string scrollBarFault(HWND field) {
    const LONG style = GetWindowLongA(field, GWL_STYLE);
    if (!isOfClass(field, "Edit") || !(style & ES_MULTILINE)) {
        return {};
    }
    RECT text{};
    ask(field, EM_GETRECT, 0, reinterpret_cast<LPARAM>(&text));
    const bool fits = ask(field, EM_GETLINECOUNT) * WithFont(field).height() <= text.bottom - text.top;
    return fits == ((style & WS_VSCROLL) == 0) ? ""
           : fits                              ? " has an empty scroll bar"
                                               : " lacks a scroll bar";
}

// Whether a drop list shows its choice elsewhere than in the middle of its height. What can't be asked from the list is
// seen: the text's upper edge, when it paints itself, is that of the same text drawn in the middle of a picture as
// high.
bool isChoiceOffCentre(HWND list) {
    const LRESULT chosen = ask(list, CB_GETCURSEL);
    COMBOBOXINFO info{};
    info.cbSize = sizeof info;
    if (chosen < 0 || !isInSight(list) || !GetComboBoxInfo(list, &info)) {
        return false;
    }
    char text[512] = "";
    if (ask(list, CB_GETLBTEXTLEN, static_cast<WPARAM>(chosen)) >= static_cast<LRESULT>(sizeof text) ||
        ask(list, CB_GETLBTEXT, static_cast<WPARAM>(chosen), reinterpret_cast<LPARAM>(text)) <= 0) {
        return false;
    }
    constexpr int kBorder = 4;  // a frame around the text is left out
    const int width = static_cast<int>(std::min(WithFont(list).extent(text).cx + 3 * kBorder,
                                                info.rcItem.right - info.rcItem.left - kBorder));
    RECT frame;
    GetWindowRect(list, &frame);
    const int height = static_cast<int>(frame.bottom - frame.top);
    const RECT inside{kBorder, kBorder, width, height - kBorder};
    ControlPicture seen(width, height), drawn(width, height);
    seen.paint(list);
    drawn.write(list, text, {kBorder + 2, 0, width, height}, RGB(255, 255, 255));
    const int shown = seen.firstInk(inside), wanted = drawn.firstInk(inside);
    return shown < 0 || std::abs(shown - wanted) > 1;
}

// A title of a list's column that is painted shorter than it is, though its column is wide enough, and how much of it;
// empty: none.
std::string clippedTitle(HWND header) {
    constexpr int kEdge = 3;  // the line between two columns is left out
    RECT all;
    GetClientRect(header, &all);
    ControlPicture seen(static_cast<int>(all.right), static_cast<int>(all.bottom));
    seen.paint(header);
    for (int i = 0; i < ask(header, HDM_GETITEMCOUNT); ++i) {
        char text[256] = "";
        HDITEMA item{};
        item.mask = HDI_TEXT;
        item.pszText = text;
        item.cchTextMax = sizeof text;
        ask(header, HDM_GETITEMA, static_cast<WPARAM>(i), reinterpret_cast<LPARAM>(&item));
        RECT at{};
        ask(header, HDM_GETITEMRECT, static_cast<WPARAM>(i), reinterpret_cast<LPARAM>(&at));
        InflateRect(&at, -kEdge, -kEdge);
        if (!text[0] || at.right <= at.left || at.right > all.right) {
            continue;
        }
        ControlPicture drawn(static_cast<int>(all.right), static_cast<int>(all.bottom));
        drawn.write(header, text, {at.left + kEdge, 0, all.right, all.bottom}, seen.at(at.left, at.top));
        const int shown = seen.inkWidth(at), wanted = drawn.inkWidth({at.left, at.top, all.right, at.bottom});
        if (shown < wanted) {
            return std::string(text) + "\", " + std::to_string(shown) + " of " + std::to_string(wanted) +
                   " pixels";
        }
    }
    return {};
}

// Whether the text of one line that a label or a button shows is wider than the room that it has for it.
bool isTextTooWide(HWND control, const RECT& area) {
    const LONG style = GetWindowLongA(control, GWL_STYLE);
    const WithFont font(control);
    const LONG width = font.extent(visibleText(control)).cx;
    if (isOfClass(control, "Static")) {
        constexpr LONG kOverhang = 2;  // of the last letter, which the measure leaves out
        return (style & (SS_TYPEMASK | SS_ELLIPSISMASK)) == SS_LEFTNOWORDWRAP && width > 0 &&
               width + kOverhang > area.right;
    }
    const LONG type = style & BS_TYPEMASK;
    if (type == BS_OWNERDRAW) {
        return false;
    }
    const bool isPush = type == BS_PUSHBUTTON || type == BS_DEFPUSHBUTTON;
    return width + (isPush ? 4 : font.height()) > area.right;
}

// A list's column whose title doesn't fit, or a tab whose text touches its border; empty when there is none.
std::string narrowPart(HWND control) {
    constexpr LONG kAir = 3;
    const WithFont font(control);
    char text[256] = "";
    if (isOfClass(control, WC_TABCONTROLA)) {
        for (int i = 0; i < ask(control, TCM_GETITEMCOUNT); ++i) {
            TCITEMA item{};
            item.mask = TCIF_TEXT;
            item.pszText = text;
            item.cchTextMax = sizeof text;
            RECT tab{};
            ask(control, TCM_GETITEMA, static_cast<WPARAM>(i), reinterpret_cast<LPARAM>(&item));
            ask(control, TCM_GETITEMRECT, static_cast<WPARAM>(i), reinterpret_cast<LPARAM>(&tab));
            const SIZE size = font.extent(text);
            // On a screen of twice the resolution it takes twice the pixels to be seen.
            const LONG air = font.height() / 3;
            if (size.cx + 2 * air > tab.right - tab.left || size.cy + 2 > tab.bottom - tab.top) {
                return std::string(" has no air around the tab \"") + text + '"';
            }
        }
    } else if (isOfClass(control, WC_HEADERA) && isInSight(control)) {
        if (const std::string title = clippedTitle(control); !title.empty()) {
            return " doesn't show the whole title \"" + title;
        }
    } else if (isOfClass(control, WC_LISTVIEWA) &&
               !(GetWindowLongA(control, GWL_STYLE) & LVS_NOCOLUMNHEADER)) {
        for (int i = 0;; ++i) {
            LVCOLUMNA column{};
            column.mask = LVCF_TEXT | LVCF_WIDTH;
            column.pszText = text;
            column.cchTextMax = sizeof text;
            if (!ask(control, LVM_GETCOLUMNA, static_cast<WPARAM>(i), reinterpret_cast<LPARAM>(&column))) {
                break;
            }
            if (font.extent(text).cx + 2 * kAir > column.cx) {
                return std::string(" cuts off the title \"") + text + '"';
            }
        }
    }
    return {};
}

// The letter that goes to a control with Alt; 0 when there is none.
char accessKey(HWND control) {
    const bool isLabel = isOfClass(control, "Static");
    if (!(isLabel || isOfClass(control, "Button")) ||
        (isLabel && (GetWindowLongA(control, GWL_STYLE) & SS_NOPREFIX))) {
        return 0;
    }
    const std::string text = windowText(control);
    for (size_t at = text.find('&'); at != text.npos && at + 1 < text.size(); at = text.find('&', at + 2)) {
        if (text[at + 1] != '&') {
            return static_cast<char>(reinterpret_cast<ULONG_PTR>(CharUpperA(
                reinterpret_cast<LPSTR>(static_cast<ULONG_PTR>(static_cast<BYTE>(text[at + 1]))))));
        }
    }
    return 0;
}

// What is wrong within a control: a text that is cut off or not in the middle of its field, a slider's thumb that is
// small, cut off or isn't where the position is, spin buttons too narrow for their height; empty when all is well.
std::string partFault(HWND control) {
    RECT area;
    GetClientRect(control, &area);
    if (isOfClass(control, "Static") || isOfClass(control, "Button")) {
        return isTextTooWide(control, area)                              ? " is too narrow for its text"
               : isOfClass(control, "Static") && isCutOff(control, area) ? " is too low for its text"
                                                                         : "";
    }
    if (isOfClass(control, "ComboBox")) {
        return isChoiceOffCentre(control) ? " has its text above or below its middle" : "";
    }
    if (const std::string narrow = narrowPart(control); !narrow.empty()) {
        return narrow;
    }
    if (isOfClass(control, UPDOWN_CLASSA) && !(GetWindowLongA(control, GWL_STYLE) & UDS_HORZ)) {
        return area.right * 2 < area.bottom ? " is too narrow" : "";
    }
    if (const std::string bar = scrollBarFault(control); !bar.empty()) {
        return bar;
    }
    if (isFieldOfOneLine(control)) {
        return isOffCentre(control) ? " has its text above or below its middle"
               : focusOf(control) != control && ask(control, EM_GETFIRSTVISIBLELINE) > 0
                   ? " doesn't show the beginning of its text"
                   : "";
    }
    // A thumb takes its place when it's drawn.
    if (!isOfClass(control, TRACKBAR_CLASSA) || !isInSight(control)) {
        return "";
    }
    RECT thumb{};
    RECT channel{};
    ask(control, TBM_GETTHUMBRECT, 0, reinterpret_cast<LPARAM>(&thumb));
    ask(control, TBM_GETCHANNELRECT, 0, reinterpret_cast<LPARAM>(&channel));
    const LRESULT least = ask(control, TBM_GETRANGEMIN), range = ask(control, TBM_GETRANGEMAX) - least;
    if (range <= 0) {
        return "";
    }
    const LRESULT place =
        channel.left + (channel.right - channel.left) * (ask(control, TBM_GETPOS) - least) / range;
    if ((thumb.bottom - thumb.top) * 3 < area.bottom * 2) {
        return " has a small thumb";
    }
    if (thumb.top < 0 || thumb.bottom > area.bottom) {
        return " has a thumb that is cut off";
    }
    const bool there =
        place >= thumb.left - (thumb.right - thumb.left) && place <= thumb.right + (thumb.right - thumb.left);
    return there ? "" : " has its thumb elsewhere than its position";
}

// The visible controls of a window that reach over their parent's edge or lie over a neighbour (frames around
// groups may), or have a fault within; empty when all is well.
std::string layoutFaults(HWND top) {
    std::string faults;
    std::vector<HWND> seen;
    std::map<char, HWND> keys;
    for (const HWND control : childWindows(top)) {
        if (!IsWindowVisible(control) || isGroupBox(control)) {
            continue;
        }
        if (const char key = accessKey(control)) {
            const auto [first, isNew] = keys.emplace(key, control);
            if (!isNew) {
                faults += "\n    " + describe(control) + " has the same key, Alt+" + key + ", as " +
                          describe(first->second);
            }
        }
        RECT area;
        RECT parent;
        RECT common;
        GetWindowRect(control, &area);
        GetClientRect(GetParent(control), &parent);
        MapWindowPoints(GetParent(control), nullptr, reinterpret_cast<POINT*>(&parent), 2);
        // What is scrolled may reach over the upper and the lower edge.
        if (GetWindowLongA(GetParent(control), GWL_STYLE) & WS_VSCROLL) {
            if (area.bottom <= parent.top || area.top >= parent.bottom) {
                continue;
            }
            parent.top = std::min(parent.top, area.top);
            parent.bottom = std::max(parent.bottom, area.bottom);
        }
        if (IsRectEmpty(&area) || !IntersectRect(&common, &area, &parent) || !EqualRect(&common, &area)) {
            faults += "\n    " + describe(control) + " is not wholly inside";
        }
        if (const std::string fault = partFault(control); !fault.empty()) {
            faults += "\n    " + describe(control) + fault;
        }
        for (const HWND other : seen) {
            RECT place;
            GetWindowRect(other, &place);
            if (GetParent(other) == GetParent(control) && IntersectRect(&common, &place, &area)) {
                faults += "\n    " + describe(control) + " lies over " + describe(other);
            }
        }
        seen.push_back(control);
    }
    return faults;
}

void expectLayout(DriveContext& drive, const Words&) {
    const HWND top = drive.window();
    std::string faults;
    drive.expect([&] { return (faults = layoutFaults(top)).empty(); },
                 "every control inside its window and none over another", [&] { return faults; });
}

}  // namespace

void addLayoutCommands(DriveCommands& table) {
    table["expect-layout"] = {0, 0, expectLayout};
}

}  // namespace zoka

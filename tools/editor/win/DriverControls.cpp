// The drive script's commands about the controls of the current window.
#include <windows.h>

#include <commctrl.h>

#include <algorithm>
#include <cstdio>

#include "tools/editor/win/DriveContext.h"
#include "tools/editor/win/Keyboard.h"
#include "tools/editor/win/WindowSearch.h"

namespace zoka {

namespace {

// How to reach the items of the controls that hold a list.
struct ListMessages {
    const char* className;
    UINT count, length, text, select;
    WORD selected;  // what the parent is told
};
constexpr ListMessages kLists[] = {
    {"ComboBox", CB_GETCOUNT, CB_GETLBTEXTLEN, CB_GETLBTEXT, CB_SETCURSEL, CBN_SELCHANGE},
    {"ListBox", LB_GETCOUNT, LB_GETTEXTLEN, LB_GETTEXT, LB_SETCURSEL, LBN_SELCHANGE},
};

const ListMessages* listOf(HWND control) {
    for (const ListMessages& list : kLists) {
        if (isOfClass(control, list.className)) {
            return &list;
        }
    }
    return nullptr;
}

std::string listViewText(HWND control, int row, int column) {
    char text[512] = {};
    LVITEMA item{};
    item.iSubItem = column;
    item.pszText = text;
    item.cchTextMax = sizeof text;
    ask(control, LVM_GETITEMTEXTA, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(&item));
    return text;
}

// The texts of a list's items (of the first column, where there are more).
std::vector<std::string> itemsOf(HWND control) {
    std::vector<std::string> items;
    if (const ListMessages* const list = listOf(control)) {
        const LRESULT count = ask(control, list->count);
        for (LRESULT i = 0; i < count; ++i) {
            const LRESULT length = ask(control, list->length, static_cast<WPARAM>(i));
            std::string text(static_cast<size_t>(length > 0 ? length : 0) + 1, '\0');
            ask(control, list->text, static_cast<WPARAM>(i), reinterpret_cast<LPARAM>(text.data()));
            text.pop_back();
            items.push_back(text);
        }
    } else if (isOfClass(control, WC_LISTVIEWA)) {
        const LRESULT count = ask(control, LVM_GETITEMCOUNT);
        for (LRESULT i = 0; i < count; ++i) {
            items.push_back(listViewText(control, static_cast<int>(i), 0));
        }
    } else if (isOfClass(control, WC_TABCONTROLA)) {
        const LRESULT count = ask(control, TCM_GETITEMCOUNT);
        for (LRESULT i = 0; i < count; ++i) {
            char text[256] = {};
            TCITEMA item{};
            item.mask = TCIF_TEXT;
            item.pszText = text;
            item.cchTextMax = sizeof text;
            ask(control, TCM_GETITEMA, static_cast<WPARAM>(i), reinterpret_cast<LPARAM>(&item));
            items.emplace_back(text);
        }
    } else {
        throw DriveFault(describe(control) + " holds no list");
    }
    return items;
}

void chooseTab(HWND control, int index) {
    NMHDR header{control, static_cast<UINT_PTR>(GetDlgCtrlID(control)), static_cast<UINT>(TCN_SELCHANGING)};
    const auto tell = [&] {
        return ask(GetParent(control), WM_NOTIFY, header.idFrom, reinterpret_cast<LPARAM>(&header));
    };
    if (tell()) {
        throw DriveFault("the window refuses to leave its page");
    }
    ask(control, TCM_SETCURSEL, static_cast<WPARAM>(index));
    header.code = static_cast<UINT>(TCN_SELCHANGE);
    tell();
}

void chooseRow(HWND control, int index) {
    LVITEMA item{};
    item.stateMask = LVIS_SELECTED | LVIS_FOCUSED;
    if (!(GetWindowLongPtrA(control, GWL_STYLE) & LVS_SINGLESEL)) {
        ask(control, LVM_SETITEMSTATE, static_cast<WPARAM>(-1), reinterpret_cast<LPARAM>(&item));
    }
    item.state = item.stateMask;
    ask(control, LVM_SETITEMSTATE, static_cast<WPARAM>(index), reinterpret_cast<LPARAM>(&item));
    ask(control, LVM_ENSUREVISIBLE, static_cast<WPARAM>(index), FALSE);
}

// What a user reads in a control: of a list that shows one item, that item.
std::string valueOf(HWND control) {
    if (isOfClass(control, TRACKBAR_CLASSA)) {
        const bool isEmpty = (GetWindowLongA(control, GWL_STYLE) & TBS_NOTHUMB) != 0;
        return isEmpty ? "" : std::to_string(ask(control, TBM_GETPOS));
    }
    if (isOfClass(control, "ListBox")) {
        const LRESULT chosen = ask(control, LB_GETCURSEL);
        const std::vector<std::string> items = itemsOf(control);
        return chosen >= 0 && static_cast<size_t>(chosen) < items.size() ? items[static_cast<size_t>(chosen)]
                                                                         : "";
    }
    if (isOfClass(control, WC_LISTVIEWA)) {
        const LRESULT row = ask(control, LVM_GETNEXTITEM, static_cast<WPARAM>(-1), LVNI_SELECTED);
        return row >= 0 ? listViewText(control, static_cast<int>(row), 0) : "";
    }
    if (isOfClass(control, STATUSCLASSNAMEA)) {
        char text[1024] = {};
        ask(control, SB_GETTEXTA, SB_SIMPLEID, reinterpret_cast<LPARAM>(text));
        if (!text[0]) {
            ask(control, SB_GETTEXTA, 0, reinterpret_cast<LPARAM>(text));
        }
        return text;
    }
    return isOfClass(control, "Button") ? visibleText(control) : windowText(control);
}

LRESULT checkOf(HWND control) {
    return ask(control, BM_GETCHECK);
}
bool isChecked(HWND control) {
    return checkOf(control) == BST_CHECKED;
}

// Whether a control is as a word says; a fault for a word that says nothing.
bool hasState(HWND control, const std::string& state) {
    if (state == "enabled") {
        return IsWindowEnabled(control) != 0;
    }
    if (state == "disabled") {
        return !IsWindowEnabled(control);
    }
    if (state == "checked") {
        return isChecked(control);
    }
    if (state == "unchecked") {
        return checkOf(control) == BST_UNCHECKED;
    }
    if (state == "indeterminate") {
        return checkOf(control) == BST_INDETERMINATE;
    }
    if (state == "focused") {
        return focusOf(control) == control;
    }
    throw DriveFault("a control can't be expected to be \"" + state + "\"");
}

std::string stateText(HWND control) {
    std::string text = describe(control);
    if (isOfClass(control, "Button")) {
        const LRESULT check = checkOf(control);
        text += check == BST_CHECKED     ? ", checked"
                : check == BST_UNCHECKED ? ", unchecked"
                                         : ", indeterminate";
    }
    return text + ", value \"" + valueOf(control) + "\"; the keyboard is in " + describe(focusOf(control));
}

void click(DriveContext& drive, const Words& words) {
    PostMessageA(drive.usableControl(words[0]), BM_CLICK, 0, 0);
}

void focus(DriveContext& drive, const Words& words) {
    const HWND found = drive.usableControl(words[0]);
    const HWND top = GetAncestor(found, GA_ROOT);
    if (!bringToFront(top, drive.patience)) {
        throw DriveFault(describe(top) + " does not come to the front");
    }
    PostMessageA(top, WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(found), TRUE);
    drive.expect([&] { return focusOf(found) == found; }, "the keyboard in " + describe(found),
                 [&] { return describe(focusOf(found)); });
}

void type(DriveContext& drive, const Words& words) {
    if (!bringToFront(drive.window(), drive.patience)) {
        throw DriveFault(describe(drive.window()) + " does not come to the front");
    }
    typeText(words[0]);
}

void key(DriveContext& drive, const Words& words) {
    if (!bringToFront(drive.window(), drive.patience)) {
        throw DriveFault(describe(drive.window()) + " does not come to the front");
    }
    for (const std::string& name : words) {
        if (!pressKey(name)) {
            throw DriveFault("there is no key \"" + name + "\"");
        }
    }
}

void set(DriveContext& drive, const Words& words) {
    const HWND found = drive.usableControl(words[0]);
    if (isOfClass(found, TRACKBAR_CLASSA)) {
        ask(found, TBM_SETPOS, TRUE, driveNumber(words[1]));
        ask(GetParent(found), WM_HSCROLL, SB_ENDSCROLL, reinterpret_cast<LPARAM>(found));
        return;
    }
    if (isOfClass(found, "Button") || isOfClass(found, "Static")) {
        throw DriveFault(describe(found) + " takes no text");
    }
    // The control itself tells its parent of a change that is made this way; of several lines it doesn't.
    ask(found, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(words[1].c_str()));
    if (isOfClass(found, "Edit") && (GetWindowLongPtrA(found, GWL_STYLE) & ES_MULTILINE)) {
        drive.notifyParent(found, EN_CHANGE);
    }
}

void choose(DriveContext& drive, const Words& words) {
    const HWND found = drive.usableControl(words[0]);
    std::vector<std::string> items;
    size_t index = 0;
    drive.expect(
        [&] {
            items = itemsOf(found);
            for (index = 0; index < items.size(); ++index) {
                if (items[index] == words[1]) {
                    return true;
                }
            }
            return false;
        },
        "the item \"" + words[1] + "\" in " + describe(found), [&] { return listed(items); });
    if (const ListMessages* const list = listOf(found)) {
        ask(found, list->select, index);
        drive.notifyParent(found, list->selected);
    } else if (isOfClass(found, WC_TABCONTROLA)) {
        chooseTab(found, static_cast<int>(index));
    } else {
        chooseRow(found, static_cast<int>(index));
    }
}

void setCheck(DriveContext& drive, const Words& words, bool on) {
    const HWND found = drive.usableControl(words[0]);
    if (isChecked(found) == on) {
        return;
    }
    PostMessageA(found, BM_CLICK, 0, 0);
    drive.expect([&] { return isChecked(found) == on; }, describe(found) + (on ? " checked" : " unchecked"),
                 [&] { return stateText(found); });
}

void check(DriveContext& drive, const Words& words) {
    setCheck(drive, words, true);
}

void uncheck(DriveContext& drive, const Words& words) {
    setCheck(drive, words, false);
}

void read(DriveContext& drive, const Words& words) {
    const HWND found = drive.control(words[0]);
    std::printf("%s = %s\n", words[0].c_str(), valueOf(found).c_str());
}

void expectControl(DriveContext& drive, const Words& words) {
    const std::string& relation = words[1];
    if (words.size() == 2 && (relation == "absent" || relation == "present")) {
        const HWND top = drive.window();
        drive.expect([&] { return (findControl(top, words[0]) != nullptr) == (relation == "present"); },
                     "the control " + words[0] + " to be " + relation, [&] { return "\n" + describeAll(); });
        return;
    }
    // Looked up anew each time: a tab page that is just being left may have one of that name, too.
    const HWND top = drive.window();
    HWND found = drive.control(words[0]);
    const auto again = [&] {
        if (const HWND now = findControl(top, words[0])) {
            found = now;
        }
        return found;
    };
    const auto seen = [&] { return stateText(found); };
    if (words.size() == 2) {
        return drive.expect([&] { return hasState(again(), relation); }, words[0] + " " + relation, seen);
    }
    if (relation != "equals" && relation != "contains") {
        throw DriveFault("a value is expected with equals or contains, not \"" + relation + "\"");
    }
    drive.expect(
        [&] {
            const std::string value = valueOf(again());
            return relation == "equals" ? value == words[2] : value.find(words[2]) != std::string::npos;
        },
        words[0] + " " + relation + " \"" + words[2] + "\"", seen);
}

void expectItems(DriveContext& drive, const Words& words) {
    const HWND found = drive.control(words[0]);
    const Words wanted(words.begin() + 1, words.end());
    drive.expect([&] { return itemsOf(found) == wanted; }, "the items " + listed(wanted),
                 [&] { return listed(itemsOf(found)); });
}

void expectCount(DriveContext& drive, const Words& words) {
    const HWND found = drive.control(words[0]);
    const long wanted = driveNumber(words[2]);
    std::vector<std::string> items;
    const auto matches = [&] {
        items = itemsOf(found);
        return std::count(items.begin(), items.end(), words[1]) == wanted;
    };
    drive.expect(matches, words[2] + " items \"" + words[1] + '"', [&] { return listed(items); });
}

void tabOrderOf(DriveContext& drive, const Words&) {
    for (const HWND found : tabOrder(drive.window())) {
        std::printf("tab %s\n", describe(found).c_str());
    }
}

void expectTabOrder(DriveContext& drive, const Words& words) {
    const HWND top = drive.window();
    std::vector<HWND> wanted;
    for (const std::string& name : words) {
        wanted.push_back(drive.control(name));
    }
    drive.expect([&] { return tabOrder(top) == wanted; }, "the Tab order " + listed(words),
                 [&] {
                     std::vector<std::string> order;
                     for (const HWND found : tabOrder(top)) {
                         order.push_back(describe(found));
                     }
                     return listed(order);
                 });
}

}  // namespace

void addControlCommands(DriveCommands& table) {
    table["click"] = {1, 1, click};
    table["focus"] = {1, 1, focus};
    table["type"] = {1, 1, type};
    table["key"] = {1, 9, key};
    table["set"] = {2, 2, set};
    table["choose"] = {2, 2, choose};
    table["check"] = {1, 1, check};
    table["uncheck"] = {1, 1, uncheck};
    table["read"] = {1, 1, read};
    table["expect"] = {2, 3, expectControl};
    table["expect-items"] = {1, 99, expectItems};
    table["expect-count"] = {3, 3, expectCount};
    table["taborder"] = {0, 0, tabOrderOf};
    table["expect-taborder"] = {1, 99, expectTabOrder};
}

}  // namespace zoka

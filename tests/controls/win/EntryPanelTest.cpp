// The rows' window beside other threads, and with other rows than a moment ago.
#include <windows.h>

#include <commctrl.h>
#include <gtest/gtest.h>

#include <atomic>
#include <cstring>
#include <string>
#include <vector>

#include "controls/win/ControlClasses.h"
#include "controls/win/EntryPanel.h"

namespace {

using namespace zoka;

struct Rows : RowEditing, RowsListener {
    Rows() {
        setListener(this);
        make("Depth");
    }
    void make(const char* label) {
        make(EntryFacts{.field = EntryField::IntField, .label = label, .value = "5"});
    }
    void make(const EntryFacts& facts) {
        made.clear();
        made.emplace_back(facts);
        showRows(made);
    }
    void makeMany(size_t count) {
        made.assign(count,
                    EntryModel(EntryFacts{.field = EntryField::IntField, .label = "Depth", .value = "5"}));
        showRows(made);
    }
    void rowsReplaced() override {}
    void valuesChanged() override {}
    std::string subject() const override { return shown; }
    std::string nameOf(size_t i) const override { return row(i).facts().label; }
    std::vector<EntryModel> made;
    std::string shown = "harbour";
};

struct Host : RowHost {
    void rowFocused(size_t) override {}
    void rowMenu(size_t row, HWND, POINT) override { menus.push_back(row); }
    void filterDropped() override {}
    bool shortcut(WPARAM) override { return false; }
    std::vector<size_t> menus;
};

void settle() {
    MSG message;
    while (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE)) {
        DispatchMessageA(&message);
    }
}

// A panel with one row, in sight. Lives on one thread.
struct ShownPanel {
    ShownPanel() {
        MoveWindow(window, 0, 0, 300, 200, TRUE);
        entries.rowsReplaced(false);
        settle();
    }
    ~ShownPanel() { DestroyWindow(parent); }
    ShownPanel(const ShownPanel&) = delete;
    ShownPanel& operator=(const ShownPanel&) = delete;

    const ControlClasses classes;
    WindowFonts fonts;
    Rows rows;
    Host host;
    EntryPanel entries{rows, host};
    const HWND parent = CreateWindowExA(0, "STATIC", "", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 0, 0, 300, 200,
                                        nullptr, nullptr, GetModuleHandleA(nullptr), nullptr);
    const HWND window = entries.create(parent, 1, fonts);
};

// The lock that a thread holds while it loads or frees a library.
class LoaderLock {
public:
    LoaderLock() {
        call<LONG(WINAPI*)(ULONG, ULONG*, ULONG_PTR*)>("LdrLockLoaderLock")(0, nullptr, &m_cookie);
    }
    ~LoaderLock() { call<LONG(WINAPI*)(ULONG, ULONG_PTR)>("LdrUnlockLoaderLock")(0, m_cookie); }

private:
    template <class Function>
    static Function call(const char* name) {
        const FARPROC found = GetProcAddress(GetModuleHandleA("ntdll"), name);
        Function function;
        std::memcpy(&function, &found, sizeof function);
        return function;
    }
    ULONG_PTR m_cookie = 0;
};

struct PanelThread {
    HANDLE ready = CreateEventA(nullptr, TRUE, FALSE, nullptr),
           shown = CreateEventA(nullptr, TRUE, FALSE, nullptr),
           go = CreateEventA(nullptr, TRUE, FALSE, nullptr);
    std::atomic<bool> isVisible{false};
};

BOOL CALLBACK findTip(HWND window, LPARAM found) {
    char name[32] = "";
    GetClassNameA(window, name, sizeof name);
    if (lstrcmpiA(name, TOOLTIPS_CLASSA) == 0 && IsWindowVisible(window)) {
        *reinterpret_cast<bool*>(found) = true;
    }
    return TRUE;
}

DWORD WINAPI panelMain(void* data) {
    auto& thread = *static_cast<PanelThread*>(data);
    ShownPanel panel;
    SetEvent(thread.ready);
    WaitForSingleObject(thread.go, INFINITE);
    panel.entries.showRefusal(panel.window, "That is no number.");
    settle();
    bool isVisible = false;
    EnumThreadWindows(GetCurrentThreadId(), findTip, reinterpret_cast<LPARAM>(&isVisible));
    thread.isVisible = isVisible;
    SetEvent(thread.shown);
    return 0;
}

TEST(EntryPanel, ShowsAReasonWithoutTheLoadersLock) {
    PanelThread panel;
    const HANDLE thread = CreateThread(nullptr, 0, panelMain, &panel, 0, nullptr);
    ASSERT_EQ(WaitForSingleObject(panel.ready, 60000), WAIT_OBJECT_0);
    {
        const LoaderLock held;
        SetEvent(panel.go);
        EXPECT_EQ(WaitForSingleObject(panel.shown, 20000), WAIT_OBJECT_0) << "it waits for the lock";
    }
    ASSERT_EQ(WaitForSingleObject(thread, 60000), WAIT_OBJECT_0);
    EXPECT_TRUE(panel.isVisible);
    for (const HANDLE handle : {thread, panel.ready, panel.shown, panel.go}) {
        CloseHandle(handle);
    }
}

// What is asked for waits in the thread's queue, behind what may bring other rows.
TEST(EntryPanel, OpensTheMenuOfTheRowThatWasMeantOrNone) {
    ShownPanel panel;
    const auto askAnd = [&](const char* subject, const char* label) {
        panel.entries.menuSoon(0, nullptr, -1);
        panel.rows.shown = subject;
        panel.rows.make(label);
        panel.entries.rowsReplaced(false);
        settle();
    };
    askAnd("harbour", "Depth");
    EXPECT_EQ(panel.host.menus.size(), 1U) << "the same row, read again";
    askAnd("harbour", "Width");
    askAnd("town", "Width");
    EXPECT_EQ(panel.host.menus.size(), 1U) << "of another row";
}

struct Wanted {
    const char* className;
    HWND found;
};

BOOL CALLBACK findControl(HWND window, LPARAM data) {
    auto& wanted = *reinterpret_cast<Wanted*>(data);
    char name[32] = "";
    GetClassNameA(window, name, sizeof name);
    if (lstrcmpiA(name, wanted.className) == 0) {
        wanted.found = window;
    }
    return TRUE;
}

HWND controlOf(HWND panel, const char* className) {
    Wanted wanted{className, nullptr};
    EnumChildWindows(panel, findControl, reinterpret_cast<LPARAM>(&wanted));
    return wanted.found;
}

struct Asked {
    HWND panel, field;
    std::wstring text;
};

// What the panel would have a tooltip show of a field; of the thread's windows it answers its own tooltip alone.
BOOL CALLBACK askForText(HWND window, LPARAM data) {
    auto& asked = *reinterpret_cast<Asked*>(data);
    NMTTDISPINFOW info{};
    info.hdr = {window, reinterpret_cast<UINT_PTR>(asked.field), static_cast<UINT>(TTN_GETDISPINFOW)};
    SendMessageA(asked.panel, WM_NOTIFY, 0, reinterpret_cast<LPARAM>(&info));
    if (info.lpszText) {
        asked.text = info.lpszText;
    }
    return TRUE;
}

BOOL CALLBACK addTipWidth(HWND window, LPARAM data) {
    auto& widths = *reinterpret_cast<std::vector<LRESULT>*>(data);
    char name[32] = "";
    GetClassNameA(window, name, sizeof name);
    if (lstrcmpiA(name, TOOLTIPS_CLASSA) == 0) {
        widths.push_back(SendMessageA(window, TTM_GETMAXTIPWIDTH, 0, 0));
    }
    return TRUE;
}

TEST(EntryPanel, BreaksItsTipsWhereTheResolutionSays) {
    ShownPanel panel;
    const auto widths = [] {
        std::vector<LRESULT> all;
        EnumThreadWindows(GetCurrentThreadId(), addTipWidth, reinterpret_cast<LPARAM>(&all));
        return all;
    };
    const std::vector<LRESULT> before = widths();
    ASSERT_EQ(before.size(), 2U);
    ASSERT_TRUE(panel.fonts.renew(panel.parent, 2 * panel.fonts.dpi()));
    panel.entries.fontsChanged();
    EXPECT_GT(widths()[0], before[0] * 3 / 2);
    EXPECT_EQ(widths()[1], widths()[0]);
}

TEST(EntryPanel, ShowsAReasonOnce) {
    ShownPanel panel;
    const HWND field = controlOf(panel.window, kIntEditClass);
    ASSERT_TRUE(field);
    const auto tooltip = [&] {
        Asked asked{panel.window, field, L"none"};
        EnumThreadWindows(GetCurrentThreadId(), askForText, reinterpret_cast<LPARAM>(&asked));
        return asked.text;
    };
    EXPECT_EQ(tooltip().find(L"Depth"), 0U);
    SetFocus(field);
    SetWindowTextA(field, "x");
    settle();
    EXPECT_EQ(tooltip(), L"") << "the balloon says it";
    panel.entries.tips().hideRefusal();
    EXPECT_EQ(tooltip().find(L"Not taken: "), 0U);
}

TEST(EntryPanel, AReasonGoesWithItsField) {
    using Leave = void (*)(ShownPanel&);
    const struct {
        Leave leave;
        bool stays;
    } rows[] = {
        {[](ShownPanel& panel) { panel.entries.focusRow(3); }, true},
        {[](ShownPanel& panel) { panel.entries.focusRow(39); }, false},
        {[](ShownPanel& panel) {
             panel.rows.filter.search = "none";
             panel.entries.layoutNow();
         },
         false},
    };
    for (const auto& row : rows) {
        ShownPanel panel;
        panel.rows.makeMany(40);
        panel.entries.rowsReplaced(false);
        const HWND field = GetNextDlgTabItem(panel.window, nullptr, FALSE);
        SetFocus(field);
        SetWindowTextA(field, "x");
        settle();
        ASSERT_TRUE(panel.entries.tips().isRefusing(field));
        row.leave(panel);
        Sleep(100);
        settle();
        EXPECT_EQ(panel.entries.tips().isRefusing(), row.stays);
    }
}

TEST(EntryPanel, EscapeEndsTheDragOfAThumb) {
    ShownPanel panel;
    panel.rows.make({.field = EntryField::Slider,
                     .label = "Width",
                     .value = "5",
                     .limited = true,
                     .minimum = 1,
                     .maximum = 100});
    panel.entries.rowsReplaced(false);
    settle();
    const HWND track = controlOf(panel.window, TRACKBAR_CLASSA);
    ASSERT_TRUE(track);
    RECT thumb;
    SendMessageA(track, TBM_GETTHUMBRECT, 0, reinterpret_cast<LPARAM>(&thumb));
    const auto mouse = [&](UINT message, int moved) {
        SendMessageA(track, message, MK_LBUTTON,
                     MAKELPARAM((thumb.left + thumb.right) / 2 + moved, (thumb.top + thumb.bottom) / 2));
    };
    SetFocus(track);
    mouse(WM_LBUTTONDOWN, 0);
    mouse(WM_MOUSEMOVE, 30);
    ASSERT_NE(panel.rows.row(0).value(), "5");
    EXPECT_TRUE(panel.entries.revert());
    mouse(WM_MOUSEMOVE, 50);
    EXPECT_EQ(panel.rows.row(0).value(), "5");
    EXPECT_FALSE(GetCapture());
}

}  // namespace

// Real dialogs: how they end, what becomes of their owners, and what a screen of another resolution does to them.
#include "ui/win/DialogShell.h"

#include <gtest/gtest.h>

#include <functional>
#include <new>

#include "util/UserPrompt.h"

namespace {

using namespace zoka;

constexpr UINT kDpiChanged = 0x02E0;
constexpr WPARAM kFailingKey = VK_F9;

class TestDialog : public DialogShell {
public:
    explicit TestDialog(std::function<void(TestDialog&)> deed = {})
        : TestDialog({.title = "Test", .width = 120, .height = 40, .leastWidth = 100, .leastHeight = 30},
                     std::move(deed)) {}
    explicit TestDialog(Frame frame, std::function<void(TestDialog&)> deed = {})
        : DialogShell(std::move(frame)), m_deed(std::move(deed)) {}

    using DialogShell::message;
    HWND m_label = nullptr, m_close = nullptr;
    bool m_refuses = false, m_typing = false;
    int m_asked = 0, m_entered = 0;
    Area m_inside;

private:
    void createControls() override {
        m_label = makeLabel(window(), "Name:", fonts());
        m_close = makeButton(window(), "Close", IDCANCEL, fonts());
        SetTimer(window(), 1, 10, nullptr);
    }
    void layout(Area inside) override {
        m_inside = inside;
        placeButtonsRight({m_close}, inside, fonts());
        placeLabel(m_label, inside, fonts());
    }
    bool mayClose() override {
        ++m_asked;
        return !m_refuses;
    }
    void entered() override { ++m_entered; }
    bool takesKey(const MSG& message) override {
        if (message.message == WM_KEYDOWN && message.wParam == kFailingKey) {
            throw std::bad_alloc();
        }
        return false;
    }
    std::optional<LRESULT> message(UINT message, WPARAM wParam, LPARAM lParam) override {
        if (message == WM_TIMER && wParam == 1) {
            KillTimer(window(), 1);
            if (m_deed) {
                m_deed(*this);
            }
            return 0;
        }
        return DialogShell::message(message, wParam, lParam);
    }

    std::function<void(TestDialog&)> m_deed;
};

HWND makeOwner() {
    return CreateWindowExA(0, "STATIC", "owner", WS_POPUP | WS_VISIBLE, 0, 0, 300, 200, nullptr, nullptr,
                           nullptr, nullptr);
}

TEST(DialogShell, EndsHoweverItsWindowGoes) {
    const struct {
        const char* name;
        std::function<void(TestDialog&)> deed;
        bool ownerStays, asked;
    } rows[] = {
        {"closed", [](TestDialog& dialog) { SendMessageA(dialog.window(), WM_CLOSE, 0, 0); }, true, true},
        {"Cancel", [](TestDialog& dialog) { SendMessageA(dialog.m_close, BM_CLICK, 0, 0); }, true, true},
        {"ended the system's way", [](TestDialog& dialog) { EndDialog(dialog.window(), 0); }, true, false},
        {"destroyed", [](TestDialog& dialog) { DestroyWindow(dialog.window()); }, true, false},
        {"owner destroyed", [](TestDialog& dialog) { DestroyWindow(GetWindow(dialog.window(), GW_OWNER)); },
         false, false},
        {"the quit message taken by another loop",
         [](TestDialog& dialog) {
             PostQuitMessage(0);
             MSG taken;
             while (PeekMessageA(&taken, nullptr, 0, 0, PM_REMOVE) && taken.message != WM_QUIT) {
                 DispatchMessageA(&taken);
             }
             DestroyWindow(dialog.window());
         },
         true, false},
        {"thrown in a message", [](TestDialog&) { throw std::bad_alloc(); }, true, false},
        {"thrown at a key",
         [](TestDialog& dialog) { PostMessageA(dialog.window(), WM_KEYDOWN, kFailingKey, 0); }, true, false},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const HWND owner = makeOwner();
        TestDialog dialog(row.deed);
        dialog.runModal(owner);
        EXPECT_EQ(dialog.window(), nullptr);
        EXPECT_EQ(dialog.m_asked, row.asked ? 1 : 0);
        ASSERT_EQ(IsWindow(owner) != 0, row.ownerStays);
        if (row.ownerStays) {
            EXPECT_TRUE(IsWindowEnabled(owner));
            DestroyWindow(owner);
        }
    }
}

TEST(DialogShell, LeavesTheProgramsEndToTheLoopsFurtherOut) {
    TestDialog dialog([](TestDialog&) { PostQuitMessage(7); });
    dialog.runModal(makeOwner());
    EXPECT_EQ(dialog.window(), nullptr);
    MSG message{};
    while (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE) && message.message != WM_QUIT) {
        DispatchMessageA(&message);
    }
    EXPECT_EQ(message.message, static_cast<UINT>(WM_QUIT));
    EXPECT_EQ(message.wParam, 7u);
}

TEST(DialogShell, IsModalForAWindowThatIsNotInFront) {
    const HWND owner = makeOwner();
    SetActiveWindow(nullptr);
    bool ownerWaited = false;
    TestDialog dialog([&](TestDialog& shown) {
        ownerWaited = GetWindow(shown.window(), GW_OWNER) == owner && !IsWindowEnabled(owner);
        shown.m_refuses = true;
        SendMessageA(shown.window(), WM_CLOSE, 0, 0);
        EXPECT_TRUE(IsWindow(shown.window()));
        SendMessageA(shown.window(), WM_COMMAND, IDOK, 0);
        shown.end();
    });
    dialog.runModal();
    EXPECT_TRUE(ownerWaited);
    EXPECT_EQ(dialog.m_asked, 1);
    EXPECT_EQ(dialog.m_entered, 1);
    EXPECT_TRUE(IsWindowEnabled(owner));
    DestroyWindow(owner);
}

TEST(DialogShell, GrowsWithItsScreensResolution) {
    TestDialog dialog;
    ASSERT_TRUE(dialog.create(nullptr));
    const int line = dialog.fonts().lineHeight(), label = dialog.fonts().labelWidth("Name:");
    const int dpi = dialog.fonts().dpi();
    RECT wanted{0, 0, 50, 50};  // smaller than its controls allow
    SendMessageA(dialog.window(), kDpiChanged, MAKEWPARAM(2 * dpi, 2 * dpi),
                 reinterpret_cast<LPARAM>(&wanted));
    EXPECT_EQ(dialog.fonts().dpi(), 2 * dpi);
    EXPECT_NEAR(dialog.fonts().lineHeight(), 2 * line, 3);
    EXPECT_GT(dialog.fonts().labelWidth("Name:"), label * 3 / 2);
    EXPECT_EQ(reinterpret_cast<HFONT>(SendMessageA(dialog.m_label, WM_GETFONT, 0, 0)), dialog.fonts().text());
    EXPECT_GE(dialog.m_inside.width, dialog.fonts().x(100 - 2 * kMarginUnits) - 2);
    dialog.end();
}

// Whatever place and size are wished or remembered.
TEST(DialogShell, OpensWithinItsScreen) {
    const auto isInside = [](HWND window) {
        RECT place, common;
        GetWindowRect(window, &place);
        const RECT screen = workArea(window);
        return IntersectRect(&common, &place, &screen) && EqualRect(&common, &place);
    };
    const struct {
        const char* name;
        int width, height, leastWidth, leastHeight;
        RECT last;  // where the last one was; empty: there was none
    } rows[] = {
        {"larger than the screen", 4000, 3000, 100, 30, {}},
        {"larger even at its least", 4000, 3000, 3000, 2000, {}},
        {"larger and of one size", 4000, 3000, 0, 0, {}},
        {"partly left of the screen", 120, 40, 100, 30, {-150, 100, 250, 300}},
        {"partly below it", 120, 40, 100, 30, {100, 30, 500, 9000}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        PlaceMemory memory;
        const DialogShell::Frame frame{.title = "Test",
                                       .width = row.width,
                                       .height = row.height,
                                       .leastWidth = row.leastWidth,
                                       .leastHeight = row.leastHeight,
                                       .memory = &memory};
        if (!IsRectEmpty(&row.last)) {
            TestDialog last(frame);
            ASSERT_TRUE(last.create(nullptr));
            SetWindowPos(last.window(), nullptr, row.last.left, row.last.top, row.last.right - row.last.left,
                         row.last.bottom - row.last.top, SWP_NOZORDER);
            last.end();
        }
        TestDialog dialog(frame);
        ASSERT_TRUE(dialog.create(nullptr));
        EXPECT_TRUE(isInside(dialog.window()));
        // On a screen of twice the resolution all would be twice as large.
        RECT wanted{workArea(dialog.window()).right - 50, 0, 9000, 50};
        SendMessageA(dialog.window(), kDpiChanged, MAKEWPARAM(192, 192), reinterpret_cast<LPARAM>(&wanted));
        EXPECT_TRUE(isInside(dialog.window()));
        dialog.end();
    }
}

TEST(DialogShell, OpensWhereTheLastOneWas) {
    PlaceMemory memory;
    bool maximized = true;
    TestDialog first, second;
    ASSERT_TRUE(first.create(nullptr) && second.create(nullptr));
    EXPECT_FALSE(memory.give(second.window(), maximized));
    SetWindowPos(first.window(), nullptr, 60, 70, 410, 320, SWP_NOZORDER);
    memory.keep(first.window());
    ASSERT_TRUE(memory.give(second.window(), maximized));
    RECT place;
    GetWindowRect(second.window(), &place);
    EXPECT_EQ(place.left, 60);
    EXPECT_EQ(place.bottom, 390);
    EXPECT_FALSE(maximized);
    // A screen that is gone.
    SetWindowPos(first.window(), nullptr, 30000, 30000, 0, 0, SWP_NOZORDER | SWP_NOSIZE);
    memory.keep(first.window());
    EXPECT_FALSE(memory.give(second.window(), maximized));
}

}  // namespace

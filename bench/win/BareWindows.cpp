#include "bench/win/BareWindows.h"

#include <map>

#include "bench/win/Measure.h"
#include "controls/win/ControlClasses.h"
#include "ui/win/WindowKit.h"

namespace zoka::bench {
namespace {

std::string systemClass(const std::string& name) {
    if (name == kIntEditClass || name == kFloatEditClass) {
        return "Edit";
    }
    return name == kEntryClass || name == kSliderClass || name == kEntryPanelClass || name == "#32770"
               ? "Static"
               : name;
}

}  // namespace

void settle(HWND window) {
    MSG message;
    while (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE)) {
        if (!IsDialogMessageA(window, &message)) {
            DispatchMessageA(&message);
        }
    }
    paint(window);
}

BareWindows::~BareWindows() {
    if (!m_made.empty()) {
        DestroyWindow(m_made[0]);
    }
}

void BareWindows::growTo(size_t count) {
    std::vector<size_t> rows;
    for (size_t i = 0; i < m_plan.size(); ++i) {
        if (m_plan[i].isRow) {
            rows.push_back(i);
        }
    }
    if (rows.empty()) {
        stop("the panel shows no rows");
    }
    const std::vector<Plan> plan = m_plan;
    for (size_t made = rows.size(); made < count; ++made) {
        const size_t row = rows[made % rows.size()];
        std::map<int, int> places;
        for (size_t i = row; i < plan.size() && (i == row || !plan[i].isRow); ++i) {
            if (i != row && !places.contains(plan[i].parent)) {
                break;  // the row ends
            }
            Plan copy = plan[i];
            if (i != row) {
                copy.parent = places[copy.parent];
            }
            places[static_cast<int>(i)] = static_cast<int>(m_plan.size());
            if (i == row) {
                copy.area.y += static_cast<int>(made) * 30;
            }
            m_plan.push_back(copy);
        }
    }
}

void BareWindows::open() {
    if (!m_made.empty()) {
        DestroyWindow(m_made[0]);
    }
    m_made.clear();
    for (const Plan& one : m_plan) {
        const HWND made = CreateWindowExA(one.exStyle, one.className.c_str(), one.text.c_str(), one.style,
                                          one.area.x, one.area.y, one.area.width, one.area.height,
                                          one.parent < 0 ? nullptr : m_made[static_cast<size_t>(one.parent)],
                                          nullptr, GetModuleHandleA(nullptr), nullptr);
        if (!made) {
            stop("a bare window of class " + one.className + " can't be made");
        }
        if (one.font) {
            SendMessageA(made, WM_SETFONT, reinterpret_cast<WPARAM>(one.font), FALSE);
        }
        m_made.push_back(made);
    }
    ShowWindow(m_made[0], SW_SHOWNORMAL);
    settle(m_made[0]);
}

void BareWindows::add(HWND window, int parent) {
    char name[64] = {};
    GetClassNameA(window, name, sizeof name);
    RECT area{};
    GetWindowRect(window, &area);
    if (parent >= 0) {
        MapWindowPoints(nullptr, GetParent(window), reinterpret_cast<POINT*>(&area), 2);
    }
    auto style = static_cast<DWORD>(GetWindowLongA(window, GWL_STYLE));
    if (systemClass(name) != name && systemClass(name) == "Static") {
        style &= 0xFFFF0000;
    }
    if (parent < 0) {
        style &= ~static_cast<DWORD>(WS_VISIBLE);
    }
    m_plan.push_back({systemClass(name),
                      textOf(window),
                      style,
                      static_cast<DWORD>(GetWindowLongA(window, GWL_EXSTYLE)),
                      {static_cast<int>(area.left), static_cast<int>(area.top),
                       static_cast<int>(area.right - area.left), static_cast<int>(area.bottom - area.top)},
                      parent,
                      parent < 0 ? nullptr : reinterpret_cast<HFONT>(SendMessageA(window, WM_GETFONT, 0, 0)),
                      std::string(name) == kEntryClass});
    const int own = static_cast<int>(m_plan.size()) - 1;
    for (HWND child = GetWindow(window, GW_CHILD); child; child = GetWindow(child, GW_HWNDNEXT)) {
        add(child, own);
    }
}

}  // namespace zoka::bench

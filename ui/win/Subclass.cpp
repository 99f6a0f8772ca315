#include "ui/win/Subclass.h"

#include <memory>
#include <vector>

namespace zoka {

namespace {

// Of one control; frees itself when the control is gone and no message is under way any more.
struct Procedures {
    struct One {
        ControlProcedure procedure;
        DWORD_PTR data;
    };
    WNDPROC own;  // the control's
    std::vector<One> added;
    size_t next = 0;      // how many of them have not seen the message that is under way
    size_t underWay = 0;  // messages, one within the other
    bool isGone = false;
};

Procedures* proceduresOf(HWND control) {
    return reinterpret_cast<Procedures*>(GetWindowLongPtrW(control, GWLP_USERDATA));
}

LRESULT callNext(Procedures& all, HWND control, UINT message, WPARAM wParam, LPARAM lParam) {
    if (all.next == 0) {
        return CallWindowProcW(all.own, control, message, wParam, lParam);
    }
    const size_t before = all.next--;
    // A copy: the procedure may add another one.
    const Procedures::One one = all.added[all.next];
    const LRESULT answer = one.procedure(control, message, wParam, lParam, one.data);
    all.next = before;
    return answer;
}

LRESULT CALLBACK firstProcedure(HWND control, UINT message, WPARAM wParam, LPARAM lParam) noexcept {
    Procedures& all = *proceduresOf(control);
    const size_t before = all.next;
    all.next = all.added.size();
    ++all.underWay;
    const LRESULT answer = callNext(all, control, message, wParam, lParam);
    all.next = before;
    all.isGone = all.isGone || message == WM_NCDESTROY;
    if (--all.underWay == 0 && all.isGone) {
        delete &all;
    }
    return answer;
}

}  // namespace

void addProcedure(HWND control, ControlProcedure procedure, DWORD_PTR data) {
    Procedures* all = proceduresOf(control);
    if (!all && control) {
        auto made = std::make_unique<Procedures>();
        made->added.reserve(4);
        made->own = reinterpret_cast<WNDPROC>(GetWindowLongPtrW(control, GWLP_WNDPROC));
        all = made.get();
        SetWindowLongPtrW(control, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(made.release()));
        SetWindowLongPtrW(control, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(firstProcedure));
    }
    if (all) {
        all->added.push_back({procedure, data});
    }
}

LRESULT nextProcedure(HWND control, UINT message, WPARAM wParam, LPARAM lParam) {
    Procedures* const all = proceduresOf(control);
    return all ? callNext(*all, control, message, wParam, lParam) : 0;
}

}  // namespace zoka

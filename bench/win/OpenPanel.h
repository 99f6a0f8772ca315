// A panel opened as its thread opens it.
#pragma once

#include <windows.h>

#include <utility>

#include "bench/win/BareWindows.h"
#include "bench/win/Measure.h"
#include "plugin/win/Resources.h"

namespace zoka::bench {

// Those of the DLL, for as long as the program runs.
inline HINSTANCE resourcesOf(const std::string& dll) {
    const HINSTANCE module = LoadLibraryExA(dll.c_str(), nullptr, LOAD_LIBRARY_AS_DATAFILE);
    if (!module) {
        stop(dll + " can't be read");
    }
    return module;
}

// `Dialog` is the panel's own window; it goes with this object.
template <class Dialog>
class OpenPanel {
public:
    // `setup` is what the dialog is made from; `dll` has its resources.
    OpenPanel(typename Dialog::Setup setup, HINSTANCE dll) : m_dialog(std::move(setup)), m_dll(dll) {}
    ~OpenPanel() {
        if (m_window) {
            DestroyWindow(m_window);
        }
    }
    OpenPanel(const OpenPanel&) = delete;
    OpenPanel& operator=(const OpenPanel&) = delete;

    void open() {
        m_window = m_dialog.create(m_dll, IDD_PANEL);
        if (!m_window) {
            stop("the panel can't be made");
        }
        ShowWindow(m_window, SW_SHOWNORMAL);
        UpdateWindow(m_window);
        m_dialog.load();
        settle(m_window);
    }
    HWND window() const { return m_window; }

private:
    Dialog m_dialog;
    HINSTANCE m_dll;
    HWND m_window = nullptr;
};

}  // namespace zoka::bench

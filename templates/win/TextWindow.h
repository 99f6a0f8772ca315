// A modal window with a text to read and to copy.
#pragma once

#include <windows.h>

#include <string>

#include "util/win/WindowKit.h"

namespace zoka {

class TextWindow {
public:
    // The owner takes no input while the window is shown. `fonts` outlives the object.
    TextWindow(HWND owner, const WindowFonts& fonts) : m_owner(owner), m_fonts(fonts) {}
    TextWindow(const TextWindow&) = delete;
    TextWindow& operator=(const TextWindow&) = delete;

    // Returns when the window was closed. `heading` says above the text what it is; lines of `text` end in CR LF.
    void show(const std::string& title, const std::string& heading, const std::string& text);

private:
    static INT_PTR CALLBACK dialogProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
    void createControls(HWND window);
    void layout();
    void command(int id);

    HWND m_owner;
    const WindowFonts& m_fonts;
    HWND m_window = nullptr, m_heading = nullptr, m_text = nullptr, m_copy = nullptr, m_close = nullptr;
    bool m_ended = false;
};

}  // namespace zoka

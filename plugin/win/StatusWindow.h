// A plain window: a title, what is loaded, a line each, and a button row. It serves as a
// panel and as a modal dialog.
#pragma once

#include <functional>
#include <string>

#include "plugin/PanelText.h"
#include "plugin/win/PanelWindow.h"

namespace zoka {

class StatusWindow : public PanelWindow {
public:
    // `status` is asked once, on the window's thread, when the window is on the screen.
    StatusWindow(std::string title, std::function<StatusLines()> status)
        : m_title(std::move(title)), m_status(std::move(status)) {}

    HWND create(HINSTANCE instance, int number) override;
    void load() override;

    // [editor thread] Shows the dialog resource `number` modally over the thread's active window; returns
    // what EndDialog was given.
    INT_PTR runModal(HINSTANCE instance, int number);

private:
    static INT_PTR CALLBACK dialogProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
    void initialise(HWND window);
    void placeControls();
    void end(INT_PTR result);
    int pixels(int dialogUnits, bool vertical) const;

    std::string m_title;
    std::function<StatusLines()> m_status;
    HWND m_window = nullptr;
    HFONT m_font = nullptr;
    SIZE m_fontBase{};  // average character's width and the height of the font
    bool m_modal = false;
};

}  // namespace zoka

// The window of one row: its label and the field that its value is changed in.
#pragma once

#include <windows.h>

#include <climits>
#include <cstddef>
#include <string>

#include "controls/EntryModel.h"
#include "controls/PanelLayout.h"

namespace zoka {

class EntryPanel;

// Made for rows in sight and freed when they leave it: the value stands in the model. None of its procedures
// runs a loop of its own (a menu, a box), so that it's never freed while one is at work. [panel thread]
class EntryWindow {
public:
    EntryWindow(EntryPanel& panel, size_t row);
    ~EntryWindow();
    EntryWindow(const EntryWindow&) = delete;
    EntryWindow& operator=(const EntryWindow&) = delete;

    HWND window() const { return m_window; }
    size_t row() const { return m_row; }
    // The control that takes the keyboard; null for rows without one.
    HWND field() const { return m_field; }
    // In pixels of the panel, `y` of its view; `after` is the window in front of it, and before it in the order of Tab.
    void setPlace(HWND after, int y, const PanelRect& place, int labelWidth);
    int y() const { return m_y; }
    bool isPlaced() const { return m_y != INT_MIN; }
    // Shows the model's value, except in a field that is being typed in.
    void showValue();
    // Takes what stands in the field. False when it's refused: the field then shows its value again, and the
    // reason stands below it.
    bool commit();
    // Back to the value that the field had when it got the keyboard; false when it has that already.
    bool revert();
    // Changes a number by so many steps; at a limit it says which numbers the field takes.
    void step(int steps);

    static LRESULT CALLBACK windowProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

private:
    static LRESULT CALLBACK fieldProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR id,
                                      DWORD_PTR self);
    void makeControls();
    HWND child(HWND control);
    HWND makeEdit(const char* className, DWORD style);
    void fillDropList();
    void showChoice(const std::string& value);
    void layout(int width, int height);
    void paint();
    void drawHeading(const DRAWITEMSTRUCT& item) const;

    LRESULT message(UINT message, WPARAM wParam, LPARAM lParam);
    void command(WORD code, HWND control);
    void typed();
    void slid(WORD code);
    void spun(bool up);
    bool keyDown(HWND control, WPARAM key);
    std::string fieldText() const;
    void setFieldText(const std::string& value);
    void refused(const std::string& why);

    const EntryModel& model() const;
    const EntryFacts& facts() const { return model().facts(); }
    bool isMultiLine() const { return facts().field == EntryField::StringField && facts().lines > 1; }
    bool isEdit() const;

    EntryPanel& m_panel;
    const size_t m_row;
    int m_labelWidth = 0;
    int m_y = INT_MIN;  // not placed yet
    HWND m_window = nullptr;
    HWND m_label = nullptr, m_field = nullptr, m_slider = nullptr, m_track = nullptr, m_spin = nullptr;
    HWND m_browse = nullptr;
    DWORD m_spinPressed = 0;  // ticks
    std::string m_atFocus;  // the value when the field got the keyboard
    std::string m_why;      // what speaks against the text typed; empty when nothing does
    bool m_updating = false, m_typing = false, m_marked = false;
    bool m_foreign = false;  // the drop list begins with a value that is no choice
};

}  // namespace zoka

// The window of one row: its label and the field that its value is changed in.
#pragma once

#include <windows.h>

#include <cstddef>
#include <optional>
#include <string>

#include "controls/EntryModel.h"
#include "controls/PanelLayout.h"
#include "controls/TextSet.h"
#include "controls/win/ChoiceList.h"
#include "controls/win/EntryControls.h"

namespace zoka {

class EntryPanel;

// Made for rows in sight; one whose row leaves it shows another row or is freed, as the value stands in the model.
// None of its procedures runs a loop of its own (a menu, a box), so that neither happens while one is at work.
// [panel thread]
class EntryWindow {
public:
    // Hidden until its first setPlace; `place` and `labelWidth` as there.
    EntryWindow(EntryPanel& panel, size_t row, const PanelRect& place, int labelWidth);
    ~EntryWindow();
    EntryWindow(const EntryWindow&) = delete;
    EntryWindow& operator=(const EntryWindow&) = delete;

    HWND window() const { return m_window; }
    size_t row() const { return m_row; }
    // The control that takes the keyboard; null for rows without one.
    HWND field() const { return m_controls.field(); }
    // In pixels of the panel's view; `after` is the window in front of it, and before it in the order of Tab.
    void setPlace(HWND after, const PanelRect& place, int labelWidth);
    int y() const { return m_place.y; }
    // Whether the window can show that row instead of its own, which has left the sight: it has the same controls,
    // and nobody is using them.
    bool canTakeOver(size_t row) const;
    void takeOver(size_t row);
    // Shows the model's value, except in a field that is being typed in.
    void showValue();
    // Takes what stands in the field. False when it's refused: it stays, marked, and the reason stands at the field.
    bool commit();
    // Back to the value that the field had when it got the keyboard; false when it has that already.
    bool revert();
    // Changes a number by so many steps; at a limit it says which numbers the field takes.
    void step(int steps);

    static LRESULT CALLBACK windowProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

private:
    static LRESULT CALLBACK fieldProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
    LRESULT fieldMessage(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
    void remove();
    void paint();
    void drawButton(const DRAWITEMSTRUCT& item) const;

    LRESULT message(UINT message, WPARAM wParam, LPARAM lParam);
    void command(WORD code, HWND control);
    void typed();
    void slid(WORD code);
    void spun(bool up);
    bool keyDown(HWND control, WPARAM key);
    Result<std::string> fieldText() const;
    UINT codePage() const;
    void setFieldText(const std::string& value);
    void repaintField();
    void showBeginning();
    void giveBack();
    bool set(const std::string& value, bool typing);
    void refused(const std::string& why);
    bool refusesSteps();

    const EntryModel& model() const;
    const EntryFacts& facts() const { return model().facts(); }
    bool isMultiLine() const { return zoka::isMultiLine(facts()); }
    bool isEdit() const { return zoka::isTyped(facts().field); }

    EntryPanel& m_panel;
    size_t m_row;
    int m_labelWidth;
    PanelRect m_place;
    std::optional<HWND> m_after;  // nothing: not placed yet
    HWND m_window = nullptr;
    EntryControls m_controls;
    DWORD m_spinPressed = 0;  // ticks
    std::string m_atFocus;    // the value when the field got the keyboard
    bool m_differentAtFocus = false;
    bool m_updating = false, m_typing = false, m_marked = false, m_isReadOnly = false;
    ChoiceList m_choices;
};

}  // namespace zoka

// The controls of a row's window: made for its kind of field, fitted to what it is of, placed.
#pragma once

#include <windows.h>

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

#include "controls/win/EntryLook.h"

namespace zoka {

class EntryPanel;

inline constexpr const char* kDifferent = "(different)";

// Whether a row's value is typed; of one that can't be changed it can still be read and copied.
bool isTyped(EntryField field);

// They go with the row's window. [panel thread]
class EntryControls {
public:
    // `procedure` gets the messages of all controls but the label, with `owner` as their GWLP_USERDATA.
    EntryControls(EntryPanel& panel, WNDPROC procedure, void* owner)
        : m_panel(panel), m_procedure(procedure), m_owner(owner) {}

    // Makes those of the panel's row `row` in its window.
    void make(HWND window, size_t row, const EntryParts& at);
    // What differs between rows that have the same controls.
    void fit(const EntryModel& row);
    void fitSwitchText(const EntryFacts& facts);
    void setLabel(const EntryFacts& facts);
    void layOut(const EntryFacts& facts, const EntryParts& at);
    // Only once, before they go.
    void removeTooltips();
    // What the control itself answers.
    LRESULT answerOf(HWND control, UINT message, WPARAM wParam, LPARAM lParam) const;

    // Null where the row has none.
    HWND label() const { return m_label; }
    HWND field() const { return m_field; }  // which takes the keyboard
    HWND track() const { return m_track; }
    HWND spin() const { return m_spin; }
    HWND browse() const { return m_browse; }  // or what chooses a color
    // The field is an edit of one line, with its text in the middle of its height.
    bool isCentred() const { return m_centred; }

private:
    HWND child(HWND control);
    HWND add(const char* className, const std::string& text, DWORD style, DWORD exStyle, int id, HFONT font,
             const PanelRect& at);

    EntryPanel& m_panel;
    WNDPROC m_procedure;
    void* m_owner;
    HWND m_window = nullptr;
    UINT m_codePage = CP_ACP;  // of the row's texts
    HWND m_label = nullptr, m_field = nullptr, m_slider = nullptr, m_track = nullptr, m_spin = nullptr;
    HWND m_browse = nullptr;
    // Of the controls, before m_procedure. Kept here, as the system's subclassing looks up what belongs to a window
    // at each of its messages, which cost as much as making the row.
    std::vector<std::pair<HWND, WNDPROC>> m_procedures;
    bool m_centred = false;
};

}  // namespace zoka

#include "controls/win/EntryControls.h"

#include <commctrl.h>

#include <algorithm>

#include "controls/EntryRules.h"
#include "controls/win/ChoiceList.h"
#include "controls/win/ControlClasses.h"
#include "controls/win/EntryPanel.h"
#include "controls/win/SliderField.h"
#include "ui/win/WindowKit.h"

namespace zoka {
namespace {

enum { kLabel = 1, kField, kBrowse, kSpin };

// A button would underline the character after a single '&'.
std::string buttonText(const std::string& label) {
    std::string shown;
    for (const char c : label) {
        shown.append(c == '&' ? "&&" : std::string(1, c));
    }
    return shown;
}

}  // namespace

bool isTyped(EntryField field) {
    return isNumber(field) || field == EntryField::StringField || field == EntryField::FileField ||
           field == EntryField::ColourField;
}

HWND EntryControls::child(HWND control) {
    if (!control) {
        return nullptr;
    }
    // First its place in the list, which may lack memory: whose messages come here has one.
    WNDPROC& own = m_procedures.emplace_back(control, nullptr).second;
    SetWindowLongPtrW(control, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(m_owner));
    own = reinterpret_cast<WNDPROC>(
        SetWindowLongPtrW(control, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(m_procedure)));
    m_panel.tips().add(control);
    return control;
}

HWND EntryControls::add(const char* className, const std::string& text, DWORD style, DWORD exStyle, int id,
                        HFONT font, const PanelRect& at) {
    if (m_panel.host().leaving()) {
        return nullptr;
    }
    const HWND made = CreateWindowExW(
        exStyle, wideText(className).c_str(), wideText(text, m_codePage).c_str(),
        WS_CHILD | WS_VISIBLE | style, at.x, at.y, at.width, at.height, m_window,
        reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)), ControlClasses::instance(), nullptr);
    if (font) {
        SendMessageA(made, WM_SETFONT, reinterpret_cast<WPARAM>(font), FALSE);
    }
    return id == kLabel ? made : child(made);
}

// Each where it is to stand: moving it there afterwards would cost as much as making it.
void EntryControls::make(HWND window, size_t row, const EntryParts& at) {
    const EntryFacts& is = m_panel.rows().row(row).facts();
    m_window = window;
    m_codePage = codePageOf(is.set);
    const HFONT text = m_panel.fonts().text();
    const auto label = [&](HFONT font, DWORD style, const std::string& shown) {
        m_label = add("STATIC", shown, SS_NOPREFIX | style, 0, kLabel, font, at.label);
    };
    // Several lines are broken at the field's width, one line scrolls.
    const auto edit = [&](const char* className, DWORD style) {
        m_field = add(className, "", WS_TABSTOP | (isMultiLine(is) ? 0 : ES_AUTOHSCROLL) | style,
                      WS_EX_CLIENTEDGE, kField, text, at.field);
    };
    switch (is.field) {
        case EntryField::Caption:
            return label(m_panel.measure().title(), SS_ENDELLIPSIS, is.label);
        case EntryField::Text:
            return label(text, SS_LEFT, is.label);
        case EntryField::Picture:
            if (!m_panel.measure().picture(row).handle) {
                label(text, SS_ENDELLIPSIS, "[" + is.label + "]");
            }
            return;
        case EntryField::Heading:
            m_field = add("BUTTON", buttonText(is.label), BS_OWNERDRAW | WS_TABSTOP, 0, kField,
                          m_panel.measure().bold(), at.field);
            return;
        case EntryField::Switch:
            m_field = add("BUTTON", buttonText(is.label), BS_3STATE | WS_TABSTOP, 0, kField, text, at.field);
            return;
        default:
            break;
    }
    label(text, SS_ENDELLIPSIS, is.label);
    switch (is.field) {
        case EntryField::Slider:
            m_slider =
                makeSliderField(m_window, kField, text, is.decimal,
                                std::max(m_panel.fonts().x(44),
                                         m_panel.fonts().labelWidth(kDifferent) + m_panel.fonts().x(6)),
                                at.field);
            m_track = child(GetDlgItem(m_slider, kSliderTrack));
            m_field = child(GetDlgItem(m_slider, kSliderNumber));
            break;
        case EntryField::IntField:
        case EntryField::FloatField:
            edit(is.field == EntryField::IntField ? kIntEditClass : kFloatEditClass, 0);
            m_spin = add(UPDOWN_CLASSA, "", 0, 0, kSpin, nullptr, at.button);
            // The system makes it no wider than on a small screen, but lets it grow.
            place(m_spin, at.button.x, at.button.y, at.button.width, at.button.height);
            SendMessageA(m_spin, UDM_SETRANGE32, static_cast<WPARAM>(-1000000), 1000000);
            break;
        case EntryField::DropList:
            m_field = add("COMBOBOX", "", kDropListStyle, 0, kField, text,
                          {at.field.x, at.field.y, at.field.width, openHeight(at.field.height)});
            fitDropList(m_field, at.field.height);
            break;
        case EntryField::ColourField:
            edit("EDIT", 0);
            m_browse =
                add("BUTTON", "Choose a color", BS_OWNERDRAW | WS_TABSTOP, 0, kBrowse, text, at.button);
            break;
        case EntryField::FileField:
            edit("EDIT", 0);
            m_browse = add("BUTTON", "Browse...", BS_PUSHBUTTON | WS_TABSTOP, 0, kBrowse, text, at.button);
            break;
        default:
            edit("EDIT", isMultiLine(is) ? ES_MULTILINE | ES_WANTRETURN | ES_AUTOVSCROLL : 0);
            break;
    }
    if (isTyped(is.field) && !isMultiLine(is) && m_field) {
        m_centred = true;
        renewFrame(m_field);
    }
}

void EntryControls::fit(const EntryModel& row) {
    const EntryFacts& is = row.facts();
    if (m_track) {
        // Its thumb moves when the position changes, not with the range; at the beginning it stands right in any.
        SendMessageA(m_track, TBM_SETPOS, TRUE, 0);
        SendMessageA(m_track, TBM_SETRANGEMIN, FALSE, 0);
        SendMessageA(m_track, TBM_SETRANGEMAX, FALSE, row.sliderRange());
        SendMessageA(m_track, TBM_SETPAGESIZE, 0, std::max(1, row.sliderRange() / 10));
    }
    if (isTyped(is.field)) {
        SendMessageA(m_field, EM_LIMITTEXT, is.maxChars > 0 ? static_cast<WPARAM>(is.maxChars) : 0, 0);
    }
    fitSwitchText(is);
}

// A label that is too long for its switch ends in dots; the tooltip has all of it.
void EntryControls::fitSwitchText(const EntryFacts& facts) {
    if (facts.field != EntryField::Switch || !m_field) {
        return;
    }
    RECT area;
    GetClientRect(m_field, &area);
    const int width = static_cast<int>(area.right) - m_panel.fonts().x(12);
    const std::wstring label = wideText(facts.label, codePageOf(facts.set));
    std::wstring shown = label;
    if (width > 0 &&
        static_cast<int>(std::min<size_t>(label.size(), 100000)) * m_panel.fonts().x(8) > width) {
        // As wide as it is with a changed value.
        shown = textWithin(m_field, m_panel.measure().bold(), label, width);
    }
    setText(m_field, buttonText(narrowText(shown, codePageOf(facts.set))), codePageOf(facts.set));
}

void EntryControls::setLabel(const EntryFacts& facts) {
    setText(m_label ? m_label : m_field, m_label ? facts.label : buttonText(facts.label),
            codePageOf(facts.set));
}

void EntryControls::layOut(const EntryFacts& facts, const EntryParts& at) {
    const auto move = [](HWND control, const PanelRect& to) {
        if (control) {
            place(control, to.x, to.y, to.width, to.height);
        }
    };
    move(m_label, at.label);
    if (m_field && facts.field == EntryField::DropList) {
        placeDropList(m_field, at.field.x, at.field.y, at.field.width, at.field.height);
    } else {
        move(m_slider ? m_slider : m_field, at.field);
    }
    move(m_spin ? m_spin : m_browse, at.button);
}

void EntryControls::removeTooltips() {
    for (const HWND control : {m_field, m_track, m_spin, m_browse}) {
        if (control) {
            m_panel.tips().remove(control);
        }
    }
}

LRESULT EntryControls::answerOf(HWND control, UINT message, WPARAM wParam, LPARAM lParam) const {
    const auto own = std::find_if(m_procedures.begin(), m_procedures.end(),
                                  [control](const auto& one) { return one.first == control; });
    return CallWindowProcW(own->second, control, message, wParam, lParam);
}

}  // namespace zoka

#include "controls/win/EntryWindow.h"

#include <commctrl.h>

#include <algorithm>
#include <cmath>

#include "controls/EntryRules.h"
#include "controls/win/ControlClasses.h"
#include "controls/win/EntryPanel.h"
#include "controls/win/SliderField.h"
#include "ui/win/Window.h"
#include "ui/win/WindowKit.h"

namespace zoka {
namespace {

enum { kLabel = 1, kField, kBrowse, kSpin };

constexpr const char* kDifferent = "(different)";

std::string withCrLf(const std::string& text) {
    std::string made;
    for (const char c : text) {
        if (c == '\n' && (made.empty() || made.back() != '\r')) {
            made += '\r';
        }
        made += c;
    }
    return made;
}

// A button would underline the character after a single '&'.
std::string switchText(const std::string& label) {
    std::string shown;
    for (const char c : label) {
        shown.append(c == '&' ? "&&" : std::string(1, c));
    }
    return shown;
}

// Whether a refused text may be the beginning of one that is taken, so that its writer is let alone.
bool mayBecomeRight(const EntryFacts& facts, const std::string& text) {
    const auto number = numberOf(text);
    return isNumber(facts.field) && number &&
           (text.find_first_of("0123456789") == text.npos ||
            (facts.limited && (facts.decimal || text.find('.') == text.npos) &&
             std::abs(*number) <= std::max(std::abs(facts.minimum), std::abs(facts.maximum))));
}

}  // namespace

EntryWindow::EntryWindow(EntryPanel& panel, size_t row, const PanelRect& place, int labelWidth)
    : m_panel(panel), m_row(row), m_labelWidth(labelWidth), m_y(place.y) {
    CreateWindowExA(WS_EX_CONTROLPARENT, kEntryClass, "", WS_CHILD | WS_CLIPCHILDREN, place.x, place.y,
                    place.width, place.height, panel.window(), nullptr, ControlClasses::instance(), this);
    if (!m_window) {
        return;
    }
    makeControls(partsIn(place.width, place.height));
    if (facts().field == EntryField::DropList) {
        fillDropList();
    }
    fitControls();
    showValue();
}

EntryWindow::~EntryWindow() {
    m_updating = true;
    if (!m_window) {
        return;
    }
    for (const HWND control : {m_window, m_field, m_track, m_spin, m_browse}) {
        if (control) {
            m_panel.removeTooltip(control);
        }
    }
    DestroyWindow(m_window);
}

const EntryModel& EntryWindow::model() const {
    return m_panel.rows().row(m_row);
}

bool EntryWindow::isEdit() const {
    const EntryField field = facts().field;
    return isNumber(field) || field == EntryField::StringField || field == EntryField::FileField ||
           field == EntryField::ColourField;
}

HWND EntryWindow::child(HWND control) {
    if (!control) {
        return nullptr;
    }
    SetWindowLongPtrW(control, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
    m_procedures.emplace_back(control, reinterpret_cast<WNDPROC>(SetWindowLongPtrW(
                                           control, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(fieldProc))));
    m_panel.addTooltip(control);
    return control;
}

HWND EntryWindow::make(const char* className, const std::string& text, DWORD style, DWORD exStyle, int id,
                       HFONT font, const PanelRect& at) {
    if (m_panel.host().leaving()) {
        return nullptr;
    }
    const HWND made = CreateWindowExW(
        exStyle, wideText(className).c_str(), wideText(text, codePage()).c_str(),
        WS_CHILD | WS_VISIBLE | style, at.x, at.y, at.width, at.height, m_window,
        reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)), ControlClasses::instance(), nullptr);
    if (font) {
        SendMessageA(made, WM_SETFONT, reinterpret_cast<WPARAM>(font), FALSE);
    }
    return id == kLabel ? made : child(made);
}

// Each where it is to stand: moving it there afterwards would cost as much as making it.
void EntryWindow::makeControls(const Parts& at) {
    const EntryFacts& is = facts();
    const HFONT text = m_panel.fonts().text();
    m_panel.addTooltip(m_window);
    const auto label = [&](HFONT font, DWORD style, const std::string& shown) {
        m_label = make("STATIC", shown, SS_NOPREFIX | style, 0, kLabel, font, at.label);
    };
    // Several lines are broken at the field's width, one line scrolls.
    const auto edit = [&](const char* className, DWORD style) {
        m_field = make(className, "", WS_TABSTOP | (isMultiLine() ? 0 : ES_AUTOHSCROLL) | style,
                       WS_EX_CLIENTEDGE, kField, text, at.field);
    };
    switch (is.field) {
        case EntryField::Caption:
            return label(m_panel.titleFont(), SS_ENDELLIPSIS, is.label);
        case EntryField::Text:
            return label(text, SS_LEFT, is.label);
        case EntryField::Picture:
            if (!m_panel.picture(m_row).handle) {
                label(text, SS_ENDELLIPSIS, "[" + is.label + "]");
            }
            return;
        case EntryField::Heading:
            m_field =
                make("BUTTON", is.label, BS_OWNERDRAW | WS_TABSTOP, 0, kField, m_panel.boldFont(), at.field);
            return;
        case EntryField::Switch:
            m_field = make("BUTTON", switchText(is.label), BS_3STATE | WS_TABSTOP, 0, kField, text, at.field);
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
            m_spin = make(UPDOWN_CLASSA, "", 0, 0, kSpin, nullptr, at.button);
            // The system makes it no wider than on a small screen, but lets it grow.
            place(m_spin, at.button.x, at.button.y, at.button.width, at.button.height);
            SendMessageA(m_spin, UDM_SETRANGE32, static_cast<WPARAM>(-1000000), 1000000);
            break;
        case EntryField::DropList:
            m_field =
                make("COMBOBOX", "", CBS_DROPDOWNLIST | WS_VSCROLL | WS_TABSTOP, 0, kField, text, at.field);
            placeDropList(m_field, at.field.x, at.field.y, at.field.width, at.field.height);
            break;
        case EntryField::ColourField:
            edit("EDIT", 0);
            m_browse =
                make("BUTTON", "Choose a color", BS_OWNERDRAW | WS_TABSTOP, 0, kBrowse, text, at.button);
            break;
        case EntryField::FileField:
            edit("EDIT", 0);
            m_browse = make("BUTTON", "Browse...", BS_PUSHBUTTON | WS_TABSTOP, 0, kBrowse, text, at.button);
            break;
        default:
            edit("EDIT", isMultiLine() ? ES_MULTILINE | ES_WANTRETURN | WS_VSCROLL : 0);
            break;
    }
}

// What differs between entries that have the same controls.
void EntryWindow::fitControls() {
    const EntryFacts& is = facts();
    if (m_track) {
        // Its thumb moves when the position changes, not with the range; at the beginning it stands right in any.
        SendMessageA(m_track, TBM_SETPOS, TRUE, 0);
        SendMessageA(m_track, TBM_SETRANGEMIN, FALSE, 0);
        SendMessageA(m_track, TBM_SETRANGEMAX, FALSE, model().sliderRange());
        SendMessageA(m_track, TBM_SETPAGESIZE, 0, std::max(1, model().sliderRange() / 10));
    }
    if (isEdit()) {
        SendMessageA(m_field, EM_LIMITTEXT, is.maxChars > 0 ? static_cast<WPARAM>(is.maxChars) : 0, 0);
    }
    fitSwitchText();
}

// A label that is too long for its switch ends in dots; the tooltip has all of it.
void EntryWindow::fitSwitchText() {
    if (facts().field != EntryField::Switch || !m_field) {
        return;
    }
    RECT area;
    GetClientRect(m_field, &area);
    const int width = static_cast<int>(area.right) - m_panel.fonts().x(12);
    const std::wstring label = wideText(facts().label, codePage());
    std::wstring shown = label;
    if (width > 0 &&
        static_cast<int>(std::min<size_t>(label.size(), 100000)) * m_panel.fonts().x(8) > width) {
        const HDC dc = GetDC(m_field);
        // As wide as it is with a changed value.
        const HGDIOBJ old = SelectObject(dc, m_panel.boldFont());
        SIZE size{}, dots{};
        int fits = 0;
        GetTextExtentPoint32W(dc, L"...", 3, &dots);
        GetTextExtentExPointW(dc, label.c_str(), static_cast<int>(label.size()), width, &fits, nullptr,
                              &size);
        if (static_cast<size_t>(fits) < label.size()) {
            GetTextExtentExPointW(dc, label.c_str(), static_cast<int>(label.size()), width - dots.cx, &fits,
                                  nullptr, &size);
            shown = label.substr(0, static_cast<size_t>(std::max(fits, 0))) + L"...";
        }
        SelectObject(dc, old);
        ReleaseDC(m_field, dc);
    }
    setText(m_field, switchText(narrowText(shown, codePage())), codePage());
}

bool EntryWindow::canTakeOver(size_t row) const {
    const EntryFacts &is = facts(), &other = m_panel.rows().row(row).facts();
    // What hangs on the control itself (the keyboard, the mouse, a menu) is the entry's, not the next one's.
    return m_window && is.field == other.field && is.decimal == other.decimal &&
           isMultiLine() == (other.field == EntryField::StringField && other.lines > 1) &&
           is.field != EntryField::Picture && !m_panel.isUsed(*this);
}

void EntryWindow::takeOver(size_t row) {
    const EntryFacts& before = facts();
    m_row = row;
    const EntryFacts& is = facts();
    if (is.field != EntryField::Switch) {
        setText(m_label ? m_label : m_field, is.label, codePage());
    }
    if (is.field == EntryField::DropList) {
        if (before.options != is.options || before.hostNames != is.hostNames) {
            SendMessageA(m_field, CB_RESETCONTENT, 0, 0);
            fillDropList();
        } else if (m_foreign) {
            SendMessageA(m_field, CB_DELETESTRING, 0, 0);
        }
        m_foreign = false;
    }
    fitControls();
    showValue();
    if (isEdit()) {
        SendMessageA(m_field, EM_SETSEL, 0, 0);
        SendMessageA(m_field, EM_SCROLLCARET, 0, 0);
        SendMessageA(m_field, EM_EMPTYUNDOBUFFER, 0, 0);
    }
}

void EntryWindow::fillDropList() {
    const auto add = [&](const std::vector<std::string>& list) {
        for (const std::string& option : list) {
            SendMessageW(m_field, CB_ADDSTRING, 0,
                         reinterpret_cast<LPARAM>(wideText(option, codePage()).c_str()));
        }
    };
    add(facts().options);
    if (facts().hostNames) {
        add(*facts().hostNames);
    }
}

// A value that is no choice is shown as one, in front of them, and stays one. Compared to the letter, which the
// list's own search doesn't do.
void EntryWindow::showChoice(const std::string& value) {
    const auto find = [&](const std::vector<std::string>& list) {
        return static_cast<size_t>(std::find(list.begin(), list.end(), value) - list.begin());
    };
    const size_t own = facts().options.size();
    const size_t named = facts().hostNames ? facts().hostNames->size() : 0;
    size_t place = find(facts().options);
    if (place == own && named > 0) {
        place += find(*facts().hostNames);
    }
    if (place < own + named) {
        place += m_foreign ? 1 : 0;
    } else {
        if (m_foreign) {
            SendMessageA(m_field, CB_DELETESTRING, 0, 0);
        }
        SendMessageW(m_field, CB_INSERTSTRING, 0,
                     reinterpret_cast<LPARAM>(wideText(value, codePage()).c_str()));
        m_foreign = true;
        place = 0;
    }
    SendMessageA(m_field, CB_SETCURSEL, place, 0);
}

// The item of the list that was chosen, as fillDropList and showChoice put it there.
std::string EntryWindow::chosenValue() const {
    auto chosen = static_cast<size_t>(std::max<LRESULT>(SendMessageA(m_field, CB_GETCURSEL, 0, 0), 0));
    if (m_foreign && chosen-- == 0) {
        return model().value();
    }
    const std::vector<std::string>& own = facts().options;
    if (chosen < own.size()) {
        return own[chosen];
    }
    return facts().hostNames && chosen - own.size() < facts().hostNames->size()
               ? (*facts().hostNames)[chosen - own.size()]
               : model().value();
}

UINT EntryWindow::codePage() const {
    return codePageOf(facts().set);
}

// What stands in the field, in the script's set. Nothing, with the reason, where that lacks a character of it.
std::optional<std::string> EntryWindow::fieldText(std::string& why) const {
    auto text = convertText(textOf(m_field, CP_UTF8), TextSet::Utf8, facts().set, &why);
    // Where people write a comma for the point it is one.
    char point[4] = "";
    if (text && isNumber(facts().field) && facts().decimal && text->find('.') == text->npos &&
        GetLocaleInfoA(LOCALE_USER_DEFAULT, LOCALE_SDECIMAL, point, sizeof point) > 0 && point[0] == ',') {
        const size_t comma = text->find(',');
        if (comma != text->npos) {
            (*text)[comma] = '.';
        }
    }
    return text;
}

// `value` in UTF-8.
void EntryWindow::setFieldText(const std::string& value) {
    const std::string shown = isMultiLine() ? withCrLf(value) : value;
    if (textOf(m_field, CP_UTF8) == shown) {
        return;
    }
    m_updating = true;
    SetWindowTextW(m_field, wideText(shown, CP_UTF8).c_str());
    if (GetFocus() == m_field) {
        SendMessageA(m_field, EM_SETSEL, 0, -1);
    } else {
        showBeginning();
    }
    m_updating = false;
}

void EntryWindow::showBeginning() {
    SendMessageA(m_field, EM_SETSEL, 0, 0);
    SendMessageA(m_field, EM_SCROLLCARET, 0, 0);
}

void EntryWindow::showValue() {
    if (!m_window || !hasValue(facts().field)) {
        return;
    }
    const bool different = model().isDifferent();
    const std::string value = different ? kDifferent : model().value();
    const bool blocked = !model().blocked().empty();
    for (const HWND control : {m_field, m_track, m_spin, m_browse}) {
        if (control) {
            enable(control, !blocked);
        }
    }
    if (facts().field == EntryField::Switch) {
        SendMessageA(m_field, BM_SETCHECK,
                     different        ? BST_INDETERMINATE
                     : model().isOn() ? BST_CHECKED
                                      : BST_UNCHECKED,
                     0);
    } else if (facts().field == EntryField::DropList) {
        showChoice(value);
    } else if (!m_typing) {
        const EntryPanel::Draft* const draft = m_panel.draftOf(m_row);
        setFieldText(draft ? draft->text : utf8Text(value, facts().set));
        InvalidateRect(m_field, nullptr, TRUE);
    }
    if (m_track && SendMessageA(m_track, TBM_GETPOS, 0, 0) != model().sliderPosition()) {
        SendMessageA(m_track, TBM_SETPOS, TRUE, model().sliderPosition());
    }
    if (facts().field == EntryField::ColourField) {
        InvalidateRect(m_browse, nullptr, FALSE);
    }
    if (m_marked != model().HasChanged()) {
        m_marked = model().HasChanged();
        const HFONT font = m_marked ? m_panel.boldFont() : m_panel.fonts().text();
        SendMessageA(m_label ? m_label : m_field, WM_SETFONT, reinterpret_cast<WPARAM>(font), TRUE);
        InvalidateRect(m_window, nullptr, TRUE);
    }
}

void EntryWindow::refused(const std::string& why) {
    m_panel.showRefusal(m_field, why);
}

// The value is again what it was when the field got the keyboard.
void EntryWindow::giveBack() {
    if (!m_differentAtFocus) {
        m_panel.rows().setValue(m_row, m_atFocus, nullptr, true);
    } else if (!model().isDifferent()) {
        m_panel.rows().undo();  // what was typed is one step
    }
}

void EntryWindow::typed() {
    std::string why;
    const std::optional<std::string> text = fieldText(why);
    if (GetFocus() != m_field) {  // set by another program
        if (!text || !m_panel.rows().setValue(m_row, *text, &why, false)) {
            refused(why);
        }
        return showValue();
    }
    m_typing = true;
    if (text && m_panel.rows().setValue(m_row, *text, &why, true)) {
        m_panel.dropDraft(m_row);
        m_panel.hideRefusal();
    } else {
        // "150" begins with "15": what was taken on the way to a refused text is given back.
        giveBack();
        m_panel.keepDraft(m_row, textOf(m_field, CP_UTF8), why);
        if (text && mayBecomeRight(facts(), *text)) {
            m_panel.hideRefusal();
        } else {
            refused(why);
        }
    }
    m_typing = false;
    InvalidateRect(m_field, nullptr, TRUE);
}

bool EntryWindow::commit() {
    if (!isEdit() || m_updating) {
        return true;
    }
    if (const EntryPanel::Draft* const draft = m_panel.draftOf(m_row)) {
        refused(draft->why);
        return false;
    }
    showValue();
    m_atFocus = model().value();
    m_differentAtFocus = model().isDifferent();
    return true;
}

bool EntryWindow::revert() {
    const bool drafted = m_panel.dropDraft(m_row);
    const bool changed = model().value() != m_atFocus || model().isDifferent() != m_differentAtFocus;
    if (!isEdit() || !(drafted || changed)) {
        return false;
    }
    if (changed) {
        giveBack();
    }
    m_panel.hideRefusal();
    showValue();
    return true;
}

// Entities with values of their own would all get that of a number that isn't there.
bool EntryWindow::refusesSteps() {
    if (!model().isDifferent()) {
        return false;
    }
    refused("The values differ. Type the one that all shall have.");
    return true;
}

void EntryWindow::step(int steps) {
    if (refusesSteps()) {
        return;
    }
    const std::string next = model().stepped(steps);
    std::string why;
    if (next == model().value()) {
        return refused(allowedRange(facts()));
    }
    if (!m_panel.rows().setValue(m_row, next, &why, true)) {
        refused(why);
    }
    showValue();
}

// The longer the button is held, the faster; counted here, because systems differ in how they take a table of speeds.
void EntryWindow::spun(bool up) {
    const DWORD held = GetTickCount() - m_spinPressed;
    const int steps = held < 2000 ? 1 : held < 4000 ? 5 : 20;
    step(up ? steps : -steps);
}

void EntryWindow::slid(WORD code) {
    const int position = static_cast<int>(SendMessageA(m_track, TBM_GETPOS, 0, 0));
    std::string why;
    const bool isStep = code == TB_LINEUP || code == TB_LINEDOWN || code == TB_PAGEUP || code == TB_PAGEDOWN;
    if (position != model().sliderPosition() && !(isStep && refusesSteps()) &&
        !m_panel.rows().setValue(m_row, model().textAt(position), &why, true)) {
        refused(why);
    }
    showValue();
    if (code == TB_ENDTRACK) {
        m_panel.rows().leaveField();
    }
}

void EntryWindow::command(WORD code, HWND control) {
    if (m_updating) {
        return;
    }
    if (m_browse && control == m_browse && code == BN_CLICKED) {
        return m_panel.browseSoon(m_row);
    }
    if (!control || control != m_field) {
        return;
    }
    if (facts().field == EntryField::Heading && code == BN_CLICKED) {
        m_panel.fold(m_row, !m_panel.rows().filter.isFolded(m_row));
        InvalidateRect(m_field, nullptr, TRUE);
    } else if (facts().field == EntryField::Switch && code == BN_CLICKED) {
        std::string why;
        if (!m_panel.rows().setValue(m_row, model().isOn() && !model().isDifferent() ? "0" : "1", &why,
                                     false)) {
            refused(why);
        }
    } else if (facts().field == EntryField::DropList && code == CBN_SELCHANGE) {
        std::string why;
        if (!m_panel.rows().setValue(m_row, chosenValue(), &why, false)) {
            refused(why);
            showValue();
        }
    } else if (isEdit() && code == EN_CHANGE) {
        typed();
    }
}

bool EntryWindow::keyDown(HWND control, WPARAM key) {
    if (GetKeyState(VK_CONTROL) < 0 && GetKeyState(VK_MENU) >= 0) {
        if (key == 'A' && control == m_field && isEdit()) {
            SendMessageA(m_field, EM_SETSEL, 0, -1);
            return true;
        }
        return m_panel.host().shortcut(key);
    }
    if (control == m_field && isNumber(facts().field) && (key == VK_UP || key == VK_DOWN)) {
        step(key == VK_UP ? 1 : -1);
        return true;
    }
    if ((key == VK_PRIOR || key == VK_NEXT) && control != m_track && !isMultiLine() &&
        facts().field != EntryField::DropList) {
        PostMessageA(m_panel.window(), WM_VSCROLL, key == VK_PRIOR ? SB_PAGEUP : SB_PAGEDOWN, 0);
        return true;
    }
    return false;
}

LRESULT CALLBACK EntryWindow::fieldProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    auto* const self = reinterpret_cast<EntryWindow*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    return answerInside(window, [&] { return self->fieldMessage(window, message, wParam, lParam); });
}

LRESULT EntryWindow::fieldMessage(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    EntryWindow* const self = this;
    self->m_panel.relayToTooltip(window, message, wParam, lParam);
    switch (message) {
        case WM_SETFOCUS:
            self->m_atFocus = self->model().value();
            self->m_differentAtFocus = self->model().isDifferent();
            self->m_panel.fieldFocused(self->m_row);
            break;
        case WM_KILLFOCUS:
            if (window == self->m_field && !self->m_updating) {
                self->commit();
                if (self->isEdit() && !self->isMultiLine()) {
                    self->showBeginning();
                }
                self->m_panel.rows().leaveField();
            }
            break;
        case WM_LBUTTONDOWN:
        case WM_LBUTTONDBLCLK:
            if (window == self->m_spin) {
                self->m_spinPressed = GetTickCount();
            }
            break;
        case WM_MOUSEWHEEL:
            if (SendMessageA(window, CB_GETDROPPEDSTATE, 0, 0) && window == self->m_field &&
                self->facts().field == EntryField::DropList) {
                break;
            }
            PostMessageA(self->m_panel.window(), WM_MOUSEWHEEL, wParam, lParam);
            return 0;
        case WM_KEYDOWN:
            if (self->keyDown(window, wParam)) {
                return 0;
            }
            break;
        case WM_CHAR:
            // The letters of Ctrl+Z and the like, whose keys were seen already.
            if (wParam < ' ' && GetKeyState(VK_CONTROL) < 0 &&
                (GetKeyState(VK_SHIFT) < 0 || (wParam != 3 && wParam != 22 && wParam != 24))) {
                return 0;
            }
            break;
        case WM_CONTEXTMENU:
            self->m_panel.menuSoon(self->m_row, window, lParam);
            return 0;
        case WM_GETDLGCODE:
            if (window == self->m_field && self->isMultiLine()) {
                const auto* const pressed = reinterpret_cast<const MSG*>(lParam);
                const bool enter = pressed && pressed->message == WM_KEYDOWN && pressed->wParam == VK_RETURN;
                return DLGC_WANTARROWS | DLGC_WANTCHARS | DLGC_HASSETSEL | (enter ? DLGC_WANTMESSAGE : 0);
            }
            break;
        default:
            break;
    }
    const auto own = std::find_if(self->m_procedures.begin(), self->m_procedures.end(),
                                  [window](const auto& one) { return one.first == window; });
    return CallWindowProcW(own->second, window, message, wParam, lParam);
}

LRESULT CALLBACK EntryWindow::windowProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_NCCREATE) {
        auto* const made =
            static_cast<EntryWindow*>(reinterpret_cast<const CREATESTRUCTA*>(lParam)->lpCreateParams);
        if (!made) {
            return FALSE;
        }
        made->m_window = window;
        SetWindowLongPtrA(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(made));
    }
    auto* const self = reinterpret_cast<EntryWindow*>(GetWindowLongPtrA(window, GWLP_USERDATA));
    if (!self) {
        return DefWindowProcA(window, message, wParam, lParam);
    }
    if (message == WM_NCDESTROY) {
        self->m_window = nullptr;
        SetWindowLongPtrA(window, GWLP_USERDATA, 0);
        return DefWindowProcA(window, message, wParam, lParam);
    }
    return answerInside(window, [&] {
        self->m_panel.relayToTooltip(window, message, wParam, lParam);
        return self->message(message, wParam, lParam);
    });
}

LRESULT EntryWindow::message(UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case WM_SIZE:
            layout(partsIn(LOWORD(lParam), HIWORD(lParam)));
            fitSwitchText();
            return 0;
        case WM_PAINT:
            paint();
            return 0;
        case WM_COMMAND:
            command(HIWORD(wParam), reinterpret_cast<HWND>(lParam));
            return 0;
        case WM_HSCROLL:
            if (m_track) {
                slid(LOWORD(wParam));
            }
            return 0;
        case WM_NOTIFY: {
            const auto* const header = reinterpret_cast<const NMHDR*>(lParam);
            if (header && m_spin && header->hwndFrom == m_spin &&
                header->code == static_cast<UINT>(UDN_DELTAPOS)) {
                if (GetFocus() != m_field) {
                    SetFocus(m_field);
                }
                spun(reinterpret_cast<const NMUPDOWN*>(lParam)->iDelta > 0);
                return TRUE;
            }
            return 0;
        }
        case WM_DRAWITEM:
            if (lParam && facts().field == EntryField::Heading) {
                drawHeading(*reinterpret_cast<const DRAWITEMSTRUCT*>(lParam));
            } else if (lParam && facts().field == EntryField::ColourField) {
                drawColour(*reinterpret_cast<const DRAWITEMSTRUCT*>(lParam));
            }
            return TRUE;
        case WM_CTLCOLORSTATIC: {
            const LRESULT ground = DefWindowProcA(m_window, message, wParam, lParam);
            if (extrasOf(facts()).alarming && reinterpret_cast<HWND>(lParam) == m_label) {
                SetTextColor(reinterpret_cast<HDC>(wParam), RGB(176, 0, 0));
            }
            return ground;
        }
        case WM_CTLCOLOREDIT: {  // what was refused stands on another ground
            if (!m_panel.draftOf(m_row)) {
                return DefWindowProcA(m_window, message, wParam, lParam);
            }
            const auto dc = reinterpret_cast<HDC>(wParam);
            SetTextColor(dc, RGB(120, 0, 0));
            SetBkColor(dc, RGB(255, 225, 225));
            SetDCBrushColor(dc, RGB(255, 225, 225));
            return reinterpret_cast<LRESULT>(GetStockObject(DC_BRUSH));
        }
        case WM_LBUTTONDOWN:
            if (m_field) {
                SetFocus(m_field);
            }
            return 0;
        case WM_CONTEXTMENU:
            m_panel.menuSoon(m_row, m_field, lParam);
            return 0;
        default:
            return DefWindowProcA(m_window, message, wParam, lParam);
    }
}

}  // namespace zoka

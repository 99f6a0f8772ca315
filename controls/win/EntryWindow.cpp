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
std::string buttonText(const std::string& label) {
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
    : m_panel(panel), m_row(row), m_labelWidth(labelWidth), m_place(place) {
    CreateWindowExA(WS_EX_CONTROLPARENT, kEntryClass, "", WS_CHILD | WS_CLIPCHILDREN, place.x, place.y,
                    place.width, place.height, panel.window(), nullptr, ControlClasses::instance(), this);
    if (!m_window) {
        return;
    }
    makeControls(entryParts(facts(), m_panel.fonts(), place.width, place.height, labelWidth));
    if (facts().field == EntryField::DropList) {
        m_choices.fill(m_field, facts());
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

bool EntryWindow::isTyped(EntryField field) {
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
void EntryWindow::makeControls(const EntryParts& at) {
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
            m_field = make("BUTTON", buttonText(is.label), BS_OWNERDRAW | WS_TABSTOP, 0, kField,
                           m_panel.boldFont(), at.field);
            return;
        case EntryField::Switch:
            m_field = make("BUTTON", buttonText(is.label), BS_3STATE | WS_TABSTOP, 0, kField, text, at.field);
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
            m_field = make("COMBOBOX", "", kDropListStyle, 0, kField, text,
                           {at.field.x, at.field.y, at.field.width, openHeight(at.field.height)});
            fitDropList(m_field, at.field.height);
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
            edit("EDIT", isMultiLine() ? ES_MULTILINE | ES_WANTRETURN | ES_AUTOVSCROLL : 0);
            break;
    }
    if (isEdit() && !isMultiLine() && m_field) {
        m_centred = true;
        renewFrame(m_field);
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
        // As wide as it is with a changed value.
        shown = textWithin(m_field, m_panel.boldFont(), label, width);
    }
    setText(m_field, buttonText(narrowText(shown, codePage())), codePage());
}

void EntryWindow::setPlace(HWND after, const PanelRect& place, int labelWidth) {
    if (m_after == after && m_place == place) {
        return;
    }
    m_after = after;
    m_place = place;
    m_labelWidth = labelWidth;  // follows the width, so the row is laid out when it changes
    SetWindowPos(m_window, after, place.x, place.y, place.width, place.height,
                 SWP_NOACTIVATE | SWP_NOCOPYBITS | SWP_SHOWWINDOW);
}

void EntryWindow::layout(const EntryParts& at) {
    const auto move = [](HWND control, const PanelRect& to) {
        if (control) {
            place(control, to.x, to.y, to.width, to.height);
        }
    };
    move(m_label, at.label);
    if (m_field && facts().field == EntryField::DropList) {
        placeDropList(m_field, at.field.x, at.field.y, at.field.width, at.field.height);
    } else {
        move(m_slider ? m_slider : m_field, at.field);
    }
    move(m_spin ? m_spin : m_browse, at.button);
}

void EntryWindow::paint() {
    PAINTSTRUCT painting;
    const HDC dc = BeginPaint(m_window, &painting);
    RECT area;
    GetClientRect(m_window, &area);
    if (m_marked) {
        drawMark(dc, area, m_panel.fonts());
    }
    if (facts().field == EntryField::Picture) {
        const PictureStore::Bitmap picture = m_panel.picture(m_row);
        if (picture.handle && area.right > 0 && area.bottom > 0) {
            const int left = m_panel.fonts().x(5);
            const SIZE size = m_panel.pictureSize(picture, static_cast<int>(area.right) - left);
            const HDC from = CreateCompatibleDC(dc);
            const HGDIOBJ old = SelectObject(from, picture.handle);
            SetStretchBltMode(dc, HALFTONE);
            StretchBlt(dc, left, 0, size.cx, size.cy, from, 0, 0, picture.width, picture.height, SRCCOPY);
            SelectObject(from, old);
            DeleteDC(from);
        }
    }
    EndPaint(m_window, &painting);
}

void EntryWindow::drawButton(const DRAWITEMSTRUCT& item) const {
    if (facts().field == EntryField::Heading) {
        drawHeading(item, wideText(facts().label, codePage()), m_panel.rows().filter.isFolded(m_row),
                    m_panel.fonts(), m_panel.boldFont());
    } else if (facts().field == EntryField::ColourField) {
        drawColour(item, model(), m_panel.fonts());
    }
}

bool EntryWindow::canTakeOver(size_t row) const {
    const EntryFacts &is = facts(), &other = m_panel.rows().row(row).facts();
    // What hangs on the control itself (the keyboard, the mouse, a menu) is the entry's, not the next one's.
    return m_window && is.field == other.field && is.decimal == other.decimal &&
           isMultiLine() == zoka::isMultiLine(other) && is.field != EntryField::Picture &&
           !m_panel.isUsed(*this);
}

void EntryWindow::takeOver(size_t row) {
    const EntryFacts& before = facts();
    m_row = row;
    const EntryFacts& is = facts();
    if (is.field != EntryField::Switch) {
        setText(m_label ? m_label : m_field, m_label ? is.label : buttonText(is.label), codePage());
    }
    if (is.field == EntryField::DropList) {
        m_choices.refill(before, is);
    }
    fitControls();
    showValue();
    if (isEdit()) {
        SendMessageA(m_field, EM_SETSEL, 0, 0);
        SendMessageA(m_field, EM_SCROLLCARET, 0, 0);
        SendMessageA(m_field, EM_EMPTYUNDOBUFFER, 0, 0);
    }
}

UINT EntryWindow::codePage() const {
    return codePageOf(facts().set);
}

// What stands in the field, in the script's set; refused where that lacks a character of it.
Result<std::string> EntryWindow::fieldText() const {
    auto text = convertText(textOf(m_field, CP_UTF8), TextSet::Utf8, facts().set);
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
    const bool blocked = !model().blocked().empty(), readOnly = !model().readOnly().empty();
    for (const HWND control : {m_field, m_track, m_spin, m_browse}) {
        if (control) {
            enable(control, !blocked && (!readOnly || (control == m_field && isEdit())));
        }
    }
    if (isEdit() && readOnly != m_isReadOnly) {
        SendMessageA(m_field, EM_SETREADONLY, readOnly, 0);
        m_isReadOnly = readOnly;
    }
    if (facts().field == EntryField::Switch) {
        SendMessageA(m_field, BM_SETCHECK,
                     different        ? BST_INDETERMINATE
                     : model().isOn() ? BST_CHECKED
                                      : BST_UNCHECKED,
                     0);
    } else if (facts().field == EntryField::DropList) {
        m_choices.show(value, facts());
    } else if (!m_typing) {
        const EntryPanel::Draft* const draft = m_panel.draftOf(m_row);
        setFieldText(draft ? draft->text : utf8Text(value, facts().set));
        repaintField();
    }
    if (m_track && SendMessageA(m_track, TBM_GETPOS, 0, 0) != model().sliderPosition()) {
        SendMessageA(m_track, TBM_SETPOS, TRUE, model().sliderPosition());
    }
    if (m_track) {
        showThumb(m_track, !different);
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

// Its border too, which stands on the same ground.
void EntryWindow::repaintField() {
    RedrawWindow(m_field, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_FRAME);
}

// What the user did to the row, other than typing.
bool EntryWindow::set(const std::string& value, bool typing) {
    const Outcome taken = m_panel.rows().setValue(m_row, value, typing);
    if (!taken) {
        refused(taken.why());
    }
    return bool(taken);
}

void EntryWindow::refused(const std::string& why) {
    m_panel.showRefusal(m_field, why);
}

// The value is again what it was when the field got the keyboard.
void EntryWindow::giveBack() {
    if (!m_differentAtFocus) {
        set(m_atFocus, true);
    } else if (!model().isDifferent()) {
        // What was typed is one step.
        if (const Result<size_t> undone = m_panel.rows().undo(); !undone) {
            refused(undone.why());
        }
    }
}

void EntryWindow::typed() {
    const Result<std::string> text = fieldText();
    const bool isTyped = GetFocus() == m_field;
    m_typing = isTyped;
    const Outcome taken =
        text ? m_panel.rows().setValue(m_row, *text, isTyped) : Outcome(Refusal{text.why()});
    if (!isTyped) {  // set by another program
        if (!taken) {
            refused(taken.why());
        }
        return showValue();
    }
    if (taken) {
        m_panel.dropDraft(m_row);
        m_panel.hideRefusal();
    } else {
        // "150" begins with "15": what was taken on the way to a refused text is given back.
        giveBack();
        m_panel.keepDraft(m_row, textOf(m_field, CP_UTF8), taken.why());
        if (text && mayBecomeRight(facts(), *text)) {
            m_panel.hideRefusal();
        } else {
            refused(taken.why());
        }
    }
    m_typing = false;
    repaintField();
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
    if (next == model().value()) {
        return refused(allowedRange(facts()));
    }
    set(next, true);
    showValue();
}

}  // namespace zoka

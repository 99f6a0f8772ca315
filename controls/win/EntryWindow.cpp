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
    : m_panel(panel),
      m_row(row),
      m_labelWidth(labelWidth),
      m_place(place),
      m_controls(panel, fieldProc, this) {
    CreateWindowExA(WS_EX_CONTROLPARENT, kEntryClass, "", WS_CHILD | WS_CLIPCHILDREN, place.x, place.y,
                    place.width, place.height, panel.window(), nullptr, ControlClasses::instance(), this);
    if (!m_window) {
        return;
    }
    try {
        m_panel.tips().add(m_window);
        m_controls.make(m_window, m_row,
                        entryParts(facts(), m_panel.fonts(), place.width, place.height, labelWidth));
        if (facts().field == EntryField::DropList) {
            m_choices.fill(field(), facts());
        }
        m_controls.fit(model());
        showValue();
    } catch (...) {
        remove();  // messages would go to an object that was never made
        throw;
    }
}

EntryWindow::~EntryWindow() {
    remove();
}

void EntryWindow::remove() {
    m_updating = true;
    if (!m_window) {
        return;
    }
    m_panel.tips().remove(m_window);
    m_controls.removeTooltips();
    DestroyWindow(m_window);
}

const EntryModel& EntryWindow::model() const {
    return m_panel.rows().row(m_row);
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

void EntryWindow::paint() {
    PAINTSTRUCT painting;
    const HDC dc = BeginPaint(m_window, &painting);
    RECT area;
    GetClientRect(m_window, &area);
    if (m_marked) {
        drawMark(dc, area, m_panel.fonts());
    }
    if (facts().field == EntryField::Picture) {
        const PictureStore::Bitmap picture = m_panel.measure().picture(m_row);
        if (picture.handle && area.right > 0 && area.bottom > 0) {
            const int left = m_panel.fonts().x(5);
            const SIZE size = m_panel.measure().pictureSize(picture, static_cast<int>(area.right) - left);
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
                    m_panel.fonts(), m_panel.measure().bold());
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
    if (m_panel.tips().isRefusing(field())) {
        m_panel.tips().hideRefusal();  // it is of the row before
    }
    const EntryFacts& before = facts();
    m_row = row;
    const EntryFacts& is = facts();
    if (is.field != EntryField::Switch) {
        m_controls.setLabel(is);
    }
    if (is.field == EntryField::DropList) {
        m_choices.refill(before, is);
    }
    m_controls.fit(model());
    showValue();
    if (isEdit()) {
        SendMessageA(field(), EM_SETSEL, 0, 0);
        SendMessageA(field(), EM_SCROLLCARET, 0, 0);
        SendMessageA(field(), EM_EMPTYUNDOBUFFER, 0, 0);
    }
}

UINT EntryWindow::codePage() const {
    return codePageOf(facts().set);
}

// What stands in the field, in the script's set; refused where that lacks a character of it.
Result<std::string> EntryWindow::fieldText() const {
    auto text = convertText(textOf(field(), CP_UTF8), TextSet::Utf8, facts().set);
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
    if (textOf(field(), CP_UTF8) == shown) {
        return;
    }
    m_updating = true;
    SetWindowTextW(field(), wideText(shown, CP_UTF8).c_str());
    if (GetFocus() == field()) {
        SendMessageA(field(), EM_SETSEL, 0, -1);
    }
    m_updating = false;
}

void EntryWindow::showBeginning() {
    SendMessageA(field(), EM_SETSEL, 0, 0);
    SendMessageA(field(), EM_SCROLLCARET, 0, 0);
}

void EntryWindow::showValue() {
    if (!m_window || !hasValue(facts().field)) {
        return;
    }
    const bool different = model().isDifferent();
    const std::string value = different ? kDifferent : model().value();
    const bool blocked = !model().blocked().empty(), readOnly = !model().readOnly().empty();
    for (const HWND control : {field(), m_controls.track(), m_controls.spin(), m_controls.browse()}) {
        if (control) {
            enable(control, !blocked && (!readOnly || (control == field() && isEdit())));
        }
    }
    if (isEdit() && readOnly != m_isReadOnly) {
        SendMessageA(field(), EM_SETREADONLY, readOnly, 0);
        m_isReadOnly = readOnly;
    }
    if (facts().field == EntryField::Switch) {
        SendMessageA(field(), BM_SETCHECK,
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
    if (m_controls.track() &&
        SendMessageA(m_controls.track(), TBM_GETPOS, 0, 0) != model().sliderPosition()) {
        SendMessageA(m_controls.track(), TBM_SETPOS, TRUE, model().sliderPosition());
    }
    if (m_controls.track()) {
        showThumb(m_controls.track(), !different);
    }
    if (facts().field == EntryField::ColourField) {
        InvalidateRect(m_controls.browse(), nullptr, FALSE);
    }
    if (m_marked != model().HasChanged()) {
        m_marked = model().HasChanged();
        const HFONT font = m_marked ? m_panel.measure().bold() : m_panel.fonts().text();
        SendMessageA(m_controls.label() ? m_controls.label() : field(), WM_SETFONT,
                     reinterpret_cast<WPARAM>(font), TRUE);
        InvalidateRect(m_window, nullptr, TRUE);
    }
}

// Its border too, which stands on the same ground.
void EntryWindow::repaintField() {
    RedrawWindow(field(), nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_FRAME);
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
    m_panel.showRefusal(field(), why);
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
    const bool isTyped = GetFocus() == field();
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
        m_panel.tips().hideRefusal();
    } else {
        // "150" begins with "15": what was taken on the way to a refused text is given back.
        giveBack();
        m_panel.keepDraft(m_row, textOf(field(), CP_UTF8), taken.why());
        if (text && mayBecomeRight(facts(), *text)) {
            m_panel.tips().hideRefusal();
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
    // A thumb or a spin button that is still held would go on from there. Let go beside it, so that no button is pressed.
    const HWND held = GetCapture();
    const bool isHeld = IsChild(m_window, held);
    if (isHeld) {
        SendMessageA(held, WM_LBUTTONUP, 0, MAKELPARAM(-1, -1));
    }
    const bool drafted = m_panel.dropDraft(m_row);
    const bool changed = model().value() != m_atFocus || model().isDifferent() != m_differentAtFocus;
    if (!isEdit() || !(drafted || changed)) {
        return isHeld;
    }
    if (changed) {
        giveBack();
    }
    m_panel.tips().hideRefusal();
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

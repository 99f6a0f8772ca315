#include "templates/win/UpdatePage.h"

#include <windowsx.h>

#include <algorithm>

namespace zoka {

namespace {

enum { kList = 1501, kUpdate, kUpdateAll, kChanges, kMissing, kRestore };
constexpr ListColumn kChangeColumns[] = {{nullptr, 200}};
constexpr size_t kLongestRow = 259;  // characters that a row shows
constexpr int kTabWidth = 4;
constexpr int kRowPadding = 1;     // dialog units above and below
constexpr int kHighestItem = 255;  // pixels, the most that the list box takes

constexpr COLORREF kOnlyLocal = RGB(255, 235, 233), kOnlyTemplate = RGB(230, 250, 232),
                   kHeading = RGB(232, 238, 247);
constexpr COLORREF kInk = RGB(0, 0, 0), kHeadingInk = RGB(60, 80, 120);

// The lines that an entry of the list takes.
std::vector<std::string> linesOf(const std::string& entry) {
    std::vector<std::string> lines{""};
    for (const char c : entry) {
        if (c == '\n') {
            lines.emplace_back();
        } else {
            lines.back() += c;
        }
    }
    if (lines.size() > 1 && lines.back().empty()) {
        lines.pop_back();
    }
    return lines;
}

std::string shown(const DiffLine& line) {
    if (line.mark == '@' || line.mark == '.') {
        return line.text;
    }
    std::string text(1, line.mark);
    text += ' ';
    for (const char c : line.text) {
        if (text.size() >= kLongestRow) {
            break;
        }
        if (c == '\t') {
            text.append(kTabWidth - (text.size() - 2) % kTabWidth, ' ');
        } else {
            text += c;
        }
    }
    return text;
}

}  // namespace

void UpdatePage::createControls() {
    const HFONT font = fonts().text();
    m_label = label("");
    m_list = makeControl(
        window(), "LISTBOX", "",
        LBS_NOTIFY | LBS_OWNERDRAWVARIABLE | LBS_HASSTRINGS | LBS_NOINTEGRALHEIGHT | WS_VSCROLL | WS_TABSTOP,
        WS_EX_CLIENTEDGE, kList, font);
    m_changesLabel = makeControl(window(), "STATIC", "", SS_LEFTNOWORDWRAP, 0, -1, font);
    m_changes.create(window(), kChanges, fonts(), fonts().fixed(), kChangeColumns, [this](int row, int) {
        return row >= 0 && static_cast<size_t>(row) < m_lines.size()
                   ? shown(m_lines[static_cast<size_t>(row)])
                   : "";
    });
    m_update = button("&Update", kUpdate, true);
    m_updateAll = button("Update a&ll", kUpdateAll);
    m_restoreLabel = label("Without a copy in the &project:");
    m_missing = makeDropList(window(), kMissing, fonts());
    m_restore = button("Res&tore", kRestore);
}

void UpdatePage::layout(Area page) {
    const int gap = fonts().y(kGapUnits), button = fonts().x(kButtonWidthUnits);
    Area restore = page.takeBottom(fonts().y(kButtonHeightUnits), gap);
    place(m_restore, restore.takeRight(button, fonts().x(kGapUnits)));
    placeLabel(m_restoreLabel, restore, fonts());
    placeDropList(m_missing, restore);
    Area buttons = page.takeBottom(fonts().y(kButtonHeightUnits), gap);
    placeButtonsRight({m_updateAll, m_update}, buttons, fonts());
    // The two lists share what the fixed rows leave.
    const int shared = page.height - 2 * fonts().y(kLabelHeightUnits) - gap;
    placeLabelAbove(m_label, page, fonts());
    place(m_list, page.takeTop(shared * 2 / 5, gap));
    placeLabelAbove(m_changesLabel, page, fonts());
    m_changes.place(page);
    InvalidateRect(m_list, nullptr, TRUE);  // its texts are cut to the new width
}

int UpdatePage::chosen() const {
    return static_cast<int>(SendMessageA(m_list, LB_GETCURSEL, 0, 0));
}

void UpdatePage::showEntries() {
    if (!session().areUpdatesKnown()) {
        m_frame.runJob("Comparing the project's scripts",
                       [this](JobProgress& progress) { session().updates(&progress); });
    }
    const std::vector<UpdateEntry>& entries = session().updates();
    setText(m_label, "&" + session().listedText());
    const DrawingOff off(m_list);
    SendMessageA(m_list, LB_RESETCONTENT, 0, 0);
    for (const UpdateEntry& entry : entries) {
        SendMessageW(m_list, LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(wideReport(entry.line).c_str()));
    }
}

void UpdatePage::refresh() {
    const int selected = std::max(chosen(), 0);
    showEntries();
    const int count = static_cast<int>(session().updates().size());
    SendMessageA(m_list, LB_SETCURSEL, static_cast<WPARAM>(std::min(selected, count - 1)), 0);

    const std::string missing = chosenItem(m_missing);
    SendMessageA(m_missing, CB_RESETCONTENT, 0, 0);
    for (const std::string& name : session().restorable()) {
        SendMessageA(m_missing, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(name.c_str()));
    }
    const LRESULT again = SendMessageA(m_missing, CB_FINDSTRINGEXACT, static_cast<WPARAM>(-1),
                                       reinterpret_cast<LPARAM>(missing.c_str()));
    SendMessageA(m_missing, CB_SETCURSEL, static_cast<WPARAM>(std::max<LRESULT>(again, 0)), 0);
    const bool any = SendMessageA(m_missing, CB_GETCOUNT, 0, 0) > 0;
    enable(m_missing, any);
    enable(m_restore, any);
    showDifference();
}

void UpdatePage::showDifference() {
    m_lines.clear();
    const int index = chosen();
    enable(m_update, index >= 0);
    std::string heading = "&Differences:";
    if (index < 0) {
        m_lines.push_back({'.', session().nothingListedText()});
    } else {
        heading = "&Differences of the template from the project's " +
                  session().updates()[static_cast<size_t>(index)].fileName + ":";
        showPlan(session().updatePlan(static_cast<size_t>(index)));
    }
    setText(m_changesLabel, heading);
    size_t longest = 0;
    for (const DiffLine& line : m_lines) {
        longest = std::max(longest, shown(line).size());
    }
    m_changes.setCount(static_cast<int>(m_lines.size()));
    m_changes.setTextWidth((static_cast<int>(longest) + 2) * fonts().fixedWidth());
}

void UpdatePage::showPlan(const UpdatePlan& plan) {
    if (!plan.included.empty()) {
        m_lines.push_back({'@', "The main script will include what is missing:"});
        for (const std::string& name : plan.included) {
            m_lines.push_back({'+', "include <" + name + ">;"});
        }
    }
    for (const UpdatePlan::Script& script : plan.scripts) {
        const ValueUpdatePlan& change = script.change;
        if (change.ownLines > 0) {
            m_lines.push_back({'@', "Lines that the template lacks: " + std::to_string(change.ownLines)});
            m_lines.push_back(
                {'@', "The script will be kept beside the new one, as " + script.fileName + ".N.bak."});
        }
        if (const std::string ends = lineEndChange(change.before, change.after); !ends.empty()) {
            m_lines.push_back({'@', ends});
        }
        for (const DiffHunk& hunk : lineDifference(change.before, change.after)) {
            m_lines.push_back({'@', "Line " + std::to_string(hunk.oldStart) + ", in the new version line " +
                                        std::to_string(hunk.newStart) + ":"});
            m_lines.insert(m_lines.end(), hunk.lines.begin(), hunk.lines.end());
        }
        for (const UnplacedValue& lost : change.unplaced) {
            const std::string line = unplacedText({lost});
            m_lines.push_back({'@', "No place for " + line.substr(0, line.find('\r'))});
        }
    }
    for (const std::string& problem : plan.problems) {
        m_lines.push_back({'@', problem});
    }
    if (m_lines.empty()) {
        m_lines.push_back({'.', "The project's copy is the template's already, with its own values."});
    }
}

void UpdatePage::mainAction() {
    if (chosen() < 0) {
        return;
    }
    session().updateSelected(chosen());
    m_frame.sessionChanged();
    showUnplaced();
}

void UpdatePage::showUnplaced() {
    const std::string& unplaced = session().updateRun().unplaced();
    if (unplaced.empty()) {
        return;
    }
    m_frame.showText("Values that could not be kept",
                     "Kept in NAME.zoka.old, next to each script:", unplaced);
}

void UpdatePage::command(int id, int code) {
    if (id == kList && code == LBN_SELCHANGE) {
        showDifference();
    } else if (id == kList && code == LBN_DBLCLK) {
        mainAction();
    } else if (code == BN_CLICKED && id == kUpdate) {
        mainAction();
    } else if (code == BN_CLICKED && id == kUpdateAll) {
        m_frame.runJob("Updating scripts", [this](JobProgress& progress) { session().updateAll(&progress); });
        m_frame.sessionChanged();
        showUnplaced();
    } else if (code == BN_CLICKED && id == kRestore) {
        const std::string name = chosenItem(m_missing);
        if (name.empty()) {
            return;
        }
        session().restore(name);
        m_frame.sessionChanged();
    }
}

LRESULT UpdatePage::notified(NMHDR& header) {
    if (header.idFrom != kChanges) {
        return 0;
    }
    if (header.code == static_cast<UINT>(NM_CUSTOMDRAW)) {
        // A row that the list colours, because it is selected, keeps that.
        const LRESULT own = m_changes.notified(header);
        return (own & CDRF_NEWFONT) != 0 ? own : paintDifference(reinterpret_cast<NMLVCUSTOMDRAW&>(header));
    }
    return m_changes.notified(header);
}

LRESULT UpdatePage::paintDifference(NMLVCUSTOMDRAW& draw) const {
    if (draw.nmcd.dwDrawStage == CDDS_PREPAINT) {
        return CDRF_NOTIFYITEMDRAW;
    }
    const size_t row = draw.nmcd.dwItemSpec;
    if (draw.nmcd.dwDrawStage != CDDS_ITEMPREPAINT || row >= m_lines.size()) {
        return CDRF_DODEFAULT;
    }
    // Ink and paper are always set together, so that the text is readable whatever the system's colours.
    switch (m_lines[row].mark) {
        case '-':
            draw.clrText = kInk;
            draw.clrTextBk = kOnlyLocal;
            break;
        case '+':
            draw.clrText = kInk;
            draw.clrTextBk = kOnlyTemplate;
            break;
        case '@':
            draw.clrText = kHeadingInk;
            draw.clrTextBk = kHeading;
            break;
        default:
            break;
    }
    return CDRF_DODEFAULT;
}

void UpdatePage::measure(MEASUREITEMSTRUCT& item) {
    if (item.CtlID != kList) {
        return;
    }
    const std::vector<UpdateEntry>& entries = session().updates();
    const size_t lines = item.itemID < entries.size() ? linesOf(entries[item.itemID].line).size() : 1;
    const int height = static_cast<int>(lines) * fonts().lineHeight() + 2 * fonts().y(kRowPadding);
    item.itemHeight = static_cast<UINT>(std::min(height, kHighestItem));
}

void UpdatePage::draw(const DRAWITEMSTRUCT& item) {
    if (item.CtlID != kList) {
        return;
    }
    const bool selected = (item.itemState & ODS_SELECTED) != 0;
    FillRect(item.hDC, &item.rcItem, GetSysColorBrush(selected ? COLOR_HIGHLIGHT : COLOR_WINDOW));
    const std::vector<UpdateEntry>& entries = session().updates();
    if (item.itemID < entries.size()) {
        SetTextColor(item.hDC, GetSysColor(selected ? COLOR_HIGHLIGHTTEXT : COLOR_WINDOWTEXT));
        SetBkMode(item.hDC, TRANSPARENT);
        RECT line = item.rcItem;
        line.left += fonts().x(2);
        line.top += fonts().y(kRowPadding);
        for (const std::string& text : linesOf(entries[item.itemID].line)) {
            line.bottom = line.top + fonts().lineHeight();
            const std::wstring shown = wideReport(std::string(text));
            DrawTextW(item.hDC, shown.data(), static_cast<int>(shown.size()), &line,
                      DT_SINGLELINE | DT_END_ELLIPSIS | DT_NOPREFIX);
            line.top = line.bottom;
            line.left = item.rcItem.left + fonts().x(10);  // what is missing stands under its script
        }
    }
    if ((item.itemState & ODS_FOCUS) != 0) {
        DrawFocusRect(item.hDC, &item.rcItem);
    }
}

}  // namespace zoka

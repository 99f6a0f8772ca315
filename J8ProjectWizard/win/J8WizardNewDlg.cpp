#include "J8ProjectWizard/win/J8WizardNewDlg.h"

#include <algorithm>

#include "ui/win/ProgressWindow.h"
#include "ui/win/StatusLine.h"

using namespace zoka;

namespace {

enum {
    kWizards = 1501,
    kDescription,
    kFirstField,
    kFirstBrowse = kFirstField + 10,
    kPlan = kFirstBrowse + 10,
    kState
};
enum : UINT_PTR { kTypedTimer = 1, kLooksTimer };
constexpr UINT kTypedAfter = 300;  // milliseconds since the last key
constexpr UINT kLooksEvery = 30;
constexpr DWORD kReadAtOnce = 50;  // what is read within that time is shown at once

constexpr ListColumn kWizardColumns[] = {{nullptr, 100, true}};
enum Column { kName, kSize, kSource, kProblem };
constexpr ListColumn kPlanColumns[] = {
    {"Folder or file", 84, true}, {"Size", 40}, {"From", 112, true, true}, {"Note", 84, true}};

// Dialog units.
constexpr int kListWidth = 118;
constexpr int kDocsHeight = 40;
constexpr int kListHeight = 74;

constexpr const char* kLabels[] = {
    "Project &name:", "D&ocumentation:", "Project &path:", "Project &folder name:", "J8 &templates path:"};

PlaceMemory& places() {
    static PlaceMemory memory;
    return memory;
}

// So that Ctrl+Z in the field brings back what stood there before.
void replaceText(HWND edit, const std::string& text) {
    if (textOf(edit) == text) {
        return;
    }
    SendMessageA(edit, EM_SETSEL, 0, -1);
    SendMessageA(edit, EM_REPLACESEL, TRUE, reinterpret_cast<LPARAM>(text.c_str()));
    SendMessageA(edit, EM_SETSEL, 0, 0);
    SendMessageA(edit, EM_SCROLLCARET, 0, 0);
    InvalidateRect(edit, nullptr, TRUE);
}

CJ8Wizard foundWizards() {
    std::optional<CJ8Wizard> found;
    ProgressWindow(modalOwner(), "Looking for Wizards").runOnThread([&found](JobProgress& progress) {
        found.emplace(&progress);
    });
    return std::move(*found);
}

}  // namespace

CJ8WizardNewDlg::CJ8WizardNewDlg(HINSTANCE module, int icon)
    : DialogShell({.title = "New Project",
                   .module = module,
                   .icon = icon,
                   .width = 460,
                   .height = 310,
                   .leastWidth = 380,
                   .leastHeight = 260,
                   .maximizes = true,
                   .memory = &places()}),
      m_session(userPrompt(), foundWizards()) {
    for (size_t i = 0; i < kProjectFields; ++i) {
        m_fields[i].which = static_cast<NewProjectField>(i);
    }
}

std::optional<NewProject> CJ8WizardNewDlg::run() {
    runModal();
    return m_made;
}

void CJ8WizardNewDlg::createControls() {
    m_wizardsLabel = makeLabel(window(), "&Wizards:", fonts());
    m_wizards.create(window(), kWizards, fonts(), fonts().text(), kWizardColumns,
                     [this](int row, int) { return m_session.title(static_cast<size_t>(row)); });
    m_wizards.setCount(static_cast<int>(m_session.wizards()));
    m_descriptionLabel = makeLabel(window(), "&Description:", fonts());
    m_description = makeReadOnlyText(window(), kDescription, fonts().text());
    for (size_t i = 0; i < kProjectFields; ++i) {
        Field& field = m_fields[i];
        const int id = kFirstField + static_cast<int>(i);
        field.label = makeLabel(window(), kLabels[i], fonts());
        if (field.which == NewProjectField::Docs) {
            field.edit = makeText(window(), id, fonts().text());
        } else {
            field.edit = makeField(window(), id, fonts());
        }
        if (field.which == NewProjectField::Path || field.which == NewProjectField::TemplatesPath) {
            field.browse =
                makeButton(window(), field.which == NewProjectField::Path ? "&Browse..." : "B&rowse...",
                           kFirstBrowse + static_cast<int>(i), fonts());
        }
    }
    m_planLabel = makeLabel(window(), "What will be &made:", fonts());
    m_plan.create(window(), kPlan, fonts(), fonts().text(), kPlanColumns,
                  [this](int row, int column) { return planCell(row, column); });
    m_plan.setWrong([this](int row) { return m_session.isRowHarmed(static_cast<size_t>(row)); });
    m_state = makeStatusLine(window(), kState, fonts());
    m_ok = makeButton(window(), "OK", IDOK, fonts(), true);
    m_cancel = makeButton(window(), "Cancel", IDCANCEL, fonts());
    showFields();
    showState();
}

Area CJ8WizardNewDlg::layoutField(Field& field, Area& column, int labels) {
    const int gapX = fonts().x(kGapUnits), gapY = fonts().y(kGapUnits);
    Area row = column.takeTop(
        fonts().y(field.which == NewProjectField::Docs ? kDocsHeight : kFieldHeightUnits), gapY);
    Area labelRow = row;
    labelRow.height = std::min(row.height, fonts().y(kFieldHeightUnits));
    placeLabel(field.label, labelRow, fonts(), labels);
    row.takeLeft(labels, gapX);
    if (field.browse) {
        // As high as the field beside it, a little higher than that at most.
        place(field.browse, row.takeRight(fonts().x(kButtonWidthUnits), gapX));
    }
    place(field.edit, row);
    return row;
}

void CJ8WizardNewDlg::layout(Area inside) {
    const int gapX = fonts().x(kGapUnits), gapY = fonts().y(kGapUnits);
    Area foot = inside.takeBottom(fonts().y(kButtonHeightUnits), gapY);
    placeButtonsRight({m_cancel, m_ok}, foot, fonts());
    place(m_state, foot.middle(fonts().lineHeight()));

    const int fields =
        fonts().y(kDocsHeight) + 4 * fonts().y(kFieldHeightUnits) + 5 * gapY + fonts().y(kLabelHeightUnits);
    Area top = inside.takeTop(std::max(fields, inside.height * 2 / 5), gapY);
    Area left = top.takeLeft(std::max(fonts().x(kListWidth), top.width * 3 / 10), 2 * gapX);
    placeLabelAbove(m_wizardsLabel, left, fonts());
    m_wizards.place(left.takeTop(std::min(fonts().y(kListHeight), left.height / 2), gapY));
    placeLabelAbove(m_descriptionLabel, left, fonts());
    place(m_description, left);

    int labels = 0;
    for (const char* label : kLabels) {
        labels = std::max(labels, fonts().labelWidth(label));
    }
    top.takeTop(fonts().y(kLabelHeightUnits));
    for (Field& field : m_fields) {
        layoutField(field, top, labels);
    }
    placeLabelAbove(m_planLabel, inside, fonts());
    m_plan.place(inside);
}

void CJ8WizardNewDlg::selectWizard(int wizard) {
    if (wizard == m_session.selected()) {
        return;
    }
    m_session.choose(wizard);
    setText(m_description, m_session.description());
    if (m_session.isReading()) {
        m_looks.read([this, wizard] { return m_session.read(wizard); });
        takeWizard(kReadAtOnce);
    }
    if (m_session.isReading()) {
        SetTimer(window(), kLooksTimer, kLooksEvery, nullptr);
    }
    showPlan();
}

void CJ8WizardNewDlg::takeWizard(DWORD milliseconds) {
    if (const auto root = m_looks.takeRead(milliseconds)) {
        m_session.opened(*root);
        setText(m_description, m_session.description());
        showFields();
        showPlan();
        lookAtDisk();
    }
}

void CJ8WizardNewDlg::showFields() {
    for (const Field& field : m_fields) {
        replaceText(field.edit, m_session.text(field.which));
    }
}

void CJ8WizardNewDlg::showPlan() {
    m_plan.setCount(static_cast<int>(m_session.tree().rows().size()));
    showState();
}

void CJ8WizardNewDlg::showState() {
    setText(m_state, m_session.state());
}

std::string CJ8WizardNewDlg::planCell(int index, int column) const {
    const auto row = static_cast<size_t>(index);
    if (row >= m_session.tree().rows().size()) {
        return {};
    }
    switch (column) {
        case kName:
            return std::string(3 * static_cast<size_t>(m_session.tree().rows()[row].depth), ' ') +
                   m_session.rowName(row);
        case kSize:
            return m_session.rowSize(row);
        case kSource:
            return m_session.rowSource(row);
        default:
            return m_session.rowNote(row);
    }
}

void CJ8WizardNewDlg::entered() {
    ok();
}

// False when the user doesn't wait that long, or the window is gone.
bool CJ8WizardNewDlg::waitForWizard() {
    ProgressWindow progress(window(), "Reading the Wizard");
    bool goesOn = true;
    while (goesOn && !m_looks.isRead(kLooksEvery)) {
        goesOn = progress.step(0, 0, m_session.title(static_cast<size_t>(m_session.selected())));
    }
    return goesOn && window();
}

void CJ8WizardNewDlg::ok() {
    if (m_working) {
        return;
    }
    m_working = true;
    if (m_session.isReading()) {
        if (!waitForWizard()) {
            m_working = false;
            return;  // the timer takes the wizard once it is read
        }
        takeWizard(0);
    }
    m_made = m_session.ok([this](const WizardJob& job) {
        ProgressWindow progress(window(), "Making the Project");
        progress.runOnThread([&job](JobProgress& steps) { job(&steps); });
    });
    m_working = false;
    if (m_made) {
        end();
    } else if (window()) {
        showPlan();
        lookAtDisk();
        if (const auto asked = m_session.asked()) {
            SendMessageA(window(), WM_NEXTDLGCTL,
                         reinterpret_cast<WPARAM>(m_fields[static_cast<size_t>(*asked)].edit), TRUE);
        }
    }
}

void CJ8WizardNewDlg::command(int id, int code) {
    const int field = id - kFirstField, browse = id - kFirstBrowse;
    if (field >= 0 && field < static_cast<int>(kProjectFields) && code == EN_CHANGE) {
        m_session.setText(m_fields[field].which, textOf(m_fields[field].edit));
        m_plan.redraw();
        showState();
        SetTimer(window(), kTypedTimer, kTypedAfter, nullptr);
    } else if (browse >= 0 && browse < static_cast<int>(kProjectFields) && code == BN_CLICKED) {
        if (m_session.browse(m_fields[browse].which)) {
            showFields();
            SetFocus(m_fields[browse].edit);
        }
    }
}

LRESULT CJ8WizardNewDlg::notified(NMHDR& header) {
    if (header.idFrom == kWizards) {
        if (m_wizards.userMayHaveSelected(header)) {
            selectWizard(m_wizards.selected());
        }
        return m_wizards.notified(header);
    }
    return header.idFrom == kPlan ? m_plan.notified(header) : 0;
}

std::optional<LRESULT> CJ8WizardNewDlg::message(UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_CTLCOLORSTATIC && reinterpret_cast<HWND>(lParam) == m_state &&
        m_session.selected() >= 0 && m_session.isWrong()) {
        const LRESULT answer = DefWindowProcA(window(), message, wParam, lParam);
        SetTextColor(reinterpret_cast<HDC>(wParam), inkOfWrong());
        return answer;
    }
    if (message != WM_TIMER) {
        return DialogShell::message(message, wParam, lParam);
    }
    if (m_working) {
        return 0;
    }
    if (wParam == kTypedTimer) {
        KillTimer(window(), kTypedTimer);
        lookAtDisk();
    } else if (wParam == kLooksTimer) {
        takeLooks();
    }
    return 0;
}

void CJ8WizardNewDlg::lookAtDisk() {
    if (m_session.isReading()) {
        return;  // afterwards
    }
    m_looks.ask(m_session.toLookAt());
    SetTimer(window(), kLooksTimer, kLooksEvery, nullptr);
}

void CJ8WizardNewDlg::takeLooks() {
    if (m_session.isReading()) {
        return takeWizard(0);
    }
    bool more = false;
    const std::vector<DiskLook> looks = m_looks.take(more);
    if (!more) {
        KillTimer(window(), kLooksTimer);
    }
    for (const DiskLook& look : looks) {
        m_session.seen(look);
    }
    if (!looks.empty()) {
        m_plan.redraw();
        showState();
    }
}

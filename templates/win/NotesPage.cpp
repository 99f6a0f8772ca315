#include "templates/win/NotesPage.h"

namespace zoka {

namespace {

enum { kNotes = 1401, kCopy };
constexpr UINT kTabUnits = 16;  // dialog units between the report's tab stops

}  // namespace

void NotesPage::createControls() {
    m_label = label("&Notes on the project's scripts:");
    m_notes = makeReadOnlyText(window(), kNotes, fonts().fixed());
    SendMessageA(m_notes, EM_SETTABSTOPS, 1, reinterpret_cast<LPARAM>(&kTabUnits));
    m_copy = button("C&opy", kCopy, true);
}

void NotesPage::layout(Area page) {
    Area foot = page.takeBottom(fonts().y(kButtonHeightUnits), fonts().y(kGapUnits));
    placeButtonsRight({m_copy}, foot, fonts());
    placeLabelAbove(m_label, page, fonts());
    place(m_notes, page);
}

void NotesPage::refresh() {
    std::string text;
    m_frame.runJob("Reading the project's scripts",
                   [&](JobProgress& progress) { text = session().notes(&progress); });
    setReport(m_notes, text);
}

void NotesPage::mainAction() {
    m_frame.setStatus(copyToClipboard(m_frame.window(), textOf(m_notes, CP_UTF8))
                          ? "The notes are on the clipboard"
                          : kNotCopied);
}

void NotesPage::command(int id, int code) {
    if (id == kCopy && code == BN_CLICKED) {
        mainAction();
    }
}

}  // namespace zoka

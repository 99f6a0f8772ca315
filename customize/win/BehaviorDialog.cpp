#include "customize/win/BehaviorDialog.h"

#include "ui/win/TextWindow.h"
#include "util/UserPrompt.h"

namespace zoka {
namespace {

constexpr const char* kCaption = "Entity Behavior";
constexpr int kFirstControl = 1200;
enum : int { kShowFindings = 1220, kFollow, kSave };
enum : int { kCopyRow = kFirstRowItem, kCopyAll, kPasteValues };
constexpr int kFollowUnits = 90, kSaveUnits = 44;  // "Follow the selection", "Save"
constexpr size_t kMostPasted = 1 << 20;
constexpr UINT kLookMs = 1000;  // between looks at the host's count of changes

bool isTextField(HWND control) {
    return control && (SendMessageA(control, WM_GETDLGCODE, 0, 0) & DLGC_HASSETSEL);
}

std::vector<RowsButton> buttonsOf(const BehaviorDialog::Setup& setup) {
    std::vector<RowsButton> buttons = {findingsButton(kShowFindings),
                                       {kFollow, "Fo&llow the selection", kFollowUnits, true, true}};
    if (setup.project) {
        buttons.push_back({.id = kSave, .text = "&Save", .units = kSaveUnits, .key = 'S'});
    }
    return buttons;
}

std::unique_ptr<EntityComponents> componentsOf(const std::optional<BehaviorProject>& project) {
    return project ? std::make_unique<EntityComponents>(project->file, userPrompt()) : nullptr;
}

}  // namespace

BehaviorDialog::BehaviorDialog(const Setup& setup)
    : RowsDialog({.title = kCaption,
                  .module = setup.module,
                  .icon = setup.icon,
                  .firstId = kFirstControl,
                  .buttons = buttonsOf(setup),
                  .statusLine = true,
                  .lookMs = kLookMs,
                  .loading = setup.loading}),
      m_session(setup.entities, setup.editor, componentsOf(setup.project),
                setup.project ? setup.project->entity : "", setup.project ? setup.project->open : nullptr) {}

void BehaviorDialog::fillRows() {
    m_session.open();
    CheckDlgButton(window(), kFollow, m_session.follows() ? BST_CHECKED : BST_UNCHECKED);
}

void BehaviorDialog::offerUnsaved() noexcept {
    if (isLoaded()) {
        view().removeRows();  // saving replaces the project that they are of
    }
    m_session.offerUnsaved();
}

// The action's own title, if its markup has one, with a mark while another project is open and one while components
// have unsaved edits.
std::string BehaviorDialog::caption() const {
    return (m_session.title().empty() ? kCaption : m_session.title()) + m_session.whereabouts() +
           (m_session.hasUnsaved() ? " *" : "");
}

ButtonState BehaviorDialog::stateOf(int id) const {
    if (id == kFollow) {
        return {m_session.canFollow()};
    }
    if (id == kSave) {
        return {m_session.hasUnsaved()};
    }
    return findingsState(m_session.findingCount());
}

void BehaviorDialog::pressed(int id) {
    if (id == kFollow) {
        m_session.setFollowing(IsDlgButtonChecked(window(), kFollow) == BST_CHECKED);
    } else if (id == kShowFindings) {
        showTextWindow(window(), "Problems", "Of the action's markup, and of values outside their limits:",
                       m_session.findingsText(), TextLook::FixedWidth);
    } else if (id == kSave) {
        carryOut(kSave, [this] { m_session.save(); });
        showState();
    }
}

std::vector<RowMenuItem> BehaviorDialog::rowMenuItems(size_t row) {
    return {{kCopyRow, "Copy th&is value", !m_session.copyText(row, row + 1).empty()},
            {kCopyAll, "Copy all &values\tCtrl+Shift+C", !m_session.copyText(0, m_session.size()).empty()},
            {kPasteValues, "Paste values\tCtrl+Shift+V", IsClipboardFormatAvailable(CF_UNICODETEXT) != 0}};
}

void BehaviorDialog::rowMenuChosen(size_t row, int id) {
    if (id == kPasteValues) {
        paste();
    } else {
        copy(id == kCopyRow ? row : 0, id == kCopyRow ? row + 1 : m_session.size());
    }
}

// In a text field the keys alone are the field's own.
bool BehaviorDialog::rowShortcut(WPARAM key) {
    if ((key != 'C' && key != 'V') || (isTextField(GetFocus()) && GetKeyState(VK_SHIFT) >= 0)) {
        return RowsDialog::rowShortcut(key);
    }
    if (key == 'C') {
        copy(0, m_session.size());
    } else {
        paste();
    }
    return true;
}

void BehaviorDialog::copy(size_t first, size_t last) {
    copyToClipboard(window(), m_session.copyText(first, last));
}

void BehaviorDialog::paste() {
    if (!view().commit()) {
        return;
    }
    m_session.leaveField();
    const PasteResult result = m_session.paste(clipboardText(window(), kMostPasted, CP_UTF8));
    if (result.refused.empty()) {
        return;
    }
    std::string lines;
    for (const std::string& line : result.refused) {
        lines += line + "\r\n";
    }
    const Busy busy(*this);
    showTextWindow(window(), "Values that were not pasted",
                   "These lines suit no value here, or one that does not take them:", lines,
                   TextLook::FixedWidth);
}

}  // namespace zoka

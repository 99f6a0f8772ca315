// A dialog of several pages below a strip of tabs, with a status line and a row of buttons in its foot.
#pragma once

#include <windows.h>

#include <memory>
#include <span>
#include <string>
#include <vector>

#include "ui/win/DialogShell.h"
#include "ui/win/RowList.h"

namespace zoka {

// One page: a window without frame inside the dialog. Its controls are made when it is first shown.
class Page : public Window {
public:
    // `fonts` are the dialog's.
    explicit Page(const WindowFonts& fonts) : m_fonts(fonts) {}

    // Makes the window with its controls, not visible; false on failure. Its window goes with the dialog.
    bool create(HWND dialog);

    // Shows the present state of what the dialog is about.
    virtual void refresh() = 0;
    // What Enter does where no button has the keyboard.
    virtual void mainAction() {}
    // Where the keyboard goes when the page is shown.
    virtual HWND firstField() const = 0;
    // A control of the page did something.
    virtual void command(int id, int code) = 0;
    // Takes what is typed in a field and not taken yet, before the page is left or its values are used; false when it
    // was refused and the keyboard is in that field again.
    virtual bool commit() { return true; }
    // What Esc gives up, if anything.
    virtual bool givenUp() { return false; }
    virtual bool takesKey(const MSG&) { return false; }
    virtual void fontsChanged() {}

protected:
    virtual void createControls() = 0;
    // Places the controls on the page, in pixels.
    virtual void layout(Area page) = 0;
    // The answer goes back to the control.
    virtual LRESULT notified(NMHDR&) { return 0; }
    virtual void timer(UINT_PTR) {}
    // Has settled() called before the next input. A list drops its selection before it takes another one: what hangs
    // on it is shown when both are done.
    void settleSoon();
    virtual void settled() {}
    // The answer to what a list of the page's told, whose selection the rest of the page shows: another one is settled,
    // and a double click does what Enter does, where it `acts`.
    LRESULT answerList(RowList& list, NMHDR& header, bool acts = true);
    // What Esc does in a page with a search: empties its field; false when nothing stands in it.
    static bool clearSearch(HWND field);
    // Of owner-drawn lists.
    virtual void measure(MEASUREITEMSTRUCT&) {}
    virtual void draw(const DRAWITEMSTRUCT&) {}

    // A derived class calls this for what it doesn't treat itself.
    std::optional<LRESULT> message(UINT message, WPARAM wParam, LPARAM lParam) override;
    // The whole dialog has failed.
    void failed() override;
    const WindowFonts& fonts() const { return m_fonts; }
    HWND label(const char* text) { return makeLabel(window(), text, m_fonts); }
    HWND button(const char* text, int id, bool isMain = false) {
        return makeButton(window(), text, id, m_fonts, isMain);
    }

private:
    void created() override { createControls(); }

    const WindowFonts& m_fonts;
    bool m_settlesSoon = false;
};

// Ctrl+Tab and Ctrl+Page Down go to the next page, with Shift or Page Up to the one before.
class PageShell : public DialogShell {
public:
    // `titles` outlive the dialog; `first` is the page that it opens on.
    PageShell(Frame frame, std::span<const char* const> titles, int first)
        : DialogShell(std::move(frame)),
          m_titles(titles),
          m_pages(titles.size()),
          m_stale(titles.size()),
          m_current(first) {}

    // About the current page: it goes when another one is shown.
    void setStatus(const std::string& text);
    // Shows the page and gives it the keyboard; false when the one before keeps both, with a text that was refused.
    bool goToPage(int index);
    // All pages show what is older than the present state; the current one is brought up to date at once.
    void refreshPages();
    // The current page shows the present state already.
    void refreshOtherPagesLater();

protected:
    virtual std::unique_ptr<Page> makePage(int index) = 0;
    // Buttons of the foot, made in the order of Tab, from left to right; the last one closes.
    virtual std::vector<HWND> makeFoot();
    // While there is nothing to show the pages stay empty, until refreshPages().
    virtual bool hasContent() const { return true; }
    // Another page has been shown; the status line is empty.
    virtual void pageShown(int /*index*/) {}

    Page* page() const { return m_pages[static_cast<size_t>(m_current)].get(); }
    // Null while it was never shown.
    Page* pageAt(int index) const { return m_pages[static_cast<size_t>(index)].get(); }
    int currentPage() const { return m_current; }
    // The current page shows an older state of things than there is by now, which it will see when it is shown again.
    void markStale() { m_stale[static_cast<size_t>(m_current)] = true; }

    void createControls() override;
    void layout(Area inside) override;
    HWND firstField() override { return page() ? page()->firstField() : nullptr; }
    void entered() override;
    bool givenUp() override { return page() && page()->givenUp(); }
    bool takesKey(const MSG& message) override;
    void command(int id, int code) override;
    LRESULT notified(NMHDR& header) override;
    void fontsChanged() override;
    std::optional<LRESULT> message(UINT message, WPARAM wParam, LPARAM lParam) override;
    // The windows of the pages go, before the dialog's own: they show nothing any more.
    void removePages();

private:
    void showPage(int index);
    void refreshPage();

    std::span<const char* const> m_titles;
    std::vector<std::unique_ptr<Page>> m_pages;  // null until first shown
    std::vector<bool> m_stale;                   // shows an older state
    std::vector<HWND> m_foot;
    HWND m_tabs = nullptr, m_status = nullptr;
    int m_current;
};

}  // namespace zoka

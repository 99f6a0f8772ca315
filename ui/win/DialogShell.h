// What every dialog with a frame of its own does alike: icon, place, least size, fonts that follow the system's, a
// modal loop that ends with its window, and what Enter and Esc mean.
#pragma once

#include <windows.h>

#include <functional>
#include <mutex>
#include <optional>
#include <string>

#include "ui/Area.h"
#include "ui/win/Window.h"
#include "ui/win/WindowKit.h"

namespace zoka {

// Where windows of one kind were last in this run of the program; one for each kind, alive as long as the program. May
// be used by several threads.
class PlaceMemory {
public:
    void keep(HWND window);
    // Puts a window where the last one was, unless that is on no screen any more; false when there is none. Sets
    // whether it was maximized.
    bool give(HWND window, bool& maximized) const;

private:
    mutable std::mutex m_lock;
    RECT m_place{};
    bool m_maximized = false;
};

// A derived class gives its controls, their layout and its answers:
//
//     class AboutBox : public DialogShell {
//     public:
//         AboutBox() : DialogShell({.title = "About", .width = 200, .height = 60}) {}
//     private:
//         void createControls() override { m_text = makeLabel(window(), ..., fonts()); ... }
//         void layout(Area inside) override { place(m_close, inside.takeBottom(...)); place(m_text, inside); }
//     };
//     AboutBox().runModal(owner);
class DialogShell : public Window {
public:
    struct Frame {
        std::string title;
        HINSTANCE module = nullptr;  // holds the icon; null: the icon is the owner's
        int icon = 0;
        // Of the inside at first, in dialog units. No window opens outside its screen's work area or larger than that,
        // whatever is asked for or remembered.
        int width = 300, height = 200;
        int leastWidth = 0, leastHeight = 0;  // 0: the size is fixed
        bool maximizes = false;               // has a button for it
        PlaceMemory* memory = nullptr;        // null: opens over its owner each time
    };
    explicit DialogShell(Frame frame) : m_frame(std::move(frame)) {}
    ~DialogShell() override;

    // Makes the window, not visible yet; false on failure. A null `owner`: none.
    bool create(HWND owner);
    // The same from a dialog resource, whose controls go.
    bool createFromResource(HINSTANCE module, int resource, HWND owner);
    // Makes the window over `owner` (null: see modalOwner()), which takes no input meanwhile, and returns when the
    // window is gone: closed, destroyed with its owner, or because the program ends, which loops further out are told.
    void runModal(HWND owner = nullptr);
    // As the user closes it: mayClose() is asked.
    void close();
    // Closes it without asking.
    void end();

    const WindowFonts& fonts() const { return m_fonts; }

protected:
    // Makes the controls, without sizes, in the order of Tab.
    virtual void createControls() = 0;
    // Places them. `inside` is the client area in pixels without the margins.
    virtual void layout(Area inside) = 0;
    // Where the keyboard is at first; null: the first control that takes it.
    virtual HWND firstField() { return nullptr; }
    // The window is on the screen for the first time.
    virtual void shown() {}
    virtual bool mayClose() { return true; }
    // Enter where no button has the keyboard.
    virtual void entered() {}
    // Esc: gives up what is being typed, or clears a search. False when there is nothing to give up; then the window
    // is closed.
    virtual bool givenUp() { return false; }
    // A control did something; not of IDOK and IDCANCEL.
    virtual void command(int /*id*/, int /*code*/) {}
    // The answer goes back to the control.
    virtual LRESULT notified(NMHDR&) { return 0; }
    // Takes a key before any control, of modal windows; true when it was one of the window's own.
    virtual bool takesKey(const MSG&) { return false; }
    // The fonts are other ones now, and all controls have them; layout() follows.
    virtual void fontsChanged() {}
    // For what is not remembered: over the owner.
    virtual void placeFirst(SIZE size);

    // A derived class calls this for what it doesn't treat itself.
    std::optional<LRESULT> message(UINT message, WPARAM wParam, LPARAM lParam) override;
    // As wideReport takes it.
    void setTitle(const std::string& title) {
        setText(window(), narrowText(wideReport(title), CP_UTF8), CP_UTF8);
    }
    // Lays the controls out anew.
    void layoutNow();

private:
    void created() override;
    void renewFonts(int dpi);
    void enableOwner();
    void fitOnScreen();
    // Of the window, in pixels: no larger than the screen.
    SIZE leastSize() const;

    Frame m_frame;
    WindowFonts m_fonts;
    HWND m_disabled = nullptr;  // the owner, while this window keeps it from taking input
    bool m_ready = false, m_maximized = false, m_closing = false, m_modal = false;
};

// Handles messages until `done` says so; asked after each, and when windows are destroyed. Dialog keys are those of
// `window()`, which may become null; `takesKey` is asked before. True when the program ends meanwhile: the message that
// said so is posted again, for the loops further out.
bool runMessageLoop(const std::function<bool()>& done, const std::function<HWND()>& window,
                    const std::function<bool(const MSG&)>& takesKey = {});

}  // namespace zoka

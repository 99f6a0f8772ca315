// Finding this process's windows and controls by what a user sees of them. Everything works on every thread,
// also while the windows' own threads are busy: nothing waits longer than kAnswerTime for an answer.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

namespace zoka {

inline constexpr UINT kAnswerTime = 5000;  // ms

// Sends a message and waits for the answer; 0 when the window is gone or hung.
LRESULT ask(HWND window, UINT message, WPARAM wParam = 0, LPARAM lParam = 0);

// A text of the drives, which is in the system's set, in the windows' own.
std::wstring wideText(const std::string& text);
std::string windowText(HWND window);
std::string windowClass(HWND window);
bool isOfClass(HWND window, const std::string& name);
// Without the "&" that marks a key.
std::string visibleText(HWND window);

// The process's top-level windows, front to back.
std::vector<HWND> topWindows(bool visibleOnly = true);
// All windows below `window`, front to back within each parent (which is the order of creation and of Tab).
std::vector<HWND> childWindows(HWND window);

// A visible top-level window by its title (a "*" at the end stands for any rest) and, unless empty, its
// class.
HWND findTopWindow(const std::string& title, const std::string& className = {});
// A message box by its whole text.
HWND findMessageBox(const std::string& text);
// The texts of the message boxes that are open.
std::vector<std::string> messageBoxTexts();

// A visible control of `window`:
//   #1002        by its identifier
//   @Edit, @Edit:2   the first, the second of a class
//   >Label       the one that follows the text "Label"
//   else         by its text, as a user reads it
HWND findControl(HWND window, const std::string& name);

// The window that has the keyboard in `window`'s thread; null when none has.
HWND focusOf(HWND window);
// The controls that Tab reaches in `window`, from the first on.
std::vector<HWND> tabOrder(HWND window);

// 'Button "Close"' and the like, for messages.
std::string describe(HWND window);
// Every visible window with its controls, one a line.
std::string describeAll();

}  // namespace zoka

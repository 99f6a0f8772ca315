// Keys as a user presses them, sent through the system's input queue to the window in front.
#pragma once

#include <windows.h>

#include <string>

namespace zoka {

// Brings the window in front and waits (at most `patience` ms) until it has the keyboard.
bool bringToFront(HWND window, unsigned patience);

// Types a text, character by character.
void typeText(const std::string& text);

// Presses one key, with those held that stand before it: "TAB", "Shift+TAB", "Alt+F", "Ctrl+Home", "F5".
// False for a name it does not know.
bool pressKey(const std::string& name);

}  // namespace zoka

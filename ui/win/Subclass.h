// Procedures put before a control's own. The system's way to do that looks them up among the window's properties at
// each of the control's messages, and there are hundreds of these before a window is in sight.
#pragma once

#include <windows.h>

namespace zoka {

using ControlProcedure = LRESULT(CALLBACK*)(HWND control, UINT message, WPARAM wParam, LPARAM lParam,
                                            DWORD_PTR data);
// `procedure` sees each message of the control before those that were put there earlier, and hands it on with
// nextProcedure; it throws nothing. It stays until the control is gone. Of controls whose user data (GWLP_USERDATA)
// nobody else uses. [thread of the window]
void addProcedure(HWND control, ControlProcedure procedure, DWORD_PTR data = 0);
// The answer of the procedures behind the one that calls it, and of the control itself.
LRESULT nextProcedure(HWND control, UINT message, WPARAM wParam, LPARAM lParam);

}  // namespace zoka

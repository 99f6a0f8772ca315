// The common controls that the plug-in's windows are made of, whatever those of its host are.
#pragma once

#include <windows.h>

namespace zoka {

// While it lives, windows that the thread makes are of the classes that the module's manifest (resource 2) names. A
// host of another age has other ones, which lack balloons, subclasses and more. Without such a resource, as in
// programs, nothing changes. Made and freed on one thread, the last one made first.
class ControlsContext {
public:
    explicit ControlsContext(HINSTANCE module);
    ~ControlsContext();
    ControlsContext(const ControlsContext&) = delete;
    ControlsContext& operator=(const ControlsContext&) = delete;

private:
    HANDLE m_context = INVALID_HANDLE_VALUE;
    ULONG_PTR m_cookie = 0;
    bool m_active = false;
};

}  // namespace zoka

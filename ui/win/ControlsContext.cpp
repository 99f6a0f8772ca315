#include "ui/win/ControlsContext.h"

namespace zoka {

ControlsContext::ControlsContext(HINSTANCE module) {
    ACTCTXW wanted{};
    wanted.cbSize = sizeof wanted;
    wanted.dwFlags = ACTCTX_FLAG_HMODULE_VALID | ACTCTX_FLAG_RESOURCE_NAME_VALID;
    wanted.hModule = module;
    wanted.lpResourceName = MAKEINTRESOURCEW(2);
    m_context = CreateActCtxW(&wanted);
    m_active = m_context != INVALID_HANDLE_VALUE && ActivateActCtx(m_context, &m_cookie);
}

ControlsContext::~ControlsContext() {
    if (m_active) {
        DeactivateActCtx(0, m_cookie);
    }
    if (m_context != INVALID_HANDLE_VALUE) {
        ReleaseActCtx(m_context);
    }
}

}  // namespace zoka

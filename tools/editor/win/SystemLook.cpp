#include "tools/editor/win/SystemLook.h"

#include <windows.h>

namespace zoka {

namespace {

constexpr const char* kDesktop = "Control Panel\\Desktop";
constexpr const char* kMetrics = "Control Panel\\Desktop\\WindowMetrics";
constexpr const char* kCountry = "Control Panel\\International";
constexpr LONG kNinePoints = -12;  // the system scales it with the resolution

void put(const char* key, const char* name, DWORD type, const void* bytes, DWORD size) {
    HKEY opened = nullptr;
    if (RegCreateKeyExA(HKEY_CURRENT_USER, key, 0, nullptr, 0, KEY_SET_VALUE, nullptr, &opened, nullptr) !=
        0) {
        return;
    }
    if (bytes) {
        RegSetValueExA(opened, name, 0, type, static_cast<const BYTE*>(bytes), size);
    } else {
        RegDeleteValueA(opened, name);
    }
    RegCloseKey(opened);
}

}  // namespace

SystemLook::SystemLook(int dpi, const std::string& font, const std::string& decimal) {
    const HMODULE system = GetModuleHandleA("ntdll.dll");
    if (!system || !GetProcAddress(system, "wine_get_version")) {
        return;
    }
    if (dpi > 0) {
        const auto value = static_cast<DWORD>(dpi);
        change(kDesktop, "LogPixels", REG_DWORD, &value, sizeof value);
    }
    if (!decimal.empty()) {
        change(kCountry, "sDecimal", REG_SZ, decimal.c_str(), static_cast<unsigned long>(decimal.size() + 1));
    }
    if (!font.empty()) {
        LOGFONTW face{};
        face.lfHeight = kNinePoints;
        face.lfWeight = FW_NORMAL;
        MultiByteToWideChar(CP_ACP, 0, font.c_str(), -1, face.lfFaceName, LF_FACESIZE - 1);
        for (const char* name : {"MessageFont", "CaptionFont", "SmCaptionFont", "MenuFont", "StatusFont"}) {
            change(kMetrics, name, REG_BINARY, &face, sizeof face);
        }
    }
}

SystemLook::~SystemLook() {
    for (const Saved& was : m_saved) {
        put(was.key, was.name, was.type, was.there ? was.bytes.data() : nullptr,
            static_cast<DWORD>(was.bytes.size()));
    }
}

void SystemLook::change(const char* key, const char* name, unsigned long type, const void* bytes,
                        unsigned long size) {
    Saved was{key, name};
    BYTE held[256];
    DWORD length = sizeof held;
    if (RegGetValueA(HKEY_CURRENT_USER, key, name, RRF_RT_ANY, &was.type, held, &length) == 0) {
        was.there = true;
        was.bytes.assign(held, held + length);
    }
    put(key, name, type, bytes, size);
    m_saved.push_back(std::move(was));
}

}  // namespace zoka

#include "xml/PlatformCharset.h"

#include <windows.h>

namespace zoka {

const bool* platformLeadBytes() {
    struct Table {
        bool any = false;
        bool flags[256] = {};
        Table() {
            for (int byte = 0x80; byte < 256; ++byte) {
                if (IsDBCSLeadByteEx(CP_ACP, static_cast<BYTE>(byte))) {
                    flags[byte] = any = true;
                }
            }
        }
    };
    static const Table table;
    return table.any ? table.flags : nullptr;
}

bool appendPlatform(std::string& out, std::u16string_view text) {
    if (text.empty()) {
        return true;
    }
    const auto* wide = reinterpret_cast<const wchar_t*>(text.data());
    // A code page that is UTF-8 takes neither the flag nor the question for replaced characters.
    const bool utf8 = GetACP() == CP_UTF8;
    const DWORD flags = utf8 ? WC_ERR_INVALID_CHARS : WC_NO_BEST_FIT_CHARS;
    BOOL replaced = FALSE;
    const int size = WideCharToMultiByte(CP_ACP, flags, wide, static_cast<int>(text.size()), nullptr, 0,
                                         nullptr, utf8 ? nullptr : &replaced);
    if (size <= 0 || replaced) {
        return false;
    }
    const size_t before = out.size();
    out.resize(before + static_cast<size_t>(size));
    WideCharToMultiByte(CP_ACP, flags, wide, static_cast<int>(text.size()), out.data() + before, size,
                        nullptr, nullptr);
    return true;
}

void appendUtf16(std::u16string& out, std::string_view platformText) {
    if (platformText.empty()) {
        return;
    }
    const int length = static_cast<int>(platformText.size());
    const int size = MultiByteToWideChar(CP_ACP, 0, platformText.data(), length, nullptr, 0);
    if (size <= 0) {
        out.append(platformText.size(), u'\xfffd');
        return;
    }
    const size_t before = out.size();
    out.resize(before + static_cast<size_t>(size));
    MultiByteToWideChar(CP_ACP, 0, platformText.data(), length,
                        reinterpret_cast<wchar_t*>(out.data()) + before, size);
}

}  // namespace zoka

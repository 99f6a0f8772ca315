// How written elements lie on lines: each on one of its own, a tab further in than what holds it. Internal to this
// folder.
#pragma once

#include <cstddef>
#include <string_view>

#include "xml/XMLOutput.h"

namespace zoka {

// What stands in front of a tree without a declaration of its own in a file that is UTF-8: the mark and a declaration.
inline constexpr std::string_view kXmlUtf8Head = "\xEF\xBB\xBF<?xml version=\"1.0\" encoding=\"utf-8\"?>\n";

class XMLLayout {
public:
    XMLLayout(const XMLLayout&) = delete;
    XMLLayout& operator=(const XMLLayout&) = delete;

protected:
    explicit XMLLayout(bool laysOut) : m_laysOut(laysOut) {}

    // In front of what begins a line.
    void indent() {
        if (!m_laysOut) {
            return;
        }
        size_t tabs = m_depth;
        if (tabs > kDeepLevel) {
            if (m_deepTabs + tabs > kMostDeepTabs) {
                tabs = kDeepLevel;
            }
            m_deepTabs += tabs;
        }
        m_out.putTabs(tabs);
    }
    void endLine() {
        if (m_laysOut) {
            m_out.put('\n');
        }
    }

    XMLOutput m_out;
    bool m_laysOut;
    size_t m_depth = 0;  // how many elements are open

private:
    // With a tab more a level, the text of a very deep tree would be quadratic. So deeper lines are indented in
    // full only while the tabs spent on them are few, and no further than this afterwards.
    static constexpr size_t kDeepLevel = 32;
    static constexpr size_t kMostDeepTabs = 16 * 1024 * 1024;

    size_t m_deepTabs = 0;  // spent on deep lines
};

}  // namespace zoka

#include "J8ProjectManager/StepReport.h"

#include <utility>

#include "util/SafeWrite.h"

namespace zoka {

StepReport StepReport::start(const char* root, const char* action) {
    StepReport report(XMLNode::createTop(root, false, XMLCharset::Utf8));
    XMLNode node = report.m_node;
    node.addAttribute("action", action);
    node.addAttribute("ver", kJ8Version);
    return report;
}

StepReport StepReport::add(const char* key, const std::string& text, int sourceLine) const {
    if (m_node.isEmpty()) {
        return {};
    }
    XMLNode parent = m_node;
    XMLNode step = parent.addChild(key);
    step.addAttribute("line", std::to_string(sourceLine).c_str());
    step.addText(text.c_str());
    return StepReport(step);
}

StepReport StepReport::group(const char* key) const {
    XMLNode parent = m_node;
    return StepReport(parent.addChild(key));
}

void StepReport::markSucceeded() const {
    XMLNode node = m_node;
    node.addAttribute("err", "none");
}

bool StepReport::write(const char* path) const {
    // It goes to a name of ours in the current folder: a link there may lead to anything.
    const XMLText text = m_node.toFileBytes();
    return text && safeWrite(path, text.view(), FileKind::Generated);
}

}  // namespace zoka

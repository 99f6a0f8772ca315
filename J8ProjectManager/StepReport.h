// The report of what a job did step by step, as XML: an element for each step, named by its key, with a text
// and the place in our source that wrote it.
#pragma once

#include <string>

#include "xml/XMLNode.h"

namespace zoka {

// The version of project files and reports.
inline constexpr const char* kJ8Version = "8.0303";

// An element of such a report. Copies stand for the same element. An empty one takes steps and forgets them.
class StepReport {
public:
    StepReport() = default;

    // A report of its own: its root element, with the attributes `action` and `ver`.
    static StepReport start(const char* root, const char* action);

    // Adds a step below this element and gives it. The text may be empty.
    StepReport add(const char* key, const std::string& text = {}, int sourceLine = __builtin_LINE()) const;
    // Adds an element that groups steps.
    StepReport group(const char* key) const;
    // Adds err="none".
    void markSucceeded() const;
    // Writes the report to a file, formatted. False when it can't be written.
    bool write(const char* path) const;

    const XMLNode& node() const { return m_node; }

private:
    explicit StepReport(XMLNode node) : m_node(std::move(node)) {}

    XMLNode m_node;
};

}  // namespace zoka

// What is wrong with a wizard's file, each with its place, for those who write wizards.
#pragma once

#include <string>
#include <vector>

namespace zoka {

struct WizardFinding {
    int line = 0, column = 0;  // from 1; 0: the file as a whole
    std::string text;
};

// In the order of the file. Template files are looked for below the current folder. [editor thread]
std::vector<WizardFinding> wizardFindings(const std::string& path);

}  // namespace zoka

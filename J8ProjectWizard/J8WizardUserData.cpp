#include "J8ProjectWizard/J8WizardUserData.h"

#include "J8ProjectWizard/WizardLog.h"
#include "util/OsFiles.h"
#include "util/PathRules.h"

using namespace zoka;

CJ8WizardUserData::CJ8WizardUserData() {
    if (osFiles().kindOf(kTemplatesXmlFolder) != OsKind::Folder) {
        logWizardError("CJ8WizardUserData::CJ8WizardUserData()", "Path not found");
        return;
    }
    m_strTemplatesPath = osFiles().fullPath(kTemplatesXmlFolder);
    if (!isSeparator(m_strTemplatesPath.back())) {
        m_strTemplatesPath += '\\';
    }
}

#include "templates/ScriptElm.h"

#include "templates/HeaderLine.h"
#include "util/PathRules.h"

std::string CEngineReq::AsText() const {
    return vers.empty() || edition.empty() ? vers + edition : vers + " " + edition;
}

void CEngineReq::SetFromText(const std::string& value) {
    *this = {};
    for (const std::string_view token : zoka::headerTokens(value)) {
        const std::string text(token);
        if (edition.empty() && zoka::editionCode(text) > 0) {
            edition = text;
        } else {
            vers += (vers.empty() ? "" : " ") + text;
        }
    }
}

bool CScriptElm::CheckComplete(std::string& report) const {
    const size_t before = report.size();
    const auto require = [&report](bool present, const char* line) {
        if (!present) {
            report += line;
        }
    };
    require(!m_id.empty(), "***No ID\n");
    require(!m_prefix.empty(), "***No Prefix\n");
    require(!m_directory.empty(), "***No Directory\n");
    require(!m_filename.empty(), "***No Filename\n");
    require(!m_name.empty(), "***No Name\n");
    require(!m_vers.empty(), "***No Vers\n");
    require(!m_engreq.IsEmpty(), "***No EngineReq\n");
    require(!m_date.empty(), "***No Date\n");
    require(!m_desc.empty(), "***No Desc\n");
    require(!m_class.empty(), "***No Class\n");
    require(!m_type.empty(), "***No Type\n");
    return report.size() == before;
}

namespace zoka {

int editionCode(const std::string& edition) {
    constexpr const char* kEditions[] = {"STD", "EXTRA", "COMM", "PRO"};
    for (int i = 0; i < 4; ++i) {
        if (equalNoCase(edition, kEditions[i])) {
            return i + 1;
        }
    }
    return -1;
}

}  // namespace zoka

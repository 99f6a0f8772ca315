// One script of the template catalogue.
#pragma once

#include <string>
#include <vector>

#include "util/Export.h"

// What a script, an action or the catalogue asks of the engine. Either part may be empty.
struct ZOKA_API CEngineReq {
    std::string vers;
    std::string edition;  // "STD", "EXTRA", "COMM" or "PRO"

    bool IsEmpty() const { return vers.empty() && edition.empty(); }
    // "6.1 STD"; one part alone where the other is empty.
    std::string AsText() const;
    // Takes the value of a header line: tokens parted by blanks and commas. The first that names an edition
    // is the edition, all others are the version: "6.1 STD", "pro", "6.1" and "6.1 GOLD" (which names no edition)
    // are all kept whole.
    void SetFromText(const std::string& value);
};

// An action that a script offers to entities.
struct CScriptAction {
    std::string m_name;      // the identifier that an entity is given
    std::string m_filename;  // the script that defines it
    CEngineReq m_engreq;
    std::string m_desc;
};

struct CScriptSection {
    std::string m_name;
    std::string m_text;
    std::string m_imgfile;
    std::vector<CScriptAction> m_actions;
};

// Plain data: the catalogue hands out copies.
class ZOKA_API CScriptElm {
public:
    std::string m_id;
    std::string m_prefix;
    std::string m_directory;  // type of the catalogue directory that holds the script
    std::string m_filename;
    std::string m_name;  // the title
    std::string m_desc;
    std::string m_note;
    std::string m_class;
    std::string m_type;
    std::string m_vers;
    std::string m_date;
    CEngineReq m_engreq;
    std::vector<std::string> m_needs;  // file names
    std::vector<CScriptSection> m_sections;

    // The title, or the file name of a script that has none.
    std::string DisplayName() const { return m_name.empty() ? m_filename : m_name; }

    // Appends to `report` one line for each field that is empty, "***No ID\n" and so on. True when nothing is
    // missing. Needs, note and sections may all be empty.
    bool CheckComplete(std::string& report) const;
};

namespace zoka {

// 1 "STD", 2 "EXTRA", 3 "COMM", 4 "PRO", in any case; -1 anything else.
int editionCode(const std::string& edition);

}  // namespace zoka

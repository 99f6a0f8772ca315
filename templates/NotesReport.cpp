#include "templates/NotesReport.h"

#include "templates/IncludeList.h"
#include "templates/ScriptFolders.h"

namespace zoka {

bool BuildNotesReport(std::string& text, ZunEditorInterface& host, const CTemplateData& catalogue,
                      const std::string& mainScriptPath, JobProgress* progress) {
    text = std::string("Project Manager: ") + kReportVersion + "\r\n";
    text += "Template: " + catalogue.GetName() + "\r\n";
    text += "\tType: " + catalogue.GetType() + "\r\n";
    text += "\tDate: " + catalogue.GetDate() + "\r\n";
    text += "\tVers: " + catalogue.GetVers() + "\r\n";
    text += "\tReq: " + catalogue.GetEngReq() + "\r\n\r\n";
    if (mainScriptPath.empty()) {
        text += "No Main Script Attached to this Project\r\n";
        return false;
    }
    text += "Main Script: " + mainScriptPath + "\r\n\r\n";

    std::vector<std::string> names;
    if (const Outcome read = readIncludes(mainScriptPath, names); !read) {
        text += read.why() + "\r\n";
        return false;
    }
    ScriptFolders folders(host);
    folders.listOnce();
    ScriptFactsReader facts;
    for (size_t i = 0; i < names.size(); ++i) {
        const std::string& name = names[i];
        if (!mayContinue(progress, i, names.size(), name)) {
            text += kStoppedText + std::string("\r\n");
            return false;
        }
        if (folders.LocateScript(name) == ScriptPlace::NotFound) {
            text += "!";
        }
        text += name;
        if (!catalogue.QTemplateScript(name)) {
            text += "  (USER)\r\n";
            continue;
        }
        std::string version, date, templateVersion, templateDate;
        folders.ReadVersionAndDate(name, version, date, false, &facts);
        folders.ReadVersionAndDate(name, templateVersion, templateDate, true, &facts);
        text += "  (" + version + ") (" + date + ")";
        if (version != templateVersion || date != templateDate) {
            text += " --> **(" + templateVersion + ") (" + templateDate + ")**";
        }
        text += "\r\n";
    }
    return true;
}

}  // namespace zoka

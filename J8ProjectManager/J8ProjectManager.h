// A J8 project in memory: what its project file, its behaviours files and their components files hold.
//
// Texts are UTF-8, as in the XML tree; paths in them become the system's characters at the disk. One object is
// used by one thread at a time; different objects by different threads at once.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "J8ProjectManager/J8BehaviorData.h"
#include "J8ProjectManager/J8File.h"
#include "J8ProjectManager/J8LevelData.h"
#include "J8ProjectManager/NameIndex.h"
#include "J8ProjectManager/ReportWriter.h"
#include "J8ProjectManager/StepReport.h"
#include "util/SafeWrite.h"
#include "xml/XMLNode.h"

namespace zoka {

namespace texts {
struct FileLines;
}

// The six files of a project beside behaviours and levels, in the order of the project file.
enum class J8Section { Camera, UI, AnimationPool, WeaponDefPool, Display, UserInput };
inline constexpr int kJ8Sections = 6;
// The section's element in the project file. Static.
const char* sectionTag(J8Section section);

// Something odd that loading found.
struct J8Finding {
    int severity = kReportWarning;
    std::uint32_t source = 0;  // the file, an index of CJ8ProjectManager::sources()
    std::uint32_t place = 0;   // in that file, see XMLNode::place; 0: the file as a whole
    std::string text;          // one line without its end
    int line = 0, column = 0;  // from 1, where they are known and `place` is not
};

}  // namespace zoka

class CJ8ProjectManager {
public:
    CJ8ProjectManager() = default;
    // Logs what deleting throws.
    ~CJ8ProjectManager();
    CJ8ProjectManager(const CJ8ProjectManager&) = delete;
    CJ8ProjectManager& operator=(const CJ8ProjectManager&) = delete;
    // All that the other one holds, in place of all that was here.
    CJ8ProjectManager& operator=(CJ8ProjectManager&&) = default;

    // The one object of the process, made at the first call. It belongs to the library; deleteInstance, called
    // when the library shuts down and no window is left, frees it. [editor thread]
    static CJ8ProjectManager* Instance();
    static void deleteInstance();

    // Loads the project file `path`, a path of the disk, in place of all that was loaded before. With
    // `keepFilled` a name, date, version or root that isn't empty stays. False when there is no such file or it
    // has no Project element: the model is empty then, but for what `keepFilled` keeps, and has no file to be saved to.
    // Everything else is reported, and loading goes on. Throws OutOfMemory where the file can't be read for want of
    // memory, so that nobody takes half a project for a whole one and saves it.
    bool LoadFromXML(const std::string& path, bool keepFilled);
    // The same with the tree of that file, which may be empty.
    // `results` tell why it is empty; null: not known.
    // The result of a load that `watch` stopped must not be used; nothing is reported or logged from the stop on.
    bool loadFromTree(const XMLNode& root, const std::string& path, bool keepFilled,
                      const XMLResults* results = nullptr, const XMLProgress& watch = {});

    // A copy of all that a save writes but the levels.
    std::unique_ptr<CJ8ProjectManager> withoutLevels() const;
    // Those of a Project element in place of the levels here; nothing is reported or logged.
    void replaceLevels(const XMLNode& root);

    // Reads a reference's path text from its element and finds the kind under which the file exists, whatever
    // kind it was declared with. kNotValid when there is no such file.
    CJ8File::eType GetFilenameFromXML(CJ8File& file, const XMLNode& element);
    // Each loads one file, named by a path in the texts' characters. False when it can't be read at all.
    bool LoadCMPXML(const std::string& path);
    bool LoadBehaviorXML(const std::string& path);
    // Each reads one element. False when it has no name.
    bool LoadProperty(CJ8CMPData* cmp, const XMLNode& node, std::string& report);
    bool LoadBehavior(CJ8BehaviorData& behavior, const XMLNode& node, std::string& report);
    bool LoadLevel(CJ8LevelData& level, const XMLNode& node, std::string& report);

    // The project file's tree, which is what reading its bytes gives; the empty node when memory runs out. The steps go
    // below `report`. `date` is the text to write as the date.
    XMLNode createXMLTopNode(const zoka::StepReport& report, const std::string& date) const;
    // The bytes of the project file; nothing when memory runs out. The caller owns them.
    zoka::XMLText fileText(const zoka::StepReport& report, const std::string& date) const;
    // The present moment as a project file's date: seconds since 1970-01-01 UTC.
    static std::string dateNow();
    // Writes the project file that was loaded, or set; afterwards the model holds the date and the version that
    // were written. Refused, with the model as it was, when that failed. With `expected`, what the file held when it
    // was read (nothing for one that was not there), a file that holds something else is left alone.
    zoka::SafeWriteResult SaveProjectXML(const zoka::StepReport& report,
                                         const std::string* expected = nullptr);
    // The same with a step report of its own, the file J8ProjectManagerDebug.xml in the current folder.
    zoka::SafeWriteResult SaveProjectXML(const std::string* expected = nullptr);

    // Finds the kind under which a reference's file exists and makes it the reference's; kNotValid when there is
    // no such file.
    CJ8File::eType resolve(CJ8File& file) const;
    // The same for a kind that the user has chosen: it stays, and only whether the file exists under it is found out.
    void keepKind(CJ8File& file) const;
    // The same of the six sections, after a root has changed.
    void resolveSections();

    // Forgets everything, roots and project file too.
    void Clear();

    // The project file: its path on the disk; empty when none was loaded or set. Any path may be given to the
    // setter, which makes it absolute.
    std::string projectFile() const;
    void setProjectFile(const std::string& path);

    zoka::J8Roots m_roots;

    std::string m_name;
    std::string m_date;
    std::string m_vers;
    std::string m_report;
    std::vector<CJ8File> m_apBehaviorFiles;
    CJ8File m_sections[zoka::kJ8Sections];  // by J8Section
    std::vector<CJ8LevelData> m_apLevels;
    std::vector<CJ8BehaviorData> m_apBehavior;
    std::vector<CJ8CMPData> m_apComponents;
    // References to behaviours files that did not load. They are not written.
    std::vector<CJ8File> m_apLostBehaviorFiles;

    CJ8File& section(zoka::J8Section which) { return m_sections[static_cast<int>(which)]; }
    const CJ8File& section(zoka::J8Section which) const { return m_sections[static_cast<int>(which)]; }

    // Null when there is none of that name, compared to the letter. Of several the first.
    const CJ8CMPData* component(std::string_view name) const;
    const CJ8BehaviorData* behavior(std::string_view name) const;

    // The names of all behaviours, in the order of loading; never null.
    std::shared_ptr<const std::vector<std::string>> behaviorNames() const;

    // The files that were read, in the order of reading; the project file is the first. UTF-8: pathFromXml before
    // they are opened.
    const std::vector<std::string>& sources() const { return m_sources; }
    // What the report's warnings are about.
    const std::vector<zoka::J8Finding>& findings() const { return m_findings; }

private:
    using Arguments = std::initializer_list<std::string_view>;

    // The levels of a file that is being parsed, and what is to be told of them in their turn.
    struct ReadLevels {
        std::vector<CJ8LevelData> levels;
        std::string report;
        std::vector<zoka::J8Finding> findings;
        std::vector<zoka::LateLogEntry> log;
    };

    XMLNode parseTakingLevels(const std::string& path, XMLResults& results, ReadLevels& read);
    bool load(const XMLNode& root, const std::string& path, bool keepFilled, const XMLResults* results,
              ReadLevels&& read);
    void clearContent();
    void loadLevel(const XMLNode& node);
    void loadBehaviorFiles(const XMLNode& root);
    void loadSections(const XMLNode& root);
    void loadComponentsOf(const XMLNode& root);
    void loadPaths(const XMLNode& root);
    void reportFile(const CJ8File& file, const zoka::texts::FileLines& lines);
    void add(const zoka::ReportEntry& entry, Arguments arguments, std::uint32_t place,
             int sourceLine = __builtin_LINE());
    void addTo(std::string& report, const zoka::ReportEntry& entry, Arguments arguments, std::uint32_t place,
               int sourceLine = __builtin_LINE());
    // What follows from a finding that stands already.
    void log(const zoka::ReportEntry& entry, Arguments arguments = {}, int sourceLine = __builtin_LINE());
    std::uint32_t addSource(const std::string& path);
    // The root of a file that the model reads; the empty node, and one of the two reported, when there is none.
    XMLNode openFile(const std::string& path, const char* root, const zoka::ReportEntry& missing,
                     const zoka::ReportEntry& bad);
    void tellParseError(const std::string& path, const XMLResults& results, const char* root);

    CJ8File m_projectFile;
    mutable std::shared_ptr<const std::vector<std::string>> m_behaviorNames;  // null: not asked for yet
    std::vector<std::string> m_sources;
    std::uint32_t m_source = 0;    // the one that is being read
    std::uint32_t m_referrer = 0;  // in it, the element that names the file to be opened next
    std::vector<zoka::J8Finding> m_findings;
    XMLProgress m_watch;       // told while files are parsed
    bool m_isStopped = false;  // by it: nothing more is told, as nothing was found out
    // Where entries of the log go meanwhile; null: to the log.
    std::vector<zoka::LateLogEntry>* m_lateLog = nullptr;
    zoka::NameIndex m_componentIndex, m_behaviorIndex;
    zoka::NameIndex m_loadedComponents;  // by path
};

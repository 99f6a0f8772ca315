// A creation plan as the rows of a tree, with what the disk says of the sources.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "J8ProjectWizard/CreationPlan.h"
#include "util/KeyedHash.h"
#include "util/OsFiles.h"

namespace zoka {

// A folder or file below the project folder. The first row is the project folder itself.
struct PlanRow {
    int depth = 0;
    bool isFolder = false;
    std::string name;    // of folders with a separator at its end
    std::string target;  // below the project folder
    std::string source;  // empty for what comes from no template
    std::string refusal;
    bool isRepeated = false;
    bool lacksFolder = false;
    bool isTaken = false;        // a folder where an earlier file has the name, or a file where a folder has
    bool isSaved = false;        // the project file, which is written also where there is nothing to copy
    bool isOptional = false;     // one of a set of which some may be missing
    bool isOnlyChecked = false;  // has to be among the templates, and is not copied
};

// What the disk says of a path.
struct DiskLook {
    std::string path;
    OsKind kind = OsKind::Unknown;
    std::uint64_t size = 0;  // of a file
};
// May take long on a slow disk. [any thread]
DiskLook lookAt(const std::string& path);

class PlanTree {
public:
    PlanTree() = default;
    explicit PlanTree(const CreationPlan& plan);

    const std::vector<PlanRow>& rows() const { return m_rows; }

    // The sources that are still to be looked at, in the order of the rows, and what came of looking at one:
    // `tree.seen(lookAt(source))`.
    std::vector<std::string> unseen() const;
    void seen(const DiskLook& look);
    size_t countUnseen() const { return m_unseen; }
    // Looks at all of them at once.
    void lookAtAll();
    // They may have changed.
    void forgetSeen();

    // "12 KB", empty where it isn't known or there is none.
    std::string sizeText(const PlanRow& row) const;
    // What is wrong with a row, in words; empty: nothing, as far as is known.
    std::string problem(const PlanRow& row, const std::string& projectFolder) const;
    // Whether that would keep creation from being started, or leave the project without a file.
    bool isHarmed(const PlanRow& row, const std::string& projectFolder) const;
    bool isMissing(const PlanRow& row) const;
    // The first harmed row's problem, and how many more there are.
    std::string firstProblem(const std::string& projectFolder) const;
    // "4 folders and 12 files, 48 KB".
    std::string summary() const;

private:
    struct Facts {
        OsKind kind = OsKind::Unknown;
        std::uint64_t size = 0;
        bool isKnown = false;
        bool isFresh = false;  // need not be looked at
    };
    // Null where nothing is known.
    const Facts* factsOf(const PlanRow& row) const;

    std::vector<PlanRow> m_rows;
    std::vector<std::string> m_sources;  // each once, in the order of the rows
    KeyedMap<std::string, Facts> m_facts;
    size_t m_unseen = 0;
};

// A source without what doesn't go anywhere: "templates\fog.kez" for ".\templates\.\fog.kez".
std::string shownSource(const PlanRow& row);

// "1 file", "3 files".
std::string countOf(size_t count, const char* one, const char* many);
// "512 bytes", "48 KB", "1.5 MB".
std::string byteText(std::uint64_t bytes);

}  // namespace zoka

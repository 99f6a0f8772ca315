#include "J8ProjectWizard/PlanTree.h"

#include <algorithm>
#include <cstdio>

#include "util/PathRules.h"
#include "util/Text.h"

namespace zoka {
namespace {

// Puts the rows together: folders with what is in them, in the order in which they are named first.
class TreeBuilder {
public:
    TreeBuilder() { m_nodes.push_back({}); }

    size_t folder(const std::string& path) {
        size_t at = 0;
        std::string_view rest = path;
        std::string so;
        while (!rest.empty()) {
            const size_t end = std::min(rest.find_first_of("\\/"), rest.size());
            const std::string_view part = rest.substr(0, end);
            rest.remove_prefix(std::min(end + 1, rest.size()));
            if (part.empty() || part == ".") {
                continue;
            }
            so.append(part).append("\\");
            const auto [place, isNew] = m_folders.try_emplace(lowered(so), m_nodes.size());
            if (isNew) {
                PlanRow row;
                row.isFolder = true;
                row.name = std::string(part) + "\\";
                row.target = so;
                add(at, std::move(row));
            }
            at = place->second;
        }
        return at;
    }
    void add(size_t parent, PlanRow row) {
        m_nodes[parent].children.push_back(m_nodes.size());
        m_nodes.push_back({std::move(row), {}});
    }
    PlanRow& row(size_t node) { return m_nodes[node].row; }

    std::vector<PlanRow> rows() {
        std::vector<PlanRow> made;
        std::vector<std::pair<size_t, int>> open{{0, 0}};
        m_nodes[0].row.isFolder = true;
        while (!open.empty()) {
            const auto [node, depth] = open.back();
            open.pop_back();
            m_nodes[node].row.depth = depth;
            made.push_back(std::move(m_nodes[node].row));
            const std::vector<size_t>& children = m_nodes[node].children;
            for (auto child = children.rbegin(); child != children.rend(); ++child) {
                open.emplace_back(*child, depth + 1);
            }
        }
        return made;
    }

private:
    struct Node {
        PlanRow row;
        std::vector<size_t> children;
    };
    std::vector<Node> m_nodes;
    KeyedMap<std::string, size_t> m_folders;
};

PlanRow rowOf(const PlannedFile& file) {
    PlanRow row;
    row.name = fileNameOf(file.target);
    row.target = file.target;
    row.source = file.source;
    row.refusal = file.refusal;
    row.isRepeated = file.isRepeated;
    row.lacksFolder = file.lacksFolder;
    row.isTaken = file.isTaken;
    return row;
}

void addFile(TreeBuilder& tree, const PlannedFile& file, const std::string& refusal, bool isOptional,
             bool isSaved = false) {
    PlanRow row = rowOf(file);
    row.isOptional = isOptional;
    row.isSaved = isSaved;
    if (row.refusal.empty()) {
        row.refusal = refusal;
    }
    // A refused name leads to no place in the tree, and a folder that isn't made is none.
    const bool isPlaced = row.refusal.empty() && !row.lacksFolder;
    if (row.lacksFolder) {
        row.name = row.target;
    }
    const size_t at = isPlaced ? tree.folder(std::string(folderOf(file.target))) : 0;
    tree.add(at, std::move(row));
}

}  // namespace

PlanTree::PlanTree(const CreationPlan& plan) {
    TreeBuilder tree;
    for (const PlannedFolder& folder : plan.folders) {
        if (folder.isNameless) {
            continue;
        }
        if (!folder.refusal.empty()) {
            PlanRow row;
            row.isFolder = true;
            row.name = row.target = folder.name;
            row.refusal = folder.refusal;
            tree.add(0, std::move(row));
            continue;
        }
        const size_t at = tree.folder(folder.name);
        tree.row(at).isTaken |= folder.isTaken;
        for (const PlannedFile& file : folder.checked) {
            PlanRow row = rowOf(file);
            row.name = fileNameOf(file.source);
            row.isOnlyChecked = true;
            tree.add(at, std::move(row));
        }
        for (const PlannedFile& file : folder.files) {
            if (file.source.empty()) {
                PlanRow row;
                row.name = "?";
                row.refusal = "A file of the wizard has no name.";
                tree.add(at, std::move(row));
                break;
            }
            addFile(tree, file, {}, false);
        }
    }
    for (const PlannedFile& file : plan.level.files) {
        addFile(tree, file, plan.levelRefusal, !file.target.ends_with(".zlm"));
    }
    for (const PlannedFile& file : plan.projectFiles.files) {
        const bool isProjectFile = file.target == plan.projectFile;
        addFile(tree, file, plan.projectFiles.refusal, !isProjectFile, isProjectFile);
    }
    if (!plan.loadsProjectFile) {
        PlannedFile project;
        project.target = plan.projectFile;
        project.isTaken = plan.isProjectFileTaken;
        addFile(tree, project, plan.levelRefusal, false, true);
    }
    m_rows = tree.rows();
    for (const PlanRow& row : m_rows) {
        // What a refused name leads to is nobody's business.
        if (!row.source.empty() && row.refusal.empty() && m_facts.try_emplace(row.source).second) {
            m_sources.push_back(row.source);
        }
    }
    m_unseen = m_sources.size();
}

DiskLook lookAt(const std::string& path) {
    // The size comes with a search, which would take a wildcard for one.
    const auto entry = hasWildcard(path) ? std::nullopt : osFiles().search(path);
    return entry && !entry->isFolder ? DiskLook{path, OsKind::File, entry->size}
                                     : DiskLook{path, osFiles().kindOf(path)};
}

std::vector<std::string> PlanTree::unseen() const {
    std::vector<std::string> found;
    found.reserve(m_unseen);
    for (const std::string& source : m_sources) {
        if (!m_facts.at(source).isFresh) {
            found.push_back(source);
        }
    }
    return found;
}

void PlanTree::seen(const DiskLook& look) {
    if (const auto found = m_facts.find(look.path); found != m_facts.end()) {
        m_unseen -= found->second.isFresh ? 0 : 1;
        found->second = {look.kind, look.size, true, true};
    }
}

void PlanTree::lookAtAll() {
    for (const std::string& source : unseen()) {
        seen(lookAt(source));
    }
}

void PlanTree::forgetSeen() {
    for (auto& [source, facts] : m_facts) {
        facts.isFresh = false;
    }
    m_unseen = m_facts.size();
}

const PlanTree::Facts* PlanTree::factsOf(const PlanRow& row) const {
    const auto found = m_facts.find(row.source);
    return found != m_facts.end() && found->second.isKnown ? &found->second : nullptr;
}

bool PlanTree::isMissing(const PlanRow& row) const {
    const Facts* facts = factsOf(row);
    return facts && facts->kind == OsKind::Missing;
}

std::string PlanTree::sizeText(const PlanRow& row) const {
    const Facts* facts = factsOf(row);
    return facts && facts->kind == OsKind::File && !row.isOnlyChecked ? byteText(facts->size) : "";
}

std::string PlanTree::problem(const PlanRow& row, const std::string& projectFolder) const {
    if (!row.refusal.empty()) {
        return row.refusal;
    }
    if (const Facts* facts = factsOf(row)) {
        if (facts->kind == OsKind::Missing) {
            return row.isOptional
                       ? "not among the templates"
                       : "Missing file: " + row.source + (row.isSaved ? "; an empty project is made" : "");
        }
        const bool isThere = row.isOnlyChecked && facts->kind != OsKind::Unknown;
        if (facts->kind != OsKind::File && !isThere) {
            return row.source + (facts->kind == OsKind::Unknown ? " can't be looked at" : " is no file");
        }
    }
    if (row.isTaken) {
        return takenText(row.isFolder, row.target);
    }
    if (row.lacksFolder) {
        return lacksFolderText(row.target);
    }
    if (row.isRepeated) {
        return "something of that name is made before";
    }
    return row.isOnlyChecked || projectFolder.empty()
               ? ""
               : lengthRefusal(withSeparator(projectFolder) + row.target);
}

bool PlanTree::isHarmed(const PlanRow& row, const std::string& projectFolder) const {
    const bool harmless = row.refusal.empty() && (isMissing(row) ? row.isOptional : row.isRepeated);
    return !harmless && !problem(row, projectFolder).empty();
}

std::string PlanTree::firstProblem(const std::string& projectFolder) const {
    std::string first;
    size_t count = 0;
    for (const PlanRow& row : m_rows) {
        if (isHarmed(row, projectFolder) && count++ == 0) {
            first = problem(row, projectFolder);
        }
    }
    return count > 1 ? first + " (and " + std::to_string(count - 1) + " more)" : first;
}

std::string PlanTree::summary() const {
    size_t folders = 0, files = 0;
    std::uint64_t bytes = 0;
    for (const PlanRow& row : m_rows) {
        const Facts* facts = factsOf(row);
        if (row.isOnlyChecked || row.isRepeated || row.isTaken || row.lacksFolder ||
            (facts && facts->kind != OsKind::File && !row.isSaved)) {
            continue;
        }
        ++(row.isFolder ? folders : files);
        bytes += facts ? facts->size : 0;
    }
    return countOf(folders, "folder", "folders") + " and " + countOf(files, "file", "files") + ", " +
           byteText(bytes);
}

std::string shownSource(const PlanRow& row) {
    return row.source.empty() ? row.source : normalizePath(row.source);
}

std::string countOf(size_t count, const char* one, const char* many) {
    return std::to_string(count) + " " + (count == 1 ? one : many);
}

std::string byteText(std::uint64_t bytes) {
    if (bytes < 1024) {
        return countOf(static_cast<size_t>(bytes), "byte", "bytes");
    }
    if (bytes < 1024 * 1024) {
        return std::to_string((bytes + 1023) / 1024) + " KB";
    }
    const std::uint64_t tenths = bytes * 10 / (1024 * 1024);
    return std::to_string(tenths / 10) + "." + std::to_string(tenths % 10) + " MB";
}

}  // namespace zoka

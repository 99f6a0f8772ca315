#include "templates/IncludeList.h"

#include <algorithm>

#include "templates/ScriptFacts.h"
#include "util/FileLock.h"
#include "util/KeyedHash.h"
#include "util/OsFiles.h"
#include "util/PathRules.h"
#include "util/SafeWrite.h"
#include "util/Text.h"

namespace zoka {

namespace {

constexpr std::string_view kKeyword = "include";
constexpr const char* kNotIncluded = "The main script doesn't include it any more.";
// A semicolon parts the name's token from what follows.
constexpr std::string_view kDelims = " \t;";

std::string_view textOf(const CLex& lexer) {
    return {lexer.getBuf(), static_cast<size_t>(lexer.getBufSize())};
}

// The line that the lexer delivered last, whole: the lexer itself hands out a shortened copy of the last one.
// The mark in front of the text is left out.
std::string_view currentLine(const CLex& lexer) {
    const char* const start = lexer.getCurrLinePos();
    const std::string_view line = lexer.getLineNum() < lexer.getLinesNumber()
                                      ? std::string_view(start, static_cast<size_t>(lexer.getLineLen()))
                                      : textOf(lexer).substr(static_cast<size_t>(start - lexer.getBuf()));
    return start == lexer.getBuf() ? line.substr(utf8MarkLength(line)) : line;
}

bool isComment(std::string_view line) {
    return LineTokens(line, kDelims).next().starts_with("//");
}

// Calls `onName` for each name of the block; returns the insertion point.
template <class OnName>
long walkBlock(CLex& lexer, const OnName& onName) {
    lexer.setPosAtLine(0);
    long lastInclude = -1;
    long firstCode = -1;
    while (lexer.getNextUnformLine()) {
        const std::string_view line = currentLine(lexer);
        const long offset = static_cast<long>(line.data() - lexer.getBuf());
        if (const auto name = includedName(line)) {
            onName(*name);
            lastInclude = offset;
        } else if (lastInclude >= 0) {
            return offset;
        } else if (firstCode < 0 && !isComment(line)) {
            firstCode = offset;
        }
    }
    if (lastInclude >= 0) {
        return lastInclude;
    }
    return firstCode >= 0 ? firstCode : static_cast<long>(utf8MarkLength(textOf(lexer)));
}

}  // namespace

std::string includeLine(std::string_view name) {
    std::string line = "include <";
    return (line += name) += ">;\r\n";
}

std::optional<std::string_view> includedName(std::string_view line) {
    LineTokens tokens(line, kDelims);
    const std::string_view keyword = tokens.next();
    if (keyword.size() < kKeyword.size() || !equalNoCase(keyword.substr(0, kKeyword.size()), kKeyword)) {
        return {};
    }
    std::string_view name = tokens.next();
    if (!name.starts_with('<') || !name.ends_with('>')) {
        return {};
    }
    name.remove_prefix(std::min(name.find_first_not_of("< "), name.size()));
    return name.substr(0, name.find_last_not_of("> ") + 1);
}

Outcome readIncludes(const std::string& mainScriptPath, std::vector<std::string>& names) {
    const std::optional<std::string> text = osFiles().readWhole(mainScriptPath);
    if (!text) {
        return Refusal{"Can't read '" + mainScriptPath + "': " + osFiles().lastError()};
    }
    if (!text->empty()) {
        CLex lexer(text->data(), static_cast<long>(text->size()));
        ScanIncludeBlock(lexer, names);
    }
    return {};
}

bool ReadIncludeList(const std::string& mainScriptPath, std::vector<std::string>& names) {
    static_cast<void>(readIncludes(mainScriptPath, names));
    return true;
}

long ScanIncludeBlock(CLex& lexer, std::vector<std::string>& names) {
    return walkBlock(lexer, [&names](std::string_view name) { names.emplace_back(name); });
}

long FindInsertionPoint(CLex& lexer, std::vector<std::string>& pendingNames) {
    KeyedSet<std::string> included;
    const long position =
        walkBlock(lexer, [&included](std::string_view name) { included.insert(lowered(name)); });
    std::erase_if(pendingNames,
                  [&included](const std::string& name) { return included.contains(lowered(name)); });
    return position;
}

Insertion planInsertion(std::string_view text, const std::string& mainScriptPath,
                        std::span<const std::string> scriptPaths, const LocateFile& locate,
                        const std::function<ScriptFacts(const std::string&)>& read) {
    CLex lexer(text.data(), static_cast<long>(text.size()));
    KeyedSet<std::string> included;
    Insertion insertion;
    insertion.position =
        walkBlock(lexer, [&included](std::string_view name) { included.insert(lowered(name)); });
    NeededScripts needed =
        collectNeeds(scriptPaths, std::string(fileNameOf(mainScriptPath)), included, locate, read);
    insertion.names = std::move(needed.names);
    insertion.present = std::move(needed.present);
    insertion.problem = hasUtf16Mark(text)
                            ? mainScriptPath + " is a UTF-16 file: include lines would damage it."
                            : describe(needed.refused);
    return insertion;
}

Result<std::string> applyInsertion(std::string_view text, const Insertion& insertion) {
    if (!insertion.problem.empty()) {
        return Refusal{insertion.problem};
    }
    const auto position = static_cast<size_t>(insertion.position);
    std::string lines;
    for (const std::string& name : insertion.names) {
        lines += includeLine(name);
    }
    std::string result;
    result.reserve(text.size() + lines.size());
    (result += text.substr(0, position)) += lines;
    return result += text.substr(position);
}

int InsertIncludes(CLex& lexer, const std::string& mainScriptPath, std::span<const std::string> scriptPaths,
                   const LocateFile& locate) {
    if (lexer.getBufSize() == 0) {
        return 0;
    }
    const std::string before(textOf(lexer));
    const auto change = [&](std::string_view text) {
        return applyInsertion(text, planInsertion(text, mainScriptPath, scriptPaths, locate));
    };
    const auto after = change(before);
    if (!after || *after == before) {
        return 0;
    }
    static_cast<void>(writeMainScript({mainScriptPath, before, *after}, change));  // the answer is the same
    return 1;
}

int InsertIncludes(CLex& lexer, const std::string& mainScriptPath, const std::string& scriptPath,
                   const LocateFile& locate) {
    return InsertIncludes(lexer, mainScriptPath, std::span(&scriptPath, 1), locate);
}

std::optional<std::string> withoutIncludes(std::string_view text, std::span<const std::string> names) {
    if (text.empty()) {
        throw EmptyScriptError();
    }
    KeyedMultiset<std::string> wanted;
    for (const std::string& name : names) {
        wanted.insert(lowered(name));
    }
    CLex lexer(text.data(), static_cast<long>(text.size()));
    std::string result;
    result.reserve(text.size());
    size_t copied = 0;
    while (!wanted.empty() && lexer.getNextUnformLine()) {
        const std::string_view line = currentLine(lexer);
        const auto name = includedName(line);
        const auto found = name ? wanted.find(lowered(*name)) : wanted.end();
        if (found == wanted.end()) {
            continue;
        }
        wanted.erase(found);
        const auto start = static_cast<size_t>(line.data() - text.data());
        result += text.substr(copied, start - copied);
        copied = std::min(start + line.size() + 1, text.size());
    }
    if (!wanted.empty()) {
        return {};
    }
    return result += text.substr(copied);
}

Outcome writeMainScript(const MainScriptPlan& plan, const PlanAgain& again) {
    const FileLock lock(plan.path);
    if (!lock) {
        return Refusal{lock.why()};
    }
    const std::optional<std::string> now = osFiles().readWhole(plan.path);
    if (!now) {
        return Refusal{"Can't read '" + plan.path + "': " + osFiles().lastError()};
    }
    const Result<std::string> after = *now == plan.before ? plan.after : again(*now);
    if (!after) {
        return Refusal{after.why()};
    }
    return *after == *now ? Outcome() : safeWrite(plan.path, *after);
}

RemovePlan planRemoval(ZunEditorInterface& host, std::span<const std::string> names) {
    RemovePlan plan;
    plan.names.assign(names.begin(), names.end());
    const std::optional<std::string> path = host.GetMainScriptPath();
    const std::optional<std::string> text = path ? osFiles().readWhole(*path) : std::nullopt;
    if (!text) {
        plan.problem =
            path ? "Can't read '" + *path + "': " + osFiles().lastError() : "The project has no main script.";
        return plan;
    }
    std::optional<std::string> after = withoutIncludes(*text, names);
    if (!after) {
        plan.problem = kNotIncluded;
        after = *text;
    }
    plan.main = {*path, *text, std::move(*after)};
    return plan;
}

Outcome removeIncludes(ZunEditorInterface& host, const RemovePlan& plan) {
    if (!plan.problem.empty()) {
        return Refusal{plan.problem};
    }
    const auto again = [&plan](const std::string& text) {
        std::optional<std::string> after = withoutIncludes(text, plan.names);
        return after ? Result(std::move(*after)) : Refusal{kNotIncluded};
    };
    Outcome removed = writeMainScript(plan.main, again);
    if (removed) {
        host.MainScriptChanged();
    }
    return removed;
}

bool IsInFolder(const std::string& folder, const std::string& path) {
    const size_t end = path.rfind('\\');
    if (end == std::string::npos || end > folder.size()) {
        return false;
    }
    return equalNoCase(std::string_view(path).substr(0, end), std::string_view(folder).substr(0, end));
}

}  // namespace zoka

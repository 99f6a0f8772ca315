#include "tools/cli/SuitePath.h"

#include <algorithm>
#include <vector>

#include "util/OsFiles.h"
#include "util/PathRules.h"

namespace zoka::cli {
namespace {

struct Given {
    std::string path, argument;
};
std::vector<Given> g_given;  // the longest path first: the nearest to a file's own

// The argument that leads to the path which `text` begins with, or to one above it; null where none does.
const Given* givenFor(std::string_view text) {
    const auto leadsTo = [text](const Given& given) {
        const size_t length = given.path.size();
        return text.size() >= length && equalNoCase(text.substr(0, length), given.path) &&
               (text.size() == length || std::string_view("\\'\".,;: \n").find(text[length]) != text.npos);
    };
    const auto found = std::ranges::find_if(g_given, leadsTo);
    return found == g_given.end() ? nullptr : &*found;
}

// `rest` is what follows the argument's own path.
std::string below(const Given& given, std::string rest) {
#ifndef _WIN32
    std::ranges::replace(rest, '\\', '/');
#endif
    std::string argument = given.argument;
    while (argument.size() > 1 && isSeparator(argument.back())) {
        argument.pop_back();
    }
    if (rest.empty() || !isSeparator(rest.front())) {
        return argument + rest;
    }
    return argument == "." ? rest.substr(1) : argument == "/" ? rest : argument + rest;
}

}  // namespace

std::string suitePath(const std::string& argument) {
    std::string path = osFiles().fullPath(argument);
    std::ranges::replace(path, '/', '\\');
    while (path.size() > 3 && path.ends_with('\\')) {
        path.pop_back();
    }
    const auto same = [&](const Given& given) { return given.path == path; };
    if (path.size() > 3 && path != argument && std::ranges::none_of(g_given, same)) {
        const auto shorter = [&](const Given& given) { return given.path.size() < path.size(); };
        g_given.insert(std::ranges::find_if(g_given, shorter), {path, argument});
        if (osFiles().kindOf(path) == OsKind::File) {  // what is told of may stand beside it: its lock, say
            const std::string folder(folderOf(argument));
            suitePath(folder.empty() ? "." : folder);
        }
    }
    return path;
}

std::string givenPath(const std::string& path) {
    const Given* const given = givenFor(path);
    return given ? below(*given, path.substr(given->path.size())) : path;
}

std::string withGivenPaths(const std::string& text) {
    std::string made;
    const std::string_view all = text;
    for (size_t at = 0; at < all.size();) {
        const Given* const given = givenFor(all.substr(at));
        if (!given) {
            made += all[at++];
            continue;
        }
        // A path in quotes may hold blanks.
        const char before = at > 0 ? all[at - 1] : ' ';
        const bool isQuoted = before == '\'' || before == '"';
        const size_t rest = at + given->path.size();
        const size_t end =
            std::min(isQuoted ? all.find(before, rest) : all.find_first_of(" ,;'\"\n", rest), all.size());
        made += below(*given, std::string(all.substr(rest, end - rest)));
        at = end;
    }
    return made;
}

}  // namespace zoka::cli

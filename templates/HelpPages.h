// HTML pages about the scripts of type "USER": one for each class, one for each script, with a style sheet
// and an index.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "templates/TemplateData.h"
#include "util/KeyedHash.h"
#include "util/Outcome.h"

namespace zoka {

// Where the catalogue's own operations put the pages, seen from the current folder.
inline constexpr const char* kHelpFolder = "..\\docs\\";
inline constexpr const char* kStyleFile = "css.css";
// Whether the page at `path`, which is to have that text, is a style sheet that the user has changed: that one stays.
// A beginning of ours is none: a power failure may have cut it.
bool isUsersStyle(const std::string& path, std::string_view text);
inline constexpr const char* kIndexFile = "index.htm";

// `folder` ends with a separator and exists. Each writes its pages in catalogue order, every page whole, in
// text mode, and stops at the first that can't be written. A page that is there as it is to be is not written again.
// Texts of the catalogue are escaped for HTML.
Outcome writeClassPages(const CTemplateData& catalogue, const std::string& folder);
Outcome writeScriptPages(const CTemplateData& catalogue, const std::string& folder);
// The style sheet, the index that links all classes and scripts, and both kinds of pages.
Outcome writeHelp(const CTemplateData& catalogue, const std::string& folder);
// The same for any taker of the files; its first refusal ends it.
using PageSink = std::function<Outcome(const std::string& name, const std::string& text)>;
Outcome makeHelp(const CTemplateData& catalogue, const PageSink& take);

// The pages in `folder` (with a separator at its end) that an earlier run made and whose lowered names are not in
// `names`: those of scripts and classes that are gone. Pages of other programs are left out.
std::vector<std::string> pagesOfOthers(const std::string& folder, const KeyedSet<std::string>& names);

// The page names: "template_" + class + ".htm"; the script's name, or its file name, without the characters
// that don't go well into links, + ".htm". What no file name can hold is made "_". Names are unique without
// regard to case: a second script whose name would give the same page has "_2" in front of its extension, and
// so on.
std::string classPageName(const std::string& className);
std::string scriptPageName(const CScriptElm& script);

// The marks of an edition and of every edition above it; nothing for an empty or unknown one.
std::string editionMarks(const std::string& edition);

}  // namespace zoka

// What is wrong with a catalogue, beyond what its parser says.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "templates/TemplateData.h"
#include "util/OsFiles.h"
#include "xml/XMLEncoding.h"

namespace zoka {

struct Unreadable {
    std::string fileName, reason;
};

struct CatalogueFinding {
    std::string script;  // the file name, or the title where there is none; empty: the catalogue itself
    std::string text;
};

// Missing fields (but for those that the file format loses), titles and file names that several scripts
// share, a directory that the catalogue doesn't have, needs that name themselves, no script of the catalogue
// or nothing that can be included, and needs in a circle. With a folder of templates (empty: none), also
// files that are missing there and versions or dates other than the file's. In catalogue order; linear in
// scripts and needs.
std::vector<CatalogueFinding> checkCatalogue(const CTemplateData& catalogue,
                                             const std::string& templateFolder);

// Makes a catalogue of all KEZ files of a folder, sorted by name, and appends to `findings` what their
// headers lack and what a catalogue can't hold. False when there is none; `unreadable` gets the names of those that
// can't be read, with the reasons. A script that can't be read stays as `earlier` (may be null) has it. `left` gets
// what the folder's listing left out; may be null.
bool buildCatalogue(CTemplateData& catalogue, const std::string& templateFolder, const CTemplateData* earlier,
                    std::vector<CatalogueFinding>& findings, std::vector<Unreadable>& unreadable,
                    OsListing* left = nullptr);

// The first script whose part of the catalogue's file can't be read back in that set, with the reason: in a set of two
// bytes per character the last byte of a header's value may take the quote behind it. Nothing where each can be read.
std::optional<CatalogueFinding> findUnreadable(const CTemplateData& catalogue, XMLCharset charset);

}  // namespace zoka

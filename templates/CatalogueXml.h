// Reads the catalogue's file, through the XML tree. docs/catalogue.md describes the format.
#pragma once

#include <string>

#include "templates/TemplateData.h"

namespace zoka {

inline constexpr const char* kCatalogueFile = "template_6.xml";
inline constexpr const char* kCatalogueRoot = "TavrixTemplate";

// What CTemplateData::LoadFromXML reads, for callers who survive a bad file: false, and the code and place in
// `results`, when it can't be read or parsed; the catalogue is then as it was. False with code 0, and an
// empty catalogue, when `progress` stopped it. `results` may be null.
bool loadCatalogue(CTemplateData& catalogue, const std::string& path, XMLResults* results,
                   JobProgress* progress = nullptr);

// One Script element: its record, and what lists and lookups need of it. The row's texts are the tree's.
CScriptElm readCatalogueScript(const XMLNode& node);
CTemplateData::Row readCatalogueRow(const XMLNode& node);
// The version of the engine that an element asks for; empty when it doesn't.
const char* engineVersion(const XMLNode& node);

}  // namespace zoka

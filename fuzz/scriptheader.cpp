// The header parser over the fuzzer's bytes; and whatever it makes of them survives the catalogue's file.
#include <cstdint>
#include <cstdio>
#include <cstdlib>

#include "templates/CatalogueText.h"
#include "templates/CatalogueXml.h"
#include "templates/ScriptFacts.h"
#include "templates/ScriptHeader.h"
#include "xml/XMLEncoding.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const auto fail = [](const char* what) {
        std::fprintf(stderr, "does not hold: %s\n", what);
        std::abort();
    };
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    std::string errors;
    const CScriptElm script = zoka::parseScriptHeader(text, "x.kez", errors);
    if (script.m_directory != "code" || script.m_filename != "x.kez") fail("file name and directory");
    size_t held = script.m_name.size() + script.m_desc.size() + script.m_note.size();
    for (const std::string& need : script.m_needs) {
        held += need.size();
        if (need.empty()) fail("an empty need");
    }
    if (held > size + 2 * size) fail("more text than the script has");
    zoka::parseScriptFacts(text);

    CTemplateData catalogue;
    catalogue.AddScript(script);
    const std::string file = zoka::catalogueText(catalogue, "261121");
    if (zoka::withoutMarkup(script.m_name).find_first_of("<>&\"") != std::string::npos)
        fail("markup is left");
    // Eight-bit bytes as they stand; control characters no XML file may hold.
    zoka::setXmlCharset(XMLCharset::Platform);
    XMLResults results;
    const XMLNode root = XMLNode::parseBytes(file, zoka::kCatalogueRoot, &results);
    if (root.isEmpty()) {
        for (const char c : file)
            if (static_cast<unsigned char>(c) < ' ' && c != '\t' && c != '\n' && c != '\r') return 0;
        fail(XMLNode::errorText(results.code));
    }
    CTemplateData read;
    read.LoadFromNode(root);
    if (read.scripts().size() != 1) fail("one script");
    if (read.scripts()[0].m_sections.size() != script.m_sections.size()) fail("its sections");
    return 0;
}

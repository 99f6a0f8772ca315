// zoka xml: check and format XML files as the plug-in reads and writes them.
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "tools/cli/Command.h"
#include "util/ConsolePrompt.h"
#include "util/Doors.h"
#include "util/LineDiff.h"
#include "xml/XMLConvert.h"
#include "xml/XMLNode.h"

namespace zoka::cli {
namespace {

// How a file's bytes stand for characters: formatting keeps it. Bytes of an 8-bit set are kept as they are.
XMLCharset charsetFor(const XMLFileForm& form) {
    const bool eightBit = form.set == XMLFileSet::Latin1 || form.set == XMLFileSet::Windows1252 ||
                          form.set == XMLFileSet::Platform;
    return eightBit ? XMLCharset::Platform : XMLCharset::Utf8;
}

// `text` is what the XML layer made: well-formed UTF-8.
std::string utf16From(const std::string& text, bool bigEndian) {
    std::u16string units;
    char32_t c = 0;
    for (const char* p = text.c_str(); unsigned length = *p ? utf8Sequence(p, c) : 0; p += length) {
        appendUtf16(units, c);
    }
    std::string bytes;
    bytes.reserve(units.size() * 2);
    for (const char16_t unit : units) {
        const char high = static_cast<char>(unit >> 8), low = static_cast<char>(unit & 0xFF);
        bytes += bigEndian ? high : low;
        bytes += bigEndian ? low : high;
    }
    return bytes;
}

void printPlace(std::FILE* out, const std::string& path, int line, int column) {
    // Where no place can be named, the file's first is as good as any.
    std::fprintf(out, "%s:%d:%d: ", isStandardStream(path) ? "<stdin>" : shownText(path).c_str(),
                 line > 0 ? line : 1, column > 0 ? column : 1);
}

struct Parsed {
    XMLNode document;  // empty: `status` tells why
    ExitStatus status = ExitStatus::Done;
};

// The document in `bytes`. On an error it tells where on `findings`.
Parsed parse(const std::string& path, std::string_view bytes, XMLCharset charset, std::FILE* findings) {
    XMLResults results;
    XMLNode document = XMLNode::parseBytes(bytes, nullptr, &results, {}, charset);
    if (results.outOfMemory) {
        complain(outOfMemoryText(path));
        return {{}, ExitStatus::Failed};
    }
    if (results.code == kXmlNone) {
        return {document};
    }
    printPlace(findings, path, results.line, results.column);
    std::fprintf(findings, "%s\n", XMLNode::errorText(results.code));
    return {{}, ExitStatus::Findings};
}

// The formatted document, in the form that its file has; empty when memory runs out.
std::string format(const XMLNode& document, const XMLFileForm& form, std::string_view mark) {
    int length = 0;
    const std::unique_ptr<char, void (*)(void*)> text(document.toText(true, &length), std::free);
    if (!text) {
        return {};
    }
    std::string bytes(text.get(), static_cast<size_t>(length));
    if (!bytes.ends_with('\n')) {
        bytes += '\n';
    }
    if (form.set == XMLFileSet::Utf16Le || form.set == XMLFileSet::Utf16Be) {
        bytes = utf16From(bytes, form.set == XMLFileSet::Utf16Be);
    }
    return std::string(mark) + bytes;
}

struct CheckOptions {
    std::vector<std::string> paths;
};

ExitStatus check(const CheckOptions& options) {
    ExitStatus status = ExitStatus::Done;
    for (const std::string& path : options.paths) {
        const auto bytes = readInput(path);
        if (!bytes) {
            status = ExitStatus::Failed;
            continue;
        }
        if (const XMLFileForm form = xmlFileForm(*bytes); !form.untrue.empty()) {
            printPlace(stdout, path, form.line, form.column);
            std::printf("Warning: %s\n", shownText(form.untrue).c_str());
            status = worse(status, ExitStatus::Findings);
        }
        // As the plug-in reads all but the catalogue, which in the other set has the same errors.
        status = worse(status, parse(path, *bytes, XMLCharset::Utf8, stdout).status);
    }
    return status;
}

// Formats one file to `target`; null stands for the file itself, which is then left alone if nothing changes.
ExitStatus formatFile(const std::string& path, const std::string* target, bool dryRun) {
    const auto bytes = readInput(path);
    if (!bytes) {
        return ExitStatus::Failed;
    }
    const XMLFileForm form = xmlFileForm(*bytes);
    const auto [document, status] = parse(path, *bytes, charsetFor(form), stderr);
    if (document.isEmpty()) {
        return status;
    }
    const std::string formatted = format(document, form, std::string_view(*bytes).substr(0, form.mark));
    if (formatted.empty()) {
        complain(outOfMemoryText(path));
        return ExitStatus::Failed;
    }
    if (dryRun) {
        printPatch(unifiedDifference(*bytes, formatted, path, path));
        return ExitStatus::Done;
    }
    if (!target && !isStandardStream(path)) {
        return rewriteFile(path, *bytes, formatted, [&] { return formatFile(path, target, false); });
    }
    return writeOutput(target ? *target : path, formatted) ? ExitStatus::Done : ExitStatus::Failed;
}

struct FormatOptions {
    std::vector<std::string> paths;
    std::string output = "-";
    bool inPlace = false, dryRun = false;

    Outcome check() const {
        for (const std::string& path : paths) {
            if (inPlace && isStandardStream(path)) {
                return Refusal{"--in-place: the standard input has no place to write back to"};
            }
        }
        if (!inPlace && paths.size() > 1) {
            return Refusal{"FILE: several files can be formatted with --in-place only"};
        }
        return {};
    }
};

ExitStatus formatAll(const FormatOptions& options) {
    ExitStatus status = ExitStatus::Done;
    for (const std::string& path : options.paths) {
        status = worse(status, formatFile(path, options.inPlace ? nullptr : &options.output, options.dryRun));
    }
    return status;
}

}  // namespace

void addXmlCommands(const Command& app, Work& chosen) {
    const Command group = app.add("xml", "Check and format XML files", "zoka xml check template_6.xml");
    addCommand<CheckOptions>(
        group,
        {"check", "Tell whether XML files can be read, and where not",
         "zoka xml check template_6.xml main.xml"},
        chosen, check, [](const Command& command, CheckOptions& options) {
            command.option("FILE", options.paths, "Files to check; - is the standard input").required();
        });
    addCommand<FormatOptions>(
        group,
        {"format", "Lay out an XML file with one element a line",
         "zoka xml format main.xml -o formatted.xml"},
        chosen, formatAll,
        [](const Command& command, FormatOptions& options) {
            command
                .option("FILE", options.paths, "The file; - is the standard input. Several with --in-place")
                .required();
            const Option output =
                command.option("-o,--output", options.output, "Write to this file; - is the standard output");
            command.flag("-i,--in-place", options.inPlace, "Write each file back to its own place")
                .excludes(output);
        },
        kDryRun);
}

}  // namespace zoka::cli

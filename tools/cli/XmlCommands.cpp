// zoka xml: check and format XML files as the plug-in reads and writes them.
#include <CLI/CLI.hpp>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "tools/cli/Cli.h"
#include "util/ConsolePrompt.h"
#include "util/PathRules.h"
#include "xml/XMLConvert.h"
#include "xml/XMLNode.h"

namespace zoka::cli {
namespace {

constexpr std::string_view kUtf16LeMark = "\xFF\xFE";
constexpr std::string_view kUtf16BeMark = "\xFE\xFF";

// How a file's bytes stand for characters: formatting keeps it.
struct FileForm {
    std::string_view mark;       // the byte-order mark it begins with, or empty
    bool platformBytes = false;  // declares an 8-bit set: bytes are kept as they are
};

// The name in encoding="..." of the XML declaration, or empty.
std::string_view declaredEncoding(std::string_view bytes) {
    if (!bytes.starts_with("<?xml")) {
        return {};
    }
    const std::string_view declaration = bytes.substr(0, bytes.find("?>"));
    const size_t word = declaration.find("encoding");
    const size_t open = declaration.find_first_of("\"'", word);
    if (word == declaration.npos || open == declaration.npos) {
        return {};
    }
    const size_t close = declaration.find(declaration[open], open + 1);
    return close == declaration.npos ? std::string_view() : declaration.substr(open + 1, close - open - 1);
}

FileForm formOf(std::string_view bytes) {
    for (const std::string_view mark : {kUtf8Mark, kUtf16LeMark, kUtf16BeMark}) {
        if (bytes.starts_with(mark)) {
            return {mark};
        }
    }
    const std::string_view name = declaredEncoding(bytes);
    return {{}, !name.empty() && !equalNoCase(name.substr(0, 3), "utf")};
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

// The document in `bytes`, in the form `form`. On an error it tells where on
// `findings`, and the node is empty.
XMLNode parse(const std::string& path, std::string_view bytes, const FileForm& form, std::FILE* findings) {
    setXmlCharset(form.platformBytes ? XMLCharset::Platform : XMLCharset::Utf8);
    XMLResults results;
    XMLNode document = XMLNode::parseBytes(bytes, nullptr, &results);
    if (results.code == kXmlNone) {
        return document;
    }
    // Where no place can be named, the file's first is as good as any.
    std::fprintf(findings, "%s:%d:%d: %s\n", isStandardStream(path) ? "<stdin>" : shownText(path).c_str(),
                 results.line > 0 ? results.line : 1, results.column > 0 ? results.column : 1,
                 XMLNode::errorText(results.code));
    return {};
}

// The formatted document, in the form that its file has; empty when memory runs out.
std::string format(const XMLNode& document, const FileForm& form) {
    int length = 0;
    const std::unique_ptr<char, void (*)(void*)> text(document.toText(true, &length), std::free);
    if (!text) {
        return {};
    }
    std::string bytes(text.get(), static_cast<size_t>(length));
    if (!bytes.ends_with('\n')) {
        bytes += '\n';
    }
    if (form.mark == kUtf16LeMark || form.mark == kUtf16BeMark) {
        bytes = utf16From(bytes, form.mark == kUtf16BeMark);
    }
    return std::string(form.mark) + bytes;
}

ExitStatus check(const std::vector<std::string>& paths) {
    ExitStatus status = ExitStatus::Done;
    for (const std::string& path : paths) {
        const auto bytes = readInput(path);
        if (!bytes) {
            status = ExitStatus::Failed;
        } else if (parse(path, *bytes, formOf(*bytes), stdout).isEmpty()) {
            status = worse(status, ExitStatus::Findings);
        }
    }
    return status;
}

// Formats one file to `target`; null stands for the file itself, which is then left alone if nothing changes.
ExitStatus formatFile(const std::string& path, const std::string* target) {
    const auto bytes = readInput(path);
    if (!bytes) {
        return ExitStatus::Failed;
    }
    const FileForm form = formOf(*bytes);
    const XMLNode document = parse(path, *bytes, form, stderr);
    if (document.isEmpty()) {
        return ExitStatus::Findings;
    }
    const std::string formatted = format(document, form);
    if (formatted.empty()) {
        complain("not enough memory to format " + path);
        return ExitStatus::Failed;
    }
    if (!target && formatted == *bytes) {
        return ExitStatus::Done;
    }
    return writeOutput(target ? *target : path, formatted) ? ExitStatus::Done : ExitStatus::Failed;
}

void addCheck(CLI::App& xml, Work& chosen) {
    CLI::App* command = xml.add_subcommand("check", "Tell whether XML files can be read, and where not");
    const auto paths = std::make_shared<std::vector<std::string>>();
    command->add_option("FILE", *paths, "Files to check; - is the standard input")->required();
    setExample(*command, "zoka xml check template_6.xml main.xml");
    command->callback([=, &chosen] { chosen = [=] { return check(*paths); }; });
}

struct FormatOptions {
    std::vector<std::string> paths;
    std::string output = "-";
    bool inPlace = false;
};

void addFormat(CLI::App& xml, Work& chosen) {
    CLI::App* command = xml.add_subcommand("format", "Lay out an XML file with one element a line");
    const auto options = std::make_shared<FormatOptions>();
    command->add_option("FILE", options->paths, "The file; - is the standard input. Several with --in-place")
        ->required();
    CLI::Option* output =
        command->add_option("-o,--output", options->output, "Write to this file; - is the standard output");
    command->add_flag("-i,--in-place", options->inPlace, "Write each file back to its own place")
        ->excludes(output);
    setExample(*command, "zoka xml format main.xml -o formatted.xml");
    command->callback([=, &chosen] {
        for (const std::string& path : options->paths) {
            if (options->inPlace && isStandardStream(path)) {
                throw CLI::ValidationError("--in-place", "the standard input has no place to write back to");
            }
        }
        if (!options->inPlace && options->paths.size() > 1) {
            throw CLI::ValidationError("FILE", "several files can be formatted with --in-place only");
        }
        chosen = [=] {
            ExitStatus status = ExitStatus::Done;
            for (const std::string& path : options->paths) {
                status = worse(status, formatFile(path, options->inPlace ? nullptr : &options->output));
            }
            return status;
        };
    });
}

}  // namespace

void addXmlCommands(CLI::App& app, Work& chosen) {
    CLI::App* xml = app.add_subcommand("xml", "Check and format XML files");
    setExample(*xml, "zoka xml check template_6.xml");
    addCheck(*xml, chosen);
    addFormat(*xml, chosen);
}

}  // namespace zoka::cli
